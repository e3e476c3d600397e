#pragma once
// Copy and paste of estimate rows through table PopupMenuEdit of actions.db ("Копировать расценку",
// "Вставить расценку"). Copying empties the table and writes the rows; pasting reads them back
// as new work rows: rate number, name, unit, price, rate id, crew coefficient and resources table
// (quantities are typed again for the new place).

#include <QSqlDatabase>
#include <QStringList>
#include <vector>

namespace RowClipboard {

// rows: estimate cells (EstimateCol order) followed by the crew coefficient (RowDiff::kRowWidth).
bool copy(QSqlDatabase db, const std::vector<QStringList> &rows, QString *error = nullptr);
// The copied rows in the same layout; empty when nothing was copied.
std::vector<QStringList> paste(QSqlDatabase db, QString *error = nullptr);

} // namespace RowClipboard
