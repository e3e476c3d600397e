#include "MixTable.h"

#include "storage/TextValues.h"

#include <limits>

namespace {

struct Mix {
    const char *name;
    const char *bag;
    const char *thickness;
    const char *consumption;
};
// The thickness of the light cement screed is stored with a trailing blank, as the grid always had it.
const Mix kMixes[MixRow::Count] = {
    {"Универсальная сухая смесь М150", "40 кг", "1", "18"},
    {"Гипсовая штукатурка", "25 кг", "1", "8,7"},
    {"Декоративная штукатурка", "25 кг", "1", "8"},
    {"Шпатлевка", "25 кг", "0,1", "0,9"},
    {"Клей плиточный (сторона плитки)", "25 кг", "200 мм", "3,2"},
    {"Стяжка для пола", "25 кг", "1", "20"},
    {"Стяжка цементная легкая", "25 кг", "1 ", "10"},
};

std::optional<Decimal> number(QString text) {
    text.remove(QStringLiteral(" мм"));
    return TextValues::readNumber(text, false).value;
}

// "25 кг" → 25; nullopt when what is left is not a whole number.
std::optional<qint64> wholeKilograms(QString text) {
    text.remove(QStringLiteral(" кг"));
    bool ok = false;
    const qint64 v = text.trimmed().toLongLong(&ok);
    if (!ok || v < 0)
        return std::nullopt;
    return v;
}

} // namespace

namespace MixRule {

QStringList bagSizes() {
    return {QStringLiteral("15 кг"), QStringLiteral("25 кг"), QStringLiteral("30 кг"),
            QStringLiteral("40 кг")};
}

QStringList tileSides() {
    return {QStringLiteral("200 мм"), QStringLiteral("600 мм")};
}

QString tileConsumption(const QString &side) {
    return side == QStringLiteral("200 мм") ? QStringLiteral("3,2") : QStringLiteral("3,5");
}

std::optional<qint64> bagsFor(const Decimal &mass, qint64 bagKg) {
    if (bagKg <= 0 || mass.isNegative())
        return std::nullopt;
    // Q = mantissa ÷ (bag × 10^scale), exactly: whole part q, remainder r.
    const __int128 num = mass.mantissa();
    const __int128 den = static_cast<__int128>(bagKg) * DecimalMath::pow10(mass.scale());
    const __int128 q = num / den;
    const __int128 r = num % den;
    __int128 rounded = q; // halves to even
    if (2 * r > den || (2 * r == den && q % 2 != 0))
        rounded = q + 1;
    const __int128 bags = rounded + (r != 0 ? 1 : 0);
    if (bags > std::numeric_limits<qint64>::max())
        return std::nullopt;
    return static_cast<qint64>(bags);
}

} // namespace MixRule

MixTable::MixTable(QObject *parent) : QAbstractTableModel(parent) {
    reset();
}

void MixTable::reset() {
    beginResetModel();
    m_rows.clear();
    for (const Mix &m : kMixes)
        m_rows.push_back({QString::fromUtf8(m.name), QString::fromUtf8(m.bag), QString::fromUtf8(m.thickness),
                          QString::fromUtf8(m.consumption), QString(), QString()});
    endResetModel();
}

QString MixTable::cell(int row, int col) const {
    if (row < 0 || row >= MixRow::Count || col < 0 || col >= MixCol::Count)
        return {};
    return m_rows[row][col];
}

bool MixTable::isEditable(int row, int col) const {
    return row >= 0 && row < MixRow::Count &&
           (col == MixCol::Bag || col == MixCol::Thickness || col == MixCol::Area);
}

QStringList MixTable::listItems(int row, int col) const {
    if (col == MixCol::Bag)
        return MixRule::bagSizes();
    if (col == MixCol::Thickness && row == MixRow::TileAdhesive)
        return MixRule::tileSides();
    return {};
}

bool MixTable::setCell(int row, int col, const QString &text) {
    if (!isEditable(row, col))
        return false;
    QString value = text;
    value.replace(QLatin1Char('.'), QLatin1Char(','));
    m_rows[row][col] = value;
    emit dataChanged(index(row, col), index(row, col));
    if (row == MixRow::TileAdhesive && col == MixCol::Thickness) {
        m_rows[row][MixCol::Consumption] = MixRule::tileConsumption(value);
        emit dataChanged(index(row, MixCol::Consumption), index(row, MixCol::Consumption));
    }
    countBags(row);
    return true;
}

std::optional<Decimal> MixTable::mass(int row) const {
    const QStringList &r = m_rows[row];
    const auto consumption = number(r[MixCol::Consumption]);
    const auto area = number(r[MixCol::Area]);
    if (!consumption || !area)
        return std::nullopt;
    const auto perArea = consumption->times(*area);
    if (!perArea)
        return std::nullopt;
    if (row == MixRow::TileAdhesive)
        return perArea;
    const auto thickness = number(r[MixCol::Thickness]);
    if (!thickness)
        return std::nullopt;
    auto m = thickness->times(*perArea);
    if (m && row == MixRow::Putty)
        m = m->times(*Decimal::whole(10));
    return m;
}

bool MixTable::countBags(int row) {
    if (row < 0 || row >= MixRow::Count)
        return false;
    const auto bag = wholeKilograms(m_rows[row][MixCol::Bag]);
    const auto m = mass(row);
    if (!bag || !m)
        return false;
    const auto bags = MixRule::bagsFor(*m, *bag);
    if (!bags)
        return false;
    m_rows[row][MixCol::Bags] = QString::number(*bags);
    emit dataChanged(index(row, MixCol::Bags), index(row, MixCol::Bags));
    return true;
}

int MixTable::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : MixRow::Count;
}

int MixTable::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : MixCol::Count;
}

QVariant MixTable::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return cell(index.row(), index.column());
    if (role == Qt::ToolTipRole && index.column() == MixCol::Name)
        return cell(index.row(), index.column()); // the column is narrower than the longest names
    if (role == Qt::TextAlignmentRole)
        return index.column() == MixCol::Name ? QVariant(Qt::AlignLeft | Qt::AlignVCenter)
                                              : QVariant(Qt::AlignCenter);
    return {};
}

bool MixTable::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    return setCell(index.row(), index.column(), value.toString());
}

Qt::ItemFlags MixTable::flags(const QModelIndex &index) const {
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.isValid() && isEditable(index.row(), index.column()))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant MixTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= MixCol::Count)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole) {
        static const char *const titles[MixCol::Count] = {
            "Наименование смеси",  "Фасовка", "Толщина слоя (см)",
            "Расход на 1 м2 (кг)", "Площадь", "Кол-во (меш.)"};
        return QString::fromUtf8(titles[section]);
    }
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignCenter | Qt::TextWordWrap);
    return {};
}
