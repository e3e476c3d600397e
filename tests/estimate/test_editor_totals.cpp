// Amounts and totals of the estimate, bad input, changes made by other code, and the coefficient lines.

#include "estimate/Coefficients.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/KoefModel.h"
#include "test_editor_fixture.h"

#include <QFile>
#include <QSqlQuery>

using namespace EstimateCol;

namespace {

TEST_F(EditorTest, AmountFollowsQuantityAndPriceAndBadInputIsMarked) {
    struct Case {
        QString qty, price, sum; // typed
        QString amount;          // shown
        bool qtyBad, priceBad, sumBad;
        const char *counted;
    };
    const std::vector<Case> cases = {
        {"2", "150", "", "300,00", false, false, false, "300,00"},
        {"1,5", "99.99", "", "149,99", false, false, false, "149,99"}, // 149.985 rounds half up
        {"-3", "100", "", "-300,00", false, false, false, "-300,00"},  // a return
        {"10", "1 200,50", "", "12005,00", false, false, false, "12005,00"},
        {"4", "100-200", "", "400,00", false, false, false, "400,00"}, // a price range counts its low end
        {"abc", "100", "", "", true, false, false, "0,00"},
        {"3", "дорого", "", "", false, true, false, "0,00"},
        {"3", "", "", "", false, false, false, "0,00"},           // no price yet
        {"", "", "5000", "5000", false, false, false, "5000,00"}, // a lump sum
        {"", "", "много", "много", false, false, true, "0,00"},
    };
    for (const Case &c : cases) {
        type(2, Sum, QString());
        type(2, Qty, c.qty);
        type(2, Price, c.price);
        if (!c.sum.isEmpty())
            type(2, Sum, c.sum);
        const std::string what = (c.qty + "×" + c.price + " / " + c.sum).toStdString();
        EXPECT_EQ(cell(2, Sum), c.amount) << what;
        EXPECT_EQ(grid.cellProblem(2, Qty).isEmpty(), !c.qtyBad) << what;
        EXPECT_EQ(grid.cellProblem(2, Price).isEmpty(), !c.priceBad) << what;
        EXPECT_EQ(grid.cellProblem(2, Sum).isEmpty(), !c.sumBad) << what;
        EXPECT_EQ(rub(editor->worksRaw()), c.counted) << what;
        // Nothing typed is lost.
        EXPECT_EQ(cell(2, Qty), c.qty) << what;
        EXPECT_EQ(cell(2, Price), c.price) << what;
    }
    EXPECT_TRUE(grid.cellProblem(2, Sum).contains("не является числом"));
}

TEST_F(EditorTest, NestedSubsectionTotalsAndChangesMadeByOtherCode) {
    work(2, "Грунтовка", "10", "50");
    ASSERT_TRUE(editor->createSection(2, 2, "Стены"));
    // [br 2, w 3, ir 4, Итого 5]
    ASSERT_TRUE(editor->createSubsection(3, 3, "Подготовка"));
    // [br 2, bp 3, w 4, ip 5, ir 6, Итого 7]
    {
        // The price base inserts a rate by writing into the grid directly.
        EstimateEditor::Scope step(editor, QStringLiteral("Вставка расценки"));
        grid.insertGridRows(5, 1);
        grid.setCell(5, Name, "Шпаклёвка");
        grid.setCell(5, Price, "300");
        grid.setCell(5, Qty, "2");
    }
    // A row outside the subsection but inside the section, written without a scope.
    grid.insertGridRows(7, 1);
    grid.setCell(7, Name, "Покраска");
    grid.setCell(7, Qty, "10");
    grid.setCell(7, Price, "40");
    settle();
    const QStringList expected = {
        "|РАЗДЕЛ 1. Стены||br",
        "|       § 1.1. Подготовка||bp",
        "1|Грунтовка|500,00|",
        "2|Шпаклёвка|600,00|",
        "|              Итого по § 1.1|1100,00|ip",
        "3|Покраска|400,00|",
        "|Итого по разделу 1|1500,00|ir",
        "|Итого по смете|1500,00|",
    };
    EXPECT_EQ(outline(), expected);
    EXPECT_EQ(editor->undoTitle(), "Изменение сметы");
    // Someone overwrites a computed cell: it is computed again.
    grid.setCell(8, Sum, "1,00");
    grid.setCell(3, Num, "77");
    EXPECT_EQ(cell(8, Sum), "1500,00");
    EXPECT_EQ(cell(3, Num), "");
    EXPECT_EQ(cell(4, Num), "1");
}

TEST_F(EditorTest, TotalsFieldsFollowMaterialsAndCoefficientLines) {
    work(2, "Работа", "1", "10000");
    QSqlDatabase db = module->database(Db::Smeta);
    QSqlQuery q(db);
    ASSERT_TRUE(q.exec("INSERT INTO materials (namemat, edizm, kolvo, price, summa) "
                       "VALUES ('Клей', 'кг', '10', '200', '2000,00'), ('Грунт', 'л', 'x', '5', '')"));
    editor->materialsChanged();
    EXPECT_EQ(rub(editor->materialsRaw()), "2000,00"); // the bad quantity is left out
    EXPECT_EQ(rub(editor->grandTotal()), "12000,00");  // every line is off in a new document

    // Switch lines on through the panel's model, as the user does.
    KoefModel &koef = *editor->koef();
    auto row = [&](const QString &title) {
        for (int r = 0; r < koef.rowCount(); ++r)
            if (koef.lines()[static_cast<size_t>(r)].title == title)
                return r;
        return -1;
    };
    auto set = [&](const QString &title, int col, const QVariant &v, int role = Qt::EditRole) {
        ASSERT_GE(row(title), 0) << title.toStdString();
        ASSERT_TRUE(koef.setData(koef.index(row(title), col), v, role)) << title.toStdString();
    };
    auto on = [&](const QString &title) { set(title, KoefCol::On, Qt::Checked, Qt::CheckStateRole); };
    on("Скидка на работы, %");
    set("Скидка на работы, %", KoefCol::Value, "10");
    EXPECT_EQ(rub(editor->worksTotal()), "9000,00");
    on("Коэффициент удорожания");
    set("Коэффициент удорожания", KoefCol::Value, "1,2");
    // Raises before lowerings: 10000 × 1,2 = 12000, then −10 % = 10800; materials 2000 × 1,2 = 2400.
    EXPECT_EQ(rub(editor->worksTotal()), "10800,00");
    EXPECT_EQ(rub(editor->materialsTotal()), "2400,00");
    on("Накладные расходы, %");
    set("Накладные расходы, %", KoefCol::Value, "5");
    // Overheads on the result: 10800 + 540 = 11340, 2400 + 120 = 2520.
    EXPECT_EQ(rub(editor->worksTotal()), "11340,00");
    EXPECT_EQ(rub(editor->materialsTotal()), "2520,00");
    on("НДС, %");
    // VAT 20 % on top of 13860.
    EXPECT_EQ(rub(editor->vatAmount()), "2772,00");
    EXPECT_EQ(rub(editor->grandTotal()), "16632,00");
    set("НДС, %", KoefCol::Action, "понижает"); // VAT included: shown, total unchanged
    EXPECT_EQ(rub(editor->vatAmount()), "2310,00");
    EXPECT_EQ(rub(editor->grandTotal()), "13860,00");
    // The lines are in the working database, so they are saved with the document.
    QSqlQuery check(db);
    ASSERT_TRUE(check.exec("SELECT checked, value, actionn FROM koef WHERE title='НДС, %'") && check.next());
    EXPECT_EQ(check.value(0).toString(), "-1");
    EXPECT_EQ(check.value(2).toString(), "dec");
    // The effect of each line in money.
    const KoefResult &res = editor->koefResult();
    EXPECT_EQ(rub(res.effect.value(koef.lines()[static_cast<size_t>(row("Накладные расходы, %"))].id)),
              "660,00");
    // A bad value: the line is left out and marked.
    set("Скидка на работы, %", KoefCol::Value, "десять");
    EXPECT_EQ(rub(editor->worksTotal()), "12600,00");
    EXPECT_TRUE(koef.data(koef.index(row("Скидка на работы, %"), KoefCol::Value), Qt::ToolTipRole).isValid());
}

TEST(Coefficients, LinesApplyPerBaseInTheFixedOrder) {
    auto line = [](const char *id, const char *title, const char *value, const char *type, const char *action,
                   const char *unit, const char *comment = "") {
        return KoefLine{id, id, "-1", title, value, type, action, unit, comment};
    };
    struct Case {
        const char *what;
        std::vector<KoefLine> lines;
        const char *works, *materials, *vat, *grand;
    };
    const std::vector<Case> cases = {
        {"nothing", {}, "1000,00", "500,00", "0,00", "1500,00"},
        {"percent raise on works",
         {line("1", "Срочность", "10", "work", "inc", "proc")},
         "1100,00",
         "500,00",
         "0,00",
         "1600,00"},
        {"number raise on both",
         {line("1", "К", "1,5", "all", "inc", "num")},
         "1500,00",
         "750,00",
         "0,00",
         "2250,00"},
        {"number lowering divides",
         {line("1", "К", "2", "mat", "dec", "num")},
         "1000,00",
         "250,00",
         "0,00",
         "1250,00"},
        {"lowering after raising whatever the order of lines",
         {line("1", "Скидка", "10", "work", "dec", "proc"), line("2", "К", "2", "work", "inc", "num")},
         "1800,00",
         "500,00",
         "0,00",
         "2300,00"},
        {"overheads after ordinary lines",
         {line("1", "Накладные расходы, %", "10", "all", "inc", "proc"),
          line("2", "К", "2", "all", "inc", "num")},
         "2200,00",
         "1100,00",
         "0,00",
         "3300,00"},
        {"VAT on top of the result",
         {line("1", "НДС, %", "20", "all", "inc", "proc", "RadioButton"),
          line("2", "Скидка", "50", "mat", "dec", "proc")},
         "1000,00",
         "250,00",
         "250,00",
         "1500,00"},
        {"VAT included",
         {line("1", "В т.ч. НДС", "20", "all", "dec", "proc")},
         "1000,00",
         "500,00",
         "250,00",
         "1500,00"},
        {"VAT on works only",
         {line("1", "НДС, %", "10", "work", "inc", "proc", "RadioButton")},
         "1000,00",
         "500,00",
         "100,00",
         "1600,00"},
        {"a line that is off",
         {KoefLine{"1", "1", "0", "К", "3", "all", "inc", "num", ""}},
         "1000,00",
         "500,00",
         "0,00",
         "1500,00"},
        {"a bad value is skipped",
         {line("1", "К", "abc", "all", "inc", "num")},
         "1000,00",
         "500,00",
         "0,00",
         "1500,00"},
        {"kopecks are rounded per line",
         {line("1", "Наценка", "33,333", "work", "inc", "proc")},
         "1333,33",
         "500,00",
         "0,00",
         "1833,33"},
    };
    for (const Case &c : cases) {
        const KoefResult r = Coefficients::apply(c.lines, *Money::parse("1000"), *Money::parse("500"));
        EXPECT_EQ(rub(r.works), c.works) << c.what;
        EXPECT_EQ(rub(r.materials), c.materials) << c.what;
        EXPECT_EQ(rub(r.vat), c.vat) << c.what;
        EXPECT_EQ(rub(r.grand), c.grand) << c.what;
    }
}

} // namespace

