// The estimate's output through the office engine, on the sample estimate (3 sections, 24 works,
// 23 materials): one export with the helper not running (its profile made before, and a fresh
// profile), one with the helper running, and five documents in a row.
//     ./bench/bench_office_export

#include "estimate/EstimateExport.h"
#include "office/OfficeEngine.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

struct Sample {
    QTemporaryDir dir;
    QString data;
    QString document;
    QString out;

    Sample() {
        data = dir.filePath(QStringLiteral("data"));
        DataFolder::ensureTree(data);
        {
            TModuleSQL module(data);
            module.database(Db::Smeta);
            module.closeAll();
        }
        document = QDir(data).filePath(QStringLiteral("Sm/Образец сметы.sim"));
        QFile::copy(QDir(data).filePath(QStringLiteral("Sp/smeta.db")), document);
        QProcess::execute(QStringLiteral("sqlite3"),
                          {QStringLiteral("-bail"), document,
                           QStringLiteral(".read '%1/resources/sample/estimate.sql'")
                               .arg(QStringLiteral(VIRN_SOURCE_DIR))});
        out = dir.filePath(QStringLiteral("out"));
        QDir().mkpath(out);
    }
    void setTitle(const QString &title) {
        QProcess::execute(
            QStringLiteral("sqlite3"),
            {document, QStringLiteral("UPDATE parametrs SET value='%1' WHERE name='Shablon';").arg(title)});
    }
    void exportTo(benchmark::State &state, OfficeEngine &engine, const QString &name) {
        QString error;
        if (!EstimateExport::exportFile(document, QDir(out).filePath(name), data, &error, &engine))
            state.SkipWithError(error.toUtf8().constData());
    }
};

Sample &sample() {
    static Sample s;
    return s;
}

void BM_ExportHelperNotRunning(benchmark::State &state) {
    Sample &s = sample();
    { // the profile exists already, as it does from the second start of the program on
        OfficeEngine warmup(s.data);
        warmup.start();
    }
    for (auto _ : state) {
        OfficeEngine engine(s.data);
        s.exportTo(state, engine, QStringLiteral("cold.pdf"));
    }
}
BENCHMARK(BM_ExportHelperNotRunning)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ExportFreshProfile(benchmark::State &state) {
    Sample &s = sample();
    int n = 0;
    for (auto _ : state) {
        // A data folder whose engine never ran: the helper makes its profile first.
        state.PauseTiming();
        const QString fresh = s.dir.filePath(QStringLiteral("fresh-%1").arg(n++));
        DataFolder::ensureTree(fresh);
        QDir().mkpath(QDir(fresh).filePath(QStringLiteral("Sh")));
        for (const QString &f : QDir(QDir(s.data).filePath(QStringLiteral("Sh"))).entryList(QDir::Files))
            QFile::copy(QDir(s.data).filePath(QStringLiteral("Sh/") + f),
                        QDir(fresh).filePath(QStringLiteral("Sh/") + f));
        state.ResumeTiming();
        OfficeEngine engine(fresh);
        QString error;
        if (!EstimateExport::exportFile(s.document, QDir(s.out).filePath(QStringLiteral("fresh.pdf")), fresh,
                                        &error, &engine))
            state.SkipWithError(error.toUtf8().constData());
    }
}
BENCHMARK(BM_ExportFreshProfile)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ExportHelperRunning(benchmark::State &state) {
    Sample &s = sample();
    OfficeEngine engine(s.data);
    engine.start();
    for (auto _ : state)
        s.exportTo(state, engine, QStringLiteral("warm.pdf"));
}
BENCHMARK(BM_ExportHelperRunning)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_ExportHelperRunningToXls(benchmark::State &state) {
    Sample &s = sample();
    OfficeEngine engine(s.data);
    engine.start();
    for (auto _ : state)
        s.exportTo(state, engine, QStringLiteral("warm.xls"));
}
BENCHMARK(BM_ExportHelperRunningToXls)->Unit(benchmark::kMillisecond)->Iterations(10);

// The local estimate, KS-2 and KS-3 as PDF, the estimate as ".xls", the offer as PDF: one engine.
void BM_FiveDocumentsInARow(benchmark::State &state) {
    Sample &s = sample();
    const QStringList titles{QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"), QStringLiteral("АКТ КС-2"),
                             QStringLiteral("АКТ КС-3"), QStringLiteral("СМЕТА"),
                             QStringLiteral("Коммерческое предложение")};
    const QStringList files{QStringLiteral("1.pdf"), QStringLiteral("2.pdf"), QStringLiteral("3.pdf"),
                            QStringLiteral("4.xls"), QStringLiteral("5.pdf")};
    OfficeEngine engine(s.data);
    for (auto _ : state) {
        state.PauseTiming();
        engine.stop(); // the first of the five starts the helper
        state.ResumeTiming();
        for (int i = 0; i < titles.size(); ++i) {
            state.PauseTiming();
            s.setTitle(titles.at(i)); // the user picks another title: not the engine's time
            state.ResumeTiming();
            s.exportTo(state, engine, files.at(i));
        }
    }
    s.setTitle(titles.first());
}
BENCHMARK(BM_FiveDocumentsInARow)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsEmpty("VIRN_OFFICE_HELPER"))
        qputenv("VIRN_OFFICE_HELPER", VIRN_OFFICE_HELPER_PATH);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
