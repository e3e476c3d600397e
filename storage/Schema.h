#pragma once
// Versions of the local databases. A file's version is the number of the last upgrade step it has
// been through (Catalogue.h lists the steps of each database), kept in the file's header as
// "PRAGMA user_version": it changes atomically with the step's tables in the same transaction, costs
// no table of its own (a document file carries exactly the document's tables), is read without a
// query on a table that might not exist, and a program that does not know it ignores it. A file made
// before versions existed is at version 0.
//
// Opening a file runs the steps above its version, all in one transaction: a step that fails rolls
// the whole upgrade back and the file stays exactly as it was. A file of a later version (a newer
// program's) is used as it is: steps only ever add.

#include "Catalogue.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace Schema {

// The version recorded in the file (0 when none, or when it cannot be read).
int version(QSqlDatabase db);
// The version the steps lead to.
int latestVersion(const QList<SchemaStep> &steps);
inline int latestVersion(Db db) {
    return latestVersion(schemaSteps(db));
}

// Runs the steps above the file's version. Empty on success, else the reason in Russian (which
// step failed and why); the file is then unchanged. Inside a transaction of the caller the upgrade
// is a savepoint of it.
QString upgrade(QSqlDatabase db, const QList<SchemaStep> &steps);
inline QString upgrade(QSqlDatabase db, Db which) {
    return upgrade(db, schemaSteps(which));
}

// Columns of a table as the steps of the database leave it, in order (empty for an unknown table).
QStringList columns(Db which, const QString &table);
// The same as the steps up to `version` leave it (empty when the table did not exist yet).
QStringList columns(Db which, const QString &table, int version);

// Empties tables in place: their layout and indexes stay, and their AUTOINCREMENT counters start
// again from 1, as for a table just created. This is how a table is reset; a table of the catalogue
// is never dropped, since only its steps can make it again. One transaction (a savepoint inside the
// caller's).
bool clearTables(QSqlDatabase db, const QStringList &tables, QString *error = nullptr);

// Settings of a connection to a shared file: write-ahead log, so that a reader never blocks the
// other program's writer, and a busy timeout, so that two writers wait for each other.
inline constexpr int kBusyTimeoutMs = 5000;
QString shareConnection(QSqlDatabase db);

} // namespace Schema
