// The one writer of the estimate's materials puts only the columns a grid edits into its SQL.

#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/MaterialsStore.h"
#include "storage/ModuleSQL.h"

#include <gtest/gtest.h>

namespace {

TEST(MaterialsStore, WritesOnlyTheColumnsAGridEdits) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    QSqlDatabase db = module.database(Db::Smeta);
    MaterialsStore::Material m;
    m.name = QStringLiteral("Грунт");
    const QString id = MaterialsStore::add(db, m);
    struct Case {
        const char *column;
        bool written;
    };
    const std::vector<Case> cases = {
        {"namemat", true},
        {"edizm", true},
        {"kolvo", true},
        {"price", true},
        {"note", true},
        {"_id", false},
        {"summa", false},
        {"edras", false},
        {"note=note, edras", false}, // a name that would smuggle SQL into the statement
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.column);
        QString error;
        EXPECT_EQ(MaterialsStore::setCell(db, id, QString::fromUtf8(c.column), QStringLiteral("7"),
                                          QStringLiteral("1,00"), &error),
                  c.written);
        EXPECT_EQ(error.isEmpty(), c.written) << error.toStdString();
    }
    EXPECT_EQ(queryRows(db, "SELECT _id, namemat, edizm, kolvo, price, note, edras, summa FROM materials"),
              QStringList{id + "|7|7|7|7|7||1,00"});
}

} // namespace
