#pragma once
// The version check: the latest version is asked with "info=32"; a reply whose status text is "OK"
// and whose version is not empty and differs from the program's own (a plain inequality of texts,
// so an older version is offered too) makes a copy of the program's executable beside it with the
// ending ".old", fetches the release notes and saves them as version8.txt in the data folder; only
// then is the update offered. Without a server or a connection nothing is requested.

#include <QObject>
#include <QString>

class RemoteClient;

class UpdateCheck : public QObject {
    Q_OBJECT
public:
    struct Setup {
        QString ownVersion; // the program's version
        QString executable; // the program's file, copied to ".old" before the update is offered
        QString dataFolder; // where version8.txt is saved
    };
    UpdateCheck(RemoteClient *client, const Setup &setup, QObject *parent = nullptr);

    // Starts the check; finished follows in every case.
    void start();

    // After finished: the version the server named (empty when it named none usable), whether the
    // program is up to date, and why no update was offered when the check failed (Russian).
    QString latestVersion() const { return m_latest; }
    bool upToDate() const { return m_upToDate; }
    QString problem() const { return m_problem; }

    // "virn-smeta" → "virn-smeta.old", "virn_8.exe" → "virn_8.old", in the same folder.
    static QString oldCopyPath(const QString &executable);
    // Copies the executable over its ".old" copy (whole or not at all); false with *error.
    static bool copyToOld(const QString &executable, QString *error);

signals:
    // The notes are saved; the dialog may be shown.
    void updateAvailable(const QString &version);
    void finished();

private:
    void versionReceived(const QString &version);
    void fetchNotes();
    void end(const QString &problem = {});

    RemoteClient *m_client;
    Setup m_setup;
    QString m_latest;
    bool m_upToDate = false;
    QString m_problem;
    bool m_ended = false;
};
