#include "FAccount_frame.h"

#include "AccountTable.h"
#include "InvoiceExport.h"
#include "InvoicePayment.h"
#include "InvoiceServicesModel.h"
#include "InvoiceSheet.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "estimate/EstimateDocument.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString kMarked = QStringLiteral("background-color: #ffc8c8;");

template <typename T> T *named(T *widget, const char *name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QPushButton *button(const char *name, const QString &text, QWidget *parent) {
    return named(new QPushButton(text, parent), name);
}

QString contractorName(const Fields &c, bool longName) {
    const QString l = c.value(QStringLiteral("longname")).trimmed();
    return longName && !l.isEmpty() ? l : c.value(QStringLiteral("shotname"));
}

} // namespace

TFAccount::TFAccount(const Context &context, QWidget *parent) : QDialog(parent), m_context(context) {
    setObjectName(QStringLiteral("FAccount"));
    setWindowTitle(QStringLiteral("Счет на оплату"));
    TModuleSQL *module = m_context.document->module();
    m_export = new InvoiceExport(*m_context.office, *module, this);
    connect(m_export, &InvoiceExport::status, this, &TFAccount::status);
    m_longNames = m_context.options.longName;
    m_invoice = InvoiceOpening::open(*m_context.document, m_context.options);
    m_model = new InvoiceServicesModel(m_invoice.form, this);
    build();
    fillParties();
    refresh(true);
    showDetails();
    resize(1000, 660);
}

TFAccount::~TFAccount() = default;

TFCustomPreview *TFAccount::preview() const {
    return m_export->preview();
}

// ----- Layout

void TFAccount::build() {
    auto *columns = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    left->addWidget(buildInvoiceBox());
    left->addWidget(buildServicesBox(), 1);
    auto *right = new QVBoxLayout;
    right->addWidget(buildVatBox());
    right->addWidget(buildDetailsBox());
    right->addStretch(1);
    columns->addLayout(left, 3);
    columns->addLayout(right, 2);

    auto *buttons = new QHBoxLayout;
    QPushButton *clear = button("spdClear", QStringLiteral("Очистить платёжную форму"), this);
    QPushButton *print = button("spdPrint", QStringLiteral("Печать"), this);
    QPushButton *pdf = button("spdPDF", QStringLiteral("Экспорт в PDF"), this);
    QPushButton *excel = button("spdExcel", QStringLiteral("Экспорт в Excel"), this);
    QPushButton *bind = button("spdBind", QStringLiteral("Привязать к смете"), this);
    QPushButton *close = button("spdClose", QStringLiteral("Закрыть"), this);
    print->setShortcut(QKeySequence::Print);
    bind->setToolTip(QStringLiteral("Сохранить счёт в файле сметы"));
    for (QPushButton *b : {clear, print, pdf, excel, bind, close})
        b->setAutoDefault(false);
    buttons->addWidget(clear);
    buttons->addStretch(1);
    for (QPushButton *b : {print, pdf, excel, bind, close})
        buttons->addWidget(b);
    connect(clear, &QPushButton::clicked, this, &TFAccount::spdClearClick);
    connect(print, &QPushButton::clicked, this, &TFAccount::spdPrintClick);
    connect(pdf, &QPushButton::clicked, this, &TFAccount::spdPDFClick);
    connect(excel, &QPushButton::clicked, this, &TFAccount::spdExcelClick);
    connect(bind, &QPushButton::clicked, this, &TFAccount::spdBindClick);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto *root = new QVBoxLayout(this);
    root->addLayout(columns, 1);
    root->addLayout(buttons);
}

