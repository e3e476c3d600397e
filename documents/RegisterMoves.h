#pragma once
// Moving an estimate between the register's lists with its file: "Переместить в черновик" (into the
// drafts folder) and "Переместить черновик в документы" (to a path the user chose).
//
// Nothing is lost on the way. The file is copied beside its target under a hidden name and the copy's
// link (mydoc) is pointed at the new register row; then, under one transaction of the register, the
// row moves to the other list, the copy is renamed to its target, and the transaction is kept. Only
// then is the old file deleted. A failure at any step takes back what was done and leaves the old
// file and its row as they were; a crash between steps leaves at worst both files.

#include "RegisterRows.h"
#include "customers/CustomerFolder.h"
#include "estimate/Registration.h"

#include <QString>

class TModuleSQL;

namespace RegisterMoves {

struct Outcome {
    bool ok = false;
    QString error;   // why nothing was moved, in Russian
    QString warning; // moved, but the old file could not be deleted
    QString newPath;
    qlonglong newId = 0;
};

// The file a document takes in the drafts folder: its name made fit for a file name, ".sim", with
// " (2)", " (3)" … when another file holds the name. The file's own place when it lies there already.
QString draftTarget(const QString &draftsFolder, const RegisterRow &row);

// The folder proposed for a draft that becomes a document: the documents folder, with the customer's
// folder when the options ask for one (created on disk).
QString documentFolder(TModuleSQL &module, const RegisterRow &row, const CustomerFolder::Options &options);

// Moves the row `id` of list `from` into the other list and its file to `target`. An existing other
// file at `target` is never overwritten; a file that another running copy of the program holds open
// is not moved.
Outcome move(TModuleSQL &module, Registration::List from, qlonglong id, const QString &target);

} // namespace RegisterMoves
