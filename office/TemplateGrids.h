#pragma once
// The text of a template's sheet as the engine reads it just after loading, kept by the template's
// content: a template filled again (the next package, the next act of the same form) skips reading
// its sheet out of the engine. The key is a hash of the file's bytes, so an edited template is read
// afresh. Shared by every engine of the program (they run on threads of their own).

#include "office/SheetText.h"

#include <QByteArray>
#include <QString>

namespace TemplateGrids {

// The hash of the file's bytes; empty when it cannot be read.
QByteArray contentKey(const QString &path);
// The sheet kept for the key; false when there is none.
bool find(const QByteArray &key, SheetText::Grid *grid);
// Keeps the sheet (a sheet past a few thousand cells is not kept; the oldest go past a few dozen).
void keep(const QByteArray &key, const SheetText::Grid &grid);

} // namespace TemplateGrids
