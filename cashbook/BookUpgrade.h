#pragma once
// Books of earlier versions brought to the current layout, on every open of a book. Earlier books held
// the customers (Customer, Object), the warehouse (storage) and the receipts (Cheki, or checks) beside
// an older cash table (id, data, prihod, myzp, material, transport, workzp, prochee, note). The
// upgrade probes the book, then:
//   1. carries the customers and objects into the people database and the warehouse rows into
//      listmat.db (each append-or-update by key, one transaction per database, so a second run after
//      an interruption adds nothing twice);
//   2. in one transaction of the book: the records into a cash table of the current layout (old
//      columns mapped, month, year and date_compare made from the date, keys kept), the old receipt
//      lines into checks linked to their records, the customers' and objects' tables (the book's
//      register) completed with the columns they lack, the tables that moved away dropped;
//   3. compacts the file.
// A failure in step 2 leaves the book exactly as it was. A current book is left untouched.

#include "customers/Records.h"

#include <QList>
#include <QString>
#include <functional>

class TModuleSQL;

namespace BookUpgrade {

// Where the tables that left the book go.
struct Targets {
    // Customers (columns of customer) and objects (columns of Object), names as shown.
    std::function<bool(const QList<Fields> &customers, const QList<Fields> &objects, QString *error)>
        customers;
    // Rows of the warehouse table storage (its columns, without id).
    std::function<bool(const QList<Fields> &rows, QString *error)> warehouse;
};
// The owners in the program's databases: the customers register, and the warehouse rows appended or
// updated in listmat.db by WarehouseTransfer.
Targets programTargets(TModuleSQL &module);

struct Result {
    bool ok = true;
    bool upgraded = false; // the book was of an earlier layout and has been brought up to date
    QString error;         // Russian, naming the file
    int records = 0, receiptLines = 0, customers = 0, objects = 0, warehouseRows = 0;
};

// Probes and upgrades the book file (a missing file is left alone). The book must not be open on
// the program's own connection (it is reopened afterwards).
Result run(const QString &bookPath, const Targets &targets);

// Refuses a file that is not a readable SQLite database, with a Russian message naming it.
QString checkReadable(const QString &bookPath);

} // namespace BookUpgrade
