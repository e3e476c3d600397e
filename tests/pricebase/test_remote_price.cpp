// The remote price list against a real MariaDB (started by scripts/services/mariadb.sh; `make test`
// sets VIRN_TEST_MYSQL_*).

#include "PriceTestData.h"
#include "pricebase/PriceBase.h"
#include "pricebase/RemotePriceList.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class RemotePrice : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        const std::optional<ServerSettings> server = testServer();
        if (!server)
            GTEST_SKIP()
                << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
        settings = *server;
        // A table of its own per test, so that tests may run side by side.
        settings.table = QStringLiteral("price_t%1_%2")
                             .arg(QCoreApplication::applicationPid())
                             .arg(::testing::UnitTest::GetInstance()->current_test_info()->line());
    }
    void TearDown() override {
        if (!settings.host.isEmpty())
            dropServerTable(settings);
    }
    ServerSettings settings;
};

TEST_F(RemotePrice, ConnectionErrorsCarryTheServersReasonAndKeepLocalLists) {
    PriceFixture f;
    f.addRates("price1", {{"1", "Отделка", "", "", "1"}, {"1-1", "Грунтовка", "м2", "50", "2"}});
    PriceBase base(f.module.get());
    ASSERT_TRUE(base.read());
    struct Case {
        QString what;
        ServerSettings s;
        QString reasonPart;
    };
    ServerSettings wrongPassword = settings, wrongTable = settings, noServer = settings, wrongDb = settings;
    wrongPassword.password = "не тот";
    wrongTable.table = "price-list; DROP";
    noServer.port = 1;
    wrongDb.database = "nobody_db";
    const Case cases[] = {
        {"password", wrongPassword, "Access denied"},
        {"table name", wrongTable, "латинские буквы"},
        {"no server", noServer, "connect"},
        {"database", wrongDb, "nobody_db"},
    };
    for (const Case &c : cases) {
        QString error;
        EXPECT_FALSE(base.connectServer(c.s, &error)) << c.what.toStdString();
        EXPECT_TRUE(error.contains(c.reasonPart, Qt::CaseInsensitive))
            << c.what.toStdString() << ": " << error.toStdString();
        EXPECT_FALSE(base.serverConnected());
    }
    EXPECT_EQ(base.model().cell(2, PriceCol::Name), QStringLiteral("Грунтовка"));
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM price1"), "2");
}

TEST_F(RemotePrice, WriteReadAndNavigateTheRemoteList) {
    PriceFixture f;
    PriceBase base(f.module.get());
    QString error;
    ASSERT_TRUE(base.connectServer(settings, &error)) << error.toStdString();
    base.setTab(PriceTab::Server);
    EXPECT_EQ(base.table(), settings.table);
    EXPECT_EQ(base.resourcesTable(), QStringLiteral("resurs_s"));
    ASSERT_TRUE(base.read(&error)) << error.toStdString(); // the new table is empty
    EXPECT_EQ(base.model().visibleCount(), 0);

    const std::vector<RateRow> rows = {
        rate("1", "Раздел \"Стены\"", "", "", "1"),
        rate("1-1", "Ниши", "пв", "", "2"),
        rate("1-1-1", "O'Brien \\ слэш", "м2", "1 250.50", "3"),
        rate("1-2", "Штукатурка", "м2", "400", "4"),
        rate("10", "Кровля", "", "", "5"),
        rate("10-1", "Профнастил", "м2", "700", "6"),
    };
    base.model().setRows(rows);
    ASSERT_TRUE(base.write(&error)) << error.toStdString();
    ASSERT_EQ(base.model().visibleCount(), 6);
    for (int r = 1; r <= 6; ++r)
        for (int c : {PriceCol::Ras, PriceCol::Name, PriceCol::Unit, PriceCol::Price, PriceCol::Rec})
            EXPECT_EQ(base.model().cell(r, c), rows[r - 1][c]) << r << "/" << c;
    ASSERT_EQ(base.sections().size(), 2u);
    EXPECT_EQ(base.sections()[0].subsections.at(0).text, QStringLiteral("1-1 Ниши"));
    EXPECT_EQ(base.liveSearch().find("o'brien \\").size(), 1u);

    // Section 1 by "Rascenka LIKE '1-%'": not section 10, and the tree stays.
    ASSERT_TRUE(base.showSection(1, &error)) << error.toStdString();
    EXPECT_EQ(base.model().visibleCount(), 3);
    EXPECT_EQ(base.sections().size(), 2u);
    EXPECT_EQ(base.liveSearch().size(), 6);
    // A filtered list is never written over the whole server list.
    EXPECT_FALSE(base.write(&error));
    ASSERT_TRUE(base.showSubsection("1-1", &error));
    EXPECT_EQ(base.model().visibleCount(), 1);
    EXPECT_EQ(base.model().cell(1, PriceCol::Ras), QStringLiteral("1-1-1"));
    ASSERT_TRUE(base.showSection(0, &error));
    EXPECT_EQ(base.model().visibleCount(), 6);

    RateRow found;
    ASSERT_TRUE(base.findRate("Штукатурка", found, &error)) << error.toStdString();
    EXPECT_EQ(found[PriceCol::Price], QStringLiteral("400"));
    EXPECT_EQ(found[PriceCol::Rec], QStringLiteral("4"));

    base.disconnectServer();
    EXPECT_FALSE(base.serverConnected());
}

TEST_F(RemotePrice, TooLongTextStopsTheWriteBeforeAnythingIsDropped) {
    PriceFixture f;
    PriceBase base(f.module.get());
    ASSERT_TRUE(base.connectServer(settings));
    base.setTab(PriceTab::Server);
    base.model().setRows({rate("1", "Раздел", "", "", "1"), rate("1-1", "Короткая", "м2", "10", "2")});
    ASSERT_TRUE(base.write());
    base.model().setRows(
        {rate("1", "Раздел", "", "", "1"), rate("1-1", QString(200, QChar(0x0416)), "м2", "1", "2")});
    QString error;
    EXPECT_FALSE(base.write(&error));
    EXPECT_TRUE(error.contains("255")) << error.toStdString();
    ASSERT_TRUE(base.read());
    EXPECT_EQ(base.model().cell(2, PriceCol::Name), QStringLiteral("Короткая"));
}

} // namespace
