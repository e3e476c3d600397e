#pragma once
// The grid of the report of sold materials (TDohodMat): "Наименование", "Ед.изм.", "Кол-во", "Цена",
// "Сумма", "Дата", "Заказчик", "id"; one write-off record a row, read only; the total of its sums.
// A list may hold every write-off of many years: loading reads only the ids and the total, and the
// cells are read a page at a time as the grid shows them (a few pages are kept).

#include "WriteOffs.h"

#include <QAbstractTableModel>
#include <functional>
#include <list>
#include <unordered_map>
#include <vector>

namespace WriteOffCol {
enum : int { Name = 0, Unit, Qty, Price, Sum, Date, Customer, Id, Count };
}

class WriteOffModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit WriteOffModel(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    // The write-offs of the filter; false with *error leaves the list as it was.
    bool load(const WriteOffFilter &filter, QString *error = nullptr);
    const WriteOffFilter &filter() const { return m_filter; }
    // Row `row` (read with its page when the grid has not shown it yet); null past the end. The
    // pointer holds until the next call.
    const WriteOff *rowAt(int row) const;
    // The record of row `row` was deleted: the row goes, the total follows.
    void removeRowAt(int row);
    MoneyResult total() const { return m_total; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    static constexpr int kPageRows = 256;
    static constexpr size_t kKeptPages = 32;

private:
    const std::vector<WriteOff> &page(int number) const;

    std::function<QSqlDatabase()> m_database;
    WriteOffFilter m_filter;
    std::vector<qint64> m_ids;
    MoneyResult m_total = Money();
    mutable std::unordered_map<int, std::vector<WriteOff>> m_pages;
    mutable std::list<int> m_used; // page numbers, the last used first
};
