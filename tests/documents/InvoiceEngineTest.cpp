// The invoice through the real office engine: the package's producer writes the spreadsheet and the
// PDF, registers them, and the PDF's page carries the payment QR code that a banking app reads back.

#include "InvoicePrinters.h"
#include "InvoiceTestDocument.h"
#include "OfficeFiles.h"
#include "SqlRows.h"
#include "documents/AccountTable.h"
#include "documents/InvoiceProducer.h"
#include "documents/InvoiceSheet.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <gtest/gtest.h>

#include <ZXing/ReadBarcode.h>

#include <unistd.h>

namespace {

std::unique_ptr<OfficeEngine> g_engine;

OfficeEngine &engine() {
    if (!g_engine)
        g_engine = std::make_unique<OfficeEngine>(
            QDir::temp().filePath(QStringLiteral("virn-office-invoice-tests-%1").arg(getuid())));
    return *g_engine;
}

// Every QR code found on the first page of a PDF, rendered at 300 dpi, as the bytes it holds.
QStringList qrCodesOf(const QString &pdf, const QString &scratch) {
    const QString prefix = QDir(scratch).filePath(QStringLiteral("page"));
    QProcess p;
    p.start(QStringLiteral("pdftoppm"), {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("300"),
                                         QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"),
                                         QStringLiteral("1"), QStringLiteral("-singlefile"), pdf, prefix});
    EXPECT_TRUE(p.waitForFinished(60000));
    const QImage page = QImage(prefix + QStringLiteral(".png")).convertToFormat(QImage::Format_Grayscale8);
    EXPECT_FALSE(page.isNull());
    QStringList codes;
    ZXing::DecodeHints hints;
    hints.setFormats(ZXing::BarcodeFormat::QRCode);
    hints.setTryHarder(true);
    const ZXing::ImageView view(page.constBits(), page.width(), page.height(), ZXing::ImageFormat::Lum,
                                static_cast<int>(page.bytesPerLine()));
    for (const ZXing::Result &r : ZXing::ReadBarcodes(view, hints))
        if (r.isValid())
            codes << QString::fromUtf8(reinterpret_cast<const char *>(r.bytes().data()),
                                       static_cast<int>(r.bytes().size()));
    return codes;
}

class InvoiceEngine : public InvoiceTestDocument {
protected:
    void SetUp() override {
        InvoiceTestDocument::SetUp();
        QString why;
        if (!OfficeEngine::available(&why))
            GTEST_SKIP() << why.toStdString();
        ASSERT_TRUE(OfficeTemplates::ensureDefaults(folder.path()).size() > 0);
        addContractor("Соболев", "ИП Соболев Андрей Викторович",
                      {{"inn", "760412345678"},
                       {"boss", "Соболев А. В."},
                       {"account", "40802810477000012345"},
                       {"bank", "ПАО СБЕРБАНК"},
                       {"bik", "047888670"},
                       {"koraccount", "30101810500000000670"}});
        setHeader("", 12);
        setTotals("70000", "25000");
        setEstimateVat(true); // 20 % on top: 114 000,00
        ASSERT_TRUE(doc->saveAs(folder.file("Sm/Кухня.sim")));
    }
    InvoiceProducer::Outcome produce(InvoiceProducer::Format format, const QString &number = "12-1") {
        InvoiceProducer::Request r;
        r.number = number;
        r.date = QDate(2025, 3, 1);
        r.folder = folder.file("Пакет");
        r.format = format;
        InvoiceOpening::Options options;
        options.longName = true;
        return InvoiceProducer::produce(*doc, options, r, engine());
    }
};

TEST_F(InvoiceEngine, PackageWritesTheSpreadsheetAndThePdfAndRegistersThem) {
    // Five services: three stored items and two in the rows under them.
    QVector<InvoiceService> services{{"Облицовка стен плиткой", "70 000"},
                                     {"Плитка и клей", "25000"},
                                     {"Проценты", "19000"},
                                     {"Вывоз строительного мусора", "3500,50"},
                                     {"Скидка постоянному клиенту", "-3500,50"}};
    ASSERT_TRUE(AccountTable::writeServices(working(), services));

    const InvoiceProducer::Outcome xls = produce(InvoiceProducer::Format::Xls);
    ASSERT_TRUE(xls.ok()) << xls.error.toStdString();
    EXPECT_EQ(xls.path, folder.file("Пакет/Счет на оплату № 12-1 от 01.03.2025.xls"));
    const InvoiceProducer::Outcome pdf = produce(InvoiceProducer::Format::Pdf);
    ASSERT_TRUE(pdf.ok()) << pdf.error.toStdString();
    EXPECT_EQ(pdf.path, folder.file("Пакет/Счет на оплату № 12-1 от 01.03.2025.pdf"));
    EXPECT_EQ(QDir(folder.file("Пакет")).entryList(QDir::Files | QDir::Hidden).size(), 2) << "no .tmp left";

    // What the customer reads, in the PDF and in the spreadsheet.
    const QString pdfText = ::pdfText(pdf.path).simplified();
    SheetText::Grid grid;
    ASSERT_TRUE(engine().load(xls.path));
    ASSERT_TRUE(engine().sheet(&grid));
    engine().close();
    QString sheetText;
    for (const QStringList &row : grid)
        sheetText += row.join(u' ') + u'\n';
    sheetText = sheetText.simplified();
    // Amounts read as the customer sees them in the PDF; the spreadsheet holds them as numbers.
    struct Expected {
        const char *text;
        const char *inSheet; // how the spreadsheet's text shows it (null: as in the PDF)
    } expected[] = {
        {"Счет на оплату № 12-1 от 01.03.2025", nullptr},
        {"Покупатель (Заказчик): Кудрявцев О. Н.", nullptr},
        {"Поставщик (Исполнитель): ИП Соболев Андрей Викторович, ИНН 760412345678 Покупатель", nullptr},
        {"Облицовка стен плиткой 1 усл. 70 000,00", "Облицовка стен плиткой 1 усл. 70000"},
        {"Плитка и клей", nullptr},
        {"3 Проценты 1 усл. 19 000,00", "3 Проценты 1 усл. 19000"},
        {"4 Вывоз строительного мусора 1 усл. 3 500,50", "4 Вывоз строительного мусора 1 усл. 3500,5"},
        {"5 Скидка постоянному клиенту 1 усл. -3 500,50", "5 Скидка постоянному клиенту 1 усл. -3500,5"},
        {"Итого: 114 000,00", "Итого: 114000"},
        {"В том числе НДС (20 %): 19 000,00", "В том числе НДС (20 %): 19000"},
        {"Всего к оплате: 114 000,00", "Всего к оплате: 114000"},
        {"Всего наименований 5, на сумму 114 000,00 руб.", nullptr},
        {"Сто четырнадцать тысяч рублей 00 копеек", nullptr},
        {"БИК 047888670", nullptr},
        {"40802810477000012345", nullptr},
        {"Руководитель ______________ / Соболев А. В. /", nullptr}};
    for (const Expected &e : expected) {
        const QString inPdf = QString::fromUtf8(e.text);
        const QString inSheet = e.inSheet ? QString::fromUtf8(e.inSheet) : inPdf;
        EXPECT_TRUE(pdfText.contains(inPdf)) << "PDF: " << e.text << "\n" << pdfText.toStdString();
        EXPECT_TRUE(sheetText.contains(inSheet)) << "XLS: " << inSheet.toStdString() << "\n"
                                                 << sheetText.toStdString();
    }
    EXPECT_FALSE(pdfText.contains(u'[')) << "no placeholder left: " << pdfText.toStdString();
    EXPECT_FALSE(pdfText.contains("ToggleSwitch1")) << "the settings row is hidden";

    const QStringList rows = queryRows(module->database(Db::MyDoc), "SELECT iddoc, number, name, ext, allsum "
                                                                    "FROM account ORDER BY id");
    const QString id = queryRows(module->database(Db::MyDoc), "SELECT id FROM documents").value(0);
    EXPECT_EQ(rows, (QStringList{id + "|12-1|№ 12-1|xls|114000,00", id + "|12-1|№ 12-1|pdf|114000,00"}));

    // Again with another number: the same rows, the file of the new name.
    ASSERT_TRUE(produce(InvoiceProducer::Format::Pdf, "12-2").ok());
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT count(*), max(number) FROM account"),
              QStringList{"2|12-2"});
}

