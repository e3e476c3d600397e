#include "RowClipboard.h"

#include "EstimateGrid.h"
#include "RowDiff.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace RowClipboard {

namespace {

bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text();
    return false;
}

} // namespace

bool copy(QSqlDatabase db, const std::vector<QStringList> &rows, QString *error) {
    // The clipboard replaces what it held. The table is the catalogue's (actions.db): emptied here,
    // never dropped or made anew.
    Transaction t(db);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("DELETE FROM PopupMenuEdit")))
        return fail(q, error);
    q.prepare(QStringLiteral(
        "INSERT INTO PopupMenuEdit (edras, nameras, edizm, kolvo, price, summa, idRas, KoefBrig, "
        "NamePrice) values(?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QStringList &r : rows) {
        using namespace EstimateCol;
        for (int c : std::initializer_list<int>{Ras, Name, Unit, Qty, Price, Sum, IdRas, RowDiff::kCrewKoef,
                                                NamePrice})
            q.addBindValue(c < r.size() ? r.at(c) : QString());
        if (!q.exec())
            return fail(q, error);
    }
    if (!t.commit()) {
        if (error)
            *error = t.error();
        return false;
    }
    return true;
}

std::vector<QStringList> paste(QSqlDatabase db, QString *error) {
    std::vector<QStringList> out;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT * FROM PopupMenuEdit WHERE 1"))) {
        fail(q, error);
        return out;
    }
    const QSqlRecord rec = q.record();
    auto f = [&](const char *name) {
        const int i = rec.indexOf(QLatin1String(name));
        return i < 0 ? QString() : q.value(i).toString();
    };
    while (q.next()) {
        QStringList cells;
        for (int c = 0; c < RowDiff::kRowWidth; ++c)
            cells << QString();
        cells[EstimateCol::Ras] = f("edras");
        cells[EstimateCol::Name] = f("nameras");
        cells[EstimateCol::Unit] = f("edizm");
        cells[EstimateCol::Price] = f("price");
        cells[EstimateCol::IdRas] = f("idRas");
        cells[EstimateCol::NamePrice] = f("NamePrice");
        cells[RowDiff::kCrewKoef] = f("KoefBrig");
        out.push_back(cells);
    }
    return out;
}

} // namespace RowClipboard
