#pragma once
// TInWord: an amount of money in Russian words, as contracts and invoices print it:
// "Двенадцать тысяч триста сорок пять рублей 67 копеек". Whole units are written in words in the
// gender of the currency's unit (одна гривна, один доллар), hundredths in two digits, and both units in
// the form the number asks for (1 рубль, 2 рубля, 5 рублей; 21 копейка, 12 копеек).

#include <QString>

class TInWord {
public:
    // The currencies in the order of the currency choice EditValuta.
    enum Currency { Rub = 0, Dol = 1, Grn = 2, Br = 3, Tenge = 4 };
    enum class Gender { Masculine, Feminine };

    // Largest amount written in words; larger amounts are written in digits.
    static constexpr double kMax = 999999999999.99;

    // value is rounded to hundredths (half away from zero); zero reads "Ноль рублей 00 копеек", a
    // negative amount starts with "Минус". currency: an EditValuta index (out of range = roubles).
    static QString amount(double value, int currency);

    // A whole number from 0 to 999 999 999 999 in words, lower case ("две тысячи сто один").
    static QString number(qint64 n, Gender gender);

    // The form of a noun after n: one (1, 21, 101), few (2–4, 22–24), many (0, 5–20, 25–30, 111).
    static QString plural(qint64 n, const QString &one, const QString &few, const QString &many);
};
