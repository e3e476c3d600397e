// The rate panel in the main window: live search typed into the estimate grid and chosen from
// MemoPrice, insertion from the rate grid with the duplicate dialog, ticked rows, edit mode, section
// navigation and the crew switch. Leaves a picture of the window in the temporary folder.

#include "MainWindowFixture.h"
#include "MoneyText.h"
#include "PriceTestData.h"
#include "estimate/EstimateEditor.h"
#include "pricebase/CalcDocKolvo_frame.h"
#include "pricebase/CreateRasVirn_frame.h"
#include "pricebase/LiveSearchList.h"
#include "pricebase/PriceBase.h"
#include "pricebase/RatePanel_frame.h"
#include "pricebase/RemotePriceList.h"
#include "pricebase/ServerRasSettings_frame.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QTreeView>

namespace {

// QTest's key helpers take Latin keys only: Cyrillic is typed as the events a keyboard sends.
void typeText(QWidget *widget, const QString &text) {
    for (QChar ch : text) {
        const int key = ch == ' ' ? int(Qt::Key_Space) : int(ch.toUpper().unicode());
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(ch));
        QApplication::sendEvent(widget, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, QString(ch));
        QApplication::sendEvent(widget, &release);
    }
}

// A double-click as the user makes it: the views want the press before the second click.
void doubleClick(QWidget *viewport, const QPoint &at) {
    QTest::mouseClick(viewport, Qt::LeftButton, {}, at);
    QTest::mouseDClick(viewport, Qt::LeftButton, {}, at);
}

class PriceWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        QSqlQuery q(module->database(Db::Price));
        const QStringList rates = {
            "'1','Отделка стен','','','1'",
            "'1-1','Подготовка','пв','','2'",
            "'1-1-1','Грунтовка СТЕН','м2','50','3'",
            "'1-1-2','Покраска стен','м2','300','4'",
            "'1-2','Шпатлёвка стен','м2','1 200.5','5'",
            "'2','Полы','','','6'",
            "'2-1','Укладка плитки','м2','900','7'",
            "'2-2','Стяжка пола','м2','450-600','8'",
        };
        for (const QString &r : rates)
            ASSERT_TRUE(q.exec("INSERT INTO price1 (edras, nameras, edizm, rub, rec) VALUES (" + r + ")"));
        ASSERT_TRUE(q.exec(
            "INSERT INTO resurs1 (name, edizm, cena, ras, norma) VALUES ('Грунт','л','120','3','0,2')"));
        ASSERT_TRUE(q.exec(
            "INSERT INTO resurs1 (name, edizm, cena, ras, norma) VALUES ('Краска','л','400','4','0,25')"));
        window->resize(1500, 900);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))->ReadSqlRAS();
        grid = (&window->document().grid());
    }
    RateGridModel &rates() { return window->part<PricePart>()->priceBase()->model(); }
    QString cell(int row, int col) { return grid->cell(row, col); }
    QStringList materials() { return estimateMaterials(module->database(Db::Smeta)); }
    // Starts typing into the name cell of estimate row r and returns the cell editor.
    QLineEdit *typeName(int row, const QString &text) {
        // The editor of an earlier insertion is deleted once control returns to the event loop.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        child<QTableView>(window.get(), QStringLiteral("StringGridDoc"))->setFocus();
        child<QTableView>(window.get(), QStringLiteral("StringGridDoc"))
            ->setCurrentIndex(grid->index(EstimateGrid::toModelRow(row), EstimateCol::Name));
        typeText(child<QTableView>(window.get(), QStringLiteral("StringGridDoc")), text.left(1));
        auto *editor = child<QTableView>(window.get(), QStringLiteral("StringGridDoc"))
                           ->viewport()
                           ->findChild<QLineEdit *>();
        if (editor)
            typeText(editor, text.mid(1));
        return editor;
    }
    void settle() {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }
    void doubleClickRate(int gridRow) {
        QTableView *view = child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))->StringGridRas;
        view->scrollTo(rates().index(RateGridModel::toModelRow(gridRow), 1));
        const QRect r = view->visualRect(rates().index(RateGridModel::toModelRow(gridRow), 1));
        doubleClick(view->viewport(), r.center());
    }
    EstimateGrid *grid = nullptr;
};

