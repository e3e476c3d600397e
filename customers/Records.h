#pragma once
// Rows of the customer and contractor registers as text keyed by column name, the columns of each
// table, and the legal-data line that is composed from the ticked requisites.

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <functional>

class QSqlDatabase;
class QSqlRecord;

// One row: column name -> value. Names (customer `fio`, object, contractor `shotname`) are held as the
// user sees them (double quotes); the registers turn them into the stored form with backticks.
using Fields = QMap<QString, QString>;

namespace Columns {
// Table customer (cashbase.db) and Customer (peoplebase.db, working database), without the key _id.
const QStringList &customer();
// Table Object, without the key _id.
const QStringList &object();
// Tables Requisite and RequisiteZak, without the key ik.
const QStringList &requisites();
// Table Contractor, without the key id.
const QStringList &contractor();
} // namespace Columns

// Outcome of a register operation; the window turns it into the user's message.
enum class RegisterStatus {
    Ok,
    BlankName, // "Пустая затея"
    Duplicate, // the name is taken already
    NotFound,  // the row named is not (or no longer) in the register
    Failed,    // the database refused; lastError() of the register says why
};

// A customer with its legal details (RequisiteZak); found is false when the name is not registered.
struct CustomerData {
    bool found = false;
    Fields customer;   // every column of customer, _id included
    Fields requisites; // every column of RequisiteZak; empty when the customer has none
};

// A contractor with its legal details (Requisite) and the e-mail kept in the settings.
struct ContractorData {
    bool found = false;
    Fields contractor; // id, shotname, longname, phone
    Fields requisites; // every column of Requisite; empty when there is none
    QString email;
};

namespace LegalData {
// The pieces of the legal-data line in their order: requisites column and its label. The OGRN field has
// no column of its own; it is kept in okpo.
struct Piece {
    QString column;
    QString label;
};
const QList<Piece> &pieces();
// "ИНН 123, БИК 456": each ticked column whose value is not blank, label and value, joined by ", ".
QString line(const Fields &requisites, const QSet<QString> &tickedColumns);
} // namespace LegalData

namespace RecordIo {
// Every field of a query row as text; the named column goes through the name rule (backtick -> quote).
Fields fromRecord(const QSqlRecord &record, const QString &nameColumn = QString());
// True when the table has the column (older files may lack some).
bool hasColumn(QSqlDatabase db, const QString &table, const QString &column);
// One statement with bound values; on failure *error names the reason and the statement.
bool run(QSqlDatabase db, const QString &sql, const QVariantList &values, QString *error,
         int *rowsAffected = nullptr);
// Runs body inside a transaction of db (Transaction.h: the write lock from the start, a savepoint
// inside a transaction already open): committed when it returns true, rolled back otherwise.
bool inTransaction(QSqlDatabase db, const std::function<bool()> &body, QString *error);
// "?,?,?" for n values.
QString placeholders(int n);
} // namespace RecordIo
