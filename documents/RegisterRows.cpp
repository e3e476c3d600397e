#include "RegisterRows.h"

#include "storage/TextValues.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace RegisterRows {

namespace {

bool failed(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text().trimmed();
    return false;
}

// Column positions of a "SELECT *" result, found once per statement (an older file may order them
// differently, and a missing column reads as empty).
struct Columns {
    explicit Columns(const QSqlRecord &r)
        : id(r.indexOf(QStringLiteral("id"))), data(r.indexOf(QStringLiteral("data"))),
          dataend(r.indexOf(QStringLiteral("dataend"))), name(r.indexOf(QStringLiteral("name"))),
          fileName(r.indexOf(QStringLiteral("filename"))), client(r.indexOf(QStringLiteral("client"))),
          object(r.indexOf(QStringLiteral("object"))), summat(r.indexOf(QStringLiteral("summat"))),
          sumrab(r.indexOf(QStringLiteral("sumrab"))), allsum(r.indexOf(QStringLiteral("allsum"))),
          status(r.indexOf(QStringLiteral("status"))), month(r.indexOf(QStringLiteral("month"))),
          year(r.indexOf(QStringLiteral("year"))) {}
    int id, data, dataend, name, fileName, client, object, summat, sumrab, allsum, status, month, year;
};

QString text(const QSqlQuery &q, int column) {
    return column < 0 ? QString() : q.value(column).toString();
}

QString shown(const QSqlQuery &q, int column) {
    return TextValues::nameFromStored(text(q, column));
}

RegisterRow rowOf(const QSqlQuery &q, const Columns &c) {
    RegisterRow r;
    r.id = q.value(c.id).toLongLong();
    r.data = text(q, c.data);
    r.dataend = text(q, c.dataend);
    r.name = shown(q, c.name);
    r.fileName = text(q, c.fileName);
    r.client = shown(q, c.client);
    r.object = shown(q, c.object);
    r.summat = text(q, c.summat);
    r.sumrab = text(q, c.sumrab);
    r.allsum = text(q, c.allsum);
    r.month = text(q, c.month);
    r.year = text(q, c.year);
    if (c.status >= 0) {
        const QVariant status = q.value(c.status);
        r.finished = !status.isNull() && status.toLongLong() > 0;
    }
    return r;
}

} // namespace

bool read(QSqlDatabase mydoc, const QString &statement, std::vector<RegisterRow> *rows, QString *error) {
    rows->clear();
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    if (!q.exec(statement))
        return failed(q, error);
    const Columns columns(q.record());
    while (q.next())
        rows->push_back(rowOf(q, columns));
    if (q.lastError().isValid())
        return failed(q, error);
    return true;
}

bool readOne(QSqlDatabase mydoc, Registration::List list, qlonglong id, RegisterRow *row, QString *error) {
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE id=?").arg(Registration::tableOf(list)));
    q.addBindValue(id);
    if (!q.exec())
        return failed(q, error);
    if (!q.next()) {
        if (error)
            *error = QStringLiteral("запись не найдена: её удалили в другой копии программы");
        return false;
    }
    *row = rowOf(q, Columns(q.record()));
    return true;
}

QStringList years(QSqlDatabase mydoc, Registration::List list) {
    QStringList out;
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    if (q.exec(QStringLiteral("SELECT DISTINCT year FROM %1 WHERE year<>'' ORDER BY year")
                   .arg(Registration::tableOf(list))))
        while (q.next())
            out << q.value(0).toString();
    return out;
}

RegisterTotals totals(const std::vector<RegisterRow> &rows) {
    RegisterTotals t;
    for (const RegisterRow &r : rows) {
        bool unreadable = false;
        auto add = [&unreadable](MoneyResult &sum, const QString &text) {
            if (text.trimmed().isEmpty())
                return;
            const MoneyResult value = Money::parse(text);
            if (value)
                sum += value;
            else
                unreadable = true;
        };
        add(t.materials, r.summat);
        add(t.works, r.sumrab);
        add(t.all, r.allsum);
        if (unreadable)
            ++t.unreadable;
    }
    return t;
}

bool readOutputs(QSqlDatabase mydoc, const QString &table, qlonglong iddoc, std::vector<OutputFileRow> *rows,
                 QString *error) {
    rows->clear();
    if (!TextValues::isSafeTableName(table)) {
        if (error)
            *error = QStringLiteral("нет таблицы %1").arg(table);
        return false;
    }
    QSqlQuery q(mydoc);
    q.setForwardOnly(true);
    // iddoc is kept as text.
    q.prepare(QStringLiteral("SELECT * FROM %1 WHERE iddoc=?").arg(table));
    q.addBindValue(QString::number(iddoc));
    if (!q.exec())
        return failed(q, error);
    const QSqlRecord r = q.record();
    const int id = r.indexOf(QStringLiteral("id")), data = r.indexOf(QStringLiteral("data")),
              name = r.indexOf(QStringLiteral("name")), ext = r.indexOf(QStringLiteral("ext")),
              fileName = r.indexOf(QStringLiteral("filename"));
    while (q.next())
        rows->push_back({text(q, id), text(q, data), shown(q, name), text(q, ext), text(q, fileName)});
    return true;
}

} // namespace RegisterRows
