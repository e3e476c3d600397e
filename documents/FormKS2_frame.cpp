#include "FormKS2_frame.h"

#include "ActData.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "estimate/ActFields.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimatePrint.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace {

template <typename W> W *named(W *w, const char *name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

// Labels whose words must not part: joined by non-breaking spaces.
QString joined(const QString &words) {
    QString s = words;
    s.replace(u' ', QChar(0x00A0));
    return s;
}

QLabel *label(const QString &text, const QString &field, QWidget *parent) {
    auto *l = new QLabel(text, parent);
    l->setObjectName(QStringLiteral("Label") + field);
    return l;
}

QDateEdit *dateEdit(const char *name, QWidget *parent) {
    auto *d = named(new QDateEdit(QDate::currentDate(), parent), name);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    return d;
}

QComboBox *editableCombo(const char *name, QWidget *parent) {
    auto *c = named(new QComboBox(parent), name);
    c->setEditable(true);
    c->setInsertPolicy(QComboBox::NoInsert);
    c->setMinimumWidth(240);
    return c;
}

// Keeps the typed text while the list below it is refilled.
void refill(QComboBox *combo, const QStringList &items) {
    const QString text = combo->currentText();
    combo->clear();
    combo->addItems(items);
    combo->setCurrentIndex(-1);
    combo->setEditText(text);
}

void setComboText(QComboBox *combo, const QString &text) {
    const int i = combo->findText(text);
    if (i >= 0)
        combo->setCurrentIndex(i);
    else if (combo->isEditable())
        combo->setEditText(text);
}

} // namespace

TFormKS2::TFormKS2(EstimateDocument &document, SettingsStore *store, QWidget *parent)
    : QWidget(parent), m_doc(document), m_store(store) {
    setObjectName(QStringLiteral("FormKS2"));
    setWindowTitle(QStringLiteral("Данные акта"));
    build();
}