TEST_F(PriceWindow, TypedNameChosenFromMemoPriceFillsRowTotalsAndMaterials) {
    child<QAction>(window.get(), QStringLiteral("CheckBoxLiveSearch"))->setChecked(true);
    QLineEdit *editor = typeName(2, QStringLiteral("стен"));
    ASSERT_NE(editor, nullptr);
    ASSERT_TRUE(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->isVisible());
    // Lower case typed finds capitals; section titles are names too.
    ASSERT_EQ(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->model()->rowCount(), 4);
    // The list is 175 px high however few names it holds.
    EXPECT_EQ(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->height(), 175);
    EXPECT_EQ(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))
                  ->model()
                  ->index(0, 0)
                  .data()
                  .toString(),
              QStringLiteral("Отделка стен"));
    QTest::keyClick(editor, Qt::Key_Down);
    QTest::keyClick(editor, Qt::Key_Down); // "Покраска стен"
    QTest::keyClick(editor, Qt::Key_Return);
    settle();
    EXPECT_FALSE(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->isVisible());
    EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Покраска стен"));
    EXPECT_EQ(cell(2, EstimateCol::Num), QStringLiteral("1"));
    EXPECT_EQ(cell(2, EstimateCol::Ras), QStringLiteral("1-1-2"));
    EXPECT_EQ(cell(2, EstimateCol::Unit), QStringLiteral("м2"));
    EXPECT_EQ(cell(2, EstimateCol::Price), QStringLiteral("300,00"));
    EXPECT_EQ(cell(2, EstimateCol::IdRas), QStringLiteral("4"));
    EXPECT_EQ(cell(2, EstimateCol::NamePrice), QStringLiteral("resurs1"));
    EXPECT_EQ(window->part<EditorPart>()->currentRow(), 3); // a new row, ready for the next name
    EXPECT_EQ(cell(3, EstimateCol::Num), QStringLiteral("2"));

    // Typing only blanks hides the list; a double-click on an entry inserts it.
    editor = typeName(3, QStringLiteral("  "));
    ASSERT_NE(editor, nullptr);
    EXPECT_FALSE(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->isVisible());
    editor->clear(); // the typed text is matched as typed: "  грунт" would find nothing
    typeText(editor, QStringLiteral("грунт"));
    ASSERT_TRUE(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->isVisible());
    ASSERT_EQ(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->model()->rowCount(), 1);
    EXPECT_EQ(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->height(), 175);
    const QRect first =
        child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))
            ->visualRect(
                child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->model()->index(0, 0));
    doubleClick(child<LiveSearchList>(window.get(), QStringLiteral("MemoPrice"))->viewport(), first.center());
    settle();
    EXPECT_EQ(cell(3, EstimateCol::Name), QStringLiteral("Грунтовка СТЕН"));
    EXPECT_EQ(cell(3, EstimateCol::Price), QStringLiteral("50,00"));
    EXPECT_EQ(materials(), (QStringList{"Краска||400|", "Грунт||120|"}));

    // Quantities bring the materials' quantities from the norms and the totals.
    grid->setData(grid->index(0, EstimateCol::Qty), "20", Qt::EditRole);
    settle();
    grid->setData(grid->index(1, EstimateCol::Qty), "10", Qt::EditRole);
    settle();
    EXPECT_EQ(cell(2, EstimateCol::Sum), QStringLiteral("6000,00"));
    EXPECT_EQ(materials(), (QStringList{"Краска|5|400|2000,00", "Грунт|2|120|240,00"}));
    EXPECT_EQ(rub(window->document().editor().worksRaw()), "6500,00");
    EXPECT_EQ(rub(window->document().editor().materialsRaw()), "2240,00");
    EXPECT_NE(child<QLineEdit>(window.get(), QStringLiteral("Edit6"))->text(), QStringLiteral("0,00"));

    const QString picture = QDir::temp().filePath("virn-price-window.png");
    EXPECT_TRUE(window->grab().save(picture));
    std::cout << "picture of the main window: " << picture.toStdString() << std::endl;

    // Quantity 0 removes what only that row needed; deleting the row, too.
    grid->setData(grid->index(1, EstimateCol::Qty), "0", Qt::EditRole);
    settle();
    EXPECT_EQ(materials(), (QStringList{"Краска|5|400|2000,00"}));
    grid->removeGridRows(2, 1);
    settle();
    EXPECT_TRUE(materials().isEmpty());
}

