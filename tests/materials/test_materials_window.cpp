// The materials lists in the main window: two materials of the sample list picked into the sample
// estimate (a double-click, then ticked rows with a name the estimate has already), the materials tab
// and the totals after it, the undo; the filter and its word file; attaching a material to a rate
// with the refusals; the live search over the estimate's materials. The window is saved as a picture.

#include "MainWindowFixture.h"
#include "MatTestData.h"
#include "SampleData.h"
#include "SqlRows.h"
#include "estimate/EditorPart.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/SmetaMaterials_frame.h"
#include "materials/CalcMatKolvo_frame.h"
#include "materials/ListMat_frame.h"
#include "materials/MaterialLists.h"
#include "materials/MaterialsPart.h"
#include "pricebase/LiveSearchList.h"
#include "pricebase/PriceBase.h"
#include "pricebase/RatePanel_frame.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>

namespace {

class MaterialsWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        window->resize(1500, 900);
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        part = window->part<MaterialsPart>();
        ASSERT_NE(part, nullptr);
        runSampleScript(module->database(Db::Mat), "listmat.sql");
        frame()->ReadSqlMat();
    }
    TListMat *frame() const { return part->listFrame(); }
    QTableView *grid() const { return frame()->StringGridListMat; }
    TRatePanel *panel() const { return window->part<PricePart>()->ratePanel(); }
    EstimateEditor &editor() const { return window->document().editor(); }
    // The model row of a list material by its name.
    int listRow(const QString &name) const {
        const MatListModel &m = part->lists()->model();
        for (int r = 0; r < m.rowCount(); ++r)
            if (m.rowAt(r)->name == name)
                return r;
        ADD_FAILURE() << "no list row " << name.toStdString();
        return -1;
    }
    void doubleClick(int row) {
        const QModelIndex cell = part->lists()->model().index(row, MatListCol::Name);
        grid()->scrollTo(cell);
        // The views want the press before the second click, as the user makes it.
        const QPoint at = grid()->visualRect(cell).center();
        QTest::mouseClick(grid()->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(grid()->viewport(), Qt::LeftButton, {}, at);
    }
    void openSampleEstimate() { ::openSampleEstimate(folder, *window); }
    MaterialsPart *part = nullptr;
};

