#include "ResourceModel.h"

#include "storage/TextValues.h"

#include <QBrush>
#include <QColor>

namespace {

QString *field(ResourceStore::Row &r, int col) {
    switch (col) {
    case ResCol::Name:
        return &r.name;
    case ResCol::Unit:
        return &r.edizm;
    case ResCol::Norma:
        return &r.norma;
    case ResCol::Price:
        return &r.cena;
    default:
        return nullptr;
    }
}

QString text(const ResourceStore::Row &r, int col) {
    switch (col) {
    case ResCol::Ras:
        return r.ras;
    case ResCol::Id:
        return r.id;
    case ResCol::IdMat:
        return r.val;
    case ResCol::Name:
        return r.name;
    case ResCol::Unit:
        return r.edizm;
    case ResCol::Norma:
        return r.norma;
    case ResCol::Price:
        return r.cena;
    default:
        return {};
    }
}

// A norm or price that is not a number is kept as typed and marked.
QString problem(const ResourceStore::Row &r, int col) {
    if (col == ResCol::Price && !TextValues::isBlank(r.cena) && !TextValues::parsePrice(r.cena))
        return QStringLiteral("Цена «%1» не является числом: в смету материал попадёт без суммы.")
            .arg(r.cena);
    if (col == ResCol::Norma && !TextValues::isBlank(r.norma) && !TextValues::parseAmount(r.norma))
        return QStringLiteral("Норма «%1» не является числом: количество материала считаться не будет.")
            .arg(r.norma);
    return {};
}

} // namespace

ResourceModel::ResourceModel(QSqlDatabase price, QString table, QString rec, QObject *parent)
    : QAbstractTableModel(parent), m_price(price), m_table(std::move(table)), m_rec(std::move(rec)) {}

bool ResourceModel::reload(QString *error) {
    beginResetModel();
    m_rows.clear();
    const bool ok =
        m_rec.trimmed().isEmpty() || ResourceStore::readRate(m_price, m_table, m_rec, m_rows, error);
    endResetModel();
    return ok;
}

int ResourceModel::addResource() {
    m_error.clear();
    ResourceStore::Row r;
    r.ras = m_rec;
    r.id = ResourceStore::add(m_price, m_table, m_rec, &m_error);
    if (r.id.isEmpty())
        return -1;
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_rows.push_back(std::move(r));
    endInsertRows();
    return row;
}

bool ResourceModel::removeResource(int row) {
    if (row < 0 || row >= rowCount())
        return false;
    m_error.clear();
    if (!ResourceStore::remove(m_price, m_table, m_rows[static_cast<size_t>(row)].id, &m_error))
        return false;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
    return true;
}

bool ResourceModel::clearTable() {
    m_error.clear();
    if (!ResourceStore::clear(m_price, m_table, &m_error))
        return false;
    beginResetModel();
    m_rows.clear();
    endResetModel();
    return true;
}

void ResourceModel::setPriceEditing(bool on) {
    if (m_priceEditing == on)
        return;
    m_priceEditing = on;
    emit headerDataChanged(Qt::Horizontal, ResCol::Price, ResCol::Price);
}

int ResourceModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ResourceModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ResCol::Count;
}

QVariant ResourceModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ResourceStore::Row &r = m_rows[static_cast<size_t>(index.row())];
    const QString why = problem(r, index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return text(r, index.column());
    case Qt::BackgroundRole:
        return why.isEmpty() ? QVariant() : QVariant(QBrush(QColor(0xFF, 0xC8, 0xC8)));
    case Qt::ToolTipRole:
        return why.isEmpty() ? QVariant() : QVariant(why);
    case Qt::TextAlignmentRole:
        return index.column() == ResCol::Norma || index.column() == ResCol::Price
                   ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    default:
        return {};
    }
}

bool ResourceModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    ResourceStore::Row r = m_rows[static_cast<size_t>(index.row())];
    QString *f = field(r, index.column());
    if (!f || *f == value.toString())
        return f != nullptr;
    *f = value.toString();
    m_error.clear();
    if (!ResourceStore::update(m_price, m_table, r, &m_error))
        return false;
    m_rows[static_cast<size_t>(index.row())] = std::move(r);
    emit dataChanged(index, index);
    return true;
}

Qt::ItemFlags ResourceModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (index.column() >= ResCol::Name && index.column() <= ResCol::Price)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant ResourceModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    switch (section) {
    case ResCol::Ras:
        return QStringLiteral("lIdRas");
    case ResCol::Name:
        return QStringLiteral("Наименование");
    case ResCol::Unit:
        return QStringLiteral("Ед.изм.");
    case ResCol::Norma:
        return QStringLiteral("Кол-во");
    case ResCol::Price:
        return m_priceEditing ? QStringLiteral("Цена материала") : QStringLiteral("Цена");
    case ResCol::Id:
        return QStringLiteral("Id");
    case ResCol::IdMat:
        return QStringLiteral("IdMat");
    default:
        return {};
    }
}
