// The estimate's header: customer, object, contractor, number, date, title; and the windows of the
// customer and contractor registers.

#include "TForm1.h"

#include "ui/Dialogs.h"
#include "storage/SettingsStore.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "estimate/EstimateHeader.h"
#include "estimate/HeaderPanel.h"
#include "customers/OptionFlags.h"
#include "customers/PodryadList_frame.h"
#include "customers/ZakazAndObject_frame.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QComboBox>
#include <QDate>
#include <QDateEdit>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QSpinBox>

namespace {
const QString kCustomer = QStringLiteral("Customer");
const QString kObject = QStringLiteral("Object");
const QString kContractor = QStringLiteral("Contractor");
const QString kTitle = QStringLiteral("ComboBoxShablon");
const QString kDateNumbering = QStringLiteral("spdDateNumericSmetaWord");
const QString kCustomerLegal = QStringLiteral("ZCheckBoxUridDan");
const QString kContractorLegal = QStringLiteral("PodryadCheckBoxUridDan");

QString withLegalData(const QString &name, bool on, const QString &legal) {
    if (!on || name.isEmpty() || legal.trimmed().isEmpty())
        return name;
    return name + QStringLiteral(", ") + legal.trimmed();
}
} // namespace

void TForm1::setupHeader() {
    m_header = new EstimateHeaderPanel(PanelHeader);
    PanelHeader->layout()->addWidget(m_header);
    ComboBoxZakaz = m_header->ComboBoxZakaz;
    ComboBoxObject = m_header->ComboBoxObject;
    ComboBoxPodryad = m_header->ComboBoxPodryad;
    ComboBoxShablon = m_header->ComboBoxShablon;
    DateSmeta = m_header->DateSmeta;
    NumericSmeta = m_header->NumericSmeta;
    NumericSmetaWord = m_header->NumericSmetaWord;
    EditNameWork = m_header->EditNameWork;

    MenuDocument->addSeparator();
    MZakazAndObject = MenuDocument->addAction(QStringLiteral("Заказчики и объекты"));
    MZakazAndObject->setObjectName(QStringLiteral("MZakazAndObject"));
    MPodryad = MenuDocument->addAction(QStringLiteral("Данные подрядчика"));
    MPodryad->setObjectName(QStringLiteral("MPodryad"));
    connect(MZakazAndObject, &QAction::triggered, this, &TForm1::MZakazAndObjectClick);
    connect(MPodryad, &QAction::triggered, this, &TForm1::MPodryadClick);

    // The options of the customer folders and of the names in documents. The per-customer folder option
    // itself belongs to saving and may exist already.
    QMenu *folders = MenuOptions->addMenu(QStringLiteral("Заказчики и подрядчик"));
    folders->setObjectName(QStringLiteral("MenuCustomerOptions"));
    auto option = [this, folders](const QString &key, const QString &caption) {
        if (!findChild<QAction *>(key))
            addOption(folders, key, caption);
    };
    option(QStringLiteral("CheckBossDir"), QStringLiteral("Создавать папки для каждого заказчика"));
    option(QStringLiteral("CheckBoxDetailAddress"), QStringLiteral("Детализиция адреса для создания папок"));
    option(QStringLiteral("CheckBoxRegion"), QStringLiteral("Папки: область"));
    option(QStringLiteral("CheckBoxArea"), QStringLiteral("Папки: район"));
    option(QStringLiteral("CheckBoxCity"), QStringLiteral("Папки: город"));
    option(QStringLiteral("CheckBoxStreet"), QStringLiteral("Папки: улица"));
    option(QStringLiteral("CheckBoxHouse"), QStringLiteral("Папки: номер дома"));
    option(QStringLiteral("CheckBoxApartment"), QStringLiteral("Папки: номер квартиры"));
    folders->addSeparator();
    option(kCustomerLegal, QStringLiteral("Добавлять к имени заказчика юридические данные"));
    option(kContractorLegal, QStringLiteral("Добавлять к имени подрядчика юридические данные"));

    connect(m_header, &EstimateHeaderPanel::edited, this, &TForm1::EnableSave);
    connect(m_header, &EstimateHeaderPanel::customerOrObjectChosen, this, [this] {
        m_settings.set(kCustomer, currentCustomer());
        m_settings.set(kObject, currentObject());
    });
    connect(ComboBoxPodryad, &QComboBox::activated, this,
            [this] { m_settings.set(kContractor, currentContractor()); });
    connect(m_header, &EstimateHeaderPanel::titleChanged, this,
            [this](const QString &title) { m_settings.set(kTitle, title); });
    connect(m_header, &EstimateHeaderPanel::dateNumberingToggled, this,
            [this](bool on) { m_settings.setFlag(kDateNumbering, on); });
    connect(this, &TForm1::customersChanged, this, [this] { m_header->reloadCustomers(); });
    connect(this, &TForm1::contractorsChanged, this, [this] { m_header->reloadContractors(); });
    connect(this, &TForm1::documentLoaded, this, &TForm1::headerDocumentLoaded);
}

