#include "Records.h"

#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

namespace Columns {

const QStringList &customer() {
    static const QStringList c = {"fio",  "email",  "phone",    "object",  "note",   "address",
                                  "fax",  "okpo",   "function", "numroom", "Region", "City",
                                  "Area", "Street", "House",    "Agent"};
    return c;
}

const QStringList &object() {
    static const QStringList c = {"object", "fio", "namebuild", "addressbuild", "note"};
    return c;
}

const QStringList &requisites() {
    static const QStringList c = {"id",         "name", "certificate", "pasport", "adres", "inn",
                                  "kpp",        "boss", "glavbuh",     "account", "bank",  "bik",
                                  "koraccount", "fax",  "okpo",        "note"};
    return c;
}

const QStringList &contractor() {
    static const QStringList c = {"shotname", "longname", "phone"};
    return c;
}

} // namespace Columns

namespace LegalData {

const QList<Piece> &pieces() {
    static const QList<Piece> p = {
        {"inn", "ИНН"},
        {"okpo", "ОГРН"},
        {"bank", "Банк"},
        {"account", "Расчетный счет"},
        {"koraccount", "Корр. счет"},
        {"bik", "БИК"},
        {"kpp", "КПП"},
        {"certificate", "Номер свидетельства"},
        {"pasport", "Паспорт"},
    };
    return p;
}

QString line(const Fields &requisites, const QSet<QString> &tickedColumns) {
    QStringList parts;
    for (const Piece &p : pieces()) {
        if (!tickedColumns.contains(p.column))
            continue;
        const QString value = requisites.value(p.column).trimmed();
        if (!value.isEmpty())
            parts << p.label + QLatin1Char(' ') + value;
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace LegalData

namespace RecordIo {

Fields fromRecord(const QSqlRecord &record, const QString &nameColumn) {
    Fields f;
    for (int i = 0; i < record.count(); ++i) {
        const QString name = record.fieldName(i);
        const QString value = record.value(i).toString();
        f.insert(name, name == nameColumn ? TextValues::nameFromStored(value) : value);
    }
    return f;
}

bool hasColumn(QSqlDatabase db, const QString &table, const QString &column) {
    QSqlQuery q(db);
    if (!TextValues::isSafeTableName(table) || !q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(table)))
        return false;
    while (q.next())
        if (q.value(1).toString().compare(column, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

bool run(QSqlDatabase db, const QString &sql, const QVariantList &values, QString *error, int *rowsAffected) {
    auto fail = [&](const QString &why) {
        if (error)
            *error = why.trimmed() + QStringLiteral(" (") + sql + QLatin1Char(')');
        return false;
    };
    if (!db.isOpen())
        return fail(QStringLiteral("база данных не открыта"));
    QSqlQuery q(db);
    if (!q.prepare(sql))
        return fail(q.lastError().text());
    for (const QVariant &v : values)
        q.addBindValue(v);
    if (!q.exec())
        return fail(q.lastError().text());
    if (rowsAffected)
        *rowsAffected = q.numRowsAffected();
    return true;
}

bool inTransaction(QSqlDatabase db, const std::function<bool()> &body, QString *error) {
    Transaction t(db);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    if (!body())
        return false;
    if (t.commit())
        return true;
    if (error)
        *error = t.error();
    return false;
}

QString placeholders(int n) {
    QStringList q;
    for (int i = 0; i < n; ++i)
        q << QStringLiteral("?");
    return q.join(QLatin1Char(','));
}

} // namespace RecordIo
