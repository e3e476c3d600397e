#include "SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QVariant>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace SqliteSnapshot {

namespace {

QString named(const QString &path, const QString &why) {
    return QStringLiteral("Не удалось сохранить файл «%1»: %2").arg(QDir::toNativeSeparators(path), why);
}

bool syncPath(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

// Backs up `from` into a fresh database file at `tempPath`.
QString backup(sqlite3 *from, const QString &tempPath) {
    sqlite3 *to = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(tempPath).constData(), &to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        QString why = to ? QString::fromUtf8(sqlite3_errmsg(to)) : QStringLiteral("нет памяти");
        sqlite3_close(to);
        return why;
    }
    QString why;
    sqlite3_backup *b = sqlite3_backup_init(to, "main", from, "main");
    if (!b) {
        why = QString::fromUtf8(sqlite3_errmsg(to));
    } else {
        int rc;
        do {
            rc = sqlite3_backup_step(b, -1);
            if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED)
                sqlite3_sleep(20);
        } while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED);
        sqlite3_backup_finish(b);
        if (rc != SQLITE_DONE)
            why = QString::fromUtf8(sqlite3_errstr(rc));
    }
    if (why.isEmpty()) {
        // A document file is a plain rollback-journal database, whatever the source used.
        sqlite3_exec(to, "PRAGMA journal_mode=DELETE;", nullptr, nullptr, nullptr);
    }
    if (sqlite3_close(to) != SQLITE_OK && why.isEmpty())
        why = QStringLiteral("файл не закрылся");
    return why;
}

QString finish(const QString &tempPath, const QString &targetPath) {
    QString why = check(tempPath);
    if (why.isEmpty() && !syncPath(tempPath))
        why = QStringLiteral("не удалось записать данные на диск");
    if (why.isEmpty() && ::rename(QFile::encodeName(tempPath).constData(),
                                  QFile::encodeName(targetPath).constData()) != 0)
        why = QString::fromLocal8Bit(strerror(errno));
    if (!why.isEmpty()) {
        QFile::remove(tempPath);
        return named(targetPath, why);
    }
    syncPath(QFileInfo(targetPath).absolutePath());
    return {};
}

QString tempBeside(const QString &targetPath, QString *error) {
    QTemporaryFile t(QFileInfo(targetPath).absolutePath() + QStringLiteral("/.") + QFileInfo(targetPath).fileName() +
                     QStringLiteral(".XXXXXX"));
    t.setAutoRemove(false);
    if (!t.open()) {
        *error = named(targetPath, t.errorString());
        return {};
    }
    const QString name = t.fileName();
    t.close();
    return name;
}

} // namespace

QString check(const QString &path) {
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        QString why = db ? QString::fromUtf8(sqlite3_errmsg(db)) : QStringLiteral("нет памяти");
        sqlite3_close(db);
        return why;
    }
    sqlite3_exec(db, "PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON;", nullptr, nullptr, nullptr);
    QString why;
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, "PRAGMA quick_check", -1, &st, nullptr) != SQLITE_OK) {
        why = QString::fromUtf8(sqlite3_errmsg(db));
    } else {
        const int rc = sqlite3_step(st);
        if (rc != SQLITE_ROW)
            why = QString::fromUtf8(sqlite3_errmsg(db));
        else {
            const QString result = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)));
            if (result != QLatin1String("ok"))
                why = result;
        }
        sqlite3_finalize(st);
    }
    sqlite3_close(db);
    return why;
}

QString saveTo(QSqlDatabase source, const QString &targetPath) {
    QVariant h = source.driver() ? source.driver()->handle() : QVariant();
    sqlite3 *from = nullptr;
    if (h.isValid() && qstrcmp(h.typeName(), "sqlite3*") == 0)
        from = *static_cast<sqlite3 *const *>(h.data());
    if (!from)
        return named(targetPath, QStringLiteral("рабочая база не открыта"));
    QString error;
    const QString temp = tempBeside(targetPath, &error);
    if (temp.isEmpty())
        return error;
    const QString why = backup(from, temp);
    if (!why.isEmpty()) {
        QFile::remove(temp);
        return named(targetPath, why);
    }
    return finish(temp, targetPath);
}

QString copyFile(const QString &sourcePath, const QString &targetPath) {
    sqlite3 *from = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(sourcePath).constData(), &from, SQLITE_OPEN_READONLY, nullptr) !=
        SQLITE_OK) {
        QString why = from ? QString::fromUtf8(sqlite3_errmsg(from)) : QStringLiteral("нет памяти");
        sqlite3_close(from);
        return named(targetPath, why);
    }
    QString error;
    const QString temp = tempBeside(targetPath, &error);
    if (temp.isEmpty()) {
        sqlite3_close(from);
        return error;
    }
    const QString why = backup(from, temp);
    sqlite3_close(from);
    if (!why.isEmpty()) {
        QFile::remove(temp);
        return named(targetPath, why);
    }
    return finish(temp, targetPath);
}

} // namespace SqliteSnapshot
