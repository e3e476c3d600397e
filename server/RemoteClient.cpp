#include "RemoteClient.h"

#include <QEventLoop>
#include <QFile>
#include <QHostAddress>
#include <QHttpMultiPart>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrlQuery>

namespace {

QString seconds(int ms) {
    return QLocale(QLocale::Russian, QLocale::Russia).toString(ms / 1000.0, 'g', 3);
}

QNetworkRequest requestFor(const QUrl &url) {
    QNetworkRequest request(url);
    // The program checks the reason phrase, which only HTTP/1.1 carries.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Virn-Smeta"));
    return request;
}

// A multipart header value must not end early: quotes and line ends of a name are replaced.
QString headerSafe(QString name) {
    name.replace(QLatin1Char('"'), QLatin1Char('`'));
    name.remove(QLatin1Char('\r'));
    name.remove(QLatin1Char('\n'));
    return name;
}

} // namespace

// ----- RemoteCall

RemoteCall::RemoteCall(QNetworkReply *reply, const QString &server, const RemoteLimits &limits,
                       QObject *parent)
    : QObject(parent), m_reply(reply), m_server(server), m_limits(limits) {
    m_idle = new QTimer(this);
    m_idle->setSingleShot(true);
    m_idle->setInterval(limits.idleMs);
    connect(m_idle, &QTimer::timeout, this, [this] {
        fail(QStringLiteral("Сервер %1 не отвечает дольше %2 с; запрос прерван.")
                 .arg(m_server, seconds(m_limits.idleMs)));
    });
    m_total = new QTimer(this);
    m_total->setSingleShot(true);
    m_total->setInterval(limits.totalMs);
    connect(m_total, &QTimer::timeout, this, [this] {
        fail(QStringLiteral("Обмен с сервером %1 длится дольше %2 с; запрос прерван.")
                 .arg(m_server, seconds(m_limits.totalMs)));
    });
    connect(reply, &QNetworkReply::metaDataChanged, this, [this] {
        const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > m_limits.maxBytes)
            fail(QStringLiteral("Ответ сервера %1 больше %2 байт; он отброшен.")
                     .arg(m_server)
                     .arg(m_limits.maxBytes));
    });
    connect(reply, &QNetworkReply::readyRead, this, &RemoteCall::onReadyRead);
    connect(reply, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64 total) {
        moved();
        if (total > 0)
            emit progress(sent, total);
    });
    connect(reply, &QNetworkReply::downloadProgress, this,
            [this](qint64 received, qint64 total) { emit progress(received, total > 0 ? total : 0); });
    connect(reply, &QNetworkReply::finished, this, &RemoteCall::onFinished);
    m_idle->start();
    m_total->start();
}

RemoteCall::RemoteCall(const QString &error, QObject *parent) : QObject(parent) {
    m_failure = error;
    QTimer::singleShot(0, this, &RemoteCall::finish);
}

void RemoteCall::moved() {
    if (!m_done && m_failure.isEmpty())
        m_idle->start();
}

void RemoteCall::onReadyRead() {
    if (!m_reply || !m_failure.isEmpty())
        return;
    moved();
    const qint64 room = m_limits.maxBytes - m_result.body.size();
    const QByteArray chunk = m_reply->read(room + 1);
    if (chunk.size() > room) {
        fail(QStringLiteral("Ответ сервера %1 больше %2 байт; он отброшен.")
                 .arg(m_server)
                 .arg(m_limits.maxBytes));
        return;
    }
    m_result.body += chunk;
}

void RemoteCall::fail(const QString &error) {
    if (m_done || !m_failure.isEmpty())
        return;
    m_failure = error;
    m_result.body.clear();
    if (m_reply && m_reply->isRunning())
        m_reply->abort(); // finished follows
    else
        finish();
}

void RemoteCall::abort() {
    fail(QStringLiteral("Запрос к серверу %1 отменён.").arg(m_server));
}

void RemoteCall::onFinished() {
    if (m_failure.isEmpty() && m_reply) {
        onReadyRead();
        const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (m_failure.isEmpty() && status.isValid()) {
            m_result.received = true;
            m_result.status = status.toInt();
            m_result.statusText = QString::fromLatin1(
                m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toByteArray());
            if (m_result.status < 200 || m_result.status > 299) {
                QString detail = QString::fromUtf8(m_result.body.left(300)).trimmed();
                if (detail.contains(QChar(0)) || detail.startsWith(QLatin1Char('<')))
                    detail.clear();
                m_result.error =
                    QStringLiteral("Сервер %1 ответил: %2 %3%4")
                        .arg(m_server)
                        .arg(m_result.status)
                        .arg(m_result.statusText,
                             detail.isEmpty() ? QStringLiteral(".") : QStringLiteral(" — ") + detail);
            }
        } else if (m_failure.isEmpty()) {
            m_failure = QStringLiteral("Нет связи с сервером %1: %2").arg(m_server, m_reply->errorString());
        }
    }
    finish();
}

