#pragma once
// Warehouse rows (table storage of listmat.db) that came from elsewhere: the cash books of earlier
// versions carried the warehouse, and their upgrade hands its rows here. A row found by its entry date,
// name, write-off date, customer and object is updated, any other appended, all in one transaction, so
// carrying the same rows twice changes nothing.

#include "customers/Records.h"

#include <QSqlDatabase>

namespace WarehouseTransfer {
bool appendOrUpdate(QSqlDatabase warehouse, const QList<Fields> &rows, QString *error);
}
