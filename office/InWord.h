#pragma once
// TInWord: an amount of money in Russian words, as contracts and invoices print it:
// "Двенадцать тысяч триста сорок пять рублей 67 копеек". Whole units are written in words in the
// gender of the currency's unit (одна гривна, один доллар), hundredths in two digits, and both units in
// the form the number asks for (1 рубль, 2 рубля, 5 рублей; 21 копейка, 12 копеек).

#include "storage/Money.h"

#include <QString>

class TInWord {
public:
    // The currencies in the order of the currency choice EditValuta.
    enum Currency { Rub = 0, Dol = 1, Grn = 2, Br = 3, Tenge = 4 };
    enum class Gender { Masculine, Feminine };

    // Zero reads "Ноль рублей 00 копеек", a negative amount starts with "Минус". Every amount money can
    // hold (up to 999 999 999 999,99) is written in words. currency: an EditValuta index (out of range =
    // roubles).
    static QString amount(Money value, int currency);

    // A whole number from 0 to 999 999 999 999 in words, lower case ("две тысячи сто один").
    static QString number(qint64 n, Gender gender);

    // The form of a noun after n: one (1, 21, 101), few (2–4, 22–24), many (0, 5–20, 25–30, 111).
    static QString plural(qint64 n, const QString &one, const QString &few, const QString &many);
};
