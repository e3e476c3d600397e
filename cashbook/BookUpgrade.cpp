#include "BookUpgrade.h"

#include "CashRecord.h"
#include "FileConnection.h"
#include "customers/CustomerRegister.h"
#include "materials/WarehouseTransfer.h"
#include "storage/Catalogue.h"
#include "storage/ModuleSQL.h"
#include "storage/Schema.h"
#include "storage/SqliteSnapshot.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace BookUpgrade {

namespace {

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

QSet<QString> tablesOf(QSqlDatabase db) {
    QSet<QString> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type='table'")))
        while (q.next())
            out.insert(q.value(0).toString().toLower());
    return out;
}

QSet<QString> columnsOf(QSqlDatabase db, const QString &table) {
    QSet<QString> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(table)))
        while (q.next())
            out.insert(q.value(1).toString().toLower());
    return out;
}

// The statement of the catalogue that creates the table in a cash book.
QString catalogueStatement(const QString &table) {
    static const QRegularExpression re(QStringLiteral("^CREATE TABLE IF NOT EXISTS (\\w+)"));
    for (const SchemaStep &step : schemaSteps(Db::Cash))
        for (const QString &s : step.statements)
            if (re.match(s).captured(1).compare(table, Qt::CaseInsensitive) == 0)
                return s;
    return {};
}

// Every row of the table as fields; the name columns in their shown form, the key column left out.
QList<Fields> readRows(QSqlDatabase db, const QString &table, const QStringList &nameColumns,
                       const QString &key) {
    QList<Fields> rows;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT * FROM %1").arg(table)))
        return rows;
    const QSqlRecord r = q.record();
    while (q.next()) {
        Fields f;
        for (int i = 0; i < r.count(); ++i) {
            const QString name = r.fieldName(i);
            if (name.compare(key, Qt::CaseInsensitive) == 0)
                continue;
            const QString value = q.value(i).toString();
            f.insert(name, nameColumns.contains(name, Qt::CaseInsensitive) ? TextValues::nameFromStored(value)
                                                                           : value);
        }
        rows << f;
    }
    return rows;
}

class BookWriter {
public:
    explicit BookWriter(QSqlDatabase db) : m_db(db), m_q(db) {}

    bool exec(const QString &sql, const QVariantList &values = {}) {
        if (!m_q.prepare(sql))
            return fail();
        for (const QVariant &v : values)
            m_q.addBindValue(v);
        return m_q.exec() || fail();
    }
    QString error() const { return m_error; }

private:
    bool fail() {
        m_error = m_q.lastError().text().trimmed();
        return false;
    }
    QSqlDatabase m_db;
    QSqlQuery m_q;
    QString m_error;
};

// The records of the older cash table into a new one of the current layout, keys kept.
bool carryRecords(QSqlDatabase db, BookWriter &w, int *count) {
    const QString earlier = QStringLiteral("cash_earlier_layout");
    if (!w.exec(QStringLiteral("ALTER TABLE cash RENAME TO %1").arg(earlier)) ||
        !w.exec(catalogueStatement(QStringLiteral("cash"))))
        return false;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(earlier)))
        return w.exec(QStringLiteral("SELECT * FROM %1").arg(earlier)); // reports the reason
    const CashEntryReader reader(q.record());
    const QString insert = QStringLiteral("INSERT INTO cash (_id, %1) values(?,%2)")
                               .arg(CashEntry::columns().join(QStringLiteral(", ")),
                                    RecordIo::placeholders(CashEntry::columns().size()));
    while (q.next()) {
        CashEntry e = reader.read(q);
        const QDate d = CashRecordIo::readDate(e.date);
        if (d.isValid()) {
            e.date = TextValues::shortDate(d);
            if (e.month.isEmpty() || e.year.isEmpty() || e.dateCompare.isEmpty())
                e.completeDateForms();
        }
        QVariantList values{e.id};
        for (const QString &v : e.values())
            values << v;
        if (!w.exec(insert, values))
            return false;
        ++*count;
    }
    return w.exec(QStringLiteral("DROP TABLE %1").arg(earlier));
}

// The receipt lines of the older table Cheki into checks. A line belongs to the record whose key its
// note holds, else to the one record of its date; a line that matches neither keeps an empty key.
bool carryReceipts(QSqlDatabase db, BookWriter &w, int *count) {
    if (!w.exec(catalogueStatement(QStringLiteral("checks"))))
        return false;
    QSet<QString> ids;
    QHash<QString, QStringList> idsByDate;
    {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (q.exec(QStringLiteral("SELECT _id, date FROM cash")))
            while (q.next()) {
                ids.insert(q.value(0).toString());
                idsByDate[q.value(1).toString()] << q.value(0).toString();
            }
    }
    QSet<QString> marked;
    const QList<Fields> lines = readRows(db, QStringLiteral("Cheki"), {}, QStringLiteral("id"));
    for (const Fields &l : lines) {
        const QDate d = CashRecordIo::readDate(l.value(QStringLiteral("data")));
        const QString date = d.isValid() ? TextValues::shortDate(d) : l.value(QStringLiteral("data"));
        QString key = l.value(QStringLiteral("note")).trimmed();
        if (!ids.contains(key))
            key = idsByDate.value(date).size() == 1 ? idsByDate.value(date).first() : QString();
        if (!w.exec(QStringLiteral("INSERT INTO checks (date, name, edizm, kolvo, price, sum, val) "
                                   "values(?,?,?,?,?,?,?)"),
                    {date, l.value(QStringLiteral("name")), l.value(QStringLiteral("edizm")),
                     l.value(QStringLiteral("kolvo")), l.value(QStringLiteral("price")),
                     l.value(QStringLiteral("sum")), key}))
            return false;
        if (!key.isEmpty())
            marked.insert(key);
        ++*count;
    }
    for (const QString &key : marked)
        if (!w.exec(QStringLiteral("UPDATE cash SET cheki=? WHERE _id=?"), {key, key}))
            return false;
    return w.exec(QStringLiteral("DROP TABLE Cheki"));
}

