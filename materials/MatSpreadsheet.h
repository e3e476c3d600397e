#pragma once
// A materials list to and from a spreadsheet file through the office engine. A file comes in as the
// first three columns of its first sheet (name, unit, price; a first row naming the columns is left
// out, empty rows too) and is checked before the engine sees it; a list goes out as ".xlsx" with the
// columns "Наименование материала", "Ед. изм.", "Цена". Nothing is written into a sheet here: the
// caller replaces the sheet once the whole file has been read.

#include "MatList.h"
#include "SheetFile.h"

#include <QString>
#include <functional>
#include <vector>

class OfficeEngine;

namespace MatSpreadsheet {

using Progress = SheetFile::Progress;

// Limits a file must keep before it is trusted.
constexpr qint64 kMaxFileBytes = SheetFile::kMaxFileBytes;
constexpr qint64 kMaxTextBytes = SheetFile::kMaxTextBytes;
constexpr int kMaxRows = 200000;

// Refuses by its size and its first bytes a file that cannot be an ".xls", ".xlsx" or ".ods"
// spreadsheet. False with a Russian *error.
bool checkFile(const QString &path, QString *error);

// The list in the sheet's cells. False with a Russian *error when no row holds the three columns,
// when there is no material at all, or when there are more rows than kMaxRows.
bool rowsFromCells(const SheetText::Grid &cells, std::vector<MatRow> &rows, QString *error);

// Reads a spreadsheet file into rows: checked, loaded by the engine (which must see a spreadsheet),
// its first sheet taken as text into scratchDir and read. Progress goes from 0 to 90.
bool readFile(OfficeEngine &engine, const QString &path, const QString &scratchDir, std::vector<MatRow> &rows,
              QString *error, const Progress &progress = {});

// The rows as a flat OpenDocument spreadsheet (names, units, and prices as numbers where they are).
QByteArray flatOds(const std::vector<MatRow> &rows, const QString &sheetName);
// Writes the rows (titles included, empty rows left out) into an ".xlsx" file.
bool writeFile(OfficeEngine &engine, const std::vector<MatRow> &rows, const QString &sheetName,
               const QString &path, const QString &scratchDir, QString *error, const Progress &progress = {});

} // namespace MatSpreadsheet
