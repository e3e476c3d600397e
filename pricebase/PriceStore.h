#pragma once
// The local price lists of price.db: reading a list into rate rows with its section index, writing
// the rate grid back, the crew price of price list 1, and the look-up of a rate by name.

#include "RateTable.h"

#include <QSqlDatabase>
#include <QString>
#include <vector>

class QSqlQuery;

struct PriceListData {
    RateTable rows;
    SectionIndex sections;
    bool listOne = false; // price list 1 read from its file
    RecIndex byRec;       // its index by record number, when made with the read
};

namespace PriceStore {

// ReadSqlRAS: "SELECT id, edras, nameras, edizm, <currency>, rec, link, mat[, koef] FROM <table> WHERE 1"
// (koef for price1 only). The crew price `link` is always kept so that a write does not lose it.
bool readList(QSqlDatabase db, const QString &table, int currency, PriceListData &out,
              QString *error = nullptr);

// WriteSqlPrice: in one transaction, drops and recreates the table and inserts every row that holds
// anything (edras, nameras, edizm, the current currency's price, rec, and for price1 koef and link),
// then "VACUUM;". The other currency columns are empty afterwards: a list is kept in one currency at a
// time.
bool writeList(QSqlDatabase db, const QString &table, int currency, const RateTable &rows,
               QString *error = nullptr);

// UpdateSqlPriceBrig: for every rate of price1 with a price in the current currency, an empty koef
// gets the coefficient text and an empty link gets price x coefficient. A price that is not a number
// stops the run there: what was gathered before it is written and *error names the rate and its text.
// *statements gets the number of updates written.
bool updateCrewPrices(QSqlDatabase db, int currency, const QString &koefText, QString *error = nullptr,
                      int *statements = nullptr);

// The first rate whose nameras equals `name` exactly; false when there is none (or on error).
bool findRateByName(QSqlDatabase db, const QString &table, int currency, const QString &name, RateRow &out,
                    QString *error = nullptr);

// The cells of the current row of a query that selects "id, <number>, <name>, <unit>, <price>, rec, link,
// mat[, koef]" in this order, as the local and the remote lists both do under their own column names;
// koef only when withKoef.
RateRow::Cells rowCells(const QSqlQuery &q, bool withKoef);

// Reads every row of such a query as a full read shows it (titles carry no price and no crew price, a
// section title no unit) and builds the section index alongside.
void readRows(QSqlQuery &q, bool withKoef, PriceListData &out);

// The message of a price text that is not a number.
QString badPriceMessage(const QString &number, const QString &name, const QString &priceText);

} // namespace PriceStore
