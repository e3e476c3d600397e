#pragma once
// A spreadsheet file in and out through the office engine, for the materials lists and the warehouse:
// a file the user chose is checked by its size and first bytes before the engine sees it, loaded, and
// its first sheet taken as text (a comma-separated export into a scratch file, size-limited); a table
// of text cells goes out as a flat OpenDocument sheet (numbers as numbers, a bold title row, an optional
// font for every cell) that the engine saves as ".xlsx" beside the target and renames over it.

#include "office/SheetText.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class OfficeEngine;

namespace SheetFile {

using Progress = std::function<void(int)>; // 0..100

// Limits a file must keep before it is trusted.
constexpr qint64 kMaxFileBytes = 50LL * 1024 * 1024; // the file itself
constexpr qint64 kMaxTextBytes = 80LL * 1024 * 1024; // the text of its first sheet
constexpr int kMaxCellChars = 10000;                 // one cell of it

// Refuses what cannot be an ".xls", ".xlsx" or ".ods" spreadsheet (a folder or a pipe, a file too
// large, other first bytes) or is unsafe for the engine (a zip package past the limits of
// office/TemplatePackage.h, a compound file whose structure does not hold together). False with a
// Russian *error.
bool checkFile(const QString &path, QString *error);

// The first sheet's cells: checked, loaded by the engine (which must see a spreadsheet), exported as
// text into scratchDir and parsed; a cell longer than kMaxCellChars refuses the file, naming the cell.
// Progress goes from 0 to 75.
bool readCells(OfficeEngine &engine, const QString &path, const QString &scratchDir, SheetText::Grid &cells,
               QString *error, const Progress &progress = {});

// A number cell as text: spreadsheets show prices with the currency ("1 250,50 ₽", "99 руб."), which
// is dropped when what is left is a number; any other text is kept as it is (trimmed).
QString cleanNumber(const QString &text);

struct Table {
    QString sheetName;
    QString font;             // every cell's font ("Times New Roman"); empty: the engine's default
    QStringList titles;       // the first row, bold
    std::vector<bool> number; // per column: a cell that parses as a number goes out as one
    std::vector<double> widthsCm;
    std::vector<QStringList> rows;
};

// The table as a flat OpenDocument spreadsheet.
QByteArray flatOds(const Table &table);
// Writes the table into an ".xlsx" file; the file is replaced only by a complete one.
bool write(OfficeEngine &engine, const Table &table, const QString &path, const QString &scratchDir,
           QString *error, const Progress &progress = {});

} // namespace SheetFile
