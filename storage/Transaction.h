#pragma once
// One transaction on one connection, held by a scope: begun by the constructor, kept only by an
// explicit commit(), rolled back by the destructor otherwise (an early return, a failed statement).
//
// On SQLite the outermost guard takes the write lock at once ("BEGIN IMMEDIATE"): two programs
// writing the same file then wait for each other within the busy timeout, instead of both reading
// first and one of them failing with "database is locked" when it comes to write. A guard opened
// while its connection is already inside a transaction becomes a savepoint of that transaction, so a
// function that writes under a guard may be called alone or as part of a bigger guarded change:
// its commit() keeps its work inside the outer transaction, its rollback undoes only its own work.
// Other drivers (the remote MySQL server) get a plain transaction and refuse to nest: the inner
// guard is not active and error() says why.

#include <QSqlDatabase>
#include <QString>

class Transaction {
public:
    explicit Transaction(QSqlDatabase db);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    // Begun and neither committed nor rolled back yet. A guard that could not begin is not active
    // and error() holds the reason; commit() on it fails.
    bool active() const { return m_active; }
    // True when the guard is a savepoint inside a transaction that was open already.
    bool nested() const { return !m_savepoint.isEmpty(); }

    // Keeps the work. False when it could not be kept: everything of this guard is rolled back and
    // error() holds the reason.
    bool commit();
    // Undoes the work now (the destructor does it otherwise).
    void rollback();

    QString error() const { return m_error; }

private:
    bool exec(const QString &sql);

    QSqlDatabase m_db;
    QString m_savepoint; // name of the savepoint of a nested guard
    bool m_active = false;
    bool m_sqlite = false;
    QString m_error;
};
