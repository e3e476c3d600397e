#include "FileConnection.h"

#include "storage/Schema.h"

#include <QAtomicInt>
#include <QSqlError>
#include <QSqlQuery>

FileConnection::FileConnection(const QString &path, Mode mode) {
    static QAtomicInt count;
    m_name = QStringLiteral("cashbook-file-%1").arg(count.fetchAndAddRelaxed(1));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
    db.setDatabaseName(path);
    db.setConnectOptions(mode == Mode::Foreign
                             ? QStringLiteral("QSQLITE_OPEN_READONLY")
                             : QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(Schema::kBusyTimeoutMs));
    if (!db.open()) {
        m_error = db.lastError().text();
        return;
    }
    if (mode == Mode::Foreign) {
        QSqlQuery q(db);
        q.exec(QStringLiteral("PRAGMA trusted_schema=OFF"));
        q.exec(QStringLiteral("PRAGMA cell_size_check=ON"));
    }
}

FileConnection::~FileConnection() {
    QSqlDatabase::database(m_name, false).close();
    QSqlDatabase::removeDatabase(m_name);
}
