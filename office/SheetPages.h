#pragma once
// Where the pages of a filled sheet end, and the manual page breaks that keep what belongs together:
// - the closing block (the totals under the table, the amount in words, the signatures) stays on one
//   page, and with at least a few rows of the table above it, so that no page shows the repeated table
//   heading with nothing under it;
// - a heading row (a section's title, the table's own heading) never ends a page.
//
// The layout is read from the sheet saved as flat OpenDocument (".fods"): the page style of the sheet
// (paper, margins, header and footer, the scale or "fit to width"), the rows to repeat on every page,
// each row's height and its manual break. Pages are then counted as the spreadsheet engine counts them:
// rows go on a page while they fit; a page after the first starts with the repeated rows.

#include <QByteArray>
#include <QString>
#include <QVector>

class OfficeEngine;

namespace SheetPages {

struct Layout {
    double pageHeight = 0;     // printable height of a page, points
    QVector<double> rows;      // height of each row of the printed area (from the first row), points
    QVector<bool> manualBreak; // a manual break above the row
    int repeatFirst = -1;      // rows repeated at the top of every page; -1 when none
    int repeatLast = -1;
    bool scaledToPages = false; // "fit to N pages tall": the engine shrinks rows, pages are not counted

    double repeatHeight() const;
};

// Reads the first sheet of a flat OpenDocument spreadsheet. False with a Russian message when it is not
// one.
bool read(const QByteArray &fods, Layout *layout, QString *error);

// The first row of every page.
QVector<int> pageStarts(const Layout &layout);

// What belongs together on a sheet: rows that must not end a page, and the first row of the closing
// block (-1 when there is none). The closing block runs to the last printed row.
struct Together {
    QVector<bool> keepWithNext;
    int closingFirst = -1;
    int rowsWithClosing = 2; // rows of the table that go along with the closing block
};

// The rows (from 0) that need a manual break above them, top to bottom; the layout gets them as it
// goes. Nothing when the layout cannot be counted (scaled to pages) or what belongs together is more
// than a page.
QVector<int> breaksToAdd(Layout &layout, const Together &together);

// Saves the sheet open in the engine as flat OpenDocument into its scratch folder, reads it, and puts
// in the breaks breaksToAdd gives. *added (when given) receives them (rows from 0). False with
// *error when the engine fails.
bool keepTogether(OfficeEngine &engine, const Together &together, QVector<int> *added, QString *error);

} // namespace SheetPages
