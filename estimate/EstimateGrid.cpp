#include "EstimateGrid.h"

#include "storage/TextValues.h"

#include <QBrush>

RowKind rowKindFromMarker(const QString &marker) {
    const QString m = marker.trimmed();
    if (m == QLatin1String("br"))
        return RowKind::SectionStart;
    if (m == QLatin1String("bp"))
        return RowKind::SubsectionStart;
    if (m == QLatin1String("ir"))
        return RowKind::SectionTotal;
    if (m == QLatin1String("ip"))
        return RowKind::SubsectionTotal;
    return RowKind::Work;
}

QString markerOf(RowKind kind) {
    switch (kind) {
    case RowKind::SectionStart:
        return QStringLiteral("br");
    case RowKind::SubsectionStart:
        return QStringLiteral("bp");
    case RowKind::SectionTotal:
        return QStringLiteral("ir");
    case RowKind::SubsectionTotal:
        return QStringLiteral("ip");
    case RowKind::Work:
        break;
    }
    return {};
}

EstimateGrid::EstimateGrid(QObject *parent) : EstimateGridRows(parent) {
    m_rows.push_back(emptyRow());
}

EstimateGrid::Row EstimateGrid::emptyRow() const {
    Row r;
    r.cells = QStringList(EstimateCol::Count); // exactly the columns: a grid holds a hundred thousand rows
    return r;
}

QString EstimateGrid::cell(int gridRow, int col) const {
    if (!isDataRow(gridRow) || col < 0 || col >= EstimateCol::Count)
        return {};
    return row(gridRow).cells.at(col);
}

void EstimateGrid::setCell(int gridRow, int col, const QString &text) {
    if (!isDataRow(gridRow) || col < 0 || col >= EstimateCol::Count)
        return;
    QString &target = row(gridRow).cells[col];
    if (target == text)
        return;
    target = text;
    const QModelIndex idx = index(toModelRow(gridRow), col);
    emit dataChanged(idx, idx);
    if (col == EstimateCol::Name || col == EstimateCol::Kind || col == EstimateCol::Sum) {
        // Colours of the whole row follow its name and kind.
        emit dataChanged(index(idx.row(), 0), index(idx.row(), EstimateCol::Count - 1), {Qt::ForegroundRole});
    }
    emit contentChanged();
}

QStringList EstimateGrid::rowCells(int gridRow) const {
    return isDataRow(gridRow) ? row(gridRow).cells : emptyRow().cells;
}

void EstimateGrid::setRowCells(int gridRow, const QStringList &cells) {
    if (!isDataRow(gridRow))
        return;
    Row &r = row(gridRow);
    for (int c = 0; c < EstimateCol::Count; ++c)
        r.cells[c] = c < cells.size() ? cells.at(c) : QString();
    r.problems.clear();
    m_problemCount = -1;
    const int m = toModelRow(gridRow);
    emit dataChanged(index(m, 0), index(m, EstimateCol::Count - 1));
    emit contentChanged();
}

RowKind EstimateGrid::kind(int gridRow) const {
    return rowKindFromMarker(cell(gridRow, EstimateCol::Kind));
}

void EstimateGrid::clear() {
    beginResetModel();
    m_rows.clear();
    m_rows.push_back(emptyRow());
    m_problemCount = -1;
    endResetModel();
    emit contentChanged();
}

void EstimateGrid::setAllRows(std::vector<QStringList> rows) {
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(rows.size());
    for (QStringList &cells : rows) {
        Row r;
        if (cells.size() == EstimateCol::Count) {
            r.cells = std::move(cells); // the row as it comes, not a copy beside it
        } else {
            r = emptyRow();
            for (int c = 0; c < EstimateCol::Count && c < cells.size(); ++c)
                r.cells[c] = std::move(cells[c]);
        }
        m_rows.push_back(std::move(r));
    }
    if (m_rows.empty())
        m_rows.push_back(emptyRow());
    m_problemCount = -1;
    endResetModel();
    emit contentChanged();
}

bool EstimateGrid::canEdit(RowKind kind, int col) {
    if (col == EstimateCol::Total || col == EstimateCol::Itogo)
        return false;
    switch (kind) {
    case RowKind::SectionStart:
    case RowKind::SubsectionStart:
        return col == EstimateCol::Name;
    case RowKind::SectionTotal:
    case RowKind::SubsectionTotal:
        return false;
    case RowKind::Work:
        return true;
    }
    return false;
}

bool EstimateGrid::canEditCell(int gridRow, int col) const {
    return isDataRow(gridRow) && canEdit(kind(gridRow), col);
}

