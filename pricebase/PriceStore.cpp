#include "PriceStore.h"

#include "storage/Catalogue.h"
#include "storage/Money.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace PriceStore {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

bool failQuery(QString *error, const QSqlQuery &q) {
    return fail(error, q.lastError().text());
}

bool knownTable(const QString &table) {
    return tableNames(Db::Price).contains(table) && table.startsWith("price");
}

} // namespace

RateRow::Cells rowCells(const QSqlQuery &q, bool withKoef) {
    RateRow::Cells c;
    c[PriceCol::Id] = q.value(0).toString();
    c[PriceCol::Ras] = q.value(1).toString();
    c[PriceCol::Name] = q.value(2).toString();
    c[PriceCol::Unit] = q.value(3).toString();
    c[PriceCol::Price] = q.value(4).toString();
    c[PriceCol::Rec] = q.value(5).toString();
    c[PriceCol::Link] = q.value(6).toString();
    if (withKoef)
        c[PriceCol::Koef] = q.value(8).toString();
    return c;
}

void readRows(QSqlQuery &q, bool withKoef, PriceListData &out) {
    while (q.next()) {
        RateRow::Cells c = rowCells(q, withKoef);
        // Titles carry no price and no crew price; a section title shows no unit either.
        const PriceRowKind kind = priceRowKind(c[PriceCol::Ras], c[PriceCol::Unit]);
        if (kind != PriceRowKind::Rate) {
            c[PriceCol::Price].clear();
            c[PriceCol::Link].clear();
        }
        if (kind == PriceRowKind::Section)
            c[PriceCol::Unit].clear();
        out.rows.emplace_back(c);
        addToSectionIndex(out.sections, out.rows.back());
    }
}

QString badPriceMessage(const QString &number, const QString &name, const QString &priceText) {
    return QStringLiteral("Цена расценки %1 «%2» не является числом: «%3». Операция остановлена.")
        .arg(number, name, priceText);
}

