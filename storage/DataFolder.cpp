#include "DataFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryFile>

namespace DataFolder {

Decision decide(const QStringList &arguments, const QString &storedFolder, const QString &currentDir) {
    Decision d;
    if (!arguments.isEmpty() && QFileInfo(arguments.first()).isFile()) {
        d.documentFile = QFileInfo(arguments.first()).absoluteFilePath();
        d.folder = storedFolder.isEmpty() ? currentDir : storedFolder;
    } else {
        d.folder = currentDir;
    }
    d.folder = QDir::cleanPath(QDir(d.folder).absolutePath());
    return d;
}

QStringList subFolders() {
    return {QStringLiteral("Sh"), QStringLiteral("Sp"), QStringLiteral("Sm"), QStringLiteral("Sm/Autosave"),
            QStringLiteral("Temp")};
}

QString ensureTree(const QString &folder) {
    QDir root(folder);
    if (!root.exists() && !QDir().mkpath(folder))
        return QStringLiteral("Не удалось создать папку данных «%1».").arg(QDir::toNativeSeparators(folder));
    for (const QString &sub : subFolders()) {
        if (!root.exists(sub) && !root.mkpath(sub))
            return QStringLiteral("Не удалось создать папку «%1».")
                .arg(QDir::toNativeSeparators(root.filePath(sub)));
    }
    QTemporaryFile probe(root.filePath(QStringLiteral("Sp/.write-check-XXXXXX")));
    if (!probe.open())
        return QStringLiteral("Нет права записи в папку данных «%1».").arg(QDir::toNativeSeparators(folder));
    return {};
}

QString storedFolder() {
    QSettings s(QStringLiteral("Вирн"), QStringLiteral("Вирн-С8"));
    return s.value(QStringLiteral("DataFolder")).toString();
}

void storeFolder(const QString &folder) {
    QSettings s(QStringLiteral("Вирн"), QStringLiteral("Вирн-С8"));
    s.setValue(QStringLiteral("DataFolder"), folder);
}

} // namespace DataFolder
