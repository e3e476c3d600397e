// The warehouse without windows: write-offs by customer, object and period; taking from stock into the
// estimate (part, all, above the stock, bad quantities) as one action that a failure leaves undone;
// stock cells written with what follows them; the minimum stock; putting estimate materials into
// stock; an import replacing the stock and keeping the write-offs; the report's choices and refusals.

#include "MatTestData.h"
#include "MoneyText.h"
#include "StockTestData.h"
#include "customers/CustomerRegister.h"
#include "materials/SoldReport.h"
#include "materials/StockSpreadsheet.h"
#include "materials/StockTaking.h"
#include "materials/Warehouse.h"
#include "materials/WriteOffModel.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QBrush>
#include <QSignalSpy>

namespace {

struct WarehouseFixture : PriceFixture {
    QSqlDatabase mat() { return module->database(Db::Mat); }
    QString matScalar(const QString &sql) { return scalar(mat(), sql); }
};

const QString kCustomer = "ООО \"Ремстрой\"";
const QString kObject = "Офис на Ленина, 5";

TEST(WriteOffs, TheFifthOfMarchFallsInMarchOnlyAndFiltersCombine) {
    WarehouseFixture f;
    addWriteOff(f.mat(), "Цемент", "560,00", kCustomer, kObject, QDate(2020, 3, 5));
    addWriteOff(f.mat(), "Клей", "1040,50", kCustomer, "Склад", QDate(2020, 3, 31));
    addWriteOff(f.mat(), "Грунт", "100", kCustomer, kObject, QDate(2020, 4, 1));
    addWriteOff(f.mat(), "Гипс", "7", "Иванов", kObject, QDate(2020, 3, 10));
    addStock(f.mat(), stockItem("На складе", "шт.", "5", "10")); // a stock row is never a write-off
    // Amounts as older programs and typing left them are added by the number rule; one past the
    // maximum makes the total refused.
    addWriteOff(f.mat(), "Песок", "1 250,5", "Петров", "", QDate(2020, 5, 1));
    addWriteOff(f.mat(), "Щебень", "договорная", "Петров", "", QDate(2020, 5, 1));
    addWriteOff(f.mat(), "Щебень", "0,07", "Петров", "", QDate(2020, 5, 1));
    addWriteOff(f.mat(), "Золото", "999999999999,99", "Сидоров", "", QDate(2020, 5, 1));
    addWriteOff(f.mat(), "Золото", "0,01", "Сидоров", "", QDate(2020, 5, 1));
    // The customer's name goes in with a backtick for its quotes, and comes back as shown.
    EXPECT_EQ(f.matScalar("SELECT customer FROM storage WHERE namemat='Цемент'"), "ООО `Ремстрой`");
    EXPECT_EQ(
        f.matScalar("SELECT date_compare || '/' || month || '/' || year || '/' || dataoffs FROM storage "
                    "WHERE namemat='Цемент'"),
        "20200305/3/2020/05.03.2020");

    struct Case {
        const char *what;
        WriteOffFilter filter;
        QStringList names;
        std::string total;
    };
    const QDate march1(2020, 3, 1), march31(2020, 3, 31);
    const std::vector<Case> cases = {
        {"by the number rule", {"Петров", {}, {}, {}, {}, {}}, {"Песок", "Щебень", "Щебень"}, "1250,57"},
        {"past the maximum", {"Сидоров", {}, {}, {}, {}, {}}, {"Золото", "Золото"}, "refused"},
        {"till April",
         {{}, {}, {}, {}, {}, QDate(2020, 4, 30)},
         {"Цемент", "Клей", "Грунт", "Гипс"},
         "1707,50"},
        {"the customer in March", {kCustomer, {}, {}, {}, march1, march31}, {"Цемент", "Клей"}, "1600,50"},
        {"the period's last day counts", {kCustomer, {}, {}, {}, march31, march31}, {"Клей"}, "1040,50"},
        {"March 6 on", {kCustomer, {}, {}, {}, QDate(2020, 3, 6), march31}, {"Клей"}, "1040,50"},
        {"February", {kCustomer, {}, {}, {}, QDate(2020, 2, 1), QDate(2020, 2, 29)}, {}, "0,00"},
        {"the object", {{}, kObject, {}, {}, {}, {}}, {"Цемент", "Грунт", "Гипс"}, "667,00"},
        {"customer and object", {kCustomer, kObject, {}, {}, {}, {}}, {"Цемент", "Грунт"}, "660,00"},
        {"month and year as the cash book keeps them",
         {kCustomer, {}, "3", "2020", {}, {}},
         {"Цемент", "Клей"},
         "1600,50"},
        {"an open end",
         {{}, {}, {}, {}, QDate(2020, 3, 10), QDate(2020, 4, 30)},
         {"Клей", "Грунт", "Гипс"},
         "1147,50"},
    };
    for (const Case &c : cases) {
        std::vector<WriteOff> rows;
        QString error;
        ASSERT_TRUE(WriteOffs::read(f.mat(), c.filter, rows, &error)) << error.toStdString();
        QStringList names;
        for (const WriteOff &w : rows)
            names << w.name;
        EXPECT_EQ(names, c.names) << c.what;
        EXPECT_EQ(rub(WriteOffs::soldTotal(f.mat(), c.filter)), c.total) << c.what;
    }
    std::vector<WriteOff> march;
    ASSERT_TRUE(WriteOffs::read(f.mat(), {kCustomer, {}, {}, {}, march1, march31}, march));
    EXPECT_EQ(march.front().customer, kCustomer);
    EXPECT_EQ(march.front().date, "05.03.2020");
    EXPECT_EQ(WriteOffs::periodRefusal(march31, march1), "Начало периода не должно превышать окончание");
    EXPECT_TRUE(WriteOffs::periodRefusal(march1, march1).isEmpty());
    // A stock row is not deleted as a write-off.
    QString error;
    EXPECT_FALSE(
        WriteOffs::remove(f.mat(), f.matScalar("SELECT id FROM storage WHERE namemat='На складе'"), &error));
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage"), "10");
}

TEST(WriteOffs, AmountsAddUpAsTheNumberRuleReadsThem) {
    // The quick reading of the program's own form gives what the number rule gives, and any other text
    // is read by the rule.
    for (const QString text :
         {"1234,50", "0,07", "000,10", "999999999999,99", "1234,5", "12,345", "1 234,50", "-5,00", "5.00",
          "12a,00", ",50", "1,2,50", "", "договорная", "9999999999999,99"}) {
        const MoneyResult parsed = Money::parse(text);
        EXPECT_EQ(WriteOffs::addAmount(Money(), text), parsed ? parsed : MoneyResult(Money()))
            << text.toStdString();
    }
}

TEST(WriteOffModel, ALongListIsReadAPageAtATime) {
    WarehouseFixture f;
    const int n = WriteOffModel::kPageRows * 3 + 17;
    {
        Transaction t(f.mat());
        for (int i = 0; i < n; ++i)
            addWriteOff(f.mat(), QString("Материал %1").arg(i), "1,00", i % 2 ? kCustomer : "Иванов", {},
                        QDate(2020, 1, 1).addDays(i));
        ASSERT_TRUE(t.commit());
    }
    WriteOffModel model([&f] { return f.mat(); });
    WriteOffFilter filter;
    filter.customer = kCustomer;
    ASSERT_TRUE(model.load(filter));
    ASSERT_EQ(model.rowCount(), n / 2);
    EXPECT_EQ(rub(model.total()), QString("%1,00").arg(n / 2).toStdString());
    // Rows far apart, in any order, each from its own page.
    for (int row : {n / 2 - 1, 0, WriteOffModel::kPageRows, WriteOffModel::kPageRows - 1, 300})
        EXPECT_EQ(model.index(row, WriteOffCol::Name).data().toString(),
                  QString("Материал %1").arg(2 * row + 1));
    // A record another program deleted stays an empty row with its id until the list is read again.
    WriteOffModel stale([&f] { return f.mat(); });
    ASSERT_TRUE(stale.load(filter)); // the ids only: no page is read before it is shown
    const QString gone = model.rowAt(301)->id;
    const QString next = model.rowAt(302)->name;
    ASSERT_TRUE(WriteOffs::remove(f.mat(), gone));
    EXPECT_EQ(stale.rowAt(301)->id, gone);
    EXPECT_TRUE(stale.rowAt(301)->name.isEmpty());
    EXPECT_EQ(stale.rowAt(302)->name, next);
    WriteOffModel fresh([&f] { return f.mat(); });
    ASSERT_TRUE(fresh.load(filter));
    EXPECT_EQ(fresh.rowAt(301)->name, next);
    // Removing a row moves the rest up and takes its amount from the total.
    model.removeRowAt(0);
    EXPECT_EQ(model.rowCount(), n / 2 - 1);
    EXPECT_EQ(model.rowAt(0)->name, "Материал 3");
    EXPECT_EQ(rub(model.total()), QString("%1,00").arg(n / 2 - 1).toStdString());
}

TEST(StockTaking, QuantitiesTypedAreNumbersAboveZero) {
    struct Case {
        QString typed;
        QString refusal; // empty: accepted
        QString value;
    };
    for (const Case &c : {Case{"2", "", "2"}, Case{" 1.5 ", "", "1,5"}, Case{"0,25", "", "0,25"},
                          Case{"два", "не является числом", ""}, Case{"0", "больше нуля", ""},
                          Case{"-3", "больше нуля", ""}, Case{"", "Введите количество", ""}}) {
        QString refusal;
        const auto q = StockTaking::parseQuantity(c.typed, &refusal);
        EXPECT_EQ(q.has_value(), c.refusal.isEmpty()) << c.typed.toStdString();
        if (q)
            EXPECT_EQ(TextValues::formatQuantity(*q), c.value);
        else
            EXPECT_TRUE(refusal.contains(c.refusal)) << refusal.toStdString();
    }
}

TEST(StockTaking, PartAllAndAboveTheStock) {
    WarehouseFixture f;
    const QString cement = addStock(f.mat(), stockItem("Цемент М500", "мешок", "10", "560"));
    const QString glue = addStock(f.mat(), stockItem("Клей", "мешок", "2,5", "500", {}, "650"));
    MaterialsStore::Material had;
    had.name = "Клей";
    had.quantity = "1";
    had.price = "650";
    had.numpos = "1";
    ASSERT_FALSE(MaterialsStore::add(f.smeta(), had).isEmpty());
    const QDate day(2020, 3, 5);
    auto take = [&](const QString &id, const QString &quantity) {
        return StockTaking::take(f.mat(), f.smeta(),
                                 {id, *TextValues::parseAmount(quantity), kCustomer, kObject, day});
    };

    // Above the stock: nothing changes.
    StockTaking::Outcome out = take(cement, "10,5");
    EXPECT_EQ(out.kind, StockTaking::Outcome::Refused);
    EXPECT_EQ(out.message, "Превышает имеющееся количество");
    EXPECT_EQ(f.materials(), QStringList{"Клей|1|650|"});
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage WHERE dataoffs>''"), "0");

    // Part of a row: a new material of the estimate, the stock and its sum reduced, a write-off.
    out = take(cement, "3");
    ASSERT_EQ(out.kind, StockTaking::Outcome::Taken) << out.message.toStdString();
    EXPECT_FALSE(out.addedToExisting);
    EXPECT_EQ(f.materials(), (QStringList{"Клей|1|650|", "Цемент М500|3|560|1680,00"}));
    EXPECT_EQ(f.scalar(f.smeta(), "SELECT numpos || edizm FROM materials WHERE namemat='Цемент М500'"),
              "2мешок");
    EXPECT_EQ(stockRows(f.mat()), (QStringList{"Цемент М500|7|3920,00", "Клей|2,5|"}));
    EXPECT_EQ(
        queryRows(f.mat(), "SELECT namemat, kolvo, price, summa, customer, object, dataoffs, month, year, "
                           "date_compare FROM storage WHERE id=" +
                               out.writeOffId),
        QStringList{"Цемент М500|3|560|1680,00|ООО `Ремстрой`|Офис на Ленина, 5|05.03.2020|3|2020|20200305"});

    // The whole row, at its sale price, into the material the estimate has: the row is gone.
    out = take(glue, "2,5");
    ASSERT_EQ(out.kind, StockTaking::Outcome::WholeTaken) << out.message.toStdString();
    EXPECT_TRUE(out.addedToExisting);
    EXPECT_EQ(f.materials(), (QStringList{"Клей|3,5|650|2275,00", "Цемент М500|3|560|1680,00"}));
    EXPECT_EQ(stockRows(f.mat()), QStringList{"Цемент М500|7|3920,00"});
    EXPECT_EQ(
        f.matScalar("SELECT kolvo || '/' || price || '/' || summa FROM storage WHERE id=" + out.writeOffId),
        "2,5/650/1625,00");

    // A row another program took meanwhile, a stock quantity in words.
    out = take(glue, "1");
    EXPECT_EQ(out.kind, StockTaking::Outcome::Refused);
    const QString words = addStock(f.mat(), stockItem("Песок", "т", "много", "900"));
    out = take(words, "1");
    EXPECT_EQ(out.kind, StockTaking::Outcome::Refused);
    EXPECT_TRUE(out.message.contains("не является числом")) << out.message.toStdString();
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage WHERE dataoffs>''"), "2");
}

TEST(StockTaking, AFailureHalfWayLeavesStockWriteOffsAndEstimateAsTheyWere) {
    struct Case {
        const char *what;
        Db db;
        const char *trigger;
    };
    // Real failures of the statements, made by triggers: the write-off, the stock row, the estimate.
    const std::vector<Case> cases = {
        {"the write-off", Db::Mat,
         "CREATE TRIGGER fail BEFORE INSERT ON storage WHEN NEW.dataoffs > '' BEGIN SELECT RAISE(ABORT, "
         "'диск "
         "полон'); END"},
        {"the stock", Db::Mat,
         "CREATE TRIGGER fail BEFORE UPDATE ON storage BEGIN SELECT RAISE(ABORT, 'диск полон'); END"},
        {"the estimate", Db::Smeta,
         "CREATE TRIGGER fail BEFORE INSERT ON materials BEGIN SELECT RAISE(ABORT, 'диск полон'); END"},
    };
    for (const Case &c : cases) {
        WarehouseFixture f;
        const QString id = addStock(f.mat(), stockItem("Цемент", "мешок", "10", "560"));
        QSqlQuery q(f.module->database(c.db));
        ASSERT_TRUE(q.exec(c.trigger)) << c.what;
        const StockTaking::Outcome out = StockTaking::take(
            f.mat(), f.smeta(), {id, *Decimal::whole(4), kCustomer, kObject, QDate(2020, 3, 5)});
        EXPECT_EQ(out.kind, StockTaking::Outcome::Failed) << c.what;
        EXPECT_TRUE(out.message.contains("диск полон")) << c.what << ": " << out.message.toStdString();
        EXPECT_EQ(stockRows(f.mat()), QStringList{"Цемент|10|"}) << c.what;
        EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage"), "1") << c.what;
        EXPECT_TRUE(f.materials().isEmpty()) << c.what;
    }
}

TEST(StockModel, CellsAreWrittenWithWhatFollowsThem) {
    WarehouseFixture f;
    const QString id = addStock(f.mat(), stockItem("Цемент", "мешок", "10", "560", "4", "700"));
    Warehouse w([&f] { return f.mat(); });
    ASSERT_TRUE(w.read());
    StockModel &m = w.model();
    m.setToday([] { return QDate(2020, 3, 5); });
    QSignalSpy refused(&m, &StockModel::editRefused);
    auto set = [&m](StockField field, const QString &text) {
        return m.setData(m.index(0, m.columnOf(field)), text, Qt::EditRole);
    };
    auto row = [&f, &id] {
        return f.matScalar(
            "SELECT kolvo || '|' || price || '|' || summa || '|' || sale || '|' || minlimit || '|' || "
            "ifnull(month, '-') || '|' || ifnull(year, '-') || '|' || ifnull(date_compare, '-') "
            "FROM storage WHERE id=" +
            id);
    };
    // Warehouse: a quantity typed with a point is kept with a comma, and the sum follows; no date columns.
    EXPECT_EQ(m.columnCount(), 6);
    EXPECT_EQ(m.headerData(5, Qt::Horizontal, Qt::DisplayRole).toString(), "Мин. остаток");
    ASSERT_TRUE(set(StockField::Qty, "2.5"));
    EXPECT_EQ(row(), "2,5|560|1400,00|700|4|-|-|-");
    EXPECT_EQ(m.index(0, m.columnOf(StockField::Sum)).data().toString(), "1400,00");
    // Letters and negative numbers are refused: nothing written, the user told why.
    EXPECT_FALSE(set(StockField::Price, "дорого"));
    EXPECT_FALSE(set(StockField::Min, "-1"));
    EXPECT_EQ(refused.count(), 2);
    EXPECT_TRUE(m.lastError().contains("Минимальный остаток")) << m.lastError().toStdString();
    EXPECT_EQ(row(), "2,5|560|1400,00|700|4|-|-|-");
    EXPECT_EQ(m.totalText(), "Сумма материалов 1400,00");

    // Shop: purchase and sale prices; each cell brings month, year and date_compare with it.
    w.setMode(StockMode::Shop);
    EXPECT_EQ(m.columnCount(), 5);
    EXPECT_EQ(m.headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(), "Цена закупки");
    EXPECT_EQ(m.headerData(4, Qt::Horizontal, Qt::DisplayRole).toString(), "Цена продажи");
    EXPECT_EQ(m.columnOf(StockField::Min), -1);
    EXPECT_EQ(m.totalText(), "Общая наценка 350,00"); // (700 − 560) × 2,5
    ASSERT_TRUE(set(StockField::Sale, "720.40"));
    EXPECT_EQ(row(), "2,5|560|1400,00|720,40|4|3|2020|20200305");
    EXPECT_EQ(m.totalText(), "Общая наценка 401,00");
    ASSERT_TRUE(set(StockField::Name, "Цемент М500"));
    EXPECT_EQ(f.matScalar("SELECT namemat FROM storage WHERE id=" + id), "Цемент М500");
}

TEST(StockModel, RowsBelowTheirMinimumAreCountedAndDrawnRed) {
    WarehouseFixture f;
    struct Case {
        const char *quantity;
        const char *minimum;
        bool below;
    };
    const std::vector<Case> cases = {{"3", "5", true},  {"5", "5", false},    {"7", "5", false},
                                     {"", "2", true},   {"1,5", "2", true},   {"1", "", false},
                                     {"1", "0", false}, {"1", "много", false}};
    for (const Case &c : cases)
        addStock(f.mat(), stockItem(QString("Материал %1/%2").arg(c.quantity, c.minimum), "шт.", c.quantity,
                                    "1", c.minimum));
    Warehouse w([&f] { return f.mat(); });
    ASSERT_TRUE(w.read());
    EXPECT_EQ(w.model().belowMinimumCount(), 3);
    for (int r = 0; r < static_cast<int>(cases.size()); ++r) {
        const QModelIndex cell = w.model().index(r, 0);
        EXPECT_EQ(cell.data(Qt::BackgroundRole).isValid(), cases[static_cast<size_t>(r)].below) << r;
        EXPECT_EQ(cell.data(Qt::ToolTipRole).toString().contains("Меньше минимального остатка"),
                  cases[static_cast<size_t>(r)].below)
            << r;
    }
    // Raising a quantity above the minimum takes the row out of the count.
    ASSERT_TRUE(
        w.model().setData(w.model().index(0, w.model().columnOf(StockField::Qty)), "6", Qt::EditRole));
    EXPECT_EQ(w.model().belowMinimumCount(), 2);
}

TEST(Warehouse, EstimateMaterialsGoIntoStockOnceAndRowsComeAndGo) {
    WarehouseFixture f;
    Warehouse w([&f] { return f.mat(); });
    ASSERT_TRUE(w.read());
    MaterialsStore::Material m;
    m.name = "Клей \"Юнис\"";
    m.unit = "мешок";
    m.quantity = "4";
    m.price = "520";
    m.sum = "2080,00";
    const QDate day(2020, 3, 5);
    Warehouse::PutOutcome out = w.putIn(m, "Смета 12.sim", day);
    ASSERT_EQ(out.kind, Warehouse::PutOutcome::Added) << out.error.toStdString();
    EXPECT_EQ(queryRows(f.mat(), "SELECT data, namemat, edizm, kolvo, price, summa, client FROM storage"),
              QStringList{"05.03.2020|Клей \"Юнис\"|мешок|4|520|2080,00|Смета 12.sim"});
    out = w.putIn(m, "Смета 13.sim", day);
    EXPECT_EQ(out.kind, Warehouse::PutOutcome::Found);
    EXPECT_EQ(out.row, 0);
    ASSERT_TRUE(w.setQuantity(0, "6"));
    EXPECT_EQ(stockRows(f.mat()), QStringList{"Клей \"Юнис\"|6|3120,00"});
    m.name = "  ";
    EXPECT_EQ(w.putIn(m, "Смета 12.sim", day).kind, Warehouse::PutOutcome::Skipped);

    const int empty = w.addEmptyRow(day);
    ASSERT_EQ(empty, 1);
    EXPECT_EQ(f.matScalar("SELECT data || '|' || ifnull(namemat, '-') FROM storage ORDER BY id DESC LIMIT 1"),
              "05.03.2020|-");
    ASSERT_TRUE(w.removeRow(empty));
    EXPECT_EQ(w.model().rowCount(), 1);

    // An import replaces the stock and keeps the record of what was sold; clearing takes both.
    addWriteOff(f.mat(), "Цемент", "560", kCustomer, kObject, day);
    ASSERT_TRUE(
        w.replaceStock({stockItem("Гипс", "мешок", "3", "400"), stockItem("Песок", "т", "1", "900")}));
    EXPECT_EQ(stockRows(f.mat()), (QStringList{"Гипс|3|", "Песок|1|"}));
    EXPECT_EQ(w.model().rowCount(), 2);
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage WHERE dataoffs>''"), "1");
    ASSERT_TRUE(w.clear());
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage"), "0");
    EXPECT_EQ(w.model().rowCount(), 0);
}

TEST(StockSpreadsheetCells, SheetsAreReadByTheirTitlesOrByTheModesOrder) {
    const QDate today(2020, 3, 5);
    struct Case {
        const char *what;
        StockMode mode;
        SheetText::Grid cells;
        QStringList items; // "name|unit|kolvo|price|sale|summa|min|date", or empty for a refusal
        QString refusal;
    };
    const std::vector<Case> cases = {
        {"the warehouse's own sheet",
         StockMode::Warehouse,
         {StockSpreadsheet::titles(StockMode::Warehouse),
          {"Цемент", "мешок", "10", "560,00", "", "5600,00", "4", "01.03.2020"},
          {"", "", "", "", "", "", "", ""},
          {"Гипс", "мешок", "2", "1 250,50 ₽", "", "", "", ""}},
         {"Цемент|мешок|10|560,00||5600,00|4|01.03.2020", "Гипс|мешок|2|1 250,50||2501,00||05.03.2020"},
         {}},
        {"the shop's sheet: the markup gives the missing sale price",
         StockMode::Shop,
         {StockSpreadsheet::titles(StockMode::Shop),
          {"Клей", "мешок", "4", "500", "150", "", "2020-03-02"},
          {"Лента", "шт.", "12", "100", "20", "130", ""}},
         {"Клей|мешок|4|500|650,00|||02.03.2020", "Лента|шт.|12|100|130|||05.03.2020"},
         {}},
        {"titles in another order, unknown columns left out",
         StockMode::Warehouse,
         {{"Дата", "Кол-во", "Примечание", "Наименование", "Цена, руб."},
          {"07.03.2020", "3", "синий", "Краска", "900"}},
         {"Краска||3|900||2700,00||07.03.2020"},
         {}},
        {"no title row: the shop's order",
         StockMode::Shop,
         {{"Клей", "мешок", "4", "500", "", "650"}},
         {"Клей|мешок|4|500|650|||05.03.2020"},
         {}},
        {"a quantity in words",
         StockMode::Warehouse,
         {StockSpreadsheet::titles(StockMode::Warehouse), {"Клей", "мешок", "четыре", "500"}},
         {},
         "Строка 2"},
        {"titles only",
         StockMode::Shop,
         {StockSpreadsheet::titles(StockMode::Shop)},
         {},
         "нет ни одного материала"},
    };
    for (const Case &c : cases) {
        std::vector<StockItem> items;
        QString error;
        const bool ok = StockSpreadsheet::itemsFromCells(c.cells, c.mode, today, items, &error);
        EXPECT_EQ(ok, c.refusal.isEmpty()) << c.what << ": " << error.toStdString();
        if (!ok) {
            EXPECT_TRUE(error.contains(c.refusal)) << c.what << ": " << error.toStdString();
            continue;
        }
        QStringList got;
        for (const StockItem &s : items)
            got << QStringList{s.name, s.unit, s.quantity, s.price, s.sale, s.sum, s.minlimit, s.date}.join(
                '|');
        EXPECT_EQ(got, c.items) << c.what;
    }
}

TEST(SoldReport, ChoicesFindTheirPartnersAndARefusedPeriodKeepsTheList) {
    WarehouseFixture f;
    CustomerRegister customers(*f.module);
    ASSERT_EQ(customers.addCustomer(kCustomer), RegisterStatus::Ok);
    ASSERT_EQ(customers.addObject(kCustomer, kObject), RegisterStatus::Ok);
    ASSERT_EQ(customers.addCustomer("Иванов"), RegisterStatus::Ok);
    addWriteOff(f.mat(), "Цемент", "560", kCustomer, kObject, QDate(2020, 3, 5));
    addWriteOff(f.mat(), "Клей", "500", kCustomer, kObject, QDate(2020, 4, 5));
    addWriteOff(f.mat(), "Гипс", "70", "Иванов", "Дача", QDate(2020, 3, 7));
    SoldReport report([&f] { return f.mat(); }, customers);
    auto names = [&report] {
        QStringList n;
        for (int r = 0; r < report.model().rowCount(); ++r)
            n << report.model().rowAt(r)->name;
        return n;
    };
    QStringList objects;
    QString notice, message, owner;
    ASSERT_TRUE(report.chooseCustomer(kCustomer, &objects, &notice, &message));
    EXPECT_EQ(objects, QStringList{kObject});
    EXPECT_TRUE(notice.isEmpty());
    EXPECT_EQ(names(), (QStringList{"Цемент", "Клей"}));
    ASSERT_TRUE(report.chooseCustomer("Иванов", &objects, &notice, &message));
    EXPECT_EQ(notice, "Объект не найден");
    EXPECT_EQ(names(), QStringList{"Гипс"});
    ASSERT_TRUE(report.chooseObject(kObject, &owner, &notice, &message));
    EXPECT_EQ(owner, kCustomer);
    EXPECT_EQ(names(), (QStringList{"Цемент", "Клей"}));
    ASSERT_TRUE(report.chooseObject("Дача", &owner, &notice, &message));
    EXPECT_EQ(notice, "Заказчик не найден");
    EXPECT_EQ(names(), QStringList{"Гипс"});

    ASSERT_TRUE(report.applyPeriod(kCustomer, QDate(2020, 3, 1), QDate(2020, 3, 31), &message));
    EXPECT_EQ(names(), QStringList{"Цемент"});
    EXPECT_EQ(rub(report.model().total()), "560,00");
    EXPECT_FALSE(report.applyPeriod(kCustomer, QDate(2020, 4, 1), QDate(2020, 3, 31), &message));
    EXPECT_EQ(message, "Начало периода не должно превышать окончание");
    EXPECT_EQ(names(), QStringList{"Цемент"});
    EXPECT_EQ(report.filter().from, QDate(2020, 3, 1));

    ASSERT_TRUE(report.showAll(&message));
    EXPECT_EQ(report.allObjects(), QStringList{kObject});
    ASSERT_TRUE(report.remove(1, &message)) << message.toStdString(); // "Клей"
    EXPECT_EQ(names(), (QStringList{"Цемент", "Гипс"}));
    EXPECT_EQ(f.matScalar("SELECT count(*) FROM storage WHERE namemat='Клей'"), "0");
}

} // namespace
