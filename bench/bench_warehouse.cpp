// The warehouse at scale: 10,000 stock rows and 100,000 write-offs (200 customers with two objects
// each, over five years) in one storage table. Each measured operation runs beside its raw baseline in
// the same program, the same rows selected through the SQLite C interface into UTF-8 texts:
// - opening the warehouse: the stock read into the grid's model, totals and minimum count included, and
//   the warehouse window drawn with it;
// - opening the report for a customer: the report window filled (customers, objects, write-offs, total);
// - the report's filters: a customer's period, an object, every write-off at once (the report reads the
//   ids and amounts of its rows and the cells of the rows it shows: measured beside the same work and
//   beside reading every cell);
// - the cash book's sum of sold materials for a customer and month;
// - one take from stock into the estimate (both databases, one transaction each).
//     ./bench/bench_warehouse

#include "customers/CustomerRegister.h"
#include "materials/DohodMat_frame.h"
#include "materials/SkladMat_frame.h"
#include "materials/SoldReport.h"
#include "materials/StockTaking.h"
#include "materials/Warehouse.h"
#include "materials/WriteOffs.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QApplication>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

namespace {

constexpr int kStock = 10000;
constexpr int kWriteOffs = 100000;
constexpr int kCustomers = 200;

QString customerName(int i) {
    static const QStringList surnames = {"Кудрявцев", "Соболева", "Михайлов", "Гончарова", "Лебедев",
                                         "Орлова",    "Зайцев",   "Белова",   "Громов",    "Киселёва"};
    return QStringLiteral("%1 %2-%3").arg(surnames.at(i % surnames.size())).arg(i / surnames.size()).arg(i);
}

QString objectName(int customer, int object) {
    return QStringLiteral("Квартира, ул. Садовая, д. %1, кв. %2").arg(customer + 1).arg(object + 1);
}

QString stockName(int i) {
    static const QStringList kinds = {"Штукатурка гипсовая", "Клей плиточный",  "Грунтовка", "Профиль ПН",
                                      "Саморез по металлу",  "Краска фасадная", "Ламинат",   "Кабель ВВГнг"};
    return QStringLiteral("%1, партия %2").arg(kinds.at(i % kinds.size())).arg(i);
}

struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<CustomerRegister> customers;
    QString customer = customerName(17);
    QString object = objectName(17, 1);

    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        customers = std::make_unique<CustomerRegister>(*module);
        QSqlDatabase cash = module->database(Db::Cash);
        {
            Transaction t(cash);
            QSqlQuery c(cash), o(cash);
            c.prepare("INSERT INTO customer (fio) VALUES (?)");
            o.prepare("INSERT INTO Object (fio, object) VALUES (?, ?)");
            for (int i = 0; i < kCustomers; ++i) {
                c.addBindValue(customerName(i));
                c.exec();
                for (int k = 0; k < 2; ++k) {
                    o.addBindValue(customerName(i));
                    o.addBindValue(objectName(i, k));
                    o.exec();
                }
            }
            t.commit();
        }
        QSqlDatabase mat = module->database(Db::Mat);
        Transaction t(mat);
        QSqlQuery s(mat);
        s.prepare("INSERT INTO storage (data, namemat, edizm, kolvo, price, summa, minlimit) VALUES "
                  "(?,?,?,?,?,?,?)");
        for (int i = 0; i < kStock; ++i) {
            const int qty = 5 + i % 200, price = 40 + (i * 37) % 3000;
            s.addBindValue(QStringLiteral("%1.%2.2024")
                               .arg(1 + i % 28, 2, 10, QLatin1Char('0'))
                               .arg(1 + i % 12, 2, 10, QLatin1Char('0')));
            s.addBindValue(stockName(i));
            s.addBindValue(i % 3 ? QStringLiteral("шт.") : QStringLiteral("мешок"));
            s.addBindValue(QString::number(qty));
            s.addBindValue(QString::number(price));
            s.addBindValue(QStringLiteral("%1,00").arg(qty * price));
            s.addBindValue(i % 10 == 0 ? QString::number(qty + 5) : QString());
            s.exec();
        }
        QSqlQuery w(mat);
        w.prepare("INSERT INTO storage (namemat, edizm, kolvo, price, summa, customer, object, dataoffs, "
                  "month, year, "
                  "date_compare) VALUES (?,?,?,?,?,?,?,?,?,?,?)");
        const QDate first(2021, 1, 1);
        for (int i = 0; i < kWriteOffs; ++i) {
            const int c = (i * 7919) % kCustomers;
            const QDate day = first.addDays((i * 13) % 1826);
            const int qty = 1 + i % 9, price = 40 + (i * 31) % 3000;
            w.addBindValue(stockName(i % kStock));
            w.addBindValue(QStringLiteral("шт."));
            w.addBindValue(QString::number(qty));
            w.addBindValue(QString::number(price));
            w.addBindValue(QStringLiteral("%1,00").arg(qty * price));
            w.addBindValue(customerName(c));
            w.addBindValue(objectName(c, i % 2));
            w.addBindValue(TextValues::shortDate(day));
            w.addBindValue(TextValues::monthText(day));
            w.addBindValue(TextValues::yearText(day));
            w.addBindValue(TextValues::dateCompareDay(day));
            w.exec();
        }
        t.commit();
        QSqlQuery(mat).exec("ANALYZE");
    }
    sqlite3 *handle() {
        return *static_cast<sqlite3 **>(module->database(Db::Mat).driver()->handle().data());
    }
};

