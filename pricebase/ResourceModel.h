#pragma once
// The resources editor's grid StringGridListMat: the resources of one rate with the columns "lIdRas"
// (the rate's rec), "Наименование", "Ед.изм.", "Кол-во" (the norm per unit of work), "Цена", "Id" (the
// resource's row) and "IdMat" (the currency of the price, as the list material was given). Every
// edited cell writes its row back at once (one UPDATE per edit).

#include "ResourceStore.h"

#include <QAbstractTableModel>
#include <QSqlDatabase>
#include <vector>

namespace ResCol {
enum : int { Ras = 0, Name, Unit, Norma, Price, Id, IdMat, Count };
}

class ResourceModel : public QAbstractTableModel {
    Q_OBJECT
public:
    ResourceModel(QSqlDatabase price, QString table, QString rec, QObject *parent = nullptr);

    QString table() const { return m_table; }
    QString rec() const { return m_rec; }
    // The resources of the rate again (none when it has no record number).
    bool reload(QString *error = nullptr);
    const std::vector<ResourceStore::Row> &rows() const { return m_rows; }

    // "Добавить ресурс": an empty resource of the rate, written at once; its row, or -1 with lastError().
    int addResource();
    // "Удалить ресурс".
    bool removeResource(int row);
    // "Очистить базу ресурсов": the whole table, every rate's resources.
    bool clearTable();
    QString lastError() const { return m_error; }

    // The price column is headed "Цена материала" while a price is being typed.
    void setPriceEditing(bool on);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QSqlDatabase m_price;
    QString m_table;
    QString m_rec;
    std::vector<ResourceStore::Row> m_rows;
    bool m_priceEditing = false;
    QString m_error;
};
