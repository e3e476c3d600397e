// Counting the printed pages of a sheet and the page breaks that keep the closing block with the
// table and headings with their rows; reading the layout from a flat OpenDocument sheet.

#include "office/SheetPages.h"

#include <gtest/gtest.h>

namespace {

// n rows of height h (points) on pages of `page` points, rows r1..r2 repeated on every page.
SheetPages::Layout uniform(int n, double h, double page, int r1 = -1, int r2 = -1) {
    SheetPages::Layout l;
    l.pageHeight = page;
    l.rows = QVector<double>(n, h);
    l.manualBreak = QVector<bool>(n, false);
    l.repeatFirst = r1;
    l.repeatLast = r2;
    return l;
}

TEST(SheetPages, PagesFillUpAndLaterPagesStartWithTheRepeatedRows) {
    struct Case {
        const char *what;
        SheetPages::Layout layout;
        QVector<int> breaks; // manual breaks above these rows
        QVector<int> starts;
    };
    const Case cases[] = {
        {"ten rows a page", uniform(25, 10, 100), {}, {0, 10, 20}},
        {"a row that does not fit goes over", uniform(10, 30, 100), {}, {0, 3, 6, 9}},
        // Rows 2-3 repeated (20 pt): page 1 holds 10 rows, the next ones 8 rows under the repeat.
        {"repeated rows", uniform(30, 10, 100, 2, 3), {}, {0, 10, 18, 26}},
        {"a manual break", uniform(25, 10, 100), {4}, {0, 4, 14, 24}},
    };
    for (Case c : cases) {
        for (int r : c.breaks)
            c.layout.manualBreak[r] = true;
        EXPECT_EQ(SheetPages::pageStarts(c.layout), c.starts) << c.what;
    }
}

TEST(SheetPages, TheClosingBlockStaysWithTheTableAndHeadingsWithTheirRows) {
    struct Case {
        const char *what;
        SheetPages::Layout layout;
        QVector<int> headings;
        int closingFirst;
        QVector<int> breaks;
    };
    // Rows of 10 pt, pages of 100 pt, rows 2-3 the table's heading repeated: pages start at 0, 10, 18, 26.
    const auto sheet = [](int n) { return uniform(n, 10, 100, 2, 3); };
    const Case cases[] = {
        // The table ends exactly at the foot of page 2: the closing rows 18-21 would stand alone under
        // the repeated heading. Two rows of the table go over with them.
        {"closing block alone on the last page", sheet(22), {}, 18, {16}},
        {"one table row is not enough", sheet(22), {}, 17, {15}},
        // The closing block (rows 15-19) would be split between pages 2 and 3.
        {"closing block split", sheet(20), {}, 15, {13}},
        {"closing block fits", sheet(18), {}, 14, {}},
        {"closing block on the first page", sheet(8), {}, 5, {}},
        // A section's title (row 9) at the foot of page 1 goes over with its rows; so does a run of two.
        {"a heading ends a page", sheet(15), {9}, -1, {9}},
        {"two headings end a page", sheet(15), {8, 9}, -1, {8}},
        {"the table's own heading ends page 1", uniform(15, 10, 100, 8, 9), {}, -1, {8}},
        // A whole page of headings cannot go anywhere.
        {"nothing but headings", sheet(22), {10, 11, 12, 13, 14, 15, 16, 17, 18}, -1, {}},
        // Both: the heading first (pages then start at 0, 9, 17, 25), then the closing block counted on
        // the new pages.
        {"heading and closing block", sheet(27), {9}, 25, {9, 23}},
        // A closing block taller than a page is left as it falls.
        {"closing block longer than a page", sheet(30), {}, 12, {}},
    };
    for (const Case &c : cases) {
        SheetPages::Layout layout = c.layout;
        SheetPages::Together t;
        t.keepWithNext = QVector<bool>(layout.rows.size(), false);
        for (int h : c.headings)
            t.keepWithNext[h] = true;
        t.closingFirst = c.closingFirst;
        EXPECT_EQ(SheetPages::breaksToAdd(layout, t), c.breaks) << c.what;
        // After the breaks nothing is left to do.
        EXPECT_EQ(SheetPages::breaksToAdd(layout, t), QVector<int>()) << c.what;
    }
    SheetPages::Layout scaled = sheet(22);
    scaled.scaledToPages = true;
    SheetPages::Together t;
    t.closingFirst = 18;
    EXPECT_TRUE(SheetPages::breaksToAdd(scaled, t).isEmpty()) << "a sheet fitted to pages is not counted";
}

TEST(SheetPages, LayoutOfAFlatSheet) {
    // A4 portrait, margins 2 cm and 1.5 cm, a footer of 0.5 cm + 0.25 cm, no header; columns of 10 cm
    // and 12 cm fitted to the 17 cm wide page (77 %); rows 1-2 repeated, a manual break above row 4,
    // a hidden row, empty rows after the last text.
    const QByteArray fods = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 xmlns:loext="urn:org:documentfoundation:names:experimental:office:xmlns:loext:1.0">
<office:automatic-styles>
 <style:style style:name="co1" style:family="table-column"><style:table-column-properties style:column-width="10cm"/></style:style>
 <style:style style:name="co2" style:family="table-column"><style:table-column-properties style:column-width="12cm"/></style:style>
 <style:style style:name="ro1" style:family="table-row"><style:table-row-properties style:row-height="1cm" fo:break-before="auto"/></style:style>
 <style:style style:name="ro2" style:family="table-row"><style:table-row-properties style:row-height="0.5in" fo:break-before="page"/></style:style>
 <style:style style:name="ta1" style:family="table" style:master-page-name="Estimate"/>
 <style:page-layout style:name="pm1">
  <style:page-layout-properties fo:page-width="21cm" fo:page-height="29.7cm" fo:margin-top="2cm" fo:margin-bottom="1.5cm" fo:margin-left="2cm" fo:margin-right="2cm" loext:scale-to-X="1" loext:scale-to-Y="0"/>
  <style:header-style><style:header-footer-properties fo:min-height="0.75cm" fo:margin-bottom="0.25cm"/></style:header-style>
  <style:footer-style><style:header-footer-properties fo:min-height="0.5cm" fo:margin-top="0.25cm"/></style:footer-style>
 </style:page-layout>
</office:automatic-styles>
<office:master-styles>
 <style:master-page style:name="Default" style:page-layout-name="none"/>
 <style:master-page style:name="Estimate" style:page-layout-name="pm1">
  <style:header style:display="false"/>
  <style:footer><text:p>Страница</text:p></style:footer>
 </style:master-page>
</office:master-styles>
<office:body><office:spreadsheet>
 <table:table table:name="Смета" table:style-name="ta1">
  <table:table-column table:style-name="co1"/>
  <table:table-column table:style-name="co2" table:number-columns-repeated="2"/>
  <table:table-row table:style-name="ro1"><table:table-cell office:value-type="string"><text:p>Смета</text:p></table:table-cell></table:table-row>
  <table:table-header-rows>
   <table:table-row table:style-name="ro1"><table:table-cell/><table:table-cell office:value-type="string"><text:p>Цена</text:p></table:table-cell></table:table-row>
   <table:table-row table:style-name="ro1"><table:table-cell table:number-columns-repeated="2"/></table:table-row>
  </table:table-header-rows>
  <table:table-row table:style-name="ro1" table:number-rows-repeated="2"><table:table-cell office:value-type="float" office:value="1"/></table:table-row>
  <table:table-row table:style-name="ro2"><table:table-cell office:value-type="string"><text:p>Итого</text:p></table:table-cell></table:table-row>
  <table:table-row table:style-name="ro1" table:visibility="collapse"><table:table-cell office:value-type="string"><text:p>скрыта</text:p></table:table-cell></table:table-row>
  <table:table-row table:style-name="ro1"><table:table-cell office:value-type="string"><text:p>Подпись</text:p></table:table-cell></table:table-row>
  <table:table-row table:style-name="ro1" table:number-rows-repeated="1048000"><table:table-cell table:number-columns-repeated="3"/></table:table-row>
 </table:table>
</office:spreadsheet></office:body></office:document>
)";
    SheetPages::Layout l;
    QString error;
    ASSERT_TRUE(SheetPages::read(fods, &l, &error)) << error.toStdString();
    const double cm = 72.0 / 2.54;
    EXPECT_NEAR(l.pageHeight, (29.7 - 2 - 1.5 - 0.5 - 0.25) * cm, 0.01);
    const double zoom = 0.77; // 17 cm of page for 22 cm of columns, in whole percents
    ASSERT_EQ(l.rows.size(), 8);
    const QVector<double> expected = {
        1 * cm * zoom, 1 * cm * zoom, 1 * cm * zoom, 1 * cm * zoom, 1 * cm * zoom, 36 * zoom, 0,
        1 * cm * zoom};
    for (int r = 0; r < expected.size(); ++r)
        EXPECT_NEAR(l.rows[r], expected[r], 0.01) << "row " << r;
    EXPECT_EQ(l.manualBreak, (QVector<bool>{false, false, false, false, false, true, false, false}));
    EXPECT_EQ(l.repeatFirst, 1);
    EXPECT_EQ(l.repeatLast, 2);
    EXPECT_FALSE(l.scaledToPages);

    EXPECT_FALSE(SheetPages::read("<not a sheet", &l, &error));
    EXPECT_FALSE(error.isEmpty());
}

} // namespace
