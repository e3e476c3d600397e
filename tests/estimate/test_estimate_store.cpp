// Loading the estimate from the working database and storing it back.

#include "TestFolder.h"
#include "estimate/ActFields.h"
#include "estimate/CrewGrid.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"

#include <QSqlQuery>
#include <QVariant>
#include <gtest/gtest.h>

namespace {

class EstimateStoreTest : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    TestFolder folder;
    TModuleSQL module{folder.path()};
    EstimateGrid grid;
    CrewGrid crew;

    void exec(const QString &sql) {
        QSqlQuery q(module.database(Db::Smeta));
        ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
    }
    int count(const QString &table) {
        QSqlQuery q(module.database(Db::Smeta));
        q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table);
        return q.next() ? q.value(0).toInt() : -1;
    }
};

TEST_F(EstimateStoreTest, EmptySmetaLoadsAsOneEmptyRowAndGetsActDefaults) {
    ASSERT_TRUE(EstimateStore::readSmeta(module.database(Db::Smeta), grid, crew));
    EXPECT_EQ(grid.gridRowCount(), 3);
    EXPECT_EQ(crew.gridRowCount(), 2);
    EXPECT_EQ(count("ks2"), ActFields::fields().size());
    // A second load does not add the defaults twice.
    ASSERT_TRUE(EstimateStore::readSmeta(module.database(Db::Smeta), grid, crew));
    EXPECT_EQ(count("ks2"), ActFields::fields().size());
}

TEST_F(EstimateStoreTest, RecordsFillTheColumnsWithIdAndLabourRules) {
    struct Row {
        const char *numpos, *edras, *nameras, *edizm, *kolvo, *price, *summa, *section, *machine, *mat,
            *total, *idwork, *koefBrig;
        const char *expectIdDoc, *expectLabour;
    };
    const Row rows[] = {
        {"", "", "РАЗДЕЛ 1. Демонтаж", "", "", "", "", "br", "", "", "", "7", "", "7", ""},
        // total "0": the labour part is the price.
        {"1", "1-1", "Снятие обоев", "м2", "10", "150,00", "1500,00", "", "", "", "0", "", "0,8", "",
         "150,00"},
        // a positive total: labour = total - materials - machines.
        {"2", "1-2", "Демонтаж плитки", "м2", "5", "400", "2000,00", "", "20", "80", "400", "12", "", "12",
         "300,00"},
        // an empty total leaves the price.
        {"3", "1-3", "Вынос мусора", "т", "1,5", "900", "1350,00", "", "", "", "", "", "", "", "900"},
        {"", "", "Итого по разделу 1", "", "", "", "4850,00", "ir", "", "", "", "", "", "", ""},
    };
    for (const Row &r : rows)
        exec(QStringLiteral(
                 "INSERT INTO smeta (numpos, edras, nameras, edizm, kolvo, price, summa, section, machine, "
                 "mat, total, idwork, KoefBrig, idRas, NamePrice) VALUES ('%1','%2','%3','%4','%5','%6',"
                 "'%7','%8','%9','%10','%11','%12','%13','55','resurs1')")
                 .arg(r.numpos, r.edras, r.nameras, r.edizm, r.kolvo, r.price, r.summa, r.section, r.machine)
                 .arg(r.mat, r.total, r.idwork, r.koefBrig));
    ASSERT_TRUE(EstimateStore::readSmeta(module.database(Db::Smeta), grid, crew));
    ASSERT_EQ(grid.gridRowCount(), 2 + 5);
    ASSERT_EQ(crew.gridRowCount(), 1 + 5);
    for (int k = 0; k < 5; ++k) {
        const Row &r = rows[k];
        const int row = k + 2;
        EXPECT_EQ(grid.cell(row, EstimateCol::Name), QString::fromUtf8(r.nameras));
        EXPECT_EQ(grid.cell(row, EstimateCol::Kind), QString::fromUtf8(r.section));
        EXPECT_EQ(grid.cell(row, EstimateCol::Itogo), QString::fromUtf8(r.summa));
        EXPECT_EQ(grid.cell(row, EstimateCol::Labour), QString::fromUtf8(r.expectLabour)) << k;
        EXPECT_EQ(crew.cell(row - 1, CrewCol::Koef), QString::fromUtf8(r.koefBrig));
        // Without a work id the record key (1-based in insertion order) stands in.
        const QString id = QString::fromUtf8(r.expectIdDoc);
        EXPECT_EQ(grid.cell(row, EstimateCol::IdDoc), id.isEmpty() ? QString::number(k + 1) : id) << k;
    }
}

