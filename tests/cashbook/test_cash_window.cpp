// The cash book page in the main window: records added and typed into the grid, filtered by month and
// by category with the totals row following, deleted after the question, the refusal without a
// customer; the book saved as a copy and another book opened; the mobile exchange through the page
// against the real file server. A picture of the page is kept.

#include "FileServerProcess.h"
#include "MainWindowFixture.h"
#include "SqlRows.h"
#include "cashbook/CashbookPart.h"
#include "cashbook/KassaBook_frame.h"
#include "customers/CustomerRegister.h"
#include "materials/DohodMat_frame.h"
#include "materials/WarehousePart.h"
#include "materials/WriteOffs.h"
#include "server/RemoteClient.h"
#include "server/ServerPart.h"
#include "storage/SqliteSnapshot.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace {

constexpr int kIncoming = CashCol::FirstAmount, kMySalary = CashCol::FirstAmount + 1,
              kMaterial = CashCol::FirstAmount + 2;

class CashWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        CustomerRegister reg(*module);
        ASSERT_EQ(reg.addCustomer("Иванов"), RegisterStatus::Ok);
        ASSERT_EQ(reg.addObject("Иванов", "Дача"), RegisterStatus::Ok);
        ASSERT_EQ(reg.addObject("Иванов", "Квартира \"Центр\""), RegisterStatus::Ok);
        ASSERT_EQ(reg.addCustomer("Петров"), RegisterStatus::Ok);
        ASSERT_EQ(reg.addObject("Петров", "Гараж"), RegisterStatus::Ok);
        window->resize(1800, 1000);
        window->show();
        child<QAction>(window.get(), "MKassaBook")->trigger();
        page = child<TKassaBook>(window.get(), "KassaBook");
        ASSERT_NE(page, nullptr);
    }
    // A component of the page by its objectName.
    template <typename T> T *w(const char *name) const { return child<T>(page, QString::fromLatin1(name)); }
    void clickList(QListView *list, const QString &text) {
        const QModelIndexList found =
            list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, text, 1, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << text.toStdString();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found.first()).center());
    }
    // "Добавить запись" on the date, then the cells typed in.
    void addRecord(const QDate &date, const std::map<int, QString> &cells) {
        w<QDateEdit>("DateEdit")->setDate(date);
        QTest::mouseClick(w<QPushButton>("btnAddRecord"), Qt::LeftButton);
        const QModelIndex current = w<QTableView>("GridRashod")->currentIndex();
        ASSERT_TRUE(current.isValid());
        EXPECT_EQ(current.column(), CashCol::Date);
        QAbstractItemModel *m = w<QTableView>("GridRashod")->model();
        for (const auto &[column, text] : cells)
            ASSERT_TRUE(m->setData(m->index(current.row(), column), text, Qt::EditRole));
    }
    QStringList totals() const {
        QStringList out;
        QAbstractItemModel *m = w<QTableView>("StrGridItigo")->model();
        for (int c = 0; c < m->columnCount(); ++c)
            out << m->index(0, c).data().toString();
        return out;
    }
    int rows() const { return w<QTableView>("GridRashod")->model()->rowCount(); }
    QStringList bookRows(const QString &sql) { return queryRows(module->database(Db::Cash), sql); }

    TKassaBook *page = nullptr;
};

} // namespace

