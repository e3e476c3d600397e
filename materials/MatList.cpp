#include "MatList.h"

#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

MatRowKind matRowKind(const MatRow &row) {
    if (TextValues::isBlank(row.name))
        return MatRowKind::Empty;
    const QString unit = row.unit.trimmed().toLower();
    if (unit == QStringLiteral("пв"))
        return MatRowKind::Subgroup;
    if (unit.isEmpty() && TextValues::isBlank(row.price))
        return MatRowKind::Group;
    return MatRowKind::Material;
}

std::vector<MatGroup> matGroups(const std::vector<MatRow> &rows) {
    std::vector<MatGroup> groups;
    for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
        const MatRowKind kind = matRowKind(rows[static_cast<size_t>(i)]);
        if (kind == MatRowKind::Group) {
            groups.push_back({rows[static_cast<size_t>(i)].name.trimmed(), i, {}});
        } else if (kind == MatRowKind::Subgroup) {
            if (groups.empty())
                groups.push_back({QString(), -1, {}});
            groups.back().subgroups.push_back({rows[static_cast<size_t>(i)].name.trimmed(), i});
        }
    }
    return groups;
}

void titleRange(const std::vector<MatRow> &rows, int titleRow, int *first, int *last) {
    const int n = static_cast<int>(rows.size());
    *first = std::clamp(titleRow, 0, std::max(0, n - 1));
    *last = n - 1;
    if (titleRow < 0 || titleRow >= n)
        return;
    const MatRowKind own = matRowKind(rows[static_cast<size_t>(titleRow)]);
    for (int i = titleRow + 1; i < n; ++i) {
        const MatRowKind k = matRowKind(rows[static_cast<size_t>(i)]);
        if (k == MatRowKind::Group || (own == MatRowKind::Subgroup && k == MatRowKind::Subgroup)) {
            *last = i - 1;
            return;
        }
    }
}

namespace MatListStore {

namespace {

bool fail(QString *error, const QString &text) {
    if (error)
        *error = text.trimmed();
    return false;
}

bool run(QSqlQuery &q, QString *error) {
    return q.exec() || fail(error, q.lastError().text());
}

bool known(const QString &table, QString *error) {
    return table == QLatin1String("list1") || table == QLatin1String("list2") ||
           table == QLatin1String("list3") ||
           fail(error, QStringLiteral("Неизвестный лист материалов «%1»").arg(table));
}

QString text(const QString &v) {
    return v.isNull() ? QStringLiteral("") : v;
}

const QString kColumns = QStringLiteral("id, namemat, edizm, price, nummat, idmat");

void readRows(QSqlQuery &q, std::vector<MatRow> &out) {
    while (q.next()) {
        MatRow r;
        r.id = q.value(0).toString();
        r.name = q.value(1).toString();
        r.unit = q.value(2).toString();
        r.price = q.value(3).toString();
        r.nummat = q.value(4).toString();
        r.idmat = q.value(5).toString();
        out.push_back(std::move(r));
    }
}

// Rows without a place (lists of older programs) are given one in their present order, so that a
// row can be put between two others.
bool placeEveryRow(QSqlDatabase db, const QString &table, QString *error) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT count(*) FROM ") + table + QStringLiteral(" WHERE numpos IS NULL")) ||
        !q.next())
        return fail(error, q.lastError().text());
    if (q.value(0).toInt() == 0)
        return true;
    q.finish();
    QStringList ids;
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT id FROM ") + table + QStringLiteral(" ORDER BY numpos, id")))
        return fail(error, q.lastError().text());
    while (q.next())
        ids << q.value(0).toString();
    QSqlQuery u(db);
    u.prepare(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET numpos=? WHERE id=?"));
    for (int i = 0; i < ids.size(); ++i) {
        u.addBindValue(i + 1);
        u.addBindValue(ids.at(i));
        if (!run(u, error))
            return false;
    }
    return true;
}

} // namespace

QString table(int sheet) {
    return sheet >= 0 && sheet < kSheets ? QStringLiteral("list%1").arg(sheet + 1) : QString();
}

QString sheetCaption(int sheet) {
    return QStringLiteral("Лист %1").arg(sheet + 1);
}

bool read(QSqlDatabase db, const QString &table, const QString &word, std::vector<MatRow> &out,
          QString *error) {
    out.clear();
    if (!known(table, error))
        return false;
    QSqlQuery q(db);
    // The count first: the rows are laid out once.
    if (word.isEmpty() && q.exec(QStringLiteral("SELECT count(*) FROM ") + table) && q.next())
        out.reserve(static_cast<size_t>(q.value(0).toLongLong()));
    q.finish();
    q.setForwardOnly(true);
    const QString head = QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM ") + table;
    const QString order = QStringLiteral(" ORDER BY numpos, id");
    if (word.isEmpty()) {
        q.prepare(head + QStringLiteral(" WHERE 1") + order);
    } else {
        // The exact search first: most rows fail it before the slower pattern is tried.
        q.prepare(head + QStringLiteral(" WHERE instr(namemat, ?) > 0 AND namemat LIKE ?") + order);
        q.addBindValue(word);
        q.addBindValue(QStringLiteral("%") + word + QStringLiteral("%"));
    }
    if (!run(q, error))
        return false;
    readRows(q, out);
    return true;
}

