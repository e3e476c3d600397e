// Materials lists and the warehouse to and from spreadsheet files: the rows read from a sheet's cells,
// files refused before the engine sees them, and, through the real engine, the round trip of a list
// and of the stock in both modes (in Times New Roman), the warehouse window's export and import with a
// damaged file refused and the stock kept, and hostile files refused with a Russian message.

#include "MatTestData.h"
#include "ScriptedDialogs.h"
#include "StockTestData.h"
#include "TestFolder.h"
#include "ZipStore.h"
#include "materials/MatSpreadsheet.h"
#include "materials/SkladMat_frame.h"
#include "materials/StockSpreadsheet.h"
#include "materials/Warehouse.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFile>
#include <QStandardItemModel>
#include <QTest>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

namespace {

std::unique_ptr<OfficeEngine> g_engine;

class StopEngine : public ::testing::Environment {
public:
    void TearDown() override { g_engine.reset(); }
};
const auto *g_stop = ::testing::AddGlobalTestEnvironment(new StopEngine);

OfficeEngine &engine() {
    if (!g_engine)
        g_engine = std::make_unique<OfficeEngine>(
            QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
    return *g_engine;
}

void write(const QString &path, const QByteArray &bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

TEST(MatSpreadsheetCells, RowsComeFromTheFirstThreeColumns) {
    struct Case {
        const char *what;
        SheetText::Grid cells;
        QStringList rows; // "name|unit|price", or empty for a refusal
        QString refusal;
    };
    const std::vector<Case> cases = {
        {"header, blank rows, spaces and a currency",
         {{"Наименование", "Ед. изм.", "Цена, руб."},
          {"", "", ""},
          {" Клей плиточный ", "мешок", "520"},
          {"Смеси", "пв", ""},
          {"Цемент М500", "мешок", "1 250,50 ₽"},
          {"Лента", "шт.", "99 руб."},
          {"Затирка", "кг", "договорная"}},
         {"Клей плиточный|мешок|520", "Смеси|пв|", "Цемент М500|мешок|1 250,50", "Лента|шт.|99",
          "Затирка|кг|договорная"},
         {}},
        {"no header", {{"Клей", "мешок", "520", "лишнее"}}, {"Клей|мешок|520"}, {}},
        {"a first material with a price in words is no header",
         {{"Затирка", "кг", "договорная"}, {"Клей", "мешок", "5"}},
         {"Затирка|кг|договорная", "Клей|мешок|5"},
         {}},
        {"two columns", {{"Клей", "мешок"}, {"Цемент", "мешок"}}, {}, "не хватает столбцов"},
        {"nothing", {{"", ""}, {}}, {}, "нет ни одной заполненной строки"},
        {"no names", {{"", "мешок", "5"}}, {}, "нет ни одного наименования"},
    };
    for (const Case &c : cases) {
        std::vector<MatRow> rows;
        QString error;
        const bool ok = MatSpreadsheet::rowsFromCells(c.cells, rows, &error);
        EXPECT_EQ(ok, c.refusal.isEmpty()) << c.what << ": " << error.toStdString();
        if (ok)
            EXPECT_EQ(names(rows), c.rows) << c.what;
        else
            EXPECT_TRUE(error.contains(c.refusal)) << c.what << ": " << error.toStdString();
    }
    SheetText::Grid many(MatSpreadsheet::kMaxRows + 1, QStringList{"Клей", "мешок", "5"});
    std::vector<MatRow> rows;
    QString error;
    EXPECT_FALSE(MatSpreadsheet::rowsFromCells(many, rows, &error));
    EXPECT_TRUE(error.contains("строк")) << error.toStdString();
}

TEST(MatSpreadsheetCells, FilesThatCannotBeSpreadsheetsAreRefusedUnread) {
    TestFolder folder;
    write(folder.file("empty.xlsx"), {});
    write(folder.file("text.xlsx"), "Наименование;Ед;Цена\nКлей;мешок;5\n");
    write(folder.file("picture.xls"), QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(100, 'x'));
    {
        QFile big(folder.file("big.ods"));
        ASSERT_TRUE(big.open(QIODevice::WriteOnly));
        big.write("PK\x03\x04");
        ASSERT_TRUE(big.resize(MatSpreadsheet::kMaxFileBytes + 1)); // sparse: nothing is written
    }
    // Not files at all: a folder and a pipe (which would block a reader for ever).
    ASSERT_TRUE(QDir().mkpath(folder.file("folder.xlsx")));
    ASSERT_EQ(mkfifo(QFile::encodeName(folder.file("pipe.xls")).constData(), 0600), 0);
    // Unsafe for the engine: a package whose XML declares entities (the "billion laughs"), the
    // old-Excel header with garbage behind it.
    ASSERT_TRUE(writeStoredZip(folder.file("entities.xlsx"),
                               {{"xl/workbook.xml", "<!DOCTYPE l [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;\">]>"
                                                    "<workbook>&b;</workbook>"}}));
    QByteArray garbage("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    for (int i = 0; i < 20000; ++i)
        garbage += static_cast<char>((i * 7919) % 251);
    write(folder.file("garbage.xls"), garbage);
    struct Case {
        const char *file;
        const char *reason;
    };
    for (const Case &c :
         {Case{"missing.xlsx", "не найден"}, Case{"empty.xlsx", "пуст"},
          Case{"text.xlsx", "не является таблицей"}, Case{"picture.xls", "не является таблицей"},
          Case{"big.ods", "больше 50 МБ"}, Case{"folder.xlsx", "это папка"},
          Case{"pipe.xls", "именованный канал"}, Case{"entities.xlsx", "сущности XML"},
          Case{"garbage.xls", "повреждён или опасен"}}) {
        QString error;
        EXPECT_FALSE(MatSpreadsheet::checkFile(folder.file(c.file), &error)) << c.file;
        EXPECT_TRUE(error.contains(QString::fromUtf8(c.reason))) << c.file << ": " << error.toStdString();
    }
}

class MatSpreadsheetEngine : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        QString why;
        ASSERT_TRUE(OfficeEngine::available(&why)) << why.toStdString();
    }
    QString scratch() const { return folder.file("Temp"); }
    TestFolder folder;
};

TEST_F(MatSpreadsheetEngine, AListGoesOutAndComesBackTheSame) {
    const std::vector<MatRow> list = {matRow("Сухие смеси", "пв"),
                                      matRow("Штукатурка гипсовая, мешок 30 кг", "шт.", "520"),
                                      matRow("Клей \"Юнис\" для плитки", "мешок", "1 250,50"),
                                      matRow("Грунтовка 'Бетоноконтакт'", "кг", "0,125"),
                                      matRow("Лента, 50 м; серая", "рулон", "договорная"),
                                      matRow("Отделка"),
                                      matRow("Обои флизелиновые", "рулон", "1200")};
    const QString xlsx = folder.file("Лист 1.xlsx");
    QString error;
    std::vector<int> steps;
    ASSERT_TRUE(MatSpreadsheet::writeFile(engine(), list, "Лист 1", xlsx, scratch(), &error, [&steps](int p) {
        steps.push_back(p);
    })) << error.toStdString();
    EXPECT_TRUE(QFile::exists(xlsx));
    EXPECT_EQ(steps.back(), 100);
    std::vector<MatRow> back;
    steps.clear();
    ASSERT_TRUE(MatSpreadsheet::readFile(engine(), xlsx, scratch(), back, &error, [&steps](int p) {
        steps.push_back(p);
    })) << error.toStdString();
    EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
    ASSERT_EQ(back.size(), list.size());
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(back[i].name, list[i].name) << i;
        EXPECT_EQ(back[i].unit, list[i].unit) << i;
        // Prices went out as numbers: the same number comes back, a price in words as it was.
        const auto sent = TextValues::parsePrice(list[i].price), got = TextValues::parsePrice(back[i].price);
        if (sent)
            EXPECT_TRUE(got && *got == *sent) << i << " " << back[i].price.toStdString();
        else
            EXPECT_EQ(back[i].price, list[i].price) << i;
    }
    // No scratch file is left behind.
    EXPECT_TRUE(QDir(scratch()).entryList(QDir::Files).isEmpty());
    // The same list as ".ods" and ".xls" reads the same (the engine converts the file written).
    for (const char *format : {"ods", "xls"}) {
        const QString other = folder.file(QStringLiteral("Лист 1.%1").arg(format));
        ASSERT_TRUE(engine().load(xlsx));
        ASSERT_TRUE(engine().saveAs(other, format));
        engine().close();
        std::vector<MatRow> again;
        ASSERT_TRUE(MatSpreadsheet::readFile(engine(), other, scratch(), again, &error))
            << error.toStdString();
        EXPECT_EQ(names(again), names(back)) << format;
    }
}

// A spreadsheet of text cells written through a flat OpenDocument file, saved by the engine as ".xlsx".
void writeXlsx(const QString &fods, const QString &xlsx, const QList<QStringList> &rows) {
    QString body;
    for (const QStringList &row : rows) {
        body += QStringLiteral("<table:table-row>");
        for (const QString &cell : row)
            body += QStringLiteral("<table:table-cell office:value-type=\"string\"><text:p>%1</text:p>"
                                   "</table:table-cell>")
                        .arg(cell.toHtmlEscaped());
        body += QStringLiteral("</table:table-row>");
    }
    write(fods, QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.2"
 office:mimetype="application/vnd.oasis.opendocument.spreadsheet"><office:body><office:spreadsheet>
<table:table table:name="Лист1">%1</table:table></office:spreadsheet></office:body></office:document>)")
                    .arg(body)
                    .toUtf8());
    ASSERT_TRUE(engine().load(fods));
    ASSERT_TRUE(engine().saveAs(xlsx, "xlsx"));
    engine().close();
}

