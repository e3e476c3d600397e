// The act data window TFormKS2 on an open estimate: every field survives leaving and entering, and
// saving and opening the document; choosing a party reads its contacts; the signatories' rows; the
// page of volumes with a refused quantity.

#include "ActFixture.h"

#include "ScriptedDialogs.h"
#include "Widgets.h"
#include "documents/ActVolumesPage.h"
#include "documents/FormKS2_frame.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>

#ifndef VIRN_SCREENSHOT_DIR
#error "VIRN_SCREENSHOT_DIR names where the screenshots go"
#endif

namespace {

void screenshot(QWidget *w, const char *name) {
    QCoreApplication::processEvents(); // the layouts settle first
    w->grab().save(QDir(QStringLiteral(VIRN_SCREENSHOT_DIR)).filePath(QString::fromLatin1(name)));
}

class ActWindow : public ActFixture {
protected:
    void SetUp() override {
        ActFixture::SetUp();
        if (HasFatalFailure())
            return;
        form = std::make_unique<TFormKS2>(*doc, store.get());
        form->resize(1000, 700);
        form->enter();
    }
    void TearDown() override {
        form.reset();
        ActFixture::TearDown();
    }
    // Types a value into every field, as the user would.
    void typeEverything() {
        form->ComboBoxZakaz->setEditText(QStringLiteral("ООО \"Ромашка\""));
        form->ZEditAddress->setText(QStringLiteral("г.\u00A0Ярославль, ул. Садовая, 14"));
        form->ZEditPhone->setText(QStringLiteral("+7 999 214-57-38"));
        form->ZEditFax->setText(QStringLiteral("22-33"));
        form->ComboBoxPodryad->setEditText(QStringLiteral("ИП \"Соболев\""));
        form->PEditAddress->setText(QStringLiteral("пр. Ленина, 5"));
        form->PEditPhone->setText(QStringLiteral("+7 915 000-11-22"));
        form->PEditFax->setText(QStringLiteral("soboleff@example.ru"));
        form->ComboBoxTypeWork->setCurrentIndex(1);
        form->EditNameWork->setText(QStringLiteral("Договор \"Ремонт\" № 7"));
        form->AddressWork->setText(QStringLiteral("ул. Садовая, 14, кв. 12"));
        form->ComboBoxObject->setEditText(QStringLiteral("Квартира 12"));
        form->EditNumDoc->setText(QStringLiteral("Д-7"));
        form->DateEditContract->setDate(QDate(2025, 2, 20));
        form->EditSumSmet->setText(QStringLiteral("103 000,00"));
        form->EditSdal->setText(QStringLiteral("Соболев А. В."));
        form->EditDolSdal->setEditText(QStringLiteral("Мастер"));
        form->EditPrinal->setText(QStringLiteral("Кудрявцев О. Н."));
        form->EditDolPrinal->setEditText(QStringLiteral("Директор"));
        form->EditNumKv->setText(QStringLiteral("12"));
        form->DateEditPeriodS->setDate(QDate(2025, 3, 1));
        form->DateEditPeriodPo->setDate(QDate(2025, 3, 31));
        form->RadioButton1->setChecked(true);
    }
    std::unique_ptr<TFormKS2> form;
    ScriptedDialogsGuard dialogs;
};

TEST_F(ActWindow, EveryFieldSurvivesLeavingEnteringAndReopening) {
    typeEverything();
    const QMap<QString, QString> typed = form->values();
    EXPECT_EQ(typed.keys().size(), ActFields::names().size()) << "every field of the form";
    EXPECT_EQ(typed.value(QStringLiteral("SummaWord")), QStringLiteral("Сто три тысячи рублей 00 копеек"));
    EXPECT_EQ(typed.value(QStringLiteral("ComboBoxTypeWork")), QStringLiteral("Основание"));
    EXPECT_FALSE(doc->isChanged());
    ASSERT_TRUE(form->leave());
    EXPECT_TRUE(doc->isChanged()) << "the act data is part of the document";
    EXPECT_EQ(ActFields::read(working()), typed);

    // Another window entering the same document shows the same values.
    TFormKS2 again(*doc, store.get());
    again.enter();
    EXPECT_EQ(again.values(), typed);
    EXPECT_TRUE(again.RadioButton1->isChecked());

    // Saved, another document opened, this one opened again.
    ASSERT_TRUE(doc->save());
    ASSERT_TRUE(doc->newDocument());
    form->enter();
    EXPECT_NE(form->values(), typed);
    ASSERT_TRUE(doc->open(path));
    form->enter();
    EXPECT_EQ(form->values(), typed);
    EXPECT_TRUE(dialogs->shown().isEmpty());
}

TEST_F(ActWindow, ChoosingAPartyReadsItsContacts) {
    form->ComboBoxZakaz->setCurrentIndex(form->ComboBoxZakaz->findText(customer));
    ASSERT_GE(form->ComboBoxZakaz->currentIndex(), 0) << "the customers of the register are offered";
    emit form->ComboBoxZakaz->activated(form->ComboBoxZakaz->currentIndex());
    EXPECT_EQ(form->ZEditAddress->text(), QStringLiteral("г. Ярославль, ул. Садовая, 14"));
    EXPECT_EQ(form->ZEditPhone->text(), QStringLiteral("+7 999 214-57-38"));
    EXPECT_EQ(form->ZEditFax->text(), QStringLiteral("+7 4852 11-22-33"));
    EXPECT_GE(form->ComboBoxObject->findText(object), 0) << "the customer's objects";

    form->ComboBoxPodryad->setCurrentIndex(form->ComboBoxPodryad->findText(contractor));
    emit form->ComboBoxPodryad->activated(form->ComboBoxPodryad->currentIndex());
    EXPECT_EQ(form->PEditAddress->text(), QStringLiteral("г. Ярославль, пр. Ленина, 5"));
    EXPECT_EQ(form->PEditPhone->text(), QStringLiteral("+7 915 000-11-22"));
    EXPECT_EQ(form->PEditFax->text(), QStringLiteral("soboleff@example.ru"));

    form->btnWriteSdal->click();
    form->btnWritePrinal->click();
    EXPECT_EQ(form->EditSdal->text(), contractor);
    EXPECT_EQ(form->EditPrinal->text(), customer);
}

TEST_F(ActWindow, LabelsAndTheSignatoriesRows) {
    const struct {
        const char *field, *text;
    } labels[] = {
        {"AddressWork", "Адрес\u00A0стройки"},
        {"ComboBoxObject", "Наименование\u00A0объекта"},
        {"EditNumDoc", "Номер\u00A0договора\u00A0подряда"},
        {"DateEditContract", "Дата\u00A0договора\u00A0подряда"},
        {"EditSumSmet", "Сметная\u00A0стоимость\u00A0по\u00A0договору"},
        {"SummaWord", "Сметная\u00A0стоимость"},
        {"DateEditPeriodS", "Отчетный\u00A0период\u00A0с"},
        {"DateEditPeriodPo", "Отчетный\u00A0период\u00A0по"},
        {"EditSdal", "Сдал/подрядчик\n(ФИО)"},
        {"EditPrinal", "Принял/заказчик\n(ФИО)"},
        {"PEditFax", "E-mail"},
        {"Additional", "  Дополнительная информация"},
    };
    for (const auto &l : labels) {
        auto *label = child<QLabel>(form.get(), QStringLiteral("Label") + QString::fromLatin1(l.field));
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), QString::fromUtf8(l.text)) << l.field;
    }
    form->show();
    struct Case {
        QRadioButton *choice;
        int organisations, owners;
    } cases[] = {{form->RadioButton1, 32, 0}, {form->RadioButton2, 0, 32}};
    for (const Case &c : cases) {
        c.choice->click();
        EXPECT_EQ(form->RowOrganizations->height(), c.organisations);
        EXPECT_EQ(form->RowOwners->height(), c.owners);
        EXPECT_EQ(form->values().value(QStringLiteral("RadioButton1")), ActFields::tick(c.organisations > 0));
        screenshot(form.get(), c.organisations ? "form-ks2-organisations.png" : "form-ks2-owners.png");
    }
    EXPECT_EQ(form->EditDolSdal->count(), 5);
    EXPECT_EQ(form->EditDolPrinal->count(), 3);
    form->close();
}

