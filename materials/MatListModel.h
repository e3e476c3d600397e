#pragma once
// The list grid StringGridListMat: the rows of one sheet with the columns "Наименование материала",
// "Ед. изм.", "Цена", "Кол-во", "ID", "резерв", "check". Titles of groups and subgroups are drawn as
// titles; a price that is not a number is kept as typed and marked. In edit mode names, units, prices
// and numbers are typed in place and each change is written into the sheet's table at once; outside
// it, the quantity to put into the estimate is typed into "Кол-во". A view can narrow the rows to one
// group or subgroup.

#include "MatList.h"

#include <QAbstractTableModel>
#include <QSqlDatabase>
#include <functional>
#include <vector>

namespace MatListCol {
enum : int { Name = 0, Unit, Price, Qty, Id, Reserve, Check, Count };
}

class MatListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit MatListModel(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    // The sheet (0..2) whose table edits are written to.
    void setSheet(int sheet) { m_sheet = sheet; }
    int sheet() const { return m_sheet; }
    QString table() const { return MatListStore::table(m_sheet); }

    // Replaces the rows (one reset); the view shows them all.
    void setRows(std::vector<MatRow> rows);
    const std::vector<MatRow> &rows() const { return m_rows; }
    // Index into rows() of a model row, or -1.
    int sourceRow(int modelRow) const;
    // The model row showing rows()[index], or -1 when the view hides it.
    int modelRowOf(int index) const;
    const MatRow *rowAt(int modelRow) const;

    // The view: rows first..last of rows() only, or all of them.
    void showRange(int first, int last);
    void showAll();
    bool isNarrowed() const { return m_narrowed; }

    void setEditMode(bool on);
    bool editMode() const { return m_editMode; }

    // Ticked rows as indices into rows(), in list order; and clearing one tick.
    std::vector<int> checkedRows() const;
    void setChecked(int index, bool on);
    // The quantity typed for rows()[index] has been used.
    void clearQuantity(int index);

    // Edit mode: an empty row before model row `modelRow` (at the end when -1), written at once; its
    // model row, or -1 with lastError().
    int insertRowBefore(int modelRow);
    // Edit mode: removes the model rows (any order) from the table and the grid.
    bool removeModelRows(std::vector<int> modelRows);
    QString lastError() const { return m_error; }
    // Why a price cell is marked (empty when it is not).
    static QString priceProblem(const MatRow &row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    // A cell was written into the sheet's table.
    void sheetEdited();

private:
    std::function<QSqlDatabase()> m_database;
    std::vector<MatRow> m_rows;
    std::vector<int> m_visible; // indices into m_rows while narrowed
    bool m_narrowed = false;
    bool m_editMode = false;
    int m_sheet = 0;
    QString m_error;
};