TEST_F(MatSpreadsheetEngine, HostileFilesAreRefusedInRussian) {
    // A ZIP package that is no spreadsheet, and a word-processor document under a spreadsheet's name.
    write(folder.file("inside.txt"), "просто текст");
    ASSERT_TRUE(writeStoredZip(folder.file("junk.xlsx"), {{"inside.txt", "просто текст"}}));
    ASSERT_TRUE(engine().load(folder.file("inside.txt")));
    ASSERT_TRUE(engine().saveAs(folder.file("letter.odt"), "odt"));
    engine().close();
    ASSERT_TRUE(QFile::rename(folder.file("letter.odt"), folder.file("letter.ods")));
    // A spreadsheet with two columns only.
    const QString narrow = folder.file("narrow.xlsx");
    writeXlsx(folder.file("narrow.fods"), narrow, {{"Клей", "мешок"}});
    QString error;
    for (const char *file : {"junk.xlsx", "letter.ods"}) {
        std::vector<MatRow> rows = {matRow("было")};
        error.clear();
        EXPECT_FALSE(MatSpreadsheet::readFile(engine(), folder.file(file), scratch(), rows, &error)) << file;
        EXPECT_TRUE(rows.empty()) << file;
        EXPECT_FALSE(error.isEmpty()) << file;
        EXPECT_TRUE(error.contains(QString::fromUtf8("таблиц"))) << file << ": " << error.toStdString();
    }
    // A cell of megabytes is named and refused (the grids that would show it freeze on it).
    const QString longCell = folder.file("long.xlsx");
    writeXlsx(folder.file("long.fods"), longCell,
              {{"Клей", "мешок", "5"}, {"Цемент", QString(SheetFile::kMaxCellChars + 1, QChar(u'ж'))}});
    std::vector<MatRow> cut;
    EXPECT_FALSE(MatSpreadsheet::readFile(engine(), longCell, scratch(), cut, &error));
    EXPECT_TRUE(error.contains(QString::fromUtf8("ячейка B2 (строка 2) длиннее"))) << error.toStdString();
    EXPECT_TRUE(cut.empty());

    // The engine is still there for the next file.
    std::vector<MatRow> rows;
    EXPECT_FALSE(MatSpreadsheet::readFile(engine(), narrow, scratch(), rows, &error));
    EXPECT_TRUE(error.contains(QString::fromUtf8("не хватает столбцов"))) << error.toStdString();
}

