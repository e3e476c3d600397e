#pragma once
// The warehouse as the windows use it: the stock grid's model (shared by TSkladMat and the tab "Склад"
// of the materials lists), the mode, and the actions on the stock: an empty row dated today, a row
// deleted, the warehouse emptied, an imported stock, an estimate material put into stock (or found
// there already), and a material taken from stock into the estimate. Each action keeps the model in
// step with the table.

#include "StockModel.h"
#include "StockTaking.h"
#include "estimate/MaterialsStore.h"

#include <QObject>
#include <functional>

class Warehouse : public QObject {
    Q_OBJECT
public:
    explicit Warehouse(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    StockModel &model() { return m_model; }
    const StockModel &model() const { return m_model; }
    StockMode mode() const { return m_model.mode(); }
    void setMode(StockMode mode) { m_model.setMode(mode); }
    QSqlDatabase database() const { return m_database(); }

    // The stock read again into the model.
    bool read(QString *error = nullptr);

    // "INSERT INTO storage (data) values(<today>)": its model row, or -1.
    int addEmptyRow(const QDate &today, QString *error = nullptr);
    // "Удалить строку".
    bool removeRow(int row, QString *error = nullptr);
    // "Очистить склад": stock and write-offs.
    bool clear(QString *error = nullptr);
    // An import in the present mode: the stock replaced, the write-offs kept.
    bool replaceStock(const std::vector<StockItem> &items, QString *error = nullptr);

    // An estimate material into stock, dated `today`, with the document it came from.
    struct PutOutcome {
        enum Kind { Added, Found, Skipped, Failed };
        Kind kind = Skipped;
        int row = -1; // model row of the new row (Added) or the one of that name (Found)
        QString error;
    };
    PutOutcome putIn(const MaterialsStore::Material &material, const QString &document, const QDate &today);
    // The quantity of the model row set after "Найдено совпадение" (the sum follows).
    bool setQuantity(int row, const QString &quantity, QString *error = nullptr);

    // Model row `row` taken into the estimate (StockTaking::take); the model follows: the row gets its
    // new quantity or disappears.
    StockTaking::Outcome take(QSqlDatabase smeta, int row, const Decimal &quantity, const QString &customer,
                              const QString &object, const QDate &date);

private:
    std::function<QSqlDatabase()> m_database;
    StockModel m_model;
};
