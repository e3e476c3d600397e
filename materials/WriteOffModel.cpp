#include "WriteOffModel.h"

#include <QHash>

WriteOffModel::WriteOffModel(std::function<QSqlDatabase()> database, QObject *parent)
    : QAbstractTableModel(parent), m_database(std::move(database)) {}

bool WriteOffModel::load(const WriteOffFilter &filter, QString *error) {
    std::vector<qint64> ids;
    MoneyResult total = Money();
    if (!WriteOffs::ids(m_database(), filter, ids, &total, error))
        return false;
    beginResetModel();
    m_filter = filter;
    m_ids = std::move(ids);
    m_total = total;
    m_pages.clear();
    m_used.clear();
    endResetModel();
    return true;
}

const std::vector<WriteOff> &WriteOffModel::page(int number) const {
    auto found = m_pages.find(number);
    if (found != m_pages.end()) {
        m_used.remove(number);
        m_used.push_front(number);
        return found->second;
    }
    const size_t first = static_cast<size_t>(number) * kPageRows;
    const size_t last = std::min(m_ids.size(), first + kPageRows) - 1;
    std::vector<WriteOff> read;
    WriteOffs::readRange(m_database(), m_filter, m_ids[first], m_ids[last], read);
    QHash<qint64, size_t> byId;
    for (size_t i = 0; i < read.size(); ++i)
        byId.insert(read[i].id.toLongLong(), i);
    std::vector<WriteOff> rows(last - first + 1);
    for (size_t i = first; i <= last; ++i) {
        // A record another program deleted meanwhile stays as an empty row with its id.
        const auto at = byId.constFind(m_ids[i]);
        if (at != byId.constEnd())
            rows[i - first] = std::move(read[*at]);
        else
            rows[i - first].id = QString::number(m_ids[i]);
    }
    if (m_pages.size() >= kKeptPages) {
        m_pages.erase(m_used.back());
        m_used.pop_back();
    }
    m_used.push_front(number);
    return m_pages.emplace(number, std::move(rows)).first->second;
}

const WriteOff *WriteOffModel::rowAt(int row) const {
    if (row < 0 || row >= rowCount())
        return nullptr;
    return &page(row / kPageRows)[static_cast<size_t>(row % kPageRows)];
}

void WriteOffModel::removeRowAt(int row) {
    const WriteOff *w = rowAt(row);
    if (!w)
        return;
    const MoneyResult sum = Money::parse(w->sum);
    if (sum)
        m_total -= sum;
    beginRemoveRows({}, row, row);
    m_ids.erase(m_ids.begin() + row);
    // The rows after it move up: their pages are read again when shown.
    m_pages.clear();
    m_used.clear();
    endRemoveRows();
}

int WriteOffModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

int WriteOffModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : WriteOffCol::Count;
}

QVariant WriteOffModel::data(const QModelIndex &index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::TextAlignmentRole)
        return {};
    if (role == Qt::TextAlignmentRole) {
        const int c = index.column();
        return c == WriteOffCol::Qty || c == WriteOffCol::Price || c == WriteOffCol::Sum
                   ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                   : QVariant();
    }
    const WriteOff *w = rowAt(index.row());
    if (!w)
        return {};
    if (role == Qt::ToolTipRole)
        return w->object.isEmpty() ? QVariant() : QVariant(QStringLiteral("Объект: %1").arg(w->object));
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
