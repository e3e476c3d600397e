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

// A text never stored as NULL: the grid reads every cell as text.
QString textValue(const QString &v) {
    return v.isNull() ? QStringLiteral("") : v;
}

// numpos is an INTEGER column: a row without a place keeps NULL.
QVariant positionValue(const QString &numpos) {
    bool ok = false;
    const int n = numpos.trimmed().toInt(&ok);
    return ok ? QVariant(n) : QVariant(QMetaType(QMetaType::Int));
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
    q.prepare(QStringLiteral("INSERT INTO materials (edras, namemat, edizm, kolvo, price, summa, note, "
                             "numpos) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QString *v : {&m.edras, &m.name, &m.unit, &m.quantity, &m.price, &m.sum, &m.note})
        q.addBindValue(textValue(*v));
    q.addBindValue(positionValue(m.numpos));
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

std::vector<Material> readAll(QSqlDatabase db, QString *error) {
    std::vector<Material> out;
    if (!opened(db, error))
        return out;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(
            QStringLiteral("SELECT _id, edras, namemat, edizm, kolvo, price, summa, note, reserve, numpos "
                           "FROM materials WHERE 1 ORDER BY _id"))) {
        fail(error, q.lastError().text());
        return out;
    }
    while (q.next()) {
        Material m;
        int i = 0;
        for (QString *field : {&m.id, &m.edras, &m.name, &m.unit, &m.quantity, &m.price, &m.sum, &m.note,
                               &m.reserve, &m.numpos})
            *field = q.value(i++).toString();
        out.push_back(std::move(m));
    }
    return out;
}

int nextPosition(QSqlDatabase db, QString *error) {
    if (!opened(db, error))
        return -1;
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT count(*) FROM materials")) || !q.next()) {
        fail(error, q.lastError().text());
        return -1;
    }
    return q.value(0).toInt() + 1;
}

bool writeRow(QSqlDatabase db, const Material &m, QString *error) {
    if (!opened(db, error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE materials SET numpos=?,namemat=?,edizm=?,kolvo=?,price=?,note=? "
                             "WHERE _id=?"));
    q.addBindValue(positionValue(m.numpos));
    for (const QString *v : {&m.name, &m.unit, &m.quantity, &m.price, &m.note})
        q.addBindValue(textValue(*v));
    q.addBindValue(m.id);
    return run(q, error);
}

bool renumber(QSqlDatabase db, QString *error) {
    QString problem;
    std::vector<Material> rows = readAll(db, &problem);
    if (!problem.isEmpty())
        return fail(error, problem);
    Transaction t(db);
    if (!t.active())
        return fail(error, t.error());
    int place = 0;
    for (Material &m : rows) {
        const QString numpos = QString::number(++place);
        if (m.numpos == numpos)
            continue;
        m.numpos = numpos;
        if (!writeRow(db, m, error))
            return false;
    }
    return t.commit() || fail(error, t.error());
}

bool restore(QSqlDatabase db, const Material &m, QString *error) {
    if (!opened(db, error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT OR REPLACE INTO materials (_id, edras, namemat, edizm, kolvo, price, "
                             "summa, note, reserve, numpos) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    q.addBindValue(m.id);
    for (const QString *v : {&m.edras, &m.name, &m.unit, &m.quantity, &m.price, &m.sum, &m.note, &m.reserve})
        q.addBindValue(textValue(*v));
    q.addBindValue(positionValue(m.numpos));
    return run(q, error);
}

bool clear(QSqlDatabase db, QString *error) {
    return opened(db, error) && Schema::clearTables(db, {QStringLiteral("materials")}, error);
}

} // namespace MaterialsStore
