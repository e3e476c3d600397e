#pragma once
// The statements that fill the register's grids: a page's table filtered by customer, status (the
// documents page) and period (month and year, on the stored month and year columns), or by one day of
// the calendar. Values go into the text as quoted literals.

#include "estimate/Registration.h"

#include <QDate>
#include <QString>

namespace RegisterFilter {

// The radio group "Все" / "В работе" / "Закрытые".
enum class Status { All, InWork, Closed };

struct Filter {
    QString customer;            // the name as shown; empty: every customer
    Status status = Status::All; // used on the documents page only
    int month = 0;               // 1..12; 0 is "Месяц": no month condition
    QString year;                // four digits; empty is "Год": no year condition

    bool isEmpty() const {
        return customer.isEmpty() && status == Status::All && month == 0 && year.isEmpty();
    }
};

// "SELECT * FROM documents WHERE " + the conditions joined with " and" (the leading " and" of the
// period dropped when it comes first), or "1 " when there is none.
QString statement(Registration::List list, const Filter &filter);
// The calendar: "SELECT * FROM documents WHERE data=" + the day as the short date.
QString dayStatement(Registration::List list, const QDate &day);

// "Предыдущий месяц" and "Следующий месяц" step round the year: after 12 comes 1, before 1 comes 12.
// From no month (0) they step to January and to December.
int nextMonth(int month);
int previousMonth(int month);

} // namespace RegisterFilter