QString EstimateGrid::headerText(int headerRow, int col) {
    static const QStringList row0 = {"№",
                                     "№ рас.",
                                     "Наименование работ",
                                     "Ед. изм.",
                                     "Кол-во",
                                     "Цена",
                                     "Сумма",
                                     "idRas",
                                     "idDoc",
                                     "NamePrice",
                                     "colSelect",
                                     "numRazdel",
                                     "Стоимость за ед.изм.",
                                     "",
                                     "",
                                     "",
                                     "Итого"};
    static const QStringList row1 = {"", "", "", "",       "",         "",       "",      "", "",
                                     "", "", "", "машины", "материал", "работа", "всего", ""};
    if (col < 0 || col >= EstimateCol::Count)
        return {};
    return headerRow == 0 ? row0.at(col) : row1.at(col);
}

void EstimateGrid::setDarkStyle(bool dark) {
    if (m_dark == dark)
        return;
    m_dark = dark;
    if (!m_rows.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, EstimateCol::Count - 1), {Qt::ForegroundRole});
}

QColor EstimateGrid::foregroundFor(int gridRow, int col) const {
    const QString name = cell(gridRow, EstimateCol::Name);
    if (col == EstimateCol::Sum) {
        auto v = TextValues::parseAmount(cell(gridRow, EstimateCol::Sum));
        if (v && v->isZero())
            return QColor(Qt::red);
    }
    QColor colour;
    if (name.contains(QStringLiteral("§ ")))
        colour = m_dark ? QColor(0xD8, 0xDA, 0xC3) : QColor(0x05, 0xA3, 0xA3);
    // The section rule is tested after the subsection rule and wins.
    if (name.contains(QStringLiteral("РАЗДЕЛ ")) || name.contains(QStringLiteral("Раздел ")) ||
        name.contains(RowText::sectionTotalPrefix))
        colour = m_dark ? QColor(0xF4, 0xF9, 0xC8) : QColor(0x08, 0x72, 0x72);
    return colour;
}

int EstimateGrid::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : EstimateCol::Count;
}

QVariant EstimateGrid::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    const int gridRow = toGridRow(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return cell(gridRow, index.column());
    case Qt::ForegroundRole: {
        QColor c = foregroundFor(gridRow, index.column());
        return c.isValid() ? QVariant(QBrush(c)) : QVariant();
    }
    case Qt::BackgroundRole:
        if (!cellProblem(gridRow, index.column()).isEmpty())
            return QBrush(QColor(0xFF, 0xC8, 0xC8));
        return {};
    case Qt::ToolTipRole: {
        QString p = cellProblem(gridRow, index.column());
        return p.isEmpty() ? QVariant() : QVariant(p);
    }
    case Qt::TextAlignmentRole:
        if (index.column() >= EstimateCol::Qty && index.column() <= EstimateCol::Sum)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        if (index.column() >= EstimateCol::Machine)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    default:
        return {};
    }
}

bool EstimateGrid::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const int gridRow = toGridRow(index.row());
    if (!canEditCell(gridRow, index.column()))
        return false;
    const QString oldText = cell(gridRow, index.column());
    const QString newText = value.toString();
    if (oldText == newText)
        return true;
    setCell(gridRow, index.column(), newText);
    emit cellEdited(gridRow, index.column(), oldText, newText);
    return true;
}

Qt::ItemFlags EstimateGrid::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled;
    if (canEditCell(toGridRow(index.row()), index.column()))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant EstimateGrid::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return headerText(0, section);
    return QString::number(toGridRow(section));
}

void EstimateGrid::setCellProblem(int gridRow, int col, const QString &reason) {
    if (!isDataRow(gridRow))
        return;
    auto &problems = row(gridRow).problems;
    if (reason.isEmpty() ? !problems.contains(col) : problems.value(col) == reason)
        return;
    if (m_problemCount >= 0 && reason.isEmpty() != !problems.contains(col))
        m_problemCount += reason.isEmpty() ? -1 : 1;
    if (reason.isEmpty())
        problems.remove(col);
    else
        problems.insert(col, reason);
    const QModelIndex idx = index(toModelRow(gridRow), col);
    emit dataChanged(idx, idx, {Qt::BackgroundRole, Qt::ToolTipRole});
}

QString EstimateGrid::cellProblem(int gridRow, int col) const {
    return isDataRow(gridRow) ? row(gridRow).problems.value(col) : QString();
}

int EstimateGrid::problemCellCount() const {
    if (m_problemCount < 0) {
        m_problemCount = 0;
        for (const Row &r : m_rows)
            m_problemCount += static_cast<int>(r.problems.size());
    }
    return m_problemCount;
}
