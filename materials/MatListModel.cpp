#include "MatListModel.h"

#include "storage/TextValues.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <algorithm>

namespace {

const char *columnName(int col) {
    switch (col) {
    case MatListCol::Name:
        return "namemat";
    case MatListCol::Unit:
        return "edizm";
    case MatListCol::Price:
        return "price";
    case MatListCol::Reserve:
        return "nummat";
    default:
        return nullptr;
    }
}

QString cellText(const MatRow &r, int col) {
    switch (col) {
    case MatListCol::Name:
        return r.name;
    case MatListCol::Unit:
        return r.unit;
    case MatListCol::Price:
        return r.price;
    case MatListCol::Qty:
        return r.quantity;
    case MatListCol::Id:
        return r.id;
    case MatListCol::Reserve:
        return r.nummat;
    default:
        return {};
    }
}

QString *cellField(MatRow &r, int col) {
    switch (col) {
    case MatListCol::Name:
        return &r.name;
    case MatListCol::Unit:
        return &r.unit;
    case MatListCol::Price:
        return &r.price;
    case MatListCol::Qty:
        return &r.quantity;
    case MatListCol::Reserve:
        return &r.nummat;
    default:
        return nullptr;
    }
}

} // namespace

MatListModel::MatListModel(std::function<QSqlDatabase()> database, QObject *parent)
    : QAbstractTableModel(parent), m_database(std::move(database)) {}

void MatListModel::setRows(std::vector<MatRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    m_visible.clear();
    m_narrowed = false;
    endResetModel();
}

int MatListModel::sourceRow(int modelRow) const {
    if (modelRow < 0 || modelRow >= rowCount())
        return -1;
    return m_narrowed ? m_visible[static_cast<size_t>(modelRow)] : modelRow;
}

int MatListModel::modelRowOf(int index) const {
    if (!m_narrowed)
        return index >= 0 && index < static_cast<int>(m_rows.size()) ? index : -1;
    const auto it = std::lower_bound(m_visible.begin(), m_visible.end(), index);
    return it != m_visible.end() && *it == index ? static_cast<int>(it - m_visible.begin()) : -1;
}

const MatRow *MatListModel::rowAt(int modelRow) const {
    const int i = sourceRow(modelRow);
    return i < 0 ? nullptr : &m_rows[static_cast<size_t>(i)];
}

void MatListModel::showRange(int first, int last) {
    beginResetModel();
    m_visible.clear();
    first = std::max(first, 0);
    last = std::min(last, static_cast<int>(m_rows.size()) - 1);
    for (int i = first; i <= last; ++i)
        m_visible.push_back(i);
    m_narrowed = true;
    endResetModel();
}

void MatListModel::showAll() {
    if (!m_narrowed)
        return;
    beginResetModel();
    m_visible.clear();
    m_narrowed = false;
    endResetModel();
}

void MatListModel::setEditMode(bool on) {
    if (m_editMode == on)
        return;
    beginResetModel(); // the editable columns change
    m_editMode = on;
    endResetModel();
}

std::vector<int> MatListModel::checkedRows() const {
    std::vector<int> out;
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].checked)
            out.push_back(static_cast<int>(i));
    return out;
}

void MatListModel::setChecked(int index, bool on) {
    if (index < 0 || index >= static_cast<int>(m_rows.size()) ||
        m_rows[static_cast<size_t>(index)].checked == on)
        return;
    m_rows[static_cast<size_t>(index)].checked = on;
    const int row = modelRowOf(index);
    if (row >= 0)
        emit dataChanged(this->index(row, MatListCol::Check), this->index(row, MatListCol::Check),
                         {Qt::CheckStateRole});
}

void MatListModel::clearQuantity(int index) {
    if (index < 0 || index >= static_cast<int>(m_rows.size()) ||
        m_rows[static_cast<size_t>(index)].quantity.isEmpty())
        return;
    m_rows[static_cast<size_t>(index)].quantity.clear();
    const int row = modelRowOf(index);
    if (row >= 0)
        emit dataChanged(this->index(row, MatListCol::Qty), this->index(row, MatListCol::Qty));
}

int MatListModel::insertRowBefore(int modelRow) {
    m_error.clear();
    const int before = sourceRow(modelRow);
    const QString beforeId = before < 0 ? QString() : m_rows[static_cast<size_t>(before)].id;
    const QString id = MatListStore::insertRow(m_database(), table(), beforeId, &m_error);
    if (id.isEmpty())
        return -1;
    MatRow row;
    row.id = id;
    // Before that row, or at the end of the whole list (a narrowed view shows it last).
    const int index = before < 0 ? static_cast<int>(m_rows.size()) : before;
    const int at = before < 0 ? rowCount() : modelRow;
    beginInsertRows({}, at, at);
    m_rows.insert(m_rows.begin() + index, std::move(row));
    if (m_narrowed) {
        for (int &v : m_visible)
            if (v >= index)
                ++v;
        m_visible.insert(m_visible.begin() + at, index);
    }
    endInsertRows();
    emit sheetEdited();
    return at;
}

