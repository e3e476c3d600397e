#pragma once
// The warehouse to and from a spreadsheet. The sheet of the warehouse ("Склад") has the columns
// "Наименование материала", "Ед. изм.", "Кол-во", "Цена", "Цена продажи", "Сумма", "Мин. остаток",
// "Дата"; the sheet of the shop ("Магазин") "Наименование материала", "Ед. изм.", "Кол-во",
// "Цена закупки", "Наценка", "Цена продажи", "Дата" (the markup is per unit: sale price less purchase
// price). A file is read by its title row when it has one (columns in any order, unknown ones left
// out), else by the column order of the mode. Exports go into the data folder's Sp as
// "Склад материалов (склад).xlsx" or "Склад материалов (магазин).xlsx", every cell in Times New Roman.

#include "SheetFile.h"
#include "Stock.h"

#include <QDate>
#include <vector>

namespace StockSpreadsheet {

constexpr int kMaxRows = 100000;
inline const QString kFont = QStringLiteral("Times New Roman");

// "Склад материалов (склад).xlsx" / "Склад материалов (магазин).xlsx".
QString exportFileName(StockMode mode);
QStringList titles(StockMode mode);

// The stock in the sheet's cells. Rows without a name are left out; a row without a date gets
// `today`; a warehouse row without a sum gets quantity × price; a shop row without a sale price gets
// purchase price + markup. False with a Russian *error (naming the sheet row) for a number column
// that holds no number, for a sheet without any material, or past kMaxRows rows.
bool itemsFromCells(const SheetText::Grid &cells, StockMode mode, const QDate &today,
                    std::vector<StockItem> &items, QString *error);
// The stock as the sheet of the mode.
SheetFile::Table table(const std::vector<StockItem> &items, StockMode mode);

// Through the engine: a file read into items (nothing is written into the warehouse here), and the
// stock written into an ".xlsx" file.
bool readFile(OfficeEngine &engine, const QString &path, const QString &scratchDir, StockMode mode,
              const QDate &today, std::vector<StockItem> &items, QString *error,
              const SheetFile::Progress &progress = {});
bool writeFile(OfficeEngine &engine, const std::vector<StockItem> &items, StockMode mode, const QString &path,
               const QString &scratchDir, QString *error, const SheetFile::Progress &progress = {});

} // namespace StockSpreadsheet