TEST_F(EstimateStoreTest, WriteThenReadGivesTheSameGrid) {
    grid.setGridRowCount(5);
    const QStringList names = {"РАЗДЕЛ 1. Стены", "Шпаклёвка стен, «финиш» 'Ветонит'", "Итого по разделу 1"};
    const QStringList kinds = {"br", "", "ir"};
    for (int i = 0; i < 3; ++i) {
        grid.setCell(2 + i, EstimateCol::Name, names[i]);
        grid.setCell(2 + i, EstimateCol::Kind, kinds[i]);
    }
    grid.setCell(3, EstimateCol::Qty, QStringLiteral("12,5"));
    grid.setCell(3, EstimateCol::Price, QStringLiteral("380,00"));
    grid.setCell(3, EstimateCol::Sum, QStringLiteral("4750,00"));
    grid.setCell(3, EstimateCol::IdRas, QStringLiteral("101"));
    grid.setCell(3, EstimateCol::NamePrice, QStringLiteral("resurs1"));
    crew.setGridRowCount(5);
    crew.setCell(2, CrewCol::Koef, QStringLiteral("0,65"));
    const EstimateStore::Parameters params = {{DocParam::customer, "ООО \"Ромашка\""},
                                              {DocParam::number, "12"}};

    ASSERT_TRUE(EstimateStore::writeSmeta(module.database(Db::Smeta), grid, crew, params));
    // Every data row got a work id.
    for (int r = 2; r < grid.gridRowCount(); ++r)
        EXPECT_FALSE(grid.cell(r, EstimateCol::IdDoc).isEmpty());

    EstimateGrid loaded;
    CrewGrid loadedCrew;
    ASSERT_TRUE(EstimateStore::readSmeta(module.database(Db::Smeta), loaded, loadedCrew));
    ASSERT_EQ(loaded.gridRowCount(), grid.gridRowCount());
    for (int r = 2; r < grid.gridRowCount(); ++r)
        for (int c : {EstimateCol::Num, EstimateCol::Ras, EstimateCol::Name, EstimateCol::Unit,
                      EstimateCol::Qty, EstimateCol::Price, EstimateCol::Sum, EstimateCol::IdRas,
                      EstimateCol::IdDoc, EstimateCol::NamePrice, EstimateCol::Kind})
            EXPECT_EQ(loaded.cell(r, c), grid.cell(r, c)) << r << "," << c;
    EXPECT_EQ(loadedCrew.cell(2, CrewCol::Koef), QStringLiteral("0,65"));
    const auto stored = EstimateStore::readParameters(module.database(Db::Smeta));
    EXPECT_EQ(stored.value(DocParam::customer), QStringLiteral("ООО \"Ромашка\""));

    // Writing again replaces, never appends; the ids stay with their rows.
    const QString id3 = grid.cell(3, EstimateCol::IdDoc);
    grid.removeGridRows(2, 1);
    ASSERT_TRUE(EstimateStore::writeSmeta(module.database(Db::Smeta), grid, crew, params));
    EXPECT_EQ(count("smeta"), grid.gridRowCount() - 2);
    EXPECT_EQ(count("parametrs"), 2);
    ASSERT_TRUE(EstimateStore::readSmeta(module.database(Db::Smeta), loaded, loadedCrew));
    EXPECT_EQ(loaded.cell(2, EstimateCol::IdDoc), id3);
}

TEST_F(EstimateStoreTest, NewDocumentResetsTablesAndTheUndoJournal) {
    exec("INSERT INTO materials (namemat) VALUES ('Шпаклёвка')");
    exec("INSERT INTO mydoc (iddoc, note) VALUES (3, 'doc')");
    {
        QSqlQuery q(module.database(Db::ReturnAction));
        ASSERT_TRUE(q.exec("INSERT INTO ReturnAction (_action) VALUES ('edit')"));
    }
    grid.setGridRowCount(10);
    ASSERT_TRUE(EstimateStore::createNewDoc(module, grid, crew));
    EXPECT_EQ(grid.gridRowCount(), 3);
    EXPECT_EQ(crew.gridRowCount(), 2);
    EXPECT_EQ(count("materials"), 0);
    EXPECT_EQ(count("mydoc"), 0);
    EXPECT_EQ(count("koef"), 5);
    EXPECT_EQ(count("ks2"), ActFields::fields().size());
    QSqlQuery q(module.database(Db::ReturnAction));
    q.exec("SELECT COUNT(*) FROM ReturnAction");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), 0);
    // The VAT line is the one the invoice reads.
    QSqlQuery vat(module.database(Db::Smeta));
    vat.exec("SELECT title FROM koef WHERE EditComment='RadioButton'");
    ASSERT_TRUE(vat.next());
    EXPECT_EQ(vat.value(0).toString(), QStringLiteral("НДС, %"));
}

} // namespace
