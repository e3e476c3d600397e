// The materials lists at scale: a supplier's list of 50,000 materials in one sheet. Each measured
// operation runs beside its raw baseline in the same program: reading the sheet into the list grid
// with the live-search names (baselines: the same select through the SQLite C interface, and through
// Qt SQL, into text), the word filter (baseline: the same query through the SQLite C interface), one
// live-search keystroke (baseline: a scan of pre-lowered names), and the import of a 50,000-row
// ".xlsx" into the sheet through the office engine (baseline: the engine's own load and export of the
// sheet's text, nothing read or written by us).
//     ./bench/bench_materials

#include "materials/MatSpreadsheet.h"
#include "materials/MaterialLists.h"
#include "office/OfficeEngine.h"
#include "storage/ModuleSQL.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

namespace {

constexpr int kMaterials = 50000;

// Names like a building supplier's list: a material, a grade or colour, a size.
QString materialName(int i) {
    static const QStringList kinds = {"Кирпич облицовочный", "Блок газобетонный",
                                      "Плитка керамическая", "Ламинат",
                                      "Гипсокартон",         "Профиль направляющий",
                                      "Саморез по металлу",  "Краска фасадная",
                                      "Грунтовка акриловая", "Труба ПП",
                                      "Кабель ВВГнг",        "Утеплитель минвата"};
    static const QStringList grades = {"М150",     "D500",   "белый",   "серый", "32 класс", "ГКЛВ",
                                       "ПН 50x40", "3,5x25", "матовая", "Ø20",   "3x2,5",    "50 мм"};
    static const QStringList makers = {"Стройресурс", "ТехноНИКОЛЬ", "Knauf", "Ceresit", "Волма", "Евроблок"};
    return QStringLiteral("%1 %2 «%3», арт. %4")
        .arg(kinds.at(i % kinds.size()), grades.at((i / 12) % grades.size()),
             makers.at((i / 7) % makers.size()))
        .arg(100000 + i);
}

std::vector<MatRow> supplierList() {
    std::vector<MatRow> rows;
    rows.reserve(kMaterials);
    for (int i = 0; static_cast<int>(rows.size()) < kMaterials; ++i) {
        MatRow r;
        if (i % 500 == 0) {
            r.name = QStringLiteral("Раздел каталога %1").arg(i / 500 + 1);
            r.unit = QStringLiteral("пв");
        } else {
            r.name = materialName(i);
            r.unit = QStringList{"шт.", "м2", "кг", "уп.", "м"}.at(i % 5);
            r.price = QStringLiteral("%1,%2").arg(10 + (i * 37) % 9000).arg(i % 100, 2, 10, QLatin1Char('0'));
        }
        rows.push_back(std::move(r));
    }
    return rows;
}

struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    std::vector<MatRow> rows = supplierList();
    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        QString error;
        if (!MatListStore::replaceSheet(module->database(Db::Mat), "list1", rows, &error))
            qFatal("cannot fill list1: %s", qPrintable(error));
    }
    sqlite3 *handle() {
        return *static_cast<sqlite3 **>(module->database(Db::Mat).driver()->handle().data());
    }
};

Data &data() {
    static Data d;
    return d;
}

// The sheet's columns through the SQLite C interface into text, with an optional filter word.
size_t rawRead(sqlite3 *db, const QString &word) {
    const QByteArray sql =
        word.isEmpty()
            ? "SELECT id, namemat, edizm, price, nummat, idmat FROM list1 WHERE 1 ORDER BY numpos, id"
            : "SELECT id, namemat, edizm, price, nummat, idmat FROM list1 WHERE instr(namemat, ?2) > 0 "
              "AND namemat LIKE ?1 ORDER BY numpos, id";
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, sql.constData(), -1, &st, nullptr);
    const QByteArray like = (QStringLiteral("%") + word + QStringLiteral("%")).toUtf8(),
                     exact = word.toUtf8();
    if (!word.isEmpty()) {
        sqlite3_bind_text(st, 1, like.constData(), -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 2, exact.constData(), -1, SQLITE_STATIC);
    }
    std::vector<std::array<QString, 6>> out;
    while (sqlite3_step(st) == SQLITE_ROW) {
        std::array<QString, 6> r;
        for (int c = 0; c < 6; ++c) {
            const auto *text = static_cast<const char16_t *>(sqlite3_column_text16(st, c));
            r[static_cast<size_t>(c)] =
                text ? QString::fromUtf16(text, sqlite3_column_bytes16(st, c) / 2) : QString();
        }
        out.push_back(std::move(r));
    }
    sqlite3_finalize(st);
    benchmark::DoNotOptimize(out.data());
    return out.size();
}

void BM_ReadSheetRawSqliteApi(benchmark::State &state) {
    sqlite3 *db = data().handle();
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(rawRead(db, QString()));
}
BENCHMARK(BM_ReadSheetRawSqliteApi)->Unit(benchmark::kMillisecond);

