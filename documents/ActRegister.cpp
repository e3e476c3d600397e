#include "ActRegister.h"

#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace ActRegister {

namespace {

bool fail(const QString &why, QString *error) {
    if (error)
        *error = why.trimmed();
    return false;
}

} // namespace

bool enter(QSqlDatabase mydoc, const Entry &e, QString *error) {
    using namespace TextValues;
    const bool withEnd = ActKinds::hasEndDate(e.kind);
    const QString iddoc = QString::number(e.iddoc);
    const int status = ActKinds::status(e.kind);
    Transaction t(mydoc);
    if (!t.active())
        return fail(t.error(), error);
    QSqlQuery q(mydoc);
    q.prepare(QStringLiteral("SELECT id FROM act WHERE iddoc=? and ext=? and status=?"));
    q.addBindValue(iddoc);
    q.addBindValue(e.ext);
    q.addBindValue(status);
    if (!q.exec())
        return fail(q.lastError().text(), error);
    const bool found = q.next();
    const qlonglong id = found ? q.value(0).toLongLong() : 0;
    q.finish();

    // The columns in the order of the statement; dataend only for КС-2 and КС-3.
    QList<QPair<QString, QVariant>> values{
        {QStringLiteral("data"), shortDate(e.date)},
        {QStringLiteral("date_compare"), dateCompareSeconds(e.date).toLongLong()},
    };
    if (withEnd)
        values.append({QStringLiteral("dataend"), e.endDate.isValid() ? shortDate(e.endDate) : QString()});
    values.append({{QStringLiteral("number"), e.number},
                   {QStringLiteral("name"), nameToStored(ActKinds::label(e.kind, e.number))},
                   {QStringLiteral("filename"), e.fileName},
                   {QStringLiteral("allsum"), e.allsum},
                   {QStringLiteral("month"), monthText(e.date)},
                   {QStringLiteral("year"), yearText(e.date)}});
    QStringList columns;
    for (const auto &v : values)
        columns << v.first;
    if (found) {
        q.prepare(QStringLiteral("UPDATE act SET %1=? WHERE id=?").arg(columns.join(QStringLiteral("=?,"))));
        for (const auto &v : values)
            q.addBindValue(v.second);
        q.addBindValue(id);
    } else {
        columns.insert(0, QStringLiteral("iddoc"));
        columns.insert(columns.indexOf(QStringLiteral("filename")) + 1, QStringLiteral("ext"));
        columns.insert(columns.indexOf(QStringLiteral("allsum")) + 1, QStringLiteral("status"));
        q.prepare(QStringLiteral("INSERT INTO act (%1) values(%2)")
                      .arg(columns.join(QStringLiteral(", ")),
                           QStringList(columns.size(), QStringLiteral("?")).join(QStringLiteral(", "))));
        q.addBindValue(iddoc);
        for (const auto &v : values) {
            q.addBindValue(v.second);
            if (v.first == QLatin1String("filename"))
                q.addBindValue(e.ext);
            else if (v.first == QLatin1String("allsum"))
                q.addBindValue(status);
        }
    }
    if (!q.exec())
        return fail(q.lastError().text(), error);
    return t.commit() || fail(t.error(), error);
}

} // namespace ActRegister
