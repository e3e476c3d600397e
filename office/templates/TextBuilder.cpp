#include "TextBuilder.h"

namespace {

QString cm(double v) {
    return QString::number(v, 'f', 3) + QStringLiteral("cm");
}

QString paraKey(const TextBuilder::Para &p) {
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(int(p.align))
        .arg(p.size)
        .arg(p.bold)
        .arg(p.firstIndentCm)
        .arg(p.spaceBeforeCm)
        .arg(p.spaceAfterCm);
}

// "a **b** c" -> text with the bold parts in spans of the style "Bold".
QString inlineXml(const QString &text) {
    QString xml;
    const QStringList parts = text.split(QStringLiteral("**"));
    for (int i = 0; i < parts.size(); ++i) {
        const QString part = parts.at(i).toHtmlEscaped();
        if (part.isEmpty())
            continue;
        xml += (i % 2 == 1) ? QStringLiteral("<text:span text:style-name=\"Bold\">%1</text:span>").arg(part)
                            : part;
    }
    return xml;
}

} // namespace

TextBuilder::Para TextBuilder::body() {
    Para p;
    p.firstIndentCm = 1.0;
    return p;
}

TextBuilder::Para TextBuilder::title() {
    Para p;
    p.align = Align::Center;
    p.bold = true;
    p.size = 12;
    p.spaceBeforeCm = 0.2;
    p.spaceAfterCm = 0.15;
    return p;
}

QString TextBuilder::styleFor(const Para &look) const {
    const QString key = paraKey(look);
    int index = m_paraKeys.indexOf(key);
    if (index < 0) {
        m_paraKeys << key;
        index = m_paraKeys.size() - 1;
    }
    return QStringLiteral("P%1").arg(index + 1);
}

QString TextBuilder::paragraphXml(const QString &text, const Para &look) const {
    return QStringLiteral("<text:p text:style-name=\"%1\">%2</text:p>\n")
        .arg(styleFor(look), inlineXml(text));
}

void TextBuilder::paragraph(const QString &text, const Para &look) {
    m_body += paragraphXml(text, look);
}

void TextBuilder::table(const QVector<QStringList> &rows, const QVector<double> &widthsCm, bool ruled,
                        double size, const QVector<Align> &aligns) {
    const int n = ++m_tables;
    double total = 0;
    for (double w : widthsCm)
        total += w;
    m_tableStyles +=
        QStringLiteral("<style:style style:name=\"Tbl%1\" style:family=\"table\"><style:table-properties "
                       "style:width=\"%2\" table:align=\"left\"/></style:style>\n")
            .arg(n)
            .arg(cm(total));
    for (int c = 0; c < widthsCm.size(); ++c)
        m_tableStyles +=
            QStringLiteral("<style:style style:name=\"Tbl%1.C%2\" style:family=\"table-column\">"
                           "<style:table-column-properties style:column-width=\"%3\"/></style:style>\n")
                .arg(n)
                .arg(c + 1)
                .arg(cm(widthsCm.at(c)));
    m_tableStyles +=
        QStringLiteral("<style:style style:name=\"Tbl%1.Cell\" style:family=\"table-cell\">"
                       "<style:table-cell-properties fo:padding=\"0.1cm\" fo:border=\"%2\"/></style:style>\n")
            .arg(n)
            .arg(ruled ? QStringLiteral("0.5pt solid #000000") : QStringLiteral("none"));
    Para cellLook;
    cellLook.align = Align::Left;
    cellLook.size = size;
    cellLook.spaceAfterCm = 0;
    QString xml =
        QStringLiteral("<table:table table:name=\"Таблица%1\" table:style-name=\"Tbl%1\">\n").arg(n);
    for (int c = 0; c < widthsCm.size(); ++c)
        xml += QStringLiteral("<table:table-column table:style-name=\"Tbl%1.C%2\"/>").arg(n).arg(c + 1);
    for (const QStringList &row : rows) {
        xml += QStringLiteral("<table:table-row>");
        for (int c = 0; c < row.size(); ++c) {
            const QString &cellText = row.at(c);
            Para look = cellLook;
            look.align = c < aligns.size() ? aligns.at(c) : Align::Left;
            xml += QStringLiteral(
                       "<table:table-cell table:style-name=\"Tbl%1.Cell\" office:value-type=\"string\">")
                       .arg(n);
            for (const QString &line : cellText.split(u'\n'))
                xml += paragraphXml(line, look);
            xml += QStringLiteral("</table:table-cell>");
        }
        xml += QStringLiteral("</table:table-row>\n");
    }
    xml += QStringLiteral("</table:table>\n");
    m_body += xml;
}

