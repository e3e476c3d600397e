// The user's own databases brought back from the server: a sound copy replaces the local people or
// cash database through the backup API while the program's connection is closed and opened again; a
// broken file, a file of another kind and one that does not open are refused and the local database
// stays as it was. The question about a newer local copy follows the file times.

#include "TestFolder.h"
#include "server/DatabaseRestore.h"
#include "server/StoredFile.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QVariant>
#include <gtest/gtest.h>
#include <memory>

namespace {

int count(QSqlDatabase db, const QString &sql) {
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toInt() : -1;
}

bool exec(QSqlDatabase db, const QString &sql) {
    QSqlQuery q(db);
    return q.exec(sql);
}

// Runs sqlite3 on a file (to make files the program did not write).
bool sqlite(const QString &file, const QString &sql) {
    QProcess p;
    p.start(QStringLiteral("sqlite3"), {QStringLiteral("-bail"), file, sql});
    return p.waitForFinished(30000) && p.exitCode() == 0;
}

class DatabaseRestoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        QDir(local.path()).mkpath("Sp");
        QDir(other.path()).mkpath("Sp");
        module = std::make_unique<TModuleSQL>(local.path());
        elsewhere = std::make_unique<TModuleSQL>(other.path());
        ASSERT_TRUE(exec(module->database(Db::People), "INSERT INTO Customer (fio) VALUES ('Местный')"));
        ASSERT_TRUE(exec(module->database(Db::Cash), "INSERT INTO cash (incoming) VALUES ('100')"));
    }
    // The database as another computer has it, copied out as the server would keep it.
    QString fromElsewhere(Db db, const QString &row) {
        const QString table = db == Db::People ? "Customer (fio)" : "cash (note)";
        EXPECT_TRUE(exec(elsewhere->database(db), "INSERT INTO " + table + " VALUES ('" + row + "')"));
        const QString copy = other.file(db == Db::People ? "peoplebase.db" : "cashbase.db");
        EXPECT_EQ(SqliteSnapshot::saveTo(elsewhere->database(db), copy), QString());
        return copy;
    }

    TestFolder local;
    TestFolder other;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<TModuleSQL> elsewhere;
};

} // namespace

TEST_F(DatabaseRestoreTest, BothDatabasesAreRestoredAndTheirConnectionsOpenAgain) {
    for (Db db : {Db::People, Db::Cash}) {
        const QString copy = fromElsewhere(db, "С другого компьютера");
        // A reader of the local file keeps working across the restore.
        EXPECT_EQ(DatabaseRestore::restore(*module, db, copy), QString());
        EXPECT_TRUE(module->isOpen(db));
        const QSqlDatabase con = module->database(db);
        if (db == Db::People) {
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM Customer WHERE fio='С другого компьютера'"), 1);
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM Customer WHERE fio='Местный'"), 0);
            EXPECT_TRUE(exec(con, "SELECT fax FROM customer WHERE 1"));
        } else {
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM cash WHERE note='С другого компьютера'"), 1);
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM cash WHERE incoming='100'"), 0);
        }
        // Still a file the program shares in write-ahead-log mode.
        QSqlQuery mode(con);
        ASSERT_TRUE(mode.exec("PRAGMA journal_mode") && mode.next());
        EXPECT_EQ(mode.value(0).toString(), "wal");
    }
    // No copy of the old files is left in Sp.
    EXPECT_TRUE(QDir(local.file("Sp")).entryList({".restore-*"}, QDir::AllEntries | QDir::Hidden).isEmpty());
}

TEST_F(DatabaseRestoreTest, OlderAndOddFilesAreBroughtUpToDate) {
    // A people database of an older program: no apartment column, a page size of its own.
    const QString old = other.file("old.db");
    ASSERT_TRUE(sqlite(old,
                       "PRAGMA page_size=1024; CREATE TABLE Customer (_id INTEGER PRIMARY KEY, fio TEXT, "
                       "fax TEXT); INSERT INTO Customer (fio) VALUES ('Старый');"));
    EXPECT_EQ(DatabaseRestore::restore(*module, Db::People, old), QString());
    const QSqlDatabase con = module->database(Db::People);
    EXPECT_EQ(count(con, "SELECT COUNT(*) FROM Customer WHERE fio='Старый'"), 1);
    EXPECT_TRUE(exec(con, "SELECT numroom FROM Customer"));
    EXPECT_EQ(count(con, "SELECT COUNT(*) FROM LastDoc"), 0);
}

