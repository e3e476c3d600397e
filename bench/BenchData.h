#pragma once
// Data of real size for the benchmarks, made the same way on every run (no randomness): a price list
// of 100,000 rows (sections, subsections, rates with Russian names, prices, crew prices) with the
// resources of every rate, and estimates of 250, 500 and 5,000 rows picked from it, saved as
// document files with their materials. `make_bench_data DIR` lays out such a data folder.

#include "pricebase/PriceRows.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

class TModuleSQL;

namespace BenchData {

constexpr int kListRows = 100000;

// The rows of price list 1: sections of 10 subsections of 98 rates, `rows` rows in all; record numbers
// from 1 in row order. Rates carry a rouble price, the crew coefficient 0,7 and the crew price.
std::vector<RateRow> priceRows(int rows = kListRows);

// Writes price list 1 with the program's own writer, and 1 to 4 resources per rate (materials from a
// pool of a few thousand names, with their norms) into resurs1. False with *error.
bool writePriceList(QSqlDatabase price, const std::vector<RateRow> &rows, QString *error);

// Estimate grid rows (EstimateCol order) of `works` work rows taken from the list's rates, grouped into
// sections of 4 subsections of up to 25 works, closed by the grand total row.
std::vector<QStringList> estimateRows(const std::vector<RateRow> &list, int works);

// A data folder (tree, databases, the price list) with one document file per size in `works`
// ("Sm/смета-<works>.sim"), each with the materials its rates bring. False with *error.
bool makeFolder(const QString &folder, const QList<int> &works, QString *error, int listRows = kListRows);
QString documentPath(const QString &folder, int works);

// Resident memory of this process in megabytes (VmRSS).
double residentMegabytes();

} // namespace BenchData
