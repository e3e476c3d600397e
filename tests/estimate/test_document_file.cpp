// The document file: round trip, refusal of damaged files, earlier layouts, failed saves.

#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "estimate/OldFormat.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <functional>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <utime.h>

namespace {

QStringList dump(QSqlDatabase db, const QString &table) {
    QStringList rows;
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table)))
        return {QStringLiteral("<no table %1>").arg(table)};
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < q.record().count(); ++i)
            cells << q.record().fieldName(i) + QLatin1Char('=') + q.value(i).toString();
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

const QStringList kDocumentTables = {"smeta", "materials", "koef", "parametrs",
                                     "ks2",   "mydoc",     "cash", "shema"};

class DocumentFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        QDir().mkpath(folder.file("Sp"));
        QDir().mkpath(folder.file("Sm"));
    }
    QSqlDatabase working() { return module.database(Db::Smeta); }
    void exec(QSqlDatabase db, const QString &sql) {
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
    }
    // A full estimate: sections, works, a subsection, totals, materials, coefficients, parameters.
    void fillDocument(const QString &tag) {
        ASSERT_TRUE(EstimateStore::createNewDoc(module, grid, crew));
        const QList<QStringList> rows = {
            {"", "", "РАЗДЕЛ 1. Демонтаж " + tag, "", "", "", "", "br"},
            {"1", "1-1", "Снятие обоев \"Люкс\"", "м2", "10", "150,00", "1500,00", ""},
            {"", "", "       § 1.1. Полы", "", "", "", "", "bp"},
            {"2", "1-2", "Демонтаж плитки", "м2", "5", "400", "2000,00", ""},
            {"", "", "              Итого по § 1.1", "", "", "", "2000,00", "ip"},
            {"", "", "Итого по разделу 1", "", "", "", "3500,00", "ir"},
        };
        std::vector<QStringList> cells;
        for (const QStringList &r : rows) {
            QStringList c;
            for (int i = 0; i < EstimateCol::Count; ++i)
                c << QString();
            for (int i = 0; i < 7; ++i)
                c[i] = r[i];
            c[EstimateCol::Kind] = r[7];
            cells.push_back(c);
        }
        grid.setAllRows(std::move(cells));
        crew.setGridRowCount(static_cast<int>(rows.size()) + 1);
        crew.setCell(2, CrewCol::Koef, "0,8");
        ASSERT_TRUE(EstimateStore::writeSmeta(working(), grid, crew,
                                              {{"Customer", "ООО \"Ромашка\""}, {"NumericSmeta", tag}}));
        exec(working(), "INSERT INTO materials (edras, namemat, edizm, kolvo, price, summa, numpos) VALUES "
                        "('1-1', 'Клей обойный " +
                            tag + "', 'кг', '2', '300', '600,00', 1)");
        exec(working(), "UPDATE koef SET checked='-1', value='1,2' WHERE title='Коэффициент удорожания'");
        exec(working(), "INSERT INTO cash (data, prihod) VALUES ('01.02.2025', '5000')");
        exec(working(), "INSERT INTO shema (number, name, stena) VALUES ('1', 'Кухня', '3,2')");
    }
    QMap<QString, QStringList> snapshot() {
        QMap<QString, QStringList> out;
        for (const QString &t : kDocumentTables)
            out.insert(t, dump(working(), t));
        return out;
    }

    TestFolder folder;
    TModuleSQL module{folder.path()};
    EstimateGrid grid;
    CrewGrid crew;
};

TEST_F(DocumentFileTest, SaveAndOpenRoundTripKeepsEveryTable) {
    fillDocument("A");
    const auto saved = snapshot();
    const QString file = folder.file("Sm/Ремонт офиса.sim");
    ASSERT_EQ(DocumentFile::save(module, file), QString());

    ASSERT_TRUE(EstimateStore::createNewDoc(module, grid, crew));
    ASSERT_NE(snapshot(), saved);
    ASSERT_EQ(DocumentFile::open(module, file), QString());
    EXPECT_EQ(snapshot(), saved);
    ASSERT_TRUE(EstimateStore::readSmeta(working(), grid, crew));
    EXPECT_EQ(grid.gridRowCount(), 8);
    EXPECT_EQ(grid.cell(3, EstimateCol::Name), "Снятие обоев \"Люкс\"");
    EXPECT_EQ(grid.cell(4, EstimateCol::Kind), "bp");
    EXPECT_EQ(crew.cell(2, CrewCol::Koef), "0,8");
    EXPECT_EQ(EstimateStore::readParameters(working()).value("Customer"), "ООО \"Ромашка\"");
    // The saved file is a plain rollback-journal database, and nothing was left beside it.
    EXPECT_EQ(SqliteSnapshot::check(file), QString());
    EXPECT_EQ(QDir(folder.file("Sm")).entryList(QDir::Files | QDir::Hidden), QStringList{"Ремонт офиса.sim"});
}