QWidget *TFAccount::buildInvoiceBox() {
    auto *box = new QGroupBox(QStringLiteral("Счет на оплату"), this);
    auto *grid = new QGridLayout(box);
    m_number = named(new QLineEdit(box), "edNumber");
    m_date = named(new QDateEdit(box), "DateEdit");
    m_date->setCalendarPopup(true);
    m_date->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    m_amount = named(new QLineEdit(box), "edSumma");
    m_amount->setAlignment(Qt::AlignRight);
    auto *takeTotal = button("spdSumma", QStringLiteral("Записать сумму из сметы"), box);
    takeTotal->setAutoDefault(false);
    m_currency = named(new QComboBox(box), "EditValuta");
    m_currency->addItems(Invoice::currencies());
    m_words = named(new QLabel(box), "LabelSummaWord");
    m_words->setWordWrap(true);
    m_words->setStyleSheet(QStringLiteral("font-style: italic;"));

    m_seller = named(new QComboBox(box), "ComboBoxPodryad");
    m_sellerName = button("spdPodryadName", QStringLiteral("Имя подрядчика (для сметы/счёта)"), box);
    m_sellerName->setCheckable(true);
    m_sellerName->setAutoDefault(false);
    m_sellerName->setToolTip(QStringLiteral("Показывать в списке имена подрядчиков для договора и счёта"));
    m_sellerLegal =
        named(new QCheckBox(QStringLiteral("Добавлять к имени юридические данные подрядчика"), box),
              "CheckBoxUridPodryad");
    m_buyer = named(new QComboBox(box), "ComboBoxZakaz");
    m_buyerLegal = named(new QCheckBox(QStringLiteral("Добавлять к имени юридические данные заказчика"), box),
                         "CheckBoxUridZakaz");

    int r = 0;
    grid->addWidget(new QLabel(QStringLiteral("Номер"), box), r, 0);
    grid->addWidget(m_number, r, 1);
    grid->addWidget(new QLabel(QStringLiteral("Дата"), box), r, 2);
    grid->addWidget(m_date, r, 3);
    ++r;
    grid->addWidget(new QLabel(QStringLiteral("Сумма"), box), r, 0);
    grid->addWidget(m_amount, r, 1);
    grid->addWidget(takeTotal, r, 2, 1, 2);
    ++r;
    grid->addWidget(m_words, r, 1, 1, 3);
    ++r;
    grid->addWidget(new QLabel(QStringLiteral("Выбор валюты расчёта"), box), r, 0);
    grid->addWidget(m_currency, r, 1);
    ++r;
    grid->addWidget(new QLabel(QStringLiteral("Продавец (Подрядчик)"), box), r, 0);
    grid->addWidget(m_seller, r, 1);
    grid->addWidget(m_sellerName, r, 2, 1, 2);
    ++r;
    grid->addWidget(m_sellerLegal, r, 1, 1, 3);
    ++r;
    grid->addWidget(new QLabel(QStringLiteral("Покупатель (Заказчик)"), box), r, 0);
    grid->addWidget(m_buyer, r, 1, 1, 3);
    ++r;
    grid->addWidget(m_buyerLegal, r, 1, 1, 3);
    grid->setColumnStretch(1, 1);

    m_number->setText(m_invoice.number);
    m_date->setDate(m_invoice.date);
    m_currency->setCurrentIndex(qBound(0, m_invoice.currency, 4));
    m_sellerName->setChecked(m_longNames);
    m_sellerLegal->setChecked(m_invoice.seller.withLegal);
    m_buyerLegal->setChecked(m_invoice.buyer.withLegal);

    connect(m_number, &QLineEdit::textEdited, this, [this](const QString &t) {
        m_invoice.number = t;
        refresh(false);
    });
    connect(m_date, &QDateEdit::dateChanged, this, [this](const QDate &d) {
        m_invoice.date = d;
        refresh(false);
    });
    connect(m_amount, &QLineEdit::textEdited, this, &TFAccount::edSummaChange);
    connect(takeTotal, &QPushButton::clicked, this, &TFAccount::spdSummaClick);
    connect(m_currency, &QComboBox::currentIndexChanged, this, [this](int i) {
        m_invoice.currency = qMax(0, i);
        refresh(false);
    });
    connect(m_sellerName, &QPushButton::clicked, this, &TFAccount::spdPodryadNameClick);
    connect(m_seller, &QComboBox::currentIndexChanged, this, &TFAccount::ComboBoxPodryadChange);
    connect(m_buyer, &QComboBox::currentIndexChanged, this, &TFAccount::ComboBoxZakazChange);
    connect(m_sellerLegal, &QCheckBox::toggled, this, [this](bool on) { m_invoice.seller.withLegal = on; });
    connect(m_buyerLegal, &QCheckBox::toggled, this, [this](bool on) { m_invoice.buyer.withLegal = on; });
    return box;
}

