#include "LayoutParts.h"

namespace LayoutParts {

using namespace TemplateNames;

CellLook headLook() {
    return CellLook().pt(9).b().center().w().box();
}
CellLook textLook() {
    return CellLook();
}
CellLook dataText() {
    return CellLook().w().box().top();
}
CellLook dataMoney() {
    return CellLook().box().right().top().money();
}
CellLook dataQty() {
    return CellLook().box().right().top();
}

int estimateTable(SheetBuilder &sheet, int row, const QVector<Column> &columns, bool numbered) {
    const int n = columns.size();
    for (int c = 0; c < n; ++c)
        sheet.cell(row, c + 1, columns.at(c).head, headLook());
    sheet.setRepeatedRows(row, numbered ? row + 1 : row);
    ++row;
    if (numbered) {
        for (int c = 0; c < n; ++c)
            sheet.cell(row, c + 1, QString::number(c + 1), CellLook().pt(8).center().box());
        ++row;
    }
    // Section heading: one merged cell over the whole width.
    sheet.cell(row, 1, ph(rowSection, colName), CellLook().b().box().w(), n);
    ++row;
    for (int c = 0; c < n; ++c) {
        const Column &col = columns.at(c);
        sheet.cell(row, c + 1, col.key.isEmpty() ? QString() : ph(rowWork, col.key), col.look);
    }
    ++row;
    sheet.cell(row, 1, ph(rowSectionTotal, colName), CellLook().b().i().right().box(), n - 1);
    sheet.cell(row, n, ph(rowSectionTotal, colSum), CellLook().b().i().box().right().money());
    ++row;
    // The closing lines: works, materials, coefficient lines, VAT, the grand total.
    sheet.cell(row, 1, ph(rowTotals, colName), CellLook().b().right().box().w(), n - 1);
    sheet.cell(row, n, ph(rowTotals, colSum), CellLook().b().box().right().money());
    return row + 1;
}

} // namespace LayoutParts
