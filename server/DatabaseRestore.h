#pragma once
// The user's own databases brought back from the document store: "peoplebase.db" (customers,
// objects, contractors) and "cashbase.db" (the cash book) replace the program's files of the same
// name. The copy from the server is checked first (a sound SQLite file that holds the database's
// main table); it then goes into the local file through the backup API while the program's own
// connection is closed, and the connection opens again (bringing an older file up to date). When the
// file does not open afterwards, the local database as it was is put back.

#include "storage/Catalogue.h"

#include <QDateTime>
#include <QString>

class TModuleSQL;

namespace DatabaseRestore {

// The database a stored file restores, by its name; false for every other file.
bool databaseOf(const QString &name, Db *db);

// The time of the local copy's last change (its write-ahead log included); invalid when it is missing.
QDateTime localTime(const TModuleSQL &module, Db db);
// The question before a newer local copy is replaced by an older one from the server.
bool localIsNewer(const TModuleSQL &module, Db db, const QString &datefile);
QString newerQuestion(const QString &name);

// Puts the downloaded file into the database's place. Empty on success, else the Russian reason;
// the local database then stays as it was.
QString restore(TModuleSQL &module, Db db, const QString &downloaded);

} // namespace DatabaseRestore