bool TForm1::attachHeader() {
    if (m_header->isAttached())
        return true;
    if (!m_module)
        return false;
    m_header->attach(m_module);
    // The choices of the last session.
    EstimateHeader::Values v = m_header->values();
    v.customer = m_settings.text(kCustomer);
    v.object = m_settings.text(kObject);
    const QString contractor = m_settings.text(kContractor);
    if (!contractor.isEmpty())
        v.contractor = contractor;
    // A remembered customer that has left the register is not brought back.
    if (!CustomerRegister(*m_module).exists(v.customer))
        v.customer = v.object = QString();
    v.title = m_settings.text(kTitle);
    m_header->setValues(v);
    const bool dayFirst =
        !m_settingsStore ||
        m_settingsStore->flag(QStringLiteral("Param"), QStringLiteral("RadioButtonFormat1"), true);
    m_header->setDateNumbering(m_settings.flag(kDateNumbering), !dayFirst);
    return true;
}

void TForm1::headerDocumentLoaded() {
    if (!attachHeader() || !m_fileName.isEmpty())
        return;
    // A new document keeps the parties and starts with today's date and a fresh number.
    EstimateHeader::Values v = m_header->values();
    v.date = QDate::currentDate();
    v.number = 1;
    v.numberWord.clear();
    v.nameWork.clear();
    v.title = m_settings.text(kTitle);
    m_header->setValues(v);
}

QList<QPair<QString, QString>> TForm1::headerParameters() const {
    EstimateHeader::Values defaults;
    defaults.currency = EditValuta->currentIndex();
    return EstimateHeader::toParameters(m_header->values(defaults));
}

void TForm1::applyHeaderParameters(const QMap<QString, QString> &params) {
    attachHeader();
    EstimateHeader::Values defaults;
    defaults.date = QDate::currentDate();
    defaults.currency = EditValuta->currentIndex();
    defaults.title = m_settings.text(kTitle);
    defaults.contractor = currentContractor();
    // An older document names its parties only in its copies.
    if (m_module && !params.contains(DocParam::customer)) {
        QSqlDatabase doc = m_module->database(Db::Smeta);
        defaults.customer = EstimateHeader::customerCopy(doc).customer.value(QStringLiteral("fio"));
        defaults.object = EstimateHeader::objectCopy(doc).value(QStringLiteral("object"));
    }
    const EstimateHeader::Values v = EstimateHeader::fromParameters(params, defaults);
    m_header->setValues(v);
    if (v.currency >= 0 && v.currency < EditValuta->count())
        EditValuta->setCurrentIndex(v.currency);
}

void TForm1::writeHeaderCopies(QSqlDatabase db) const {
    if (!m_module)
        return;
    CustomerRegister customers(*m_module);
    ContractorRegister contractors(*m_module);
    QString error;
    if (!EstimateHeader::writeCopies(db, customers, contractors, m_header->values(), &error))
        dialogs().tell(Captions::warning,
                       QStringLiteral("Данные заказчика и подрядчика не записаны в документ: %1").arg(error),
                       Dialogs::Icon::Warning);
}

