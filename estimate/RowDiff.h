#pragma once
// The difference between two states of the estimate grid as row edits, insertions and deletions, the
// form in which the undo journal keeps a step. A row is its 17 cells followed by its crew coefficient.
// Computed cells (numbers, amounts, totals rows, the numbers inside section texts) do not count as a
// difference: they follow from the rest again after an undo.

#include <QList>
#include <QPair>
#include <QStringList>
#include <vector>

namespace RowDiff {

// Cells of one row: EstimateCol::Count cells, then the crew coefficient.
constexpr int kRowWidth = 18;
constexpr int kCrewKoef = 17;

// A row as the editor keeps it between steps: the grid's cells (shared with the grid while unchanged)
// and the crew coefficient.
struct Row {
    QStringList cells;
    QString koef;
    QStringList wide() const; // cells + koef, kRowWidth long
};

struct Op {
    enum Kind { Edit, Insert, Delete };
    Kind kind = Edit;
    int row = 0;        // grid row at the moment the op is applied (in order, from the old state)
    QStringList before; // Edit, Delete
    QStringList after;  // Edit, Insert
};

// A row as it was before a step and as it is after it (empty where the row came or went).
struct Change {
    QStringList before;
    QStringList after;
};

// The rates (idRas, NamePrice) of the rows of the changes, each once, in order; rows without a rate
// add nothing.
QList<QPair<QString, QString>> ratesOf(const QList<Change> &changes);

// True when the rows differ in nothing but computed cells.
bool equivalent(const QStringList &a, const QStringList &b);
bool equivalent(const Row &a, const Row &b);

// Ops that turn `before` into `after` when applied in order; firstGridRow is the grid row of index 0.
// Undo applies the inverse ops in reverse order.
std::vector<Op> diff(const std::vector<Row> &before, const std::vector<Row> &after, int firstGridRow);

} // namespace RowDiff
