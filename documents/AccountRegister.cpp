#include "AccountRegister.h"

#include "customers/Records.h"
#include "storage/TextValues.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace AccountRegister {

QString label(const QString &number) {
    return QStringLiteral("№ ") + number.trimmed();
}

QString estimateId(QSqlDatabase document) {
    QSqlQuery q(document);
    if (!q.exec(QStringLiteral("SELECT iddoc, note FROM mydoc WHERE 1")) || !q.next())
        return {};
    if (q.value(1).toString().trimmed() == QLatin1String("draft") || q.value(0).isNull())
        return {};
    return q.value(0).toString();
}

bool record(QSqlDatabase mydoc, const Entry &e, QString *error) {
    if (e.iddoc.isEmpty()) {
        if (error)
            *error = QStringLiteral("смета не внесена в реестр документов");
        return false;
    }
    const QString data = TextValues::shortDate(e.date);
    const QString compare = TextValues::dateCompareSeconds(e.date);
    const QString month = TextValues::monthText(e.date);
    const QString year = TextValues::yearText(e.date);
    return RecordIo::inTransaction(
        mydoc,
        [&] {
            QSqlQuery q(mydoc);
            q.prepare(QStringLiteral("SELECT id FROM account WHERE iddoc=? and ext=? ORDER BY id"));
            q.addBindValue(e.iddoc);
            q.addBindValue(e.ext);
            if (!q.exec()) {
                if (error)
                    *error = q.lastError().text();
                return false;
            }
            if (q.next()) {
                const QVariant id = q.value(0);
                q.finish();
                return RecordIo::run(
                    mydoc,
                    QStringLiteral("UPDATE account SET data=?, date_compare=?, number=?, name=?, "
                                   "filename=?, allsum=?, month=?, year=? WHERE id=?"),
                    {data, compare, e.number, label(e.number), e.fileName, e.allsum, month, year, id}, error);
            }
            q.finish();
            return RecordIo::run(
                mydoc,
                QStringLiteral("INSERT INTO account (iddoc, data, date_compare, number, name, "
                               "filename, ext, allsum, month, year) values(%1)")
                    .arg(RecordIo::placeholders(10)),
                {e.iddoc, data, compare, e.number, label(e.number), e.fileName, e.ext, e.allsum, month, year},
                error);
        },
        error);
}

} // namespace AccountRegister
