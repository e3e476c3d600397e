#pragma once
// The invoice kept inside the estimate document: table Account (name, value, note) of the working
// database, which the document file carries. The invoice owns it; only this file writes it.
// - Named items (note empty): what the invoice's template receives, in the invoice's order, rewritten
//   whole before each export and when the invoice is bound to the estimate.
// - Switch states (ToggleSwitch1, CheckBoxWork, CheckBoxMat) are named items too, written on each
//   change.
// - Service rows: name and price of each service, note "Row1", "Row2", … in their order.

#include "InvoiceForm.h"

#include <QSqlDatabase>
#include <QString>
#include <QVector>
#include <optional>

namespace AccountTable {

struct Item {
    QString name;
    QString value;
    bool operator==(const Item &o) const { return name == o.name && value == o.value; }
};

// The named items, in the order they were written.
QVector<Item> items(QSqlDatabase doc);
// The value of a named item; nullopt when the table has no such row.
std::optional<QString> value(QSqlDatabase doc, const QString &name);
// The service rows in their order (by the number after "Row").
QVector<InvoiceService> services(QSqlDatabase doc);

// A named item: its row is updated, or inserted when there is none.
bool setValue(QSqlDatabase doc, const QString &name, const QString &value, QString *error = nullptr);
// The service rows replaced by these, in one transaction.
bool writeServices(QSqlDatabase doc, const QVector<InvoiceService> &services, QString *error = nullptr);
// The whole table rebuilt: emptied, then every item and every service row, in one transaction.
bool rebuild(QSqlDatabase doc, const QVector<Item> &items, const QVector<InvoiceService> &services,
             QString *error = nullptr);

} // namespace AccountTable
