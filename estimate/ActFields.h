#pragma once
// The act data of the document: table ks2 of the working database, one row per field of the act data
// window (parties, site, contract, reporting period, signatories), the value as text: dates as the
// short date, the tick as "1"/"0", the names of the parties, the object and the signatories with
// backticks for double quotes (as every stored name is kept) and shown with the quotes. The acts own
// the table; the estimate only gives a new or an older document its rows through ensureRows. Every
// statement on ks2 lives here.

#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVector>

namespace ActFields {

struct Field {
    QString name;         // the field's name in the window and in the table
    QString defaultValue; // what a new document holds
};

// The fields in the order of the form (and of writing), with today's date for the date fields.
QVector<Field> fields();
QStringList names();

// Positions offered for the hander-over and the accepter.
const QStringList &handerPositions();
const QStringList &accepterPositions();

// "SELECT * FROM ks2 WHERE 1": field name -> value (empty when the table cannot be read).
QMap<QString, QString> read(QSqlDatabase db);

// A document without ks2 rows gets every field with its default; an older one only the fields it lacks.
// One transaction. False with the database's reason.
bool ensureRows(QSqlDatabase db, QString *error = nullptr);

// Writes every field of `values` that the form has, one UPDATE per field in the order of the form
// (a field without a row gets one), in one transaction. Fields not in `values` are left as stored.
bool write(QSqlDatabase db, const QMap<QString, QString> &values, QString *error = nullptr);

// The tick of RadioButton1 ("Организации") as stored text, and back.
inline QString tick(bool on) {
    return on ? QStringLiteral("1") : QStringLiteral("0");
}
bool isTicked(const QString &stored);

} // namespace ActFields
