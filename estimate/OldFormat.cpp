#include "OldFormat.h"

#include "EstimateStore.h"
#include "storage/Catalogue.h"

#include <QAtomicInt>
#include <QHash>
#include <QMutex>
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

struct Column {
    QString name;
    QString type;
};

QList<Column> columnsOf(QSqlDatabase db, const QString &table) {
    QList<Column> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(quoted(table))))
        while (q.next())
            out.append({q.value(1).toString(), q.value(2).toString()});
    return out;
}

// Today's tables and their columns, read once from an in-memory database made by the creation
// statements, so that the layout is written down in one place only.
const QHash<QString, QList<Column>> &reference() {
    static QMutex mutex;
    static QHash<QString, QList<Column>> tables;
    QMutexLocker lock(&mutex);
    if (tables.isEmpty()) {
        Connection c(QStringLiteral(":memory:"));
        QSqlDatabase db = c.db();
        QSqlQuery q(db);
        for (const QString &s : createStatements(Db::Smeta))
            q.exec(s);
        for (const QString &t : tableNames(Db::Smeta))
            tables.insert(t, columnsOf(db, t));
    }
    return tables;
}

bool hasColumn(const QList<Column> &cols, const QString &name) {
    for (const Column &c : cols)
        if (c.name.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

QString failed(const QSqlQuery &q) {
    return q.lastError().text().trimmed();
}

QString upgradeOpen(QSqlDatabase db) {
    QSqlQuery q(db);
    // The file is not trusted until it has been brought to today's layout.
    q.exec(QStringLiteral("PRAGMA trusted_schema=OFF"));
    q.exec(QStringLiteral("PRAGMA cell_size_check=ON"));

    const QList<Column> smeta = columnsOf(db, QStringLiteral("smeta"));
    if (smeta.isEmpty())
        return QStringLiteral("в файле нет таблицы сметы");
    if (!hasColumn(smeta, QStringLiteral("nameras")))
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

    if (!db.transaction())
        return db.lastError().text().trimmed();
    auto rollback = [&db](const QString &why) {
        db.rollback();
        return why;
    };
    for (const QString &s : drops)
        if (!q.exec(s))
            return rollback(failed(q));
    for (const QString &s : createStatements(Db::Smeta))
        if (!q.exec(s))
            return rollback(failed(q));
    const auto &ref = reference();
    for (auto it = ref.constBegin(); it != ref.constEnd(); ++it) {
        const QList<Column> present = columnsOf(db, it.key());
        for (const Column &c : it.value()) {
            if (hasColumn(present, c.name))
                continue;
            if (!q.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                            .arg(quoted(it.key()), quoted(c.name),
                                 c.type.isEmpty() ? QStringLiteral("TEXT") : c.type)))
                return rollback(failed(q));
        }
    }
    if (!q.exec(QStringLiteral("SELECT COUNT(*) FROM koef")) || !q.next())
        return rollback(failed(q));
    const bool noKoef = q.value(0).toInt() == 0;
    q.finish();
    if (noKoef && !EstimateStore::writeDefaultKoefLines(db))
        return rollback(QStringLiteral("не удалось добавить строки коэффициентов"));
    if (!db.commit())
        return rollback(db.lastError().text().trimmed());
    return {};
}

} // namespace

QStringList currentColumns(const QString &table) {
    QStringList out;
    for (const Column &c : reference().value(table))
        out << c.name;
    return out;
}

QString upgrade(const QString &path) {
    Connection c(path);
    QSqlDatabase db = c.db();
    if (!db.isOpen())
        return db.lastError().text().trimmed();
    return upgradeOpen(db);
}

} // namespace OldFormat
