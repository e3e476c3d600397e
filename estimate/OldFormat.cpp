#include "OldFormat.h"

#include "DocumentChecksum.h"
#include "EstimateStore.h"
#include "storage/Catalogue.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"
#include "storage/UntrustedSqlite.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace OldFormat {

namespace {

using TextValues::sqlIdentifier;

struct Column {
    QString name;
    bool rowKey = false; // INTEGER PRIMARY KEY: the record's own number
};

QList<Column> columnsOf(QSqlDatabase db, const QString &schema, const QString &table) {
    QList<Column> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA %1.table_info(%2)").arg(sqlIdentifier(schema), sqlIdentifier(table))))
        while (q.next())
            out.append({q.value(1).toString(),
                        q.value(5).toInt() == 1 && q.value(2).toString().compare(QLatin1String("INTEGER"),
                                                                                 Qt::CaseInsensitive) == 0});
    return out;
}

QString failed(const QSqlQuery &q) {
    return q.lastError().text().trimmed();
}

} // namespace

QStringList currentColumns(const QString &table) {
    return Schema::columns(Db::Smeta, table);
}

QString rebuild(QSqlDatabase db, const QString &schema, int maxCellChars) {
    Transaction t(db);
    if (!t.active())
        return t.error();
    QSqlQuery q(db);
    for (const QString &table : tableNames(Db::Smeta)) {
        // The sums describe the file as it was saved; the next save writes new ones.
        if (table == DocumentChecksum::kTable)
            continue;
        const QList<Column> from = columnsOf(db, schema, table);
        if (from.isEmpty())
            continue; // a table the file lacks stays empty
        const QList<Column> to = columnsOf(db, QStringLiteral("main"), table);
        QStringList names, values;
        bool keyed = false;
        for (const Column &c : to) {
            const auto it = std::find_if(from.begin(), from.end(), [&c](const Column &f) {
                return f.name.compare(c.name, Qt::CaseInsensitive) == 0;
            });
            if (it == from.end())
                continue;
            names << sqlIdentifier(c.name);
            if (c.rowKey || maxCellChars <= 0) {
                keyed = keyed || c.rowKey;
                values << sqlIdentifier(it->name);
            } else {
                values << QStringLiteral("CASE WHEN length(%1) > %2 THEN substr(%1, 1, %2) ELSE %1 END")
                              .arg(sqlIdentifier(it->name))
                              .arg(maxCellChars);
            }
        }
        if (!keyed) {
            // Records keep their order and numbers also where the table has no key column of its own.
            names.prepend(QStringLiteral("rowid"));
            values.prepend(QStringLiteral("rowid"));
        }
        if (!q.exec(
                QStringLiteral("INSERT INTO main.%1 (%2) SELECT %3 FROM %4.%1 ORDER BY rowid")
                    .arg(sqlIdentifier(table), names.join(u','), values.join(u','), sqlIdentifier(schema))))
            return QStringLiteral("таблица %1 не прочитана: %2")
                .arg(table, UntrustedSqlite::failure(UntrustedSqlite::handle(db),
                                                     q.lastError().nativeErrorCode().toInt()));
    }
    if (!q.exec(QStringLiteral("SELECT COUNT(*) FROM main.koef")) || !q.next())
        return failed(q);
    const bool noKoef = q.value(0).toInt() == 0;
    q.finish();
    if (noKoef && !EstimateStore::writeDefaultKoefLines(db))
        return QStringLiteral("не удалось добавить строки коэффициентов");
    if (!t.commit())
        return t.error();
    return {};
}

} // namespace OldFormat
