// Export of long estimates as PDF through the office engine, warm (the helper running): the estimates of
// 500 and 5,000 rows that make_bench_data lays out. Goals: 500 rows ≤ 3 s, 5,000 rows ≤ 20 s, and growth
// linear (the 5,000-row export at most 12× the 500-row one).
// Baseline in the same run: the same estimate already filled in (the spreadsheet our own export wrote,
// untimed) loaded into the engine and saved as PDF: what the engine needs to lay the pages out at all.
// x_base shows what the filling adds on top; BM_Export_Growth prints the ratio 5,000 / 500.
//     ./bench/bench_export

#include "BenchReport.h"
#include "estimate/EstimateExport.h"
#include "office/OfficeEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

struct Sample {
    QTemporaryDir dir;
    QString out;
    OfficeEngine *engine = nullptr;
    QMap<int, double> oursMs; // the mean export of each size, for the growth ratio

    Sample() {
        // The list's size does not matter to an export: a small one keeps the set-up short.
        if (QProcess::execute(QStringLiteral(VIRN_MAKE_BENCH_DATA), {dir.path(), QStringLiteral("5000")}) !=
            0)
            qFatal("make_bench_data failed");
        out = dir.filePath(QStringLiteral("out"));
        QDir().mkpath(out);
        engine = new OfficeEngine(dir.path());
        if (!engine->start())
            qFatal("the office engine did not start: %s", qPrintable(engine->error()));
    }
    QString document(int works) const {
        return QDir(dir.path()).filePath(QStringLiteral("Sm/смета-%1.sim").arg(works));
    }
    bool exportTo(int works, const QString &name, QString *error) {
        return EstimateExport::exportFile(document(works), QDir(out).filePath(name), dir.path(), error,
                                          engine);
    }
};

Sample &sample() {
    static Sample s;
    return s;
}

void BM_ExportPdf(benchmark::State &state) {
    Sample &s = sample();
    const int works = static_cast<int>(state.range(0));
    QString error;
    // The baseline: our own filled sheet of the same rows, loaded and saved as PDF.
    const QString filled = QDir(s.out).filePath(QStringLiteral("filled-%1.xls").arg(works));
    if (!s.exportTo(works, QFileInfo(filled).fileName(), &error)) {
        state.SkipWithError(error.toUtf8().constData());
        return;
    }
    const QString basePdf = QDir(s.out).filePath(QStringLiteral("base-%1.pdf").arg(works));
    const BenchReport::Time base = BenchReport::median(3, [&] {
        if (!s.engine->load(filled) || !s.engine->saveAs(basePdf, QStringLiteral("pdf")))
            error = s.engine->error();
        s.engine->close();
    });
    if (!error.isEmpty()) {
        state.SkipWithError(error.toUtf8().constData());
        return;
    }
    BenchReport::Runs runs;
    for (auto _ : state) {
        runs.time([&] {
            if (!s.exportTo(works, QStringLiteral("estimate-%1.pdf").arg(works), &error))
                state.SkipWithError(error.toUtf8().constData());
        });
    }
    s.oursMs[works] = runs.mean().ms;
    BenchReport::report(state, runs.mean(), base,
                        works <= 500 ? "500 rows ≤ 3 s warm" : "5,000 rows ≤ 20 s warm");
}
BENCHMARK(BM_ExportPdf)->Arg(500)->Arg(5000)->Iterations(3)->Unit(benchmark::kMillisecond);

// The growth: the 5,000-row export over the 500-row one, from the runs above.
void BM_Export_Growth(benchmark::State &state) {
    Sample &s = sample();
    for (auto _ : state) {
    }
    if (!s.oursMs.contains(500) || !s.oursMs.contains(5000) || s.oursMs.value(500) <= 0) {
        state.SkipWithError("the exports of 500 and 5,000 rows did not run");
        return;
    }
    state.counters["x_5000_over_500"] = s.oursMs.value(5000) / s.oursMs.value(500);
    state.SetLabel("goal: ≤ 12× (linear growth: 10× the rows)");
}
BENCHMARK(BM_Export_Growth)->Iterations(1);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    // A helper named in the environment is measured instead of the one built beside (to compare two).
    if (qEnvironmentVariableIsEmpty("VIRN_OFFICE_HELPER"))
        qputenv("VIRN_OFFICE_HELPER", VIRN_OFFICE_HELPER_PATH);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete sample().engine;
    return 0;
}
