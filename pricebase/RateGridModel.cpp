#include "RateGridModel.h"

#include <QFont>
#include <QIODevice>
#include <QMimeData>
#include <algorithm>

namespace {
const QString kRowMime = QStringLiteral("application/x-virn-rate-row");
}

RateGridModel::RateGridModel(QObject *parent) : QAbstractTableModel(parent) {}

void RateGridModel::setRows(RateTable rows, bool asRead, RecIndex byRec) {
    beginResetModel();
    m_rows = std::move(rows);
    m_asRead = asRead;
    m_byRec = std::move(byRec);
    m_filtered = false;
    m_visible.clear();
    m_visible.shrink_to_fit();
    m_prefix.clear();
    endResetModel();
}

std::optional<int> RateGridModel::findRec(QByteArrayView rec) const {
    if (!m_asRead)
        return std::nullopt;
    if (m_byRec.isEmpty())
        m_byRec = RecIndex(m_rows);
    return m_byRec.find(m_rows, rec);
}

void RateGridModel::edited() {
    dropRecIndex();
    emit listEdited();
}

int RateGridModel::sourceIndex(int gridRow) const {
    const int m = toModelRow(gridRow);
    if (m < 0 || m >= visibleCount())
        return -1;
    return m_filtered ? m_visible[static_cast<size_t>(m)] : m;
}

int RateGridModel::gridRowOf(int index) const {
    if (index < 0 || index >= static_cast<int>(m_rows.size()))
        return -1;
    if (!m_filtered)
        return toGridRow(index);
    auto it = std::lower_bound(m_visible.begin(), m_visible.end(), index);
    if (it == m_visible.end() || *it != index)
        return -1;
    return toGridRow(static_cast<int>(it - m_visible.begin()));
}

QString RateGridModel::cell(int gridRow, int col) const {
    const int i = sourceIndex(gridRow);
    if (i < 0 || col < 0 || col >= PriceCol::TextCount)
        return {};
    return m_rows.cell(static_cast<size_t>(i), col);
}

void RateGridModel::setCell(int gridRow, int col, const QString &text) {
    if (col < 0 || col >= PriceCol::TextCount)
        return;
    int i = sourceIndex(gridRow);
    if (i < 0) {
        // Typing into the placeholder row of an empty list makes it a real row.
        if (gridRow != 1 || visibleCount() != 0 || text.isEmpty())
            return;
        gridRow = insertRowAt(1);
        i = sourceIndex(gridRow);
    }
    if (m_rows.cell(static_cast<size_t>(i), col) == text)
        return;
    m_rows.set(static_cast<size_t>(i), col, text);
    const QModelIndex idx = index(toModelRow(gridRow), col);
    emit dataChanged(idx, idx);
    edited();
}

bool RateGridModel::isChecked(int gridRow) const {
    const int i = sourceIndex(gridRow);
    return i >= 0 && m_rows.checked(static_cast<size_t>(i));
}

void RateGridModel::setChecked(int gridRow, bool on) {
    const int i = sourceIndex(gridRow);
    if (i < 0 || m_rows.checked(static_cast<size_t>(i)) == on)
        return;
    m_rows.setChecked(static_cast<size_t>(i), on);
    const QModelIndex idx = index(toModelRow(gridRow), PriceCol::Check);
    emit dataChanged(idx, idx, {Qt::CheckStateRole});
}

bool RateGridModel::matchesFilter(size_t row) const {
    const QString number = m_rows.cell(row, PriceCol::Ras);
    if (!number.startsWith(m_prefix))
        return false;
    if (number.size() == m_prefix.size())
        return m_includeSelf;
    return number.at(m_prefix.size()) == QLatin1Char('-');
}

void RateGridModel::rebuildVisible() {
    m_visible.clear();
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (matchesFilter(i))
            m_visible.push_back(static_cast<int>(i));
}

void RateGridModel::setNumberFilter(const QString &prefix, bool includeSelf) {
    beginResetModel();
    m_filtered = true;
    m_prefix = prefix;
    m_includeSelf = includeSelf;
    rebuildVisible();
    endResetModel();
}

