#pragma once
// The list of recent documents: table LastDoc of the people database, one record per file (its full
// path), at most ten, the newest last.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

namespace RecentDocuments {

constexpr int kMaxEntries = 10;

// Puts `path` at the newest end: its old record goes, and when ten records are kept the oldest goes
// too. False with the reason on failure.
bool touch(QSqlDatabase people, const QString &path, QString *error = nullptr);

// The paths, newest first (the order of the menu MLastDoc).
QStringList newestFirst(QSqlDatabase people);

} // namespace RecentDocuments
