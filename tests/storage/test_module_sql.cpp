// The data module: every database of the catalogue is created with its tables on first use.

#include "TestFolder.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

QStringList tablesOf(QSqlDatabase db) {
    QStringList names;
    QSqlQuery q(db);
    q.exec("SELECT name FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite_%' ORDER BY name");
    while (q.next())
        names << q.value(0).toString();
    return names;
}

TEST(ModuleSQL, OpensNothingUntilUsedThenCreatesEveryTable) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    for (Db db : kAllDatabases)
        EXPECT_FALSE(QFile::exists(module.filePath(db)));
    for (Db db : kAllDatabases) {
        QStringList expected = tableNames(db);
        expected.sort();
        EXPECT_EQ(tablesOf(module.database(db)), expected) << relativePath(db).toStdString();
    }
    // The working database has exactly the eighteen document tables.
    EXPECT_EQ(tableNames(Db::Smeta).size(), 18);
    EXPECT_EQ(tableNames(Db::MyDoc), (QStringList{"documents", "drafts", "contract", "account", "act"}));
}

TEST(ModuleSQL, AnOlderWorkingDatabaseGainsItsMissingTables) {
    ensureApplication();
    TestFolder folder;
    QDir(folder.path()).mkpath("Sp");
    {
        QSqlDatabase old = QSqlDatabase::addDatabase("QSQLITE", "old-doc");
        old.setDatabaseName(folder.file("Sp/smeta.db"));
        ASSERT_TRUE(old.open());
        QSqlQuery q(old);
        ASSERT_TRUE(
            q.exec("CREATE TABLE smeta (_id INTEGER PRIMARY KEY AUTOINCREMENT, numpos TEXT, nameras TEXT)"));
        ASSERT_TRUE(q.exec("INSERT INTO smeta (nameras) VALUES ('Старая работа')"));
        old.close();
    }
    QSqlDatabase::removeDatabase("old-doc");
    TModuleSQL module(folder.path());
    QSqlDatabase db = module.database(Db::Smeta);
    EXPECT_EQ(tablesOf(db).size(), tableNames(Db::Smeta).size());
    QSqlQuery q(db);
    ASSERT_TRUE(q.exec("SELECT nameras FROM smeta"));
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), QStringLiteral("Старая работа"));
}

TEST(ModuleSQL, AFileThatIsNotADatabaseIsReportedOnceAndTheRestWorks) {
    ensureApplication();
    TestFolder folder;
    QDir(folder.path()).mkpath("Sp");
    QFile junk(folder.file("Sp/price.db"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, 'x'));
    junk.close();

    TModuleSQL module(folder.path());
    QStringList reports;
    module.setFailureHandler([&](Db, const QString &text) { reports << text; });
    EXPECT_FALSE(module.database(Db::Price).isOpen());
    EXPECT_FALSE(module.database(Db::Price).isOpen());
    ASSERT_EQ(reports.size(), 1);
    EXPECT_TRUE(reports.first().contains(QDir::toNativeSeparators(folder.file("Sp/price.db"))));
    EXPECT_TRUE(module.failed(Db::Price));
    EXPECT_TRUE(module.database(Db::Cash).isOpen());
    // Replacing the file and reconnecting recovers.
    QFile::remove(folder.file("Sp/price.db"));
    EXPECT_TRUE(module.reconnect(Db::Price).isOpen());
    EXPECT_FALSE(module.failed(Db::Price));
}

// The working estimate is scratch: a damaged one (a power cut while it was written without waiting for
// the disk) is made anew, with every table, and nobody is told of a failure.
TEST(ModuleSQL, ADamagedWorkingEstimateIsMadeAnew) {
    ensureApplication();
    TestFolder folder;
    QDir(folder.path()).mkpath("Sp");
    QFile junk(folder.file("Sp/smeta.db"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, 'x'));
    junk.close();
    TModuleSQL module(folder.path());
    QStringList reports;
    module.setFailureHandler([&](Db, const QString &text) { reports << text; });
    QSqlDatabase smeta = module.database(Db::Smeta);
    ASSERT_TRUE(smeta.isOpen());
    EXPECT_TRUE(reports.isEmpty());
    EXPECT_FALSE(module.failed(Db::Smeta));
    QSqlQuery q(smeta);
    EXPECT_TRUE(q.exec("SELECT count(*) FROM smeta") && q.next() && q.value(0).toInt() == 0);
    // The commits of the files kept for one session do not wait for the disk (0 = OFF), and what they
    // delete is overwritten; the other files' commits wait.
    for (Db db : kAllDatabases) {
        QSqlQuery p(module.database(db));
        ASSERT_TRUE(p.exec("PRAGMA synchronous") && p.next());
        EXPECT_EQ(p.value(0).toInt() == 0, isScratch(db)) << relativePath(db).toStdString();
        ASSERT_TRUE(p.exec("PRAGMA secure_delete") && p.next());
        if (isScratch(db)) {
            EXPECT_EQ(p.value(0).toInt(), 1) << relativePath(db).toStdString();
        }
    }
}

TEST(ModuleSQL, TwoModulesKeepTheirOwnConnections) {
    ensureApplication();
    TestFolder a, b;
    TModuleSQL ma(a.path()), mb(b.path());
    QSqlQuery(ma.database(Db::People)).exec("INSERT INTO LastDoc (value) VALUES ('a')");
    QSqlQuery q(mb.database(Db::People));
    q.exec("SELECT COUNT(*) FROM LastDoc");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), 0);
}

} // namespace
