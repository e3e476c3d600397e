#pragma once
// Taking a material from the warehouse into the open estimate, as one action: the quantity is checked
// against the stock inside the warehouse's write lock (another running program may be taking from the
// same row), the material goes into the estimate's materials (a new row, or more of the row of that
// name the estimate has already), the stock row is reduced (or deleted when all of it is taken) and a
// write-off record is added with the customer, the object and the day. Either all of it happens or
// none of it: a failure part-way leaves the stock, the write-offs and the estimate as they were.

#include "Stock.h"
#include "estimate/MaterialsStore.h"
#include "storage/Decimal.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <optional>

namespace StockTaking {

// The quantity typed into "Введите количество": a number above zero. nullopt with a Russian *refusal
// for letters, zero or a negative number.
std::optional<Decimal> parseQuantity(const QString &text, QString *refusal);

struct Request {
    QString stockId;
    Decimal quantity;
    QString customer; // as shown
    QString object;
    QDate date;
};

struct Outcome {
    enum Kind {
        Taken,      // part of the row
        WholeTaken, // the whole row: it is deleted ("Списано")
        Refused, // nothing changed; message says why ("Превышает имеющееся количество", …)
        Failed, // nothing changed; message says what failed
    };
    Kind kind = Failed;
    QString message;
    MaterialsStore::Material material; // the estimate's row that got the material
    bool addedToExisting = false;      // the estimate had the material already: its quantity grew
    QString writeOffId;
    explicit operator bool() const { return kind == Taken || kind == WholeTaken; }
};

inline const QString kAboveStock = QStringLiteral("Превышает имеющееся количество");

// `mat` is listmat.db, `smeta` the working estimate.
Outcome take(QSqlDatabase mat, QSqlDatabase smeta, const Request &request);

} // namespace StockTaking
