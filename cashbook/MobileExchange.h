#pragma once
// The exchange of the whole book with the mobile companion through the program's file server, per
// account key:
//  - fetch: "exists_cashbase.php" answers "ok" when the companion's book is there; it is then fetched
//    ("<key>/cashbase.db", at most the upload limit) into a temporary file, copied through SQLite's
//    backup API (which refuses a damaged file) as cashbasemobail.db beside the book, and the
//    temporary file goes;
//  - upload: a consistent snapshot of the open book (backup API, never the live file) is posted as
//    "cashbase.db" to "post_cashbase.php"; the reply must contain "База загружена на сервер".
// Neither direction writes the book; a failed exchange leaves every local file as it was. Calls run
// on the network thread; each ends with one signal.

#include "server/RemoteClient.h"

#include <QObject>
#include <QPointer>
#include <QSqlDatabase>
#include <QString>

class MobileExchange : public QObject {
    Q_OBJECT
public:
    enum class Outcome {
        Done,
        NoServer,     // no server in the settings
        NoConnection, // "Отсутствует подключение к интернету"
        Missing, // the server has no book of the account ("Отсутствует база кассы на сервере")
        Refused, // the server did not take the upload ("Касса не загружена")
        Failed,  // no reply within the limits, a damaged file, a disk error: detail says why
    };
    Q_ENUM(Outcome)

    explicit MobileExchange(RemoteClient *client, QObject *parent = nullptr);

    // Time limits of every request and the size limit of the fetched book.
    void setLimits(const RemoteLimits &limits) { m_limits = limits; }
    bool busy() const { return m_busy; }

    void fetch(const QString &mobilePath);
    void upload(QSqlDatabase book, const QString &scratchFolder);

signals:
    void fetched(MobileExchange::Outcome outcome, const QString &detail);
    void uploaded(MobileExchange::Outcome outcome, const QString &detail);

private:
    bool ready(void (MobileExchange::*signal)(MobileExchange::Outcome, const QString &));
    void download(const QString &mobilePath);
    void endFetch(Outcome outcome, const QString &detail = {});
    void endUpload(Outcome outcome, const QString &detail = {});

    QPointer<RemoteClient> m_client;
    RemoteLimits m_limits;
    bool m_busy = false;
    QString m_snapshot;
};
