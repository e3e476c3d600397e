// The statements that fill the register's grids: their text for every combination of conditions, what
// they select from a real register, and the month buttons.

#include "documents/RegisterFilter.h"
#include "RegisterTestData.h"
#include "TestFolder.h"
#include "documents/RegisterRows.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <gtest/gtest.h>

namespace {

using RegisterFilter::Filter;
using RegisterFilter::Status;
using Registration::List;
using namespace RegisterTestData;

const QString kQuoted = QStringLiteral("ООО \"Ромашка\"");

TEST(RegisterFilter, StatementJoinsTheConditionsAsTheRegisterWritesThem) {
    struct Case {
        List list;
        Filter filter;
        const char *where;
    };
    const Case cases[] = {
        // No condition at all: "1 ".
        {List::Documents, filter(), "1 "},
        {List::Drafts, filter(), "1 "},
        {List::Documents, filter(kQuoted), "client='ООО `Ромашка`'"},
        {List::Documents, filter(QString(), Status::InWork), " status is null"},
        {List::Documents, filter(QString(), Status::Closed), " status > 0"},
        {List::Documents, filter(kQuoted, Status::Closed), "client='ООО `Ромашка`' and status > 0"},
        // The period alone loses its leading " and".
        {List::Documents, filter(QString(), Status::All, 3), " month='3'"},
        {List::Documents, filter(QString(), Status::All, 0, "2024"), " year='2024'"},
        {List::Documents, filter(QString(), Status::All, 12, "2024"), " month='12' and year='2024'"},
        {List::Documents, filter(kQuoted, Status::All, 3, "2024"),
         "client='ООО `Ромашка`' and month='3' and year='2024'"},
        {List::Documents, filter(QString(), Status::InWork, 0, "2025"), " status is null and year='2025'"},
        {List::Documents, filter(kQuoted, Status::InWork, 1, "2025"),
         "client='ООО `Ромашка`' and status is null and month='1' and year='2025'"},
        // The drafts have no status condition.
        {List::Drafts, filter(QString(), Status::Closed), "1 "},
        {List::Drafts, filter(QString(), Status::InWork, 5), " month='5'"},
        {List::Drafts, filter("O'Brien", Status::Closed, 0, "2023"), "client='O''Brien' and year='2023'"},
    };
    for (const Case &c : cases) {
        const QString table = Registration::tableOf(c.list);
        EXPECT_EQ(RegisterFilter::statement(c.list, c.filter),
                  QStringLiteral("SELECT * FROM %1 WHERE ").arg(table) + QString::fromUtf8(c.where))
            << table.toStdString() << " / " << c.where;
    }
    EXPECT_EQ(RegisterFilter::dayStatement(List::Drafts, QDate(2025, 1, 9)),
              "SELECT * FROM drafts WHERE data='09.01.2025'");
    // A NUL would cut the statement short: it is refused, never sent.
    EXPECT_THROW(RegisterFilter::statement(List::Documents, filter(QStringLiteral("a") + QChar(0))),
                 TextValues::SqlTextError);
}

TEST(RegisterFilter, MonthButtonsStepRoundTheYear) {
    const int next[][2] = {{0, 1}, {1, 2}, {11, 12}, {12, 1}};
    for (const auto &c : next)
        EXPECT_EQ(RegisterFilter::nextMonth(c[0]), c[1]) << c[0];
    const int previous[][2] = {{0, 12}, {1, 12}, {2, 1}, {12, 11}};
    for (const auto &c : previous)
        EXPECT_EQ(RegisterFilter::previousMonth(c[0]), c[1]) << c[0];
}

TEST(RegisterFilter, StatementsSelectTheRowsTheyName) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    QSqlDatabase db = module.database(Db::MyDoc);
    const qlonglong a1 = addRow(db, List::Documents, "Иванов", QDate(2024, 3, 5));
    const qlonglong a2 = addRow(db, List::Documents, "Иванов", QDate(2025, 3, 5), "1,00", true);
    const qlonglong b1 =
        addRow(db, List::Documents, kQuoted, QDate(2024, 12, 31), "100,00", false, "Смета \"Б\"");
    const qlonglong b2 = addRow(db, List::Documents, kQuoted, QDate(2025, 1, 1), "2,00", true);
    const qlonglong d1 = addRow(db, List::Drafts, kQuoted, QDate(2024, 12, 31));
    using L = QList<qlonglong>;
    struct Case {
        List list;
        Filter filter;
        L expected;
    };
    const Case cases[] = {
        {List::Documents, filter(), {a1, a2, b1, b2}},
        {List::Documents, filter(kQuoted), {b1, b2}},
        {List::Documents, filter(QString(), Status::InWork), {a1, b1}},
        {List::Documents, filter(QString(), Status::Closed), {a2, b2}},
        {List::Documents, filter(QString(), Status::All, 3), {a1, a2}},
        {List::Documents, filter(QString(), Status::All, 0, "2024"), {a1, b1}},
        {List::Documents, filter(QString(), Status::All, 12, "2025"), {}},
        {List::Documents, filter(kQuoted, Status::Closed, 1, "2025"), {b2}},
        {List::Documents, filter("Иванов", Status::InWork, 3), {a1}},
        {List::Drafts, filter(kQuoted, Status::Closed, 12), {d1}},
    };
    for (const Case &c : cases) {
        const QString statement = RegisterFilter::statement(c.list, c.filter);
        EXPECT_EQ(ids(db, statement), c.expected) << statement.toStdString();
    }
    EXPECT_EQ(ids(db, RegisterFilter::dayStatement(List::Documents, QDate(2024, 12, 31))), L{b1});

