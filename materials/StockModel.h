#pragma once
// The stock grid of the warehouse: in "Склад" mode the columns "Наименование материала", "Ед. изм.",
// "Кол-во", "Цена", "Сумма", "Мин. остаток"; in "Магазин" mode "Наименование материала", "Ед. изм.",
// "Кол-во", "Цена закупки", "Цена продажи". Each typed cell is written into `storage` at once (the sum
// follows a quantity or a price; in shop mode the row's month, year and date_compare take the day of
// the change); "." typed in a number becomes ","; text that is not a number is refused in a number
// column. A row whose quantity is below its minimum is drawn in red with a tooltip saying so. The total
// is the sum of the materials (warehouse) or the total markup (shop).

#include "Stock.h"

#include <QAbstractTableModel>
#include <QDate>
#include <functional>
#include <vector>

enum class StockField { Name, Unit, Qty, Price, Sum, Min, Sale };

class StockModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit StockModel(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    void setMode(StockMode mode);
    StockMode mode() const { return m_mode; }
    // The day written with a shop cell (today unless a test fixes it).
    void setToday(std::function<QDate()> today) { m_today = std::move(today); }

    void setRows(std::vector<StockItem> rows);
    const std::vector<StockItem> &rows() const { return m_rows; }
    const StockItem *rowAt(int row) const;
    int rowOfId(const QString &id) const;
    // A row read again after someone else changed it, a new row at the end, a row gone.
    void updateRow(const StockItem &item);
    void appendRow(const StockItem &item);
    void removeRowAt(int row);

    StockField field(int column) const;
    int columnOf(StockField field) const; // -1 when the mode has no such column

    // Rows below their minimum.
    int belowMinimumCount() const { return m_below; }
    // The sum of the materials (warehouse) or the total markup (shop); refused past the maximum.
    MoneyResult total() const { return m_total; }
    // "Сумма материалов 1234,50" / "Общая наценка 120,00".
    QString totalText() const;

    QString lastError() const { return m_error; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    void totalChanged();
    // A typed cell was not written (lastError says why).
    void editRefused(const QString &reason);

private:
    const std::vector<StockField> &columns() const;
    void recount();

    std::function<QSqlDatabase()> m_database;
    std::function<QDate()> m_today;
    std::vector<StockItem> m_rows;
    std::vector<char> m_low; // belowMinimum per row
    StockMode m_mode = StockMode::Warehouse;
    int m_below = 0;
    MoneyResult m_total = Money();
    QString m_error;
};
