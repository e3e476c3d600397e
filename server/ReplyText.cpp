#include "ReplyText.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace ReplyText {

namespace {
// Valid UTF-8 or nothing.
bool decode(const QByteArray &body, QString *out) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    *out = decoder.decode(body);
    return !decoder.hasError();
}
} // namespace

QString version(const QByteArray &body) {
    QString s;
    if (body.size() > 256 || !decode(body, &s))
        return {};
    s = s.trimmed();
    static const QRegularExpression re(QStringLiteral("^[0-9A-Za-z._+\\- ]{1,32}$"));
    return re.match(s).hasMatch() ? s : QString();
}

QString stamp(const QByteArray &body) {
    QString s;
    if (body.size() > 512 || !decode(body, &s))
        return {};
    s = s.trimmed();
    if (s.isEmpty() || s.size() > 64)
        return {};
    for (QChar c : s)
        if (!c.isPrint() || c == QLatin1Char('<') || c == QLatin1Char('>'))
            return {};
    return s;
}

QString text(const QByteArray &body) {
    QString s;
    if (!decode(body, &s))
        return {};
    if (s.startsWith(QChar(0xFEFF)))
        s.remove(0, 1);
    for (QChar c : s)
        if (c.unicode() < 0x20 && c != QLatin1Char('\t') && c != QLatin1Char('\n') && c != QLatin1Char('\r'))
            return {};
    const QString head = s.left(200).trimmed().toLower();
    if (head.startsWith(QLatin1String("<!doctype")) || head.startsWith(QLatin1String("<html")))
        return {};
    return s.trimmed().isEmpty() ? QString() : s;
}

} // namespace ReplyText