QWidget *TFAccount::buildServicesBox() {
    auto *box = new QGroupBox(QStringLiteral("Услуги"), this);
    auto *layout = new QVBoxLayout(box);
    m_grid = named(new QTableView(box), "StringGridUslug");
    m_grid->setModel(m_model);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setSectionResizeMode(InvoiceServicesModel::Number,
                                                     QHeaderView::ResizeToContents);
    m_grid->horizontalHeader()->setSectionResizeMode(InvoiceServicesModel::Name, QHeaderView::Stretch);
    m_grid->setColumnWidth(InvoiceServicesModel::Price, 120);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    auto *add = button("spdAddUslug", QStringLiteral("Добавить услугу"), box);
    auto *remove = button("spdDelUslug", QStringLiteral("Удалить услугу"), box);
    add->setAutoDefault(false);
    remove->setAutoDefault(false);
    add->setToolTip(QStringLiteral("Добавить услугу (Ins)"));
    remove->setToolTip(QStringLiteral("Удалить выделенную услугу (Ctrl+Del)"));
    new QShortcut(QKeySequence(Qt::Key_Insert), m_grid, [this] { spdAddUslugClick(); });
    new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Delete), m_grid, [this] { spdDelUslugClick(); });

    m_oneLine = named(new QCheckBox(QStringLiteral("Услуга одной строкой  (сметная стоимость)"), box),
                      "ToggleSwitch1");
    m_works = named(new QCheckBox(QStringLiteral("Работа"), box), "CheckBoxWork");
    m_materials = named(new QCheckBox(QStringLiteral("Материалы"), box), "CheckBoxMat");
    m_total = named(new QLineEdit(box), "EditItogo");
    m_total->setReadOnly(true);
    m_total->setAlignment(Qt::AlignRight);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch(1);
    buttons->addWidget(new QLabel(QStringLiteral("Итого"), box));
    buttons->addWidget(m_total);
    auto *switches = new QHBoxLayout;
    switches->addWidget(m_oneLine);
    switches->addWidget(m_works);
    switches->addWidget(m_materials);
    switches->addStretch(1);
    layout->addLayout(switches);
    layout->addWidget(m_grid, 1);
    layout->addLayout(buttons);

    connect(add, &QPushButton::clicked, this, &TFAccount::spdAddUslugClick);
    connect(remove, &QPushButton::clicked, this, &TFAccount::spdDelUslugClick);
    for (QCheckBox *c : {m_oneLine, m_works, m_materials})
        connect(c, &QCheckBox::clicked, this, &TFAccount::switchesChanged);
    connect(m_model, &InvoiceServicesModel::edited, this, &TFAccount::servicesEdited);
    return box;
}

QWidget *TFAccount::buildVatBox() {
    auto *box = new QGroupBox(QStringLiteral("НДС"), this);
    auto *layout = new QGridLayout(box);
    m_vat = named(new QCheckBox(QStringLiteral("НДС"), box), "CheckBoxNDS");
    m_rate = named(new QSpinBox(box), "SpinEditNDS");
    m_rate->setRange(0, 100);
    auto *group = named(new QGroupBox(box), "RadioGroupNDS");
    auto *groupLayout = new QVBoxLayout(group);
    m_vatAdded = named(new QRadioButton(QStringLiteral("Сумма + НДС"), group), "rbtSumma");
    m_vatIncluded = named(new QRadioButton(QStringLiteral("НДС в том числе"), group), "rbtNDS");
    groupLayout->addWidget(m_vatAdded);
    groupLayout->addWidget(m_vatIncluded);
    auto *choice = new QButtonGroup(group);
    choice->addButton(m_vatAdded);
    choice->addButton(m_vatIncluded);
    m_vatAmount = named(new QLabel(box), "LabelNDS");
    layout->addWidget(m_vat, 0, 0);
    layout->addWidget(m_rate, 0, 1);
    layout->addWidget(new QLabel(QStringLiteral(" % "), box), 0, 2);
    layout->addWidget(group, 1, 0, 1, 4);
    layout->addWidget(m_vatAmount, 2, 0, 1, 4);
    layout->setColumnStretch(3, 1);

    m_vat->setChecked(m_invoice.form.vatOn());
    m_rate->setValue(m_invoice.form.vatRate());
    (m_invoice.form.vatChoice() == InvoiceForm::VatChoice::Added ? m_vatAdded : m_vatIncluded)
        ->setChecked(true);
    connect(m_vat, &QCheckBox::clicked, this, &TFAccount::vatChanged);
    connect(m_rate, &QSpinBox::valueChanged, this, &TFAccount::vatChanged);
    connect(m_vatAdded, &QRadioButton::clicked, this, &TFAccount::vatChanged);
    connect(m_vatIncluded, &QRadioButton::clicked, this, &TFAccount::vatChanged);
    return box;
}

