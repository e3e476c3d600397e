// The editing commands of the estimate grid (EstimateEditor): rows, sections, copy and paste. Each
// command checks first and then changes the grid inside one Scope, so it is one undoable step;
// numbers and totals follow by themselves.

#include "CrewSheet.h"
#include "EstimateEditor.h"
#include "EstimateGrid.h"
#include "EstimateStructure.h"
#include "RowClipboard.h"
#include "RowDiff.h"
#include "storage/TextValues.h"

using namespace EstimateStructure;

namespace {

constexpr int F = EstimateGrid::kFixedRows;

void setMarkerRow(EstimateGrid *grid, int row, RowKind kind, const QString &name) {
    grid->setCell(row, EstimateCol::Kind, markerOf(kind));
    grid->setCell(row, EstimateCol::Name, name);
}

// A selection first..last in order and within the data rows.
void orderAndClamp(const EstimateGrid &grid, int &first, int &last) {
    if (first > last)
        std::swap(first, last);
    first = std::max(first, F);
    last = std::min(last, grid.gridRowCount() - 1);
}

// The start and total rows of a section or of a subsection.
struct BlockMarkers {
    RowKind start;
    QString startName;
    RowKind total;
    QString totalName;
};

// Makes rows first..last a block: a start row above them, a total row below.
void wrapRows(EstimateGrid *grid, int first, int last, const BlockMarkers &m) {
    grid->insertGridRows(last + 1, 1);
    setMarkerRow(grid, last + 1, m.total, m.totalName);
    grid->insertGridRows(first, 1);
    setMarkerRow(grid, first, m.start, m.startName);
}

// A new empty block at grid row at: its start, one empty row, its total.
void insertEmptyBlock(EstimateGrid *grid, int at, const BlockMarkers &m) {
    grid->insertGridRows(at, 3);
    setMarkerRow(grid, at, m.start, m.startName);
    setMarkerRow(grid, at + 2, m.total, m.totalName);
}

// A block of data rows as grid rows; {-1, -1} when there is none.
QPair<int, int> gridRows(const Block &b) {
    return b.valid() ? qMakePair(b.first + F, b.last + F) : qMakePair(-1, -1);
}

} // namespace

int EstimateEditor::appendRow() {
    m_error.clear();
    int row = m_grid->gridRowCount();
    // The new row stays above a closing "Итого" row.
    if (isGrandTotalRow(row - 1))
        --row;
    Scope step(this, QStringLiteral("Добавить строку"));
    m_grid->insertGridRows(row, 1);
    return row;
}

int EstimateEditor::insertRowAbove(int gridRow) {
    m_error.clear();
    const int row = std::clamp(gridRow, F, m_grid->gridRowCount());
    Scope step(this, QStringLiteral("Вставить строку"));
    m_grid->insertGridRows(row, 1);
    return row;
}

bool EstimateEditor::deleteRows(int first, int last) {
    m_error.clear();
    orderAndClamp(*m_grid, first, last);
    if (first > last)
        return false;
    std::vector<RowKind> k = kinds(*m_grid);
    const bool wasWellFormed = isWellFormed(k);
    k.erase(k.begin() + (first - F), k.begin() + (last - F) + 1);
    if (wasWellFormed && !isWellFormed(k)) {
        m_error =
            QStringLiteral("Строки начала и итога раздела удаляются только вместе со всем разделом: выделите "
                           "раздел целиком или воспользуйтесь командой «Удалить раздел».");
        return false;
    }
    Scope step(this, QStringLiteral("Удалить строки"));
    m_grid->removeGridRows(first, last - first + 1);
    return true;
}

