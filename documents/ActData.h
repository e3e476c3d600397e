#pragma once
// The rules of the act data window TFormKS2 that are not widgets: what choosing a customer or a
// contractor brings into the act, the reporting period's check, the contract value in words.

#include "customers/Records.h"

#include <QDate>
#include <QString>

namespace ActData {

struct Contacts {
    QString address;
    QString phone;
    QString third; // the customer's fax, the contractor's e-mail
};

// ReadBaseZakaz: the customer's address, phones and fax as the customer register keeps them.
Contacts customerContacts(const CustomerData &customer);
// ReadBaseContractor: the contractor's address (its legal details), phones and e-mail.
Contacts contractorContacts(const ContractorData &contractor);

// "Начало периода не должно превышать окончание" when the period starts after it ends; empty otherwise.
QString periodProblem(const QDate &from, const QDate &to);

// The contract value in words in the estimate's currency ("Сто двадцать рублей 00 копеек"); empty when
// the value is blank or not an amount.
QString valueInWords(const QString &value, int currency);

} // namespace ActData