void TFormKS2::build() {
    auto *root = new QVBoxLayout(this);
    PageControl = named(new QTabWidget(this), "PageControl");
    PageControl->addTab(buildDataPage(), QStringLiteral("Данные акта"));
    PageControl->addTab(buildVolumesPage(), QStringLiteral("Объёмы акта"));
    root->addWidget(PageControl, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addStretch(1);
    btnClose = named(new QPushButton(QStringLiteral("Закрыть"), this), "btnClose");
    bottom->addWidget(btnClose);
    root->addLayout(bottom);
    connect(btnClose, &QPushButton::clicked, this, &QWidget::close);
    // Escape closes the window as its button does (leaving writes the fields).
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    connect(PageControl, &QTabWidget::currentChanged, this, [this](int page) {
        if (page == 1 && m_entered)
            refreshVolumes();
    });
}

QWidget *TFormKS2::buildDataPage() {
    auto *page = new QWidget(this);
    auto *grid = new QGridLayout(page);

    auto *zakaz = named(new QGroupBox(QStringLiteral("Заказчик"), page), "GroupZakaz");
    auto *zg = new QGridLayout(zakaz);
    ComboBoxZakaz = editableCombo("ComboBoxZakaz", zakaz);
    btnZakazAndObject =
        named(new QPushButton(QStringLiteral("Заказчики и объекты"), zakaz), "btnZakazAndObject");
    ZEditAddress = named(new QLineEdit(zakaz), "ZEditAddress");
    ZEditPhone = named(new QLineEdit(zakaz), "ZEditPhone");
    ZEditFax = named(new QLineEdit(zakaz), "ZEditFax");
    zg->addWidget(label(QStringLiteral("ФИО (наименование)"), QStringLiteral("ComboBoxZakaz"), zakaz), 0, 0);
    zg->addWidget(ComboBoxZakaz, 0, 1);
    zg->addWidget(btnZakazAndObject, 0, 2);
    zg->addWidget(label(QStringLiteral("Адрес"), QStringLiteral("ZEditAddress"), zakaz), 1, 0);
    zg->addWidget(ZEditAddress, 1, 1, 1, 2);
    zg->addWidget(label(QStringLiteral("Телефон(ы)"), QStringLiteral("ZEditPhone"), zakaz), 2, 0);
    zg->addWidget(ZEditPhone, 2, 1, 1, 2);
    zg->addWidget(label(QStringLiteral("Факс"), QStringLiteral("ZEditFax"), zakaz), 3, 0);
    zg->addWidget(ZEditFax, 3, 1, 1, 2);

    auto *podryad = named(new QGroupBox(QStringLiteral("Подрядчик"), page), "GroupPodryad");
    auto *pg = new QGridLayout(podryad);
    ComboBoxPodryad = editableCombo("ComboBoxPodryad", podryad);
    btnPodryad = named(new QPushButton(QStringLiteral("Данные подрядчика"), podryad), "btnPodryad");
    PEditAddress = named(new QLineEdit(podryad), "PEditAddress");
    PEditPhone = named(new QLineEdit(podryad), "PEditPhone");
    PEditFax = named(new QLineEdit(podryad), "PEditFax");
    pg->addWidget(label(QStringLiteral("ФИО (наименование)"), QStringLiteral("ComboBoxPodryad"), podryad), 0,
                  0);
    pg->addWidget(ComboBoxPodryad, 0, 1);
    pg->addWidget(btnPodryad, 0, 2);
    pg->addWidget(label(QStringLiteral("Адрес"), QStringLiteral("PEditAddress"), podryad), 1, 0);
    pg->addWidget(PEditAddress, 1, 1, 1, 2);
    pg->addWidget(label(QStringLiteral("Телефон(ы)"), QStringLiteral("PEditPhone"), podryad), 2, 0);
    pg->addWidget(PEditPhone, 2, 1, 1, 2);
    pg->addWidget(label(QStringLiteral("E-mail"), QStringLiteral("PEditFax"), podryad), 3, 0);
    pg->addWidget(PEditFax, 3, 1, 1, 2);

    auto *site = named(new QGroupBox(QStringLiteral("Стройка и договор"), page), "GroupSite");
    auto *sg = new QGridLayout(site);
    ComboBoxTypeWork = named(new QComboBox(site), "ComboBoxTypeWork");
    ComboBoxTypeWork->addItems({QStringLiteral("Наименование стройки"), QStringLiteral("Основание")});
    EditNameWork = named(new QLineEdit(site), "EditNameWork");
    AddressWork = named(new QLineEdit(site), "AddressWork");
    ComboBoxObject = editableCombo("ComboBoxObject", site);
    EditNumDoc = named(new QLineEdit(site), "EditNumDoc");
    DateEditContract = dateEdit("DateEditContract", site);
    EditSumSmet = named(new QLineEdit(site), "EditSumSmet");
    EditSummaWord = named(new QLineEdit(site), "EditSummaWord");
    EditSummaWord->setReadOnly(true);
    DateEditPeriodS = dateEdit("DateEditPeriodS", site);
    DateEditPeriodPo = dateEdit("DateEditPeriodPo", site);
    sg->addWidget(ComboBoxTypeWork, 0, 0);
    sg->addWidget(EditNameWork, 0, 1);
    const QPair<QString, QWidget *> siteRows[] = {
        {QStringLiteral("Адрес стройки"), AddressWork},
        {QStringLiteral("Наименование объекта"), ComboBoxObject},
        {QStringLiteral("Номер договора подряда"), EditNumDoc},
        {QStringLiteral("Дата договора подряда"), DateEditContract},
        {QStringLiteral("Сметная стоимость по договору"), EditSumSmet},
        {QStringLiteral("Сметная стоимость"), EditSummaWord},
        {QStringLiteral("Отчетный период с"), DateEditPeriodS},
        {QStringLiteral("Отчетный период по"), DateEditPeriodPo},
    };
    int row = 1;
    for (const auto &r : siteRows) {
        const QString field =
            r.second == EditSummaWord ? QStringLiteral("SummaWord") : r.second->objectName();
        sg->addWidget(label(joined(r.first), field, site), row, 0);
        sg->addWidget(r.second, row, 1);
        ++row;
    }

    auto *signatures = named(new QGroupBox(QStringLiteral("Подписи"), page), "GroupSignatures");
    auto *gg = new QGridLayout(signatures);
    EditSdal = named(new QLineEdit(signatures), "EditSdal");
    EditPrinal = named(new QLineEdit(signatures), "EditPrinal");
    btnWriteSdal =
        named(new QPushButton(QStringLiteral("Записать имя подрядчика"), signatures), "btnWriteSdal");
    btnWritePrinal =
        named(new QPushButton(QStringLiteral("Записать имя заказчика"), signatures), "btnWritePrinal");
    gg->addWidget(label(QStringLiteral("Сдал/подрядчик\n(ФИО)"), QStringLiteral("EditSdal"), signatures), 0,
                  0);
    gg->addWidget(EditSdal, 0, 1);
    gg->addWidget(btnWriteSdal, 0, 2);
    gg->addWidget(label(QStringLiteral("Принял/заказчик\n(ФИО)"), QStringLiteral("EditPrinal"), signatures),
                  1, 0);
    gg->addWidget(EditPrinal, 1, 1);
    gg->addWidget(btnWritePrinal, 1, 2);
    // The two switchable rows: organisations sign with their positions, owners with their apartment.
    RowOrganizations = named(new QWidget(signatures), "RowOrganizations");
    auto *og = new QHBoxLayout(RowOrganizations);
    og->setContentsMargins(0, 0, 0, 0);
    EditDolSdal = named(new QComboBox(RowOrganizations), "EditDolSdal");
    EditDolSdal->setEditable(true);
    EditDolSdal->addItems(ActFields::handerPositions());
    EditDolPrinal = named(new QComboBox(RowOrganizations), "EditDolPrinal");
    EditDolPrinal->setEditable(true);
    EditDolPrinal->addItems(ActFields::accepterPositions());
    og->addWidget(label(QStringLiteral("Должность"), QStringLiteral("EditDolSdal"), RowOrganizations));
    og->addWidget(EditDolSdal, 1);
    og->addWidget(label(QStringLiteral("Должность"), QStringLiteral("EditDolPrinal"), RowOrganizations));
    og->addWidget(EditDolPrinal, 1);
    RowOwners = named(new QWidget(signatures), "RowOwners");
    auto *ow = new QHBoxLayout(RowOwners);
    ow->setContentsMargins(0, 0, 0, 0);
    EditNumKv = named(new QLineEdit(RowOwners), "EditNumKv");
    ow->addWidget(label(QStringLiteral("Номер квартиры"), QStringLiteral("EditNumKv"), RowOwners));
    ow->addWidget(EditNumKv, 1);
    gg->addWidget(RowOrganizations, 2, 0, 1, 3);
    gg->addWidget(RowOwners, 3, 0, 1, 3);
    auto *more =
        label(QStringLiteral("  Дополнительная информация"), QStringLiteral("Additional"), signatures);
    RadioButton1 = named(new QRadioButton(QStringLiteral("Организации"), signatures), "RadioButton1");
    RadioButton2 = named(new QRadioButton(QStringLiteral("Собственники"), signatures), "RadioButton2");
    auto *kinds = new QHBoxLayout;
    kinds->addWidget(more);
    kinds->addWidget(RadioButton1);
    kinds->addWidget(RadioButton2);
    kinds->addStretch(1);
    gg->addLayout(kinds, 4, 0, 1, 3);
    RadioButton2->setChecked(true);

    grid->addWidget(zakaz, 0, 0);
    grid->addWidget(podryad, 1, 0);
    grid->addWidget(site, 0, 1, 2, 1);
    grid->addWidget(signatures, 2, 0, 1, 2);
    grid->setRowStretch(3, 1);

    // The keyboard walks the fields in the form's order.
    const QList<QWidget *> order{
        ComboBoxZakaz, ZEditAddress,     ZEditPhone,       ZEditFax,         ComboBoxPodryad, PEditAddress,
        PEditPhone,    PEditFax,         ComboBoxTypeWork, EditNameWork,     AddressWork,     ComboBoxObject,
        EditNumDoc,    DateEditContract, EditSumSmet,      EditSdal,         EditDolSdal,     EditPrinal,
        EditDolPrinal, EditNumKv,        DateEditPeriodS,  DateEditPeriodPo, RadioButton1};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(ComboBoxZakaz, &QComboBox::activated, this, &TFormKS2::ComboBoxZakazChange);
    connect(ComboBoxPodryad, &QComboBox::activated, this, &TFormKS2::ComboBoxPodryadChange);
    connect(btnWriteSdal, &QPushButton::clicked, this, &TFormKS2::spdSdalClick);
    connect(btnWritePrinal, &QPushButton::clicked, this, &TFormKS2::spdPrinalClick);
    connect(RadioButton1, &QRadioButton::toggled, this, &TFormKS2::RadioButton1Click);
    connect(EditSumSmet, &QLineEdit::textChanged, this, &TFormKS2::EditSumSmetChange);
    connect(btnZakazAndObject, &QPushButton::clicked, this,
            [this] { emit customersRequested(ComboBoxZakaz->currentText(), ComboBoxObject->currentText()); });
    connect(btnPodryad, &QPushButton::clicked, this,
            [this] { emit contractorsRequested(ComboBoxPodryad->currentText()); });
    RadioButton1Click();
    return page;
}

QWidget *TFormKS2::buildVolumesPage() {
    auto *page = new QWidget(this);
    auto *v = new QVBoxLayout(page);
    LabelVolumes = named(new QLabel(page), "LabelVolumes");
    LabelVolumes->setWordWrap(true);
    v->addWidget(LabelVolumes);
    GridVolumes = named(new QTableView(page), "GridVolumes");
    GridVolumes->setModel(&m_volumes);
    GridVolumes->verticalHeader()->hide();
    GridVolumes->horizontalHeader()->setSectionResizeMode(ActVolumeCol::Name, QHeaderView::Stretch);
    GridVolumes->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                 QAbstractItemView::AnyKeyPressed);
    v->addWidget(GridVolumes, 3);
    auto *buttons = new QHBoxLayout;
    spdVolumesZero = named(new QPushButton(QStringLiteral("Обнулить «В этом акте»"), page), "spdVolumesZero");
    spdVolumesRemainder =
        named(new QPushButton(QStringLiteral("Весь остаток в этот акт"), page), "spdVolumesRemainder");
    spdDeleteLastAct =
        named(new QPushButton(QStringLiteral("Удалить последний акт"), page), "spdDeleteLastAct");
    buttons->addWidget(spdVolumesZero);
    buttons->addWidget(spdVolumesRemainder);
    buttons->addStretch(1);
    buttons->addWidget(spdDeleteLastAct);
    v->addLayout(buttons);
    v->addWidget(new QLabel(QStringLiteral("Составленные акты по объёмам"), page));
    GridActs = named(new QTableView(page), "GridActs");
    m_acts = new QStandardItemModel(0, 4, this);
    m_acts->setHorizontalHeaderLabels({QStringLiteral("№ акта"), QStringLiteral("Дата"),
                                       QStringLiteral("Отчетный период"), QStringLiteral("Сумма")});
    GridActs->setModel(m_acts);
    GridActs->setEditTriggers(QAbstractItemView::NoEditTriggers);
    GridActs->verticalHeader()->hide();
    GridActs->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    v->addWidget(GridActs, 1);

    connect(&m_volumes, &ActVolumesModel::edited, this, &TFormKS2::showVolumesState);
    connect(spdVolumesZero, &QPushButton::clicked, this, [this] { m_volumes.setAll(QStringLiteral("0")); });
    connect(spdVolumesRemainder, &QPushButton::clicked, &m_volumes, &ActVolumesModel::resetToRemainder);
    connect(spdDeleteLastAct, &QPushButton::clicked, this, &TFormKS2::spdDeleteLastActClick);
    return page;
}

