#include "CashModels.h"

#include <algorithm>

namespace {

// Shown in the marker column of a record that has receipt lines.
const QString kReceiptsMark = QStringLiteral("✓");

} // namespace

namespace {

// Rows read at a time when the grid shows a row not yet read.
constexpr int kBlock = 200;

} // namespace

CashTableModel::CashTableModel(QStringList titles, QObject *parent)
    : QAbstractTableModel(parent), m_titles(std::move(titles)) {}

int CashTableModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_titles.size());
}

QVariant CashTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return m_titles.value(section);
    return section + 1;
}

bool CashTableModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable) || !m_onEdit)
        return false;
    return m_onEdit(index.row(), index.column(), value.toString());
}

CashGridModel::CashGridModel(QObject *parent) : CashTableModel(CashCol::titles(), parent) {}

CashGridModel::~CashGridModel() = default;

int CashGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

QVariant CashGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const int c = index.column();
    if (role == Qt::TextAlignmentRole)
        return CashCol::isAmount(c) ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                    : QVariant(Qt::AlignLeft | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole)
        return {};
    const CashEntry &e = entry(index.row());
    if (role == Qt::ToolTipRole)
        return c == CashCol::Marker && !e.cheki.isEmpty() ? QStringLiteral("К записи есть расшифровка чеков")
                                                          : QVariant();
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
        if (role == Qt::EditRole)
            return e.amounts[cat];
        return CashRecordIo::shownAmount(e.amounts[cat],
                                         m_amounts[static_cast<size_t>(index.row())].money(cat));
    }
    }
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

void CashGridModel::setRows(std::vector<qint64> ids, std::vector<CashAmounts> amounts, int category) {
    beginResetModel();
    m_category = category;
    m_ids = std::move(ids);
    m_amounts = std::move(amounts);
    m_entries.clear();
    m_entries.resize(m_ids.size());
    endResetModel();
}

CashEntry CashGridModel::shown(CashEntry e) const {
    // With a category chosen the grid holds that amount alone.
    if (m_category > 0)
        for (int i = 0; i < CashCategory::kCount; ++i)
            if (i != m_category - 1)
                e.amounts[i].clear();
    return e;
}

void CashGridModel::load(int row) const {
    const int first = row / kBlock * kBlock;
    const int last = std::min(rowCount(), first + kBlock);
    std::vector<qint64> ids;
    std::vector<int> rows;
    for (int r = first; r < last; ++r)
        if (!m_entries[static_cast<size_t>(r)]) {
            ids.push_back(m_ids[static_cast<size_t>(r)]);
            rows.push_back(r);
        }
    std::vector<CashEntry> read;
    if (!m_load || !m_load(ids, &read)) {
        // Unread, the row still keeps its key: an edit of it writes that record, never a new one.
        read.assign(ids.size(), CashEntry());
        for (size_t i = 0; i < ids.size(); ++i)
            read[i].id = QString::number(ids[i]);
    }
    for (size_t i = 0; i < rows.size(); ++i)
        m_entries[static_cast<size_t>(rows[i])] = std::make_unique<CashEntry>(shown(read.at(i)));
}

const CashEntry &CashGridModel::entry(int row) const {
    static const CashEntry none;
    if (row < 0 || row >= rowCount())
        return none;
    if (!m_entries[static_cast<size_t>(row)])
        load(row);
    return *m_entries[static_cast<size_t>(row)];
}

void CashGridModel::setEntry(int row, const CashEntry &entry) {
    const auto r = static_cast<size_t>(row);
    m_entries.at(r) = std::make_unique<CashEntry>(shown(entry));
    m_ids[r] = entry.id.toLongLong();
    m_amounts[r].readAll(*m_entries[r]);
    emit dataChanged(index(row, 0), index(row, CashCol::Count - 1));
}

void CashGridModel::appendEntry(const CashEntry &entry) {
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_ids.push_back(entry.id.toLongLong());
    m_entries.push_back(std::make_unique<CashEntry>(shown(entry)));
    CashAmounts a;
    a.readAll(*m_entries.back());
    m_amounts.push_back(a);
    endInsertRows();
}

void CashGridModel::removeAt(int row) {
    beginRemoveRows({}, row, row);
    m_ids.erase(m_ids.begin() + row);
    m_amounts.erase(m_amounts.begin() + row);
    m_entries.erase(m_entries.begin() + row);
    endRemoveRows();
}

int CashGridModel::rowOf(const QString &id) const {
    bool ok = false;
    const qint64 key = id.toLongLong(&ok);
    if (!ok || key == 0)
        return -1;
    const auto it = std::find(m_ids.begin(), m_ids.end(), key);
    return it == m_ids.end() ? -1 : static_cast<int>(it - m_ids.begin());
}

namespace {

// The member of a receipt line that a column of GridCheki shows; null for the marker.
QString CheckLine::*checkMember(int column) {
    switch (column) {
    case ChecksCol::Date:
        return &CheckLine::date;
    case ChecksCol::Name:
        return &CheckLine::name;
    case ChecksCol::Unit:
        return &CheckLine::edizm;
    case ChecksCol::Quantity:
        return &CheckLine::kolvo;
    case ChecksCol::Price:
        return &CheckLine::price;
    case ChecksCol::Sum:
        return &CheckLine::sum;
    case ChecksCol::Id:
        return &CheckLine::id;
    default:
        return nullptr;
    }
}

} // namespace

QString checkCell(const CheckLine &l, int column) {
    QString CheckLine::*member = checkMember(column);
    return member ? l.*member : QString();
}

void setCheckCell(CheckLine *l, int column, const QString &text) {
    // The key is the book's, never typed.
    if (QString CheckLine::*member = checkMember(column); member && column != ChecksCol::Id)
        l->*member = text;
}

ChecksModel::ChecksModel(QObject *parent) : CashTableModel(ChecksCol::titles(), parent) {}

int ChecksModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
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

Qt::ItemFlags ChecksModel::flags(const QModelIndex &index) const {
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.column() >= ChecksCol::Date && index.column() <= ChecksCol::Sum)
        f |= Qt::ItemIsEditable;
    return f;
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
