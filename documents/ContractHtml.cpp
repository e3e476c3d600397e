#include "ContractHtml.h"

#include <QHash>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <memory>

namespace ContractHtml {

namespace {

using Re = QRegularExpression;

const Re &tagPattern() {
    static const Re re(QStringLiteral("<([A-Za-z][A-Za-z0-9]*)(\\s[^>]*)?>"));
    return re;
}

// Rewrites every opening tag by f(name, attributes) -> the new tag; the text between tags is kept.
template <typename F> QString eachTag(const QString &html, F f) {
    QString out;
    out.reserve(html.size() + html.size() / 4);
    qsizetype at = 0;
    auto it = tagPattern().globalMatch(html);
    while (it.hasNext()) {
        const auto m = it.next();
        out += QStringView(html).mid(at, m.capturedStart() - at);
        out += f(m.captured(1), m.captured(2));
        at = m.capturedEnd();
    }
    out += QStringView(html).mid(at);
    return out;
}

QString attribute(const QString &attributes, const QString &name) {
    const Re re(QStringLiteral("\\b%1=\"([^\"]*)\"").arg(name), Re::CaseInsensitiveOption);
    const auto m = re.match(attributes);
    return m.hasMatch() ? m.captured(1) : QString();
}

QString withoutAttribute(QString attributes, const QString &name) {
    return attributes.remove(Re(QStringLiteral("\\s*\\b%1=\"[^\"]*\"").arg(name), Re::CaseInsensitiveOption));
}

// The declarations of a style as (property, value) in their order.
QList<QPair<QString, QString>> declarations(const QString &style) {
    QList<QPair<QString, QString>> list;
    for (const QString &d : style.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype colon = d.indexOf(u':');
        if (colon <= 0)
            continue;
        const QString property = d.left(colon).trimmed().toLower();
        const QString value = d.mid(colon + 1).trimmed();
        if (!property.isEmpty())
            list.append({property, value});
    }
    return list;
}

QString joined(const QList<QPair<QString, QString>> &list) {
    QStringList parts;
    for (const auto &p : list)
        parts << p.first + QStringLiteral(": ") + p.second;
    return parts.join(QStringLiteral("; "));
}

bool isParagraph(const QString &tag) {
    static const QStringList names{QStringLiteral("p"),  QStringLiteral("h1"), QStringLiteral("h2"),
                                   QStringLiteral("h3"), QStringLiteral("h4"), QStringLiteral("h5"),
                                   QStringLiteral("h6"), QStringLiteral("li"), QStringLiteral("pre")};
    return names.contains(tag);
}

} // namespace

QString lengthsInPixels(const QString &text) {
    static const Re re(QStringLiteral("(-?\\d+(?:\\.\\d+)?)(cm|mm|in)\\b"));
    QString out;
    qsizetype at = 0;
    auto it = re.globalMatch(text);
    while (it.hasNext()) {
        const auto m = it.next();
        const double v = m.captured(1).toDouble();
        const QString unit = m.captured(2);
        const double px = unit == QLatin1String("cm")   ? v * 96 / 2.54
                          : unit == QLatin1String("mm") ? v * 96 / 25.4
                                                        : v * 96;
        out += QStringView(text).mid(at, m.capturedStart() - at);
        out += QString::number(qRound(px)) + QStringLiteral("px");
        at = m.capturedEnd();
    }
    out += QStringView(text).mid(at);
    return out;
}

QString forEditor(const QString &engineHtml) {
    QString html = engineHtml;
    // The classes of the style sheet: the editor applies a class's font over the fonts of the text
    // inside, so the looks are written on each paragraph instead, before its own style.
    QHash<QString, QString> rules;
    static const Re styleBlock(QStringLiteral("<style[^>]*>(.*?)</style>"),
                               Re::DotMatchesEverythingOption | Re::CaseInsensitiveOption);
    static const Re rule(QStringLiteral("([^{}]+)\\{([^}]*)\\}"));
    const auto block = styleBlock.match(html);
    if (block.hasMatch()) {
        auto it = rule.globalMatch(block.captured(1));
        while (it.hasNext()) {
            const auto m = it.next();
            const QString body = m.captured(2).trimmed().replace(u'"', u'\'');
            for (const QString &selector : m.captured(1).split(u',', Qt::SkipEmptyParts)) {
                const QString s = selector.trimmed().toLower();
                if (!s.startsWith(u'@'))
                    rules[s] += body + u';';
            }
        }
        html.remove(block.capturedStart(), block.capturedLength());
    }

    html = eachTag(html, [&rules](const QString &name, QString attributes) {
        const QString tag = name.toLower();
        if (isParagraph(tag)) {
            // A paragraph starts with no space above unless it says so (the engine's own reading).
            QString style = QStringLiteral("margin-top: 0px; ") + rules.value(tag);
            const QString cls = attribute(attributes, QStringLiteral("class")).toLower();
            if (!cls.isEmpty())
                style += rules.value(tag + u'.' + cls);
            if (!attribute(attributes, QStringLiteral("align")).isEmpty()) {
                auto list = declarations(style);
                list.removeIf([](const auto &p) { return p.first == QLatin1String("text-align"); });
                style = joined(list);
            }
            style += u';' + attribute(attributes, QStringLiteral("style"));
            attributes = withoutAttribute(withoutAttribute(attributes, QStringLiteral("class")),
                                          QStringLiteral("style"));
            attributes += QStringLiteral(" style=\"%1\"").arg(style);
        } else if (tag == QLatin1String("font") &&
                   attribute(attributes, QStringLiteral("style")).contains(QLatin1String("font-size"))) {
            attributes = withoutAttribute(attributes, QStringLiteral("size")); // the style has the exact size
        }
        return u'<' + name + lengthsInPixels(attributes) + u'>';
    });

    // A paragraph of line breaks only is one empty line for the engine (the editor drops a paragraph
    // with nothing in it unless it is marked as empty); the break that ends a paragraph adds no line
    // there either.
    static const Re emptyParagraph(
        QStringLiteral("<p([^>]*)style=\"([^\"]*)\"([^>]*)>(?:\\s|<br\\s*/?>)+</p>"),
        Re::CaseInsensitiveOption);
    html.replace(emptyParagraph, QStringLiteral("<p\\1style=\"-qt-paragraph-type:empty; \\2\"\\3><br/></p>"));
    static const Re closingBreak(QStringLiteral("([^>\\s]\\s*(?:</[a-z]+>\\s*)*)<br\\s*/?>(\\s*</p>)"),
                                 Re::CaseInsensitiveOption);
    html.replace(closingBreak, QStringLiteral("\\1\\2"));
    // The line ends the engine writes before a paragraph's end are layout of the file, not text.
    static const Re closingSpace(QStringLiteral("\\s+</p>"), Re::CaseInsensitiveOption);
    html.replace(closingSpace, QStringLiteral("</p>"));
    return html;
}

QString forEngine(const QTextDocument &document) {
    std::unique_ptr<QTextDocument> copy(document.clone());
    // The engine keeps a paragraph of its own after the pasted text: an empty last one is not sent.
    if (copy->blockCount() > 1 && copy->lastBlock().text().isEmpty() &&
        !QTextCursor(copy->lastBlock()).currentTable()) {
        QTextCursor c(copy->lastBlock());
        c.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor);
        c.removeSelectedText();
    }
    QString html = copy->toHtml();
    static const Re styleBlock(QStringLiteral("<style[^>]*>.*?</style>"),
                               Re::DotMatchesEverythingOption | Re::CaseInsensitiveOption);
    html.remove(styleBlock);

