// Against the real engine. All cases share one helper process (the profile is kept between runs in
// the system temporary folder), so the run costs one engine start.

#include "EngineFixture.h"
#include "OfficeFiles.h"
#include "ZipStore.h"

#include "office/InWord.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"
#include "office/SheetTemplate.h"
#include "office/TemplateFile.h"
#include "office/WordTemplate.h"

#include "TestFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFuture>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>

namespace {

std::unique_ptr<OfficeEngine> g_engine;

class StopEngine : public ::testing::Environment {
public:
    void TearDown() override { g_engine.reset(); }
};

const auto *g_stop = ::testing::AddGlobalTestEnvironment(new StopEngine);

} // namespace

OfficeEngine &sharedEngine() {
    if (!g_engine)
        g_engine = std::make_unique<OfficeEngine>(
            QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
    return *g_engine;
}

namespace {

// ---------------------------------------------------------------------------------------------
// Word-processor template

QByteArray run(const char *text, bool styled) {
    QByteArray r = "<w:r>";
    if (styled)
        r += "<w:rPr><w:b/><w:i/><w:sz w:val=\"28\"/></w:rPr>";
    return r + "<w:t xml:space=\"preserve\">" + text + "</w:t></w:r>";
}

// A contract as a word processor saves it: "[заказчик]" split over three runs of the same bold italic
// formatting, used twice; "[дата]" in the page header and in a table; "[объект]" without data.
void writeContractDocx(const QString &path) {
    const QByteArray ns = "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
                          "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\"";
    const QByteArray document =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><w:document " + ns + "><w:body>" +
        "<w:p>" + run("Заказчик: ", false) + run("[за", true) + run("каз", true) + run("чик]", true) +
        "</w:p>" + "<w:p>" + run("Объект: [объект]. Сумма: [сумма прописью].", false) + "</w:p>" +
        "<w:tbl><w:tr><w:tc><w:p>" + run("Дата: [дата]", false) + "</w:p></w:tc><w:tc><w:p>" +
        run("[заказ", true) + run("чик]", true) + "</w:p></w:tc></w:tr></w:tbl>" +
        "<w:p/><w:sectPr><w:headerReference w:type=\"default\" r:id=\"rIdHeader\"/>"
        "<w:pgSz w:w=\"11906\" w:h=\"16838\"/></w:sectPr></w:body></w:document>";
    const QByteArray header = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><w:hdr " + ns +
                              "><w:p>" + run("Договор от [дата]", false) + "</w:p></w:hdr>";
    const QByteArray types =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Types "
        "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
        "<Default Extension=\"rels\" "
        "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
        "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
        "<Override PartName=\"/word/document.xml\" "
        "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\"/>"
        "<Override PartName=\"/word/header1.xml\" "
        "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.header+xml\"/></Types>";
    const QByteArray rels = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Relationships "
                            "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                            "<Relationship Id=\"rId1\" "
                            "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/"
                            "officeDocument\" Target=\"word/document.xml\"/></Relationships>";
    const QByteArray docRels =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Relationships "
        "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
        "<Relationship Id=\"rIdHeader\" "
        "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/header\" "
        "Target=\"header1.xml\"/></Relationships>";
    ASSERT_TRUE(writeStoredZip(path, {{QStringLiteral("[Content_Types].xml"), types},
                                      {QStringLiteral("_rels/.rels"), rels},
                                      {QStringLiteral("word/_rels/document.xml.rels"), docRels},
                                      {QStringLiteral("word/document.xml"), document},
                                      {QStringLiteral("word/header1.xml"), header}}));
}

TEST_F(Engine, WordTemplateReplacesSplitRepeatedAndHeaderPlaceholders) {
    const QString templ = m_folder.file(QStringLiteral("ДОГОВОР НА РЕМОНТ.docx"));
    writeContractDocx(templ);
    const QString words = TInWord::amount(*Money::parse(QStringLiteral("12345,67")), TInWord::Rub);
    const WordTemplate::Replacements values{
        {QStringLiteral("[заказчик]"), QStringLiteral("Иванов Иван Иванович")},
        {QStringLiteral("[дата]"), QStringLiteral("01.02.2025")},
        {QStringLiteral("[сумма прописью]"), words}};
    const QString docx = m_folder.file(QStringLiteral("Договор.docx"));
    const QString rtf = m_folder.file(QStringLiteral("Договор.rtf"));
    const QString pdf = m_folder.file(QStringLiteral("Договор.pdf"));
    QString error;
    ASSERT_TRUE(WordTemplate::fill(engine(), templ, values, {{docx, {}}, {rtf, {}}, {pdf, {}}}, &error))
        << error.toStdString();

    const QString text = pdfText(pdf);
    EXPECT_EQ(text.count(QStringLiteral("Иванов Иван Иванович")), 2) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Договор от 01.02.2025"))) << "header";
    EXPECT_TRUE(text.contains(QStringLiteral("Дата: 01.02.2025"))) << "table";
    EXPECT_TRUE(text.simplified().contains(words)) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Объект: [объект]"))) << "a placeholder without data stays";
    EXPECT_FALSE(text.contains(QStringLiteral("[заказчик]")));
    EXPECT_FALSE(text.contains(QStringLiteral("[дата]")));

    // The value took the placeholder's formatting, in the saved Word file.
    const TextLook look =
        lookOfText(convert(docx, QStringLiteral("fodt")), QStringLiteral("Иванов Иван Иванович"));
    EXPECT_TRUE(look.found);
    EXPECT_TRUE(look.bold);
    EXPECT_TRUE(look.italic);

    QFile rtfText(convert(rtf, QStringLiteral("txt")));
    ASSERT_TRUE(rtfText.open(QIODevice::ReadOnly));
    const QString fromRtf = QString::fromUtf8(rtfText.readAll());
    EXPECT_EQ(fromRtf.count(QStringLiteral("Иванов Иван Иванович")), 2);
    EXPECT_TRUE(fromRtf.contains(QStringLiteral("[объект]")));
}

TEST_F(Engine, WordTemplateThatIsNotAnOfficeFileWritesNothing) {
    const QString templ = m_folder.file(QStringLiteral("Договор.docx"));
    QFile f(templ);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("not a zip");
    f.close();
    const QString out = m_folder.file(QStringLiteral("out.pdf"));
    QString error;
    EXPECT_FALSE(WordTemplate::fill(engine(), templ, {}, {{out, {}}}, &error));
    EXPECT_TRUE(error.contains(templ));
    EXPECT_FALSE(QFile::exists(out));
}

// ---------------------------------------------------------------------------------------------
// Spreadsheet template with a row block

QByteArray cell(const char *text, const char *style = nullptr, int span = 1) {
    QByteArray c = "<table:table-cell";
    if (style)
        c += QByteArray(" table:style-name=\"") + style + "\"";
    if (span > 1)
        c += " table:number-columns-spanned=\"" + QByteArray::number(span) + "\"";
    c += QByteArray("><text:p>") + text + "</text:p></table:table-cell>";
    for (int i = 1; i < span; ++i)
        c += "<table:covered-table-cell/>";
    return c;
}

QByteArray row(const QByteArray &cells) {
    return "<table:table-row>" + cells + "</table:table-row>";
}

// Title, a missing-data item, the table head, the block (a section row and a work row), a merged
// total row and a merged signature row under it.
void writeSheetTemplate(OfficeEngine &engine, const QString &fods, const QString &xls) {
    const QByteArray body =
        row(cell("[заголовок]", "b", 4)) + row(cell("Номер: [номер]")) +
        row(cell("№", "t") + cell("Шифр", "t") + cell("Наименование", "t") + cell("Сумма", "t")) +
        row(cell("[раздел.наименование]", "b", 4)) +
        row(cell("[строки.№]", "t") + cell("[строки.шифр]", "t") + cell("[строки.наименование]", "t") +
            cell("[строки.сумма]", "t")) +
        row(cell("Итого", "b", 3) + cell("[итого]", "b")) + row(cell("Подрядчик: [подрядчик]", nullptr, 4));
    QFile f(fods);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<office:document "
        "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
        "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
        "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" "
        "xmlns:style=\"urn:oasis:names:tc:opendocument:xmlns:style:1.0\" "
        "xmlns:fo=\"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0\" office:version=\"1.2\" "
        "office:mimetype=\"application/vnd.oasis.opendocument.spreadsheet\"><office:automatic-styles>"
        "<style:style style:name=\"b\" style:family=\"table-cell\"><style:text-properties "
        "fo:font-weight=\"bold\"/></style:style><style:style style:name=\"t\" style:family=\"table-cell\">"
        "<style:table-cell-properties fo:border=\"0.5pt solid #000000\"/></style:style>"
        "</office:automatic-styles><office:body><office:spreadsheet><table:table table:name=\"Смета\">"
        "<table:table-column table:number-columns-repeated=\"4\"/>" +
        body + "</table:table></office:spreadsheet></office:body></office:document>");
    f.close();
    ASSERT_TRUE(engine.load(fods)) << engine.error().toStdString();
    ASSERT_TRUE(engine.saveAs(xls, QStringLiteral("xls"))) << engine.error().toStdString();
    engine.close();
}

// n items: every 100th is a section heading, the others works numbered 1, 2, … with the rate
// number "12-3" (a text Calc would read as something else) and amounts i + 0,5.
SheetData sheetData(int n, double *total) {
    SheetData d;
    SheetList list;
    list.kinds = {QStringLiteral("строки"), QStringLiteral("раздел")};
    *total = 0;
    int number = 0;
    for (int i = 0; i < n; ++i) {
        SheetRow r;
        if (i % 100 == 0 && n > 1) {
            r.kind = QStringLiteral("раздел");
            r.cells.insert(QStringLiteral("наименование"),
                           SheetValue::ofText(QStringLiteral("РАЗДЕЛ %1").arg(i / 100 + 1)));
        } else {
            r.kind = QStringLiteral("строки");
            ++number;
            const double sum = i + 0.5;
            *total += sum;
            r.cells.insert(QStringLiteral("№"), SheetValue::ofNumber(number, QString::number(number)));
            r.cells.insert(QStringLiteral("шифр"), SheetValue::ofText(QStringLiteral("12-3")));
            r.cells.insert(QStringLiteral("наименование"),
                           SheetValue::ofText(QStringLiteral("Работа %1").arg(i)));
            r.cells.insert(QStringLiteral("сумма"), SheetValue::ofNumber(sum, QString::number(sum)));
        }
        list.rows << r;
    }
    d.lists << list;
    d.values.insert(QStringLiteral("заголовок"), SheetValue::ofText(QStringLiteral("СМЕТА № 7")));
    d.values.insert(QStringLiteral("итого"), SheetValue::ofNumber(*total, QString::number(*total)));
    d.values.insert(QStringLiteral("подрядчик"), SheetValue::ofText(QStringLiteral("ООО «Ремонт»")));
    return d;
}

class SheetBlock : public Engine, public ::testing::WithParamInterface<int> {};

TEST_P(SheetBlock, ExpandsRowsKeepsMergedCellsBelowAndTotals) {
    const int n = GetParam();
    const QString templ = m_folder.file(QStringLiteral("Шаблон Смета.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("template.fods")), templ);
    double total = 0;
    const SheetData data = sheetData(n, &total);
    const QString xls = m_folder.file(QStringLiteral("Смета 7.xls"));
    const QString pdf = m_folder.file(QStringLiteral("Смета 7.pdf"));
    QString error;
    int lastProgress = 0;
    ASSERT_TRUE(SheetTemplate::fill(engine(), templ, data, {{xls, {}}, {pdf, {}}}, &error, [&](int p) {
        lastProgress = p;
    })) << error.toStdString();
    EXPECT_EQ(lastProgress, 100);

    const FlatSheet s = readFlatSheet(convert(xls, QStringLiteral("fods")));
    ASSERT_EQ(s.size(), 3 + n + 2);
    EXPECT_EQ(s[0][0].text, QStringLiteral("СМЕТА № 7"));
    EXPECT_EQ(s[0][0].columnSpan, 4);
    EXPECT_EQ(s[1][0].text, QStringLiteral("Номер: [номер]")) << "an item without data stays";
    int number = 0;
    for (int i = 0; i < n; ++i) {
        const QVector<FlatCell> &r = s[3 + i];
        const SheetRow &item = data.lists[0].rows[i];
        if (item.kind == QStringLiteral("раздел")) {
            EXPECT_EQ(r[0].text, item.cells.value(QStringLiteral("наименование")).text) << i;
            EXPECT_EQ(r[0].columnSpan, 4) << i;
            continue;
        }
        ++number;
        ASSERT_GE(r.size(), 4) << i;
        EXPECT_EQ(r[0].type, QStringLiteral("float")) << i;
        EXPECT_EQ(r[0].value, number) << i;
        EXPECT_EQ(r[1].type, QStringLiteral("string")) << i;
        EXPECT_EQ(r[1].text, QStringLiteral("12-3")) << i;
        EXPECT_EQ(r[2].text, QStringLiteral("Работа %1").arg(i)) << i;
        EXPECT_EQ(r[3].type, QStringLiteral("float")) << i;
        EXPECT_DOUBLE_EQ(r[3].value, i + 0.5) << i;
    }
    const QVector<FlatCell> &totalRow = s[3 + n];
    EXPECT_EQ(totalRow[0].text, QStringLiteral("Итого"));
    EXPECT_EQ(totalRow[0].columnSpan, 3) << "the merged cells below moved with their rows";
    EXPECT_EQ(totalRow[3].type, QStringLiteral("float"));
    EXPECT_DOUBLE_EQ(totalRow[3].value, total);
    EXPECT_EQ(s[4 + n][0].text, QStringLiteral("Подрядчик: ООО «Ремонт»"));
    EXPECT_EQ(s[4 + n][0].columnSpan, 4);

    const QString text = pdfText(pdf);
    EXPECT_TRUE(text.contains(QStringLiteral("СМЕТА № 7")));
    EXPECT_FALSE(text.contains(QStringLiteral("[строки.")));
    if (n > 0) {
        EXPECT_TRUE(text.contains(QStringLiteral("Работа %1").arg(n - 1)));
    }
}

INSTANTIATE_TEST_SUITE_P(Items, SheetBlock, ::testing::Values(0, 1, 500));

TEST_F(Engine, FindsTheCellHoldingAText) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    QString cellName;
    ASSERT_TRUE(engine().findCell(QStringLiteral("[итого]"), true, &cellName));
    EXPECT_EQ(cellName, QStringLiteral("D6"));
    ASSERT_TRUE(engine().findCell(QStringLiteral("Подрядчик"), false, &cellName));
    EXPECT_EQ(cellName, QStringLiteral("A7"));
    ASSERT_TRUE(engine().findCell(QStringLiteral("нет такого"), false, &cellName));
    EXPECT_TRUE(cellName.isEmpty());
    engine().close();
}

// ---------------------------------------------------------------------------------------------
// A helper that dies or hangs

TEST_F(Engine, KilledHelperIsRestartedForTheNextDocument) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    const qint64 pid = engine().processId();
    const int starts = engine().starts();
    ASSERT_GT(pid, 0);
    ::kill(static_cast<pid_t>(pid), SIGKILL);
    QThread::msleep(100);
    // The document died with the helper: this request fails with a message.
    QString cellName;
    EXPECT_FALSE(engine().findCell(QStringLiteral("[итого]"), true, &cellName));
    EXPECT_FALSE(engine().error().isEmpty());
    // The next document gets a new helper.
    ASSERT_TRUE(engine().load(templ)) << engine().error().toStdString();
    EXPECT_NE(engine().processId(), pid);
    EXPECT_EQ(engine().starts(), starts + 1);
    ASSERT_TRUE(engine().findCell(QStringLiteral("[итого]"), true, &cellName));
    EXPECT_EQ(cellName, QStringLiteral("D6"));
    engine().close();
}

TEST_F(Engine, HangingHelperFailsAfterItsTimeLimitAndIsReplaced) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    const qint64 pid = engine().processId();
    ::kill(static_cast<pid_t>(pid), SIGSTOP); // stops answering, as a hung engine does
    engine().setTimeLimit(1500);
    QString cellName;
    EXPECT_FALSE(engine().findCell(QStringLiteral("[итого]"), true, &cellName));
    EXPECT_TRUE(engine().error().contains(QStringLiteral("не ответил"))) << engine().error().toStdString();
    engine().setTimeLimit(0);
    EXPECT_FALSE(engine().running());
    ASSERT_TRUE(engine().load(templ)) << engine().error().toStdString();
    EXPECT_NE(engine().processId(), pid);
    engine().close();
}

