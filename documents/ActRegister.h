#pragma once
// The acts in the register of documents: table act of mydoc.db, one row per produced file, found by
// the estimate's register row (iddoc), the output kind (ext "xls"/"pdf") and the act's status (2 КС-2,
// 3 КС-3, 1 the plain act). Producing an act again updates its row, so that an estimate has at most
// one act of each kind per format. The acts are the only writer of the table.

#include "ActKind.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace ActRegister {

struct Entry {
    qlonglong iddoc = 0; // the estimate's row in documents
    ActKind kind = ActKind::Ks2;
    QDate date;
    QDate endDate; // КС-2, КС-3: the expected end of the work; the plain act keeps none
    QString number;
    QString fileName;
    QString ext; // "xls" or "pdf"
    QString allsum;
};

// Inserts the act's row or updates the one found by its key, in one transaction. False with the
// database's reason.
bool enter(QSqlDatabase mydoc, const Entry &entry, QString *error = nullptr);

} // namespace ActRegister