TEST_F(PriceWindow, DoubleClickInsertsAndTheSameNameInTheSectionOpensFound) {
    child<QAction>(window.get(), QStringLiteral("CheckBoxControlPrice"))->setChecked(true);
    doubleClickRate(3); // "Грунтовка СТЕН"
    EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Грунтовка СТЕН"));
    EXPECT_EQ(child<QTableView>(window.get(), QStringLiteral("StringGridDoc"))->currentIndex().column(),
              EstimateCol::Qty);
    grid->setData(grid->index(0, EstimateCol::Qty), "3", Qt::EditRole);
    settle();
    QString caption;
    QTimer::singleShot(0, [&caption] {
        auto *dialog = qobject_cast<TCalcDocKolvo *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        caption = dialog->windowTitle();
        EXPECT_EQ(dialog->EditNumber->text(), QStringLiteral("1"));
        EXPECT_EQ(dialog->EditKolvo->text(), QStringLiteral("3"));
        dialog->EditKolvoAdd->setText("2,5");
        dialog->accept();
    });
    doubleClickRate(3);
    settle();
    EXPECT_EQ(caption, QStringLiteral("Найдено совпадение"));
    EXPECT_EQ(grid->gridRowCount(), 3); // nothing inserted
    EXPECT_EQ(cell(2, EstimateCol::Qty), QStringLiteral("5,5"));
    EXPECT_EQ(materials(), (QStringList{"Грунт|1,1|120|132,00"}));
    // A price range inserts its low end; the quantity cell takes the focus.
    doubleClickRate(8);
    EXPECT_EQ(cell(3, EstimateCol::Price), QStringLiteral("450,00"));
    EXPECT_EQ(window->part<EditorPart>()->currentRow(), 3);
}

TEST_F(PriceWindow, TickedRowsGoInListOrderAndEditModeRefuses) {
    child<QAction>(window.get(), QStringLiteral("CheckRowMat"))->setChecked(true);
    rates().setChecked(7, true);
    rates().setChecked(4, true);
    doubleClickRate(3);
    EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Покраска стен"));
    EXPECT_EQ(cell(3, EstimateCol::Name), QStringLiteral("Укладка плитки"));
    EXPECT_EQ(grid->gridRowCount(), 4);
    EXPECT_TRUE(rates().checkedIndices().empty());

    child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))->ToolEditRasRight->setChecked(true);
    window->part<PricePart>()->StringGridRasDblClickCell(3);
    EXPECT_EQ(dialogs->lastCaption(), QStringLiteral("Предупреждение"));
    EXPECT_EQ(dialogs->lastText(), QStringLiteral("Нельзя добавить во время редактирования"));
    EXPECT_EQ(grid->gridRowCount(), 4);
    // In edit mode: a row inserted above "Полы", typed in place, numbers follow (the rate after the
    // subsection belongs to it), written on leaving.
    child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))
        ->StringGridRas->setCurrentIndex(rates().index(5, 1));
    child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))->ToolInsertRas->trigger();
    rates().setData(rates().index(5, 1), "Плинтус", Qt::EditRole);
    rates().setData(rates().index(5, 2), "м.п.", Qt::EditRole);
    rates().setData(rates().index(5, 3), "150", Qt::EditRole);
    child<TRatePanel>(window.get(), QStringLiteral("RatePanel"))->ToolEditRasRight->setChecked(false);
    QSqlQuery q(module->database(Db::Price));
    q.exec("SELECT group_concat(edras || ' ' || nameras, ';') FROM price1");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(),
              QStringLiteral("1 Отделка стен;1-1 Подготовка;1-1-1 Грунтовка СТЕН;1-1-2 Покраска "
                             "стен;1-1-3 Шпатлёвка стен;1-1-4 Плинтус;2 Полы;2-1 Укладка плитки;2-2 "
                             "Стяжка пола"));
}

