#pragma once
// The list of placeholders beside the contract's editor: placeholder and explanation, all of them or
// only the contractor's or the customer's.

#include "ContractFill.h"

#include <QAbstractTableModel>
#include <optional>

class ContractPlaceholderModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Text, Explanation, ColumnCount };

    explicit ContractPlaceholderModel(QObject *parent = nullptr);

    // nullopt: every placeholder.
    void showParty(std::optional<ContractFill::Party> party);
    // The placeholder of a row ("[заказчик]").
    QString placeholder(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVector<ContractFill::Placeholder> m_rows;
};
