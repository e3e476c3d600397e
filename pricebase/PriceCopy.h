#pragma once
// Copying a whole price list into another ("Копирование расценок"), and filling an empty remote list
// from a local one. A copy keeps each rate's record number and copies the rates' resources with it,
// so the resources stay attached. Like a write of the rate grid, the copy holds only the prices of the
// chosen currency.

#include <QSqlDatabase>
#include <QString>

class RemotePriceList;

namespace PriceCopy {

// The three lists by their tab captions.
enum class List { MyPrice, Price2, Server };
QString caption(List list);
// Rates table of a local list; the remote one is named by the server settings.
QString ratesTable(List list);
QString resourcesTable(List list);

struct Outcome {
    int rates = 0;
    int resources = 0;
};

// Copies list `from` into list `to` in currency `currency` (0..4): a local target's rates table is
// emptied and filled ("INSERT INTO <table> (nameras, edizm, <currency>, edras, rec)"), the remote one
// is created if needed and replaced with the rates in the remote layout; the target's resources table
// becomes a copy of the source's. `remote` is needed (and must be connected) when either side is the
// server. A failed copy changes no local table.
bool copy(QSqlDatabase price, RemotePriceList *remote, List from, List to, int currency, Outcome *outcome,
          QString *error = nullptr);

// Rows of the remote list (0 when it holds none); -1 with *error when it cannot be read.
int remoteRows(RemotePriceList &remote, QString *error = nullptr);

} // namespace PriceCopy
