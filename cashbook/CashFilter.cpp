#include "CashFilter.h"

#include "CashColumns.h"
#include "storage/TextValues.h"

using TextValues::dateCompareDay;
using TextValues::sqlLiteral;
using TextValues::sqlName;

bool CashFilter::sameSelection(const CashFilter &other) const {
    return customer == other.customer && object == other.object && month == other.month &&
           year == other.year && period == other.period &&
           (!period || (begin == other.begin && end == other.end));
}

namespace CashSql {

namespace {

QString customerObject(const QString &customer, const QString &object) {
    if (!customer.isEmpty()) {
        QString c = QStringLiteral("customer=") + sqlName(customer);
        if (!object.isEmpty())
            c += QStringLiteral(" and object=") + sqlName(object);
        return c;
    }
    if (!object.isEmpty())
        return QStringLiteral("object=") + sqlName(object);
    return {};
}

// Clauses 3 and 4, each with its leading " and".
QString dateClauses(const CashFilter &f) {
    QString c;
    if (f.month > 0)
        c += QStringLiteral(" and month=") + sqlLiteral(QString::number(f.month));
    if (!f.year.isEmpty())
        c += QStringLiteral(" and year=") + sqlLiteral(f.year);
    if (f.period && f.begin.isValid() && f.end.isValid())
        c += QStringLiteral(" and date_compare>=") + sqlLiteral(dateCompareDay(f.begin)) +
             QStringLiteral(" and date_compare<=") + sqlLiteral(dateCompareDay(f.end));
    return c;
}

// The date clauses after what precedes them: without anything before, their leading " and" goes.
QString joined(QString leading, const QString &dates) {
    if (leading.isEmpty() && dates.startsWith(QLatin1String(" and")))
        leading = dates.mid(4);
    else
        leading += dates;
    return leading.isEmpty() ? QStringLiteral("1") : leading;
}

} // namespace

QString condition(const CashFilter &f) {
    QString c = customerObject(f.customer, f.object);
    if (f.category > 0 && f.category <= CashCategory::kCount) {
        if (!c.isEmpty())
            c += QStringLiteral(" and");
        c += QLatin1Char(' ') + CashCategory::fields()[f.category - 1] + QStringLiteral(" > 0");
    }
    return joined(c, dateClauses(f));
}

QString records(const CashFilter &f) {
    return QStringLiteral("SELECT * FROM cash WHERE ") + condition(f);
}

QString balance(const QString &customer, const QString &object) {
    const QString c = customerObject(customer, object);
    return QStringLiteral("SELECT * FROM Cash WHERE ") + (c.isEmpty() ? QStringLiteral("1") : c);
}

QString years() {
    return QStringLiteral("SELECT DISTINCT year FROM Cash WHERE 1");
}

} // namespace CashSql

namespace CashMonths {

QStringList items() {
    QStringList m{QStringLiteral("Месяц")};
    for (int i = 1; i <= 12; ++i)
        m << name(i);
    return m;
}

QString name(int month) {
    static const QStringList names = {"Январь", "Февраль", "Март",     "Апрель",  "Май",    "Июнь",
                                      "Июль",   "Август",  "Сентябрь", "Октябрь", "Ноябрь", "Декабрь"};
    return month >= 1 && month <= 12 ? names.at(month - 1) : QString();
}

QDate firstDay(const QDate &date) {
    return QDate(date.year(), date.month(), 1);
}

QDate lastDay(const QDate &date) {
    return QDate(date.year(), date.month(), date.daysInMonth());
}

void move(int *month, QString *year, int delta, const QDate &today) {
    bool ok = false;
    const int y = year->toInt(&ok);
    const QDate from(ok ? y : today.year(), *month >= 1 && *month <= 12 ? *month : today.month(), 1);
    const QDate to = from.addMonths(delta);
    *month = to.month();
    *year = QString::number(to.year());
}

} // namespace CashMonths