// One entry of a zip package (an ".xlsx"), or empty.
QByteArray zipEntry(const QString &path, const char *name) {
    int error = 0;
    zip_t *zip = zip_open(path.toLocal8Bit().constData(), ZIP_RDONLY, &error);
    if (!zip)
        return {};
    QByteArray out;
    zip_stat_t st;
    if (zip_stat(zip, name, 0, &st) == 0) {
        if (zip_file_t *f = zip_fopen(zip, name, 0)) {
            out.resize(static_cast<int>(st.size));
            out.resize(static_cast<int>(std::max<zip_int64_t>(0, zip_fread(f, out.data(), st.size))));
            zip_fclose(f);
        }
    }
    zip_close(zip);
    return out;
}

// "name|unit|quantity|price|sale|sum|min|date" with numbers as exact values, so that "560,00" sent
// and "560" read back are the same.
QStringList stockTexts(const std::vector<StockItem> &items) {
    auto number = [](const QString &t) {
        const auto v = TextValues::parseAmount(t);
        return v ? v->text() : t;
    };
    QStringList out;
    for (const StockItem &s : items)
        out << QStringList{s.name,         s.unit,        number(s.quantity), number(s.price),
                           number(s.sale), number(s.sum), number(s.minlimit), s.date}
                   .join('|');
    return out;
}

