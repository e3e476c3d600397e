#pragma once
// A print system of the test's own: the system's print scheduler started on a free port of 127.0.0.1
// with its folders in a temporary folder, one queue that writes to nowhere, and job files kept so that
// a test reads what a job received. This process talks to it from the moment it is started.

#include "TestFolder.h"

#include <QByteArray>
#include <QProcess>
#include <QString>

class CupsServer {
public:
    static constexpr const char *kQueue = "VirnTest";

    CupsServer();
    ~CupsServer();
    // Empty when the scheduler runs, else why not.
    QString error() const { return m_error; }

    struct JobSeen {
        int copies = 0;
        QString pageRanges; // "2-3"; empty when none
        QString format;     // the document format the job was given
        QByteArray data;    // the file the queue received
    };
    JobSeen job(int id) const;

private:
    bool run(const QString &program, const QStringList &arguments);

    TestFolder m_folder;
    QProcess m_scheduler;
    QString m_server;
    QString m_error;
};
