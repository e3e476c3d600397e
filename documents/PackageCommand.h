#pragma once
// virn-smeta --package FILE.sim OUTDIR [--pdf] [--date DD.MM.YYYY]: the whole package of a saved estimate
// without a window. The document is read into a private working database (a running program's is not
// touched), entered in the data folder's register first when it is not there yet, and its contract,
// invoice and acts are made with the numbers, formats and options the package window would take, each
// registered under the estimate's row. Standard output gets one line per file made and nothing else;
// messages go to standard error.

#include <QString>
#include <QStringList>

class QTextStream;

namespace PackageCommand {

// Exit codes.
enum Exit {
    Done = 0,       // every document made and registered
    NotStarted = 1, // bad arguments, a file or folder that cannot be used: nothing made
    Incomplete = 2, // some document failed or was not registered (the others were made)
};

// arguments: what follows "--package". dataFolder: the program's data folder (registers, settings,
// templates).
int run(const QStringList &arguments, const QString &dataFolder, QTextStream &out, QTextStream &err);

// The usage line for --help.
QString usage();

} // namespace PackageCommand
