#pragma once
// The document file on disk: a copy of the working database Sp/smeta.db. Opening never touches the
// working database until the chosen file has been copied, checked and read into a new working
// database (DocumentImport); saving never writes the document file in place (see
// storage/SqliteSnapshot.h), and the file carries the sums of its content (DocumentChecksum).

#include <QString>

class TModuleSQL;

namespace DocumentFile {

// "sim" documents are written and read; "sme" (version 6) documents are read only.
inline const QString kExtension = QStringLiteral("sim");
inline const QString kOldExtension = QStringLiteral("sme");
// Documents larger than this are refused (an estimate of 100 000 rows takes about 30 MB).
inline constexpr qint64 kMaxBytes = 256ll * 1024 * 1024;

// Replaces the working database by the document at `path`. The file's bytes are copied into a private
// file beside the working database (a journal of an interrupted write is played back first, into the
// document when its folder is writable, else into the copy; a log (-wal) beside it is never applied),
// checked and read into a new working database; only then is the working connection closed, stale
// -journal/-wal/-shm files of the working database removed, and the new one renamed over it. Empty
// string on success, else a Russian message naming the file; the working database is then as it was.
// *warning (may be null) gets what the user must know about a document that opened: a journal played
// back or a log left alone, content that is not what was saved, cells that were cut.
QString open(TModuleSQL &module, const QString &path, QString *warning = nullptr);

// Writes the working database (already holding the grid) to `path`, the file sealed with the sums of
// its content. Empty string on success, else a Russian message naming the file; the file on disk is
// then the previous version.
QString save(TModuleSQL &module, const QString &path);

// Empty when `path` names an existing regular file; else the Russian message saying what is there
// (not found, a folder, a named pipe, a device, a link to nowhere).
QString notAFile(const QString &path);

// An existing file the user has no right to write (saving over it asks first).
bool isReadOnly(const QString &path);

// The folders of the data folder that the document commands use.
QString documentsFolder(const QString &dataFolder); // Sm
QString draftsFolder(const QString &dataFolder);    // Sm/Drafts
QString autosaveFolder(const QString &dataFolder);  // Sm/Autosave

// True when `path` lies in `folder` (directly or below it).
bool isInside(const QString &path, const QString &folder);

// The message for a file that cannot be read as a document.
QString notADocument(const QString &path, const QString &reason);

} // namespace DocumentFile
