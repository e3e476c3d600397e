// The transaction guard: what is kept after commits, rollbacks and scope ends, alone and nested, and
// that it holds the write lock from the start.

#include "QStringPrinter.h"
#include "TestFolder.h"
#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <functional>
#include <gtest/gtest.h>

namespace {

class TransactionTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        QSqlDatabase d = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("guard"));
        d.setDatabaseName(folder.file("guard.db"));
        ASSERT_TRUE(d.open());
        ASSERT_TRUE(QSqlQuery(d).exec("CREATE TABLE t (v TEXT)"));
    }
    void TearDown() override {
        QSqlDatabase::database(QStringLiteral("guard"), false).close();
        QSqlDatabase::removeDatabase(QStringLiteral("guard"));
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
    }
    static QSqlDatabase db() { return QSqlDatabase::database(QStringLiteral("guard"), false); }
    static void put(const char *v) {
        QSqlQuery q(db());
        ASSERT_TRUE(q.exec(QStringLiteral("INSERT INTO t VALUES ('%1')").arg(QLatin1String(v))))
            << q.lastError().text().toStdString();
    }
    static QString kept() {
        QStringList out;
        QSqlQuery q(db());
        q.exec("SELECT v FROM t ORDER BY rowid");
        while (q.next())
            out << q.value(0).toString();
        return out.join(',');
    }
    TestFolder folder;
};

TEST_F(TransactionTest, KeepsExactlyWhatWasCommitted) {
    struct Case {
        const char *what;
        std::function<void()> body;
        const char *kept;
    };
    const std::vector<Case> cases = {
        {"commit keeps",
         [] {
             Transaction t(db());
             EXPECT_TRUE(t.active());
             EXPECT_FALSE(t.nested());
             put("a");
             EXPECT_TRUE(t.commit());
             EXPECT_FALSE(t.active());
         },
         "a"},
        {"the end of the scope rolls back",
         [] {
             Transaction t(db());
             put("a");
         },
         ""},
        {"an explicit rollback, and no commit after it",
         [] {
             Transaction t(db());
             put("a");
             t.rollback();
             EXPECT_FALSE(t.commit());
             put("b"); // outside any transaction now
         },
         "b"},
        {"an inner commit inside an outer rollback keeps nothing",
         [] {
             Transaction outer(db());
             put("a");
             {
                 Transaction inner(db());
                 EXPECT_TRUE(inner.nested());
                 put("b");
                 EXPECT_TRUE(inner.commit());
             }
         },
         ""},
        {"an inner rollback inside an outer commit undoes only the inner work",
         [] {
             Transaction outer(db());
             put("a");
             {
                 Transaction inner(db());
                 put("b");
             }
             put("c");
             EXPECT_TRUE(outer.commit());
         },
         "a,c"},
        {"two levels of commits",
         [] {
             Transaction outer(db());
             put("a");
             {
                 Transaction inner(db());
                 put("b");
                 {
                     Transaction innermost(db());
                     put("c");
                     EXPECT_TRUE(innermost.commit());
                 }
                 EXPECT_TRUE(inner.commit());
             }
             EXPECT_TRUE(outer.commit());
         },
         "a,b,c"},
        {"a guard inside a transaction begun by hand is part of it",
         [] {
             QSqlQuery(db()).exec("BEGIN");
             {
                 Transaction t(db());
                 EXPECT_TRUE(t.nested());
                 put("a");
                 EXPECT_TRUE(t.commit());
             }
             QSqlQuery(db()).exec("ROLLBACK");
         },
         ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(QSqlQuery(db()).exec("DELETE FROM t"));
        c.body();
        EXPECT_EQ(kept(), QString::fromUtf8(c.kept));
        // Whatever happened, the connection is out of any transaction again.
        Transaction after(db());
        EXPECT_FALSE(after.nested());
    }
}

TEST_F(TransactionTest, AFailedCommitRollsBackAndSaysWhy) {
    QSqlQuery q(db());
    ASSERT_TRUE(q.exec("PRAGMA foreign_keys = ON"));
    ASSERT_TRUE(q.exec("CREATE TABLE parent (id INTEGER PRIMARY KEY)"));
    ASSERT_TRUE(q.exec("CREATE TABLE child (p INTEGER REFERENCES parent(id) DEFERRABLE INITIALLY DEFERRED)"));
    Transaction t(db());
    put("a");
    // Checked only at commit: a child without its parent.
    ASSERT_TRUE(q.exec("INSERT INTO child VALUES (7)"));
    EXPECT_FALSE(t.commit());
    EXPECT_TRUE(t.error().contains("FOREIGN KEY")) << t.error().toStdString();
    EXPECT_FALSE(t.active());
    EXPECT_EQ(kept(), "");
    Transaction after(db());
    EXPECT_TRUE(after.active());
    EXPECT_FALSE(after.nested());
}

TEST_F(TransactionTest, TakesTheWriteLockAtOnce) {
    QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
    other.setDatabaseName(folder.file("guard.db"));
    other.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
    ASSERT_TRUE(other.open());
    {
        Transaction t(db());
        // Nothing written yet, and still a second writer must wait.
        QSqlQuery q(other);
        EXPECT_FALSE(q.exec("BEGIN IMMEDIATE"));
        EXPECT_TRUE(q.lastError().text().contains("locked")) << q.lastError().text().toStdString();
    }
    QSqlQuery q(other);
    EXPECT_TRUE(q.exec("BEGIN IMMEDIATE"));
    EXPECT_TRUE(q.exec("ROLLBACK"));
    other.close();
}

TEST_F(TransactionTest, AClosedDatabaseGivesAnInactiveGuard) {
    db().close();
    Transaction t(db());
    EXPECT_FALSE(t.active());
    EXPECT_FALSE(t.error().isEmpty());
    EXPECT_FALSE(t.commit());
}

} // namespace
