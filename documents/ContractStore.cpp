#include "ContractStore.h"

#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace ContractStore {

QString label(const QString &number) {
    return QStringLiteral("№ ") + number;
}

bool registerFile(QSqlDatabase db, const Entry &e, QString *error) {
    const auto failed = [error](const QSqlQuery &q) {
        *error = QStringLiteral("Договор не внесён в реестр документов: %1").arg(q.lastError().text());
        return false;
    };
    Transaction transaction(db);
    if (!transaction.active()) {
        *error = QStringLiteral("Договор не внесён в реестр документов: %1").arg(transaction.error());
        return false;
    }
    QSqlQuery find(db);
    find.prepare(QStringLiteral("SELECT id FROM contract WHERE iddoc=? and ext=? ORDER BY id"));
    find.addBindValue(e.iddoc);
    find.addBindValue(e.ext);
    if (!find.exec())
        return failed(find);
    const QVariant id = find.next() ? find.value(0) : QVariant();
    find.finish();

    QSqlQuery q(db);
    if (id.isNull()) {
        q.prepare(QStringLiteral(
            "INSERT INTO contract (iddoc, data, date_compare, dataend, number, name, filename, "
            "ext, avans, allsum, month, year) values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        q.addBindValue(e.iddoc);
    } else {
        q.prepare(QStringLiteral("UPDATE contract SET data=?, date_compare=?, dataend=?, number=?, name=?, "
                                 "filename=?, ext=?, avans=?, allsum=?, month=?, year=? WHERE id=?"));
    }
    q.addBindValue(TextValues::shortDate(e.date));
    q.addBindValue(TextValues::dateCompareSeconds(e.date).toLongLong());
    q.addBindValue(e.endDate.isValid() ? TextValues::shortDate(e.endDate) : QString());
    q.addBindValue(e.number);
    q.addBindValue(label(e.number));
    q.addBindValue(e.fileName);
    q.addBindValue(e.ext);
    q.addBindValue(e.avans);
    q.addBindValue(e.allsum);
    q.addBindValue(TextValues::monthText(e.date));
    q.addBindValue(TextValues::yearText(e.date));
    if (!id.isNull())
        q.addBindValue(id);
    if (!q.exec())
        return failed(q);
    if (!transaction.commit()) {
        *error = QStringLiteral("Договор не внесён в реестр документов: %1").arg(transaction.error());
        return false;
    }
    return true;
}

QString estimateId(QSqlDatabase document) {
    QSqlQuery q(document);
    if (!q.exec(QStringLiteral("SELECT iddoc, note FROM mydoc WHERE 1")) || !q.next())
        return {};
    if (q.value(1).toString().trimmed() != QLatin1String("doc"))
        return {};
    return q.value(0).toString();
}

} // namespace ContractStore