Data &data() {
    static Data d;
    return d;
}

// The rows of a statement through the SQLite C interface, each cell as UTF-8 text made a QString.
size_t rawRows(const char *sql, const QList<QByteArray> &binds) {
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(data().handle(), sql, -1, &st, nullptr);
    for (int i = 0; i < binds.size(); ++i)
        sqlite3_bind_text(st, i + 1, binds.at(i).constData(), binds.at(i).size(), SQLITE_STATIC);
    const int columns = sqlite3_column_count(st);
    std::vector<std::vector<QString>> out;
    while (sqlite3_step(st) == SQLITE_ROW) {
        std::vector<QString> row(static_cast<size_t>(columns));
        for (int c = 0; c < columns; ++c)
            row[static_cast<size_t>(c)] = QString::fromUtf8(
                reinterpret_cast<const char *>(sqlite3_column_text(st, c)), sqlite3_column_bytes(st, c));
        out.push_back(std::move(row));
    }
    sqlite3_finalize(st);
    benchmark::DoNotOptimize(out.data());
    return out.size();
}

const char *kWriteOffColumns =
    "SELECT id, namemat, edizm, kolvo, price, summa, dataoffs, customer, object, month, "
    "year, date_compare FROM storage WHERE ";

// ----- Opening the warehouse.

void BM_OpenWarehouseRawSqliteApi(benchmark::State &state) {
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(rawRows(
            "SELECT id, data, namemat, edizm, kolvo, price, summa, minlimit, client, sale, note FROM storage "
            "WHERE (dataoffs IS NULL OR dataoffs='') ORDER BY id",
            {}));
}
BENCHMARK(BM_OpenWarehouseRawSqliteApi)->Unit(benchmark::kMillisecond);

void BM_OpenWarehouse(benchmark::State &state) {
    Warehouse w([] { return data().module->database(Db::Mat); });
    for (auto _ : state) {
        if (!w.read())
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(w.model().total());
    }
    state.counters["rows"] = w.model().rowCount();
    state.counters["below_minimum"] = w.model().belowMinimumCount();
}
BENCHMARK(BM_OpenWarehouse)->Unit(benchmark::kMillisecond);

// The warehouse window: the stock read again, the minimum line and the total, the window drawn.
void BM_OpenWarehouseWindow(benchmark::State &state) {
    Warehouse w([] { return data().module->database(Db::Mat); });
    QStandardItemModel estimate(0, 7);
    TSkladMat window(w, &estimate);
    window.resize(1100, 600);
    window.show();
    for (auto _ : state) {
        window.refresh();
        benchmark::DoNotOptimize(window.grab());
    }
    state.counters["rows"] = w.model().rowCount();
}
BENCHMARK(BM_OpenWarehouseWindow)->Unit(benchmark::kMillisecond);

// ----- The report.

void BM_OpenReportRawSqliteApi(benchmark::State &state) {
    const QByteArray customer = data().customer.toUtf8();
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(
            rawRows((QByteArray(kWriteOffColumns) + "dataoffs>'' and customer=? ORDER BY id").constData(),
                    {customer}));
}
BENCHMARK(BM_OpenReportRawSqliteApi)->Unit(benchmark::kMillisecond);

// The window itself: customers and objects into the combos, the customer's write-offs into the grid,
// the window drawn (the rows it shows read).
void BM_OpenReportWindow(benchmark::State &state) {
    SoldReport report([] { return data().module->database(Db::Mat); }, *data().customers);
    TDohodMat window(report);
    window.show();
    for (auto _ : state) {
        window.open(data().customer, data().object, QDate(2025, 12, 15));
        benchmark::DoNotOptimize(window.grab());
    }
    state.counters["rows"] = report.model().rowCount();
}
BENCHMARK(BM_OpenReportWindow)->Unit(benchmark::kMillisecond);

void BM_FilterPeriodRawSqliteApi(benchmark::State &state) {
    const QByteArray customer = data().customer.toUtf8();
    for (auto _ : state)
        state.counters["rows"] =
            static_cast<double>(rawRows((QByteArray(kWriteOffColumns) +
                                         "dataoffs>'' and customer=? and date_compare>=? and date_compare<=? "
                                         "ORDER BY id")
                                            .constData(),
                                        {customer, "20230101", "20231231"}));
}
BENCHMARK(BM_FilterPeriodRawSqliteApi)->Unit(benchmark::kMillisecond);

void BM_FilterPeriod(benchmark::State &state) {
    SoldReport report([] { return data().module->database(Db::Mat); }, *data().customers);
    QString message;
    for (auto _ : state)
        if (!report.applyPeriod(data().customer, QDate(2023, 1, 1), QDate(2023, 12, 31), &message))
            state.SkipWithError(qPrintable(message));
    state.counters["rows"] = report.model().rowCount();
}
BENCHMARK(BM_FilterPeriod)->Unit(benchmark::kMillisecond);

