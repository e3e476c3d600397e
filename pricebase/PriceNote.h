#pragma once
// The free-text note to the price lists: the plain text file Sh/prim.txt of the data folder.

#include <QString>

namespace PriceNote {

// A note is a page of text; a bigger file is not taken for one.
constexpr qint64 kMaxBytes = 1024 * 1024;

QString path(const QString &dataFolder);
// The note's text (empty when the file does not exist yet). UTF-8; a file that is not UTF-8 is read
// as Windows-1251, the encoding of notes written on Windows. False with a Russian *error for a file
// that cannot be read or is too big.
bool read(const QString &dataFolder, QString *text, QString *error = nullptr);
// Writes the text as UTF-8, replacing the file only once the whole text is on disk.
bool write(const QString &dataFolder, const QString &text, QString *error = nullptr);

} // namespace PriceNote
