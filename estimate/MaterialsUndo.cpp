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

std::vector<Op> diffRows(const std::vector<QStringList> &before, const std::vector<QStringList> &after) {
    std::vector<Op> ops;
    QHash<QString, const QStringList *> old;
    for (const QStringList &row : before)
        old.insert(row.value(0), &row);
    for (const QStringList &row : after) {
        const auto it = old.constFind(row.value(0));
        if (it == old.constEnd()) {
            ops.push_back({Op::Insert, {}, row});
            continue;
        }
        if (**it != row)
            ops.push_back({Op::Edit, **it, row});
        old.erase(it);
    }
    for (const QStringList &row : before)
        if (old.contains(row.value(0)))
            ops.push_back({Op::Delete, row, {}});
    return ops;
}

std::vector<Op> diff(const std::vector<MaterialsStore::Material> &before,
                     const std::vector<MaterialsStore::Material> &after) {
    auto rows = [](const std::vector<MaterialsStore::Material> &materials) {
        std::vector<QStringList> out;
        out.reserve(materials.size());
        for (const auto &m : materials)
            out.push_back(fields(m));
        return out;
    };
    return diffRows(rows(before), rows(after));
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
