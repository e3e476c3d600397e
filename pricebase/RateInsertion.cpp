#include "RateInsertion.h"

#include "PriceStore.h"
#include "Resources.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStructure.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <optional>

namespace {
QString positionNumber(int gridRow) {
    return QString::number(gridRow - 1);
}

// A new empty row at the end of the estimate, above its closing "Итого" row when it has one.
int addRowAtEnd(EstimateGrid &grid) {
    const int closing = EstimateStructure::closingRow(grid);
    if (closing < 0) {
        grid.setGridRowCount(grid.gridRowCount() + 1);
        return grid.gridRowCount() - 1;
    }
    grid.insertGridRows(closing, 1);
    return closing;
}

// The current row of an insertion: an insertion at (or past) the closing "Итого" goes into a new row
// above it.
int insertionRow(EstimateGrid &grid, int currentRow) {
    const int closing = EstimateStructure::closingRow(grid);
    return closing >= 0 && currentRow >= closing ? addRowAtEnd(grid) : currentRow;
}
} // namespace

RateInsertion::RateInsertion(EstimateGrid &grid, QSqlDatabase smeta, QSqlDatabase price)
    : m_grid(grid), m_smeta(smeta), m_price(price) {}

int RateInsertion::findDuplicate(const QString &name, int currentRow) const {
    const int last = m_grid.gridRowCount() - 1;
    currentRow = std::clamp(currentRow, int(EstimateGrid::kFixedRows), last);
    for (int r = currentRow; r >= EstimateGrid::kFixedRows; --r) {
        const RowKind k = m_grid.kind(r);
        if (k == RowKind::SectionStart || k == RowKind::SubsectionStart)
            break;
        if (m_grid.cell(r, EstimateCol::Name) == name)
            return r;
    }
    for (int r = currentRow; r <= last; ++r) {
        const RowKind k = m_grid.kind(r);
        if (k == RowKind::SectionTotal || k == RowKind::SubsectionTotal)
            break;
        if (m_grid.cell(r, EstimateCol::Name) == name)
            return r;
    }
    return -1;
}

bool RateInsertion::fillWorkRow(int row, const RateRow &rate, const QString &resourcesTable, QString *error) {
    m_grid.setCell(row, EstimateCol::Num, positionNumber(row));
    m_grid.setCell(row, EstimateCol::Ras, rate[PriceCol::Ras]);
    m_grid.setCell(row, EstimateCol::Unit, rate[PriceCol::Unit]);
    m_grid.setCell(row, EstimateCol::Qty, QString());
    m_grid.setCell(row, EstimateCol::Sum, QString());
    m_grid.setCell(row, EstimateCol::IdRas, rate[PriceCol::Rec]);
    m_grid.setCell(row, EstimateCol::NamePrice, resourcesTable);
    const QString priceText = rate[PriceCol::Price];
    QString price;
    if (!TextValues::isBlank(priceText)) {
        const auto value = TextValues::parsePrice(priceText);
        if (!value) {
            if (error)
                *error = PriceStore::badPriceMessage(rate[PriceCol::Ras], rate[PriceCol::Name], priceText);
            return false;
        }
        // 0 or less means no price. The price keeps every decimal it has: the amount is rounded, not
        // the price (0,125 × 1000 is 125,00).
        if (!value->isZero() && !value->isNegative())
            price = TextValues::formatPrice(*value);
    }
    m_grid.setCell(row, EstimateCol::Price, price);
    m_grid.setCell(row, EstimateCol::Labour, price);
    return true;
}

InsertOutcome RateInsertion::insertFromGrid(const RateRow &rate, const QString &resourcesTable,
                                            int &currentRow, const InsertOptions &options) {
    InsertOutcome out;
    const QString &name = rate[PriceCol::Name];
    currentRow = std::clamp(currentRow, int(EstimateGrid::kFixedRows), m_grid.gridRowCount() - 1);
    if (options.controlDuplicates) {
        const int dup = findDuplicate(name, currentRow);
        if (dup >= 0) {
            out.kind = InsertOutcome::Duplicate;
            out.row = dup;
            return out;
        }
    }
    currentRow = insertionRow(m_grid, currentRow);
    if (!m_grid.cell(currentRow, EstimateCol::Name).isEmpty())
        currentRow = addRowAtEnd(m_grid);
    m_grid.setCell(currentRow, EstimateCol::Name, name);
    out.row = currentRow;
    if (rate[PriceCol::Unit].toLower() == QStringLiteral("пв")) {
        out.kind = InsertOutcome::Title;
        return out;
    }
    if (!fillWorkRow(currentRow, rate, resourcesTable, &out.error)) {
        out.kind = InsertOutcome::Failed;
        return out;
    }
    if (options.sortWork) {
        const int place = sortedPlace(currentRow, &out.error);
        if (place < 0) {
            out.kind = InsertOutcome::Failed;
            return out;
        }
        if (place != currentRow) {
            m_grid.moveGridRow(currentRow, place);
            currentRow = place;
        }
        out.row = currentRow;
    }
    if (!RateResources::addToEstimate(m_price, m_smeta, m_grid, currentRow, &out.materialsChanged,
                                      &out.error))
        out.kind = InsertOutcome::Failed;
    return out;
}

