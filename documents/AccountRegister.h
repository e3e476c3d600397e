#pragma once
// The invoices made from the estimates: table account of mydoc.db, one row per estimate and output
// kind ("xls" or "pdf"). The invoice owns the table; only this file writes it. Making the same invoice
// again in the same kind updates its row (date, number, label, file, amount), so the register lists
// each file once.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace AccountRegister {

struct Entry {
    QString iddoc;    // the estimate's row in documents
    QDate date;       // the invoice's date
    QString number;   // as typed
    QString fileName; // full path of the produced file
    QString ext;      // "xls" or "pdf"
    QString allsum;   // the invoice's amount, "0,00"
};

// The register row of the estimate open in the working database, from its link table mydoc; empty
// when the estimate is not (or only as a draft) in the register.
QString estimateId(QSqlDatabase document);

// Inserts or updates the row of (iddoc, ext). False with the reason on failure.
bool record(QSqlDatabase mydoc, const Entry &entry, QString *error = nullptr);

// The label the register shows: "№ " + number.
QString label(const QString &number);

} // namespace AccountRegister