bool MatListModel::removeModelRows(std::vector<int> modelRows) {
    m_error.clear();
    std::sort(modelRows.begin(), modelRows.end());
    modelRows.erase(std::unique(modelRows.begin(), modelRows.end()), modelRows.end());
    QStringList ids;
    std::vector<int> indices;
    for (int r : modelRows) {
        const int i = sourceRow(r);
        if (i < 0)
            continue;
        ids << m_rows[static_cast<size_t>(i)].id;
        indices.push_back(i);
    }
    if (ids.isEmpty())
        return true;
    if (!MatListStore::removeRows(m_database(), table(), ids, &m_error))
        return false;
    beginResetModel();
    std::vector<char> gone(m_rows.size(), 0);
    for (int i : indices)
        gone[static_cast<size_t>(i)] = 1;
    std::vector<int> shift(m_rows.size() + 1, 0); // removed rows before each index
    for (size_t i = 0; i < m_rows.size(); ++i)
        shift[i + 1] = shift[i] + gone[i];
    std::vector<MatRow> kept;
    kept.reserve(m_rows.size() - indices.size());
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (!gone[i])
            kept.push_back(std::move(m_rows[i]));
    if (m_narrowed) {
        std::vector<int> visible;
        for (int v : m_visible)
            if (!gone[static_cast<size_t>(v)])
                visible.push_back(v - shift[static_cast<size_t>(v)]);
        m_visible = std::move(visible);
    }
    m_rows = std::move(kept);
    endResetModel();
    emit sheetEdited();
    return true;
}

QString MatListModel::priceProblem(const MatRow &row) {
    if (matRowKind(row) != MatRowKind::Material || TextValues::isBlank(row.price))
        return {};
    if (TextValues::parsePrice(row.price))
        return {};
    return QStringLiteral("Цена «%1» не является числом: в смету материал попадёт без суммы.").arg(row.price);
}

int MatListModel::rowCount(const QModelIndex &parent) const {
    if (parent.isValid())
        return 0;
    return m_narrowed ? static_cast<int>(m_visible.size()) : static_cast<int>(m_rows.size());
}

int MatListModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : MatListCol::Count;
}

QVariant MatListModel::data(const QModelIndex &index, int role) const {
    const MatRow *r = index.isValid() ? rowAt(index.row()) : nullptr;
    if (!r)
        return {};
    const int col = index.column();
    const MatRowKind kind = matRowKind(*r);
    const bool title = kind == MatRowKind::Group || kind == MatRowKind::Subgroup;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return col == MatListCol::Check ? QVariant() : QVariant(cellText(*r, col));
    case Qt::CheckStateRole:
        return col == MatListCol::Check ? QVariant(r->checked ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::FontRole:
        if (title) {
            QFont f;
            f.setBold(true);
            f.setItalic(kind == MatRowKind::Subgroup);
            return f;
        }
        return {};
    case Qt::BackgroundRole:
        if (col == MatListCol::Price && !priceProblem(*r).isEmpty())
            return QBrush(QColor(0xFF, 0xC8, 0xC8));
        if (title)
            return QBrush(kind == MatRowKind::Group ? QColor(0xDD, 0xE6, 0xF3) : QColor(0xEE, 0xF2, 0xF8));
        return {};
    case Qt::ForegroundRole:
        return col == MatListCol::Price && !priceProblem(*r).isEmpty() ? QVariant(QBrush(QColor(0xB0, 0, 0)))
                                                                       : QVariant();
    case Qt::ToolTipRole:
        if (col == MatListCol::Price)
            return priceProblem(*r).isEmpty() ? QVariant() : QVariant(priceProblem(*r));
        return col == MatListCol::Name && !r->name.isEmpty() ? QVariant(r->name) : QVariant();
    case Qt::TextAlignmentRole:
        return col == MatListCol::Price || col == MatListCol::Qty
                   ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    default:
        return {};
    }
}

bool MatListModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    const int i = index.isValid() ? sourceRow(index.row()) : -1;
    if (i < 0)
        return false;
    MatRow &r = m_rows[static_cast<size_t>(i)];
    const int col = index.column();
    if (role == Qt::CheckStateRole && col == MatListCol::Check) {
        setChecked(i, value.toInt() == Qt::Checked);
        return true;
    }
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    QString *field = cellField(r, col);
    if (!field)
        return false;
    const QString text = value.toString();
    if (*field == text)
        return true;
    if (const char *column = columnName(col)) {
        m_error.clear();
        if (!MatListStore::setCell(m_database(), table(), r.id, QLatin1String(column), text, &m_error))
            return false;
    }
    *field = text;
    // A name or unit can make the row a title or a material again: the whole row is drawn anew.
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), MatListCol::Count - 1));
    if (col != MatListCol::Qty)
        emit sheetEdited();
    return true;
}

Qt::ItemFlags MatListModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const int col = index.column();
    if (col == MatListCol::Check)
        return f | Qt::ItemIsUserCheckable;
    if (m_editMode && columnName(col))
        f |= Qt::ItemIsEditable;
    if (!m_editMode && col == MatListCol::Qty)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant MatListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const QStringList h = {QStringLiteral("Наименование материала"),
                                  QStringLiteral("Ед. изм."),
                                  QStringLiteral("Цена"),
                                  QStringLiteral("Кол-во"),
                                  QStringLiteral("ID"),
                                  QStringLiteral("резерв"),
                                  QStringLiteral("check")};
    return section >= 0 && section < h.size() ? h.at(section) : QVariant();
}