TEST_F(CashWindow, RecordsFilteredByMonthAndCategoryWithTheirTotals) {
    EXPECT_EQ(window->pages()->currentWidget(), page);
    EXPECT_TRUE(w<QLabel>("LabelBook")->text().startsWith("Касса "));
    EXPECT_TRUE(w<QAction>("ToolDohodMat")->isVisible());
    EXPECT_EQ(w<QTableView>("GridRashod")->model()->columnCount(), 12);
    EXPECT_EQ(w<QTableView>("StrGridItigo")->model()->columnCount(), 10);

    // Without a customer and object nothing is added.
    QTest::mouseClick(w<QPushButton>("btnAddRecord"), Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Выберите заказчика и объект");
    EXPECT_EQ(dialogs->lastCaption(), "Предупреждение");
    EXPECT_EQ(rows(), 0);

    clickList(w<QListView>("ListBox1"), "Иванов");
    EXPECT_EQ(w<QListView>("ListBox2")->model()->rowCount(), 2);
    clickList(w<QListView>("ListBox2"), "Квартира \"Центр\"");
    EXPECT_EQ(w<QLabel>("LabelCustomer")->text(), "Иванов");
    EXPECT_EQ(w<QLabel>("LabelObject")->text(), "Квартира \"Центр\"");

    addRecord(QDate(2024, 3, 4), {{kIncoming, "100000"}, {CashCol::Note, "аванс"}});
    addRecord(QDate(2024, 3, 12), {{kMaterial, "35000.50"}, {kMySalary, "15000"}});
    addRecord(QDate(2024, 4, 2), {{kMaterial, "12000"}});
    addRecord(QDate(2024, 4, 20), {{kMySalary, "20000"}, {CashCol::Note, "расчёт"}});
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(bookRows("SELECT count(*) FROM cash WHERE customer='Иванов' AND object='Квартира `Центр`'"),
              QStringList{"4"});
    EXPECT_EQ(totals(), QStringList({"100 000,00", "35 000,00", "47 000,50", "0,00", "0,00", "0,00",
                                     "82 000,50", "17 999,50", "35 000,00", "47"}));
    EXPECT_EQ(w<QLineEdit>("EditLastBalance")->text(), "17 999,50");
    EXPECT_FALSE(w<QLineEdit>("EditLastBalance")->isHidden());
    w<QSpinBox>("SpinEditZakupka")->setValue(10);
    EXPECT_EQ(w<QLineEdit>("EditZakupka")->text(), "4700,05");

    // March by the month/year filter.
    w<QComboBox>("ComboBoxMonth")->setCurrentIndex(3);
    ASSERT_EQ(w<QComboBox>("ComboBoxYear")->findText("2024"), 1);
    w<QComboBox>("ComboBoxYear")->setCurrentIndex(1);
    QTest::mouseClick(w<QPushButton>("btnMonthFilter"), Qt::LeftButton);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(totals(), QStringList({"100 000,00", "15 000,00", "35 000,50", "0,00", "0,00", "0,00",
                                     "50 000,50", "49 999,50", "15 000,00", "8"}));
    EXPECT_EQ(w<QDateEdit>("DateEdit")->date(), QDate(2024, 3, 4));
    // The balance is the whole object's.
    EXPECT_EQ(w<QLineEdit>("EditLastBalance")->text(), "17 999,50");

    // And the materials of March only.
    w<QComboBox>("FiltrCategory")->setCurrentIndex(3);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(totals().mid(0, 3), QStringList({"0,00", "0,00", "35 000,50"}));
    EXPECT_EQ(w<QTableView>("GridRashod")->model()->index(0, kMySalary).data().toString(), "");

    // "Следующий месяц" moves the filter to April.
    QTest::mouseClick(w<QPushButton>("btnMonthNext"), Qt::LeftButton);
    EXPECT_EQ(w<QComboBox>("ComboBoxMonth")->currentIndex(), 4);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(totals().at(2), "12 000,00");

    w<QTabWidget>("PageControl")->setCurrentWidget(w<QWidget>("TabRashod"));
    // The rate panel narrowed, as the user does while working in the cash book.
    child<QSplitter>(window.get(), "SplitterMain")->setSizes({300, 1500});
    page->window()->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/cashbook_window.png"));

    // A period whose end is before its begin is refused and the end set back.
    w<QDateEdit>("DateBegin")->setDate(QDate(2024, 4, 10));
    w<QDateEdit>("DateEnd")->setDate(QDate(2024, 4, 1));
    EXPECT_EQ(dialogs->lastText(), "Начало периода не должно превышать окончание");
    EXPECT_EQ(w<QDateEdit>("DateEnd")->date(), QDate(2024, 4, 10));

    // Everything again, then the last record deleted after the question.
    QTest::mouseClick(w<QPushButton>("btnClearFilters"), Qt::LeftButton);
    EXPECT_EQ(w<QComboBox>("FiltrCategory")->currentIndex(), 0);
    EXPECT_EQ(rows(), 4);
    EXPECT_EQ(w<QLabel>("LabelCustomer")->text(), "");
    QTest::mouseClick(w<QPushButton>("btnLastRecord"), Qt::LeftButton);
    dialogs->queueAnswer(Dialogs::Answer::No);
    QTest::mouseClick(w<QPushButton>("btnDeleteRecord"), Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Удалить запись от 20.04.2024?");
    EXPECT_EQ(rows(), 4);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(w<QPushButton>("btnDeleteRecord"), Qt::LeftButton);
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(bookRows("SELECT count(*) FROM cash"), QStringList{"3"});

    // Insert in the page adds a record (here refused: the filters were cleared with the customer).
    QApplication::setActiveWindow(window.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    w<QTableView>("GridRashod")->setFocus();
    dialogs->clear();
    QTest::keyClick(w<QTableView>("GridRashod"), Qt::Key_Insert);
    EXPECT_EQ(dialogs->lastText(), "Выберите заказчика и объект");
}

TEST_F(CashWindow, SoldMaterialsOfTheWarehouse) {
    // Write-offs of the warehouse: two to Иванов's Дача (March and April 2024), one to Петров.
    QSqlDatabase mat = module->database(Db::Mat);
    for (const auto &[name, sum, customer, object, day] :
         {std::tuple{"Цемент", "1500,50", "Иванов", "Дача", QDate(2024, 3, 5)},
          std::tuple{"Песок", "499,50", "Иванов", "Дача", QDate(2024, 4, 10)},
          std::tuple{"Плитка", "9000", "Петров", "Гараж", QDate(2024, 3, 1)}}) {
        WriteOff wo;
        wo.name = name;
        wo.sum = sum;
        wo.customer = customer;
        wo.object = object;
        wo.date = TextValues::shortDate(day);
        wo.month = QString::number(day.month());
        wo.year = QString::number(day.year());
        wo.dateCompare = TextValues::dateCompareDay(day);
        ASSERT_FALSE(WriteOffs::add(mat, wo).isEmpty());
    }
    clickList(w<QListView>("ListBox1"), "Иванов");
    clickList(w<QListView>("ListBox2"), "Дача");
    EXPECT_EQ(w<QLabel>("lbDohodMat")->text(), "В том числе доход от продажи материалов:   2 000,00");
    // March only: the period applies to the write-offs too.
    w<QDateEdit>("DateBegin")->setDate(QDate(2024, 3, 1));
    w<QDateEdit>("DateEnd")->setDate(QDate(2024, 3, 31));
    QTest::mouseClick(w<QPushButton>("btnPeriodFilter"), Qt::LeftButton);
    EXPECT_EQ(w<QLabel>("lbDohodMat")->text(), "В том числе доход от продажи материалов:   1 500,50");
    // Another customer: his own write-offs (the period stays).
    clickList(w<QListView>("ListBox1"), "Петров");
    clickList(w<QListView>("ListBox2"), "Гараж");
    EXPECT_EQ(w<QLabel>("lbDohodMat")->text(), "В том числе доход от продажи материалов:   9 000,00");
    child<QSplitter>(window.get(), "SplitterMain")->setSizes({300, 1500});
    page->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/cashbook_sold.png"));

    // "Проданный материал" opens the warehouse's report for the chosen customer and object.
    w<QAction>("ToolDohodMat")->trigger();
    TDohodMat *report = window->part<WarehousePart>()->soldMaterialsWindow();
    ASSERT_NE(report, nullptr);
    EXPECT_TRUE(report->isVisible());
    EXPECT_EQ(report->windowTitle(), "Доход с продаж материалов");
    EXPECT_EQ(child<QComboBox>(report, "ComboBoxZakaz")->currentText(), "Петров");
    EXPECT_EQ(child<QComboBox>(report, "ComboBoxObject")->currentText(), "Гараж");
    report->close();
}

TEST_F(CashWindow, ReceiptsAndPurchaseThroughThePage) {
    clickList(w<QListView>("ListBox1"), "Петров");
    clickList(w<QListView>("ListBox2"), "Гараж");
    addRecord(QDate(2024, 5, 6), {{kMaterial, "900"}});
    QTest::mouseClick(w<QPushButton>("btnAddCheki"), Qt::LeftButton);
    EXPECT_EQ(w<QTabWidget>("PageControl")->currentWidget(), w<QWidget>("TabCheki"));
    QTest::mouseClick(w<QPushButton>("btnAddCheck"), Qt::LeftButton);
    QAbstractItemModel *lines = w<QTableView>("GridCheki")->model();
    ASSERT_EQ(lines->rowCount(), 1);
    w<QTableView>("GridCheki")->closePersistentEditor(w<QTableView>("GridCheki")->currentIndex());
    ASSERT_TRUE(lines->setData(lines->index(0, ChecksCol::Name), "Краска", Qt::EditRole));
    ASSERT_TRUE(lines->setData(lines->index(0, ChecksCol::Quantity), "3", Qt::EditRole));
    ASSERT_TRUE(lines->setData(lines->index(0, ChecksCol::Price), "300", Qt::EditRole));
    EXPECT_EQ(w<QLineEdit>("EditCheki")->text(), "900,00 руб.");
    w<QComboBox>("EditValuta")->setCurrentIndex(4);
    EXPECT_EQ(w<QLineEdit>("EditCheki")->text(), "900,00 тг.");

    w<QTabWidget>("PageControl")->setCurrentWidget(w<QWidget>("TabRashod"));
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(w<QPushButton>("btnDeleteCheki"), Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Удалить расшифровку по чекам от 06.05.2024?");
    EXPECT_EQ(bookRows("SELECT count(*) FROM checks"), QStringList{"0"});

    w<QSpinBox>("SpinEditZakupka")->setValue(20);
    EXPECT_EQ(w<QLineEdit>("EditZakupka")->text(), "180,00");
    QTest::mouseClick(w<QPushButton>("btnAddZakupka"), Qt::LeftButton);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(bookRows("SELECT material, note FROM cash ORDER BY _id DESC LIMIT 1"),
              QStringList{"180,00|Закупка материалов 20%"});
}

TEST_F(CashWindow, SaveACopyAndOpenAnotherBook) {
    clickList(w<QListView>("ListBox1"), "Иванов");
    clickList(w<QListView>("ListBox2"), "Дача");
    addRecord(QDate(2024, 1, 9), {{kIncoming, "5000"}});

    const QString copy = folder.file(CashBook::copyName(QDate::currentDate()));
    dialogs->queueFile(copy);
    w<QAction>("ToolSave")->trigger();
    ASSERT_TRUE(QFile::exists(copy));
    EXPECT_EQ(SqliteSnapshot::check(copy), QString());

    // The copy gets a record of its own, then is opened as the book.
    {
        DatabaseFile f(copy);
        ASSERT_TRUE(QSqlQuery(f.db()).exec("UPDATE cash SET incoming='7000'"));
    }
    dialogs->queueFile(copy);
    w<QAction>("ToolOpen")->trigger();
    EXPECT_EQ(w<QLabel>("LabelBook")->text(), "Касса " + QDir::toNativeSeparators(copy));
    EXPECT_EQ(window->settings().text("Cashbook"), copy);
    EXPECT_EQ(w<QListView>("ListBox1")->model()->rowCount(), 2);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(totals().at(0), "7 000,00");

    // A file that is no book is refused and the book stays.
    const QString junk = folder.file("cashbase.db");
    {
        QFile f(junk);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("не база");
    }
    dialogs->queueFile(junk);
    w<QAction>("ToolOpen")->trigger();
    EXPECT_TRUE(dialogs->lastText().contains("не является кассовой книгой"));
    EXPECT_EQ(w<QLabel>("LabelBook")->text(), "Касса " + QDir::toNativeSeparators(copy));
}

TEST_F(CashWindow, MobileExchangeThroughThePage) {
    QSignalSpy finished(page, &TKassaBook::exchangeFinished);
    // No server yet.
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    w<QAction>("NGetMobail")->trigger();
    ASSERT_TRUE(finished.count() > 0 || finished.wait(5000));
    EXPECT_TRUE(dialogs->lastText().contains("Файловый сервер"));

    FileServerProcess server;
    ASSERT_TRUE(server.start()) << server.error().toStdString();
    window->part<ServerPart>()->client()->setServer(server.url(), server.key());
    clickList(w<QListView>("ListBox1"), "Иванов");
    clickList(w<QListView>("ListBox2"), "Дача");
    addRecord(QDate(2024, 2, 1), {{kIncoming, "300"}});

    // Nothing on the server.
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    w<QAction>("NGetMobail")->trigger();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(dialogs->lastText(), "Отсутствует база кассы на сервере");

    dialogs->queueAnswer(Dialogs::Answer::No);
    w<QAction>("NPostAndroid")->trigger();
    EXPECT_EQ(dialogs->lastText(), "Заменить мобильную кассу на базу с компьютера?");
    EXPECT_EQ(dialogs->lastCaption(), "Сохранить мобильную кассу");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    w<QAction>("NPostAndroid")->trigger();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(dialogs->lastCaption(), "База загружена на сервер");
    EXPECT_EQ(dialogs->lastText(), "Готово");

    dialogs->queueAnswer(Dialogs::Answer::Yes);
    w<QAction>("NGetMobail")->trigger();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(dialogs->lastCaption(), "Касса загружена");
    EXPECT_EQ(dialogs->lastText(), "Сделано");
    EXPECT_TRUE(QFile::exists(folder.file("Sp/cashbasemobail.db")));
    // The same book came back: nothing doubled.
    EXPECT_EQ(bookRows("SELECT count(*) FROM cash"), QStringList{"1"});
}
