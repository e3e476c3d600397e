#pragma once
// Reading the register of documents (mydoc.db): the rows of the documents and drafts pages with their
// totals, one row by its id, the years that occur, and the contract, invoice and act files made from
// an estimate. Names are given as shown (backticks turned back into double quotes).

#include "estimate/Registration.h"
#include "storage/Money.h"

#include <QByteArrayView>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

// One register row as the actions use it.
struct RegisterRow {
    qlonglong id = 0;
    QString data;    // the estimate's date, short date text
    QString dataend; // finish date; empty in work
    QString name;
    QString fileName;
    QString client;
    QString object;
    QString summat;
    QString sumrab;
    QString allsum;
    QString month;
    QString year;
    bool finished = false; // status > 0; NULL (or 0 from elsewhere) is in work
};

// One produced file of an estimate (contract, invoice or act).
struct OutputFileRow {
    QString id;
    QString data;
    QString name;
    QString ext;
    QString fileName;
};

// The sums of shown rows. Amounts that cannot be read are left out and counted.
struct RegisterTotals {
    MoneyResult materials = Money();
    MoneyResult works = Money();
    MoneyResult all = Money();
    int unreadable = 0; // rows with at least one amount left out

    // One row's stored amounts (UTF-8 text, as the database gives them).
    void add(QByteArrayView summat, QByteArrayView sumrab, QByteArrayView allsum);
};

// The rows of one page as its grid shows them. A register holds tens of thousands of rows and every
// filter reads a page anew, so the texts of a page live in one buffer and a row is a few numbers:
// reading and dropping a page costs a handful of allocations, not one per cell.
class RegisterPage {
public:
    enum Text { Data, DataEnd, Name, FileName, AllSum, TextCount };

    int size() const { return static_cast<int>(m_rows.size()); }
    qlonglong id(int row) const { return m_rows[static_cast<size_t>(row)].id; }
    bool finished(int row) const { return m_rows[static_cast<size_t>(row)].finished; }
    QStringView text(int row, Text which) const;
    // The row with its texts (id, dates, name, file, amount, status); client and object are not kept.
    RegisterRow row(int row) const;
    // The position of the row with that id, or -1.
    int indexOf(qlonglong id) const;
    const RegisterTotals &totals() const { return m_totals; }

private:
    struct Row {
        qlonglong id = 0;
        bool finished = false;
        quint32 start[TextCount + 1] = {}; // where each text begins; the last entry ends the row
    };
    std::vector<Row> m_rows;
    std::vector<char16_t> m_text;
    RegisterTotals m_totals;

    friend class RegisterPageReader;
};

namespace RegisterRows {

// The rows a register statement selects (RegisterFilter), in the order the database gives them, and
// their totals. False with the reason when the statement fails (the page is then empty).
bool read(QSqlDatabase mydoc, const QString &statement, RegisterPage *page, QString *error);
// Where the register stands: it changes with every change of its rows, by this connection or by
// another program's. A page read at a version and not changed since need not be read again.
struct Version {
    qint64 others = -1; // PRAGMA data_version: commits of other connections
    qint64 ours = -1;   // rows changed by this connection
    bool operator==(const Version &o) const { return others == o.others && ours == o.ours; }
    bool operator!=(const Version &o) const { return !(*this == o); }
};
Version version(QSqlDatabase mydoc);
// One row by its id ("SELECT * FROM documents WHERE id="); false when it is not there (*error says).
bool readOne(QSqlDatabase mydoc, Registration::List list, qlonglong id, RegisterRow *row, QString *error);
// The years that occur in a list, ascending.
QStringList years(QSqlDatabase mydoc, Registration::List list);

// The files made from the estimate `iddoc`: table is "contract", "account" or "act".
bool readOutputs(QSqlDatabase mydoc, const QString &table, qlonglong iddoc, std::vector<OutputFileRow> *rows,
                 QString *error);

} // namespace RegisterRows
