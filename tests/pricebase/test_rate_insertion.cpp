// Putting rates into the estimate grid: duplicate control, sorting by record number, prices,
// resources into materials, and the materials' quantities from norms.

#include "PriceTestData.h"
#include "estimate/EstimateGrid.h"
#include "pricebase/RateInsertion.h"
#include "pricebase/Resources.h"
#include "storage/TextValues.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

// Lays out grid rows from 2 on: each entry is "marker|name|idRas|qty".
void layout(EstimateGrid &grid, const QStringList &rows) {
    grid.setGridRowCount(EstimateGrid::kFixedRows + rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        const QStringList p = rows.at(i).split('|');
        const int r = EstimateGrid::kFixedRows + i;
        grid.setCell(r, EstimateCol::Kind, p.value(0));
        grid.setCell(r, EstimateCol::Name, p.value(1));
        grid.setCell(r, EstimateCol::IdRas, p.value(2));
        grid.setCell(r, EstimateCol::Qty, p.value(3));
        if (!p.value(2).isEmpty())
            grid.setCell(r, EstimateCol::NamePrice, "resurs1");
    }
}

QStringList column(const EstimateGrid &grid, int col) {
    QStringList out;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        out << grid.cell(r, col);
    return out;
}

TEST(RateInsertion, DuplicateControlStopsAtSectionBorders) {
    PriceFixture f;
    EstimateGrid grid;
    layout(grid,
           {"br|РАЗДЕЛ 1. Стены", "|Грунтовка", "bp|       § 1.1. Ниша", "|Покраска", "|", "ip|Итого по §",
            "|Шпатлёвка", "ir|Итого по разделу", "br|РАЗДЕЛ 2. Полы", "|Грунтовка", "ir|Итого по разделу"});
    RateInsertion ins(grid, f.smeta(), f.price());
    struct Case {
        QString name;
        int current;
        int found;
    };
    const Case cases[] = {
        {"Покраска", 6, 5},                        // above, inside the subsection
        {"Покраска", 5, 5},                        // the current row itself
        {"Грунтовка", 6, -1},                      // beyond "bp" above
        {"Шпатлёвка", 6, -1},                      // beyond "ip" below
        {"Шпатлёвка", 3, -1},                      // downwards the subsection's "ip" stops the search
        {"Шпатлёвка", 8, 8},   {"Покраска", 8, 5}, // upwards an "ip" does not stop it
        {"Грунтовка", 11, 11},
    };
    for (const Case &c : cases)
        EXPECT_EQ(ins.findDuplicate(c.name, c.current), c.found)
            << c.name.toStdString() << " from " << c.current;

    int current = 6;
    const InsertOutcome dup =
        ins.insertFromGrid(rate("1-1", "Покраска", "м2", "100", "5"), "resurs1", current, {true, false});
    EXPECT_EQ(dup.kind, InsertOutcome::Duplicate);
    EXPECT_EQ(dup.row, 5);
    EXPECT_EQ(grid.gridRowCount(), 13); // nothing added
    // The same name in the other section is inserted.
    current = 11;
    const InsertOutcome other =
        ins.insertFromGrid(rate("1-1", "Покраска", "м2", "100", "5"), "resurs1", current, {true, false});
    EXPECT_EQ(other.kind, InsertOutcome::Inserted);
    EXPECT_EQ(other.row, 13);
    EXPECT_EQ(grid.cell(13, EstimateCol::Name), QStringLiteral("Покраска"));
}