// The register's tables of a book whose customers were kept with fewer columns gain the columns of the
// current layout, empty.
bool completeRegister(QSqlDatabase db, BookWriter &w) {
    for (const QString &table : {QStringLiteral("customer"), QStringLiteral("Object")}) {
        const QSet<QString> present = columnsOf(db, table);
        if (present.isEmpty())
            continue;
        for (const QString &column : Schema::columns(Db::Cash, table))
            if (!present.contains(column.toLower()) &&
                !w.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 TEXT").arg(table, column)))
                return false;
    }
    return true;
}

} // namespace

Targets programTargets(TModuleSQL &module) {
    Targets t;
    t.customers = [&module](const QList<Fields> &customers, const QList<Fields> &objects, QString *error) {
        CustomerRegister reg(module);
        if (reg.mirrorToPeople(customers, objects) == RegisterStatus::Ok)
            return true;
        *error = reg.lastError();
        return false;
    };
    t.warehouse = [&module](const QList<Fields> &rows, QString *error) {
        return WarehouseTransfer::appendOrUpdate(module.database(Db::Mat), rows, error);
    };
    return t;
}

QString checkReadable(const QString &bookPath) {
    const QString why = SqliteSnapshot::check(bookPath);
    if (why.isEmpty())
        return {};
    return QStringLiteral("Файл «%1» не является кассовой книгой: %2.").arg(shown(bookPath), why);
}

Result run(const QString &bookPath, const Targets &targets) {
    Result r;
    auto fail = [&r, &bookPath](const QString &what, const QString &why) {
        r.ok = false;
        r.error = QStringLiteral("Кассовая книга «%1» не обновлена (%2: %3). Книга оставлена как была.")
                      .arg(shown(bookPath), what, why.trimmed());
        return r;
    };
    if (!QFileInfo::exists(bookPath))
        return r;
    const QString unreadable = checkReadable(bookPath);
    if (!unreadable.isEmpty()) {
        r.ok = false;
        r.error = unreadable;
        return r;
    }
    FileConnection con(bookPath, FileConnection::Mode::Book);
    if (!con.error().isEmpty())
        return fail(QStringLiteral("файл не открылся"), con.error());
    QSqlDatabase db = con.db();

    // The probes: the receipt mark of the records, the region and fax of the customers.
    const QSet<QString> tables = tablesOf(db);
    const QSet<QString> cash = columnsOf(db, QStringLiteral("cash"));
    const QSet<QString> customer = columnsOf(db, QStringLiteral("customer"));
    const bool oldCash = tables.contains(QStringLiteral("cash")) &&
                         (!cash.contains(QStringLiteral("cheki")) || !cash.contains(QStringLiteral("_id")));
    const bool oldCustomers =
        tables.contains(QStringLiteral("customer")) &&
        (!customer.contains(QStringLiteral("region")) || !customer.contains(QStringLiteral("fax")));
    const bool oldReceipts = tables.contains(QStringLiteral("cheki"));
    const bool warehouse = tables.contains(QStringLiteral("storage"));
    if (!oldCash && !oldCustomers && !oldReceipts && !warehouse)
        return r;
    r.upgraded = true;

    // 1. What moved to other databases, each in its own transaction.
    const QList<Fields> customers =
        tables.contains(QStringLiteral("customer"))
            ? readRows(db, QStringLiteral("customer"), {QStringLiteral("fio")}, QStringLiteral("_id"))
            : QList<Fields>();
    const QList<Fields> objects =
        tables.contains(QStringLiteral("object"))
            ? readRows(db, QStringLiteral("Object"), {QStringLiteral("fio"), QStringLiteral("object")},
                       QStringLiteral("_id"))
            : QList<Fields>();
    QString why;
    if ((!customers.isEmpty() || !objects.isEmpty()) && !targets.customers(customers, objects, &why))
        return fail(QStringLiteral("заказчики и объекты не перенесены"), why);
    r.customers = customers.size();
    r.objects = objects.size();
    if (warehouse) {
        const QList<Fields> rows = readRows(db, QStringLiteral("storage"), {}, QStringLiteral("id"));
        if (!rows.isEmpty() && !targets.warehouse(rows, &why))
            return fail(QStringLiteral("склад не перенесён"), why);
        r.warehouseRows = rows.size();
    }

    // 2. The book itself, in one transaction.
    {
        Transaction t(db);
        if (!t.active())
            return fail(QStringLiteral("файл занят"), t.error());
        BookWriter w(db);
        if (oldCash && !carryRecords(db, w, &r.records))
            return fail(QStringLiteral("записи не перенесены"), w.error());
        if (oldReceipts && !carryReceipts(db, w, &r.receiptLines))
            return fail(QStringLiteral("чеки не перенесены"), w.error());
        if (oldCustomers && !completeRegister(db, w))
            return fail(QStringLiteral("заказчики не дополнены"), w.error());
        if (warehouse && !w.exec(QStringLiteral("DROP TABLE storage")))
            return fail(QStringLiteral("склад не убран из книги"), w.error());
        if (!t.commit())
            return fail(QStringLiteral("изменения не записаны"), t.error());
    }
    // 3. The space of the dropped tables goes back to the disk.
    QSqlQuery(db).exec(QStringLiteral("VACUUM;"));
    return r;
}

} // namespace BookUpgrade
