// The undo journal of the estimate grid (actions.db) as it grows: one recorded step (a quantity edit)
// when the journal holds few steps and when it holds 9,000. Recording drops the undone steps first
// ("DELETE FROM ReturnAction WHERE step > ?"); with the step index that costs the same at any depth.
// The baseline is the same journal file with the index dropped, which is what files had before.
// Goal: a step at depth 9,000 costs at most 1.3 times a step at depth 0.

#include "estimate/EstimateGrid.h"
#include "estimate/UndoJournal.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

std::vector<RowDiff::Op> quantityEdit(int n) {
    RowDiff::Op op;
    op.kind = RowDiff::Op::Edit;
    op.row = 2 + n % 500;
    for (int c = 0; c < RowDiff::kRowWidth; ++c) {
        op.before << QString();
        op.after << QString();
    }
    op.before[EstimateCol::Name] = op.after[EstimateCol::Name] = QStringLiteral("Штукатурка стен %1").arg(n);
    op.before[EstimateCol::Qty] = QString::number(n % 40);
    op.after[EstimateCol::Qty] = QString::number(n % 40 + 1);
    return {op};
}

// 1,000 steps recorded on a journal that holds `depth` steps already: milliseconds per 1,000 steps are
// microseconds per step.
void recordSteps(benchmark::State &state, bool withIndex) {
    const int depth = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        QTemporaryDir dir;
        auto module = std::make_unique<TModuleSQL>(dir.path());
        auto journal = std::make_unique<UndoJournal>(module->database(Db::ReturnAction));
        if (!withIndex)
            QSqlQuery(module->database(Db::ReturnAction))
                .exec(QStringLiteral("DROP INDEX ReturnAction_step"));
        for (int i = 0; i < depth; ++i)
            journal->record(QStringLiteral("Правка ячейки"), quantityEdit(i));
        state.ResumeTiming();
        for (int i = 0; i < 1000; ++i)
            if (!journal->record(QStringLiteral("Правка ячейки"), quantityEdit(depth + i)))
                state.SkipWithError("record failed");
        state.PauseTiming();
        journal.reset();
        module.reset();
        state.ResumeTiming();
    }
    state.counters["depth"] = depth;
}

void BM_RecordStep_WithIndex(benchmark::State &state) {
    recordSteps(state, true);
}
void BM_RecordStep_Baseline_NoIndex(benchmark::State &state) {
    recordSteps(state, false);
}
BENCHMARK(BM_RecordStep_WithIndex)->Arg(0)->Arg(9000)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RecordStep_Baseline_NoIndex)->Arg(0)->Arg(9000)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
