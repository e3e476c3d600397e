// The cash book on a real book file: filters and totals, the balance, editing cells as the grid does,
// the purchase of materials, deleting, receipts and the income from sold materials.

#include "CashTestBook.h"
#include "SqlRows.h"
#include "cashbook/CashColumns.h"

#include <QSignalSpy>

namespace {

constexpr int kIncoming = CashCol::FirstAmount, kMySalary = CashCol::FirstAmount + 1,
              kMaterial = CashCol::FirstAmount + 2, kTransport = CashCol::FirstAmount + 3,
              kWorkers = CashCol::FirstAmount + 4, kOther = CashCol::FirstAmount + 5;

class CashBookTest : public ::testing::Test {
protected:
    void SetUp() override {
        t.addCustomer("Иванов", {"Дача", "Квартира"});
        t.addCustomer("Петров", {"Гараж"});
        t.choose("Иванов", "Дача");
    }
    QStringList rows(const QString &sql) { return queryRows(t.module->database(Db::Cash), sql); }
    CashTestBook t;
};

} // namespace

TEST_F(CashBookTest, ARecordInTwoCategoriesIsListedUnderBothWithOnlyThatColumn) {
    t.add("10.03.2024", {{kIncoming, "1000"}, {kMaterial, "300.5"}, {CashCol::Note, "аванс и цемент"}});
    t.add("11.03.2024", {{kTransport, "150"}});
    struct Case {
        int category;
        int rows;
        QStringList firstRowAmounts; // the six amount cells of the first row
        QString materialSum;
    } cases[] = {
        {0, 2, {"1000,00", "", "300,50", "", "", ""}, "300,50"},
        {1, 1, {"1000,00", "", "", "", "", ""}, "0,00"},
        {3, 1, {"", "", "300,50", "", "", ""}, "300,50"},
        {4, 1, {"", "", "", "150,00", "", ""}, "0,00"},
        {2, 0, {}, "0,00"},
    };
    for (const Case &c : cases) {
        t.book->setCategory(c.category);
        ASSERT_EQ(t.book->records()->rowCount(), c.rows) << c.category;
        if (c.rows > 0) {
            QStringList amounts;
            for (int col = kIncoming; col <= kOther; ++col)
                amounts << t.cell(0, col);
            EXPECT_EQ(amounts, c.firstRowAmounts) << c.category;
        }
        EXPECT_EQ(t.totals().at(2), c.materialSum) << c.category;
    }
    // Only the chosen category's amount can be edited while it is chosen.
    t.book->setCategory(3);
    const auto flags = [&](int col) { return t.book->records()->flags(t.book->records()->index(0, col)); };
    EXPECT_TRUE(flags(kMaterial) & Qt::ItemIsEditable);
    EXPECT_FALSE(flags(kIncoming) & Qt::ItemIsEditable);
    EXPECT_TRUE(flags(CashCol::Note) & Qt::ItemIsEditable);
    EXPECT_FALSE(flags(CashCol::Id) & Qt::ItemIsEditable);
}

TEST_F(CashBookTest, TotalsRowOfEmptyAndSingleSelections) {
    EXPECT_EQ(t.totals(),
              QStringList({"0,00", "0,00", "0,00", "0,00", "0,00", "0,00", "0,00", "0,00", "0,00", ""}));
    EXPECT_EQ(t.book->purchaseAmount(100).text(), "0,00");

    t.add("01.02.2024", {{kIncoming, "50000"}, {kMySalary, "12000"}, {kMaterial, "20000,40"}});
    EXPECT_EQ(t.totals(), QStringList({"50 000,00", "12 000,00", "20 000,40", "0,00", "0,00", "0,00",
                                       "32 000,40", "17 999,60", "12 000,00", "0"}));
    t.add("15.02.2024", {{kTransport, "1500"}, {kWorkers, "8000"}, {kOther, "99,60"}});
    EXPECT_EQ(t.totals().mid(6), QStringList({"41 600,00", "8 400,00", "12 000,00", "14"}));
    EXPECT_EQ(t.book->purchaseAmount(15).text(), "3000,06");
    EXPECT_EQ(t.book->firstRowDate(QDate(2000, 1, 1)), QDate(2024, 2, 1));

    // A month with nothing in it.
    t.book->setMonthClause(5, "2024");
    EXPECT_EQ(t.totals().at(7), "0,00");
    EXPECT_EQ(t.totals().at(9), "");
    EXPECT_EQ(t.book->firstRowDate(QDate(2000, 1, 1)), QDate(2000, 1, 1));
}

