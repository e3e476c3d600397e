#include "CustomerRegister.h"

#include "storage/ModuleSQL.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using TextValues::nameFromStored;
using TextValues::nameToStored;

namespace {

// The columns btnOK writes, in the order of its statements.
const QStringList kSavedCustomerColumns = {"fio",  "address", "email",  "phone", "fax",     "okpo", "Region",
                                           "City", "Area",    "Street", "House", "numroom", "note", "Agent"};
const QStringList kSavedRequisiteColumns = {"certificate", "pasport", "adres",   "inn",  "kpp",
                                            "boss",        "glavbuh", "account", "bank", "bik",
                                            "koraccount",  "fax",     "okpo"};

// The value a requisites column takes from the frame: the address and fax and OGRN fields belong to the
// customer, the rest to its legal details.
QString requisiteValue(const QString &column, const Fields &customer, const Fields &requisites) {
    if (column == QLatin1String("adres"))
        return customer.value(QStringLiteral("address"));
    if (column == QLatin1String("fax") || column == QLatin1String("okpo"))
        return customer.value(column);
    return requisites.value(column);
}

} // namespace

CustomerRegister::CustomerRegister(TModuleSQL &module) : m_module(module) {}

QSqlDatabase CustomerRegister::cash() {
    return m_module.database(Db::Cash);
}

QSqlDatabase CustomerRegister::people() {
    return m_module.database(Db::People);
}

bool CustomerRegister::run(QSqlDatabase db, const QString &sql, const QVariantList &values,
                           int *rowsAffected) {
    return RecordIo::run(db, sql, values, &m_error, rowsAffected);
}

bool CustomerRegister::inTransaction(QSqlDatabase db, const std::function<bool()> &body) {
    return RecordIo::inTransaction(db, body, &m_error);
}

QStringList CustomerRegister::customers() {
    QStringList names;
    QSqlQuery q(cash());
    if (q.exec(QStringLiteral("SELECT fio FROM customer WHERE 1 ORDER BY _id")))
        while (q.next())
            names << nameFromStored(q.value(0).toString());
    return names;
}

QStringList CustomerRegister::objects(const QString &customer) {
    QStringList names;
    QSqlQuery q(cash());
    q.prepare(QStringLiteral("SELECT object FROM object WHERE fio=? ORDER BY _id"));
    q.addBindValue(nameToStored(customer));
    if (q.exec())
        while (q.next())
            names << nameFromStored(q.value(0).toString());
    return names;
}

QList<QPair<QString, QString>> CustomerRegister::allObjects() {
    QList<QPair<QString, QString>> list;
    QSqlQuery q(cash());
    if (q.exec(QStringLiteral("SELECT object, fio FROM Object WHERE 1 ORDER BY _id")))
        while (q.next())
            list.append({nameFromStored(q.value(0).toString()), nameFromStored(q.value(1).toString())});
    return list;
}

CustomerData CustomerRegister::load(const QString &column, const QVariant &value) {
    CustomerData d;
    QSqlQuery q(cash());
    q.prepare(QStringLiteral("SELECT * FROM customer WHERE %1=?").arg(column));
    q.addBindValue(value);
    if (!q.exec() || !q.next())
        return d;
    d.found = true;
    d.customer = RecordIo::fromRecord(q.record(), QStringLiteral("fio"));
    QSqlQuery r(cash());
    r.prepare(QStringLiteral("SELECT * FROM requisitezak WHERE id=?"));
    r.addBindValue(d.customer.value(QStringLiteral("_id")));
    if (r.exec() && r.next())
        d.requisites = RecordIo::fromRecord(r.record());
    return d;
}

CustomerData CustomerRegister::customer(const QString &name) {
    return load(QStringLiteral("fio"), nameToStored(name));
}

CustomerData CustomerRegister::customerById(const QString &id) {
    return id.isEmpty() ? CustomerData{} : load(QStringLiteral("_id"), id);
}

