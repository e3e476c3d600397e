// The editors beside the rate grid: the resources editor's statements on disk and its window, copying
// a price list with its resources (locally, and into the server's list on the test MariaDB), and the
// note to the price lists.

#include "PriceTestData.h"
#include "ScriptedDialogs.h"
#include "SqlRows.h"
#include "pricebase/PriceCopy.h"
#include "pricebase/PriceNote.h"
#include "pricebase/RedPrimRas_frame.h"
#include "pricebase/ResourceModel.h"
#include "pricebase/Resurse_frame.h"

#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStringEncoder>
#include <QTableView>

namespace {

TEST(ResourceStore, RefusalsFollowTheChosenRow) {
    const RateRow section = rate("2", "Полы", "", ""), subsection = rate("2-1", "Стяжка", "пв", "", "5"),
                  work = rate("2-1-1", "Стяжка цементная", "м2", "600", "6"), blank;
    struct Case {
        bool shows;
        const RateRow *row;
        QString refusal;
    };
    for (const Case &c :
         {Case{false, &work, "Откройте вкладку \"Расценки\""}, Case{true, &subsection, "Выбран подвид работ"},
          Case{true, &section, "Выбран вид работ"}, Case{true, &blank, "Пустая расценка"},
          Case{true, nullptr, "Пустая расценка"}, Case{true, &work, ""}})
        EXPECT_EQ(ResourceStore::refusal(c.shows, c.row), c.refusal) << c.refusal.toStdString();
}

TEST(ResourceStore, EditorStatementsLandOnDisk) {
    PriceFixture f;
    f.addResource("resurs1", "Цемент", "кг", "12", "6", "15");
    f.addResource("resurs1", "Песок", "кг", "2", "7", "40"); // another rate's
    ResourceModel model(f.price(), "resurs1", "6");
    ASSERT_TRUE(model.reload());
    ASSERT_EQ(model.rowCount(), 1);
    // Added: an empty resource of the rate, then filled cell by cell, each edit one UPDATE of the row.
    const int row = model.addResource();
    ASSERT_EQ(row, 1) << model.lastError().toStdString();
    EXPECT_EQ(queryRows(f.price(), "SELECT name, ras FROM resurs1 ORDER BY id"),
              (QStringList{"Цемент|6", "Песок|7", "|6"}));
    for (auto [col, text] : {std::pair{int(ResCol::Name), "Фибра"},
                             {int(ResCol::Unit), "кг"},
                             {int(ResCol::Norma), "0,6"},
                             {int(ResCol::Price), "350 руб"}})
        ASSERT_TRUE(model.setData(model.index(row, col), QString::fromUtf8(text), Qt::EditRole));
    EXPECT_FALSE(model.setData(model.index(row, ResCol::Id), "99", Qt::EditRole)); // keys are not typed
    EXPECT_EQ(queryRows(f.price(), "SELECT name, edizm, cena, norma, ras FROM resurs1 WHERE name='Фибра'"),
              QStringList{"Фибра|кг|350 руб|0,6|6"});
    EXPECT_TRUE(model.index(row, ResCol::Price).data(Qt::BackgroundRole).isValid()); // kept, marked
    // The price column's heading while a price is typed.
    EXPECT_EQ(model.headerData(ResCol::Price, Qt::Horizontal, Qt::DisplayRole).toString(), "Цена");
    model.setPriceEditing(true);
    EXPECT_EQ(model.headerData(ResCol::Price, Qt::Horizontal, Qt::DisplayRole).toString(), "Цена материала");
    model.setPriceEditing(false);
    ASSERT_TRUE(model.removeResource(0));
    EXPECT_EQ(queryRows(f.price(), "SELECT name FROM resurs1 ORDER BY id"), (QStringList{"Песок", "Фибра"}));
    ASSERT_TRUE(model.clearTable());
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM resurs1"), "0");
    EXPECT_EQ(model.rowCount(), 0);
    // The table is still there for the next resource.
    EXPECT_FALSE(ResourceStore::add(f.price(), "resurs1", "6").isEmpty());
    EXPECT_TRUE(ResourceStore::add(f.price(), "price1", "6").isEmpty()); // not a resources table
}

TEST(ResourceStore, EditorWindowRefusesAsksAndDeletes) {
    PriceFixture f;
    ScriptedDialogsGuard dialogs;
    f.addResource("resurs1", "Цемент", "кг", "12", "6", "15");
    ResourceModel model(f.price(), "resurs1", "6");
    ASSERT_TRUE(model.reload());
    {
        // A section title chosen: nothing is added.
        ResourceModel none(f.price(), "resurs1", QString());
        TResurse refused(&none, "Расценка не выбрана", "Выбран вид работ", "Мои расценки");
        refused.ButtonAddRes->click();
        EXPECT_EQ(dialogs->lastText(), "Выбран вид работ");
        EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM resurs1"), "1");
    }
    TResurse window(&model, "Ресурсы расценки 2-1-1 «Стяжка»", QString(), "Мои расценки");
    EXPECT_EQ(window.windowTitle(), "Ресурсы");
    EXPECT_EQ(window.LabelRes->text(), "Ресурсы расценки 2-1-1 «Стяжка»");
    window.StringGridListMat->setCurrentIndex(model.index(0, ResCol::Name));
    dialogs->queueAnswer(Dialogs::Answer::No);
    window.ButtonDeleteRes->click();
    EXPECT_EQ(dialogs->lastText(), "Удалить материал Цемент?");
    EXPECT_EQ(model.rowCount(), 1);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    window.ButtonDeleteRes->click();
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM resurs1"), "0");
    window.ButtonAddRes->click();
    EXPECT_EQ(f.scalar(f.price(), "SELECT ras FROM resurs1"), "6");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    window.ButtonClearRes->click();
    EXPECT_EQ(dialogs->lastText(), "Удалить ресурсы для Мои расценки?");
    EXPECT_EQ(f.scalar(f.price(), "SELECT count(*) FROM resurs1"), "0");
}

TEST(PriceCopy, ListOneIntoListTwoInRoublesWithItsResources) {
    PriceFixture f;
    f.addRates("price1", {{"1", "Полы", "", "", "1"},
                          {"1-1", "Стяжка", "пв", "", "2"},
                          {"1-1-1", "Стяжка цементная", "м2", "600", "3"},
                          {"1-1-2", "Наливной пол", "м2", "450", "4"}});
    QSqlQuery(f.price()).exec("UPDATE price1 SET dol='8', koef='1,2', link='720' WHERE rec='3'");
    f.addRates("price2", {{"9-1", "Старая расценка", "м2", "1", "9"}}, "tenge");
    f.addResource("resurs1", "Цемент", "кг", "12", "3", "15");
    f.addResource("resurs1", "Смесь наливная", "кг", "30", "4", "16");
    f.addResource("resurs2", "Старый ресурс", "кг", "1", "9", "1");
    PriceCopy::Outcome out;
    QString error;
    ASSERT_TRUE(PriceCopy::copy(f.price(), nullptr, PriceCopy::List::MyPrice, PriceCopy::List::Price2, 0,
                                &out, &error))
        << error.toStdString();
    EXPECT_EQ(out.rates, 4);
    EXPECT_EQ(out.resources, 2);
    EXPECT_EQ(queryRows(f.price(),
                        "SELECT edras, nameras, edizm, rub, rec, coalesce(dol,''), coalesce(grn,''), "
                        "coalesce(br,''), coalesce(tenge,''), coalesce(koef,''), coalesce(link,'') "
                        "FROM price2 ORDER BY id"),
              (QStringList{"1|Полы|||1||||||", "1-1|Стяжка|пв||2||||||",
                           "1-1-1|Стяжка цементная|м2|600|3||||||", "1-1-2|Наливной пол|м2|450|4||||||"}));
    // The resources keep their rates' record numbers, so they stay attached.
    EXPECT_EQ(queryRows(f.price(), "SELECT name, ras, norma FROM resurs2 ORDER BY id"),
              (QStringList{"Цемент|3|15", "Смесь наливная|4|16"}));
    // The source is as it was; a list is not copied into itself; the server needs a connection.
    EXPECT_EQ(f.scalar(f.price(), "SELECT dol FROM price1 WHERE rec='3'"), "8");
    EXPECT_FALSE(
        PriceCopy::copy(f.price(), nullptr, PriceCopy::List::Price2, PriceCopy::List::Price2, 0, &out));
    RemotePriceList offline;
    EXPECT_FALSE(PriceCopy::copy(f.price(), &offline, PriceCopy::List::MyPrice, PriceCopy::List::Server, 0,
                                 &out, &error));
    EXPECT_TRUE(error.contains("подключения")) << error.toStdString();
}

TEST(PriceCopy, IntoTheServersListAndBack) {
    const std::optional<ServerSettings> server = testServer();
    if (!server)
        GTEST_SKIP() << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
    ServerSettings s = *server;
    s.table = QStringLiteral("price_copy_%1").arg(QCoreApplication::applicationPid());
    PriceFixture f;
    f.addRates("price1", {{"1", "Стены", "", "", "1"}, {"1-1", "Шпаклёвка стен", "м2", "350", "2"}});
    f.addResource("resurs1", "Шпаклёвка финишная", "кг", "40", "2", "1,2");
    RemotePriceList remote;
    ASSERT_TRUE(remote.connectTo(s));
    EXPECT_EQ(PriceCopy::remoteRows(remote), 0);
    PriceCopy::Outcome out;
    QString error;
    ASSERT_TRUE(PriceCopy::copy(f.price(), &remote, PriceCopy::List::MyPrice, PriceCopy::List::Server, 0,
                                &out, &error))
        << error.toStdString();
    PriceListData data;
    ASSERT_TRUE(remote.readList(QString(), data));
    ASSERT_EQ(data.rows.size(), 2u);
    EXPECT_EQ(data.rows[1][PriceCol::Name], "Шпаклёвка стен");
    EXPECT_EQ(data.rows[1][PriceCol::Price], "350");
    EXPECT_EQ(data.rows[1][PriceCol::Rec], "2");
    EXPECT_EQ(queryRows(f.price(), "SELECT name, ras FROM resurs_s"), QStringList{"Шпаклёвка финишная|2"});
    // Back from the server into list 2, in dollars this time.
    ASSERT_TRUE(PriceCopy::copy(f.price(), &remote, PriceCopy::List::Server, PriceCopy::List::Price2, 1, &out,
                                &error))
        << error.toStdString();
    EXPECT_EQ(queryRows(f.price(), "SELECT nameras, dol, coalesce(rub,''), rec FROM price2 ORDER BY id"),
              (QStringList{"Стены|||1", "Шпаклёвка стен|350||2"}));
    remote.disconnect();
    dropServerTable(s);
}

TEST(PriceNote, TheNoteFileIsReadAndWritten) {
    TestFolder folder;
    ScriptedDialogsGuard dialogs;
    ensureApplication();
    QString text;
    ASSERT_TRUE(PriceNote::read(folder.path(), &text));
    EXPECT_TRUE(text.isEmpty()); // no note yet
    {
        TRedPrimRas window(folder.path());
        EXPECT_EQ(window.windowTitle(), "Примечание к расценкам");
        window.MemoPrim->setPlainText("Цены с 1 марта.\nБез НДС.");
        window.ButtonClose->click(); // closed without saving
        EXPECT_FALSE(QFile::exists(PriceNote::path(folder.path())));
    }
    {
        TRedPrimRas window(folder.path());
        window.MemoPrim->setPlainText("Цены с 1 марта.\nБез НДС.");
        window.ButtonSave->click();
    }
    QFile f(folder.file("Sh/prim.txt"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(f.readAll()), "Цены с 1 марта.\nБез НДС.");
    f.close();
    // A note written on Windows, and one too big to be a note.
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(QStringEncoder("windows-1251").encode(QStringLiteral("Расценки 2025 года")));
    f.close();
    TRedPrimRas old(folder.path());
    EXPECT_EQ(old.MemoPrim->toPlainText(), "Расценки 2025 года");
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_TRUE(f.resize(PriceNote::kMaxBytes + 1));
    f.close();
    TRedPrimRas big(folder.path());
    EXPECT_FALSE(big.loaded());
    EXPECT_FALSE(big.ButtonSave->isEnabled()); // what could not be read is not overwritten
    EXPECT_TRUE(dialogs->lastText().contains("prim.txt")) << dialogs->lastText().toStdString();
}

} // namespace