TEST_F(PriceWindow, TreeAndComboNarrowTheGridAndTheCrewSwitchFillsCrewPrices) {
    TRatePanel *panel = child<TRatePanel>(window.get(), QStringLiteral("RatePanel"));
    ASSERT_EQ(panel->ComboBox2->count(), 3);
    EXPECT_EQ(panel->ComboBox2->itemText(0), QStringLiteral("   Все"));
    EXPECT_EQ(panel->ComboBox2->itemText(2), QStringLiteral("2 Полы"));
    auto *tree = qobject_cast<QStandardItemModel *>(panel->ListBox1->model());
    ASSERT_EQ(tree->rowCount(), 3);
    const QModelIndex sub = tree->index(0, 0, tree->index(1, 0));
    EXPECT_EQ(sub.data().toString(), QStringLiteral("1-1 Подготовка"));
    QTest::mouseClick(panel->ListBox1->viewport(), Qt::LeftButton, {},
                      panel->ListBox1->visualRect(tree->index(2, 0)).center());
    EXPECT_EQ(panel->ComboBox2->currentIndex(), 2);
    EXPECT_EQ(rates().visibleCount(), 2);
    EXPECT_EQ(rates().cell(1, 0), QStringLiteral("2-1"));
    panel->ListBox1->expandAll();
    QTest::mouseClick(panel->ListBox1->viewport(), Qt::LeftButton, {},
                      panel->ListBox1->visualRect(sub).center());
    EXPECT_EQ(panel->ComboBox2->currentIndex(), 1);
    EXPECT_EQ(rates().visibleCount(), 3); // 1-1 with its two rates, not 1-2
    panel->ComboBox2Select(0);
    EXPECT_EQ(rates().visibleCount(), 8);
    // In edit mode a node does not filter: the grid goes to its title.
    panel->ToolEditRasRight->setChecked(true);
    panel->ListBox1Click(tree->index(2, 0));
    EXPECT_EQ(rates().visibleCount(), 8);
    EXPECT_EQ(panel->StringGridRas->currentIndex().row(), 5); // grid row 6, "Полы"
    panel->ToolEditRasRight->setChecked(false);

    panel->spdRasBrig->setChecked(true);
    EXPECT_EQ(panel->PageControlRas->tabText(1), QStringLiteral("Для бригады"));
    EXPECT_EQ(panel->spdRasBrig->toolTip(), QStringLiteral("Вернуться к расценкам 2"));
    EXPECT_FALSE(panel->StringGridRas->isColumnHidden(PriceCol::Link));
    EXPECT_EQ(rates().cell(3, PriceCol::Link), QStringLiteral("35,00")); // 50 x 0,7
    EXPECT_EQ(rates().cell(3, PriceCol::Koef), QStringLiteral("0,7"));
    panel->spdRasBrig->setChecked(false);
    EXPECT_EQ(panel->PageControlRas->tabText(1), QStringLiteral("Расценки 2"));
    EXPECT_TRUE(panel->StringGridRas->isColumnHidden(PriceCol::Link));
    // Price list 2 is empty: one empty row and "   Все" alone.
    panel->PageControlRas->setCurrentIndex(1);
    EXPECT_EQ(window->part<PricePart>()->priceBase()->table(), QStringLiteral("price2"));
    EXPECT_EQ(rates().rowCount(), 1);
    EXPECT_EQ(panel->ComboBox2->count(), 1);
    // The currency combo chooses the price column of every read.
    panel->PageControlRas->setCurrentIndex(0);
    child<QComboBox>(window.get(), QStringLiteral("EditValuta"))->setCurrentIndex(1);
    EXPECT_TRUE(rates().cell(3, PriceCol::Price).isEmpty());
}

} // namespace

