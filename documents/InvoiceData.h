#pragma once
// One payment invoice as a whole: number, date, currency, the parties with the seller's bank details,
// and the services and amounts (InvoiceForm); and the named items it is kept and printed as.

#include "AccountTable.h"
#include "InvoiceForm.h"
#include "customers/Records.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

// A party as the invoice names it: its name and, when ticked, ", " and its legal-data line.
struct InvoiceParty {
    QString name;
    QString legalLine;
    bool withLegal = false;
    QString shown() const;
};

struct Invoice {
    // The seller's details in the invoice's order (requisites columns, also the stored item names),
    // with their captions.
    struct Detail {
        QString key;
        QString caption;
    };
    static const QVector<Detail> &details();
    // The currency names of EditValuta, in its order.
    static const QStringList &currencies();

    QString number;
    QDate date;
    int currency = 0; // EditValuta index
    InvoiceParty seller;
    InvoiceParty buyer;
    Fields sellerDetails; // key of details() -> value
    bool qr = true;       // "QR-код для оплаты"
    InvoiceForm form;

    // The amount in words (TInWord), empty when the amount is not a number.
    QString amountInWords() const;

    // The named items of table Account, in this order: edNumber, DateEdit, edSumma, EditValuta,
    // ComboBoxPodryad, ComboBoxZakaz, ComboBoxNameWork, edSumma1, EditNameWork2, edSumma2,
    // EditNameWork3, edSumma3 (the first three services), CheckBoxNDS, SpinEditNDS, rbtSumma, the eight
    // details, summaword, nds, CheckBoxWork, CheckBoxMat, ToggleSwitch1.
    QVector<AccountTable::Item> items() const;
};
