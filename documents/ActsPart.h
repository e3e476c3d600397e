#pragma once
// The acts in the main window: the menu "Документ" gets "Данные акта…" (the act data window TFormKS2)
// and "Акт КС-2…", "Акт КС-3…", "Акт…", which ask for the act's number, date, format and folder and
// make the act through ActProducer on the office engine's thread, behind a progress window.

#include "ActKind.h"
#include "ui/MainShell.h"

#include <QPointer>

class EstimateDocument;
class OfficeService;
class TFormKS2;
struct ActRequest;

class ActsPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void documentLoaded() override;
    bool settleBeforeClose() override;

    // "Данные акта…": opens (or raises) the act data window.
    void MFormKS2Click();
    TFormKS2 *actData() const;
    // The act's defaults for a request made now (number from the counter or the date, today, the
    // document's folder, XLS).
    ActRequest defaults(ActKind kind) const;
    // "Акт КС-2…", "Акт КС-3…", "Акт…": asks for the request, then makes the act.
    void makeAct(ActKind kind);
    // Makes the act without asking; the answer comes with actFinished.
    void produce(const ActRequest &request);
    bool busy() const { return m_busy; }

signals:
    // An act was made (ok, with its file) or not (the user was told why).
    void actFinished(bool ok, const QString &path);

private:
    OfficeService &office();
    // The act data window's fields into the document before an act reads them.
    bool settleActData();
    // The main window's numbering by date (spdDateNumericSmetaWord) and its order (RadioButtonFormat1).
    bool dateNumbering() const;
    bool yearFirst() const;

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    QPointer<TFormKS2> m_form;
    OfficeService *m_office = nullptr;
    bool m_busy = false;
};
