// Versions of the local databases: files of older layouts are brought up to date when they open, a
// failing step leaves the file as it was, look-ups go through indexes, tables are emptied in place.

#include "QStringPrinter.h"
#include "TestFolder.h"
#include "storage/ModuleSQL.h"
#include "storage/Schema.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <gtest/gtest.h>

namespace {

// A connection of the test's own to a file, for building old layouts and looking inside.
class RawFile {
public:
    explicit RawFile(const QString &path) : m_name(QStringLiteral("raw-%1").arg(++s_count)) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        db.open();
    }
    ~RawFile() {
        QSqlDatabase::database(m_name, false).close();
        QSqlDatabase::removeDatabase(m_name);
    }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }
    void exec(const QString &sql) {
        QSqlQuery q(db());
        ASSERT_TRUE(q.exec(sql)) << sql.toStdString() << ": " << q.lastError().text().toStdString();
    }

private:
    static inline int s_count = 0;
    QString m_name;
};

// Everything the schema of a file holds, and its version: equal before and after means untouched.
QStringList layout(QSqlDatabase db) {
    QStringList out;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT type, name, sql FROM sqlite_master ORDER BY type, name"));
    while (q.next())
        out << q.value(0).toString() + QLatin1Char(' ') + q.value(1).toString() + QLatin1Char(' ') +
                   q.value(2).toString();
    out << QStringLiteral("version %1").arg(Schema::version(db));
    return out;
}

QString scalar(QSqlDatabase db, const QString &sql) {
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toString() : QStringLiteral("<%1>").arg(q.lastError().text());
}

QStringList indexes(QSqlDatabase db) {
    QStringList out;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type='index' AND name NOT LIKE 'sqlite_%'"));
    while (q.next())
        out << q.value(0).toString();
    return out;
}

TEST(Schema, EveryDatabaseHasNumberedStepsWithOwners) {
    for (Db db : kAllDatabases) {
        SCOPED_TRACE(relativePath(db).toStdString());
        const QList<SchemaStep> &steps = schemaSteps(db);
        ASSERT_FALSE(steps.isEmpty());
        for (int i = 0; i < steps.size(); ++i) {
            EXPECT_EQ(steps[i].number, i + 1);
            EXPECT_FALSE(steps[i].owner.isEmpty());
            EXPECT_FALSE(steps[i].statements.isEmpty() && steps[i].columns.isEmpty());
        }
    }
}

struct OldFile {
    const char *what;
    Db db;
    QStringList layout; // statements that make the file as an earlier version left it
    QString kept;       // a query whose answer shows the old rows survived
    QString keptValue;
    QStringList indexes; // what the upgrade must add
};

