#include "Resources.h"

#include "estimate/EstimateGrid.h"
#include "estimate/MaterialsStore.h"
#include "storage/Money.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace RateResources {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}

// A price or norm of the price base; one that is not a number counts as 0.
Decimal number(const QString &text) {
    return TextValues::parsePrice(text).value_or(Decimal());
}

Money money(const QString &text) {
    return Money::of(number(text)).valueOr(Money());
}

} // namespace

bool isResourcesTable(const QString &table) {
    return table == QLatin1String("resurs1") || table == QLatin1String("resurs2") ||
           table == QLatin1String("resurs_s");
}

bool read(QSqlDatabase price, const QString &table, const QString &rec, std::vector<Resource> &out,
          QString *error) {
    out.clear();
    if (!isResourcesTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица ресурсов «%1»").arg(table));
    QSqlQuery q(price);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM ") + table + QStringLiteral(" WHERE ras=?"));
    q.addBindValue(rec);
    if (!q.exec())
        return fail(error, q.lastError().text());
    const QSqlRecord r = q.record();
    const int iName = r.indexOf("name"), iUnit = r.indexOf("edizm"), iCena = r.indexOf("cena"),
              iNorma = r.indexOf("norma");
    while (q.next())
        out.push_back({q.value(iName).toString(), q.value(iUnit).toString(), q.value(iCena).toString(),
                       q.value(iNorma).toString()});
    return true;
}

bool addToEstimate(QSqlDatabase price, QSqlDatabase smeta, EstimateGrid &grid, int gridRow,
                   bool *materialsChanged, QString *error) {
    if (materialsChanged)
        *materialsChanged = false;
    const QString rec = grid.cell(gridRow, EstimateCol::IdRas);
    const QString table = grid.cell(gridRow, EstimateCol::NamePrice);
    if (rec.isEmpty() || table.isEmpty())
        return true;
    std::vector<Resource> resources;
    if (!read(price, table, rec, resources, error))
        return false;
    if (resources.empty())
        return true;
    if (resources.front().name.isEmpty()) {
        // The rate carries a plain money amount instead of materials.
        const Money material = money(resources.front().cena);
        grid.setCell(gridRow, EstimateCol::Material, material.text());
        const MoneyResult total = money(grid.cell(gridRow, EstimateCol::Machine)) + material +
                                  money(grid.cell(gridRow, EstimateCol::Labour));
        grid.setCell(gridRow, EstimateCol::Total, total.text());
        return true;
    }
    // The estimate's materials are written through their store, all in one transaction.
    Transaction t(smeta);
    if (!t.active())
        return fail(error, t.error());
    bool wrote = false;
    for (const Resource &r : resources) {
        if (r.name.isEmpty())
            continue;
        QString problem;
        if (MaterialsStore::findByName(smeta, r.name, &problem))
            continue;
        if (!problem.isEmpty())
            return fail(error, problem);
        MaterialsStore::Material m;
        m.name = r.name;
        m.unit = r.edizm;
        m.price = r.cena;
        if (MaterialsStore::add(smeta, m, &problem).isEmpty())
            return fail(error, problem);
        wrote = true;
    }
    if (!t.commit())
        return fail(error, t.error());
    if (materialsChanged)
        *materialsChanged = wrote;
    return true;
}

bool searchAndWriteResurse(QSqlDatabase price, QSqlDatabase smeta, const EstimateGrid &grid,
                           const QString &rec, const QString &table, bool *materialsChanged, QString *error) {
    if (materialsChanged)
        *materialsChanged = false;
    if (rec.isEmpty() || !isResourcesTable(table))
        return true;
    std::vector<Resource> own;
    if (!read(price, table, rec, own, error))
        return false;
    // The resources of each rate of the estimate, read once.
    QHash<QString, std::vector<Resource>> byRate;
    struct Use {
        Decimal quantity;
        const std::vector<Resource> *resources;
    };
    std::vector<Use> uses;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r) {
        const QString qtyText = grid.cell(r, EstimateCol::Qty);
        const QString rowRec = grid.cell(r, EstimateCol::IdRas);
        if (qtyText.isEmpty() || rowRec.isEmpty() || grid.cell(r, EstimateCol::NamePrice).isEmpty())
            continue;
        const auto qty = TextValues::parseAmount(qtyText);
        if (!qty)
            continue; // a quantity that is not a number counts for nothing (the grid marks it)
        auto it = byRate.find(rowRec);
        if (it == byRate.end()) {
            std::vector<Resource> list;
            if (!read(price, table, rowRec, list, error))
                return false;
            it = byRate.insert(rowRec, std::move(list));
        }
        uses.push_back({*qty, &it.value()});
    }
    Transaction t(smeta);
    if (!t.active())
        return fail(error, t.error());
    bool wrote = false;
    for (const Resource &res : own) {
        if (res.name.isEmpty())
            continue;
        // The quantity needed: Σ quantity × norm (kept to a millionth; shown to the thousandth).
        std::optional<Decimal> total = Decimal();
        for (const Use &u : uses)
            for (const Resource &other : *u.resources)
                if (other.name == res.name && total) {
                    const auto need = u.quantity.times(number(other.norma), 6);
                    total = need ? total->plus(*need) : std::nullopt;
                }
        // The amount follows the quantity as it is written (to the thousandth).
        if (total)
            total = total->times(*Decimal::whole(1), 3);
        if (!total)
            return fail(error, QStringLiteral("Количество материала «%1» %2.")
                                   .arg(res.name, numberProblemText(NumberProblem::TooManyDigits)));
        QString problem;
        const auto existing = MaterialsStore::findByName(smeta, res.name, &problem);
        if (!problem.isEmpty())
            return fail(error, problem);
        bool ok = true;
        if (!existing) {
            if (total->isZero())
                continue; // nothing needed, nothing to add
            MaterialsStore::Material m;
            m.edras = rec;
            m.name = res.name;
            m.unit = res.edizm;
            m.quantity = TextValues::formatQuantity(*total);
            m.price = res.cena;
            m.sum = Money::product(number(res.cena), *total).text();
            ok = !MaterialsStore::add(smeta, m, &problem).isEmpty();
        } else if (total->isZero()) {
            ok = MaterialsStore::removeByName(smeta, res.name, &problem);
        } else {
            ok = MaterialsStore::setQuantityByName(smeta, res.name, TextValues::formatQuantity(*total),
                                                   Money::product(number(existing->price), *total).text(),
                                                   &problem);
        }
        if (!ok)
            return fail(error, problem);
        wrote = true;
    }
    if (!t.commit())
        return fail(error, t.error());
    if (materialsChanged)
        *materialsChanged = wrote;
    return true;
}

} // namespace RateResources
