#pragma once
// The cash book behind TKassaBook: the chosen customer and object, the category and the two date
// filters; the records they select (GridRashod) with their totals, the balance of the customer and
// object, and the income from sold materials; the receipt lines of a record (GridCheki). Every
// change of a filter reloads the records with one statement (CashFilter.h); an edited cell is written
// at once (UPDATE, or INSERT for a row not written yet) and the totals follow. The window asks the
// user's questions and shows the outcomes; nothing here opens a window.

#include "BookUpgrade.h"
#include "CashFilter.h"
#include "CashModels.h"
#include "CashTotals.h"
#include "MobileMerge.h"

#include <QObject>
#include <QSqlDatabase>
#include <optional>

class TModuleSQL;

class CashBook : public QObject {
    Q_OBJECT
public:
    // What an operation tells the user: nothing (ok), or a message with its caption.
    struct Outcome {
        bool ok = true;
        QString caption;
        QString text;
        bool error = false; // an error rather than a warning
        static Outcome done() { return {}; }
        static Outcome warning(const QString &text);
        static Outcome failure(const QString &text);
    };

    explicit CashBook(TModuleSQL &module, QObject *parent = nullptr);

    TModuleSQL &module() const { return m_module; }
    QSqlDatabase book() const;
    CashGridModel *records() const { return m_records; }
    ChecksModel *checks() const { return m_checks; }

    // Lists: the register's customers and the objects of one customer; the years of the records.
    QStringList customers() const;
    QStringList objects(const QString &customer) const;
    QStringList years() const;

    // Filters. Each reloads the records.
    const CashFilter &filter() const { return m_filter; }
    void setCustomer(const QString &customer); // the object is cleared
    void setObject(const QString &object);
    void setCategory(int category);
    // The month/year clause (0 and "" for none).
    void setMonthClause(int month, const QString &year);
    // The period clause; an end before the begin is refused (nothing changes).
    Outcome setPeriodClause(const QDate &begin, const QDate &end);
    // "Очистить все фильтры": customer, object, category, month/year and period.
    void clearFilters();

    // Reads the records of the filters again with their totals, balance and sold materials. The balance
    // is read again only after a change of customer or object, or when fresh is set (entering the page:
    // another program may have written the book).
    bool reload(bool fresh = false);
    QString lastError() const { return m_error; }

    const CashTotals &totals() const { return m_totals; }
    // Income less expenses over every record of the customer and object.
    const MoneyResult &balance() const { return m_balance; }
    // The income from sold materials: the warehouse's write-offs to the customer and object within the
    // date clauses (WriteOffs::soldTotal); nullopt when the warehouse cannot be read.
    const std::optional<MoneyResult> &soldMaterials() const { return m_sold; }
    // EditZakupka for a percent.
    MoneyResult purchaseAmount(int percent) const;
    // DateEdit: the first row's date, else the given one (DateBegin).
    QDate firstRowDate(const QDate &fallback) const;

    // Records. addRecord gives the row of the new, not yet written record (or -1 with the warning).
    int addRecord(const QDate &date, Outcome *outcome);
    // GridRashodEditCellDone: writes the cell (columns 1 to 8) and recounts. False when refused (the
    // reason goes out through problem()).
    bool editCell(int row, int column, const QString &text);
    // "Занести дату в выделенную строку".
    bool setRowDate(int row, const QDate &date);
    // "Добавить закупку": a record of the amount with the note "Закупка материалов " + percent + "%".
    Outcome addPurchase(const QDate &date, const QString &amount, int percent);
    Outcome deleteRecord(int row);
    Outcome deleteAll();

    // Receipts of the record of a row: its key is its _id.
    Outcome markReceipts(int row);
    // Lists the receipt lines of the record (none for a record without receipts or row -1).
    void showReceipts(int row);
    int receiptsRow() const { return m_receiptsRow; }
    // A new line of the listed record (marked first when it was not); its row, or -1 with the outcome.
    int addLine(Outcome *outcome);
    bool editLine(int row, int column, const QString &text);
    Outcome deleteLine(int row);
    Outcome deleteReceipts(int row);
    // "Стоимость материалов": the sum of the listed lines.
    MoneyResult receiptsCost() const;

    // Books. The file of the book and, beside it, the mobile companion's copy.
    QString bookPath() const;
    QString mobilePath() const;
    // ToolOpen (and the start of the program): the book at path, checked and brought to the current
    // layout, becomes the book; the filters are cleared (reload() reads its records). A book that
    // cannot be used is refused and the book in use stays.
    Outcome openBook(const QString &path, const BookUpgrade::Targets &targets);
    // ToolSave: a copy of the book through SQLite's backup API (written whole or not at all).
    Outcome saveCopy(const QString &path);
    // "cashbase_" + the short date + ".db".
    static QString copyName(const QDate &date);
    // The mobile copy carried into the book; the records read again.
    MobileMerge::Result mergeMobile(const QString &mobilePath);

signals:
    // The totals row, the balance, the purchase amount or the sold materials changed.
    void totalsChanged();
    // A refused or failed edit: the message for the user.
    void problem(const Outcome &outcome);
    // The records were read again (the lists of years may have changed).
    void reloaded();
    // A record was written with a date (the list of years may have changed).
    void yearsChanged();

private:
    void recount();
    bool needsCustomerAndObject(Outcome *outcome) const;
    bool listed(int row) const;
    QSqlDatabase warehouse() const;

    TModuleSQL &m_module;
    CashGridModel *m_records;
    ChecksModel *m_checks;
    CashFilter m_filter;
    CashTotals m_totals;
    MoneyResult m_balance = Money();
    bool m_balanceFresh = false;
    std::optional<MoneyResult> m_sold;
    int m_receiptsRow = -1;
    QString m_error;
};

Q_DECLARE_METATYPE(CashBook::Outcome)
