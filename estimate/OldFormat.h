#pragma once
// Documents written by earlier versions. A document file of any version is an SQLite database; the
// earlier layouts differ from today's only in what they lack. The accepted layout is:
//   - a table `smeta` that has at least the column `nameras` (the works of the estimate); every other
//     column of today's `smeta` may be missing;
//   - any of today's other tables (materials, koef, parametrs, shema, Object, Customer, Requisite,
//     RequisiteZak, ks2, Account, financial, cash, mydoc, work, Afiles) may be missing, and a present
//     one may lack columns;
//   - tables and columns that today's layout does not know are kept as they are.
// Version-6 ".sme" files and version-7 ".sim" files are read this way. A document's file holds only
// tables: views and triggers that a file brings along are dropped, so opening a file cannot run
// anything it carries.

#include <QString>
#include <QStringList>

namespace OldFormat {

// Brings the database at `path` (a private copy, opened read-write on its own connection) to today's
// layout, all in one transaction: views and triggers are dropped, the working database's upgrade
// steps above the file's version run (they add the missing tables and columns), and a document
// without coefficient lines gets the default lines. A file whose version says it has been through a
// step but that lacks what the step makes is refused. Empty string on success, else the reason in
// Russian (a file without a `smeta` table is not a document).
QString upgrade(const QString &path);

// Today's columns of a table of the working database, in order (as its upgrade steps leave it).
QStringList currentColumns(const QString &table);

} // namespace OldFormat
