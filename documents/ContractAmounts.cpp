#include "ContractAmounts.h"

namespace ContractAmounts {

qint64 roundAdvance(qint64 a) {
    if (a <= 0)
        return 0;
    const QString s = QString::number(a);
    if (s.size() <= 3)
        return s.left(1).toLongLong() * 100;
    const qint64 t = s.mid(s.size() - 4, 3).toLongLong();
    const qint64 head = s.left(s.size() - 3).toLongLong();
    return t > 500 ? head + 1000 : head * 1000 + 500;
}

std::optional<qint64> advance(const Money &total, int percent) {
    if (percent < 0 || percent > 100)
        return std::nullopt;
    const qint64 kopecks = total.kopecks();
    // |kopecks| × percent stays below 10^16: no overflow.
    const qint64 scaled = (kopecks < 0 ? -kopecks : kopecks) * percent; // units × 10000
    qint64 units = scaled / 10000;
    const qint64 rest = scaled % 10000;
    if (rest > 5000 || (rest == 5000 && units % 2 != 0))
        ++units;
    const qint64 rounded = roundAdvance(units);
    return kopecks < 0 ? -rounded : rounded;
}

QString advanceText(const QString &total, int percent) {
    const MoneyResult money = Money::parse(total);
    if (!money)
        return {};
    const std::optional<qint64> a = advance(*money, percent);
    return a ? QString::number(*a) : QString();
}

QString remainderText(const QString &total, const QString &advance) {
    const MoneyResult t = Money::parse(total);
    const MoneyResult a = Money::parse(advance);
    if (!t || !a)
        return {};
    return (t - a).text();
}

} // namespace ContractAmounts