// ----- Entering and leaving

void TFormKS2::enter() {
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    QString why;
    if (!db.isOpen() || !ActFields::ensureRows(db, &why))
        dialogs().tell(Captions::error,
                       QStringLiteral("Данные акта не прочитаны: %1")
                           .arg(db.isOpen() ? why : (module ? module->failure(Db::Smeta) : QString())),
                       Dialogs::Icon::Error);
    const QMap<QString, QString> stored = ActFields::read(db);
    m_read.clear();
    for (const QString &name : ActFields::names())
        m_read.insert(name, stored.value(name));
    reloadLists();
    showValues(m_read);
    // A blank party, object or site prints as the estimate's header names it: the fields say so.
    const EstimateHeader::Values &h = m_doc.header();
    ComboBoxZakaz->lineEdit()->setPlaceholderText(h.customer);
    ComboBoxPodryad->lineEdit()->setPlaceholderText(h.contractor);
    ComboBoxObject->lineEdit()->setPlaceholderText(h.object);
    EditNameWork->setPlaceholderText(h.nameWork);
    m_readTyped = ActVolumes::typed(db);
    m_entered = false; // the volumes start from what the document holds
    refreshVolumes();
    m_entered = true;
}

bool TFormKS2::leave() {
    if (!m_entered || m_leaving)
        return true;
    QScopedValueRollback<bool> leaving(m_leaving, true);
    const QMap<QString, QString> now = values();
    const QMap<QString, QString> typed = m_volumes.typed();
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    QString why;
    const bool written = db.isOpen() && ActFields::write(db, now, &why) &&
                         (typed == m_readTyped || ActVolumes::saveTyped(db, typed, &why));
    if (!written) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Данные акта не записаны в смету: %1")
                           .arg(db.isOpen() ? why : (module ? module->failure(Db::Smeta) : QString())),
                       Dialogs::Icon::Error);
        return false;
    }
    if (now != m_read || typed != m_readTyped)
        m_doc.setChanged(true);
    m_read = now;
    m_readTyped = typed;
    return true;
}

