#include "Updater.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace Updater {

QString path(const QString &programFolder) {
    return QDir(programFolder).filePath(fileName());
}

bool start(const QString &programFolder, const QUrl &server, const QString &workingFolder, qint64 programPid,
           QString *error) {
    const QString updater = path(programFolder);
    if (!QFileInfo(updater).isFile()) {
        *error = QStringLiteral("Отсутствует загрузчик обновлений \"%1\"").arg(fileName());
        return false;
    }
    const QStringList arguments = {QStringLiteral("--server"), server.toString(QUrl::FullyEncoded),
                                   QStringLiteral("--folder"), programFolder,
                                   QStringLiteral("--cwd"),    workingFolder,
                                   QStringLiteral("--wait"),   QString::number(programPid)};
    if (!QProcess::startDetached(updater, arguments, programFolder)) {
        *error = QStringLiteral("Не удалось запустить загрузчик обновлений \"%1\"").arg(fileName());
        return false;
    }
    return true;
}

} // namespace Updater
