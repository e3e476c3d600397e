#pragma once
// The sums of a document's content, written into the document file at every save (and into every
// autosave copy) and checked on open: SQLite notices a damaged page structure but not a changed byte
// inside a record, which would read back as another name or amount. The sums live in a table of their
// own in the file, checksum (one row per document table: its name and sum), which earlier versions of
// the program leave alone. It belongs to the file, not to the working database: it is written into
// the copy that becomes the file, and not read back into the working database on open.

#include <QString>
#include <QStringList>

struct sqlite3;

namespace DocumentChecksum {

inline const QString kTable = QStringLiteral("checksum");

// Writes the sums of every document table of `copy` (a document file being written) into its table
// checksum, made when missing. Empty string on success, else the reason.
QString write(sqlite3 *copy);

// Writes the sum of one table of a sealed document file again, after the program itself changed that
// table in the file (the register's link): the other sums stay, so damage found before stays found.
// A file without sums is left without. Empty string on success, else the reason.
QString rewrite(sqlite3 *file, const QString &table);

// Compares the sums a document carries (schema "main" or an attached file) with its content.
// *damaged gets the tables whose content is not what was saved (a table that has gone counts too);
// a document without sums has none. False with *error when the content could not be read.
bool verify(sqlite3 *db, const QString &schema, QStringList *damaged, QString *error);

// What a document table holds, in words, for the user ("строки сметы").
QString describe(const QString &table);

} // namespace DocumentChecksum
