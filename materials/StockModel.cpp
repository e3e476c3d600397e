#include "StockModel.h"

#include "estimate/RowAmount.h"
#include "storage/TextValues.h"

#include <QBrush>
#include <QColor>

namespace {

const std::vector<StockField> kWarehouseColumns = {StockField::Name,  StockField::Unit, StockField::Qty,
                                                   StockField::Price, StockField::Sum,  StockField::Min};
const std::vector<StockField> kShopColumns = {StockField::Name, StockField::Unit, StockField::Qty,
                                              StockField::Price, StockField::Sale};

QString columnName(StockField f) {
    switch (f) {
    case StockField::Name:
        return QStringLiteral("namemat");
    case StockField::Unit:
        return QStringLiteral("edizm");
    case StockField::Qty:
        return QStringLiteral("kolvo");
    case StockField::Price:
        return QStringLiteral("price");
    case StockField::Sum:
        return QStringLiteral("summa");
    case StockField::Min:
        return QStringLiteral("minlimit");
    case StockField::Sale:
        return QStringLiteral("sale");
    }
    return {};
}

// The text of a field, for reading (const) or writing.
template <typename Item> auto cell(Item &s, StockField f) -> decltype(&s.name) {
    switch (f) {
    case StockField::Name:
        return &s.name;
    case StockField::Unit:
        return &s.unit;
    case StockField::Qty:
        return &s.quantity;
    case StockField::Price:
        return &s.price;
    case StockField::Sum:
        return &s.sum;
    case StockField::Min:
        return &s.minlimit;
    case StockField::Sale:
        return &s.sale;
    }
    return &s.name;
}

bool isNumber(StockField f) {
    return f != StockField::Name && f != StockField::Unit;
}

// "Количество", "Цена", …: what a refusal calls the column.
QString what(StockField f, StockMode mode) {
    switch (f) {
    case StockField::Qty:
        return QStringLiteral("Количество");
    case StockField::Price:
        return mode == StockMode::Shop ? QStringLiteral("Цена закупки") : QStringLiteral("Цена");
    case StockField::Sum:
        return QStringLiteral("Сумма");
    case StockField::Min:
        return QStringLiteral("Минимальный остаток");
    case StockField::Sale:
        return QStringLiteral("Цена продажи");
    default:
        return QString();
    }
}

} // namespace

StockModel::StockModel(std::function<QSqlDatabase()> database, QObject *parent)
    : QAbstractTableModel(parent), m_database(std::move(database)),
      m_today([] { return QDate::currentDate(); }) {}

const std::vector<StockField> &StockModel::columns() const {
    return m_mode == StockMode::Shop ? kShopColumns : kWarehouseColumns;
}

void StockModel::setMode(StockMode mode) {
    if (mode == m_mode)
        return;
    beginResetModel();
    m_mode = mode;
    endResetModel();
    recount();
}

void StockModel::setRows(std::vector<StockItem> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
    recount();
}

const StockItem *StockModel::rowAt(int row) const {
    return row >= 0 && row < rowCount() ? &m_rows[static_cast<size_t>(row)] : nullptr;
}

int StockModel::rowOfId(const QString &id) const {
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i].id == id)
            return static_cast<int>(i);
    return -1;
}

void StockModel::updateRow(const StockItem &item) {
    const int row = rowOfId(item.id);
    if (row < 0)
        return;
    m_rows[static_cast<size_t>(row)] = item;
    emit dataChanged(index(row, 0), index(row, columnCount() - 1));
    recount();
}

void StockModel::appendRow(const StockItem &item) {
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back(item);
    endInsertRows();
    recount();
}

void StockModel::removeRowAt(int row) {
    if (row < 0 || row >= rowCount())
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
    recount();
}

StockField StockModel::field(int column) const {
    const auto &c = columns();
    return column >= 0 && column < static_cast<int>(c.size()) ? c[static_cast<size_t>(column)]
                                                              : StockField::Name;
}

int StockModel::columnOf(StockField f) const {
    const auto &c = columns();
    for (size_t i = 0; i < c.size(); ++i)
        if (c[i] == f)
            return static_cast<int>(i);
    return -1;
}

void StockModel::recount() {
    m_low.assign(m_rows.size(), 0);
    m_below = 0;
    MoneyResult sum = Money();
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const StockItem &s = m_rows[i];
        if (belowMinimum(s)) {
            m_low[i] = 1;
            ++m_below;
        }
        const std::optional<Money> part = m_mode == StockMode::Shop ? stockMarkup(s) : stockAmount(s);
        if (part)
            sum += *part;
    }
    m_total = sum;
    emit totalChanged();
}

