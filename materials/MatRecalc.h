#pragma once
// "Пересчитать стоимость материалов": new prices for the estimate's materials, either from a materials
// list (each material takes the price of the list's material of the same name) or by a percentage
// (every price raised or lowered by it, to the kopeck). Each new price goes through the materials
// table's model, so that the amount follows the quantity and the totals follow the amounts.

#include "MatList.h"
#include "storage/Decimal.h"

#include <QStringList>
#include <vector>

class EstimateMaterials;

namespace MatRecalc {

struct Outcome {
    int changed = 0;     // materials that got another price
    int unmatched = 0;   // materials the list does not name (from a list)
    QStringList skipped; // names whose price is not a number, or could not be written
    QString error;       // the first failure to write
};

Outcome fromList(EstimateMaterials &materials, const std::vector<MatRow> &list);
// percent: -99.99 … 1000; a price that is not a number is skipped.
Outcome byPercent(EstimateMaterials &materials, const Decimal &percent);

} // namespace MatRecalc
