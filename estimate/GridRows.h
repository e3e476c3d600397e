#pragma once
// The rows of a grid with fixed header rows, as the estimate grid and the crew sheet keep them: data
// rows start at grid row Fixed, the Qt model shows the data rows only (Qt row r is grid row r + Fixed),
// and a grid never has fewer than one data row. The changes of the rows' number and order are made
// here for both grids; a grid gives its empty row and hears of every such change.

#include <QAbstractTableModel>
#include <algorithm>
#include <vector>

template <typename Row, int Fixed> class GridRows : public QAbstractTableModel {
public:
    static constexpr int kFixedRows = Fixed;

    int gridRowCount() const { return Fixed + static_cast<int>(m_rows.size()); }
    bool isDataRow(int gridRow) const { return gridRow >= Fixed && gridRow < gridRowCount(); }
    static int toGridRow(int modelRow) { return modelRow + Fixed; }
    static int toModelRow(int gridRow) { return gridRow - Fixed; }

    // Counts are grid rows.
    void setGridRowCount(int count) {
        const int wanted = std::max(count, Fixed + 1) - Fixed;
        const int have = static_cast<int>(m_rows.size());
        if (wanted > have) {
            beginInsertRows({}, have, wanted - 1);
            m_rows.resize(static_cast<size_t>(wanted), emptyRow());
            endInsertRows();
        } else if (wanted < have) {
            beginRemoveRows({}, wanted, have - 1);
            m_rows.resize(static_cast<size_t>(wanted));
            endRemoveRows();
        } else {
            return;
        }
        rowsChanged();
    }

    void insertGridRows(int gridRow, int count) {
        if (count <= 0)
            return;
        const int m = toModelRow(std::clamp(gridRow, Fixed, gridRowCount()));
        beginInsertRows({}, m, m + count - 1);
        m_rows.insert(m_rows.begin() + m, static_cast<size_t>(count), emptyRow());
        endInsertRows();
        rowsChanged();
    }

    void removeGridRows(int gridRow, int count) {
        if (!isDataRow(gridRow) || count <= 0)
            return;
        count = std::min(count, gridRowCount() - gridRow);
        const int m = toModelRow(gridRow);
        beginRemoveRows({}, m, m + count - 1);
        m_rows.erase(m_rows.begin() + m, m_rows.begin() + m + count);
        endRemoveRows();
        if (m_rows.empty()) {
            beginInsertRows({}, 0, 0);
            m_rows.push_back(emptyRow());
            endInsertRows();
        }
        rowsChanged();
    }

    // Moves one row so that it ends up at grid row `to`.
    void moveGridRow(int from, int to) {
        if (!isDataRow(from) || !isDataRow(to) || from == to)
            return;
        const int mf = toModelRow(from), mt = toModelRow(to);
        // Qt's destination is the row before which the moved row lands.
        beginMoveRows({}, mf, mf, {}, mt > mf ? mt + 1 : mt);
        Row moving = std::move(m_rows[static_cast<size_t>(mf)]);
        m_rows.erase(m_rows.begin() + mf);
        m_rows.insert(m_rows.begin() + mt, std::move(moving));
        endMoveRows();
        rowsChanged();
    }

    int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

protected:
    using QAbstractTableModel::QAbstractTableModel;

    // A row whose every cell is empty.
    virtual Row emptyRow() const = 0;
    // Called after every change above.
    virtual void rowsChanged() {}

    Row &row(int gridRow) { return m_rows[static_cast<size_t>(toModelRow(gridRow))]; }
    const Row &row(int gridRow) const { return m_rows[static_cast<size_t>(toModelRow(gridRow))]; }

    std::vector<Row> m_rows;
};
