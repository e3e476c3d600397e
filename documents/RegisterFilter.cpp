#include "RegisterFilter.h"

#include "storage/TextValues.h"

namespace RegisterFilter {

namespace {

QString select(Registration::List list) {
    return QStringLiteral("SELECT * FROM %1 WHERE ").arg(Registration::tableOf(list));
}

} // namespace

QString statement(Registration::List list, const Filter &filter) {
    using TextValues::sqlLiteral;
    QString where;
    if (!filter.customer.isEmpty())
        where += QStringLiteral("client=") + TextValues::sqlName(filter.customer);
    if (list == Registration::List::Documents && filter.status != Status::All) {
        if (!where.isEmpty())
            where += QStringLiteral(" and");
        where += filter.status == Status::InWork ? QStringLiteral(" status is null")
                                                 : QStringLiteral(" status > 0");
    }
    QString period;
    if (filter.month >= 1 && filter.month <= 12)
        period += QStringLiteral(" and month=") + sqlLiteral(QString::number(filter.month));
    if (!filter.year.isEmpty())
        period += QStringLiteral(" and year=") + sqlLiteral(filter.year);
    if (where.isEmpty() && period.startsWith(QLatin1String(" and")))
        period.remove(0, 4);
    where += period;
    if (where.isEmpty())
        where = QStringLiteral("1 ");
    return select(list) + where;
}

QString dayStatement(Registration::List list, const QDate &day) {
    return select(list) + QStringLiteral("data=") + TextValues::sqlLiteral(TextValues::shortDate(day));
}

int nextMonth(int month) {
    return month >= 1 && month < 12 ? month + 1 : 1;
}

int previousMonth(int month) {
    return month > 1 && month <= 12 ? month - 1 : 12;
}

} // namespace RegisterFilter