    html = eachTag(html, [](const QString &name, QString attributes) {
        const QString tag = name.toLower();
        if (tag == QLatin1String("body"))
            return QStringLiteral("<body>"); // the engine's own defaults for what the text does not say
        if (attribute(attributes, QStringLiteral("bgcolor")) == QLatin1String("transparent"))
            attributes = withoutAttribute(attributes, QStringLiteral("bgcolor"));
        const QString style = attribute(attributes, QStringLiteral("style"));
        if (style.isEmpty() && !isParagraph(tag))
            return u'<' + name + attributes + u'>';
        auto list = declarations(style);
        // Properties of the editor's own, and transparent backgrounds, mean nothing to the engine.
        list.removeIf([](const auto &p) {
            return p.first.startsWith(u'-') ||
                   (p.first == QLatin1String("background-color") && p.second == QLatin1String("transparent"));
        });
        QHash<QString, QString> byName;
        for (const auto &p : list)
            byName.insert(p.first, p.second);
        QList<QPair<QString, QString>> out;
        for (const auto &p : list) {
            const QString &prop = p.first;
            QString value = p.second;
            // A cell's border: width, style and colour of each side as one declaration.
            static const Re side(QStringLiteral("^border-(top|right|bottom|left)(-color|-style|-width)?$"));
            const auto m = side.match(prop);
            if (m.hasMatch()) {
                if (!m.captured(2).isEmpty())
                    continue;
                const QString s = QStringLiteral("border-") + m.captured(1);
                const QString width = byName.value(s + QStringLiteral("-width"), value);
                out.append(
                    {s, QStringLiteral("%1 %2 %3")
                            .arg(width, byName.value(s + QStringLiteral("-style"), QStringLiteral("solid")),
                                 byName.value(s + QStringLiteral("-color"), QStringLiteral("#000000")))});
                continue;
            }
            // Lengths without a unit are pixels.
            static const Re bare(QStringLiteral("^-?\\d+(\\.\\d+)?$"));
            if ((prop.startsWith(QLatin1String("padding")) || prop.startsWith(QLatin1String("margin"))) &&
                bare.match(value).hasMatch())
                value += QStringLiteral("px");
            out.append({prop, value});
        }
        // A paragraph says its alignment: the engine's paragraph taking the text may have another.
        if (isParagraph(tag) && attribute(attributes, QStringLiteral("align")).isEmpty() &&
            !byName.contains(QStringLiteral("text-align")))
            out.append({QStringLiteral("text-align"), QStringLiteral("left")});
        // The engine reads a cell's vertical alignment from its attribute.
        if ((tag == QLatin1String("td") || tag == QLatin1String("th")) &&
            byName.contains(QStringLiteral("vertical-align")) &&
            attribute(attributes, QStringLiteral("valign")).isEmpty())
            attributes +=
                QStringLiteral(" valign=\"%1\"").arg(byName.value(QStringLiteral("vertical-align")));
        attributes = withoutAttribute(attributes, QStringLiteral("style"));
        if (!out.isEmpty())
            attributes += QStringLiteral(" style=\"%1\"").arg(joined(out));
        return u'<' + name + attributes + u'>';
    });

    // Runs of blanks: the editor keeps them as typed, the engine would fold them into one.
    QString result;
    result.reserve(html.size());
    bool inTag = false;
    for (qsizetype i = 0; i < html.size(); ++i) {
        const QChar c = html.at(i);
        if (c == u'<')
            inTag = true;
        else if (c == u'>')
            inTag = false;
        if (!inTag && c == u' ' && i + 1 < html.size() && html.at(i + 1) == u' ') {
            result += QStringLiteral("&nbsp;");
            continue;
        }
        result += c;
    }
    return result;
}

} // namespace ContractHtml