TEST(Schema, FilesOfEarlierVersionsAreBroughtToTheCurrentVersion) {
    ensureApplication();
    const std::vector<OldFile> cases = {
        {"customers without the apartment number",
         Db::Cash,
         {"CREATE TABLE customer (_id INTEGER PRIMARY KEY AUTOINCREMENT, fio TEXT, email TEXT, phone TEXT, "
          "object TEXT, note TEXT, address TEXT, fax TEXT, okpo TEXT, function TEXT, Region TEXT, City TEXT, "
          "Area TEXT, Street TEXT, House TEXT, Agent TEXT)",
          "INSERT INTO customer (fio, City) VALUES ('Старый', 'Тверь')"},
         "SELECT fio || '/' || City || '/' || ifnull(numroom, '-') FROM customer",
         "Старый/Тверь/-",
         {"customer_fio", "Object_fio_object", "cash_customer_object", "checks_val"}},
        {"people without the apartment number, with counters and recent files",
         Db::People,
         {"CREATE TABLE Customer (_id INTEGER PRIMARY KEY AUTOINCREMENT, fio TEXT, email TEXT, phone TEXT, "
          "object TEXT, note TEXT, address TEXT, fax TEXT, okpo TEXT, function TEXT, Region TEXT, City TEXT, "
          "Area TEXT, Street TEXT, House TEXT, Agent TEXT)",
          "CREATE TABLE NumDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, Client TEXT, Object TEXT, Smeta "
          "INTEGER, "
          "Act INTEGER)",
          "INSERT INTO NumDoc (Client, Object, Smeta) VALUES ('Иванов', 'Дача', 3)",
          "CREATE TABLE LastDoc (id INTEGER PRIMARY KEY AUTOINCREMENT, value TEXT)"},
         "SELECT Client || Object || Smeta FROM NumDoc",
         "ИвановДача3",
         {"NumDoc_Client_Object", "LastDoc_value", "Customer_fio", "Contractor_shotname"}},
        {"an undo journal without step numbers",
         Db::ReturnAction,
         {"CREATE TABLE ReturnAction (_id INTEGER PRIMARY KEY AUTOINCREMENT,numpos TEXT,edras TEXT,"
          "nameras TEXT,edizm TEXT,kolvo TEXT,price TEXT,summa TEXT,idRas TEXT,NamePrice TEXT,KoefBrig TEXT,"
          "_action TEXT,MouseDownRow TEXT,MouseUpRow TEXT,hint TEXT)",
          "INSERT INTO ReturnAction (_action, hint) VALUES ('edit', 'Правка')"},
         "SELECT hint || '/' || ifnull(step, '-') || '/' || ifnull(cells, '-') FROM ReturnAction",
         "Правка/-/-",
         {"ReturnAction_step"}},
        {"an undo journal that already has its step numbers (made before versions were kept)",
         Db::ReturnAction,
         {"CREATE TABLE ReturnAction (_id INTEGER PRIMARY KEY AUTOINCREMENT,numpos TEXT,edras TEXT,"
          "nameras TEXT,edizm TEXT,kolvo TEXT,price TEXT,summa TEXT,idRas TEXT,NamePrice TEXT,KoefBrig TEXT,"
          "_action TEXT,MouseDownRow TEXT,MouseUpRow TEXT,hint TEXT,step INTEGER,cells TEXT)",
          "INSERT INTO ReturnAction (_action, hint, step, cells) VALUES ('edit', 'Правка', 4, '{}')"},
         "SELECT hint || '/' || step || '/' || cells FROM ReturnAction",
         "Правка/4/{}",
         {"ReturnAction_step"}},
        {"a price list without the crew columns",
         Db::Price,
         {"CREATE TABLE price1 (id INTEGER PRIMARY KEY AUTOINCREMENT, edras TEXT, nameras TEXT, edizm TEXT, "
          "rub TEXT, rec TEXT)",
          "INSERT INTO price1 (edras, nameras, edizm, rub, rec) VALUES ('1-1', 'Штукатурка', 'м2', '300', "
          "'7')",
          "CREATE TABLE resurs1 (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT, cena TEXT, ras TEXT)"},
         "SELECT nameras || '/' || rec || '/' || ifnull(koef, '-') || ifnull(link, '-') FROM price1",
         "Штукатурка/7/--",
         {"price1_rec", "price2_rec", "price1_nameras", "resurs1_ras", "resurs2_ras", "resurs_s_ras"}},
        {"a working estimate of an early version",
         Db::Smeta,
         {"CREATE TABLE smeta (_id INTEGER PRIMARY KEY AUTOINCREMENT, numpos TEXT, nameras TEXT)",
          "INSERT INTO smeta (nameras) VALUES ('Старая работа')",
          "CREATE TABLE materials (_id INTEGER PRIMARY KEY AUTOINCREMENT, namemat TEXT, kolvo TEXT)",
          "INSERT INTO materials (namemat, kolvo) VALUES ('Гипс', '3')"},
         "SELECT namemat || '/' || kolvo || '/' || ifnull(price, '-') FROM materials",
         "Гипс/3/-",
         {"materials_namemat"}},
        {"a register made before versions were kept",
         Db::MyDoc,
         {"CREATE TABLE documents (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, date_compare INTEGER, "
          "dataend DATE, name TEXT, filename TEXT, client TEXT, object TEXT, summat TEXT, sumrab TEXT, "
          "allsum TEXT, contract TEXT, account TEXT, status INTEGER, act INTEGER, month TEXT, year TEXT)",
          "INSERT INTO documents (name, client) VALUES ('Смета 1', 'Иванов')"},
         "SELECT name || client FROM documents",
         "Смета 1Иванов",
         {"documents_client", "documents_date_compare", "drafts_client", "contract_iddoc", "account_iddoc",
          "act_iddoc"}},
        {"a warehouse made before versions were kept",
         Db::Mat,
         {"CREATE TABLE storage (id INTEGER PRIMARY KEY AUTOINCREMENT, data DATE, namemat TEXT, edizm TEXT, "
          "kolvo TEXT, price TEXT, summa TEXT, minlimit TEXT, client TEXT, sale TEXT, customer TEXT, "
          "object TEXT, month TEXT, year TEXT, date_compare TEXT, dataoffs DATE, note TEXT)",
          "INSERT INTO storage (namemat) VALUES ('Цемент')"},
         "SELECT namemat FROM storage",
         "Цемент",
         {"storage_customer", "storage_object"}},
    };
    for (const OldFile &c : cases) {
        SCOPED_TRACE(c.what);
        TestFolder folder;
        const QString path = QDir(folder.path()).filePath(relativePath(c.db));
        {
            RawFile old(path);
            for (const QString &s : c.layout)
                old.exec(s);
            ASSERT_EQ(Schema::version(old.db()), 0);
        }
        TModuleSQL module(folder.path());
        QSqlDatabase db = module.database(c.db);
        ASSERT_TRUE(db.isOpen()) << module.failure(c.db).toStdString();
        EXPECT_EQ(Schema::version(db), Schema::latestVersion(c.db));
        EXPECT_EQ(scalar(db, c.kept), c.keptValue);
        for (const QString &table : tableNames(c.db)) {
            QSqlQuery q(db);
            ASSERT_TRUE(q.exec(QStringLiteral("SELECT * FROM %1 WHERE 0").arg(table))) << table.toStdString();
            for (const QString &column : Schema::columns(c.db, table))
                EXPECT_GE(q.record().indexOf(column), 0)
                    << table.toStdString() << "." << column.toStdString();
        }
        const QStringList made = indexes(db);
        for (const QString &index : c.indexes)
            EXPECT_TRUE(made.contains(index)) << index.toStdString();
    }
}

