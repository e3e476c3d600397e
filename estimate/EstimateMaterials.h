#pragma once
// The estimate's materials (table `materials` of the working database) as an editable table: name,
// unit, quantity, price, note are typed in; amount = quantity × price rounded to kopecks (a row with
// neither keeps the amount written into it). Every change is written into the table at once. A
// quantity or price that is not a number is marked with the reason and left out of the total.

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
    qint64 totalKopecks() const { return m_total; }
    double total() const { return static_cast<double>(m_total) / 100.0; }

    // An empty material at the end; its row.
    int addRow();
    bool removeRows(int first, int last);
    QString lastError() const { return m_error; }
    QString cellProblem(int row, int col) const;

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
        qint64 amount = 0;
        bool counted = false;
    };
    void evaluate(Row &row) const;
    void sum();

    std::function<QSqlDatabase()> m_database;
    std::vector<Row> m_rows;
    qint64 m_total = 0;
    QString m_error;
};
