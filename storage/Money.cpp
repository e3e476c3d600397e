#include "Money.h"

#include "TextValues.h"

using namespace DecimalMath;

QString numberProblemText(NumberProblem problem) {
    switch (problem) {
    case NumberProblem::None:
        return QString();
    case NumberProblem::Blank:
        return QStringLiteral("не заполнено");
    case NumberProblem::NotANumber:
        return QStringLiteral("не является числом");
    case NumberProblem::TooManyDigits:
        return QStringLiteral("содержит больше %1 значащих цифр").arg(Decimal::kMaxDigits);
    case NumberProblem::TooLarge:
        return QStringLiteral("превышает %1").arg(Money::maximum().grouped());
    case NumberProblem::DivisionByZero:
        return QStringLiteral("делит на ноль");
    }
    return QString();
}

std::optional<Money> Money::fromKopecks(qint64 kopecks) {
    if (kopecks > kMaxKopecks || kopecks < -kMaxKopecks)
        return std::nullopt;
    return Money(kopecks);
}

MoneyResult Money::checked(__int128 kopecks) {
    if (kopecks > kMaxKopecks || kopecks < -kMaxKopecks)
        return MoneyResult::refused(NumberProblem::TooLarge);
    return Money(static_cast<qint64>(kopecks));
}

MoneyResult Money::parse(const QString &text) {
    const TextValues::NumberReading r = TextValues::readNumber(text, true);
    if (!r.value)
        return MoneyResult::refused(r.problem);
    return of(*r.value);
}

MoneyResult Money::of(const Decimal &value) {
    // Below 10^18 × 100: no overflow of the 128-bit product.
    const __int128 hundredths = static_cast<__int128>(value.mantissa()) * 100;
    return checked(divideRounded(hundredths, pow10(value.scale())));
}

MoneyResult Money::product(const Decimal &price, const Decimal &quantity) {
    // Each mantissa is below 10^18: the product stays below 10^36 and × 100 below 10^38.
    const __int128 exact = static_cast<__int128>(price.mantissa()) * quantity.mantissa();
    const int scale = price.scale() + quantity.scale();
    if (scale >= 2)
        return checked(divideRounded(exact, pow10(scale - 2)));
    return checked(exact * pow10(2 - scale));
}

MoneyResult Money::scaled(const Decimal &numerator, const Decimal &denominator) const {
    if (denominator.isZero())
        return MoneyResult::refused(NumberProblem::DivisionByZero);
    // kopecks × n·10^-a ÷ (d·10^-b) = kopecks × n × 10^(b-a) ÷ d.
    __int128 num = static_cast<__int128>(m_kopecks) * numerator.mantissa(); // below 10^32
    __int128 den = denominator.mantissa();
    const int shift = denominator.scale() - numerator.scale();
    if (shift < 0) {
        den *= pow10(-shift); // below 10^36
    } else if (shift > 0) {
        // The numerator may not hold 10^shift more; then the quotient, at least num × 10^shift ÷ 10^18,
        // is far beyond any amount.
        if (__builtin_mul_overflow(num, pow10(shift), &num))
            return MoneyResult::refused(NumberProblem::TooLarge);
    }
    return checked(divideRounded(num, den));
}

MoneyResult Money::times(const Decimal &factor) const {
    return scaled(factor, *Decimal::whole(1));
}

MoneyResult Money::dividedBy(const Decimal &divisor) const {
    return scaled(*Decimal::whole(1), divisor);
}

MoneyResult Money::percent(const Decimal &value) const {
    return scaled(value, *Decimal::whole(100));
}

Decimal Money::toDecimal() const {
    return *Decimal::of(m_kopecks, 2); // at most 16 digits
}

QString Money::text() const {
    const quint64 magnitude = static_cast<quint64>(m_kopecks < 0 ? -m_kopecks : m_kopecks);
    QString out = m_kopecks < 0 ? QStringLiteral("-") : QString();
    out += QString::number(magnitude / 100) + QLatin1Char(',');
    out += QStringLiteral("%1").arg(magnitude % 100, 2, 10, QLatin1Char('0'));
    return out;
}

QString Money::grouped() const {
    return TextValues::groupThousands(text());
}

MoneyResult MoneyResult::refused(NumberProblem problem) {
    MoneyResult r;
    r.m_problem = problem == NumberProblem::None ? NumberProblem::NotANumber : problem;
    return r;
}

MoneyResult &MoneyResult::operator+=(const MoneyResult &other) {
    if (!ok())
        return *this;
    if (!other.ok())
        return *this = other;
    // Both within ±10^14: the sum cannot wrap; it may only leave the range.
    *this = Money::checked(static_cast<__int128>(m_value.kopecks()) + other.m_value.kopecks());
    return *this;
}

MoneyResult &MoneyResult::operator-=(const MoneyResult &other) {
    if (!ok())
        return *this;
    if (!other.ok())
        return *this = other;
    *this = Money::checked(static_cast<__int128>(m_value.kopecks()) - other.m_value.kopecks());
    return *this;
}
