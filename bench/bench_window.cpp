// The program as the user meets it, in its main window (offscreen), on data of real size: price list 1
// of 100,000 rows with the resources of every rate, and a small list of 250 rows (the sample's size);
// estimates of 250 and 5,000 rows. Each figure is printed beside its goal and a baseline measured in
// the same run (see BenchReport.h):
//   - resident memory with the 100,000-rate list and the 5,000-row estimate open (goal ≤ 100 MB; beside
//     it the memory of a bare window of the toolkit);
//   - start-up to a usable window (goal ≤ 300 ms; baseline: a bare window with a menu and a grid);
//   - opening the 5,000-row estimate (goal ≤ 100 ms with either list; baseline: the file copied with
//     the backup API and its rows read with the SQLite C API as UTF-8);
//   - a quantity edit in the 250-rate estimate (goal ≤ 16 ms; baseline: one material's quantity
//     written in one transaction of the working database);
//   - the undo journal's growth: 10,000 edits, the last thousand against the first (goal ≤ 1.3×);
//   - saving the 5,000-row estimate (baseline: its rows written with the C API from UTF-8 and the file
//     copied with the backup API, flushed and renamed).
// The data folders are made once per run by make_bench_data (the same every time).

#include "BenchData.h"
#include "BenchReport.h"
#include "app/TForm1.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateGrid.h"
#include "pricebase/PriceBase.h"
#include "pricebase/PricePart.h"
#include "storage/ModuleSQL.h"
#include "ui/Dialogs.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocale>
#include <QMainWindow>
#include <QMenuBar>
#include <QProcess>
#include <QSettings>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

namespace {

using BenchReport::median;

// No one answers questions here: every question gets No, every message goes to stderr.
class QuietDialogs : public Dialogs {
public:
    Answer ask(const QString &, const QString &, Buttons buttons, Icon) override {
        return buttons == Buttons::YesNoCancel ? Answer::No : Answer::No;
    }
    void tell(const QString &caption, const QString &text, Icon) override {
        QTextStream(stderr) << caption << ": " << text << Qt::endl;
    }
    bool input(const QString &, const QString &, QString *) override { return false; }
    QString openFile(const QString &, const QString &, const QString &) override { return {}; }
    QString saveFile(const QString &, const QString &, const QString &, const QString &,
                     const QString &) override {
        return {};
    }
    QString chooseFolder(const QString &, const QString &) override { return {}; }
};

// Made by make_bench_data in a process of its own, so that none of the making stays in this one's
// memory.
struct Folder {
    QTemporaryDir dir;
    explicit Folder(int listRows) {
        if (QProcess::execute(QStringLiteral(VIRN_MAKE_BENCH_DATA),
                              {dir.path(), QString::number(listRows)}) != 0)
            qFatal("make_bench_data failed");
    }
    QString path() const { return dir.path(); }
    QString document(int works) const { return BenchData::documentPath(dir.path(), works); }
};

Folder &bigList() {
    static Folder f(BenchData::kListRows);
    return f;
}
Folder &smallList() {
    static Folder f(250);
    return f;
}
Folder &folderOf(benchmark::State &state) {
    return state.range(0) == BenchData::kListRows ? bigList() : smallList();
}

void settle() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

// The program's window on a data folder, shown and started as main() does.
struct Window {
    std::unique_ptr<TForm1> form;
    std::unique_ptr<TModuleSQL> module;