// ---------------------------------------------------------------------------------------------
// The engine kept in its bounds: its temporary files stay in a folder of its own and go with it, its
// address space is capped, a whole document has a time budget and can be cancelled, a cell takes no
// text of megabytes, and a value that looks like a field is no field left unfilled.

QStringList engineFolders(const QString &folder) {
    return QDir(folder).entryList({QStringLiteral("lu*.tmp")}, QDir::Dirs | QDir::NoDotAndDotDot);
}

TEST_F(Engine, ItsTemporaryFilesStayInItsOwnFolderAndGoWithIt) {
    // The system's temporary folder as the program finds it.
    const QString systemTemp = m_folder.file(QStringLiteral("tmp"));
    QDir().mkpath(systemTemp);
    const QByteArray previous = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(systemTemp));
    QString engineTemp;
    {
        OfficeEngine own(m_folder.file(QStringLiteral("data")));
        QString error;
        OfficeTemplates::ensureDefaults(m_folder.file(QStringLiteral("data")), &error);
        const QString templ =
            OfficeTemplates::path(m_folder.file(QStringLiteral("data")), QStringLiteral("Шаблон Смета.xls"));
        ASSERT_TRUE(own.load(templ)) << own.error().toStdString();
        ASSERT_TRUE(own.saveAs(m_folder.file(QStringLiteral("out.pdf")), QStringLiteral("pdf")));
        engineTemp = own.engineTempDir();
        EXPECT_FALSE(engineFolders(engineTemp).isEmpty()); // the engine does make them, there
        own.close();
        own.stop();
        EXPECT_FALSE(QFileInfo::exists(engineTemp));
    }
    if (previous.isEmpty())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", previous);
    EXPECT_TRUE(engineFolders(systemTemp).isEmpty()) << engineFolders(systemTemp).join(u' ').toStdString();
}