namespace {

// The sample document of the program: the totals it was saved with are the ones computed again.
TEST_F(EditorTest, SampleDocumentLoadsWithItsOwnTotals) {
    QFile file(QStringLiteral(VIRN_SOURCE_DIR "/resources/sample/estimate.sql"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QSqlDatabase db = module->database(Db::Smeta);
    QSqlQuery q(db);
    for (const QString &statement : QString::fromUtf8(file.readAll()).split(QStringLiteral(";\n"))) {
        QString sql;
        for (const QString &line : statement.split(QLatin1Char('\n')))
            if (!line.startsWith(QStringLiteral("--")))
                sql += line + QLatin1Char('\n');
        if (!sql.trimmed().isEmpty()) {
            ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
        }
    }
    std::vector<QStringList> stored;
    ASSERT_TRUE(q.exec("SELECT numpos, nameras, summa, section FROM smeta WHERE 1"));
    while (q.next())
        stored.push_back(
            {q.value(0).toString(), q.value(1).toString(), q.value(2).toString(), q.value(3).toString()});
    ASSERT_TRUE(EstimateStore::readSmeta(db, grid, crew));
    editor->reset();
    ASSERT_EQ(grid.rowCount(), static_cast<int>(stored.size()));
    for (size_t i = 0; i < stored.size(); ++i) {
        const int r = static_cast<int>(i) + 2;
        EXPECT_EQ(cell(r, Num), stored[i][0]) << r;
        EXPECT_EQ(cell(r, Name), stored[i][1]) << r;
        EXPECT_EQ(cell(r, Sum), stored[i][2]) << r;
    }
    EXPECT_FALSE(editor->canUndo()); // loading is no step
}

} // namespace

namespace {

TEST_F(EditorTest, MaterialsGridComputesWritesAndMarks) {
    EstimateMaterials &mats = *editor->materials();
    const int row = mats.addRow();
    ASSERT_EQ(row, 0);
    struct Case {
        int col;
        QString text;
        QString sum;
        bool bad;
        const char *total;
    };
    const std::vector<Case> cases = {
        {MatCol::Name, "Штукатурка гипсовая", "", false, "0,00"},
        {MatCol::Qty, "12", "", false, "0,00"},
        {MatCol::Price, "450.5", "5406,00", false, "5406,00"},
        {MatCol::Qty, "-2", "-901,00", false, "-901,00"}, // returned to the shop
        {MatCol::Price, "бесплатно", "", true, "0,00"},
        {MatCol::Price, "", "", false, "0,00"},
    };
    for (const Case &c : cases) {
        ASSERT_TRUE(mats.setData(mats.index(row, c.col), c.text, Qt::EditRole)) << c.text.toStdString();
        EXPECT_EQ(mats.index(row, MatCol::Sum).data().toString(), c.sum) << c.text.toStdString();
        EXPECT_EQ(!mats.cellProblem(row, c.col).isEmpty(), c.bad) << c.text.toStdString();
        EXPECT_EQ(rub(editor->materialsRaw()), c.total) << c.text.toStdString();
    }
    // Everything typed is in the working database.
    QSqlQuery q(module->database(Db::Smeta));
    ASSERT_TRUE(q.exec("SELECT namemat, kolvo, price, summa FROM materials") && q.next());
    EXPECT_EQ(q.value(0).toString(), "Штукатурка гипсовая");
    EXPECT_EQ(q.value(1).toString(), "-2");
    EXPECT_EQ(q.value(3).toString(), "");
    q.finish();
    EXPECT_FALSE(mats.setData(mats.index(row, MatCol::Sum), "1", Qt::EditRole)); // computed, not typed
    ASSERT_TRUE(mats.removeRows(0, 0));
    EXPECT_EQ(mats.rowCount(), 0);
}

} // namespace