TEST_F(DocumentFileTest, DamagedAndForeignFilesAreRefusedAndTheWorkingDocumentStays) {
    fillDocument("A");
    const QString good = folder.file("good.sim");
    ASSERT_EQ(DocumentFile::save(module, good), QString());
    fillDocument("B"); // the open document differs from the file
    const auto before = snapshot();
    QFile g(good);
    ASSERT_TRUE(g.open(QIODevice::ReadOnly));
    const QByteArray bytes = g.readAll();
    g.close();

    struct Case {
        const char *name;
        std::function<QByteArray()> content; // null: no file at all
        const char *expected;
    };
    const Case cases[] = {
        {"text.sim",
         [] { return QByteArray("Это не база данных, а просто текст, который притворяется сметой.\n"); },
         "повреждён или не является документом"},
        {"empty.sim", [] { return QByteArray(); }, "файл пуст"},
        {"half.sim", [&] { return bytes.left(bytes.size() / 2); }, "повреждён"},
        {"pages.sim",
         [&] {
             QByteArray b = bytes;
             // Wipe the b-tree pages after the schema page.
             for (int i = 4096; i < b.size(); ++i)
                 b[i] = char(0xA5);
             return b;
         },
         "повреждён"},
        {"other.sim",
         [&] {
             // A sound SQLite database that is not an estimate.
             const QString path = folder.file("other-src.db");
             {
                 QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "other");
                 db.setDatabaseName(path);
                 db.open();
                 QSqlQuery(db).exec("CREATE TABLE photos (name TEXT, data BLOB)");
                 db.close();
             }
             QSqlDatabase::removeDatabase("other");
             QFile f(path);
             f.open(QIODevice::ReadOnly);
             return f.readAll();
         },
         "нет таблицы сметы"},
        {"vanished.sim", nullptr, "не найден"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = folder.file(QString::fromUtf8(c.name));
        if (c.content) {
            QFile f(path);
            ASSERT_TRUE(f.open(QIODevice::WriteOnly));
            f.write(c.content());
        }
        const QString error = DocumentFile::open(module, path);
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.name))) << error.toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.expected))) << error.toStdString();
        EXPECT_EQ(snapshot(), before);
    }
    // The private copy made for checking is gone too.
    EXPECT_TRUE(QDir(folder.file("Sp")).entryList({".smeta-open*"}, QDir::Files | QDir::Hidden).isEmpty());
}

TEST_F(DocumentFileTest, AnEarlierLayoutOpensAndGainsWhatItLacks) {
    const QString old = folder.file("Старая смета.sme");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "old");
        db.setDatabaseName(old);
        ASSERT_TRUE(db.open());
        // Version 6: the estimate rows without work ids and unit costs, materials without positions,
        // no coefficient table at all; and the table cashstorage that those versions kept.
        exec(db, "CREATE TABLE smeta (_id INTEGER PRIMARY KEY AUTOINCREMENT, numpos TEXT, edras TEXT, "
                 "nameras TEXT, "
                 "edizm TEXT, kolvo TEXT, price TEXT, summa TEXT, section TEXT)");
        exec(db, "INSERT INTO smeta (numpos, edras, nameras, edizm, kolvo, price, summa, section) VALUES "
                 "('', '', 'РАЗДЕЛ 1. Стены', '', '', '', '', 'br'),"
                 "('1', '2-1', 'Шпаклёвка стен', 'м2', '20', '250', '5000,00', '')");
        exec(db, "CREATE TABLE materials (_id INTEGER PRIMARY KEY AUTOINCREMENT, namemat TEXT, kolvo TEXT)");
        exec(db, "INSERT INTO materials (namemat, kolvo) VALUES ('Шпаклёвка', '30')");
        exec(db, "CREATE TABLE cashstorage (text TEXT)");
        db.close();
    }
    QSqlDatabase::removeDatabase("old");

    ASSERT_EQ(DocumentFile::open(module, old), QString());
    QSqlDatabase db = working();
    for (const QString &table : tableNames(Db::Smeta)) {
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec("SELECT * FROM " + table + " WHERE 1")) << table.toStdString();
        for (const QString &col : OldFormat::currentColumns(table))
            EXPECT_GE(q.record().indexOf(col), 0) << table.toStdString() << "." << col.toStdString();
    }
    QStringList titles;
    QSqlQuery k(db);
    k.exec("SELECT title FROM koef ORDER BY id");
    while (k.next())
        titles << k.value(0).toString();
    for (const char *t :
         {"Коэффициент удорожания", "Накладные расходы, %", "Скидка на работы, %", "Скидка на материалы, %"})
        EXPECT_TRUE(titles.contains(QString::fromUtf8(t))) << t;
    ASSERT_TRUE(EstimateStore::readSmeta(db, grid, crew));
    EXPECT_EQ(grid.gridRowCount(), 4);
    EXPECT_EQ(grid.cell(3, EstimateCol::Name), "Шпаклёвка стен");
    EXPECT_EQ(grid.cell(3, EstimateCol::IdDoc), "2"); // no work ids: the record key stands in
    EXPECT_EQ(dump(db, "materials").value(0),
              "_id=1|edras=|namemat=Шпаклёвка|edizm=|kolvo=30|price=|summa=|note=|reserve=|numpos=");
    // The table of earlier versions is left behind.
    EXPECT_EQ(dump(db, "cashstorage").value(0), "<no table cashstorage>");
    // The grid can be written back into the upgraded table.
    EXPECT_TRUE(EstimateStore::writeSmeta(db, grid, crew, {}));
    // The source file itself is not changed by opening it.
    EXPECT_EQ(dump(DatabaseFile(old).db(), "koef"), QStringList{"<no table koef>"});
}

