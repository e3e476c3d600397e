// The printed book through the real office engine: the PDF (preview, print, "Экспорт в PDF") and the
// spreadsheet ("Экспорт в Excel") of the filtered records with their receipt lines, the title naming
// the customer, object and period, the totals row and the summary; and both made from the page of the
// main window. The PDF's first page is kept as a picture.

#include "CashTestBook.h"
#include "MainWindowFixture.h"
#include "cashbook/CashColumns.h"
#include "cashbook/CashReport.h"
#include "cashbook/CashbookPart.h"
#include "cashbook/KassaBook_frame.h"
#include "materials/WriteOffs.h"
#include "office/OfficeEngine.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <memory>
#include <unistd.h>

namespace {

constexpr int kIncoming = CashCol::FirstAmount, kMaterial = CashCol::FirstAmount + 2,
              kTransport = CashCol::FirstAmount + 3;

QString pdfText(const QString &pdf) {
    QProcess p;
    // The first page: every column of the book must be on it.
    p.start("pdftotext", {"-layout", "-f", "1", "-l", "1", pdf, "-"});
    p.waitForFinished(30000);
    // Spreadsheet numbers are grouped with no-break spaces.
    return QString::fromUtf8(p.readAllStandardOutput()).replace(QChar(0x00a0), QLatin1Char(' '));
}

class CashOutputTest : public ::testing::Test {
protected:
    static void TearDownTestSuite() { s_engine.reset(); }
    OfficeEngine &engine() {
        if (!s_engine)
            s_engine = std::make_unique<OfficeEngine>(
                QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
        return *s_engine;
    }
    void SetUp() override {
        t.addCustomer("ООО \"Ремонт\"", {"Склад"});
        t.choose("ООО \"Ремонт\"", "Склад");
        t.add("04.03.2024", {{kIncoming, "150000"}, {CashCol::Note, "аванс по договору"}});
        t.add("12.03.2024", {{kMaterial, "23456,70"}, {CashCol::Note, "цемент и плитка"}});
        t.add("20.03.2024", {{kTransport, "1800"}});
        CashBook::Outcome o;
        t.book->showReceipts(1);
        ASSERT_EQ(t.book->addLine(&o), 0);
        ASSERT_TRUE(t.book->editLine(0, ChecksCol::Name, "Цемент М500"));
        ASSERT_TRUE(t.book->editLine(0, ChecksCol::Unit, "меш"));
        ASSERT_TRUE(t.book->editLine(0, ChecksCol::Quantity, "20"));
        ASSERT_TRUE(t.book->editLine(0, ChecksCol::Price, "480"));
        // Materials of the warehouse written off to the object in March: the book's income from them.
        WriteOff sold;
        sold.name = "Клей плиточный";
        sold.sum = "3150,00";
        sold.customer = "ООО \"Ремонт\"";
        sold.object = "Склад";
        sold.date = "15.03.2024";
        sold.month = "3";
        sold.year = "2024";
        sold.dateCompare = "20240315";
        ASSERT_FALSE(WriteOffs::add(t.module->database(Db::Mat), sold).isEmpty());
        t.book->setMonthClause(3, "2024");
    }
    static inline std::unique_ptr<OfficeEngine> s_engine;
    CashTestBook t;
};

} // namespace

TEST_F(CashOutputTest, PdfAndSpreadsheetOfTheFilteredBook) {
    QString why;
    if (!OfficeEngine::available(&why))
        GTEST_SKIP() << why.toStdString();
    CashReport report;
    ASSERT_TRUE(CashReportOutput::make(*t.book, true, &report, &why)) << why.toStdString();
    ASSERT_EQ(report.lines.size(), 3u);
    ASSERT_EQ(report.lines[1].receipts.size(), 1u);
    EXPECT_EQ(CashReportOutput::receiptText(report.lines[1].receipts[0]),
              "Цемент М500: 20 меш × 480 = 9600,00");

    const QString pdf = t.folder.file("out/Кассовая книга.pdf");
    const QString xlsx = t.folder.file("out/Кассовая книга.xlsx");
    ASSERT_TRUE(CashReportOutput::produce(engine(), report, {{pdf, "pdf"}, {xlsx, "xlsx"}},
                                          t.folder.file("Temp"), &why))
        << why.toStdString();
    const QString text = pdfText(pdf);
    for (const char *expected :
         {"Кассовая книга", "Заказчик: ООО \"Ремонт\"", "Объект: Склад", "Период: Март 2024",
          "аванс по договору", "Цемент М500: 20 меш × 480 = 9600,00", "Итого", "150 000,00", "23 456,70",
          "Остаток", "124 743,30", "Период (дн.)", "Доход от продажи материалов", "3 150,00"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(expected))) << expected << "\n" << text.toStdString();
    QProcess::execute("pdftoppm", {"-png", "-r", "60", "-f", "1", "-l", "1", pdf,
                                   QStringLiteral(VIRN_SCREENSHOT_DIR "/cashbook_pdf")});

    // The spreadsheet holds the amounts as numbers under the titles.
    ASSERT_TRUE(engine().load(xlsx)) << engine().error().toStdString();
    SheetText::Grid grid;
    ASSERT_TRUE(engine().sheet(&grid)) << engine().error().toStdString();
    engine().close();
    int row = -1, column = -1;
    ASSERT_TRUE(SheetText::findCell(grid, "Дата", true, &row, &column));
    EXPECT_EQ(grid.value(row).mid(0, 8), QStringList({"Дата", "Приход", "Моя з/п", "Материал", "Транспорт",
                                                      "З/п рабочим", "Прочее", "Примечание"}));
    EXPECT_EQ(grid.value(row + 1).value(0), "04.03.2024");
    EXPECT_TRUE(grid.value(row + 1).value(1).contains("150")) << grid.value(row + 1).join('|').toStdString();
    EXPECT_TRUE(grid.value(row + 3).value(1).contains("Цемент М500"));
    ASSERT_TRUE(SheetText::findCell(grid, "Итого", true, &row, &column));
}

namespace {

class CashOutputWindow : public MainWindowFixture {};

} // namespace

TEST_F(CashOutputWindow, ExportFromThePage) {
    QString why;
    if (!OfficeEngine::available(&why))
        GTEST_SKIP() << why.toStdString();
    CustomerRegister reg(*module);
    ASSERT_EQ(reg.addCustomer("Иванов"), RegisterStatus::Ok);
    ASSERT_EQ(reg.addObject("Иванов", "Дача"), RegisterStatus::Ok);
    child<QAction>(window.get(), "MKassaBook")->trigger();
    auto *page = child<TKassaBook>(window.get(), "KassaBook");
    ASSERT_NE(page, nullptr);
    page->ListBox1Click("Иванов");
    page->ListBox2Click("Дача");
    CashBook &book = *window->part<CashbookPart>()->book();
    CashBook::Outcome o;
    const int row = book.addRecord(QDate(2024, 6, 3), &o);
    ASSERT_TRUE(book.editCell(row, kMaterial, "4500"));
    book.showReceipts(row);
    ASSERT_EQ(book.addLine(&o), 0);
    ASSERT_TRUE(book.editLine(0, ChecksCol::Name, "Грунтовка"));
    child<QCheckBox>(page, "CheckBoxCheki")->setChecked(true);

    QSignalSpy finished(page, &TKassaBook::outputFinished);
    const QString pdf = folder.file("Касса Иванов.pdf");
    dialogs->queueFile(pdf);
    child<QAction>(page, "ToolPDF")->trigger();
    ASSERT_TRUE(finished.wait(120000));
    ASSERT_TRUE(finished.at(0).at(0).toBool()) << dialogs->lastText().toStdString();
    const QString text = pdfText(pdf);
    EXPECT_TRUE(text.contains("Заказчик: Иванов")) << text.toStdString();
    EXPECT_TRUE(text.contains("Грунтовка"));
    EXPECT_TRUE(text.contains("4 500,00"));

    const QString xlsx = folder.file("Касса Иванов.xlsx");
    dialogs->queueFile(xlsx);
    child<QAction>(page, "ToolExcel")->trigger();
    ASSERT_TRUE(finished.wait(120000));
    EXPECT_TRUE(finished.at(1).at(0).toBool()) << dialogs->lastText().toStdString();
    EXPECT_GT(QFileInfo(xlsx).size(), 1000);
}
