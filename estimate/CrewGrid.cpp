#include "CrewGrid.h"

#include <QBrush>
#include <QColor>
#include <algorithm>

CrewGrid::CrewGrid(QObject *parent) : CrewGridRows(parent) {
    m_rows.push_back(emptyRow());
}

CrewRow CrewGrid::emptyRow() const {
    CrewRow r;
    r.cells = QStringList(CrewCol::Count); // exactly the columns: a grid holds a hundred thousand rows
    return r;
}

QString CrewGrid::cell(int gridRow, int col) const {
    const int m = gridRow - kFixedRows;
    if (m < 0 || m >= static_cast<int>(m_rows.size()) || col < 0 || col >= CrewCol::Count)
        return {};
    return m_rows[static_cast<size_t>(m)].cells.at(col);
}

void CrewGrid::setCell(int gridRow, int col, const QString &text) {
    const int m = gridRow - kFixedRows;
    if (m < 0 || col < 0 || col >= CrewCol::Count)
        return;
    if (m >= static_cast<int>(m_rows.size()))
        setGridRowCount(gridRow + 1);
    QString &target = m_rows[static_cast<size_t>(m)].cells[col];
    if (target == text)
        return;
    target = text;
    cellChanged(m, col);
}

void CrewGrid::cellChanged(int modelRow, int col, const QList<int> &roles) {
    if (m_held == 0) {
        emit dataChanged(index(modelRow, col), index(modelRow, col), roles);
        return;
    }
    m_firstChanged = m_firstChanged < 0 ? modelRow : std::min(m_firstChanged, modelRow);
    m_lastChanged = std::max(m_lastChanged, modelRow);
}

void CrewGrid::releaseSignals() {
    if (m_held == 0 || --m_held > 0 || m_firstChanged < 0)
        return;
    const int last = std::min(m_lastChanged, rowCount() - 1);
    const int first = m_firstChanged;
    m_firstChanged = m_lastChanged = -1;
    if (first <= last)
        emit dataChanged(index(first, 0), index(last, CrewCol::Count - 1));
}

void CrewGrid::setAllRows(std::vector<QStringList> rows) {
    beginResetModel();
    m_rows.clear();
    for (QStringList &r : rows) {
        while (r.size() < CrewCol::Count)
            r << QString();
        m_rows.push_back(CrewRow{std::move(r), {}});
    }
    if (m_rows.empty())
        m_rows.push_back(emptyRow());
    endResetModel();
}

QString CrewGrid::headerText(int col) {
    static const QStringList h = {
        "№",     "№ рас.", "Наименование работ", "Ед. изм.",    "Кол-во", "Цена", "Сумма",
        "idRas", "k",      "Цена (зак.)",        "Сумма (зак.)"};
    return col >= 0 && col < h.size() ? h.at(col) : QString();
}

int CrewGrid::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : CrewCol::Count;
}

QVariant CrewGrid::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return cell(index.row() + kFixedRows, index.column());
    if (role == Qt::BackgroundRole || role == Qt::ToolTipRole) {
        const QString problem = cellProblem(index.row() + kFixedRows, index.column());
        if (problem.isEmpty())
            return {};
        return role == Qt::ToolTipRole ? QVariant(problem) : QVariant(QBrush(QColor(0xFF, 0xC8, 0xC8)));
    }
    if (role == Qt::TextAlignmentRole && index.column() >= CrewCol::Qty && index.column() != CrewCol::IdRas)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

bool CrewGrid::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const int gridRow = index.row() + kFixedRows;
    const QString oldText = cell(gridRow, index.column());
    const QString newText = value.toString();
    if (oldText == newText)
        return true;
    setCell(gridRow, index.column(), newText);
    emit cellEdited(gridRow, index.column(), oldText, newText);
    return true;
}

Qt::ItemFlags CrewGrid::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    // Only the crew coefficient is typed in; every other cell follows the estimate.
    if (index.column() == CrewCol::Koef)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant CrewGrid::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    return orientation == Qt::Horizontal ? headerText(section)
                                         : QVariant(QString::number(section + kFixedRows));
}

void CrewGrid::setCellProblem(int gridRow, int col, const QString &reason) {
    if (!isDataRow(gridRow))
        return;
    auto &problems = row(gridRow).problems;
    if (reason.isEmpty() ? !problems.contains(col) : problems.value(col) == reason)
        return;
    if (reason.isEmpty())
        problems.remove(col);
    else
        problems.insert(col, reason);
    cellChanged(toModelRow(gridRow), col, {Qt::BackgroundRole, Qt::ToolTipRole});
}

QString CrewGrid::cellProblem(int gridRow, int col) const {
    return isDataRow(gridRow) ? row(gridRow).problems.value(col) : QString();
}
