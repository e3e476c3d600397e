#include "UpdateCheck.h"

#include "RemoteClient.h"
#include "ReplyText.h"
#include "TextFiles.h"
#include "fileserver/Protocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent>

namespace {
const RemoteLimits kVersionLimits{10000, 20000, 256};
const RemoteLimits kNotesLimits{15000, 60000, 1 << 20};
} // namespace

UpdateCheck::UpdateCheck(RemoteClient *client, const Setup &setup, QObject *parent)
    : QObject(parent), m_client(client), m_setup(setup) {}

void UpdateCheck::start() {
    if (!m_client->isConfigured()) {
        QTimer::singleShot(0, this, [this] { end(QStringLiteral("Файловый сервер не настроен.")); });
        return;
    }
    if (!m_client->connectionPresent()) {
        QTimer::singleShot(0, this, [this] { end(QStringLiteral("Отсутствует подключение к интернету")); });
        return;
    }
    RemoteCall *call = m_client->postForm(Protocol::kVersionInfo,
                                          {{Protocol::kFieldInfo, QStringLiteral("32")}}, kVersionLimits);
    connect(call, &RemoteCall::finished, this, [this](const RemoteResult &r) {
        if (!r.statusOk()) {
            end(r.error.isEmpty() ? QStringLiteral("Сервер не сообщил версию программы.") : r.error);
            return;
        }
        const QString version = ReplyText::version(r.body);
        if (version.isEmpty()) {
            end(QStringLiteral("Сервер прислал вместо номера версии что-то другое."));
            return;
        }
        versionReceived(version);
    });
}

void UpdateCheck::versionReceived(const QString &version) {
    m_latest = version;
    if (version == m_setup.ownVersion) {
        m_upToDate = true;
        end();
        return;
    }
    // The copy of the executable can take a moment: it is made off this thread.
    auto *watcher = new QFutureWatcher<bool>(this);
    connect(watcher, &QFutureWatcher<bool>::finished, this, [this, watcher] {
        watcher->deleteLater();
        fetchNotes();
    });
    const QString executable = m_setup.executable;
    watcher->setFuture(QtConcurrent::run([executable] { return copyToOld(executable, nullptr); }));
}

void UpdateCheck::fetchNotes() {
    RemoteCall *call = m_client->get(Protocol::kVersionNotes, kNotesLimits);
    connect(call, &RemoteCall::finished, this, [this](const RemoteResult &r) {
        if (!r.statusOk()) {
            end(r.error.isEmpty() ? QStringLiteral("Сервер не прислал историю версий.") : r.error);
            return;
        }
        QString error;
        if (!TextFiles::writeWhole(QDir(m_setup.dataFolder).filePath(QStringLiteral("version8.txt")), r.body,
                                   &error)) {
            end(error);
            return;
        }
        emit updateAvailable(m_latest);
        end();
    });
}

void UpdateCheck::end(const QString &problem) {
    if (m_ended)
        return;
    m_ended = true;
    m_problem = problem;
    emit finished();
}

QString UpdateCheck::oldCopyPath(const QString &executable) {
    const QFileInfo info(executable);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral(".old"));
}

bool UpdateCheck::copyToOld(const QString &executable, QString *error) {
    const QString target = oldCopyPath(executable);
    const QString temp = target + QStringLiteral(".part");
    QFile::remove(temp);
    if (!QFile::copy(executable, temp)) {
        if (error)
            *error = QStringLiteral("Не удаётся скопировать «%1»").arg(QDir::toNativeSeparators(executable));
        return false;
    }
    QFile::remove(target);
    if (!QFile::rename(temp, target)) {
        QFile::remove(temp);
        if (error)
            *error = QStringLiteral("Не удаётся записать «%1»").arg(QDir::toNativeSeparators(target));
        return false;
    }
    return true;
}
