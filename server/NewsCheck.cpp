#include "NewsCheck.h"

#include "RemoteClient.h"
#include "ReplyText.h"
#include "TextFiles.h"
#include "fileserver/Protocol.h"

#include <QDir>
#include <QTimer>

namespace {
const RemoteLimits kStampLimits{10000, 20000, 512};
const RemoteLimits kTextLimits{15000, 60000, 1 << 20};
} // namespace

NewsCheck::NewsCheck(RemoteClient *client, const QString &dataFolder, const QString &lastSeen,
                     QObject *parent)
    : QObject(parent), m_client(client), m_dataFolder(dataFolder),
      m_lastSeen(lastSeen.trimmed().isEmpty() ? defaultStamp() : lastSeen.trimmed()) {}

void NewsCheck::start() {
    if (!m_client->isConfigured() || !m_client->connectionPresent()) {
        QTimer::singleShot(0, this, &NewsCheck::finished);
        return;
    }
    RemoteCall *call =
        m_client->postForm(Protocol::kReadInfo, {{Protocol::kFieldInfo, QStringLiteral("ok")}}, kStampLimits);
    connect(call, &RemoteCall::finished, this, [this](const RemoteResult &r) {
        const QString stamp = r.statusOk() ? ReplyText::stamp(r.body) : QString();
        if (stamp.isEmpty() || stamp == m_lastSeen) {
            emit finished();
            return;
        }
        fetchText(stamp);
    });
}

void NewsCheck::fetchText(const QString &stamp) {
    RemoteCall *call = m_client->get(Protocol::kInfoText, kTextLimits);
    connect(call, &RemoteCall::finished, this, [this, stamp](const RemoteResult &r) {
        const QString text = r.statusOk() ? ReplyText::text(r.body) : QString();
        if (!text.isEmpty() &&
            TextFiles::writeWhole(QDir(m_dataFolder).filePath(QStringLiteral("info.txt")), r.body, nullptr))
            emit newsArrived(stamp, text);
        emit finished();
    });
}
