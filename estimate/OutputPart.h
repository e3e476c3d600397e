#pragma once
// The estimate's printed forms in the main window: "Предварительный просмотр", "Печать", "Экспорт в
// формат PDF", "Экспорт в формат Excel" fill the template of the document title through the office
// engine on the engine's own thread, behind a progress window; "Заголовки листов сметы и акта…" edits
// the sheet titles (TEditFromAktSmeta). Other windows (the register) run the same commands.

#include "ui/MainShell.h"

class EstimateDocument;
class OfficeService;
class QAction;
class TFCustomPreview;
struct ViewTitles;

class OutputPart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void start() override;

    void MPreviewClick();
    void MPrintClick();
    void MExportPDFClick();
    void MExportExcelClick();
    void MEditFromAktSmetaClick();
    // The sheet titles in force (section View of the settings).
    ViewTitles viewTitles() const;
    // True while a document is being made (a second request waits for it to end).
    bool busy() const { return m_busy; }
    TFCustomPreview *preview() const { return m_preview; }
    // The engine session the program's documents share.
    OfficeService &office();

signals:
    // A requested document has been made (ok) or has failed (the user was told why).
    void outputFinished(bool ok, const QString &path);

private:
    enum class Kind { Preview, Print, Pdf, Excel };
    void run(Kind kind);
    void finish(Kind kind, bool ok, const QString &error, const QStringList &outputs, const QString &base,
                const QString &folder);

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    TFCustomPreview *m_preview = nullptr;
    OfficeService *m_office = nullptr;
    bool m_busy = false;
};
