#include "InvoiceServicesModel.h"

#include "InvoiceForm.h"

#include <QBrush>
#include <QColor>

InvoiceServicesModel::InvoiceServicesModel(InvoiceForm &form, QObject *parent)
    : QAbstractTableModel(parent), m_form(form) {}

void InvoiceServicesModel::reload() {
    beginResetModel();
    endResetModel();
}

int InvoiceServicesModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_form.services().size());
}

int InvoiceServicesModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : 3;
}

QVariant InvoiceServicesModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= m_form.services().size())
        return {};
    const InvoiceService &s = m_form.services().at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        switch (index.column()) {
        case Number:
            return QString::number(index.row() + 1);
        case Name:
            return s.name;
        case Price:
            return s.price;
        }
        break;
    case Qt::TextAlignmentRole:
        if (index.column() == Price)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        if (index.column() == Number)
            return QVariant::fromValue(Qt::AlignCenter);
        break;
    case Qt::BackgroundRole:
        if (index.column() == Price && !InvoiceForm::priceProblem(s.price).isEmpty())
            return QBrush(QColor(0xff, 0xc8, 0xc8));
        break;
    case Qt::ToolTipRole:
        if (index.column() == Price) {
            const QString problem = InvoiceForm::priceProblem(s.price);
            if (!problem.isEmpty())
                return problem;
        }
        break;
    default:
        break;
    }
    return {};
}

bool InvoiceServicesModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole || !index.isValid() || index.row() >= m_form.services().size())
        return false;
    const QString text = value.toString();
    if (index.column() == Name)
        m_form.setServiceName(index.row(), text);
    else if (index.column() == Price)
        m_form.setServicePrice(index.row(), text);
    else
        return false;
    emit dataChanged(index, index);
    emit edited();
    return true;
}

QVariant InvoiceServicesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case Number:
        return QStringLiteral("№");
    case Name:
        return QStringLiteral("Наименование услуг");
    case Price:
        return QStringLiteral("Цена");
    }
    return {};
}

Qt::ItemFlags InvoiceServicesModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() != Number)
        f |= Qt::ItemIsEditable;
    return f;
}
