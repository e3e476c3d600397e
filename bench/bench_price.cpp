// The price base at scale: a list of 100,000 rates. Each measured operation runs beside its raw
// baseline in the same program: the full read into the grid model with the section tree (baseline:
// a plain select of the same rows), one live-search keystroke (baseline: a scan of pre-lowered
// names), the write back (baseline: a plain bulk insert in one transaction). The resident memory with
// the list loaded is reported as the counter rss_MB.

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

constexpr int kRates = 100000;

// Names like a real list: a work, an object, a material and a size, in Russian.
QString rateName(int i) {
    static const QStringList works = {"Укладка",    "Демонтаж",  "Монтаж",    "Штукатурка",
                                      "Окраска",    "Грунтовка", "Шпатлёвка", "Облицовка",
                                      "Устройство", "Ремонт",    "Замена",    "Очистка"};
    static const QStringList objects = {"стен",     "потолка", "пола",   "откосов", "перегородок",
                                        "ступеней", "фасада",  "колонн", "ниш",     "коробов"};
    static const QStringList materials = {
        "керамической плиткой",  "гипсокартоном",      "водоэмульсионной краской",
        "цементной смесью",      "ламинатом",          "декоративной штукатуркой",
        "пластиковыми панелями", "обоями под покраску"};
    return QStringLiteral("%1 %2 %3, толщина до %4 мм")
        .arg(works.at(i % works.size()), objects.at((i / 7) % objects.size()),
             materials.at((i / 13) % materials.size()))
        .arg(10 + i % 90);
}

long rssKilobytes() {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return 0;
}

// One data folder with price list 1 of 100,000 rows: sections of subsections of rates.
struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    std::vector<RateRow> rows;

    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        int rec = 0;
        for (int s = 1; rows.size() < kRates; ++s) {
            rows.push_back(row(QString::number(s), QStringLiteral("Раздел работ %1").arg(s), "", "", ++rec));
            for (int p = 1; p <= 10 && rows.size() < kRates; ++p) {
                rows.push_back(row(QStringLiteral("%1-%2").arg(s).arg(p),
                                   QStringLiteral("Подраздел %1").arg(p), "пв", "", ++rec));
                for (int n = 1; n <= 98 && rows.size() < kRates; ++n) {
                    ++rec;
                    rows.push_back(row(QStringLiteral("%1-%2-%3").arg(s).arg(p).arg(n), rateName(rec), "м2",
                                       QString::number(100 + rec % 5000) + ",50", rec));
                }
            }
        }
        QString error;
        if (!PriceStore::writeList(module->database(Db::Price), "price1", 0, rows, &error))
            qFatal("cannot fill price1: %s", qPrintable(error));
    }
    static RateRow row(const QString &ras, const QString &name, const QString &unit, const QString &price,
                       int rec) {
        RateRow::Cells c;
        c[PriceCol::Ras] = ras;
        c[PriceCol::Name] = name;
        c[PriceCol::Unit] = unit;
        c[PriceCol::Price] = price;
        c[PriceCol::Rec] = QString::number(rec);
        return RateRow(c);
    }
};

Data &data() {
    static Data d;
    return d;
}

