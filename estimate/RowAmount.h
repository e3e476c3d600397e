#pragma once
// The amount of one row of the estimate or of its materials, from the texts typed into it:
// - quantity and price given: quantity × price, exact, rounded once to kopecks;
// - neither given: the amount typed into the row (a lump sum), or nothing;
// - a quantity, price or typed amount that is not a number, or an amount that would pass the maximum
//   a user can have, is refused: the cell is named with the reason, the row counts for nothing.

#include "storage/Money.h"

#include <QString>
#include <optional>

struct RowAmount {
    // The amount that counts; nullopt when the row counts for nothing.
    std::optional<Money> amount;
    // True when the amount follows from quantity and price (and is written into the amount cell);
    // false for a lump sum or an empty row.
    bool computed = false;
    // Why the quantity, price or typed amount cell is refused; empty when it is not.
    QString quantityProblem, priceProblem, sumProblem;

    static RowAmount of(const QString &quantity, const QString &price, const QString &sum);
    // The amount cell's text: the computed amount, or empty when refused or incomplete.
    QString amountText() const { return amount ? amount->text() : QString(); }
    bool refused() const {
        return !quantityProblem.isEmpty() || !priceProblem.isEmpty() || !sumProblem.isEmpty();
    }
};

namespace RowAmountText {
// "Количество «abc» не является числом: сумма строки не считается и не входит в итог."
QString refused(const QString &what, const QString &text, NumberProblem problem);
// A totals row whose sum would pass the maximum.
QString totalRefused(NumberProblem problem);
} // namespace RowAmountText
