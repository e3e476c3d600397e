#include "Registration.h"

#include "estimate/DocumentChecksum.h"
#include "storage/Money.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"
#include "storage/UntrustedSqlite.h"

#include <QAtomicInt>
#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <sqlite3.h>

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

bool fail(QString *error, const QString &why) {
    if (error)
        *error = why;
    return false;
}

bool fail(QString *error, const QSqlQuery &q) {
    return fail(error, q.lastError().text().trimmed());
}

// Runs one statement with its values; false with the reason.
bool run(QSqlDatabase db, const QString &sql, const QVariantList &values, QString *error,
         int *rowsAffected = nullptr) {
    QSqlQuery q(db);
    q.prepare(sql);
    for (const QVariant &v : values)
        q.addBindValue(v);
    if (!q.exec())
        return fail(error, q);
    if (rowsAffected)
        *rowsAffected = q.numRowsAffected();
    return true;
}

// The processor time the link of a document file may take to be written.
constexpr int kRelinkBudgetMs = 5000;

bool hasTable(QSqlDatabase file, const QString &name) {
    QSqlQuery has(file);
    has.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name=?"));
    has.addBindValue(name);
    return has.exec() && has.next();
}

// The one mydoc row of a document file, under one transaction.
bool writeLink(QSqlDatabase file, qlonglong id, const QString &note, QString *error) {
    Transaction t(file);
    if (!t.active())
        return fail(error, t.error());
    // A file made before documents carried the link gets the document's tables first.
    if (!hasTable(file, QStringLiteral("mydoc"))) {
        const QString why = Schema::upgrade(file, Db::Smeta);
        if (!why.isEmpty())
            return fail(error, why);
    }
    if (!run(file, QStringLiteral("DELETE FROM mydoc"), {}, error) ||
        !run(file, QStringLiteral("INSERT INTO mydoc (iddoc, note) values(?, ?)"), {id, note}, error))
        return false;
    // A file sealed with the sums of its content gets the link's sum anew, so that the new link is not
    // taken for damage on open (the other sums stay, and with them any damage found before).
    const QString why = DocumentChecksum::rewrite(UntrustedSqlite::handle(file), QStringLiteral("mydoc"));
    if (!why.isEmpty())
        return fail(error, why);
    return t.commit() || fail(error, t.error());
}

// A register row that another copy of the program has deleted meanwhile.
bool noRow(QString *error) {
    return fail(error, QStringLiteral("запись не найдена: её удалили в другой копии программы"));
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

QString tableOf(List list) {
    return list == List::Drafts ? QStringLiteral("drafts") : QStringLiteral("documents");
}

QString noteOf(List list) {
    return list == List::Drafts ? kDraft : kDoc;
}

bool finish(QSqlDatabase mydoc, qlonglong id, const QDate &day, QString *error) {
    int changed = 0;
    if (!run(mydoc, QStringLiteral("UPDATE documents SET status=?,dataend=? WHERE id=?"),
             {1, TextValues::shortDate(day), id}, error, &changed))
        return false;
    return changed > 0 || noRow(error);
}

bool edit(QSqlDatabase mydoc, List list, qlonglong id, const Edit &values, QString *error) {
    using namespace TextValues;
    Transaction t(mydoc);
    if (!t.active())
        return fail(error, t.error());
    int changed = 0;
    if (!run(mydoc,
             QStringLiteral("UPDATE %1 SET data=?,name=?,month=?,year=? WHERE id=?").arg(tableOf(list)),
             {shortDate(values.date), nameToStored(values.name), monthText(values.date),
              yearText(values.date), id},
             error, &changed))
        return false;
    if (changed == 0)
        return noRow(error);
    if (list == List::Documents) {
        // In work: no finish date and no status at all; the status filter looks for NULL.
        const QVariant status = values.finished ? QVariant(1) : QVariant(QMetaType(QMetaType::Int));
        const QString end = values.finished ? shortDate(values.finishDate) : QString(QLatin1String(""));
        if (!run(mydoc, QStringLiteral("UPDATE documents SET dataend=?,status=? WHERE id=?"),
                 {end, status, id}, error))
            return false;
    }
    return t.commit() || fail(error, t.error());
}

bool remove(QSqlDatabase mydoc, List list, qlonglong id, QString *error) {
    return run(mydoc, QStringLiteral("DELETE FROM %1 WHERE id=?").arg(tableOf(list)), {id}, error);
}

qlonglong transfer(QSqlDatabase mydoc, List from, qlonglong id, const QString &newFileName, QString *error) {
    const QString source = tableOf(from);
    const QString target = tableOf(from == List::Drafts ? List::Documents : List::Drafts);
    Transaction t(mydoc);
    if (!t.active()) {
        fail(error, t.error());
        return 0;
    }
    QSqlQuery q(mydoc);
    q.prepare(QStringLiteral("INSERT INTO %1 (data, date_compare, name, filename, client, object, summat, "
                             "sumrab, allsum, month, year) SELECT data, date_compare, name, ?, client, "
                             "object, summat, sumrab, allsum, month, year FROM %2 WHERE id=?")
                  .arg(target, source));
    q.addBindValue(newFileName);
    q.addBindValue(id);
    if (!q.exec()) {
        fail(error, q);
        return 0;
    }
    if (q.numRowsAffected() != 1) {
        noRow(error);
        return 0;
    }
    const qlonglong newId = q.lastInsertId().toLongLong();
    if (!run(mydoc, QStringLiteral("DELETE FROM %1 WHERE id=?").arg(source), {id}, error))
        return 0;
    if (!t.commit()) {
        fail(error, t.error());
        return 0;
    }
    return newId;
}

bool relinkFile(const QString &documentPath, qlonglong id, const QString &note, QString *error) {
    static QAtomicInt counter;
    const QString name = QStringLiteral("relink-%1").arg(counter.fetchAndAddRelaxed(1));
    bool ok = false;
    {
        QSqlDatabase file = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        file.setDatabaseName(documentPath);
        if (!file.open()) {
            fail(error, file.lastError().text().trimmed());
        } else {
            // The file may come from anywhere: nothing in it runs (no trigger fires on the link's
            // rows), no value of its schema grows without end, and the work has a time budget.
            sqlite3 *handle = UntrustedSqlite::handle(file);
            UntrustedSqlite::restrict(handle);
            UntrustedSqlite::Budget budget(handle, kRelinkBudgetMs);
            ok = writeLink(file, id, note, error);
            if (!ok && budget.spent())
                fail(error, UntrustedSqlite::failure(handle, SQLITE_INTERRUPT, &budget));
            file.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!ok && error)
        *error = QStringLiteral("не удалось записать связь с реестром в файл «%1»: %2")
                     .arg(QDir::toNativeSeparators(documentPath), *error);
    return ok;
}

} // namespace Registration
