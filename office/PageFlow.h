#pragma once
// Where the engine's printed pages of a sheet break, read back from the PDF it wrote, and the page
// breaks that keep together what belongs together:
// - the closing block (from the first line of the grand totals down to the signatures) stays on one
//   page;
// - no page ends with a heading (the table's head, a section's title) that has none of its rows under
//   it on that page.
//
// The pages are not computed from the page setup: the engine lays them out (its scale, row heights,
// repeated rows, footers), and the PDF shows where each row landed. Every row is found on its page by
// its characters: the characters of a page are taken line by line from the top, spaces left out, and
// a row's characters in any order must follow one another there (the cells of one row may come out of
// the PDF in any order, rows never mix). A row that cannot be found (a cell shown as "###", a text cut
// by its cell) is left without a page, and no break is decided next to a row whose page is uncertain.
//
// A long sheet is not exported again after every break (an export of 5,000 rows takes seconds): the
// pages the engine has shown tell how much of the rows' height (the engine's own row heights, in
// twips) a page holds, to within a range; a page whose end that range cannot decide is asked of the
// engine (one page exported). The breaks are planned from there, and the export that follows is
// checked as every export is.

#include "office/SheetText.h"

#include <QSet>
#include <QString>
#include <QVector>
#include <functional>

namespace PageFlow {

// The non-space characters of each page, line by line from the top, each word as printedWord gives it.
using Pages = QVector<QString>;

// A word (no spaces in it) with the decimals of its numbers as the sheet's text and the print may both
// show them: "163,50" -> "163,5", "413,00" -> "413" (the sheet's text of a cell may not carry the
// cell's number format).
QString printedWord(const QString &word);

// The page (from 0) of each row of the grid; -1 for an empty row and for a row not found.
QVector<int> rowPages(const SheetText::Grid &grid, const Pages &pages);

struct Rules {
    QSet<int> headings;    // rows (from 0) that must not end a page
    int closingFirst = -1; // the first row of the closing block, which runs to the last row; -1: none
};

// The row (from 0) above which the first break to add goes, or -1 when the pages keep the rules.
// A row in `moved` already has a break above it and is never moved again; a block or a run of
// headings that starts its page is longer than what a break could help, and is left as it falls.
int nextBreak(const SheetText::Grid &grid, const QVector<int> &rowPages, const Rules &rules,
              const QSet<int> &moved);

// Planning the breaks of a long sheet from the first pages the engine showed.
struct Plan {
    const SheetText::Grid &grid;
    const Rules &rules;
    QVector<int> heights; // twips, a row's height as the engine keeps it (0 for a hidden row)
    // The pages 1, 2, … of the sheet as it was (rowPages of the first pages exported).
    QVector<int> shown;
    int shownPages = 0;
    // Puts a break above the row in the sheet (false: the engine failed).
    std::function<bool(int row)> addBreak;
    // The first row (from `from` on) of the page (from 0) as the engine lays it out now, breaks added
    // so far included; -1 when it cannot be told, -2 when the engine failed.
    std::function<int(int page, int from)> firstRowOf;
};

// The breaks put in (rows from 0), each also given to addBreak at once. *complete is false when a page
// could not be decided and the rest of the sheet was left unplanned; when it is true, *firsts (when
// given) holds the first printed row of every page as planned. False only when the engine failed.
bool plan(const Plan &p, QVector<int> *breaks, QSet<int> *moved, bool *complete,
          QVector<int> *firsts = nullptr);

} // namespace PageFlow
