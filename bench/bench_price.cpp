// The price base at scale: a list of 100,000 rates (BenchData, with resources). Each measured operation
// runs beside its raw baseline in the same program, and prints the ratio to it (x_base) with its goal:
// - the full read into the grid model with the section tree and the live-search names (goal ≤ 1.5×
//   a raw sqlite3_step loop over the same select that reads each text as UTF-8, nothing else);
// - the write back (goal ≤ 1.5× the SQLite C API inserting the same rows, encoded as UTF-8 beforehand,
//   in one prepared, bound transaction into a table of the same layout and indexes, emptied first);
// - one live-search keystroke (baseline: a scan of pre-lowered names).
// The resident memory with the list loaded is reported as the counter rss_MB.

#include "BenchData.h"
#include "BenchReport.h"
#include "pricebase/LiveSearch.h"
#include "pricebase/PriceBase.h"
#include "pricebase/PriceStore.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

namespace {

constexpr int kRates = BenchData::kListRows;

long rssKilobytes() {
    return static_cast<long>(BenchData::residentMegabytes() * 1024);
}

// One data folder with price list 1 of 100,000 rows and their resources.
struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    std::vector<RateRow> rows = BenchData::priceRows();
    RateTable table = rows; // the list as the rate grid holds it

    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        QString error;
        if (!BenchData::writePriceList(module->database(Db::Price), rows, &error))
            qFatal("cannot fill price1: %s", qPrintable(error));
    }
};

Data &data() {
    static Data d;
    return d;
}

sqlite3 *handleOf(QSqlDatabase db) {
    return *static_cast<sqlite3 **>(db.driver()->handle().data());
}

// Resident memory of a process that has read the list, measured first, in a fresh process: the
// table is filled row by row (nothing else kept), then the list is read as the program reads it.
void BM_ResidentWithListLoaded(benchmark::State &state) {
    QTemporaryDir dir;
    long before = 0, after = 0;
    for (auto _ : state) {
        TModuleSQL module(dir.path());
        {
            QString error;
            if (!BenchData::writePriceList(module.database(Db::Price), BenchData::priceRows(), &error))
                state.SkipWithError(qPrintable(error));
        }
        before = rssKilobytes();
        PriceBase base(&module);
        if (!base.read())
            state.SkipWithError("read failed");
        after = rssKilobytes();
        state.counters["rows"] = base.model().rowCount();
    }
    state.counters["rss_MB"] = after / 1024.0;
    state.counters["list_MB"] = (after - before) / 1024.0;
}
BENCHMARK(BM_ResidentWithListLoaded)->Iterations(1)->Unit(benchmark::kMillisecond);

const char *const kSelect = "SELECT id, edras, nameras, edizm,rub, rec, link, mat,koef FROM price1 WHERE 1";

// Baseline: a raw sqlite3_step loop over the same select, each text read as UTF-8 (no conversion, no
// copy).
BenchReport::Time rawRead() {
    sqlite3 *handle = handleOf(data().module->database(Db::Price));
    return BenchReport::median(5, [&] {
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(handle, kSelect, -1, &st, nullptr);
        size_t bytes = 0;
        while (sqlite3_step(st) == SQLITE_ROW)
            for (int c = 0; c < 9; ++c) {
                benchmark::DoNotOptimize(sqlite3_column_text(st, c));
                bytes += static_cast<size_t>(sqlite3_column_bytes(st, c));
            }
        sqlite3_finalize(st);
        benchmark::DoNotOptimize(bytes);
    });
}

// Qt's own query, every cell read into text: what the read did before.
void BM_ReadQtQuery(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    const BenchReport::Time baseline = rawRead();
    BenchReport::Runs runs;
    for (auto _ : state)
        runs.time([&] {
            std::vector<std::array<QString, 9>> out;
            QSqlQuery q(db);
            q.setForwardOnly(true);
            q.exec(QString::fromLatin1(kSelect));
            while (q.next()) {
                std::array<QString, 9> r;
                for (int c = 0; c < 9; ++c)
                    r[static_cast<size_t>(c)] = q.value(c).toString();
                out.push_back(std::move(r));
            }
            benchmark::DoNotOptimize(out.data());
        });
    BenchReport::report(state, runs.mean(), baseline, "(reference: Qt's query for the same rows)");
}
BENCHMARK(BM_ReadQtQuery)->Unit(benchmark::kMillisecond);