TEST(Schema, AFailingStepLeavesTheFileAsItWasAndNamesIt) {
    ensureApplication();
    TestFolder folder;
    const QString path = folder.file("Sp/cashbase.db");
    QStringList before;
    {
        // A customer "table" that is a view: the apartment column cannot be added to it.
        RawFile old(path);
        old.exec("CREATE TABLE clients (fio TEXT)");
        old.exec("INSERT INTO clients VALUES ('Иванов')");
        old.exec("CREATE VIEW customer AS SELECT fio FROM clients");
        before = layout(old.db());
    }
    TModuleSQL module(folder.path());
    QStringList reports;
    module.setFailureHandler([&](Db, const QString &text) { reports << text; });
    EXPECT_FALSE(module.database(Db::Cash).isOpen());
    ASSERT_EQ(reports.size(), 1);
    const QString text = reports.first();
    EXPECT_TRUE(text.contains(QDir::toNativeSeparators(path))) << text.toStdString();
    EXPECT_TRUE(text.contains("Не удалось открыть базу данных")) << text.toStdString();
    EXPECT_TRUE(text.contains("шаг 2")) << text.toStdString();
    EXPECT_TRUE(text.contains("оставлен как был")) << text.toStdString();
    // Step 1 made the cash book's tables; they are gone again with the failed step.
    {
        RawFile after(path);
        EXPECT_EQ(layout(after.db()), before);
        EXPECT_EQ(scalar(after.db(), "SELECT fio FROM customer"), "Иванов");
    }
    // The other databases work.
    EXPECT_TRUE(module.database(Db::People).isOpen());
}

TEST(Schema, StepsRunFromTheFilesVersionAllOrNothing) {
    ensureApplication();
    TestFolder folder;
    RawFile file(folder.file("t.db"));
    QSqlDatabase db = file.db();
    // Step 1 could not run twice: a file past it must not see it again.
    const QList<SchemaStep> good = {
        {1, "test", {}, {"CREATE TABLE t1 (a TEXT)"}},
        {2, "test", {{"t1", "b", "TEXT"}}, {"CREATE TABLE t2 (a TEXT)", "CREATE INDEX t1_b ON t1 (b)"}},
    };
    QList<SchemaStep> bad = good;
    bad.append({3, "test", {}, {"CREATE TABLE t3 (a TEXT)", "INSERT INTO nowhere VALUES (1)"}});

    const QStringList empty = layout(db);
    const QString failed = Schema::upgrade(db, bad);
    EXPECT_TRUE(failed.contains("шаг 3")) << failed.toStdString();
    EXPECT_TRUE(failed.contains("nowhere")) << failed.toStdString();
    EXPECT_EQ(layout(db), empty); // steps 1 and 2 went with it

    ASSERT_EQ(Schema::upgrade(db, {good.first()}), QString());
    EXPECT_EQ(Schema::version(db), 1);
    ASSERT_EQ(Schema::upgrade(db, good), QString());
    EXPECT_EQ(Schema::version(db), 2);
    EXPECT_TRUE(indexes(db).contains("t1_b"));
    // Nothing left to do: the steps are not run again.
    ASSERT_EQ(Schema::upgrade(db, good), QString());

    // A file of a newer program is used as it is.
    file.exec("PRAGMA user_version = 9");
    const QStringList newer = layout(db);
    EXPECT_EQ(Schema::upgrade(db, bad), QString());
    EXPECT_EQ(layout(db), newer);
}