void BM_ReadSheetRawQtSql(benchmark::State &state) {
    QSqlDatabase db = data().module->database(Db::Mat);
    for (auto _ : state) {
        std::vector<std::array<QString, 6>> out;
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec("SELECT id, namemat, edizm, price, nummat, idmat FROM list1 WHERE 1 ORDER BY numpos, id");
        while (q.next()) {
            std::array<QString, 6> r;
            for (int c = 0; c < 6; ++c)
                r[static_cast<size_t>(c)] = q.value(c).toString();
            out.push_back(std::move(r));
        }
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_ReadSheetRawQtSql)->Unit(benchmark::kMillisecond);

// ReadSqlMat: the sheet into the list grid's model, the live-search names loaded.
void BM_ReadSheet(benchmark::State &state) {
    MaterialLists lists(data().module.get());
    for (auto _ : state) {
        if (!lists.readSheet(0))
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(lists.model().rowCount());
    }
    state.counters["rows"] = lists.model().rowCount();
}
BENCHMARK(BM_ReadSheet)->Unit(benchmark::kMillisecond);

// Filter words: common (a twelfth of the list), a grade (a twelfth), rare (one article), none.
const QStringList kWords = {"Кирпич", "М150", "арт. 123456", "нет такого"};

void BM_FilterRawSqliteApi(benchmark::State &state) {
    sqlite3 *db = data().handle();
    const QString word = kWords.at(static_cast<int>(state.range(0)));
    for (auto _ : state)
        state.counters["found"] = static_cast<double>(rawRead(db, word));
}
BENCHMARK(BM_FilterRawSqliteApi)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

// "Применить фильтр": the sheet read again with the word, into the grid.
void BM_Filter(benchmark::State &state) {
    MaterialLists lists(data().module.get());
    lists.readSheet(0);
    const QString word = kWords.at(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        if (!lists.applyFilter(word))
            state.SkipWithError("filter failed");
        state.counters["found"] = lists.model().rowCount();
    }
}
BENCHMARK(BM_Filter)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

const QStringList kTyped = {"к", "кирп", "газобетонный d5", "нет такого материала"};

void BM_LiveSearchBaselineScan(benchmark::State &state) {
    std::vector<QString> lowered;
    for (const MatRow &r : data().rows)
        if (r.unit != QLatin1String("пв"))
            lowered.push_back(r.name.toLower());
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

// One keystroke in the estimate's materials: the current sheet searched, MemoMat's model refilled.
void BM_LiveSearchKeystroke(benchmark::State &state) {
    MaterialLists lists(data().module.get());
    lists.readSheet(0);
    LiveSearchModel model(lists.liveSearch());
    const QString typed = kTyped.at(static_cast<int>(state.range(0)));
    for (auto _ : state)
        state.counters["found"] = model.search(typed);
}
BENCHMARK(BM_LiveSearchKeystroke)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

// The office engine, started once; the 50,000-row ".xlsx" written once (its writing measured too).
OfficeEngine &engine() {
    static OfficeEngine e(QDir::temp().filePath(QStringLiteral("virn-office-bench-%1").arg(getuid())));
    return e;
}

QString spreadsheet() {
    static const QString path = data().dir.filePath("Прайс поставщика.xlsx");
    if (!QFile::exists(path)) {
        QString error;
        if (!MatSpreadsheet::writeFile(engine(), data().rows, "Прайс", path, data().dir.filePath("Temp"),
                                       &error))
            qFatal("cannot write the spreadsheet: %s", qPrintable(error));
    }
    return path;
}

// "Отправить список в Excel" of the whole sheet.
void BM_Export(benchmark::State &state) {
    const QString path = data().dir.filePath("Экспорт.xlsx");
    engine().start();
    for (auto _ : state) {
        QString error;
        if (!MatSpreadsheet::writeFile(engine(), data().rows, "Лист 1", path, data().dir.filePath("Temp"),
                                       &error))
            state.SkipWithError(qPrintable(error));
    }
}
BENCHMARK(BM_Export)->Iterations(2)->Unit(benchmark::kSecond)->UseRealTime();

// Baseline: what the engine itself must do, load the file and write its sheet as text.
void BM_ImportEngineOnly(benchmark::State &state) {
    const QString path = spreadsheet(), csv = data().dir.filePath("engine-only.csv");
    for (auto _ : state) {
        if (!engine().load(path) || !engine().saveAs(csv, "csv"))
            state.SkipWithError(qPrintable(engine().error()));
        engine().close();
    }
}
BENCHMARK(BM_ImportEngineOnly)->Iterations(2)->Unit(benchmark::kSecond)->UseRealTime();

// "Импорт из файлов Excel": checked, read through the engine, the sheet replaced, read into the grid.
void BM_Import(benchmark::State &state) {
    const QString path = spreadsheet();
    MaterialLists lists(data().module.get());
    lists.readSheet(1);
    for (auto _ : state) {
        std::vector<MatRow> rows;
        QString error;
        if (!MatSpreadsheet::readFile(engine(), path, data().dir.filePath("Temp"), rows, &error) ||
            !lists.replaceSheet(rows, &error))
            state.SkipWithError(qPrintable(error));
        state.counters["rows"] = lists.model().rowCount();
    }
}
BENCHMARK(BM_Import)->Iterations(2)->Unit(benchmark::kSecond)->UseRealTime();

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
