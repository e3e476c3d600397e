// The document store with a file of the store's largest size (15728600 bytes), on the MariaDB that
// VIRN_TEST_MYSQL_* names (scripts/services/mariadb.sh start): the upload (DocumentStore::insert in
// its transaction, watched for progress) beside the raw baseline of one prepared INSERT with the blob
// through the MySQL client library, and the download (DocumentStore::fetch, the length checked) beside
// one prepared SELECT of the blob. Both sides use the same server, table and bytes.

#include "server/DocumentStore.h"
#include "server/TransferControl.h"
#include "tests/server/TestStoreAccess.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <mysql.h>

#include <cstring>
#include <string>

namespace {

constexpr qint64 kSize = StoredFiles::kSizeLimit;

StoreAccess access() {
    StoreAccess a = testStoreAccess();
    a.table = QStringLiteral("bench_files_%1").arg(QCoreApplication::applicationPid());
    return a;
}

const QByteArray &bytes() {
    static const QByteArray b = [] {
        QByteArray out(kSize, Qt::Uninitialized);
        for (qint64 i = 0; i < kSize; ++i)
            out[i] = static_cast<char>((i * 2654435761u) >> 24);
        return out;
    }();
    return b;
}

// The raw side: the client library alone.
struct Raw {
    MYSQL *mysql = mysql_init(nullptr);
    bool ok = false;
    Raw() {
        const StoreAccess a = access();
        ok = mysql_real_connect(mysql, a.host.toUtf8().constData(), a.user.toUtf8().constData(),
                                a.password.toUtf8().constData(), a.database.toUtf8().constData(),
                                static_cast<unsigned>(a.port), nullptr, 0) != nullptr;
    }
    ~Raw() { mysql_close(mysql); }
    void exec(const QString &sql) { mysql_query(mysql, sql.toUtf8().constData()); }
};

StoredFile row(int i) {
    StoredFile f =
        StoredFiles::describe(QStringLiteral("/nowhere/Смета.sim"), QStringLiteral("ул. Садовая, 14"));
    f.data = QStringLiteral("01.01.2025 00:00:%1").arg(i % 60, 2, 10, QLatin1Char('0'));
    f.name = QStringLiteral("bench_%1.sim").arg(i);
    f.datefile = f.data;
    return f;
}

bool ready(benchmark::State &state) {
    if (qEnvironmentVariableIsEmpty("VIRN_TEST_MYSQL_HOST")) {
        state.SkipWithError("VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh");
        return false;
    }
    return true;
}

void BM_StoreUpload(benchmark::State &state) {
    if (!ready(state))
        return;
    DocumentStore store;
    if (!store.open(access())) {
        state.SkipWithError("no connection");
        return;
    }
    int i = 0;
    for (auto _ : state) {
        StoredFile f = row(i++);
        TransferControl control;
        if (!store.insert(&f, bytes(), &control)) {
            state.SkipWithError("insert failed");
            return;
        }
        state.PauseTiming();
        store.removeAll();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kSize);
}

void BM_RawUpload(benchmark::State &state) {
    if (!ready(state))
        return;
    {
        DocumentStore store;
        store.open(access());
    } // the table
    Raw raw;
    const QByteArray sql = ("INSERT INTO " + access().table +
                            " (data, name, type, datefile, user, address, file) values (?,?,?,?,?,?,?)")
                               .toUtf8();
    int i = 0;
    for (auto _ : state) {
        const StoredFile f = row(i++);
        QByteArray texts[6] = {f.data.toUtf8(),     f.name.toUtf8(), f.type.toUtf8(),
                               f.datefile.toUtf8(), f.user.toUtf8(), f.address.toUtf8()};
        MYSQL_STMT *st = mysql_stmt_init(raw.mysql);
        mysql_stmt_prepare(st, sql.constData(), static_cast<unsigned long>(sql.size()));
        MYSQL_BIND bind[7];
        std::memset(bind, 0, sizeof bind);
        unsigned long lengths[7];
        for (int c = 0; c < 6; ++c) {
            bind[c].buffer_type = MYSQL_TYPE_STRING;
            bind[c].buffer = texts[c].data();
            lengths[c] = static_cast<unsigned long>(texts[c].size());
            bind[c].length = &lengths[c];
        }
        bind[6].buffer_type = MYSQL_TYPE_BLOB;
        bind[6].buffer = const_cast<char *>(bytes().constData());
        lengths[6] = static_cast<unsigned long>(kSize);
        bind[6].length = &lengths[6];
        mysql_stmt_bind_param(st, bind);
        if (mysql_stmt_execute(st) != 0) {
            state.SkipWithError(mysql_stmt_error(st));
            mysql_stmt_close(st);
            return;
        }
        mysql_stmt_close(st);
        state.PauseTiming();
        raw.exec("DELETE FROM " + access().table);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * kSize);
}

void BM_StoreDownload(benchmark::State &state) {
    if (!ready(state))
        return;
    DocumentStore store;
    StoredFile f = row(0);
    if (!store.open(access()) || !store.removeAll() || !store.insert(&f, bytes())) {
        state.SkipWithError("no file to fetch");
        return;
    }
    for (auto _ : state) {
        StoredFile back;
        QByteArray got;
        TransferControl control;
        if (!store.fetch(f.name, f.data, &back, &got, &control) || got.size() != kSize) {
            state.SkipWithError("fetch failed");
            return;
        }
        benchmark::DoNotOptimize(got.constData());
    }
    state.SetBytesProcessed(state.iterations() * kSize);
}

void BM_RawDownload(benchmark::State &state) {
    if (!ready(state))
        return;
    Raw raw;
    const QByteArray sql = ("SELECT file FROM " + access().table + " WHERE name=?").toUtf8();
    QByteArray name = row(0).name.toUtf8();
    QByteArray buffer(kSize + 1, Qt::Uninitialized);
    for (auto _ : state) {
        MYSQL_STMT *st = mysql_stmt_init(raw.mysql);
        if (mysql_stmt_prepare(st, sql.constData(), static_cast<unsigned long>(sql.size())) != 0) {
            state.SkipWithError(mysql_stmt_error(st));
            mysql_stmt_close(st);
            return;
        }
        MYSQL_BIND param;
        std::memset(&param, 0, sizeof param);
        unsigned long nameLength = static_cast<unsigned long>(name.size());
        param.buffer_type = MYSQL_TYPE_STRING;
        param.buffer = name.data();
        param.length = &nameLength;
        mysql_stmt_bind_param(st, &param);
        if (mysql_stmt_execute(st) != 0) {
            state.SkipWithError(mysql_stmt_error(st));
            mysql_stmt_close(st);
            return;
        }
        MYSQL_BIND result;
        std::memset(&result, 0, sizeof result);
        unsigned long length = 0;
        result.buffer_type = MYSQL_TYPE_BLOB;
        result.buffer = buffer.data();
        result.buffer_length = static_cast<unsigned long>(buffer.size());
        result.length = &length;
        mysql_stmt_bind_result(st, &result);
        if (mysql_stmt_store_result(st) != 0) {
            state.SkipWithError(mysql_stmt_error(st));
            mysql_stmt_close(st);
            return;
        }
        const int rc = mysql_stmt_fetch(st);
        if (rc != 0 || length != kSize) {
            state.SkipWithError(("raw fetch failed: " + std::to_string(rc) + " " + mysql_stmt_error(st) +
                                 " " + std::to_string(length))
                                    .c_str());
            mysql_stmt_close(st);
            return;
        }
        mysql_stmt_close(st);
        benchmark::DoNotOptimize(buffer.constData());
    }
    state.SetBytesProcessed(state.iterations() * kSize);
}

} // namespace

BENCHMARK(BM_StoreUpload)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RawUpload)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_StoreDownload)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RawDownload)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (!qEnvironmentVariableIsEmpty("VIRN_TEST_MYSQL_HOST"))
        Raw().exec("DROP TABLE IF EXISTS " + access().table);
    return 0;
}
