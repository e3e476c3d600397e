#pragma once
// The contract's advance and remainder. The advance is a share of the estimate's total, rounded by the
// program's own rule to a figure that reads well in a contract; the remainder is what is left to pay.

#include "storage/Money.h"

#include <QString>
#include <optional>

namespace ContractAmounts {

// The advance percentage when the settings hold none (Param/SpinEditAvans).
constexpr int kDefaultPercent = 35;

// The rounding rule on a whole amount a ≥ 0, digit positions as stated, s being a's decimal digits:
// with at most 3 digits, the first digit followed by "00" (57 → 500, 123 → 100, 999 → 900); else t,
// the three digits that end one place before the last, decides: t > 500 gives the digits before the
// last three plus 1000 (17845 → 1017), t ≤ 500 those digits followed by "500" (12345 → 12500).
// 0 stays 0.
qint64 roundAdvance(qint64 a);

// total × percent ÷ 100, rounded to a whole number (ties to even), then roundAdvance; the sign of
// the total is kept. nullopt when the total is not an amount or the percentage is outside 0..100.
std::optional<qint64> advance(const Money &total, int percent);

// The advance field's text for a total as typed ("274317,84", "274 317,84"); empty when the total is
// not an amount.
QString advanceText(const QString &total, int percent);

// total − advance, "0,00"; empty when either text is not an amount.
QString remainderText(const QString &total, const QString &advance);

} // namespace ContractAmounts
