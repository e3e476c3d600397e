#pragma once
// The grids of the cash book as models of text cells: GridRashod (the records, 12 columns) and
// GridCheki (the receipt lines of a record, 8 columns). An edited cell is not written by the model:
// it goes to the edit handler (the cash book), which writes it and gives the row back.

#include "CashRecord.h"
#include "CashStore.h"

#include <QAbstractTableModel>
#include <functional>
#include <vector>

class CashGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using EditHandler = std::function<bool(int row, int column, const QString &text)>;

    explicit CashGridModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    void setEditHandler(EditHandler handler) { m_onEdit = std::move(handler); }
    // With a category chosen only its amount column (and date and note) can be edited.
    void setCategory(int category) { m_category = category; }

    const std::vector<CashGridRow> &rows() const { return m_rows; }
    const CashGridRow &row(int i) const { return m_rows.at(static_cast<size_t>(i)); }
    void setRows(std::vector<CashGridRow> rows);
    // Replaces the entry of a row (its amounts read again).
    void setEntry(int row, const CashEntry &entry);
    void appendEntry(const CashEntry &entry);
    void removeAt(int row);
    // The row of a record key; -1 when it is not listed.
    int rowOf(const QString &id) const;

private:
    std::vector<CashGridRow> m_rows;
    EditHandler m_onEdit;
    int m_category = 0;
};

class ChecksModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using EditHandler = std::function<bool(int row, int column, const QString &text)>;

    explicit ChecksModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    void setEditHandler(EditHandler handler) { m_onEdit = std::move(handler); }
    const std::vector<CheckLine> &lines() const { return m_lines; }
    const CheckLine &line(int i) const { return m_lines.at(static_cast<size_t>(i)); }
    void setLines(std::vector<CheckLine> lines);
    void setLine(int row, const CheckLine &line);
    void appendLine(const CheckLine &line);
    void removeAt(int row);

private:
    std::vector<CheckLine> m_lines;
    EditHandler m_onEdit;
};

// The text of a receipt line's column.
QString checkCell(const CheckLine &line, int column);
void setCheckCell(CheckLine *line, int column, const QString &text);