QByteArray TextBuilder::fodt() const {
    // Paragraph styles are known only after the body and header are laid out.
    Para headerLook;
    headerLook.align = Align::Right;
    headerLook.size = 9;
    headerLook.spaceAfterCm = 0;
    const QString header = m_header.isEmpty() ? QString() : paragraphXml(m_header, headerLook);
    Para footerLook = headerLook;
    footerLook.align = Align::Center;
    const QString footer = QStringLiteral("<text:p text:style-name=\"%1\">Страница <text:page-number "
                                          "text:select-page=\"current\">1</text:page-number> из "
                                          "<text:page-count>1</text:page-count></text:p>")
                               .arg(styleFor(footerLook));
    QString paraStyles;
    static const char *align[] = {"start", "center", "end", "justify"};
    for (int i = 0; i < m_paraKeys.size(); ++i) {
        const QStringList k = m_paraKeys.at(i).split(u'|');
        paraStyles +=
            QStringLiteral("<style:style style:name=\"P%1\" style:family=\"paragraph\" "
                           "style:parent-style-name=\"Standard\"><style:paragraph-properties "
                           "fo:text-align=\"%2\" fo:text-indent=\"%3\" fo:margin-top=\"%4\" "
                           "fo:margin-bottom=\"%5\"/><style:text-properties fo:font-size=\"%6pt\"%7/>"
                           "</style:style>\n")
                .arg(i + 1)
                .arg(QLatin1String(align[k.at(0).toInt()]))
                .arg(cm(k.at(3).toDouble()), cm(k.at(4).toDouble()), cm(k.at(5).toDouble()))
                .arg(k.at(1))
                .arg(k.at(2) == QLatin1String("1") ? QStringLiteral(" fo:font-weight=\"bold\"") : QString());
    }
    QString xml;
    xml += QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<office:document xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" "
        "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
        "xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" "
        "xmlns:svg=\"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0\" office:version=\"1.3\" "
        "office:mimetype=\"application/vnd.oasis.opendocument.text\">\n");
    xml +=
        QStringLiteral(
            "<office:font-face-decls><style:font-face style:name=\"%1\" svg:font-family=\"'%1'\" "
            "style:font-family-generic=\"roman\" style:font-pitch=\"variable\"/></office:font-face-decls>\n")
            .arg(m_font);
    xml += QStringLiteral(
               "<office:styles><style:default-style style:family=\"paragraph\"><style:text-properties "
               "style:font-name=\"%1\" fo:font-size=\"11pt\" fo:language=\"ru\" fo:country=\"RU\" "
               "fo:hyphenate=\"false\"/></style:default-style>"
               "<style:style style:name=\"Standard\" style:family=\"paragraph\"><style:paragraph-properties "
               "fo:line-height=\"115%\"/></style:style></office:styles>\n")
               .arg(m_font);
    xml += QStringLiteral("<office:automatic-styles>\n") + paraStyles + m_tableStyles +
           QStringLiteral(
               "<style:style style:name=\"Bold\" style:family=\"text\"><style:text-properties "
               "fo:font-weight=\"bold\"/></style:style>\n"
               "<style:page-layout style:name=\"pm1\"><style:page-layout-properties fo:page-width=\"21cm\" "
               "fo:page-height=\"29.7cm\" style:print-orientation=\"portrait\" fo:margin-top=\"1.5cm\" "
               "fo:margin-bottom=\"1.5cm\" fo:margin-left=\"2.5cm\" fo:margin-right=\"1.5cm\"/>"
               "<style:header-style><style:header-footer-properties fo:min-height=\"0.6cm\" "
               "fo:margin-bottom=\"0.3cm\"/></style:header-style><style:footer-style>"
               "<style:header-footer-properties fo:min-height=\"0.6cm\" fo:margin-top=\"0.3cm\"/>"
               "</style:footer-style></style:page-layout>\n"
               "</office:automatic-styles>\n");
    xml += QStringLiteral("<office:master-styles><style:master-page style:name=\"Standard\" "
                          "style:page-layout-name=\"pm1\">");
    if (!header.isEmpty())
        xml += QStringLiteral("<style:header>") + header + QStringLiteral("</style:header>");
    xml += QStringLiteral("<style:footer>") + footer + QStringLiteral("</style:footer>");
    xml += QStringLiteral("</style:master-page></office:master-styles>\n");
    xml += QStringLiteral("<office:body><office:text>\n") + m_body +
           QStringLiteral("</office:text></office:body></office:document>\n");
    return xml.toUtf8();
}
