// The crew sheet: the mirror of the estimate, global and per-row coefficients, the rates' crew prices.

#include "estimate/CrewGrid.h"
#include "estimate/CrewSheet.h"
#include "test_editor_fixture.h"

using namespace EstimateCol;

namespace {

class CrewTest : public EditorTest {
protected:
    QString crewCell(int estimateRow, int col) const { return crew.cell(estimateRow - 1, col); }
    // [br 2, w 3, w 4, ir 5, Итого 6]
    void build() {
        work(2, "Штукатурка", "10", "400");
        ASSERT_EQ(editor->appendRow(), 3);
        work(3, "Покраска", "20", "150");
        ASSERT_TRUE(editor->createSection(2, 3, "Стены"));
    }
};

TEST_F(CrewTest, MirrorFollowsEveryChangeOfTheEstimate) {
    build();
    ASSERT_EQ(crew.gridRowCount(), grid.gridRowCount() - 1);
    for (int r = 2; r < grid.gridRowCount(); ++r) {
        EXPECT_EQ(crewCell(r, CrewCol::Num), cell(r, Num)) << r;
        EXPECT_EQ(crewCell(r, CrewCol::Name), cell(r, Name)) << r;
        EXPECT_EQ(crewCell(r, CrewCol::Qty), cell(r, Qty)) << r;
        EXPECT_EQ(crewCell(r, CrewCol::CustomerPrice), cell(r, Price)) << r;
        EXPECT_EQ(crewCell(r, CrewCol::CustomerSum), cell(r, Sum)) << r;
    }
    // Moving a row moves its crew coefficient with it.
    editor->crew()->setPerRow(true);
    ASSERT_TRUE(
        crew.setData(crew.index(2, CrewCol::Koef), "0,5", Qt::EditRole)); // crew row 3 = estimate row 4
    ASSERT_TRUE(editor->moveRowsUp(4, 4));
    EXPECT_EQ(crewCell(3, CrewCol::Name), "Покраска");
    EXPECT_EQ(crewCell(3, CrewCol::Koef), "0,5");
    EXPECT_EQ(crewCell(4, CrewCol::Name), "Штукатурка");
    ASSERT_TRUE(editor->deleteRows(3, 3));
    EXPECT_EQ(crewCell(3, CrewCol::Name), "Штукатурка");
    EXPECT_EQ(crew.gridRowCount(), grid.gridRowCount() - 1);
}

TEST_F(CrewTest, GlobalAndPerRowCoefficients) {
    build();
    CrewSheet &sheet = *editor->crew();
    struct Case {
        const char *what;
        std::function<void()> step;
        QString price3, sum3, k3, price4, sum4, k4, section, total;
        const char *margin;
    };
    const std::vector<Case> cases = {
        {"global 0,7 for all rows", [&] { sheet.setGlobalKoef("0,7"); }, "280,00", "2800,00", "0,7", "105,00",
         "2100,00", "0,7", "4900,00", "4900,00", "2100,00"},
        {"a typed row coefficient switches to per-row",
         [&] { ASSERT_TRUE(crew.setData(crew.index(2, CrewCol::Koef), "0,5", Qt::EditRole)); }, "280,00",
         "2800,00", "0,7", "75,00", "1500,00", "0,5", "4300,00", "4300,00", "2700,00"},
        {"the global value still serves rows without their own", [&] { sheet.setGlobalKoef("0,6"); },
         "240,00", "2400,00", "0,6", "75,00", "1500,00", "0,5", "3900,00", "3900,00", "3100,00"},
        {"back to one coefficient for all", [&] { sheet.setPerRow(false); }, "240,00", "2400,00", "0,6",
         "90,00", "1800,00", "0,6", "4200,00", "4200,00", "2800,00"},
        {"a bad global coefficient leaves the crew price empty", [&] { sheet.setGlobalKoef("ноль"); }, "", "",
         "ноль", "", "", "ноль", "0,00", "0,00", "7000,00"},
    };
    for (const Case &c : cases) {
        c.step();
        EXPECT_EQ(crewCell(3, CrewCol::Price), c.price3) << c.what;
        EXPECT_EQ(crewCell(3, CrewCol::Sum), c.sum3) << c.what;
        EXPECT_EQ(crewCell(3, CrewCol::Koef), c.k3) << c.what;
        EXPECT_EQ(crewCell(4, CrewCol::Price), c.price4) << c.what;
        EXPECT_EQ(crewCell(4, CrewCol::Sum), c.sum4) << c.what;
        EXPECT_EQ(crewCell(4, CrewCol::Koef), c.k4) << c.what;
        EXPECT_EQ(crewCell(5, CrewCol::Sum), c.section) << c.what; // "Итого по разделу"
        EXPECT_EQ(crewCell(6, CrewCol::Sum), c.total) << c.what;   // "Итого по смете"
        EXPECT_EQ(rub(sheet.margin()), c.margin) << c.what;
        EXPECT_EQ(rub(sheet.customerTotal()), "7000,00") << c.what;
    }
}

TEST_F(CrewTest, CrewPriceBroughtByTheRateWins) {
    editor->crew()->setPriceLookup([](const QList<CrewSheet::Rate> &rates) {
        std::vector<std::optional<Decimal>> answers;
        for (const CrewSheet::Rate &rate : rates)
            answers.push_back(rate == CrewSheet::Rate{"17", "resurs1"} ? Decimal::whole(250) : std::nullopt);
        return answers;
    });
    editor->crew()->setGlobalKoef("0,5");
    work(2, "Плитка", "4", "1000");
    type(2, IdRas, "17");
    type(2, NamePrice, "resurs1");
    EXPECT_EQ(crewCell(2, CrewCol::Price), "250,00");
    EXPECT_EQ(crewCell(2, CrewCol::Sum), "1000,00");
    type(2, NamePrice, "resurs2"); // price list 2 brings no crew price
    EXPECT_EQ(crewCell(2, CrewCol::Price), "500,00");
    // A lump sum row: its amount × k.
    const int r = editor->appendRow();
    type(r, Name, "Вывоз мусора");
    type(r, Sum, "3000");
    EXPECT_EQ(crewCell(r, CrewCol::Sum), "1500,00");
    EXPECT_EQ(rub(editor->crew()->crewTotal()), "3500,00");
}

// A pass over many rows tells the views once, over the rows it changed; a cell changed alone is told
// alone. Either way the views learn of every change.
TEST(CrewGridSignals, HeldChangesAreToldOnceOverTheirRows) {
    CrewGrid grid;
    grid.setGridRowCount(10);
    std::vector<std::pair<QModelIndex, QModelIndex>> told;
    QObject::connect(&grid, &QAbstractItemModel::dataChanged,
                     [&](const QModelIndex &a, const QModelIndex &b) {
                         told.push_back({a, b});
                     });
    grid.holdSignals();
    grid.setCell(7, CrewCol::Sum, "10");
    grid.setCell(3, CrewCol::Price, "5");
    grid.setCellProblem(5, CrewCol::Koef, "не число");
    grid.holdSignals(); // nested: told at the outer release
    grid.setCell(4, CrewCol::Sum, "1");
    grid.releaseSignals();
    EXPECT_TRUE(told.empty());
    grid.releaseSignals();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].first, grid.index(2, 0));
    EXPECT_EQ(told[0].second, grid.index(6, CrewCol::Count - 1));
    EXPECT_EQ(grid.cell(7, CrewCol::Sum), "10");
    EXPECT_EQ(grid.cellProblem(5, CrewCol::Koef), "не число");

    told.clear();
    grid.holdSignals();
    grid.releaseSignals(); // nothing changed: nothing told
    EXPECT_TRUE(told.empty());
    grid.setCell(2, CrewCol::Sum, "3");
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].first, grid.index(1, CrewCol::Sum));
    EXPECT_EQ(told[0].second, grid.index(1, CrewCol::Sum));
}

} // namespace
