#pragma once
// Pieces shared by the default layouts: placeholder texts and the estimate table (its head, the row
// block of sections, works and section totals, and the closing lines).

#include "office/TemplateNames.h"
#include "office/templates/SheetBuilder.h"

#include <QString>
#include <QVector>

namespace LayoutParts {

inline QString ph(const QString &name) {
    return u'[' + name + u']';
}
inline QString ph(const QString &kind, const QString &column) {
    return u'[' + kind + u'.' + column + u']';
}

struct Column {
    QString head;  // caption in the table's head
    QString key;   // column name of the rows (empty: nothing in this column)
    CellLook look; // look of the data cells
};

// Look of the table's head and of ordinary text.
CellLook headLook();
CellLook textLook();
CellLook dataText();  // a boxed text cell of the table
CellLook dataMoney(); // a boxed money cell
CellLook dataQty();   // a boxed quantity cell

// Writes the head (with a row of column numbers when numbered), a section row, a work row and a section
// total row as the block of the row list, then the closing lines. Returns the next free row.
int estimateTable(SheetBuilder &sheet, int row, const QVector<Column> &columns, bool numbered);

} // namespace LayoutParts