TEST_F(CashBookTest, BalanceHonoursCustomerAndObjectButIgnoresCategoryAndDates) {
    t.add("10.01.2024", {{kIncoming, "10000"}});
    t.add("10.02.2024", {{kMaterial, "2500"}});
    t.choose("Иванов", "Квартира");
    t.add("10.02.2024", {{kIncoming, "700"}});
    t.choose("Петров", "Гараж");
    t.add("10.02.2024", {{kOther, "90"}});

    t.choose("Иванов", "Дача");
    EXPECT_EQ(t.book->balance().text(), "7500,00");
    t.book->setCategory(1);
    t.book->setMonthClause(2, "2024");
    ASSERT_TRUE(t.book->setPeriodClause(QDate(2024, 2, 1), QDate(2024, 2, 29)).ok);
    EXPECT_EQ(t.book->records()->rowCount(), 0);
    EXPECT_EQ(t.book->balance().text(), "7500,00");
    // An edit moves the balance by what it changed.
    t.book->clearFilters();
    t.choose("Иванов", "Дача");
    t.book->setCategory(3);
    ASSERT_TRUE(t.book->editCell(0, kMaterial, "3000"));
    EXPECT_EQ(t.book->balance().text(), "7000,00");
    t.book->reload(true);
    EXPECT_EQ(t.book->balance().text(), "7000,00");

    t.book->setCustomer("Иванов");
    EXPECT_EQ(t.book->balance().text(), "7700,00");
    t.book->clearFilters();
    EXPECT_EQ(t.book->balance().text(), "7610,00");
}

TEST_F(CashBookTest, CellsAreWrittenAsTheGridWritesThem) {
    const QString id = t.add("05.01.2024", {{kIncoming, "1 234.5"}});
    ASSERT_FALSE(id.isEmpty());
    // January: month without a leading zero, date_compare with it.
    EXPECT_EQ(rows("SELECT date, incoming, month, year, date_compare, customer, object FROM cash"),
              QStringList{"05.01.2024|1 234,5|1|2024|20240105|Иванов|Дача"});
    EXPECT_EQ(t.cell(0, CashCol::Id), id);
    EXPECT_EQ(t.cell(0, kIncoming), "1234,50");

    // The date moves every date form of the record; the row keeps its key.
    ASSERT_TRUE(t.book->editCell(0, CashCol::Date, "9.11.2023"));
    EXPECT_EQ(rows("SELECT _id, date, month, year, date_compare FROM cash"),
              QStringList{id + "|09.11.2023|11|2023|20231109"});
    ASSERT_TRUE(t.book->setRowDate(0, QDate(2024, 12, 31)));
    EXPECT_EQ(rows("SELECT date_compare FROM cash"), QStringList{"20241231"});

    // Refused cells change nothing and say why.
    QSignalSpy problems(t.book.get(), &CashBook::problem);
    EXPECT_FALSE(t.book->editCell(0, kMaterial, "двести"));
    EXPECT_FALSE(t.book->editCell(0, CashCol::Date, "31.02.2024"));
    EXPECT_FALSE(t.book->editCell(0, CashCol::Id, "5"));
    EXPECT_EQ(problems.count(), 2);
    EXPECT_EQ(rows("SELECT material, date FROM cash"), QStringList{"|31.12.2024"});

    // A row added but never edited is not in the book.
    CashBook::Outcome o;
    EXPECT_EQ(t.book->addRecord(QDate(2024, 1, 1), &o), 1);
    EXPECT_EQ(rows("SELECT count(*) FROM cash"), QStringList{"1"});
    ASSERT_TRUE(t.book->editCell(1, CashCol::Note, "пустая запись"));
    EXPECT_EQ(rows("SELECT count(*), max(_id) FROM cash"), QStringList{"2|" + t.cell(1, CashCol::Id)});
}

TEST_F(CashBookTest, NamesWithQuotesAreKeptWithBackticks) {
    t.addCustomer("ООО \"Ремонт\"", {"Склад \"Север\""});
    t.choose("ООО \"Ремонт\"", "Склад \"Север\"");
    t.add("01.03.2024", {{kIncoming, "10"}});
    EXPECT_EQ(rows("SELECT customer, object FROM cash"), QStringList{"ООО `Ремонт`|Склад `Север`"});
    t.book->reload();
    ASSERT_EQ(t.book->records()->rowCount(), 1);
    EXPECT_EQ(t.cell(0, CashCol::Customer), "ООО \"Ремонт\"");
    EXPECT_EQ(t.cell(0, CashCol::Object), "Склад \"Север\"");
    EXPECT_EQ(t.book->balance().text(), "10,00");
}

