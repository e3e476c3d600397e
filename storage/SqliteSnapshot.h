#pragma once
// Crash-safe copies of SQLite databases: a document file is never written in place. The source is
// copied page by page with SQLite's backup API into a temporary file beside the target, checked,
// flushed to disk and renamed over the target, so the target is always either the old or the new
// version.

#include <QSqlDatabase>
#include <QString>

namespace SqliteSnapshot {

// Copies the open database `source` to `targetPath`. Returns an empty string on success, else a
// Russian message naming the file; the target is then untouched.
QString saveTo(QSqlDatabase source, const QString &targetPath);

// Copies the database file `sourcePath` (opened read-only on its own connection) to `targetPath`.
QString copyFile(const QString &sourcePath, const QString &targetPath);

// Opens `path` read-only with defensive settings and runs quick_check. Empty string when the file
// is a sound SQLite database, else the reason.
QString check(const QString &path);

} // namespace SqliteSnapshot
