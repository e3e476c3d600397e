#include "CashStore.h"

#include "customers/Records.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>

namespace CashStore {

namespace {

bool failed(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text().trimmed();
    return false;
}

// Inserts one row; *id gets its key.
bool insertRow(QSqlDatabase db, const QString &table, const QStringList &columns, const QVariantList &values,
               QString *id, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO %1 (%2) values(%3)")
                  .arg(table, columns.join(QStringLiteral(", ")), RecordIo::placeholders(columns.size())));
    for (const QVariant &v : values)
        q.addBindValue(v);
    if (!q.exec())
        return failed(q, error);
    *id = q.lastInsertId().toString();
    return true;
}

const QStringList kLineColumns = {"name", "edizm", "date", "kolvo", "price", "sum", "val"};

QVariantList lineValues(const CheckLine &l) {
    return {l.name, l.edizm, l.date, l.kolvo, l.price, l.sum, l.val};
}

bool readLines(QSqlQuery &q, std::vector<CheckLine> *out, QString *error) {
    if (!q.exec())
        return failed(q, error);
    const QSqlRecord r = q.record();
    const int id = r.indexOf(QStringLiteral("id")), date = r.indexOf(QStringLiteral("date")),
              name = r.indexOf(QStringLiteral("name")), edizm = r.indexOf(QStringLiteral("edizm")),
              kolvo = r.indexOf(QStringLiteral("kolvo")), price = r.indexOf(QStringLiteral("price")),
              sum = r.indexOf(QStringLiteral("sum")), val = r.indexOf(QStringLiteral("val"));
    while (q.next())
        out->push_back({q.value(id).toString(), q.value(date).toString(), q.value(name).toString(),
                        q.value(edizm).toString(), q.value(kolvo).toString(), q.value(price).toString(),
                        q.value(sum).toString(), q.value(val).toString()});
    return true;
}

// Sums amounts of a query's columns: first..first+5 the six categories, income counted, the rest spent.
MoneyResult balanceOf(QSqlQuery &q) {
    __int128 kopecks = 0;
    while (q.next())
        for (int i = 0; i < CashCategory::kCount; ++i) {
            const QString text = q.value(i).toString();
            if (text.isEmpty())
                continue;
            const MoneyResult m = Money::parse(text);
            if (m.ok())
                kopecks += i == CashCategory::kIncoming ? m->kopecks() : -m->kopecks();
        }
    if (kopecks < -Money::kMaxKopecks || kopecks > Money::kMaxKopecks)
        return MoneyResult::refused(NumberProblem::TooLarge);
    return *Money::fromKopecks(static_cast<qint64>(kopecks));
}

} // namespace

namespace {

// The statement with the named columns in place of "SELECT *".
QString selecting(const QString &statement, const QString &columns) {
    QString sql = statement;
    return sql.replace(0, QStringLiteral("SELECT *").size(), QStringLiteral("SELECT ") + columns);
}

QString amountColumns() {
    QStringList amounts;
    for (const QString &f : CashCategory::fields())
        amounts << f;
    return amounts.join(QLatin1Char(','));
}

} // namespace

bool load(QSqlDatabase book, const CashFilter &filter, std::vector<qint64> *ids,
          std::vector<CashAmounts> *amounts, QString *error) {
    ids->clear();
    amounts->clear();
    // The filter's statement, reading what the totals need; a grid of 50,000 rows shows a few dozen.
    QSqlQuery q(book);
    q.setForwardOnly(true);
    if (!q.exec(selecting(CashSql::records(filter), QStringLiteral("_id,") + amountColumns())))
        return failed(q, error);
    const int only = filter.category - 1; // the one amount kept, or -1
    while (q.next()) {
        ids->push_back(q.value(0).toLongLong());
        CashAmounts a;
        for (int i = 0; i < CashCategory::kCount; ++i)
            if (only < 0 || i == only)
                a.read(i, q.value(i + 1).toString());
        amounts->push_back(a);
    }
    return true;
}

bool entries(QSqlDatabase book, const std::vector<qint64> &ids, std::vector<CashEntry> *out, QString *error) {
    out->assign(ids.size(), CashEntry());
    QHash<qint64, size_t> position;
    for (size_t i = 0; i < ids.size(); ++i) {
        position.insert(ids[i], i);
        (*out)[i].id = QString::number(ids[i]);
    }
    constexpr size_t kBatch = 500; // below SQLite's limit of bound values
    for (size_t from = 0; from < ids.size(); from += kBatch) {
        const size_t n = std::min(kBatch, ids.size() - from);
        QSqlQuery q(book);
        q.setForwardOnly(true);
        q.prepare(QStringLiteral("SELECT * FROM cash WHERE _id IN (%1)")
                      .arg(RecordIo::placeholders(static_cast<int>(n))));
        for (size_t i = 0; i < n; ++i)
            q.addBindValue(ids[from + i]);
        if (!q.exec())
            return failed(q, error);
        const CashEntryReader reader(q.record());
        while (q.next()) {
            CashEntry e = reader.read(q);
            const auto at = position.constFind(e.id.toLongLong());
            if (at != position.constEnd())
                (*out)[*at] = std::move(e);
        }
    }
    return true;
}

