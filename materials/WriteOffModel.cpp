#include "WriteOffModel.h"

void WriteOffModel::setRows(std::vector<WriteOff> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    m_total = WriteOffs::total(m_rows);
    endResetModel();
}

const WriteOff *WriteOffModel::rowAt(int row) const {
    return row >= 0 && row < rowCount() ? &m_rows[static_cast<size_t>(row)] : nullptr;
}

void WriteOffModel::removeRowAt(int row) {
    if (!rowAt(row))
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
    m_total = WriteOffs::total(m_rows);
}

int WriteOffModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int WriteOffModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : WriteOffCol::Count;
}

QVariant WriteOffModel::data(const QModelIndex &index, int role) const {
    const WriteOff *w = rowAt(index.row());
    if (!w)
        return {};
    if (role == Qt::TextAlignmentRole) {
        const int c = index.column();
        return c == WriteOffCol::Qty || c == WriteOffCol::Price || c == WriteOffCol::Sum
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    }
    if (role == Qt::ToolTipRole && !w->object.isEmpty())
        return QStringLiteral("Объект: %1").arg(w->object);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case WriteOffCol::Name:
        return w->name;
    case WriteOffCol::Unit:
        return w->unit;
    case WriteOffCol::Qty:
        return w->quantity;
    case WriteOffCol::Price:
        return w->price;
    case WriteOffCol::Sum:
        return w->sum;
    case WriteOffCol::Date:
        return w->date;
    case WriteOffCol::Customer:
        return w->customer;
    case WriteOffCol::Id:
        return w->id;
    default:
        return {};
    }
}

QVariant WriteOffModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const QStringList h = {QStringLiteral("Наименование"), QStringLiteral("Ед.изм."),
                                  QStringLiteral("Кол-во"),       QStringLiteral("Цена"),
                                  QStringLiteral("Сумма"),        QStringLiteral("Дата"),
                                  QStringLiteral("Заказчик"),     QStringLiteral("id")};
    return section >= 0 && section < h.size() ? h.at(section) : QVariant();
}
