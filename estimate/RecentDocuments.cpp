#include "RecentDocuments.h"

#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace RecentDocuments {

namespace {
bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text();
    return false;
}
} // namespace

bool touch(QSqlDatabase people, const QString &path, QString *error) {
    if (path.isEmpty())
        return true;
    // One transaction with the write lock from the start: another program may be updating the list.
    Transaction t(people);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    QSqlQuery q(people);
    q.prepare(QStringLiteral("DELETE FROM LastDoc WHERE value=?"));
    q.addBindValue(path);
    if (!q.exec())
        return fail(q, error);
    // The oldest records go until there is room for one more.
    if (!q.exec(QStringLiteral("SELECT id FROM LastDoc WHERE 1 ORDER BY id")))
        return fail(q, error);
    QList<qlonglong> ids;
    while (q.next())
        ids << q.value(0).toLongLong();
    q.finish();
    for (int i = 0; i + kMaxEntries <= ids.size(); ++i) {
        q.prepare(QStringLiteral("DELETE FROM LastDoc WHERE id=?"));
        q.addBindValue(ids.at(i));
        if (!q.exec())
            return fail(q, error);
    }
    q.prepare(QStringLiteral("INSERT INTO LastDoc (value) values(?)"));
    q.addBindValue(path);
    if (!q.exec())
        return fail(q, error);
    if (!t.commit()) {
        if (error)
            *error = t.error();
        return false;
    }
    return true;
}

QStringList newestFirst(QSqlDatabase people) {
    QStringList out;
    QSqlQuery q(people);
    if (q.exec(QStringLiteral("SELECT value FROM LastDoc WHERE 1 ORDER BY id DESC")))
        while (q.next() && out.size() < kMaxEntries)
            out << q.value(0).toString();
    return out;
}

} // namespace RecentDocuments
