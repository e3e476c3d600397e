#pragma once
// The document file in the main window: "Новый документ", "Открыть...", "Сохранить", "Сохранить как...",
// the drafts, the recent documents MLastDoc and the options of saving. The window asks and tells; the
// document (EstimateDocument) opens, saves, registers and autosaves.

#include "ui/MainShell.h"

class EstimateDocument;
class QAction;
class QMenu;
class WorkingCopy;

class DocumentFilePart : public ShellPart {
    Q_OBJECT
public:
    using ShellPart::ShellPart;

    void attach(MainShell &shell) override;
    void start() override;

    // CreateNewDoc: an empty document (no question asked).
    void CreateNewDoc(bool draft = false);
    // False when the user cancelled the file dialog or the file could not be written (the document
    // then stays changed).
    bool spdSaveClick();
    bool spdSaveKakClick();
    // Opens a document file; false leaves the open document, its grid and its changed state as they were.
    bool OpenMyFile(const QString &fileName);
    void spdNewDdaftClick();
    void spdOpenDdaftClick();
    void MLastDocFileOpenClick(const QString &fileName);
    // Fills MLastDoc from the recent list, newest first (each item's data holds the path).
    void LastDocMenu();
    // Opens the newest recent document when it exists (CheckBoxLoadLastDoc at start).
    bool OpenLastDoc();
    // "Сохранить файл?" when the document changed. False when the user cancelled or the save failed.
    bool askSaveChanges();
    // At start: the copies that crashed programs left, offered one by one (newest first) until one is
    // recovered; the others are kept among the autosave copies. True when one became the document.
    bool offerRecovery(WorkingCopy &copy);

private:
    void tellWarning(const QString &text);
    QString dialogFolder() const;

    MainShell *m_shell = nullptr;
    EstimateDocument *m_doc = nullptr;
    QAction *m_save = nullptr;
    QAction *m_saveMenu = nullptr;
    QMenu *m_recent = nullptr;
    QString m_openDir; // where the open dialog starts: the folder of the last document opened or saved
};
