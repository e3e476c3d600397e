// Document files and the versions of the working database: a saved document carries its version, a
// document of any earlier version is brought up to date on open, one that claims a version it does
// not hold is refused.

#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"
#include "storage/Schema.h"

#include <QDir>
#include <QFile>
#include <functional>
#include <gtest/gtest.h>

namespace {

QString one(QSqlDatabase db, const QString &sql) {
    const QStringList rows = queryRows(db, sql);
    return rows.isEmpty() ? QString() : rows.first();
}

class DocumentVersionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        QDir().mkpath(folder.file("Sm"));
    }
    // A new document holding one work of that name, written into the working database.
    void oneWork(const QString &name) {
        ASSERT_TRUE(EstimateStore::createNewDoc(module, grid, crew));
        std::vector<QStringList> rows(1, QStringList());
        for (int c = 0; c < EstimateCol::Count; ++c)
            rows[0] << QString();
        rows[0][EstimateCol::Name] = name;
        grid.setAllRows(std::move(rows));
        crew.setGridRowCount(2);
        ASSERT_TRUE(EstimateStore::writeSmeta(module.database(Db::Smeta), grid, crew, {}));
    }
    TestFolder folder;
    TModuleSQL module{folder.path()};
    EstimateGrid grid;
    CrewGrid crew;
};

TEST_F(DocumentVersionsTest, ASavedDocumentIsOneFileAtTheCurrentVersion) {
    oneWork(QStringLiteral("Шпаклёвка стен"));
    const QString file = folder.file("Sm/Смета.sim");
    ASSERT_EQ(DocumentFile::save(module, file), QString());
    DatabaseFile saved(file);
    EXPECT_EQ(Schema::version(saved.db()), Schema::latestVersion(Db::Smeta));
    EXPECT_EQ(one(saved.db(), "PRAGMA journal_mode"), "delete");
    EXPECT_EQ(one(saved.db(), "SELECT count(*) FROM sqlite_master WHERE name='materials_namemat'"), "1");
}

TEST_F(DocumentVersionsTest, DocumentsOfEveryVersionOpenAndFalseClaimsAreRefused) {
    struct Case {
        const char *what;
        std::function<void(QSqlDatabase)> change; // applied to a saved document
        const char *refusal;                      // empty: opens
    };
    const std::vector<Case> cases = {
        {"saved before versions were kept",
         [](QSqlDatabase d) {
             QSqlQuery(d).exec("DROP INDEX materials_namemat");
             QSqlQuery(d).exec("PRAGMA user_version = 0");
         },
         ""},
        {"saved by a newer program", [](QSqlDatabase d) { QSqlQuery(d).exec("PRAGMA user_version = 99"); },
         ""},
        {"claims the current version without its coefficients",
         [](QSqlDatabase d) { QSqlQuery(d).exec("DROP TABLE koef"); }, "koef"},
        {"claims the current version without work ids",
         [](QSqlDatabase d) { QSqlQuery(d).exec("ALTER TABLE smeta DROP COLUMN idwork"); }, "idwork"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        const QString file = folder.file(QStringLiteral("Sm/%1.sim").arg(QString::fromUtf8(c.what)));
        oneWork(QString::fromUtf8(c.what));
        ASSERT_EQ(DocumentFile::save(module, file), QString());
        {
            DatabaseFile doc(file);
            c.change(doc.db());
        }
        // Another document is open when this one is chosen.
        oneWork(QStringLiteral("Открытая смета"));
        const QStringList before = queryRows(module.database(Db::Smeta), "SELECT name FROM sqlite_master");

        const QString error = DocumentFile::open(module, file);
        QSqlDatabase working = module.database(Db::Smeta);
        if (*c.refusal) {
            EXPECT_TRUE(error.contains(QFileInfo(file).fileName())) << error.toStdString();
            EXPECT_TRUE(error.contains(QString::fromUtf8(c.refusal))) << error.toStdString();
            EXPECT_EQ(queryRows(working, "SELECT name FROM sqlite_master"), before);
            EXPECT_EQ(queryRows(working, "SELECT nameras FROM smeta"), QStringList{"Открытая смета"});
            continue;
        }
        ASSERT_EQ(error, QString());
        EXPECT_EQ(queryRows(working, "SELECT nameras FROM smeta"), QStringList{QString::fromUtf8(c.what)});
        EXPECT_GE(Schema::version(working), Schema::latestVersion(Db::Smeta));
        EXPECT_EQ(one(working, "SELECT count(*) FROM sqlite_master WHERE name='materials_namemat'"), "1");
    }
}

} // namespace
