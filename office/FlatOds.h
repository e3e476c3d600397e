#pragma once
// Writing flat OpenDocument spreadsheets (one .fods XML file): the namespaces and the document's opening,
// shared by every sheet the program writes itself (materials lists, stock, the cash book).

#include <QString>
#include <QXmlStreamWriter>

namespace FlatOds {

inline const QString kOffice = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:office:1.0");
inline const QString kStyle = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:style:1.0");
inline const QString kTable = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:table:1.0");
inline const QString kText = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:text:1.0");
inline const QString kFo = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0");
inline const QString kSvg = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0");
inline const QString kNumber = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:datastyle:1.0");

// The XML declaration, every namespace above and the open element office:document of a spreadsheet.
inline void startSpreadsheet(QXmlStreamWriter &x) {
    x.writeStartDocument();
    x.writeNamespace(kOffice, QStringLiteral("office"));
    x.writeNamespace(kStyle, QStringLiteral("style"));
    x.writeNamespace(kTable, QStringLiteral("table"));
    x.writeNamespace(kText, QStringLiteral("text"));
    x.writeNamespace(kFo, QStringLiteral("fo"));
    x.writeNamespace(kSvg, QStringLiteral("svg"));
    x.writeNamespace(kNumber, QStringLiteral("number"));
    x.writeStartElement(kOffice, QStringLiteral("document"));
    x.writeAttribute(kOffice, QStringLiteral("version"), QStringLiteral("1.2"));
    x.writeAttribute(kOffice, QStringLiteral("mimetype"),
                     QStringLiteral("application/vnd.oasis.opendocument.spreadsheet"));
}

} // namespace FlatOds
