// The contract against the real engine: every placeholder filled in the saved file, headers too; what
// is missing stays; hostile values go in as they are; RTF and TXT templates; the advance rule in the
// text; edits in the window kept together with the template's header and page setup; an unedited
// contract is the engine's file; refused templates write nothing; the producer names and registers.

#include "ContractTestData.h"
#include "ContractZips.h"
#include "OfficeFiles.h"

#include "documents/ContractFile.h"
#include "documents/ContractHtml.h"
#include "documents/ContractProducer.h"
#include "office/OfficeTemplates.h"
#include "storage/ModuleSQL.h"

#include "../storage/QStringPrinter.h"
#include "SqlRows.h"
#include "TestFolder.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <gtest/gtest.h>

#include <memory>
#include <unistd.h>

namespace {

std::unique_ptr<OfficeEngine> g_engine;

OfficeEngine &engine() {
    if (!g_engine)
        g_engine = std::make_unique<OfficeEngine>(
            QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
    return *g_engine;
}

class ContractEngine : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        OfficeTemplates::ensureDefaults(m_folder.path());
    }
    static void TearDownTestSuite() { g_engine.reset(); }

    QString file(const QString &name) const { return m_folder.file(name); }
    QString defaultTemplate() const {
        return OfficeTemplates::path(m_folder.path(), ContractProducer::kDefaultTemplate);
    }
    QString write(const QString &name, const QByteArray &bytes) const {
        QFile f(file(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return f.fileName();
    }
    // Fills the template into a ".docx"; the path, empty on failure.
    QString fill(const QString &templatePath, const ContractFill::Data &data, const QString &name) {
        const QString out = file(name);
        QString error;
        EXPECT_TRUE(ContractFile::fill(engine(), templatePath, ContractFill::replacements(data),
                                       {{out, QStringLiteral("docx")}}, &error))
            << error.toStdString();
        return QFile::exists(out) ? out : QString();
    }
    // The text of a document's body as the engine reads it (paragraphs on lines).
    QString bodyText(const QString &path) {
        const QString out = file(QFileInfo(path).completeBaseName() + QStringLiteral("-body.txt"));
        EXPECT_TRUE(engine().load(path)) << engine().error().toStdString();
        EXPECT_TRUE(engine().saveAs(out, QStringLiteral("txt"))) << engine().error().toStdString();
        engine().close();
        QFile f(out);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    QString convert(const QString &path, const QString &format) {
        const QString out = file(QFileInfo(path).completeBaseName() + QStringLiteral("-check.") + format);
        EXPECT_TRUE(engine().load(path)) << engine().error().toStdString();
        EXPECT_TRUE(engine().saveAs(out, format)) << engine().error().toStdString();
        engine().close();
        return out;
    }
    // The editor's document of a file, as the contract window would show it.
    std::unique_ptr<QTextDocument> editorDocument(const QString &path) {
        QString html, error;
        EXPECT_TRUE(ContractFile::readBody(engine(), path, &html, &error)) << error.toStdString();
        auto doc = std::make_unique<QTextDocument>();
        doc->setHtml(ContractHtml::forEditor(html));
        return doc;
    }

    // The alignment of the paragraph that begins with the text, as the engine reads the file back.
    QString alignmentOf(const QString &path, const QString &text) {
        QString html, error;
        EXPECT_TRUE(ContractFile::readBody(engine(), path, &html, &error)) << error.toStdString();
        const QRegularExpression p(QStringLiteral("<p([^>]*)>\\s*(?:<[^>]+>\\s*)*") +
                                   QRegularExpression::escape(text));
        const auto m = p.match(html);
        if (!m.hasMatch())
            return QStringLiteral("not found");
        const auto a = QRegularExpression(QStringLiteral("align=\"(\\w+)\"")).match(m.captured(1));
        return a.hasMatch() ? a.captured(1) : QStringLiteral("left");
    }

    TestFolder m_folder;
};

// "Page size: 841.89 x 595.276 pts (A4)" of the first page.
QSizeF pdfPageSize(const QString &pdf) {
    QProcess p;
    p.start(QStringLiteral("pdfinfo"), {pdf});
    p.waitForFinished(30000);
    static const QRegularExpression re(QStringLiteral("Page size:\\s+([\\d.]+) x ([\\d.]+)"));
    const auto m = re.match(QString::fromUtf8(p.readAllStandardOutput()));
    return m.hasMatch() ? QSizeF(m.captured(1).toDouble(), m.captured(2).toDouble()) : QSizeF();
}

TEST_F(ContractEngine, EveryPlaceholderIsFilledInTheSavedFileHeaderIncluded) {
    ContractFill::Data data = fullData();
    const QString docx = fill(defaultTemplate(), data, QStringLiteral("full.docx"));
    ASSERT_FALSE(docx.isEmpty());
    const QString text = bodyText(docx);
    for (const auto &[placeholder, value] : ContractFill::replacements(data)) {
        EXPECT_FALSE(text.contains(placeholder)) << placeholder.toStdString();
        EXPECT_TRUE(text.contains(value)) << placeholder.toStdString() << " = " << value.toStdString();
    }
    EXPECT_TRUE(text.contains(QStringLiteral("[дата окончания]"))) << "the package's field stays outside it";
    EXPECT_TRUE(text.contains(QStringLiteral("«5» Марта 2026г.")));
    // A placeholder used twice in the body: both are filled.
    EXPECT_EQ(text.count(QStringLiteral("ИП Соболев Денис Андреевич")), 2);
    // The header has "[дата]" of its own.
    const QString pdf = convert(docx, QStringLiteral("pdf"));
    EXPECT_TRUE(pdfText(pdf).simplified().contains(
        QStringLiteral("Договор подряда на выполнение ремонтных работ от 05.03.2026")));
}

TEST_F(ContractEngine, MissingDataStaysAsPlaceholders) {
    ContractFill::Data data = fullData();
    data.customer.requisites.clear();
    data.contractor.contractor[QStringLiteral("longname")].clear();
    data.total = QStringLiteral("не число");
    ContractFill::setAmounts(&data, 35);
    const QString text = bodyText(fill(defaultTemplate(), data, QStringLiteral("missing.docx")));
    for (const char *left : {"[паспортзак]", "[иннзак]", "[огрнзак]", "[банкзак]", "[бикзак]", "[рсчетзак]",
                             "[ксчетзак]", "[руководительзак]", "[сумма цифрами]", "[сумма прописью]",
                             "[аванс]", "[аванс прописью]", "[остаток]", "[остаток прописью]"})
        EXPECT_TRUE(text.contains(QString::fromUtf8(left))) << left;
    EXPECT_TRUE(text.contains(QStringLiteral("ИП Соболев, ")))
        << "the short name stands for an empty long one";
    EXPECT_TRUE(text.contains(QStringLiteral("Кудрявцев Олег")));
}

TEST_F(ContractEngine, ValuesGoInAsTheyAreEvenWhenTheyLookLikePlaceholders) {
    ContractFill::Data data = fullData();
    const QString name = QStringLiteral("ООО \"Ромашка\" 'и' \\ сыновья [заказчик] [иннзак] & $1 \\n");
    const QString longNote = QString(10 * 1024, QChar(u'ю')) + QStringLiteral("[конец]");
    data.contractor.contractor[QStringLiteral("longname")] = name;
    data.customer.customer[QStringLiteral("note")] = longNote;
    data.customer.requisites.remove(QStringLiteral("bank"));
    data.customer.customer[QStringLiteral("Agent")] = QStringLiteral("[банкзак]");
    data.contractor.requisites[QStringLiteral("pasport")] = QStringLiteral("серия 78 19\r\nвыдан 14.06.2019");
    const QString text = bodyText(fill(defaultTemplate(), data, QStringLiteral("hostile.docx")));
    EXPECT_EQ(text.count(name), 2) << "neither the customer's name nor the INN replaced inside it";
    EXPECT_TRUE(text.contains(longNote));
    EXPECT_TRUE(text.contains(QStringLiteral("представитель Заказчика — [банкзак]")));
    EXPECT_TRUE(text.contains(QStringLiteral("серия 78 19\nвыдан 14.06.2019")) ||
                text.contains(QStringLiteral("серия 78 19\r\nвыдан 14.06.2019")))
        << "a line break inside a value stays one";
}

TEST_F(ContractEngine, RtfAndTextTemplates) {
    const QString rtf = write(QStringLiteral("шаблон.rtf"),
                              QByteArray("{\\rtf1\\ansi\\ansicpg1251{\\fonttbl{\\f0 Times New Roman;}}"
                                         "\\f0\\fs24 \\b [\\'e7\\'e0\\'ea\\'e0\\'e7\\'f7\\'e8\\'ea]\\b0"
                                         " \\par [\\'e4\\'e0\\'f2\\'e0]\\par}"));
    const QString txt =
        write(QStringLiteral("шаблон.txt"),
              QStringLiteral("Заказчик: [заказчик]\nСумма: [сумма цифрами] ([сумма прописью])\n").toUtf8());
    const ContractFill::Data data = fullData();
    const QString fromRtf = bodyText(fill(rtf, data, QStringLiteral("из-rtf.docx")));
    EXPECT_TRUE(fromRtf.contains(QStringLiteral("Кудрявцев Олег"))) << fromRtf.toStdString();
    EXPECT_TRUE(fromRtf.contains(QStringLiteral("05.03.2026")));
    const QString rtfLook = convert(file(QStringLiteral("из-rtf.docx")), QStringLiteral("fodt"));
    EXPECT_TRUE(lookOfText(rtfLook, QStringLiteral("Кудрявцев Олег")).bold) << "the placeholder's look";
    const QString fromTxt = bodyText(fill(txt, data, QStringLiteral("из-txt.docx")));
    EXPECT_TRUE(fromTxt.contains(QStringLiteral("Заказчик: Кудрявцев Олег")));
    EXPECT_TRUE(fromTxt.contains(QStringLiteral("Сумма: 35271,43 руб. (Тридцать пять тысяч")));
}

TEST_F(ContractEngine, TheAdvanceRuleInTheText) {
    const QString templ = write(QStringLiteral("аванс.txt"), QByteArray("Аванс [аванс], остаток [остаток]."));
    // At 100 % the share is the total itself: the text shows the rule's figures.
    const struct {
        const char *total, *advance, *remainder;
    } cases[] = {{"12345", "12500", "-155,00"},
                 {"17845", "1017", "16828,00"},
                 {"123", "100", "23,00"},
                 {"999", "900", "99,00"},
                 {"57", "500", "-443,00"}};
    for (const auto &c : cases) {
        ContractFill::Data data = fullData();
        data.total = QString::fromUtf8(c.total);
        ContractFill::setAmounts(&data, 100);
        const QString text = bodyText(fill(templ, data, QStringLiteral("аванс-%1.docx").arg(c.total)));
        EXPECT_TRUE(text.contains(QStringLiteral("Аванс %1, остаток %2.").arg(c.advance, c.remainder)))
            << c.total << ": " << text.toStdString();
    }
}

TEST_F(ContractEngine, EditsAreKeptWithTheTemplatesHeaderAndPage) {
    const QString base = fill(defaultTemplate(), fullData(), QStringLiteral("база.docx"));
    ASSERT_FALSE(base.isEmpty());
    std::unique_ptr<QTextDocument> doc = editorDocument(base);
    ASSERT_TRUE(doc->toPlainText().contains(QStringLiteral("Кудрявцев Олег")));
    ASSERT_FALSE(doc->toPlainText().contains(QStringLiteral("Договор подряда на выполнение"))) << "no header";
    // The user makes a word bold and adds a sentence.
    QTextCursor c = doc->find(QStringLiteral("неотъемлемой"));
    ASSERT_FALSE(c.isNull());
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    c.mergeCharFormat(bold);
    c = doc->find(QStringLiteral("1.3. Работы выполняются"));
    c.movePosition(QTextCursor::StartOfBlock);
    c.insertText(QStringLiteral("Правка заказчика внесена. "));
    // The first paragraph (the title) goes to the right; the second stays centred.
    QTextBlockFormat right;
    right.setAlignment(Qt::AlignRight);
    QTextCursor(doc->firstBlock()).mergeBlockFormat(right);

    ContractFile::Edits edits;
    edits.body = true;
    edits.html = ContractHtml::forEngine(*doc);
    const QString docx = file(QStringLiteral("правленый.docx"));
    const QString pdf = file(QStringLiteral("правленый.pdf"));
    QString error;
    ASSERT_TRUE(ContractFile::write(engine(), base, edits, {{docx, QString()}, {pdf, QString()}}, &error))
        << error.toStdString();
    const QString text = bodyText(docx);
    EXPECT_TRUE(text.contains(QStringLiteral("Правка заказчика внесена. 1.3. Работы выполняются")));
    EXPECT_EQ(text.count(QStringLiteral("ДОГОВОР ПОДРЯДА №")), 1) << "the old body is gone";
    EXPECT_EQ(text.count(QStringLiteral("Заказчик:")), 1);
    EXPECT_TRUE(lookOfText(convert(docx, QStringLiteral("fodt")), QStringLiteral("неотъемлемой")).bold);
    EXPECT_FALSE(lookOfText(convert(docx, QStringLiteral("fodt")), QStringLiteral("частью настоящего")).bold);
    EXPECT_EQ(alignmentOf(docx, QStringLiteral("ДОГОВОР ПОДРЯДА")), QStringLiteral("right"));
    EXPECT_EQ(alignmentOf(docx, QStringLiteral("на выполнение ремонтных работ")), QStringLiteral("center"));
    EXPECT_EQ(alignmentOf(docx, QStringLiteral("Правка заказчика")), QStringLiteral("justify"));
    const QString printed = pdfText(pdf).simplified();
    EXPECT_TRUE(printed.contains(QStringLiteral("Правка заказчика внесена.")));
    EXPECT_TRUE(
        printed.contains(QStringLiteral("Договор подряда на выполнение ремонтных работ от 05.03.2026")))
        << "the template's header";
    EXPECT_TRUE(printed.contains(QStringLiteral("Страница 1 из"))) << "the template's footer";
    // The template's page setup.
    const ContractFile::PageInfo before = ContractFile::pageOf(base);
    const ContractFile::PageInfo after = ContractFile::pageOf(docx);
    ASSERT_TRUE(before.ok && after.ok);
    EXPECT_EQ(after.page, before.page);
    EXPECT_EQ(before.page.width, 21000);
    EXPECT_EQ(before.page.left, 2500);
    EXPECT_EQ(before.page.right, 1500);
}

TEST_F(ContractEngine, AnUneditedContractIsTheEnginesFileAndPageOptionsApply) {
    const QString base = fill(defaultTemplate(), fullData(), QStringLiteral("как-есть.docx"));
    const QString copy = file(QStringLiteral("копия.docx"));
    const QString rtf = file(QStringLiteral("копия.rtf"));
    QString error;
    ASSERT_TRUE(ContractFile::write(engine(), base, {}, {{copy, QString()}, {rtf, QString()}}, &error));
    QFile a(base), b(copy);
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), b.readAll()) << "saved exactly as the engine filled it";
    EXPECT_TRUE(bodyText(rtf).contains(QStringLiteral("Кудрявцев Олег")));

    ContractFile::Edits page;
    page.page = true;
    page.pageSetup = {29700, 21000, true, 2000, 2000, 1000, 1000};
    const QString landscape = file(QStringLiteral("альбомная.pdf"));
    const QString landscapeDocx = file(QStringLiteral("альбомная.docx"));
    ASSERT_TRUE(ContractFile::write(engine(), base, page,
                                    {{landscape, QString()}, {landscapeDocx, QString()}}, &error))
        << error.toStdString();
    const QSizeF size = pdfPageSize(landscape);
    EXPECT_NEAR(size.width(), 841.9, 1);
    EXPECT_NEAR(size.height(), 595.3, 1);
    const ContractFile::PageInfo info = ContractFile::pageOf(landscapeDocx);
    EXPECT_TRUE(info.page.landscape);
    EXPECT_EQ(info.page.left, 2000);
    EXPECT_TRUE(pdfText(landscape).simplified().contains(QStringLiteral("Договор подряда на выполнение")));
}

TEST_F(ContractEngine, ABodyThatBeginsAndEndsWithTablesIsReplacedWhole) {
    QByteArray table =
        "<w:tbl><w:tblPr><w:tblW w:w=\"5000\" w:type=\"pct\"/></w:tblPr><w:tblGrid><w:gridCol/>"
        "</w:tblGrid><w:tr><w:tc><w:p><w:r><w:t>Ячейка %1</w:t></w:r></w:p></w:tc></w:tr></w:tbl>";
    QVector<PackageEntry> entries = docxEntries({QStringLiteral("Середина")});
    QByteArray &xml = entries[2].data;
    xml.replace("<w:body>", "<w:body>" + QByteArray(table).replace("%1", "первая"));
    xml.replace("</w:body>", QByteArray(table).replace("%1", "последняя") + "<w:p/></w:body>");
    const QString path = file(QStringLiteral("таблицы.docx"));
    ASSERT_TRUE(writePackage(path, entries));
    std::unique_ptr<QTextDocument> doc = editorDocument(path);
    EXPECT_TRUE(doc->toPlainText().contains(QStringLiteral("Ячейка первая")));
    EXPECT_TRUE(doc->toPlainText().contains(QStringLiteral("Ячейка последняя")));
    doc->setHtml(QStringLiteral("<p>Новый текст</p>"));
    ContractFile::Edits edits;
    edits.body = true;
    edits.html = ContractHtml::forEngine(*doc);
    const QString out = file(QStringLiteral("таблицы-правка.docx"));
    QString error;
    ASSERT_TRUE(ContractFile::write(engine(), path, edits, {{out, QString()}}, &error))
        << error.toStdString();
    const QString text = bodyText(out);
    EXPECT_TRUE(text.contains(QStringLiteral("Новый текст")));
    EXPECT_FALSE(text.contains(QStringLiteral("Ячейка"))) << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("Середина")));
}