QMap<QString, QString> TFormKS2::values() const {
    QMap<QString, QString> v;
    auto date = [](const QDateEdit *d) { return TextValues::shortDate(d->date()); };
    v.insert(QStringLiteral("ComboBoxZakaz"), ComboBoxZakaz->currentText());
    v.insert(QStringLiteral("ZEditAddress"), ZEditAddress->text());
    v.insert(QStringLiteral("ZEditPhone"), ZEditPhone->text());
    v.insert(QStringLiteral("ZEditFax"), ZEditFax->text());
    v.insert(QStringLiteral("ComboBoxPodryad"), ComboBoxPodryad->currentText());
    v.insert(QStringLiteral("PEditAddress"), PEditAddress->text());
    v.insert(QStringLiteral("PEditPhone"), PEditPhone->text());
    v.insert(QStringLiteral("PEditFax"), PEditFax->text());
    v.insert(QStringLiteral("ComboBoxTypeWork"), ComboBoxTypeWork->currentText());
    v.insert(QStringLiteral("EditNameWork"), EditNameWork->text());
    v.insert(QStringLiteral("AddressWork"), AddressWork->text());
    v.insert(QStringLiteral("ComboBoxObject"), ComboBoxObject->currentText());
    v.insert(QStringLiteral("EditNumDoc"), EditNumDoc->text());
    v.insert(QStringLiteral("DateEditContract"), date(DateEditContract));
    v.insert(QStringLiteral("EditSumSmet"), EditSumSmet->text());
    v.insert(QStringLiteral("SummaWord"), EditSummaWord->text());
    v.insert(QStringLiteral("EditSdal"), EditSdal->text());
    v.insert(QStringLiteral("EditDolSdal"), EditDolSdal->currentText());
    v.insert(QStringLiteral("EditPrinal"), EditPrinal->text());
    v.insert(QStringLiteral("EditDolPrinal"), EditDolPrinal->currentText());
    v.insert(QStringLiteral("EditNumKv"), EditNumKv->text());
    v.insert(QStringLiteral("DateEditPeriodS"), date(DateEditPeriodS));
    v.insert(QStringLiteral("DateEditPeriodPo"), date(DateEditPeriodPo));
    v.insert(QStringLiteral("RadioButton1"), ActFields::tick(RadioButton1->isChecked()));
    return v;
}

