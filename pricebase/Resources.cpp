#include "Resources.h"

#include "estimate/EstimateGrid.h"
#include "estimate/MaterialsStore.h"
#include "storage/Money.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QHash>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <optional>

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
    MaterialNeeds needs;
    return needs.write(price, smeta, grid, {{rec, table}}, materialsChanged, error);
}

} // namespace RateResources

// ----- ResourceCache

bool ResourceCache::fetch(QSqlDatabase price, const QString &table, const QStringList &recs, QString *error) {
    using namespace RateResources;
    if (!isResourcesTable(table))
        return fail(error, QStringLiteral("Неизвестная таблица ресурсов «%1»").arg(table));
    auto &kept = m_tables[table];
    QStringList missing;
    for (const QString &rec : recs)
        if (!kept.contains(rec) && !missing.contains(rec))
            missing << rec;
    // Bound values per statement: well below what SQLite allows, long enough to read a document's
    // rates in a few statements.
    constexpr int kChunk = 500;
    for (int from = 0; from < missing.size(); from += kChunk) {
        const QStringList part = missing.mid(from, kChunk);
        QStringList marks;
        for (int i = 0; i < part.size(); ++i)
            marks << QStringLiteral("?");
        QSqlQuery q(price);
        q.setForwardOnly(true);
        if (!q.prepare(QStringLiteral("SELECT ras, name, edizm, cena, norma FROM ") + table +
                       QStringLiteral(" WHERE ras IN (") + marks.join(QLatin1Char(',')) +
                       QStringLiteral(") ORDER BY id")))
            return fail(error, q.lastError().text());
        for (const QString &rec : part) {
            q.addBindValue(rec);
            kept.insert(rec, {}); // a rate without resources is kept as such
        }
        if (!q.exec())
            return fail(error, q.lastError().text());
        while (q.next())
            kept[q.value(0).toString()].push_back(
                {q.value(1).toString(), q.value(2).toString(), q.value(3).toString(), q.value(4).toString()});
    }
    return true;
}

const std::vector<RateResources::Resource> &ResourceCache::of(const QString &table,
                                                              const QString &rec) const {
    static const std::vector<RateResources::Resource> none;
    const auto t = m_tables.constFind(table);
    if (t == m_tables.cend())
        return none;
    const auto r = t->constFind(rec);
    return r == t->cend() ? none : *r;
}

bool ResourceCache::has(const QString &table, const QString &rec) const {
    const auto t = m_tables.constFind(table);
    return t != m_tables.cend() && t->contains(rec);
}

// ----- MaterialNeeds

namespace {

// A row counts towards the needs when it has a quantity that is a number, a rate and a resources
// table; nullopt otherwise.
std::optional<Decimal> countedQuantity(const QStringList &row) {
    if (row.value(EstimateCol::Qty).isEmpty() || row.value(EstimateCol::IdRas).isEmpty() ||
        row.value(EstimateCol::NamePrice).isEmpty())
        return std::nullopt;
    // A quantity that is not a number counts for nothing (the grid marks it).
    return TextValues::parseAmount(row.value(EstimateCol::Qty));
}

QStringList gridRow(const EstimateGrid &grid, int r) {
    return grid.rowCells(r);
}

} // namespace

void MaterialNeeds::clear() {
    m_cache.clear();
    m_needs.clear();
}

void MaterialNeeds::count(Needs &needs, const QString &table, const QStringList &row, int sign) const {
    const auto qty = countedQuantity(row);
    if (!qty)
        return;
    for (const RateResources::Resource &r : m_cache.of(table, row.value(EstimateCol::IdRas))) {
        if (r.name.isEmpty())
            continue;
        Sum &sum = needs[r.name];
        if (sum.overflow)
            continue;
        // Each row's need kept to a millionth, as the sum is written from it.
        std::optional<Decimal> part = qty->times(RateResources::number(r.norma), 6);
        if (part && sign < 0)
            part = part->negated();
        const std::optional<Decimal> next = part ? sum.value.plus(*part) : std::nullopt;
        if (next)
            sum.value = *next;
        else
            sum.overflow = true;
    }
}

