// The invoice with its databases: the stored invoice (table Account of the document), its round trip
// through the document file, the opening rules, the seller lookup and the register table account.

#include "InvoicePrinters.h"
#include "InvoiceTestDocument.h"
#include "MoneyText.h"
#include "SqlRows.h"
#include "customers/ContractorRegister.h"
#include "documents/AccountRegister.h"
#include "documents/AccountTable.h"
#include "documents/InvoiceOpening.h"
#include "storage/SettingsStore.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class InvoiceStore : public InvoiceTestDocument {};

TEST_F(InvoiceStore, AccountTableKeepsItemsServicesAndSwitchStates) {
    QSqlDatabase db = working();
    const QVector<AccountTable::Item> items{{"edNumber", "5"}, {"edSumma", "100,00"}, {"ToggleSwitch1", "0"}};
    QVector<InvoiceService> services;
    for (int i = 1; i <= 11; ++i)
        services.append({QStringLiteral("Услуга %1").arg(i), QString::number(i * 10)});
    QString error;
    ASSERT_TRUE(AccountTable::rebuild(db, items, services, &error)) << error.toStdString();
    EXPECT_EQ(AccountTable::items(db), items);
    EXPECT_EQ(AccountTable::services(db), services) << "Row10 and Row11 come after Row9";
    EXPECT_EQ(queryRows(db, "SELECT note FROM Account WHERE name='Услуга 10'"), QStringList{"Row10"});
    EXPECT_EQ(queryRows(db, "SELECT min(id) FROM Account"), QStringList{"1"}) << "rebuilt, not appended";

    ASSERT_TRUE(AccountTable::setValue(db, "ToggleSwitch1", "1"));
    ASSERT_TRUE(AccountTable::setValue(db, "CheckBoxMat", "0"));
    EXPECT_EQ(AccountTable::value(db, "ToggleSwitch1"), QString("1"));
    EXPECT_EQ(AccountTable::value(db, "CheckBoxMat"), QString("0"));
    EXPECT_EQ(AccountTable::value(db, "CheckBoxWork"), std::nullopt);
    EXPECT_EQ(queryRows(db, "SELECT count(*) FROM Account WHERE name='ToggleSwitch1'"), QStringList{"1"});
    // A service named like an item is still a service.
    ASSERT_TRUE(AccountTable::writeServices(db, {{"ToggleSwitch1", "7"}}));
    EXPECT_EQ(AccountTable::value(db, "ToggleSwitch1"), QString("1"));
    EXPECT_EQ(AccountTable::services(db), (QVector<InvoiceService>{{"ToggleSwitch1", "7"}}));
    EXPECT_EQ(AccountTable::items(db).size(), 4) << "items stay when services are written";

    ASSERT_TRUE(AccountTable::rebuild(db, {}, {}));
    EXPECT_EQ(queryRows(db, "SELECT count(*) FROM Account"), QStringList{"0"});
}

TEST_F(InvoiceStore, OpeningTakesNumberDateAndParties) {
    struct Case {
        const char *word;
        int number;
        const char *expected;
    } cases[] = {{"А", 12, "А-12"}, {"", 7, "7"}, {"15022025", 1, "15022025-1"}};
    addContractor("Соболев", "ИП Соболев Андрей Викторович", {{"inn", "760412345678"}, {"bik", "047888670"}});
    for (const Case &c : cases) {
        setHeader(QString::fromUtf8(c.word), c.number);
        const Invoice inv = InvoiceOpening::open(*doc, {true, false, false, true});
        EXPECT_EQ(inv.number.toStdString(), c.expected);
        EXPECT_EQ(inv.date, QDate(2025, 2, 15));
        EXPECT_EQ(inv.seller.name, "Соболев");
        EXPECT_EQ(inv.sellerDetails.value("inn"), "760412345678");
        EXPECT_EQ(inv.seller.shown(), "Соболев, ИНН 760412345678, БИК 047888670");
        EXPECT_EQ(inv.buyer.shown(), "Кудрявцев О. Н.") << "the buyer's legal data is off";
        EXPECT_EQ(inv.currency, 0);
    }
    InvoiceOpening::Options longName;
    longName.longName = true;
    EXPECT_EQ(InvoiceOpening::open(*doc, longName).seller.name, "ИП Соболев Андрей Викторович");
    setHeader("", 1, "Не из реестра");
    EXPECT_EQ(InvoiceOpening::open(*doc, longName).seller.name, "Не из реестра");
}

