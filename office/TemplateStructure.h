#pragma once
// The structure of the old Office and RTF templates, checked before the office engine sees them: the
// engine trusts a file's structure, so an old Office file whose sector tables point anywhere, or RTF
// nested without end, would keep it busy for minutes. (Zip packages: TemplatePackage.) Each function
// returns an empty string for a sound file, else the reason in Russian.

#include <QString>

namespace TemplateStructure {

// Old Office compound files (.xls, .doc): the header's fields, the sector tables and the directory
// consistent with the file's size, and the stream the format keeps its content in ("Workbook" or
// "Book" for a sheet, "WordDocument" for a text).
QString checkCompound(const QString &path, bool spreadsheet);

// RTF: groups nested no deeper than a document ever needs.
inline constexpr int kMaxRtfDepth = 500;
QString checkRtf(const QString &path);

} // namespace TemplateStructure
