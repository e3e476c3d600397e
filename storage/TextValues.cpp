#include "TextValues.h"

#include <QRegularExpression>
#include <algorithm>

namespace TextValues {

QString sqlIdentifier(const QString &name) {
    QString s = name;
    s.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + s + QLatin1Char('"');
}

QString sqlLiteral(const QString &text) {
    if (text.contains(QChar(0)))
        throw SqlTextError("значение содержит символ NUL и не может быть записано");
    QString out;
    out.reserve(text.size() + 2);
    out += QLatin1Char('\'');
    for (QChar c : text) {
        if (c == QLatin1Char('\''))
            out += QLatin1Char('\'');
        out += c;
    }
    out += QLatin1Char('\'');
    return out;
}

QString nameToStored(const QString &shown) {
    QString s = shown;
    s.replace(QLatin1Char('"'), QLatin1Char('`'));
    return s;
}

QString nameFromStored(const QString &stored) {
    QString s = stored;
    s.replace(QLatin1Char('`'), QLatin1Char('"'));
    return s;
}

QString sqlName(const QString &shown) {
    return sqlLiteral(nameToStored(shown));
}

bool isSafeTableName(const QString &name) {
    static const QRegularExpression re(QStringLiteral("^[A-Za-z0-9_]+$"));
    return re.match(name).hasMatch();
}

namespace {

bool isAsciiDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// Reads "123,45" strictly (ASCII digits, one comma, digits on at least one side of it).
NumberReading readDecimal(const QString &text, bool negative) {
    NumberReading out;
    const int comma = text.indexOf(QLatin1Char(','));
    const QString whole = comma < 0 ? text : text.left(comma);
    const QString decimals = comma < 0 ? QString() : text.mid(comma + 1);
    if ((whole.isEmpty() && decimals.isEmpty()) || decimals.contains(QLatin1Char(',')) ||
        !std::all_of(whole.begin(), whole.end(), isAsciiDigit) ||
        !std::all_of(decimals.begin(), decimals.end(), isAsciiDigit)) {
        out.problem = NumberProblem::NotANumber;
        return out;
    }
    // Leading zeros of the whole part and trailing zeros of the decimals carry nothing.
    int first = 0;
    while (first < whole.size() && whole[first] == QLatin1Char('0'))
        ++first;
    int last = decimals.size();
    while (last > 0 && decimals[last - 1] == QLatin1Char('0'))
        --last;
    const QString digits = whole.mid(first) + decimals.left(last);
    if (digits.size() > Decimal::kMaxDigits || last > Decimal::kMaxScale) {
        out.problem = NumberProblem::TooManyDigits;
        return out;
    }
    const qint64 mantissa = digits.isEmpty() ? 0 : digits.toLongLong();
    out.value = Decimal::of(negative ? -mantissa : mantissa, last);
    if (!out.value)
        out.problem = NumberProblem::TooManyDigits;
    return out;
}

} // namespace

NumberReading readNumber(const QString &text, bool signAllowed) {
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (!c.isSpace())
            s += c;
    if (s.isEmpty())
        return {std::nullopt, NumberProblem::Blank};
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    bool negative = false;
    if (signAllowed) {
        s.replace(QChar(0x2212), QLatin1Char('-')); // a typographic minus pasted from documents
        negative = s.startsWith(QLatin1Char('-'));
        if (negative)
            s.remove(0, 1);
    }
    const int dash = s.indexOf(QLatin1Char('-'));
    if (dash >= 0)
        s.truncate(dash);
    if (s.isEmpty())
        return {std::nullopt, NumberProblem::NotANumber};
    return readDecimal(s, negative);
}

std::optional<Decimal> parsePrice(const QString &text) {
    return readNumber(text, false).value;
}

std::optional<Decimal> parsePositivePrice(const QString &text) {
    auto v = parsePrice(text);
    if (!v || v->isZero() || v->isNegative())
        return std::nullopt;
    return v;
}

std::optional<Decimal> parseAmount(const QString &text) {
    return readNumber(text, true).value;
}

bool isBlank(const QString &text) {
    return text.trimmed().isEmpty();
}

QString typedNumber(const QString &text) {
    QString s = text;
    return s.replace(QLatin1Char('.'), QLatin1Char(','));
}

QString formatQuantity(const Decimal &value) {
    return value.text(0, 3);
}

QString formatPrice(const Decimal &value) {
    return value.text(2, Decimal::kMaxScale);
}

QString groupThousands(const QString &number) {
    const bool negative = number.startsWith(QLatin1Char('-'));
    const QString plain = negative ? number.mid(1) : number;
    int comma = plain.indexOf(QLatin1Char(','));
    if (comma < 0)
        comma = plain.size();
    const QString whole = plain.left(comma);
    QString out = negative ? QStringLiteral("-") : QString();
    for (int i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0)
            out += QLatin1Char(' ');
        out += whole[i];
    }
    return out + plain.mid(comma);
}

QString shortDate(const QDate &date) {
    return date.toString(QStringLiteral("dd.MM.yyyy"));
}

QDate parseShortDate(const QString &text) {
    QDate d = QDate::fromString(text.trimmed(), QStringLiteral("dd.MM.yyyy"));
    if (!d.isValid())
        d = QDate::fromString(text.trimmed(), QStringLiteral("d.M.yyyy"));
    return d;
}

QString dateCompareDay(const QDate &date) {
    return date.toString(QStringLiteral("yyyyMMdd"));
}

QString dateCompareSeconds(const QDateTime &dateTime) {
    return dateTime.toString(QStringLiteral("yyyyMMddHHmmss"));
}

QString dateCompareSeconds(const QDate &date) {
    return dateCompareDay(date) + QStringLiteral("000000");
}

QString monthText(const QDate &date) {
    return QString::number(date.month());
}

QString yearText(const QDate &date) {
    return QString::number(date.year());
}

} // namespace TextValues
