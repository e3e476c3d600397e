// The warehouse in the main window, on the sample data: materials taken from the stock tab of the
// materials lists into the sample estimate (part of a row, bad quantities refused, a whole row
// "Списано") and then found in the report of sold materials for the estimate's customer and month,
// with the period refusal; the warehouse window: estimate materials put into stock, the minimum line,
// the modes with their columns, totals and setting, rows added and deleted. Both windows are saved as
// pictures.

#include "MainWindowFixture.h"
#include "MatTestData.h"
#include "SampleData.h"
#include "StockTestData.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "materials/CalcMatKolvo_frame.h"
#include "materials/DohodMat_frame.h"
#include "materials/ListMat_frame.h"
#include "materials/MaterialsPart.h"
#include "materials/SkladMat_frame.h"
#include "materials/Warehouse.h"
#include "materials/WarehousePart.h"
#include "materials/WriteOffModel.h"
#include "pricebase/PriceBase.h"
#include "pricebase/RatePanel_frame.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>

namespace {

const QString kCustomer = "Кудрявцев Олег Николаевич";
const QString kObject = "Квартира, ул. Садовая, д. 14, кв. 37";

class WarehouseWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        window->resize(1500, 900);
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        part = window->part<WarehousePart>();
        ASSERT_NE(part, nullptr);
        runSampleScript(module->database(Db::Mat), "listmat.sql");
        runSampleScript(module->database(Db::Cash), "cash.sql");
        runSampleScript(module->database(Db::People), "people.sql");
        openSampleEstimate(folder, *window);
    }
    QSqlDatabase mat() { return module->database(Db::Mat); }
    TListMat *lists() { return window->part<MaterialsPart>()->listFrame(); }
    StockModel &stock() { return part->warehouse()->model(); }
    int stockRow(const QString &name) {
        for (int r = 0; r < stock().rowCount(); ++r)
            if (stock().rowAt(r)->name == name)
                return r;
        return -1;
    }
    // A double-click on a row of a grid, as the user makes it.
    static void doubleClick(QTableView *grid, int row, int column = 0) {
        const QModelIndex cell = grid->model()->index(row, column);
        grid->scrollTo(cell);
        const QPoint at = grid->visualRect(cell).center();
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
    }
    // Takes `typed` of the stock row of that name from the stock tab.
    void take(const QString &name, const QString &typed) {
        const int row = stockRow(name);
        ASSERT_GE(row, 0) << name.toStdString();
        dialogs->queueInput(typed);
        doubleClick(lists()->StringGridSklad, row);
        EXPECT_EQ(dialogs->pendingAnswers(), 0);
    }
    WarehousePart *part = nullptr;
};

// The names in the report's grid.
QStringList gridNames(QTableView *grid) {
    QStringList n;
    for (int r = 0; r < grid->model()->rowCount(); ++r)
        n << grid->model()->index(r, WriteOffCol::Name).data().toString();
    return n;
}

