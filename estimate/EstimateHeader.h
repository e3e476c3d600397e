#pragma once
// The estimate's header as data: who the estimate is for (customer, object), who makes it (contractor),
// its date, number, title and name of the works. It is stored with the document as named parameters
// (table parametrs) and as copies of the customer, object and requisites rows (tables Customer, Object,
// Requisite, RequisiteZak of the working database), so that a document keeps its parties even when it is
// opened where the register does not know them.

#include "customers/Records.h"

#include <QDate>
#include <QList>
#include <QMap>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

class CustomerRegister;
class ContractorRegister;

namespace EstimateHeader {

// The document titles offered; the first is the default.
const QStringList &titles();
inline const QString defaultTitle = QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ");

struct Values {
    QString customer;   // as shown
    QString object;     // as shown
    QString contractor; // short name as shown
    QDate date;
    int number = 1;     // NumericSmeta
    QString numberWord; // NumericSmetaWord
    QString nameWork;   // EditNameWork
    QString title = defaultTitle;
    int currency = 0; // EditValuta index

    bool operator==(const Values &o) const;
};

// The named parameters of the document.
QList<QPair<QString, QString>> toParameters(const Values &values);
// Values from stored parameters; a parameter the document does not have keeps its value from defaults.
Values fromParameters(const QMap<QString, QString> &params, const Values &defaults);

// Rewrites the copies in the working database from the registers, in one transaction: the customer's
// row and its legal details, the chosen object's row, the contractor's legal details. A party that is not
// in the register leaves its copy table empty.
bool writeCopies(QSqlDatabase doc, CustomerRegister &customers, ContractorRegister &contractors,
                 const Values &values, QString *error = nullptr);
// The customer as the document's copy holds it (found is false when the copy is empty).
CustomerData customerCopy(QSqlDatabase doc);
// The contractor's legal details as the document's copy holds them.
Fields contractorRequisitesCopy(QSqlDatabase doc);
// The object's row as the document's copy holds it.
Fields objectCopy(QSqlDatabase doc);

// Text number from a date when numbering by date: "DDMMYYYY" or, with yearFirst, "YYYYMMDD".
QString dateNumber(const QDate &date, bool yearFirst);

} // namespace EstimateHeader
