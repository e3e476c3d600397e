#pragma once
// The program's updater: "download_update_s8", a script in the program's folder. Started detached
// when the user accepts an update, it waits for the program to end, fetches the new version from the
// file server (virn-smeta.tar.gz with its SHA-256), checks it, puts its files into the program's
// folder and starts the program again in the folder it worked in.

#include <QString>
#include <QUrl>

namespace Updater {

inline QString fileName() {
    return QStringLiteral("download_update_s8");
}
// The updater's path in the program's folder.
QString path(const QString &programFolder);

// Starts the updater: false with the Russian message when it is missing ("Отсутствует загрузчик
// обновлений "download_update_s8"") or would not start.
bool start(const QString &programFolder, const QUrl &server, const QString &workingFolder, qint64 programPid,
           QString *error);

} // namespace Updater