TEST(RateInsertion, FillsTheRowFromTheRate) {
    PriceFixture f;
    EstimateGrid grid;
    RateInsertion ins(grid, f.smeta(), f.price());
    struct Case {
        QString price;
        QString expected; // column 5 and 14
        InsertOutcome::Kind kind;
    };
    const Case cases[] = {
        {"1 250.50", "1250,50", InsertOutcome::Inserted},
        {"1200-1500", "1200,00", InsertOutcome::Inserted},
        {"0,125", "0,125", InsertOutcome::Inserted}, // the price is not rounded: the amount is
        {"12.3456", "12,3456", InsertOutcome::Inserted},
        {"0", "", InsertOutcome::Inserted},
        {"", "", InsertOutcome::Inserted},
        {"-5", "", InsertOutcome::Failed},
        {"договорная", "", InsertOutcome::Failed},
    };
    int current = 2;
    for (const Case &c : cases) {
        const int before = grid.gridRowCount();
        const InsertOutcome out =
            ins.insertFromGrid(rate("3-1", "Работа " + c.price, "м2", c.price, "17"), "resurs2", current, {});
        EXPECT_EQ(out.kind, c.kind) << c.price.toStdString();
        EXPECT_EQ(out.row, current);
        EXPECT_EQ(grid.cell(current, EstimateCol::Name), "Работа " + c.price); // written before any failure
        if (c.kind == InsertOutcome::Failed) {
            EXPECT_TRUE(out.error.contains(c.price)) << out.error.toStdString();
            EXPECT_TRUE(out.error.contains("3-1"));
            continue;
        }
        EXPECT_EQ(grid.cell(current, EstimateCol::Price), c.expected);
        EXPECT_EQ(grid.cell(current, EstimateCol::Labour), c.expected);
        EXPECT_EQ(grid.cell(current, EstimateCol::Num), QString::number(current - 1));
        EXPECT_EQ(grid.cell(current, EstimateCol::Ras), QStringLiteral("3-1"));
        EXPECT_EQ(grid.cell(current, EstimateCol::IdRas), QStringLiteral("17"));
        EXPECT_EQ(grid.cell(current, EstimateCol::NamePrice), QStringLiteral("resurs2"));
        // The first insertion uses the empty current row; later ones add a row at the end.
        EXPECT_EQ(grid.gridRowCount(), before == 3 && current == 2 ? 3 : before + 1);
    }
}

TEST(RateInsertion, SubsectionTitleWritesOnlyItsName) {
    PriceFixture f;
    EstimateGrid grid;
    RateInsertion ins(grid, f.smeta(), f.price());
    int current = 2;
    const InsertOutcome out =
        ins.insertFromGrid(rate("3-2", "Потолки", "ПВ", "", "9"), "resurs1", current, {});
    EXPECT_EQ(out.kind, InsertOutcome::Title);
    EXPECT_EQ(grid.rowCells(2).join('|'), QStringLiteral("||Потолки") + QString(14, '|'));
}

TEST(RateInsertion, SortingPlacesByRecordNumberAsInteger) {
    PriceFixture f;
    EstimateGrid grid;
    layout(grid, {"br|РАЗДЕЛ 1. Стены", "|Первая|3", "|Вторая|12", "ir|Итого по разделу", "br|РАЗДЕЛ 2",
                  "|Чужая|1", "ir|Итого по разделу"});
    RateInsertion ins(grid, f.smeta(), f.price());
    int current = 3; // inside section 1; its name is set, so the rate goes to the end first
    InsertOutcome out =
        ins.insertFromGrid(rate("1-7", "Новая", "м2", "10", "7"), "resurs1", current, {false, true});
    EXPECT_EQ(out.kind, InsertOutcome::Inserted);
    // Added at the end (after section 2's total), then sorted among the works above up to "br".
    EXPECT_EQ(column(grid, EstimateCol::Name),
              (QStringList{"РАЗДЕЛ 1. Стены", "Первая", "Вторая", "Итого по разделу", "РАЗДЕЛ 2", "Чужая",
                           "Новая", "Итого по разделу"}));
    EXPECT_EQ(current, 8);

    // Inserting into an empty row inside section 1 sorts between rec 3 and 12.
    grid.insertGridRows(4, 1);
    current = 4;
    out = ins.insertFromGrid(rate("1-8", "Средняя", "м2", "10", "8"), "resurs1", current, {false, true});
    EXPECT_EQ(column(grid, EstimateCol::IdRas).mid(1, 3), (QStringList{"3", "8", "12"}));
    EXPECT_EQ(current, 4);
    out = ins.insertFromGrid(rate("1-9", "Самая первая", "м2", "10", "2"), "resurs1", current, {false, true});
    // Current row 4 had a name: appended at the end, then sorted into section 2 (rec 1, 2, 7).
    EXPECT_EQ(column(grid, EstimateCol::IdRas).mid(6, 3), (QStringList{"1", "2", "7"}));
    EXPECT_EQ(current, 9);
    EXPECT_EQ(f.scalar(f.smeta(), "SELECT count(*) FROM sqlite_master WHERE name='SortWork'"), "0");
}