InsertOutcome RateInsertion::insertFromLiveSearch(const QString &chosen, const RateRow *rate,
                                                  const QString &resourcesTable, int &currentRow) {
    InsertOutcome out;
    currentRow = std::clamp(currentRow, int(EstimateGrid::kFixedRows), m_grid.gridRowCount() - 1);
    currentRow = insertionRow(m_grid, currentRow);
    m_grid.setCell(currentRow, EstimateCol::Name, chosen);
    out.row = currentRow;
    if (!rate) {
        out.kind = InsertOutcome::NotFound;
        return out;
    }
    if (!fillWorkRow(currentRow, *rate, resourcesTable, &out.error)) {
        out.kind = InsertOutcome::Failed;
        return out;
    }
    if (!RateResources::addToEstimate(m_price, m_smeta, m_grid, currentRow, &out.materialsChanged,
                                      &out.error)) {
        out.kind = InsertOutcome::Failed;
        return out;
    }
    // On to the next row, ready for the next name; the closing "Итого" is never taken over.
    if (currentRow + 1 >= m_grid.gridRowCount() || currentRow + 1 == EstimateStructure::closingRow(m_grid))
        addRowAtEnd(m_grid);
    ++currentRow;
    // An unnumbered work row is taken over as a fresh row; section rows are never cleared.
    if (m_grid.cell(currentRow, EstimateCol::Num).isEmpty() && m_grid.kind(currentRow) == RowKind::Work) {
        m_grid.setRowCells(currentRow, {});
        m_grid.setCell(currentRow, EstimateCol::Num, positionNumber(currentRow));
    }
    return out;
}

int RateInsertion::sortedPlace(int row, QString *error) {
    const QString own = m_grid.cell(row, EstimateCol::IdRas);
    // The works of the section around the row: upwards to "bp"/"br" (the section's start), downwards
    // to "ip"/"ir". Rows without a record number take no part.
    int start = EstimateGrid::kFixedRows - 1;
    QStringList recs;
    for (int r = row; r >= EstimateGrid::kFixedRows; --r) {
        const RowKind k = m_grid.kind(r);
        if (k == RowKind::SectionStart || k == RowKind::SubsectionStart) {
            start = r;
            break;
        }
        recs << m_grid.cell(r, EstimateCol::IdRas);
    }
    for (int r = row + 1; r < m_grid.gridRowCount(); ++r) {
        const RowKind k = m_grid.kind(r);
        if (k == RowKind::SectionTotal || k == RowKind::SubsectionTotal)
            break;
        recs << m_grid.cell(r, EstimateCol::IdRas);
    }
    auto fail = [&](const QSqlQuery &q) {
        if (error)
            *error = q.lastError().text();
        return -1;
    };
    // SortWork is this insertion's own scratch table in the estimate's database, outside the catalogue:
    // made here, dropped again below; no other code makes or writes it.
    QSqlQuery q(m_smeta);
    if (!q.exec(QStringLiteral("DROP TABLE IF EXISTS SortWork;")) ||
        !q.exec(
            QStringLiteral("CREATE TABLE IF NOT EXISTS SortWork (id INTEGER PRIMARY KEY AUTOINCREMENT, num "
                           "INTEGER);")))
        return fail(q);
    {
        Transaction t(m_smeta);
        if (!t.active()) {
            if (error)
                *error = t.error();
            return -1;
        }
        q.prepare(QStringLiteral("INSERT INTO SortWork (num) values(?)"));
        for (const QString &rec : recs) {
            if (rec.trimmed().isEmpty())
                continue;
            q.addBindValue(rec.trimmed());
            if (!q.exec())
                return fail(q);
        }
        if (!t.commit()) {
            if (error)
                *error = t.error();
            return -1;
        }
    }
    int place = row;
    QSqlQuery sel(m_smeta);
    if (!sel.exec(QStringLiteral("SELECT * FROM SortWork ORDER BY num")))
        return fail(sel);
    for (int i = 0; sel.next(); ++i) {
        if (sel.value(1).toString() == own.trimmed()) {
            place = start + i + 1;
            break;
        }
    }
    sel.finish();
    // The table lives only during one insertion.
    QSqlQuery drop(m_smeta);
    drop.exec(QStringLiteral("DROP TABLE IF EXISTS SortWork;"));
    return std::clamp(place, int(EstimateGrid::kFixedRows), m_grid.gridRowCount() - 1);
}

QString addQuantities(const QString &quantity, const QString &added, bool *ok) {
    const auto read = [](const QString &t) -> std::optional<Decimal> {
        return TextValues::isBlank(t) ? std::optional<Decimal>(Decimal()) : TextValues::parseAmount(t);
    };
    const auto a = read(quantity), b = read(added);
    const auto sum = a && b ? a->plus(*b) : std::nullopt;
    *ok = sum.has_value();
    return *ok ? TextValues::formatQuantity(*sum) : QString();
}
