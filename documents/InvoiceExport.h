#pragma once
// The invoice window's output: "Печать", "Экспорт в PDF" and "Экспорт в Excel" fill the invoice's
// template on the office engine's own thread behind a progress window. The spreadsheet is shown in the
// page preview once written; printing goes through the same filled sheet as a PDF. A written file is
// entered in the register of documents under the estimate.

#include "InvoiceData.h"

#include <QObject>
#include <QPointer>
#include <QString>

class OfficeService;
class TFCustomPreview;
class TModuleSQL;
class QWidget;

class InvoiceExport : public QObject {
    Q_OBJECT
public:
    enum class Kind { Print, Pdf, Excel };

    // office: the engine session the program's documents share; window: parent of the progress
    // window and the preview.
    InvoiceExport(OfficeService &office, TModuleSQL &module, QWidget *window);

    // Starts the output of the invoice; targets come from the save dialog (folder and proposed name).
    // False when nothing was started (the user cancelled, the engine is missing, one is running).
    bool run(Kind kind, const Invoice &invoice, const QString &folder);
    bool busy() const { return m_busy; }
    // The preview of the last print or spreadsheet (null before the first).
    TFCustomPreview *preview() const;

signals:
    // A started output ended: ok with the file shown or written, or not (the user was told why).
    void finished(bool ok, const QString &path);
    // What was written where, for the status line.
    void status(const QString &text);

private:
    void done(Kind kind, const Invoice &invoice, const QStringList &paths, bool ok, const QString &error);
    TFCustomPreview *ensurePreview();

    OfficeService &m_office;
    TModuleSQL &m_module;
    QWidget *m_window;
    QPointer<TFCustomPreview> m_preview;
    bool m_busy = false;
};
