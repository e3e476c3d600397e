// One edit on a 5,000-row estimate: how long the grid takes to be current again (amounts, section
// totals, numbering, the crew sheet) and, through the editor, also the undo step written to the journal.

#include "estimate/CrewGrid.h"
#include "estimate/CrewSheet.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStructure.h"
#include "estimate/EstimateTotals.h"
#include "storage/Money.h"
#include "storage/TextValues.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace {

// 50 sections of 4 subsections of 22 works, then loose works up to `rows`, then the grand total.
void fill(EstimateGrid &grid, int rows) {
    using namespace EstimateCol;
    std::vector<QStringList> all;
    auto row = [&](const QString &name, const QString &kind, const QString &qty, const QString &price) {
        QStringList c;
        for (int i = 0; i < Count; ++i)
            c << QString();
        c[Name] = name;
        c[Kind] = kind;
        c[Qty] = qty;
        c[Price] = price;
        all.push_back(c);
    };
    int n = 0;
    for (int s = 1; s <= 50; ++s) {
        row(EstimateStructure::sectionName(s, QStringLiteral("Раздел")), "br", "", "");
        for (int p = 1; p <= 4; ++p) {
            row(EstimateStructure::subsectionName(s, p, QStringLiteral("Подраздел")), "bp", "", "");
            for (int w = 0; w < 22; ++w, ++n)
                row(QStringLiteral("Работа %1").arg(n), "", QString::number(n % 17 + 1),
                    QStringLiteral("%1,50").arg(n % 900));
            row(EstimateStructure::subsectionTotalName(s, p), "ip", "", "");
        }
        row(EstimateStructure::sectionTotalName(s), "ir", "", "");
    }
    while (static_cast<int>(all.size()) < rows - 1)
        row(QStringLiteral("Работа %1").arg(n++), "", "3", "100");
    row(EstimateStructure::grandTotalName, "", "", "");
    grid.setAllRows(std::move(all));
}

// A work row in the middle of the grid (grid row): an edit of a title or totals row would change no
// amount at all.
int middleWorkRow(const EstimateGrid &grid) {
    for (int r = grid.gridRowCount() / 2; r < grid.gridRowCount(); ++r)
        if (grid.kind(r) == RowKind::Work && !grid.cell(r, EstimateCol::Qty).isEmpty())
            return r;
    return EstimateGrid::kFixedRows;
}

void BM_EditQuantity_TotalsAndCrew(benchmark::State &state) {
    EstimateGrid grid;
    CrewGrid crew;
    EstimateTotals totals(&grid);
    CrewSheet sheet(&grid, &crew);
    fill(grid, static_cast<int>(state.range(0)));
    const int row = middleWorkRow(grid);
    int i = 0;
    for (auto _ : state) {
        grid.setCell(row, EstimateCol::Qty, QString::number(++i % 50 + 1));
        benchmark::DoNotOptimize(totals.works());
    }
    state.counters["rows"] = grid.rowCount();
}
BENCHMARK(BM_EditQuantity_TotalsAndCrew)->Arg(5000)->Unit(benchmark::kMicrosecond);

// Baseline: the least any recomputation must do for one edit: read the edited row's quantity and
// price into an amount and add up the cached amounts of every row (checked, as the totals are).
void BM_Baseline_ParseRowAndSumCached(benchmark::State &state) {
    const int rows = static_cast<int>(state.range(0));
    std::vector<Money> amounts(static_cast<size_t>(rows), *Money::fromKopecks(12345));
    int i = 0;
    for (auto _ : state) {
        const auto q = TextValues::parseAmount(QString::number(++i % 50 + 1));
        const auto p = TextValues::parsePrice(QStringLiteral("450,50"));
        amounts[static_cast<size_t>(rows / 2)] = Money::product(*p, *q).value();
        MoneyResult total = Money();
        for (const Money &m : amounts)
            total += m;
        benchmark::DoNotOptimize(total);
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_Baseline_ParseRowAndSumCached)->Arg(5000)->Unit(benchmark::kMicrosecond);

// A typed quantity through the editor: totals, crew sheet, the difference for the undo step and its
// record in the journal (an in-memory SQLite database here; actions.db in the program).
void BM_EditQuantity_Editor(benchmark::State &state) {
    EstimateGrid grid;
    CrewGrid crew;
    EstimateEditor editor(&grid, &crew, {});
    fill(grid, static_cast<int>(state.range(0)));
    editor.reset();
    const QModelIndex cell = grid.index(EstimateGrid::toModelRow(middleWorkRow(grid)), EstimateCol::Qty);
    int i = 0;
    for (auto _ : state)
        grid.setData(cell, QString::number(++i % 50 + 1), Qt::EditRole);
    state.counters["rows"] = grid.rowCount();
}
BENCHMARK(BM_EditQuantity_Editor)->Arg(5000)->Unit(benchmark::kMicrosecond);

// A structural edit: a row inserted in the middle (renumbering half the grid), then deleted.
void BM_InsertAndDeleteRow_Editor(benchmark::State &state) {
    EstimateGrid grid;
    CrewGrid crew;
    EstimateEditor editor(&grid, &crew, {});
    fill(grid, static_cast<int>(state.range(0)));
    editor.reset();
    const int row = grid.gridRowCount() / 2;
    for (auto _ : state) {
        editor.insertRowAbove(row);
        editor.deleteRows(row, row);
    }
    state.counters["rows"] = grid.rowCount();
}
BENCHMARK(BM_InsertAndDeleteRow_Editor)->Arg(5000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
