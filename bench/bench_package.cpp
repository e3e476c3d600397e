// The document package of the sample estimate (contract, invoice, КС-2, КС-3, act), the engine warm, as
// XLS/DOC and as PDF; beside it, in the same run, the office suite's own converter
// (`soffice --headless --convert-to`, its profile made before) on the same five produced files: to PDF,
// and saved again in their own formats (one converter call per format, as it takes one format a call).
//     ./bench/bench_package

#include "documents/PackageRun.h"
#include "estimate/EstimateDocument.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

void sqlite(const QString &database, const QString &script) {
    QProcess::execute(QStringLiteral("sqlite3"),
                      {QStringLiteral("-bail"), database, QStringLiteral(".read '%1'").arg(script)});
}

struct Sample {
    QTemporaryDir dir;
    QString data;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<SettingsStore> store;
    MainSettings settings;
    std::unique_ptr<EstimateDocument> document;
    std::unique_ptr<OfficeService> office;
    QString converterProfile;
    QStringList produced; // the five files of the XLS/DOC package
    QString error;

    Sample() {
        data = dir.filePath(QStringLiteral("data"));
        DataFolder::ensureTree(data);
        const QString sample = QStringLiteral(VIRN_SOURCE_DIR "/resources/sample/");
        {
            TModuleSQL prepare(data);
            for (Db db : kAllDatabases)
                prepare.database(db);
            prepare.closeAll();
        }
        sqlite(QDir(data).filePath(QStringLiteral("Sp/peoplebase.db")),
               sample + QStringLiteral("people.sql"));
        sqlite(QDir(data).filePath(QStringLiteral("Sp/cashbase.db")), sample + QStringLiteral("cash.sql"));
        const QString estimate = QDir(data).filePath(QStringLiteral("Sm/Образец сметы.sim"));
        QFile::copy(QDir(data).filePath(QStringLiteral("Sp/smeta.db")), estimate);
        sqlite(estimate, sample + QStringLiteral("estimate.sql"));
        OfficeTemplates::ensureDefaults(data);

        module = std::make_unique<TModuleSQL>(data);
        store = std::make_unique<SettingsStore>(QDir(data).filePath(QStringLiteral("IniFile.db")));
        settings.read(*store);
        document = std::make_unique<EstimateDocument>();
        document->attach(module.get(), &settings, store.get());
        const EstimateDocument::Result opened = document->open(estimate);
        const EstimateDocument::Result saved = opened ? document->save() : opened; // enters the register
        if (!saved)
            error = saved.error;
        office = std::make_unique<OfficeService>(data);

        // The converter's profile exists before it is timed, as the engine's does.
        converterProfile = QUrl::fromLocalFile(dir.filePath(QStringLiteral("soffice-profile"))).toString();
    }

    // Makes the package; false with the reason.
    bool package(bool pdf, QStringList *files, QString *why) {
        PackageRequest request = PackageDefaults::make(*document, module->database(Db::People),
                                                       PackageNumbering(), QDate(2026, 3, 6));
        request.folder = dir.filePath(pdf ? QStringLiteral("pdf") : QStringLiteral("xls"));
        if (pdf)
            request.allPdf();
        PackageRun run(*document, request, PackageSettings::read(&settings, store.get(), data), *office);
        QEventLoop loop;
        QObject::connect(&run, &PackageRun::finished, &loop, &QEventLoop::quit);
        run.start();
        if (run.running())
            loop.exec();
        for (const PackageItem &item : run.items()) {
            if (!item.made) {
                *why = item.error;
                return false;
            }
            if (files)
                *files << item.path;
        }
        return true;
    }

    // soffice --headless --convert-to <format> of files into out.
    bool convert(const QString &format, const QStringList &files, const QString &out) {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(QStringLiteral("soffice"),
                QStringList{QStringLiteral("-env:UserInstallation=") + converterProfile,
                            QStringLiteral("--headless"), QStringLiteral("--convert-to"), format,
                            QStringLiteral("--outdir"), out} +
                    files);
        return p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    }
};

Sample &sample() {
    static Sample s;
    return s;
}

bool ready(benchmark::State &state) {
    Sample &s = sample();
    if (!s.error.isEmpty()) {
        state.SkipWithError(s.error.toUtf8().constData());
        return false;
    }
    if (s.produced.isEmpty()) {
        // The engine is started and has seen every template once; the five files for the converter.
        QString why;
        if (!s.package(true, nullptr, &why) || !s.package(false, &s.produced, &why)) {
            s.error = why;
            state.SkipWithError(why.toUtf8().constData());
            return false;
        }
        s.convert(QStringLiteral("pdf"), s.produced, s.dir.filePath(QStringLiteral("warmup")));
    }
    return true;
}

void runPackage(benchmark::State &state, bool pdf) {
    if (!ready(state))
        return;
    for (auto _ : state) {
        QString why;
        if (!sample().package(pdf, nullptr, &why)) {
            state.SkipWithError(why.toUtf8().constData());
            break;
        }
    }
}

void BM_PackageXlsDoc(benchmark::State &state) {
    runPackage(state, false);
}
BENCHMARK(BM_PackageXlsDoc)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_PackagePdf(benchmark::State &state) {
    runPackage(state, true);
}
BENCHMARK(BM_PackagePdf)->Unit(benchmark::kMillisecond)->Iterations(5);

// The baseline of the PDF package: the converter turns the same five files into PDF.
void BM_ConverterToPdf(benchmark::State &state) {
    if (!ready(state))
        return;
    Sample &s = sample();
    for (auto _ : state)
        if (!s.convert(QStringLiteral("pdf"), s.produced, s.dir.filePath(QStringLiteral("converted-pdf")))) {
            state.SkipWithError("soffice --convert-to pdf failed");
            break;
        }
}
BENCHMARK(BM_ConverterToPdf)->Unit(benchmark::kMillisecond)->Iterations(5);

// The baseline of the XLS/DOC package: the converter saves the same five files again in their formats.
void BM_ConverterToXlsDoc(benchmark::State &state) {
    if (!ready(state))
        return;
    Sample &s = sample();
    QStringList sheets, texts;
    for (const QString &f : s.produced)
        (QFileInfo(f).suffix() == QLatin1String("xls") ? sheets : texts) << f;
    const QString out = s.dir.filePath(QStringLiteral("converted-same"));
    for (auto _ : state)
        if (!s.convert(QStringLiteral("xls"), sheets, out) ||
            !s.convert(QStringLiteral("docx"), texts, out)) {
            state.SkipWithError("soffice --convert-to xls/docx failed");
            break;
        }
}
BENCHMARK(BM_ConverterToXlsDoc)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsEmpty("VIRN_OFFICE_HELPER"))
        qputenv("VIRN_OFFICE_HELPER", VIRN_OFFICE_HELPER_PATH);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    sample().office.reset();
    return 0;
}
