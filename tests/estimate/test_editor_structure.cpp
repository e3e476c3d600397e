// Sections, subsections and numbering of the estimate grid after the editing commands.

#include "estimate/EstimateStructure.h"
#include "test_editor_fixture.h"

using namespace EstimateCol;

namespace {

// Two sections, the second with two subsections:
//  2 РАЗДЕЛ 1. Демонтаж        3 Снос стен          4 Вывоз мусора      5 Итого по разделу 1
//  6 РАЗДЕЛ 2. Отделка         7 § 2.1. Стены       8 Шпаклёвка         9 Итого по § 2.1
// 10 § 2.2. Пол               11 Стяжка            12 Ламинат          13 Итого по § 2.2
// 14 Итого по разделу 2       15 Итого по смете
class StructureTest : public EditorTest {
protected:
    void buildTwoSections() {
        work(2, "Снос стен", "10", "150");
        ASSERT_EQ(editor->appendRow(), 3);
        work(3, "Вывоз мусора", "2", "1000");
        ASSERT_TRUE(editor->createSection(2, 3, "Демонтаж"));
        // [br, w, w, ir, Итого]: a new section after the first.
        ASSERT_TRUE(editor->createSection(5, 5, "Отделка"));
        // [.., ir, br, empty, ir, Итого]
        work(7, "Шпаклёвка", "20", "300");
        ASSERT_TRUE(editor->createSubsection(7, 7, "Стены"));
        // [.., br(6), bp(7), w(8), ip(9), ir(10), Итого(11)]
        ASSERT_TRUE(editor->createSubsection(9, 9, "Пол"));
        // new empty subsection after ip(9): bp(10), empty(11), ip(12), ir(13)
        work(11, "Стяжка", "20", "500");
        const int r = editor->insertRowAbove(12);
        work(r, "Ламинат", "20", "800");
    }
};

TEST_F(StructureTest, TwoSectionsWithSubsectionsAreNumberedAndTotalled) {
    buildTwoSections();
    // number|name|sum|marker
    const QStringList expected = {
        "|РАЗДЕЛ 1. Демонтаж||br",
        "1|Снос стен|1500,00|",
        "2|Вывоз мусора|2000,00|",
        "|Итого по разделу 1|3500,00|ir",
        "|РАЗДЕЛ 2. Отделка||br",
        "|       § 2.1. Стены||bp",
        "3|Шпаклёвка|6000,00|",
        "|              Итого по § 2.1|6000,00|ip",
        "|       § 2.2. Пол||bp",
        "4|Стяжка|10000,00|",
        "5|Ламинат|16000,00|",
        "|              Итого по § 2.2|26000,00|ip",
        "|Итого по разделу 2|32000,00|ir",
        "|Итого по смете|35500,00|",
    };
    EXPECT_EQ(outline(), expected);
    EXPECT_EQ(rub(editor->worksRaw()), "35500,00");
    // The amounts column and the totals column agree.
    for (int r = 2; r < grid.gridRowCount(); ++r)
        EXPECT_EQ(cell(r, Itogo), cell(r, Sum)) << "row " << r;
}

TEST_F(StructureTest, NumbersFollowInsertsDeletesAndMoves) {
    buildTwoSections();
    struct Case {
        const char *what;
        std::function<bool(EstimateEditor &)> step;
        QStringList names; // names of the work rows in order, numbered 1..n
        QStringList sectionTexts;
    };
    const std::vector<Case> cases = {
        {"delete the first work row",
         [](EstimateEditor &e) { return e.deleteRows(3, 3); },
         {"Вывоз мусора", "Шпаклёвка", "Стяжка", "Ламинат"},
         {"РАЗДЕЛ 1. Демонтаж", "РАЗДЕЛ 2. Отделка", "       § 2.1. Стены", "       § 2.2. Пол"}},
        {"delete the first section",
         [](EstimateEditor &e) { return e.deleteSection(3); },
         {"Шпаклёвка", "Стяжка", "Ламинат"},
         {"РАЗДЕЛ 1. Отделка", "       § 1.1. Стены", "       § 1.2. Пол"}},
        {"move the first subsection below the second",
         [](EstimateEditor &e) { return e.moveRows(3, 5, 7); }, // «Стены» (bp..ip) after «Пол»
         {"Стяжка", "Ламинат", "Шпаклёвка"},
         {"РАЗДЕЛ 1. Отделка", "       § 1.1. Пол", "       § 1.2. Стены"}},
        {"insert a row above the first subsection",
         [](EstimateEditor &e) { return e.insertRowAbove(3) == 3; },
         {"", "Стяжка", "Ламинат", "Шпаклёвка"},
         {"РАЗДЕЛ 1. Отделка", "       § 1.1. Пол", "       § 1.2. Стены"}},
        {"delete the subsection «Пол»",
         [](EstimateEditor &e) { return e.deleteSubsection(5); },
         {"", "Шпаклёвка"},
         {"РАЗДЕЛ 1. Отделка", "       § 1.1. Стены"}},
    };
    for (const Case &c : cases) {
        ASSERT_TRUE(c.step(*editor)) << c.what << ": " << editor->lastError().toStdString();
        QStringList names, sections;
        int expectedNumber = 0;
        for (int r = 2; r < grid.gridRowCount(); ++r) {
            if (grid.kind(r) == RowKind::Work && !editor->isGrandTotalRow(r)) {
                names << cell(r, Name);
                EXPECT_EQ(cell(r, Num), QString::number(++expectedNumber)) << c.what << ", row " << r;
            } else {
                EXPECT_EQ(cell(r, Num), QString()) << c.what << ", row " << r;
            }
            if (grid.kind(r) == RowKind::SectionStart || grid.kind(r) == RowKind::SubsectionStart)
                sections << cell(r, Name);
        }
        EXPECT_EQ(names, c.names) << c.what;
        EXPECT_EQ(sections, c.sectionTexts) << c.what;
        EXPECT_TRUE(EstimateStructure::isWellFormed(EstimateStructure::kinds(grid))) << c.what;
    }
}

TEST_F(StructureTest, CommandsThatWouldBreakTheStructureAreRefused) {
    buildTwoSections();
    const std::vector<QStringList> before = everything();
    struct Case {
        const char *what;
        std::function<bool(EstimateEditor &)> step;
    };
    const std::vector<Case> cases = {
        {"delete a section start alone", [](EstimateEditor &e) { return e.deleteRows(2, 2); }},
        {"delete a section total with a work row", [](EstimateEditor &e) { return e.deleteRows(4, 5); }},
        {"move a section start into the section above", [](EstimateEditor &e) { return e.moveRowsUp(6, 6); }},
        {"a section around rows of another section",
         [](EstimateEditor &e) { return e.createSection(3, 4, "X"); }},
        {"a subsection outside any section",
         [](EstimateEditor &e) { return e.createSubsection(15, 15, "X"); }},
        {"a subsection over two sections", [](EstimateEditor &e) { return e.createSubsection(4, 8, "X"); }},
        {"delete a section where there is none", [](EstimateEditor &e) { return e.deleteSection(15); }},
        {"move the first row up", [](EstimateEditor &e) { return e.moveRowsUp(2, 2); }},
        {"move the last row down", [](EstimateEditor &e) { return e.moveRowsDown(15, 15); }},
    };
    for (const Case &c : cases) {
        EXPECT_FALSE(c.step(*editor)) << c.what;
        EXPECT_EQ(everything(), before) << c.what;
    }
    EXPECT_FALSE(editor->lastError().isEmpty());
}

TEST_F(StructureTest, AppendingKeepsTheGrandTotalLastAndSectionTextsFollowRenaming) {
    buildTwoSections();
    const int last = grid.gridRowCount() - 1;
    EXPECT_EQ(editor->appendRow(), last);
    EXPECT_TRUE(editor->isGrandTotalRow(last + 1));
    // The grand total row is not typed into, whatever its kind allows.
    EXPECT_FALSE(editor->canEditCell(last + 1, Qty));
    EXPECT_TRUE(editor->canEditCell(last, Qty));
    // Renaming a section: the prefix and the number come back whatever is typed.
    type(6, Name, "Чистовая отделка");
    EXPECT_EQ(cell(6, Name), "РАЗДЕЛ 2. Чистовая отделка");
    type(7, Name, "       § 7.7. Стены и потолки");
    EXPECT_EQ(cell(7, Name), "       § 2.1. Стены и потолки");
    EXPECT_EQ(cell(14, Name), "Итого по разделу 2");
    EXPECT_EQ(cell(9, Name), "              Итого по § 2.1");
}

TEST(SectionTexts, TitlesAreTakenFromTheRowText) {
    struct Case {
        QString text, section, subsection;
    };
    const std::vector<Case> cases = {
        {"РАЗДЕЛ 2. Кухня", "Кухня", "РАЗДЕЛ 2. Кухня"},
        {"Раздел 12 Ванная", "Ванная", "Раздел 12 Ванная"},
        {"Кухня", "Кухня", "Кухня"},
        {"       § 2.1. Плитка", "§ 2.1. Плитка", "Плитка"},
        {"§ 3.10 Пол", "§ 3.10 Пол", "Пол"},
        {"РАЗДЕЛ 1. ", "", "РАЗДЕЛ 1."},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(EstimateStructure::sectionTitle(c.text), c.section) << c.text.toStdString();
        EXPECT_EQ(EstimateStructure::subsectionTitle(c.text), c.subsection) << c.text.toStdString();
    }
}

} // namespace