TEST_F(DatabaseRestoreTest, BrokenForeignAndUnopenableFilesAreRefusedAndTheLocalOneKept) {
    struct Case {
        const char *what;
        Db db;
        std::function<QString()> make;
        QString reason;
    };
    const QList<Case> cases = {
        {"not a database", Db::People,
         [&] {
             const QString f = other.file("text.db");
             QFile file(f);
             file.open(QIODevice::WriteOnly);
             file.write(QByteArray(8192, 'x'));
             return f;
         },
         "не является исправной базой данных"},
        {"cut off half-way", Db::Cash,
         [&] {
             const QString whole = fromElsewhere(Db::Cash, "целый");
             QFile file(whole);
             file.open(QIODevice::ReadWrite);
             file.resize(file.size() / 2);
             return whole;
         },
         "не является исправной базой данных"},
        {"another kind of database", Db::Cash,
         [&] {
             const QString f = other.file("price.db");
             sqlite(f, "CREATE TABLE price (id INTEGER);");
             return f;
         },
         "нет таблицы «cash»"},
        {"customers without the columns the program reads", Db::People,
         [&] {
             const QString f = other.file("odd.db");
             sqlite(f, "CREATE VIEW Customer AS SELECT 1 AS fio; CREATE TABLE customerx (a);");
             return f;
         },
         "нет таблицы"},
        {"a trigger that would run inside the program's own writes", Db::Cash,
         [&] {
             const QString f = fromElsewhere(Db::Cash, "с триггером");
             sqlite(f, "CREATE TRIGGER wipe AFTER INSERT ON cash BEGIN DELETE FROM cash; END;");
             return f;
         },
         "чужой триггер или представление «wipe»"},
        {"a table that cannot take its columns", Db::People,
         [&] {
             // Customer is there, but as a table whose columns the upgrade cannot add (a virtual table).
             const QString f = other.file("virtual.db");
             sqlite(f, "CREATE VIRTUAL TABLE Customer USING fts4(fio);");
             return f;
         },
         "Прежняя база возвращена на место"},
    };
    for (const Case &c : cases) {
        const QString file = c.make();
        const QString error = DatabaseRestore::restore(*module, c.db, file);
        EXPECT_TRUE(error.contains(c.reason)) << c.what << ": " << error.toStdString();
        const QSqlDatabase con = module->database(c.db);
        EXPECT_TRUE(con.isOpen()) << c.what;
        if (c.db == Db::People)
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM Customer WHERE fio='Местный'"), 1) << c.what;
        else
            EXPECT_EQ(count(con, "SELECT COUNT(*) FROM cash WHERE incoming='100'"), 1) << c.what;
    }
}

TEST_F(DatabaseRestoreTest, QuestionFollowsTheTimesOfTheLocalCopyAndTheRow) {
    const QDateTime localTime = DatabaseRestore::localTime(*module, Db::People);
    ASSERT_TRUE(localTime.isValid());
    const QList<QPair<QString, bool>> cases = {
        {StoredFiles::timeText(localTime.addSecs(-3600)), true},
        {StoredFiles::timeText(localTime.addSecs(3600)), false},
        {QStringLiteral("вчера"), true}, // a time that cannot be read: the user decides
    };
    for (const auto &c : cases)
        EXPECT_EQ(DatabaseRestore::localIsNewer(*module, Db::People, c.first), c.second)
            << c.first.toStdString();
    EXPECT_EQ(DatabaseRestore::newerQuestion("cashbase.db"),
              "Файл cashbase.db имеет более позднюю версию. Заменить его на старый файл?");
    Db db;
    EXPECT_TRUE(DatabaseRestore::databaseOf("PeopleBase.db", &db));
    EXPECT_EQ(db, Db::People);
    EXPECT_FALSE(DatabaseRestore::databaseOf("price.db", &db));
}
