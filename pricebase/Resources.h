#pragma once
// Resources of a rate (resurs1, resurs2, resurs_s) and what they bring into the estimate: materials in
// the working database's table materials, or a plain money amount in the estimate row.

#include <QSqlDatabase>
#include <QString>
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