namespace {

TEST_F(PriceWindow, ServerSettingsDialogRefusesWhatCannotWork) {
    struct Case {
        QString host, database, table;
        bool accepted;
    };
    const Case cases[] = {
        {"127.0.0.1", "virn", "price_virn", true},  {"", "virn", "price_virn", false},
        {"db.local", "virn", "цены", false},        {"db.local", "virn", "price-list", false},
        {"db.local", "virn; DROP", "price", false}, {"db.local", "virn", "Price_2", true},
    };
    for (const Case &c : cases) {
        ServerSettings s;
        s.host = c.host;
        s.database = c.database;
        s.table = c.table;
        TServerRasSettings dialog(s, window.get());
        dialog.EditPort->setValue(3307);
        dialogs->clear();
        dialog.accept();
        EXPECT_EQ(dialog.result() == QDialog::Accepted, c.accepted) << c.table.toStdString();
        EXPECT_EQ(dialogs->shown().isEmpty(), c.accepted);
        EXPECT_EQ(dialog.settings().port, 3307);
    }
}

TEST_F(PriceWindow, ServerButtonConnectsReadsTheRemoteListAndReportsFailures) {
    const std::optional<ServerSettings> server = testServer();
    if (!server)
        GTEST_SKIP() << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
    TRatePanel *panel = child<TRatePanel>(window.get(), QStringLiteral("RatePanel"));
    ServerSettings s = *server;
    s.password = "не тот пароль";
    s.table = QStringLiteral("price_w%1").arg(QCoreApplication::applicationPid());
    s.save(*window->settingsStore());

    // A wrong password: the server's reason in Russian words, the local list stays on screen.
    panel->ToolServerRas->setChecked(true);
    EXPECT_EQ(dialogs->lastCaption(), QStringLiteral("Ошибка"));
    EXPECT_TRUE(dialogs->lastText().startsWith(QStringLiteral("Не удалось подключиться к серверу Вирн: ")));
    EXPECT_TRUE(dialogs->lastText().contains(QStringLiteral("Access denied")))
        << dialogs->lastText().toStdString();
    EXPECT_FALSE(panel->ToolServerRas->isChecked());
    EXPECT_EQ(panel->ToolServerRas->toolTip(), QStringLiteral("Подключиться к серверу Вирн"));
    EXPECT_EQ(panel->PageControlRas->currentIndex(), 0);
    EXPECT_EQ(rates().visibleCount(), 8);

    // Right settings: choosing the server's tab connects and shows the (new, empty) remote list; filling
    // it from a local list is offered and declined.
    s.password = server->password;
    s.save(*window->settingsStore());
    QString offered;
    QTimer::singleShot(0, [&offered] {
        if (auto *dialog = qobject_cast<TCreateRasVirn *>(QApplication::activeModalWidget())) {
            offered = dialog->objectName();
            dialog->reject();
        }
    });
    panel->PageControlRas->setCurrentIndex(3);
    EXPECT_EQ(offered, QStringLiteral("CreateRasVirn"));
    ASSERT_TRUE(window->part<PricePart>()->priceBase()->serverConnected())
        << dialogs->lastText().toStdString();
    EXPECT_TRUE(panel->ToolServerRas->isChecked());
    EXPECT_EQ(panel->ToolServerRas->toolTip(), QStringLiteral("Отключиться от сервера"));
    EXPECT_EQ(window->part<PricePart>()->priceBase()->table(), s.table);
    EXPECT_EQ(rates().visibleCount(), 0);
    // Rates typed in edit mode go to the server when edit mode ends.
    panel->ToolEditRasRight->setChecked(true);
    rates().setData(rates().index(0, 1), "Кровля", Qt::EditRole);
    panel->ToolAddRas->trigger();
    rates().setData(rates().index(1, 1), "Монтаж профнастила", Qt::EditRole);
    rates().setData(rates().index(1, 2), "м2", Qt::EditRole);
    rates().setData(rates().index(1, 3), "700", Qt::EditRole);
    panel->ToolEditRasRight->setChecked(false);
    EXPECT_FALSE(rates().editMode());
    ASSERT_EQ(rates().visibleCount(), 2);
    EXPECT_EQ(rates().cell(2, PriceCol::Ras), QStringLiteral("1-1"));
    EXPECT_EQ(panel->ComboBox2->itemText(1), QStringLiteral("1 Кровля"));
    doubleClickRate(2);
    EXPECT_EQ(cell(2, EstimateCol::Name), QStringLiteral("Монтаж профнастила"));
    EXPECT_EQ(cell(2, EstimateCol::NamePrice), QStringLiteral("resurs_s"));

    panel->ToolServerRas->setChecked(false);
    EXPECT_FALSE(window->part<PricePart>()->priceBase()->serverConnected());
    EXPECT_EQ(panel->PageControlRas->currentIndex(), 0);
    EXPECT_EQ(rates().visibleCount(), 8);
    // The test's table goes again.
    dropServerTable(s);
}

TEST_F(PriceWindow, AnEmptyServerListIsFilledFromTheChosenLocalList) {
    const std::optional<ServerSettings> server = testServer();
    if (!server)
        GTEST_SKIP() << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
    TRatePanel *panel = child<TRatePanel>(window.get(), QStringLiteral("RatePanel"));
    ServerSettings s = *server;
    s.table = QStringLiteral("price_fill%1").arg(QCoreApplication::applicationPid());
    s.save(*window->settingsStore());
    QTimer::singleShot(0, [] {
        auto *dialog = qobject_cast<TCreateRasVirn *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->RadioMyPrice->setChecked(true);
        dialog->accept();
    });
    panel->ToolServerRas->setChecked(true);
    ASSERT_TRUE(window->part<PricePart>()->priceBase()->serverConnected());
    EXPECT_EQ(panel->PageControlRas->currentIndex(), 3);
    EXPECT_EQ(rates().visibleCount(), 8); // price list 1, now on the server
    EXPECT_TRUE(dialogs->lastText().startsWith(
        QStringLiteral("В «Расценки на сервере Вирн» скопировано расценок: 8")))
        << dialogs->lastText().toStdString();
    panel->ToolServerRas->setChecked(false);
    dropServerTable(s);
}

} // namespace
