#include "OldFormat.h"

#include "EstimateStore.h"
#include "storage/Catalogue.h"
#include "storage/Schema.h"
#include "storage/Transaction.h"

#include <QAtomicInt>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace OldFormat {

namespace {

QAtomicInt g_connections;

// A private Qt connection to one file, removed when it goes out of scope.
class Connection {
public:
    explicit Connection(const QString &path)
        : m_name(QStringLiteral("OldFormat#%1").arg(g_connections.fetchAndAddRelaxed(1))) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        db.open();
    }
    ~Connection() {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
};

QString quoted(const QString &identifier) {
    QString s = identifier;
    s.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + s + QLatin1Char('"');
}

// The table's columns, lower-cased (SQLite compares names without case); empty when there is no table.
QStringList columnsOf(QSqlDatabase db, const QString &table) {
    QStringList out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(quoted(table))))
        while (q.next())
            out << q.value(1).toString().toLower();
    return out;
}

QString failed(const QSqlQuery &q) {
    return q.lastError().text().trimmed();
}

QString upgradeOpen(QSqlDatabase db) {
    QSqlQuery q(db);
    // The file is not trusted until it has been brought to today's layout.
    q.exec(QStringLiteral("PRAGMA trusted_schema=OFF"));
    q.exec(QStringLiteral("PRAGMA cell_size_check=ON"));

    const QStringList smeta = columnsOf(db, QStringLiteral("smeta"));
    if (smeta.isEmpty())
        return QStringLiteral("в файле нет таблицы сметы");
    if (!smeta.contains(QStringLiteral("nameras")))
        return QStringLiteral("в таблице сметы нет наименований работ");

    QStringList drops;
    if (!q.exec(QStringLiteral("SELECT type, name FROM sqlite_master WHERE type IN ('trigger', 'view')")))
        return failed(q);
    while (q.next())
        drops << QStringLiteral("DROP %1 IF EXISTS %2")
                     .arg(q.value(0).toString() == QLatin1String("view") ? QStringLiteral("VIEW")
                                                                         : QStringLiteral("TRIGGER"),
                          quoted(q.value(1).toString()));
    q.finish();

    // One transaction for all of it: a file that cannot be brought up to date stays as it was.
    Transaction t(db);
    if (!t.active())
        return t.error();
    for (const QString &s : drops)
        if (!q.exec(s))
            return failed(q);
    QString why = Schema::upgrade(db, Db::Smeta);
    if (!why.isEmpty())
        return why;
    // The version a file claims is checked against what it holds: a file that says it is up to date
    // and lacks a table or column was damaged after it was written.
    for (const QString &table : tableNames(Db::Smeta)) {
        const QStringList present = columnsOf(db, table);
        if (present.isEmpty())
            return QStringLiteral("в файле нет таблицы %1").arg(table);
        for (const QString &column : Schema::columns(Db::Smeta, table))
            if (!present.contains(column.toLower()))
                return QStringLiteral("в таблице %1 нет столбца %2").arg(table, column);
    }
    if (!q.exec(QStringLiteral("SELECT COUNT(*) FROM koef")) || !q.next())
        return failed(q);
    const bool noKoef = q.value(0).toInt() == 0;
    q.finish();
    if (noKoef && !EstimateStore::writeDefaultKoefLines(db))
        return QStringLiteral("не удалось добавить строки коэффициентов");
    if (!t.commit())
        return t.error();
    return {};
}

} // namespace

QStringList currentColumns(const QString &table) {
    return Schema::columns(Db::Smeta, table);
}

QString upgrade(const QString &path) {
    Connection c(path);
    QSqlDatabase db = c.db();
    if (!db.isOpen())
        return db.lastError().text().trimmed();
    return upgradeOpen(db);
}

} // namespace OldFormat
