#include "FormKS2_frame.h"

#include "ActData.h"
#include "ActVolumesPage.h"
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
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QTabWidget>
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
    VolumesPage = new ActVolumesPage(m_doc, this);
    PageControl->addTab(VolumesPage, QStringLiteral("Объёмы акта"));
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

    // The two parties: name (with the button of their register), address, phones and a third contact.
    auto party = [page](const char *group, const QString &title, QComboBox *&combo, const char *comboName,
                        QPushButton *&button, const char *buttonName, const QString &caption,
                        const QVector<QPair<QLineEdit **, QPair<const char *, QString>>> &edits) {
        auto *box = named(new QGroupBox(title, page), group);
        auto *g = new QGridLayout(box);
        combo = editableCombo(comboName, box);
        button = named(new QPushButton(caption, box), buttonName);
        g->addWidget(label(QStringLiteral("ФИО (наименование)"), combo->objectName(), box), 0, 0);
        g->addWidget(combo, 0, 1);
        g->addWidget(button, 0, 2);
        int row = 1;
        for (const auto &e : edits) {
            *e.first = named(new QLineEdit(box), e.second.first);
            g->addWidget(label(e.second.second, (*e.first)->objectName(), box), row, 0);
            g->addWidget(*e.first, row++, 1, 1, 2);
        }
        return box;
    };
    QGroupBox *zakaz = party("GroupZakaz", QStringLiteral("Заказчик"), ComboBoxZakaz, "ComboBoxZakaz",
                             btnZakazAndObject, "btnZakazAndObject", QStringLiteral("Заказчики и объекты"),
                             {{&ZEditAddress, {"ZEditAddress", QStringLiteral("Адрес")}},
                              {&ZEditPhone, {"ZEditPhone", QStringLiteral("Телефон(ы)")}},
                              {&ZEditFax, {"ZEditFax", QStringLiteral("Факс")}}});
    QGroupBox *podryad =
        party("GroupPodryad", QStringLiteral("Подрядчик"), ComboBoxPodryad, "ComboBoxPodryad", btnPodryad,
              "btnPodryad", QStringLiteral("Данные подрядчика"),
              {{&PEditAddress, {"PEditAddress", QStringLiteral("Адрес")}},
               {&PEditPhone, {"PEditPhone", QStringLiteral("Телефон(ы)")}},
               {&PEditFax, {"PEditFax", QStringLiteral("E-mail")}}});

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
    VolumesPage->enter();
    m_entered = true;
}

bool TFormKS2::leave() {
    if (!m_entered || m_leaving)
        return true;
    QScopedValueRollback<bool> leaving(m_leaving, true);
    const QMap<QString, QString> now = values();
    TModuleSQL *module = m_doc.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    QString why;
    bool volumesChanged = false;
    const bool written =
        db.isOpen() && ActFields::write(db, now, &why) && VolumesPage->leave(&volumesChanged, &why);
    if (!written) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Данные акта не записаны в смету: %1")
                           .arg(db.isOpen() ? why : (module ? module->failure(Db::Smeta) : QString())),
                       Dialogs::Icon::Error);
        return false;
    }
    if (now != m_read || volumesChanged)
        m_doc.setChanged(true);
    m_read = now;
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
    if (event->type() != QEvent::ActivationChange || !m_entered || !isVisible())
        return;
    // Turning to another window leaves the act data, so that what is done there finds it current;
    // coming back shows the estimate's rows as they are now.
    if (!isActiveWindow())
        leave();
    else if (PageControl->currentIndex() == 1 && !m_leaving)
        refreshVolumes();
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

void TFormKS2::refreshVolumes() {
    VolumesPage->refresh();
}

ActVolumesModel &TFormKS2::volumes() {
    return VolumesPage->model();
}
