#pragma once
// Every value the program stores is text. These helpers are the one place where text becomes SQL,
// a number, money or a date form, so that every subsystem reads and writes values the same way.

#include "Decimal.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <optional>
#include <stdexcept>

namespace TextValues {

// Thrown when a value cannot be put into SQL text (a NUL character would cut the statement).
class SqlTextError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// 'text' with inner single quotes doubled. Throws SqlTextError for a NUL character.
QString sqlLiteral(const QString &text);

// Names (customers, objects) are kept with backticks in place of double quotes.
QString nameToStored(const QString &shown);
QString nameFromStored(const QString &stored);
// The stored form quoted as an SQL literal.
QString sqlName(const QString &shown);

// A table or column name quoted for SQL ("name", inner double quotes doubled): names read from a file
// of another program may hold anything.
QString sqlIdentifier(const QString &name);

// Table names that come from settings or accounts: letters, digits and underscores only.
bool isSafeTableName(const QString &name);

// The number rule of every price, quantity, amount and coefficient text: blanks removed, "." read as
// ",", a range "a-b" read as its low end a, "," as decimal separator; with signAllowed a leading minus
// is a sign (returns are negative). The number is exact (see Decimal); problem says why there is none.
struct NumberReading {
    std::optional<Decimal> value;
    NumberProblem problem = NumberProblem::None;
};
NumberReading readNumber(const QString &text, bool signAllowed);

// Prices: the rule without a sign. Empty text and text that is not a number give nullopt.
std::optional<Decimal> parsePrice(const QString &text);
// A price that parses to 0 or less means "no price".
std::optional<Decimal> parsePositivePrice(const QString &text);
// Quantities, amounts and coefficients: a leading minus is a sign.
std::optional<Decimal> parseAmount(const QString &text);
// True when the text holds nothing but blanks.
bool isBlank(const QString &text);
// A number as the user typed it into a grid cell, kept with a decimal comma: every "." becomes ",".
QString typedNumber(const QString &text);

// A quantity: up to three decimals (rounded half away from zero), trailing zeros dropped, decimal
// comma ("1,5", "12"). Amounts are Money's (Money::text, Money::grouped).
QString formatQuantity(const Decimal &value);
// A unit price as the estimate shows it: at least two decimals, every further one kept exactly
// ("1250,50", "0,125").
QString formatPrice(const Decimal &value);
// A number text with the thousands of its whole part separated by a blank: "-1234567,5" gives
// "-1 234 567,5" (printed documents).
QString groupThousands(const QString &number);

// Dates.
QString shortDate(const QDate &date);                  // "dd.MM.yyyy"
QDate parseShortDate(const QString &text);             // invalid date when it is not one
QString dateCompareDay(const QDate &date);             // "YYYYMMDD"
QString dateCompareSeconds(const QDateTime &dateTime); // "YYYYMMDDHHMMSS"
QString dateCompareSeconds(const QDate &date);         // time 00:00:00
QString monthText(const QDate &date);                  // "1".."12", unpadded
QString yearText(const QDate &date);                   // "2025"

} // namespace TextValues
