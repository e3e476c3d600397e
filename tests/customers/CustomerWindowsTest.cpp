// The register windows driven as the user does: clicks, typed fields, scripted answers.

#include "customers/PodryadList_frame.h"
#include "customers/RequisitesForm.h"
#include "customers/ZakazAndObject_frame.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"

#include "ScriptedDialogs.h"
#include "TestFolder.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

QStringList rows(QListView *list) {
    QStringList out;
    for (int r = 0; r < list->model()->rowCount(); ++r)
        out << list->model()->index(r, 0).data().toString();
    return out;
}

void clickRow(QListView *list, const QString &text) {
    for (int r = 0; r < list->model()->rowCount(); ++r) {
        const QModelIndex i = list->model()->index(r, 0);
        if (i.data().toString() == text) {
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(i).center());
            return;
        }
    }
    ADD_FAILURE() << "no row " << text.toStdString();
}

class ZakazWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        window = std::make_unique<TZakazAndObject>(module, options, &store);
        window->resize(900, 600);
        window->show();
    }
    int cashCount() {
        QSqlQuery q(module.database(Db::Cash));
        return q.exec("SELECT count(*) FROM cash") && q.next() ? q.value(0).toInt() : -1;
    }

    ScriptedDialogsGuard dialogs;
    TestFolder data;
    TModuleSQL module{data.path()};
    SettingsStore store{data.file("IniFile.db")};
    OptionFlags options = OptionFlags::inMemory({{"CheckBoxCity", true}, {"CheckBoxStreet", true}});
    std::unique_ptr<TZakazAndObject> window;
};

} // namespace

