#pragma once
// The services grid StringGridUslug over the invoice's services: columns "№" (the running number),
// "Наименование услуг" and "Цена". Edits go to the invoice (a price edit totals it again); a price that
// is not a number is shown on red with the reason as its tooltip.

#include <QAbstractTableModel>

class InvoiceForm;

class InvoiceServicesModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Number = 0, Name = 1, Price = 2 };

    explicit InvoiceServicesModel(InvoiceForm &form, QObject *parent = nullptr);

    // The invoice's rows changed as a whole (generated, added, removed, cleared).
    void reload();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    // A cell was edited by the user (the invoice's total may have changed).
    void edited();

private:
    InvoiceForm &m_form;
};
