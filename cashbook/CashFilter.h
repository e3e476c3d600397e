#pragma once
// What the record list shows: the chosen customer and object, the category, and the two date filters
// that outlive a single query (the month/year clause and the period clause); and the statements built
// from them, clause by clause, in their fixed order:
//   1. customer/object: "customer='…' and object='…'", or one of the two alone;
//   2. the category: " incoming > 0" … joined by " and" to what precedes;
//   3. the month/year clause: " and month='3'" " and year='2024'" (each only when chosen);
//   4. the period clause: " and date_compare>='20240301' and date_compare<='20240331'".
// With neither 1 nor 2 the leading " and" of the first of 3 and 4 is dropped; with no clause at all the
// condition is "1". Month is compared as unpadded text, amounts as SQLite compares text with a number.

#include <QDate>
#include <QString>

struct CashFilter {
    QString customer; // as shown (double quotes); empty: every customer
    QString object;   // as shown; empty: every object
    int category = 0; // 0: "Все", 1..6: the categories in their order

    // The month/year clause: month 1..12 (0: not chosen), the year's text (empty: not chosen).
    int month = 0;
    QString year;
    // The period clause.
    bool period = false;
    QDate begin, end;

    bool hasMonthClause() const { return month > 0 || !year.isEmpty(); }
    // Customer, object and both date clauses the same (the category may differ).
    bool sameSelection(const CashFilter &other) const;
};

namespace CashSql {

// The condition after "WHERE " of the record list.
QString condition(const CashFilter &filter);
// "SELECT * FROM cash WHERE " + condition.
QString records(const CashFilter &filter);
// The balance of the customer and object whatever the other filters: "SELECT * FROM Cash WHERE
// customer='…' and object='…'", one of the two, or "… WHERE 1".
QString balance(const QString &customer, const QString &object);
// "SELECT DISTINCT year FROM Cash WHERE 1": the years of the year list.
QString years();

} // namespace CashSql

namespace CashMonths {
// "Месяц", "Январь" … "Декабрь": the month list, index = month number.
QStringList items();
// The month name of 1..12 ("Март"); empty otherwise.
QString name(int month);
// The first and the last day of the month of date.
QDate firstDay(const QDate &date);
QDate lastDay(const QDate &date);
// A month and year moved by delta months (year as text; a month of 0 counts as the current one).
void move(int *month, QString *year, int delta, const QDate &today);
} // namespace CashMonths
