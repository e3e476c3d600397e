#include "ActFields.h"

#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QDate>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace ActFields {

namespace {

bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text().trimmed();
    return false;
}

bool failWith(const QString &why, QString *error) {
    if (error)
        *error = why;
    return false;
}

} // namespace

QVector<Field> fields() {
    const QString today = TextValues::shortDate(QDate::currentDate());
    return {{QStringLiteral("ComboBoxZakaz"), QString()},
            {QStringLiteral("ZEditAddress"), QString()},
            {QStringLiteral("ZEditPhone"), QString()},
            {QStringLiteral("ZEditFax"), QString()},
            {QStringLiteral("ComboBoxPodryad"), QString()},
            {QStringLiteral("PEditAddress"), QString()},
            {QStringLiteral("PEditPhone"), QString()},
            {QStringLiteral("PEditFax"), QString()},
            {QStringLiteral("ComboBoxTypeWork"), QStringLiteral("Наименование стройки")},
            {QStringLiteral("EditNameWork"), QString()},
            {QStringLiteral("AddressWork"), QString()},
            {QStringLiteral("ComboBoxObject"), QString()},
            {QStringLiteral("EditNumDoc"), QString()},
            {QStringLiteral("DateEditContract"), today},
            {QStringLiteral("EditSumSmet"), QString()},
            {QStringLiteral("SummaWord"), QString()},
            {QStringLiteral("EditSdal"), QString()},
            {QStringLiteral("EditDolSdal"), QStringLiteral("Прораб")},
            {QStringLiteral("EditPrinal"), QString()},
            {QStringLiteral("EditDolPrinal"), QStringLiteral("Представитель")},
            {QStringLiteral("EditNumKv"), QString()},
            {QStringLiteral("DateEditPeriodS"), today},
            {QStringLiteral("DateEditPeriodPo"), today},
            {QStringLiteral("RadioButton1"), tick(false)}};
}

QStringList names() {
    QStringList out;
    for (const Field &f : fields())
        out << f.name;
    return out;
}

const QStringList &handerPositions() {
    static const QStringList list{QStringLiteral("Ген. директор"), QStringLiteral("Директор"),
                                  QStringLiteral("Представитель"), QStringLiteral("Прораб"),
                                  QStringLiteral("Мастер")};
    return list;
}

const QStringList &accepterPositions() {
    static const QStringList list{QStringLiteral("Ген. директор"), QStringLiteral("Директор"),
                                  QStringLiteral("Представитель")};
    return list;
}

namespace {
// Fields holding names of parties and people: kept with backticks for double quotes, as every name.
bool isName(const QString &field) {
    static const QStringList names{QStringLiteral("ComboBoxZakaz"), QStringLiteral("ComboBoxPodryad"),
                                   QStringLiteral("ComboBoxObject"), QStringLiteral("EditSdal"),
                                   QStringLiteral("EditPrinal")};
    return names.contains(field);
}
} // namespace

bool isTicked(const QString &stored) {
    const QString s = stored.trimmed().toLower();
    return s == QLatin1String("1") || s == QLatin1String("-1") || s == QLatin1String("true");
}

QMap<QString, QString> read(QSqlDatabase db) {
    QMap<QString, QString> values;
    QSqlQuery q(db);
    if (!db.isOpen() || !q.exec(QStringLiteral("SELECT * FROM ks2 WHERE 1")))
        return values;
    const int name = q.record().indexOf(QStringLiteral("name"));
    const int value = q.record().indexOf(QStringLiteral("value"));
    while (q.next()) {
        const QString field = q.value(name).toString();
        const QString text = q.value(value).toString();
        values.insert(field, isName(field) ? TextValues::nameFromStored(text) : text);
    }
    return values;
}

bool ensureRows(QSqlDatabase db, QString *error) {
    Transaction t(db);
    if (!t.active())
        return failWith(t.error(), error);
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT name FROM ks2 WHERE 1")))
        return fail(q, error);
    QSet<QString> present;
    while (q.next())
        present.insert(q.value(0).toString());
    q.finish();
    q.prepare(QStringLiteral("INSERT INTO ks2 (name, value) VALUES (?, ?)"));
    for (const Field &f : fields()) {
        if (present.contains(f.name))
            continue;
        q.addBindValue(f.name);
        q.addBindValue(f.defaultValue);
        if (!q.exec())
            return fail(q, error);
    }
    return t.commit() || failWith(t.error(), error);
}

bool write(QSqlDatabase db, const QMap<QString, QString> &values, QString *error) {
    Transaction t(db);
    if (!t.active())
        return failWith(t.error(), error);
    QSqlQuery update(db), insert(db);
    update.prepare(QStringLiteral("UPDATE ks2 SET value=? WHERE name=?"));
    insert.prepare(QStringLiteral("INSERT INTO ks2 (name, value) VALUES (?, ?)"));
    for (const QString &name : names()) {
        const auto it = values.constFind(name);
        if (it == values.cend())
            continue;
        const QString text = isName(name) ? TextValues::nameToStored(it.value()) : it.value();
        update.addBindValue(text);
        update.addBindValue(name);
        if (!update.exec())
            return fail(update, error);
        if (update.numRowsAffected() > 0)
            continue;
        insert.addBindValue(name);
        insert.addBindValue(text);
        if (!insert.exec())
            return fail(insert, error);
    }
    return t.commit() || failWith(t.error(), error);
}

} // namespace ActFields
