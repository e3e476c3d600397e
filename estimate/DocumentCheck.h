#pragma once
// Checks of a document file from elsewhere before any of it is used. A document is data only: the
// tables of the document format with their columns. A file that brings anything that runs when it is
// read or written (a view, a trigger, a virtual table, a generated column) is refused, as is one that
// claims a version whose tables it does not hold. Cells are bounded: a longer one is cut on open.
//
// Every function reads the document attached as `schema` on a restricted connection
// (storage/UntrustedSqlite.h) and reports in Russian.

#include <QList>
#include <QString>
#include <QStringList>

struct sqlite3;

namespace DocumentCheck {

// The most characters one cell keeps; a longer one is cut on open.
inline constexpr int kMaxCellChars = 10000;

// Tables a document may hold: today's, the file's sums, the ones earlier versions made and the
// program drops, and SQLite's own.
bool isDocumentTable(const QString &name);

// The layout: only document tables, no views, triggers, virtual tables or generated columns, and the
// tables and columns of the version the file claims. Empty when sound, else the reason.
QString layout(sqlite3 *db, const QString &schema);

// The most records a table of a document may hold (an estimate of 100 000 rows takes about 200 MB in
// the program).
inline constexpr qint64 kMaxRows = 100000;

// Empty when every document table holds at most kMaxRows records, else the reason naming the table.
QString rowCounts(sqlite3 *db, const QString &schema);

struct LongCell {
    QString table;
    QString column;
    qint64 row = 0;    // 1 for the first record of the table
    qint64 length = 0; // characters (bytes for a blob)
};

// Cells longer than kMaxCellChars in the document tables the file holds. False with *error when one
// is longer than the connection reads at all (the error names its table, column and row) or the
// reading failed.
bool longCells(sqlite3 *db, const QString &schema, QList<LongCell> *cells, QString *error);

// The warning for cut cells: which rows, which columns, how long they were.
QString cutWarning(const QList<LongCell> &cells);

// "строка сметы 5", "материал 3", "таблица ks2, запись 2".
QString rowName(const QString &table, qint64 row);

} // namespace DocumentCheck
