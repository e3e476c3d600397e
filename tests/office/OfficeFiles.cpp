#include "OfficeFiles.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace {

constexpr int kMaxRepeat = 2000;

// Text of a text:p element, the reader standing on its start.
QString paragraphText(QXmlStreamReader &xml) {
    QString text;
    int depth = 1;
    while (depth > 0 && !xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            ++depth;
            if (xml.name() == QLatin1String("s"))
                text += QString(qMax(1, xml.attributes().value(QLatin1String("text:c")).toInt()), u' ');
            else if (xml.name() == QLatin1String("tab"))
                text += u'\t';
            else if (xml.name() == QLatin1String("line-break"))
                text += u'\n';
        } else if (xml.isEndElement()) {
            --depth;
        } else if (xml.isCharacters()) {
            text += xml.text();
        }
    }
    return text;
}

FlatCell readCell(QXmlStreamReader &xml, bool covered) {
    FlatCell cell;
    const QXmlStreamAttributes a = xml.attributes();
    cell.covered = covered;
    cell.type = a.value(QLatin1String("office:value-type")).toString();
    cell.value = a.value(QLatin1String("office:value")).toDouble();
    cell.columnSpan = qMax(1, a.value(QLatin1String("table:number-columns-spanned")).toInt());
    cell.rowSpan = qMax(1, a.value(QLatin1String("table:number-rows-spanned")).toInt());
    QStringList paragraphs;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("p"))
            paragraphs << paragraphText(xml);
        else if (xml.isStartElement())
            xml.skipCurrentElement();
        else if (xml.isEndElement())
            break;
    }
    cell.text = paragraphs.join(u'\n');
    return cell;
}

} // namespace

FlatSheet readFlatSheet(const QString &fodsPath) {
    FlatSheet sheet;
    QFile f(fodsPath);
    if (!f.open(QIODevice::ReadOnly))
        return sheet;
    QXmlStreamReader xml(&f);
    bool inTable = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.qualifiedName() == QLatin1String("table:table")) {
            if (inTable)
                break;
            inTable = true;
        } else if (xml.isEndElement() && xml.qualifiedName() == QLatin1String("table:table")) {
            break;
        } else if (inTable && xml.isStartElement() &&
                   xml.qualifiedName() == QLatin1String("table:table-row")) {
            const int rowRepeat = qBound(
                1, xml.attributes().value(QLatin1String("table:number-rows-repeated")).toInt(), kMaxRepeat);
            QVector<FlatCell> row;
            while (!xml.atEnd()) {
                xml.readNext();
                if (xml.isEndElement() && xml.qualifiedName() == QLatin1String("table:table-row"))
                    break;
                if (!xml.isStartElement())
                    continue;
                const bool covered = xml.qualifiedName() == QLatin1String("table:covered-table-cell");
                if (!covered && xml.qualifiedName() != QLatin1String("table:table-cell"))
                    continue;
                const int repeat =
                    qBound(1, xml.attributes().value(QLatin1String("table:number-columns-repeated")).toInt(),
                           kMaxRepeat);
                const FlatCell cell = readCell(xml, covered);
                for (int i = 0; i < repeat; ++i)
                    row << cell;
            }
            for (int i = 0; i < rowRepeat; ++i)
                sheet << row;
        }
    }
    // Trailing empty rows say nothing.
    auto empty = [](const QVector<FlatCell> &row) {
        for (const FlatCell &c : row)
            if (!c.type.isEmpty() || !c.text.isEmpty() || c.columnSpan > 1)
                return false;
        return true;
    };
    while (!sheet.isEmpty() && empty(sheet.last()))
        sheet.removeLast();
    return sheet;
}

TextLook lookOfText(const QString &fodtPath, const QString &text) {
    struct Style {
        QString parent;
        int bold = -1; // -1 not set, 0 no, 1 yes
        int italic = -1;
    };
    QHash<QString, Style> styles;
    TextLook look;
    QFile f(fodtPath);
    if (!f.open(QIODevice::ReadOnly))
        return look;
    QXmlStreamReader xml(&f);
    QString currentStyle;
    QStringList stack; // style names of the open p/h/span elements, innermost last
    auto decide = [&](auto member) {
        for (int i = stack.size() - 1; i >= 0; --i) {
            QString name = stack.at(i);
            for (int guard = 0; !name.isEmpty() && guard < 20; ++guard) {
                const Style s = styles.value(name);
                if (s.*member >= 0)
                    return s.*member == 1;
                name = s.parent;
            }
        }
        return false;
    };
    while (!xml.atEnd() && !look.found) {
        xml.readNext();
        if (xml.isStartElement()) {
            const QString qn = xml.qualifiedName().toString();
            const QXmlStreamAttributes a = xml.attributes();
            if (qn == QLatin1String("style:style")) {
                currentStyle = a.value(QLatin1String("style:name")).toString();
                styles[currentStyle].parent = a.value(QLatin1String("style:parent-style-name")).toString();
            } else if (qn == QLatin1String("style:text-properties") && !currentStyle.isEmpty()) {
                const QString weight = a.value(QLatin1String("fo:font-weight")).toString();
                const QString slant = a.value(QLatin1String("fo:font-style")).toString();
                if (!weight.isEmpty())
                    styles[currentStyle].bold = weight == QLatin1String("bold") ? 1 : 0;
                if (!slant.isEmpty())
                    styles[currentStyle].italic = slant == QLatin1String("italic") ? 1 : 0;
            } else if (qn == QLatin1String("text:p") || qn == QLatin1String("text:h") ||
                       qn == QLatin1String("text:span")) {
                stack << a.value(QLatin1String("text:style-name")).toString();
            }
        } else if (xml.isEndElement()) {
            const QString qn = xml.qualifiedName().toString();
            if (qn == QLatin1String("style:style"))
                currentStyle.clear();
            else if ((qn == QLatin1String("text:p") || qn == QLatin1String("text:h") ||
                      qn == QLatin1String("text:span")) &&
                     !stack.isEmpty())
                stack.removeLast();
        } else if (xml.isCharacters() && !stack.isEmpty() && xml.text().contains(text)) {
            look.found = true;
            look.bold = decide(&Style::bold);
            look.italic = decide(&Style::italic);
        }
    }
    return look;
}

QString pdfText(const QString &pdfPath) {
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdfPath, QStringLiteral("-")});
    if (!p.waitForFinished(30000))
        return {};
    return QString::fromUtf8(p.readAllStandardOutput());
}

int pdfPages(const QString &pdfPath) {
    QProcess p;
    p.start(QStringLiteral("pdfinfo"), {pdfPath});
    if (!p.waitForFinished(30000))
        return 0;
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("Pages:\\s+(\\d+)"))
                                          .match(QString::fromUtf8(p.readAllStandardOutput()));
    return m.hasMatch() ? m.captured(1).toInt() : 0;
}
