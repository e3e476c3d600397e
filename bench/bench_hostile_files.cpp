// Hostile files against their limits: each open of a document file from elsewhere (checked, read into
// a new working database) beside the cheapest correct reading of a sound document of the same rows
// (the SQLite C API reading every row as UTF-8), for the worst files the fuzz corpus found; and the
// check of a template package beside the check of the program's own template. (The memory of one open
// is measured per process: tests/estimate/docfile_helper open FILE.)

#include "HostileDocuments.h"
#include "estimate/DocumentFile.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <zip.h>

namespace {

void exec(const QString &path, const QString &sql) {
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_db_config(db, SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
    sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

// The files, made once: a sound estimate of 40 and one of 100,000 rows, and the hostile ones.
struct Files {
    QTemporaryDir dir;
    QString small, large;
    QMap<QString, QString> hostile;
    QString contract, bomb;

    Files() {
        DataFolder::ensureTree(dir.filePath(QStringLiteral("data")));
        small = dir.filePath(QStringLiteral("small.sim"));
        large = dir.filePath(QStringLiteral("large.sim"));
        HostileDocuments::makeBase(small, 40);
        HostileDocuments::makeBase(large, 100000);
        auto variant = [this](const char *name, const QString &sql) {
            const QString path = dir.filePath(QString::fromLatin1(name) + QStringLiteral(".sim"));
            QFile::copy(small, path);
            exec(path, sql);
            hostile.insert(QString::fromLatin1(name), path);
        };
        const QString schema = QStringLiteral("PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql=replace(sql, "
                                              "'%1', '%2') WHERE name='%3';");
        variant("generated_zeroblob", QStringLiteral("ALTER TABLE smeta ADD COLUMN g BLOB AS (zeroblob(1000000000))"));
        variant("generated_printf", schema.arg(QStringLiteral("nameras TEXT"),
                                               QStringLiteral("nameras TEXT AS (printf(''%.*c'', 200000000, ''x''))"),
                                               QStringLiteral("smeta")));
        variant("default_zeroblob", schema.arg(QStringLiteral("value TEXT"),
                                               QStringLiteral("value TEXT DEFAULT (zeroblob(100000000))"),
                                               QStringLiteral("ks2")));
        variant("check_printf", schema.arg(QStringLiteral("AUTOINCREMENT,"),
                                           QStringLiteral("AUTOINCREMENT CHECK (length(printf(''%.*c'', 200000000, "
                                                          "''x'')) >= 0),"),
                                           QStringLiteral("koef")));
        variant("cell_10MB", QStringLiteral("UPDATE smeta SET nameras = hex(zeroblob(5000000)) WHERE _id = 2"));

        const QString data = dir.filePath(QStringLiteral("data"));
        OfficeTemplates::ensureDefaults(data);
        contract = OfficeTemplates::path(data, QStringLiteral("ДОГОВОР НА РЕМОНТ.docx"));
        bomb = dir.filePath(QStringLiteral("bomb.docx"));
        const QByteArray zeros(50 * 1024 * 1024, '\0');
        int code = 0;
        zip_t *z = zip_open(QFile::encodeName(bomb).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
        for (int i = 0; i < 5; ++i) {
            const QByteArray name = "word/media/zero" + QByteArray::number(i);
            const zip_int64_t at = zip_file_add(z, name.constData(),
                                                zip_source_buffer(z, zeros.constData(), zeros.size(), 0), 0);
            zip_set_file_compression(z, static_cast<zip_uint64_t>(at), ZIP_CM_DEFLATE, 1);
        }
        zip_close(z);
    }
};

Files &files() {
    static Files f;
    return f;
}

// The cheapest correct reading of a document: every row of every table as UTF-8 through the C API.
void BM_SoundDocumentSqliteBaseline(benchmark::State &state, bool large) {
    const QByteArray path = QFile::encodeName(large ? files().large : files().small);
    for (auto _ : state) {
        sqlite3 *db = nullptr;
        sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READONLY, nullptr);
        for (const char *table : {"smeta", "materials", "koef", "parametrs", "ks2"}) {
            sqlite3_stmt *st = nullptr;
            sqlite3_prepare_v2(db, (QByteArray("SELECT * FROM ") + table).constData(), -1, &st, nullptr);
            const int columns = sqlite3_column_count(st);
            while (sqlite3_step(st) == SQLITE_ROW)
                for (int c = 0; c < columns; ++c)
                    benchmark::DoNotOptimize(sqlite3_column_text(st, c));
            sqlite3_finalize(st);
        }
        sqlite3_close(db);
    }
}

void BM_OpenDocument(benchmark::State &state, const QString &which) {
    const QString path = which == QLatin1String("sound_40")        ? files().small
                         : which == QLatin1String("sound_100000") ? files().large
                                                                   : files().hostile.value(which);
    TModuleSQL module(files().dir.filePath(QStringLiteral("data")));
    QString result;
    for (auto _ : state) {
        QString warning;
        result = DocumentFile::open(module, path, &warning);
        benchmark::DoNotOptimize(result);
    }
    state.SetLabel(result.isEmpty() ? "opened" : "refused");
}

void BM_CheckTemplate(benchmark::State &state, bool bomb) {
    const QString path = bomb ? files().bomb : files().contract;
    QString result;
    for (auto _ : state)
        benchmark::DoNotOptimize(result = TemplateFile::check(path));
    state.SetLabel(result.isEmpty() ? "passed" : "refused");
}

BENCHMARK_CAPTURE(BM_SoundDocumentSqliteBaseline, rows_40, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, sound_40, QStringLiteral("sound_40"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, generated_zeroblob, QStringLiteral("generated_zeroblob"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, generated_printf, QStringLiteral("generated_printf"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, default_zeroblob, QStringLiteral("default_zeroblob"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, check_printf, QStringLiteral("check_printf"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, cell_10MB, QStringLiteral("cell_10MB"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SoundDocumentSqliteBaseline, rows_100000, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OpenDocument, sound_100000, QStringLiteral("sound_100000"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CheckTemplate, own_contract, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_CheckTemplate, zip_bomb_250MB, true)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    files();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
