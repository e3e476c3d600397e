#include "ServerFileModel.h"

#include "ServerFileKinds.h"
#include "storage/TextValues.h"

void ServerFileModel::setFiles(const QList<StoredFile> &files) {
    beginResetModel();
    m_files = files;
    endResetModel();
}

int ServerFileModel::rowOf(const QString &name, const QString &data) const {
    for (int i = 0; i < m_files.size(); ++i)
        if (m_files[i].name == name && m_files[i].data == data)
            return i;
    return -1;
}

void ServerFileModel::setIcons(const QList<QIcon> &kinds, const QIcon &other) {
    m_icons = kinds;
    m_other = other;
    if (!m_files.isEmpty())
        emit dataChanged(index(0, Name), index(m_files.size() - 1, Name), {Qt::DecorationRole});
}

int ServerFileModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_files.size();
}

int ServerFileModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ServerFileModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_files.size())
        return {};
    const StoredFile &f = m_files.at(index.row());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        switch (index.column()) {
        case Data:
            return f.data;
        case Name:
            return TextValues::nameFromStored(f.name);
        case Type:
            return f.type;
        case Address:
            return TextValues::nameFromStored(f.address);
        default:
            return {};
        }
    }
    if (role == Qt::DecorationRole && index.column() == Name) {
        const int kind = ServerFileKinds::kindOf(f.type);
        return kind >= 0 && kind < m_icons.size() ? m_icons.at(kind) : m_other;
    }
    return {};
}

QVariant ServerFileModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Data:
        return QStringLiteral("Дата загрузки");
    case Name:
        return QStringLiteral("Имя файла");
    case Type:
        return QStringLiteral("Тип");
    case Address:
        return QStringLiteral("Адрес объекта");
    default:
        return {};
    }
}
