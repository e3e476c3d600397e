// Books of earlier versions: a book in the old layout is built here and opened; its records, receipts,
// customers and warehouse rows end where the current program keeps them, in one transaction per
// database, and an upgrade that fails leaves the book as it was. Files that are no database are refused.

#include "CashTestBook.h"
#include "SqlRows.h"
#include "cashbook/BookUpgrade.h"
#include "cashbook/CashColumns.h"

#include <QDir>
#include <QFile>

namespace {

// A book as an earlier version left it: the old cash layout, customers without region and fax, the
// warehouse and the receipts of the time.
void makeOldBook(const QString &path) {
    DatabaseFile f(path);
    for (const char *sql : {
             "CREATE TABLE cash (id INTEGER PRIMARY KEY AUTOINCREMENT, data TEXT, prihod TEXT, myzp TEXT, "
             "material TEXT, transport TEXT, workzp TEXT, prochee TEXT, note TEXT)",
             "INSERT INTO cash (id, data, prihod, myzp, material, transport, workzp, prochee, note) values "
             "(3, '05.01.2019', '1000', '200', '', '', '', '', 'аванс'), "
             "(7, '2019-03-15', '', '', '250.5', '40', '300', '9', 'цемент')",
             "CREATE TABLE Customer (_id INTEGER PRIMARY KEY AUTOINCREMENT, fio TEXT, email TEXT, phone "
             "TEXT, "
             "object TEXT, note TEXT, address TEXT)",
             "INSERT INTO Customer (fio, phone, address) values ('ООО `Ремонт`', '555-10', 'Тверь'), "
             "('Сидоров', '', '')",
             "CREATE TABLE Object (_id INTEGER PRIMARY KEY AUTOINCREMENT, object TEXT, fio TEXT, note TEXT)",
             "INSERT INTO Object (object, fio, note) values ('Склад `Север`', 'ООО `Ремонт`', 'ключи у "
             "охраны'), "
             "('Дача', 'Сидоров', '')",
             "CREATE TABLE storage (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, namemat TEXT, edizm "
             "TEXT, "
             "kolvo TEXT, price TEXT, summa TEXT, customer TEXT, object TEXT, month TEXT, year TEXT, "
             "date_compare TEXT, dataoffs DATE)",
             "INSERT INTO storage (data, namemat, edizm, kolvo, price, summa, customer, object, month, year, "
             "date_compare, dataoffs) values ('01.02.2019', 'Гипс', 'меш', '2', '300', '600', 'Сидоров', "
             "'Дача', "
             "'2', '2019', '20190205', '05.02.2019'), ('01.02.2019', 'Клей', 'шт', '5', '10', '50', '', '', "
             "'', "
             "'', '', '')",
             "CREATE TABLE Cheki (id INTEGER PRIMARY KEY AUTOINCREMENT, data TEXT, name TEXT, edizm TEXT, "
             "kolvo TEXT, price TEXT, sum TEXT, note TEXT)",
             // By the record's key in the note, by the one record of the date, and neither.
             "INSERT INTO Cheki (data, name, edizm, kolvo, price, sum, note) values "
             "('15.03.2019', 'Цемент', 'меш', '5', '50,1', '250,5', '7'), "
             "('05.01.2019', 'Перчатки', 'пар', '2', '50', '100', ''), "
             "('01.01.2000', 'Чек без записи', '', '', '', '1', '')",
         })
        ASSERT_TRUE(QSqlQuery(f.db()).exec(sql)) << sql;
}

class BookUpgradeTest : public ::testing::Test {
protected:
    void SetUp() override {
        QDir().mkpath(t.folder.file("old"));
        makeOldBook(oldBook);
    }
    BookUpgrade::Result upgrade() {
        return BookUpgrade::run(oldBook, BookUpgrade::programTargets(*t.module));
    }
    QStringList bookRows(const QString &sql) {
        DatabaseFile f(oldBook);
        return f.rows(sql);
    }
    QStringList rows(Db db, const QString &sql) { return queryRows(t.module->database(db), sql); }

    CashTestBook t;
    QString oldBook = t.folder.file("old/cashbase.db");
};

} // namespace

TEST_F(BookUpgradeTest, AnOldBookIsCarriedIntoTheCurrentLayout) {
    const BookUpgrade::Result r = upgrade();
    ASSERT_TRUE(r.ok) << r.error.toStdString();
    EXPECT_TRUE(r.upgraded);
    EXPECT_EQ(r.records, 2);
    EXPECT_EQ(r.receiptLines, 3);
    EXPECT_EQ(r.customers, 2);
    EXPECT_EQ(r.warehouseRows, 2);

    // The records under their keys, old columns mapped, date forms made, the ISO date made a short date.
    EXPECT_EQ(
        bookRows("SELECT _id, date, incoming, my_salary, material, transport, salary_workers, other, note, "
                 "month, year, date_compare, cheki FROM cash ORDER BY _id"),
        QStringList({"3|05.01.2019|1000|200|||||аванс|1|2019|20190105|3",
                     "7|15.03.2019|||250.5|40|300|9|цемент|3|2019|20190315|7"}));
    EXPECT_EQ(bookRows("SELECT date, name, sum, val FROM checks ORDER BY id"),
              QStringList({"15.03.2019|Цемент|250,5|7", "05.01.2019|Перчатки|100|3",
                           "01.01.2000|Чек без записи|1|"}));
    // What moved away left the book; the customers stay in it as its register.
    EXPECT_EQ(bookRows("SELECT name FROM sqlite_master WHERE type='table' AND lower(name) IN "
                       "('cheki', 'storage', 'cash_earlier_layout')"),
              QStringList());
    // Customers and objects in the people database, warehouse rows in listmat.db.
    EXPECT_EQ(rows(Db::People, "SELECT fio, phone, address FROM Customer ORDER BY _id"),
              QStringList({"ООО `Ремонт`|555-10|Тверь", "Сидоров||"}));
    EXPECT_EQ(rows(Db::People, "SELECT fio, object, note FROM Object ORDER BY _id"),
              QStringList({"ООО `Ремонт`|Склад `Север`|ключи у охраны", "Сидоров|Дача|"}));
    EXPECT_EQ(rows(Db::Mat, "SELECT namemat, summa, customer, date_compare FROM storage ORDER BY id"),
              QStringList({"Гипс|600|Сидоров|20190205", "Клей|50||"}));

    // A second open finds a current book and changes nothing.
    const BookUpgrade::Result again = upgrade();
    EXPECT_TRUE(again.ok);
    EXPECT_FALSE(again.upgraded);
    EXPECT_EQ(rows(Db::People, "SELECT count(*) FROM Customer"), QStringList{"2"});
}

