#pragma once
// The grids of the cash book as models of text cells: GridRashod (the records, 12 columns) and
// GridCheki (the receipt lines of a record, 8 columns). An edited cell is not written by the model:
// it goes to the edit handler (the cash book), which writes it and gives the row back.

#include "CashRecord.h"
#include "CashStore.h"

#include <QAbstractTableModel>
#include <functional>
#include <memory>
#include <vector>

// A grid of text cells whose edited cells go to an edit handler.
class CashTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using EditHandler = std::function<bool(int row, int column, const QString &text)>;

    CashTableModel(QStringList titles, QObject *parent);

    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    void setEditHandler(EditHandler handler) { m_onEdit = std::move(handler); }

private:
    QStringList m_titles;
    EditHandler m_onEdit;
};

// GridRashod over any number of records: it holds every listed record's key and amounts (what the
// totals count) and reads the rest of a record, a block of rows at a time, when the grid first shows it.
class CashGridModel : public CashTableModel {
    Q_OBJECT
public:
    // Reads the records of the keys (CashStore::entries).
    using Loader = std::function<bool(const std::vector<qint64> &ids, std::vector<CashEntry> *entries)>;

    explicit CashGridModel(QObject *parent = nullptr);
    ~CashGridModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    void setLoader(Loader loader) { m_load = std::move(loader); }

    // The listed records (keys and amounts), with a category chosen only its amount kept and editable.
    void setRows(std::vector<qint64> ids, std::vector<CashAmounts> amounts, int category);
    const std::vector<CashAmounts> &amounts() const { return m_amounts; }
    const CashAmounts &amountsOf(int row) const { return m_amounts.at(static_cast<size_t>(row)); }
    // The record of a row (read when it has not been yet); an empty entry for a row out of range.
    const CashEntry &entry(int row) const;
    // Replaces the entry of a row (its amounts read again).
    void setEntry(int row, const CashEntry &entry);
    void appendEntry(const CashEntry &entry);
    void removeAt(int row);
    // The row of a record key; -1 when it is not listed.
    int rowOf(const QString &id) const;

private:
    // Reads the block of rows around row.
    void load(int row) const;
    CashEntry shown(CashEntry entry) const;

    std::vector<qint64> m_ids; // 0 for a row not written yet
    std::vector<CashAmounts> m_amounts;
    mutable std::vector<std::unique_ptr<CashEntry>> m_entries;
    Loader m_load;
    int m_category = 0;
};

class ChecksModel : public CashTableModel {
    Q_OBJECT
public:
    explicit ChecksModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    const std::vector<CheckLine> &lines() const { return m_lines; }
    const CheckLine &line(int i) const { return m_lines.at(static_cast<size_t>(i)); }
    void setLines(std::vector<CheckLine> lines);
    void setLine(int row, const CheckLine &line);
    void appendLine(const CheckLine &line);
    void removeAt(int row);

private:
    std::vector<CheckLine> m_lines;
};

// The text of a receipt line's column.
QString checkCell(const CheckLine &line, int column);
void setCheckCell(CheckLine *line, int column, const QString &text);