TEST_F(InvoiceStore, SellerByShortOrLongNameGetsAnEmptyRequisitesRowWhenItHasNone) {
    addContractor("Соболев", "ИП Соболев А. В.", {{"account", "40802810477000012345"}});
    // A contractor written without its legal-details row (an older register).
    QSqlQuery q(module->database(Db::People));
    ASSERT_TRUE(q.exec("INSERT INTO Contractor (shotname, longname) VALUES ('Петров', 'ООО «Петров и К»')"));
    ContractorRegister contractors(*module);
    struct Case {
        const char *name;
        bool found;
        const char *account;
    } cases[] = {{"Соболев", true, "40802810477000012345"},
                 {"ИП Соболев А. В.", true, "40802810477000012345"},
                 {"ООО «Петров и К»", true, ""},
                 {"Нет такого", false, ""},
                 {"", false, ""}};
    for (const Case &c : cases) {
        const ContractorData d = InvoiceOpening::findSeller(contractors, QString::fromUtf8(c.name));
        EXPECT_EQ(d.found, c.found) << c.name;
        EXPECT_EQ(d.requisites.value("account").toStdString(), c.account) << c.name;
    }
    EXPECT_EQ(queryRows(module->database(Db::Cash), "SELECT count(*) FROM requisite WHERE id='2'"),
              QStringList{"1"})
        << "the row was made once, and not again on the second look-up";
    InvoiceOpening::findSeller(contractors, "Петров");
    EXPECT_EQ(queryRows(module->database(Db::Cash), "SELECT count(*) FROM requisite"), QStringList{"2"});
}

TEST_F(InvoiceStore, OpeningRulesForSwitchServicesAndVat) {
    setHeader("", 3);
    setTotals("700", "200"); // works 700, materials 200, no coefficient line: grand 900
    struct Case {
        const char *name;
        QVector<AccountTable::Item> stored;
        QVector<InvoiceService> rows;
        bool paramOneLine;
        bool estimateVat; // the estimate's VAT line "НДС, %" (20, RadioButton) is on
        bool oneLine;
        QStringList services;
        bool vat;
        int rate;
        InvoiceForm::VatChoice choice;
    } cases[] = {
        {"nothing stored, setting off",
         {},
         {},
         false,
         false,
         false,
         {"Стоимость работ", "Стоимость материалов"},
         false,
         20,
         InvoiceForm::VatChoice::Included},
        {"nothing stored, setting on",
         {},
         {},
         true,
         false,
         true,
         {"Сметная стоимость объекта Кухня"},
         false,
         20,
         InvoiceForm::VatChoice::Included},
        {"stored switch wins over the setting",
         {{"ToggleSwitch1", "0"}},
         {},
         true,
         false,
         false,
         {"Стоимость работ", "Стоимость материалов"},
         false,
         20,
         InvoiceForm::VatChoice::Included},
        {"stored ticks",
         {{"CheckBoxMat", "0"}},
         {},
         false,
         false,
         false,
         {"Стоимость работ"},
         false,
         20,
         InvoiceForm::VatChoice::Included},
        {"stored rows stay as they are",
         {{"ToggleSwitch1", "1"}},
         {{"Монтаж", "500"}, {"Доставка", "50"}},
         false,
         false,
         true,
         {"Монтаж", "Доставка"},
         false,
         20,
         InvoiceForm::VatChoice::Included},
        {"the estimate's VAT line ticks VAT",
         {},
         {},
         false,
         true,
         false,
         {"Стоимость работ", "Стоимость материалов", "Проценты"},
         true,
         20,
         InvoiceForm::VatChoice::Included},
        {"stored VAT choice",
         {{"CheckBoxNDS", "1"}, {"SpinEditNDS", "10"}, {"rbtSumma", "1"}},
         {},
         false,
         false,
         false,
         {"Стоимость работ", "Стоимость материалов"},
         true,
         10,
         InvoiceForm::VatChoice::Added},
    };
    for (const Case &c : cases) {
        ASSERT_TRUE(AccountTable::rebuild(working(), c.stored, c.rows));
        setEstimateVat(c.estimateVat);
        InvoiceOpening::Options options;
        options.oneLine = c.paramOneLine;
        const Invoice inv = InvoiceOpening::open(*doc, options);
        QStringList services;
        for (const InvoiceService &s : inv.form.services())
            services << s.name;
        EXPECT_EQ(services, c.services) << c.name;
        EXPECT_EQ(inv.form.oneLine(), c.oneLine) << c.name;
        EXPECT_EQ(inv.form.vatOn(), c.vat) << c.name;
        EXPECT_EQ(inv.form.vatRate(), c.rate) << c.name;
        EXPECT_EQ(inv.form.vatChoice(), c.choice) << c.name;
    }
    // With the VAT line on (added on top), the estimate's total holds it: the invoice includes it.
    setEstimateVat(true);
    ASSERT_TRUE(AccountTable::rebuild(working(), {}, {}));
    const Invoice inv = InvoiceOpening::open(*doc, {});
    EXPECT_EQ(rub(inv.form.totals().grand), "1080,00");
    EXPECT_EQ(inv.form.amountText(), "1080,00");
    EXPECT_EQ(rub(inv.form.vat()), "180,00");
}

