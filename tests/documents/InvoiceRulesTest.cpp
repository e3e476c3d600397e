// The invoice's rules without a window or a database: VAT, the generated services, "Записать сумму из
// сметы", bad prices, the stored items and the payment string of the QR code.

#include "InvoicePrinters.h"
#include "MoneyText.h"
#include "documents/InvoiceData.h"
#include "documents/InvoiceForm.h"
#include "documents/InvoicePayment.h"
#include "documents/InvoiceSheet.h"

#include <QHash>
#include <gtest/gtest.h>

namespace {

using Vat = InvoiceForm::VatChoice;

Money money(const char *text) {
    return *Money::parse(QString::fromUtf8(text));
}

InvoiceTotals totals(const char *works, const char *materials, const char *grand) {
    return {money(works), money(materials), money(grand), QStringLiteral("Кухня")};
}

QStringList names(const InvoiceForm &f) {
    QStringList list;
    for (const InvoiceService &s : f.services())
        list << s.name + u'=' + s.price;
    return list;
}

TEST(InvoiceVat, ArithmeticOfTheThreeCases) {
    struct Case {
        const char *base;
        int rate;
        Vat choice;
        const char *vat;
        const char *amount;
    } cases[] = {
        {"1000,00", 20, Vat::Added, "200,00", "1200,00"},
        {"1200,00", 20, Vat::Included, "200,00", "1200,00"},
        {"0,10", 20, Vat::Added, "0,02", "0,12"},         // 0,02 exactly, no drift
        {"100,00", 18, Vat::Included, "15,25", "100,00"}, // 15,2542… rounded once
        {"0,05", 10, Vat::Included, "0,00", "0,05"},      // 0,0045… rounds down
        {"0,15", 10, Vat::Added, "0,02", "0,17"},         // 0,015 rounds half away from zero
        {"-0,15", 10, Vat::Added, "-0,02", "-0,17"},      // a credit note: away from zero too
        {"1000,00", 0, Vat::Added, "0,00", "1000,00"},
        {"999 999 999 999,99", 20, Vat::Added, "200 000 000 000,00", "refused"},
    };
    for (const Case &c : cases) {
        const InvoiceForm::VatResult r = InvoiceForm::vatOf(money(c.base), c.rate, c.choice);
        EXPECT_EQ(rub(r.vat), rub(money(c.vat))) << c.base << " " << c.rate;
        EXPECT_EQ(rub(r.amount), std::string(c.amount) == "refused" ? "refused" : rub(money(c.amount)))
            << c.base << " " << c.rate;
    }
}

TEST(InvoiceVat, TickRateAndChoiceApplyToTheServicesTotal) {
    InvoiceForm f;
    f.setTotals(totals("700,00", "300,00", "1000,00"));
    f.setSwitches(true, true, true); // one line at 1000,00
    EXPECT_EQ(f.amountText(), "1000,00") << "without VAT the amount is the estimate's total";
    EXPECT_EQ(rub(f.vat()), "0,00");

    f.presetVat(true, 20, Vat::Added);
    f.applyVat();
    EXPECT_EQ(f.amountText(), "1200,00");
    EXPECT_EQ(rub(f.vat()), "200,00");
    EXPECT_EQ(rub(f.net()), "1000,00");

    f.setVatRate(10); // from the base again, not from 1200
    EXPECT_EQ(f.amountText(), "1100,00");
    EXPECT_EQ(rub(f.vat()), "100,00");

    f.setVatChoice(Vat::Included);
    EXPECT_EQ(f.amountText(), "1000,00");
    EXPECT_EQ(rub(f.vat()), "90,91");
    EXPECT_EQ(rub(f.net()), "1000,00");

    f.setVatOn(false);
    EXPECT_EQ(f.amountText(), "1000,00");
    EXPECT_EQ(rub(f.vat()), "0,00");

    f.setVatRate(150);
    EXPECT_EQ(f.vatRate(), 100) << "a rate outside 0..100 is not taken";
}

TEST(InvoiceVat, WithoutVatTheEstimateTotalWinsUnlessItIsZero) {
    InvoiceForm f;
    f.setTotals(totals("0,00", "0,00", "0,00"));
    f.setAmountText("500,00");
    f.setVatOn(false);
    EXPECT_EQ(f.amountText(), "500,00") << "a zero total changes nothing";

    f.setTotals(totals("400,00", "100,00", "520,00"));
    f.addService("Доставка", "80");
    EXPECT_EQ(f.amountText(), "520,00") << "without VAT the amount follows the estimate";
    f.setVatOn(true);
    f.setVatChoice(Vat::Added);
    EXPECT_EQ(rub(f.servicesTotal()), "80,00");
    EXPECT_EQ(f.amountText(), "96,00") << "with VAT the services total is the base";
    f.removeService(0);
    f.setVatOn(false);
    f.setVatOn(true);
    EXPECT_EQ(f.amountText(), "624,00") << "without services the estimate's total became the base";
}

TEST(InvoiceVat, ATypedAmountBecomesTheBase) {
    InvoiceForm f;
    f.presetVat(true, 20, Vat::Added);
    f.setAmountText("1 200");
    EXPECT_EQ(rub(f.vat()), "200,00");
    EXPECT_EQ(rub(f.base()), "1000,00") << "the VAT part is taken off an added VAT";
    f.setVatChoice(Vat::Included);
    EXPECT_EQ(f.amountText(), "1000,00");
    EXPECT_EQ(rub(f.vat()), "166,67");
}

TEST(InvoiceAmount, TakeEstimateTotal) {
    struct Case {
        const char *grand;
        const char *before;
        const char *after;
    } cases[] = {
        {"0,00", "123,45", "123,45"}, // "0,00" writes nothing
        {"15 000,50", "0,00", "15000,50"},
        {"-10,00", "5,00", "-10,00"},
    };
    for (const Case &c : cases) {
        InvoiceForm f;
        f.setTotals(totals("0", "0", c.grand));
        f.setAmountText(QString::fromUtf8(c.before));
        f.takeEstimateTotal();
        EXPECT_EQ(f.amountText().toStdString(), c.after) << c.grand;
    }
}

TEST(InvoiceServices, GeneratedRowsAndPercent) {
    struct Case {
        const char *works, *materials, *grand;
        bool oneLine, work, mat;
        QStringList rows;
    } cases[] = {
        {"700,00", "200,00", "1000,00", true, true, true, {"Сметная стоимость объекта Кухня=1000,00"}},
        {"700,00",
         "200,00",
         "1000,00",
         false,
         true,
         true,
         {"Стоимость работ=700,00", "Стоимость материалов=200,00", "Проценты=100,00"}},
        {"700,00",
         "300,00",
         "1000,00",
         false,
         true,
         true,
         {"Стоимость работ=700,00", "Стоимость материалов=300,00"}},
        {"700,00",
         "350,00",
         "1000,00",
         false,
         true,
         true,
         {"Стоимость работ=700,00", "Стоимость материалов=350,00"}},
        {"700,00", "200,00", "1000,00", false, false, true, {"Стоимость материалов=200,00"}},
        {"700,00", "200,00", "1000,00", false, true, false, {"Стоимость работ=700,00", "Проценты=100,00"}},
        {"700,00", "200,00", "1000,00", false, false, false, {}},
    };
    for (const Case &c : cases) {
        InvoiceForm f;
        f.setTotals(totals(c.works, c.materials, c.grand));
        f.setSwitches(c.oneLine, c.work, c.mat);
        EXPECT_EQ(names(f), c.rows) << c.works << " " << c.materials << " " << c.oneLine << c.work << c.mat;
    }
}

TEST(InvoiceServices, SwitchOnOffOnNeverDuplicatesAndKeepsTheUsersRows) {
    InvoiceForm f;
    f.setTotals(totals("700,00", "200,00", "1000,00"));
    f.addService("Вывоз мусора", "1500");
    f.setOneLine(true);
    f.setOneLine(false);
    f.setOneLine(true);
    f.setWorks(false); // the ticks regenerate too
    f.setWorks(true);
    EXPECT_EQ(names(f), (QStringList{"Вывоз мусора=1500", "Сметная стоимость объекта Кухня=1000,00"}));
    f.setOneLine(false);
    EXPECT_EQ(names(f), (QStringList{"Вывоз мусора=1500", "Стоимость работ=700,00",
                                     "Стоимость материалов=200,00", "Проценты=100,00"}));
    EXPECT_EQ(rub(f.servicesTotal()), "2500,00");
    // A renamed generated row is the user's own; one still named as generated goes.
    f.setServiceName(1, "Работы по смете");
    f.setOneLine(true);
    EXPECT_EQ(names(f), (QStringList{"Вывоз мусора=1500", "Работы по смете=700,00",
                                     "Сметная стоимость объекта Кухня=1000,00"}));
}

TEST(InvoiceServices, BadPricesAreMarkedAndLeftOut) {
    InvoiceForm f;
    f.presetVat(true, 20, Vat::Included);
    f.addService("Кладка", "1 000,50");
    f.addService("Скидка", "-100,50");
    f.addService("Монтаж", "12abc");
    f.addService("Без цены", "");
    EXPECT_EQ(f.badPrices(), QVector<int>{2});
    EXPECT_EQ(rub(f.servicesTotal()), "900,00");
    EXPECT_EQ(f.amountText(), "900,00");
    EXPECT_EQ(InvoiceForm::priceProblem("12abc"), "Цена «12abc» не является числом; она не входит в итог.");
    EXPECT_TRUE(InvoiceForm::priceProblem("-5").isEmpty()) << "a discount line";
    f.setServicePrice(2, "300");
    EXPECT_TRUE(f.badPrices().isEmpty());
    EXPECT_EQ(f.amountText(), "1200,00");
    f.removeService(0);
    f.removeService(7); // no such row: nothing happens
    EXPECT_EQ(f.services().size(), 3);
    EXPECT_EQ(f.amountText(), "199,50");

    f.setAmountText("abc");
    EXPECT_FALSE(f.amount().ok());
    EXPECT_EQ(rub(f.vat()), "0,00");
    f.clear();
    EXPECT_TRUE(f.services().isEmpty());
    EXPECT_EQ(f.amountText(), "0,00");
}

Invoice sampleInvoice() {
    Invoice inv;
    inv.number = QStringLiteral("А-12");
    inv.date = QDate(2025, 2, 1);
    inv.seller = {QStringLiteral("ИП Соболев Андрей Викторович"), QStringLiteral("ИНН 760412345678"), true};
    inv.buyer = {QStringLiteral("Кудрявцев О. Н."), QString(), true};
    inv.sellerDetails = {{"inn", "760412345678"},
                         {"kpp", ""},
                         {"boss", "Соболев А. В."},
                         {"glavbuh", "не предусмотрен"},
                         {"account", "40802810477000012345"},
                         {"bank", "ПАО СБЕРБАНК, г. Ярославль"},
                         {"bik", "047888670"},
                         {"koraccount", "30101810500000000670"}};
    inv.form.setTotals(totals("700,00", "200,00", "1000,00"));
    inv.form.presetVat(true, 20, Vat::Added);
    inv.form.setSwitches(false, true, true);
    inv.form.addService("Вывоз мусора", "500");
    return inv;
}

TEST(InvoiceItems, EveryNameInItsOrderWithItsValue) {
    const Invoice inv = sampleInvoice();
    QStringList order;
    QHash<QString, QString> value;
    for (const AccountTable::Item &i : inv.items()) {
        order << i.name;
        value.insert(i.name, i.value);
    }
    EXPECT_EQ(order, (QStringList{"edNumber",
                                  "DateEdit",
                                  "edSumma",
                                  "EditValuta",
                                  "ComboBoxPodryad",
                                  "ComboBoxZakaz",
                                  "ComboBoxNameWork",
                                  "edSumma1",
                                  "EditNameWork2",
                                  "edSumma2",
                                  "EditNameWork3",
                                  "edSumma3",
                                  "CheckBoxNDS",
                                  "SpinEditNDS",
                                  "rbtSumma",
                                  "inn",
                                  "kpp",
                                  "boss",
                                  "glavbuh",
                                  "account",
                                  "bank",
                                  "bik",
                                  "koraccount",
                                  "summaword",
                                  "nds",
                                  "CheckBoxWork",
                                  "CheckBoxMat",
                                  "ToggleSwitch1"}));
    EXPECT_EQ(value["DateEdit"], "01.02.2025");
    EXPECT_EQ(value["edSumma"], "1800,00");
    EXPECT_EQ(value["nds"], "300,00");
    EXPECT_EQ(value["EditValuta"], "Рубль РФ");
    EXPECT_EQ(value["ComboBoxPodryad"], "ИП Соболев Андрей Викторович, ИНН 760412345678");
    EXPECT_EQ(value["ComboBoxZakaz"], "Кудрявцев О. Н.") << "no legal data: no comma";
    EXPECT_EQ(value["ComboBoxNameWork"], "Стоимость работ");
    EXPECT_EQ(value["edSumma3"], "100,00");
    EXPECT_EQ(value["summaword"], "Одна тысяча восемьсот рублей 00 копеек");
    EXPECT_EQ(value["rbtSumma"], "1");
    EXPECT_EQ(value["ToggleSwitch1"], "0");
}

TEST(InvoiceSheetData, FourthServiceGoesToTheRowListAndTheVatLineReadsByChoice) {
    Invoice inv = sampleInvoice();
    SheetData d = InvoiceSheet::sheetData(inv, QStringLiteral("/tmp/qr.png"));
    ASSERT_EQ(d.lists.size(), 1);
    ASSERT_EQ(d.lists[0].rows.size(), 1);
    EXPECT_EQ(d.lists[0].rows[0].cells.value("наименование").text, "Вывоз мусора");
    EXPECT_EQ(d.lists[0].rows[0].cells.value("№").text, "4");
    EXPECT_EQ(d.values.value(InvoiceSheet::kVatLabel).text, "НДС (20 %):");
    EXPECT_EQ(d.values.value(InvoiceSheet::kSubtotal).text, "1 500,00");
    EXPECT_EQ(d.values.value(InvoiceSheet::kCount).text, "Всего наименований 4, на сумму 1 800,00 руб.");
    EXPECT_TRUE(d.values.value("edSumma").isNumber);
    EXPECT_EQ(d.images.value(InvoiceSheet::kQr), "/tmp/qr.png");
    EXPECT_EQ(d.values.value(InvoiceSheet::kSupplier).text, "ИП Соболев Андрей Викторович, ИНН 760412345678")
        << "the ИНН of the legal data is not written twice";
    inv.seller.withLegal = false;
    inv.sellerDetails["kpp"] = "760401001";
    EXPECT_EQ(InvoiceSheet::supplierLine(inv),
              "ИП Соболев Андрей Викторович, ИНН 760412345678, КПП 760401001");
    inv.form.setVatChoice(Vat::Included);
    EXPECT_EQ(InvoiceSheet::vatLabel(inv), "В том числе НДС (20 %):");
    inv.form.setVatOn(false);
    EXPECT_EQ(InvoiceSheet::vatLabel(inv), "Без налога (НДС):");
    EXPECT_EQ(InvoiceSheet::sheetData(inv, {}).values.value(InvoiceSheet::kVatAmount).text, "—");
}

TEST(InvoiceFiles, NamesOfTheWindowAndThePackage) {
    const QDate d(2025, 2, 1);
    EXPECT_EQ(InvoiceSheet::windowFileName("12-5", d), "Счет на оплату №12-5 от 01.02.2025.xls");
    EXPECT_EQ(InvoiceSheet::packageFileName("12-5", d, "pdf"), "Счет на оплату № 12-5 от 01.02.2025.pdf");
    EXPECT_EQ(InvoiceSheet::packageFileName("12/5", d, "xls"), "Счет на оплату № 12`5 от 01.02.2025.xls")
        << "a number cannot make a folder";
}

TEST(InvoicePaymentString, GostFieldsInOrder) {
    const Invoice inv = sampleInvoice();
    const QString s = InvoicePayment::paymentString(InvoiceSheet::payee(inv), InvoiceSheet::payment(inv));
    EXPECT_EQ(s, "ST00012|Name=ИП Соболев Андрей Викторович|PersonalAcc=40802810477000012345|"
                 "BankName=ПАО СБЕРБАНК, г. Ярославль|BIC=047888670|CorrespAcc=30101810500000000670|"
                 "PayeeINN=760412345678|Sum=180000|"
                 "Purpose=Оплата по счету № А-12 от 01.02.2025, в т.ч. НДС 20 % 300,00 руб.");
}

TEST(InvoicePaymentString, WhenThereIsNoCode) {
    struct Case {
        const char *account, *bik, *bank;
        int currency;
        const char *reason; // empty: a code is made
    } cases[] = {
        {"", "047888670", "Банк", 0, "не указаны расчётный счёт или БИК"},
        {"40802810477000012345", " ", "Банк", 0, "не указаны расчётный счёт или БИК"},
        {"4080 2810 4770 0001 2345", "047 888 670", "Банк", 0, ""},
        {"40802810477000012345", "047888670", "Банк", 1, "только в рублях"},
        {"408028104770000123", "047888670", "Банк", 0, "20 цифр"},
        {"4080281047700001234X", "047888670", "Банк", 0, "20 цифр"},
        {"40802810477000012345", "04788867", "Банк", 0, "9 цифр"},
        {"40802810477000012345", "047888670", "", 0, "наименование банка"},
    };
    for (const Case &c : cases) {
        InvoicePayment::Payee p{QStringLiteral("ООО \"Ромашка\""),
                                QString::fromUtf8(c.account),
                                QString::fromUtf8(c.bank),
                                QString::fromUtf8(c.bik),
                                {},
                                {},
                                {}};
        InvoicePayment::Invoice i{"1", "01.02.2025", money("10"), c.currency, false, 0, Money()};
        const QString why = InvoicePayment::obstacle(p, i);
        if (*c.reason) {
            EXPECT_TRUE(why.contains(QString::fromUtf8(c.reason))) << why.toStdString();
            EXPECT_TRUE(InvoicePayment::paymentString(p, i).isEmpty());
        } else {
            EXPECT_TRUE(why.isEmpty()) << why.toStdString();
            EXPECT_EQ(
                InvoicePayment::paymentString(p, i),
                "ST00012|Name=ООО \"Ромашка\"|PersonalAcc=40802810477000012345|BankName=Банк|BIC=047888670|"
                "CorrespAcc=0|Sum=1000|Purpose=Оплата по счету № 1 от 01.02.2025, НДС не облагается");
        }
    }
}

TEST(InvoicePaymentString, SeparatorsAreRemovedAndLengthsKept) {
    InvoicePayment::Payee p{QString(200, u'Я') + "|x",
                            "40802810477000012345",
                            "Банк|Сбер\nфилиал",
                            "047888670",
                            "",
                            "7604|1",
                            ""};
    InvoicePayment::Invoice i{"1", "01.02.2025", Money(), 0, false, 0, Money()};
    const QStringList fields = InvoicePayment::paymentString(p, i).split(u'|');
    EXPECT_EQ(fields.value(1), "Name=" + QString(160, u'Я')) << "Name is cut to 160";
    EXPECT_EQ(fields.value(3), "BankName=Банк/Сбер филиал");
    EXPECT_FALSE(fields.join(u'|').contains("Sum=")) << "no amount, no Sum";
}

TEST(InvoicePaymentImage, SizedAndSquare) {
    const QImage img = InvoicePayment::qrImage(QStringLiteral("ST00012|Name=Тест"), 3.6);
    ASSERT_FALSE(img.isNull());
    EXPECT_EQ(img.width(), img.height());
    EXPECT_NEAR(img.width() / (img.dotsPerMeterX() / 100.0), 3.6, 0.01) << "printed 3,6 cm wide";
    EXPECT_EQ(img.pixelColor(0, 0), QColor(Qt::white)) << "quiet zone";
    EXPECT_TRUE(InvoicePayment::qrImage(QString(5000, u'Я')).isNull()) << "too long for any code";
}

} // namespace