bool MaterialNeeds::gather(QSqlDatabase price, const EstimateGrid &grid, const QString &table,
                           QString *error) {
    QStringList recs;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        if (countedQuantity(gridRow(grid, r)))
            recs << grid.cell(r, EstimateCol::IdRas);
    if (!m_cache.fetch(price, table, recs, error))
        return false;
    Needs needs;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        count(needs, table, gridRow(grid, r), 1);
    m_needs.insert(table, std::move(needs));
    return true;
}

bool MaterialNeeds::update(QSqlDatabase price, const QList<RowDiff::Change> &changes, QString *error) {
    if (m_needs.isEmpty())
        return true; // nothing gathered yet: the first write gathers from the grid as it is then
    QStringList recs;
    for (const RowDiff::Change &c : changes)
        for (const QStringList *row : {&c.before, &c.after})
            if (!row->value(EstimateCol::IdRas).isEmpty())
                recs << row->value(EstimateCol::IdRas);
    for (auto it = m_needs.begin(); it != m_needs.end(); ++it) {
        if (!m_cache.fetch(price, it.key(), recs, error)) {
            // What could not be read cannot be moved: gathered again on the next write.
            m_needs.clear();
            return false;
        }
        for (const RowDiff::Change &c : changes) {
            count(it.value(), it.key(), c.before, -1);
            count(it.value(), it.key(), c.after, 1);
        }
    }
    return true;
}

std::optional<Decimal> MaterialNeeds::need(QSqlDatabase price, const EstimateGrid &grid, const QString &table,
                                           const QString &name, QString *error) {
    if (!m_needs.contains(table) && !gather(price, grid, table, error))
        return std::nullopt;
    const Sum sum = m_needs.value(table).value(name);
    if (sum.overflow)
        return std::nullopt;
    return sum.value;
}

bool MaterialNeeds::write(QSqlDatabase price, QSqlDatabase smeta, const EstimateGrid &grid,
                          const QList<QPair<QString, QString>> &rates, bool *materialsChanged,
                          QString *error) {
    using namespace RateResources;
    if (materialsChanged)
        *materialsChanged = false;
    std::optional<Transaction> t;
    bool wrote = false;
    QSet<QString> done; // "table/name": a material is written once per call
    for (const auto &[rec, table] : rates) {
        if (rec.isEmpty() || !isResourcesTable(table))
            continue;
        if (!m_needs.contains(table) && !gather(price, grid, table, error))
            return false;
        if (!m_cache.fetch(price, table, {rec}, error))
            return false;
        for (const Resource &res : m_cache.of(table, rec)) {
            if (res.name.isEmpty() || done.contains(table + u'/' + res.name))
                continue;
            done.insert(table + u'/' + res.name);
            const Sum sum = m_needs.value(table).value(res.name);
            // The amount follows the quantity as it is written (to the thousandth).
            const std::optional<Decimal> total =
                sum.overflow ? std::nullopt : sum.value.times(*Decimal::whole(1), 3);
            if (!total) {
                m_needs.remove(table); // gathered again next time
                return fail(error, QStringLiteral("Количество материала «%1» %2.")
                                       .arg(res.name, numberProblemText(NumberProblem::TooManyDigits)));
            }
            if (!t) {
                // The estimate's materials are written through their store, all in one transaction.
                t.emplace(smeta);
                if (!t->active())
                    return fail(error, t->error());
            }
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
                const QString quantity = TextValues::formatQuantity(*total);
                const QString amount = Money::product(number(existing->price), *total).text();
                // A material that already says so is left as it is.
                if (quantity == existing->quantity && amount == existing->sum)
                    continue;
                ok = MaterialsStore::setQuantityByName(smeta, res.name, quantity, amount, &problem);
            }
            if (!ok)
                return fail(error, problem);
            wrote = true;
        }
    }
    if (t && !t->commit())
        return fail(error, t->error());
    if (materialsChanged)
        *materialsChanged = wrote;
    return true;
}