TEST_F(ContractEngine, TemplatesThatCannotBeLoadedWriteNothing) {
    QVector<PackageEntry> bomb = docxEntries({QStringLiteral("[заказчик]")});
    bomb.append({QStringLiteral("word/media/zeros.xml"), QByteArray(20 * 1024 * 1024, '\0')});
    const QString bombPath = file(QStringLiteral("бомба.docx"));
    ASSERT_TRUE(writePackage(bombPath, bomb) && stateUnpackedSize(bombPath, 1000));
    const QString damaged =
        write(QStringLiteral("битый.docx"), QByteArray("PK\x03\x04") + QByteArray(4000, '\x7f'));
    const QString sheet = OfficeTemplates::path(m_folder.path(), QStringLiteral("Шаблон Счет на оплату.xls"));
    for (const QString &templ : {bombPath, damaged, file(QStringLiteral("нет.docx")), sheet}) {
        const QString out = file(QStringLiteral("не-сделан.docx"));
        QString error;
        bool notLoaded = false;
        EXPECT_FALSE(ContractFile::fill(engine(), templ, ContractFill::replacements(fullData()),
                                        {{out, QStringLiteral("docx")}}, &error, &notLoaded))
            << templ.toStdString();
        EXPECT_TRUE(notLoaded) << templ.toStdString() << ": " << error.toStdString();
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(QFile::exists(out));
        QString html;
        notLoaded = false;
        EXPECT_FALSE(ContractFile::readBody(engine(), templ, &html, &error, &notLoaded));
        EXPECT_TRUE(notLoaded);
    }
}

