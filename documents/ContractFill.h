#pragma once
// What fills a contract template: the placeholders a template may hold, with the explanations the
// contract window lists, and their values from the estimate, the contractor and the customer, in the
// order the filling runs: dates; contractor; customer; object and works; total; contractor requisites;
// advance and remainder. A placeholder whose data is missing is left out of the list, so that it stays
// in the text for the user to see.

#include "customers/Records.h"
#include "office/WordTemplate.h"

#include <QDate>
#include <QString>
#include <QVector>

namespace ContractFill {

// Whose data a placeholder holds: the window lists all, the contractor's or the customer's.
enum class Party { Estimate, Contractor, Customer };

struct Placeholder {
    QString text;        // "[заказчик]"
    QString explanation; // "заказчик"
    Party party;
};

// Every placeholder, in the order the window lists them.
const QVector<Placeholder> &placeholders();

// "Января" … "Декабря" for 1..12; empty otherwise.
QString monthGenitive(int month);

// The estimate and the parties a contract is made of.
struct Data {
    QDate date;        // the estimate's date
    QDate endDate;     // the package's expected end of works; invalid outside the package
    int currency = 0;  // EditValuta index
    QString total;     // the grand total as shown ("274317,84")
    QString advance;   // the advance ("96500")
    QString remainder; // total − advance ("177817,84")
    QString object;
    QString works; // the name of the works
    ContractorData contractor;
    CustomerData customer;
};

// The total's advance and remainder at the percentage, by the contract's rule.
void setAmounts(Data *data, int percent);

// Placeholder → value, in the filling order; placeholders without data are not in the list.
WordTemplate::Replacements replacements(const Data &data);

} // namespace ContractFill
