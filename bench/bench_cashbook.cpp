// The cash book at scale: a foreman's book of 50,000 records (40 customers with 3 objects each, four
// years) beside a warehouse of 20,000 write-offs to the same customers. Each filter change reads the
// records, counts the totals row, the balance of the customer and object and the sold materials; an
// edit writes one cell and counts again. Beside each, the same work done the cheapest correct way in
// the same run: the records' and the write-offs' selects through the SQLite C interface into UTF-8
// texts with the amounts summed by strtod, and the bare UPDATE/INSERT through the C interface on the
// same file.
//     ./bench/bench_cashbook

#include "cashbook/CashBook.h"
#include "cashbook/CashColumns.h"
#include "customers/CustomerRegister.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QCoreApplication>
#include <QSqlDriver>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QVariant>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <sqlite3.h>

namespace {

constexpr int kRecords = 50000;
constexpr int kCustomers = 40;
constexpr int kObjects = 3;
constexpr int kWriteOffs = 20000;

QString customerName(int i) {
    return QStringLiteral("Заказчик %1").arg(i);
}
QString objectName(int i) {
    return QStringLiteral("Объект %1").arg(i);
}

struct Data {
    QTemporaryDir dir;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<CashBook> book;
    Data() {
        module = std::make_unique<TModuleSQL>(dir.path());
        QSqlDatabase db = module->database(Db::Cash);
        QSqlQuery q(db);
        q.exec("BEGIN");
        for (int c = 0; c < kCustomers; ++c) {
            q.exec(QStringLiteral("INSERT INTO customer (fio) values('%1')").arg(customerName(c)));
            for (int o = 0; o < kObjects; ++o)
                q.exec(QStringLiteral("INSERT INTO Object (fio, object) values('%1', '%2')")
                           .arg(customerName(c), objectName(o)));
        }
        q.prepare(
            "INSERT INTO cash (date, incoming, my_salary, material, transport, salary_workers, other, "
            "note, customer, object, month, year, date_compare, cheki) values(?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        const QDate first(2021, 1, 1);
        for (int i = 0; i < kRecords; ++i) {
            const QDate d = first.addDays(i % 1460);
            QVariantList v{TextValues::shortDate(d)};
            for (int k = 0; k < CashCategory::kCount; ++k)
                v << ((i + k) % 4 == 0 ? QStringLiteral("%1,%2").arg(100 + (i * 37 + k) % 90000).arg(i % 100)
                                       : QString());
            v << QStringLiteral("Запись %1").arg(i) << customerName(i % kCustomers)
              << objectName((i / kCustomers) % kObjects) << TextValues::monthText(d)
              << TextValues::yearText(d) << TextValues::dateCompareDay(d) << QString();
            for (const QVariant &x : v)
                q.addBindValue(x);
            q.exec();
        }
        QSqlQuery(db).exec("COMMIT");
        // The warehouse: write-offs of the same four years, and a few hundred stock rows.
        QSqlDatabase mat = module->database(Db::Mat);
        QSqlQuery w(mat);
        w.exec("BEGIN");
        w.prepare(
            "INSERT INTO storage (namemat, edizm, kolvo, price, summa, customer, object, dataoffs, month, "
            "year, date_compare) values(?,?,?,?,?,?,?,?,?,?,?)");
        for (int i = 0; i < kWriteOffs; ++i) {
            const QDate d = first.addDays((i * 7) % 1460);
            for (const QVariant &x : QVariantList{
                     QStringLiteral("Материал %1").arg(i % 500), QStringLiteral("шт"),
                     QString::number(1 + i % 20), QStringLiteral("%1,50").arg(10 + i % 900),
                     QStringLiteral("%1,00").arg((1 + i % 20) * (10 + i % 900)), customerName(i % kCustomers),
                     objectName((i / kCustomers) % kObjects), TextValues::shortDate(d),
                     TextValues::monthText(d), TextValues::yearText(d), TextValues::dateCompareDay(d)})
                w.addBindValue(x);
            w.exec();
        }
        for (int i = 0; i < 300; ++i)
            w.exec(QStringLiteral("INSERT INTO storage (data, namemat, kolvo, summa) values('01.01.2024', "
                                  "'Остаток %1', '5', '100,00')")
                       .arg(i));
        QSqlQuery(mat).exec("COMMIT");
        book = std::make_unique<CashBook>(*module);
    }
    sqlite3 *handle(Db which = Db::Cash) {
        return *static_cast<sqlite3 **>(module->database(which).driver()->handle().data());
    }
};

Data &data() {
    static Data d;
    return d;
}

// The baseline of a filter change: the same select read into UTF-8 texts, the six amounts summed,
// then the balance's select summed the same way.
double rawFilter(sqlite3 *db, const char *records, const char *balance) {
    double total = 0;
    for (const char *sql : {records, balance}) {
        if (!sql)
            continue;
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
        const int columns = sqlite3_column_count(st);
        std::vector<std::vector<std::string>> rows;
        while (sqlite3_step(st) == SQLITE_ROW) {
            std::vector<std::string> row(static_cast<size_t>(columns));
            for (int c = 0; c < columns; ++c) {
                const auto *t = reinterpret_cast<const char *>(sqlite3_column_text(st, c));
                row[static_cast<size_t>(c)] = t ? t : "";
            }
            const int firstAmount = sql == records ? 2 : 0;
            for (int c = firstAmount; c < firstAmount + 6 && c < columns; ++c) {
                std::string s = row[static_cast<size_t>(c)];
                for (char &ch : s)
                    if (ch == ',')
                        ch = '.';
                total += std::strtod(s.c_str(), nullptr);
            }
            if (sql == records)
                rows.push_back(std::move(row));
        }
        sqlite3_finalize(st);
        benchmark::DoNotOptimize(rows.data());
    }
    return total;
}

// The baseline of the sold materials: the write-offs' amounts summed by strtod.
double rawSold(sqlite3 *db, const char *sql) {
    double total = 0;
    sqlite3_stmt *st = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW) {
        const auto *t = reinterpret_cast<const char *>(sqlite3_column_text(st, 0));
        std::string s = t ? t : "";
        for (char &ch : s)
            if (ch == ',')
                ch = '.';
        total += std::strtod(s.c_str(), nullptr);
    }
    sqlite3_finalize(st);
    return total;
}

struct FilterCase {
    const char *name;
    QString customer, object;
    int category;
    int month;
    QString year;
    const char *rawRecords;
    const char *rawSold;
};

const FilterCase &filterCase(int i) {
    static const FilterCase cases[] = {
        {"whole book",
         {},
         {},
         0,
         0,
         {},
         "SELECT * FROM cash WHERE 1",
         "SELECT summa FROM storage WHERE dataoffs>''"},
        {"whole book, materials",
         {},
         {},
         3,
         0,
         {},
         "SELECT * FROM cash WHERE  material > 0",
         "SELECT summa FROM storage WHERE dataoffs>''"},
        {"customer and object",
         customerName(7),
         objectName(1),
         0,
         0,
         {},
         "SELECT * FROM cash WHERE customer='Заказчик 7' and object='Объект 1'",
         "SELECT summa FROM storage WHERE dataoffs>'' and customer='Заказчик 7' and object='Объект 1'"},
        {"customer, object, March 2023", customerName(7), objectName(1), 0, 3, "2023",
         "SELECT * FROM cash WHERE customer='Заказчик 7' and object='Объект 1' and month='3' and "
         "year='2023'",
         "SELECT summa FROM storage WHERE dataoffs>'' and customer='Заказчик 7' and object='Объект 1' and "
         "month='3' and year='2023'"},
        {"every customer, March 2023",
         {},
         {},
         0,
         3,
         "2023",
         "SELECT * FROM cash WHERE  month='3' and year='2023'",
         "SELECT summa FROM storage WHERE dataoffs>'' and month='3' and year='2023'"},
    };
    return cases[i];
}

void applyFilter(CashBook &book, const FilterCase &c) {
    book.clearFilters();
    if (!c.customer.isEmpty())
        book.setCustomer(c.customer);
    if (!c.object.isEmpty())
        book.setObject(c.object);
    if (c.category)
        book.setCategory(c.category);
    if (c.month)
        book.setMonthClause(c.month, c.year);
}

// A change of category as the page makes it: the records read with their totals and the sold
// materials; the balance of the customer and object stays (it ignores the category) or is the grid's
// own remainder when nothing but the customer and object filters.
void BM_FilterChange(benchmark::State &state) {
    const FilterCase &c = filterCase(static_cast<int>(state.range(0)));
    state.SetLabel(c.name);
    CashBook &book = *data().book;
    applyFilter(book, c);
    const int other = c.category == 0 ? 1 : 0;
    for (auto _ : state) {
        state.PauseTiming();
        book.setCategory(other);
        state.ResumeTiming();
        book.setCategory(c.category);
    }
    state.counters["rows"] = book.records()->rowCount();
}
BENCHMARK(BM_FilterChange)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

void BM_FilterRawSqliteApi(benchmark::State &state) {
    const FilterCase &c = filterCase(static_cast<int>(state.range(0)));
    state.SetLabel(c.name);
    sqlite3 *db = data().handle();
    sqlite3 *mat = data().handle(Db::Mat);
    for (auto _ : state)
        benchmark::DoNotOptimize(rawFilter(db, c.rawRecords, nullptr) + rawSold(mat, c.rawSold));
}
BENCHMARK(BM_FilterRawSqliteApi)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

// A change of customer under a month filter: the records and the balance over every record of the
// customer read again.
void BM_CustomerChange(benchmark::State &state) {
    CashBook &book = *data().book;
    book.clearFilters();
    book.setMonthClause(3, "2023");
    int i = 0;
    for (auto _ : state)
        book.setCustomer(customerName(i++ % kCustomers));
    state.counters["rows"] = book.records()->rowCount();
}
BENCHMARK(BM_CustomerChange)->Unit(benchmark::kMillisecond);

void BM_CustomerChangeRawSqliteApi(benchmark::State &state) {
    sqlite3 *db = data().handle();
    sqlite3 *mat = data().handle(Db::Mat);
    int i = 0;
    for (auto _ : state) {
        const QString customer = customerName(i++ % kCustomers);
        const QByteArray records =
            QStringLiteral("SELECT * FROM cash WHERE customer='%1' and month='3' and year='2023'")
                .arg(customer)
                .toUtf8();
        const QByteArray balance =
            QStringLiteral("SELECT incoming,my_salary,material,transport,salary_workers,other "
                           "FROM Cash WHERE customer='%1'")
                .arg(customer)
                .toUtf8();
        const QByteArray sold =
            QStringLiteral("SELECT summa FROM storage WHERE dataoffs>'' and customer='%1' "
                           "and month='3' and year='2023'")
                .arg(customer)
                .toUtf8();
        benchmark::DoNotOptimize(rawFilter(db, records.constData(), balance.constData()) +
                                 rawSold(mat, sold.constData()));
    }
}
BENCHMARK(BM_CustomerChangeRawSqliteApi)->Unit(benchmark::kMillisecond);

// An amount typed into a cell of the whole book's grid (50,000 rows): written, totals and balance
// counted again.
void BM_EditCell(benchmark::State &state) {
    CashBook &book = *data().book;
    book.clearFilters();
    int i = 0;
    for (auto _ : state) {
        // A new amount every time: an unchanged cell is not written.
        book.editCell(i % 100, CashCol::FirstAmount + 3, QString::number(100 + i));
        ++i;
    }
}
BENCHMARK(BM_EditCell)->Unit(benchmark::kMillisecond);

void BM_EditCellRawSqliteApi(benchmark::State &state) {
    sqlite3 *db = data().handle();
    int i = 0;
    for (auto _ : state) {
        const QByteArray sql = QStringLiteral("UPDATE Cash SET transport='%1',month='1',year='2021',"
                                              "date_compare='20210101' WHERE _id=%2")
                                   .arg(100 + i)
                                   .arg(1 + i % 100)
                                   .toUtf8();
        ++i;
        sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr);
    }
}
BENCHMARK(BM_EditCellRawSqliteApi)->Unit(benchmark::kMillisecond);

