#pragma once
// The text of a spreadsheet as rows of cell texts, and cell addresses in the "B5" form. Shared by
// the helper (which reads a sheet through its comma-separated export) and the template filling.

#include <QString>
#include <QStringList>
#include <QVector>

#include <set>
#include <utility>

namespace SheetText {

using Grid = QVector<QStringList>; // rows of cells, row 0 = sheet row 1, column 0 = column A

// Parses comma-separated text: fields separated by ",", fields in double quotes may hold commas,
// line breaks and doubled quotes; lines end with LF or CRLF.
Grid parseCsv(const QString &text);

// Column letters: 0 -> "A", 25 -> "Z", 26 -> "AA".
QString columnName(int column);
// "B5" for row 4, column 1 (both from 0).
QString cellName(int row, int column);
// "A5:H9" for rows 4..8, columns 0..7.
QString rangeName(int firstRow, int firstColumn, int lastRow, int lastColumn);
// "B5" -> row 4, column 1; false for anything else.
bool parseCellName(const QString &name, int *row, int *column);

// A rectangle of cells (rows and columns from 0).
struct Block {
    int firstRow = 0, firstColumn = 0, lastRow = 0, lastColumn = 0;
    QString name() const { return rangeName(firstRow, firstColumn, lastRow, lastColumn); }
    bool operator==(const Block &o) const {
        return firstRow == o.firstRow && firstColumn == o.firstColumn && lastRow == o.lastRow &&
               lastColumn == o.lastColumn;
    }
};
// Rectangles that cover exactly the cells given (row, column): the runs of adjacent cells of each
// row, a run joined with the same run of the rows right above it.
QVector<Block> blocksOf(const std::set<std::pair<int, int>> &cells);

// First cell whose text equals (exact) or contains the text, scanning rows top to bottom.
bool findCell(const Grid &grid, const QString &text, bool exact, int *row, int *column);

} // namespace SheetText
