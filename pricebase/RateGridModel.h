#pragma once
// The rate grid StringGridRas: the whole current price list as a table of text rows (RateTable), and a view
// of it narrowed by section navigation. Row numbers follow the grid the user sees: row 0 is the header, data
// from row 1 (Qt row r is grid row r + 1). An empty list or an empty filter shows one empty row.

#include "RateTable.h"

#include <QAbstractTableModel>
#include <algorithm>
#include <optional>
#include <vector>

class RateGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit RateGridModel(QObject *parent = nullptr);

    // Replaces the whole list (one model reset); the filter is cleared. `asRead`: the rows are price
    // list 1 as read from its file, so they may answer look-ups by record number; `byRec` is their
    // index when the reader made it (else it is made at the first look-up).
    void setRows(RateTable rows, bool asRead = false, RecIndex byRec = {});
    const RateTable &allRows() const { return m_rows; }
    // The first row with record number `rec` (index into allRows()), answered only while the rows are
    // the list as read (an edit ends that): -1 when there is none, nullopt when the rows cannot answer.
    std::optional<int> findRec(QByteArrayView rec) const;
    bool answersByRec() const { return m_asRead; }
    // The rows no longer match their file (the file was changed behind them).
    void dropRecIndex() {
        m_asRead = false;
        m_byRec = {};
    }

    // Grid-indexed access to the visible rows.
    int gridRowCount() const { return 1 + std::max(1, visibleCount()); }
    int visibleCount() const {
        return m_filtered ? static_cast<int>(m_visible.size()) : static_cast<int>(m_rows.size());
    }
    // Index into allRows() of grid row r, or -1 for the empty placeholder row.
    int sourceIndex(int gridRow) const;
    // The grid row showing allRows()[index], or -1 when it is filtered out.
    int gridRowOf(int index) const;
    QString cell(int gridRow, int col) const;
    void setCell(int gridRow, int col, const QString &text);
    bool isChecked(int gridRow) const;
    void setChecked(int gridRow, bool on);

    // Section navigation: show only rows whose number is `prefix` itself or begins with `prefix`
    // followed by "-" (so that "3-1" does not take in "3-10"); `includeSelf` false hides the row
    // numbered exactly `prefix`.
    void setNumberFilter(const QString &prefix, bool includeSelf);
    void clearFilter();
    bool isFiltered() const { return m_filtered; }

    // First visible grid row at or after `fromGridRow` whose name equals `name` (trimmed), or -1.
    int findName(const QString &name, int fromGridRow = 1) const;
    // Ticked rows as indices into allRows(), in list order.
    std::vector<int> checkedIndices() const;
    void clearChecks();

    // Edit mode: the grid becomes editable in place; rows can be inserted, removed and moved.
    void setEditMode(bool on);
    bool editMode() const { return m_editMode; }
    // Inserts an empty row before grid row r (after the last row when r is past the end); returns the
    // grid row of the new row. A new row gets the next free record number.
    int insertRowAt(int gridRow);
    // Removes the given grid rows (any order).
    void removeGridRows(std::vector<int> gridRows);
    // Moves a row so that it ends up at grid row `to`.
    void moveGridRow(int from, int to);
    // PereschetNomeraRascenok over the whole list.
    void renumber();
    // Gives every row without a record number the next free one.
    void fillMissingRecs();
    QString nextRec() const;

    // Qt model.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    static QString headerText(int col);
    // Rows are moved by dragging in edit mode.
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    static int toGridRow(int modelRow) { return modelRow + 1; }
    static int toModelRow(int gridRow) { return gridRow - 1; }

signals:
    // The list was changed by an edit (the rate grid then has unsaved changes).
    void listEdited();
    // A cell typed in place (edit mode).
    void cellEdited(int gridRow, int col);

private:
    // Every change of the list goes through here.
    void edited();
    bool matchesFilter(size_t row) const;
    void rebuildVisible();
    int placeholderRow() const { return visibleCount() == 0 ? 0 : -1; }

    RateTable m_rows;
    bool m_asRead = false;
    mutable RecIndex m_byRec;
    std::vector<int> m_visible; // indices into m_rows while filtered
    bool m_filtered = false;
    QString m_prefix;
    bool m_includeSelf = true;
    bool m_editMode = false;
};
