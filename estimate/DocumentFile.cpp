#include "DocumentFile.h"

#include "OldFormat.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace DocumentFile {

namespace {

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

void removeWithCompanions(const QString &path) {
    QFile::remove(path);
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
}

} // namespace

QString notADocument(const QString &path, const QString &reason) {
    return QStringLiteral("Файл «%1» повреждён или не является документом Вирн-Смета: %2.")
        .arg(shown(path), reason);
}

QString open(TModuleSQL &module, const QString &path) {
    const QFileInfo fi(path);
    if (!fi.exists())
        return QStringLiteral("Файл «%1» не найден.").arg(shown(path));
    if (!fi.isFile())
        return notADocument(path, QStringLiteral("это не файл"));
    if (!fi.isReadable())
        return QStringLiteral("Нет прав на чтение файла «%1».").arg(shown(path));
    if (fi.size() == 0)
        return notADocument(path, QStringLiteral("файл пуст"));

    QString why = SqliteSnapshot::check(path);
    if (!why.isEmpty())
        return notADocument(path, why);

    const QString working = module.filePath(Db::Smeta);
    // One private copy per process: two copies of the program may share the data folder.
    const QString staging = QFileInfo(working).absolutePath() +
                            QStringLiteral("/.smeta-open-%1.db").arg(QCoreApplication::applicationPid());
    removeWithCompanions(staging);
    // The working database is scratch: it is checked below and replaced by the next open anyway.
    why = SqliteSnapshot::copyFile(path, staging, SqliteSnapshot::Keep::Scratch);
    if (!why.isEmpty()) {
        removeWithCompanions(staging);
        return QStringLiteral("Не удалось открыть документ «%1». %2").arg(shown(path), why);
    }
    why = OldFormat::upgrade(staging);
    if (why.isEmpty())
        why = SqliteSnapshot::check(staging);
    if (!why.isEmpty()) {
        removeWithCompanions(staging);
        return notADocument(path, why);
    }

    // Only now does the working database change. A leftover journal of the old working database
    // must not be played back onto the new one.
    module.close(Db::Smeta);
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        QFile::remove(working + QLatin1String(suffix));
    why = SqliteSnapshot::replaceFile(staging, working, SqliteSnapshot::Keep::Scratch);
    module.database(Db::Smeta);
    if (!why.isEmpty()) {
        removeWithCompanions(staging);
        return QStringLiteral("Не удалось открыть документ «%1»: рабочая база «%2» не заменена (%3).")
            .arg(shown(path), shown(working), why);
    }
    if (module.failed(Db::Smeta))
        return module.failure(Db::Smeta);
    return {};
}

QString save(TModuleSQL &module, const QString &path) {
    QSqlDatabase db = module.database(Db::Smeta);
    if (!db.isOpen())
        return QStringLiteral("Не удалось сохранить файл «%1»: %2")
            .arg(shown(path), module.failure(Db::Smeta));
    return SqliteSnapshot::saveTo(db, path);
}

QString documentsFolder(const QString &dataFolder) {
    return QDir(dataFolder).filePath(QStringLiteral("Sm"));
}

QString draftsFolder(const QString &dataFolder) {
    return QDir(dataFolder).filePath(QStringLiteral("Sm/Drafts"));
}

QString autosaveFolder(const QString &dataFolder) {
    return QDir(dataFolder).filePath(QStringLiteral("Sm/Autosave"));
}

bool isInside(const QString &path, const QString &folder) {
    const QString f = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    const QString p = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    return p.startsWith(f + QLatin1Char('/'));
}

} // namespace DocumentFile
