#include "DocumentFile.h"

#include "DocumentChecksum.h"
#include "DocumentImport.h"
#include "storage/FileKind.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"
#include "storage/UntrustedSqlite.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>
#include <unistd.h>

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

bool hasCompanion(const QString &path, const char *suffix) {
    const QFileInfo fi(path + QLatin1String(suffix));
    return fi.isFile() && fi.size() > 0;
}

// Plays a journal left beside the document by a writer that stopped half-way back into the document,
// as SQLite does when it opens such a file: the document returns to its last complete version.
QString rollBack(const QString &path) {
    sqlite3 *db = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
    QString why;
    if (rc == SQLITE_OK) {
        UntrustedSqlite::restrict(db);
        UntrustedSqlite::Budget budget(db, DocumentImport::kBudgetMs);
        rc = sqlite3_exec(db, "PRAGMA schema_version", nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK)
            why = UntrustedSqlite::failure(db, rc, &budget);
    } else {
        why = UntrustedSqlite::failure(db, rc);
    }
    sqlite3_close(db);
    return why;
}

// The document's bytes in a private file: what the import reads is never the user's file, and
// nothing beside it but a journal to be played back is taken along. A log (-wal) of another program
// beside the document is never applied.
QString takeCopy(const QString &path, const QString &copy, QStringList *warnings) {
    const QFileInfo fi(path);
    const bool writable = fi.isWritable() && QFileInfo(fi.absolutePath()).isWritable();
    bool journalInCopy = false;
    if (hasCompanion(path, "-journal")) {
        if (writable) {
            // A journal SQLite does not play back (not one of a write in progress) stays where it is.
            if (rollBack(path).isEmpty() && !QFile::exists(path + QStringLiteral("-journal")))
                warnings->append(
                    QStringLiteral("Рядом с документом остался журнал записи, которая не была "
                                   "завершена (программа, писавшая файл, была прервана). Незавершённая "
                                   "запись отменена: документ открыт в последнем полностью записанном "
                                   "виде."));
        } else {
            journalInCopy = true;
            warnings->append(
                QStringLiteral("Рядом с документом остался журнал записи, которая не была завершена, "
                               "а папка или файл недоступны для записи. Открыта копия документа, в "
                               "которой незавершённая запись отменена; сохраните документ в другое "
                               "место."));
        }
    }
    if (hasCompanion(path, "-wal"))
        warnings->append(
            QStringLiteral("Рядом с документом лежит журнал «%1» другой программы. Он не применён: "
                           "документ открыт таким, каким он записан в самом файле.")
                .arg(QFileInfo(path + QStringLiteral("-wal")).fileName()));
    if (!QFile::copy(path, copy))
        return QStringLiteral("не удалось прочитать файл");
    QFile::setPermissions(copy, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (journalInCopy && !QFile::copy(path + QStringLiteral("-journal"), copy + QStringLiteral("-journal")))
        return QStringLiteral("не удалось прочитать журнал рядом с файлом");
    // A file marked for a write-ahead log would make SQLite look for one: the copy is a plain file.
    QFile f(copy);
    if (f.open(QIODevice::ReadWrite) && f.seek(18)) {
        char mode[2];
        if (f.read(mode, 2) == 2 && (mode[0] == 2 || mode[1] == 2)) {
            f.seek(18);
            f.write("\x01\x01", 2);
        }
    }
    return {};
}

} // namespace

QString notADocument(const QString &path, const QString &reason) {
    return QStringLiteral("Файл «%1» повреждён или не является документом Вирн-Смета: %2.")
        .arg(shown(path), reason);
}

QString notAFile(const QString &path) {
    const FileKind::Kind kind = FileKind::of(path);
    if (kind == FileKind::Kind::File)
        return {};
    if (kind == FileKind::Kind::Missing)
        return QStringLiteral("Файл «%1» не найден.").arg(shown(path));
    return QStringLiteral("«%1» не открывается как документ: %2.").arg(shown(path), FileKind::problem(path));
}

QString open(TModuleSQL &module, const QString &path, QString *warning) {
    if (QString why = notAFile(path); !why.isEmpty())
        return why;
    const QFileInfo fi(path);
    if (!fi.isReadable())
        return QStringLiteral("Нет прав на чтение файла «%1».").arg(shown(path));
    if (fi.size() == 0)
        return notADocument(path, QStringLiteral("файл пуст"));
    if (fi.size() > kMaxBytes)
        return QStringLiteral(
                   "Документ «%1» не открыт: он больше, чем программа может взять в работу (файл больше "
                   "%2 МБ).")
            .arg(shown(path))
            .arg(kMaxBytes / (1024 * 1024));

    const QString working = module.filePath(Db::Smeta);
    // Private files per process: two copies of the program may share the data folder.
    const QString prefix = QFileInfo(working).absolutePath() +
                           QStringLiteral("/.smeta-open-%1").arg(QCoreApplication::applicationPid());
    const QString copy = prefix + QStringLiteral("-file.db");
    const QString staging = prefix + QStringLiteral(".db");
    removeWithCompanions(copy);
    removeWithCompanions(staging);
    QStringList warnings;
    bool tooLarge = false;
    QString why = takeCopy(path, copy, &warnings);
    if (why.isEmpty())
        why = DocumentImport::run(copy, staging, &warnings, &tooLarge);
    removeWithCompanions(copy);
    if (why.isEmpty() && !SqliteSnapshot::syncPath(staging))
        why = QStringLiteral("не удалось записать копию на диск");
    if (!why.isEmpty()) {
        removeWithCompanions(staging);
        if (tooLarge)
            return QStringLiteral(
                       "Документ «%1» не открыт: он больше, чем программа может взять в работу (%2).")
                .arg(shown(path), why);
        return notADocument(path, why);
    }

    // Only now does the working database change. A leftover journal of the old working database
    // must not be played back onto the new one.
    module.close(Db::Smeta);
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        QFile::remove(working + QLatin1String(suffix));
    why = SqliteSnapshot::replaceFile(staging, working);
    module.database(Db::Smeta);
    if (!why.isEmpty()) {
        removeWithCompanions(staging);
        return QStringLiteral("Не удалось открыть документ «%1»: рабочая база «%2» не заменена (%3).")
            .arg(shown(path), shown(working), why);
    }
    if (module.failed(Db::Smeta))
        return module.failure(Db::Smeta);
    if (warning)
        *warning = warnings.join(u'\n');
    return {};
}

QString save(TModuleSQL &module, const QString &path) {
    QSqlDatabase db = module.database(Db::Smeta);
    if (!db.isOpen())
        return QStringLiteral("Не удалось сохранить файл «%1»: %2")
            .arg(shown(path), module.failure(Db::Smeta));
    // A journal or log that another program left beside the file would be played onto the new
    // version at the next open: they go before the new version takes the file's place.
    const QString target = QFileInfo(path).absoluteFilePath();
    for (const char *suffix : {"-journal", "-wal", "-shm"})
        if (QFileInfo(target + QLatin1String(suffix)).isFile())
            QFile::remove(target + QLatin1String(suffix));
    return SqliteSnapshot::saveTo(db, path, &DocumentChecksum::write);
}

bool isReadOnly(const QString &path) {
    const QFileInfo fi(path);
    // The file's own mark counts even for a user the system lets write anything.
    return fi.exists() && (!fi.isWritable() || !(fi.permissions() & QFileDevice::WriteOwner));
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