void TFormKS2::showValues(const QMap<QString, QString> &v) {
    QScopedValueRollback<bool> showing(m_showing, true);
    auto date = [&v](QDateEdit *d, const char *name) {
        const QDate value = TextValues::parseShortDate(v.value(QString::fromLatin1(name)));
        d->setDate(value.isValid() ? value : QDate::currentDate());
    };
    setComboText(ComboBoxZakaz, v.value(QStringLiteral("ComboBoxZakaz")));
    fillObjects(ComboBoxZakaz->currentText());
    ZEditAddress->setText(v.value(QStringLiteral("ZEditAddress")));
    ZEditPhone->setText(v.value(QStringLiteral("ZEditPhone")));
    ZEditFax->setText(v.value(QStringLiteral("ZEditFax")));
    setComboText(ComboBoxPodryad, v.value(QStringLiteral("ComboBoxPodryad")));
    PEditAddress->setText(v.value(QStringLiteral("PEditAddress")));
    PEditPhone->setText(v.value(QStringLiteral("PEditPhone")));
    PEditFax->setText(v.value(QStringLiteral("PEditFax")));
    const int kind = ComboBoxTypeWork->findText(v.value(QStringLiteral("ComboBoxTypeWork")));
    ComboBoxTypeWork->setCurrentIndex(kind >= 0 ? kind : 0);
    EditNameWork->setText(v.value(QStringLiteral("EditNameWork")));
    AddressWork->setText(v.value(QStringLiteral("AddressWork")));
    setComboText(ComboBoxObject, v.value(QStringLiteral("ComboBoxObject")));
    EditNumDoc->setText(v.value(QStringLiteral("EditNumDoc")));
    date(DateEditContract, "DateEditContract");
    EditSumSmet->setText(v.value(QStringLiteral("EditSumSmet")));
    EditSummaWord->setText(v.value(QStringLiteral("SummaWord")));
    EditSdal->setText(v.value(QStringLiteral("EditSdal")));
    setComboText(EditDolSdal, v.value(QStringLiteral("EditDolSdal")));
    EditPrinal->setText(v.value(QStringLiteral("EditPrinal")));
    setComboText(EditDolPrinal, v.value(QStringLiteral("EditDolPrinal")));
    EditNumKv->setText(v.value(QStringLiteral("EditNumKv")));
    date(DateEditPeriodS, "DateEditPeriodS");
    date(DateEditPeriodPo, "DateEditPeriodPo");
    const bool organisations = ActFields::isTicked(v.value(QStringLiteral("RadioButton1")));
    RadioButton1->setChecked(organisations);
    RadioButton2->setChecked(!organisations);
    RadioButton1Click();
}

