#include "InWord.h"

#include <QStringList>
#include <cstdlib>

namespace {

struct CurrencyWords {
    TInWord::Gender gender;
    const char *one, *few, *many;          // whole units
    const char *subOne, *subFew, *subMany; // hundredths
};

const CurrencyWords kCurrencies[] = {
    {TInWord::Gender::Masculine, "рубль", "рубля", "рублей", "копейка", "копейки", "копеек"},
    {TInWord::Gender::Masculine, "доллар", "доллара", "долларов", "цент", "цента", "центов"},
    {TInWord::Gender::Feminine, "гривна", "гривны", "гривен", "копейка", "копейки", "копеек"},
    {TInWord::Gender::Masculine, "белорусский рубль", "белорусских рубля", "белорусских рублей", "копейка",
     "копейки", "копеек"},
    {TInWord::Gender::Masculine, "тенге", "тенге", "тенге", "тиын", "тиына", "тиынов"},
};

const char *const kUnitsMasculine[] = {"",     "один",  "два",  "три",    "четыре",
                                       "пять", "шесть", "семь", "восемь", "девять"};
const char *const kTeens[] = {"десять",     "одиннадцать", "двенадцать", "тринадцать",   "четырнадцать",
                              "пятнадцать", "шестнадцать", "семнадцать", "восемнадцать", "девятнадцать"};
const char *const kTens[] = {"",          "",           "двадцать",  "тридцать",    "сорок",
                             "пятьдесят", "шестьдесят", "семьдесят", "восемьдесят", "девяносто"};
const char *const kHundreds[] = {"",        "сто",      "двести",  "триста",    "четыреста",
                                 "пятьсот", "шестьсот", "семьсот", "восемьсот", "девятьсот"};

// 1..999 in words.
QStringList triple(int n, TInWord::Gender gender) {
    QStringList words;
    if (n >= 100)
        words << QString::fromUtf8(kHundreds[n / 100]);
    const int rest = n % 100;
    if (rest >= 10 && rest < 20) {
        words << QString::fromUtf8(kTeens[rest - 10]);
        return words;
    }
    if (rest >= 20)
        words << QString::fromUtf8(kTens[rest / 10]);
    const int unit = rest % 10;
    if (unit == 1 && gender == TInWord::Gender::Feminine)
        words << QStringLiteral("одна");
    else if (unit == 2 && gender == TInWord::Gender::Feminine)
        words << QStringLiteral("две");
    else if (unit > 0)
        words << QString::fromUtf8(kUnitsMasculine[unit]);
    return words;
}

QString capitalised(const QString &s) {
    return s.isEmpty() ? s : s.left(1).toUpper() + s.mid(1);
}

} // namespace

QString TInWord::plural(qint64 n, const QString &one, const QString &few, const QString &many) {
    n = std::llabs(n);
    const qint64 lastTwo = n % 100;
    const qint64 last = n % 10;
    if (lastTwo >= 11 && lastTwo <= 14)
        return many;
    if (last == 1)
        return one;
    if (last >= 2 && last <= 4)
        return few;
    return many;
}

QString TInWord::number(qint64 n, Gender gender) {
    if (n == 0)
        return QStringLiteral("ноль");
    struct Group {
        qint64 size;
        Gender gender;
        const char *one, *few, *many;
    };
    static const Group groups[] = {
        {1000000000LL, Gender::Masculine, "миллиард", "миллиарда", "миллиардов"},
        {1000000LL, Gender::Masculine, "миллион", "миллиона", "миллионов"},
        {1000LL, Gender::Feminine, "тысяча", "тысячи", "тысяч"},
    };
    QStringList words;
    qint64 rest = n;
    for (const Group &g : groups) {
        const int count = static_cast<int>(rest / g.size);
        rest %= g.size;
        if (count == 0)
            continue;
        words << triple(count, g.gender);
        words << plural(count, QString::fromUtf8(g.one), QString::fromUtf8(g.few), QString::fromUtf8(g.many));
    }
    if (rest > 0)
        words << triple(static_cast<int>(rest), gender);
    return words.join(u' ');
}

QString TInWord::amount(Money value, int currency) {
    const CurrencyWords &c = kCurrencies[currency >= 0 && currency < 5 ? currency : 0];
    const qint64 total = value.isNegative() ? -value.kopecks() : value.kopecks();
    const qint64 whole = total / 100;
    const int cents = static_cast<int>(total % 100);
    const bool negative = value.isNegative();
    const QString wholeText = number(whole, c.gender);
    QString text =
        wholeText + u' ' +
        plural(whole, QString::fromUtf8(c.one), QString::fromUtf8(c.few), QString::fromUtf8(c.many)) + u' ' +
        QStringLiteral("%1").arg(cents, 2, 10, QLatin1Char('0')) + u' ' +
        plural(cents, QString::fromUtf8(c.subOne), QString::fromUtf8(c.subFew), QString::fromUtf8(c.subMany));
    if (negative)
        return QStringLiteral("Минус ") + text;
    return capitalised(text);
}
