// The default templates, read by the real engine: they carry the names their fillers give.

#include "EngineFixture.h"
#include "OfficeFiles.h"

#include "office/OfficeTemplates.h"
#include "office/SheetTemplate.h"
#include "office/TemplateNames.h"
#include "office/WordTemplate.h"

#include <QFile>

namespace {

using namespace TemplateNames;

SheetData estimateLists() {
    SheetData d;
    SheetList rows;
    rows.kinds = {rowWork, rowSection, rowSubsection, rowSectionTotal, rowSubsectionTotal};
    SheetList totals;
    totals.kinds = {rowTotals};
    d.lists = {rows, totals};
    return d;
}

class DefaultTemplate : public Engine {
protected:
    void SetUp() override {
        Engine::SetUp();
        OfficeTemplates::ensureDefaults(m_folder.path());
    }
    SheetText::Grid sheetOf(const QString &name) {
        SheetText::Grid grid;
        EXPECT_TRUE(engine().load(OfficeTemplates::path(m_folder.path(), name)))
            << engine().error().toStdString();
        EXPECT_TRUE(engine().sheet(&grid));
        engine().close();
        return grid;
    }
};

TEST_F(DefaultTemplate, EstimateAndActSheetsHaveTheRowBlockAndTheClosingLines) {
    struct Case {
        const char *name;
        bool sections; // the rows block has section and section-total rows of its own
    } cases[] = {{"Шаблон Смета.xls", true},     {"Шаблон КП.xls", true},
                 {"Шаблон Локальная.xls", true}, {"Шаблон Стройкооператив.xls", true},
                 {"Шаблон КС-2.xls", true},      {"Шаблон КС-3.xls", false}};
    const SheetData data = estimateLists();
    for (const Case &c : cases) {
        const QString name = QString::fromUtf8(c.name);
        const SheetTemplate::Layout layout = SheetTemplate::analyse(sheetOf(name), data);
        ASSERT_EQ(layout.blocks.size(), 2) << c.name;
        EXPECT_EQ(layout.blocks[0].list, 0) << c.name;
        EXPECT_TRUE(layout.blocks[0].rowOf.contains(rowWork)) << c.name;
        EXPECT_EQ(layout.blocks[0].rowOf.contains(rowSection), c.sections) << c.name;
        EXPECT_EQ(layout.blocks[0].rowOf.contains(rowSectionTotal), c.sections) << c.name;
        EXPECT_EQ(layout.blocks[1].list, 1) << c.name;
        EXPECT_TRUE(layout.named.contains(number)) << c.name;
        EXPECT_TRUE(layout.named.contains(date)) << c.name;
        EXPECT_TRUE(layout.named.contains(currency)) << c.name;
    }
}

TEST_F(DefaultTemplate, ActFormsNameTheActDataFields) {
    const QStringList fields{"заказчик, адрес, телефон",
                             "подрядчик, адрес, телефон",
                             "стройка, адрес",
                             "EditNumDoc",
                             "DateEditContract",
                             "EditSdal",
                             "EditDolSdal",
                             "EditPrinal",
                             "EditDolPrinal",
                             "DateEditPeriodS",
                             "DateEditPeriodPo"};
    for (const char *name : {"Шаблон КС-2.xls", "Шаблон КС-3.xls"}) {
        const QStringList named =
            SheetTemplate::analyse(sheetOf(QString::fromUtf8(name)), estimateLists()).named;
        for (const QString &f : fields)
            EXPECT_TRUE(named.contains(f)) << name << " " << f.toStdString();
    }
    EXPECT_TRUE(SheetTemplate::analyse(sheetOf(QStringLiteral("Шаблон КС-2.xls")), estimateLists())
                    .named.contains(QStringLiteral("ComboBoxObject")));
    EXPECT_TRUE(SheetTemplate::analyse(sheetOf(QStringLiteral("Шаблон КС-2.xls")), estimateLists())
                    .named.contains(QStringLiteral("EditSumSmet")));
}

TEST_F(DefaultTemplate, InvoiceReceivesTheStoredItems) {
    const QStringList items{
        "edNumber",      "DateEdit",         "edSumma",      "EditValuta",    "ComboBoxPodryad",
        "ComboBoxZakaz", "ComboBoxNameWork", "edSumma1",     "EditNameWork2", "edSumma2",
        "EditNameWork3", "edSumma3",         "SpinEditNDS",  "inn",           "kpp",
        "boss",          "glavbuh",          "account",      "bank",          "bik",
        "koraccount",    "summaword",        "nds",          "CheckBoxNDS",   "rbtSumma",
        "CheckBoxWork",  "CheckBoxMat",      "ToggleSwitch1"};
    const QStringList named =
        SheetTemplate::analyse(sheetOf(QStringLiteral("Шаблон Счет на оплату.xls")), SheetData()).named;
    for (const QString &item : items)
        EXPECT_TRUE(named.contains(item)) << item.toStdString();
}

TEST_F(DefaultTemplate, InvoiceWithTwoServicesLeavesOutTheThirdLine) {
    SheetData d;
    auto text = [&d](const char *name, const QString &value) {
        d.values.insert(QString::fromUtf8(name), SheetValue::ofText(value));
    };
    auto money = [&d](const char *name, double v, const char *shown) {
        d.values.insert(QString::fromUtf8(name), SheetValue::ofNumber(v, QString::fromUtf8(shown)));
    };
    text("edNumber", QStringLiteral("7-12"));
    text("DateEdit", QStringLiteral("01.02.2025"));
    text("ComboBoxNameWork", QStringLiteral("Ремонт ванной комнаты"));
    money("edSumma1", 100000, "100 000,00");
    text("EditNameWork2", QStringLiteral("Вывоз строительного мусора"));
    money("edSumma2", 5000.5, "5 000,50");
    text("EditNameWork3", QString());
    d.dropRowsWithout = {QStringLiteral("EditNameWork2"), QStringLiteral("EditNameWork3")};
    const QString pdf = m_folder.file(QStringLiteral("Счет.pdf"));
    QString error;
    ASSERT_TRUE(SheetTemplate::fill(
        engine(), OfficeTemplates::path(m_folder.path(), QStringLiteral("Шаблон Счет на оплату.xls")), d,
        {{pdf, {}}}, &error))
        << error.toStdString();
    const QString t = pdfText(pdf);
    EXPECT_TRUE(t.contains(QStringLiteral("Счет на оплату № 7-12 от 01.02.2025"))) << t.toStdString();
    EXPECT_TRUE(t.contains(QStringLiteral("Вывоз строительного мусора")));
    EXPECT_TRUE(t.contains(QStringLiteral("5 000,50")));
    EXPECT_FALSE(t.contains(QStringLiteral("EditNameWork3")));
    EXPECT_FALSE(t.contains(QStringLiteral("edSumma3")));
    EXPECT_TRUE(t.contains(QStringLiteral("[inn]"))) << "items without data stay";
}

TEST_F(DefaultTemplate, ContractUsesEveryContractPlaceholder) {
    const QStringList names{"[дата]",
                            "[дата окончания]",
                            "[день]",
                            "[месяц]",
                            "[год]",
                            "[объект]",
                            "[работа]",
                            "[сумма цифрами]",
                            "[сумма прописью]",
                            "[аванс]",
                            "[аванс прописью]",
                            "[остаток]",
                            "[остаток прописью]",
                            "[подрядчик]",
                            "[телефон]",
                            "[свидетельство]",
                            "[паспорт]",
                            "[адрес]",
                            "[инн]",
                            "[огрн]",
                            "[банк]",
                            "[бик]",
                            "[рсчет]",
                            "[ксчет]",
                            "[email]",
                            "[юрдан]",
                            "[руководитель]",
                            "[заказчик]",
                            "[телефонзак]",
                            "[паспортзак]",
                            "[адресзак]",
                            "[представительзак]",
                            "[иннзак]",
                            "[огрнзак]",
                            "[банкзак]",
                            "[бикзак]",
                            "[рсчетзак]",
                            "[ксчетзак]",
                            "[emailclient]",
                            "[юрданзак]",
                            "[руководительзак]"};
    const QString pdf = m_folder.file(QStringLiteral("Договор.pdf"));
    QString error;
    // Nothing given: the document is the template itself, every placeholder in place.
    ASSERT_TRUE(WordTemplate::fill(
        engine(), OfficeTemplates::path(m_folder.path(), QStringLiteral("ДОГОВОР НА РЕМОНТ.docx")), {},
        {{pdf, {}}}, &error))
        << error.toStdString();
    const QString t = pdfText(pdf).simplified();
    for (const QString &n : names)
        EXPECT_TRUE(t.contains(n)) << n.toStdString();
    EXPECT_GE(pdfPages(pdf), 2);
}

} // namespace
