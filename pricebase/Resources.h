#pragma once
// Resources of a rate (resurs1, resurs2, resurs_s) and what they bring into the estimate: materials in
// the working database's table materials, or a plain money amount in the estimate row.

#include "estimate/RowDiff.h"
#include "storage/Decimal.h"

#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

class EstimateGrid;

namespace RateResources {

struct Resource {
    QString name;
    QString edizm;
    QString cena;
    QString norma;
};

// The three resources tables; any other name (column 9 of a document from elsewhere) is refused.
bool isResourcesTable(const QString &table);

// "SELECT * FROM <table> WHERE ras=<rec>" in table order.
bool read(QSqlDatabase price, const QString &table, const QString &rec, std::vector<Resource> &out,
          QString *error = nullptr);

// After an insertion into estimate row `gridRow` (columns 7 and 9 set): named resources become
// materials that the estimate lacks (an existing material of that name is left alone); a nameless
// first resource puts its money into column 13 and column 12 + 13 + 14 into column 15.
// *materialsChanged tells whether table materials was written.
bool addToEstimate(QSqlDatabase price, QSqlDatabase smeta, EstimateGrid &grid, int gridRow,
                   bool *materialsChanged = nullptr, QString *error = nullptr);

// SearchAndWriteResurse: recomputes the quantity of every material of rate `rec` from the quantities
// of all estimate rows and the norms of their rates' resources (read from `table`); a material whose
// quantity comes to 0 is deleted. *materialsChanged tells whether table materials was written.
bool searchAndWriteResurse(QSqlDatabase price, QSqlDatabase smeta, const EstimateGrid &grid,
                           const QString &rec, const QString &table, bool *materialsChanged = nullptr,
                           QString *error = nullptr);

} // namespace RateResources

// The resources of rates, read once and kept by resources table and rate (`ras`). Rates not kept yet
// are read many at a time ("WHERE ras IN (…)"). Nothing outside keeps a reference into it.
class ResourceCache {
public:
    // Reads the resources of the rates among recs that are not kept yet.
    bool fetch(QSqlDatabase price, const QString &table, const QStringList &recs, QString *error = nullptr);
    // The kept resources of a rate (none when it has none or was never fetched).
    const std::vector<RateResources::Resource> &of(const QString &table, const QString &rec) const;
    bool has(const QString &table, const QString &rec) const;
    // The price base changed: everything is read again when next asked.
    void clear() { m_tables.clear(); }

private:
    QHash<QString, QHash<QString, std::vector<RateResources::Resource>>> m_tables;
};

// What the estimate needs of each material by the norms of its rates: for every resources table,
// material name -> Σ over the rows that have a quantity, an idRas and a NamePrice of quantity × the
// norm of each resource of that name that the row's rate has in the table (each product kept to a
// millionth). The needs of a table are gathered from the whole grid when first asked, then moved by
// the difference of each step (the rows it changed), so a quantity edit costs the resources of the
// rows it touched, not a pass over the estimate. The resources of each rate are read once per
// document.
class MaterialNeeds {
public:
    // A new document, or the price base changed under it: everything is gathered again when asked.
    void clear();
    // A step changed these rows: the needs gathered so far follow them (resources of rates not seen
    // yet are read).
    bool update(QSqlDatabase price, const QList<RowDiff::Change> &changes, QString *error = nullptr);
    // SearchAndWriteResurse for each rate (rec, resources table): the quantities and amounts of its
    // materials in table materials, a material needed nowhere any more deleted, all in one transaction.
    bool write(QSqlDatabase price, QSqlDatabase smeta, const EstimateGrid &grid,
               const QList<QPair<QString, QString>> &rates, bool *materialsChanged = nullptr,
               QString *error = nullptr);

    // The need of a material gathered for a table; nullopt when the sum passes what a number holds.
    // (Gathers the table from the grid first when needed.)
    std::optional<Decimal> need(QSqlDatabase price, const EstimateGrid &grid, const QString &table,
                                const QString &name, QString *error = nullptr);

private:
    struct Sum {
        Decimal value;
        bool overflow = false; // a sum past 18 digits: refused when it is written
    };
    using Needs = QHash<QString, Sum>; // material name -> need
    bool gather(QSqlDatabase price, const EstimateGrid &grid, const QString &table, QString *error);
    // Adds (sign 1) or takes away (sign -1) what one row needs by the resources of `table`.
    void count(Needs &needs, const QString &table, const QStringList &row, int sign) const;

    ResourceCache m_cache;
    QHash<QString, Needs> m_needs; // resources table -> needs, for the tables gathered so far
};
