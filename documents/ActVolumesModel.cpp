#include "ActVolumesModel.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <algorithm>

void ActVolumesModel::load(const QVector<ActVolumes::Volume> &volumes) {
    beginResetModel();
    m_volumes = volumes;
    m_lines.clear();
    QString section, subsection;
    bool materials = false;
    for (int i = 0; i < m_volumes.size(); ++i) {
        const ActVolumes::Row &r = m_volumes[i].row;
        if (r.material && !materials) {
            materials = true;
            m_lines.push_back({-1, QStringLiteral("МАТЕРИАЛЫ")});
        } else if (!r.material) {
            if (r.section != section && !r.section.isEmpty())
                m_lines.push_back({-1, r.section});
            if (r.subsection != subsection && !r.subsection.isEmpty())
                m_lines.push_back({-1, r.subsection});
            section = r.section;
            subsection = r.subsection;
        }
        m_lines.push_back({i, QString()});
    }
    endResetModel();
}

QMap<QString, QString> ActVolumesModel::typed() const {
    QMap<QString, QString> out;
    for (const ActVolumes::Volume &v : m_volumes)
        if (v.typed)
            out.insert(v.row.key, v.thisAct);
    return out;
}

int ActVolumesModel::problemCount() const {
    return static_cast<int>(std::count_if(m_volumes.cbegin(), m_volumes.cend(),
                                          [](const ActVolumes::Volume &v) { return !v.problem.isEmpty(); }));
}

void ActVolumesModel::setAll(const QString &text) {
    for (ActVolumes::Volume &v : m_volumes)
        ActVolumes::setThisAct(v, text, true);
    if (!m_lines.isEmpty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, ActVolumeCol::Count - 1));
    emit edited();
}

void ActVolumesModel::resetToRemainder() {
    for (ActVolumes::Volume &v : m_volumes)
        ActVolumes::setThisAct(v, ActVolumes::defaultThisAct(v), false);
    if (!m_lines.isEmpty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, ActVolumeCol::Count - 1));
    emit edited();
}

int ActVolumesModel::lineOf(int volume) const {
    for (int i = 0; i < m_lines.size(); ++i)
        if (m_lines[i].volume == volume)
            return i;
    return -1;
}

int ActVolumesModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_lines.size();
}

int ActVolumesModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : ActVolumeCol::Count;
}

QString ActVolumesModel::cell(const ActVolumes::Volume &v, int column) const {
    using namespace ActVolumeCol;
    switch (column) {
    case Number:
        return v.row.material ? QStringLiteral("М") + v.row.number : v.row.number;
    case Code:
        return v.row.code;
    case Name:
        return v.row.name;
    case Unit:
        return v.row.unit;
    case Estimate:
        return ActVolumes::quantityText(v.row.quantity);
    case Closed:
        return ActVolumes::quantityText(v.closed);
    case ThisAct:
        return v.thisAct;
    case Remainder: {
        const auto left = v.remainder();
        return left ? ActVolumes::quantityText(*left) : QString();
    }
    }
    return QString();
}

QVariant ActVolumesModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_lines.size())
        return {};
    const Line &line = m_lines[index.row()];
    if (line.volume < 0) {
        if (role == Qt::DisplayRole && index.column() == ActVolumeCol::Name)
            return line.heading;
        if (role == Qt::FontRole) {
            QFont f;
            f.setBold(true);
            return f;
        }
        return {};
    }
    const ActVolumes::Volume &v = m_volumes[line.volume];
    const bool problem = index.column() == ActVolumeCol::ThisAct && !v.problem.isEmpty();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return cell(v, index.column());
    case Qt::BackgroundRole:
        return problem ? QVariant(QBrush(QColor(0xFF, 0xC8, 0xC8))) : QVariant();
    case Qt::ToolTipRole:
        return problem ? QVariant(v.problem) : QVariant();
    case Qt::TextAlignmentRole:
        if (index.column() >= ActVolumeCol::Estimate)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::FontRole:
        if (index.column() == ActVolumeCol::ThisAct && v.typed) {
            QFont f;
            f.setBold(true);
            return f;
        }
        return {};
    default:
        return {};
    }
}

bool ActVolumesModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    ActVolumes::Volume &v = m_volumes[m_lines[index.row()].volume];
    const QString text = value.toString();
    if (text == v.thisAct)
        return true; // an editor closed without a change types nothing
    ActVolumes::setThisAct(v, text, true);
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), ActVolumeCol::Count - 1));
    emit edited();
    return true;
}

Qt::ItemFlags ActVolumesModel::flags(const QModelIndex &index) const {
    if (!index.isValid() || index.row() >= m_lines.size())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (m_lines[index.row()].volume >= 0 && index.column() == ActVolumeCol::ThisAct)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant ActVolumesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const char *titles[] = {"№",        "Шифр",          "Наименование", "Ед. изм.",
                                   "По смете", "Закрыто ранее", "В этом акте",  "Остаток"};
    return section >= 0 && section < ActVolumeCol::Count ? QString::fromUtf8(titles[section]) : QVariant();
}