void RateGridModel::clearFilter() {
    if (!m_filtered)
        return;
    beginResetModel();
    m_filtered = false;
    m_visible.clear();
    m_visible.shrink_to_fit();
    endResetModel();
}

int RateGridModel::findName(const QString &name, int fromGridRow) const {
    const QString wanted = name.trimmed();
    for (int r = std::max(1, fromGridRow); r < gridRowCount(); ++r)
        if (cell(r, PriceCol::Name).trimmed() == wanted)
            return r;
    return -1;
}

std::vector<int> RateGridModel::checkedIndices() const {
    std::vector<int> out;
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows.checked(i))
            out.push_back(static_cast<int>(i));
    return out;
}

void RateGridModel::clearChecks() {
    for (size_t i = 0; i < m_rows.size(); ++i)
        m_rows.setChecked(i, false);
    if (rowCount() > 0)
        emit dataChanged(index(0, PriceCol::Check), index(rowCount() - 1, PriceCol::Check),
                         {Qt::CheckStateRole});
}

void RateGridModel::setEditMode(bool on) {
    if (m_editMode == on)
        return;
    m_editMode = on;
    // Flags change for every cell.
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, PriceCol::Count - 1));
}

QString RateGridModel::nextRec() const {
    long long top = 0;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        bool ok = false;
        const long long v = m_rows.cell(i, PriceCol::Rec).trimmed().toLongLong(&ok);
        if (ok && v > top)
            top = v;
    }
    return QString::number(top + 1);
}

void RateGridModel::fillMissingRecs() {
    dropRecIndex();
    long long next = nextRec().toLongLong();
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows.cell(i, PriceCol::Rec).trimmed().isEmpty() && !m_rows.isBlank(i))
            m_rows.set(i, PriceCol::Rec, QString::number(next++));
}

int RateGridModel::insertRowAt(int gridRow) {
    const int visible = visibleCount();
    const int m = std::clamp(toModelRow(gridRow), 0, visible);
    // Source position: before the row shown at m, or after the last visible row.
    size_t pos = m_rows.size();
    if (m < visible)
        pos = static_cast<size_t>(sourceIndex(toGridRow(m)));
    else if (m_filtered && !m_visible.empty())
        pos = static_cast<size_t>(m_visible.back()) + 1;
    RateRow row;
    row.set(PriceCol::Rec, nextRec());
    // The placeholder row disappears as the first real row arrives: reset for that case.
    const bool wasEmpty = visible == 0;
    if (wasEmpty)
        beginResetModel();
    else
        beginInsertRows({}, m, m);
    m_rows.insert(pos, row);
    if (m_filtered) {
        for (int &v : m_visible)
            if (v >= static_cast<int>(pos))
                ++v;
        m_visible.insert(m_visible.begin() + m, static_cast<int>(pos));
    }
    if (wasEmpty)
        endResetModel();
    else
        endInsertRows();
    edited();
    return toGridRow(m);
}

void RateGridModel::removeGridRows(std::vector<int> gridRows) {
    std::sort(gridRows.begin(), gridRows.end());
    gridRows.erase(std::unique(gridRows.begin(), gridRows.end()), gridRows.end());
    std::vector<int> sources;
    for (int r : gridRows)
        if (int i = sourceIndex(r); i >= 0)
            sources.push_back(i);
    if (sources.empty())
        return;
    beginResetModel();
    std::vector<char> drop(m_rows.size(), 0);
    for (int i : sources)
        drop[static_cast<size_t>(i)] = 1;
    std::vector<int> newIndex(m_rows.size(), -1);
    int kept = 0;
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (!drop[i])
            newIndex[i] = kept++;
    m_rows.remove(drop);
    if (m_filtered) {
        std::vector<int> vis;
        for (int v : m_visible)
            if (newIndex[static_cast<size_t>(v)] >= 0)
                vis.push_back(newIndex[static_cast<size_t>(v)]);
        m_visible = std::move(vis);
    }
    endResetModel();
    edited();
}

