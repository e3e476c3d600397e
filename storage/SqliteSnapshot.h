#pragma once
// Crash-safe copies of SQLite databases: a document file is never written in place. The source is
// copied page by page with SQLite's backup API into a temporary file beside the target, checked with
// quick_check, flushed to disk and renamed over the target, so the target is always either the old
// or the new version. A process killed half-way leaves only a hidden temporary file, which a later
// copy to the same target removes.

#include <QSqlDatabase>
#include <QString>
#include <functional>

struct sqlite3;

namespace SqliteSnapshot {

// Run on the finished copy before it is checked and takes the target's place: what the copy carries
// beside the source's content (a document file, its sums). Empty string on success, else the reason.
using Seal = std::function<QString(sqlite3 *copy)>;

// Copies the open database `source` to `targetPath`. Returns an empty string on success, else a
// Russian message naming the file; the target is then untouched.
QString saveTo(QSqlDatabase source, const QString &targetPath, const Seal &seal = {});

// Copies the database file `sourcePath` (opened read-only on its own connection, so that another
// connection may go on writing to it) to `targetPath`.
QString copyFile(const QString &sourcePath, const QString &targetPath, const Seal &seal = {});

// Opens `path` read-only with defensive settings (trusted_schema=OFF, cell_size_check=ON, the
// defensive flag) and runs quick_check. Empty string when the file is a sound SQLite database, else
// the reason in Russian.
QString check(const QString &path);

// Flushes a file (or a folder's entry list) to disk. False when it could not be opened or flushed.
bool syncPath(const QString &path);

// Renames `from` over `to` and flushes the folder. Empty string on success, else the reason.
QString replaceFile(const QString &from, const QString &to);

// The reason for a failed system call, in Russian (disk full, no rights, read-only disk, ...).
QString errnoText(int error);

// Prefix of the temporary files made beside `targetPath` (hidden: "." + file name + ".").
QString tempPrefix(const QString &targetPath);

} // namespace SqliteSnapshot