    // The rows as the grid holds them: names shown with double quotes, the status, the totals.
    RegisterPage page;
    QString error;
    ASSERT_TRUE(
        RegisterRows::read(db, RegisterFilter::statement(List::Documents, filter(kQuoted)), &page, &error));
    ASSERT_EQ(page.size(), 2);
    EXPECT_EQ(page.row(0).name, "Смета \"Б\"");
    EXPECT_EQ(page.text(0, RegisterPage::Data), QStringLiteral("31.12.2024"));
    EXPECT_FALSE(page.finished(0));
    EXPECT_TRUE(page.finished(1));
    EXPECT_EQ(page.indexOf(b2), 1);
    const RegisterTotals &t = page.totals();
    EXPECT_EQ(t.materials.text(), "20,00");
    EXPECT_EQ(t.works.text(), "40,00");
    EXPECT_EQ(t.all.text(), "102,00");
    EXPECT_EQ(RegisterRows::years(db, List::Documents), (QStringList{"2024", "2025"}));
    EXPECT_EQ(RegisterRows::years(db, List::Drafts), QStringList{"2024"});
    // A statement that fails leaves an empty page and says why.
    EXPECT_FALSE(RegisterRows::read(db, "SELECT * FROM нет_таблицы WHERE 1", &page, &error));
    EXPECT_EQ(page.size(), 0);
    EXPECT_TRUE(error.contains("нет_таблицы")) << error.toStdString();
}

TEST(RegisterFilter, TotalsReadAmountsByTheProgramsNumberRule) {
    // The stored "0,00" form is read straight into kopecks; it must agree with the general rule, and
    // everything else goes by the rule itself.
    const char *const texts[] = {"0,00",
                                 "12",
                                 "12,5",
                                 "-7,05",
                                 "007,10",
                                 "999999999999,99",
                                 "1,999",
                                 "1 000,5",
                                 "2.75",
                                 "10-20",
                                 "1000000000000",
                                 "-0,01",
                                 ",5",
                                 "5,",
                                 "+3",
                                 "1,2,3",
                                 "١٢"};
    for (const char *text : texts) {
        RegisterTotals t;
        t.add({}, {}, QByteArrayView(text));
        const MoneyResult rule = Money::parse(QString::fromUtf8(text));
        if (rule.ok()) {
            EXPECT_EQ(t.all.text(), rule.text()) << text;
            EXPECT_EQ(t.unreadable, 0) << text;
        } else {
            EXPECT_EQ(t.unreadable, 1) << text;
            EXPECT_EQ(t.all.text(), "0,00") << text;
        }
    }
    RegisterTotals t;
    t.add("1 000,50", "", "много");
    t.add("", "  ", "");
    EXPECT_EQ(t.materials.text(), "1000,50");
    EXPECT_EQ(t.works.text(), "0,00");
    EXPECT_EQ(t.unreadable, 1);
    t.add("", "", "999999999999,99");
    t.add("", "", "1");
    EXPECT_FALSE(t.all.ok()); // beyond what money can hold: refused, never wrapped
}

} // namespace