TEST(RateInsertion, ResourcesBecomeMaterialsOrMoney) {
    PriceFixture f;
    f.addResource("resurs1", "Грунт", "л", "120", "3", "0,2");
    f.addResource("resurs1", "Валик", "шт", "300", "3", "0.01");
    f.addResource("resurs1", "", "", "150", "4", "");
    QSqlQuery(f.smeta()).exec("INSERT INTO materials (namemat, edizm, price) VALUES ('Валик', 'шт', '250')");
    EstimateGrid grid;
    RateInsertion ins(grid, f.smeta(), f.price());
    int current = 2;
    InsertOutcome out = ins.insertFromGrid(rate("1-1", "Грунтовка", "м2", "50", "3"), "resurs1", current, {});
    EXPECT_TRUE(out.materialsChanged);
    // The existing "Валик" keeps its own price.
    EXPECT_EQ(f.materials(), (QStringList{"Валик||250|", "Грунт||120|"}));
    out = ins.insertFromGrid(rate("1-2", "Доставка", "рейс", "1000", "4"), "resurs1", current, {});
    EXPECT_FALSE(out.materialsChanged);
    EXPECT_EQ(grid.cell(current, EstimateCol::Material), QStringLiteral("150,00"));
    EXPECT_EQ(grid.cell(current, EstimateCol::Total), QStringLiteral("1150,00"));
}

TEST(RateInsertion, MaterialQuantitiesFollowNormsAndQuantityZeroRemovesThem) {
    PriceFixture f;
    f.addResource("resurs1", "Грунт", "л", "100", "3", "0,5");
    f.addResource("resurs1", "Шпатлёвка", "кг", "40", "3", "1.5");
    f.addResource("resurs1", "Шпатлёвка", "кг", "40", "4", "0,5");
    EstimateGrid grid;
    layout(grid, {"|Грунтовка|3|10", "|Шпатлёвка|4|2", "|Без расценки||5", "|Грунтовка повторно|3|1 000"});
    grid.setCell(4, EstimateCol::NamePrice, "resurs1");
    const QSqlDatabase price = f.price(), smeta = f.smeta();
    bool changed = false;
    ASSERT_TRUE(RateResources::searchAndWriteResurse(price, smeta, grid, "3", "resurs1", &changed));
    EXPECT_TRUE(changed);
    // Грунт: (10 + 1000) x 0,5; Шпатлёвка: (10 + 1000) x 1,5 + 2 x 0,5.
    EXPECT_EQ(f.materials(), (QStringList{"Грунт|505|100|50500,00", "Шпатлёвка|1516|40|60640,00"}));
    // The row's quantity becomes 0: the material only rate 3 needed goes, the shared one shrinks.
    grid.setCell(2, EstimateCol::Qty, "0");
    grid.setCell(5, EstimateCol::Qty, "");
    ASSERT_TRUE(RateResources::searchAndWriteResurse(price, smeta, grid, "3", "resurs1", &changed));
    EXPECT_EQ(f.materials(), (QStringList{"Шпатлёвка|1|40|40,00"}));
    // A table name from elsewhere is refused without touching anything.
    EXPECT_TRUE(RateResources::searchAndWriteResurse(price, smeta, grid, "3", "price1; DROP", &changed));
    EXPECT_FALSE(changed);
}

// 250 rates with resources: the look-up of the rates' resources grows its table while the totals are
// gathered (a crash on the first quantity edit when it kept pointers into that table).
TEST(RateInsertion, MaterialQuantitiesOfManyDistinctRates) {
    PriceFixture f;
    constexpr int kRates = 250;
    QStringList rows;
    {
        QSqlDatabase price = f.price();
        price.transaction();
        for (int rec = 1; rec <= kRates; ++rec) {
            f.addResource("resurs1", QStringLiteral("Материал %1").arg(rec % 7), "кг", "10",
                          QString::number(rec), "0,5");
            f.addResource("resurs1", "Грунт", "л", "100", QString::number(rec), "0,1");
            rows << QStringLiteral("|Работа %1|%1|%2").arg(rec).arg(rec % 3 + 1);
        }
        price.commit();
    }
    EstimateGrid grid;
    layout(grid, rows);
    bool changed = false;
    QString error;
    ASSERT_TRUE(
        RateResources::searchAndWriteResurse(f.price(), f.smeta(), grid, "7", "resurs1", &changed, &error))
        << error.toStdString();
    EXPECT_TRUE(changed);
    // "Грунт" needs Σ quantity × 0,1 over every row, "Материал 0" (rates 7, 14, …, 245) Σ quantity × 0,5.
    int all = 0, sevenths = 0;
    for (int rec = 1; rec <= kRates; ++rec) {
        all += rec % 3 + 1;
        if (rec % 7 == 0)
            sevenths += rec % 3 + 1;
    }
    const QString material0 = TextValues::formatQuantity(*Decimal::of(sevenths * 5, 1));
    const QString primer = TextValues::formatQuantity(*Decimal::of(all, 1));
    EXPECT_EQ(f.materials(),
              (QStringList{QStringLiteral("Материал 0|%1|10|%2,00").arg(material0).arg(sevenths * 5),
                           QStringLiteral("Грунт|%1|100|%2,00").arg(primer).arg(all * 10)}));
}