TEST_F(DocumentFileTest, AFailedSaveLeavesThePreviousVersionAndNoTemporaryFile) {
    fillDocument("A");
    const QString file = folder.file("Sm/Договорная.sim");
    ASSERT_EQ(DocumentFile::save(module, file), QString());
    QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup);
    const auto rights = QFile::permissions(file);
    fillDocument("B");
    // Grow the working database well past the limit below.
    QSqlQuery q(working());
    q.exec("BEGIN");
    for (int i = 0; i < 2000; ++i)
        q.exec(QStringLiteral("INSERT INTO materials (namemat) VALUES ('%1')")
                   .arg(QString(200, QChar('x' + i % 2))));
    q.exec("COMMIT");

    // A full disk: writes past 64 KiB fail as they would on a full disk.
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 64 * 1024;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QString full = DocumentFile::save(module, file);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);
    EXPECT_TRUE(full.contains("Договорная.sim")) << full.toStdString();

    // A folder that vanished between choosing and saving.
    const QString gone = DocumentFile::save(module, folder.file("Удалённая папка/Смета.sim"));
    EXPECT_TRUE(gone.contains("Смета.sim")) << gone.toStdString();
    EXPECT_TRUE(gone.contains("не существует")) << gone.toStdString();

    // The file on disk is still version A, with its rights, and nothing is left beside it.
    EXPECT_EQ(EstimateStore::readParameters(DatabaseFile(file).db()).value("NumericSmeta"), "A");
    EXPECT_EQ(QDir(folder.file("Sm")).entryList(QDir::Files | QDir::Hidden), QStringList{"Договорная.sim"});

    // Saving works again once there is room, and the file keeps its rights.
    ASSERT_EQ(DocumentFile::save(module, file), QString());
    EXPECT_EQ(QFile::permissions(file), rights);
}

TEST_F(DocumentFileTest, TemporaryFilesOfKilledSavesAreCleanedUpLater) {
    fillDocument("A");
    const QString file = folder.file("Sm/a.sim");
    const QString stale = SqliteSnapshot::tempPrefix(file) + "k1ll3d";
    const QString fresh = SqliteSnapshot::tempPrefix(file) + "inwork";
    for (const QString &p : {stale, fresh}) {
        QFile f(p);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("half a database");
    }
    utimbuf old{};
    old.actime = old.modtime = time(nullptr) - 3600;
    ASSERT_EQ(utime(QFile::encodeName(stale).constData(), &old), 0);
    ASSERT_EQ(DocumentFile::save(module, file), QString());
    EXPECT_FALSE(QFile::exists(stale));
    EXPECT_TRUE(QFile::exists(fresh)); // may belong to a save still running
}

TEST(DocumentFolders, DraftsFolderMembership) {
    struct Case {
        const char *path;
        bool inside;
    };
    const Case cases[] = {
        {"/data/Sm/Drafts/a.sim", true},     {"/data/Sm/Drafts/sub/a.sim", true},
        {"/data/Sm/Drafts2/a.sim", false},   {"/data/Sm/a.sim", false},
        {"/data/Sm/Drafts/../a.sim", false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(DocumentFile::isInside(c.path, DocumentFile::draftsFolder("/data")), c.inside) << c.path;
}

} // namespace