TEST_F(MatSpreadsheetEngine, TheStockGoesOutAndComesBackInBothModes) {
    std::vector<StockItem> stock = {
        stockItem("Цемент М500, мешок 50 кг", "мешок", "10", "560,00", "4", "700"),
        stockItem("Клей \"Юнис\"; белый", "мешок", "2,5", "1 250,50", "", "1400"),
        stockItem("Лента, 50 м", "рулон", "", "")};
    stock[0].sum = "5600,00";
    stock[1].sum = "3126,25";
    for (StockMode mode : {StockMode::Warehouse, StockMode::Shop}) {
        SCOPED_TRACE(stockModeCaption(mode).toStdString());
        const QString xlsx = folder.file(StockSpreadsheet::exportFileName(mode));
        QString error;
        ASSERT_TRUE(StockSpreadsheet::writeFile(engine(), stock, mode, xlsx, scratch(), &error))
            << error.toStdString();
        // Every cell in Times New Roman, the titles of the mode on the first row.
        EXPECT_TRUE(zipEntry(xlsx, "xl/styles.xml").contains("Times New Roman"));
        const QByteArray strings = zipEntry(xlsx, "xl/sharedStrings.xml");
        for (const QString &title : StockSpreadsheet::titles(mode))
            EXPECT_TRUE(strings.contains(title.toUtf8())) << title.toStdString();
        std::vector<StockItem> back;
        ASSERT_TRUE(
            StockSpreadsheet::readFile(engine(), xlsx, scratch(), mode, QDate(2020, 3, 5), back, &error))
            << error.toStdString();
        std::vector<StockItem> expected = stock;
        for (StockItem &s : expected) {
            if (mode == StockMode::Shop)
                s.sum = s.minlimit = QString(); // the shop's sheet keeps neither
        }
        EXPECT_EQ(stockTexts(back), stockTexts(expected));
    }
    // The shop's sheet says the markup per unit.
    ASSERT_TRUE(engine().load(folder.file(StockSpreadsheet::exportFileName(StockMode::Shop))));
    SheetText::Grid cells;
    ASSERT_TRUE(engine().sheet(&cells));
    engine().close();
    ASSERT_GE(cells.size(), 2);
    EXPECT_EQ(TextValues::parseAmount(cells[1].value(4))->text(), "140");
}

// The warehouse window's own export and import, through the program's office service.
TEST_F(MatSpreadsheetEngine, TheWarehouseWindowExportsAndAnImportKeepsTheStockWhenTheFileIsDamaged) {
    ScriptedDialogsGuard dialogs;
    TModuleSQL module(folder.path());
    QSqlDatabase mat = module.database(Db::Mat);
    addStock(mat, stockItem("Цемент", "мешок", "10", "560", "4"));
    addStock(mat, stockItem("Гипс", "мешок", "3", "400"));
    Warehouse warehouse([&module] { return module.database(Db::Mat); });
    QStandardItemModel estimate(0, 7);
    OfficeService office(folder.path());
    TSkladMat sklad(warehouse, &estimate);
    sklad.setDataFolder(folder.path());
    sklad.setOfficeProvider([&office] { return &office; });
    QString opened;
    sklad.setFileOpener([&opened](const QString &path) {
        opened = path;
        return true;
    });
    sklad.refresh();
    const QStringList before = stockRows(mat);

    sklad.ToolSaveExcelClick();
    QTRY_VERIFY_WITH_TIMEOUT(!opened.isEmpty() || !dialogs->shown().isEmpty(), 120000);
    ASSERT_TRUE(dialogs->shown().isEmpty()) << dialogs->lastText().toStdString();
    EXPECT_EQ(opened, folder.file("Sp/Склад материалов (склад).xlsx"));

    // A zip package that is no spreadsheet: told, the stock as it was.
    ASSERT_TRUE(writeStoredZip(folder.file("склад.xlsx"), {{"inside.txt", "просто текст"}}));
    dialogs->queueFile(folder.file("склад.xlsx"));
    dialogs->queueAnswer(Dialogs::Answer::Yes); // replace the stock
    sklad.ToolLoadExcelClick();
    QTRY_VERIFY_WITH_TIMEOUT(
        dialogs->wasShown(QStringLiteral("Склад не загружен")) || dialogs->shown().size() > 3, 120000);
    EXPECT_TRUE(std::any_of(dialogs->shown().begin(), dialogs->shown().end(),
                            [](const ScriptedDialogs::Shown &s) {
                                return s.text.startsWith("Склад не загружен") &&
                                       s.text.contains("не является таблицей");
                            }))
        << dialogs->lastText().toStdString();
    EXPECT_EQ(stockRows(mat), before);

    // The exported file brings back the stock as it was after a change.
    ASSERT_TRUE(warehouse.setQuantity(0, "1"));
    dialogs->clear();
    dialogs->queueFile(opened);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    sklad.ToolLoadExcelClick();
    QTRY_VERIFY_WITH_TIMEOUT(dialogs->shown().size() >= 3, 120000);
    EXPECT_EQ(dialogs->lastText(), "На склад загружено строк: 2.");
    EXPECT_EQ(queryRows(mat, "SELECT namemat, kolvo, price, minlimit FROM storage ORDER BY id"),
              (QStringList{"Цемент|10|560|4", "Гипс|3|400|"}));
    EXPECT_EQ(warehouse.model().rowCount(), 2);
}

} // namespace
