#include "RegisterModel.h"

#include <QDir>
#include <QFont>

namespace {

// A name is shown on one line; its whole text is in the tool tip (a name may be pages long).
constexpr int kShownChars = 300;

QString oneLine(QStringView text) {
    QString s = text.left(kShownChars).toString();
    s.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return s;
}

} // namespace

QString RegisterModel::statusText(bool finished) {
    return finished ? QStringLiteral("Завершено") : QStringLiteral("В работе");
}

void RegisterModel::setPage(RegisterPage page) {
    beginResetModel();
    m_page = std::move(page);
    endResetModel();
}

void RegisterModel::setCustomer(const QString &customer) {
    if (customer == m_customer)
        return;
    m_customer = customer;
    emit headerDataChanged(Qt::Horizontal, RegisterCol::Name, RegisterCol::Name);
}

int RegisterModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : m_page.size();
}

int RegisterModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : RegisterCol::Count;
}

QVariant RegisterModel::data(const QModelIndex &index, int role) const {
    const int row = index.row();
    if (!hasRow(row))
        return {};
    if (role == Qt::ToolTipRole) {
        if (index.column() == RegisterCol::Name)
            return m_page.text(row, RegisterPage::Name).toString();
        if (index.column() == RegisterCol::FileName)
            return QDir::toNativeSeparators(m_page.text(row, RegisterPage::FileName).toString());
        return {};
    }
    if (role == Qt::TextAlignmentRole &&
        (index.column() == RegisterCol::Sum || index.column() == RegisterCol::Number))
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case RegisterCol::Number:
        return QString::number(row + 1);
    case RegisterCol::Date:
        return m_page.text(row, RegisterPage::Data).toString();
    case RegisterCol::Name:
        return oneLine(m_page.text(row, RegisterPage::Name));
    case RegisterCol::Sum:
        return m_page.text(row, RegisterPage::AllSum).toString();
    case RegisterCol::Id:
        return QString::number(m_page.id(row));
    case RegisterCol::Status:
        return statusText(m_page.finished(row));
    case RegisterCol::DateEnd:
        return m_page.text(row, RegisterPage::DataEnd).toString();
    case RegisterCol::FileName:
        return QDir::toNativeSeparators(m_page.text(row, RegisterPage::FileName).toString());
    }
    return {};
}

QVariant RegisterModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::FontRole && section == RegisterCol::Name && !m_customer.isEmpty()) {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    if (role == Qt::ToolTipRole && section == RegisterCol::Name && !m_customer.isEmpty())
        return m_customer;
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case RegisterCol::Number:
        return QStringLiteral("№ п/п");
    case RegisterCol::Date:
        return QStringLiteral("Дата");
    case RegisterCol::Name:
        return m_customer.isEmpty() ? QStringLiteral("Все заказчики") : oneLine(m_customer);
    case RegisterCol::Sum:
        return QStringLiteral("Сумма");
    case RegisterCol::Id:
        return QStringLiteral("id");
    case RegisterCol::Status:
        return QStringLiteral("Статус");
    case RegisterCol::DateEnd:
        return QStringLiteral("Дата окончания");
    case RegisterCol::FileName:
        return QStringLiteral("FileName");
    }
    return {};
}

// ----- Side grids

OutputFilesModel::OutputFilesModel(const QString &title, QObject *parent)
    : QAbstractTableModel(parent), m_title(title) {}

void OutputFilesModel::setRows(std::vector<OutputFileRow> rows) {
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

const OutputFileRow *OutputFilesModel::rowAt(int row) const {
    return row >= 0 && row < static_cast<int>(m_rows.size()) ? &m_rows[static_cast<size_t>(row)] : nullptr;
}

int OutputFilesModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int OutputFilesModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : Count;
}

QVariant OutputFilesModel::data(const QModelIndex &index, int role) const {
    const OutputFileRow *r = rowAt(index.row());
    if (!r || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    switch (index.column()) {
    case Date:
        return r->data;
    case Name:
        return r->name;
    case Kind:
        return r->ext;
    case FileName:
        return QDir::toNativeSeparators(r->fileName);
    case Id:
        return r->id;
    }
    return {};
}

QVariant OutputFilesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Date:
        return QStringLiteral("Дата");
    case Name:
        return m_title;
    case Kind:
        return QStringLiteral("Тип");
    case FileName:
        return QStringLiteral("fn");
    case Id:
        return QStringLiteral("id");
    }
    return {};
}
