#include "Registration.h"

#include "storage/Money.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace Registration {

namespace {

Result failure(const QSqlQuery &q) {
    Result r;
    r.error = q.lastError().text().trimmed();
    return r;
}

void bindEntry(QSqlQuery &q, const Entry &e) {
    using namespace TextValues;
    q.addBindValue(shortDate(e.date));
    q.addBindValue(dateCompareSeconds(e.date).toLongLong());
    q.addBindValue(nameToStored(e.name));
    q.addBindValue(e.fileName);
    q.addBindValue(nameToStored(e.client));
    q.addBindValue(nameToStored(e.object));
    q.addBindValue(money(e.summat));
    q.addBindValue(money(e.sumrab));
    q.addBindValue(money(e.allsum));
    q.addBindValue(monthText(e.date));
    q.addBindValue(yearText(e.date));
}

} // namespace

QString money(const QString &text) {
    return Money::parse(text).valueOr(Money()).text();
}

QString note(QSqlDatabase document) {
    QSqlQuery q(document);
    if (q.exec(QStringLiteral("SELECT * FROM mydoc WHERE 1")) && q.next())
        return q.value(QStringLiteral("note")).toString().trimmed();
    return {};
}

Result prepare(QSqlDatabase document, QSqlDatabase mydoc, const Entry &entry) {
    QSqlQuery link(document);
    if (!link.exec(QStringLiteral("SELECT * FROM mydoc WHERE 1")))
        return failure(link);
    if (link.next()) {
        Result r;
        r.ok = true;
        r.id = link.value(QStringLiteral("iddoc")).toLongLong();
        const QString n = link.value(QStringLiteral("note")).toString().trimmed();
        const bool draft = n.isEmpty() ? entry.draft : n == kDraft;
        r.table = draft ? QStringLiteral("drafts") : QStringLiteral("documents");
        return r;
    }
    link.finish();

    Result r;
    r.table = entry.draft ? QStringLiteral("drafts") : QStringLiteral("documents");
    QSqlQuery q(mydoc);
    q.prepare(
        QStringLiteral("INSERT INTO %1 (data, date_compare, name, filename, client, object, summat, sumrab, "
                       "allsum, month, year) values(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
            .arg(r.table));
    bindEntry(q, entry);
    if (!q.exec())
        return failure(q);
    r.id = q.lastInsertId().toLongLong();
    r.inserted = true;

    QSqlQuery ins(document);
    ins.prepare(QStringLiteral("INSERT INTO mydoc (iddoc, note) values(?, ?)"));
    ins.addBindValue(r.id);
    ins.addBindValue(entry.draft ? kDraft : kDoc);
    if (!ins.exec()) {
        Result bad = failure(ins);
        undo(QSqlDatabase(), mydoc, r);
        return bad;
    }
    r.ok = true;
    return r;
}

Result complete(QSqlDatabase mydoc, Result prepared, const Entry &entry) {
    if (!prepared.ok || prepared.inserted)
        return prepared;
    QSqlQuery q(mydoc);
    q.prepare(QStringLiteral("UPDATE %1 SET data=?,date_compare=?,name=?,filename=?,client=?,object=?,"
                             "summat=?,sumrab=?,allsum=?,month=?,year=? WHERE id=?")
                  .arg(prepared.table));
    bindEntry(q, entry);
    q.addBindValue(prepared.id);
    if (!q.exec())
        return failure(q);
    return prepared;
}

Result registerOnSave(QSqlDatabase document, QSqlDatabase mydoc, const Entry &entry) {
    return complete(mydoc, prepare(document, mydoc, entry), entry);
}

void undo(QSqlDatabase document, QSqlDatabase mydoc, const Result &result) {
    if (!result.inserted)
        return;
    QSqlQuery q(mydoc);
    q.prepare(QStringLiteral("DELETE FROM %1 WHERE id=?").arg(result.table));
    q.addBindValue(result.id);
    q.exec();
    if (document.isOpen()) {
        QSqlQuery d(document);
        d.prepare(QStringLiteral("DELETE FROM mydoc WHERE iddoc=?"));
        d.addBindValue(result.id);
        d.exec();
    }
}

bool draftAfterOpen(const QString &note, bool inDraftsFolder) {
    if (note == kDraft)
        return true;
    if (note == kDoc)
        return false;
    return inDraftsFolder;
}

namespace {

// Raises the counter column of the customer/object pair to `value` (a new pair is inserted with it);
// a counter already at or past it stays. Read and written under one write lock, so that two programs
// counting for the same pair make one record.
bool raiseCounter(QSqlDatabase people, const QString &customer, const QString &object, const QString &column,
                  qlonglong value, QString *error) {
    const QString client = TextValues::nameToStored(customer.simplified());
    const QString obj = TextValues::nameToStored(object.simplified());
    if (client.isEmpty() || obj.isEmpty())
        return true;
    Transaction t(people);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    QSqlQuery q(people);
    q.prepare(QStringLiteral("SELECT id, %1 FROM NumDoc WHERE Client=? AND Object=?").arg(column));
    q.addBindValue(client);
    q.addBindValue(obj);
    if (!q.exec()) {
        if (error)
            *error = q.lastError().text();
        return false;
    }
    if (q.next()) {
        const qlonglong id = q.value(0).toLongLong();
        const qlonglong current = q.value(1).toLongLong();
        q.finish();
        if (value <= current)
            return true; // nothing to write: the guard ends the transaction

        q.prepare(QStringLiteral("UPDATE NumDoc SET %1=? WHERE id=?").arg(column));
        q.addBindValue(value);
        q.addBindValue(id);
    } else {
        q.finish();
        q.prepare(QStringLiteral("INSERT INTO NumDoc (Client, Object, %1) values (?, ?, ?)").arg(column));
        q.addBindValue(client);
        q.addBindValue(obj);
        q.addBindValue(value);
    }
    if (!q.exec()) {
        if (error)
            *error = q.lastError().text();
        return false;
    }
    if (!t.commit()) {
        if (error)
            *error = t.error();
        return false;
    }
    return true;
}

// A positive whole number, else 0.
qlonglong positiveNumber(const QString &number) {
    bool ok = false;
    const qlonglong n = number.trimmed().toLongLong(&ok);
    return ok && n > 0 ? n : 0;
}

} // namespace

bool countEstimate(QSqlDatabase people, const QString &customer, const QString &object, const QString &number,
                   QString *error) {
    const qlonglong n = positiveNumber(number);
    return raiseCounter(people, customer, object, QStringLiteral("Smeta"), n > 0 ? n : 1, error);
}

bool countAct(QSqlDatabase people, const QString &customer, const QString &object, const QString &number,
              QString *error) {
    const qlonglong n = positiveNumber(number);
    return raiseCounter(people, customer, object, QStringLiteral("Act"), n > 0 ? n + 1 : 1, error);
}

qlonglong actCounter(QSqlDatabase people, const QString &customer, const QString &object) {
    QSqlQuery q(people);
    q.prepare(QStringLiteral("SELECT Act FROM NumDoc WHERE Client=? AND Object=?"));
    q.addBindValue(TextValues::nameToStored(customer.simplified()));
    q.addBindValue(TextValues::nameToStored(object.simplified()));
    if (!q.exec() || !q.next())
        return 0;
    return q.value(0).toLongLong();
}

Link link(QSqlDatabase document) {
    Link l;
    QSqlQuery q(document);
    if (q.exec(QStringLiteral("SELECT * FROM mydoc WHERE 1")) && q.next()) {
        l.id = q.value(QStringLiteral("iddoc")).toLongLong();
        l.note = q.value(QStringLiteral("note")).toString().trimmed();
    }
    return l;
}

} // namespace Registration
