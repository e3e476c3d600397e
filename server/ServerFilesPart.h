#pragma once
// The server files in the main window: "Файлы на сервере…" (menu "Файл") opens TServerSmeta; the
// option "Автосохранение на сервер" (CheckBoxAutosaveServer) uploads every saved document with the
// estimate's object as its address, on a thread of its own (a failure is told once in the status
// bar, the next save tries again); "Сохранить на сервере" (spdServerSave) saves the document and
// uploads it at once; "Сервер MySQL…" (menu "Настройки") edits where the store is.
//
// The store is the MySQL server of the settings section "Server" (the window TServerRasSettings, the
// same server as the remote price list; its own database when "FilesDatabase" is set), the table is
// the account key of the file server's settings, and pictures go to the file server.

#include "ui/MainShell.h"

#include "DocumentStore.h"

#include <QPointer>

class QAction;
class SavedDocumentUpload;
class ServerFiles;
class TServerSmeta;
enum class Db;

class ServerFilesPart : public ShellPart {
    Q_OBJECT
public:
    explicit ServerFilesPart(QObject *parent = nullptr);
    ~ServerFilesPart() override;

    void attach(MainShell &shell) override;
    void start() override;
    void documentLoaded() override;
    // An upload after save that still runs is given a moment to end.
    bool settleBeforeClose() override;

    // The store as the settings give it now.
    StoreAccess access() const;

    // "Файлы на сервере…": the window, made once and shown again.
    TServerSmeta *MServerFilesClick();
    void MMySqlSettingsClick();
    // Saves the document when it changed (or asks for its name) and uploads it now.
    void spdServerSaveClick();

    SavedDocumentUpload *uploader() const { return m_uploader; }
    // The window when it was opened.
    TServerSmeta *window() const;

signals:
    // A restore replaced a database of the data folder (its connection was opened again).
    void databaseRestored(Db db);
    // An upload after save ended (ok, or the message told).
    void documentUploaded(bool ok, const QString &message);

private:
    void documentSaved(const QString &path);
    void startUpload(const QString &path, bool manual);
    void updateServerSave();

    MainShell *m_shell = nullptr;
    SavedDocumentUpload *m_uploader;
    ServerFiles *m_files = nullptr;
    QPointer<TServerSmeta> m_window;
    QAction *m_serverSave = nullptr;
    QAction *m_option = nullptr;
    QString m_reported;    // the failure told last; the same one is not told again until an upload works
    bool m_manual = false; // the running upload was asked for by spdServerSave
};