QWidget *TFAccount::buildDetailsBox() {
    auto *box = new QGroupBox(QStringLiteral("Реквизиты продавца"), this);
    auto *form = new QFormLayout(box);
    for (const Invoice::Detail &d : Invoice::details()) {
        auto *edit = new QLineEdit(box);
        edit->setObjectName(QStringLiteral("Edit_") + d.key);
        form->addRow(d.caption, edit);
        m_details << edit;
        const QString key = d.key;
        connect(edit, &QLineEdit::textEdited, this, [this, key](const QString &t) {
            m_invoice.sellerDetails.insert(key, t);
            refresh(false);
        });
    }
    m_qr = named(new QCheckBox(QStringLiteral("QR-код для оплаты"), box), "CheckBoxQR");
    m_qr->setChecked(m_invoice.qr);
    m_qr->setToolTip(
        QStringLiteral("Код ГОСТ Р 56042-2014: банковское приложение покупателя заполнит платёж"));
    m_qrNote = named(new QLabel(box), "LabelQR");
    m_qrNote->setWordWrap(true);
    form->addRow(m_qr);
    form->addRow(m_qrNote);
    connect(m_qr, &QCheckBox::toggled, this, [this](bool on) {
        m_invoice.qr = on;
        if (m_context.store)
            m_context.store->setFlag(InvoiceOpening::kSection, InvoiceOpening::kQrKey, on);
        refresh(false);
    });
    return box;
}

// ----- Parties

void TFAccount::fillSellerList() {
    const QSignalBlocker block(m_seller);
    const int current = m_seller->currentIndex();
    m_seller->clear();
    for (const Fields &c : m_contractors)
        m_seller->addItem(contractorName(c, m_longNames));
    // A contractor the register does not know stays as the document names it.
    if (m_seller->findText(m_invoice.seller.name) < 0 && current < 0 && !m_invoice.seller.name.isEmpty())
        m_seller->addItem(m_invoice.seller.name);
    if (current >= 0 && current < m_seller->count())
        m_seller->setCurrentIndex(current);
    else
        m_seller->setCurrentIndex(m_seller->findText(m_invoice.seller.name));
}

void TFAccount::fillParties() {
    TModuleSQL *module = m_context.document->module();
    m_contractors = ContractorRegister(*module).contractors();
    // The list starts on the estimate's contractor (a short name), shown by the name the list uses.
    int chosen = -1;
    const QString estimateContractor = m_context.document->header().contractor;
    for (int i = 0; i < m_contractors.size(); ++i)
        if (m_contractors.at(i).value(QStringLiteral("shotname")) == estimateContractor)
            chosen = i;
    if (chosen >= 0)
        m_invoice.seller.name = contractorName(m_contractors.at(chosen), m_longNames);
    fillSellerList();

    const QSignalBlocker block(m_buyer);
    m_buyer->clear();
    m_buyer->addItems(CustomerRegister(*module).customers());
    if (m_buyer->findText(m_invoice.buyer.name) < 0 && !m_invoice.buyer.name.isEmpty())
        m_buyer->addItem(m_invoice.buyer.name);
    m_buyer->setCurrentIndex(m_buyer->findText(m_invoice.buyer.name));
}

