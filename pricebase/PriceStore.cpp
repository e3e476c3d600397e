#include "PriceStore.h"

#include "storage/Catalogue.h"
#include "storage/Money.h"
#include "storage/Schema.h"
#include "storage/SqliteRows.h"
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
        out.rows.push_back(RateRow(c));
        addToSectionIndex(out.sections, out.rows.back());
    }
}

QString badPriceMessage(const QString &number, const QString &name, const QString &priceText) {
    return QStringLiteral("Цена расценки %1 «%2» не является числом: «%3». Операция остановлена.")
        .arg(number, name, priceText);
}

bool readList(QSqlDatabase db, const QString &table, int currency, PriceListData &out, QString *error) {
    out = PriceListData();
    if (!knownTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица расценок «%1»").arg(table));
    const bool list1 = table == QLatin1String("price1");
    {
        // Room for the rows first (the largest id, found in the key without a scan, is the count of a
        // list written whole): laid out once, without the spare room of a growing vector.
        SqliteRows last(db, QStringLiteral("SELECT max(id) FROM ") + table);
        if (last.next()) {
            const auto rows = static_cast<size_t>(qBound(0LL, last.utf8(0).toLongLong(), 10'000'000LL));
            out.rows.reserve(rows);
            out.rows.reserveText(rows);
        }
    }
    // A list holds 100,000 rows: read through the C interface, each text decoded once into its row.
    SqliteRows q(db, QStringLiteral("SELECT id, edras, nameras, edizm,") + currencyColumn(currency) +
                         QStringLiteral(", rec, link, mat") + (list1 ? QStringLiteral(",koef") : QString()) +
                         QStringLiteral(" FROM ") + table + QStringLiteral(" WHERE 1"));
    std::array<QByteArrayView, PriceCol::TextCount> cells;
    while (q.next()) {
        cells[PriceCol::Id] = q.utf8(0);
        cells[PriceCol::Ras] = q.utf8(1);
        cells[PriceCol::Name] = q.utf8(2);
        cells[PriceCol::Unit] = q.utf8(3);
        cells[PriceCol::Price] = q.utf8(4);
        cells[PriceCol::Rec] = q.utf8(5);
        cells[PriceCol::Link] = q.utf8(6);
        cells[PriceCol::Koef] = list1 ? q.utf8(8) : QByteArrayView();
        const PriceRowKind kind = priceRowKind(cells[PriceCol::Ras], cells[PriceCol::Unit]);
        // Titles carry no price and no crew price; a section title shows no unit either.
        if (kind != PriceRowKind::Rate)
            cells[PriceCol::Price] = cells[PriceCol::Link] = QByteArrayView();
        if (kind == PriceRowKind::Section)
            cells[PriceCol::Unit] = QByteArrayView();
        if (!out.rows.append(cells))
            return fail(error, QStringLiteral("Список «%1» слишком велик, чтобы его прочитать.").arg(table));
        if (kind != PriceRowKind::Rate)
            addToSectionIndex(out.sections, out.rows.back());
    }
    if (!q.ok())
        return fail(error, q.error());
    out.rows.squeeze();
    out.listOne = list1;
    return true;
}

bool writeList(QSqlDatabase db, const QString &table, int currency, const RateTable &rows, QString *error) {
    if (!knownTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица расценок «%1»").arg(table));
    const bool list1 = table == QLatin1String("price1");
    {
        Transaction t(db);
        if (!t.active())
            return fail(error, t.error());
        // The list is written whole: the table is emptied (its layout and indexes stay, its ids start
        // from 1 again, as for a table just made) and every row inserted again.
        if (!Schema::clearTables(db, {table}, error))
            return false;
        SqliteRows insert(db, QStringLiteral("INSERT INTO ") + table +
                                  QStringLiteral(" (edras,nameras,edizm,") + currencyColumn(currency) +
                                  QStringLiteral(",rec") +
                                  (list1 ? QStringLiteral(",koef,link) values (?,?,?,?,?,?,?)")
                                         : QStringLiteral(") values (?,?,?,?,?)")));
        if (!insert.ok())
            return fail(error, insert.error());
        for (size_t i = 0; i < rows.size(); ++i) {
            // A row left empty in edit mode carries nothing worth keeping.
            if (rows.isBlank(i))
                continue;
            insert.bindUtf8(0, rows.utf8(i, PriceCol::Ras));
            insert.bindUtf8(1, rows.utf8(i, PriceCol::Name));
            insert.bindUtf8(2, rows.utf8(i, PriceCol::Unit));
            insert.bindUtf8(3, rows.utf8(i, PriceCol::Price));
            insert.bindUtf8(4, rows.utf8(i, PriceCol::Rec));
            if (list1) {
                insert.bindUtf8(5, rows.utf8(i, PriceCol::Koef));
                insert.bindUtf8(6, rows.utf8(i, PriceCol::Link));
            }
            if (!insert.run())
                return fail(error, insert.error());
        }
        if (!t.commit())
            return fail(error, t.error());
    }
    // A list written again reuses the pages of the list it replaced: the file is compacted only when
    // much of it is free (a list cut down), not after every write.
    Schema::compactIfWorthIt(db);
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
