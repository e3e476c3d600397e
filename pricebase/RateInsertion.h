#pragma once
// Putting a rate into the estimate grid: from the rate grid (with the duplicate control and the
// sorting by record number) and from the live-search list. Writes grid cells and rows and the
// estimate's materials; the totals follow the grid's signals.

#include "PriceRows.h"

#include <QSqlDatabase>
#include <QString>

class EstimateGrid;

struct InsertOptions {
    bool controlDuplicates = false; // CheckBoxControlPrice
    bool sortWork = false;          // CheckBoxSortWork
};

struct InsertOutcome {
    enum Kind {
        Inserted,  // a work row was written (row)
        Title,     // a subsection title: only its name was written (row)
        Duplicate, // the same name stands in the section (row); nothing inserted
        NotFound,  // live search: no rate of that name; the typed name stays
        Failed     // error holds the Russian message; what was written stays
    };
    Kind kind = Inserted;
    int row = -1;
    bool materialsChanged = false;
    QString error;
};

class RateInsertion {
public:
    RateInsertion(EstimateGrid &grid, QSqlDatabase smeta, QSqlDatabase price);

    // The row between the section borders around `currentRow` whose name equals `name`, or -1:
    // upwards to row 2 stopping at "bp"/"br", then downwards stopping at "ip"/"ir".
    int findDuplicate(const QString &name, int currentRow) const;

    // Insertion of a rate grid row (StringGridRasDblClickCell, steps 3 to 8). `currentRow` is the
    // estimate's current row and is advanced to the row that received the rate.
    InsertOutcome insertFromGrid(const RateRow &rate, const QString &resourcesTable, int &currentRow,
                                 const InsertOptions &options);

    // Insertion from the live-search list (MemoPriceDblClick): `chosen` is written into column 2;
    // `rate` is the record found by that name (nullptr when none). `currentRow` moves on to the next
    // row, which is added when the grid ends.
    InsertOutcome insertFromLiveSearch(const QString &chosen, const RateRow *rate,
                                       const QString &resourcesTable, int &currentRow);

    // SortWork: the grid row where the work row `row` belongs among the works of its section, ordered
    // by record numbers taken as integers. -1 with *error on a database failure.
    int sortedPlace(int row, QString *error = nullptr);

private:
    // Steps common to both ways: number, rate number, unit, quantity and amount emptied, idRas,
    // NamePrice, price and labour part. False with *error for a price that is not a number.
    bool fillWorkRow(int row, const RateRow &rate, const QString &resourcesTable, QString *error);

    EstimateGrid &m_grid;
    QSqlDatabase m_smeta;
    QSqlDatabase m_price;
};

// TCalcDocKolvo: the row's quantity plus an added quantity (either may be empty, meaning 0), as
// quantity text. *ok is false when one of them is not a number.
QString addQuantities(const QString &quantity, const QString &added, bool *ok);