TEST(RateInsertion, LiveSearchChoiceMovesToTheNextRow) {
    PriceFixture f;
    EstimateGrid grid;
    layout(grid, {"|плит", "br|РАЗДЕЛ 1", "|Старая"});
    grid.setCell(4, EstimateCol::Num, "");
    RateInsertion ins(grid, f.smeta(), f.price());
    int current = 2;
    const RateRow found = rate("2-4", "Укладка плитки", "м2", "900", "11");
    InsertOutcome out = ins.insertFromLiveSearch("Укладка плитки", &found, "resurs1", current);
    EXPECT_EQ(out.kind, InsertOutcome::Inserted);
    EXPECT_EQ(grid.cell(2, EstimateCol::Price), QStringLiteral("900,00"));
    EXPECT_EQ(current, 3);
    EXPECT_EQ(grid.cell(3, EstimateCol::Name), QStringLiteral("РАЗДЕЛ 1")); // a section row is never cleared
    current = 4;
    out = ins.insertFromLiveSearch("Нет в списке", nullptr, "resurs1", current);
    EXPECT_EQ(out.kind, InsertOutcome::NotFound);
    EXPECT_EQ(grid.cell(4, EstimateCol::Name), QStringLiteral("Нет в списке"));
    EXPECT_TRUE(grid.cell(4, EstimateCol::IdRas).isEmpty());
    out = ins.insertFromLiveSearch("Укладка плитки", &found, "resurs1", current);
    EXPECT_EQ(grid.gridRowCount(), 6); // the last row got a row below it
    EXPECT_EQ(current, 5);
    EXPECT_EQ(grid.cell(5, EstimateCol::Num), QStringLiteral("4"));
}

TEST(RateInsertion, NothingLandsBelowTheClosingTotal) {
    PriceFixture f;
    const RateRow a = rate("1-1", "Грунтовка", "м2", "40", "5"),
                  b = rate("1-2", "Покраска", "м2", "100", "6");
    // [br 2, w 3 "Шпатлёвка", ir 4, Итого по смете 5]; the second with an empty work row 5 above it
    const QStringList closed = {"br|РАЗДЕЛ 1. Стены", "|Шпатлёвка", "ir|Итого по разделу 1",
                                "|Итого по смете"};
    const QStringList typing = {"br|РАЗДЕЛ 1. Стены", "|Шпатлёвка", "ir|Итого по разделу 1", "|",
                                "|Итого по смете"};
    struct Case {
        const char *what;
        const QStringList &estimate;
        int current;       // the estimate's current row before the insertion
        bool liveSearch;   // else from the rate grid
        int rates;         // how many rates one after the other (the ticked ones)
        QStringList names; // the names of the data rows afterwards
    };
    const Case cases[] = {
        {"from the grid, on the closing row",
         closed,
         5,
         false,
         1,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "Итого по смете"}},
        {"from the grid, past the closing row",
         closed,
         9,
         false,
         1,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "Итого по смете"}},
        {"two ticked rates on the closing row",
         closed,
         5,
         false,
         2,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "Покраска", "Итого по смете"}},
        {"a filled row appends above the closing row",
         closed,
         3,
         false,
         1,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "Итого по смете"}},
        {"live search on the closing row",
         closed,
         5,
         true,
         1,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "", "Итого по смете"}},
        {"live search in the row right above the closing row",
         typing,
         5,
         true,
         2,
         {"РАЗДЕЛ 1. Стены", "Шпатлёвка", "Итого по разделу 1", "Грунтовка", "Покраска", "",
          "Итого по смете"}},
    };
    for (const Case &c : cases) {
        EstimateGrid grid;
        layout(grid, c.estimate);
        RateInsertion ins(grid, f.smeta(), f.price());
        int current = c.current;
        for (int i = 0; i < c.rates; ++i) {
            const RateRow &r = i == 0 ? a : b;
            const InsertOutcome out =
                c.liveSearch ? ins.insertFromLiveSearch(r[PriceCol::Name], &r, "resurs1", current)
                             : ins.insertFromGrid(r, "resurs1", current, {});
            EXPECT_EQ(out.kind, InsertOutcome::Inserted) << c.what;
        }
        EXPECT_EQ(column(grid, EstimateCol::Name), c.names) << c.what;
        EXPECT_LT(current, grid.gridRowCount() - 1) << c.what << ": the current row is above the closing row";
    }
}

} // namespace