MoneyResult balance(QSqlDatabase book, const QString &customer, const QString &object, QString *error) {
    // The statement of the balance, reading the amounts only.
    QString sql = CashSql::balance(customer, object);
    QStringList amounts;
    for (const QString &f : CashCategory::fields())
        amounts << f;
    sql.replace(0, QStringLiteral("SELECT *").size(),
                QStringLiteral("SELECT ") + amounts.join(QLatin1Char(',')));
    QSqlQuery q(book);
    q.setForwardOnly(true);
    if (!q.exec(sql)) {
        failed(q, error);
        return MoneyResult::refused(NumberProblem::NotANumber);
    }
    return balanceOf(q);
}

QStringList years(QSqlDatabase book) {
    QStringList out;
    QSqlQuery q(book);
    if (q.exec(CashSql::years()))
        while (q.next()) {
            const QString y = q.value(0).toString().trimmed();
            if (!y.isEmpty())
                out << y;
        }
    std::sort(out.begin(), out.end());
    return out;
}

bool update(QSqlDatabase book, const CashEntry &e, const QString &field, const QString &value, bool dated,
            QString *error) {
    if (!CashEntry::columns().contains(field)) {
        if (error)
            *error = QStringLiteral("нет столбца %1").arg(field);
        return false;
    }
    int changed = 0;
    const bool ok =
        dated
            ? RecordIo::run(
                  book,
                  QStringLiteral("UPDATE Cash SET %1=?,month=?,year=?,date_compare=? WHERE _id=?").arg(field),
                  {value, e.month, e.year, e.dateCompare, e.id}, error, &changed)
            : RecordIo::run(book, QStringLiteral("UPDATE Cash SET %1=? WHERE _id=?").arg(field),
                            {value, e.id}, error, &changed);
    if (ok && changed == 0 && error)
        *error = QStringLiteral("записи нет в книге: её удалили в другой копии программы");
    return ok && changed > 0;
}

bool insert(QSqlDatabase book, CashEntry *e, QString *error) {
    QVariantList values;
    for (const QString &v : e->values())
        values << v;
    return insertRow(book, QStringLiteral("Cash"), CashEntry::columns(), values, &e->id, error);
}

bool remove(QSqlDatabase book, const QString &id, QString *error) {
    return RecordIo::inTransaction(
        book,
        [&] {
            return RecordIo::run(book, QStringLiteral("DELETE FROM checks WHERE val=?"), {id}, error) &&
                   RecordIo::run(book, QStringLiteral("DELETE FROM Cash WHERE _id=?"), {id}, error);
        },
        error);
}

bool clear(QSqlDatabase book, QString *error) {
    return Schema::clearTables(book, {QStringLiteral("cash"), QStringLiteral("checks")}, error) &&
           RecordIo::run(book, QStringLiteral("VACUUM;"), {}, error);
}

bool markReceipts(QSqlDatabase book, const QString &id, QString *error) {
    return RecordIo::run(book, QStringLiteral("UPDATE Cash SET cheki=? WHERE _id=?;"), {id, id}, error);
}

bool lines(QSqlDatabase book, const QString &key, std::vector<CheckLine> *out, QString *error) {
    out->clear();
    QSqlQuery q(book);
    q.prepare(QStringLiteral("SELECT * FROM checks WHERE val=? ORDER BY id"));
    q.addBindValue(key);
    return readLines(q, out, error);
}

bool linesOf(QSqlDatabase book, const QStringList &keys, std::vector<CheckLine> *out, QString *error) {
    out->clear();
    if (keys.isEmpty())
        return true;
    // In batches below SQLite's limit of bound values.
    constexpr int kBatch = 500;
    for (int from = 0; from < keys.size(); from += kBatch) {
        const QStringList part = keys.mid(from, kBatch);
        QSqlQuery q(book);
        q.prepare(QStringLiteral("SELECT * FROM checks WHERE val IN (%1) ORDER BY id")
                      .arg(RecordIo::placeholders(part.size())));
        for (const QString &k : part)
            q.addBindValue(k);
        if (!readLines(q, out, error))
            return false;
    }
    return true;
}

bool insertLine(QSqlDatabase book, CheckLine *line, QString *error) {
    return insertRow(book, QStringLiteral("checks"), kLineColumns, lineValues(*line), &line->id, error);
}

bool updateLine(QSqlDatabase book, const CheckLine &line, QString *error) {
    return RecordIo::run(book,
                         QStringLiteral("UPDATE checks SET name=?,edizm=?,date=?,kolvo=?,price=?,sum=?,val=? "
                                        "WHERE id=?"),
                         lineValues(line) << line.id, error);
}

bool removeLine(QSqlDatabase book, const QString &id, QString *error) {
    return RecordIo::run(book, QStringLiteral("DELETE FROM checks WHERE id=?"), {id}, error);
}

bool removeReceipts(QSqlDatabase book, const QString &id, QString *error) {
    return RecordIo::inTransaction(
        book,
        [&] {
            return RecordIo::run(book, QStringLiteral("DELETE FROM checks WHERE val=?"), {id}, error) &&
                   RecordIo::run(book, QStringLiteral("UPDATE Cash SET cheki='' WHERE _id=?"), {id}, error);
        },
        error);
}

} // namespace CashStore