bool EstimateEditor::moveRows(int first, int last, int target) {
    m_error.clear();
    if (first > last)
        std::swap(first, last);
    const int n = last - first + 1;
    if (first < F || last >= m_grid->gridRowCount() || target < F || target + n > m_grid->gridRowCount()) {
        m_error = QStringLiteral("Строки дальше не перемещаются.");
        return false;
    }
    if (target == first)
        return false;
    std::vector<RowKind> k = kinds(*m_grid);
    const bool wasWellFormed = isWellFormed(k);
    std::vector<RowKind> block(k.begin() + (first - F), k.begin() + (last - F) + 1);
    k.erase(k.begin() + (first - F), k.begin() + (last - F) + 1);
    k.insert(k.begin() + (target - F), block.begin(), block.end());
    if (wasWellFormed && !isWellFormed(k)) {
        m_error = QStringLiteral("Так переместить нельзя: разделы и подразделы не должны пересекаться.");
        return false;
    }
    Scope step(this, QStringLiteral("Переместить строки"));
    for (int i = 0; i < n; ++i) {
        if (target > first)
            m_grid->moveGridRow(first, target + n - 1);
        else
            m_grid->moveGridRow(first + i, target + i);
    }
    return true;
}

namespace {

// Rows first..last are all work rows (not a closing "Итого").
bool onlyWorkRows(const EstimateEditor &e, const std::vector<RowKind> &k, int first, int last) {
    for (int r = first; r <= last; ++r)
        if (k[static_cast<size_t>(r - F)] != RowKind::Work || e.isGrandTotalRow(r))
            return false;
    return true;
}

} // namespace

bool EstimateEditor::createSection(int first, int last, const QString &name) {
    m_error.clear();
    orderAndClamp(*m_grid, first, last);
    const std::vector<RowKind> k = kinds(*m_grid);
    const bool wrap =
        onlyWorkRows(*this, k, first, last) && !EstimateStructure::sectionAround(k, first - F).valid();
    const QString title = name.trimmed();
    if (!wrap && last > first) {
        m_error =
            QStringLiteral("Раздел создаётся вокруг строк работ, не входящих в другой раздел. Выделите такие "
                           "строки или поставьте курсор туда, где нужен новый пустой раздел.");
        return false;
    }
    const BlockMarkers markers{RowKind::SectionStart, sectionName(0, title), RowKind::SectionTotal,
                               sectionTotalName(0)};
    Scope step(this, QStringLiteral("Создать раздел"));
    if (wrap) {
        wrapRows(m_grid, first, last, markers);
    } else {
        // A new empty section after the section the cursor is in, or above the closing "Итого".
        const Block around = EstimateStructure::sectionAround(k, first - F);
        int at = first + 1;
        if (around.valid())
            at = around.last + F + 1;
        else if (isGrandTotalRow(first))
            at = first;
        insertEmptyBlock(m_grid, at, markers);
    }
    // An estimate with sections ends with the grand total.
    bool hasGrand = false;
    for (int r = F; r < m_grid->gridRowCount() && !hasGrand; ++r)
        hasGrand = isGrandTotalRow(r);
    if (!hasGrand) {
        const int at = m_grid->gridRowCount();
        m_grid->insertGridRows(at, 1);
        m_grid->setCell(at, EstimateCol::Name, EstimateStructure::grandTotalName);
    }
    return true;
}

bool EstimateEditor::createSubsection(int first, int last, const QString &name) {
    m_error.clear();
    orderAndClamp(*m_grid, first, last);
    const std::vector<RowKind> k = kinds(*m_grid);
    const Block section = EstimateStructure::sectionAround(k, first - F);
    const bool wrap = onlyWorkRows(*this, k, first, last) && section.valid() && section.last + F > last &&
                      !EstimateStructure::subsectionAround(k, first - F).valid();
    const QString title = name.trimmed();
    if (!section.valid()) {
        m_error = QStringLiteral("Подраздел создаётся внутри раздела: поставьте курсор в раздел.");
        return false;
    }
    if (!wrap && last > first) {
        m_error =
            QStringLiteral("Подраздел создаётся вокруг строк работ одного раздела, не входящих в другой "
                           "подраздел.");
        return false;
    }
    const BlockMarkers markers{RowKind::SubsectionStart, subsectionName(0, 0, title),
                               RowKind::SubsectionTotal, subsectionTotalName(0, 0)};
    Scope step(this, QStringLiteral("Создать подраздел"));
    if (wrap) {
        wrapRows(m_grid, first, last, markers);
        return true;
    }
    // A new empty subsection: after the subsection the cursor is in, below the section's start, or
    // above the section's total.
    const Block sub = EstimateStructure::subsectionAround(k, first - F);
    const RowKind here = k[static_cast<size_t>(first - F)];
    int at = first + 1;
    if (sub.valid())
        at = sub.last + F + 1;
    else if (here == RowKind::SectionTotal)
        at = first;
    insertEmptyBlock(m_grid, at, markers);
    return true;
}