TEST_F(InvoiceStore, EstimateVatRateIsAWholePercent) {
    struct Case {
        const char *value;
        const char *title;
        std::optional<int> rate;
    } cases[] = {{"20", "НДС, %", 20},
                 {"18,5", "НДС 18,5%", 19},
                 {"150", "ндс", 100},
                 {"abc", "НДС", std::nullopt},
                 {"20", "Скидка", std::nullopt}};
    for (const Case &c : cases) {
        QSqlQuery q(working());
        ASSERT_TRUE(q.exec("DELETE FROM koef"));
        q.prepare("INSERT INTO koef (checked, title, value, EditComment) VALUES ('-1', ?, ?, 'RadioButton')");
        q.addBindValue(QString::fromUtf8(c.title));
        q.addBindValue(QString::fromUtf8(c.value));
        ASSERT_TRUE(q.exec());
        EXPECT_EQ(InvoiceOpening::vatRateOfEstimate(working()), c.rate) << c.value << " " << c.title;
    }
}

TEST_F(InvoiceStore, BoundInvoiceTravelsWithTheDocumentFile) {
    setHeader("А", 4);
    setTotals("1000", "0");
    Invoice inv = InvoiceOpening::open(*doc, {});
    inv.form.setOneLine(true);
    inv.form.addService("Вывоз мусора", "1 500");
    inv.form.setVatOn(true);
    inv.form.setVatChoice(InvoiceForm::VatChoice::Added);
    ASSERT_TRUE(AccountTable::rebuild(working(), inv.items(), inv.form.services()));
    const QString path = folder.file("Sm/Счёт.sim");
    ASSERT_TRUE(doc->saveAs(path));
    ASSERT_TRUE(doc->newDocument());
    EXPECT_TRUE(AccountTable::items(working()).isEmpty()) << "a new document has no invoice";
    ASSERT_TRUE(doc->open(path));
    const Invoice again = InvoiceOpening::open(*doc, {});
    EXPECT_EQ(again.form.services(), inv.form.services());
    EXPECT_TRUE(again.form.oneLine());
    EXPECT_EQ(again.form.amountText(), inv.form.amountText());
    EXPECT_EQ(again.form.amountText(), "3000,00");
    EXPECT_EQ(again.items(), inv.items());

    // An amount typed over the computed one comes back too.
    inv.form.setAmountText("2 999,99");
    ASSERT_TRUE(AccountTable::rebuild(working(), inv.items(), inv.form.services()));
    EXPECT_EQ(InvoiceOpening::open(*doc, {}).form.amountText(), "2999,99");
}

TEST_F(InvoiceStore, RegisterKeepsOneRowPerEstimateAndFormat) {
    QSqlDatabase mydoc = module->database(Db::MyDoc);
    const QDate d(2025, 3, 9);
    AccountRegister::Entry e{"7", d, "12-1", "/tmp/a.xls", "xls", "1200,00"};
    ASSERT_TRUE(AccountRegister::record(mydoc, e));
    e.number = "12-2";
    e.fileName = "/tmp/b.xls";
    e.allsum = "1300,00";
    ASSERT_TRUE(AccountRegister::record(mydoc, e));
    e.ext = "pdf";
    e.fileName = "/tmp/b.pdf";
    ASSERT_TRUE(AccountRegister::record(mydoc, e));
    e.iddoc = "8";
    ASSERT_TRUE(AccountRegister::record(mydoc, e));
    EXPECT_EQ(queryRows(mydoc,
                        "SELECT iddoc, data, date_compare, dataend, number, name, filename, ext, allsum, "
                        "status, month, year FROM account ORDER BY id"),
              (QStringList{"7|09.03.2025|20250309000000||12-2|№ 12-2|/tmp/b.xls|xls|1300,00||3|2025",
                           "7|09.03.2025|20250309000000||12-2|№ 12-2|/tmp/b.pdf|pdf|1300,00||3|2025",
                           "8|09.03.2025|20250309000000||12-2|№ 12-2|/tmp/b.pdf|pdf|1300,00||3|2025"}));
    e.iddoc.clear();
    QString error;
    EXPECT_FALSE(AccountRegister::record(mydoc, e, &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST_F(InvoiceStore, EstimateIdOnlyForARegisteredDocument) {
    EXPECT_EQ(AccountRegister::estimateId(working()), "") << "a new document is not in the register";
    ASSERT_TRUE(doc->saveAs(folder.file("Sm/Смета.sim")));
    const QString id = AccountRegister::estimateId(working());
    EXPECT_FALSE(id.isEmpty());
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT id FROM documents"), QStringList{id});
    QSqlQuery q(working());
    ASSERT_TRUE(q.exec("UPDATE mydoc SET note='draft'"));
    EXPECT_EQ(AccountRegister::estimateId(working()), "") << "drafts have no invoices in the register";
}

} // namespace
