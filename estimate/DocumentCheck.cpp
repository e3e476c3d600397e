#include "DocumentCheck.h"

#include "DocumentChecksum.h"

#include "storage/Catalogue.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/UntrustedSqlite.h"

#include <algorithm>
#include <sqlite3.h>

namespace DocumentCheck {

namespace {

using TextValues::sqlIdentifier;

// One prepared statement, finalized with its scope.
class Statement {
public:
    Statement(sqlite3 *db, const QString &sql) : m_db(db) {
        m_rc = sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &m_st, nullptr);
    }
    ~Statement() { sqlite3_finalize(m_st); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    // SQLITE_ROW while there are rows; the failure code otherwise.
    int step() { return m_rc = m_st ? sqlite3_step(m_st) : m_rc; }
    bool done() const { return m_rc == SQLITE_DONE; }
    int code() const { return m_rc; }
    QString text(int i) const {
        const auto *p = reinterpret_cast<const char *>(sqlite3_column_text(m_st, i));
        return p ? QString::fromUtf8(p) : QString();
    }
    qint64 integer(int i) const { return sqlite3_column_int64(m_st, i); }
    void bind(int i, qint64 v) { sqlite3_bind_int64(m_st, i, v); }
    void reset() { sqlite3_reset(m_st); }
    QString failure() const { return UntrustedSqlite::failure(m_db, m_rc); }

private:
    sqlite3 *m_db;
    sqlite3_stmt *m_st = nullptr;
    int m_rc = SQLITE_OK;
};

QString canonicalTable(const QString &name) {
    for (const QString &t : tableNames(Db::Smeta))
        if (t.compare(name, Qt::CaseInsensitive) == 0)
            return t;
    return {};
}

// The document tables the file holds (today's names) with their columns as the file has them.
QList<QPair<QString, QStringList>> documentTables(sqlite3 *db, const QString &schema, QString *error) {
    QList<QPair<QString, QStringList>> out;
    QStringList names;
    {
        Statement q(db, QStringLiteral("SELECT name FROM %1.sqlite_master WHERE type='table'")
                            .arg(sqlIdentifier(schema)));
        while (q.step() == SQLITE_ROW)
            names << q.text(0);
        if (!q.done()) {
            *error = q.failure();
            return {};
        }
    }
    for (const QString &name : names) {
        const QString table = canonicalTable(name);
        if (table.isEmpty())
            continue;
        QStringList columns;
        Statement q(
            db, QStringLiteral("PRAGMA %1.table_info(%2)").arg(sqlIdentifier(schema), sqlIdentifier(name)));
        while (q.step() == SQLITE_ROW)
            columns << q.text(1);
        if (!q.done()) {
            *error = q.failure();
            return {};
        }
        out.append({table, columns});
    }
    return out;
}

// The position (from 1) of a record among the table's records.
qint64 position(sqlite3 *db, const QString &schema, const QString &table, qint64 rowid) {
    Statement q(db, QStringLiteral("SELECT count(*) FROM %1.%2 WHERE rowid <= %3")
                        .arg(sqlIdentifier(schema), sqlIdentifier(table))
                        .arg(rowid));
    return q.step() == SQLITE_ROW ? q.integer(0) : rowid;
}

// The first record whose cell of `column` is too long to be read at all: halves the rowid range
// until one record is left.
qint64 unreadableRow(sqlite3 *db, const QString &schema, const QString &table, const QString &column) {
    qint64 lo = 0, hi = 0;
    {
        Statement q(db, QStringLiteral("SELECT min(rowid), max(rowid) FROM %1.%2")
                            .arg(sqlIdentifier(schema), sqlIdentifier(table)));
        if (q.step() != SQLITE_ROW)
            return 0;
        lo = q.integer(0);
        hi = q.integer(1);
    }
    Statement q(db, QStringLiteral("SELECT count(length(%1)) FROM %2.%3 WHERE rowid BETWEEN ?1 AND ?2")
                        .arg(sqlIdentifier(column), sqlIdentifier(schema), sqlIdentifier(table)));
    while (lo < hi) {
        const qint64 mid = lo + (hi - lo) / 2;
        q.reset();
        q.bind(1, lo);
        q.bind(2, mid);
        const int rc = q.step();
        if ((rc & 0xff) == SQLITE_INTERRUPT)
            return 0;
        if (rc == SQLITE_ROW)
            lo = mid + 1; // the lower half reads
        else
            hi = mid;
    }
    return lo;
}

QString overlong(const QString &table, const QString &column, qint64 row) {
    return QStringLiteral("%1 (столбец «%2») длиннее %3 МБ")
        .arg(rowName(table, row), column)
        .arg(UntrustedSqlite::kMaxValueBytes / (1024 * 1024));
}

} // namespace

bool isDocumentTable(const QString &name) {
    return !canonicalTable(name).isEmpty() ||
           name.startsWith(QLatin1String("sqlite_"), Qt::CaseInsensitive) ||
           name.compare(DocumentChecksum::kTable, Qt::CaseInsensitive) == 0 ||
           name.compare(QLatin1String("cashstorage"), Qt::CaseInsensitive) == 0;
}

QString layout(sqlite3 *db, const QString &schema) {
    struct Entry {
        QString type, name, sql;
    };
    QList<Entry> entries;
    {
        Statement q(
            db, QStringLiteral("SELECT type, name, sql FROM %1.sqlite_master").arg(sqlIdentifier(schema)));
        while (q.step() == SQLITE_ROW)
            entries.append({q.text(0), q.text(1), q.text(2)});
        if (!q.done())
            return q.failure();
    }
    // What makes a file a document at all comes first: a database of another program is told so.
    auto smeta = std::find_if(entries.begin(), entries.end(), [](const Entry &e) {
        return e.type == QLatin1String("table") &&
               e.name.compare(QLatin1String("smeta"), Qt::CaseInsensitive) == 0;
    });
    if (smeta == entries.end())
        return QStringLiteral("в файле нет таблицы сметы");
    {
        bool names = false;
        Statement q(db, QStringLiteral("PRAGMA %1.table_info(%2)")
                            .arg(sqlIdentifier(schema), sqlIdentifier(smeta->name)));
        while (q.step() == SQLITE_ROW)
            names = names || q.text(1).compare(QLatin1String("nameras"), Qt::CaseInsensitive) == 0;
        if (!q.done())
            return q.failure();
        if (!names)
            return QStringLiteral("в таблице сметы нет наименований работ");
    }
    QStringList tables;
    for (const Entry &e : entries) {
        if (e.type == QLatin1String("view"))
            return QStringLiteral("в файле есть представление «%1», которого нет в формате документа")
                .arg(e.name);
        if (e.type == QLatin1String("trigger"))
            return QStringLiteral("в файле есть триггер «%1», которого нет в формате документа").arg(e.name);
        if (e.type != QLatin1String("table"))
            continue; // indexes are not read: the program makes its own
        if (!isDocumentTable(e.name))
            return QStringLiteral("в файле есть таблица «%1», которой нет в формате документа").arg(e.name);
        if (e.sql.trimmed().startsWith(QLatin1String("CREATE VIRTUAL"), Qt::CaseInsensitive))
            return QStringLiteral("таблица «%1» в файле виртуальная, а не таблица данных").arg(e.name);
        tables << e.name.toLower();
    }
    for (const QString &table : tables) {
        Statement q(
            db, QStringLiteral("PRAGMA %1.table_xinfo(%2)").arg(sqlIdentifier(schema), sqlIdentifier(table)));
        while (q.step() == SQLITE_ROW)
            if (q.integer(6) >= 2) // 2: generated and computed on reading, 3: generated and stored
                return QStringLiteral("в таблице «%1» есть вычисляемый столбец «%2»").arg(table, q.text(1));
        if (!q.done())
            return q.failure();
    }
    // The version the file claims: every table and column that the steps up to it make.
    int version = 0;
    {
        Statement q(db, QStringLiteral("PRAGMA %1.user_version").arg(sqlIdentifier(schema)));
        if (q.step() == SQLITE_ROW)
            version = static_cast<int>(std::clamp<qint64>(q.integer(0), 0, Schema::latestVersion(Db::Smeta)));
    }
    QString error;
    const auto present = documentTables(db, schema, &error);
    if (!error.isEmpty())
        return error;
    for (const QString &table : tableNames(Db::Smeta)) {
        const QStringList expected = Schema::columns(Db::Smeta, table, version);
        if (expected.isEmpty())
            continue;
        auto it =
            std::find_if(present.begin(), present.end(), [&](const auto &p) { return p.first == table; });
        if (it == present.end())
            return QStringLiteral("в файле нет таблицы %1").arg(table);
        for (const QString &column : expected) {
            const bool has = std::any_of(it->second.begin(), it->second.end(), [&](const QString &c) {
                return c.compare(column, Qt::CaseInsensitive) == 0;
            });
            if (!has)
                return QStringLiteral("в таблице %1 нет столбца %2").arg(table, column);
        }
    }
    return {};
}

QString rowCounts(sqlite3 *db, const QString &schema) {
    QString error;
    const auto tables = documentTables(db, schema, &error);
    if (!error.isEmpty())
        return error;
    for (const auto &table : tables) {
        Statement q(db, QStringLiteral("SELECT count(*) FROM %1.%2")
                            .arg(sqlIdentifier(schema), sqlIdentifier(table.first)));
        if (q.step() != SQLITE_ROW)
            return q.failure();
        const qint64 rows = q.integer(0);
        if (rows > kMaxRows)
            return QStringLiteral("%1 — число записей %2, а документ может содержать до %3")
                .arg(DocumentChecksum::describe(table.first),
                     TextValues::groupThousands(QString::number(rows)),
                     TextValues::groupThousands(QString::number(kMaxRows)));
    }
    return {};
}

bool longCells(sqlite3 *db, const QString &schema, QList<LongCell> *cells, QString *error) {
    cells->clear();
    const auto tables = documentTables(db, schema, error);
    if (!error->isEmpty())
        return false;
    for (const auto &[table, columns] : tables) {
        if (columns.isEmpty())
            continue;
        QStringList lengths;
        for (const QString &c : columns)
            lengths << QStringLiteral("length(%1)").arg(sqlIdentifier(c));
        // The lengths of every record are compared here: a condition over hundreds of columns would be
        // an expression deeper than the connection takes.
        Statement q(
            db, QStringLiteral("SELECT rowid, %1 FROM %2.%3")
                    .arg(lengths.join(QStringLiteral(", ")), sqlIdentifier(schema), sqlIdentifier(table)));
        QList<QPair<qint64, QList<qint64>>> found;
        while (q.step() == SQLITE_ROW) {
            QList<qint64> l;
            bool longer = false;
            for (int i = 0; i < columns.size(); ++i) {
                l << q.integer(i + 1);
                longer = longer || l.last() > kMaxCellChars;
            }
            if (longer)
                found.append({q.integer(0), l});
        }
        if ((q.code() & 0xff) == SQLITE_TOOBIG) {
            // A cell past what the connection reads: find which, to name it.
            for (const QString &c : columns) {
                Statement probe(db, QStringLiteral("SELECT count(length(%1)) FROM %2.%3")
                                        .arg(sqlIdentifier(c), sqlIdentifier(schema), sqlIdentifier(table)));
                if ((probe.step() & 0xff) != SQLITE_TOOBIG)
                    continue;
                const qint64 rowid = unreadableRow(db, schema, table, c);
                *error = overlong(table, c, position(db, schema, table, rowid));
                return false;
            }
        }
        if (!q.done()) {
            *error = q.failure();
            return false;
        }
        for (const auto &[rowid, l] : found) {
            const qint64 row = position(db, schema, table, rowid);
            for (int i = 0; i < columns.size(); ++i) {
                // The length of a blob is known without reading it: one past what is read is refused
                // here, before anything reads it.
                if (l.at(i) > UntrustedSqlite::kMaxValueBytes) {
                    *error = overlong(table, columns.at(i), row);
                    return false;
                }
                if (l.at(i) > kMaxCellChars)
                    cells->append({table, columns.at(i), row, l.at(i)});
            }
        }
    }
    return true;
}

QString rowName(const QString &table, qint64 row) {
    if (table.compare(QLatin1String("smeta"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("строка сметы %1").arg(row);
    if (table.compare(QLatin1String("materials"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("материал %1").arg(row);
    if (table.compare(QLatin1String("koef"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("строка коэффициентов %1").arg(row);
    return QStringLiteral("таблица %1, запись %2").arg(table).arg(row);
}

QString cutWarning(const QList<LongCell> &cells) {
    if (cells.isEmpty())
        return {};
    constexpr int kListed = 10;
    auto grouped = [](qint64 n) { return TextValues::groupThousands(QString::number(n)); };
    QStringList lines;
    for (int i = 0; i < cells.size() && i < kListed; ++i) {
        const LongCell &c = cells.at(i);
        lines << QStringLiteral("%1, столбец «%2»: %3 знаков")
                     .arg(rowName(c.table, c.row), c.column, grouped(c.length));
    }
    if (cells.size() > kListed)
        lines << QStringLiteral("и ещё %1").arg(cells.size() - kListed);
    return QStringLiteral(
               "В документе есть ячейки длиннее %1 знаков; они обрезаны до %1 знаков (файл на диске не "
               "изменён, пока документ не сохранён):\n%2")
        .arg(grouped(kMaxCellChars), lines.join(u'\n'));
}

} // namespace DocumentCheck