TEST_F(InvoiceEngine, QrCodeOnThePageReadsBackAsThePaymentString) {
    const InvoiceProducer::Outcome pdf = produce(InvoiceProducer::Format::Pdf);
    ASSERT_TRUE(pdf.ok()) << pdf.error.toStdString();
    InvoiceOpening::Options options;
    options.longName = true;
    Invoice inv = InvoiceOpening::open(*doc, options);
    inv.number = "12-1";
    inv.date = QDate(2025, 3, 1);
    const QString expected =
        InvoicePayment::paymentString(InvoiceSheet::payee(inv), InvoiceSheet::payment(inv));
    ASSERT_FALSE(expected.isEmpty());
    EXPECT_TRUE(expected.contains("|Sum=11400000|")) << expected.toStdString();
    EXPECT_EQ(qrCodesOf(pdf.path, folder.path()), QStringList{expected});
    // Kept for looking at.
    QFile::remove(QStringLiteral(VIRN_SCREENSHOT_DIR "/invoice.pdf"));
    QFile::copy(pdf.path, QStringLiteral(VIRN_SCREENSHOT_DIR "/invoice.pdf"));

    // The spreadsheet carries the picture too: its own PDF has the same code.
    const InvoiceProducer::Outcome xls = produce(InvoiceProducer::Format::Xls);
    ASSERT_TRUE(xls.ok()) << xls.error.toStdString();
    const QString again = folder.file("again.pdf");
    ASSERT_TRUE(engine().load(xls.path));
    ASSERT_TRUE(engine().saveAs(again, "pdf"));
    engine().close();
    EXPECT_EQ(qrCodesOf(again, folder.path()), QStringList{expected});
}

