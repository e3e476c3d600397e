// The contract without the engine: the advance rule, what fills each placeholder, the HTML between
// the engine and the editor, the register of contracts, file names.

#include "documents/ContractAmounts.h"
#include "documents/ContractFill.h"
#include "documents/ContractHtml.h"
#include "documents/ContractProducer.h"
#include "documents/ContractStore.h"
#include "office/InWord.h"
#include "storage/ModuleSQL.h"

#include "ContractTestData.h"

#include "../storage/QStringPrinter.h"
#include "SqlRows.h"
#include "TestFolder.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace {

TEST(ContractAdvance, RoundsByTheDigitRule) {
    const struct {
        qint64 a, advance;
    } cases[] = {{12345, 12500},   {17845, 1017}, {123, 100},     {999, 900},    {57, 500},
                 {7, 700},         {0, 0},        {1234, 1500},   {1600, 1500},  {15678, 1015},
                 {100000, 100500}, {1500, 1500},  {15009, 15500}, {15019, 1015}, {15100, 1015}};
    for (const auto &c : cases)
        EXPECT_EQ(ContractAmounts::roundAdvance(c.a), c.advance) << c.a;
}

TEST(ContractAdvance, ShareIsRoundedToWholeUnitsTiesToEven) {
    const struct {
        const char *total;
        int percent;
        const char *advance; // "" when there is none
    } cases[] = {
        {"3,00", 50, "200"},        // 1,5 -> 2 -> "200"
        {"5,00", 50, "200"},        // 2,5 -> 2 (ties to even)
        {"7,00", 50, "400"},        // 3,5 -> 4
        {"1,00", 50, "0"},          // 0,5 -> 0
        {"35271,43", 35, "12500"},  // 12345,0005 -> 12345
        {"50985,71", 35, "1017"},   // 17844,9985 -> 17845
        {"274317,84", 35, "1096"},  // 96011,244 -> 96011: "601" > 500
        {"274 317,84", 35, "1096"}, // blanks as typed
        {"100000", 0, "0"},         {"100000", 100, "100500"}, {"-35271,43", 35, "-12500"}, {"", 35, ""},
        {"много", 35, ""},          {"100", 101, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ContractAmounts::advanceText(QString::fromUtf8(c.total), c.percent),
                  QString::fromUtf8(c.advance))
            << c.total << " " << c.percent;
}

TEST(ContractAdvance, RemainderIsTotalMinusAdvance) {
    EXPECT_EQ(ContractAmounts::remainderText(QStringLiteral("274317,84"), QStringLiteral("1096")),
              QStringLiteral("273221,84"));
    EXPECT_EQ(ContractAmounts::remainderText(QStringLiteral("1000"), QStringLiteral("1000,50")),
              QStringLiteral("-0,50"));
    EXPECT_EQ(ContractAmounts::remainderText(QStringLiteral("1000"), QString()), QString());
    EXPECT_EQ(ContractAmounts::remainderText(QStringLiteral("x"), QStringLiteral("10")), QString());
}

QMap<QString, QString> asMap(const WordTemplate::Replacements &list) {
    QMap<QString, QString> m;
    for (const auto &p : list) {
        EXPECT_FALSE(m.contains(p.first)) << "twice: " << p.first.toStdString();
        m.insert(p.first, p.second);
    }
    return m;
}

TEST(ContractFill, EveryPlaceholderGetsItsSource) {
    const QMap<QString, QString> v = asMap(ContractFill::replacements(fullData()));
    const QMap<QString, QString> expected{
        {"[дата]", "05.03.2026"},
        {"[день]", "5"},
        {"[месяц]", "Марта"},
        {"[год]", "2026г."},
        {"[подрядчик]", "ИП Соболев Денис Андреевич"},
        {"[телефон]", "+7 999 308-41-16"},
        {"[заказчик]", "Кудрявцев Олег"},
        {"[телефонзак]", "+7 999 214-57-38"},
        {"[адресзак]", "г.Ярославль, ул. Садовая, 14"},
        {"[представительзак]", "Кудрявцева Анна"},
        {"[emailclient]", "o.k@example.com"},
        {"[юрданзак]", "паспорт 78 19"},
        {"[паспортзак]", "серия 78 19 № 402715"},
        {"[иннзак]", "760628471915"},
        {"[огрнзак]", "1027600000000"},
        {"[банкзак]", "ПАО «Сбер»"},
        {"[бикзак]", "047888001"},
        {"[рсчетзак]", "40817810000000000001"},
        {"[ксчетзак]", "30101810000000000001"},
        {"[руководительзак]", "Кудрявцев О.Н."},
        {"[объект]", "Квартира, ул. Садовая, д. 14"},
        {"[работа]", "Ремонт кухни"},
        {"[сумма цифрами]", "35271,43 руб."},
        {"[свидетельство]", "св-во 76 № 1"},
        {"[паспорт]", "78 19 402715"},
        {"[адрес]", "г.Ярославль, ул. Полевая, 8"},
        {"[инн]", "760419305865"},
        {"[огрн]", "318762700041729"},
        {"[банк]", "АО «Банк»"},
        {"[бик]", "047888913"},
        {"[рсчет]", "40802810577010004521"},
        {"[ксчет]", "30101810500000000913"},
        {"[email]", "sobolev@example.com"},
        {"[юрдан]", "ИНН 760419305865"},
        {"[руководитель]", "Соболев Д.А."},
        {"[аванс]", "12500"},
        {"[остаток]", "22771,43"},
    };
    for (auto it = expected.begin(); it != expected.end(); ++it)
        EXPECT_EQ(v.value(it.key()), it.value()) << it.key().toStdString();
    EXPECT_EQ(v.value("[сумма прописью]"), TInWord::amount(*Money::parse("35271,43"), 0));
    EXPECT_EQ(v.value("[аванс прописью]"), TInWord::amount(*Money::parse("12500"), 0));
    EXPECT_EQ(v.value("[остаток прописью]"), TInWord::amount(*Money::parse("22771,43"), 0));
    EXPECT_FALSE(v.contains("[дата окончания]")) << "filled only by the package";
    // Every placeholder the window lists is filled by a full estimate (the long date as its parts).
    static const QRegularExpression one(QStringLiteral("\\[[^\\]]+\\]"));
    for (const ContractFill::Placeholder &p : ContractFill::placeholders()) {
        auto it = one.globalMatch(p.text);
        while (it.hasNext()) {
            const QString part = it.next().captured();
            if (part != QStringLiteral("[дата окончания]")) {
                EXPECT_TRUE(v.contains(part)) << part.toStdString();
            }
        }
    }
}

TEST(ContractFill, RunsInTheFillingOrder) {
    ContractFill::Data d = fullData();
    d.endDate = QDate(2026, 4, 30);
    QStringList order;
    for (const auto &p : ContractFill::replacements(d))
        order << p.first;
    // dates; contractor; customer; object and works; total; contractor requisites; advance and remainder
    const QStringList milestones{
        "[дата]",          "[дата окончания]",  "[год]",    "[подрядчик]",       "[телефон]",
        "[заказчик]",      "[руководительзак]", "[объект]", "[работа]",          "[сумма цифрами]",
        "[свидетельство]", "[руководитель]",    "[аванс]",  "[остаток прописью]"};
    int last = -1;
    for (const QString &m : milestones) {
        const int at = order.indexOf(m);
        EXPECT_GT(at, last) << m.toStdString();
        last = at;
    }
    EXPECT_EQ(asMap(ContractFill::replacements(d)).value("[дата окончания]"), "30.04.2026");
}

TEST(ContractFill, MissingDataLeavesItsPlaceholders) {
    ContractFill::Data d = fullData();
    d.customer.requisites.clear();              // a customer without requisites
    d.contractor.contractor["longname"] = "  "; // an empty long name: the short one
    d.contractor.requisites["inn"].clear();
    d.object.clear();
    d.currency = 4;
    QMap<QString, QString> v = asMap(ContractFill::replacements(d));
    EXPECT_EQ(v.value("[подрядчик]"), "ИП Соболев");
    EXPECT_EQ(v.value("[заказчик]"), "Кудрявцев Олег");
    EXPECT_EQ(v.value("[сумма цифрами]"), "35271,43 тг.");
    for (const char *left : {"[паспортзак]", "[иннзак]", "[огрнзак]", "[банкзак]", "[бикзак]", "[рсчетзак]",
                             "[ксчетзак]", "[руководительзак]", "[инн]", "[объект]"})
        EXPECT_FALSE(v.contains(left)) << left;

    // An unknown customer: nothing of the customer.
    d.customer = CustomerData{};
    v = asMap(ContractFill::replacements(d));
    EXPECT_FALSE(v.contains("[заказчик]"));
    EXPECT_FALSE(v.contains("[телефонзак]"));

    // Totals that are not amounts leave every amount placeholder; nothing else minds.
    for (const char *total : {"", "abc", "1e999", "999999999999999,99"}) {
        ContractFill::Data t = fullData();
        t.total = QString::fromUtf8(total);
        ContractFill::setAmounts(&t, 35);
        v = asMap(ContractFill::replacements(t));
        for (const char *amount : {"[сумма цифрами]", "[сумма прописью]", "[аванс]", "[аванс прописью]",
                                   "[остаток]", "[остаток прописью]"})
            EXPECT_FALSE(v.contains(amount)) << total << " " << amount;
        EXPECT_EQ(v.value("[дата]"), "05.03.2026");
    }
}

TEST(ContractFill, CurrencySignsAndMonths) {
    const char *signs[] = {"руб.", "$", "грн.", "Br", "тг."};
    for (int c = 0; c < 5; ++c) {
        ContractFill::Data d = fullData();
        d.currency = c;
        EXPECT_EQ(asMap(ContractFill::replacements(d)).value("[сумма цифрами]"),
                  QStringLiteral("35271,43 ") + signs[c]);
    }
    const char *months[] = {"Января", "Февраля", "Марта",    "Апреля",  "Мая",    "Июня",
                            "Июля",   "Августа", "Сентября", "Октября", "Ноября", "Декабря"};
    for (int m = 1; m <= 12; ++m)
        EXPECT_EQ(ContractFill::monthGenitive(m), QString::fromUtf8(months[m - 1]));
    EXPECT_TRUE(ContractFill::monthGenitive(0).isEmpty());
    EXPECT_TRUE(ContractFill::monthGenitive(13).isEmpty());
}

TEST(ContractHtml, EngineHtmlBecomesWhatTheEditorReads) {
    EXPECT_EQ(
        ContractHtml::lengthsInPixels("margin-bottom: 0.25cm; text-indent: 1cm; x: 25.4mm; y: 0.5in; 12pt"),
        "margin-bottom: 9px; text-indent: 38px; x: 96px; y: 48px; 12pt");
    const QString engine = QStringLiteral(
        "<html><head><style type=\"text/css\">@page { size: 21cm 29.7cm; margin: 2cm }\n"
        "p { line-height: 115%; text-align: left; margin-bottom: 0.25cm }\n"
        "p.western { font-family: \"Times New Roman\", serif; font-size: 11pt }</style></head><body>"
        "<p class=\"western\" align=\"center\" style=\"margin-bottom: 0.15cm\"><font size=\"4\" "
        "style=\"font-size: 14pt\"><b>ДОГОВОР</b></font></p>"
        "<p class=\"western\" style=\"text-indent: 1cm\">Текст 5 cm, а не 5cm</p>"
        "<p class=\"western\"><br/>\n<br/>\n</p><p class=\"western\">Строка<br/>\n</p></body></html>");
    ensureApplication();
    QTextDocument doc;
    doc.setHtml(ContractHtml::forEditor(engine));
    ASSERT_EQ(doc.blockCount(), 4);
    const QTextBlock title = doc.firstBlock();
    EXPECT_EQ(title.text(), "ДОГОВОР");
    EXPECT_TRUE(title.blockFormat().alignment() & Qt::AlignHCenter) << "the paragraph's own alignment wins";
    const QTextCharFormat look = title.begin().fragment().charFormat();
    EXPECT_EQ(look.fontPointSize(), 14) << "the size of the text, not of its paragraph's class";
    EXPECT_EQ(look.fontWeight(), QFont::Bold);
    EXPECT_TRUE(look.fontFamilies().toStringList().contains("Times New Roman"));
    EXPECT_EQ(title.blockFormat().topMargin(), 0);
    EXPECT_EQ(title.blockFormat().bottomMargin(), 6);
    EXPECT_EQ(title.next().blockFormat().textIndent(), 38);
    EXPECT_EQ(title.next().text(), "Текст 5 cm, а не 5cm") << "lengths change in tags only";
    EXPECT_TRUE(title.next().next().text().isEmpty()) << "an empty paragraph stays one empty line";
    EXPECT_EQ(doc.lastBlock().text(), "Строка") << "the break that ends a paragraph adds no line";
}

TEST(ContractHtml, EditorHtmlBecomesWhatTheEngineReads) {
    ensureApplication();
    QTextDocument doc;
    doc.setHtml(
        QStringLiteral("<p>Слово</p><table border=\"1\"><tr><td style=\"padding-left:4; "
                       "border-top:1px; border-top-color:#ff0000; border-top-style:dashed\">A</td></tr>"
                       "</table><p></p>"));
    QTextCursor c(doc.firstBlock());
    c.movePosition(QTextCursor::EndOfBlock);
    c.insertText(QStringLiteral("  и   пробелы"));
    c = doc.find(QStringLiteral("Слово"));
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    c.mergeCharFormat(bold);
    const QString before = doc.toHtml();
    const QString html = ContractHtml::forEngine(doc);
    EXPECT_FALSE(html.contains("-qt-")) << html.toStdString();
    EXPECT_FALSE(html.contains("<style")) << "the editor's own sheet says nothing to the engine";
    EXPECT_FALSE(html.contains("transparent"));
    EXPECT_TRUE(html.contains("font-weight: 700"));
    EXPECT_TRUE(html.contains("border-top: 1px dashed #ff0000")) << html.toStdString();
    EXPECT_TRUE(html.contains("padding-left: 4px"));
    EXPECT_TRUE(html.contains("&nbsp; и&nbsp;&nbsp; пробелы")) << html.toStdString();
    EXPECT_TRUE(html.contains("text-align: left"));
    EXPECT_FALSE(
        html.contains("<p style=\"margin-top: 0px; margin-bottom: 0px; margin-left: 0px; margin-right: "
                      "0px; text-indent: 0px; text-align: left\"></p></body>"))
        << "an empty last paragraph is not sent";
    EXPECT_EQ(doc.toHtml(), before) << "the editor's document is left as it was";
}

TEST(ContractProducer, FileNamesAndKinds) {
    using F = ContractProducer::Format;
    EXPECT_EQ(ContractProducer::fileName("12-1", QDate(2026, 3, 5), F::Docx),
              "Договор № 12-1 от 05.03.2026.docx");
    EXPECT_EQ(ContractProducer::fileName("", QDate(2026, 3, 5), F::Pdf), "Договор от 05.03.2026.pdf");
    EXPECT_EQ(ContractProducer::fileName("7/2: \"А\"", QDate(2026, 3, 5), F::Rtf),
              "Договор № 7-2- -А- от 05.03.2026.rtf");
    EXPECT_EQ(ContractProducer::registerKind(F::Docx), "doc");
    EXPECT_EQ(ContractProducer::registerKind(F::Rtf), "doc");
    EXPECT_EQ(ContractProducer::registerKind(F::Pdf), "pdf");
}

TEST(ContractStore, OneRowPerEstimateAndKind) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    QSqlDatabase mydoc = module.database(Db::MyDoc);
    ContractStore::Entry e;
    e.iddoc = "7";
    e.date = QDate(2026, 3, 5);
    e.endDate = QDate(2026, 4, 30);
    e.number = "12";
    e.fileName = "/tmp/Договор № 12.docx";
    e.ext = ContractStore::kDoc;
    e.avans = "12500";
    e.allsum = "35271,43";
    QString error;
    ASSERT_TRUE(ContractStore::registerFile(mydoc, e, &error)) << error.toStdString();
    // Made again: the same row; as a PDF: a row of its own.
    e.number = "12-2";
    e.fileName = "/tmp/Договор № 12-2.docx";
    ASSERT_TRUE(ContractStore::registerFile(mydoc, e, &error));
    e.ext = ContractStore::kPdf;
    e.endDate = QDate();
    e.fileName = "/tmp/Договор № 12-2.pdf";
    ASSERT_TRUE(ContractStore::registerFile(mydoc, e, &error));
    EXPECT_EQ(
        queryRows(mydoc,
                  "SELECT iddoc, data, date_compare, dataend, number, name, filename, ext, avans, allsum, "
                  "month, year FROM contract ORDER BY id"),
        QStringList(
            {"7|05.03.2026|20260305000000|30.04.2026|12-2|№ 12-2|/tmp/Договор № 12-2.docx|doc|12500|"
             "35271,43|3|2026",
             "7|05.03.2026|20260305000000||12-2|№ 12-2|/tmp/Договор № 12-2.pdf|pdf|12500|35271,43|3|2026"}));
}

TEST(ContractStore, EstimateIdOnlyForRegisteredDocuments) {
    ensureApplication();
    TestFolder folder;
    TModuleSQL module(folder.path());
    QSqlDatabase doc = module.database(Db::Smeta);
    EXPECT_EQ(ContractStore::estimateId(doc), QString());
    QSqlQuery q(doc);
    ASSERT_TRUE(q.exec("INSERT INTO mydoc (iddoc, note) values(5, 'draft')"));
    EXPECT_EQ(ContractStore::estimateId(doc), QString()) << "a draft's id is of another list";
    ASSERT_TRUE(q.exec("UPDATE mydoc SET note='doc'"));
    EXPECT_EQ(ContractStore::estimateId(doc), "5");
}

} // namespace
