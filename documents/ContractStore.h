#pragma once
// The contracts made from estimates, in table contract of mydoc.db (this module is its one writer):
// one row per estimate and output kind ("doc" for a word-processor file, "pdf"); making the contract
// again in the same kind overwrites the file and updates the row.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace ContractStore {

inline const QString kDoc = QStringLiteral("doc");
inline const QString kPdf = QStringLiteral("pdf");

struct Entry {
    QString iddoc;    // the estimate's row in documents
    QDate date;       // the contract's date
    QDate endDate;    // the expected end of the works; invalid: none
    QString number;   // as the user typed it
    QString fileName; // full path of the file
    QString ext;      // kDoc or kPdf
    QString avans;    // the advance
    QString allsum;   // the estimate's total
};

// The label of the register's side grid: "№ " + number.
QString label(const QString &number);

// Inserts the entry, or updates the row of the same estimate and kind. db: mydoc.db, a connection of
// the calling thread. False with the reason in *error.
bool registerFile(QSqlDatabase db, const Entry &entry, QString *error);

// The register row of the estimate open in the working database (its table mydoc): the id when it is
// entered as a document, empty for a draft or an estimate never saved.
QString estimateId(QSqlDatabase document);

} // namespace ContractStore