QString StockModel::totalText() const {
    const QString head =
        m_mode == StockMode::Shop ? QStringLiteral("Общая наценка ") : QStringLiteral("Сумма материалов ");
    return head + (m_total ? m_total.text() : numberProblemText(m_total.problem()));
}

int StockModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int StockModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns().size());
}

QVariant StockModel::data(const QModelIndex &index, int role) const {
    const StockItem *s = rowAt(index.row());
    if (!s || index.column() >= columnCount())
        return {};
    const bool low = m_low[static_cast<size_t>(index.row())] != 0;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return *cell(*s, field(index.column()));
    case Qt::ForegroundRole:
        return low ? QVariant(QBrush(QColor(176, 0, 0))) : QVariant();
    case Qt::BackgroundRole:
        return low ? QVariant(QBrush(QColor(255, 222, 222))) : QVariant();
    case Qt::ToolTipRole: {
        QString tip;
        if (low)
            tip = QStringLiteral("Меньше минимального остатка: на складе %1, минимум %2")
                      .arg(TextValues::isBlank(s->quantity) ? QStringLiteral("0") : s->quantity.trimmed(),
                           s->minlimit.trimmed());
        if (!s->date.isEmpty())
            tip += (tip.isEmpty() ? QString() : QStringLiteral("\n")) +
                   QStringLiteral("Поступление %1").arg(s->date);
        return tip.isEmpty() ? QVariant() : QVariant(tip);
    }
    case Qt::TextAlignmentRole:
        return isNumber(field(index.column())) ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    default:
        return {};
    }
}

bool StockModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole || !rowAt(index.row()) || index.column() >= columnCount())
        return false;
    const StockField f = field(index.column());
    StockItem row = m_rows[static_cast<size_t>(index.row())];
    QString typed = value.toString();
    if (isNumber(f)) {
        typed = TextValues::typedNumber(typed.trimmed());
        const TextValues::NumberReading n = TextValues::readNumber(typed, true);
        if (!typed.isEmpty() && (!n.value || n.value->isNegative())) {
            m_error = QStringLiteral("%1 «%2» %3")
                          .arg(what(f, m_mode), typed,
                               n.value ? QStringLiteral("меньше нуля") : numberProblemText(n.problem));
            emit editRefused(m_error);
            return false;
        }
    }
    if (typed == *cell(row, f))
        return true;
    *cell(row, f) = typed;
    QList<QPair<QString, QString>> cells{{columnName(f), typed}};
    if (f == StockField::Qty || f == StockField::Price) {
        // The sum follows the quantity and the price while both are numbers.
        const RowAmount amount = RowAmount::of(row.quantity, row.price, QString());
        if (amount.computed && amount.amount) {
            row.sum = amount.amountText();
            cells.append({QStringLiteral("summa"), row.sum});
        }
    }
    if (m_mode == StockMode::Shop) {
        const QDate day = m_today();
        cells.append({QStringLiteral("month"), TextValues::monthText(day)});
        cells.append({QStringLiteral("year"), TextValues::yearText(day)});
        cells.append({QStringLiteral("date_compare"), TextValues::dateCompareDay(day)});
    }
    if (!StockStore::setCells(m_database(), row.id, cells, &m_error)) {
        m_error = QStringLiteral("Изменение не записано на склад: %1").arg(m_error);
        emit editRefused(m_error);
        return false;
    }
    m_rows[static_cast<size_t>(index.row())] = row;
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    recount();
    return true;
}

Qt::ItemFlags StockModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

QVariant StockModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    switch (field(section)) {
    case StockField::Name:
        return QStringLiteral("Наименование материала");
    case StockField::Unit:
        return QStringLiteral("Ед. изм.");
    case StockField::Qty:
        return QStringLiteral("Кол-во");
    case StockField::Price:
        return m_mode == StockMode::Shop ? QStringLiteral("Цена закупки") : QStringLiteral("Цена");
    case StockField::Sum:
        return QStringLiteral("Сумма");
    case StockField::Min:
        return QStringLiteral("Мин. остаток");
    case StockField::Sale:
        return QStringLiteral("Цена продажи");
    }
    return {};
}