TEST_F(ZakazWindowTest, AddCustomerWithFirstObjectThenRefusals) {
    QSignalSpy changed(window.get(), &TZakazAndObject::registerChanged);
    dialogs->queueInput("ООО \"Ромашка\"");
    dialogs->queueInput("Офис на Ленина");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    EXPECT_EQ(rows(window->ListBoxZakaz), QStringList{"ООО \"Ромашка\""});
    EXPECT_EQ(rows(window->ListBoxObject), QStringList{"Офис на Ленина"});
    EXPECT_EQ(window->EditFIO->text(), "ООО \"Ромашка\"");
    EXPECT_EQ(window->chosenObject(), "Офис на Ленина");
    EXPECT_GE(changed.count(), 1);
    ASSERT_GE(dialogs->shown().size(), 2);
    EXPECT_EQ(dialogs->shown()[0].caption, "Новый заказчик");
    EXPECT_EQ(dialogs->shown()[0].text, "Добавить заказчика");
    EXPECT_EQ(dialogs->shown()[1].caption, "ООО \"Ромашка\"");
    EXPECT_EQ(dialogs->shown()[1].text, "Добавить объект");

    // Blank answers, cancelled boxes, a taken name.
    dialogs->clear();
    dialogs->queueInput("   ");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Предупреждение");
    EXPECT_EQ(dialogs->lastText(), "Пустая затея");
    dialogs->queueInputCancel();
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    dialogs->queueInput("ООО \"Ромашка\"");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Заказчик с таким именем уже имеется");
    dialogs->queueInput("");
    QTest::mouseClick(window->spdAddObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Пустая затея");
    EXPECT_EQ(rows(window->ListBoxZakaz), QStringList{"ООО \"Ромашка\""});
    EXPECT_EQ(rows(window->ListBoxObject), QStringList{"Офис на Ленина"});
    EXPECT_EQ(dialogs->pendingAnswers(), 0);
}

TEST_F(ZakazWindowTest, NothingChosenIsRefusedAndDeletionsAskFirst) {
    QTest::mouseClick(window->spdDelZakaz, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Заказчик не выбран");
    EXPECT_EQ(dialogs->lastCaption(), "Предупреждение");
    QTest::mouseClick(window->spdAddObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Заказчик не выбран");
    QTest::mouseClick(window->spdDelObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Объект не выбран");
    QTest::mouseClick(window->spdEditObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Объект не выбран");

    dialogs->queueInput("Иванов");
    dialogs->queueInput("Дача");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    dialogs->queueInput("Квартира");
    QTest::mouseClick(window->spdAddObject, Qt::LeftButton);
    EXPECT_EQ(rows(window->ListBoxObject), (QStringList{"Дача", "Квартира"}));

    clickRow(window->ListBoxObject, "Дача");
    dialogs->queueAnswer(Dialogs::Answer::No);
    QTest::mouseClick(window->spdDelObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Удаление");
    EXPECT_EQ(dialogs->lastText(), "Удалить объект \"Дача\"?");
    EXPECT_EQ(rows(window->ListBoxObject), (QStringList{"Дача", "Квартира"}));

    // Renaming: the old name is offered, the new one replaces it.
    clickRow(window->ListBoxObject, "Дача");
    dialogs->queueInput("Дом");
    QTest::mouseClick(window->spdEditObject, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Редактировать объект");
    EXPECT_EQ(rows(window->ListBoxObject), (QStringList{"Дом", "Квартира"}));

    clickRow(window->ListBoxObject, "Дом");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(window->spdDelObject, Qt::LeftButton);
    EXPECT_EQ(rows(window->ListBoxObject), QStringList{"Квартира"});

    dialogs->queueAnswer(Dialogs::Answer::No);
    QTest::mouseClick(window->spdDelZakaz, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Иванов");
    EXPECT_EQ(dialogs->lastText(), "Удалить заказчика и все связанные с ним объекты?");
    EXPECT_EQ(rows(window->ListBoxZakaz), QStringList{"Иванов"});
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(window->spdDelZakaz, Qt::LeftButton);
    EXPECT_TRUE(rows(window->ListBoxZakaz).isEmpty());
    EXPECT_TRUE(rows(window->ListBoxObject).isEmpty());
    EXPECT_EQ(dialogs->pendingAnswers(), 0);
}

TEST_F(ZakazWindowTest, SaveFieldsAddressLegalLineAndAllObjects) {
    dialogs->queueInput("Иванов");
    dialogs->queueInput("Дача");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    dialogs->queueInput("Петров");
    dialogs->queueInput("Баня");
    QTest::mouseClick(window->spdAddCustomer, Qt::LeftButton);
    QSqlQuery(module.database(Db::Cash))
        .exec("INSERT INTO cash (customer, object, incoming) VALUES ('Иванов', 'Дача', '5')");

    clickRow(window->ListBoxZakaz, "Иванов");
    clickRow(window->ListBoxObject, "Дача");
    window->EditRegion->setText("Тверская");
    window->EditCity->setText("Тверь");
    window->EditStreet->setText("Ленина");
    window->EditHouse->setText("5");
    window->CheckBoxRegion->setChecked(true);
    window->CheckBoxHouse->setChecked(true);
    window->CheckBoxApartment->setChecked(false);
    EXPECT_TRUE(options.get("CheckBoxRegion")) << "the window's tick is the main window's option";
    QTest::mouseClick(window->spdAddress, Qt::LeftButton);
    EXPECT_EQ(window->EditAdress->text(), "Тверская обл., г.Тверь, ул. Ленина, д.5");

    window->requisites->EditINN->setText("7701");
    window->requisites->EditBIK->setText("0445");
    window->requisites->EditBank->setText("Сбер");
    // The customer's OGRN field is its okpo column.
    auto *okpo = window->findChild<QLineEdit *>("EditOKPO");
    ASSERT_NE(okpo, nullptr);
    okpo->setText("1027");
    for (auto *box : window->findChildren<QCheckBox *>())
        if (box->objectName().startsWith("Check_"))
            box->setChecked(box->objectName() == "Check_inn" || box->objectName() == "Check_bik" ||
                            box->objectName() == "Check_okpo");
    QTest::mouseClick(window->requisites->spdUridDan, Qt::LeftButton);
    EXPECT_EQ(window->Memo1->toPlainText(), "ИНН 7701, ОГРН 1027, БИК 0445");
    EXPECT_FALSE(store.flag("Customer", "Zak_bank", true)) << "the ticks are kept in the settings";

    window->EditNoteObect->setText("ключи у соседа");
    window->EditFIO->setText("Иванов И.И.");
    QTest::mouseClick(window->btnOK, Qt::LeftButton);
    EXPECT_EQ(rows(window->ListBoxZakaz), (QStringList{"Иванов И.И.", "Петров"}));
    CustomerRegister reg(module);
    const CustomerData d = reg.customer("Иванов И.И.");
    ASSERT_TRUE(d.found);
    EXPECT_EQ(d.customer.value("address"), "Тверская обл., г.Тверь, ул. Ленина, д.5");
    EXPECT_EQ(d.customer.value("note"), "ИНН 7701, ОГРН 1027, БИК 0445");
    EXPECT_EQ(d.customer.value("okpo"), "1027");
    EXPECT_EQ(d.requisites.value("bank"), "Сбер");
    EXPECT_EQ(window->requisites->EditBank->text(), "Сбер") << "the saved customer is shown again";
    EXPECT_EQ(okpo->text(), "1027");
    EXPECT_EQ(reg.object("Иванов И.И.", "Дача").value("note"), "ключи у соседа");
    {
        QSqlQuery q(module.database(Db::Cash));
        ASSERT_TRUE(q.exec("SELECT customer FROM cash") && q.next());
        EXPECT_EQ(q.value(0).toString(), "Иванов И.И.");
    }

    // Every object of every customer; choosing one brings its customer.
    QTest::mouseClick(window->btnAllObject, Qt::LeftButton);
    EXPECT_EQ(rows(window->ListBoxObject), (QStringList{"Дача", "Баня"}));
    clickRow(window->ListBoxObject, "Баня");
    EXPECT_EQ(window->chosenCustomer(), "Петров");
    EXPECT_EQ(window->chosenObject(), "Баня");
    EXPECT_EQ(window->EditFIO->text(), "Петров");

    // Dropping the register asks, then leaves nothing.
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(window->spdClear, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Удалить все данные в базе?");
    EXPECT_TRUE(rows(window->ListBoxZakaz).isEmpty());
    EXPECT_EQ(cashCount(), 0);
}

namespace {

class PodryadWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        window = std::make_unique<TPodryadList>(module, options, &store);
        window->show();
    }
    ScriptedDialogsGuard dialogs;
    TestFolder data;
    TModuleSQL module{data.path()};
    SettingsStore store{data.file("IniFile.db")};
    OptionFlags options = OptionFlags::inMemory();
    std::unique_ptr<TPodryadList> window;
};

QStringList items(QComboBox *box) {
    QStringList out;
    for (int i = 0; i < box->count(); ++i)
        out << box->itemText(i);
    return out;
}

} // namespace

TEST_F(PodryadWindowTest, AddSaveDeleteWithTheirMessages) {
    QSignalSpy changed(window.get(), &TPodryadList::contractorsChanged);
    dialogs->queueInput("ИП \"Соболев\"");
    QTest::mouseClick(window->btnAdd, Qt::LeftButton);
    EXPECT_EQ(dialogs->shown()[0].caption, "Новый подрядчик");
    EXPECT_EQ(dialogs->shown()[0].text, "Добавить подрядчика");
    EXPECT_EQ(items(window->ComboBoxPodryad), QStringList{"ИП \"Соболев\""});
    EXPECT_EQ(window->EditShotName->text(), "ИП \"Соболев\"");
    dialogs->queueInput("ИП \"Соболев\"");
    QTest::mouseClick(window->btnAdd, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Подрядчик с таким именем уже имеется");
    dialogs->queueInput(" ");
    QTest::mouseClick(window->btnAdd, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Пустая затея");
    EXPECT_EQ(items(window->ComboBoxPodryad).size(), 1);

    // Editing a name is a reminder to save; saving writes everything and the e-mail to the settings.
    EXPECT_EQ(window->btnOk->text(), "Сохранено");
    QTest::keyClicks(window->EditLongName, "IP");
    EXPECT_EQ(window->btnOk->text(), "Сохранить");
    window->EditLongName->setText("Индивидуальный предприниматель");
    window->requisites->EditINN->setText("7604");
    window->requisites->EditBIK->setText("0478");
    window->requisites->EditOGRN->setText("3187");
    window->EditEmail->setText("master@example.com");
    for (auto *box : window->findChildren<QCheckBox *>())
        if (box->objectName().startsWith("Check_"))
            box->setChecked(box->objectName() == "Check_bik" || box->objectName() == "Check_inn");
    QTest::mouseClick(window->requisites->spdUridDan, Qt::LeftButton);
    EXPECT_EQ(window->MemoUridDan->toPlainText(), "ИНН 7604, БИК 0478");
    EXPECT_FALSE(store.flag("Podryad", "Check_okpo", true)) << "the ticks are kept in the settings";
    QTest::mouseClick(window->btnOk, Qt::LeftButton);
    EXPECT_EQ(window->btnOk->text(), "Сохранено");
    EXPECT_EQ(store.text("Param", "Email"), "master@example.com");
    ContractorRegister reg(module);
    const ContractorData d = reg.byShortName("ИП \"Соболев\"");
    ASSERT_TRUE(d.found);
    EXPECT_EQ(d.contractor.value("longname"), "Индивидуальный предприниматель");
    EXPECT_EQ(d.requisites.value("okpo"), "3187");
    EXPECT_EQ(d.requisites.value("note"), "ИНН 7604, БИК 0478");
    EXPECT_GE(changed.count(), 2);

    window->CheckBoxUridDan->setChecked(true);
    EXPECT_TRUE(options.get("PodryadCheckBoxUridDan"));

    // A contractor without a name is asked about as "Без имени".
    QSqlQuery(module.database(Db::People)).exec("INSERT INTO Contractor (shotname) VALUES ('')");
    window->chooseContractor("ИП \"Соболев\"");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    QTest::mouseClick(window->btnDelRow, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastText(), "Удалить подрядчика ИП \"Соболев\"?");
    EXPECT_EQ(items(window->ComboBoxPodryad), QStringList{""});
    dialogs->queueAnswer(Dialogs::Answer::No);
    QTest::mouseClick(window->btnDelRow, Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Удаление");
    EXPECT_EQ(dialogs->lastText(), "Удалить подрядчика Без имени?");
    EXPECT_EQ(items(window->ComboBoxPodryad), QStringList{""});
    EXPECT_EQ(dialogs->pendingAnswers(), 0);
}
