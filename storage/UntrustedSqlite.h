#pragma once
// Reading an SQLite file that came from elsewhere (a document file, a copy left by a crashed program):
// before anything of it is trusted, its connection gets SQLite's defensive settings and hard limits,
// and every statement runs under a time budget, so that no file can make the program wait or eat
// memory without end. Nothing in such a file is ever run as the program's own SQL.

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QString>
#include <atomic>

struct sqlite3;

namespace UntrustedSqlite {

// The largest value (text or blob) such a connection reads; a longer one fails the statement.
inline constexpr int kMaxValueBytes = 32 * 1024 * 1024;
// The largest SQL text and the most columns of a table or a result.
inline constexpr int kMaxSqlBytes = 1024 * 1024;
inline constexpr int kMaxColumns = 500;

// The raw handle of a Qt SQLite connection (null when it is not an open SQLite connection).
sqlite3 *handle(QSqlDatabase db);

// Defensive settings (no schema writes, no functions from the file's schema that are not innocuous,
// every cell's size checked), small caches and the limits above. Applies to files attached later too.
void restrict(sqlite3 *db);

// A time budget for the statements of one connection: past the deadline (or once cancelled) the
// running statement stops with SQLITE_INTERRUPT. Removed when it goes out of scope. The budget counts
// the processor time of the thread, which is what a hostile file costs, so that a busy machine does
// not turn a sound document away; the clock on the wall has a looser limit, for a disk that stalls.
class Budget {
public:
    Budget(sqlite3 *db, int milliseconds);
    ~Budget();
    Budget(const Budget &) = delete;
    Budget &operator=(const Budget &) = delete;

    // True once a statement was stopped by the budget.
    bool spent() const { return m_spent; }
    int milliseconds() const { return m_limit; }
    void cancel() { m_cancelled = true; }

    static constexpr int kWallFactor = 6;

private:
    static int tick(void *self);
    sqlite3 *m_db;
    int m_limit;
    qint64 m_cpuStart = 0; // ns of processor time of the thread
    QElapsedTimer m_clock;
    std::atomic<bool> m_cancelled{false};
    bool m_spent = false;
};

// The reason a statement failed, in Russian, from SQLite's result code (the budget, a value too long,
// a damaged file, no memory, ...).
QString failure(sqlite3 *db, int rc, const Budget *budget = nullptr);

} // namespace UntrustedSqlite
