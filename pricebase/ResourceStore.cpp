#include "ResourceStore.h"

#include "Resources.h"
#include "storage/Schema.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace ResourceStore {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

bool known(const QString &table, QString *error) {
    return RateResources::isResourcesTable(table) ||
           fail(error, QStringLiteral("Неизвестная таблица ресурсов «%1»").arg(table));
}

bool run(QSqlQuery &q, QString *error) {
    return q.exec() || fail(error, q.lastError().text());
}

// Every text column holds text, never NULL.
QString text(const QString &v) {
    return v.isNull() ? QStringLiteral("") : v;
}

} // namespace

QString refusal(bool showsRates, const RateRow *row) {
    if (!showsRates)
        return QStringLiteral("Откройте вкладку \"Расценки\"");
    if (!row || row->isBlank() || row->name().trimmed().isEmpty())
        return QStringLiteral("Пустая расценка");
    switch (priceRowKind(*row)) {
    case PriceRowKind::Subsection:
        return QStringLiteral("Выбран подвид работ");
    case PriceRowKind::Section:
        return QStringLiteral("Выбран вид работ");
    case PriceRowKind::Rate:
        break;
    }
    // A rate typed in edit mode gets its record number when the list is saved.
    if ((*row)[PriceCol::Rec].trimmed().isEmpty())
        return QStringLiteral("Пустая расценка");
    return {};
}

bool readRate(QSqlDatabase price, const QString &table, const QString &rec, std::vector<Row> &out,
              QString *error) {
    out.clear();
    if (!known(table, error))
        return false;
    QSqlQuery q(price);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT id, ras, name, edizm, cena, norma, val FROM ") + table +
              QStringLiteral(" WHERE ras=? ORDER BY id"));
    q.addBindValue(rec);
    if (!run(q, error))
        return false;
    while (q.next()) {
        Row r;
        int i = 0;
        for (QString *f : {&r.id, &r.ras, &r.name, &r.edizm, &r.cena, &r.norma, &r.val})
            *f = q.value(i++).toString();
        out.push_back(std::move(r));
    }
    return true;
}

QString add(QSqlDatabase price, const QString &table, const QString &rec, QString *error) {
    if (!known(table, error))
        return {};
    QSqlQuery q(price);
    q.prepare(
        QStringLiteral("INSERT INTO ") + table +
        QStringLiteral(" (ras, name, edizm, cena, norma, val, koef) values(?, '', '', '', '', '', '')"));
    q.addBindValue(rec);
    if (!run(q, error))
        return {};
    return q.lastInsertId().toString();
}

bool update(QSqlDatabase price, const QString &table, const Row &row, QString *error) {
    if (!known(table, error))
        return false;
    QSqlQuery q(price);
    q.prepare(QStringLiteral("UPDATE ") + table +
              QStringLiteral(" SET name=?,edizm=?,cena=?,norma=? WHERE id=?"));
    for (const QString *v : {&row.name, &row.edizm, &row.cena, &row.norma})
        q.addBindValue(text(*v));
    q.addBindValue(row.id);
    return run(q, error);
}

bool remove(QSqlDatabase price, const QString &table, const QString &id, QString *error) {
    if (!known(table, error))
        return false;
    QSqlQuery q(price);
    q.prepare(QStringLiteral("DELETE FROM ") + table + QStringLiteral(" WHERE id=?"));
    q.addBindValue(id);
    return run(q, error);
}

bool clear(QSqlDatabase price, const QString &table, QString *error) {
    if (!known(table, error) || !Schema::clearTables(price, {table}, error))
        return false;
    QSqlQuery(price).exec(QStringLiteral("VACUUM;")); // only compacts the file
    return true;
}

QString attach(QSqlDatabase price, const QString &table, const Row &row, QString *error) {
    if (!known(table, error))
        return {};
    QSqlQuery q(price);
    q.prepare(QStringLiteral("INSERT INTO ") + table +
              QStringLiteral(" (name, edizm, cena, ras, val, norma, koef) values(?, ?, ?, ?, ?, '', '')"));
    for (const QString *v : {&row.name, &row.edizm, &row.cena, &row.ras, &row.val})
        q.addBindValue(text(*v));
    if (!run(q, error))
        return {};
    return q.lastInsertId().toString();
}

bool copyAll(QSqlDatabase price, const QString &from, const QString &to, int *copied, QString *error) {
    if (!known(from, error) || !known(to, error))
        return false;
    if (from == to)
        return fail(error, QStringLiteral("Ресурсы нельзя скопировать в ту же таблицу"));
    Transaction t(price);
    if (!t.active())
        return fail(error, t.error());
    if (!Schema::clearTables(price, {to}, error))
        return false;
    QSqlQuery q(price);
    q.prepare(QStringLiteral("INSERT INTO ") + to +
              QStringLiteral(" (name, edizm, cena, ras, val, koef, norma) SELECT name, edizm, cena, ras, "
                             "val, koef, norma FROM ") +
              from + QStringLiteral(" ORDER BY id"));
    if (!run(q, error))
        return false;
    const int n = q.numRowsAffected();
    if (!t.commit())
        return fail(error, t.error());
    if (copied)
        *copied = n;
    return true;
}

} // namespace ResourceStore