TEST_F(Engine, ItsAddressSpaceIsCapped) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    QFile limits(QStringLiteral("/proc/%1/limits").arg(engine().processId()));
    ASSERT_TRUE(limits.open(QIODevice::ReadOnly));
    const QString text = QString::fromLatin1(limits.readAll());
    const QString expected = QString::number(qint64(OfficeEngine::memoryLimitMb()) * 1024 * 1024);
    const QString line = text.section(QStringLiteral("Max address space"), 1, 1).section(u'\n', 0, 0);
    EXPECT_TRUE(line.simplified().startsWith(expected + u' ' + expected)) << line.toStdString();
    engine().close();
}

TEST_F(Engine, AWholeDocumentStopsAtItsBudgetOrWhenCancelled) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    QString cell;
    engine().setBudget(1);
    QThread::msleep(20);
    EXPECT_FALSE(engine().findCell(QStringLiteral("[итого]"), true, &cell));
    EXPECT_TRUE(engine().error().contains(QStringLiteral("отведённые"))) << engine().error().toStdString();
    EXPECT_FALSE(engine().running());
    engine().clearBudget();

    auto cancel = std::make_shared<std::atomic<bool>>(false);
    engine().setBudget(600000, cancel);
    ASSERT_TRUE(engine().load(templ)) << engine().error().toStdString();
    cancel->store(true);
    EXPECT_FALSE(engine().findCell(QStringLiteral("[итого]"), true, &cell));
    EXPECT_TRUE(engine().error().contains(QStringLiteral("отменена"))) << engine().error().toStdString();
    engine().clearBudget();
    // The next document works as ever.
    ASSERT_TRUE(engine().load(templ)) << engine().error().toStdString();
    ASSERT_TRUE(engine().findCell(QStringLiteral("[итого]"), true, &cell));
    engine().close();
}

