#pragma once
// The register of documents in the main window: the tool button spdMyDoc and the menu item "Документ"
// → "Мои документы" (MMyDocuments) open the window "Мои документы" with the frame TMyDocuments. The
// part gives the frame the main window's open estimate, its question about unsaved changes, its file
// opening and its printed forms, and shows a saved estimate in the register at once.

#include "MyDocuments_frame.h"
#include "RegisterCommands.h"
#include "ui/MainShell.h"

#include <QPointer>

class RegisterPart : public ShellPart, public RegisterCommands {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void documentLoaded() override;

    // spdMyDocClick: opens (or raises) the window and enters the frame.
    void MMyDocumentsClick();
    // The window and its frame while it exists.
    QWidget *window() const { return m_window; }
    TMyDocuments *frame() const { return m_frame; }

    // RegisterCommands
    QString openDocument() const override;
    bool settleOpenDocument() override;
    bool openEstimate(const QString &path) override;
    void output(Output kind) override;

private:
    void refreshShown();

    MainShell *m_shell = nullptr;
    QPointer<QWidget> m_window;
    QPointer<TMyDocuments> m_frame;
};
