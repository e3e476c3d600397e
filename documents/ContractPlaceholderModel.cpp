#include "ContractPlaceholderModel.h"

ContractPlaceholderModel::ContractPlaceholderModel(QObject *parent) : QAbstractTableModel(parent) {
    m_rows = ContractFill::placeholders();
}

void ContractPlaceholderModel::showParty(std::optional<ContractFill::Party> party) {
    beginResetModel();
    m_rows.clear();
    for (const ContractFill::Placeholder &p : ContractFill::placeholders())
        if (!party || p.party == *party)
            m_rows << p;
    endResetModel();
}

QString ContractPlaceholderModel::placeholder(int row) const {
    return row >= 0 && row < m_rows.size() ? m_rows.at(row).text : QString();
}

int ContractPlaceholderModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ContractPlaceholderModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ContractPlaceholderModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const ContractFill::Placeholder &p = m_rows.at(index.row());
    if (role == Qt::DisplayRole)
        return index.column() == Text ? p.text : p.explanation;
    if (role == Qt::ToolTipRole)
        return QStringLiteral("%1 — %2. Двойной щелчок вставляет поле в текст.").arg(p.text, p.explanation);
    return {};
}

QVariant ContractPlaceholderModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Text ? QStringLiteral("Поле") : QStringLiteral("Пояснение");
}
