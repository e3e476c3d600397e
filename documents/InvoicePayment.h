#pragma once
// The payment QR code of an invoice: the payee's bank details, the amount and the purpose as the
// string of ГОСТ Р 56042-2014 ("ST00012|Name=…|PersonalAcc=…|…"), which Russian banking apps read
// to fill a payment, and its picture.
//
// The string is UTF-8 (the "2" of the header). Values lose the "|" that separates them and their line
// breaks, and are cut to the lengths the standard allows. A code is only made for an invoice in
// roubles whose seller has a settlement account of 20 digits and a БИК of 9 digits.

#include "storage/Money.h"

#include <QImage>
#include <QString>

namespace InvoicePayment {

struct Payee {
    QString name;       // the seller's name, without its legal-data line
    QString account;    // settlement account (Расчетный счет)
    QString bank;       // bank name
    QString bik;        // БИК
    QString koraccount; // correspondent account
    QString inn;
    QString kpp;
};

struct Invoice {
    QString number;
    QString date;     // as printed, "01.02.2025"
    Money amount;     // what the customer pays
    int currency = 0; // EditValuta index: only roubles (0) get a code
    bool vat = false;
    int vatRate = 0;
    Money vatAmount;
};

// Why no code can be made (a Russian sentence), or empty when one can. Blank account or БИК is a
// reason too ("не указаны …"): the invoice then simply goes without a code.
QString obstacle(const Payee &payee, const Invoice &invoice);

// The purpose of payment: "Оплата по счету № 12-5 от 01.02.2025" and the VAT statement
// (", в т.ч. НДС 20 % 200,00 руб." or ", НДС не облагается").
QString purpose(const Invoice &invoice);

// The payment string; empty when obstacle() is not empty.
QString paymentString(const Payee &payee, const Invoice &invoice);

// The QR code of a text (UTF-8, error correction level M) as a black and white picture with its
// quiet zone, sideCm centimetres wide when printed (the picture carries its resolution). A null
// image when the text does not fit a code.
QImage qrImage(const QString &text, double sideCm = 3.6);

} // namespace InvoicePayment