TEST_F(Engine, ACellTakesNoTextOfMegabytes) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    OfficeEngine::Input in;
    in.cell = QStringLiteral("A1");
    in.text = QString(1000000, QChar(0x0416));
    ASSERT_TRUE(engine().enter({in})) << engine().error().toStdString();
    SheetText::Grid grid;
    ASSERT_TRUE(engine().sheet(&grid));
    ASSERT_FALSE(grid.isEmpty());
    EXPECT_EQ(grid[0][0].size(), OfficeEngine::kMaxTextChars);
    EXPECT_TRUE(grid[0][0].endsWith(QChar(0x2026)));
    engine().close();
}

TEST_F(Engine, CellsEnteredByBlocksKeepTheirKinds) {
    // Blocks of adjacent cells go in at once: texts that look like numbers, dates, truth values or
    // formulas stay texts, numbers stay numbers, formulas compute, a cell named twice keeps its last
    // value, an empty text clears, and texts that cannot go in a block still arrive whole.
    using In = OfficeEngine::Input;
    const auto text = [](const char *cell, const QString &value) {
        return In{QString::fromLatin1(cell), In::Type::Text, value, 0};
    };
    const auto number = [](const char *cell, double value) {
        return In{QString::fromLatin1(cell), In::Type::Number, {}, value};
    };
    struct Expected {
        int row, column;
        const char *type;
        QString text;
        double value;
    };
    const QVector<In> cells{
        text("A10", QStringLiteral("1-2")),
        text("B10", QStringLiteral("01.02")),
        text("C10", QStringLiteral("007")),
        text("D10", QStringLiteral("=A10")),
        number("A11", 1.5),
        {QStringLiteral("B11"), In::Type::Formula, "=A11*2", 0},
        text("C11", QStringLiteral("ИСТИНА")),
        text("D11", QStringLiteral("ООО \"Ромашка\"")),
        text("A12", QStringLiteral("-5")),
        text("B12", QStringLiteral("а\tб")),
        text("C12", QStringLiteral("\"в кавычках\"")),
        text("D12", QStringLiteral("15%")),
        text("A13", QStringLiteral("лишнее")),
        number("B13", -3),
        text("C13", QStringLiteral("'1")),
        text("D13", QStringLiteral("0,5; \"б\";в\"")),
        text("A13", QString()),
        text("A1", QString()),
        number("B2", 1234567.25),
        text("A14", QString(10000, QChar(0x0416))),
    };
    const QVector<Expected> expected{
        {9, 0, "string", QStringLiteral("1-2"), 0},
        {9, 1, "string", QStringLiteral("01.02"), 0},
        {9, 2, "string", QStringLiteral("007"), 0},
        {9, 3, "string", QStringLiteral("=A10"), 0},
        {10, 0, "float", {}, 1.5},
        {10, 1, "float", {}, 3},
        {10, 2, "string", QStringLiteral("ИСТИНА"), 0},
        {10, 3, "string", QStringLiteral("ООО \"Ромашка\""), 0},
        {11, 0, "string", QStringLiteral("-5"), 0},
        {11, 1, "string", QStringLiteral("а\tб"), 0},
        {11, 2, "string", QStringLiteral("\"в кавычках\""), 0},
        {11, 3, "string", QStringLiteral("15%"), 0},
        {12, 0, "", {}, 0},
        {12, 1, "float", {}, -3},
        {12, 2, "string", QStringLiteral("'1"), 0},
        {12, 3, "string", QStringLiteral("0,5; \"б\";в\""), 0},
        {0, 0, "", {}, 0},
        {1, 1, "float", {}, 1234567.25},
        {13, 0, "string", QString(10000, QChar(0x0416)), 0},
    };
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    ASSERT_TRUE(engine().enter(cells)) << engine().error().toStdString();
    const QString xls = m_folder.file(QStringLiteral("filled.xls"));
    ASSERT_TRUE(engine().saveAs(xls, QStringLiteral("xls"))) << engine().error().toStdString();
    engine().close();
    const FlatSheet s = readFlatSheet(convert(xls, QStringLiteral("fods")));
    for (const Expected &e : expected) {
        const QString where = SheetText::cellName(e.row, e.column);
        ASSERT_GT(s.size(), e.row) << where.toStdString();
        const FlatCell c = e.column < s[e.row].size() ? s[e.row][e.column] : FlatCell{};
        EXPECT_EQ(c.type, QLatin1String(e.type)) << where.toStdString() << " " << c.text.toStdString();
        if (c.type == QLatin1String("float"))
            EXPECT_DOUBLE_EQ(c.value, e.value) << where.toStdString();
        else
            EXPECT_EQ(c.text, e.text) << where.toStdString();
    }
}

