#include "CashModels.h"

namespace {

// Shown in the marker column of a record that has receipt lines.
const QString kReceiptsMark = QStringLiteral("✓");

} // namespace

CashGridModel::CashGridModel(QObject *parent) : QAbstractTableModel(parent) {}

int CashGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CashGridModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : CashCol::Count;
}

QVariant CashGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const CashGridRow &r = m_rows[static_cast<size_t>(index.row())];
    const CashEntry &e = r.entry;
    const int c = index.column();
    if (role == Qt::TextAlignmentRole)
        return CashCol::isAmount(c) ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                    : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && c == CashCol::Marker && !e.cheki.isEmpty())
        return QStringLiteral("К записи есть расшифровка чеков");
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const bool edit = role == Qt::EditRole;
    switch (c) {
    case CashCol::Marker:
        return e.cheki.isEmpty() ? QString() : kReceiptsMark;
    case CashCol::Date:
        return e.date;
    case CashCol::Note:
        return e.note;
    case CashCol::Customer:
        return e.customer;
    case CashCol::Object:
        return e.object;
    case CashCol::Id:
        return e.id;
    default: {
        const int cat = CashCol::category(c);
        return edit ? e.amounts[cat] : CashRecordIo::shownAmount(e.amounts[cat], r.money[cat]);
    }
    }
}

QVariant CashGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return CashCol::titles().value(section);
    return section + 1;
}

Qt::ItemFlags CashGridModel::flags(const QModelIndex &index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    const int c = index.column();
    bool editable = c >= CashCol::Date && c <= CashCol::Note;
    if (m_category > 0 && CashCol::isAmount(c))
        editable = CashCol::category(c) == m_category - 1;
    if (editable)
        f |= Qt::ItemIsEditable;
    return f;
}

bool CashGridModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable) || !m_onEdit)
        return false;
    return m_onEdit(index.row(), index.column(), value.toString());
}

void CashGridModel::setRows(std::vector<CashGridRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

void CashGridModel::setEntry(int row, const CashEntry &entry) {
    CashGridRow &r = m_rows.at(static_cast<size_t>(row));
    r.entry = entry;
    r.readAmounts();
    emit dataChanged(index(row, 0), index(row, CashCol::Count - 1));
}

void CashGridModel::appendEntry(const CashEntry &entry) {
    const int row = rowCount();
    beginInsertRows({}, row, row);
    CashGridRow r;
    r.entry = entry;
    r.readAmounts();
    m_rows.push_back(std::move(r));
    endInsertRows();
}

void CashGridModel::removeAt(int row) {
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

int CashGridModel::rowOf(const QString &id) const {
    if (id.isEmpty())
        return -1;
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].entry.id == id)
            return static_cast<int>(i);
    return -1;
}

QString checkCell(const CheckLine &l, int column) {
    switch (column) {
    case ChecksCol::Date:
        return l.date;
    case ChecksCol::Name:
        return l.name;
    case ChecksCol::Unit:
        return l.edizm;
    case ChecksCol::Quantity:
        return l.kolvo;
    case ChecksCol::Price:
        return l.price;
    case ChecksCol::Sum:
        return l.sum;
    case ChecksCol::Id:
        return l.id;
    default:
        return {};
    }
}

void setCheckCell(CheckLine *l, int column, const QString &text) {
    switch (column) {
    case ChecksCol::Date:
        l->date = text;
        break;
    case ChecksCol::Name:
        l->name = text;
        break;
    case ChecksCol::Unit:
        l->edizm = text;
        break;
    case ChecksCol::Quantity:
        l->kolvo = text;
        break;
    case ChecksCol::Price:
        l->price = text;
        break;
    case ChecksCol::Sum:
        l->sum = text;
        break;
    default:
        break;
    }
}

ChecksModel::ChecksModel(QObject *parent) : QAbstractTableModel(parent) {}

int ChecksModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int ChecksModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ChecksCol::Count;
}

QVariant ChecksModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    if (role == Qt::TextAlignmentRole)
        return ChecksCol::isNumber(index.column()) ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                                   : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    return checkCell(m_lines[static_cast<size_t>(index.row())], index.column());
}

QVariant ChecksModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return ChecksCol::titles().value(section);
    return section + 1;
}

Qt::ItemFlags ChecksModel::flags(const QModelIndex &index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.column() >= ChecksCol::Date && index.column() <= ChecksCol::Sum)
        f |= Qt::ItemIsEditable;
    return f;
}

bool ChecksModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable) || !m_onEdit)
        return false;
    return m_onEdit(index.row(), index.column(), value.toString());
}

void ChecksModel::setLines(std::vector<CheckLine> lines) {
    beginResetModel();
    m_lines = std::move(lines);
    endResetModel();
}

void ChecksModel::setLine(int row, const CheckLine &line) {
    m_lines.at(static_cast<size_t>(row)) = line;
    emit dataChanged(index(row, 0), index(row, ChecksCol::Count - 1));
}

void ChecksModel::appendLine(const CheckLine &line) {
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_lines.push_back(line);
    endInsertRows();
}

void ChecksModel::removeAt(int row) {
    beginRemoveRows({}, row, row);
    m_lines.erase(m_lines.begin() + row);
    endRemoveRows();
}