void TFAccount::ComboBoxPodryadChange() {
    m_invoice.seller.name = m_seller->currentText();
    ContractorRegister contractors(*m_context.document->module());
    const ContractorData d = InvoiceOpening::findSeller(contractors, m_invoice.seller.name);
    m_invoice.seller.legalLine = d.requisites.value(QStringLiteral("note"));
    for (const Invoice::Detail &detail : Invoice::details())
        m_invoice.sellerDetails.insert(detail.key, d.requisites.value(detail.key));
    showDetails();
    refresh(false);
}

void TFAccount::ComboBoxZakazChange() {
    m_invoice.buyer.name = m_buyer->currentText();
    CustomerData d = CustomerRegister(*m_context.document->module()).customer(m_invoice.buyer.name);
    if (!d.found && m_invoice.buyer.name == m_context.document->header().customer)
        d = m_context.document->customerData();
    m_invoice.buyer.legalLine = d.customer.value(QStringLiteral("note"));
}

void TFAccount::spdPodryadNameClick() {
    m_longNames = m_sellerName->isChecked();
    if (m_context.store)
        m_context.store->setFlag(InvoiceOpening::kSection, InvoiceOpening::kLongNameKey, m_longNames);
    fillSellerList();
    m_invoice.seller.name = m_seller->currentText();
    refresh(false);
}

void TFAccount::showDetails() {
    for (int i = 0; i < m_details.size(); ++i)
        m_details.at(i)->setText(m_invoice.sellerDetails.value(Invoice::details().at(i).key));
}

// ----- Services and amounts

void TFAccount::refresh(bool servicesChanged) {
    const InvoiceForm &f = m_invoice.form;
    if (servicesChanged)
        m_model->reload();
    if (m_amount->text() != f.amountText())
        m_amount->setText(f.amountText());
    const MoneyResult amount = f.amount();
    m_amount->setStyleSheet(amount.ok() ? QString() : kMarked);
    m_amount->setToolTip(
        amount.ok()
            ? QString()
            : QStringLiteral("Сумма «%1» %2").arg(f.amountText(), numberProblemText(amount.problem())));
    m_words->setText(m_invoice.amountInWords());
    m_total->setText(f.servicesTotal().text());
    const int bad = static_cast<int>(f.badPrices().size());
    m_total->setToolTip(bad ? QStringLiteral("Цены с ошибками (%1) не вошли в итог").arg(bad) : QString());
    m_total->setStyleSheet(bad || !f.servicesTotal().ok() ? kMarked : QString());
    m_vatAmount->setText(InvoiceSheet::vatLabel(m_invoice) + u' ' +
                         (f.vatOn() ? f.vat().grouped() : QStringLiteral("—")));
    {
        const QSignalBlocker b1(m_oneLine), b2(m_works), b3(m_materials);
        m_oneLine->setChecked(f.oneLine());
        m_works->setChecked(f.works());
        m_materials->setChecked(f.materials());
        m_works->setEnabled(!f.oneLine());
        m_materials->setEnabled(!f.oneLine());
    }
    const QString obstacle =
        InvoicePayment::obstacle(InvoiceSheet::payee(m_invoice), InvoiceSheet::payment(m_invoice));
    m_qrNote->setText(m_invoice.qr ? obstacle : QString());
}

void TFAccount::edSummaChange(const QString &text) {
    m_invoice.form.setAmountText(text);
    refresh(false);
}

void TFAccount::spdSummaClick() {
    m_invoice.form.takeEstimateTotal();
    refresh(false);
}

void TFAccount::servicesEdited() {
    QString error;
    if (!AccountTable::writeServices(m_context.document->module()->database(Db::Smeta),
                                     m_invoice.form.services(), &error))
        reportFailure(QStringLiteral("Услуги счёта не записаны в смету"), error);
    refresh(false);
}

