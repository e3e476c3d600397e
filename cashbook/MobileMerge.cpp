#include "MobileMerge.h"

#include "CashRecord.h"
#include "CashStore.h"
#include "FileConnection.h"
#include "customers/Records.h"
#include "storage/SqliteSnapshot.h"
#include "storage/Transaction.h"

#include <QDir>
#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace MobileMerge {

namespace {

bool readEntries(QSqlDatabase db, std::vector<CashEntry> *out, QString *error) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT * FROM cash ORDER BY rowid"))) {
        *error = q.lastError().text().trimmed();
        return false;
    }
    const CashEntryReader reader(q.record());
    if (!reader.has(CashEntryReader::Id) || !reader.has(CashEntryReader::Date)) {
        *error = QStringLiteral("в файле нет записей кассы");
        return false;
    }
    while (q.next())
        out->push_back(reader.read(q));
    return true;
}

QString movementKey(const CashEntry &e) {
    QStringList parts{e.date, e.note, e.customer, e.object};
    for (const QString &a : e.amounts)
        parts << a;
    return parts.join(QChar(0x1f));
}

bool run(QSqlDatabase db, const QString &sql, const QVariantList &values, QString *error) {
    return RecordIo::run(db, sql, values, error);
}

} // namespace

Result merge(QSqlDatabase book, const QString &mobilePath) {
    Result r;
    const QString named = QDir::toNativeSeparators(mobilePath);
    auto fail = [&r, &named](const QString &why) {
        r.ok = false;
        r.error = QStringLiteral("Мобильная касса «%1» не перенесена в книгу: %2. Книга не изменена.")
                      .arg(named, why.trimmed());
        return r;
    };
    const QString damaged = SqliteSnapshot::check(mobilePath);
    if (!damaged.isEmpty())
        return fail(damaged);
    FileConnection mobile(mobilePath, FileConnection::Mode::Foreign);
    if (!mobile.error().isEmpty())
        return fail(mobile.error());
    std::vector<CashEntry> incoming;
    QString why;
    if (!readEntries(mobile.db(), &incoming, &why))
        return fail(why);
    std::vector<CheckLine> mobileLines;
    {
        QSqlQuery probe(mobile.db());
        if (probe.exec(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name='checks'")) &&
            probe.next()) {
            probe.finish();
            QSqlQuery q(mobile.db());
            if (q.exec(QStringLiteral("SELECT id, date, name, edizm, kolvo, price, sum, val FROM checks")))
                while (q.next())
                    mobileLines.push_back({q.value(0).toString(), q.value(1).toString(),
                                           q.value(2).toString(), q.value(3).toString(),
                                           q.value(4).toString(), q.value(5).toString(),
                                           q.value(6).toString(), q.value(7).toString()});
        }
    }

    Transaction t(book);
    if (!t.active())
        return fail(t.error());
    std::vector<CashEntry> present;
    if (!readEntries(book, &present, &why))
        return fail(why);
    QHash<QString, CashEntry> byId;
    QHash<QString, QString> byMovement;
    for (const CashEntry &e : present) {
        byId.insert(e.id, e);
        byMovement.insert(movementKey(e), e.id);
    }

    const QStringList &columns = CashEntry::columns();
    QStringList sets;
    for (const QString &c : columns)
        if (c != QLatin1String("cheki"))
            sets << c + QStringLiteral("=?");
    const QString update = QStringLiteral("UPDATE cash SET %1 WHERE _id=?").arg(sets.join(QLatin1Char(',')));

    QHash<QString, QString> bookKeyOf; // mobile key -> book key
    for (CashEntry m : incoming) {
        if (m.month.isEmpty() || m.year.isEmpty() || m.dateCompare.isEmpty())
            m.completeDateForms();
        // A movement the book holds already is left as it is.
        const QString known = byMovement.value(movementKey(m));
        if (!known.isEmpty()) {
            bookKeyOf.insert(m.id, known);
            continue;
        }
        // The same record, changed: its key, customer, object and date are the book's. (Keys alone are
        // no proof: the phone and the computer number their new records independently.)
        const auto same = byId.constFind(m.id);
        if (same != byId.constEnd() && same->customer == m.customer && same->object == m.object &&
            same->date == m.date) {
            bookKeyOf.insert(m.id, m.id);
            CashEntry merged = m;
            merged.cheki = same->cheki;
            QVariantList values;
            const QStringList texts = merged.values();
            for (int i = 0; i < columns.size(); ++i)
                if (columns[i] != QLatin1String("cheki"))
                    values << texts[i];
            if (!run(book, update, values << m.id, &why))
                return fail(why);
            byMovement.insert(movementKey(merged), m.id);
            ++r.updated;
            continue;
        }
        CashEntry added = m;
        added.cheki.clear();
        if (!CashStore::insert(book, &added, &why))
            return fail(why);
        byMovement.insert(movementKey(added), added.id);
        bookKeyOf.insert(m.id, added.id);
        ++r.appended;
    }

    // Receipt lines of the records carried over, under their records' keys in the book.
    QHash<QString, std::vector<CheckLine>> linesByKey;
    for (const CheckLine &l : mobileLines) {
        const QString key = bookKeyOf.value(l.val);
        if (key.isEmpty())
            continue;
        if (!linesByKey.contains(key)) {
            std::vector<CheckLine> existing;
            if (!CashStore::lines(book, key, &existing, &why))
                return fail(why);
            linesByKey.insert(key, existing);
        }
        std::vector<CheckLine> &existing = linesByKey[key];
        CheckLine line = l;
        line.val = key;
        bool done = false;
        for (CheckLine &e : existing) {
            if (e.id == l.id && l.val == key) {
                done = true;
                if (!e.sameGoods(line)) {
                    if (!CashStore::updateLine(book, line, &why))
                        return fail(why);
                    e = line;
                    ++r.lines;
                }
                break;
            }
            if (e.sameGoods(line)) {
                done = true;
                break;
            }
        }
        if (done)
            continue;
        line.id.clear();
        if (!CashStore::insertLine(book, &line, &why))
            return fail(why);
        existing.push_back(line);
        ++r.lines;
    }
    for (auto it = linesByKey.constBegin(); it != linesByKey.constEnd(); ++it)
        if (!it.value().empty() &&
            !run(book, QStringLiteral("UPDATE cash SET cheki=? WHERE _id=? AND ifnull(cheki,'')<>?"),
                 {it.key(), it.key(), it.key()}, &why))
            return fail(why);
    if (!t.commit())
        return fail(t.error());
    r.ok = true;
    return r;
}

} // namespace MobileMerge
