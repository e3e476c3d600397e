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
    EXPECT_TRUE(items(window->ComboBoxZakaz).isEmpty());
    window->MZakazAndObject->trigger();
    auto *zakaz = window->findChild<TZakazAndObject *>();
    ASSERT_NE(zakaz, nullptr);
    ASSERT_TRUE(zakaz->isVisible());
    dialogs->queueInput("ООО \"Ромашка\"");
    dialogs->queueInput("Склад №2");
    QTest::mouseClick(zakaz->spdAddCustomer, Qt::LeftButton);
    dialogs->queueInput("Офис");
    QTest::mouseClick(zakaz->spdAddObject, Qt::LeftButton);
    EXPECT_EQ(items(window->ComboBoxZakaz), QStringList{"ООО \"Ромашка\""});

    EXPECT_FALSE(window->isChanged());
    window->ComboBoxZakaz->setFocus();
    QTest::keyClick(window->ComboBoxZakaz, Qt::Key_Down);
    EXPECT_EQ(window->currentCustomer(), "ООО \"Ромашка\"");
    EXPECT_EQ(items(window->ComboBoxObject), (QStringList{"Склад №2", "Офис"}));
    EXPECT_EQ(window->currentObject(), "Склад №2");
    EXPECT_TRUE(window->isChanged()) << "choosing a customer changes the document";

    window->DisableSave();
    pick(window->ComboBoxObject, "Офис");
    EXPECT_TRUE(window->isChanged()) << "choosing an object changes the document";
    EXPECT_EQ(window->settings().text("Customer"), "ООО \"Ромашка\"");
    EXPECT_EQ(window->settings().text("Object"), "Офис");

    // Renaming the object in the window rewrites the header's list and keeps nothing stale.
    zakaz->chooseCustomer("ООО \"Ромашка\"", "Офис");
    dialogs->queueInput("Офис 2");
    QTest::mouseClick(zakaz->spdEditObject, Qt::LeftButton);
    EXPECT_EQ(items(window->ComboBoxObject), (QStringList{"Склад №2", "Офис 2"}));

    // The contractor window feeds the contractor list, short names in table order.
    window->MPodryad->trigger();
    auto *podryad = window->findChild<TPodryadList *>();
    ASSERT_NE(podryad, nullptr);
    dialogs->queueInput("Мастер");
    QTest::mouseClick(podryad->btnAdd, Qt::LeftButton);
    dialogs->queueInput("ИП Соболев");
    QTest::mouseClick(podryad->btnAdd, Qt::LeftButton);
    EXPECT_EQ(items(window->ComboBoxPodryad), (QStringList{"Мастер", "ИП Соболев"}));
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
    window->reloadHeaderLists();

    pick(window->ComboBoxZakaz, "ООО \"Ромашка\"");
    pick(window->ComboBoxPodryad, "ИП Соболев");
    window->NumericSmeta->setValue(12);
    window->NumericSmetaWord->setText("А");
    window->EditNameWork->setText("Ремонт \"под ключ\"");
    window->ComboBoxShablon->setCurrentText("Коммерческое предложение");
    window->DateSmeta->setDate(QDate(2025, 3, 16));
    window->EditValuta->setCurrentIndex(2);
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
    EXPECT_EQ(window->currentCustomer(), "ООО \"Ромашка\"");
    EXPECT_EQ(window->estimateNumber(), "1");
    EXPECT_EQ(window->nameOfWorks(), "");
    EXPECT_EQ(window->estimateDate(), QDate::currentDate());
    pick(window->ComboBoxZakaz, "Петров");
    EXPECT_EQ(window->currentObject(), "");
    window->EditValuta->setCurrentIndex(0);

    ASSERT_TRUE(window->OpenMyFile(file));
    EXPECT_EQ(window->currentCustomer(), "ООО \"Ромашка\"");
    EXPECT_EQ(window->currentObject(), "Офис");
    EXPECT_EQ(window->currentContractor(), "ИП Соболев");
    EXPECT_EQ(window->estimateNumber(), "12");
    EXPECT_EQ(window->estimateNumberWord(), "А");
    EXPECT_EQ(window->nameOfWorks(), "Ремонт \"под ключ\"");
    EXPECT_EQ(window->estimateTitle(), "Коммерческое предложение");
    EXPECT_EQ(window->estimateDate(), QDate(2025, 3, 16));
    EXPECT_EQ(window->EditValuta->currentIndex(), 2);
    EXPECT_FALSE(window->isChanged());
    EXPECT_EQ(window->customerData().requisites.value("inn"), "7701");
    EXPECT_EQ(window->contractorData().requisites.value("inn"), "7604");
    window->findChild<QAction *>("PodryadCheckBoxUridDan")->setChecked(true);
    EXPECT_EQ(window->contractorForEstimate(), "ИП Соболев, ИНН 7604");

    // Opened where the register no longer knows the customer: the document's own copy answers.
    ASSERT_EQ(customers.deleteCustomer("ООО \"Ромашка\""), RegisterStatus::Ok);
    window->reloadHeaderLists();
    ASSERT_TRUE(window->OpenMyFile(file));
    EXPECT_EQ(window->currentCustomer(), "ООО \"Ромашка\"");
    const CustomerData copy = window->customerData();
    EXPECT_TRUE(copy.found);
    EXPECT_EQ(copy.customer.value("phone"), "+7 900");
    EXPECT_EQ(copy.requisites.value("inn"), "7701");
}
