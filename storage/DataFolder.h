#pragma once
// Where the program keeps its data, and the folder tree inside it.

#include <QString>
#include <QStringList>

namespace DataFolder {

struct Decision {
    QString folder;       // the data folder
    QString documentFile; // the document to open at show time (empty when none)
};

// A first argument naming an existing file means the program was started on a document: the data
// folder is the one stored at the last start (storedFolder; when empty, the current directory).
// Otherwise the data folder is the current directory.
Decision decide(const QStringList &arguments, const QString &storedFolder, const QString &currentDir);

// The sub-folders every data folder has, relative to it.
QStringList subFolders();

// Creates the missing sub-folders and checks that the folder can be written. Returns an empty
// string on success, else a Russian message naming the folder.
QString ensureTree(const QString &folder);

// The folder remembered for starts with a file argument (per-user program settings).
QString storedFolder();
void storeFolder(const QString &folder);

} // namespace DataFolder