bool CustomerRegister::exists(const QString &name) {
    QSqlQuery q(cash());
    q.prepare(QStringLiteral("SELECT _id FROM customer WHERE fio=?"));
    q.addBindValue(nameToStored(name));
    return q.exec() && q.next();
}

Fields CustomerRegister::object(const QString &customer, const QString &object) {
    QSqlQuery q(cash());
    q.prepare(QStringLiteral("SELECT * FROM Object WHERE fio=? and object=?"));
    q.addBindValue(nameToStored(customer));
    q.addBindValue(nameToStored(object));
    if (q.exec() && q.next()) {
        Fields f = RecordIo::fromRecord(q.record(), QStringLiteral("object"));
        f.insert(QStringLiteral("fio"), customer);
        return f;
    }
    return {};
}

bool CustomerRegister::objectExists(const QString &customer, const QString &object) {
    return !this->object(customer, object).isEmpty();
}

RegisterStatus CustomerRegister::addCustomer(const QString &name) {
    if (TextValues::isBlank(name))
        return RegisterStatus::BlankName;
    if (exists(name))
        return RegisterStatus::Duplicate;
    return run(cash(), QStringLiteral("INSERT INTO customer (fio) values(?);"), {nameToStored(name)})
               ? RegisterStatus::Ok
               : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::addObject(const QString &customer, const QString &object) {
    if (TextValues::isBlank(object))
        return RegisterStatus::BlankName;
    if (!exists(customer))
        return RegisterStatus::NotFound;
    if (objectExists(customer, object))
        return RegisterStatus::Duplicate;
    const QVariantList v = {nameToStored(customer), nameToStored(object)};
    if (!run(people(), QStringLiteral("INSERT INTO object (fio, object) values(?,?);"), v))
        return RegisterStatus::Failed;
    return run(cash(), QStringLiteral("INSERT INTO Object (fio, object) values(?,?);"), v)
               ? RegisterStatus::Ok
               : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::renameObject(const QString &customer, const QString &oldName,
                                              const QString &newName) {
    if (TextValues::isBlank(newName))
        return RegisterStatus::BlankName;
    if (!objectExists(customer, oldName))
        return RegisterStatus::NotFound;
    if (newName == oldName)
        return RegisterStatus::Ok;
    if (objectExists(customer, newName))
        return RegisterStatus::Duplicate;
    const QVariantList v = {nameToStored(newName), nameToStored(oldName), nameToStored(customer)};
    QSqlDatabase c = cash();
    const bool ok = inTransaction(c, [&] {
        return run(c, QStringLiteral("UPDATE object SET object=? WHERE object=? and fio=?"), v) &&
               (!RecordIo::hasColumn(c, QStringLiteral("cash"), QStringLiteral("customer")) ||
                run(c, QStringLiteral("UPDATE cash SET object=? WHERE object=? and customer=?"), v));
    });
    if (!ok)
        return RegisterStatus::Failed;
    return run(people(), QStringLiteral("UPDATE object SET object=? WHERE object=? and fio=?"), v)
               ? RegisterStatus::Ok
               : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::deleteObject(const QString &customer, const QString &object) {
    if (!objectExists(customer, object))
        return RegisterStatus::NotFound;
    const QVariantList v = {nameToStored(object), nameToStored(customer)};
    QSqlDatabase c = cash();
    const bool ok = inTransaction(c, [&] {
        return run(c, QStringLiteral("DELETE FROM object WHERE object=? and fio=?"), v) &&
               (!RecordIo::hasColumn(c, QStringLiteral("cash"), QStringLiteral("customer")) ||
                run(c, QStringLiteral("DELETE FROM cash WHERE object=? and customer=?"), v));
    });
    if (!ok)
        return RegisterStatus::Failed;
    return run(people(), QStringLiteral("DELETE FROM object WHERE object=? and fio=?"), v)
               ? RegisterStatus::Ok
               : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::deleteCustomer(const QString &customer) {
    const CustomerData d = this->customer(customer);
    if (!d.found)
        return RegisterStatus::NotFound;
    const QVariantList name = {nameToStored(customer)};
    QSqlDatabase c = cash();
    const bool ok = inTransaction(c, [&] {
        return run(c, QStringLiteral("DELETE FROM object WHERE fio=?"), name) &&
               run(c, QStringLiteral("DELETE FROM customer WHERE fio=?"), name) &&
               (!RecordIo::hasColumn(c, QStringLiteral("cash"), QStringLiteral("customer")) ||
                run(c, QStringLiteral("DELETE FROM cash WHERE customer=?"), name)) &&
               run(c, QStringLiteral("DELETE FROM RequisiteZak WHERE id=?"),
                   {d.customer.value(QStringLiteral("_id"))});
    });
    if (!ok)
        return RegisterStatus::Failed;
    QSqlDatabase p = people();
    return inTransaction(p,
                         [&] {
                             return run(p, QStringLiteral("DELETE FROM Object WHERE fio=?"), name) &&
                                    run(p, QStringLiteral("DELETE FROM Customer WHERE fio=?"), name);
                         })
               ? RegisterStatus::Ok
               : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::dropRegister() {
    // The tables stay, empty: only their upgrade steps make them.
    QSqlDatabase c = cash();
    if (!Schema::clearTables(c,
                             {QStringLiteral("customer"), QStringLiteral("Object"),
                              QStringLiteral("RequisiteZak"), QStringLiteral("cash")},
                             &m_error) ||
        !run(c, QStringLiteral("VACUUM;")))
        return RegisterStatus::Failed;
    // The people database mirrors customers and objects alike, so both go.
    if (!Schema::clearTables(people(), {QStringLiteral("Customer"), QStringLiteral("Object")}, &m_error))
        return RegisterStatus::Failed;
    return RegisterStatus::Ok;
}

bool CustomerRegister::writeRequisites(QSqlDatabase db, const QString &id, const Fields &customer,
                                       const Fields &requisites) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT ik FROM RequisiteZak WHERE id=?"));
    q.addBindValue(id);
    if (!q.exec()) {
        m_error = q.lastError().text();
        return false;
    }
    const bool has = q.next();
    q.finish();
    QVariantList values;
    for (const QString &col : kSavedRequisiteColumns)
        values << requisiteValue(col, customer, requisites);
    values << nameToStored(customer.value(QStringLiteral("fio")));
    if (!has) {
        values.prepend(id);
        return run(db,
                   QStringLiteral("INSERT INTO RequisiteZak (id, %1, name) values(%2)")
                       .arg(kSavedRequisiteColumns.join(QStringLiteral(", ")),
                            RecordIo::placeholders(kSavedRequisiteColumns.size() + 2)),
                   values);
    }
    QStringList sets;
    for (const QString &col : kSavedRequisiteColumns)
        sets << col + QStringLiteral("=?");
    values << id;
    return run(
        db, QStringLiteral("UPDATE RequisiteZak SET %1, name=? WHERE id=?").arg(sets.join(QLatin1Char(','))),
        values);
}

bool CustomerRegister::mirrorCustomer(const QString &oldName, const Fields &customer) {
    QVariantList values;
    for (const QString &col : kSavedCustomerColumns)
        values << (col == QLatin1String("fio") ? nameToStored(customer.value(col)) : customer.value(col));
    QStringList sets;
    for (const QString &col : kSavedCustomerColumns)
        sets << col + QStringLiteral("=?");
    QSqlDatabase p = people();
    return inTransaction(p, [&] {
        int updated = 0;
        if (!run(p, QStringLiteral("UPDATE Customer SET %1 WHERE fio=?").arg(sets.join(QLatin1Char(','))),
                 values + QVariantList{nameToStored(oldName)}, &updated))
            return false;
        // A customer the people database never saw is added to it.
        if (updated == 0 && !run(p,
                                 QStringLiteral("INSERT INTO Customer (%1) values(%2)")
                                     .arg(kSavedCustomerColumns.join(QStringLiteral(", ")),
                                          RecordIo::placeholders(kSavedCustomerColumns.size())),
                                 values))
            return false;
        const QString newName = customer.value(QStringLiteral("fio"));
        return newName == oldName || run(p, QStringLiteral("UPDATE Object SET fio=? WHERE fio=?"),
                                         {nameToStored(newName), nameToStored(oldName)});
    });
}

bool CustomerRegister::appendOrUpdate(QSqlDatabase db, const QString &table, const QStringList &keys,
                                      const Fields &row) {
    QStringList columns, sets, where;
    QVariantList values, setValues, keyValues;
    for (auto it = row.constBegin(); it != row.constEnd(); ++it) {
        // Names go into the tables in their stored form.
        const bool name = it.key() == QLatin1String("fio") || it.key() == QLatin1String("object");
        const QVariant value = name ? nameToStored(it.value()) : it.value();
        columns << it.key();
        values << value;
        if (keys.contains(it.key())) {
            where << it.key() + QStringLiteral("=?");
            keyValues << value;
        } else {
            sets << it.key() + QStringLiteral("=?");
            setValues << value;
        }
    }
    const QString condition = where.join(QStringLiteral(" and "));
    int found = 0;
    if (!sets.isEmpty()) {
        if (!run(db,
                 QStringLiteral("UPDATE %1 SET %2 WHERE %3")
                     .arg(table, sets.join(QLatin1Char(',')), condition),
                 setValues + keyValues, &found))
            return false;
    } else {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT 1 FROM %1 WHERE %2").arg(table, condition));
        for (const QVariant &v : keyValues)
            q.addBindValue(v);
        found = q.exec() && q.next() ? 1 : 0;
    }
    return found > 0 ||
           run(db,
               QStringLiteral("INSERT INTO %1 (%2) values(%3)")
                   .arg(table, columns.join(QStringLiteral(", ")), RecordIo::placeholders(columns.size())),
               values);
}

RegisterStatus CustomerRegister::mirrorToPeople(const QList<Fields> &customers,
                                                const QList<Fields> &objects) {
    QSqlDatabase p = people();
    // Only the columns of the register that this file has.
    auto present = [&p](const QString &table, const QStringList &columns) {
        QStringList out;
        for (const QString &c : columns)
            if (RecordIo::hasColumn(p, table, c))
                out << c;
        return out;
    };
    const QStringList customerColumns = present(QStringLiteral("Customer"), Columns::customer());
    const QStringList objectColumns = present(QStringLiteral("Object"), Columns::object());
    auto kept = [](const Fields &row, const QStringList &columns) {
        Fields out;
        for (const QString &c : columns)
            if (row.contains(c))
                out.insert(c, row.value(c));
        return out;
    };
    const bool ok = inTransaction(p, [&] {
        for (const Fields &c : customers)
            if (!TextValues::isBlank(c.value(QStringLiteral("fio"))) &&
                !appendOrUpdate(p, QStringLiteral("Customer"), {QStringLiteral("fio")},
                                kept(c, customerColumns)))
                return false;
        for (const Fields &o : objects)
            if (!TextValues::isBlank(o.value(QStringLiteral("object"))) &&
                !appendOrUpdate(p, QStringLiteral("Object"),
                                {QStringLiteral("fio"), QStringLiteral("object")}, kept(o, objectColumns)))
                return false;
        return true;
    });
    return ok ? RegisterStatus::Ok : RegisterStatus::Failed;
}

RegisterStatus CustomerRegister::save(const Fields &customer, const Fields &requisites,
                                      const QString &chosenObject, const QString &objectNote,
                                      QString *savedId) {
    const QString name = customer.value(QStringLiteral("fio"));
    if (TextValues::isBlank(name))
        return RegisterStatus::BlankName;
    const CustomerData old = customerById(customer.value(QStringLiteral("_id")));
    const QString oldName = old.found ? old.customer.value(QStringLiteral("fio")) : QString();
    if ((!old.found || oldName != name) && exists(name))
        return RegisterStatus::Duplicate;

    QVariantList values;
    for (const QString &col : kSavedCustomerColumns)
        values << (col == QLatin1String("fio") ? nameToStored(name) : customer.value(col));
    QSqlDatabase c = cash();
    QString id = old.found ? old.customer.value(QStringLiteral("_id")) : QString();
    const bool ok = inTransaction(c, [&] {
        if (!old.found) {
            QSqlQuery q(c);
            q.prepare(QStringLiteral("INSERT INTO customer (%1) values(%2)")
                          .arg(kSavedCustomerColumns.join(QStringLiteral(", ")),
                               RecordIo::placeholders(kSavedCustomerColumns.size())));
            for (const QVariant &v : values)
                q.addBindValue(v);
            if (!q.exec()) {
                m_error = q.lastError().text();
                return false;
            }
            id = q.lastInsertId().toString();
            return writeRequisites(c, id, customer, requisites);
        }
        const QVariant storedOld = nameToStored(oldName);
        if (!chosenObject.isEmpty() &&
            !run(c, QStringLiteral("UPDATE object SET note=? WHERE fio=? and object=?"),
                 {objectNote, storedOld, nameToStored(chosenObject)}))
            return false;
        QStringList sets;
        for (const QString &col : kSavedCustomerColumns)
            sets << col + QStringLiteral("=?");
        if (!run(c, QStringLiteral("UPDATE customer SET %1 WHERE _id=?").arg(sets.join(QLatin1Char(','))),
                 values + QVariantList{id}))
            return false;
        if (oldName != name) {
            // The name is the key: its objects and cash entries move with it.
            if (!run(c, QStringLiteral("UPDATE object SET fio=? WHERE fio=?"),
                     {nameToStored(name), storedOld}))
                return false;
            if (RecordIo::hasColumn(c, QStringLiteral("cash"), QStringLiteral("customer")) &&
                !run(c, QStringLiteral("UPDATE cash SET customer=? WHERE customer=?"),
                     {nameToStored(name), storedOld}))
                return false;
        }
        return writeRequisites(c, id, customer, requisites);
    });
    if (!ok)
        return RegisterStatus::Failed;
    if (old.found && !chosenObject.isEmpty())
        run(people(), QStringLiteral("UPDATE object SET note=? WHERE fio=? and object=?"),
            {objectNote, nameToStored(oldName), nameToStored(chosenObject)});
    if (!mirrorCustomer(old.found ? oldName : name, customer))
        return RegisterStatus::Failed;
    if (savedId)
        *savedId = id;
    return RegisterStatus::Ok;
}

QString CustomerRegister::composeAddress(const Address &a) {
    QString s;
    auto add = [&s](const AddressPart &p, const QString &prefix, const QString &suffix) {
        if (p.ticked && !p.value.trimmed().isEmpty())
            s += prefix + p.value.trimmed() + suffix;
    };
    add(a.region, QString(), QStringLiteral(" обл., "));
    add(a.area, QString(), QStringLiteral(" р-он, "));
    add(a.city, QStringLiteral("г."), QStringLiteral(", "));
    add(a.street, QStringLiteral("ул. "), QStringLiteral(", "));
    add(a.house, QStringLiteral("д."), QStringLiteral(", "));
    add(a.apartment, QStringLiteral("кв."), QString());
    // The separator left after the last part goes.
    s = s.trimmed();
    if (s.endsWith(QLatin1Char(',')))
        s.chop(1);
    return s;
}