TEST_F(InvoiceEngine, NoCodeWithoutAnAccountAndNoneWhenSwitchedOff) {
    const Fields noAccount{{"id", "1"}, {"shotname", "Соболев"}, {"longname", "ИП Соболев"}};
    ContractorRegister r(*module);
    ASSERT_EQ(r.save(noAccount, {{"bik", "047888670"}}), RegisterStatus::Ok);
    const InvoiceProducer::Outcome pdf = produce(InvoiceProducer::Format::Pdf);
    ASSERT_TRUE(pdf.ok()) << pdf.error.toStdString();
    EXPECT_TRUE(qrCodesOf(pdf.path, folder.path()).isEmpty());
    EXPECT_FALSE(::pdfText(pdf.path).contains("QR")) << "the place of the code is left empty";

    addContractor("Петров", "ИП Петров",
                  {{"account", "40802810477000012345"}, {"bik", "047888670"}, {"bank", "Банк"}});
    setHeader("", 12, "Петров");
    InvoiceProducer::Request req{
        "1", QDate(2025, 3, 1), folder.file("Без кода"), InvoiceProducer::Format::Pdf, {}};
    InvoiceOpening::Options off;
    off.qr = false;
    const InvoiceProducer::Outcome noQr = InvoiceProducer::produce(*doc, off, req, engine());
    ASSERT_TRUE(noQr.ok()) << noQr.error.toStdString();
    EXPECT_TRUE(qrCodesOf(noQr.path, folder.path()).isEmpty());
    const InvoiceProducer::Outcome withQr = produce(InvoiceProducer::Format::Pdf, "2");
    EXPECT_EQ(qrCodesOf(withQr.path, folder.path()).size(), 1);
}

TEST_F(InvoiceEngine, MissingTemplateIsNamed) {
    const QString path = OfficeTemplates::path(folder.path(), InvoiceSheet::kTemplate);
    ASSERT_TRUE(QFile::remove(path));
    const InvoiceProducer::Outcome out = produce(InvoiceProducer::Format::Xls);
    EXPECT_EQ(out.error, "Отсутствует файл " + QDir::toNativeSeparators(path));
    EXPECT_TRUE(out.path.isEmpty());
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT count(*) FROM account"), QStringList{"0"});
}

} // namespace
