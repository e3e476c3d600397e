#pragma once
// Putting materials of a list into the estimate's materials (table `materials` of the working
// database, written through MaterialsStore): titles and empty rows are passed over; a name the
// estimate has already is not added a second time (the caller offers to change its quantity); a new
// material gets the next position number, the list's unit, price and number (as its note) and the
// quantity typed into the list, if any, with its amount; then every material's position is written
// again in table order.

#include "MatList.h"
#include "estimate/MaterialsStore.h"
#include "pricebase/PriceRows.h"

#include <QSqlDatabase>
#include <vector>

struct MatPickOutcome {
    enum Kind { Added, Duplicate, Skipped, Failed };
    Kind kind = Skipped;
    MaterialsStore::Material material; // the new row (Added) or the one already there (Duplicate)
    QString error;                     // Failed
};

namespace MatInsertion {

// One list row into the estimate.
MatPickOutcome pick(QSqlDatabase smeta, const MatRow &row);

// Several rows in list order, in one transaction; stops at the first failure (what was added before
// it stays). The outcomes in the rows' order.
std::vector<MatPickOutcome> pickAll(QSqlDatabase smeta, const std::vector<MatRow> &rows);

// A list material given to the rate chosen in the rate grid as one of its resources ("INSERT INTO
// <resources table> (name, edizm, cena, ras, val)"); `currency` is the price column of the list
// ("rub" …). Empty when done, else why not: the price base's refusal for the chosen row (see
// ResourceStore::refusal), a list row that is no material, or a failure to write.
QString attachToRate(QSqlDatabase price, const QString &resourcesTable, bool showsRates, const RateRow *rate,
                     const MatRow &material, const QString &currency);

} // namespace MatInsertion