bool findByName(QSqlDatabase db, const QString &table, const QString &name, MatRow &out, QString *error) {
    if (!known(table, error))
        return false;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT ") + kColumns + QStringLiteral(" FROM ") + table +
              QStringLiteral(" WHERE namemat=? ORDER BY numpos, id LIMIT 1"));
    q.addBindValue(name);
    if (!run(q, error))
        return false;
    std::vector<MatRow> rows;
    readRows(q, rows);
    if (rows.empty())
        return false;
    out = rows.front();
    return true;
}

bool isEditableColumn(const QString &column) {
    return column == QLatin1String("namemat") || column == QLatin1String("edizm") ||
           column == QLatin1String("price") || column == QLatin1String("nummat");
}

bool setCell(QSqlDatabase db, const QString &table, const QString &id, const QString &column,
             const QString &value, QString *error) {
    if (!known(table, error))
        return false;
    if (!isEditableColumn(column))
        return fail(error, QStringLiteral("столбец %1 списка материалов не редактируется").arg(column));
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") + column +
              QStringLiteral("=? WHERE id=?"));
    q.addBindValue(text(value));
    q.addBindValue(id);
    return run(q, error);
}

QString insertRow(QSqlDatabase db, const QString &table, const QString &beforeId, QString *error) {
    if (!known(table, error))
        return {};
    Transaction t(db);
    if (!t.active()) {
        fail(error, t.error());
        return {};
    }
    if (!placeEveryRow(db, table, error))
        return {};
    QSqlQuery q(db);
    int place = 0;
    if (!beforeId.isEmpty()) {
        q.prepare(QStringLiteral("SELECT numpos FROM ") + table + QStringLiteral(" WHERE id=?"));
        q.addBindValue(beforeId);
        if (!run(q, error))
            return {};
        if (q.next())
            place = q.value(0).toInt();
        q.finish();
    }
    if (place > 0) {
        // The rows from that place on move one down.
        q.prepare(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET numpos=numpos+1 WHERE numpos>=?"));
        q.addBindValue(place);
        if (!run(q, error))
            return {};
    } else {
        if (!q.exec(QStringLiteral("SELECT coalesce(max(numpos), 0) + 1 FROM ") + table) || !q.next()) {
            fail(error, q.lastError().text());
            return {};
        }
        place = q.value(0).toInt();
        q.finish();
    }
    q.prepare(
        QStringLiteral("INSERT INTO ") + table +
        QStringLiteral(" (namemat, edizm, price, nummat, idmat, numpos) values('', '', '', '', '', ?)"));
    q.addBindValue(place);
    if (!run(q, error))
        return {};
    const QString id = q.lastInsertId().toString();
    if (!t.commit()) {
        fail(error, t.error());
        return {};
    }
    return id;
}

bool removeRows(QSqlDatabase db, const QString &table, const QStringList &ids, QString *error) {
    if (!known(table, error))
        return false;
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM ") + table + QStringLiteral(" WHERE id=?"));
    for (const QString &id : ids) {
        q.addBindValue(id);
        if (!run(q, error))
            return false;
    }
    return t.commit() || fail(error, t.error());
}

bool clearSheet(QSqlDatabase db, const QString &table, QString *error) {
    if (!known(table, error) || !Schema::clearTables(db, {table}, error))
        return false;
    QSqlQuery(db).exec(QStringLiteral("VACUUM;")); // only compacts the file
    return true;
}

bool replaceSheet(QSqlDatabase db, const QString &table, const std::vector<MatRow> &rows, QString *error) {
    if (!known(table, error))
        return false;
    {
        Transaction t(db);
        if (!t.active())
            return fail(error, t.error());
        if (!Schema::clearTables(db, {table}, error))
            return false;
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO ") + table +
                  QStringLiteral(" (namemat, edizm, price, nummat, idmat, numpos) values(?, ?, ?, ?, ?, ?)"));
        int place = 0;
        for (const MatRow &r : rows) {
            for (const QString *v : {&r.name, &r.unit, &r.price, &r.nummat, &r.idmat})
                q.addBindValue(text(*v));
            q.addBindValue(++place);
            if (!run(q, error))
                return false;
        }
        q.finish();
        if (!t.commit())
            return fail(error, t.error());
    }
    QSqlQuery(db).exec(QStringLiteral("VACUUM;"));
    return true;
}

} // namespace MatListStore