// Resident memory of a process that has read the list, measured first, in a fresh process: the
// table is filled row by row (nothing else kept), then the list is read as the program reads it.
void BM_ResidentWithListLoaded(benchmark::State &state) {
    QTemporaryDir dir;
    long before = 0, after = 0;
    for (auto _ : state) {
        TModuleSQL module(dir.path());
        QSqlDatabase db = module.database(Db::Price);
        db.transaction();
        QSqlQuery q(db);
        q.prepare("INSERT INTO price1 (edras,nameras,edizm,rub,rec) values (?,?,?,?,?)");
        for (int i = 1; i <= kRates; ++i) {
            const bool title = i % 100 == 1;
            q.addBindValue(title ? QString::number(i / 100 + 1)
                                 : QStringLiteral("%1-%2").arg(i / 100 + 1).arg(i % 100));
            q.addBindValue(title ? QStringLiteral("Раздел %1").arg(i) : rateName(i));
            q.addBindValue(title ? QString("") : QStringLiteral("м2"));
            q.addBindValue(title ? QString("") : QString::number(100 + i % 5000));
            q.addBindValue(QString::number(i));
            q.exec();
        }
        db.commit();
        q.finish();
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

// Baseline: the same select, every cell read into text, nothing else.
void BM_ReadRawSelect(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    for (auto _ : state) {
        std::vector<std::array<QString, 9>> out;
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec("SELECT id, edras, nameras, edizm,rub, rec, link, mat,koef FROM price1 WHERE 1");
        while (q.next()) {
            std::array<QString, 9> r;
            for (int c = 0; c < 9; ++c)
                r[static_cast<size_t>(c)] = q.value(c).toString();
            out.push_back(std::move(r));
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kRates);
}
BENCHMARK(BM_ReadRawSelect)->Unit(benchmark::kMillisecond);

// Baseline below Qt: the SQLite C interface straight into text.
void BM_ReadRawSqliteApi(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    auto *handle = *static_cast<sqlite3 **>(db.driver()->handle().data());
    for (auto _ : state) {
        std::vector<std::array<QString, 9>> out;
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(handle,
                           "SELECT id, edras, nameras, edizm,rub, rec, link, mat,koef FROM price1 WHERE 1",
                           -1, &st, nullptr);
        while (sqlite3_step(st) == SQLITE_ROW) {
            std::array<QString, 9> r;
            for (int c = 0; c < 9; ++c) {
                const auto *text = static_cast<const char16_t *>(sqlite3_column_text16(st, c));
                r[static_cast<size_t>(c)] =
                    text ? QString::fromUtf16(text, sqlite3_column_bytes16(st, c) / 2) : QString();
            }
            out.push_back(std::move(r));
        }
        sqlite3_finalize(st);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kRates);
}
BENCHMARK(BM_ReadRawSqliteApi)->Unit(benchmark::kMillisecond);

// ReadSqlRAS: rows into the grid model, the section tree, the live-search names.
void BM_ReadIntoGridModel(benchmark::State &state) {
    Data &d = data();
    const long before = rssKilobytes();
    PriceBase base(d.module.get());
    for (auto _ : state) {
        if (!base.read())
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(base.model().rowCount());
    }
    state.SetItemsProcessed(state.iterations() * kRates);
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
    search.load(data().rows);
    LiveSearchModel model(search);
    const QString typed = kTyped.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const int found = model.search(typed);
        benchmark::DoNotOptimize(found);
        state.counters["found"] = found;
    }
}
BENCHMARK(BM_LiveSearchKeystroke)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

// Baseline: a bulk insert of the same rows into a fresh table, one transaction.
void BM_WriteRawBulkInsert(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    for (auto _ : state) {
        QSqlQuery q(db);
        q.exec("DROP TABLE IF EXISTS rawcopy");
        q.exec("CREATE TABLE rawcopy (id INTEGER PRIMARY KEY AUTOINCREMENT, edras TEXT, nameras TEXT, edizm "
               "TEXT, "
               "rub TEXT, rec TEXT, koef TEXT, link TEXT)");
        db.transaction();
        q.prepare("INSERT INTO rawcopy (edras,nameras,edizm,rub,rec,koef,link) values (?,?,?,?,?,?,?)");
        for (const RateRow &r : data().rows) {
            for (int c : {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price, PriceCol::Rec,
                          PriceCol::Koef, PriceCol::Link})
                q.addBindValue(r.bound(c));
            q.exec();
        }
        db.commit();
    }
    QSqlQuery(db).exec("DROP TABLE IF EXISTS rawcopy");
    state.SetItemsProcessed(state.iterations() * kRates);
}
BENCHMARK(BM_WriteRawBulkInsert)->Unit(benchmark::kMillisecond);

// WriteSqlPrice: drop, recreate, insert every row in one transaction, then VACUUM.
void BM_WriteBack(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Price);
    for (auto _ : state) {
        QString error;
        if (!PriceStore::writeList(db, "price1", 0, data().rows, &error))
            state.SkipWithError(qPrintable(error));
    }
    state.SetItemsProcessed(state.iterations() * kRates);
}
BENCHMARK(BM_WriteBack)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