void TFAccount::spdAddUslugClick() {
    m_invoice.form.addService();
    refresh(true);
    const QModelIndex cell = m_model->index(m_model->rowCount() - 1, InvoiceServicesModel::Name);
    m_grid->setCurrentIndex(cell);
    m_grid->setFocus();
    m_grid->edit(cell);
    servicesEdited();
}

void TFAccount::spdDelUslugClick() {
    const QModelIndex current = m_grid->currentIndex();
    if (!current.isValid())
        return;
    const int row = current.row();
    m_invoice.form.removeService(row);
    refresh(true);
    if (m_model->rowCount() > 0)
        m_grid->setCurrentIndex(
            m_model->index(qMin(row, m_model->rowCount() - 1), InvoiceServicesModel::Name));
    servicesEdited();
}

void TFAccount::storeSwitch(const QString &name, bool on) {
    QString error;
    if (!AccountTable::setValue(m_context.document->module()->database(Db::Smeta), name,
                                on ? QStringLiteral("1") : QStringLiteral("0"), &error))
        reportFailure(QStringLiteral("Состояние переключателя не записано в смету"), error);
}

void TFAccount::switchesChanged() {
    InvoiceForm &f = m_invoice.form;
    const bool oneLine = m_oneLine->isChecked();
    if (oneLine != f.oneLine()) {
        storeSwitch(QStringLiteral("ToggleSwitch1"), oneLine);
        if (m_context.store)
            m_context.store->setFlag(InvoiceOpening::kSection, InvoiceOpening::kOneLineKey, oneLine);
    }
    if (m_works->isChecked() != f.works())
        storeSwitch(QStringLiteral("CheckBoxWork"), m_works->isChecked());
    if (m_materials->isChecked() != f.materials())
        storeSwitch(QStringLiteral("CheckBoxMat"), m_materials->isChecked());
    f.setSwitches(oneLine, m_works->isChecked(), m_materials->isChecked());
    refresh(true);
    servicesEdited();
}

void TFAccount::vatChanged() {
    InvoiceForm &f = m_invoice.form;
    f.presetVat(m_vat->isChecked(), m_rate->value(),
                m_vatAdded->isChecked() ? InvoiceForm::VatChoice::Added : InvoiceForm::VatChoice::Included);
    f.applyVat();
    refresh(false);
}

void TFAccount::spdClearClick() {
    if (dialogs().ask(QStringLiteral("Очистка"), QStringLiteral("Очистить платёжную форму?")) !=
        Dialogs::Answer::Yes)
        return;
    m_invoice.form.clear();
    refresh(true);
    servicesEdited();
}

// ----- Stored invoice and output

void TFAccount::reportFailure(const QString &what, const QString &error) {
    dialogs().tell(Captions::error, what + QStringLiteral(":\n") + error, Dialogs::Icon::Error);
}

bool TFAccount::storeInvoice() {
    QString error;
    if (AccountTable::rebuild(m_context.document->module()->database(Db::Smeta), m_invoice.items(),
                              m_invoice.form.services(), &error))
        return true;
    reportFailure(QStringLiteral("Счёт не записан в смету"), error);
    return false;
}

void TFAccount::spdBindClick() {
    if (!storeInvoice())
        return;
    m_context.document->setChanged(true);
    emit status(QStringLiteral("Счёт № %1 привязан к смете; он сохранится вместе с файлом сметы.")
                    .arg(m_invoice.number));
}

void TFAccount::runOutput(InvoiceExport::Kind kind) {
    const QString problem =
        TemplateFile::check(OfficeTemplates::path(m_context.document->dataFolder(), InvoiceSheet::kTemplate));
    if (!problem.isEmpty()) {
        dialogs().tell(Captions::error, problem, Dialogs::Icon::Error);
        return;
    }
    if (!storeInvoice())
        return;
    m_export->run(kind, m_invoice, m_context.document->folder());
}

void TFAccount::spdPrintClick() {
    runOutput(InvoiceExport::Kind::Print);
}

void TFAccount::spdPDFClick() {
    runOutput(InvoiceExport::Kind::Pdf);
}

void TFAccount::spdExcelClick() {
    runOutput(InvoiceExport::Kind::Excel);
}
