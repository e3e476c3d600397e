#pragma once
// The news check: the stamp of the latest news is asked with "info=ok"; when it differs from the
// last stamp the user saw, the news text is fetched, saved as info.txt in the data folder and
// offered. The caller keeps the stamp as seen once the news is shown ("View"/"LastInfo"). Without a
// server or a connection nothing is requested; a reply that is not a stamp or not a text is ignored.

#include <QObject>
#include <QString>

class RemoteClient;

class NewsCheck : public QObject {
    Q_OBJECT
public:
    // The stamp taken as seen when none is stored.
    static QString defaultStamp() { return QStringLiteral("14.09.2018"); }

    NewsCheck(RemoteClient *client, const QString &dataFolder, const QString &lastSeen,
              QObject *parent = nullptr);
    // Starts the check; finished follows in every case.
    void start();

signals:
    void newsArrived(const QString &stamp, const QString &text);
    void finished();

private:
    void fetchText(const QString &stamp);

    RemoteClient *m_client;
    QString m_dataFolder;
    QString m_lastSeen;
};
