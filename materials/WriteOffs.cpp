#include "WriteOffs.h"

#include "storage/TextValues.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <QVariantList>

namespace WriteOffs {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text.trimmed();
    return false;
}

// The WHERE clause of a filter with its values: write-off records only ("dataoffs>''" also skips
// NULL and can use the index), then the customer, object, month, year and period in force.
QString where(const WriteOffFilter &f, QVariantList *values) {
    QString sql = QStringLiteral("dataoffs>''");
    auto add = [&](const QString &clause, const QString &value) {
        sql += QStringLiteral(" and ") + clause;
        values->append(value);
    };
    if (!f.customer.isEmpty())
        add(QStringLiteral("customer=?"), TextValues::nameToStored(f.customer));
    if (!f.object.isEmpty())
        add(QStringLiteral("object=?"), TextValues::nameToStored(f.object));
    if (!f.month.isEmpty())
        add(QStringLiteral("month=?"), f.month);
    if (!f.year.isEmpty())
        add(QStringLiteral("year=?"), f.year);
    if (f.from.isValid())
        add(QStringLiteral("date_compare>=?"), TextValues::dateCompareDay(f.from));
    if (f.to.isValid())
        add(QStringLiteral("date_compare<=?"), TextValues::dateCompareDay(f.to));
    return sql;
}

bool select(QSqlQuery &q, const QString &columns, const WriteOffFilter &filter, QString *error) {
    QVariantList values;
    const QString condition = where(filter, &values);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT ") + columns + QStringLiteral(" FROM storage WHERE ") + condition +
              QStringLiteral(" ORDER BY id"));
    for (const QVariant &v : values)
        q.addBindValue(v);
    return q.exec() || fail(error, q.lastError().text());
}

MoneyResult addAmount(MoneyResult sum, const QString &amount) {
    // An amount that is not a number counts for nothing, as in the estimate.
    const MoneyResult m = Money::parse(amount);
    return m ? sum + m : sum;
}

} // namespace

QString periodRefusal(const QDate &from, const QDate &to) {
    if (from.isValid() && to.isValid() && from > to)
        return QStringLiteral("Начало периода не должно превышать окончание");
    return {};
}

bool read(QSqlDatabase db, const WriteOffFilter &filter, std::vector<WriteOff> &out, QString *error) {
    out.clear();
    QSqlQuery q(db);
    if (!select(q,
                QStringLiteral("id, namemat, edizm, kolvo, price, summa, dataoffs, customer, object, month, "
                               "year, date_compare"),
                filter, error))
        return false;
    while (q.next()) {
        WriteOff w;
        w.id = q.value(0).toString();
        w.name = q.value(1).toString();
        w.unit = q.value(2).toString();
        w.quantity = q.value(3).toString();
        w.price = q.value(4).toString();
        w.sum = q.value(5).toString();
        w.date = q.value(6).toString();
        w.customer = TextValues::nameFromStored(q.value(7).toString());
        w.object = TextValues::nameFromStored(q.value(8).toString());
        w.month = q.value(9).toString();
        w.year = q.value(10).toString();
        w.dateCompare = q.value(11).toString();
        out.push_back(std::move(w));
    }
    return true;
}

MoneyResult soldTotal(QSqlDatabase db, const WriteOffFilter &filter, QString *error) {
    MoneyResult sum = Money();
    QSqlQuery q(db);
    if (!select(q, QStringLiteral("summa"), filter, error))
        return sum;
    while (q.next())
        sum = addAmount(sum, q.value(0).toString());
    return sum;
}

MoneyResult total(const std::vector<WriteOff> &rows) {
    MoneyResult sum = Money();
    for (const WriteOff &w : rows)
        sum = addAmount(sum, w.sum);
    return sum;
}

QString add(QSqlDatabase db, const WriteOff &w, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO storage (namemat, edizm, kolvo, price, summa, customer, object, "
                             "dataoffs, month, year, date_compare) values(?,?,?,?,?,?,?,?,?,?,?)"));
    for (const QString &v : {w.name, w.unit, w.quantity, w.price, w.sum, TextValues::nameToStored(w.customer),
                             TextValues::nameToStored(w.object), w.date, w.month, w.year, w.dateCompare})
        q.addBindValue(v.isNull() ? QStringLiteral("") : v);
    if (!q.exec()) {
        fail(error, q.lastError().text());
        return {};
    }
    return q.lastInsertId().toString();
}

bool remove(QSqlDatabase db, const QString &id, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM storage WHERE id=? AND dataoffs>''"));
    q.addBindValue(id);
    if (!q.exec())
        return fail(error, q.lastError().text());
    return q.numRowsAffected() > 0 || fail(error, QStringLiteral("Записи о списании больше нет"));
}

} // namespace WriteOffs
