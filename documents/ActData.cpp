#include "ActData.h"

#include "office/InWord.h"
#include "storage/Money.h"
#include "storage/TextValues.h"

namespace ActData {

Contacts customerContacts(const CustomerData &c) {
    if (!c.found)
        return {};
    return {c.customer.value(QStringLiteral("address")), c.customer.value(QStringLiteral("phone")),
            c.customer.value(QStringLiteral("fax"))};
}

Contacts contractorContacts(const ContractorData &c) {
    if (!c.found)
        return {};
    return {c.requisites.value(QStringLiteral("adres")), c.contractor.value(QStringLiteral("phone")),
            c.email};
}

QString periodProblem(const QDate &from, const QDate &to) {
    if (from.isValid() && to.isValid() && from > to)
        return QStringLiteral("Начало периода не должно превышать окончание");
    return QString();
}

QString valueInWords(const QString &value, int currency) {
    if (TextValues::isBlank(value))
        return QString();
    const MoneyResult m = Money::parse(value);
    return m ? TInWord::amount(*m, currency) : QString();
}

} // namespace ActData