TEST_F(Engine, AValueThatLooksLikeAFieldIsNoFieldLeftUnfilled) {
    // Every field of a sheet gets a value that holds brackets, as a customer named "ООО [заказчик]".
    const QString sheetTemplate = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), sheetTemplate);
    SheetText::Grid grid;
    ASSERT_TRUE(engine().load(sheetTemplate));
    ASSERT_TRUE(engine().sheet(&grid));
    engine().close();
    SheetData data;
    for (const QString &name : SheetTemplate::analyse(grid, data).named)
        data.values.insert(name, SheetValue::ofText(QStringLiteral("ООО [%1]").arg(name)));
    ASSERT_FALSE(data.values.isEmpty());
    const QString out = m_folder.file(QStringLiteral("filled.xls"));
    QString error;
    EXPECT_TRUE(SheetTemplate::fill(engine(), sheetTemplate, data, {{out, QString()}}, &error))
        << error.toStdString();
    // And the values stand in the document as they were written, brackets and all.
    ASSERT_TRUE(engine().load(out));
    ASSERT_TRUE(engine().sheet(&grid));
    engine().close();
    QStringList cells;
    for (const QStringList &row : grid)
        cells << row;
    for (auto it = data.values.cbegin(); it != data.values.cend(); ++it)
        EXPECT_TRUE(cells.join(u'\n').contains(it.value().text)) << it.key().toStdString();
}