QPair<int, int> EstimateEditor::sectionAround(int gridRow) const {
    return gridRows(EstimateStructure::sectionAround(kinds(*m_grid), gridRow - F));
}

QPair<int, int> EstimateEditor::subsectionAround(int gridRow) const {
    return gridRows(EstimateStructure::subsectionAround(kinds(*m_grid), gridRow - F));
}

bool EstimateEditor::deleteSection(int gridRow) {
    return removeBlock(sectionAround(gridRow), QStringLiteral("Курсор стоит не в разделе."),
                       QStringLiteral("Удалить раздел"));
}

bool EstimateEditor::deleteSubsection(int gridRow) {
    return removeBlock(subsectionAround(gridRow), QStringLiteral("Курсор стоит не в подразделе."),
                       QStringLiteral("Удалить подраздел"));
}

bool EstimateEditor::removeBlock(QPair<int, int> rows, const QString &refusal, const QString &title) {
    m_error.clear();
    if (rows.first < 0) {
        m_error = refusal;
        return false;
    }
    Scope step(this, title);
    m_grid->removeGridRows(rows.first, rows.second - rows.first + 1);
    return true;
}

int EstimateEditor::copyRows(int first, int last) {
    m_error.clear();
    if (first > last)
        std::swap(first, last);
    std::vector<QStringList> rows;
    for (int r = std::max(first, F); r <= last && r < m_grid->gridRowCount(); ++r) {
        if (m_grid->kind(r) != RowKind::Work || isGrandTotalRow(r))
            continue;
        if (TextValues::isBlank(m_grid->cell(r, EstimateCol::Name)) &&
            TextValues::isBlank(m_grid->cell(r, EstimateCol::Ras)))
            continue;
        rows.push_back(RowDiff::Row{m_grid->rowCells(r), m_crew->rowKoef(r)}.wide());
    }
    if (rows.empty()) {
        m_error = QStringLiteral("Выделите строки работ, которые нужно скопировать.");
        return 0;
    }
    if (!RowClipboard::copy(m_databases ? m_databases(Db::ReturnAction) : QSqlDatabase(), rows, &m_error))
        return 0;
    return static_cast<int>(rows.size());
}

int EstimateEditor::pasteRows(int belowRow) {
    m_error.clear();
    const std::vector<QStringList> rows =
        RowClipboard::paste(m_databases ? m_databases(Db::ReturnAction) : QSqlDatabase(), &m_error);
    if (rows.empty()) {
        if (m_error.isEmpty())
            m_error = QStringLiteral("Нечего вставлять: сначала скопируйте расценки.");
        return 0;
    }
    int at = std::clamp(belowRow + 1, F, m_grid->gridRowCount());
    if (isGrandTotalRow(at - 1) && at - 1 >= F)
        --at;
    const int n = static_cast<int>(rows.size());
    Scope step(this, QStringLiteral("Вставить расценку"));
    m_grid->insertGridRows(at, n);
    for (int i = 0; i < n; ++i) {
        m_grid->setRowCells(at + i, rows[static_cast<size_t>(i)].mid(0, EstimateCol::Count));
        m_crew->setRowKoef(at + i, rows[static_cast<size_t>(i)].value(RowDiff::kCrewKoef));
    }
    return n;
}
