#include "SheetBuilder.h"

#include <QStringList>

namespace {

QString escaped(const QString &text) {
    return text.toHtmlEscaped();
}

QString cm(double v) {
    return QString::number(v, 'f', 3) + QStringLiteral("cm");
}

const char *kThin = "0.5pt solid #000000";
const char *kThick = "1.5pt solid #000000";

QString cellStyleXml(const QString &name, const CellLook &l) {
    QString xml = QStringLiteral("<style:style style:name=\"%1\" style:family=\"table-cell\" "
                                 "style:parent-style-name=\"Default\"")
                      .arg(name);
    if (l.number == CellLook::Money)
        xml += QStringLiteral(" style:data-style-name=\"Nmoney\"");
    else if (l.number == CellLook::Text)
        xml += QStringLiteral(" style:data-style-name=\"Ntext\"");
    xml += QStringLiteral("><style:table-cell-properties");
    static const char *valign[] = {"top", "middle", "bottom"};
    xml += QStringLiteral(" style:vertical-align=\"%1\"").arg(QLatin1String(valign[l.valign]));
    if (l.wrap)
        xml += QStringLiteral(" fo:wrap-option=\"wrap\"");
    auto side = [&](const char *attr, int flag, bool thick) {
        if (thick)
            xml += QStringLiteral(" fo:%1=\"%2\"").arg(QLatin1String(attr), QLatin1String(kThick));
        else if (l.borders & flag)
            xml += QStringLiteral(" fo:%1=\"%2\"").arg(QLatin1String(attr), QLatin1String(kThin));
    };
    side("border-left", CellLook::LeftSide, false);
    side("border-top", CellLook::TopSide, false);
    side("border-right", CellLook::RightSide, false);
    side("border-bottom", CellLook::BottomSide, l.thickBottom);
    xml += QStringLiteral(" style:text-align-source=\"fix\" style:repeat-content=\"false\"/>");
    static const char *align[] = {"start", "center", "end", "justify"};
    xml += QStringLiteral("<style:paragraph-properties fo:text-align=\"%1\" fo:margin-left=\"0.05cm\"/>")
               .arg(QLatin1String(align[l.align]));
    xml += QStringLiteral("<style:text-properties fo:font-size=\"%1pt\" style:font-size-asian=\"%1pt\" "
                          "style:font-size-complex=\"%1pt\"")
               .arg(l.size);
    if (l.bold)
        xml += QStringLiteral(
            " fo:font-weight=\"bold\" style:font-weight-asian=\"bold\" style:font-weight-complex=\"bold\"");
    if (l.italic)
        xml += QStringLiteral(" fo:font-style=\"italic\" style:font-style-asian=\"italic\" "
                              "style:font-style-complex=\"italic\"");
    xml += QStringLiteral("/></style:style>\n");
    return xml;
}

} // namespace

QString CellLook::key() const {
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8|%9")
        .arg(size)
        .arg(bold)
        .arg(italic)
        .arg(align)
        .arg(valign)
        .arg(wrap)
        .arg(borders)
        .arg(thickBottom)
        .arg(number);
}

SheetBuilder::SheetBuilder(const QString &sheetName, Orientation orientation)
    : m_name(sheetName), m_orientation(orientation) {}

void SheetBuilder::setColumns(const QVector<double> &widthsCm) {
    m_columns = widthsCm;
}

void SheetBuilder::setRowHeight(int row, double cmHeight) {
    m_heights.insert(row, cmHeight);
}

void SheetBuilder::setRepeatedRows(int first, int last) {
    m_repeatFirst = first;
    m_repeatLast = last;
}

void SheetBuilder::setMargins(double left, double top, double right, double bottom) {
    m_left = left;
    m_top = top;
    m_right = right;
    m_bottom = bottom;
}

SheetBuilder::Cell &SheetBuilder::at(int row, int column) {
    while (m_cells.size() < row)
        m_cells.append(QVector<Cell>());
    QVector<Cell> &r = m_cells[row - 1];
    while (r.size() < column)
        r.append(Cell());
    return r[column - 1];
}

void SheetBuilder::cell(int row, int column, const QString &text, const CellLook &look, int span,
                        int rowSpan) {
    Cell &c = at(row, column);
    c.text = text;
    c.look = look;
    c.span = span;
    c.rowSpan = rowSpan;
    c.present = true;
    c.covered = false;
    for (int r = row; r < row + rowSpan; ++r) {
        for (int col = column; col < column + span; ++col) {
            if (r == row && col == column)
                continue;
            Cell &covered = at(r, col);
            covered = Cell();
            covered.look = look;
            covered.covered = true;
            covered.present = true;
        }
    }
}

