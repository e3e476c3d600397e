// Crash-safe copies of databases.

#include "TestFolder.h"
#include "storage/SqliteSnapshot.h"

#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

TEST(SqliteSnapshot, SavesAnOpenDatabaseAndRefusesJunk) {
    ensureApplication();
    TestFolder folder;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "snap-src");
        db.setDatabaseName(folder.file("src.db"));
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("CREATE TABLE t (v TEXT)"));
        ASSERT_TRUE(q.exec("INSERT INTO t VALUES ('один')"));
        EXPECT_EQ(SqliteSnapshot::saveTo(db, folder.file("copy.sim")), QString());
        db.close();
    }
    QSqlDatabase::removeDatabase("snap-src");
    EXPECT_EQ(SqliteSnapshot::check(folder.file("copy.sim")), QString());
    EXPECT_EQ(SqliteSnapshot::copyFile(folder.file("copy.sim"), folder.file("copy2.sim")), QString());
    EXPECT_EQ(SqliteSnapshot::check(folder.file("copy2.sim")), QString());

    QFile junk(folder.file("junk.sim"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a database at all, just text that is long enough to look like a header.......");
    junk.close();
    EXPECT_NE(SqliteSnapshot::check(folder.file("junk.sim")), QString());
    // Copying into a folder that does not exist fails with the target named, nothing written.
    const QString error = SqliteSnapshot::copyFile(folder.file("copy.sim"), folder.file("absent/x.sim"));
    EXPECT_TRUE(error.contains(QStringLiteral("x.sim"))) << error.toStdString();
}

} // namespace
