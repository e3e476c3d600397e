#pragma once
// The warehouse's stock: the rows of table `storage` (listmat.db) that have no write-off date. Each
// is a bought material with its entry date, unit, quantity, price, sum, minimum stock, the estimate it
// came from (`client`), and in shop mode its sale price. Values are text as typed (numbers with a
// decimal comma). The rows with a write-off date are the record of what was taken (see WriteOffs.h).

#include "storage/Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// "Склад": name, unit, quantity, price, sum, minimum; "Магазин": name, unit, quantity, purchase price
// and sale price. Kept in the settings (Param/TypeStore) by its caption.
enum class StockMode { Warehouse, Shop };
QString stockModeCaption(StockMode mode);
StockMode stockModeFromCaption(const QString &caption);

struct StockItem {
    QString id;
    QString date; // data: the day it came into stock, "dd.MM.yyyy"
    QString name; // namemat
    QString unit; // edizm
    QString quantity;
    QString price; // purchase price in shop mode
    QString sum;   // summa
    QString minlimit;
    QString client; // the estimate it was put into stock from
    QString sale;   // sale price (shop mode)
    QString note;
};

// True when the row has a minimum and its quantity (an empty one counts as none) is below it.
bool belowMinimum(const StockItem &item);
// The price the material is sold at: the sale price when it is a positive number, else the price.
QString sellingPrice(const StockItem &item);
// quantity × price when both are numbers, else the sum typed into the row (RowAmount's rule).
std::optional<Money> stockAmount(const StockItem &item);
// (sale − purchase) × quantity; nullopt when one of them is not a number.
std::optional<Money> stockMarkup(const StockItem &item);

namespace StockStore {

// The stock rows in entry order. A row is a stock row when its write-off date is empty.
bool read(QSqlDatabase db, std::vector<StockItem> &out, QString *error = nullptr);
// One stock row by its id (nullopt when it is gone or not a stock row).
std::optional<StockItem> byId(QSqlDatabase db, const QString &id, QString *error = nullptr);
// The first stock row of that name.
std::optional<StockItem> findByName(QSqlDatabase db, const QString &name, QString *error = nullptr);

// The button under the grid: "INSERT INTO storage (data) values(<today>)"; the new id, or empty.
QString addEmpty(QSqlDatabase db, const QDate &today, QString *error = nullptr);
// An estimate material into stock: "INSERT INTO storage (data, namemat, edizm, kolvo, price, summa,
// client)"; the new id, or empty.
QString add(QSqlDatabase db, const StockItem &item, QString *error = nullptr);

// The columns a stock grid edits: namemat, edizm, kolvo, price, summa, minlimit, sale, data, note.
bool isEditableColumn(const QString &column);
// "UPDATE storage SET <column>=<value>[, <more>…] WHERE id=<id>": the column with the others that
// follow it (the sum after a quantity or a price, the shop's date columns).
bool setCells(QSqlDatabase db, const QString &id, const QList<QPair<QString, QString>> &cells,
              QString *error = nullptr);
bool remove(QSqlDatabase db, const QString &id, QString *error = nullptr);

// "Очистить склад": the table emptied, write-offs included.
bool clear(QSqlDatabase db, QString *error = nullptr);
// An import: the stock rows replaced by these, all or nothing; the write-off records stay.
// `mode` decides which columns are written (the shop keeps no sum and no minimum).
bool replaceStock(QSqlDatabase db, const std::vector<StockItem> &items, StockMode mode,
                  QString *error = nullptr);

} // namespace StockStore
