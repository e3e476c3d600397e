// The open estimate without a window: new, edit, save, reopen, drafts, the number rule, refusals that
// leave the document as it was, and the lock another program holds.

#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/DocumentFile.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimatePrint.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QFile>
#include <QSignalSpy>
#include <QSqlQuery>
#include <gtest/gtest.h>
#include <memory>

namespace {

class EstimateDocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
        module = std::make_unique<TModuleSQL>(folder.path());
        doc = std::make_unique<EstimateDocument>();
        doc->attach(module.get(), &settings, nullptr);
        ASSERT_TRUE(doc->newDocument());
    }
    void TearDown() override {
        doc.reset();
        module.reset();
    }
    void type(int gridRow, int col, const QString &text) {
        EstimateGrid &g = doc->grid();
        ASSERT_TRUE(g.setData(g.index(EstimateGrid::toModelRow(gridRow), col), text, Qt::EditRole));
    }
    QString cell(int gridRow, int col) const { return doc->grid().cell(gridRow, col); }
    EstimateHeader::Values header() const {
        EstimateHeader::Values v;
        v.customer = QStringLiteral("ООО \"Ромашка\"");
        v.object = QStringLiteral("Кухня");
        v.contractor = QStringLiteral("ИП Соболев");
        v.date = QDate(2025, 3, 16);
        v.number = 12;
        v.numberWord = QStringLiteral("А");
        v.nameWork = QStringLiteral("Ремонт кухни");
        v.title = QStringLiteral("Коммерческое предложение");
        v.currency = 2;
        return v;
    }

    TestFolder folder;
    MainSettings settings;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<EstimateDocument> doc;
};

TEST_F(EstimateDocumentTest, SavedDocumentReopensWithItsRowsHeaderAndTotals) {
    QSignalSpy changed(doc.get(), &EstimateDocument::changedStateChanged);
    EXPECT_FALSE(doc->isChanged());
    type(2, EstimateCol::Name, QStringLiteral("Окраска стен"));
    type(2, EstimateCol::Qty, QStringLiteral("12,5"));
    type(2, EstimateCol::Price, QStringLiteral("300"));
    doc->setHeader(header());
    EXPECT_TRUE(doc->isChanged());
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(doc->caption(), QStringLiteral("Новый документ"));

    const QString path = folder.file(QStringLiteral("Sm/Кухня"));
    const EstimateDocument::Result saved = doc->saveAs(path);
    ASSERT_TRUE(saved) << saved.error.toStdString();
    EXPECT_EQ(doc->fileName(), path + QStringLiteral(".sim")) << "the extension is added";
    EXPECT_EQ(doc->xlsFileName(), path + QStringLiteral(".xls"));
    EXPECT_EQ(doc->caption(), QStringLiteral("Кухня.sim"));
    EXPECT_FALSE(doc->isChanged());
    // The register knows the file with the totals the document computed.
    const QString grand = doc->editor().grandTotal().text();
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT name, client, sumrab, allsum FROM documents"),
              QStringList{"Кухня|ООО `Ромашка`|3750,00|" + grand});

    ASSERT_TRUE(doc->newDocument());
    EXPECT_EQ(cell(2, EstimateCol::Name), QString());
    EXPECT_EQ(doc->header().customer, header().customer) << "a new document keeps the parties";
    EXPECT_EQ(doc->header().number, 1);
    EXPECT_EQ(doc->header().date, QDate::currentDate());
    EXPECT_TRUE(doc->header().nameWork.isEmpty());
    EXPECT_TRUE(doc->fileName().isEmpty());

    QSignalSpy loaded(doc.get(), &EstimateDocument::loaded);
    const EstimateDocument::Result opened = doc->open(path + QStringLiteral(".sim"));
    ASSERT_TRUE(opened) << opened.error.toStdString();
    EXPECT_EQ(loaded.size(), 1);
    EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Окраска стен"));
    EXPECT_EQ(cell(2, EstimateCol::Sum), QStringLiteral("3750,00"));
    EXPECT_EQ(doc->header(), header());
    EXPECT_FALSE(doc->isChanged());
    EXPECT_FALSE(doc->isDraft());
    EXPECT_EQ(doc->print().number, QStringLiteral("А-12"));
    EXPECT_EQ(doc->print().customer, QStringLiteral("ООО \"Ромашка\""));
}

