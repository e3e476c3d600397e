#pragma once
// The grid of the report of sold materials (TDohodMat): "Наименование", "Ед.изм.", "Кол-во", "Цена",
// "Сумма", "Дата", "Заказчик", "id"; one write-off record a row, read only; the total of its sums.

#include "WriteOffs.h"

#include <QAbstractTableModel>
#include <vector>

namespace WriteOffCol {
enum : int { Name = 0, Unit, Qty, Price, Sum, Date, Customer, Id, Count };
}

class WriteOffModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<WriteOff> rows);
    const std::vector<WriteOff> &rows() const { return m_rows; }
    const WriteOff *rowAt(int row) const;
    void removeRowAt(int row);
    MoneyResult total() const { return m_total; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<WriteOff> m_rows;
    MoneyResult m_total = Money();
};
