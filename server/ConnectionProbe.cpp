#include "ConnectionProbe.h"

#include "RemoteClient.h"
#include "fileserver/Protocol.h"

#include <QTimer>

namespace {
const RemoteLimits kProbeLimits{10000, 15000, 4096};
}

ConnectionProbe::ConnectionProbe(const FileServerSettings &settings, QObject *parent)
    : QObject(parent), m_settings(settings), m_client(new RemoteClient(this)) {
    m_client->setServer(settings.baseUrl(), settings.key.trimmed());
}

void ConnectionProbe::end(bool ok, const QString &text) {
    QTimer::singleShot(0, this, [this, ok, text] { emit finished(ok, text); });
}

void ConnectionProbe::start() {
    if (const QString problem = m_settings.problem(); !problem.isEmpty())
        return end(false, problem);
    if (!m_client->isConfigured())
        return end(false, QStringLiteral("Адрес сервера не указан."));
    if (!m_client->connectionPresent())
        return end(false, QStringLiteral("Отсутствует подключение к интернету"));
    const QString key = m_client->accountKey();
    RemoteCall *call =
        key.isEmpty()
            ? m_client->postForm(Protocol::kVersionInfo, {{Protocol::kFieldInfo, QStringLiteral("32")}},
                                 kProbeLimits)
            : m_client->postForm(Protocol::kExistsCashbase, {{Protocol::kFieldKey, key}}, kProbeLimits);
    connect(call, &RemoteCall::finished, this, [this, key](const RemoteResult &r) {
        if (!r.received)
            emit finished(false, r.error);
        else if (key.isEmpty())
            emit finished(true,
                          QStringLiteral("Сервер отвечает. Ключ учётной записи не указан: обмен кассой и "
                                         "картинками недоступен."));
        else if (r.status == 403)
            emit finished(false, QStringLiteral("Сервер не знает ключ «%1».").arg(key));
        else if (r.statusOk())
            emit finished(true, QStringLiteral("Сервер отвечает, ключ принят."));
        else
            emit finished(false, r.error);
    });
}
