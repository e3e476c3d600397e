#include "CustomersPart.h"

#include "PodryadList_frame.h"
#include "ZakazAndObject_frame.h"
#include "estimate/EstimateDocument.h"
#include "storage/MainSettings.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>

void CustomersPart::attach(MainShell &shell) {
    m_shell = &shell;
    QMenu *document = shell.menu(ShellMenu::Document);
    document->addSeparator();
    QAction *customers = document->addAction(QStringLiteral("Заказчики и объекты"));
    customers->setObjectName(QStringLiteral("MZakazAndObject"));
    QAction *contractor = document->addAction(QStringLiteral("Данные подрядчика"));
    contractor->setObjectName(QStringLiteral("MPodryad"));
    connect(customers, &QAction::triggered, this, &CustomersPart::MZakazAndObjectClick);
    connect(contractor, &QAction::triggered, this, &CustomersPart::MPodryadClick);
}

OptionFlags CustomersPart::optionFlags() const {
    MainShell *shell = m_shell;
    return {[shell](const QString &key) { return shell->settings().flag(key); },
            [shell](const QString &key, bool on) {
                if (auto *a = shell->window()->findChild<QAction *>(key))
                    a->setChecked(on);
                else
                    shell->settings().setFlag(key, on);
            }};
}

void CustomersPart::MZakazAndObjectClick() {
    const EstimateHeader::Values &h = m_shell->document().header();
    showCustomers(h.customer, h.object);
}

void CustomersPart::showCustomers(const QString &customer, const QString &object) {
    if (!m_shell->module())
        return;
    if (!m_zakazWindow) {
        m_zakazWindow = new TZakazAndObject(*m_shell->module(), optionFlags(), m_shell->settingsStore(),
                                            m_shell->window());
        m_zakazWindow->setWindowFlag(Qt::Window);
        m_zakazWindow->setAttribute(Qt::WA_DeleteOnClose);
        m_zakazWindow->resize(900, 560);
        connect(m_zakazWindow, &TZakazAndObject::registerChanged, this, &CustomersPart::customersChanged);
    }
    m_zakazWindow->chooseCustomer(customer, object);
    m_zakazWindow->show();
    m_zakazWindow->raise();
    m_zakazWindow->activateWindow();
}

void CustomersPart::MPodryadClick() {
    showContractors(m_shell->document().header().contractor);
}

void CustomersPart::showContractors(const QString &shortName) {
    if (!m_shell->module())
        return;
    if (!m_podryadWindow) {
        m_podryadWindow =
            new TPodryadList(*m_shell->module(), optionFlags(), m_shell->settingsStore(), m_shell->window());
        m_podryadWindow->setWindowFlag(Qt::Window);
        m_podryadWindow->setAttribute(Qt::WA_DeleteOnClose);
        m_podryadWindow->resize(620, 640);
        connect(m_podryadWindow, &TPodryadList::contractorsChanged, this, &CustomersPart::contractorsChanged);
    }
    m_podryadWindow->chooseContractor(shortName);
    m_podryadWindow->show();
    m_podryadWindow->raise();
    m_podryadWindow->activateWindow();
}
