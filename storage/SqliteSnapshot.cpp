#include "SqliteSnapshot.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QVariant>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace SqliteSnapshot {

namespace {

// A temporary file older than this is left from a killed process, not from a copy in progress.
constexpr qint64 kStaleTempSeconds = 600;
// How long a copy waits for a writer of the source to finish.
constexpr int kBusyRetries = 500;
constexpr int kBusySleepMs = 20;

QString named(const QString &path, const QString &why) {
    return QStringLiteral("Не удалось сохранить файл «%1»: %2.").arg(QDir::toNativeSeparators(path), why);
}

// SQLite's result code in Russian; an input/output error carries the system's own reason.
QString sqliteText(sqlite3 *db, int rc) {
    switch (rc & 0xff) {
    case SQLITE_FULL:
        return QStringLiteral("на диске нет свободного места");
    case SQLITE_IOERR: {
        const int sys = db ? sqlite3_system_errno(db) : 0;
        return sys ? errnoText(sys) : QStringLiteral("ошибка записи на диск");
    }
    case SQLITE_READONLY:
        return QStringLiteral("файл или папка доступны только для чтения");
    case SQLITE_CANTOPEN: {
        const int sys = db ? sqlite3_system_errno(db) : 0;
        return sys ? errnoText(sys) : QStringLiteral("файл не открывается");
    }
    case SQLITE_NOTADB:
        return QStringLiteral("файл не является базой данных");
    case SQLITE_CORRUPT:
        return QStringLiteral("файл повреждён");
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return QStringLiteral("база данных занята другим процессом");
    case SQLITE_NOMEM:
        return QStringLiteral("не хватает памяти");
    case SQLITE_PERM:
        return QStringLiteral("нет прав доступа");
    default:
        break;
    }
    if (db)
        return QString::fromUtf8(sqlite3_errmsg(db));
    return QString::fromUtf8(sqlite3_errstr(rc));
}

QString canonicalTarget(const QString &targetPath) {
    const QFileInfo fi(targetPath);
    // Saving over a link writes the file it points to, not a new file in place of the link.
    if (fi.isSymLink() && fi.exists())
        return fi.canonicalFilePath();
    return fi.absoluteFilePath();
}

// Removes hidden temporary files of earlier copies to the same target that a killed process left.
void removeStaleTemps(const QString &targetPath) {
    const QFileInfo fi(targetPath);
    QDir dir(fi.absolutePath());
    const QString prefix = QStringLiteral(".") + fi.fileName() + QStringLiteral(".");
    const QDateTime limit = QDateTime::currentDateTime().addSecs(-kStaleTempSeconds);
    const auto entries =
        dir.entryInfoList({prefix + QStringLiteral("*")}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo &e : entries)
        if (e.fileName().startsWith(prefix) && e.lastModified() < limit)
            QFile::remove(e.absoluteFilePath());
}

QString makeTemp(const QString &targetPath, QString *error) {
    removeStaleTemps(targetPath);
    QByteArray pattern = QFile::encodeName(tempPrefix(targetPath) + QStringLiteral("XXXXXX"));
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
        *error = named(targetPath, errnoText(errno));
        return {};
    }
    ::close(fd);
    return QFile::decodeName(pattern);
}

// Backs up `from` into the empty file at `tempPath`.
QString backup(sqlite3 *from, const QString &tempPath, const Seal &seal) {
    sqlite3 *to = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(tempPath).constData(), &to, SQLITE_OPEN_READWRITE, nullptr);
    if (rc != SQLITE_OK) {
        const QString why = sqliteText(to, rc);
        sqlite3_close(to);
        return why;
    }
    // The whole file is flushed once at the end; a failure before that throws the file away.
    sqlite3_exec(to, "PRAGMA synchronous=OFF;", nullptr, nullptr, nullptr);
    QString why;
    sqlite3_backup *b = sqlite3_backup_init(to, "main", from, "main");
    if (!b) {
        why = sqliteText(to, sqlite3_errcode(to));
    } else {
        int retries = 0;
        do {
            rc = sqlite3_backup_step(b, -1);
            if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED) {
                if (++retries > kBusyRetries)
                    break;
                sqlite3_sleep(kBusySleepMs);
            }
        } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
        sqlite3_backup_finish(b);
        if (rc != SQLITE_DONE)
            why = sqliteText(to, rc);
    }
    if (why.isEmpty()) {
        // A document file is a plain rollback-journal database, whatever the source used.
        rc = sqlite3_exec(to, "PRAGMA journal_mode=DELETE;", nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK)
            why = sqliteText(to, rc);
    }
    if (why.isEmpty() && seal)
        why = seal(to);
    if (sqlite3_close(to) != SQLITE_OK && why.isEmpty())
        why = QStringLiteral("файл не закрылся");
    return why;
}