void BM_ChooseObjectRawSqliteApi(benchmark::State &state) {
    const QByteArray object = data().object.toUtf8();
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(rawRows(
            (QByteArray(kWriteOffColumns) + "dataoffs>'' and object=? ORDER BY id").constData(), {object}));
}
BENCHMARK(BM_ChooseObjectRawSqliteApi)->Unit(benchmark::kMillisecond);

// Choosing an object: its customer found in the register, its write-offs listed.
void BM_ChooseObject(benchmark::State &state) {
    SoldReport report([] { return data().module->database(Db::Mat); }, *data().customers);
    QString owner, notice, message;
    for (auto _ : state)
        if (!report.chooseObject(data().object, &owner, &notice, &message))
            state.SkipWithError(qPrintable(message));
    state.counters["rows"] = report.model().rowCount();
}
BENCHMARK(BM_ChooseObject)->Unit(benchmark::kMillisecond);

// Every cell of every write-off: what a grid that holds all its rows would read.
void BM_AllWriteOffsRawSqliteApi(benchmark::State &state) {
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(
            rawRows((QByteArray(kWriteOffColumns) + "dataoffs>'' ORDER BY id").constData(), {}));
}
BENCHMARK(BM_AllWriteOffsRawSqliteApi)->Unit(benchmark::kMillisecond);

// The same work as the report's: every id with its amount added up, and the first page of cells.
void BM_AllWriteOffsIdsRawSqliteApi(benchmark::State &state) {
    for (auto _ : state) {
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(data().handle(), "SELECT id, summa FROM storage WHERE dataoffs>'' ORDER BY id", -1,
                           &st, nullptr);
        std::vector<qint64> ids;
        MoneyResult total = Money();
        while (sqlite3_step(st) == SQLITE_ROW) {
            ids.push_back(sqlite3_column_int64(st, 0));
            total = WriteOffs::addAmount(
                total, QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 1)),
                                         sqlite3_column_bytes(st, 1)));
        }
        sqlite3_finalize(st);
        const QByteArray first = QByteArray::number(ids.front()), last = QByteArray::number(ids[255]);
        rawRows((QByteArray(kWriteOffColumns) + "dataoffs>'' and id>=? and id<=? ORDER BY id").constData(),
                {first, last});
        benchmark::DoNotOptimize(total);
        state.counters["rows"] = static_cast<double>(ids.size());
    }
}
BENCHMARK(BM_AllWriteOffsIdsRawSqliteApi)->Unit(benchmark::kMillisecond);

// "Все записи": every write-off at once, the worst a user can ask of the report; the first page read.
void BM_AllWriteOffs(benchmark::State &state) {
    SoldReport report([] { return data().module->database(Db::Mat); }, *data().customers);
    QString message;
    for (auto _ : state) {
        if (!report.showAll(&message))
            state.SkipWithError(qPrintable(message));
        benchmark::DoNotOptimize(report.model().rowAt(0));
    }
    state.counters["rows"] = report.model().rowCount();
}
BENCHMARK(BM_AllWriteOffs)->Unit(benchmark::kMillisecond);

// ----- The cash book's sum of sold materials.

void BM_SoldTotalRawSqliteApi(benchmark::State &state) {
    const QByteArray customer = data().customer.toUtf8();
    for (auto _ : state)
        state.counters["rows"] = static_cast<double>(rawRows(
            "SELECT summa FROM storage WHERE dataoffs>'' and customer=? and month=? and year=? ORDER BY id",
            {customer, "3", "2023"}));
}
BENCHMARK(BM_SoldTotalRawSqliteApi)->Unit(benchmark::kMillisecond);

void BM_SoldTotal(benchmark::State &state) {
    WriteOffFilter f;
    f.customer = data().customer;
    f.month = "3";
    f.year = "2023";
    for (auto _ : state)
        benchmark::DoNotOptimize(WriteOffs::soldTotal(data().module->database(Db::Mat), f));
}
BENCHMARK(BM_SoldTotal)->Unit(benchmark::kMillisecond);

// ----- One take: the stock row checked and reduced, the estimate's material, the write-off.
void BM_TakeFromStock(benchmark::State &state) {
    QSqlDatabase mat = data().module->database(Db::Mat), smeta = data().module->database(Db::Smeta);
    QSqlQuery q(mat);
    q.exec("INSERT INTO storage (namemat, edizm, kolvo, price) VALUES ('Цемент для замеров', 'мешок', "
           "'1000000', '560')");
    const QString id = q.lastInsertId().toString();
    const StockTaking::Request request{id, *Decimal::of(1, 3), data().customer, data().object,
                                       QDate(2025, 12, 15)};
    for (auto _ : state) {
        const StockTaking::Outcome out = StockTaking::take(mat, smeta, request);
        if (!out)
            state.SkipWithError(qPrintable(out.message));
    }
}
BENCHMARK(BM_TakeFromStock)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    data(); // laid out before the first measurement
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
