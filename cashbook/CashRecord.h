#pragma once
// One movement of the cash book as text, as the table cash keeps it, and the same with its amounts
// read once for the totals. Records of every layout the book has had are read here: the earlier one
// named the columns data, prihod, myzp, workzp, prochee and the key id, and had no customer, object,
// month, year, date_compare or cheki.

#include "CashColumns.h"
#include "storage/Money.h"

#include <QDate>
#include <QString>
#include <array>
#include <optional>

class QSqlQuery;
class QSqlRecord;

struct CashEntry {
    QString id; // _id; empty for a row not written yet
    QString date;
    std::array<QString, CashCategory::kCount> amounts;
    QString note;
    QString customer; // as shown (double quotes)
    QString object;   // as shown
    QString month, year, dateCompare;
    QString cheki; // the key of its receipt lines (its own _id) when it has any

    // The columns of the table cash without _id, in its order, and the values of this entry for them
    // (names in their stored form, with backticks).
    static const QStringList &columns();
    QStringList values() const;
    // month, year and date_compare from the date; false (and nothing changed) when it is not a date.
    bool completeDateForms();
    // Every column but the key and cheki equal: the same movement written twice.
    bool sameMovement(const CashEntry &other) const;
};

// The six amounts of a record read by the number rule, as the totals count them: an empty or unreadable
// amount is not counted.
struct CashAmounts {
    std::array<qint64, CashCategory::kCount> kopecks{};
    quint8 counted = 0; // bit i: amount i is counted

    void read(int category, const QString &text);
    void readAll(const CashEntry &entry);
    std::optional<Money> money(int category) const;
    // Income less the five expenses.
    MoneyResult balance() const;
};

// Reads the rows of a query of the table cash of any layout: the columns are found once, by the
// names of the query's record, then every row is read by position (names turned into their shown form).
class CashEntryReader {
public:
    explicit CashEntryReader(const QSqlRecord &layout);
    CashEntry read(const QSqlQuery &query) const;
    // The layout has the column (under its current or its earlier name).
    bool has(int field) const { return m_index[field] >= 0; }
    enum Field {
        Id,
        Date,
        FirstAmount,
        Note = FirstAmount + CashCategory::kCount,
        Customer,
        Object,
        Month,
        Year,
        DateCompare,
        Cheki,
        FieldCount
    };

private:
    std::array<int, FieldCount> m_index;
};

namespace CashRecordIo {
// The date of a record: "dd.MM.yyyy" (the short date), "d.M.yyyy", or "yyyy-MM-dd" of older books.
QDate readDate(const QString &text);
// The amount as the grid shows it: two decimals when it reads as a number, else the text as it is.
QString shownAmount(const QString &stored, const std::optional<Money> &money);
} // namespace CashRecordIo
