#pragma once
// Reading the register of documents (mydoc.db): the rows of the documents and drafts pages, their
// totals and years, one row by its id, and the contract, invoice and act files made from an estimate.
// Names are kept here as shown (backticks turned back into double quotes).

#include "estimate/Registration.h"
#include "storage/Money.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

struct RegisterRow {
    qlonglong id = 0;
    QString data;    // the estimate's date, short date text
    QString dataend; // finish date; empty in work
    QString name;
    QString fileName;
    QString client;
    QString object;
    QString summat;
    QString sumrab;
    QString allsum;
    QString month;
    QString year;
    bool finished = false; // status > 0; NULL (or 0 from elsewhere) is in work
};

// One produced file of an estimate (contract, invoice or act).
struct OutputFileRow {
    QString id;
    QString data;
    QString name;
    QString ext;
    QString fileName;
};

// The sums of the shown rows. Amounts that cannot be read are left out and counted.
struct RegisterTotals {
    MoneyResult materials = Money();
    MoneyResult works = Money();
    MoneyResult all = Money();
    int unreadable = 0; // rows with at least one amount left out
};

namespace RegisterRows {

// The rows a register statement selects (RegisterFilter), in the order the database gives them.
bool read(QSqlDatabase mydoc, const QString &statement, std::vector<RegisterRow> *rows, QString *error);
// One row by its id ("SELECT * FROM documents WHERE id="); false when it is not there (*error says).
bool readOne(QSqlDatabase mydoc, Registration::List list, qlonglong id, RegisterRow *row, QString *error);
// The years that occur in a list, ascending.
QStringList years(QSqlDatabase mydoc, Registration::List list);
RegisterTotals totals(const std::vector<RegisterRow> &rows);

// The files made from the estimate `iddoc`: table is "contract", "account" or "act".
bool readOutputs(QSqlDatabase mydoc, const QString &table, qlonglong iddoc, std::vector<OutputFileRow> *rows,
                 QString *error);

} // namespace RegisterRows
