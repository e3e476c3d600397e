#pragma once
// The invoice in the main window: the menu item "Документ" → "Выписать счёт" (MAccount) opens the
// invoice window TFAccount for the open estimate; the register's "Выписать счёт" calls showInvoice.

#include "ui/MainShell.h"

#include <QPointer>

class TFAccount;

class InvoicePart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    // A document opened or made new: an invoice window of the previous one closes.
    void documentLoaded() override;

public slots:
    // Opens the invoice window for the open estimate (raises it when it is open already).
    void showInvoice();

public:
    // The open invoice window (null when none is open).
    TFAccount *invoiceWindow() const;

private:
    MainShell *m_shell = nullptr;
    QPointer<TFAccount> m_window;
};
