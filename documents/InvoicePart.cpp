#include "InvoicePart.h"

#include "FAccount_frame.h"
#include "estimate/OutputPart.h"
#include "storage/MainSettings.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>

void InvoicePart::attach(MainShell &shell) {
    m_shell = &shell;
    QMenu *document = shell.menu(ShellMenu::Document);
    document->addSeparator();
    QAction *invoice = document->addAction(QStringLiteral("Выписать счёт"));
    invoice->setObjectName(QStringLiteral("MAccount"));
    connect(invoice, &QAction::triggered, this, &InvoicePart::showInvoice);
}

TFAccount *InvoicePart::invoiceWindow() const {
    return m_window;
}

void InvoicePart::documentLoaded() {
    if (m_window)
        m_window->close();
}

void InvoicePart::showInvoice() {
    if (!m_shell || !m_shell->module())
        return;
    if (m_window) {
        m_window->raise();
        m_window->activateWindow();
        return;
    }
    OutputPart *output = m_shell->part<OutputPart>();
    if (!output)
        return;
    TFAccount::Context context;
    context.document = &m_shell->document();
    context.store = m_shell->settingsStore();
    context.options = InvoiceOpening::readOptions(&m_shell->settings(), m_shell->settingsStore());
    context.office = &output->office();
    m_window = new TFAccount(context, m_shell->window());
    m_window->setAttribute(Qt::WA_DeleteOnClose);
    m_window->setWindowModality(Qt::WindowModal);
    MainShell *shell = m_shell;
    connect(m_window, &TFAccount::status, this, [shell](const QString &text) { shell->showStatus(text); });
    m_window->show();
}
