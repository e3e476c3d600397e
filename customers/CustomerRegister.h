#pragma once
// The register of customers and their objects. It lives in cashbase.db (customer, Object,
// RequisiteZak) and is mirrored into peoplebase.db (Customer, Object); the cash book's entries
// (cash.customer, cash.object) follow every rename and deletion. Customers and objects are keyed by their
// names; every name goes into SQL in its stored form (double quotes as backticks).

#include "Records.h"

#include <QList>
#include <QPair>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

class TModuleSQL;

class CustomerRegister {
public:
    explicit CustomerRegister(TModuleSQL &module);

    // Names as shown, in table order.
    QStringList customers();
    QStringList objects(const QString &customer);
    // Every object of every customer: (object, customer).
    QList<QPair<QString, QString>> allObjects();

    // The customer with its legal details; found is false for an unknown name.
    CustomerData customer(const QString &name);
    CustomerData customerById(const QString &id);
    bool exists(const QString &name);
    // The object's row (note, namebuild, addressbuild); empty when there is none.
    Fields object(const QString &customer, const QString &object);

    RegisterStatus addCustomer(const QString &name);
    RegisterStatus addObject(const QString &customer, const QString &object);
    RegisterStatus renameObject(const QString &customer, const QString &oldName, const QString &newName);
    // Deletes the object and that customer's cash entries of the object.
    RegisterStatus deleteObject(const QString &customer, const QString &object);
    // Deletes its objects, the customer, its cash entries and its legal details.
    RegisterStatus deleteCustomer(const QString &customer);
    // Empties customer, Object, RequisiteZak and cash (cashbase.db, then compacted) and Customer,
    // Object (peoplebase.db).
    RegisterStatus dropRegister();

    // btnOK: saves the customer (customer["_id"] empty or unknown: a new customer) with its legal details,
    // and the note of its chosen object. A changed name moves its objects and cash entries along. On
    // success *savedId holds the customer's _id.
    RegisterStatus save(const Fields &customer, const Fields &requisites, const QString &chosenObject,
                        const QString &objectNote, QString *savedId = nullptr);

    // Customers and objects of a register kept elsewhere (a cash book of an earlier version) into
    // peoplebase.db: a customer found there by name is updated with the columns given, else appended;
    // an object likewise by its customer and name. Columns the people database lacks are left out.
    // One transaction: on failure nothing is written.
    RegisterStatus mirrorToPeople(const QList<Fields> &customers, const QList<Fields> &objects);

    QString lastError() const { return m_error; }

    // The address parts that compose the "Адрес" field, each with its tick.
    struct AddressPart {
        bool ticked = false;
        QString value;
    };
    struct Address {
        AddressPart region, area, city, street, house, apartment;
    };
    // spdAddress: "Тверская обл., р-он, г.Тверь, ул. Ленина, д.5, кв.3" with the trailing separator dropped.
    static QString composeAddress(const Address &address);

private:
    QSqlDatabase cash();
    QSqlDatabase people();
    bool run(QSqlDatabase db, const QString &sql, const QVariantList &values = {},
             int *rowsAffected = nullptr);
    bool inTransaction(QSqlDatabase db, const std::function<bool()> &body);
    CustomerData load(const QString &column, const QVariant &value);
    bool objectExists(const QString &customer, const QString &object);
    bool writeRequisites(QSqlDatabase db, const QString &id, const Fields &customer,
                         const Fields &requisites);
    bool mirrorCustomer(const QString &oldName, const Fields &customer);
    // Updates the row of table found by the key columns with the other columns of row, or appends it.
    bool appendOrUpdate(QSqlDatabase db, const QString &table, const QStringList &keys, const Fields &row);

    TModuleSQL &m_module;
    QString m_error;
};
