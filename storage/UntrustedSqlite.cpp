#include "UntrustedSqlite.h"

#include <QSqlDriver>
#include <QVariant>
#include <sqlite3.h>
#include <time.h>

namespace UntrustedSqlite {

namespace {
// Virtual-machine steps between two looks at the clock: about a millisecond of work.
constexpr int kTickSteps = 10000;
} // namespace

sqlite3 *handle(QSqlDatabase db) {
    if (!db.isOpen() || !db.driver())
        return nullptr;
    const QVariant h = db.driver()->handle();
    if (!h.isValid() || qstrcmp(h.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(h.data());
}

void restrict(sqlite3 *db) {
    if (!db)
        return;
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_limit(db, SQLITE_LIMIT_LENGTH, kMaxValueBytes);
    sqlite3_limit(db, SQLITE_LIMIT_SQL_LENGTH, kMaxSqlBytes);
    sqlite3_limit(db, SQLITE_LIMIT_COLUMN, kMaxColumns);
    sqlite3_limit(db, SQLITE_LIMIT_EXPR_DEPTH, 200);
    sqlite3_limit(db, SQLITE_LIMIT_COMPOUND_SELECT, 10);
    sqlite3_limit(db, SQLITE_LIMIT_VDBE_OP, 250000);
    sqlite3_limit(db, SQLITE_LIMIT_FUNCTION_ARG, 8);
    sqlite3_limit(db, SQLITE_LIMIT_ATTACHED, 1);
    sqlite3_limit(db, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100);
    sqlite3_limit(db, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    // A damaged page must not take the cache with it: a small cache, sorting spilled to files.
    // The file's CHECK constraints are never the program's rules (its rows are copied into tables the
    // program makes), and SQLite's own check would compute them.
    sqlite3_exec(db,
                 "PRAGMA cell_size_check=ON; PRAGMA cache_size=-4096; PRAGMA mmap_size=0; "
                 "PRAGMA ignore_check_constraints=ON;",
                 nullptr, nullptr, nullptr);
}

namespace {
qint64 threadCpuNs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return qint64(t.tv_sec) * 1000000000 + t.tv_nsec;
}
} // namespace

Budget::Budget(sqlite3 *db, int milliseconds) : m_db(db), m_limit(milliseconds) {
    m_cpuStart = threadCpuNs();
    m_clock.start();
    if (m_db)
        sqlite3_progress_handler(m_db, kTickSteps, &Budget::tick, this);
}

Budget::~Budget() {
    if (m_db)
        sqlite3_progress_handler(m_db, 0, nullptr, nullptr);
}

int Budget::tick(void *self) {
    auto *b = static_cast<Budget *>(self);
    const qint64 cpuMs = (threadCpuNs() - b->m_cpuStart) / 1000000;
    if (b->m_cancelled || cpuMs > b->m_limit || b->m_clock.elapsed() > qint64(b->m_limit) * kWallFactor) {
        b->m_spent = true;
        return 1;
    }
    return 0;
}

QString failure(sqlite3 *db, int rc, const Budget *budget) {
    const QString message = QString::fromUtf8(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    switch (rc & 0xff) {
    case SQLITE_INTERRUPT:
        if (budget && budget->spent())
            return QStringLiteral("чтение файла не уложилось в %1 с и остановлено")
                .arg((budget->milliseconds() + 999) / 1000);
        return QStringLiteral("чтение файла прервано");
    case SQLITE_TOOBIG:
        return QStringLiteral("в файле есть значение длиннее %1 МБ").arg(kMaxValueBytes / (1024 * 1024));
    case SQLITE_NOMEM:
        return QStringLiteral("не хватает памяти");
    case SQLITE_CORRUPT:
    case SQLITE_FORMAT:
        return QStringLiteral("файл повреждён");
    case SQLITE_NOTADB:
        return QStringLiteral("файл не является базой данных");
    case SQLITE_CANTOPEN:
        return QStringLiteral("файл не открывается");
    case SQLITE_READONLY:
        return QStringLiteral("файл или папка доступны только для чтения");
    case SQLITE_FULL:
        return QStringLiteral("на диске нет свободного места");
    default:
        break;
    }
    // "malformed database schema (smeta) - too many columns on smeta": a table described in a way no
    // document is.
    static const QLatin1String malformed("malformed database schema (");
    if (message.startsWith(malformed)) {
        const QString table = message.mid(malformed.size()).section(u')', 0, 0);
        return QStringLiteral("описание таблицы «%1» в файле повреждено или недопустимо").arg(table);
    }
    return QStringLiteral("ошибка чтения файла (%1)").arg(message);
}

} // namespace UntrustedSqlite
