#include "SoldReport.h"

#include "customers/CustomerRegister.h"

SoldReport::SoldReport(std::function<QSqlDatabase()> mat, CustomerRegister &customers)
    : m_mat(std::move(mat)), m_customers(customers), m_model(m_mat) {}

QStringList SoldReport::customers() {
    return m_customers.customers();
}

QStringList SoldReport::allObjects() {
    QStringList names;
    for (const auto &pair : m_customers.allObjects())
        names << pair.first;
    names.removeDuplicates();
    return names;
}

bool SoldReport::list(const WriteOffFilter &filter, QString *message) {
    QString error;
    if (m_model.load(filter, &error))
        return true;
    if (message)
        *message = QStringLiteral("Не удалось прочитать проданные материалы: %1").arg(error);
    return false;
}

bool SoldReport::chooseCustomer(const QString &customer, QStringList *objects, QString *notice,
                                QString *message) {
    const QStringList found = m_customers.objects(customer);
    if (objects)
        *objects = found;
    if (notice)
        *notice = found.isEmpty() ? kNoObject : QString();
    WriteOffFilter f;
    f.customer = customer;
    return list(f, message);
}

bool SoldReport::chooseObject(const QString &object, QString *customer, QString *notice, QString *message) {
    QString owner;
    for (const auto &pair : m_customers.allObjects())
        if (pair.first == object) {
            owner = pair.second;
            break;
        }
    if (customer)
        *customer = owner;
    if (notice)
        *notice = owner.isEmpty() ? kNoCustomer : QString();
    WriteOffFilter f;
    f.object = object;
    return list(f, message);
}

bool SoldReport::applyPeriod(const QString &customer, const QDate &from, const QDate &to, QString *message) {
    const QString refused = WriteOffs::periodRefusal(from, to);
    if (!refused.isEmpty()) {
        if (message)
            *message = refused;
        return false;
    }
    WriteOffFilter f;
    f.customer = customer;
    f.from = from;
    f.to = to;
    return list(f, message);
}

bool SoldReport::showAll(QString *message) {
    return list(WriteOffFilter(), message);
}

bool SoldReport::remove(int row, QString *message) {
    const WriteOff *w = m_model.rowAt(row);
    QString error;
    if (!w || !WriteOffs::remove(m_mat(), w->id, &error)) {
        if (message)
            *message = QStringLiteral("Запись не удалена: %1").arg(error);
        return false;
    }
    m_model.removeRowAt(row);
    return true;
}
