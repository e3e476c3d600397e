#include "MobileExchange.h"

#include "fileserver/Protocol.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

constexpr RemoteLimits kBookLimits{15000, 300000, static_cast<qint64>(Protocol::kUploadLimit)};

QString replyText(const RemoteResult &r) {
    return r.statusOk() ? r.text() : QString();
}

} // namespace

MobileExchange::MobileExchange(RemoteClient *client, QObject *parent)
    : QObject(parent), m_client(client), m_limits(kBookLimits) {}

bool MobileExchange::ready(void (MobileExchange::*signal)(MobileExchange::Outcome, const QString &)) {
    if (m_busy)
        return false;
    if (!m_client || !m_client->isConfigured() || m_client->accountKey().isEmpty()) {
        emit(this->*signal)(Outcome::NoServer,
                            QStringLiteral("Не указан файловый сервер или ключ учётной записи: "
                                           "Настройки → Файловый сервер…"));
        return false;
    }
    if (!m_client->connectionPresent()) {
        emit(this->*signal)(Outcome::NoConnection, QString());
        return false;
    }
    m_busy = true;
    return true;
}

void MobileExchange::fetch(const QString &mobilePath) {
    if (!ready(&MobileExchange::fetched))
        return;
    RemoteCall *call =
        m_client->postForm(QString::fromLatin1(Protocol::kExistsCashbase),
                           {{QString::fromLatin1(Protocol::kFieldKey), m_client->accountKey()}},
                           {m_limits.idleMs, m_limits.totalMs, RemoteLimits().maxBytes});
    connect(call, &RemoteCall::finished, this, [this, mobilePath](const RemoteResult &r) {
        if (!r.received)
            return endFetch(Outcome::Failed, r.error);
        if (!replyText(r).contains(QString::fromLatin1(Protocol::kReplyExists)))
            return endFetch(Outcome::Missing);
        download(mobilePath);
    });
}

void MobileExchange::download(const QString &mobilePath) {
    if (!m_client)
        return endFetch(Outcome::Failed, QStringLiteral("клиент сервера закрыт"));
    const QString path = QString::fromLatin1(Protocol::kAccountsRoot) + m_client->accountKey() +
                         QLatin1Char('/') + QString::fromLatin1(Protocol::kCashbaseName);
    RemoteCall *call = m_client->get(path, m_limits);
    connect(call, &RemoteCall::finished, this, [this, mobilePath](const RemoteResult &r) {
        if (!r.statusOk())
            return endFetch(Outcome::Failed, r.error);
        // The bytes go into a temporary file beside the target; only a sound database replaces it.
        QTemporaryFile part(SqliteSnapshot::tempPrefix(mobilePath) + QStringLiteral("download.XXXXXX"));
        if (!part.open() || part.write(r.body) != r.body.size() || !part.flush())
            return endFetch(Outcome::Failed,
                            QStringLiteral("Файл «%1» не записан: %2")
                                .arg(QDir::toNativeSeparators(mobilePath), part.errorString()));
        part.close();
        const QString why = SqliteSnapshot::copyFile(part.fileName(), mobilePath);
        if (!why.isEmpty())
            return endFetch(
                Outcome::Failed,
                QStringLiteral("Мобильная касса с сервера повреждена и не сохранена. %1").arg(why));
        endFetch(Outcome::Done);
    });
}

void MobileExchange::upload(QSqlDatabase book, const QString &scratchFolder) {
    if (!ready(&MobileExchange::uploaded))
        return;
    QDir().mkpath(scratchFolder);
    m_snapshot = QDir(scratchFolder).filePath(QStringLiteral("cashbase-upload.db"));
    QString why = SqliteSnapshot::saveTo(book, m_snapshot);
    if (why.isEmpty() && QFileInfo(m_snapshot).size() > static_cast<qint64>(Protocol::kUploadLimit))
        why = QStringLiteral("Кассовая книга больше %1 байт: сервер такую не примет.")
                  .arg(Protocol::kUploadLimit);
    if (!why.isEmpty())
        return endUpload(Outcome::Failed, why);
    RemoteCall *call = m_client->postFile(
        QString::fromLatin1(Protocol::kPostCashbase),
        {{QString::fromLatin1(Protocol::kFieldKey), m_client->accountKey()}},
        QString::fromLatin1(Protocol::kFieldFile), m_snapshot, QString::fromLatin1(Protocol::kCashbaseName),
        {m_limits.idleMs, m_limits.totalMs, RemoteLimits().maxBytes});
    connect(call, &RemoteCall::finished, this, [this](const RemoteResult &r) {
        if (!r.received)
            return endUpload(Outcome::Failed, r.error);
        if (!replyText(r).contains(QString::fromUtf8(Protocol::kReplyUploaded)))
            return endUpload(Outcome::Refused, r.error);
        endUpload(Outcome::Done);
    });
}

void MobileExchange::endFetch(Outcome outcome, const QString &detail) {
    m_busy = false;
    emit fetched(outcome, detail);
}

void MobileExchange::endUpload(Outcome outcome, const QString &detail) {
    m_busy = false;
    if (!m_snapshot.isEmpty())
        QFile::remove(m_snapshot);
    m_snapshot.clear();
    emit uploaded(outcome, detail);
}