TEST_F(CashBookTest, RefusalsWithoutCustomerAndBadPeriod) {
    t.book->clearFilters();
    t.book->setCustomer("Иванов");
    CashBook::Outcome o;
    EXPECT_EQ(t.book->addRecord(QDate(2024, 1, 1), &o), -1);
    EXPECT_EQ(o.caption, "Предупреждение");
    EXPECT_EQ(o.text, "Выберите заказчика и объект");
    EXPECT_EQ(t.book->addPurchase(QDate(2024, 1, 1), "100", 10).text, "Выберите заказчика и объект");
    EXPECT_EQ(t.book->records()->rowCount(), 0);

    const CashBook::Outcome period = t.book->setPeriodClause(QDate(2024, 3, 10), QDate(2024, 3, 9));
    EXPECT_FALSE(period.ok);
    EXPECT_EQ(period.text, "Начало периода не должно превышать окончание");
    EXPECT_FALSE(t.book->filter().period);
}

TEST_F(CashBookTest, PurchaseDeleteAndDeleteAll) {
    t.add("01.04.2024", {{kMaterial, "2000"}});
    EXPECT_EQ(t.book->purchaseAmount(50).text(), "1000,00");
    EXPECT_TRUE(t.book->addPurchase(QDate(2024, 4, 2), t.book->purchaseAmount(50).text(), 50).ok);
    EXPECT_EQ(rows("SELECT date, material, note, month, date_compare FROM cash ORDER BY _id DESC LIMIT 1"),
              QStringList{"02.04.2024|1000,00|Закупка материалов 50%|4|20240402"});
    EXPECT_EQ(t.book->records()->rowCount(), 2);
    EXPECT_EQ(t.book->addPurchase(QDate(2024, 4, 2), "0", 50).text, "Укажите сумму закупки материалов");

    EXPECT_TRUE(t.book->deleteRecord(0).ok);
    EXPECT_EQ(rows("SELECT note FROM cash"), QStringList{"Закупка материалов 50%"});
    EXPECT_EQ(t.book->balance().text(), "-1000,00");
    EXPECT_TRUE(t.book->deleteAll().ok);
    EXPECT_EQ(rows("SELECT count(*) FROM cash"), QStringList{"0"});
    EXPECT_EQ(t.book->records()->rowCount(), 0);
    // Keys start again after the book was emptied.
    EXPECT_EQ(t.add("03.04.2024", {{kIncoming, "1"}}), "1");
}

TEST_F(CashBookTest, ReceiptsOfARecord) {
    const QString id = t.add("01.05.2024", {{kMaterial, "5000"}});
    CashBook::Outcome o;
    t.book->showReceipts(0);
    // A line of a record not yet marked marks it first.
    ASSERT_EQ(t.book->addLine(&o), 0) << o.text.toStdString();
    EXPECT_EQ(rows("SELECT cheki FROM cash"), QStringList{id});
    EXPECT_EQ(t.cell(0, CashCol::Marker), "✓");
    ASSERT_TRUE(t.book->editLine(0, ChecksCol::Name, "Цемент М500"));
    ASSERT_TRUE(t.book->editLine(0, ChecksCol::Quantity, "10"));
    ASSERT_TRUE(t.book->editLine(0, ChecksCol::Price, "450.5"));
    EXPECT_FALSE(t.book->editLine(0, ChecksCol::Price, "дорого"));
    ASSERT_EQ(t.book->addLine(&o), 1);
    ASSERT_TRUE(t.book->editLine(1, ChecksCol::Sum, "95.5"));
    EXPECT_EQ(rows("SELECT date, name, kolvo, price, sum, val FROM checks ORDER BY id"),
              QStringList({"01.05.2024|Цемент М500|10|450,5|4505,00|" + id, "01.05.2024||||95,5|" + id}));
    EXPECT_EQ(t.book->receiptsCost().text(), "4600,50");

    // Listed again from the book.
    t.book->reload();
    t.book->showReceipts(0);
    EXPECT_EQ(t.book->checks()->rowCount(), 2);
    EXPECT_TRUE(t.book->deleteLine(1).ok);
    EXPECT_EQ(rows("SELECT count(*) FROM checks"), QStringList{"1"});
    EXPECT_TRUE(t.book->deleteReceipts(0).ok);
    EXPECT_EQ(rows("SELECT count(*) FROM checks"), QStringList{"0"});
    EXPECT_EQ(rows("SELECT cheki FROM cash"), QStringList{""});
    EXPECT_EQ(t.book->checks()->rowCount(), 0);

    // Deleting a record takes its receipt lines along.
    ASSERT_TRUE(t.book->markReceipts(0).ok);
    ASSERT_EQ(t.book->addLine(&o), 0);
    ASSERT_TRUE(t.book->editLine(0, ChecksCol::Name, "Песок"));
    EXPECT_TRUE(t.book->deleteRecord(0).ok);
    EXPECT_EQ(rows("SELECT count(*) FROM checks"), QStringList{"0"});
}

