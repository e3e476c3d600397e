#include "WarehouseTransfer.h"

#include "storage/Catalogue.h"
#include "storage/Schema.h"

#include <QSqlQuery>
#include <QVariant>

namespace WarehouseTransfer {

bool appendOrUpdate(QSqlDatabase warehouse, const QList<Fields> &rows, QString *error) {
    static const QStringList keys = {"data", "namemat", "dataoffs", "customer", "object"};
    QStringList columns = Schema::columns(Db::Mat, QStringLiteral("storage"));
    columns.removeAll(QStringLiteral("id"));
    QStringList sets, where;
    for (const QString &c : columns)
        sets << c + QStringLiteral("=?");
    for (const QString &k : keys)
        where << QStringLiteral("ifnull(%1,'')=?").arg(k);
    const QString update = QStringLiteral("UPDATE storage SET %1 WHERE %2")
                               .arg(sets.join(QLatin1Char(',')), where.join(QStringLiteral(" and ")));
    const QString insert =
        QStringLiteral("INSERT INTO storage (%1) values(%2)")
            .arg(columns.join(QStringLiteral(", ")), RecordIo::placeholders(columns.size()));
    return RecordIo::inTransaction(
        warehouse,
        [&] {
            for (const Fields &row : rows) {
                QVariantList values, keyValues;
                for (const QString &c : columns)
                    values << row.value(c);
                for (const QString &k : keys)
                    keyValues << row.value(k);
                int updated = 0;
                if (!RecordIo::run(warehouse, update, values + keyValues, error, &updated))
                    return false;
                if (updated == 0 && !RecordIo::run(warehouse, insert, values, error))
                    return false;
            }
            return true;
        },
        error);
}

} // namespace WarehouseTransfer
