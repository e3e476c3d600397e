#pragma once
// The one writer of table `materials` of the working database: the estimate's materials grid
// (EstimateMaterials), the rates' resources (the price base) and a new document all change the
// estimate's materials through these functions, never by their own SQL. Values are text as stored.
// Each function is one statement or one transaction; called inside a caller's transaction it joins it.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace MaterialsStore {

// One material row.
struct Material {
    QString id; // _id
    QString edras;
    QString name;     // namemat
    QString unit;     // edizm
    QString quantity; // kolvo
    QString price;
    QString sum; // summa
    QString note;
    QString reserve;
    QString numpos; // position in the materials tab; empty for rows the rates' resources added
};

// The columns a grid edits: namemat, edizm, kolvo, price, note (summa comes with each edit).
bool isEditableColumn(const QString &column);

// The first material of that name; nullopt when there is none or the look-up failed (then *error
// is set, else it is left empty).
std::optional<Material> findByName(QSqlDatabase db, const QString &name, QString *error = nullptr);

// Adds a material; its new _id, or an empty string with *error on failure.
QString add(QSqlDatabase db, const Material &m, QString *error = nullptr);

// Writes one edited column and the row's amount, by _id.
bool setCell(QSqlDatabase db, const QString &id, const QString &column, const QString &value,
             const QString &sum, QString *error = nullptr);

// Quantity and amount of every material of that name.
bool setQuantityByName(QSqlDatabase db, const QString &name, const QString &quantity, const QString &sum,
                       QString *error = nullptr);

// Deletes the rows with these _id values, all or none.
bool removeByIds(QSqlDatabase db, const QStringList &ids, QString *error = nullptr);
// Deletes every material of that name.
bool removeByName(QSqlDatabase db, const QString &name, QString *error = nullptr);

// Every row in _id order (the order of the materials tab).
std::vector<Material> readAll(QSqlDatabase db, QString *error = nullptr);
// The position number the next material gets: one more than the rows there are.
int nextPosition(QSqlDatabase db, QString *error = nullptr);
// Rewrites one row by its _id: "UPDATE materials SET numpos=, namemat=, edizm=, kolvo=, price=, note="
// (the amount stays as it is).
bool writeRow(QSqlDatabase db, const Material &m, QString *error = nullptr);
// Every row gets its place in _id order as its position number (rows whose number is right already
// are left alone); one transaction.
bool renumber(QSqlDatabase db, QString *error = nullptr);
// Puts a row back exactly as it was, _id included (undo and redo of a step).
bool restore(QSqlDatabase db, const Material &m, QString *error = nullptr);

// Empties the table for a new document.
bool clear(QSqlDatabase db, QString *error = nullptr);

} // namespace MaterialsStore