void TFormKS2::reloadLists() {
    TModuleSQL *module = m_doc.module();
    if (!module)
        return;
    QScopedValueRollback<bool> showing(m_showing, true);
    refill(ComboBoxZakaz, CustomerRegister(*module).customers());
    refill(ComboBoxPodryad, ContractorRegister(*module).shortNames());
    fillObjects(ComboBoxZakaz->currentText());
}

void TFormKS2::fillObjects(const QString &customer) {
    TModuleSQL *module = m_doc.module();
    refill(ComboBoxObject, module && !customer.trimmed().isEmpty()
                               ? CustomerRegister(*module).objects(customer)
                               : QStringList());
}

void TFormKS2::closeEvent(QCloseEvent *event) {
    const QString problem = ActData::periodProblem(DateEditPeriodS->date(), DateEditPeriodPo->date());
    if (m_entered && !problem.isEmpty()) {
        dialogs().tell(Captions::warning, problem, Dialogs::Icon::Warning);
        PageControl->setCurrentIndex(0);
        DateEditPeriodS->setFocus();
        event->ignore();
        return;
    }
    if (!leave()) {
        event->ignore();
        return;
    }
    m_entered = false;
    QWidget::closeEvent(event);
}

void TFormKS2::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    // Turning to another window leaves the act data, so that what is done there finds it current.
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && m_entered && isVisible())
        leave();
}

// ----- Handlers

void TFormKS2::ComboBoxZakazChange() {
    if (m_showing || !m_doc.module())
        return;
    const QString customer = ComboBoxZakaz->currentText();
    const ActData::Contacts c =
        ActData::customerContacts(CustomerRegister(*m_doc.module()).customer(customer));
    ZEditAddress->setText(c.address);
    ZEditPhone->setText(c.phone);
    ZEditFax->setText(c.third);
    fillObjects(customer);
}