TEST_F(MaterialsWindow, TwoMaterialsPickedIntoTheSampleEstimate) {
    openSampleEstimate();
    EstimateMaterials *materials = editor().materials();
    const int before = materials->rowCount();
    ASSERT_GT(before, 10);
    const MoneyResult rawBefore = editor().materialsRaw();
    QLineEdit *total = child<QLineEdit>(window.get(), "Edit4");
    const QString totalBefore = total->text();
    EXPECT_FALSE(window->isChanged());

    // The lists in the rate panel's tab "Материалы".
    panel()->PageControlRas->setCurrentIndex(static_cast<int>(PriceTab::Material));
    EXPECT_TRUE(frame()->isVisible());
    EXPECT_EQ(frame()->PageControlMat->tabText(3), "Склад");
    EXPECT_TRUE(frame()->PageControlMat->isTabEnabled(3)); // the warehouse's stock
    // The groups of the sample list are its "пв" titles.
    EXPECT_GT(frame()->ComboBox->count(), 2);
    EXPECT_EQ(frame()->ComboBox->itemText(1), "Сухие смеси");

    // A quantity typed into the list, then a double-click on the material.
    const int plaster = listRow("Штукатурка цементная, мешок 25 кг");
    ASSERT_TRUE(part->lists()->model().setData(part->lists()->model().index(plaster, MatListCol::Qty), "2",
                                               Qt::EditRole));
    doubleClick(plaster);
    ASSERT_EQ(materials->rowCount(), before + 1);
    auto *pages = child<QTabWidget>(window.get(), "PageControlDoc");
    EXPECT_EQ(pages->currentWidget()->objectName(), "TabSheetMat");
    EXPECT_EQ(materials->index(before, MatCol::Name).data().toString(), "Штукатурка цементная, мешок 25 кг");
    EXPECT_EQ(materials->index(before, MatCol::Sum).data().toString(), "720,00");
    EXPECT_EQ(materials->index(before, MatCol::Num).data().toString(), QString::number(before + 1));
    EXPECT_TRUE(window->isChanged());
    EXPECT_NE(total->text(), totalBefore);

    // Two rows ticked: one new, one the estimate has now: the dialog adds to its quantity.
    frame()->ToolCheckRow->setChecked(true);
    EXPECT_FALSE(grid()->isColumnHidden(MatListCol::Check));
    const int cement = listRow("Цемент М500, мешок 50 кг");
    MatListModel &list = part->lists()->model();
    ASSERT_TRUE(list.setData(list.index(cement, MatListCol::Check), Qt::Checked, Qt::CheckStateRole));
    ASSERT_TRUE(list.setData(list.index(plaster, MatListCol::Check), Qt::Checked, Qt::CheckStateRole));
    QString caption;
    QTimer::singleShot(0, [&caption] {
        auto *dialog = qobject_cast<TCalcMatKolvo *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        caption = dialog->windowTitle();
        EXPECT_EQ(dialog->EditKolvo->text(), "2");
        dialog->EditKolvoAdd->setText("1");
        dialog->accept();
    });
    doubleClick(listRow("Клей плиточный, мешок 25 кг")); // with ticks, the ticked rows go in
    EXPECT_EQ(caption, "Найдено совпадение");
    ASSERT_EQ(materials->rowCount(), before + 2);
    EXPECT_EQ(materials->index(before + 1, MatCol::Name).data().toString(), "Цемент М500, мешок 50 кг");
    EXPECT_EQ(materials->index(before, MatCol::Qty).data().toString(), "3");
    EXPECT_TRUE(list.checkedRows().empty()); // ticks cleared
    // 3 × 360: the new cement has no quantity yet.
    const MoneyResult raw = editor().materialsRaw();
    EXPECT_EQ(raw->kopecks() - rawBefore->kopecks(), 108000);
    EXPECT_EQ(total->text(), editor().materialsTotal().text());
    EXPECT_EQ(
        queryRows(module->database(Db::Smeta),
                  QStringLiteral(
                      "SELECT numpos, kolvo, price FROM materials WHERE namemat='Цемент М500, мешок 50 кг'")),
        QStringList{QStringLiteral("%1||560").arg(before + 2)});
    window->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/materials_window.png"));

    // Each insertion is a step of its own: the quantity, then the ticked rows, then the first pick.
    ASSERT_TRUE(editor().undo());
    EXPECT_EQ(materials->index(before, MatCol::Qty).data().toString(), "2");
    ASSERT_TRUE(editor().undo());
    EXPECT_EQ(materials->rowCount(), before + 1);
    ASSERT_TRUE(editor().undo());
    EXPECT_EQ(materials->rowCount(), before);
    EXPECT_EQ(editor().materialsRaw(), rawBefore);
}