    explicit Window(const QString &folder) {
        QDir::setCurrent(folder);
        form = std::make_unique<TForm1>(QStringList{});
        module = std::make_unique<TModuleSQL>(form->dataFolder());
        form->attachModule(module.get());
        form->show();
        form->FormShow();
        settle();
    }
    ~Window() {
        form->document().setChanged(false);
        form.reset();
        module.reset();
    }
    EstimateDocument &document() { return form->document(); }
    // Waits (processing events) until the rate grid shows the whole list.
    bool waitForList(int rows) {
        PriceBase *base = form->part<PricePart>()->priceBase();
        QElapsedTimer t;
        t.start();
        while (base->model().rowCount() < rows && t.elapsed() < 60000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return base->model().rowCount() >= rows;
    }
    bool open(const QString &path) {
        form->document().setChanged(false);
        const bool ok = form->OpenMyFile(path);
        settle();
        return ok;
    }
};

sqlite3 *rawHandle(QSqlDatabase db) {
    return *static_cast<sqlite3 **>(db.driver()->handle().data());
}

// ----- memory

void BM_Memory_ListAndEstimateOpen(benchmark::State &state) {
    Folder &folder = bigList();
    double floorMb = 0, rssMb = 0;
    for (auto _ : state) {
        {
            // The toolkit's own floor: a bare window shown.
            QMainWindow bare;
            bare.setCentralWidget(new QTableView(&bare));
            bare.show();
            settle();
            floorMb = BenchData::residentMegabytes();
        }
        Window w(folder.path());
        if (!w.open(folder.document(5000)) || !w.waitForList(BenchData::kListRows))
            state.SkipWithError("the document or the list did not load");
        settle();
        rssMb = BenchData::residentMegabytes();
    }
    state.counters["rss_MB"] = rssMb;
    state.counters["bare_window_MB"] = floorMb;
    state.SetLabel("goal: rss ≤ 100 MB with the 100,000-rate list and the 5,000-row estimate open");
}
BENCHMARK(BM_Memory_ListAndEstimateOpen)->Iterations(1)->Unit(benchmark::kMillisecond);

// ----- start-up

void BM_StartUp_ToUsableWindow(benchmark::State &state) {
    Folder &folder = folderOf(state);
    const BenchReport::Time baseline = median(5, [] {
        QMainWindow bare;
        bare.menuBar()->addMenu(QStringLiteral("&Файл"));
        auto *view = new QTableView(&bare);
        auto *model = new QStandardItemModel(3, 17, view);
        view->setModel(model);
        bare.setCentralWidget(view);
        bare.show();
        settle();
    });
    BenchReport::Runs runs;
    for (auto _ : state) {
        std::unique_ptr<Window> w;
        runs.time([&] { w = std::make_unique<Window>(folder.path()); });
        state.PauseTiming();
        w.reset();
        state.ResumeTiming();
    }
    BenchReport::report(state, runs.mean(), baseline, "≤ 300 ms with either list");
    state.counters["list_rows"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_StartUp_ToUsableWindow)
    ->Arg(BenchData::kListRows)
    ->Arg(250)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

// ----- open

// Baseline: the document copied with the backup API into a scratch file (not flushed) and all its
// rows read with the C API, the texts as UTF-8 (no conversion).
BenchReport::Time rawOpen(const QString &document) {
    const QString scratch = QDir::temp().filePath(QStringLiteral("virn-bench-open-%1.db").arg(getpid()));
    const BenchReport::Time t = median(5, [&] {
        sqlite3 *src = nullptr, *dst = nullptr;
        sqlite3_open_v2(document.toUtf8().constData(), &src, SQLITE_OPEN_READONLY, nullptr);
        sqlite3_open(scratch.toUtf8().constData(), &dst);
        sqlite3_exec(dst, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr); // a scratch copy
        sqlite3_backup *b = sqlite3_backup_init(dst, "main", src, "main");
        sqlite3_backup_step(b, -1);
        sqlite3_backup_finish(b);
        sqlite3_close(src);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(dst, "SELECT * FROM smeta WHERE 1", -1, &st, nullptr);
        size_t bytes = 0;
        while (sqlite3_step(st) == SQLITE_ROW)
            for (int c = 0; c < sqlite3_column_count(st); ++c) {
                sqlite3_column_text(st, c);
                bytes += static_cast<size_t>(sqlite3_column_bytes(st, c));
            }
        benchmark::DoNotOptimize(bytes);
        sqlite3_finalize(st);
        sqlite3_close(dst);
    });
    QFile::remove(scratch);
    return t;
}

void BM_Open_Estimate5000(benchmark::State &state) {
    Folder &folder = folderOf(state);
    const QString document = folder.document(5000);
    const BenchReport::Time baseline = rawOpen(document);
    Window w(folder.path());
    w.waitForList(static_cast<int>(state.range(0)));
    BenchReport::Runs runs;
    for (auto _ : state) {
        state.PauseTiming();
        w.form->CreateNewDoc(); // each open replaces another document, as the user's does
        settle();
        state.ResumeTiming();
        runs.time([&] {
            if (!w.open(document))
                state.SkipWithError("open failed");
        });
    }
    BenchReport::report(state, runs.mean(), baseline, "≤ 100 ms with either list");
    state.counters["list_rows"] = static_cast<double>(state.range(0));
    state.counters["rows"] = w.document().grid().rowCount();
}
BENCHMARK(BM_Open_Estimate5000)
    ->Arg(BenchData::kListRows)
    ->Arg(250)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

// ----- a quantity edit

// A work row of a rate in the middle of the estimate (model row).
int middleRateRow(const EstimateGrid &grid) {
    for (int r = grid.rowCount() / 2; r < grid.rowCount(); ++r)
        if (!grid.cell(EstimateGrid::toGridRow(r), EstimateCol::IdRas).isEmpty())
            return r;
    return -1;
}

void BM_EditQuantity_250Rates(benchmark::State &state) {
    Folder &folder = folderOf(state);
    Window w(folder.path());
    w.waitForList(static_cast<int>(state.range(0)));
    if (!w.open(folder.document(250)))
        state.SkipWithError("open failed");
    EstimateGrid &grid = w.document().grid();
    const int row = middleRateRow(grid);
    // Baseline: the least an edit writes, one material's quantity and amount in one transaction.
    QSqlDatabase smeta = w.module->database(Db::Smeta);
    QString material;
    {
        QSqlQuery q(smeta);
        if (q.exec(QStringLiteral("SELECT namemat FROM materials ORDER BY _id LIMIT 1")) && q.next())
            material = q.value(0).toString();
    }
    int n = 0;
    const BenchReport::Time baseline = median(50, [&] {
        smeta.transaction();
        QSqlQuery q(smeta);
        q.prepare(QStringLiteral("UPDATE materials SET kolvo=?, summa=? WHERE namemat=?"));
        q.addBindValue(QString::number(++n));
        q.addBindValue(QString::number(n * 10));
        q.addBindValue(material);
        q.exec();
        smeta.commit();
    });
    // The first edit reads the resources of the document's rates.
    grid.setData(grid.index(row, EstimateCol::Qty), QStringLiteral("7"), Qt::EditRole);
    settle();
    BenchReport::Runs runs;
    int i = 0;
    for (auto _ : state)
        runs.time([&] {
            grid.setData(grid.index(row, EstimateCol::Qty), QString::number(++i % 50 + 1), Qt::EditRole);
            settle();
        });
    BenchReport::report(state, runs.mean(), baseline, "≤ 16 ms (one frame) per edit");
    state.counters["list_rows"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_EditQuantity_250Rates)
    ->Arg(BenchData::kListRows)
    ->Arg(250)
    ->Iterations(200)
    ->Unit(benchmark::kMillisecond);

// ----- the undo journal's growth

void BM_UndoJournal_10000Edits(benchmark::State &state) {
    Folder &folder = smallList();
    double first = 0, last = 0;
    for (auto _ : state) {
        Window w(folder.path());
        EstimateGrid &grid = w.document().grid();
        for (int i = 0; i < 20; ++i) {
            grid.setData(grid.index(grid.rowCount() - 1, EstimateCol::Name),
                         QStringLiteral("Работа %1").arg(i), Qt::EditRole);
            grid.insertGridRows(grid.gridRowCount(), 1);
        }
        settle();
        std::vector<double> thousands;
        for (int k = 0; k < 10; ++k) {
            thousands.push_back(BenchReport::timeMs([&] {
                for (int i = 0; i < 1000; ++i) {
                    grid.setData(grid.index(i % 20, EstimateCol::Qty), QString::number(k * 1000 + i),
                                 Qt::EditRole);
                    settle();
                }
            }));
        }
        first = thousands.front();
        last = thousands.back();
    }
    state.counters["first_1000_ms"] = first;
    state.counters["last_1000_ms"] = last;
    state.counters["x_first"] = last / first;
    state.SetLabel("goal: the last thousand of 10,000 edits ≤ 1.3× the first");
}
BENCHMARK(BM_UndoJournal_10000Edits)->Iterations(1)->Unit(benchmark::kMillisecond);

// ----- save

// Baseline: the rows written into the working database with the C API from UTF-8 texts encoded
// beforehand, in one transaction, then the file copied with the backup API, flushed and renamed.
BenchReport::Time rawSave(QSqlDatabase smeta, const QString &target) {
    std::vector<std::vector<QByteArray>> rows;
    {
        QSqlQuery q(smeta);
        q.exec(QStringLiteral("SELECT numpos, edras, nameras, edizm, kolvo, price, summa, idRas, NamePrice, "
                              "KoefBrig, section, machine, mat, total, laboriousness, idwork FROM smeta"));
        while (q.next()) {
            std::vector<QByteArray> r;
            for (int c = 0; c < 16; ++c)
                r.push_back(q.value(c).toString().toUtf8());
            rows.push_back(r);
        }
    }
    sqlite3 *db = rawHandle(smeta);
    const QByteArray tmp = (target + QStringLiteral(".tmp")).toUtf8();
    const BenchReport::Time t = median(5, [&] {
        sqlite3_exec(db, "BEGIN IMMEDIATE; DELETE FROM smeta;", nullptr, nullptr, nullptr);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db,
                           "INSERT INTO smeta (numpos, edras, nameras, edizm, kolvo, price, summa, idRas, "
                           "NamePrice, KoefBrig, section, machine, mat, total, laboriousness, idwork) "
                           "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                           -1, &st, nullptr);
        for (const auto &r : rows) {
            for (int c = 0; c < 16; ++c)
                sqlite3_bind_text(st, c + 1, r[static_cast<size_t>(c)].constData(),
                                  static_cast<int>(r[static_cast<size_t>(c)].size()), SQLITE_STATIC);
            sqlite3_step(st);
            sqlite3_reset(st);
        }
        sqlite3_finalize(st);
        sqlite3_exec(db, "COMMIT;", nullptr, nullptr, nullptr);
        sqlite3 *dst = nullptr;
        sqlite3_open(tmp.constData(), &dst);
        sqlite3_backup *b = sqlite3_backup_init(dst, "main", db, "main");
        sqlite3_backup_step(b, -1);
        sqlite3_backup_finish(b);
        sqlite3_close(dst);
        QFile f(QString::fromUtf8(tmp));
        if (f.open(QIODevice::ReadWrite))
            ::fsync(f.handle());
        f.close();
        ::rename(tmp.constData(), (target + QStringLiteral(".raw")).toUtf8().constData());
    });
    QFile::remove(target + QStringLiteral(".raw"));
    return t;
}

void BM_Save_Estimate5000(benchmark::State &state) {
    Folder &folder = bigList();
    Window w(folder.path());
    w.waitForList(BenchData::kListRows);
    const QString copy = QDir(folder.path()).filePath(QStringLiteral("Sm/сохранение.sim"));
    QFile::remove(copy);
    QFile::copy(folder.document(5000), copy);
    if (!w.open(copy))
        state.SkipWithError("open failed");
    const BenchReport::Time baseline = rawSave(w.module->database(Db::Smeta), copy);
    BenchReport::Runs runs;
    for (auto _ : state) {
        state.PauseTiming();
        w.document().setChanged(true);
        state.ResumeTiming();
        runs.time([&] {
            if (!w.form->spdSaveClick())
                state.SkipWithError("save failed");
        });
    }
    BenchReport::report(state, runs.mean(), baseline, "as close to the baseline as the format allows");
}
BENCHMARK(BM_Save_Estimate5000)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Вирн-Смета"));
    QApplication::setOrganizationName(QStringLiteral("Вирн"));
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    // The program remembers its data folder per user: the benchmark's go to a private folder.
    QTemporaryDir userSettings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, userSettings.path());
    installDialogs(std::make_unique<QuietDialogs>());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
