#pragma once
// The grids of the register: GridDoc and GridDraft ("№ п/п", "Дата", "Все заказчики" or the chosen
// customer in bold, "Сумма", "id", "Статус", "Дата окончания", "FileName"), and the side grids of an
// estimate's contract, invoice and act files ("Дата", "Договор" / "Счёт" / "Акты", the file kind,
// "fn", "id"). Text cells only; the rows are replaced whole after every read.

#include "RegisterRows.h"

#include <QAbstractTableModel>
#include <vector>

namespace RegisterCol {
enum { Number, Date, Name, Sum, Id, Status, DateEnd, FileName, Count };
}

class RegisterModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    static QString statusText(bool finished); // "Завершено" / "В работе"

    void setPage(RegisterPage page);
    const RegisterPage &page() const { return m_page; }
    bool hasRow(int row) const { return row >= 0 && row < m_page.size(); }
    // The customer of the active filter: the name column's header shows it in bold; empty gives
    // "Все заказчики" again.
    void setCustomer(const QString &customer);
    QString customer() const { return m_customer; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    RegisterPage m_page;
    QString m_customer;
};

class OutputFilesModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Date, Name, Kind, FileName, Id, Count };

    // title: "Договор", "Счёт" or "Акты".
    explicit OutputFilesModel(const QString &title, QObject *parent = nullptr);

    void setRows(std::vector<OutputFileRow> rows);
    const OutputFileRow *rowAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QString m_title;
    std::vector<OutputFileRow> m_rows;
};
