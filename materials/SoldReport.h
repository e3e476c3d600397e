#pragma once
// The report of sold materials ("Доход с продаж материалов") without its window: the write-offs of a
// customer (with the customer's objects, or "Объект не найден" when it has none), of an object (with
// the object's customer, or "Заказчик не найден"), of a customer in a period (a period that starts
// after it ends is refused with "Начало периода не должно превышать окончание" and the list stays as
// it was), and the deletion of a write-off. Customers and objects come from the register.

#include "WriteOffModel.h"

#include <QStringList>
#include <functional>

class CustomerRegister;

class SoldReport {
public:
    SoldReport(std::function<QSqlDatabase()> mat, CustomerRegister &customers);

    WriteOffModel &model() { return m_model; }
    // What the list shows now.
    const WriteOffFilter &filter() const { return m_model.filter(); }

    QStringList customers();
    // Every object of every customer, each name once.
    QStringList allObjects();

    // Each returns false with *message when the list could not be read (the list stays as it was);
    // a notice that leaves the list read (no object, no customer) is given in *notice.
    // Choosing a customer: its objects into *objects, its write-offs into the list.
    bool chooseCustomer(const QString &customer, QStringList *objects, QString *notice, QString *message);
    // Choosing an object: its customer into *customer, the object's write-offs into the list.
    bool chooseObject(const QString &object, QString *customer, QString *notice, QString *message);
    // The filter button: the customer's write-offs (every customer's when empty) from `from` to `to`.
    bool applyPeriod(const QString &customer, const QDate &from, const QDate &to, QString *message);
    // Every write-off.
    bool showAll(QString *message);

    // Deletes the write-off of the model row.
    bool remove(int row, QString *message);

    inline static const QString kNoObject = QStringLiteral("Объект не найден");
    inline static const QString kNoCustomer = QStringLiteral("Заказчик не найден");

private:
    bool list(const WriteOffFilter &filter, QString *message);

    std::function<QSqlDatabase()> m_mat;
    CustomerRegister &m_customers;
    WriteOffModel m_model;
};
