// The contract through the office engine, the engine running (warm): the default template filled from a
// full estimate and saved as PDF, beside the least work that gives the same PDF (load, one
// replace-all, save: no check of the package, no masks, no read-back of leftovers); an edited contract
// (its body pasted back) saved as PDF, beside the same file saved as it is; and the refusal of hostile
// templates before the engine, beside the check of the real template.
//     ./bench/bench_contract

#include "../tests/documents/ContractTestData.h"
#include "../tests/documents/ContractZips.h"
#include "documents/ContractFile.h"
#include "documents/ContractHtml.h"
#include "documents/ContractProducer.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"

#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

struct Setup {
    QTemporaryDir dir;
    QString templ, base, editedHtml, bomb, lyingBomb;
    std::unique_ptr<OfficeEngine> engine;

    Setup() {
        OfficeTemplates::ensureDefaults(dir.path());
        templ = OfficeTemplates::path(dir.path(), ContractProducer::kDefaultTemplate);
        engine = std::make_unique<OfficeEngine>(dir.path());
        engine->start();
        // The filled contract and an edit of it, as the window holds them.
        base = dir.filePath(QStringLiteral("база.docx"));
        QString error, html;
        ContractFile::fill(*engine, templ, ContractFill::replacements(fullData()),
                           {{base, QStringLiteral("docx")}}, &error);
        ContractFile::readBody(*engine, base, &html, &error);
        QTextDocument doc;
        doc.setHtml(ContractHtml::forEditor(html));
        QTextCursor c = doc.find(QStringLiteral("неотъемлемой"));
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        c.mergeCharFormat(bold);
        editedHtml = ContractHtml::forEngine(doc);
        // Bombs: 120 MB of zeros stated as they are, and 20 MB stated as 1000 bytes.
        bomb = dir.filePath(QStringLiteral("бомба.docx"));
        writePackage(
            bomb, docxEntries({QStringLiteral("[заказчик]")},
                              {{QStringLiteral("word/media/z.xml"), QByteArray(120 * 1024 * 1024, '\0')}}));
        lyingBomb = dir.filePath(QStringLiteral("ложь.docx"));
        writePackage(lyingBomb,
                     docxEntries({QStringLiteral("[заказчик]")},
                                 {{QStringLiteral("word/media/z.xml"), QByteArray(20 * 1024 * 1024, '\0')}}));
        stateUnpackedSize(lyingBomb, 1000);
    }
};

Setup &setup() {
    static Setup s;
    return s;
}

void BM_ContractToPdf(benchmark::State &state) {
    Setup &s = setup();
    ContractProducer::Request r;
    r.data = fullData();
    r.templatePath = s.templ;
    r.number = QStringLiteral("7");
    r.date = QDate(2026, 3, 6);
    r.folder = s.dir.filePath(QStringLiteral("out"));
    r.format = ContractProducer::Format::Pdf;
    for (auto _ : state) {
        const ContractProducer::Result result = ContractProducer::write(*s.engine, r);
        if (!result.ok)
            state.SkipWithError(result.error.toUtf8().constData());
    }
}
BENCHMARK(BM_ContractToPdf)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_ContractToPdfBaseline(benchmark::State &state) {
    Setup &s = setup();
    const WordTemplate::Replacements pairs = ContractFill::replacements(fullData());
    const QString out = s.dir.filePath(QStringLiteral("baseline.pdf"));
    for (auto _ : state) {
        if (!s.engine->load(s.templ) || !s.engine->replaceAll(pairs) ||
            !s.engine->saveAs(out, QStringLiteral("pdf")))
            state.SkipWithError(s.engine->error().toUtf8().constData());
        s.engine->close();
    }
}
BENCHMARK(BM_ContractToPdfBaseline)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_EditedContractToPdf(benchmark::State &state) {
    Setup &s = setup();
    ContractFile::Edits edits;
    edits.body = true;
    edits.html = s.editedHtml;
    const QString out = s.dir.filePath(QStringLiteral("edited.pdf"));
    for (auto _ : state) {
        QString error;
        if (!ContractFile::write(*s.engine, s.base, edits, {{out, QString()}}, &error))
            state.SkipWithError(error.toUtf8().constData());
    }
}
BENCHMARK(BM_EditedContractToPdf)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_UneditedContractToPdf(benchmark::State &state) {
    Setup &s = setup();
    const QString out = s.dir.filePath(QStringLiteral("unedited.pdf"));
    for (auto _ : state) {
        QString error;
        if (!ContractFile::write(*s.engine, s.base, {}, {{out, QString()}}, &error))
            state.SkipWithError(error.toUtf8().constData());
    }
}
BENCHMARK(BM_UneditedContractToPdf)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_RefuseBomb(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state)
        if (TemplateFile::check(s.bomb).isEmpty())
            state.SkipWithError("the bomb was not refused");
}
BENCHMARK(BM_RefuseBomb)->Unit(benchmark::kMillisecond);

void BM_RefuseLyingBomb(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state)
        if (TemplateFile::check(s.lyingBomb).isEmpty())
            state.SkipWithError("the bomb was not refused");
}
BENCHMARK(BM_RefuseLyingBomb)->Unit(benchmark::kMillisecond);

void BM_CheckRealTemplate(benchmark::State &state) {
    Setup &s = setup();
    for (auto _ : state)
        if (!TemplateFile::check(s.templ).isEmpty())
            state.SkipWithError("the template was refused");
}
BENCHMARK(BM_CheckRealTemplate)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (qEnvironmentVariableIsEmpty("VIRN_OFFICE_HELPER"))
        qputenv("VIRN_OFFICE_HELPER", VIRN_OFFICE_HELPER_PATH);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    setup().engine.reset();
    return 0;
}
