#include "DatabaseRestore.h"

#include "StoredFile.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sqlite3.h>

namespace DatabaseRestore {

namespace {

// The table without which the file is not the database it claims to be.
QString mainTable(Db db) {
    return db == Db::People ? QStringLiteral("customer") : QStringLiteral("cash");
}

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

// What in the file's schema keeps it from being the program's database (already checked sound): its
// main table missing, or triggers and views, which the program never makes and which would run
// inside the program's own statements. Read-only and without trusting the schema; empty when fine.
QString schemaProblem(const QString &path, const QString &table) {
    sqlite3 *db = nullptr;
    QString why = QStringLiteral("файл не открывается");
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_exec(db, "PRAGMA trusted_schema=OFF;", nullptr, nullptr, nullptr);
        sqlite3_stmt *st = nullptr;
        if (sqlite3_prepare_v2(db,
                               "SELECT (SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name=?1 "
                               "COLLATE NOCASE), (SELECT name FROM sqlite_master WHERE type IN "
                               "('trigger','view') LIMIT 1)",
                               -1, &st, nullptr) == SQLITE_OK) {
            const QByteArray name = table.toUtf8();
            sqlite3_bind_text(st, 1, name.constData(), name.size(), SQLITE_TRANSIENT);
            if (sqlite3_step(st) == SQLITE_ROW) {
                const auto *extra = reinterpret_cast<const char *>(sqlite3_column_text(st, 1));
                if (sqlite3_column_int(st, 0) == 0)
                    why = QStringLiteral("в нём нет таблицы «%1»").arg(table);
                else if (extra)
                    why = QStringLiteral("в нём есть чужой триггер или представление «%1»")
                              .arg(QString::fromUtf8(extra).left(64));
                else
                    why.clear();
            }
        }
        sqlite3_finalize(st);
    }
    sqlite3_close(db);
    return why;
}

// The module's file opens and, for the people database, its customers read as the program reads them.
QString opensAgain(TModuleSQL &module, Db db) {
    QSqlDatabase con = module.reconnect(db);
    if (module.failed(db) || !con.isOpen())
        return module.failure(db);
    if (db == Db::People) {
        QSqlQuery probe(con);
        if (!probe.exec(QStringLiteral("SELECT fax FROM customer WHERE 1")))
            return probe.lastError().text();
    }
    return {};
}

} // namespace

bool databaseOf(const QString &name, Db *db) {
    if (StoredFiles::isPeopleBase(name)) {
        *db = Db::People;
        return true;
    }
    if (StoredFiles::isCashBase(name)) {
        *db = Db::Cash;
        return true;
    }
    return false;
}

QDateTime localTime(const TModuleSQL &module, Db db) {
    const QFileInfo file(module.filePath(db));
    if (!file.exists())
        return {};
    QDateTime t = file.lastModified();
    const QFileInfo wal(file.filePath() + QStringLiteral("-wal"));
    if (wal.exists() && wal.size() > 0 && wal.lastModified() > t)
        t = wal.lastModified();
    return t;
}

bool localIsNewer(const TModuleSQL &module, Db db, const QString &datefile) {
    const QDateTime local = localTime(module, db);
    if (!local.isValid())
        return false;
    const QDateTime stored = StoredFiles::parseTime(datefile);
    // A row whose time cannot be read may be older: the user decides.
    return !stored.isValid() || local > stored;
}

QString newerQuestion(const QString &name) {
    return QStringLiteral("Файл ") + name +
           QStringLiteral(" имеет более позднюю версию. Заменить его на старый файл?");
}

QString restore(TModuleSQL &module, Db db, const QString &downloaded) {
    const QString target = module.filePath(db);
    const QString name = QFileInfo(target).fileName();
    if (const QString why = SqliteSnapshot::check(downloaded); !why.isEmpty())
        return QStringLiteral(
                   "Файл «%1» с сервера не является исправной базой данных: %2. База на компьютере "
                   "оставлена как была.")
            .arg(name, why);
    if (const QString why = schemaProblem(downloaded, mainTable(db)); !why.isEmpty())
        return QStringLiteral("Файл «%1» с сервера не похож на базу программы: %2. База на компьютере "
                              "оставлена как была.")
            .arg(name, why);

    // The local database as it is now, to be put back if the new one does not open.
    QTemporaryDir keep(QFileInfo(target).absolutePath() + QStringLiteral("/.restore-XXXXXX"));
    const QString before = keep.filePath(name);
    const bool hadLocal = QFileInfo::exists(target);
    if (hadLocal) {
        if (!keep.isValid())
            return QStringLiteral("Не удалось сохранить копию базы «%1» перед заменой: %2.")
                .arg(shown(target), keep.errorString());
        QSqlDatabase current = module.database(db);
        const QString why = current.isOpen() ? SqliteSnapshot::saveTo(current, before)
                                             : SqliteSnapshot::copyFile(target, before);
        if (!why.isEmpty())
            return why + QStringLiteral(" База на компьютере оставлена как была.");
    }

    module.close(db);
    if (const QString why = SqliteSnapshot::restoreInto(downloaded, target); !why.isEmpty()) {
        module.reconnect(db);
        return why + QStringLiteral(" База на компьютере оставлена как была.");
    }
    const QString failure = opensAgain(module, db);
    if (failure.isEmpty())
        return {};
    module.close(db);
    QString back;
    if (hadLocal) {
        back = SqliteSnapshot::restoreInto(before, target);
    } else {
        // There was none: the program makes a new empty one.
        for (const QString &suffix : {QString(), QStringLiteral("-wal"), QStringLiteral("-shm")})
            QFile::remove(target + suffix);
    }
    module.reconnect(db);
    if (!back.isEmpty()) {
        keep.setAutoRemove(false);
        return QStringLiteral(
                   "Файл «%1» с сервера не открылся (%2), и прежнюю базу вернуть не удалось: %3 Её копия "
                   "оставлена в «%4».")
            .arg(name, failure.trimmed(), back, shown(before));
    }
    return QStringLiteral("Файл «%1» с сервера не открылся: %2. Прежняя база возвращена на место.")
        .arg(name, failure.trimmed());
}

} // namespace DatabaseRestore
