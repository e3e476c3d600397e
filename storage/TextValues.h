#pragma once
// Every value the program stores is text. These helpers are the one place where text becomes SQL,
// a number, money or a date form, so that every subsystem reads and writes values the same way.

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

// Table names that come from settings or accounts: letters, digits and underscores only.
bool isSafeTableName(const QString &name);

// Price text rule: blanks removed, "." read as ",", a range "a-b" read as its low end a,
// "," as decimal separator. Empty text and text that is not a number give nullopt.
std::optional<double> parsePrice(const QString &text);
// A price that parses to 0 or less means "no price".
std::optional<double> parsePositivePrice(const QString &text);
// Quantities and amounts: as the price rule, but a leading minus is a sign (returns are negative).
std::optional<double> parseAmount(const QString &text);
// True when the text holds nothing but blanks.
bool isBlank(const QString &text);

// Money rounded to kopecks, half away from zero.
double roundMoney(double value);
// Money as "0,00": two decimals, decimal comma, no thousands separator.
QString formatMoney(double value);
// Money with thousands separated by a blank: "12 345,67" (for printed documents).
QString formatMoneyGrouped(double value);
// A quantity: up to three decimals, trailing zeros dropped, decimal comma ("1,5", "12").
QString formatQuantity(double value);

// Dates.
QString shortDate(const QDate &date);                    // "dd.MM.yyyy"
QDate parseShortDate(const QString &text);               // invalid date when it is not one
QString dateCompareDay(const QDate &date);               // "YYYYMMDD"
QString dateCompareSeconds(const QDateTime &dateTime);   // "YYYYMMDDHHMMSS"
QString dateCompareSeconds(const QDate &date);           // time 00:00:00
QString monthText(const QDate &date);                    // "1".."12", unpadded
QString yearText(const QDate &date);                     // "2025"

} // namespace TextValues
