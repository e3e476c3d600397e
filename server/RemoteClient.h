#pragma once
// The program's one HTTP client for its file server: the cash book exchange, the server files'
// pictures, the version check, the news and the figure-area plug-in all go through it.
//
//     RemoteCall *call = client->postForm(Protocol::kExistsCashbase, {{"key", client->accountKey()}});
//     connect(call, &RemoteCall::finished, this, [](const RemoteResult &r) { … r.body … });
//
// Every request has limits: it ends when no byte moves for idleMs, when the whole transfer passes
// totalMs, and when the reply grows past maxBytes (the reply is then dropped). A call always ends
// with finished, once, and deletes itself afterwards. The network work runs in Qt's own network
// thread: a window that starts a call is never blocked by it.

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

struct RemoteLimits {
    int idleMs = 15000;        // nothing received or sent this long: the request ends
    int totalMs = 60000;       // the whole transfer
    qint64 maxBytes = 1 << 20; // a longer reply is dropped
};

struct RemoteResult {
    bool received = false; // a whole reply arrived within the limits
    int status = 0;        // HTTP status code
    QString statusText;    // its reason phrase ("OK")
    QByteArray body;
    QString error; // why it failed, in Russian: no reply, a limit, or a status other than 2xx

    // The replies the program acts on: a whole reply whose status text is "OK".
    bool statusOk() const { return received && statusText == QLatin1String("OK"); }
    // The body as UTF-8 text.
    QString text() const { return QString::fromUtf8(body); }
};
Q_DECLARE_METATYPE(RemoteResult)

class RemoteCall : public QObject {
    Q_OBJECT
public:
    // Ends the request now (finished follows with "Запрос отменён").
    void abort();
    bool isFinished() const { return m_done; }

signals:
    // Bytes moved so far and the total when known (0 otherwise): the upload while the request is
    // sent, then the download.
    void progress(qint64 done, qint64 total);
    void finished(const RemoteResult &result);

private:
    friend class RemoteClient;
    RemoteCall(QNetworkReply *reply, const QString &server, const RemoteLimits &limits, QObject *parent);
    // A call that fails before it starts: finished comes from the event loop.
    RemoteCall(const QString &error, QObject *parent);
    void fail(const QString &error);
    void onReadyRead();
    void onFinished();
    void finish();
    void moved();

    QPointer<QNetworkReply> m_reply;
    QString m_server;
    RemoteLimits m_limits;
    RemoteResult m_result;
    QTimer *m_idle = nullptr;
    QTimer *m_total = nullptr;
    QString m_failure;
    bool m_done = false;
};

class RemoteClient : public QObject {
    Q_OBJECT
public:
    explicit RemoteClient(QObject *parent = nullptr);

    // The server's base address ("https://host:port" or with a leading path) and the account key.
    void setServer(const QUrl &base, const QString &accountKey);
    QUrl baseUrl() const { return m_base; }
    QString accountKey() const { return m_key; }
    // A server is set: without one nothing is requested.
    bool isConfigured() const { return m_base.isValid() && !m_base.host().isEmpty(); }
    // The address of a path of the server (the path is given decoded; it is encoded here).
    QUrl urlOf(const QString &path) const;

    // The connection test before every remote action: false when the system reports no network at
    // all (a server on this computer is always reachable).
    bool connectionPresent() const;

    RemoteCall *get(const QString &path, const RemoteLimits &limits = {});
    // A form "a=1&b=2" (application/x-www-form-urlencoded).
    RemoteCall *postForm(const QString &path, const QList<QPair<QString, QString>> &fields,
                         const RemoteLimits &limits = {});
    // A multipart form: the text fields, then the file (read from disk as it is sent) in fileField
    // under the name fileName.
    RemoteCall *postFile(const QString &path, const QList<QPair<QString, QString>> &fields,
                         const QString &fileField, const QString &filePath, const QString &fileName,
                         const RemoteLimits &limits = {});

    // Runs an event loop until the call ends and gives its result. For command-line modes and tests;
    // windows connect to finished instead.
    static RemoteResult wait(RemoteCall *call);

private:
    RemoteCall *start(QNetworkReply *reply, const RemoteLimits &limits);
    QString serverName() const;

    QNetworkAccessManager *m_network;
    QUrl m_base;
    QString m_key;
};
