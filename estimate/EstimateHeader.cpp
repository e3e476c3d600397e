#include "EstimateHeader.h"

#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "estimate/EstimateStore.h"
#include "storage/TextValues.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace EstimateHeader {

const QStringList &titles() {
    static const QStringList t = {defaultTitle, QStringLiteral("ЛОКАЛЬНЫЙ СМЕТНЫЙ РАСЧЕТ"),
                                  QStringLiteral("СМЕТА"), QStringLiteral("Коммерческое предложение"),
                                  QStringLiteral("Стройкооператив")};
    return t;
}

bool Values::operator==(const Values &o) const {
    return customer == o.customer && object == o.object && contractor == o.contractor && date == o.date &&
           number == o.number && numberWord == o.numberWord && nameWork == o.nameWork && title == o.title &&
           currency == o.currency;
}

QList<QPair<QString, QString>> toParameters(const Values &v) {
    // Names are stored as the register keeps them, with backticks.
    return {
        {DocParam::customer, TextValues::nameToStored(v.customer)},
        {DocParam::object, TextValues::nameToStored(v.object)},
        {DocParam::contractor, TextValues::nameToStored(v.contractor)},
        {DocParam::date, v.date.isValid() ? TextValues::shortDate(v.date) : QString()},
        {DocParam::number, QString::number(v.number)},
        {DocParam::numberWord, v.numberWord},
        {DocParam::nameWork, v.nameWork},
        {DocParam::title, v.title},
        {DocParam::currency, QString::number(v.currency)},
    };
}

Values fromParameters(const QMap<QString, QString> &params, const Values &defaults) {
    Values v = defaults;
    auto text = [&params](const QString &name, QString *target) {
        auto it = params.constFind(name);
        if (it != params.constEnd())
            *target = *it;
    };
    auto name = [&params](const QString &key, QString *target) {
        auto it = params.constFind(key);
        if (it != params.constEnd())
            *target = TextValues::nameFromStored(*it);
    };
    name(DocParam::customer, &v.customer);
    name(DocParam::object, &v.object);
    name(DocParam::contractor, &v.contractor);
    text(DocParam::numberWord, &v.numberWord);
    text(DocParam::nameWork, &v.nameWork);
    if (params.contains(DocParam::title) && !params.value(DocParam::title).trimmed().isEmpty())
        v.title = params.value(DocParam::title);
    const QDate d = TextValues::parseShortDate(params.value(DocParam::date));
    if (d.isValid())
        v.date = d;
    bool ok = false;
    const int n = params.value(DocParam::number).trimmed().toInt(&ok);
    if (ok && n >= 0)
        v.number = n;
    const int c = params.value(DocParam::currency).trimmed().toInt(&ok);
    if (ok && c >= 0 && c < 5)
        v.currency = c;
    return v;
}

namespace {

// Inserts one row, every column of the table's list; the name columns in their stored form.
bool insertRow(QSqlDatabase db, const QString &table, const QStringList &columns, const Fields &row,
               const QStringList &nameColumns, QString *error) {
    QVariantList values;
    for (const QString &c : columns)
        values << (nameColumns.contains(c) ? TextValues::nameToStored(row.value(c)) : row.value(c));
    return RecordIo::run(
        db,
        QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
            .arg(table, columns.join(QStringLiteral(", ")), RecordIo::placeholders(columns.size())),
        values, error);
}

Fields firstRow(QSqlDatabase doc, const QString &table, const QString &nameColumn = QString()) {
    QSqlQuery q(doc);
    if (q.exec(QStringLiteral("SELECT * FROM %1 WHERE 1").arg(table)) && q.next())
        return RecordIo::fromRecord(q.record(), nameColumn);
    return {};
}

} // namespace

bool writeCopies(QSqlDatabase doc, CustomerRegister &customers, ContractorRegister &contractors,
                 const Values &v, QString *error) {
    const CustomerData customer = v.customer.isEmpty() ? CustomerData{} : customers.customer(v.customer);
    const Fields object =
        customer.found && !v.object.isEmpty() ? customers.object(v.customer, v.object) : Fields{};
    const ContractorData contractor =
        v.contractor.isEmpty() ? ContractorData{} : contractors.forEstimateText(v.contractor);
    return RecordIo::inTransaction(
        doc,
        [&] {
            for (const char *t : {"Customer", "Object", "Requisite", "RequisiteZak"})
                if (!RecordIo::run(doc, QStringLiteral("DELETE FROM %1").arg(QLatin1String(t)), {}, error))
                    return false;
            if (customer.found &&
                !insertRow(doc, QStringLiteral("Customer"), QStringList{"_id"} + Columns::customer(),
                           customer.customer, {QStringLiteral("fio")}, error))
                return false;
            if (!customer.requisites.isEmpty() &&
                !insertRow(doc, QStringLiteral("RequisiteZak"), Columns::requisites(), customer.requisites,
                           {}, error))
                return false;
            if (!object.isEmpty() && !insertRow(doc, QStringLiteral("Object"), Columns::object(), object,
                                                {QStringLiteral("fio"), QStringLiteral("object")}, error))
                return false;
            return contractor.requisites.isEmpty() ||
                   insertRow(doc, QStringLiteral("Requisite"), Columns::requisites(), contractor.requisites,
                             {}, error);
        },
        error);
}

CustomerData customerCopy(QSqlDatabase doc) {
    CustomerData d;
    d.customer = firstRow(doc, QStringLiteral("Customer"), QStringLiteral("fio"));
    d.found = !d.customer.isEmpty();
    if (d.found)
        d.requisites = firstRow(doc, QStringLiteral("RequisiteZak"));
    return d;
}

Fields contractorRequisitesCopy(QSqlDatabase doc) {
    return firstRow(doc, QStringLiteral("Requisite"));
}

Fields objectCopy(QSqlDatabase doc) {
    Fields f = firstRow(doc, QStringLiteral("Object"), QStringLiteral("object"));
    if (f.contains(QStringLiteral("fio")))
        f.insert(QStringLiteral("fio"), TextValues::nameFromStored(f.value(QStringLiteral("fio"))));
    return f;
}

QString dateNumber(const QDate &date, bool yearFirst) {
    return date.toString(yearFirst ? QStringLiteral("yyyyMMdd") : QStringLiteral("ddMMyyyy"));
}

} // namespace EstimateHeader