void RateGridModel::moveGridRow(int from, int to) {
    const int a = sourceIndex(from), b = sourceIndex(to);
    if (a < 0 || b < 0 || a == b)
        return;
    const int mf = toModelRow(from), mt = toModelRow(to);
    if (!beginMoveRows({}, mf, mf, {}, mt > mf ? mt + 1 : mt))
        return;
    m_rows.move(static_cast<size_t>(a), static_cast<size_t>(b));
    // Visible source indices between a and b shift by one; the moved row takes b.
    if (m_filtered) {
        for (int &v : m_visible) {
            if (v == a)
                v = b;
            else if (a < b && v > a && v <= b)
                --v;
            else if (b < a && v >= b && v < a)
                ++v;
        }
        std::sort(m_visible.begin(), m_visible.end());
    }
    endMoveRows();
    edited();
}

void RateGridModel::renumber() {
    renumberRates(m_rows);
    if (rowCount() > 0)
        emit dataChanged(index(0, PriceCol::Ras), index(rowCount() - 1, PriceCol::Ras));
    edited();
}

int RateGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : std::max(1, visibleCount());
}

int RateGridModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : PriceCol::Count;
}

QVariant RateGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    const int gridRow = toGridRow(index.row());
    const int col = index.column();
    if (col == PriceCol::Check) {
        if (role == Qt::CheckStateRole && sourceIndex(gridRow) >= 0)
            return isChecked(gridRow) ? Qt::Checked : Qt::Unchecked;
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return cell(gridRow, col);
    case Qt::TextAlignmentRole:
        if (col == PriceCol::Price || col == PriceCol::Link)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::FontRole: {
        // Section and subsection titles stand out from the rates.
        const int i = sourceIndex(gridRow);
        if (i < 0 || col != PriceCol::Name)
            return {};
        const size_t row = static_cast<size_t>(i);
        if (priceRowKind(m_rows.utf8(row, PriceCol::Ras), m_rows.utf8(row, PriceCol::Unit)) ==
            PriceRowKind::Rate)
            return {};
        QFont f;
        f.setBold(true);
        return f;
    }
    default:
        return {};
    }
}

bool RateGridModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid())
        return false;
    const int gridRow = toGridRow(index.row());
    if (index.column() == PriceCol::Check && role == Qt::CheckStateRole) {
        setChecked(gridRow, value.toInt() == Qt::Checked);
        return true;
    }
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    setCell(gridRow, index.column(), value.toString());
    emit cellEdited(gridRow, index.column());
    return true;
}

Qt::ItemFlags RateGridModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return m_editMode ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const int col = index.column();
    if (col == PriceCol::Check)
        return f | Qt::ItemIsUserCheckable;
    if (m_editMode) {
        f |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
        if (col <= PriceCol::Price || col == PriceCol::Koef || col == PriceCol::Link)
            f |= Qt::ItemIsEditable;
    }
    return f;
}

QString RateGridModel::headerText(int col) {
    static const QStringList captions = {"№ рас.", "Наименование работ", "Ед. изм.",  "Цена",     "rec",
                                         "koef",   "id / Сумма",         "Для бриг.", "id склад", "checkbox"};
    return col >= 0 && col < captions.size() ? captions.at(col) : QString();
}

QVariant RateGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return headerText(section);
    return QString::number(toGridRow(section));
}

QStringList RateGridModel::mimeTypes() const {
    return {kRowMime};
}

QMimeData *RateGridModel::mimeData(const QModelIndexList &indexes) const {
    if (indexes.isEmpty())
        return nullptr;
    auto *mime = new QMimeData;
    mime->setData(kRowMime, QByteArray::number(toGridRow(indexes.first().row())));
    return mime;
}

bool RateGridModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int,
                                 const QModelIndex &parent) {
    if (!m_editMode || action != Qt::MoveAction || !data || !data->hasFormat(kRowMime))
        return false;
    bool ok = false;
    const int from = data->data(kRowMime).toInt(&ok);
    if (!ok)
        return false;
    // Dropped onto a row: take its place; between rows: before `row`; below the last row: at the end.
    int target = parent.isValid() ? parent.row() : (row < 0 ? visibleCount() - 1 : row);
    if (!parent.isValid() && row >= 0 && toModelRow(from) < row)
        target = row - 1;
    target = std::clamp(target, 0, visibleCount() - 1);
    moveGridRow(from, toGridRow(target));
    // The move is done here; the view must not remove the source row afterwards.
    return false;
}
