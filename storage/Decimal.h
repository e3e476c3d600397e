#pragma once
// An exact decimal number for quantities, unit prices, norms and coefficients: a mantissa of at most
// 18 digits and a count of decimals (0 to 18). Quantities and prices are multiplied exactly and only
// the money that results is rounded (see Money), so "0,125" × 1000 is 125,00 and not 130,00.
// Texts become decimals through the program's one number rule (TextValues::readNumber).

#include <QString>
#include <QtGlobal>
#include <optional>

// Why a number or an amount could not be had.
enum class NumberProblem {
    None,
    Blank,          // nothing was written
    NotANumber,     // the text is not a number
    TooManyDigits,  // more digits than an exact number holds (18)
    TooLarge,       // the amount would pass 999 999 999 999,99
    DivisionByZero, // a coefficient of 0 divides
};

// "не является числом", "превышает 999 999 999 999,99", … : a phrase to put after what was wrong.
QString numberProblemText(NumberProblem problem);

class Decimal {
public:
    static constexpr int kMaxDigits = 18; // significant digits a value may have
    static constexpr int kMaxScale = 18;  // decimals a value may have

    constexpr Decimal() = default;
    // mantissa × 10^-scale; nullopt when it has more than kMaxDigits digits or scale is out of range.
    static std::optional<Decimal> of(qint64 mantissa, int scale);
    // A whole number (nullopt past kMaxDigits digits).
    static std::optional<Decimal> whole(qint64 n) { return of(n, 0); }

    // Trailing zeros of the decimals are dropped: 1,50 has mantissa 15 and scale 1.
    qint64 mantissa() const { return m_mantissa; }
    int scale() const { return m_scale; }
    bool isZero() const { return m_mantissa == 0; }
    bool isNegative() const { return m_mantissa < 0; }
    Decimal negated() const;

    // Exact sum; nullopt when it has more digits than a decimal holds.
    std::optional<Decimal> plus(const Decimal &other) const;
    // The product rounded half away from zero to maxScale decimals; nullopt when too many digits remain.
    std::optional<Decimal> times(const Decimal &other, int maxScale = kMaxScale) const;

    // -1, 0 or 1.
    int compare(const Decimal &other) const;
    bool operator==(const Decimal &o) const { return m_mantissa == o.m_mantissa && m_scale == o.m_scale; }
    bool operator!=(const Decimal &o) const { return !(*this == o); }
    bool operator<(const Decimal &o) const { return compare(o) < 0; }
    bool operator>(const Decimal &o) const { return compare(o) > 0; }
    bool operator<=(const Decimal &o) const { return compare(o) <= 0; }
    bool operator>=(const Decimal &o) const { return compare(o) >= 0; }

    // Decimal comma, no grouping: at least minDecimals decimals, at most maxDecimals (rounded half away
    // from zero): text(0, 3) of 1,5 is "1,5", text(2, 18) of 0,125 is "0,125", of 7 is "7,00".
    QString text(int minDecimals = 0, int maxDecimals = kMaxScale) const;
    // For showing only (a number cell of a spreadsheet); never for arithmetic.
    double toDouble() const;

private:
    constexpr Decimal(qint64 mantissa, int scale) : m_mantissa(mantissa), m_scale(scale) {}
    // From a 128-bit mantissa: trailing zeros dropped, nullopt past kMaxDigits digits.
    static std::optional<Decimal> normalised(__int128 mantissa, int scale);

    qint64 m_mantissa = 0;
    int m_scale = 0;

    friend class Money;
};

// Exact decimal arithmetic helpers shared with Money.
namespace DecimalMath {
// 10^n for 0 <= n <= 38.
__int128 pow10(int n);
// num / den rounded half away from zero; den != 0.
__int128 divideRounded(__int128 num, __int128 den);
// Number of decimal digits of |v| (0 has one).
int digits(__int128 v);
} // namespace DecimalMath