void SheetBuilder::frame(int firstRow, int firstColumn, int lastRow, int lastColumn, const CellLook &look) {
    for (int r = firstRow; r <= lastRow; ++r) {
        for (int c = firstColumn; c <= lastColumn; ++c) {
            Cell &cell = at(r, c);
            if (!cell.present) {
                cell.look = look;
                cell.present = true;
            }
        }
    }
}

QByteArray SheetBuilder::fods() const {
    // Distinct looks become the cell styles ce1, ce2, …
    QMap<QString, QString> styleOf;
    QString cellStyles;
    for (const QVector<Cell> &row : m_cells) {
        for (const Cell &c : row) {
            if (!c.present || styleOf.contains(c.look.key()))
                continue;
            const QString name = QStringLiteral("ce%1").arg(styleOf.size() + 1);
            styleOf.insert(c.look.key(), name);
            cellStyles += cellStyleXml(name, c.look);
        }
    }
    QString columnStyles;
    for (int i = 0; i < m_columns.size(); ++i)
        columnStyles += QStringLiteral("<style:style style:name=\"co%1\" style:family=\"table-column\">"
                                       "<style:table-column-properties fo:break-before=\"auto\" "
                                       "style:column-width=\"%2\"/></style:style>\n")
                            .arg(i + 1)
                            .arg(cm(m_columns.at(i)));
    QString rowStyles = QStringLiteral("<style:style style:name=\"roAuto\" style:family=\"table-row\">"
                                       "<style:table-row-properties fo:break-before=\"auto\" "
                                       "style:use-optimal-row-height=\"true\"/></style:style>\n");
    for (auto it = m_heights.cbegin(); it != m_heights.cend(); ++it)
        rowStyles +=
            QStringLiteral("<style:style style:name=\"ro%1\" style:family=\"table-row\">"
                           "<style:table-row-properties style:row-height=\"%2\" fo:break-before=\"auto\" "
                           "style:use-optimal-row-height=\"false\"/></style:style>\n")
                .arg(it.key())
                .arg(cm(it.value()));

    const bool landscape = m_orientation == Orientation::Landscape;
    QString xml;
    xml += QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<office:document xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" "
        "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
        "xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" "
        "xmlns:number=\"urn:oasis:names:tc:opendocument:xmlns:datastyle:1.0\" "
        "xmlns:svg=\"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0\" "
        "xmlns:loext=\"urn:org:documentfoundation:names:experimental:office:xmlns:loext:1.0\" "
        "xmlns:calcext=\"urn:org:documentfoundation:names:experimental:calc:xmlns:calcext:1.0\" "
        "office:version=\"1.3\" office:mimetype=\"application/vnd.oasis.opendocument.spreadsheet\">\n");
    xml +=
        QStringLiteral("<office:font-face-decls><style:font-face style:name=\"%1\" svg:font-family=\"'%1'\" "
                       "style:font-family-generic=\"roman\" style:font-pitch=\"variable\"/>"
                       "</office:font-face-decls>\n")
            .arg(m_font);
    xml +=
        QStringLiteral(
            "<office:styles>"
            "<number:number-style style:name=\"Nmoney\" number:language=\"ru\" number:country=\"RU\">"
            "<number:number number:decimal-places=\"2\" number:min-decimal-places=\"2\" "
            "number:min-integer-digits=\"1\" number:grouping=\"true\"/></number:number-style>"
            "<number:text-style style:name=\"Ntext\"><number:text-content/></number:text-style>"
            "<style:default-style style:family=\"table-cell\"><style:text-properties style:font-name=\"%1\" "
            "fo:font-size=\"10pt\" fo:language=\"ru\" fo:country=\"RU\"/></style:default-style>"
            "<style:style style:name=\"Default\" style:family=\"table-cell\"><style:text-properties "
            "style:font-name=\"%1\" fo:language=\"ru\" fo:country=\"RU\"/></style:style>"
            "</office:styles>\n")
            .arg(m_font);
    xml += QStringLiteral("<office:automatic-styles>\n");
    xml += columnStyles + rowStyles + cellStyles;
    xml += QStringLiteral(
        "<style:style style:name=\"ta1\" style:family=\"table\" style:master-page-name=\"Main\">"
        "<style:table-properties table:display=\"true\" style:writing-mode=\"lr-tb\"/>"
        "</style:style>\n");
    xml += QStringLiteral("<style:page-layout style:name=\"pm1\"><style:page-layout-properties "
                          "fo:page-width=\"%1\" fo:page-height=\"%2\" style:print-orientation=\"%3\" "
                          "fo:margin-left=\"%4\" fo:margin-top=\"%5\" fo:margin-right=\"%6\" "
                          "fo:margin-bottom=\"%7\" style:scale-to-X=\"1\" style:scale-to-Y=\"0\" "
                          "loext:scale-to-X=\"1\" loext:scale-to-Y=\"0\" style:print-page-order=\"ttb\" "
                          "style:first-page-number=\"continue\" style:print=\"objects charts drawings\"/>"
                          "<style:header-style/><style:footer-style><style:header-footer-properties "
                          "fo:min-height=\"0.5cm\" fo:margin-top=\"0.2cm\"/></style:footer-style>"
                          "</style:page-layout>\n")
               .arg(cm(landscape ? 29.7 : 21.0), cm(landscape ? 21.0 : 29.7),
                    landscape ? QStringLiteral("landscape") : QStringLiteral("portrait"), cm(m_left),
                    cm(m_top), cm(m_right), cm(m_bottom));
    xml += QStringLiteral("</office:automatic-styles>\n");
    xml += QStringLiteral("<office:master-styles><style:master-page style:name=\"Main\" "
                          "style:page-layout-name=\"pm1\"><style:header style:display=\"false\"/>"
                          "<style:footer><style:region-right><text:p><text:span>Страница "
                          "<text:page-number>1</text:page-number> из <text:page-count>1</text:page-count>"
                          "</text:span></text:p></style:region-right></style:footer></style:master-page>"
                          "</office:master-styles>\n");
    xml += QStringLiteral(
               "<office:body><office:spreadsheet><table:table table:name=\"%1\" table:style-name=\"ta1\">\n")
               .arg(escaped(m_name));
    for (int i = 0; i < m_columns.size(); ++i)
        xml += QStringLiteral("<table:table-column table:style-name=\"co%1\" "
                              "table:default-cell-style-name=\"Default\"/>\n")
                   .arg(i + 1);
    for (int r = 0; r < m_cells.size(); ++r) {
        const int rowNumber = r + 1;
        if (rowNumber == m_repeatFirst)
            xml += QStringLiteral("<table:table-header-rows>\n");
        const QString rowStyle =
            m_heights.contains(rowNumber) ? QStringLiteral("ro%1").arg(rowNumber) : QStringLiteral("roAuto");
        xml +=
            QStringLiteral("<table:table-row table:style-name=\"%1\"%2>")
                .arg(rowStyle, m_hidden.contains(rowNumber) ? QStringLiteral(" table:visibility=\"collapse\"")
                                                            : QString());
        const QVector<Cell> &row = m_cells.at(r);
        for (const Cell &c : row) {
            if (!c.present) {
                xml += QStringLiteral("<table:table-cell/>");
                continue;
            }
            const QString style = styleOf.value(c.look.key());
            if (c.covered) {
                xml += QStringLiteral("<table:covered-table-cell table:style-name=\"%1\"/>").arg(style);
                continue;
            }
            xml += QStringLiteral("<table:table-cell table:style-name=\"%1\"").arg(style);
            if (c.span > 1)
                xml += QStringLiteral(" table:number-columns-spanned=\"%1\"").arg(c.span);
            if (c.rowSpan > 1)
                xml += QStringLiteral(" table:number-rows-spanned=\"%1\"").arg(c.rowSpan);
            if (c.text.isEmpty()) {
                xml += QStringLiteral("/>");
                continue;
            }
            xml += QStringLiteral(" office:value-type=\"string\" calcext:value-type=\"string\">");
            for (const QString &line : c.text.split(u'\n'))
                xml += QStringLiteral("<text:p>%1</text:p>").arg(escaped(line));
            xml += QStringLiteral("</table:table-cell>");
        }
        if (row.isEmpty())
            xml += QStringLiteral("<table:table-cell/>");
        xml += QStringLiteral("</table:table-row>\n");
        if (rowNumber == m_repeatLast)
            xml += QStringLiteral("</table:table-header-rows>\n");
    }
    xml += QStringLiteral("</table:table></office:spreadsheet></office:body></office:document>\n");
    return xml.toUtf8();
}
