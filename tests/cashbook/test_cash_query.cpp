// The record list's single statement, clause by clause, for every combination of the clauses; the
// balance and the sold materials' statements; the month list's moves; the period of the printed book.

#include "cashbook/CashFilter.h"
#include "cashbook/CashReport.h"

#include <gtest/gtest.h>

namespace {

CashFilter filter(const QString &customer, const QString &object, int category, int month,
                  const QString &year, bool period) {
    CashFilter f;
    f.customer = customer;
    f.object = object;
    f.category = category;
    f.month = month;
    f.year = year;
    f.period = period;
    f.begin = QDate(2024, 3, 1);
    f.end = QDate(2024, 3, 31);
    return f;
}

} // namespace

TEST(CashQuery, EveryClauseCombination) {
    const QString P = " and date_compare>='20240301' and date_compare<='20240331'";
    struct Case {
        CashFilter f;
        QString condition;
    } cases[] = {
        {filter("", "", 0, 0, "", false), "1"},
        {filter("Иванов", "", 0, 0, "", false), "customer='Иванов'"},
        {filter("Иванов", "Дача", 0, 0, "", false), "customer='Иванов' and object='Дача'"},
        {filter("", "Дача", 0, 0, "", false), "object='Дача'"},
        {filter("", "", 1, 0, "", false), " incoming > 0"},
        {filter("", "", 6, 0, "", false), " other > 0"},
        {filter("Иванов", "Дача", 3, 0, "", false), "customer='Иванов' and object='Дача' and material > 0"},
        {filter("", "", 0, 3, "", false), " month='3'"},
        {filter("", "", 0, 0, "2024", false), " year='2024'"},
        {filter("", "", 0, 3, "2024", false), " month='3' and year='2024'"},
        {filter("", "", 0, 0, "", true), " date_compare>='20240301' and date_compare<='20240331'"},
        // Both date clauses at once, joined by their own " and".
        {filter("", "", 0, 3, "2024", true), " month='3' and year='2024'" + P},
        {filter("Иванов", "", 0, 12, "", true), "customer='Иванов' and month='12'" + P},
        {filter("", "", 2, 1, "2025", false), " my_salary > 0 and month='1' and year='2025'"},
        {filter("", "", 5, 0, "", true), " salary_workers > 0" + P},
        {filter("Иванов", "Дача", 4, 7, "2023", true),
         "customer='Иванов' and object='Дача' and transport > 0 and month='7' and year='2023'" + P},
        // Names with quotes: double quotes as backticks, single quotes doubled.
        {filter("ООО \"Ремонт\"", "д'Артаньяна 5", 0, 0, "", false),
         "customer='ООО `Ремонт`' and object='д''Артаньяна 5'"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(CashSql::condition(c.f), c.condition);
        EXPECT_EQ(CashSql::records(c.f), "SELECT * FROM cash WHERE " + c.condition);
    }
}

TEST(CashQuery, BalanceIgnoresEverythingButCustomerAndObject) {
    EXPECT_EQ(CashSql::balance("", ""), "SELECT * FROM Cash WHERE 1");
    EXPECT_EQ(CashSql::balance("Иванов", ""), "SELECT * FROM Cash WHERE customer='Иванов'");
    EXPECT_EQ(CashSql::balance("", "Дача"), "SELECT * FROM Cash WHERE object='Дача'");
    EXPECT_EQ(CashSql::balance("Иванов", "Дача"),
              "SELECT * FROM Cash WHERE customer='Иванов' and object='Дача'");
}

TEST(CashQuery, MonthMovesAcrossYears) {
    const QDate today(2024, 5, 15);
    struct Case {
        int month;
        QString year;
        int delta;
        int wantMonth;
        QString wantYear;
    } cases[] = {
        {12, "2023", 1, 1, "2024"}, {1, "2024", -1, 12, "2023"}, {0, "", 0, 5, "2024"},
        {3, "", 1, 4, "2024"},      {0, "2020", -1, 4, "2020"},
    };
    for (const Case &c : cases) {
        int month = c.month;
        QString year = c.year;
        CashMonths::move(&month, &year, c.delta, today);
        EXPECT_EQ(month, c.wantMonth);
        EXPECT_EQ(year, c.wantYear);
    }
    EXPECT_EQ(CashMonths::items().size(), 13);
    EXPECT_EQ(CashMonths::items().first(), "Месяц");
    EXPECT_EQ(CashMonths::lastDay(QDate(2024, 2, 10)), QDate(2024, 2, 29));
}

TEST(CashQuery, PeriodOfThePrintedBook) {
    EXPECT_EQ(CashReportOutput::periodText(filter("", "", 0, 0, "", false)), "все записи");
    EXPECT_EQ(CashReportOutput::periodText(filter("", "", 0, 3, "2024", false)), "Март 2024");
    EXPECT_EQ(CashReportOutput::periodText(filter("", "", 0, 0, "2024", false)), "2024 год");
    EXPECT_EQ(CashReportOutput::periodText(filter("", "", 0, 3, "2024", true)),
              "Март 2024, с 01.03.2024 по 31.03.2024");
}