TEST_F(ContractEngine, TheProducerWritesAndRegisters) {
    TModuleSQL module(m_folder.path());
    ContractProducer::Request r;
    r.data = fullData();
    r.data.endDate = QDate(2026, 4, 30);
    r.templatePath = defaultTemplate();
    r.number = QStringLiteral("7");
    r.date = QDate(2026, 3, 6);
    r.folder = file(QStringLiteral("Пакет"));
    r.iddoc = QStringLiteral("3");
    for (const auto format : {ContractProducer::Format::Docx, ContractProducer::Format::Pdf}) {
        r.format = format;
        const ContractProducer::Result result =
            ContractProducer::produce(engine(), module.database(Db::MyDoc), r);
        ASSERT_TRUE(result.ok) << result.error.toStdString();
        EXPECT_TRUE(result.warning.isEmpty()) << result.warning.toStdString();
        EXPECT_EQ(QFileInfo(result.path).fileName(), format == ContractProducer::Format::Pdf
                                                         ? "Договор № 7 от 06.03.2026.pdf"
                                                         : "Договор № 7 от 06.03.2026.docx");
        const QString text = format == ContractProducer::Format::Pdf ? pdfText(result.path).simplified()
                                                                     : bodyText(result.path);
        EXPECT_TRUE(text.contains(QStringLiteral("Окончание работ — 30.04.2026."))) << text.toStdString();
    }
    EXPECT_EQ(
        queryRows(module.database(Db::MyDoc),
                  QStringLiteral("SELECT iddoc, dataend, number, name, ext, avans, "
                                 "allsum FROM contract ORDER BY id")),
        QStringList({"3|30.04.2026|7|№ 7|doc|12500|35271,43", "3|30.04.2026|7|№ 7|pdf|12500|35271,43"}));

    // A template that cannot be used: nothing written, nothing registered.
    r.templatePath = file(QStringLiteral("нет.docx"));
    const ContractProducer::Result failed =
        ContractProducer::produce(engine(), module.database(Db::MyDoc), r);
    EXPECT_FALSE(failed.ok);
    EXPECT_TRUE(failed.path.isEmpty());
    EXPECT_TRUE(failed.error.contains(QStringLiteral("Отсутствует файл")));
    EXPECT_EQ(queryRows(module.database(Db::MyDoc), QStringLiteral("SELECT id FROM contract")).size(), 2);
}

} // namespace
