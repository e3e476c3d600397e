// Reading the rows back from printed pages and planning the breaks that keep pages together, against
// a stand-in for the engine's pagination: rows go on a page while their heights fit, a break starts a
// new page.

#include "office/PageFlow.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace {

using PageFlow::Pages;
using SheetText::Grid;

TEST(PageFlow, RowsAreFoundOnThePagesThatPrintThem) {
    const Grid grid{{QStringLiteral("Смета")},
                    {},
                    {QStringLiteral("№"), QStringLiteral("Наименование")},
                    {QStringLiteral("1"), QStringLiteral("Штукатурка стен"), QStringLiteral("3163,5")},
                    {QStringLiteral("2"), QStringLiteral("Окраска"), QStringLiteral("###")},
                    {QStringLiteral("3"), QStringLiteral("Грунтовка пола"), QStringLiteral("413")},
                    {QStringLiteral("4"), QStringLiteral("Монтаж"), QStringLiteral("12 005,00")}};
    struct Case {
        const char *name;
        Pages pages;
        QVector<int> expected;
    };
    const QString head = QStringLiteral("№Наименование");
    const Case cases[] = {
        {"one page, the cells of a row in any order",
         {QStringLiteral("Смета") + head +
          QStringLiteral("Штукатуркастен13163,5Окраска2Грунтовкапола3413Монтаж412005Страница1")},
         {0, -1, 0, 0, -1, 0, 0}},
        {"the table's head repeated on the second page, a footer on each",
         {QStringLiteral("Смета") + head + QStringLiteral("1Штукатуркастен3163,5Страница1из2"),
          head + QStringLiteral("2Окраска###3Грунтовкапола413Монтаж412005Страница2из2")},
         {0, -1, 0, 0, 1, 1, 1}},
        {"a row printed otherwise than the sheet's text is not placed",
         {QStringLiteral("Смета") + head + QStringLiteral("1Штукатуркастен3163,5"),
          head + QStringLiteral("2Окраска9,99Грунтовкапола3413Монтаж412005")},
         {0, -1, 0, 0, -1, 1, 1}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(PageFlow::rowPages(grid, c.pages), c.expected) << c.name;
}

TEST(PageFlow, NumbersReadAsTheSheetAndThePrintBothShowThem) {
    const QPair<const char *, const char *> cases[] = {
        {"163,50", "163,5"},          {"413,00", "413"},  {"1,5", "1,5"},   {"0,0", "0"},
        {"25.11.2026", "25.11.2026"}, {"до,00", "до,00"}, {"1,20м", "1,2м"}};
    for (const auto &c : cases)
        EXPECT_EQ(PageFlow::printedWord(QString::fromUtf8(c.first)), QString::fromUtf8(c.second)) << c.first;
}

// The stand-in engine: the first row of every page, the rows of a page after the first holding at
// most `capacity` twips, the first page `firstCapacity`; a break starts a page.
QVector<int> pageStarts(const QVector<int> &heights, int firstCapacity, int capacity,
                        const QSet<int> &breaks) {
    QVector<int> starts{0};
    qint64 used = heights.value(0);
    for (int r = 1; r < heights.size(); ++r) {
        const int cap = starts.size() == 1 ? firstCapacity : capacity;
        if (breaks.contains(r) || used + heights.at(r) > cap) {
            starts << r;
            used = 0;
        }
        used += heights.at(r);
    }
    return starts;
}

QVector<int> pagesOfRows(const QVector<int> &starts, int rows) {
    QVector<int> pages(rows, -1);
    for (int p = 0; p < starts.size(); ++p)
        for (int r = starts.at(p); r < (p + 1 < starts.size() ? starts.at(p + 1) : rows); ++r)
            pages[r] = p;
    return pages;
}

TEST(PageFlow, PlannedBreaksAreThoseTheEngineWouldNeedOneByOne) {
    struct Case {
        const char *name;
        int rows;
        int sectionEvery; // a title before every n-th row
        bool varied;      // heights of one to three lines
        int capacity;
        int closingRows;
        int shownPages; // the pages the engine showed first
    };
    const Case cases[] = {
        {"even rows, titles at page ends", 900, 23, false, 9500, 6, 12},
        {"rows of one to three lines", 900, 17, true, 9500, 6, 12},
        {"rows of one to three lines, three pages shown", 900, 17, true, 9500, 6, 3},
        {"a closing block across the last break", 700, 0, false, 9500, 8, 12},
        {"a closing block longer than a page", 300, 0, false, 4000, 20, 12},
        {"small pages, many titles", 600, 5, true, 3000, 4, 12},
        {"small pages, many titles, two pages shown", 600, 5, true, 3000, 4, 2},
    };
    for (const Case &c : cases) {
        QRandomGenerator random(42);
        Grid grid;
        PageFlow::Rules rules;
        QVector<int> heights;
        for (int r = 0; r < c.rows; ++r) {
            const bool title = c.sectionEvery > 0 && r % c.sectionEvery == 0;
            grid << QStringList{title ? QStringLiteral("Раздел %1").arg(r)
                                      : QStringLiteral("Работа %1").arg(r)};
            if (title)
                rules.headings.insert(r);
            heights << (c.varied ? 293 * (1 + static_cast<int>(random.bounded(3u) == 0) +
                                          static_cast<int>(random.bounded(5u) == 0))
                                 : 293);
        }
        rules.closingFirst = c.rows - c.closingRows;
        const int firstCapacity = c.capacity - 1700;
        // One break at a time, each checked on the engine's pages.
        QSet<int> expected, movedOneByOne;
        for (;;) {
            const QVector<int> pages =
                pagesOfRows(pageStarts(heights, firstCapacity, c.capacity, expected), c.rows);
            const int row = PageFlow::nextBreak(grid, pages, rules, movedOneByOne);
            if (row < 0)
                break;
            expected.insert(row);
            movedOneByOne.insert(row);
        }
        // Planned from the first twelve pages the engine showed.
        QSet<int> inserted;
        int asked = 0;
        const QVector<int> all = pagesOfRows(pageStarts(heights, firstCapacity, c.capacity, {}), c.rows);
        QVector<int> shown = all;
        for (int &p : shown)
            if (p >= c.shownPages)
                p = -1;
        PageFlow::Plan plan{grid,
                            rules,
                            heights,
                            shown,
                            c.shownPages,
                            [&](int row) {
                                inserted.insert(row);
                                return true;
                            },
                            [&](int page, int from) {
                                ++asked;
                                const QVector<int> starts =
                                    pageStarts(heights, firstCapacity, c.capacity, inserted);
                                return page < starts.size() && starts.at(page) >= from ? starts.at(page) : -1;
                            }};
        QVector<int> breaks;
        QSet<int> moved;
        bool complete = false;
        ASSERT_TRUE(PageFlow::plan(plan, &breaks, &moved, &complete)) << c.name;
        EXPECT_TRUE(complete) << c.name;
        EXPECT_EQ(inserted, expected) << c.name;
        EXPECT_EQ(breaks.size(), moved.size()) << c.name << ": a row moved once at most";
        const QVector<int> after =
            pagesOfRows(pageStarts(heights, firstCapacity, c.capacity, inserted), c.rows);
        EXPECT_EQ(PageFlow::nextBreak(grid, after, rules, moved), -1) << c.name;
        if (c.varied && c.shownPages < 12) {
            EXPECT_GT(asked, 0) << c.name << ": pages the heights could not decide were asked";
        }
    }
}

} // namespace