TEST_F(WarehouseWindow, MaterialTakenFromStockIsFoundInTheReportForItsCustomerAndMonth) {
    EstimateMaterials *materials = window->document().editor().materials();
    const int before = materials->rowCount();
    const QDate today = QDate::currentDate();
    window->part<PricePart>()->ratePanel()->PageControlRas->setCurrentIndex(
        static_cast<int>(PriceTab::Material));
    lists()->PageControlMat->setCurrentIndex(3);
    ASSERT_TRUE(lists()->StringGridSklad->isVisible());
    EXPECT_FALSE(lists()->StringGridListMat->isVisible());
    EXPECT_FALSE(lists()->ToolEdit->isVisible());
    EXPECT_EQ(lists()->StringGridSklad->model()->rowCount(), 6);
    EXPECT_EQ(lists()->LabelCount->text(), "На складе: 6, ниже минимального остатка: 2");

    // Quantities in words, zero or above the stock change nothing.
    const QString plaster = "Штукатурка гипсовая, мешок 30 кг";
    struct Refusal {
        const char *typed;
        const char *told;
    };
    for (const Refusal &r : {Refusal{"четыре", "не является числом"}, Refusal{"0", "больше нуля"},
                             Refusal{"-2", "больше нуля"}, Refusal{"25", "Превышает имеющееся количество"}}) {
        dialogs->clear();
        take(plaster, r.typed);
        EXPECT_EQ(dialogs->lastCaption(), "Предупреждение") << r.typed;
        EXPECT_TRUE(dialogs->lastText().contains(QString::fromUtf8(r.told)))
            << dialogs->lastText().toStdString();
    }
    EXPECT_EQ(materials->rowCount(), before);
    EXPECT_EQ(stockRows(mat()).first(), plaster + "|24|12480,00");
    EXPECT_FALSE(window->isChanged());

    // Part of the row: the estimate gets it, the stock keeps the rest.
    dialogs->clear();
    take(plaster, "4");
    ASSERT_TRUE(dialogs->shown().size() == 1 && dialogs->shown().first().kind == "input");
    EXPECT_EQ(dialogs->shown().first().caption, "Склад материалов");
    EXPECT_EQ(dialogs->shown().first().text, "Введите количество");
    ASSERT_EQ(materials->rowCount(), before + 1);
    EXPECT_EQ(materials->index(before, MatCol::Name).data().toString(), plaster);
    EXPECT_EQ(materials->index(before, MatCol::Sum).data().toString(), "2080,00");
    EXPECT_EQ(child<QTabWidget>(window.get(), "PageControlDoc")->currentWidget()->objectName(),
              "TabSheetMat");
    EXPECT_TRUE(window->isChanged());
    EXPECT_EQ(window->document().editor().undoTitle(), "Материал со склада");
    EXPECT_EQ(stock().rowAt(stockRow(plaster))->quantity, "20");
    const QString writeOff = QStringList{"4",
                                         "2080,00",
                                         kCustomer,
                                         kObject,
                                         TextValues::shortDate(today),
                                         TextValues::dateCompareDay(today)}
                                 .join('|');
    EXPECT_EQ(queryRows(mat(), "SELECT kolvo, summa, customer, object, dataoffs, date_compare FROM storage "
                               "WHERE dataoffs>'' ORDER BY id DESC LIMIT 1"),
              QStringList{writeOff});

    // The whole of a row: deleted, "Списано".
    dialogs->clear();
    take("Лента малярная 48 мм", "12");
    EXPECT_EQ(dialogs->lastCaption(), "Склад");
    EXPECT_EQ(dialogs->lastText(), "Списано");
    EXPECT_EQ(stockRow("Лента малярная 48 мм"), -1);
    EXPECT_EQ(lists()->StringGridSklad->model()->rowCount(), 5);
    EXPECT_EQ(materials->rowCount(), before + 2);
    QApplication::processEvents(); // the tool bar lays itself out again
    for (QAction *listOnly : {lists()->ToolEdit, lists()->ToolImport, lists()->ToolAddResurs})
        EXPECT_FALSE(lists()->ToolBarMat->widgetForAction(listOnly)->isVisible());
    lists()->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/warehouse_stock_tab.png"));

    // The report for the estimate's customer, then the month of the write-offs.
    part->skladFrame()->ButtonDohodMat->click();
    TDohodMat *report = part->soldMaterialsWindow();
    ASSERT_NE(report, nullptr);
    ASSERT_TRUE(report->isVisible());
    EXPECT_EQ(report->windowTitle(), "Доход с продаж материалов");
    EXPECT_EQ(report->ComboBoxZakaz->currentText(), kCustomer);
    EXPECT_EQ(report->ComboBoxObject->currentText(), kObject);
    QStringList all = gridNames(report->GridDohod);
    EXPECT_EQ(all.size(), 4); // the sample's two and the two of this test
    EXPECT_TRUE(all.contains(plaster) && all.contains("Лента малярная 48 мм"));
    report->DateBegin->setDate(QDate(today.year(), today.month(), 1));
    report->DateEnd->setDate(QDate(today.year(), today.month(), today.daysInMonth()));
    report->ButtonFilter->click();
    const QStringList month = gridNames(report->GridDohod);
    const int inMonth = queryRows(mat(), QString("SELECT id FROM storage WHERE dataoffs>'' AND customer='%1' "
                                                 "AND date_compare LIKE '%2%'")
                                             .arg(kCustomer, today.toString("yyyyMM")))
                            .size();
    EXPECT_GE(inMonth, 2);
    EXPECT_EQ(month.size(), inMonth);
    EXPECT_EQ(month.mid(month.size() - 2), (QStringList{plaster, "Лента малярная 48 мм"}));
    const int last = report->GridDohod->model()->rowCount() - 1;
    EXPECT_EQ(report->GridDohod->model()->index(last, WriteOffCol::Date).data().toString(),
              TextValues::shortDate(today));
    EXPECT_EQ(report->GridDohod->model()->index(last, WriteOffCol::Customer).data().toString(), kCustomer);
    EXPECT_TRUE(report->LabelItogo->text().startsWith("Итого: ")) << report->LabelItogo->text().toStdString();
    report->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/warehouse_sold_materials.png"));

    // A period that ends before it starts is refused; the list stays.
    dialogs->clear();
    report->DateBegin->setDate(QDate(today.year(), today.month(), 1).addMonths(1));
    report->ButtonFilter->click();
    EXPECT_EQ(dialogs->lastText(), "Начало периода не должно превышать окончание");
    EXPECT_EQ(gridNames(report->GridDohod), month);

    // Deleting a record asks first.
    report->GridDohod->setCurrentIndex(report->GridDohod->model()->index(last, 0));
    dialogs->queueAnswer(Dialogs::Answer::No);
    report->ButtonDeleteClick();
    EXPECT_EQ(dialogs->shown().last().text, "Удалить Лента малярная 48 мм?");
    EXPECT_EQ(gridNames(report->GridDohod), month);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    report->ButtonDeleteClick();
    EXPECT_EQ(gridNames(report->GridDohod), month.mid(0, month.size() - 1));
    EXPECT_EQ(queryRows(mat(), "SELECT count(*) FROM storage WHERE namemat='Лента малярная 48 мм'"),
              QStringList{"0"});
}