TEST_F(EstimateDocumentTest, NumberTextJoinsTheTextPartAndTheNumber) {
    struct Case {
        QString word;
        int number;
        QString expected;
    };
    for (const Case &c : {Case{"", 5, "5"}, Case{"А", 12, "А-12"}, Case{"  Б ", 3, "Б-3"},
                          Case{"16032025", 1, "16032025-1"}}) {
        EstimateHeader::Values v;
        v.numberWord = c.word;
        v.number = c.number;
        EXPECT_EQ(EstimateDocument::numberText(v), c.expected) << c.word.toStdString();
    }
}

TEST_F(EstimateDocumentTest, DraftIsKeptApartAndStaysADraftWhenReopened) {
    ASSERT_TRUE(doc->newDocument(true));
    EXPECT_TRUE(doc->isDraft());
    EXPECT_EQ(doc->caption(), QStringLiteral("Новый черновик"));
    type(2, EstimateCol::Name, QStringLiteral("Черновая работа"));
    const QString path = DocumentFile::draftsFolder(folder.path()) + QStringLiteral("/Набросок.sim");
    QDir().mkpath(DocumentFile::draftsFolder(folder.path()));
    ASSERT_TRUE(doc->saveAs(path));
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT COUNT(*) FROM drafts"), QStringList{"1"});
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT COUNT(*) FROM documents"), QStringList{"0"});
    ASSERT_TRUE(doc->newDocument(false));
    EXPECT_FALSE(doc->isDraft());
    ASSERT_TRUE(doc->open(path));
    EXPECT_TRUE(doc->isDraft());
    // Saving it again updates its one register row.
    type(2, EstimateCol::Name, QStringLiteral("Черновая работа 2"));
    ASSERT_TRUE(doc->save());
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT COUNT(*) FROM drafts"), QStringList{"1"});
}

TEST_F(EstimateDocumentTest, RefusedOpenLeavesTheDocumentItsEditsAndItsChangedState) {
    type(2, EstimateCol::Name, QStringLiteral("Правка"));
    const QString junk = folder.file(QStringLiteral("Sm/мусор.sim"));
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(4096, 'x'));
    f.close();
    for (const QString &path : {folder.file(QStringLiteral("Sm/нет такого.sim")), junk}) {
        const EstimateDocument::Result r = doc->open(path);
        EXPECT_FALSE(r.ok) << path.toStdString();
        EXPECT_FALSE(r.error.isEmpty());
        EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Правка"));
        EXPECT_TRUE(doc->isChanged());
        EXPECT_TRUE(doc->fileName().isEmpty());
    }
    // A save without a name is refused rather than written somewhere.
    EXPECT_FALSE(doc->save().ok);
    EXPECT_TRUE(doc->isChanged());
}

TEST_F(EstimateDocumentTest, AFileAnotherProgramHoldsIsTakenOnlyWhenTheUserSaysSo) {
    type(2, EstimateCol::Name, QStringLiteral("Первая"));
    const QString path = folder.file(QStringLiteral("Sm/Общая.sim"));
    ASSERT_TRUE(doc->saveAs(path));

    // A second copy of the program on its own data folder.
    TestFolder other;
    ASSERT_TRUE(DataFolder::ensureTree(other.path()).isEmpty());
    TModuleSQL otherModule(other.path());
    EstimateDocument second;
    second.attach(&otherModule, nullptr, nullptr);
    ASSERT_TRUE(second.newDocument());
    QString warning;
    auto refuse = [&warning](const QString &text) {
        warning = text;
        return false;
    };
    // The lock names a running process (this one): the second copy is asked, and a No leaves it as it was.
    const EstimateDocument::Result declined = second.open(path, refuse);
    EXPECT_TRUE(declined.cancelled);
    EXPECT_FALSE(declined.ok);
    EXPECT_FALSE(warning.isEmpty());
    EXPECT_TRUE(second.fileName().isEmpty());
    EXPECT_TRUE(second.open(path, [](const QString &) { return true; }));
    EXPECT_EQ(second.grid().cell(2, EstimateCol::Name), QStringLiteral("Первая"));
}

} // namespace