TEST_F(Engine, ATemplateThatDoesNotLoadInItsTimeIsNamedAndTheHelperReplaced) {
    const QString templ = m_folder.file(QStringLiteral("t.xls"));
    writeSheetTemplate(engine(), m_folder.file(QStringLiteral("t.fods")), templ);
    ASSERT_TRUE(engine().load(templ));
    engine().close();
    const qint64 pid = engine().processId();
    ::kill(static_cast<pid_t>(pid), SIGSTOP); // the engine takes the file and does not come back
    engine().setTimeLimit(1500);
    QString error;
    EXPECT_FALSE(TemplateFile::open(engine(), templ, QStringLiteral("spreadsheet"), &error));
    engine().setTimeLimit(0);
    EXPECT_TRUE(
        error.startsWith(QStringLiteral("Шаблон %1 не открылся").arg(QDir::toNativeSeparators(templ))))
        << error.toStdString();
    EXPECT_FALSE(engine().running());
    ASSERT_TRUE(TemplateFile::open(engine(), templ, QStringLiteral("spreadsheet"), &error))
        << error.toStdString();
    EXPECT_NE(engine().processId(), pid);
    engine().close();
}

} // namespace

namespace {

// The engines of a package's spare lanes are stopped once they have rested, so their memory is not held
// for the program's life, and started again by their next job; the first lane's engine stays warm.
TEST(OfficeServiceLanes, ASpareLaneRestsAndTheFirstStaysWarm) {
    ensureApplication();
    TestFolder folder;
    OfficeService service(folder.path());
    service.setSpareRestMs(300);
    ASSERT_GE(service.lanes(), 2) << "a package makes at least two documents at once";
    auto startsOn = [&service](int lane) {
        auto starts = std::make_shared<int>(-1);
        QFuture<OfficeService::Result> done = service.run(
            [starts](OfficeEngine &e, QString *error, const std::function<void(int)> &) {
                if (!e.start()) {
                    *error = e.error();
                    return false;
                }
                *starts = e.starts();
                return true;
            },
            lane);
        done.waitForFinished();
        EXPECT_TRUE(done.result().ok) << done.result().error.toStdString();
        return *starts;
    };
    EXPECT_EQ(startsOn(0), 1);
    EXPECT_EQ(startsOn(1), 1);
    EXPECT_EQ(startsOn(1), 1) << "a job within the rest finds the engine warm";
    QThread::msleep(1500);
    EXPECT_EQ(startsOn(0), 1) << "the first lane never rests";
    EXPECT_EQ(startsOn(1), 2) << "the spare lane's engine was stopped after its rest";
}

} // namespace