void TFormKS2::ComboBoxPodryadChange() {
    if (m_showing || !m_doc.module())
        return;
    ContractorData d = ContractorRegister(*m_doc.module()).byShortName(ComboBoxPodryad->currentText());
    d.email = ContractorRegister::email(m_store);
    const ActData::Contacts c = ActData::contractorContacts(d);
    PEditAddress->setText(c.address);
    PEditPhone->setText(c.phone);
    PEditFax->setText(c.third);
}

void TFormKS2::spdSdalClick() {
    EditSdal->setText(ComboBoxPodryad->currentText());
}

void TFormKS2::spdPrinalClick() {
    EditPrinal->setText(ComboBoxZakaz->currentText());
}

void TFormKS2::RadioButton1Click() {
    const bool organisations = RadioButton1->isChecked();
    RowOrganizations->setFixedHeight(organisations ? 32 : 0);
    RowOrganizations->setVisible(organisations);
    RowOwners->setFixedHeight(organisations ? 0 : 32);
    RowOwners->setVisible(!organisations);
}

void TFormKS2::EditSumSmetChange() {
    if (m_showing && EditSumSmet->text().trimmed().isEmpty())
        return; // the stored words stay with an empty value
    EditSummaWord->setText(ActData::valueInWords(EditSumSmet->text(), m_doc.header().currency));
}

// ----- The volumes

void TFormKS2::refreshVolumes() {
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    const QMap<QString, QString> typed = m_entered ? m_volumes.typed() : m_readTyped;
    EstimatePrint estimate = m_doc.print();
    // Rows the document has not numbered yet get their work ids (no edit of the document).
    const bool unnumbered =
        std::any_of(estimate.rows.cbegin(), estimate.rows.cend(), [](const EstimatePrint::Row &r) {
            return r.kind == EstimatePrint::Kind::Work && r.id.isEmpty();
        });
    if (unnumbered) {
        QString why;
        if (m_doc.writeWorkingDatabase(&why))
            estimate = m_doc.print();
    }
    const QVector<ActVolumes::Act> history = ActVolumes::history(db);
    m_volumes.load(ActVolumes::volumes(ActVolumes::estimateRows(estimate), history, typed));
    m_acts->setRowCount(0);
    for (const ActVolumes::Act &a : history) {
        QList<QStandardItem *> items{new QStandardItem(a.number),
                                     new QStandardItem(TextValues::shortDate(a.date)),
                                     new QStandardItem(a.periodFrom + QStringLiteral(" – ") + a.periodTo),
                                     new QStandardItem(a.grand.grouped())};
        items.last()->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_acts->appendRow(items);
    }
    spdDeleteLastAct->setEnabled(!history.isEmpty());
    showVolumesState();
}

void TFormKS2::showVolumesState() {
    const bool byVolumes = m_acts->rowCount() > 0 || !m_volumes.typed().isEmpty();
    QString text = byVolumes ? QStringLiteral("Акт включит количества столбца «В этом акте».")
                             : QStringLiteral("Актов по объёмам нет: акт включит всю смету. Чтобы закрыть "
                                              "часть работ, измените количества в столбце «В этом акте».");
    if (const int problems = m_volumes.problemCount(); problems > 0)
        text += QStringLiteral(" Ячейки, отмеченные красным (%1), не приняты: акт не составляется, пока они "
                               "не исправлены.")
                    .arg(problems);
    LabelVolumes->setText(text);
}

void TFormKS2::spdDeleteLastActClick() {
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    const QVector<ActVolumes::Act> history = ActVolumes::history(db);
    if (history.isEmpty())
        return;
    const ActVolumes::Act &last = history.constLast();
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить акт № %1 от %2? Его объёмы снова войдут в остаток.")
                          .arg(last.number, TextValues::shortDate(last.date))) != Dialogs::Answer::Yes)
        return;
    QString why;
    if (!ActVolumes::deleteLast(db, &why)) {
        dialogs().tell(Captions::error, QStringLiteral("Акт не удалён: %1").arg(why), Dialogs::Icon::Error);
        return;
    }
    m_doc.setChanged(true);
    refreshVolumes();
}
