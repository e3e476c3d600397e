// The mobile companion's copy carried into the book: new records appended, records of the same key
// updated, receipt lines following them, a desktop record of the same key but another customer kept,
// a second merge adding nothing; damaged and foreign files change nothing.

#include "CashTestBook.h"
#include "SqlRows.h"
#include "cashbook/CashColumns.h"
#include "storage/SqliteSnapshot.h"

#include <QFile>

namespace {

constexpr int kIncoming = CashCol::FirstAmount, kMaterial = CashCol::FirstAmount + 2;

class MobileMergeTest : public ::testing::Test {
protected:
    void SetUp() override {
        t.addCustomer("Иванов", {"Дача"});
        t.addCustomer("Петров", {"Гараж"});
        t.choose("Иванов", "Дача");
        t.add("01.06.2024", {{kIncoming, "100"}});
        t.add("02.06.2024", {{kMaterial, "200"}});
        // The companion got the book as it was then.
        ASSERT_EQ(SqliteSnapshot::saveTo(t.module->database(Db::Cash), mobile), QString());
    }
    QStringList rows(const QString &sql) { return queryRows(t.module->database(Db::Cash), sql); }
    void onMobile(const QStringList &statements) {
        DatabaseFile f(mobile);
        for (const QString &s : statements)
            ASSERT_TRUE(QSqlQuery(f.db()).exec(s)) << s.toStdString();
    }
    CashTestBook t;
    QString mobile = t.folder.file("Sp/cashbasemobail.db");
};

} // namespace

TEST_F(MobileMergeTest, NewAndChangedRecordsWithTheirReceipts) {
    onMobile(
        {"UPDATE cash SET material='250', note='чек потерян' WHERE _id=2",
         "INSERT INTO cash (_id, date, transport, customer, object, month, year, date_compare, cheki) "
         "values (3, '03.06.2024', '75', 'Иванов', 'Дача', '6', '2024', '20240603', '3')",
         "INSERT INTO checks (date, name, sum, val) values ('03.06.2024', 'Такси', '75', '3')",
         // Recorded on the phone in an older companion without date forms.
         "INSERT INTO cash (_id, date, incoming, customer, object) values (4, '04.07.2024', '40', 'Иванов', "
         "'Дача')"});
    // Meanwhile the desktop wrote its own third record.
    t.choose("Петров", "Гараж");
    t.add("05.06.2024", {{kIncoming, "999"}});

    const MobileMerge::Result r = t.book->mergeMobile(mobile);
    ASSERT_TRUE(r.ok) << r.error.toStdString();
    EXPECT_EQ(r.appended, 2);
    EXPECT_EQ(r.updated, 1);
    EXPECT_EQ(r.lines, 1);
    EXPECT_EQ(
        rows("SELECT _id, date, incoming, material, transport, note, customer, month, date_compare, cheki "
             "FROM cash ORDER BY _id"),
        QStringList({"1|01.06.2024|100||||Иванов|6|20240601|",
                     "2|02.06.2024||250||чек потерян|Иванов|6|20240602|",
                     "3|05.06.2024|999||||Петров|6|20240605|", "4|03.06.2024|||75||Иванов|6|20240603|4",
                     "5|04.07.2024|40||||Иванов|7|20240704|"}));
    EXPECT_EQ(rows("SELECT name, sum, val FROM checks"), QStringList{"Такси|75|4"});

    // The same copy once more: nothing new.
    const MobileMerge::Result again = t.book->mergeMobile(mobile);
    ASSERT_TRUE(again.ok);
    EXPECT_EQ(again.appended + again.updated + again.lines, 0);
    EXPECT_EQ(rows("SELECT count(*) FROM cash"), QStringList{"5"});
    EXPECT_EQ(rows("SELECT count(*) FROM checks"), QStringList{"1"});
}

TEST_F(MobileMergeTest, DamagedOrForeignFilesChangeNothing) {
    const QStringList before = rows("SELECT * FROM cash ORDER BY _id");
    QFile whole(mobile);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray good = whole.readAll();
    whole.close();
    struct Case {
        const char *what;
        QByteArray bytes;
    } cases[] = {
        {"not a database", "garbage"},
        {"cut short", good.left(good.size() / 2)},
        {"pages overwritten", good.left(1024) + QByteArray(good.size() - 1024, '\x5a')},
    };
    for (const Case &c : cases) {
        QFile f(mobile);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(c.bytes);
        f.close();
        const MobileMerge::Result r = t.book->mergeMobile(mobile);
        EXPECT_FALSE(r.ok) << c.what;
        EXPECT_TRUE(r.error.contains("Книга не изменена")) << r.error.toStdString();
        EXPECT_EQ(rows("SELECT * FROM cash ORDER BY _id"), before) << c.what;
    }
    // A sound database of something else.
    QFile::remove(mobile);
    {
        DatabaseFile f(mobile);
        ASSERT_TRUE(QSqlQuery(f.db()).exec("CREATE TABLE photos (id INTEGER, name TEXT)"));
    }
    const MobileMerge::Result foreign = t.book->mergeMobile(mobile);
    EXPECT_FALSE(foreign.ok);
    EXPECT_EQ(rows("SELECT * FROM cash ORDER BY _id"), before);
}
