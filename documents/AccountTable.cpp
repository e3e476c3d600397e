#include "AccountTable.h"

#include "customers/Records.h"
#include "storage/Schema.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <climits>

namespace AccountTable {

namespace {

const QString kRowPrefix = QStringLiteral("Row");

// Named items are the rows whose note is not a service row's.
const QString kItemsWhere = QStringLiteral("(note IS NULL OR note NOT LIKE 'Row%')");

bool insertServices(QSqlDatabase doc, const QVector<InvoiceService> &services, QString *error) {
    for (int i = 0; i < services.size(); ++i)
        if (!RecordIo::run(doc, QStringLiteral("INSERT INTO Account (name, value, note) values (?,?,?)"),
                           {services.at(i).name, services.at(i).price, kRowPrefix + QString::number(i + 1)},
                           error))
            return false;
    return true;
}

} // namespace

QVector<Item> items(QSqlDatabase doc) {
    QVector<Item> list;
    QSqlQuery q(doc);
    if (q.exec(QStringLiteral("SELECT name, value FROM Account WHERE %1 ORDER BY id").arg(kItemsWhere)))
        while (q.next())
            list.append({q.value(0).toString(), q.value(1).toString()});
    return list;
}

std::optional<QString> value(QSqlDatabase doc, const QString &name) {
    QSqlQuery q(doc);
    q.prepare(QStringLiteral("SELECT value FROM Account WHERE name=? AND %1 ORDER BY id").arg(kItemsWhere));
    q.addBindValue(name);
    if (q.exec() && q.next())
        return q.value(0).toString();
    return std::nullopt;
}

QVector<InvoiceService> services(QSqlDatabase doc) {
    struct Numbered {
        int number;
        qint64 id;
        InvoiceService service;
    };
    QVector<Numbered> rows;
    QSqlQuery q(doc);
    if (q.exec(QStringLiteral("SELECT id, name, value, note FROM Account WHERE note LIKE 'Row%'"))) {
        while (q.next()) {
            bool ok = false;
            const int n = q.value(3).toString().mid(kRowPrefix.size()).toInt(&ok);
            rows.append(
                {ok ? n : INT_MAX, q.value(0).toLongLong(), {q.value(1).toString(), q.value(2).toString()}});
        }
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Numbered &a, const Numbered &b) {
        return a.number != b.number ? a.number < b.number : a.id < b.id;
    });
    QVector<InvoiceService> list;
    for (const Numbered &r : rows)
        list.append(r.service);
    return list;
}

bool setValue(QSqlDatabase doc, const QString &name, const QString &value, QString *error) {
    return RecordIo::inTransaction(
        doc,
        [&] {
            int changed = 0;
            if (!RecordIo::run(
                    doc, QStringLiteral("UPDATE Account SET value=? WHERE name=? AND %1").arg(kItemsWhere),
                    {value, name}, error, &changed))
                return false;
            return changed > 0 ||
                   RecordIo::run(doc, QStringLiteral("INSERT INTO Account (name, value) values (?,?)"),
                                 {name, value}, error);
        },
        error);
}

bool writeServices(QSqlDatabase doc, const QVector<InvoiceService> &list, QString *error) {
    return RecordIo::inTransaction(
        doc,
        [&] {
            return RecordIo::run(doc, QStringLiteral("DELETE FROM Account WHERE note LIKE 'Row%'"), {},
                                 error) &&
                   insertServices(doc, list, error);
        },
        error);
}

bool rebuild(QSqlDatabase doc, const QVector<Item> &list, const QVector<InvoiceService> &services,
             QString *error) {
    return RecordIo::inTransaction(
        doc,
        [&] {
            if (!Schema::clearTables(doc, {QStringLiteral("Account")}, error))
                return false;
            for (const Item &item : list)
                if (!RecordIo::run(doc, QStringLiteral("INSERT INTO Account (name, value) values (?,?)"),
                                   {item.name, item.value}, error))
                    return false;
            return insertServices(doc, services, error);
        },
        error);
}

} // namespace AccountTable
