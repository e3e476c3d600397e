#pragma once
// Documents written by earlier versions. A document file of any version is an SQLite database; the
// earlier layouts differ from today's only in what they lack. The accepted layout is:
//   - a table `smeta` that has at least the column `nameras` (the works of the estimate); every other
//     column of today's `smeta` may be missing;
//   - any of today's other tables (materials, koef, parametrs, shema, Object, Customer, Requisite,
//     RequisiteZak, ks2, Account, financial, cash, mydoc, work, Afiles) may be missing, and a present
//     one may lack columns; the table cashstorage of earlier versions is left behind.
// Version-6 ".sme" files and version-7 ".sim" files are read this way. Only a file's rows are taken:
// the working database is made new by the program's own upgrade steps and the rows are copied into
// it, so nothing of the file's own table definitions (defaults, checks, collations, indexes) is ever
// used.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace OldFormat {

// Copies the rows of the document attached as `schema` on `db` (a working database just made at
// today's version, all tables empty) into db's tables, in one transaction: for each table of today's
// layout that the document has, the columns both have, in record order; cells longer than
// `maxCellChars` are cut to it (0: the cells are copied as they are, none being longer, as a check of
// the lengths found). A document without coefficient lines gets the default lines. Empty string on
// success, else the reason in Russian.
QString rebuild(QSqlDatabase db, const QString &schema, int maxCellChars);

// Today's columns of a table of the working database, in order (as its upgrade steps leave it).
QStringList currentColumns(const QString &table);

} // namespace OldFormat
