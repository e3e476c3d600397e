#include "Schema.h"

#include "TextValues.h"

#include "Transaction.h"

#include <QHash>
#include <QMutex>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <sqlite3.h>

namespace Schema {

namespace {

struct Column {
    QString name;
    QString type;
};

QString createdTable(const QString &statement) {
    static const QRegularExpression re(
        QStringLiteral("^\\s*CREATE\\s+TABLE\\s+(?:IF\\s+NOT\\s+EXISTS\\s+)?(\\w+)"),
        QRegularExpression::CaseInsensitiveOption);
    return re.match(statement).captured(1);
}

QList<Column> columnsOf(QSqlDatabase db, const QString &table) {
    QList<Column> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(TextValues::sqlIdentifier(table))))
        while (q.next())
            out.append({q.value(1).toString(), q.value(2).toString()});
    return out;
}

bool has(const QList<Column> &columns, const QString &name) {
    for (const Column &c : columns)
        if (c.name.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

// A private in-memory SQLite database for working out what statements make: the layout is written
// down once, in the steps, and read back from what they create.
class Scratch {
public:
    Scratch() { sqlite3_open(":memory:", &m_db); }
    ~Scratch() { sqlite3_close(m_db); }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
    void exec(const QString &sql) { sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr); }
    QList<Column> columns(const QString &table) {
        QList<Column> out;
        sqlite3_stmt *st = nullptr;
        const QByteArray sql =
            QStringLiteral("PRAGMA table_info(%1)").arg(TextValues::sqlIdentifier(table)).toUtf8();
        if (sqlite3_prepare_v2(m_db, sql.constData(), -1, &st, nullptr) != SQLITE_OK)
            return out;
        while (sqlite3_step(st) == SQLITE_ROW) {
            auto text = [st](int i) {
                const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(st, i));
                return p ? QString::fromUtf8(p) : QString();
            };
            out.append({text(1), text(2)});
        }
        sqlite3_finalize(st);
        return out;
    }

private:
    sqlite3 *m_db = nullptr;
};

// The columns one CREATE TABLE statement gives its table.
QList<Column> referenceColumns(const QString &statement) {
    static QMutex mutex;
    static QHash<QString, QList<Column>> cache;
    QMutexLocker lock(&mutex);
    auto it = cache.find(statement);
    if (it == cache.end()) {
        Scratch s;
        s.exec(statement);
        it = cache.insert(statement, s.columns(createdTable(statement)));
    }
    return it.value();
}

QString failure(const QSqlQuery &q) {
    return q.lastError().text().trimmed();
}

QString runStep(QSqlDatabase db, const SchemaStep &step) {
    QSqlQuery q(db);
    for (const NewColumn &c : step.columns) {
        const QList<Column> present = columnsOf(db, c.table);
        if (present.isEmpty())
            return QStringLiteral("нет таблицы %1").arg(c.table);
        if (!has(present, c.column) && !q.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                                                   .arg(TextValues::sqlIdentifier(c.table),
                                                        TextValues::sqlIdentifier(c.column), c.type)))
            return failure(q);
    }
    for (const QString &s : step.statements)
        if (!q.exec(s))
            return failure(q);
    if (!step.completeColumns)
        return {};
    for (const QString &s : step.statements) {
        const QString table = createdTable(s);
        if (table.isEmpty())
            continue;
        const QList<Column> present = columnsOf(db, table);
        for (const Column &c : referenceColumns(s)) {
            if (has(present, c.name))
                continue;
            if (!q.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                            .arg(TextValues::sqlIdentifier(table), TextValues::sqlIdentifier(c.name),
                                 c.type.isEmpty() ? QStringLiteral("TEXT") : c.type)))
                return failure(q);
        }
    }
    return {};
}

} // namespace

int version(QSqlDatabase db) {
    QSqlQuery q(db);
    return q.exec(QStringLiteral("PRAGMA user_version")) && q.next() ? q.value(0).toInt() : 0;
}

int latestVersion(const QList<SchemaStep> &steps) {
    return steps.isEmpty() ? 0 : steps.last().number;
}

QString upgrade(QSqlDatabase db, const QList<SchemaStep> &steps) {
    if (!db.isOpen())
        return QStringLiteral("база данных не открыта");
    const int latest = latestVersion(steps);
    if (version(db) >= latest)
        return {};
    Transaction t(db);
    if (!t.active())
        return QStringLiteral("не удалось начать обновление до версии %1: %2").arg(latest).arg(t.error());
    // Read again under the write lock: another program may have upgraded the file meanwhile.
    const int from = version(db);
    for (const SchemaStep &step : steps) {
        if (step.number <= from)
            continue;
        QString why = runStep(db, step);
        QSqlQuery q(db);
        if (why.isEmpty() && !q.exec(QStringLiteral("PRAGMA user_version = %1").arg(step.number)))
            why = failure(q);
        if (!why.isEmpty())
            return QStringLiteral("не выполнен шаг %1 обновления до версии %2 (%3), файл оставлен как был")
                .arg(step.number)
                .arg(latest)
                .arg(why);
    }
    if (!t.commit())
        return QStringLiteral("обновление до версии %1 не записано (%2), файл оставлен как был")
            .arg(latest)
            .arg(t.error());
    return {};
}

QStringList columns(Db which, const QString &table) {
    return columns(which, table, latestVersion(which));
}

QStringList columns(Db which, const QString &table, int version) {
    static QMutex mutex;
    static QHash<QString, QStringList> cache;
    QMutexLocker lock(&mutex);
    const QString key =
        QStringLiteral("%1/%2/%3").arg(static_cast<int>(which)).arg(version).arg(table.toLower());
    auto it = cache.find(key);
    if (it == cache.end()) {
        Scratch s;
        for (const SchemaStep &step : schemaSteps(which)) {
            if (step.number > version)
                break;
            for (const NewColumn &c : step.columns)
                s.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                           .arg(TextValues::sqlIdentifier(c.table), TextValues::sqlIdentifier(c.column),
                                c.type));
            for (const QString &statement : step.statements)
                s.exec(statement);
        }
        QStringList names;
        for (const Column &c : s.columns(table))
            names << c.name;
        it = cache.insert(key, names);
    }
    return it.value();
}

bool clearTables(QSqlDatabase db, const QStringList &tables, QString *error) {
    auto fail = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    Transaction t(db);
    if (!t.active())
        return fail(t.error());
    QSqlQuery q(db);
    for (const QString &table : tables)
        if (!q.exec(QStringLiteral("DELETE FROM %1").arg(TextValues::sqlIdentifier(table))))
            return fail(failure(q));
    // sqlite_sequence exists once any AUTOINCREMENT table does; names there keep their creation case.
    if (q.exec(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name='sqlite_sequence'")) &&
        q.next()) {
        q.finish();
        q.prepare(QStringLiteral("DELETE FROM sqlite_sequence WHERE lower(name)=lower(?)"));
        for (const QString &table : tables) {
            q.addBindValue(table);
            if (!q.exec())
                return fail(failure(q));
        }
    }
    if (!t.commit())
        return fail(t.error());
    return true;
}

QString shareConnection(QSqlDatabase db) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("PRAGMA busy_timeout = %1").arg(kBusyTimeoutMs)))
        return failure(q);
    if (!q.exec(QStringLiteral("PRAGMA journal_mode = WAL")) || !q.next())
        return failure(q);
    const QString mode = q.value(0).toString();
    if (mode.compare(QLatin1String("wal"), Qt::CaseInsensitive) != 0)
        return QStringLiteral("журнал упреждающей записи недоступен (режим %1)").arg(mode);
    return {};
}

} // namespace Schema
