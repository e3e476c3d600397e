#pragma once
// The document file on disk: a copy of the working database Sp/smeta.db. Opening never touches the
// working database until the chosen file has been copied, checked and brought to today's layout;
// saving never writes the document file in place (see storage/SqliteSnapshot.h).

#include <QString>

class TModuleSQL;

namespace DocumentFile {

// "sim" documents are written and read; "sme" (version 6) documents are read only.
inline const QString kExtension = QStringLiteral("sim");
inline const QString kOldExtension = QStringLiteral("sme");

// Replaces the working database by the document at `path`. The file is read with defensive settings
// and quick_check, copied into a private file beside the working database, upgraded (OldFormat) and
// checked again; only then is the working connection closed, stale -journal/-wal/-shm files of the
// working database removed, and the copy renamed over it. Empty string on success, else a Russian
// message naming the file; the working database is then as it was.
QString open(TModuleSQL &module, const QString &path);

// Writes the working database (already holding the grid) to `path`. Empty string on success, else a
// Russian message naming the file; the file on disk is then the previous version.
QString save(TModuleSQL &module, const QString &path);

// The folders of the data folder that the document commands use.
QString documentsFolder(const QString &dataFolder); // Sm
QString draftsFolder(const QString &dataFolder);    // Sm/Drafts
QString autosaveFolder(const QString &dataFolder);  // Sm/Autosave

// True when `path` lies in `folder` (directly or below it).
bool isInside(const QString &path, const QString &folder);

// The message for a file that cannot be read as a document.
QString notADocument(const QString &path, const QString &reason);

} // namespace DocumentFile
