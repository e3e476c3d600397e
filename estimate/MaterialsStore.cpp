#include "MaterialsStore.h"

#include "storage/Schema.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace MaterialsStore {

namespace {

bool fail(QString *error, const QString &why) {
    if (error)
        *error = why.trimmed();
    return false;
}

bool run(QSqlQuery &q, QString *error) {
    return q.exec() || fail(error, q.lastError().text());
}

bool opened(QSqlDatabase db, QString *error) {
    return db.isOpen() || fail(error, QStringLiteral("рабочая база сметы не открыта"));
}

} // namespace

bool isEditableColumn(const QString &column) {
    static const QStringList editable = {QStringLiteral("namemat"), QStringLiteral("edizm"),
                                         QStringLiteral("kolvo"), QStringLiteral("price"),
                                         QStringLiteral("note")};
    return editable.contains(column);
}

std::optional<Material> findByName(QSqlDatabase db, const QString &name, QString *error) {
    if (!opened(db, error))
        return std::nullopt;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT _id, edras, namemat, edizm, kolvo, price, summa, note FROM materials "
                             "WHERE namemat=? ORDER BY _id LIMIT 1"));
    q.addBindValue(name);
    if (!run(q, error) || !q.next())
        return std::nullopt;
    Material m;
    for (auto [field, i] : {std::pair{&m.id, 0},
                            {&m.edras, 1},
                            {&m.name, 2},
                            {&m.unit, 3},
                            {&m.quantity, 4},
                            {&m.price, 5},
                            {&m.sum, 6},
                            {&m.note, 7}})
        *field = q.value(i).toString();
    return m;
}

QString add(QSqlDatabase db, const Material &m, QString *error) {
    if (!opened(db, error))
        return {};
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO materials (edras, namemat, edizm, kolvo, price, summa, note) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?)"));
    // A text never stored as NULL: the grid reads every cell as text.
    for (const QString *v : {&m.edras, &m.name, &m.unit, &m.quantity, &m.price, &m.sum, &m.note})
        q.addBindValue(v->isNull() ? QStringLiteral("") : *v);
    if (!run(q, error))
        return {};
    return q.lastInsertId().toString();
}

bool setCell(QSqlDatabase db, const QString &id, const QString &column, const QString &value,
             const QString &sum, QString *error) {
    if (!isEditableColumn(column))
        return fail(error, QStringLiteral("столбец %1 материалов не редактируется").arg(column));
    if (!opened(db, error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE materials SET %1=?, summa=? WHERE _id=?").arg(column));
    q.addBindValue(value);
    q.addBindValue(sum);
    q.addBindValue(id);
    return run(q, error);
}

bool setQuantityByName(QSqlDatabase db, const QString &name, const QString &quantity, const QString &sum,
                       QString *error) {
    if (!opened(db, error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE materials SET kolvo=?,summa=? WHERE namemat=?"));
    q.addBindValue(quantity);
    q.addBindValue(sum);
    q.addBindValue(name);
    return run(q, error);
}

bool removeByIds(QSqlDatabase db, const QStringList &ids, QString *error) {
    if (!opened(db, error))
        return false;
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM materials WHERE _id=?"));
    for (const QString &id : ids) {
        q.addBindValue(id);
        if (!run(q, error))
            return false;
    }
    return t.commit() || fail(error, t.error());
}

bool removeByName(QSqlDatabase db, const QString &name, QString *error) {
    if (!opened(db, error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM materials WHERE namemat=?"));
    q.addBindValue(name);
    return run(q, error);
}

bool clear(QSqlDatabase db, QString *error) {
    return opened(db, error) && Schema::clearTables(db, {QStringLiteral("materials")}, error);
}

} // namespace MaterialsStore
