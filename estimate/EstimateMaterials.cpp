#include "EstimateMaterials.h"

#include "MaterialsStore.h"
#include "RowAmount.h"
#include "storage/TextValues.h"

#include <QBrush>
#include <QColor>
#include <QSqlQuery>
#include <QVariant>

namespace {

const char *columnName(int col) {
    switch (col) {
    case MatCol::Name:
        return "namemat";
    case MatCol::Unit:
        return "edizm";
    case MatCol::Qty:
        return "kolvo";
    case MatCol::Price:
        return "price";
    case MatCol::Sum:
        return "summa";
    case MatCol::Note:
        return "note";
    default:
        return nullptr;
    }
}

} // namespace

EstimateMaterials::EstimateMaterials(std::function<QSqlDatabase()> database, QObject *parent)
    : QAbstractTableModel(parent), m_database(std::move(database)) {}

void EstimateMaterials::evaluate(Row &row) const {
    const RowAmount a =
        RowAmount::of(row.cells[MatCol::Qty], row.cells[MatCol::Price], row.cells[MatCol::Sum]);
    row.problems.clear();
    if (!a.quantityProblem.isEmpty())
        row.problems.insert(MatCol::Qty, a.quantityProblem);
    if (!a.priceProblem.isEmpty())
        row.problems.insert(MatCol::Price, a.priceProblem);
    if (!a.sumProblem.isEmpty())
        row.problems.insert(MatCol::Sum, a.sumProblem);
    row.counted = a.amount.has_value();
    row.amount = a.amount.value_or(Money());
}

void EstimateMaterials::sum() {
    MoneyResult total = Money();
    for (const Row &r : m_rows)
        if (r.counted)
            total += r.amount;
    if (total != m_total) {
        m_total = total;
        emit totalChanged();
    }
}

int EstimateMaterials::problemCellCount() const {
    int n = 0;
    for (const Row &r : m_rows)
        n += static_cast<int>(r.problems.size());
    return n;
}

void EstimateMaterials::reload() {
    beginResetModel();
    m_rows.clear();
    QSqlDatabase db = m_database();
    if (db.isOpen()) {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (q.exec(
                QStringLiteral("SELECT _id, edras, namemat, edizm, kolvo, price, summa, note FROM materials "
                               "WHERE 1 ORDER BY _id"))) {
            while (q.next()) {
                Row r;
                r.id = q.value(0).toString();
                r.edras = q.value(1).toString();
                r.cells = QStringList{QString(),
                                      q.value(2).toString(),
                                      q.value(3).toString(),
                                      q.value(4).toString(),
                                      q.value(5).toString(),
                                      q.value(6).toString(),
                                      q.value(7).toString()};
                evaluate(r);
                m_rows.push_back(std::move(r));
            }
        }
    }
    endResetModel();
    sum();
}

int EstimateMaterials::addRow() {
    m_error.clear();
    const QString id = MaterialsStore::add(m_database(), {}, &m_error);
    if (id.isEmpty())
        return -1;
    Row r;
    r.id = id;
    r.cells = QStringList{QString(), QString(), QString(), QString(), QString(), QString(), QString()};
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back(std::move(r));
    endInsertRows();
    return row;
}

bool EstimateMaterials::removeRows(int first, int last) {
    if (first < 0 || last >= rowCount() || first > last)
        return false;
    m_error.clear();
    QStringList ids;
    for (int i = first; i <= last; ++i)
        ids << m_rows[static_cast<size_t>(i)].id;
    if (!MaterialsStore::removeByIds(m_database(), ids, &m_error))
        return false;
    beginRemoveRows({}, first, last);
    m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
    endRemoveRows();
    if (first < rowCount())
        emit dataChanged(index(first, MatCol::Num), index(rowCount() - 1, MatCol::Num));
    sum();
    return true;
}

int EstimateMaterials::rowOfId(const QString &id) const {
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].id == id)
            return static_cast<int>(i);
    return -1;
}

QString EstimateMaterials::idAt(int row) const {
    return row >= 0 && row < rowCount() ? m_rows[static_cast<size_t>(row)].id : QString();
}

QString EstimateMaterials::cellProblem(int row, int col) const {
    return row >= 0 && row < rowCount() ? m_rows[static_cast<size_t>(row)].problems.value(col) : QString();
}

QString EstimateMaterials::rowId(int row) const {
    return row >= 0 && row < rowCount() ? m_rows[static_cast<size_t>(row)].id : QString();
}

int EstimateMaterials::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int EstimateMaterials::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : MatCol::Count;
}

QVariant EstimateMaterials::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row &r = m_rows[static_cast<size_t>(index.row())];
    const QString problem = r.problems.value(index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return index.column() == MatCol::Num ? QString::number(index.row() + 1) : r.cells.at(index.column());
    case Qt::BackgroundRole:
        return problem.isEmpty() ? QVariant() : QVariant(QBrush(QColor(0xFF, 0xC8, 0xC8)));
    case Qt::ToolTipRole:
        return problem.isEmpty() ? QVariant() : QVariant(problem);
    case Qt::TextAlignmentRole:
        return index.column() >= MatCol::Qty && index.column() <= MatCol::Sum
                   ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    default:
        return {};
    }
}

bool EstimateMaterials::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    Row r = m_rows[static_cast<size_t>(index.row())];
    r.cells[index.column()] = value.toString();
    evaluate(r);
    const bool computed =
        !TextValues::isBlank(r.cells[MatCol::Qty]) || !TextValues::isBlank(r.cells[MatCol::Price]);
    if (computed)
        r.cells[MatCol::Sum] = r.counted ? r.amount.text() : QString();

    m_error.clear();
    if (!MaterialsStore::setCell(m_database(), r.id, QLatin1String(columnName(index.column())),
                                 r.cells[index.column()], r.cells[MatCol::Sum], &m_error))
        return false;
    m_rows[static_cast<size_t>(index.row())] = std::move(r);
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), MatCol::Count - 1));
    sum();
    return true;
}

Qt::ItemFlags EstimateMaterials::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const int c = index.column();
    if (c == MatCol::Name || c == MatCol::Unit || c == MatCol::Qty || c == MatCol::Price || c == MatCol::Note)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant EstimateMaterials::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const QStringList h = {QStringLiteral("№"),         QStringLiteral("Наименование материала"),
                                  QStringLiteral("Ед. изм."),  QStringLiteral("Кол-во"),
                                  QStringLiteral("Цена"),      QStringLiteral("Сумма"),
                                  QStringLiteral("Примечание")};
    return section >= 0 && section < h.size() ? h.at(section) : QVariant();
}
