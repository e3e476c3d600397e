#include "TextValues.h"

#include <QRegularExpression>
#include <cmath>

namespace TextValues {

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

QString sqlName(const QString &shown) { return sqlLiteral(nameToStored(shown)); }

bool isSafeTableName(const QString &name) {
    static const QRegularExpression re(QStringLiteral("^[A-Za-z0-9_]+$"));
    return re.match(name).hasMatch();
}

namespace {

QString withoutBlanks(const QString &text) {
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (!c.isSpace())
            s += c;
    return s;
}

// Reads "123,45" (comma decimal, optional leading minus only when allowed) strictly.
std::optional<double> readDecimal(const QString &text) {
    static const QRegularExpression re(QStringLiteral("^-?(\\d+(,\\d*)?|,\\d+)$"));
    if (!re.match(text).hasMatch())
        return std::nullopt;
    QString dotted = text;
    dotted.replace(QLatin1Char(','), QLatin1Char('.'));
    bool ok = false;
    double v = dotted.toDouble(&ok);
    if (!ok || !std::isfinite(v))
        return std::nullopt;
    return v;
}

} // namespace

std::optional<double> parsePrice(const QString &text) {
    QString s = withoutBlanks(text);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    int dash = s.indexOf(QLatin1Char('-'));
    if (dash >= 0)
        s.truncate(dash);
    if (s.isEmpty())
        return std::nullopt;
    return readDecimal(s);
}

std::optional<double> parsePositivePrice(const QString &text) {
    auto v = parsePrice(text);
    if (!v || *v <= 0)
        return std::nullopt;
    return v;
}

std::optional<double> parseAmount(const QString &text) {
    QString s = withoutBlanks(text);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    s.replace(QChar(0x2212), QLatin1Char('-')); // a typographic minus pasted from documents
    bool negative = s.startsWith(QLatin1Char('-'));
    if (negative)
        s.remove(0, 1);
    int dash = s.indexOf(QLatin1Char('-'));
    if (dash >= 0)
        s.truncate(dash);
    if (s.isEmpty())
        return std::nullopt;
    auto v = readDecimal(s);
    if (v && negative)
        *v = -*v;
    return v;
}

bool isBlank(const QString &text) { return text.trimmed().isEmpty(); }

double roundMoney(double value) {
    // Binary fractions such as 0.285 sit just below the half kopeck; nudge by a relative epsilon.
    double scaled = value * 100.0;
    double nudge = std::max(1e-9, std::abs(scaled) * 1e-12);
    double r = std::round(scaled + (scaled >= 0 ? nudge : -nudge));
    double out = r / 100.0;
    return out == 0.0 ? 0.0 : out; // no "-0,00"
}

QString formatMoney(double value) {
    QString s = QString::number(roundMoney(value), 'f', 2);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    return s;
}

QString formatMoneyGrouped(double value) {
    QString plain = formatMoney(value);
    bool negative = plain.startsWith(QLatin1Char('-'));
    if (negative)
        plain.remove(0, 1);
    int comma = plain.indexOf(QLatin1Char(','));
    QString whole = plain.left(comma);
    QString grouped;
    for (int i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0)
            grouped += QLatin1Char(' ');
        grouped += whole[i];
    }
    return (negative ? QStringLiteral("-") : QString()) + grouped + plain.mid(comma);
}

QString formatQuantity(double value) {
    double r = std::round(value * 1000.0) / 1000.0;
    if (r == 0.0)
        r = 0.0;
    QString s = QString::number(r, 'f', 3);
    while (s.endsWith(QLatin1Char('0')))
        s.chop(1);
    if (s.endsWith(QLatin1Char('.')))
        s.chop(1);
    s.replace(QLatin1Char('.'), QLatin1Char(','));
    return s;
}

QString shortDate(const QDate &date) { return date.toString(QStringLiteral("dd.MM.yyyy")); }

QDate parseShortDate(const QString &text) {
    QDate d = QDate::fromString(text.trimmed(), QStringLiteral("dd.MM.yyyy"));
    if (!d.isValid())
        d = QDate::fromString(text.trimmed(), QStringLiteral("d.M.yyyy"));
    return d;
}

QString dateCompareDay(const QDate &date) { return date.toString(QStringLiteral("yyyyMMdd")); }

QString dateCompareSeconds(const QDateTime &dateTime) {
    return dateTime.toString(QStringLiteral("yyyyMMddHHmmss"));
}

QString dateCompareSeconds(const QDate &date) { return dateCompareDay(date) + QStringLiteral("000000"); }

QString monthText(const QDate &date) { return QString::number(date.month()); }

QString yearText(const QDate &date) { return QString::number(date.year()); }

} // namespace TextValues
