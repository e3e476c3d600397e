#include "CashTotals.h"

QStringList CashTotals::cells() const {
    QStringList out;
    auto money = [](const MoneyResult &m) { return m.grouped(); };
    for (const MoneyResult &s : sums)
        out << money(s);
    out << money(expenses) << money(remainder) << money(income);
    out << (days ? QString::number(*days) : QString());
    return out;
}

namespace CashTotalsRule {

CashTotals count(const std::vector<CashAmounts> &rows, const QString &firstDate, const QString &lastDate) {
    CashTotals t;
    t.empty = rows.empty();
    // Kopecks are summed in 128 bits and checked once: a grid of any size cannot overflow on the way.
    std::array<__int128, CashCategory::kCount> sums{};
    for (const CashAmounts &r : rows)
        for (int i = 0; i < CashCategory::kCount; ++i)
            if (r.counted & (1u << i))
                sums[i] += r.kopecks[i];
    for (int i = 0; i < CashCategory::kCount; ++i) {
        const __int128 s = sums[i];
        const auto m = s >= -Money::kMaxKopecks && s <= Money::kMaxKopecks
                           ? Money::fromKopecks(static_cast<qint64>(s))
                           : std::nullopt;
        t.sums[i] = m ? MoneyResult(*m) : MoneyResult::refused(NumberProblem::TooLarge);
    }
    t.expenses = Money();
    for (int i = 1; i < CashCategory::kCount; ++i)
        t.expenses += t.sums[i];
    t.remainder = t.sums[CashCategory::kIncoming] - t.expenses;
    t.income = t.sums[1];
    if (!rows.empty()) {
        const QDate first = CashRecordIo::readDate(firstDate);
        const QDate last = CashRecordIo::readDate(lastDate);
        if (first.isValid() && last.isValid())
            t.days = qAbs(first.daysTo(last));
    }
    return t;
}

MoneyResult purchase(const CashTotals &totals, int percent) {
    const MoneyResult &material = totals.sums[2];
    if (!material.ok())
        return material;
    const auto p = Decimal::whole(percent);
    return p ? material->percent(*p) : MoneyResult::refused(NumberProblem::TooManyDigits);
}

} // namespace CashTotalsRule
