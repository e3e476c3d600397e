#pragma once
// The totals row of the record grid, counted over the grid's rows (not the database): the six sums,
// "Расходы" (the five expenses), "Остаток" (income less expenses), "Доход" (the user's own pay),
// "Период (дн.)" (whole days from the first row's date to the last row's); and the purchase amount,
// a percentage of the materials.

#include "CashRecord.h"
#include "storage/Money.h"

#include <QStringList>
#include <array>
#include <optional>
#include <vector>

struct CashTotals {
    std::array<MoneyResult, CashCategory::kCount> sums{Money(), Money(), Money(), Money(), Money(), Money()};
    MoneyResult expenses = Money();
    MoneyResult remainder = Money();
    MoneyResult income = Money();
    std::optional<qint64> days; // empty when a date is missing
    bool empty = true;          // no row at all

    // The ten cells of StrGridItigo: amounts "1 234,50"; an empty grid gives "0,00" nine times and an
    // empty tenth cell.
    QStringList cells() const;
};

namespace CashTotalsRule {
// The totals of the rows' amounts; the period runs from the first row's date to the last row's.
CashTotals count(const std::vector<CashAmounts> &rows, const QString &firstDate, const QString &lastDate);
// EditZakupka: percent × the "Материал" sum ÷ 100.
MoneyResult purchase(const CashTotals &totals, int percent);
} // namespace CashTotalsRule
