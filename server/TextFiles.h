#pragma once
// The texts the server sends (release notes, news) are kept as files of the data folder: written
// whole or not at all, read back with a size limit.

#include <QByteArray>
#include <QString>

namespace TextFiles {

// Writes the bytes into a temporary file beside path and renames it over path; false with *error.
bool writeWhole(const QString &path, const QByteArray &bytes, QString *error);
// The file's text (UTF-8) when it exists and is at most maxBytes long; a null string otherwise.
QString readSmall(const QString &path, qint64 maxBytes = 1 << 20);

} // namespace TextFiles
