#pragma once
// What the register window asks of the main window: the estimate open there, the question about its
// unsaved changes, opening another file in its place and the estimate's printed forms. The register's
// part gives it; the window never sees the main window itself.

#include <QString>

class RegisterCommands {
public:
    enum class Output { Preview, Print, Pdf, Excel };

    virtual ~RegisterCommands() = default;
    // The file of the estimate open in the main window (empty for a new, unsaved one).
    virtual QString openDocument() const = 0;
    // "Сохранить файл?" when the open estimate has unsaved changes. False when the user cancelled or
    // the save failed: the caller then stops.
    virtual bool settleOpenDocument() = 0;
    // Opens the file in the main window without a question; false when it could not be opened (the
    // user has been told why).
    virtual bool openEstimate(const QString &path) = 0;
    // The main window's own preview, print, PDF or spreadsheet command for the open estimate.
    virtual void output(Output kind) = 0;
};
