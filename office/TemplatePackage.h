#pragma once
// What a template file holds, checked before the office engine sees it: the engine trusts a file's
// structure, so a zip that unpacks to gigabytes, XML that declares entities to expand, or an old
// Office file whose sector tables point anywhere would make it take gigabytes or minutes.
// Each function returns an empty string for a sound file, else the reason in Russian.

#include <QByteArray>
#include <QString>

namespace TemplatePackage {

// Zip packages (.docx, .xlsx, .odt, .ods): at most this many entries, unpacking to at most this much
// in all (counted while unpacking, whatever the archive's own figures say).
inline constexpr int kMaxEntries = 2000;
inline constexpr qint64 kMaxUnpackedBytes = 200ll * 1024 * 1024;

// Unpacks every entry (without keeping it) and refuses a package past the limits, an entry that does
// not unpack, and XML that declares entities (<!ENTITY).
QString checkZip(const QString &path);

// Old Office compound files (.xls, .doc): the header's fields, the sector tables and the directory
// consistent with the file's size, and the stream the format keeps its content in ("Workbook" or
// "Book" for a sheet, "WordDocument" for a text).
QString checkCompound(const QString &path, bool spreadsheet);

// RTF: groups nested no deeper than a document ever needs.
inline constexpr int kMaxRtfDepth = 500;
QString checkRtf(const QString &path);

} // namespace TemplatePackage
