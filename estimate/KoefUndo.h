#pragma once
// The coefficient lines (table `koef`) as part of an undoable step: every line with all its columns
// before and after the step, compared by `id`, and the difference put back or applied again. A line is
// kept as its fields in the order of columns().

#include "MaterialsUndo.h"

#include <QSqlDatabase>
#include <QStringList>
#include <vector>

namespace KoefUndo {

using Op = MaterialsUndo::Op;

// "id" and the columns of the table.
const QStringList &columns();
// Every line of the table, in `id` order; empty when it cannot be read.
std::vector<QStringList> readAll(QSqlDatabase db);
std::vector<Op> diff(const std::vector<QStringList> &before, const std::vector<QStringList> &after);
// Undoes (or redoes) the ops in one transaction; false with *error, and then nothing changed.
bool apply(QSqlDatabase db, const std::vector<Op> &ops, bool undoing, QString *error = nullptr);

} // namespace KoefUndo
