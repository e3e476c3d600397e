#include "MaterialsUndo.h"

#include "storage/Transaction.h"

#include <QHash>

namespace MaterialsUndo {

QStringList fields(const MaterialsStore::Material &m) {
    return {m.id, m.edras, m.name, m.unit, m.quantity, m.price, m.sum, m.note, m.reserve, m.numpos};
}

MaterialsStore::Material material(const QStringList &f) {
    MaterialsStore::Material m;
    int i = 0;
    for (QString *field :
         {&m.id, &m.edras, &m.name, &m.unit, &m.quantity, &m.price, &m.sum, &m.note, &m.reserve, &m.numpos})
        *field = f.value(i++);
    return m;
}

std::vector<Op> diff(const std::vector<MaterialsStore::Material> &before,
                     const std::vector<MaterialsStore::Material> &after) {
    std::vector<Op> ops;
    QHash<QString, const MaterialsStore::Material *> old;
    for (const auto &m : before)
        old.insert(m.id, &m);
    for (const auto &m : after) {
        const auto it = old.constFind(m.id);
        if (it == old.constEnd()) {
            ops.push_back({Op::Insert, {}, fields(m)});
            continue;
        }
        const QStringList was = fields(**it), now = fields(m);
        if (was != now)
            ops.push_back({Op::Edit, was, now});
        old.erase(it);
    }
    for (const auto &m : before)
        if (old.contains(m.id))
            ops.push_back({Op::Delete, fields(m), {}});
    return ops;
}

bool apply(QSqlDatabase db, const std::vector<Op> &ops, bool undoing, QString *error) {
    Transaction t(db);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    for (const Op &op : ops) {
        // Undoing an insertion deletes the row, undoing a deletion puts it back, an edit takes the
        // other side; redoing does the opposite.
        const QStringList &target = undoing ? op.before : op.after;
        const bool ok =
            target.isEmpty()
                ? MaterialsStore::removeByIds(db, {(undoing ? op.after : op.before).value(0)}, error)
                : MaterialsStore::restore(db, material(target), error);
        if (!ok)
            return false;
    }
    if (!t.commit()) {
        if (error)
            *error = t.error();
        return false;
    }
    return true;
}

} // namespace MaterialsUndo
