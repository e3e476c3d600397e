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
    auto add = [&](const QString &clause, const QVariant &value) {
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

// "SELECT <columns> FROM storage WHERE <filter> [and <extra>] ORDER BY id".
bool select(QSqlQuery &q, const QString &columns, const WriteOffFilter &filter, QString *error,
            const QString &extra = {}, const QVariantList &extraValues = {}) {
    QVariantList values;
    QString condition = where(filter, &values);
    if (!extra.isEmpty()) {
        condition += QStringLiteral(" and ") + extra;
        values += extraValues;
    }
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT ") + columns + QStringLiteral(" FROM storage WHERE ") + condition +
              QStringLiteral(" ORDER BY id"));
    for (const QVariant &v : values)
        q.addBindValue(v);
    return q.exec() || fail(error, q.lastError().text());
}

const QString kColumns = QStringLiteral(
    "id, namemat, edizm, kolvo, price, summa, dataoffs, customer, object, month, year, date_compare");

void readRows(QSqlQuery &q, std::vector<WriteOff> &out) {
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
}

// Kopecks of an amount in the program's own form (digits, a comma, two digits, as Money::text writes
// it), read without the general number rule: the same value Money::parse gives, much faster for the
// totals of long lists. nullopt for any other text.
std::optional<qint64> plainKopecks(const QString &text) {
    const int n = text.size();
    if (n < 4 || n > 15 || text.at(n - 3) != QLatin1Char(','))
        return std::nullopt;
    qint64 kopecks = 0;
    for (int i = 0; i < n; ++i) {
        if (i == n - 3)
            continue;
        const char16_t c = text.at(i).unicode();
        if (c < u'0' || c > u'9')
            return std::nullopt;
        kopecks = kopecks * 10 + (c - u'0');
    }
    return kopecks;
}

} // namespace

MoneyResult addAmount(MoneyResult sum, const QString &amount) {
    if (const std::optional<qint64> kopecks = plainKopecks(amount))
        return sum + *Money::fromKopecks(*kopecks); // 12 digits at most: within the maximum
    // An amount that is not a number counts for nothing, as in the estimate.
    const MoneyResult m = Money::parse(amount);
    return m ? sum + m : sum;
}

QString periodRefusal(const QDate &from, const QDate &to) {
    if (from.isValid() && to.isValid() && from > to)
        return QStringLiteral("Начало периода не должно превышать окончание");
    return {};
}

bool read(QSqlDatabase db, const WriteOffFilter &filter, std::vector<WriteOff> &out, QString *error) {
    out.clear();
    QSqlQuery q(db);
    if (!select(q, kColumns, filter, error))
        return false;
    readRows(q, out);
    return true;
}

bool ids(QSqlDatabase db, const WriteOffFilter &filter, std::vector<qint64> &out, MoneyResult *total,
         QString *error) {
    out.clear();
    QSqlQuery q(db);
    if (!select(q, QStringLiteral("id, summa"), filter, error))
        return false;
    MoneyResult sum = Money();
    while (q.next()) {
        out.push_back(q.value(0).toLongLong());
        sum = addAmount(sum, q.value(1).toString());
    }
    if (total)
        *total = sum;
    return true;
}

bool readRange(QSqlDatabase db, const WriteOffFilter &filter, qint64 firstId, qint64 lastId,
               std::vector<WriteOff> &out, QString *error) {
    out.clear();
    QSqlQuery q(db);
    if (!select(q, kColumns, filter, error, QStringLiteral("id>=? and id<=?"), {firstId, lastId}))
        return false;
    readRows(q, out);
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
