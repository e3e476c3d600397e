#pragma once
// The estimate's header above the pages: customer, object, contractor, date, number, title and name
// of the works (EstimateHeaderPanel), shown from the document and written back into it; the options of
// the customer folders and of the parties' names in printed documents.

#include "ui/MainShell.h"

class EstimateDocument;
class EstimateHeaderPanel;

class HeaderPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void start() override;

    // Refills the header's lists from the registers.
    void reloadLists();

private:
    void showDocument();
    void takeEdit();

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    EstimateHeaderPanel *m_panel = nullptr;
    bool m_editing = false; // the document hears an edit of the panel: the panel is not set again
};
