#pragma once
// The crew sheet StringGridBrig: one fixed header row, data from row 1; crew row r belongs to
// estimate row r + 1. The Qt model shows data rows only (Qt row r is grid row r + 1).

#include "GridRows.h"

#include <QHash>
#include <QStringList>
#include <vector>

namespace CrewCol {
enum : int {
    Num = 0,
    Ras = 1,
    Name = 2,
    Unit = 3,
    Qty = 4,
    Price = 5,         // crew price
    Sum = 6,           // crew amount
    IdRas = 7,         // hidden
    Koef = 8,          // "k": the row's crew coefficient (smeta.KoefBrig)
    CustomerPrice = 9, // "Цена (зак.)"
    CustomerSum = 10,  // "Сумма (зак.)"
    Count = 11
};
}

// One data row of the crew sheet.
struct CrewRow {
    QStringList cells;
    QHash<int, QString> problems; // column -> why it has no usable value
};
using CrewGridRows = GridRows<CrewRow, 1>;

class CrewGrid : public CrewGridRows {
    Q_OBJECT
public:
    explicit CrewGrid(QObject *parent = nullptr);

    // The structure (setGridRowCount, insertGridRows, removeGridRows, moveGridRow) is GridRows'.
    QString cell(int gridRow, int col) const;
    // A cell past the last row first adds the rows up to it.
    void setCell(int gridRow, int col, const QString &text);
    void setAllRows(std::vector<QStringList> rows);

    static QString headerText(int col);

    // Many cells changed at once (every row of a document just read): between these, changes of cells
    // are gathered and told as one dataChanged over the rows they touched, not one per cell.
    void holdSignals() { ++m_held; }
    void releaseSignals();

    // A cell whose value cannot be had is flagged with the reason (tooltip, red background).
    void setCellProblem(int gridRow, int col, const QString &reason);
    QString cellProblem(int gridRow, int col) const;

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    // The user typed into a cell (only the coefficient column is editable).
    void cellEdited(int gridRow, int col, const QString &oldText, const QString &newText);

private:
    CrewRow emptyRow() const override;
    void cellChanged(int modelRow, int col, const QList<int> &roles = {});

    int m_held = 0;
    int m_firstChanged = -1, m_lastChanged = -1; // model rows changed while held
};
