#include "HeaderPart.h"

#include "EstimateDocument.h"
#include "HeaderPanel.h"
#include "customers/CustomerRegister.h"
#include "customers/CustomersPart.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"

#include <QAction>
#include <QComboBox>
#include <QLayout>
#include <QMainWindow>
#include <QMenu>
#include <QScopedValueRollback>

namespace {
const QString kCustomer = QStringLiteral("Customer");
const QString kObject = QStringLiteral("Object");
const QString kContractor = QStringLiteral("Contractor");
const QString kTitle = QStringLiteral("ComboBoxShablon");
const QString kDateNumbering = QStringLiteral("spdDateNumericSmetaWord");
} // namespace

void HeaderPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    QWidget *area = shell.area(ShellArea::Header);
    m_panel = new EstimateHeaderPanel(area);
    area->layout()->addWidget(m_panel);

    // The options of the customer folders and of the names in documents. The per-customer folder option
    // itself belongs to saving and may exist already.
    QMenu *folders = shell.menu(ShellMenu::Options)->addMenu(QStringLiteral("Заказчики и подрядчик"));
    folders->setObjectName(QStringLiteral("MenuCustomerOptions"));
    auto option = [&shell, folders](const QString &key, const QString &caption) {
        if (!shell.window()->findChild<QAction *>(key))
            shell.addOption(folders, key, caption);
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
    option(QStringLiteral("ZCheckBoxUridDan"),
           QStringLiteral("Добавлять к имени заказчика юридические данные"));
    option(QStringLiteral("PodryadCheckBoxUridDan"),
           QStringLiteral("Добавлять к имени подрядчика юридические данные"));

    MainSettings &settings = shell.settings();
    connect(m_panel, &EstimateHeaderPanel::edited, this, &HeaderPart::takeEdit);
    connect(m_panel, &EstimateHeaderPanel::customerOrObjectChosen, this, [this, &settings] {
        const EstimateHeader::Values v = m_panel->values();
        settings.set(kCustomer, v.customer);
        settings.set(kObject, v.object);
    });
    connect(m_panel->ComboBoxPodryad, &QComboBox::activated, this,
            [this, &settings] { settings.set(kContractor, m_panel->ComboBoxPodryad->currentText()); });
    connect(m_panel, &EstimateHeaderPanel::titleChanged, this,
            [&settings](const QString &title) { settings.set(kTitle, title); });
    connect(m_panel, &EstimateHeaderPanel::dateNumberingToggled, this,
            [&settings](bool on) { settings.setFlag(kDateNumbering, on); });
    connect(m_doc, &EstimateDocument::headerChanged, this, &HeaderPart::showDocument);
    if (auto *customers = shell.part<CustomersPart>()) {
        connect(customers, &CustomersPart::customersChanged, m_panel, &EstimateHeaderPanel::reloadCustomers);
        connect(customers, &CustomersPart::contractorsChanged, m_panel,
                &EstimateHeaderPanel::reloadContractors);
    }
}

void HeaderPart::start() {
    TModuleSQL *module = m_shell->module();
    if (!module)
        return;
    m_panel->attach(module);
    // The choices of the last session.
    const MainSettings &settings = m_shell->settings();
    EstimateHeader::Values v = m_doc->header();
    v.customer = settings.text(kCustomer);
    v.object = settings.text(kObject);
    const QString contractor = settings.text(kContractor);
    v.contractor = contractor.isEmpty() ? m_panel->values().contractor : contractor;
    // A remembered customer that has left the register is not brought back.
    if (!CustomerRegister(*module).exists(v.customer))
        v.customer = v.object = QString();
    v.title = settings.text(kTitle);
    m_doc->presetHeader(v);
    const SettingsStore *store = m_shell->settingsStore();
    const bool dayFirst =
        !store || store->flag(QStringLiteral("Param"), QStringLiteral("RadioButtonFormat1"), true);
    m_panel->setDateNumbering(settings.flag(kDateNumbering), !dayFirst);
    showDocument();
}

void HeaderPart::takeEdit() {
    QScopedValueRollback<bool> editing(m_editing, true);
    m_doc->setHeader(m_panel->values(m_doc->header()));
}

void HeaderPart::showDocument() {
    if (m_editing)
        return;
    QScopedValueRollback<bool> editing(m_editing, true);
    m_panel->setValues(m_doc->header());
    // Numbering by date writes the text number from the date: the document keeps what is shown.
    const EstimateHeader::Values shown = m_panel->values(m_doc->header());
    if (!(shown == m_doc->header()))
        m_doc->presetHeader(shown);
}

void HeaderPart::reloadLists() {
    m_panel->reloadCustomers();
    m_panel->reloadContractors();
}
