#pragma once
// Money: an amount in kopecks (hundredths of the currency unit) held exactly in a 64-bit integer and
// kept within what a user can have, ±999 999 999 999,99. Every operation that could leave that range
// gives a MoneyResult that says so instead of a wrapped number; callers refuse such a result with a
// message. Products and shares are computed exactly and rounded once, half away from zero, to kopecks.

#include "Decimal.h"

#include <QString>
#include <QtGlobal>
#include <optional>

class MoneyResult;

class Money {
public:
    static constexpr qint64 kMaxKopecks = 99'999'999'999'999LL; // 999 999 999 999,99

    constexpr Money() = default;
    // nullopt beyond ±kMaxKopecks.
    static std::optional<Money> fromKopecks(qint64 kopecks);
    static constexpr Money maximum() { return Money(kMaxKopecks); }

    // A text by the program's number rule (blanks removed, "." as ",", a leading minus kept, cut at a
    // later "-"), rounded to kopecks.
    static MoneyResult parse(const QString &text);
    // An exact number rounded to kopecks.
    static MoneyResult of(const Decimal &value);
    // Unit price × quantity, rounded once to kopecks.
    static MoneyResult product(const Decimal &price, const Decimal &quantity);

    // This × numerator ÷ denominator, rounded once to kopecks.
    MoneyResult scaled(const Decimal &numerator, const Decimal &denominator) const;
    MoneyResult times(const Decimal &factor) const;
    MoneyResult dividedBy(const Decimal &divisor) const;
    // value % of this amount.
    MoneyResult percent(const Decimal &value) const;

    qint64 kopecks() const { return m_kopecks; }
    bool isZero() const { return m_kopecks == 0; }
    bool isNegative() const { return m_kopecks < 0; }
    Money operator-() const { return Money(-m_kopecks); } // the range is symmetric
    Decimal toDecimal() const;

    // "1234,50", "-0,07": two decimals, decimal comma, no grouping.
    QString text() const;
    // "1 234,50": thousands separated by a blank (printed documents).
    QString grouped() const;

    bool operator==(const Money &o) const { return m_kopecks == o.m_kopecks; }
    bool operator!=(const Money &o) const { return m_kopecks != o.m_kopecks; }
    bool operator<(const Money &o) const { return m_kopecks < o.m_kopecks; }
    bool operator>(const Money &o) const { return m_kopecks > o.m_kopecks; }
    bool operator<=(const Money &o) const { return m_kopecks <= o.m_kopecks; }
    bool operator>=(const Money &o) const { return m_kopecks >= o.m_kopecks; }

private:
    constexpr explicit Money(qint64 kopecks) : m_kopecks(kopecks) {}
    // A rounded count of kopecks, refused beyond the range.
    static MoneyResult checked(__int128 kopecks);

    qint64 m_kopecks = 0;

    friend class MoneyResult;
};

// An amount, or the reason there is none. Sums keep the first refusal: a total that contains a refused
// part is refused.
class MoneyResult {
public:
    MoneyResult(Money value) : m_value(value) {} // NOLINT: an amount is a good result
    static MoneyResult refused(NumberProblem problem);

    bool ok() const { return m_problem == NumberProblem::None; }
    explicit operator bool() const { return ok(); }
    NumberProblem problem() const { return m_problem; }
    // The amount; zero when refused.
    Money value() const { return m_value; }
    Money valueOr(Money fallback) const { return ok() ? m_value : fallback; }
    const Money &operator*() const { return m_value; }
    const Money *operator->() const { return &m_value; }
    // The amount as "0,00", or an empty text when refused (a refused amount is never shown as a number).
    QString text() const { return ok() ? m_value.text() : QString(); }
    QString grouped() const { return ok() ? m_value.grouped() : QString(); }

    MoneyResult &operator+=(const MoneyResult &other);
    MoneyResult &operator-=(const MoneyResult &other);

    bool operator==(const MoneyResult &o) const { return m_problem == o.m_problem && m_value == o.m_value; }
    bool operator!=(const MoneyResult &o) const { return !(*this == o); }

private:
    MoneyResult() = default;
    Money m_value;
    NumberProblem m_problem = NumberProblem::None;
};

// Sums of amounts or results (an amount converts to a result).
inline MoneyResult operator+(MoneyResult a, const MoneyResult &b) {
    return a += b;
}
inline MoneyResult operator-(MoneyResult a, const MoneyResult &b) {
    return a -= b;
}
