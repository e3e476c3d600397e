#include "Transaction.h"

#include <QAtomicInt>
#include <QMutex>
#include <QSet>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <sqlite3.h>

namespace {

QAtomicInt g_savepoints;

// Connections of other drivers that hold a guard now: their drivers cannot tell us.
QMutex g_openMutex;
QSet<QString> g_open;

sqlite3 *sqliteHandle(const QSqlDatabase &db) {
    const QVariant h = db.driver() ? db.driver()->handle() : QVariant();
    if (h.isValid() && qstrcmp(h.typeName(), "sqlite3*") == 0)
        return *static_cast<sqlite3 *const *>(h.data());
    return nullptr;
}

} // namespace

Transaction::Transaction(QSqlDatabase db) : m_db(db) {
    if (!m_db.isOpen()) {
        m_error = QStringLiteral("база данных не открыта");
        return;
    }
    if (sqlite3 *handle = sqliteHandle(m_db)) {
        m_sqlite = true;
        if (sqlite3_get_autocommit(handle) == 0) {
            m_savepoint = QStringLiteral("virn_guard_%1").arg(g_savepoints.fetchAndAddRelaxed(1));
            m_active = exec(QStringLiteral("SAVEPOINT ") + m_savepoint);
        } else {
            m_active = exec(QStringLiteral("BEGIN IMMEDIATE"));
        }
        return;
    }
    {
        QMutexLocker lock(&g_openMutex);
        if (g_open.contains(m_db.connectionName())) {
            m_error = QStringLiteral("соединение «%1» уже внутри транзакции: вложенная транзакция на нём "
                                     "невозможна")
                          .arg(m_db.connectionName());
            return;
        }
        g_open.insert(m_db.connectionName());
    }
    m_active = m_db.transaction();
    if (!m_active) {
        m_error = m_db.lastError().text().trimmed();
        QMutexLocker lock(&g_openMutex);
        g_open.remove(m_db.connectionName());
    }
}

Transaction::~Transaction() {
    if (m_active)
        rollback();
}

bool Transaction::exec(const QString &sql) {
    QSqlQuery q(m_db);
    if (q.exec(sql))
        return true;
    m_error = q.lastError().text().trimmed();
    return false;
}

bool Transaction::commit() {
    if (!m_active) {
        if (m_error.isEmpty())
            m_error = QStringLiteral("транзакция уже завершена");
        return false;
    }
    bool ok = false;
    if (m_sqlite)
        ok = exec(nested() ? QStringLiteral("RELEASE SAVEPOINT ") + m_savepoint : QStringLiteral("COMMIT"));
    else if (!(ok = m_db.commit()))
        m_error = m_db.lastError().text().trimmed();
    if (!ok) {
        const QString why = m_error;
        rollback();
        m_error = why;
        return false;
    }
    m_active = false;
    if (!m_sqlite) {
        QMutexLocker lock(&g_openMutex);
        g_open.remove(m_db.connectionName());
    }
    return true;
}

void Transaction::rollback() {
    if (!m_active)
        return;
    m_active = false;
    if (!m_sqlite) {
        m_db.rollback();
        QMutexLocker lock(&g_openMutex);
        g_open.remove(m_db.connectionName());
        return;
    }
    // A failed statement may already have ended the whole transaction (a full disk does): then there
    // is nothing left to undo and these fail harmlessly.
    QSqlQuery q(m_db);
    if (nested()) {
        q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT ") + m_savepoint);
        q.exec(QStringLiteral("RELEASE SAVEPOINT ") + m_savepoint);
    } else {
        q.exec(QStringLiteral("ROLLBACK"));
    }
}
