#pragma once
// The estimate's materials (table `materials` of the working database) as an editable table: name,
// unit, quantity, price, note are typed in; amount = quantity × price rounded to kopecks (a row with
// neither keeps the amount written into it). Every change is written into the table at once. A
// quantity or price that is not a number, or whose amount would pass the maximum, is marked with the
// reason and left out of the total (see RowAmount).

#include "storage/Money.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QSqlDatabase>
#include <functional>
#include <vector>

namespace MatCol {
enum : int { Num = 0, Name, Unit, Qty, Price, Sum, Note, Count };
}

class EstimateMaterials : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit EstimateMaterials(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    // Reads the table again (someone else wrote it).
    void reload();
    // The sum of the rows that count; refused past the maximum.
    MoneyResult total() const { return m_total; }

    // An empty material at the end; its row.
    int addRow();
    bool removeRows(int first, int last);
    QString lastError() const { return m_error; }
    // The row of the material with that _id, or -1.
    int rowOfId(const QString &id) const;
    QString idAt(int row) const;
    QString cellProblem(int row, int col) const;
    // The material's _id in the table (the acts keep their volumes by it).
    QString rowId(int row) const;
    // How many cells are marked.
    int problemCellCount() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    void totalChanged();

private:
    struct Row {
        QString id;
        QString edras;
        QStringList cells; // MatCol order; Num is computed
        QHash<int, QString> problems;
        Money amount;
        bool counted = false;
    };
    void evaluate(Row &row) const;
    void sum();

    std::function<QSqlDatabase()> m_database;
    std::vector<Row> m_rows;
    MoneyResult m_total = Money();
    QString m_error;
};