TEST_F(WarehouseWindow, EstimateMaterialsGoIntoStockAndTheModesChangeTheGrid) {
    window->findChild<QAction *>("spdSkladMat")->trigger();
    TSkladMat *sklad = part->skladFrame();
    ASSERT_TRUE(sklad->isVisible());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(sklad));
    EXPECT_EQ(sklad->windowTitle(), "Склад материалов");
    EXPECT_EQ(sklad->GridSklad->model()->rowCount(), 6);
    EXPECT_EQ(sklad->LabelMinLimit->text(), "Ниже минимального остатка: 2 материала (выделены красным)");
    EXPECT_EQ(sklad->EditSumma->text(), "Сумма материалов 28990,00");
    const int primer = stockRow("Грунтовка глубокого проникновения, 10 л");
    EXPECT_TRUE(stock().index(primer, 0).data(Qt::BackgroundRole).isValid());
    EXPECT_FALSE(sklad->GridSmeta->isColumnHidden(MatCol::Name));
    EXPECT_TRUE(sklad->GridSmeta->isColumnHidden(MatCol::Note));

    // A material of the estimate into stock, then again: the stock has it, its quantity is asked.
    QAbstractItemModel *estimate = sklad->GridSmeta->model();
    const QString name = estimate->index(0, MatCol::Name).data().toString();
    doubleClick(sklad->GridSmeta, 0, MatCol::Name);
    ASSERT_EQ(stock().rowCount(), 7);
    const QString putIn =
        QStringList{name, estimate->index(0, MatCol::Qty).data(Qt::EditRole).toString(),
                    estimate->index(0, MatCol::Price).data(Qt::EditRole).toString(),
                    window->document().caption(), TextValues::shortDate(QDate::currentDate())}
            .join('|');
    EXPECT_EQ(
        queryRows(mat(), "SELECT namemat, kolvo, price, client, data FROM storage ORDER BY id DESC LIMIT 1"),
        QStringList{putIn});
    QString caption;
    QTimer::singleShot(0, [&caption] {
        auto *dialog = qobject_cast<TCalcMatKolvo *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        caption = dialog->windowTitle();
        dialog->EditKolvo->setText("30");
        dialog->accept();
    });
    doubleClick(sklad->GridSmeta, 0, MatCol::Name);
    EXPECT_EQ(caption, "Найдено совпадение");
    EXPECT_EQ(stock().rowCount(), 7);
    EXPECT_EQ(stock().rowAt(6)->quantity, "30");

    // Shop mode: its columns and the total markup; the mode is kept in the settings.
    sklad->MMagazin->trigger();
    EXPECT_EQ(sklad->GridSklad->model()->columnCount(), 5);
    EXPECT_EQ(sklad->GridSklad->model()->headerData(3, Qt::Horizontal).toString(), "Цена закупки");
    EXPECT_TRUE(sklad->EditSumma->text().startsWith("Общая наценка "))
        << sklad->EditSumma->text().toStdString();
    EXPECT_EQ(window->settingsStore()->text("Param", "TypeStore"), "Магазин");
    ASSERT_TRUE(
        stock().setData(stock().index(primer, stock().columnOf(StockField::Sale)), "1100", Qt::EditRole));
    EXPECT_EQ(sklad->EditSumma->text(), "Общая наценка 450,00"); // (1100 − 950) × 3
    EXPECT_EQ(queryRows(mat(), "SELECT sale, date_compare FROM storage WHERE namemat='Грунтовка глубокого "
                               "проникновения, 10 л'"),
              QStringList{"1100|" + TextValues::dateCompareDay(QDate::currentDate())});
    sklad->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/warehouse_shop.png"));
    sklad->MSklad->trigger();
    EXPECT_EQ(sklad->GridSklad->model()->columnCount(), 6);

    // An empty row dated today, deleted after the question; clearing declined changes nothing.
    sklad->ButtonAddRow->click();
    ASSERT_EQ(stock().rowCount(), 8);
    EXPECT_EQ(sklad->GridSklad->currentIndex().row(), 7);
    sklad->GridSklad->closePersistentEditor(sklad->GridSklad->currentIndex());
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    sklad->ToolDeleteRowClick();
    EXPECT_EQ(dialogs->shown().last().caption, "Удаление");
    EXPECT_EQ(stock().rowCount(), 7);
    dialogs->queueAnswer(Dialogs::Answer::No);
    sklad->ToolClearClick();
    EXPECT_EQ(queryRows(mat(), "SELECT count(*) FROM storage"), QStringList{"9"});
    sklad->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/warehouse_window.png"));
}

} // namespace
