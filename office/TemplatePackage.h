#pragma once
// Zip packages (".docx", ".xlsx", ".odt", ".ods") looked into before the engine opens them: a hostile
// package (an archive bomb, entries named "../" or with absolute paths, XML that declares entities)
// is refused within a fraction of a second, before the engine spends minutes and gigabytes on it.
// Also the reading of one entry of a package (the page setup of a ".docx").

#include <QByteArray>
#include <QString>

namespace TemplatePackage {

// Limits of a template package. Real templates stay far below them.
constexpr int kMaxEntries = 2000;
constexpr qint64 kMaxInflatedBytes = 256ll * 1024 * 1024; // all entries together, unpacked
constexpr qint64 kMaxRatio = 200; // unpacked ÷ packed of one entry larger than 1 MB unpacked

// Empty when the zip package at path can be handed to the engine; else the Russian reason, naming
// the file. Every entry is unpacked (and thrown away) to check what it really holds, not what the
// archive says it holds.
QString check(const QString &path);
// The same reason without the file's name (a package the user chose as a spreadsheet, not a template):
// "архив документа пуст.", ...
QString problem(const QString &path);

// The entry `name` of the package, unpacked; false when the package or the entry cannot be read or
// the entry is larger than maxBytes.
bool readEntry(const QString &path, const QString &name, QByteArray *data,
               qint64 maxBytes = 64ll * 1024 * 1024);

} // namespace TemplatePackage
