#pragma once
// The totals of the estimate grid, kept current after every change of the grid, whoever makes it:
// - a work row's amount (col 6, copied into col 16) is quantity (col 4) × price (col 5) rounded to
//   kopecks; a row with neither quantity nor price keeps the amount typed into it (a lump sum);
// - a quantity, price or typed amount that is not a number, or whose amount would pass the maximum,
//   marks its cell with the reason, leaves the amount empty and is left out of the totals; negative
//   quantities (returns) count (see RowAmount);
// - "ip"/"ir" rows carry the sums of their subsection/section, a work row whose name begins "Итого"
//   the sum of every work row of the grid; a sum that would pass the maximum is left empty and marked;
// - column 0 numbers the work rows 1, 2, …; section and subsection rows get their numbers in the text.
// Per row the parsed amount is cached, so an edit parses one row and then runs one cheap pass over the
// cached rows (sums and numbers), writing only cells whose text changes.

#include "EstimateGrid.h"
#include "storage/Money.h"

#include <QObject>
#include <limits>
#include <vector>

class EstimateTotals : public QObject {
    Q_OBJECT
public:
    explicit EstimateTotals(EstimateGrid *grid, QObject *parent = nullptr);

    // While held (nested), changes are only marked; release brings everything current.
    void hold() { ++m_hold; }
    void release();
    // Brings the cells and the sums current now.
    void flush();
    // Parses every row again.
    void rebuild();

    // Sum of the work rows (what the "Итого" row shows); refused past the maximum.
    MoneyResult works();

    bool isGrandTotalRow(int gridRow) const;

signals:
    // The works sum changed.
    void worksChanged();

private:
    struct RowState {
        RowKind kind = RowKind::Work;
        bool grand = false;
        bool counted = false;
        bool dirty = true;
        Money amount;
        int shownNumber = -1;              // number written into col 0; 0 = empty; -1 unknown
        qint64 shownTotal = kUnknownTotal; // sum written into a totals row
        // Section rows: the numbers and the title last written into the text; the text must be read
        // again when someone else wrote it.
        bool nameDirty = true;
        int shownSection = -1;
        int shownSubsection = -1;
        QString title;
    };
    static constexpr qint64 kUnknownTotal = std::numeric_limits<qint64>::min();
    static constexpr qint64 kRefusedTotal = kUnknownTotal + 1;

    void onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles);
    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsRemoved(const QModelIndex &parent, int first, int last);
    void onRowsMoved(const QModelIndex &parent, int start, int end, const QModelIndex &dest, int row);
    void onReset();
    void changed();
    void evaluate(int modelRow);
    void pass();
    void write(int gridRow, int col, const QString &text);
    void writeNumber(int modelRow, int number);
    void writeTotal(int modelRow, const MoneyResult &total);
    // Writes a section or totals row's text when its numbers or title changed.
    void writeSectionText(int modelRow, int section, int subsection);
    void mark(int gridRow, int col, const QString &problem);

    EstimateGrid *m_grid;
    std::vector<RowState> m_rows; // one per data row, index = model row
    int m_hold = 0;
    int m_dirtyCount = 0;
    bool m_needPass = true;
    bool m_writing = false;
    MoneyResult m_works = Money();
};
