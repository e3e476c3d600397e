#pragma once
// Small plain-text files the user keeps in the data folder (the price lists' note, the materials
// filter words): read with a size limit, UTF-8 or, for files written on Windows, Windows-1251; written
// as UTF-8 through a temporary file that replaces the old one only when complete.

#include <QString>

namespace TextFile {

// The text of the file; empty (and true) when it does not exist. False with a Russian *error when it
// cannot be read or is bigger than maxBytes.
bool read(const QString &path, qint64 maxBytes, QString *text, QString *error = nullptr);
// The folder is made when missing.
bool write(const QString &path, const QString &text, QString *error = nullptr);

} // namespace TextFile
