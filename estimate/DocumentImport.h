#pragma once
// A private copy of a document file becomes a new working database. The copy is read on a
// restricted connection (storage/UntrustedSqlite.h) under one time budget: SQLite's own check, the
// layout (DocumentCheck), the sums written at save (DocumentChecksum) and the length of every cell;
// then a working database is made by the program's own upgrade steps and the copy's rows are copied
// into it (OldFormat::rebuild). The copy is only read (a journal beside it is played back into it).

#include <QString>
#include <QStringList>

namespace DocumentImport {

// The processor time one document may take to be checked and read, however it is made (an estimate
// of 100 000 rows takes about half a second).
inline constexpr int kBudgetMs = 5000;

// Reads the document copy at `source` into a new database at `target` (which must not exist yet).
// Empty string on success, else the reason in Russian (the target is then removed). *warnings gets
// what the user must know about a document that did open: tables whose content is not what was
// saved, cells that were cut.
// *tooLarge (may be null) is set when the document is refused for its size (too many records, a cell
// past what is read), not for what it is.
QString run(const QString &source, const QString &target, QStringList *warnings, bool *tooLarge = nullptr);

} // namespace DocumentImport