TEST_F(BookUpgradeTest, TheCashBookOpensTheOldBookAndWorksOnIt) {
    const CashBook::Outcome o = t.book->openBook(oldBook, BookUpgrade::programTargets(*t.module));
    ASSERT_TRUE(o.ok) << o.text.toStdString();
    EXPECT_EQ(t.book->bookPath(), QFileInfo(oldBook).absoluteFilePath());
    EXPECT_EQ(t.book->mobilePath(), t.folder.file("old/cashbasemobail.db"));
    // The register is the book's: its customers, now with every column.
    EXPECT_EQ(t.book->customers(), QStringList({"ООО \"Ремонт\"", "Сидоров"}));
    EXPECT_EQ(rows(Db::Cash, "SELECT count(*) FROM customer WHERE Region IS NULL AND fax IS NULL"),
              QStringList{"2"});
    t.book->reload(true);
    ASSERT_EQ(t.book->records()->rowCount(), 2);
    EXPECT_EQ(t.book->totals().cells().mid(0, 3), QStringList({"1 000,00", "200,00", "250,50"}));
    t.book->setMonthClause(1, "2019");
    EXPECT_EQ(t.book->records()->rowCount(), 1);
    t.book->showReceipts(0);
    EXPECT_EQ(t.book->checks()->rowCount(), 1);
}

TEST_F(BookUpgradeTest, AFailedUpgradeLeavesTheBookAsItWas) {
    {
        DatabaseFile f(oldBook);
        // A leftover table of the name the upgrade needs makes its book transaction fail half-way.
        ASSERT_TRUE(QSqlQuery(f.db()).exec("CREATE TABLE cash_earlier_layout (x TEXT)"));
    }
    const QStringList tablesBefore = bookRows("SELECT name FROM sqlite_master ORDER BY name");
    const QStringList cashBefore = bookRows("SELECT * FROM cash ORDER BY id");
    const BookUpgrade::Result r = upgrade();
    EXPECT_FALSE(r.ok);
    EXPECT_TRUE(r.error.contains(QDir::toNativeSeparators(oldBook))) << r.error.toStdString();
    EXPECT_TRUE(r.error.contains("оставлена как была"));
    EXPECT_EQ(bookRows("SELECT name FROM sqlite_master ORDER BY name"), tablesBefore);
    EXPECT_EQ(bookRows("SELECT * FROM cash ORDER BY id"), cashBefore);
    EXPECT_EQ(bookRows("SELECT count(*) FROM Cheki"), QStringList{"3"});

    // The cash book refuses it and keeps its own book.
    const QString before = t.book->bookPath();
    EXPECT_FALSE(t.book->openBook(oldBook, BookUpgrade::programTargets(*t.module)).ok);
    EXPECT_EQ(t.book->bookPath(), before);

    // Once the obstacle is gone the upgrade completes without carrying anything twice.
    {
        DatabaseFile f(oldBook);
        ASSERT_TRUE(QSqlQuery(f.db()).exec("DROP TABLE cash_earlier_layout"));
    }
    ASSERT_TRUE(upgrade().ok);
    EXPECT_EQ(rows(Db::People, "SELECT count(*) FROM Customer"), QStringList{"2"});
    EXPECT_EQ(rows(Db::People, "SELECT count(*) FROM Object"), QStringList{"2"});
    EXPECT_EQ(rows(Db::Mat, "SELECT count(*) FROM storage"), QStringList{"2"});
}

TEST_F(BookUpgradeTest, FilesThatAreNoBookAreRefusedByName) {
    struct Case {
        const char *name;
        QByteArray bytes;
    } cases[] = {
        {"text.db", "это не база данных, а просто текст"},
        {"empty-header.db", QByteArray("SQLite format 3\0", 16) + QByteArray(100, '\xff')},
    };
    for (const Case &c : cases) {
        const QString path = t.folder.file(c.name);
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(c.bytes);
        f.close();
        const QString before = t.book->bookPath();
        const CashBook::Outcome o = t.book->openBook(path, BookUpgrade::programTargets(*t.module));
        EXPECT_FALSE(o.ok) << c.name;
        EXPECT_TRUE(o.text.contains(QDir::toNativeSeparators(path))) << o.text.toStdString();
        EXPECT_TRUE(o.text.contains("не является кассовой книгой")) << o.text.toStdString();
        EXPECT_EQ(t.book->bookPath(), before);
    }
}
