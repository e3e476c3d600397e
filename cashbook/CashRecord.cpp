#include "CashRecord.h"

#include "storage/TextValues.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

using TextValues::nameToStored;

const QStringList &CashEntry::columns() {
    static const QStringList c = [] {
        QStringList l{QStringLiteral("date")};
        for (const QString &f : CashCategory::fields())
            l << f;
        l << QStringLiteral("note") << QStringLiteral("customer") << QStringLiteral("object")
          << QStringLiteral("month") << QStringLiteral("year") << QStringLiteral("date_compare")
          << QStringLiteral("cheki");
        return l;
    }();
    return c;
}

QStringList CashEntry::values() const {
    QStringList v{date};
    for (const QString &a : amounts)
        v << a;
    v << note << nameToStored(customer) << nameToStored(object) << month << year << dateCompare << cheki;
    return v;
}

bool CashEntry::completeDateForms() {
    const QDate d = CashRecordIo::readDate(date);
    if (!d.isValid())
        return false;
    month = TextValues::monthText(d);
    year = TextValues::yearText(d);
    dateCompare = TextValues::dateCompareDay(d);
    return true;
}

bool CashEntry::sameMovement(const CashEntry &o) const {
    return date == o.date && amounts == o.amounts && note == o.note && customer == o.customer &&
           object == o.object;
}

void CashAmounts::read(int category, const QString &text) {
    const quint8 bit = static_cast<quint8>(1u << category);
    counted &= static_cast<quint8>(~bit);
    kopecks[category] = 0;
    if (text.isEmpty())
        return;
    const MoneyResult m = Money::parse(text);
    if (!m.ok())
        return;
    kopecks[category] = m->kopecks();
    counted |= bit;
}

void CashAmounts::readAll(const CashEntry &entry) {
    for (int i = 0; i < CashCategory::kCount; ++i)
        read(i, entry.amounts[i]);
}

std::optional<Money> CashAmounts::money(int category) const {
    if (!(counted & (1u << category)))
        return std::nullopt;
    return Money::fromKopecks(kopecks[category]);
}

MoneyResult CashAmounts::balance() const {
    MoneyResult b = Money();
    for (int i = 0; i < CashCategory::kCount; ++i)
        if (const auto m = money(i)) {
            if (i == CashCategory::kIncoming)
                b += *m;
            else
                b -= *m;
        }
    return b;
}

CashEntryReader::CashEntryReader(const QSqlRecord &r) {
    // Each field under its current name, then under the name of the earlier layout.
    static const std::array<std::initializer_list<const char *>, FieldCount> names = {
        {{"_id", "id"},
         {"date", "data"},
         {"incoming", "prihod"},
         {"my_salary", "myzp"},
         {"material"},
         {"transport"},
         {"salary_workers", "workzp"},
         {"other", "prochee"},
         {"note"},
         {"customer"},
         {"object"},
         {"month"},
         {"year"},
         {"date_compare"},
         {"cheki"}}};
    for (int f = 0; f < FieldCount; ++f) {
        m_index[f] = -1;
        for (const char *n : names[f]) {
            m_index[f] = r.indexOf(QLatin1String(n));
            if (m_index[f] >= 0)
                break;
        }
    }
}

CashEntry CashEntryReader::read(const QSqlQuery &q) const {
    auto text = [this, &q](int field) {
        return m_index[field] < 0 ? QString() : q.value(m_index[field]).toString();
    };
    CashEntry e;
    e.id = text(Id);
    e.date = text(Date);
    for (int i = 0; i < CashCategory::kCount; ++i)
        e.amounts[i] = text(FirstAmount + i);
    e.note = text(Note);
    e.customer = TextValues::nameFromStored(text(Customer));
    e.object = TextValues::nameFromStored(text(Object));
    e.month = text(Month);
    e.year = text(Year);
    e.dateCompare = text(DateCompare);
    e.cheki = text(Cheki);
    return e;
}

namespace CashRecordIo {

QDate readDate(const QString &text) {
    QDate d = TextValues::parseShortDate(text);
    if (!d.isValid())
        d = QDate::fromString(text.trimmed().left(10), QStringLiteral("yyyy-MM-dd"));
    return d;
}

QString shownAmount(const QString &stored, const std::optional<Money> &money) {
    return money ? money->text() : stored;
}

} // namespace CashRecordIo