QString TForm1::currentCustomer() const {
    return ComboBoxZakaz->currentText();
}
QString TForm1::currentObject() const {
    return ComboBoxObject->currentText();
}
QString TForm1::currentContractor() const {
    return ComboBoxPodryad->currentText();
}
QDate TForm1::estimateDate() const {
    return DateSmeta->date();
}
QString TForm1::estimateNumber() const {
    return QString::number(NumericSmeta->value());
}
QString TForm1::estimateNumberWord() const {
    return NumericSmetaWord->text();
}
QString TForm1::estimateTitle() const {
    return ComboBoxShablon->currentText();
}
QString TForm1::nameOfWorks() const {
    return EditNameWork->text();
}
bool TForm1::dateNumbering() const {
    return m_header->dateNumbering();
}

CustomerData TForm1::customerData() const {
    const QString name = currentCustomer();
    if (!m_module || name.isEmpty())
        return {};
    CustomerData d = CustomerRegister(*m_module).customer(name);
    if (d.found)
        return d;
    const CustomerData copy = EstimateHeader::customerCopy(m_module->database(Db::Smeta));
    return copy.customer.value(QStringLiteral("fio")) == name ? copy : CustomerData{};
}

ContractorData TForm1::contractorData() const {
    const QString name = currentContractor();
    if (!m_module || name.isEmpty())
        return {};
    ContractorData d = ContractorRegister(*m_module).forEstimateText(name);
    if (!d.found) {
        // Known only from the document: its legal details as they were saved with it.
        d.contractor.insert(QStringLiteral("shotname"), name);
        d.requisites = EstimateHeader::contractorRequisitesCopy(m_module->database(Db::Smeta));
    }
    d.email = ContractorRegister::email(m_settingsStore.get());
    return d;
}

QString TForm1::customerForEstimate() const {
    const bool on = m_settings.flag(kCustomerLegal);
    return withLegalData(currentCustomer(), on,
                         on ? customerData().customer.value(QStringLiteral("note")) : QString());
}

QString TForm1::contractorForEstimate() const {
    const bool on = m_settings.flag(kContractorLegal);
    return withLegalData(currentContractor(), on,
                         on ? contractorData().requisites.value(QStringLiteral("note")) : QString());
}

void TForm1::reloadHeaderLists() {
    m_header->reloadCustomers();
    m_header->reloadContractors();
}

OptionFlags TForm1::optionFlags() {
    // The windows' check boxes and the menu options are the same settings.
    return {[this](const QString &key) { return m_settings.flag(key); },
            [this](const QString &key, bool on) {
                if (QAction *a = findChild<QAction *>(key))
                    a->setChecked(on);
                else
                    m_settings.setFlag(key, on);
            }};
}

void TForm1::MZakazAndObjectClick() {
    if (!m_module)
        return;
    if (!m_zakazWindow) {
        m_zakazWindow = new TZakazAndObject(*m_module, optionFlags(), m_settingsStore.get(), this);
        m_zakazWindow->setWindowFlag(Qt::Window);
        m_zakazWindow->setAttribute(Qt::WA_DeleteOnClose);
        m_zakazWindow->resize(900, 560);
        connect(m_zakazWindow, &TZakazAndObject::registerChanged, this, &TForm1::customersChanged);
    }
    m_zakazWindow->chooseCustomer(currentCustomer(), currentObject());
    m_zakazWindow->show();
    m_zakazWindow->raise();
    m_zakazWindow->activateWindow();
}

void TForm1::MPodryadClick() {
    if (!m_module)
        return;
    if (!m_podryadWindow) {
        m_podryadWindow = new TPodryadList(*m_module, optionFlags(), m_settingsStore.get(), this);
        m_podryadWindow->setWindowFlag(Qt::Window);
        m_podryadWindow->setAttribute(Qt::WA_DeleteOnClose);
        m_podryadWindow->resize(620, 640);
        connect(m_podryadWindow, &TPodryadList::contractorsChanged, this, &TForm1::contractorsChanged);
    }
    m_podryadWindow->chooseContractor(currentContractor());
    m_podryadWindow->show();
    m_podryadWindow->raise();
    m_podryadWindow->activateWindow();
}