bool readList(QSqlDatabase db, const QString &table, int currency, PriceListData &out, QString *error) {
    out.rows.clear();
    out.sections.clear();
    if (!knownTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица расценок «%1»").arg(table));
    const bool list1 = table == QLatin1String("price1");
    const QString sql = QStringLiteral("SELECT id, edras, nameras, edizm,") + currencyColumn(currency) +
                        QStringLiteral(", rec, link, mat") + (list1 ? QStringLiteral(",koef") : QString()) +
                        QStringLiteral(" FROM ") + table + QStringLiteral(" WHERE 1");
    QSqlQuery q(db);
    // The count first: the rows are laid out once, without the spare room of a growing vector.
    if (q.exec(QStringLiteral("SELECT count(*) FROM ") + table) && q.next())
        out.rows.reserve(static_cast<size_t>(q.value(0).toLongLong()));
    q.finish();
    q.setForwardOnly(true);
    if (!q.exec(sql))
        return failQuery(error, q);
    readRows(q, list1, out);
    return true;
}

bool writeList(QSqlDatabase db, const QString &table, int currency, const std::vector<RateRow> &rows,
               QString *error) {
    if (!knownTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица расценок «%1»").arg(table));
    const bool list1 = table == QLatin1String("price1");
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    QSqlQuery q(db);
    // The list is written whole: the table is emptied (its layout and indexes stay, its ids start
    // from 1 again, as for a table just made) and every row inserted again.
    if (!Schema::clearTables(db, {table}, error))
        return false;
    const QString sql = QStringLiteral("INSERT INTO ") + table + QStringLiteral(" (edras,nameras,edizm,") +
                        currencyColumn(currency) + QStringLiteral(",rec") +
                        (list1 ? QStringLiteral(",koef,link) values (?,?,?,?,?,?,?)")
                               : QStringLiteral(") values (?,?,?,?,?)"));
    if (!q.prepare(sql))
        return failQuery(error, q);
    for (const RateRow &row : rows) {
        // A row left empty in edit mode carries nothing worth keeping.
        if (row.isBlank())
            continue;
        for (int c : {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price, PriceCol::Rec})
            q.addBindValue(row.bound(c));
        if (list1) {
            q.addBindValue(row.bound(PriceCol::Koef));
            q.addBindValue(row.bound(PriceCol::Link));
        }
        if (!q.exec())
            return failQuery(error, q);
    }
    q.finish();
    if (!t.commit())
        return fail(error, t.error());
    QSqlQuery vacuum(db);
    vacuum.exec(QStringLiteral("VACUUM;")); // only compacts the file; the data is already committed
    return true;
}

bool updateCrewPrices(QSqlDatabase db, int currency, const QString &koefText, QString *error,
                      int *statements) {
    if (statements)
        *statements = 0;
    const auto koef = TextValues::parseAmount(koefText);
    if (!koef)
        return fail(error,
                    QStringLiteral("Коэффициент расчёта для бригады «%1» не является числом.").arg(koefText));
    struct Update {
        QString column, value, keyColumn, key;
    };
    std::vector<Update> updates;
    QString problem;
    {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT * FROM price1 WHERE 1")))
            return failQuery(error, q);
        const QSqlRecord rec = q.record();
        const int iId = rec.indexOf("id"), iRas = rec.indexOf("edras"), iName = rec.indexOf("nameras"),
                  iUnit = rec.indexOf("edizm"), iPrice = rec.indexOf(currencyColumn(currency)),
                  iRec = rec.indexOf("rec"), iLink = rec.indexOf("link"), iKoef = rec.indexOf("koef");
        while (q.next()) {
            const QString price = q.value(iPrice).toString();
            if (price.isEmpty() || q.value(iUnit).toString().toLower() == QStringLiteral("пв"))
                continue;
            const QString recText = q.value(iRec).toString();
            const QString keyColumn = recText.isEmpty() ? QStringLiteral("id") : QStringLiteral("rec");
            const QString key = recText.isEmpty() ? q.value(iId).toString() : recText;
            if (q.value(iKoef).toString().isEmpty())
                updates.push_back({QStringLiteral("koef"), koefText, keyColumn, key});
            if (q.value(iLink).toString().isEmpty()) {
                const auto value = TextValues::parsePrice(price);
                if (!value) {
                    problem = badPriceMessage(q.value(iRas).toString(), q.value(iName).toString(), price);
                    break;
                }
                const MoneyResult link = Money::product(*value, *koef);
                if (!link) {
                    problem = QStringLiteral("Цена бригады для расценки %1 «%2» (%3 × %4) %5.")
                                  .arg(q.value(iRas).toString(), q.value(iName).toString(), price, koefText,
                                       numberProblemText(link.problem()));
                    break;
                }
                updates.push_back({QStringLiteral("link"), link->text(), keyColumn, key});
            }
        }
    }
    if (!updates.empty()) {
        Transaction t(db);
        if (!t.active())
            return fail(error, t.error());
        QSqlQuery u(db);
        for (const Update &up : updates) {
            u.prepare(QStringLiteral("UPDATE price1 SET ") + up.column + QStringLiteral("=? WHERE ") +
                      up.keyColumn + QStringLiteral("=?;"));
            u.addBindValue(up.value);
            u.addBindValue(up.key);
            if (!u.exec())
                return failQuery(error, u);
        }
        if (!t.commit())
            return fail(error, t.error());
        if (statements)
            *statements = static_cast<int>(updates.size());
    }
    if (!problem.isEmpty())
        return fail(error, problem);
    return true;
}

bool findRateByName(QSqlDatabase db, const QString &table, int currency, const QString &name, RateRow &out,
                    QString *error) {
    if (!knownTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица расценок «%1»").arg(table));
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT id, edras, nameras, edizm, ") + currencyColumn(currency) +
              QStringLiteral(", rec, link, mat, koef FROM ") + table + QStringLiteral(" WHERE nameras=?"));
    q.addBindValue(name);
    if (!q.exec())
        return failQuery(error, q);
    if (!q.next())
        return false;
    out = RateRow(rowCells(q, true));
    return true;
}

} // namespace PriceStore
