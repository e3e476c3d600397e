#pragma once
// The cash book's tables in its database: the records (cash) and their receipt lines (checks), read
// by the filter's statement and written one record or line at a time. Failures come back as Russian
// text in *error; nothing is half written (every change is one statement or one transaction).

#include "CashFilter.h"
#include "CashRecord.h"
#include "storage/Money.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

// One receipt line: goods bought for a record (val is the record's key).
struct CheckLine {
    QString id;
    QString date, name, edizm, kolvo, price, sum;
    QString val;

    bool sameGoods(const CheckLine &o) const {
        return date == o.date && name == o.name && edizm == o.edizm && kolvo == o.kolvo && price == o.price &&
               sum == o.sum;
    }
};

namespace CashStore {

// The records of the filter in the statement's order: their keys and amounts (with a category chosen
// only its amount). The grid reads the rest of a record when it shows it (entries).
bool load(QSqlDatabase book, const CashFilter &filter, std::vector<qint64> *ids,
          std::vector<CashAmounts> *amounts, QString *error);
// The records of the keys, each in the position of its key; a key no longer in the book gives an entry
// with the key alone.
bool entries(QSqlDatabase book, const std::vector<qint64> &ids, std::vector<CashEntry> *out, QString *error);
// Income less the five expenses over every record of the customer and object (either may be empty).
MoneyResult balance(QSqlDatabase book, const QString &customer, const QString &object, QString *error);
// The distinct years of the records, in ascending order.
QStringList years(QSqlDatabase book);

// Writes one column of a written record, with its month, year and date_compare when dated (a record
// whose date is no date keeps the ones it has). A record no longer in the book is an error.
bool update(QSqlDatabase book, const CashEntry &entry, const QString &field, const QString &value, bool dated,
            QString *error);
// Inserts the entry as a new record; entry->id gets its key.
bool insert(QSqlDatabase book, CashEntry *entry, QString *error);
// Deletes the record with its receipt lines.
bool remove(QSqlDatabase book, const QString &id, QString *error);
// Deletes every record and receipt line, then compacts the file.
bool clear(QSqlDatabase book, QString *error);

// Receipts: the record's key is its _id.
bool markReceipts(QSqlDatabase book, const QString &id, QString *error);
bool lines(QSqlDatabase book, const QString &key, std::vector<CheckLine> *out, QString *error);
// Every receipt line of records with a key among keys, grouped by key (for reports).
bool linesOf(QSqlDatabase book, const QStringList &keys, std::vector<CheckLine> *out, QString *error);
bool insertLine(QSqlDatabase book, CheckLine *line, QString *error);
bool updateLine(QSqlDatabase book, const CheckLine &line, QString *error);
bool removeLine(QSqlDatabase book, const QString &id, QString *error);
// Deletes the record's receipt lines and clears its mark.
bool removeReceipts(QSqlDatabase book, const QString &id, QString *error);

} // namespace CashStore
