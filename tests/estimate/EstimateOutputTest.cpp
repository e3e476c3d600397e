// What the estimate's output gives its templates, and the sheet titles dialog; no engine needed.

#include "estimate/EstimateOutput.h"
#include "estimate/EditFromAktSmeta_frame.h"
#include "office/TemplateNames.h"

#include "storage/SettingsStore.h"

#include "TestFolder.h"

#include <QLineEdit>
#include <gtest/gtest.h>

namespace {

using namespace TemplateNames;
using EstimateOutput::Form;

TEST(EstimateOutput, TitleChoosesTheTemplateAndHeadings) {
    ViewTitles titles;
    titles.smetaName = QStringLiteral("СМЕТА РАБОТ");
    titles.aktName = QStringLiteral("АКТ ПРИЁМКИ");
    struct Case {
        const char *title;
        Form form;
        const char *file;
        const char *heading;
    } cases[] = {
        {"ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ", Form::Local, "Шаблон Локальная.xls",
         "ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ"},
        {"ЛОКАЛЬНЫЙ СМЕТНЫЙ РАСЧЕТ", Form::Local, "Шаблон Локальная.xls", "ЛОКАЛЬНЫЙ СМЕТНЫЙ РАСЧЕТ"},
        {"СМЕТА", Form::Estimate, "Шаблон Смета.xls", "СМЕТА РАБОТ"},
        {"смета", Form::Estimate, "Шаблон Смета.xls", "СМЕТА РАБОТ"},
        {"Коммерческое предложение", Form::Offer, "Шаблон КП.xls", "КОММЕРЧЕСКОЕ ПРЕДЛОЖЕНИЕ"},
        {"Стройкооператив", Form::Cooperative, "Шаблон Стройкооператив.xls", "СМЕТА РАБОТ"},
        {"АКТ", Form::Act, "Шаблон Смета.xls", "АКТ ПРИЁМКИ"},
        {"АКТ КС-2", Form::Ks2, "Шаблон КС-2.xls", "АКТ"},
        {"АКТ КС-3", Form::Ks3, "Шаблон КС-3.xls", "СПРАВКА"},
        {"Смета на кровлю", Form::Estimate, "Шаблон Смета.xls", "Смета на кровлю"},
    };
    for (const Case &c : cases) {
        const EstimateOutput::Sheet s = EstimateOutput::sheetFor(QString::fromUtf8(c.title), titles);
        EXPECT_EQ(s.form, c.form) << c.title;
        EXPECT_EQ(s.templateFile, QString::fromUtf8(c.file)) << c.title;
        EXPECT_EQ(s.title, QString::fromUtf8(c.heading)) << c.title;
    }
}

EstimatePrint::Row row(EstimatePrint::Kind kind, const char *name, const char *sum, const char *number = "",
                       const char *qty = "", const char *price = "") {
    EstimatePrint::Row r;
    r.kind = kind;
    r.name = QString::fromUtf8(name);
    r.sum = QString::fromUtf8(sum);
    r.number = QString::fromUtf8(number);
    r.quantity = QString::fromUtf8(qty);
    r.price = QString::fromUtf8(price);
    r.code = QStringLiteral("1-2");
    r.unit = QStringLiteral("м2");
    return r;
}

Money rubles(const char *text) {
    return Money::parse(QString::fromUtf8(text)).value();
}

// What a spreadsheet cell receives for an amount.
double number(Money m) {
    return static_cast<double>(m.kopecks()) / 100.0;
}

// Two sections, materials, a discount line and VAT added on top.
EstimatePrint sample() {
    using K = EstimatePrint::Kind;
    EstimatePrint p;
    p.title = QStringLiteral("СМЕТА");
    p.customer = QStringLiteral("Кудрявцев О. Н.");
    p.contractor = QStringLiteral("ИП Соболев");
    p.number = QStringLiteral("12");
    p.date = QDate(2026, 3, 16);
    p.rows = {row(K::Section, "РАЗДЕЛ 1. Демонтаж", ""),
              row(K::Work, "Снятие обоев", "7 720,00", "1", "96,5", "80"),
              row(K::SectionTotal, "Итого по разделу 1", "7720"),
              row(K::Section, "РАЗДЕЛ 2. Стены", ""),
              row(K::Subsection, "§ 2.1. Штукатурка", ""),
              row(K::Work, "Штукатурка стен", "27300", "2", "42", "650"),
              row(K::SubsectionTotal, "Итого по § 2.1", "27300"),
              row(K::SectionTotal, "Итого по разделу 2", "27300")};
    p.materialRows = {row(K::Work, "Штукатурка гипсовая", "8820", "1", "504", "17,50")};
    p.worksRaw = rubles("35020");
    p.materialsRaw = rubles("8820");
    p.koefLines = {{QStringLiteral("Скидка на работы 5 %"), rubles("-1751")}};
    p.worksTotal = rubles("33269");
    p.materialsTotal = rubles("8820");
    p.vatName = QStringLiteral("НДС 20 %");
    p.vat = rubles("8417,8");
    p.vatAdded = rubles("8417,8");
    p.grand = rubles("50506,8");
    p.act = {{QStringLiteral("EditNumDoc"), QStringLiteral("7")},
             {QStringLiteral("ComboBoxZakaz"), QString()},
             {QStringLiteral("EditSumSmet"), QStringLiteral("50 506,80")}};
    return p;
}

QStringList names(const SheetList &list) {
    QStringList out;
    for (const SheetRow &r : list.rows)
        out << r.kind + u':' + r.cells.value(colName).text;
    return out;
}

TEST(EstimateOutput, EstimateRowsKeepSectionsSubsectionsAndMaterials) {
    const EstimatePrint p = sample();
    const SheetData d = EstimateOutput::sheetData(p, EstimateOutput::sheetFor(p.title, {}), {});
    ASSERT_EQ(d.lists.size(), 2);
    EXPECT_EQ(names(d.lists[0]),
              (QStringList{"раздел:РАЗДЕЛ 1. Демонтаж", "строки:Снятие обоев", "итог:Итого по разделу 1",
                           "раздел:РАЗДЕЛ 2. Стены", "подраздел:§ 2.1. Штукатурка", "строки:Штукатурка стен",
                           "подытог:Итого по § 2.1", "итог:Итого по разделу 2", "раздел:МАТЕРИАЛЫ",
                           "строки:Штукатурка гипсовая", "итог:Итого по материалам"}));
    const SheetRow &work = d.lists[0].rows[1];
    EXPECT_TRUE(work.cells.value(colQuantity).isNumber);
    EXPECT_DOUBLE_EQ(work.cells.value(colQuantity).number, 96.5);
    EXPECT_DOUBLE_EQ(work.cells.value(colSum).number, 7720);
    EXPECT_EQ(work.cells.value(colSum).text, QStringLiteral("7 720,00"));
    EXPECT_FALSE(work.cells.value(colCode).isNumber) << "a rate number stays a text";
    EXPECT_EQ(d.lists[0].fallback.value(rowSubsection), rowSection);
}

TEST(EstimateOutput, ClosingLinesAddUpToTheGrandTotal) {
    const EstimatePrint p = sample();
    struct Case {
        const char *title;
        QStringList lines;
    } cases[] = {
        {"СМЕТА",
         {"Итого по работам", "Скидка на работы 5 %", "Итого по материалам", "НДС 20 %", "ВСЕГО по смете"}},
        {"АКТ КС-2",
         {"Итого по работам", "Скидка на работы 5 %", "Итого по материалам", "НДС 20 %", "Всего по акту"}},
        {"АКТ КС-3", {"Итого", "Сумма НДС", "Всего с учетом НДС"}},
    };
    for (const Case &c : cases) {
        const SheetData d =
            EstimateOutput::sheetData(p, EstimateOutput::sheetFor(QString::fromUtf8(c.title), {}), {});
        QStringList lines;
        double sum = 0;
        for (const SheetRow &r : d.lists[1].rows) {
            lines << r.cells.value(colName).text;
            sum += r.cells.value(colSum).number;
        }
        EXPECT_EQ(lines, c.lines) << c.title;
        EXPECT_DOUBLE_EQ(d.lists[1].rows.last().cells.value(colSum).number, number(p.grand)) << c.title;
        if (QString::fromUtf8(c.title) != QStringLiteral("АКТ КС-3")) {
            EXPECT_NEAR(sum - number(p.grand), number(p.grand), 0.005)
                << "the lines before the last add up to it";
        }
    }
}

TEST(EstimateOutput, StatementHasOneLinePerSectionPlusMaterialsAndCoefficients) {
    const EstimatePrint p = sample();
    const SheetData d =
        EstimateOutput::sheetData(p, EstimateOutput::sheetFor(QStringLiteral("АКТ КС-3"), {}), {});
    QStringList lines;
    double sum = 0;
    for (const SheetRow &r : d.lists[0].rows) {
        lines << r.cells.value(colNumber).text + u' ' + r.cells.value(colName).text;
        sum += r.cells.value(colSum).number;
        // One act covering the estimate: the same amount since the start, since the year, in the period.
        EXPECT_EQ(r.cells.value(colSinceStart).text, r.cells.value(colSum).text);
        EXPECT_EQ(r.cells.value(colSinceYear).text, r.cells.value(colSum).text);
    }
    EXPECT_EQ(lines, (QStringList{"1 РАЗДЕЛ 1. Демонтаж", "2 РАЗДЕЛ 2. Стены", "3 Материалы",
                                  "4 Начисления по коэффициентам"}));
    EXPECT_NEAR(sum, number(p.worksTotal) + number(p.materialsTotal), 0.005);
    EXPECT_DOUBLE_EQ(d.values.value(subtotal).number, number(p.worksTotal) + number(p.materialsTotal));
    EXPECT_DOUBLE_EQ(d.values.value(subtotalSinceStart).number, d.values.value(subtotal).number);
    EXPECT_DOUBLE_EQ(d.values.value(subtotalSinceYear).number, d.values.value(subtotal).number);
}

TEST(EstimateOutput, HeaderItemsActFieldsAndWords) {
    const EstimatePrint p = sample();
    ViewTitles titles;
    titles.podryad = QStringLiteral("Исполнитель");
    const SheetData d =
        EstimateOutput::sheetData(p, EstimateOutput::sheetFor(QStringLiteral("АКТ КС-2"), titles), titles);
    EXPECT_EQ(d.values.value(date).text, QStringLiteral("16.03.2026"));
    EXPECT_EQ(d.values.value(currency).text, QStringLiteral("руб."));
    EXPECT_EQ(d.values.value(contractorLabel).text, QStringLiteral("Исполнитель"));
    EXPECT_EQ(d.values.value(basis).text, QStringLiteral("Смета № 12, договор № 7"));
    EXPECT_EQ(d.values.value(grandWords).text,
              QStringLiteral("Пятьдесят тысяч пятьсот шесть рублей 80 копеек"));
    EXPECT_EQ(d.values.value(QStringLiteral("ComboBoxZakaz")).text, p.customer)
        << "a blank act field takes the header";
    EXPECT_EQ(d.values.value(QStringLiteral("ComboBoxPodryad")).text, p.contractor);
    EXPECT_EQ(d.values.value(customerLine).text, QStringLiteral("Кудрявцев О. Н.")) << "blank parts left out";
    EXPECT_TRUE(d.values.value(QStringLiteral("EditSumSmet")).isNumber);
    EXPECT_DOUBLE_EQ(d.values.value(QStringLiteral("EditSumSmet")).number, 50506.8);
    EXPECT_EQ(EstimateOutput::currencySign(4), QStringLiteral("тг."));
}

TEST(EstimateOutput, OutputNamesFollowTheDocument) {
    EXPECT_EQ(
        EstimateOutput::outputBaseName(QStringLiteral("/data/Sm/Смета Иванов.sim"), QStringLiteral("СМЕТА")),
        QStringLiteral("Смета Иванов"));
    EXPECT_EQ(EstimateOutput::outputBaseName(QString(), QStringLiteral("АКТ КС-2")),
              QStringLiteral("АКТ КС-2"));
    EXPECT_EQ(EstimateOutput::outputBaseName(QString(), QStringLiteral("Смета 1/2")),
              QStringLiteral("Смета 1_2"));
    EXPECT_EQ(EstimateOutput::outputBaseName(QString(), QString()), QStringLiteral("Смета"));
}

TEST(ViewTitles, StoredUnderTheFieldNamesWithDefaults) {
    TestFolder folder;
    SettingsStore store(folder.file(QStringLiteral("IniFile.db")));
    ASSERT_TRUE(store.isOpen());
    EXPECT_EQ(ViewTitles::read(store).smeta, QStringLiteral("На строительно-монтажные работы"));
    EXPECT_EQ(ViewTitles::read(store).afterLocal, QStringLiteral("(ЛОКАЛЬНАЯ РЕСУРСНАЯ СМЕТА)"));
    ViewTitles t;
    t.aktName = QStringLiteral("АКТ № ");
    t.podryad = QStringLiteral("Исполнитель");
    t.write(store);
    EXPECT_EQ(store.text(QStringLiteral("View"), QStringLiteral("EditAktName")), QStringLiteral("АКТ № "));
    EXPECT_EQ(store.text(QStringLiteral("View"), QStringLiteral("EditPodryad")),
              QStringLiteral("Исполнитель"));
    store.setText(QStringLiteral("View"), QStringLiteral("EditSmetaName"), QStringLiteral("  "));
    EXPECT_EQ(ViewTitles::read(store).smetaName, QStringLiteral("СМЕТА"))
        << "a blank title prints the default";
    EXPECT_EQ(ViewTitles::read(store).podryad, QStringLiteral("Исполнитель"));
}

TEST(EditFromAktSmeta, ShowsAndReturnsTheTitles) {
    ensureApplication();
    TEditFromAktSmeta dialog;
    ViewTitles t;
    t.akt = QStringLiteral("Выполненных ремонтных работ");
    dialog.setTitles(t);
    EXPECT_EQ(dialog.EditAkt->text(), t.akt);
    dialog.findChild<QLineEdit *>(QStringLiteral("EditSmetaName"))->setText(QStringLiteral("СМЕТА №"));
    dialog.EditPodryad->clear();
    const ViewTitles back = dialog.titles();
    EXPECT_EQ(back.smetaName, QStringLiteral("СМЕТА №"));
    EXPECT_EQ(back.akt, t.akt);
    EXPECT_EQ(back.podryad, QStringLiteral("Подрядчик"));
}

} // namespace
