#pragma once
// The contract in the main window: "Составить договор" (menu Документ) opens the contract page beside
// the estimate and fills the contract for the open estimate. The page is made the first time it is
// asked for.

#include "ui/MainShell.h"

class OfficeService;
class TContract;

class ContractPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void documentLoaded() override;
    bool settleBeforeClose() override;

    // The contract page; null until it was first shown.
    TContract *contract() const { return m_page; }

public slots:
    // Shows the contract page and makes the contract of the open estimate from the template in force.
    void showContract();

private:
    OfficeService *office();

    MainShell *m_shell = nullptr;
    TContract *m_page = nullptr;
    OfficeService *m_office = nullptr;
};