// ReadSqlRAS: rows into the grid model, the section tree, the live-search names.
void BM_ReadIntoGridModel(benchmark::State &state) {
    Data &d = data();
    const BenchReport::Time baseline = rawRead();
    const long before = rssKilobytes();
    PriceBase base(d.module.get());
    BenchReport::Runs runs;
    for (auto _ : state)
        runs.time([&] {
            if (!base.read())
                state.SkipWithError("read failed");
            benchmark::DoNotOptimize(base.model().rowCount());
        });
    BenchReport::report(state, runs.mean(), baseline, "≤ 1.5× the raw sqlite3_step loop reading UTF-8");
    state.counters["rows"] = base.model().rowCount();
    state.counters["sections"] = static_cast<double>(base.sections().size());
    state.counters["list_MB"] = (rssKilobytes() - before) / 1024.0;
}
BENCHMARK(BM_ReadIntoGridModel)->Unit(benchmark::kMillisecond);

const QStringList kTyped = {"ш", "штук", "плиткой, толщина до 4", "нет такой работы"};

// Baseline: each pre-lowered name checked for the pre-lowered text.
void BM_LiveSearchBaselineScan(benchmark::State &state) {
    std::vector<QString> lowered;
    for (const RateRow &r : data().rows)
        lowered.push_back(r.name().toLower());
    const QString needle = kTyped.at(static_cast<int>(state.range(0))).toLower();
    for (auto _ : state) {
        std::vector<int> found;
        for (size_t i = 0; i < lowered.size(); ++i)
            if (lowered[i].contains(needle))
                found.push_back(static_cast<int>(i));
        benchmark::DoNotOptimize(found.data());
        state.counters["found"] = static_cast<double>(found.size());
    }
}
BENCHMARK(BM_LiveSearchBaselineScan)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

// One keystroke: the typed text lowered, the whole list searched, MemoPrice's model refilled.
void BM_LiveSearchKeystroke(benchmark::State &state) {
    LiveSearch search;
    search.load(data().table);
    LiveSearchModel model(search);
    const QString typed = kTyped.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const int found = model.search(typed);
        benchmark::DoNotOptimize(found);
        state.counters["found"] = found;
    }
}
BENCHMARK(BM_LiveSearchKeystroke)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

// Baseline: the SQLite C API inserting the same rows, encoded as UTF-8 beforehand, in one prepared,
// bound transaction into a table of price1's layout and indexes, emptied first as the write empties
// price1.
BenchReport::Time rawWrite() {
    QSqlDatabase db = data().module->database(Db::Price);
    QSqlQuery q(db);
    q.exec("DROP TABLE IF EXISTS rawcopy");
    q.exec(
        "CREATE TABLE rawcopy (id INTEGER PRIMARY KEY AUTOINCREMENT, edras TEXT, nameras TEXT, edizm TEXT, "
        "rub TEXT, dol TEXT, grn TEXT, br TEXT, tenge TEXT, rec TEXT, link TEXT, mat TEXT, koef TEXT)");
    q.exec("CREATE INDEX rawcopy_rec ON rawcopy (rec)");
    q.exec("CREATE INDEX rawcopy_nameras ON rawcopy (nameras)");
    std::vector<std::array<QByteArray, 7>> utf8;
    for (const RateRow &r : data().rows) {
        std::array<QByteArray, 7> cells;
        int i = 0;
        for (int c : {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price, PriceCol::Rec,
                      PriceCol::Koef, PriceCol::Link})
            cells[static_cast<size_t>(i++)] = r[c].toUtf8();
        utf8.push_back(std::move(cells));
    }
    sqlite3 *handle = handleOf(db);
    const BenchReport::Time t = BenchReport::median(5, [&] {
        sqlite3_exec(handle, "BEGIN IMMEDIATE; DELETE FROM rawcopy;", nullptr, nullptr, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(
            handle, "INSERT INTO rawcopy (edras,nameras,edizm,rub,rec,koef,link) values (?,?,?,?,?,?,?)", -1,
            &st, nullptr);
        for (const auto &cells : utf8) {
            for (int c = 0; c < 7; ++c)
                sqlite3_bind_text(st, c + 1, cells[static_cast<size_t>(c)].constData(),
                                  static_cast<int>(cells[static_cast<size_t>(c)].size()), SQLITE_STATIC);
            sqlite3_step(st);
            sqlite3_reset(st);
        }
        sqlite3_finalize(st);
        sqlite3_exec(handle, "COMMIT;", nullptr, nullptr, nullptr);
    });
    q.exec("DROP TABLE IF EXISTS rawcopy");
    return t;
}

// WriteSqlPrice: the table emptied and every row inserted in one transaction (compacted only when
// much of the file is free).
void BM_WriteBack(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    const BenchReport::Time baseline = rawWrite();
    BenchReport::Runs runs;
    for (auto _ : state)
        runs.time([&] {
            QString error;
            if (!PriceStore::writeList(db, "price1", 0, data().table, &error))
                state.SkipWithError(qPrintable(error));
        });
    BenchReport::report(state, runs.mean(), baseline, "≤ 1.5× the C API inserting the same rows from UTF-8");
    state.SetItemsProcessed(state.iterations() * kRates);
}
BENCHMARK(BM_WriteBack)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
