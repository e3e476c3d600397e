// The exchange with the mobile companion against the real file server: the book's snapshot goes up,
// the companion's book comes down as cashbasemobail.db and is merged; a missing book, a refused key, a
// damaged file and a server that stalls end with their messages and leave every local file as it was.

#include <QUrl>

#include "../server/SilentServer.h"
#include "CashTestBook.h"
#include "FileServerProcess.h"
#include "SqlRows.h"
#include "cashbook/CashColumns.h"
#include "cashbook/MobileExchange.h"
#include "fileserver/Protocol.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>

namespace {

constexpr int kIncoming = CashCol::FirstAmount;

QByteArray fileBytes(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class MobileExchangeTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        client.setServer(server.url(), server.key());
        t.addCustomer("Иванов", {"Дача"});
        t.choose("Иванов", "Дача");
        t.add("01.06.2024", {{kIncoming, "100"}});
        t.add("02.06.2024", {{kIncoming, "200"}});
    }
    // Runs one direction and gives its outcome and detail.
    std::pair<MobileExchange::Outcome, QString> fetch(MobileExchange &e) {
        QSignalSpy spy(&e, &MobileExchange::fetched);
        e.fetch(t.book->mobilePath());
        EXPECT_TRUE(spy.count() > 0 || spy.wait(20000));
        return {spy.at(0).at(0).value<MobileExchange::Outcome>(), spy.at(0).at(1).toString()};
    }
    std::pair<MobileExchange::Outcome, QString> upload(MobileExchange &e) {
        QSignalSpy spy(&e, &MobileExchange::uploaded);
        e.upload(t.book->book(), t.folder.file("Temp/upload"));
        EXPECT_TRUE(spy.count() > 0 || spy.wait(20000));
        return {spy.at(0).at(0).value<MobileExchange::Outcome>(), spy.at(0).at(1).toString()};
    }
    QStringList cash() { return queryRows(t.module->database(Db::Cash), "SELECT * FROM cash ORDER BY _id"); }
    QString serverBook() const { return "base_virn_s/test_key/cashbase.db"; }

    FileServerProcess server;
    RemoteClient client;
    CashTestBook t;
};

} // namespace

TEST_F(MobileExchangeTest, TheBookGoesUpAndTheCompanionsBookComesBackMerged) {
    MobileExchange exchange(&client);
    // Nothing on the server yet.
    EXPECT_EQ(fetch(exchange).first, MobileExchange::Outcome::Missing);
    EXPECT_FALSE(QFile::exists(t.book->mobilePath()));

    ASSERT_EQ(upload(exchange).first, MobileExchange::Outcome::Done);
    // The server holds a sound copy with the book's records (a snapshot, not the live file).
    const QString copy = t.folder.file("from-server.db");
    {
        QFile f(copy);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(server.read(serverBook()));
    }
    {
        DatabaseFile f(copy);
        EXPECT_EQ(f.rows("SELECT * FROM cash ORDER BY _id"), cash());
        EXPECT_EQ(f.rows("PRAGMA journal_mode"), QStringList{"delete"});
    }

    // The companion adds a record; the computer fetches and merges it.
    {
        DatabaseFile f(copy);
        ASSERT_TRUE(QSqlQuery(f.db()).exec("INSERT INTO cash (date, incoming, customer, object, month, year, "
                                           "date_compare) values ('03.06.2024', '50', 'Иванов', 'Дача', '6', "
                                           "'2024', '20240603')"));
    }
    server.put(serverBook(), fileBytes(copy));
    ASSERT_EQ(fetch(exchange).first, MobileExchange::Outcome::Done);
    EXPECT_EQ(fileBytes(t.book->mobilePath()).size(), fileBytes(copy).size());
    const MobileMerge::Result merged = t.book->mergeMobile(t.book->mobilePath());
    ASSERT_TRUE(merged.ok) << merged.error.toStdString();
    EXPECT_EQ(merged.appended, 1);
    EXPECT_EQ(t.book->totals().cells().at(0), "350,00");
    // No temporary file is left beside the book.
    EXPECT_EQ(QDir(t.folder.file("Sp")).entryList({".cashbasemobail*"}, QDir::Files | QDir::Hidden),
              QStringList());
}

TEST_F(MobileExchangeTest, ADamagedCompanionBookIsNotSaved) {
    MobileExchange exchange(&client);
    // A good copy from an earlier exchange.
    ASSERT_EQ(upload(exchange).first, MobileExchange::Outcome::Done);
    ASSERT_EQ(fetch(exchange).first, MobileExchange::Outcome::Done);
    const QByteArray earlier = fileBytes(t.book->mobilePath());
    ASSERT_FALSE(earlier.isEmpty());

    server.put(serverBook(), QByteArray("SQLite format 3") + QByteArray(5000, '\x01'));
    const auto [outcome, detail] = fetch(exchange);
    EXPECT_EQ(outcome, MobileExchange::Outcome::Failed);
    EXPECT_TRUE(detail.contains("повреждена")) << detail.toStdString();
    EXPECT_EQ(fileBytes(t.book->mobilePath()), earlier);
}

TEST_F(MobileExchangeTest, RefusedKeyAndMissingServer) {
    const QStringList before = cash();
    RemoteClient stranger;
    stranger.setServer(server.url(), "nobody");
    MobileExchange refused(&stranger);
    EXPECT_EQ(fetch(refused).first, MobileExchange::Outcome::Missing);
    EXPECT_EQ(upload(refused).first, MobileExchange::Outcome::Refused);
    EXPECT_FALSE(QFile::exists(server.file(serverBook())));
    EXPECT_FALSE(QFile::exists(server.file("base_virn_s/nobody/cashbase.db")));

    RemoteClient none;
    MobileExchange unconfigured(&none);
    const auto [outcome, detail] = fetch(unconfigured);
    EXPECT_EQ(outcome, MobileExchange::Outcome::NoServer);
    EXPECT_TRUE(detail.contains("Файловый сервер")) << detail.toStdString();
    EXPECT_EQ(cash(), before);
    EXPECT_FALSE(QFile::exists(t.book->mobilePath()));
}

TEST_F(MobileExchangeTest, AStalledServerEndsWithinTheLimits) {
    MisbehavingServer silent(MisbehavingServer::Kind::Silent);
    RemoteClient stalled;
    stalled.setServer(silent.url(), "test_key");
    MobileExchange exchange(&stalled);
    exchange.setLimits({400, 3000, 1 << 20});
    QElapsedTimer timer;
    timer.start();
    const auto [outcome, detail] = fetch(exchange);
    EXPECT_EQ(outcome, MobileExchange::Outcome::Failed);
    EXPECT_TRUE(detail.contains("не отвечает")) << detail.toStdString();
    const auto [up, why] = upload(exchange);
    EXPECT_EQ(up, MobileExchange::Outcome::Failed);
    EXPECT_LT(timer.elapsed(), 10000);
    EXPECT_FALSE(QFile::exists(t.book->mobilePath()));
    EXPECT_FALSE(exchange.busy());
}