// A new record of a customer and object (1,250 rows listed): the row added and its first cell
// written (INSERT with its key read back). The records are read again outside the timing.
void BM_AddRecord(benchmark::State &state) {
    CashBook &book = *data().book;
    applyFilter(book, filterCase(2));
    for (auto _ : state) {
        CashBook::Outcome o;
        const int row = book.addRecord(QDate(2024, 5, 1), &o);
        book.editCell(row, CashCol::FirstAmount, QStringLiteral("1500"));
        state.PauseTiming();
        book.deleteRecord(row);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_AddRecord)->Unit(benchmark::kMillisecond);

void BM_AddRecordRawSqliteApi(benchmark::State &state) {
    sqlite3 *db = data().handle();
    for (auto _ : state) {
        sqlite3_exec(
            db,
            "INSERT INTO Cash (note, customer, object, date, incoming, my_salary, material, transport, "
            "salary_workers, other, month, year, date_compare, cheki) values('', 'Заказчик 7', "
            "'Объект 1', '01.05.2024', '1500', '', '', '', '', '', '5', '2024', '20240501', '')",
            nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(sqlite3_last_insert_rowid(db));
        state.PauseTiming();
        sqlite3_exec(db, "DELETE FROM Cash WHERE _id=last_insert_rowid()", nullptr, nullptr, nullptr);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_AddRecordRawSqliteApi)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    data();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
