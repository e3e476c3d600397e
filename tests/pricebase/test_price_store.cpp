// Reading and writing the local price lists of price.db, the crew price, and the current list choice.

#include "PriceTestData.h"
#include "pricebase/PriceBase.h"
#include "pricebase/PriceStore.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <functional>
#include <gtest/gtest.h>

namespace {

const std::vector<QStringList> kList = {
    {"1", "Демонтаж", "", "", "1"},
    {"1-1", "Стены", "ПВ", "", "2"},
    {"1-1-1", "Снятие обоев", "м2", "80", "3"},
    {"1-1-2", "Удаление краски", "м2", "350-450", "4"},
    {"2", "Отделка", "", "", "5"},
    {"2-1", "Грунтовка", "м2", "1 250.50", "6"},
};

TEST(PriceStore, ReadFillsRowsByKindAndTheSectionIndex) {
    PriceFixture f;
    f.addRates("price1", kList);
    PriceListData data;
    QString error;
    ASSERT_TRUE(PriceStore::readList(f.price(), "price1", 0, data, &error)) << error.toStdString();
    ASSERT_EQ(data.rows.size(), 6u);
    EXPECT_EQ(data.rows[2][PriceCol::Price], QStringLiteral("80"));
    EXPECT_EQ(data.rows[1][PriceCol::Unit], QStringLiteral("ПВ"));
    EXPECT_EQ(data.rows[5][PriceCol::Id], QStringLiteral("6"));
    EXPECT_EQ(data.rows[5][PriceCol::Rec], QStringLiteral("6"));
    ASSERT_EQ(data.sections.size(), 2u);
    EXPECT_EQ(data.sections[0].subsections.at(0).text, QStringLiteral("1-1 Стены"));
    // Another currency column is simply empty.
    ASSERT_TRUE(PriceStore::readList(f.price(), "price1", 1, data));
    EXPECT_TRUE(data.rows[2][PriceCol::Price].isEmpty());
}

TEST(PriceStore, EmptyListGivesOneEmptyRowAndOnlyAll) {
    PriceFixture f;
    PriceBase base(f.module.get());
    ASSERT_TRUE(base.read());
    EXPECT_EQ(base.model().rowCount(), 1);
    EXPECT_EQ(base.model().gridRowCount(), 2);
    EXPECT_TRUE(base.sections().empty()); // the tree and the combo hold "   Все" alone
}

TEST(PriceStore, WritingInDollarsEmptiesTheOtherCurrencies) {
    PriceFixture f;
    f.addRates("price2", kList, "rub");
    QSqlQuery(f.price()).exec("UPDATE price2 SET dol='1,5' WHERE rec='3'");
    PriceBase base(f.module.get());
    base.setTab(PriceTab::Price2);
    base.setCurrency(1);
    ASSERT_TRUE(base.read());
    EXPECT_EQ(base.model().cell(3, PriceCol::Price), QStringLiteral("1,5"));
    QString error;
    ASSERT_TRUE(base.write(&error)) << error.toStdString();
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM price2 WHERE rub<>'' AND rub IS NOT NULL"), "0");
    EXPECT_EQ(f.scalar(f.price(), "SELECT dol FROM price2 WHERE rec='3'"), "1,5");
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM price2"), "6");
    // price1 is untouched by a write of price2.
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM price1"), "0");
}

TEST(PriceStore, AwkwardTextIsStoredAndFoundUnchanged) {
    PriceFixture f;
    const QString longName = QString(10 * 1024, QChar(0x0429)) + "\\'\"";
    const std::vector<RateRow> rows = {rate("1", "Раздел \"А\"", "", "", "1"),
                                       rate("1-1", "O'Brien \\n \"кавычки\" `бэктик`", "м'2", "1'000", "2"),
                                       rate("1-2", longName, "шт", "5", "3")};
    QString error;
    ASSERT_TRUE(PriceStore::writeList(f.price(), "price1", 0, rows, &error)) << error.toStdString();
    PriceListData data;
    ASSERT_TRUE(PriceStore::readList(f.price(), "price1", 0, data));
    ASSERT_EQ(data.rows.size(), 3u);
    for (size_t i = 0; i < rows.size(); ++i)
        for (int c : {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price})
            EXPECT_EQ(data.rows[i][c], rows[i][c]);
    RateRow found;
    ASSERT_TRUE(PriceStore::findRateByName(f.price(), "price1", 0, longName, found));
    EXPECT_EQ(found[PriceCol::Rec], QStringLiteral("3"));
    ASSERT_TRUE(PriceStore::findRateByName(f.price(), "price1", 0, rows[1][PriceCol::Name], found));
    EXPECT_EQ(found[PriceCol::Price], QStringLiteral("1'000"));
    EXPECT_FALSE(PriceStore::findRateByName(f.price(), "price1", 0, "нет такой", found));
}

TEST(PriceStore, CrewPricesFillOnlyWhatIsEmpty) {
    PriceFixture f;
    f.addRates("price1", {{"1", "Отделка", "", "", "1"},
                          {"1-1", "Стены", "пв", "", "2"},
                          {"1-1-1", "Грунтовка", "м2", "1 000", "3"},
                          {"1-1-2", "Шпатлёвка", "м2", "200-300", "4"},
                          {"1-1-3", "Покраска", "м2", "", "5"},
                          {"1-1-4", "Обои", "м2", "400", ""}});
    QSqlQuery(f.price()).exec("UPDATE price1 SET koef='0,5', link='77' WHERE rec='4'");
    int statements = 0;
    QString error;
    ASSERT_TRUE(PriceStore::updateCrewPrices(f.price(), 0, "0,7", &error, &statements))
        << error.toStdString();
    EXPECT_EQ(statements, 4); // koef+link for rec 3 and for the row keyed by id
    auto get = [&](const QString &sql) { return f.scalar(f.price(), sql); };
    EXPECT_EQ(get("SELECT koef || '/' || link FROM price1 WHERE rec='3'"), "0,7/700,00");
    EXPECT_EQ(get("SELECT koef || '/' || link FROM price1 WHERE rec='4'"), "0,5/77"); // kept
    EXPECT_EQ(get("SELECT ifnull(koef,'') || '/' || ifnull(link,'') FROM price1 WHERE rec='5'"), "/");
    EXPECT_EQ(get("SELECT koef || '/' || link FROM price1 WHERE id=6"), "0,7/280,00");
    EXPECT_EQ(get("SELECT ifnull(koef,'') FROM price1 WHERE rec='2'"), "");
}

TEST(PriceStore, CrewPriceStopsAtAPriceThatIsNotANumber) {
    PriceFixture f;
    f.addRates("price1", {{"1-1", "Первая", "м2", "100", "1"},
                          {"1-2", "Кривая", "м2", "сто рублей", "2"},
                          {"1-3", "Третья", "м2", "300", "3"}});
    QString error;
    EXPECT_FALSE(PriceStore::updateCrewPrices(f.price(), 0, "2", &error));
    EXPECT_TRUE(error.contains("1-2")) << error.toStdString();
    EXPECT_TRUE(error.contains("сто рублей"));
    // What came before stays written; nothing after it.
    EXPECT_EQ(f.scalar(f.price(), "SELECT link FROM price1 WHERE rec='1'"), "200,00");
    EXPECT_EQ(f.scalar(f.price(), "SELECT ifnull(link,'') FROM price1 WHERE rec='3'"), "");
}

TEST(PriceBase, CurrentListFollowsTabAndCrewSwitch) {
    PriceFixture f;
    PriceBase base(f.module.get());
    struct Case {
        PriceTab tab;
        bool crew;
        QString table, resources;
    };
    const Case cases[] = {
        {PriceTab::MyPrice, false, "price1", "resurs1"},
        {PriceTab::Price2, false, "price2", "resurs2"},
        {PriceTab::Price2, true, "price1", "resurs1"},
        {PriceTab::MyPrice, true, "price1", "resurs1"},
        {PriceTab::Material, false, "", ""},
    };
    for (const Case &c : cases) {
        base.setTab(c.tab);
        base.setCrewMode(c.crew);
        EXPECT_EQ(base.table(), c.table);
        EXPECT_EQ(base.resourcesTable(), c.resources);
    }
}

// Start-up reads the list on a worker thread: the same rows, sections and live-search names as a read
// in the window's thread, and a read in between wins over the older rows.
TEST(PriceBase, AListReadInTheBackgroundIsTheSameAndAnEarlierReadWins) {
    PriceFixture f;
    f.addRates("price1", kList);
    PriceBase direct(f.module.get());
    ASSERT_TRUE(direct.read());
    PriceBase background(f.module.get());
    QStringList reads;
    QObject::connect(&background, &PriceBase::listRead, [&] { reads << "read"; });
    QObject::connect(&background, &PriceBase::readFailed, [&](const QString &e) { reads << e; });
    background.readInBackground();
    EXPECT_TRUE(background.reading());
    background.waitForRead();
    EXPECT_FALSE(background.reading());
    EXPECT_EQ(reads, QStringList{"read"});
    ASSERT_EQ(background.model().allRows().size(), direct.model().allRows().size());
    for (size_t i = 0; i < direct.model().allRows().size(); ++i)
        EXPECT_EQ(background.model().allRows()[i].cells(), direct.model().allRows()[i].cells());
    EXPECT_EQ(background.sections().size(), direct.sections().size());
    EXPECT_EQ(background.liveSearch().find("обо"), direct.liveSearch().find("обо"));

    // Read again meanwhile (another tab): the rows of the background read are not taken.
    background.readInBackground();
    background.setTab(PriceTab::Price2);
    ASSERT_TRUE(background.read());
    background.waitForRead();
    EXPECT_TRUE(background.model().allRows().empty()); // price list 2 is empty
    // A price base that is not there: the background read says so.
    TestFolder other;
    QDir(other.path()).mkpath("Sp");
    QFile junk(other.file("Sp/price.db"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, 'x'));
    junk.close();
    TModuleSQL broken(other.path());
    PriceBase failing(&broken);
    QObject::connect(&failing, &PriceBase::readFailed, [&](const QString &) { reads << "failed"; });
    failing.readInBackground();
    failing.waitForRead();
    EXPECT_EQ(reads.last(), "failed");
}

TEST(PriceBase, LiveSearchHoldsTheWholeListWhileTheGridIsFiltered) {
    PriceFixture f;
    f.addRates("price1", kList);
    PriceBase base(f.module.get());
    ASSERT_TRUE(base.read());
    ASSERT_TRUE(base.showSection(2));
    EXPECT_EQ(base.model().visibleCount(), 1);
    EXPECT_EQ(base.liveSearch().find("обо").size(), 1u); // a rate of section 1
    base.setLiveSearchEnabled(false);
    EXPECT_EQ(base.liveSearch().size(), 0);
    base.setLiveSearchEnabled(true);
    EXPECT_EQ(base.liveSearch().size(), 6);
    // Edits of the list reach the table only by a write; ids and numbers come back fresh.
    base.model().setEditMode(true);
    base.showSection(0);
    base.model().removeGridRows({2, 3});
    base.model().renumber();
    ASSERT_TRUE(base.write());
    EXPECT_EQ(f.scalar(f.price(), "SELECT group_concat(edras || ':' || nameras, ';') FROM price1"),
              "1:Демонтаж;1-1:Удаление краски;2:Отделка;2-1:Грунтовка");
    EXPECT_EQ(base.liveSearch().size(), 4);
}

// The crew prices of an estimate's rates come from the rows in memory while they are price list 1 as
// read: the same answers as the file gives (first row of a number, titles, other lists, blanks, spaces,
// prices that are no positive number), and none at all once the rows and the file may differ.
TEST(PriceBase, CrewPricesFromTheRowsAnswerAsTheFileDoes) {
    PriceFixture f;
    f.addRates("price1", {{"1", "Демонтаж", "", "", "7"},
                          {"1-1", "Снятие обоев", "м2", "80", "1"},
                          {"1-2", "Удаление краски", "м2", "90", "2"},
                          {"1-3", "Двойник", "м2", "95", "2"},
                          {"1-4", "Без цены бригады", "м2", "100", "3"},
                          {"1-5", "Плохая цена", "м2", "100", "4"},
                          {"1-6", "Имя", "м2", "100", "5"},
                          {"1-7", "Ноль", "м2", "100", "6"}});
    for (const char *sql :
         {"UPDATE price1 SET link='56' WHERE id=2", "UPDATE price1 SET link='63' WHERE id=3",
          "UPDATE price1 SET link='99' WHERE id=4", "UPDATE price1 SET link='abc' WHERE id=6",
          "UPDATE price1 SET link='0' WHERE id=8"})
        ASSERT_TRUE(QSqlQuery(f.price()).exec(sql)) << sql;
    const QList<CrewSheet::Rate> rates = {{"1", "resurs1"}, {" 2 ", "resurs1"}, {"2", "resurs2"},
                                          {"3", "resurs1"}, {"4", "resurs1"},   {"6", "resurs1"},
                                          {"7", "resurs1"}, {"8", "resurs1"},   {"", "resurs1"},
                                          {"1", ""},        {"5", " resurs1 "}};
    const std::vector<std::optional<Decimal>> fromFile =
        CrewSheet::priceListLookup([&f] { return f.price(); })(rates);
    ASSERT_EQ(fromFile.size(), static_cast<size_t>(rates.size()));
    ASSERT_TRUE(fromFile[0] && fromFile[1]);
    EXPECT_EQ(fromFile[1]->text(), QStringLiteral("63")); // the first row of number 2

    PriceBase base(f.module.get());
    std::vector<std::optional<Decimal>> inMemory;
    EXPECT_FALSE(base.crewPrices(rates, inMemory)); // nothing read yet
    base.readInBackground();
    base.waitForRead();
    ASSERT_TRUE(base.crewPrices(rates, inMemory));
    ASSERT_EQ(inMemory.size(), fromFile.size());
    for (size_t i = 0; i < fromFile.size(); ++i) {
        EXPECT_EQ(inMemory[i].has_value(), fromFile[i].has_value()) << i;
        if (inMemory[i] && fromFile[i]) {
            EXPECT_EQ(inMemory[i]->text(), fromFile[i]->text()) << i;
        }
    }

    // Rows that may differ from the file do not answer.
    struct Case {
        const char *what;
        std::function<void()> change;
    };
    const std::vector<Case> cases = {
        {"a cell typed", [&] { base.model().setCell(3, PriceCol::Link, "1"); }},
        {"a row inserted", [&] { base.model().insertRowAt(2); }},
        {"rows renumbered", [&] { base.model().renumber(); }},
        {"crew prices written", [&] { base.updateCrewPrices("0,5"); }},
        {"price list 2",
         [&] {
             base.setTab(PriceTab::Price2);
             ASSERT_TRUE(base.read());
         }},
    };
    for (const Case &c : cases) {
        base.setTab(PriceTab::MyPrice);
        ASSERT_TRUE(base.read());
        ASSERT_TRUE(base.crewPrices(rates, inMemory)) << c.what;
        c.change();
        EXPECT_FALSE(base.crewPrices(rates, inMemory)) << c.what;
    }
}

} // namespace
