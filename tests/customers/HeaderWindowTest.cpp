// The estimate header in the main window: the register windows feed its lists, choosing marks the
// document changed, and the header travels with the document file.

#include "app/TForm1.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "customers/PodryadList_frame.h"
#include "customers/ZakazAndObject_frame.h"
#include "estimate/EstimateStore.h"
#include "storage/ModuleSQL.h"

#include "MainWindowFixture.h"
#include "SqlRows.h"

#include "Widgets.h"
#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

QStringList items(QComboBox *box) {
    QStringList out;
    for (int i = 0; i < box->count(); ++i)
        out << box->itemText(i);
    return out;
}

class HeaderWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        if (auto *a = window->findChild<QAction *>("CheckBossDir"))
            a->setChecked(false);
    }
    // The user picks an entry of a header list.
    void pick(QComboBox *box, const QString &text) {
        const int i = box->findText(text);
        ASSERT_GE(i, 0) << text.toStdString();
        box->setCurrentIndex(i);
        emit box->activated(i);
    }
    // Rows of a table in a document file, "a|b" per row.
    QStringList fileRows(const QString &file, const QString &sql) { return DatabaseFile(file).rows(sql); }
};

} // namespace

TEST_F(HeaderWindowTest, ACustomerAddedInTheWindowAppearsInTheHeader) {
    EXPECT_TRUE(items(child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz"))).isEmpty());
    child<QAction>(window.get(), QStringLiteral("MZakazAndObject"))->trigger();
    auto *zakaz = window->findChild<TZakazAndObject *>();
    ASSERT_NE(zakaz, nullptr);
    ASSERT_TRUE(zakaz->isVisible());
    dialogs->queueInput("ООО \"Ромашка\"");
    dialogs->queueInput("Склад №2");
    QTest::mouseClick(zakaz->spdAddCustomer, Qt::LeftButton);
    dialogs->queueInput("Офис");
    QTest::mouseClick(zakaz->spdAddObject, Qt::LeftButton);
    EXPECT_EQ(items(child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz"))),
              QStringList{"ООО \"Ромашка\""});

    EXPECT_FALSE(window->isChanged());
    child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz"))->setFocus();
    QTest::keyClick(child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz")), Qt::Key_Down);
    EXPECT_EQ(window->document().header().customer, "ООО \"Ромашка\"");
    EXPECT_EQ(items(child<QComboBox>(window.get(), QStringLiteral("ComboBoxObject"))),
              (QStringList{"Склад №2", "Офис"}));
    EXPECT_EQ(window->document().header().object, "Склад №2");
    EXPECT_TRUE(window->isChanged()) << "choosing a customer changes the document";

    window->document().setChanged(false);
    pick(child<QComboBox>(window.get(), QStringLiteral("ComboBoxObject")), "Офис");
    EXPECT_TRUE(window->isChanged()) << "choosing an object changes the document";
    EXPECT_EQ(window->settings().text("Customer"), "ООО \"Ромашка\"");
    EXPECT_EQ(window->settings().text("Object"), "Офис");

    // Renaming the object in the window rewrites the header's list and keeps nothing stale.
    zakaz->chooseCustomer("ООО \"Ромашка\"", "Офис");
    dialogs->queueInput("Офис 2");
    QTest::mouseClick(zakaz->spdEditObject, Qt::LeftButton);
    EXPECT_EQ(items(child<QComboBox>(window.get(), QStringLiteral("ComboBoxObject"))),
              (QStringList{"Склад №2", "Офис 2"}));

    // The contractor window feeds the contractor list, short names in table order.
    child<QAction>(window.get(), QStringLiteral("MPodryad"))->trigger();
    auto *podryad = window->findChild<TPodryadList *>();
    ASSERT_NE(podryad, nullptr);
    dialogs->queueInput("Мастер");
    QTest::mouseClick(podryad->btnAdd, Qt::LeftButton);
    dialogs->queueInput("ИП Соболев");
    QTest::mouseClick(podryad->btnAdd, Qt::LeftButton);
    EXPECT_EQ(items(child<QComboBox>(window.get(), QStringLiteral("ComboBoxPodryad"))),
              (QStringList{"Мастер", "ИП Соболев"}));
    EXPECT_EQ(dialogs->pendingAnswers(), 0);
}

TEST_F(HeaderWindowTest, TheHeaderIsSavedAndRestoredWithTheDocument) {
    CustomerRegister customers(*module);
    ASSERT_EQ(customers.addCustomer("ООО \"Ромашка\""), RegisterStatus::Ok);
    ASSERT_EQ(customers.addObject("ООО \"Ромашка\"", "Офис"), RegisterStatus::Ok);
    ASSERT_EQ(customers.addCustomer("Петров"), RegisterStatus::Ok);
    CustomerData c = customers.customer("ООО \"Ромашка\"");
    c.customer["phone"] = "+7 900";
    c.requisites["inn"] = "7701";
    ASSERT_EQ(customers.save(c.customer, c.requisites, "Офис", "3 этаж"), RegisterStatus::Ok);
    ContractorRegister contractors(*module);
    QString id;
    ASSERT_EQ(contractors.add("ИП Соболев", &id), RegisterStatus::Ok);
    ASSERT_EQ(
        contractors.save({{"id", id}, {"shotname", "ИП Соболев"}}, {{"inn", "7604"}, {"note", "ИНН 7604"}}),
        RegisterStatus::Ok);
    window->part<HeaderPart>()->reloadLists();

    pick(child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz")), "ООО \"Ромашка\"");
    pick(child<QComboBox>(window.get(), QStringLiteral("ComboBoxPodryad")), "ИП Соболев");
    child<QSpinBox>(window.get(), QStringLiteral("NumericSmeta"))->setValue(12);
    child<QLineEdit>(window.get(), QStringLiteral("NumericSmetaWord"))->setText("А");
    child<QLineEdit>(window.get(), QStringLiteral("EditNameWork"))->setText("Ремонт \"под ключ\"");
    child<QComboBox>(window.get(), QStringLiteral("ComboBoxShablon"))
        ->setCurrentText("Коммерческое предложение");
    child<QDateEdit>(window.get(), QStringLiteral("DateSmeta"))->setDate(QDate(2025, 3, 16));
    child<QComboBox>(window.get(), QStringLiteral("EditValuta"))->setCurrentIndex(2);
    const QString file = folder.file("Sm/Ромашка.sim");
    dialogs->queueFile(file);
    ASSERT_TRUE(window->spdSaveKakClick());

    EXPECT_EQ(fileRows(file, "SELECT fio, phone FROM Customer"), QStringList{"ООО `Ромашка`|+7 900"});
    EXPECT_EQ(fileRows(file, "SELECT fio, object, note FROM Object"),
              QStringList{"ООО `Ромашка`|Офис|3 этаж"});
    EXPECT_EQ(fileRows(file, "SELECT inn FROM RequisiteZak"), QStringList{"7701"});
    EXPECT_EQ(fileRows(file, "SELECT inn FROM Requisite"), QStringList{"7604"});
    EXPECT_EQ(fileRows(file, "SELECT value FROM parametrs WHERE name='Customer'"),
              QStringList{"ООО `Ромашка`"});

    // A new document keeps the parties and starts afresh otherwise.
    window->CreateNewDoc();
    EXPECT_EQ(window->document().header().customer, "ООО \"Ромашка\"");
    EXPECT_EQ(QString::number(window->document().header().number), "1");
    EXPECT_EQ(window->document().header().nameWork, "");
    EXPECT_EQ(window->document().header().date, QDate::currentDate());
    pick(child<QComboBox>(window.get(), QStringLiteral("ComboBoxZakaz")), "Петров");
    EXPECT_EQ(window->document().header().object, "");
    child<QComboBox>(window.get(), QStringLiteral("EditValuta"))->setCurrentIndex(0);

    ASSERT_TRUE(window->OpenMyFile(file));
    EXPECT_EQ(window->document().header().customer, "ООО \"Ромашка\"");
    EXPECT_EQ(window->document().header().object, "Офис");
    EXPECT_EQ(window->document().header().contractor, "ИП Соболев");
    EXPECT_EQ(QString::number(window->document().header().number), "12");
    EXPECT_EQ(window->document().header().numberWord, "А");
    EXPECT_EQ(window->document().header().nameWork, "Ремонт \"под ключ\"");
    EXPECT_EQ(window->document().header().title, "Коммерческое предложение");
    EXPECT_EQ(window->document().header().date, QDate(2025, 3, 16));
    EXPECT_EQ(child<QComboBox>(window.get(), QStringLiteral("EditValuta"))->currentIndex(), 2);
    EXPECT_FALSE(window->isChanged());
    EXPECT_EQ(window->document().customerData().requisites.value("inn"), "7701");
    EXPECT_EQ(window->document().contractorData().requisites.value("inn"), "7604");
    window->findChild<QAction *>("PodryadCheckBoxUridDan")->setChecked(true);
    EXPECT_EQ(window->document().contractorForEstimate(), "ИП Соболев, ИНН 7604");

    // Opened where the register no longer knows the customer: the document's own copy answers.
    ASSERT_EQ(customers.deleteCustomer("ООО \"Ромашка\""), RegisterStatus::Ok);
    window->part<HeaderPart>()->reloadLists();
    ASSERT_TRUE(window->OpenMyFile(file));
    EXPECT_EQ(window->document().header().customer, "ООО \"Ромашка\"");
    const CustomerData copy = window->document().customerData();
    EXPECT_TRUE(copy.found);
    EXPECT_EQ(copy.customer.value("phone"), "+7 900");
    EXPECT_EQ(copy.requisites.value("inn"), "7701");
}
