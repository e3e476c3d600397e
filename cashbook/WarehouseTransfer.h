#pragma once
// Warehouse rows (table storage of listmat.db) that a cash book of an earlier version carried. A row
// found by its entry date, name, write-off date, customer and object is updated, any other appended,
// all in one transaction, so carrying the same rows twice changes nothing.
//
// The warehouse owns storage; until its own store takes rows from elsewhere this is the one place
// outside it that writes the table, and only for the upgrade of old books (BookUpgrade::Targets).

#include "customers/Records.h"

#include <QSqlDatabase>

namespace WarehouseTransfer {
bool appendOrUpdate(QSqlDatabase warehouse, const QList<Fields> &rows, QString *error);
}