void RemoteCall::finish() {
    if (m_done)
        return;
    m_done = true;
    if (m_idle) {
        m_idle->stop();
        m_total->stop();
    }
    if (!m_failure.isEmpty()) {
        m_result.received = false;
        m_result.body.clear();
        m_result.error = m_failure;
    }
    if (m_reply)
        m_reply->deleteLater();
    emit finished(m_result);
    deleteLater();
}

// ----- RemoteClient

RemoteClient::RemoteClient(QObject *parent) : QObject(parent), m_network(new QNetworkAccessManager(this)) {
    qRegisterMetaType<RemoteResult>();
}

void RemoteClient::setServer(const QUrl &base, const QString &accountKey) {
    m_base = base;
    m_key = accountKey;
}

QUrl RemoteClient::urlOf(const QString &path) const {
    QUrl url = m_base;
    QString prefix = url.path();
    while (prefix.endsWith(QLatin1Char('/')))
        prefix.chop(1);
    url.setPath(prefix + path, QUrl::DecodedMode);
    url.setQuery(QString());
    url.setFragment(QString());
    return url;
}

QString RemoteClient::serverName() const {
    return m_base.host() + (m_base.port() > 0 ? QStringLiteral(":%1").arg(m_base.port()) : QString());
}

bool RemoteClient::connectionPresent() const {
    const QHostAddress host(m_base.host());
    if (m_base.host() == QLatin1String("localhost") || (!host.isNull() && host.isLoopback()))
        return true;
    // Where the system reports its network state, "disconnected" means no request can succeed; where
    // it does not, the request itself reports the failure.
    static const bool loaded = QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
    if (!loaded || !QNetworkInformation::instance())
        return true;
    return QNetworkInformation::instance()->reachability() != QNetworkInformation::Reachability::Disconnected;
}

RemoteCall *RemoteClient::start(QNetworkReply *reply, const RemoteLimits &limits) {
    return new RemoteCall(reply, serverName(), limits, this);
}

RemoteCall *RemoteClient::get(const QString &path, const RemoteLimits &limits) {
    if (!isConfigured())
        return new RemoteCall(QStringLiteral("Файловый сервер не настроен."), this);
    return start(m_network->get(requestFor(urlOf(path))), limits);
}

RemoteCall *RemoteClient::postForm(const QString &path, const QList<QPair<QString, QString>> &fields,
                                   const RemoteLimits &limits) {
    if (!isConfigured())
        return new RemoteCall(QStringLiteral("Файловый сервер не настроен."), this);
    QUrlQuery form;
    for (const auto &f : fields)
        form.addQueryItem(f.first, f.second);
    QNetworkRequest request = requestFor(urlOf(path));
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QStringLiteral("application/x-www-form-urlencoded"));
    // A "+" or "&" inside a value must stay itself.
    const QByteArray body = form.toString(QUrl::FullyEncoded).replace('+', "%2B").toUtf8();
    return start(m_network->post(request, body), limits);
}

RemoteCall *RemoteClient::postFile(const QString &path, const QList<QPair<QString, QString>> &fields,
                                   const QString &fileField, const QString &filePath, const QString &fileName,
                                   const RemoteLimits &limits) {
    if (!isConfigured())
        return new RemoteCall(QStringLiteral("Файловый сервер не настроен."), this);
    auto *file = new QFile(filePath);
    if (!file->open(QIODevice::ReadOnly)) {
        const QString error =
            QStringLiteral("Не удаётся прочитать файл «%1»: %2").arg(filePath, file->errorString());
        delete file;
        return new RemoteCall(error, this);
    }
    auto *multi = new QHttpMultiPart(QHttpMultiPart::FormDataType);
    for (const auto &f : fields) {
        QHttpPart part;
        part.setHeader(QNetworkRequest::ContentDispositionHeader,
                       QStringLiteral("form-data; name=\"%1\"").arg(headerSafe(f.first)));
        part.setBody(f.second.toUtf8());
        multi->append(part);
    }
    QHttpPart filePart;
    filePart.setHeader(QNetworkRequest::ContentDispositionHeader,
                       QStringLiteral("form-data; name=\"%1\"; filename=\"%2\"")
                           .arg(headerSafe(fileField), headerSafe(fileName))
                           .toUtf8());
    filePart.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
    filePart.setBodyDevice(file);
    file->setParent(multi);
    multi->append(filePart);
    QNetworkReply *reply = m_network->post(requestFor(urlOf(path)), multi);
    multi->setParent(reply);
    return start(reply, limits);
}

RemoteResult RemoteClient::wait(RemoteCall *call) {
    RemoteResult result;
    QEventLoop loop;
    connect(call, &RemoteCall::finished, &loop, [&](const RemoteResult &r) {
        result = r;
        loop.quit();
    });
    loop.exec();
    return result;
}
