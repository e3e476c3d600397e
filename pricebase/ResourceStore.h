#pragma once
// The one writer of the resources tables resurs1, resurs2 and resurs_s: the resources editor of a rate,
// a list material attached to a rate, the copying of a list and the clearing of a table. Values are text
// as typed. (Reading the resources of a rate for the estimate is RateResources'.)

#include "PriceRows.h"

#include <QSqlDatabase>
#include <QString>
#include <vector>

namespace ResourceStore {

struct Row {
    QString id;
    QString ras; // the rate's rec
    QString name;
    QString edizm;
    QString cena;
    QString norma;
    QString val;
};

// Why a resource cannot be given to the chosen row of the rate grid, or empty when it can: the grid
// shows no rate list, the row is a subsection or a section title, or it is empty (no name or no record
// number). `row` is null when no row is chosen.
QString refusal(bool showsRates, const RateRow *row);

// The resources of rate `rec` in table order.
bool readRate(QSqlDatabase price, const QString &table, const QString &rec, std::vector<Row> &out,
              QString *error = nullptr);

// "INSERT INTO <table> (ras) values(<rec>);": an empty resource of the rate; its id, or empty on failure.
QString add(QSqlDatabase price, const QString &table, const QString &rec, QString *error = nullptr);
// "UPDATE <table> SET name=, edizm=, cena=, norma= WHERE id=".
bool update(QSqlDatabase price, const QString &table, const Row &row, QString *error = nullptr);
// "DELETE FROM <table> WHERE id=".
bool remove(QSqlDatabase price, const QString &table, const QString &id, QString *error = nullptr);
// "Очистить базу ресурсов": the table emptied, the file compacted.
bool clear(QSqlDatabase price, const QString &table, QString *error = nullptr);
// A material of a list given to rate `rec`: "INSERT INTO <table> (name, edizm, cena, ras, val)"; its id.
QString attach(QSqlDatabase price, const QString &table, const Row &row, QString *error = nullptr);
// Table `to` becomes a copy of table `from` (record numbers kept, so the resources stay with their
// rates); *copied gets the number of resources.
bool copyAll(QSqlDatabase price, const QString &from, const QString &to, int *copied = nullptr,
             QString *error = nullptr);

} // namespace ResourceStore
