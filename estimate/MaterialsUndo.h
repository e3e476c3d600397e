#pragma once
// The estimate's materials as part of an undoable step: the rows before and after the step compared
// by _id, and the difference put back (undo) or applied again (redo) through MaterialsStore. A
// material is kept in a step as its ten fields in table order.

#include "MaterialsStore.h"

#include <QStringList>
#include <vector>

namespace MaterialsUndo {

struct Op {
    enum Kind { Edit, Insert, Delete };
    Kind kind = Edit;
    QStringList before; // Edit, Delete
    QStringList after;  // Edit, Insert
};

// _id, edras, namemat, edizm, kolvo, price, summa, note, reserve, numpos.
QStringList fields(const MaterialsStore::Material &m);
MaterialsStore::Material material(const QStringList &fields);

// What turned `before` into `after` (both in _id order).
std::vector<Op> diff(const std::vector<MaterialsStore::Material> &before,
                     const std::vector<MaterialsStore::Material> &after);
// The same for any rows whose first field is their key.
std::vector<Op> diffRows(const std::vector<QStringList> &before, const std::vector<QStringList> &after);

// Undoes (or redoes) the ops in one transaction; false with *error, and then nothing changed.
bool apply(QSqlDatabase db, const std::vector<Op> &ops, bool undoing, QString *error = nullptr);

} // namespace MaterialsUndo
