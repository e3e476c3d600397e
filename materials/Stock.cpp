#include "Stock.h"

#include "estimate/RowAmount.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

QString stockModeCaption(StockMode mode) {
    return mode == StockMode::Shop ? QStringLiteral("Магазин") : QStringLiteral("Склад");
}

StockMode stockModeFromCaption(const QString &caption) {
    return caption.trimmed() == QStringLiteral("Магазин") ? StockMode::Shop : StockMode::Warehouse;
}

bool belowMinimum(const StockItem &item) {
    if (TextValues::isBlank(item.minlimit))
        return false;
    const auto minimum = TextValues::parseAmount(item.minlimit);
    if (!minimum || minimum->isZero() || minimum->isNegative())
        return false;
    if (TextValues::isBlank(item.quantity))
        return true;
    const auto quantity = TextValues::parseAmount(item.quantity);
    return quantity && *quantity < *minimum;
}

QString sellingPrice(const StockItem &item) {
    return TextValues::parsePositivePrice(item.sale) ? item.sale.trimmed() : item.price.trimmed();
}

std::optional<Money> stockAmount(const StockItem &item) {
    return RowAmount::of(item.quantity, item.price, item.sum).amount;
}

std::optional<Money> stockMarkup(const StockItem &item) {
    const auto quantity = TextValues::parseAmount(item.quantity);
    const auto purchase = TextValues::parsePrice(item.price);
    const auto sale = TextValues::parsePrice(item.sale);
    if (!quantity || !purchase || !sale)
        return std::nullopt;
    const MoneyResult markup = Money::product(*sale, *quantity) - Money::product(*purchase, *quantity);
    return markup ? std::optional<Money>(*markup) : std::nullopt;
}

namespace StockStore {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text.trimmed();
    return false;
}

bool run(QSqlQuery &q, QString *error) {
    return q.exec() || fail(error, q.lastError().text());
}

QString text(const QString &v) {
    return v.isNull() ? QStringLiteral("") : v;
}

// Stock rows have no write-off date; the index on dataoffs finds them.
const QString kStockRows = QStringLiteral("(dataoffs IS NULL OR dataoffs='')");
const QString kColumns =
    QStringLiteral("id, data, namemat, edizm, kolvo, price, summa, minlimit, client, sale, note");

StockItem fromQuery(const QSqlQuery &q) {
    StockItem s;
    s.id = q.value(0).toString();
    s.date = q.value(1).toString();
    s.name = q.value(2).toString();
    s.unit = q.value(3).toString();
    s.quantity = q.value(4).toString();
    s.price = q.value(5).toString();
    s.sum = q.value(6).toString();
    s.minlimit = q.value(7).toString();
    s.client = q.value(8).toString();
    s.sale = q.value(9).toString();
    s.note = q.value(10).toString();
    return s;
}

std::optional<StockItem> first(QSqlDatabase db, const QString &where, const QVariant &value, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM storage WHERE ") + where +
              QStringLiteral(" AND ") + kStockRows + QStringLiteral(" ORDER BY id LIMIT 1"));
    q.addBindValue(value);
    if (!run(q, error) || !q.next())
        return std::nullopt;
    return fromQuery(q);
}

QString insert(QSqlDatabase db, const QStringList &columns, const QStringList &values, QString *error) {
    QSqlQuery q(db);
    QStringList marks;
    for (int i = 0; i < columns.size(); ++i)
        marks << QStringLiteral("?");
    q.prepare(QStringLiteral("INSERT INTO storage (%1) values(%2)")
                  .arg(columns.join(QLatin1Char(',')), marks.join(QLatin1Char(','))));
    for (const QString &v : values)
        q.addBindValue(text(v));
    if (!run(q, error))
        return {};
    return q.lastInsertId().toString();
}

} // namespace

bool read(QSqlDatabase db, std::vector<StockItem> &out, QString *error) {
    out.clear();
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM storage WHERE ") + kStockRows +
                QStringLiteral(" ORDER BY id")))
        return fail(error, q.lastError().text());
    while (q.next())
        out.push_back(fromQuery(q));
    return true;
}

std::optional<StockItem> byId(QSqlDatabase db, const QString &id, QString *error) {
    return first(db, QStringLiteral("id=?"), id, error);
}

std::optional<StockItem> findByName(QSqlDatabase db, const QString &name, QString *error) {
    return first(db, QStringLiteral("namemat=?"), name, error);
}

QString addEmpty(QSqlDatabase db, const QDate &today, QString *error) {
    return insert(db, {QStringLiteral("data")}, {TextValues::shortDate(today)}, error);
}

QString add(QSqlDatabase db, const StockItem &item, QString *error) {
    return insert(db,
                  {QStringLiteral("data"), QStringLiteral("namemat"), QStringLiteral("edizm"),
                   QStringLiteral("kolvo"), QStringLiteral("price"), QStringLiteral("summa"),
                   QStringLiteral("client")},
                  {item.date, item.name, item.unit, item.quantity, item.price, item.sum, item.client}, error);
}

bool isEditableColumn(const QString &column) {
    static const QStringList editable = {"namemat",  "edizm", "kolvo", "price", "summa",
                                         "minlimit", "sale",  "data",  "note"};
    return editable.contains(column);
}

bool setCells(QSqlDatabase db, const QString &id, const QList<QPair<QString, QString>> &cells,
              QString *error) {
    static const QStringList dates = {"month", "year", "date_compare"};
    QStringList sets;
    for (const auto &c : cells) {
        if (!isEditableColumn(c.first) && !dates.contains(c.first))
            return fail(error, QStringLiteral("Столбец «%1» склада не изменяется").arg(c.first));
        sets << c.first + QStringLiteral("=?");
    }
    if (sets.isEmpty())
        return true;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE storage SET ") + sets.join(QLatin1Char(',')) +
              QStringLiteral(" WHERE id=?"));
    for (const auto &c : cells)
        q.addBindValue(text(c.second));
    q.addBindValue(id);
    if (!run(q, error))
        return false;
    return q.numRowsAffected() > 0 || fail(error, QStringLiteral("Строки склада больше нет"));
}

bool remove(QSqlDatabase db, const QString &id, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM storage WHERE id=?"));
    q.addBindValue(id);
    return run(q, error);
}

bool clear(QSqlDatabase db, QString *error) {
    return Schema::clearTables(db, {QStringLiteral("storage")}, error);
}

bool replaceStock(QSqlDatabase db, const std::vector<StockItem> &items, StockMode mode, QString *error) {
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    QSqlQuery del(db);
    if (!del.exec(QStringLiteral("DELETE FROM storage WHERE ") + kStockRows))
        return fail(error, del.lastError().text());
    QSqlQuery q(db);
    if (mode == StockMode::Shop)
        q.prepare(
            QStringLiteral("INSERT INTO storage (namemat,edizm,kolvo,price,sale,data) values(?,?,?,?,?,?)"));
    else
        q.prepare(QStringLiteral("INSERT INTO storage (namemat,edizm,kolvo,price,sale,summa,minlimit,data) "
                                 "values(?,?,?,?,?,?,?,?)"));
    for (const StockItem &s : items) {
        q.addBindValue(text(s.name));
        q.addBindValue(text(s.unit));
        q.addBindValue(text(s.quantity));
        q.addBindValue(text(s.price));
        q.addBindValue(text(s.sale));
        if (mode == StockMode::Warehouse) {
            q.addBindValue(text(s.sum));
            q.addBindValue(text(s.minlimit));
        }
        q.addBindValue(text(s.date));
        if (!run(q, error))
            return false;
    }
    return t.commit() || fail(error, t.error());
}

} // namespace StockStore