TEST_F(CashBookTest, IncomeFromSoldMaterialsOfTheWarehouse) {
    QSqlQuery q(t.module->database(Db::Mat));
    // Two write-offs to Иванов's Дача (March and April), one to Петров, one stock row.
    for (const char *sql : {
             "INSERT INTO storage (namemat, summa, customer, object, month, year, date_compare, dataoffs) "
             "values('Цемент', '1500,50', 'Иванов', 'Дача', '3', '2024', '20240305', '05.03.2024')",
             "INSERT INTO storage (namemat, summa, customer, object, month, year, date_compare, dataoffs) "
             "values('Песок', '500', 'Иванов', 'Дача', '4', '2024', '20240410', '10.04.2024')",
             "INSERT INTO storage (namemat, summa, customer, object, month, year, date_compare, dataoffs) "
             "values('Плитка', '9000', 'Петров', 'Гараж', '3', '2024', '20240301', '01.03.2024')",
             "INSERT INTO storage (namemat, summa, data) values('Краска', '777', '01.01.2024')",
         })
        ASSERT_TRUE(q.exec(sql)) << sql;
    t.book->reload();
    ASSERT_TRUE(t.book->soldMaterials());
    EXPECT_EQ(t.book->soldMaterials()->text(), "2000,50");
    ASSERT_TRUE(t.book->setPeriodClause(QDate(2024, 3, 1), QDate(2024, 3, 31)).ok);
    EXPECT_EQ(t.book->soldMaterials()->text(), "1500,50");
    t.book->clearFilters();
    EXPECT_EQ(t.book->soldMaterials()->text(), "11000,50");
    // The month clause of every customer; the category does not apply to write-offs.
    t.book->setMonthClause(3, "2024");
    t.book->setCategory(1);
    EXPECT_EQ(t.book->soldMaterials()->text(), "10500,50");
}

TEST_F(CashBookTest, YearsOfTheRecords) {
    t.add("01.05.2024", {{kIncoming, "1"}});
    t.add("01.05.2022", {{kIncoming, "1"}});
    t.add("07.07.2024", {{kIncoming, "1"}});
    EXPECT_EQ(t.book->years(), QStringList({"2022", "2024"}));
}

TEST_F(CashBookTest, LongBooksAreReadAsTheGridShowsThem) {
    // Rows past the first block come in when they are shown; the totals count every row.
    QSqlDatabase db = t.module->database(Db::Cash);
    QSqlQuery q(db);
    ASSERT_TRUE(q.exec("BEGIN"));
    for (int i = 1; i <= 450; ++i)
        ASSERT_TRUE(
            q.exec(QStringLiteral("INSERT INTO cash (date, incoming, note, customer, object, month, year, "
                                  "date_compare) values('%1.01.2024', '%2', 'запись %2', 'Иванов', 'Дача', "
                                  "'1', '2024', '202401%1')")
                       .arg(1 + i % 28, 2, 10, QLatin1Char('0'))
                       .arg(i)));
    ASSERT_TRUE(q.exec("COMMIT"));
    t.book->reload(true);
    ASSERT_EQ(t.book->records()->rowCount(), 450);
    EXPECT_EQ(t.cell(420, CashCol::Note), "запись 421");
    EXPECT_EQ(t.cell(449, kIncoming), "450,00");
    EXPECT_EQ(t.totals().at(0), "101 475,00");
    EXPECT_EQ(t.book->balance().text(), "101475,00");

    // A record another copy of the program deleted meanwhile is not written again.
    ASSERT_TRUE(q.exec("DELETE FROM cash WHERE note='запись 300'"));
    QSignalSpy problems(t.book.get(), &CashBook::problem);
    EXPECT_FALSE(t.book->editCell(299, kMaterial, "5"));
    ASSERT_EQ(problems.count(), 1);
    EXPECT_TRUE(problems.at(0).at(0).value<CashBook::Outcome>().text.contains("удалили"));
    EXPECT_EQ(rows("SELECT count(*) FROM cash"), QStringList{"449"});
}
