#pragma once
// The record of materials taken from the warehouse into estimates: the rows of table `storage` that
// have a write-off date (`dataoffs`), each with the customer and object it was taken for (stored names:
// double quotes as backticks), `month`, `year` and `date_compare` ("YYYYMMDD"). The report of sold
// materials (TDohodMat) lists them by customer, object and period; the cash book adds up their sums as
// its income from sold materials.

#include "storage/Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <vector>

struct WriteOff {
    QString id;
    QString name; // namemat
    QString unit; // edizm
    QString quantity;
    QString price;
    QString sum;      // summa
    QString date;     // dataoffs, "dd.MM.yyyy"
    QString customer; // as shown
    QString object;   // as shown
    QString month, year, dateCompare;
};

// Which write-offs: names as shown (empty: any), the month ("1".."12") and year as the cash book keeps
// them, and the period (an invalid date leaves that end open). The period compares date_compare.
struct WriteOffFilter {
    QString customer;
    QString object;
    QString month;
    QString year;
    QDate from;
    QDate to;
};

namespace WriteOffs {

// "Начало периода не должно превышать окончание" when from is after to, else empty.
QString periodRefusal(const QDate &from, const QDate &to);

// The write-offs the filter lets through, in the order they were made.
bool read(QSqlDatabase db, const WriteOffFilter &filter, std::vector<WriteOff> &out,
          QString *error = nullptr);
// Only their ids, in the same order, and the total of their amounts (a long list is read a page at a
// time: see readRange).
bool ids(QSqlDatabase db, const WriteOffFilter &filter, std::vector<qint64> &out, MoneyResult *total,
         QString *error = nullptr);
// The write-offs the filter lets through whose ids lie in [firstId, lastId].
bool readRange(QSqlDatabase db, const WriteOffFilter &filter, qint64 firstId, qint64 lastId,
               std::vector<WriteOff> &out, QString *error = nullptr);
// The sum of their amounts (`summa`), for the cash book's "income from sold materials". An amount that
// is not a number is left out; a total past the maximum is refused (MoneyResult says why).
MoneyResult soldTotal(QSqlDatabase db, const WriteOffFilter &filter, QString *error = nullptr);
// The sum of rows already read, and one amount added to a total the same way.
MoneyResult total(const std::vector<WriteOff> &rows);
MoneyResult addAmount(MoneyResult total, const QString &amount);

// A write-off record; its id, or empty with *error.
QString add(QSqlDatabase db, const WriteOff &w, QString *error = nullptr);
// "DELETE FROM storage WHERE id=": a write-off record only.
bool remove(QSqlDatabase db, const QString &id, QString *error = nullptr);

} // namespace WriteOffs