TEST(Schema, LookUpsGoThroughTheirIndexes) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    struct LookUp {
        Db db;
        const char *sql;
        const char *index;
    };
    const std::vector<LookUp> cases = {
        // The undo journal drops the undone steps and reads one step at a time.
        {Db::ReturnAction, "DELETE FROM ReturnAction WHERE step > ?", "ReturnAction_step"},
        {Db::ReturnAction,
         "SELECT _action, MouseDownRow, cells FROM ReturnAction WHERE step = ? ORDER BY _id",
         "ReturnAction_step"},
        // The crew sheet's price and the resources of a rate.
        {Db::Price, "SELECT link FROM price1 WHERE rec=? LIMIT 1", "price1_rec"},
        {Db::Price, "SELECT * FROM resurs1 WHERE ras=?", "resurs1_ras"},
        {Db::Price, "SELECT * FROM resurs_s WHERE ras=?", "resurs_s_ras"},
        {Db::Price, "SELECT id, edras, nameras FROM price2 WHERE nameras=?", "price2_nameras"},
        {Db::People, "SELECT id, Smeta FROM NumDoc WHERE Client=? AND Object=?", "NumDoc_Client_Object"},
        {Db::People, "DELETE FROM LastDoc WHERE value=?", "LastDoc_value"},
        {Db::People, "SELECT * FROM contractor WHERE shotname=?", "Contractor_shotname"},
        {Db::Cash, "SELECT * FROM customer WHERE fio=?", "customer_fio"},
        {Db::Cash, "DELETE FROM cash WHERE customer=?", "cash_customer_object"},
        {Db::Cash, "SELECT object FROM object WHERE fio=? ORDER BY _id", "Object_fio_object"},
        {Db::MyDoc, "SELECT * FROM contract WHERE iddoc=?", "contract_iddoc"},
        {Db::Smeta, "SELECT _id FROM materials WHERE namemat=? ORDER BY _id LIMIT 1", "materials_namemat"},
    };
    for (const LookUp &c : cases) {
        SCOPED_TRACE(c.sql);
        QSqlQuery q(module.database(c.db));
        ASSERT_TRUE(q.prepare(QStringLiteral("EXPLAIN QUERY PLAN ") + QString::fromUtf8(c.sql)));
        const int binds = QString::fromUtf8(c.sql).count(QLatin1Char('?'));
        for (int i = 0; i < binds; ++i)
            q.addBindValue(QStringLiteral("1"));
        ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
        QStringList plan;
        while (q.next())
            plan << q.value(3).toString();
        EXPECT_TRUE(plan.join(';').contains(QStringLiteral("INDEX %1 ").arg(QLatin1String(c.index))))
            << plan.join(';').toStdString();
    }
}

TEST(Schema, ClearedTablesKeepTheirLayoutAndCountFromOneAgain) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    QSqlDatabase db = module.database(Db::Smeta);
    QSqlQuery q(db);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(q.exec("INSERT INTO materials (namemat) VALUES ('Гипс')"));
        ASSERT_TRUE(q.exec("INSERT INTO Object (object) VALUES ('Дача')"));
    }
    // Names as the code writes them, in another case than the table was made with.
    QString error;
    ASSERT_TRUE(Schema::clearTables(db, {"materials", "object"}, &error)) << error.toStdString();
    EXPECT_EQ(scalar(db, "SELECT count(*) FROM materials"), "0");
    EXPECT_EQ(scalar(db, "SELECT count(*) FROM Object"), "0");
    ASSERT_TRUE(q.exec("INSERT INTO materials (namemat) VALUES ('Цемент')"));
    ASSERT_TRUE(q.exec("INSERT INTO Object (object) VALUES ('Баня')"));
    EXPECT_EQ(scalar(db, "SELECT _id FROM materials"), "1");
    EXPECT_EQ(scalar(db, "SELECT _id FROM Object"), "1");
    EXPECT_TRUE(indexes(db).contains("materials_namemat"));
    // A name that is no table: nothing is emptied.
    EXPECT_FALSE(Schema::clearTables(db, {"materials", "nosuch"}, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(scalar(db, "SELECT count(*) FROM materials"), "1");
}

TEST(Schema, SharedFilesKeepAWriteAheadLogAndTheWorkingEstimateDoesNot) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    for (Db db : kAllDatabases) {
        SCOPED_TRACE(relativePath(db).toStdString());
        EXPECT_EQ(scalar(module.database(db), "PRAGMA journal_mode"), isShared(db) ? "wal" : "delete");
        EXPECT_EQ(scalar(module.database(db), "PRAGMA busy_timeout"),
                  QString::number(Schema::kBusyTimeoutMs));
    }
    EXPECT_FALSE(isShared(Db::Smeta));
    EXPECT_TRUE(isShared(Db::Price));
}

} // namespace