TEST_F(ActWindow, AReportingPeriodEndingBeforeItStartsKeepsTheWindowOpen) {
    form->show();
    form->DateEditPeriodS->setDate(QDate(2025, 3, 15));
    form->DateEditPeriodPo->setDate(QDate(2025, 3, 1));
    EXPECT_FALSE(form->close());
    EXPECT_EQ(dialogs->lastText(), QStringLiteral("Начало периода не должно превышать окончание"));
    EXPECT_TRUE(form->isVisible());
    form->DateEditPeriodPo->setDate(QDate(2025, 3, 31));
    EXPECT_TRUE(form->close());
    EXPECT_EQ(ActFields::read(working()).value(QStringLiteral("DateEditPeriodPo")),
              QStringLiteral("31.03.2025"));
}

TEST_F(ActWindow, VolumesPageRefusesLettersAndKeepsWhatWasTyped) {
    ActVolumesModel &m = form->volumes();
    // Headings, the three works, the material heading and the material.
    ASSERT_EQ(m.rowCount(), 7);
    auto line = [&m](int volume) { return m.lineOf(volume); };
    auto text = [&m](int row, int col) { return m.data(m.index(row, col), Qt::DisplayRole).toString(); };
    EXPECT_EQ(text(0, ActVolumeCol::Name), QStringLiteral("РАЗДЕЛ 1. Стены"));
    EXPECT_EQ(text(line(0), ActVolumeCol::Estimate), QStringLiteral("100"));
    EXPECT_EQ(text(line(0), ActVolumeCol::ThisAct), QStringLiteral("100")) << "the remainder by default";
    EXPECT_TRUE(form->VolumesPage->LabelVolumes->text().startsWith(QStringLiteral("Актов по объёмам нет")));

    const QModelIndex cell = m.index(line(0), ActVolumeCol::ThisAct);
    ASSERT_TRUE(m.setData(cell, QStringLiteral("3О"), Qt::EditRole));
    EXPECT_TRUE(m.data(cell, Qt::BackgroundRole).isValid()) << "the cell is red";
    EXPECT_TRUE(m.data(cell, Qt::ToolTipRole).toString().contains(QStringLiteral("не является числом")));
    EXPECT_EQ(text(line(0), ActVolumeCol::Remainder), QString());
    EXPECT_TRUE(form->VolumesPage->LabelVolumes->text().contains(QStringLiteral("не приняты")));
    ASSERT_TRUE(form->leave());
    ActJob job;
    QString why;
    EXPECT_FALSE(
        ActProducer::prepare(*doc, ViewTitles(), request(ActKind::Ks2, QStringLiteral("1")), &job, &why));
    EXPECT_TRUE(why.contains(QStringLiteral("«3О»"))) << why.toStdString();

    ASSERT_TRUE(m.setData(cell, QStringLiteral("30"), Qt::EditRole));
    EXPECT_FALSE(m.data(cell, Qt::BackgroundRole).isValid());
    EXPECT_EQ(text(line(0), ActVolumeCol::Remainder), QStringLiteral("70"));
    ASSERT_TRUE(form->leave());
    EXPECT_EQ(ActVolumes::typed(working()), (QMap<QString, QString>{{keyOf(QStringLiteral("1")), "30"}}));
    EXPECT_TRUE(
        ActProducer::prepare(*doc, ViewTitles(), request(ActKind::Ks2, QStringLiteral("1")), &job, &why))
        << why.toStdString();

    // "Обнулить" types 0 everywhere; "Весь остаток" takes the typing back.
    form->show();
    form->PageControl->setCurrentIndex(1);
    screenshot(form.get(), "form-ks2-volumes.png");
    form->VolumesPage->spdVolumesZero->click();
    EXPECT_EQ(m.typed().size(), 4);
    EXPECT_EQ(text(line(3), ActVolumeCol::ThisAct), QStringLiteral("0"));
    form->VolumesPage->spdVolumesRemainder->click();
    EXPECT_TRUE(m.typed().isEmpty());
}

} // namespace
