#pragma once
// A checksum of what a table holds. SQLite keeps no checksums of its pages: a byte changed inside a
// record passes its own checks and reads back as another name or number. The sum covers the
// table's column names and every value with its type, row by row in rowid order, so the same content
// gives the same sum in any file.

#include <QByteArray>
#include <QString>

struct sqlite3;

namespace ContentChecksum {

// The SHA-256 of table `table` of schema `schema` ("main", or an attached file), as hex text. Empty
// with *error when the table cannot be read.
QByteArray ofTable(sqlite3 *db, const QString &schema, const QString &table, QString *error);

} // namespace ContentChecksum
