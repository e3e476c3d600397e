// Row kinds, renumbering, the section index, the rate grid model's filter and edits, live search.

#include "PriceTestData.h"
#include "pricebase/LiveSearch.h"
#include "pricebase/RateGridModel.h"

#include <QMimeData>
#include <functional>
#include <gtest/gtest.h>

namespace {

TEST(PriceRows, KindsFollowNumberAndUnit) {
    struct Case {
        QString edras, edizm;
        PriceRowKind kind;
    };
    const Case cases[] = {
        {"3", "", PriceRowKind::Section},        {"3", "пв", PriceRowKind::Section},
        {"3-2", "ПВ", PriceRowKind::Subsection}, {"3-2", "пв", PriceRowKind::Subsection},
        {"3-2", "Пв", PriceRowKind::Subsection}, {"3-2", "м2", PriceRowKind::Rate},
        {"3-14", "", PriceRowKind::Rate},        {"3-2-5", "шт", PriceRowKind::Rate},
        {"", "", PriceRowKind::Section},
    };
    for (const Case &c : cases)
        EXPECT_EQ(priceRowKind(c.edras, c.edizm), c.kind)
            << c.edras.toStdString() << " " << c.edizm.toStdString();
}

TEST(PriceRows, RenumberingGivesSectionSubsectionAndRateNumbers) {
    // section, rate, rate, subsection, rate, section, rate; an unnamed row keeps its number.
    RateTable rows = std::vector<RateRow>{
        rate("9", "Отделка", "", ""),          rate("", "Грунтовка", "м2", "50"),
        rate("x", "Шпатлёвка", "м2", "1 200"), rate("", "Потолки", " ПВ ", ""),
        rate("", "Покраска", "м2", "150-200"), rate("7", "Полы", " ", " "),
        rate("keep", "  ", "м2", "10"),        rate("", "Стяжка", "м2", "0"),
    };
    renumberRates(rows);
    const QStringList expected = {"1", "1-1", "1-2", "1-1", "1-1-1", "2", "keep", "2-1"};
    for (size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(rows[i][PriceCol::Ras], expected.at(static_cast<int>(i))) << "row " << i;
}

TEST(PriceRows, SectionIndexNestsSubsectionsUnderTheLastSection) {
    SectionIndex index;
    for (const RateRow &r : {rate("1", "Демонтаж", "", ""), rate("1-1", "Стены", "пв", ""),
                             rate("1-1-1", "Снятие обоев", "м2", "80"), rate("1-2", "Полы", "ПВ", ""),
                             rate("2", "Отделка", "", ""), rate("2-1", "Грунтовка", "м2", "50")})
        addToSectionIndex(index, r);
    ASSERT_EQ(index.size(), 2u);
    EXPECT_EQ(index[0].text, QStringLiteral("1 Демонтаж"));
    ASSERT_EQ(index[0].subsections.size(), 2u);
    EXPECT_EQ(index[0].subsections[1].text, QStringLiteral("1-2 Полы"));
    EXPECT_TRUE(index[1].subsections.empty());
}

std::vector<RateRow> sampleList() {
    return {rate("1", "Демонтаж", "", "", "1"),
            rate("1-1", "Стены", "пв", "", "2"),
            rate("1-1-1", "Снятие обоев", "м2", "80", "3"),
            rate("1-2", "Вывоз мусора", "т", "900", "4"),
            rate("10", "Кровля", "", "", "5"),
            rate("10-1", "Кровля из профнастила", "м2", "700", "6"),
            rate("1-10", "Демонтаж окон", "шт", "500", "7")};
}

QStringList visibleNumbers(const RateGridModel &m) {
    QStringList out;
    for (int r = 1; r <= m.visibleCount(); ++r)
        out << m.cell(r, PriceCol::Ras);
    return out;
}

TEST(RateGridModel, NumberFilterKeepsItsSectionOnly) {
    struct Case {
        QString prefix;
        bool includeSelf;
        QStringList expected;
    };
    const Case cases[] = {
        {"1", false, {"1-1", "1-1-1", "1-2", "1-10"}},
        {"1-1", true, {"1-1", "1-1-1"}}, // "1-10" is not part of subsection 1-1
        {"10", false, {"10-1"}},
        {"5", false, {}},
    };
    RateGridModel m;
    m.setRows(sampleList());
    for (const Case &c : cases) {
        m.setNumberFilter(c.prefix, c.includeSelf);
        EXPECT_EQ(visibleNumbers(m), c.expected) << c.prefix.toStdString();
        // An empty result still shows one empty row under the header.
        EXPECT_EQ(m.rowCount(), std::max<int>(1, c.expected.size()));
    }
    m.clearFilter();
    EXPECT_EQ(m.gridRowCount(), 8);
}

TEST(RateGridModel, EditsUnderAFilterLandInTheWholeList) {
    RateGridModel m;
    m.setRows(sampleList());
    m.setEditMode(true);
    m.setNumberFilter("1", false);    // 1-1, 1-1-1, 1-2, 1-10
    const int row = m.insertRowAt(3); // before 1-2
    EXPECT_EQ(row, 3);
    EXPECT_EQ(m.cell(3, PriceCol::Rec), QStringLiteral("8")); // next free record number
    m.setCell(3, PriceCol::Name, "Новая");
    m.setCell(3, PriceCol::Unit, "м2");
    m.setCell(3, PriceCol::Price, "10");
    m.moveGridRow(1, 4);   // the subsection title after the new row and 1-2
    m.removeGridRows({4}); // ... and gone again
    m.clearFilter();
    m.renumber();
    QStringList names;
    for (const RateRow &r : m.allRows())
        names << r[PriceCol::Ras] + " " + r[PriceCol::Name];
    EXPECT_EQ(names, (QStringList{"1 Демонтаж", "1-1 Снятие обоев", "1-2 Новая", "1-3 Вывоз мусора",
                                  "2 Кровля", "2-1 Кровля из профнастила", "2-2 Демонтаж окон"}));
}

TEST(RateGridModel, DraggedRowLandsWhereItWasDropped) {
    struct Case {
        int from;    // grid row dragged
        int dropRow; // Qt row the view drops before (-1: onto `onto`)
        int onto;    // Qt row dropped onto
        QStringList expected;
    };
    const Case cases[] = {
        {2, 4, -1, {"1", "1-1-1", "1-2", "1-1", "10", "10-1", "1-10"}}, // down, between rows
        {6, 0, -1, {"10-1", "1", "1-1", "1-1-1", "1-2", "10", "1-10"}}, // up to the top
        {1, -1, 6, {"1-1", "1-1-1", "1-2", "10", "10-1", "1-10", "1"}}, // onto the last row
    };
    for (const Case &c : cases) {
        RateGridModel m;
        m.setRows(sampleList());
        QMimeData *mime = m.mimeData({m.index(RateGridModel::toModelRow(c.from), 1)});
        EXPECT_FALSE(m.dropMimeData(mime, Qt::MoveAction, c.dropRow, 0, {})); // not in edit mode
        m.setEditMode(true);
        const QModelIndex parent = c.onto >= 0 ? m.index(c.onto, 1) : QModelIndex();
        m.dropMimeData(mime, Qt::MoveAction, c.dropRow, 0, parent);
        delete mime;
        QStringList numbers;
        for (const RateRow &r : m.allRows())
            numbers << r[PriceCol::Ras];
        EXPECT_EQ(numbers, c.expected) << "from " << c.from;
    }
}

TEST(RateGridModel, EmptyListShowsOneRowThatBecomesRealWhenTyped) {
    RateGridModel m;
    m.setRows({});
    EXPECT_EQ(m.rowCount(), 1);
    EXPECT_EQ(m.sourceIndex(1), -1);
    EXPECT_FALSE(m.setData(m.index(0, PriceCol::Name), "Работа", Qt::EditRole)); // not in edit mode
    m.setEditMode(true);
    EXPECT_TRUE(m.setData(m.index(0, PriceCol::Name), "Работа", Qt::EditRole));
    ASSERT_EQ(m.allRows().size(), 1u);
    EXPECT_EQ(m.allRows()[0][PriceCol::Name], QStringLiteral("Работа"));
}

TEST(RateGridModel, TicksAreKeptPerRowInListOrder) {
    RateGridModel m;
    m.setRows(sampleList());
    m.setData(m.index(5, PriceCol::Check), Qt::Checked, Qt::CheckStateRole);
    m.setData(m.index(2, PriceCol::Check), Qt::Checked, Qt::CheckStateRole);
    EXPECT_EQ(m.checkedIndices(), (std::vector<int>{2, 5}));
    m.clearChecks();
    EXPECT_TRUE(m.checkedIndices().empty());
}

TEST(LiveSearch, SubstringAnywhereInAnyLetterCase) {
    LiveSearch s;
    s.loadNames({"ШТУКАТУРКА стен", "Покраска стен", "Демонтаж плитки", "Укладка ПЛИТКИ на пол",
                 "Ёлочный паркет", "Quote ' and \\ back", "Кабель 2×1,5 мм²", "Кабель 2x1,5", "Émail ÄRGER"});
    struct Case {
        QString typed;
        std::vector<int> expected;
    };
    const Case cases[] = {
        {"штук", {0}},
        {"СТЕН", {0, 1}},
        {"плитк", {2, 3}},
        {"а", {0, 1, 2, 3, 4, 6, 7}},
        {"ёлоч", {4}},
        {"ка ст", {0, 1}},
        {" пол", {3}},
        {"кирпич", {}},
        {"' and \\", {5}},
        {"т", {0, 1, 2, 3, 4}},
        {"стенx", {}},
        // Letters other than Latin and Cyrillic are told apart too.
        {"2×1", {6}},
        {"2x1", {7}},
        {"мм²", {6}},
        {"émail ä", {8}},
        {"örger", {}},
        {"ÉMAIL", {8}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(s.find(c.typed), c.expected) << c.typed.toStdString();
}

TEST(LiveSearch, NamesOfALongListAndReloading) {
    LiveSearch s;
    std::vector<QString> names;
    for (int i = 0; i < 1000; ++i)
        names.push_back(QStringLiteral("Работа %1").arg(i));
    names.push_back(QString(10000, QChar(0x0416)) + "хвост"); // 10 kB of "Ж"
    s.loadNames(names);
    EXPECT_EQ(s.find("работа 99").size(), 11u); // 99, 990..999
    EXPECT_EQ(s.find("жжжхвост"), (std::vector<int>{1000}));
    s.loadNames({"Другая"});
    EXPECT_TRUE(s.find("работа").empty());
    LiveSearchModel model(s);
    EXPECT_EQ(model.search("друг"), 1);
    EXPECT_EQ(model.nameAt(0), QStringLiteral("Другая"));
}

// The compact table gives back every cell as it was put in, whether the row came from a read (one text)
// or was added, edited, moved or removed afterwards (the text of edits); live search keeps the names as
// they were loaded while the grid goes on; the index by record number finds the first row of a number.
TEST(RateTable, CellsSurviveEditsAndLiveSearchKeepsTheNamesItWasGiven) {
    const std::vector<RateRow> source = sampleList();
    RateTable t;
    for (const RateRow &r : source) {
        std::array<QByteArrayView, PriceCol::TextCount> cells;
        for (int c = 0; c < PriceCol::TextCount; ++c)
            cells[static_cast<size_t>(c)] = r.utf8(c);
        ASSERT_TRUE(t.append(cells));
    }
    ASSERT_EQ(t.size(), source.size());
    for (size_t i = 0; i < source.size(); ++i)
        EXPECT_EQ(t[i].cells(), source[i].cells()) << i;
    const RateTable copied = source; // rows added one by one
    for (size_t i = 0; i < source.size(); ++i)
        EXPECT_EQ(copied[i].cells(), source[i].cells()) << i;

    LiveSearch search;
    search.load(t);
    const std::vector<int> before = search.find("монтаж");
    ASSERT_FALSE(before.empty());

    // Each edit is checked against the same change on plain rows.
    std::vector<RateRow> plain = source;
    struct Step {
        const char *what;
        std::function<void()> onTable, onPlain;
    };
    const std::vector<Step> steps = {
        {"a name typed", [&] { t.set(0, PriceCol::Name, "Разборка"); },
         [&] { plain[0].set(PriceCol::Name, "Разборка"); }},
        {"an edited row edited again", [&] { t.set(0, PriceCol::Price, "5"); },
         [&] { plain[0].set(PriceCol::Price, "5"); }},
        {"a cell emptied", [&] { t.set(2, PriceCol::Koef, ""); }, [&] { plain[2].set(PriceCol::Koef, ""); }},
        {"a row inserted", [&] { t.insert(1, rate("1-0", "Вставка", "шт", "7", "99")); },
         [&] { plain.insert(plain.begin() + 1, rate("1-0", "Вставка", "шт", "7", "99")); }},
        {"a row moved down", [&] { t.move(0, 3); },
         [&] {
             const RateRow r = plain[0];
             plain.erase(plain.begin());
             plain.insert(plain.begin() + 3, r);
         }},
        {"rows removed",
         [&] {
             std::vector<char> drop(t.size(), 0);
             drop[1] = drop[4] = 1;
             t.remove(drop);
         },
         [&] {
             plain.erase(plain.begin() + 4);
             plain.erase(plain.begin() + 1);
         }},
        {"a row ticked", [&] { t.setChecked(2, true); }, [&] { plain[2].checked = true; }},
    };
    for (const Step &step : steps) {
        step.onTable();
        step.onPlain();
        ASSERT_EQ(t.size(), plain.size()) << step.what;
        for (size_t i = 0; i < plain.size(); ++i) {
            EXPECT_EQ(t[i].cells(), plain[i].cells()) << step.what << " row " << i;
            EXPECT_EQ(t.checked(i), plain[i].checked) << step.what << " row " << i;
            EXPECT_EQ(t.isBlank(i), plain[i].isBlank()) << step.what << " row " << i;
        }
    }
    // The names live search was given stay as they were read.
    EXPECT_EQ(search.find("монтаж"), before);
    EXPECT_TRUE(search.find("разборка").empty());
    search.load(t);
    EXPECT_EQ(search.find("разборка").size(), 1u);
    EXPECT_EQ(search.name(search.find("разборка").front()), QStringLiteral("Разборка"));

    // The first row of a number answers; a number that is not there finds nothing.
    RateTable withTwins =
        std::vector<RateRow>{rate("1", "А", "", "", "5"), rate("1-1", "Б", "м2", "1", "7"),
                             rate("1-2", "В", "м2", "2", "7"), rate("1-3", "Г", "м2", "3", " 7")};
    const RecIndex index(withTwins);
    EXPECT_EQ(index.find(withTwins, "7"), 1);
    EXPECT_EQ(index.find(withTwins, " 7"), 3);
    EXPECT_EQ(index.find(withTwins, "5"), 0);
    EXPECT_EQ(index.find(withTwins, "8"), -1);
    EXPECT_EQ(RecIndex().find(withTwins, "7"), -1);
}

} // namespace