TEST_F(MaterialsWindow, FilterKeepsItsWordsAndCountsLetterCase) {
    frame()->cmbFilterRas->setCurrentText("штукатурка");
    frame()->ButtonApplyFilter->click();
    EXPECT_EQ(grid()->model()->rowCount(), 0); // the sample writes it with a capital
    frame()->cmbFilterRas->setCurrentText("Штукатурка");
    QTest::keyClick(frame()->cmbFilterRas->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(grid()->model()->rowCount(), 2);
    EXPECT_EQ(frame()->cmbFilterRas->itemText(0), "Штукатурка");
    EXPECT_EQ(frame()->cmbFilterRas->itemText(1), "штукатурка");
    QFile words(folder.file("Sp/filter mat.txt"));
    ASSERT_TRUE(words.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(words.readAll()), "Штукатурка\nштукатурка\n");
    frame()->ButtonClearFilter->click();
    EXPECT_GT(grid()->model()->rowCount(), 50);
    EXPECT_EQ(frame()->cmbFilterRas->toolTip(), "Учитывается верхний регистр");
    EXPECT_EQ(frame()->cmbFilterRas->lineEdit()->placeholderText(), "Фильтрация материалов по слову");
    // A group chosen in the combo shows that group only.
    frame()->ComboBoxSelect(1);
    EXPECT_EQ(grid()->model()->index(0, 0).data().toString(), "Сухие смеси");
    EXPECT_LT(grid()->model()->rowCount(), 20);
    frame()->ComboBoxSelect(0);
    EXPECT_GT(grid()->model()->rowCount(), 50);
}

TEST_F(MaterialsWindow, AttachingToTheChosenRateAndItsRefusals) {
    QSqlDatabase price = module->database(Db::Price);
    QSqlQuery q(price);
    ASSERT_TRUE(
        q.exec("INSERT INTO price1 (edras, nameras, edizm, rub, rec) VALUES ('1', 'Стены', '', '', '1'), "
               "('1-1', 'Штукатурка', 'пв', '', '2'), ('1-1-1', 'Штукатурка стен', 'м2', '450', '3')"));
    panel()->ReadSqlRAS();
    grid()->setCurrentIndex(part->lists()->model().index(listRow("Штукатурка гипсовая, мешок 30 кг"), 0));
    struct Case {
        int rateModelRow;
        QString told;
    };
    // Beside the window (spdListMat) the rate grid shows rates.
    part->spdListMatClick();
    EXPECT_TRUE(part->listWindow()->isVisible());
    for (const Case &c : {Case{0, "Выбран вид работ"}, Case{1, "Выбран подвид работ"}}) {
        panel()->StringGridRas->setCurrentIndex(
            window->part<PricePart>()->priceBase()->model().index(c.rateModelRow, 1));
        dialogs->clear();
        frame()->ToolAddResurs->trigger();
        EXPECT_EQ(dialogs->lastText(), c.told);
    }
    EXPECT_EQ(queryRows(price, "SELECT count(*) FROM resurs1"), QStringList{"0"});
    panel()->StringGridRas->setCurrentIndex(window->part<PricePart>()->priceBase()->model().index(2, 1));
    dialogs->clear();
    frame()->ToolAddResurs->trigger();
    EXPECT_TRUE(dialogs->shown().isEmpty());
    part->listWindow()->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/materials_list_window.png"));
    EXPECT_EQ(queryRows(price, "SELECT name, edizm, cena, ras, val FROM resurs1"),
              QStringList{"Штукатурка гипсовая, мешок 30 кг|шт.|520|3|rub"});
    // In the panel's tab the rate grid shows the lists, not rates.
    panel()->PageControlRas->setCurrentIndex(static_cast<int>(PriceTab::Material));
    EXPECT_FALSE(part->listWindow()->isVisible());
    frame()->ToolAddResurs->trigger();
    EXPECT_EQ(dialogs->lastText(), "Откройте вкладку \"Расценки\"");
}

TEST_F(MaterialsWindow, LiveSearchOffersListMaterialsWhileANameIsTyped) {
    window->settings().setFlag("CheckMatLiveSearch", true);
    EditorPart *editorPart = window->part<EditorPart>();
    editorPart->showMaterialsPage();
    TSmetaMaterials *page = editorPart->materialsPage();
    page->ButtonAddMat->click(); // an empty material, its name being edited
    QTableView *view = page->StringGridMat;
    auto *edit = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_NE(edit, nullptr);
    for (const QChar ch : QStringLiteral("грунт")) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(ch));
        QApplication::sendEvent(edit, &press);
    }
    LiveSearchList *memo = part->liveSearchList();
    ASSERT_TRUE(memo->isVisible());
    EXPECT_EQ(memo->objectName(), "MemoMat");
    EXPECT_EQ(memo->model()->rowCount(), 2); // "Грунтовка глубокого проникновения", "Грунтовка бетоноконтакт"
    memo->setCurrentIndex(memo->model()->index(1, 0));
    emit memo->chosen(1);
    EstimateMaterials *materials = editor().materials();
    EXPECT_EQ(materials->index(0, MatCol::Name).data().toString(), "Грунтовка бетоноконтакт, 15 кг");
    EXPECT_EQ(materials->index(0, MatCol::Unit).data().toString(), "шт.");
    EXPECT_EQ(materials->index(0, MatCol::Price).data().toString(), "1650");
    EXPECT_FALSE(memo->isVisible());
    // On to the next row, ready for the next name.
    EXPECT_EQ(materials->rowCount(), 2);
    EXPECT_EQ(view->currentIndex().row(), 1);
    EXPECT_EQ(editor().undoTitle(), "Вставка материала");
}

} // namespace
