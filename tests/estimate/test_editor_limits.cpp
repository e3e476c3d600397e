// Amounts at and past the largest a user can have, and input that is not a number: refused, marked,
// left out of every total (rows, sections, crew sheet, coefficient lines, materials, printed forms),
// counted for the line under the grid; never a wrapped negative.

#include "estimate/Coefficients.h"
#include "estimate/CrewSheet.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/EstimateOutput.h"
#include "estimate/EstimatePrint.h"
#include "estimate/KoefModel.h"
#include "office/OfficeEngine.h"
#include "test_editor_fixture.h"

#include <QSignalSpy>

using namespace EstimateCol;

namespace {

// Every amount either grid shows: none may be a negative that nobody typed.
QStringList negativeAmounts(const EstimateGrid &grid, const CrewGrid &crew) {
    QStringList out;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        for (int c : {Sum, Itogo})
            if (grid.cell(r, c).trimmed().startsWith(u'-'))
                out << QStringLiteral("смета %1:%2 %3").arg(r).arg(c).arg(grid.cell(r, c));
    for (int r = CrewGrid::kFixedRows; r < crew.gridRowCount(); ++r)
        for (int c : {CrewCol::Price, CrewCol::Sum, CrewCol::CustomerSum})
            if (crew.cell(r, c).trimmed().startsWith(u'-'))
                out << QStringLiteral("бригада %1:%2 %3").arg(r).arg(c).arg(crew.cell(r, c));
    return out;
}

class LimitsTest : public EditorTest {
protected:
    // [br 2, w 3 "Штукатурка" 10 × 400, w 4 (the row under test), ir 5, Итого 6]
    void build() {
        work(2, "Штукатурка", "10", "400");
        ASSERT_EQ(editor->appendRow(), 3);
        type(3, Name, "Проверяемая работа");
        ASSERT_TRUE(editor->createSection(2, 3, "Стены"));
        ASSERT_EQ(grid.kind(5), RowKind::SectionTotal);
    }
    QString crewCell(int estimateRow, int col) const { return crew.cell(estimateRow - 1, col); }
};

TEST_F(LimitsTest, RowsPastTheMaximumOrNotNumbersAreLeftOutOfEveryTotal) {
    build();
    struct Case {
        const char *qty, *price, *sum; // typed into row 4
        const char *amount;            // row 4's amount as shown
        int marked;                    // the column marked in row 4, or -1
        const char *section, *grand; // "Итого по разделу 1", "Итого по смете" ("" = refused)
        const char *works;           // editor's works total
        int problems;                // cells needing fixing
    };
    const Case cases[] = {
        {"999999999999999999", "100", "", "", Qty, "4000,00", "4000,00", "4000,00", 1},
        {"1", "1000000000000", "", "", Qty, "4000,00", "4000,00", "4000,00", 1},
        {"12345678901234567890", "1", "", "", Qty, "4000,00", "4000,00", "4000,00", 1},
        {"abc", "100", "", "", Qty, "4000,00", "4000,00", "4000,00", 1},
        {"3", "дорого", "", "", Price, "4000,00", "4000,00", "4000,00", 1},
        {"", "", "1 000 000 000 000", "1 000 000 000 000", Sum, "4000,00", "4000,00", "4000,00", 1},
        // The row itself fits; the section and the whole do not: both totals are refused and marked.
        {"1", "999999999999,99", "", "999999999999,99", -1, "", "", "refused", 2},
        {"1", "999999995999,99", "", "999999995999,99", -1, "999999999999,99", "999999999999,99",
         "999999999999,99", 0},
        {"-3", "100", "", "-300,00", -1, "3700,00", "3700,00", "3700,00", 0},
        {"1000", "0,125", "", "125,00", -1, "4125,00", "4125,00", "4125,00", 0},
    };
    for (const Case &c : cases) {
        type(4, Sum, QString());
        type(4, Qty, QString::fromUtf8(c.qty));
        type(4, Price, QString::fromUtf8(c.price));
        if (*c.sum)
            type(4, Sum, QString::fromUtf8(c.sum));
        const std::string what = std::string(c.qty) + " × " + c.price + " / " + c.sum;
        EXPECT_EQ(cell(4, Sum), QString::fromUtf8(c.amount)) << what;
        for (int col : {Qty, Price, Sum})
            EXPECT_EQ(!grid.cellProblem(4, col).isEmpty(), col == c.marked) << what << " col " << col;
        EXPECT_EQ(cell(5, Sum), QString::fromUtf8(c.section)) << what;
        EXPECT_EQ(cell(6, Sum), QString::fromUtf8(c.grand)) << what;
        EXPECT_EQ(grid.cellProblem(5, Sum).isEmpty(), *c.section != 0) << what;
        EXPECT_EQ(rub(editor->worksRaw()), c.works) << what;
        EXPECT_EQ(rub(editor->grandTotal()), c.works) << what;
        // The crew sheet (coefficient 1) follows the same rows and refuses the same sums.
        EXPECT_EQ(crewCell(5, CrewCol::Sum), QString::fromUtf8(c.section)) << what;
        EXPECT_EQ(editor->problemCells().estimate, c.problems) << what;
        if (std::string(c.qty) != "-3") {
            EXPECT_EQ(negativeAmounts(grid, crew), QStringList()) << what;
        }
    }
    // The reasons say what is wrong, in the user's words.
    type(4, Qty, "999999999999999999");
    type(4, Price, "100");
    EXPECT_TRUE(grid.cellProblem(4, Qty).contains("превышает 999 999 999 999,99"))
        << grid.cellProblem(4, Qty).toStdString();
}

TEST_F(LimitsTest, CrewSheetRefusesHugeCoefficientsAndAmounts) {
    build();
    work(4, "Вывоз мусора", "", "");
    type(4, Sum, "3000"); // a lump sum
    CrewSheet &sheet = *editor->crew();
    struct Case {
        const char *koef;
        const char *price3, *sum3, *sum4, *section;
        bool koefMarked, row3Marked, sumMarked4;
    };
    const Case cases[] = {
        {"0,7", "280,00", "2800,00", "2100,00", "4900,00", false, false, false},
        {"999999999999999999", "", "", "", "0,00", false, true, true},
        {"2500000000", "", "", "", "0,00", false, true, true}, // 400 × k passes the maximum
        {"250000000", "100000000000,00", "", "750000000000,00", "750000000000,00", false, true, false},
        {"абв", "", "", "", "0,00", true, false, false},
    };
    for (const Case &c : cases) {
        sheet.setGlobalKoef(QString::fromUtf8(c.koef));
        EXPECT_EQ(crewCell(3, CrewCol::Price), QString::fromUtf8(c.price3)) << c.koef;
        EXPECT_EQ(crewCell(3, CrewCol::Sum), QString::fromUtf8(c.sum3)) << c.koef;
        EXPECT_EQ(crewCell(4, CrewCol::Sum), QString::fromUtf8(c.sum4)) << c.koef;
        EXPECT_EQ(crewCell(5, CrewCol::Sum), QString::fromUtf8(c.section)) << c.koef;
        EXPECT_EQ(!crew.cellProblem(2, CrewCol::Koef).isEmpty(), c.koefMarked) << c.koef;
        EXPECT_EQ(!crew.cellProblem(2, CrewCol::Price).isEmpty() ||
                      !crew.cellProblem(2, CrewCol::Sum).isEmpty(),
                  c.row3Marked)
            << c.koef;
        EXPECT_EQ(!crew.cellProblem(3, CrewCol::Sum).isEmpty(), c.sumMarked4) << c.koef;
        EXPECT_EQ(rub(sheet.customerTotal()), "7000,00") << c.koef;
        EXPECT_EQ(negativeAmounts(grid, crew), QStringList()) << c.koef;
    }
}

TEST(CoefficientLimits, HugeValuesAreLeftOutNeverWrapped) {
    auto line = [](const char *title, const char *value, const char *type, const char *action,
                   const char *unit, const char *comment = "") {
        return KoefLine{"7", "0", "-1", title, value, type, action, unit, comment};
    };
    struct Case {
        const char *what;
        KoefLine line;
        const char *works, *vat, *grand; // works 1000, materials 500; "refused" when refused
        bool lineRefused;
    };
    const Case cases[] = {
        {"a huge percentage", line("Наценка", "999999999999999999", "all", "inc", "proc"), "1000,00", "0,00",
         "1500,00", true},
        {"a factor past the maximum", line("К", "1000000000", "work", "inc", "num"), "1000,00", "0,00",
         "1500,00", true},
        {"a factor just within it", line("К", "999999999,99999", "work", "inc", "num"), "999999999999,99",
         "0,00", "refused", false},
        {"a factor of 0 that divides", line("К", "0", "all", "dec", "num"), "1000,00", "0,00", "1500,00",
         true},
        {"letters", line("К", "два", "all", "inc", "num"), "1000,00", "0,00", "1500,00", true},
        {"a lowering past the whole amount", line("Скидка", "150", "work", "dec", "proc"), "-500,00", "0,00",
         "0,00", false},
        {"VAT of a huge percentage", line("НДС", "999999999999999999", "all", "inc", "proc", "RadioButton"),
         "1000,00", "0,00", "1500,00", true},
    };
    for (const Case &c : cases) {
        const KoefResult r = Coefficients::apply({c.line}, *Money::parse("1000"), *Money::parse("500"));
        EXPECT_EQ(rub(r.works), c.works) << c.what;
        EXPECT_EQ(rub(r.vat), c.vat) << c.what;
        EXPECT_EQ(rub(r.grand), c.grand) << c.what;
        EXPECT_EQ(r.problems.contains("7"), c.lineRefused) << c.what;
    }
    // Bases already refused stay refused, and no line is blamed for them.
    const KoefResult r =
        Coefficients::apply({line("К", "2", "all", "inc", "num")},
                            MoneyResult::refused(NumberProblem::TooLarge), *Money::parse("500"));
    EXPECT_EQ(rub(r.works), "refused");
    EXPECT_EQ(rub(r.materials), "1000,00");
    EXPECT_EQ(rub(r.grand), "refused");
    EXPECT_TRUE(r.problems.isEmpty());
}

TEST_F(LimitsTest, CellsNeedingFixingAreCountedInEveryPart) {
    build();
    QSignalSpy changed(editor, &EstimateEditor::problemsChanged);
    KoefModel &koef = *editor->koef();
    EstimateMaterials &mats = *editor->materials();
    const int mat = mats.addRow();
    ASSERT_GE(mat, 0);
    ASSERT_GT(koef.rowCount(), 0);
    // A line that is off: letters typed into it are marked as well.
    ASSERT_FALSE(koef.lines().front().on());
    const QModelIndex koefValue = koef.index(0, KoefCol::Value);
    struct Case {
        const char *what;
        std::function<void()> step;
        EstimateEditor::ProblemCells expected;
    };
    const std::vector<Case> cases = {
        {"nothing wrong", [] {}, {0, 0, 0}},
        {"a quantity in letters", [&] { type(4, Qty, "abc"); }, {1, 0, 0}},
        {"a price in letters too", [&] { type(4, Price, "xyz"); }, {2, 0, 0}},
        {"a coefficient in letters",
         [&] { ASSERT_TRUE(koef.setData(koefValue, "десять", Qt::EditRole)); },
         {2, 1, 0}},
        {"a material's price in letters",
         [&] {
             ASSERT_TRUE(mats.setData(mats.index(mat, MatCol::Qty), "2", Qt::EditRole));
             ASSERT_TRUE(mats.setData(mats.index(mat, MatCol::Price), "бесплатно", Qt::EditRole));
         },
         {2, 1, 1}},
        {"a material past the maximum",
         [&] { ASSERT_TRUE(mats.setData(mats.index(mat, MatCol::Price), "999999999999,99", Qt::EditRole)); },
         {2, 1, 1}},
        {"the row is deleted", [&] { ASSERT_TRUE(editor->deleteRows(4, 4)); }, {0, 1, 1}},
        {"everything fixed",
         [&] {
             ASSERT_TRUE(koef.setData(koefValue, "10", Qt::EditRole));
             ASSERT_TRUE(mats.setData(mats.index(mat, MatCol::Price), "15", Qt::EditRole));
         },
         {0, 0, 0}},
    };
    for (const Case &c : cases) {
        c.step();
        const EstimateEditor::ProblemCells now = editor->problemCells();
        EXPECT_EQ(now.estimate, c.expected.estimate) << c.what;
        EXPECT_EQ(now.koef, c.expected.koef) << c.what;
        EXPECT_EQ(now.materials, c.expected.materials) << c.what;
        if (now.total() > 0) {
            EXPECT_TRUE(now.text().startsWith(QStringLiteral("Ячеек с ошибками: %1").arg(now.total())))
                << now.text().toStdString();
        } else {
            EXPECT_EQ(now.text(), QString()) << c.what;
        }
    }
    EXPECT_EQ(rub(editor->materialsRaw()), "30,00");
    EXPECT_GE(changed.count(), 6) << "the line under the grid hears of every change of the count";
}

TEST_F(LimitsTest, PrintedFormsLeaveRefusedRowsOutAndRefuseTotalsPastTheMaximum) {
    build();
    work(4, "Покраска", "тридцать", "180");
    EstimatePrint print;
    EstimatePrintBuilder::fillBody(print, *editor, module->database(Db::Smeta));
    ASSERT_EQ(print.leftOut.size(), 1);
    EXPECT_TRUE(print.leftOut.front().startsWith("№ 2 «Покраска»: Количество «тридцать» не является числом"))
        << print.leftOut.front().toStdString();
    EXPECT_EQ(print.worksRaw, *Money::parse("4000"));
    EXPECT_TRUE(EstimateOutput::leftOutWarning(print).contains("№ 2 «Покраска»"));
    EXPECT_TRUE(print.refusal.isEmpty());

    // A whole past the maximum: nothing is printed, and the user is told why.
    work(4, "Покраска", "1", "999999999999,99");
    EstimatePrintBuilder::fillBody(print, *editor, module->database(Db::Smeta));
    EXPECT_TRUE(print.leftOut.isEmpty()) << print.leftOut.join(" / ").toStdString();
    EXPECT_TRUE(print.refusal.contains("превышает 999 999 999 999,99")) << print.refusal.toStdString();
    OfficeEngine engine(folder.path());
    QString error;
    EXPECT_FALSE(EstimateOutput::produce(engine, folder.path(), print, {}, {}, &error));
    EXPECT_EQ(error, print.refusal);
}

} // namespace