QString finish(const QString &tempPath, const QString &targetPath) {
    QString why = check(tempPath);
    if (why.isEmpty()) {
        // The new file keeps the rights of the one it replaces; a new one gets the usual rights.
        // Only the file's own bits: the "user" flags say what the running user may do, which for the
        // system's administrator is everything, and would make a read-only file writable.
        constexpr QFileDevice::Permissions kModeBits =
            QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner | QFileDevice::ReadGroup |
            QFileDevice::WriteGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::WriteOther |
            QFileDevice::ExeOther;
        const QFileDevice::Permissions perms =
            QFileInfo::exists(targetPath)
                ? QFile::permissions(targetPath) & kModeBits
                : (QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
        QFile::setPermissions(tempPath, perms);
        if (!syncPath(tempPath))
            why = QStringLiteral("не удалось записать данные на диск");
    }
    if (why.isEmpty())
        why = replaceFile(tempPath, targetPath);
    if (!why.isEmpty()) {
        QFile::remove(tempPath);
        QFile::remove(tempPath + QStringLiteral("-journal"));
        return named(targetPath, why);
    }
    return {};
}

QString copyFrom(sqlite3 *from, const QString &targetPath, const Seal &seal) {
    const QString target = canonicalTarget(targetPath);
    if (!QFileInfo(QFileInfo(target).absolutePath()).isDir())
        return named(target, QStringLiteral("папка «%1» не существует")
                                 .arg(QDir::toNativeSeparators(QFileInfo(target).absolutePath())));
    QString error;
    const QString temp = makeTemp(target, &error);
    if (temp.isEmpty())
        return error;
    const QString why = backup(from, temp, seal);
    if (!why.isEmpty()) {
        QFile::remove(temp);
        QFile::remove(temp + QStringLiteral("-journal"));
        return named(target, why);
    }
    return finish(temp, target);
}

} // namespace

QString errnoText(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("на диске нет свободного места");
    case EFBIG:
        return QStringLiteral("файл слишком велик для этого диска");
    case EACCES:
    case EPERM:
        return QStringLiteral("нет прав на запись в эту папку");
    case EROFS:
        return QStringLiteral("диск доступен только для чтения");
    case ENOENT:
        return QStringLiteral("папка или файл не существует");
    case ENOTDIR:
        return QStringLiteral("путь не ведёт к папке");
    case EISDIR:
        return QStringLiteral("на этом месте находится папка");
    case ENAMETOOLONG:
        return QStringLiteral("слишком длинное имя файла");
    case EIO:
        return QStringLiteral("ошибка ввода-вывода диска");
    case EXDEV:
        return QStringLiteral("файл и временная копия оказались на разных дисках");
    default:
        return QString::fromLocal8Bit(std::strerror(error));
    }
}

QString tempPrefix(const QString &targetPath) {
    const QFileInfo fi(targetPath);
    return fi.absolutePath() + QStringLiteral("/.") + fi.fileName() + QStringLiteral(".");
}

bool syncPath(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

QString replaceFile(const QString &from, const QString &to) {
    if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        return errnoText(errno);
    // The rename itself is durable only once the folder is flushed.
    syncPath(QFileInfo(to).absolutePath());
    return {};
}

QString check(const QString &path) {
    sqlite3 *db = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    if (rc != SQLITE_OK) {
        const QString why = sqliteText(db, rc);
        sqlite3_close(db);
        return why;
    }
    // A file from elsewhere is read as untrusted: no functions from its schema, every cell's size
    // checked, no writes to the schema.
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_exec(db, "PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON;", nullptr, nullptr, nullptr);
    QString why;
    sqlite3_stmt *st = nullptr;
    rc = sqlite3_prepare_v2(db, "PRAGMA quick_check", -1, &st, nullptr);
    if (rc != SQLITE_OK) {
        why = sqliteText(db, rc);
    } else {
        rc = sqlite3_step(st);
        if (rc != SQLITE_ROW) {
            why = sqliteText(db, rc);
        } else {
            const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(st, 0));
            const QString result = QString::fromUtf8(text ? text : "");
            if (result != QLatin1String("ok"))
                why = QStringLiteral("файл повреждён (%1)").arg(result.left(200));
        }
        sqlite3_finalize(st);
    }
    sqlite3_close(db);
    return why;
}

QString saveTo(QSqlDatabase source, const QString &targetPath, const Seal &seal) {
    QVariant h = source.isOpen() && source.driver() ? source.driver()->handle() : QVariant();
    sqlite3 *from = nullptr;
    if (h.isValid() && qstrcmp(h.typeName(), "sqlite3*") == 0)
        from = *static_cast<sqlite3 *const *>(h.data());
    if (!from)
        return named(targetPath, QStringLiteral("рабочая база не открыта"));
    return copyFrom(from, targetPath, seal);
}

QString copyFile(const QString &sourcePath, const QString &targetPath, const Seal &seal) {
    sqlite3 *from = nullptr;
    const int rc =
        sqlite3_open_v2(QFile::encodeName(sourcePath).constData(), &from, SQLITE_OPEN_READONLY, nullptr);
    if (rc != SQLITE_OK) {
        const QString why = sqliteText(from, rc);
        sqlite3_close(from);
        return QStringLiteral("Не удалось прочитать файл «%1»: %2.")
            .arg(QDir::toNativeSeparators(sourcePath), why);
    }
    sqlite3_busy_timeout(from, kBusyRetries * kBusySleepMs);
    const QString why = copyFrom(from, targetPath, seal);
    sqlite3_close(from);
    return why;
}

} // namespace SqliteSnapshot
