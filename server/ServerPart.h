#pragma once
// The program's file server in the main window: the client every remote feature uses (other parts
// reach it through MainShell::part<ServerPart>()->client()), the window "Файловый сервер" (menu
// "Настройки"), the version check and the news at start-up, "История версий" and "Проверить
// обновления" (menu "Справка"). Without a server in the settings nothing is requested or shown.

#include "ui/MainShell.h"

class QAction;
class RemoteClient;

class ServerPart : public ShellPart {
    Q_OBJECT
public:
    explicit ServerPart(QObject *parent = nullptr);

    void attach(MainShell &shell) override;
    // Reads the server settings and starts the version and news checks once the window is up.
    void start() override;

    RemoteClient *client() const { return m_client; }

    // The program's executable (copied to ".old" before an update is offered); its folder holds the
    // updater. The running program's unless set.
    void setProgramFile(const QString &executable) { m_executable = executable; }

    // The version check and the news, off the window's thread; silent on every failure.
    void startupChecks();
    // Sets the client to the server and key of IniFile.db (after they were changed there).
    void readServerSettings();

    void MServerSettingsClick();
    void MVersionHistoryClick();
    void MCheckUpdateClick();

signals:
    // Both start-up checks have ended.
    void checksFinished();
    // The server's address or key changed.
    void serverChanged();

private:
    bool newsEnabled() const;
    void setNewsEnabled(bool on);
    void offerUpdate(const QString &version);
    void startUpdater();
    void showNews(const QString &stamp, const QString &text);
    void checkDone();

    MainShell *m_shell = nullptr;
    RemoteClient *m_client;
    QString m_executable;
    QAction *m_history = nullptr;
    QAction *m_checkUpdate = nullptr;
    int m_pendingChecks = 0;
};
