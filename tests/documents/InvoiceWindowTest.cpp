// The invoice window in the main window: opened from "Документ" → "Выписать счёт", filled from the open
// estimate, driven as the user does (typing, ticking, buttons), bound to the estimate and exported
// through the real engine.

#include "MainWindowFixture.h"
#include "SqlRows.h"
#include "customers/ContractorRegister.h"
#include "documents/AccountTable.h"
#include "documents/FAccount_frame.h"
#include "documents/InvoicePart.h"
#include "documents/InvoiceSheet.h"
#include "estimate/EstimateEditor.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>

namespace {

class InvoiceWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        ContractorRegister r(*module);
        QString id;
        ASSERT_EQ(r.add("Соболев", &id), RegisterStatus::Ok);
        ASSERT_EQ(r.save({{"id", id}, {"shotname", "Соболев"}, {"longname", "ИП Соболев А. В."}},
                         {{"inn", "760412345678"},
                          {"account", "40802810477000012345"},
                          {"bank", "ПАО СБЕРБАНК"},
                          {"bik", "047888670"},
                          {"koraccount", "30101810500000000670"}}),
                  RegisterStatus::Ok);
        EstimateDocument &doc = window->document();
        EstimateHeader::Values h = doc.header();
        h.customer = "Кудрявцев О. Н.";
        h.object = "Ванная";
        h.contractor = "Соболев";
        h.number = 9;
        h.numberWord = "Б";
        h.date = QDate(2025, 4, 2);
        doc.setHeader(h);
        EstimateGrid &g = doc.grid();
        const int row = EstimateGrid::toModelRow(2);
        g.setData(g.index(row, EstimateCol::Name), "Укладка плитки", Qt::EditRole);
        g.setData(g.index(row, EstimateCol::Qty), "10", Qt::EditRole);
        g.setData(g.index(row, EstimateCol::Price), "1500", Qt::EditRole);
        child<QAction>(window.get(), "MAccount")->trigger();
        account = window->findChild<TFAccount *>();
        ASSERT_NE(account, nullptr);
    }
    template <typename T> T *get(const char *name) { return child<T>(account, QString::fromUtf8(name)); }
    QStringList services() {
        QStringList list;
        QAbstractItemModel *m = get<QTableView>("StringGridUslug")->model();
        for (int r = 0; r < m->rowCount(); ++r)
            list << m->index(r, 0).data().toString() + u' ' + m->index(r, 1).data().toString() + u'=' +
                        m->index(r, 2).data().toString();
        return list;
    }
    // Near the left edge: a check box or radio button takes clicks on its mark and text only.
    void click(const char *name) {
        QAbstractButton *b = get<QAbstractButton>(name);
        QTest::mouseClick(b, Qt::LeftButton, {}, QPoint(qMin(8, b->width() / 2), b->height() / 2));
    }

    TFAccount *account = nullptr;
};

TEST_F(InvoiceWindow, OpensFilledFromTheEstimate) {
    EXPECT_TRUE(account->isVisible());
    EXPECT_EQ(account->windowModality(), Qt::WindowModal);
    EXPECT_EQ(get<QLineEdit>("edNumber")->text(), "Б-9");
    EXPECT_EQ(get<QDateEdit>("DateEdit")->date(), QDate(2025, 4, 2));
    EXPECT_EQ(get<QComboBox>("EditValuta")->currentText(), "Рубль РФ");
    EXPECT_EQ(get<QComboBox>("ComboBoxPodryad")->currentText(), "Соболев");
    EXPECT_EQ(get<QComboBox>("ComboBoxZakaz")->currentText(), "Кудрявцев О. Н.");
    EXPECT_EQ(get<QLineEdit>("Edit_bik")->text(), "047888670");
    EXPECT_EQ(services(), (QStringList{"1 Стоимость работ=15000,00", "2 Стоимость материалов=0,00"}));
    EXPECT_EQ(get<QLineEdit>("EditItogo")->text(), "15000,00");
    EXPECT_EQ(get<QLineEdit>("edSumma")->text(), "15000,00");
    EXPECT_EQ(get<QLabel>("LabelSummaWord")->text(), "Пятнадцать тысяч рублей 00 копеек");
    EXPECT_FALSE(get<QCheckBox>("ToggleSwitch1")->isChecked());
    EXPECT_TRUE(get<QRadioButton>("rbtNDS")->isChecked()) << "НДС в том числе by default";
    EXPECT_FALSE(get<QCheckBox>("CheckBoxNDS")->isChecked());
    EXPECT_TRUE(get<QCheckBox>("CheckBoxQR")->isChecked());
    EXPECT_TRUE(get<QLabel>("LabelQR")->text().isEmpty()) << "the seller's details allow a code";
    for (const char *name : {"spdSumma", "spdPodryadName", "spdAddUslug", "spdDelUslug", "spdClear",
                             "spdPrint", "spdPDF", "spdExcel", "spdBind", "spdClose"})
        EXPECT_NE(account->findChild<QPushButton *>(name), nullptr) << name;

    // The seller by the name for invoices, and back.
    click("spdPodryadName");
    EXPECT_EQ(get<QComboBox>("ComboBoxPodryad")->currentText(), "ИП Соболев А. В.");
    EXPECT_EQ(account->invoice().seller.name, "ИП Соболев А. В.");
    click("spdPodryadName");
    EXPECT_EQ(account->invoice().seller.name, "Соболев");
    account->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/invoice_window.png"));
}

TEST_F(InvoiceWindow, SwitchVatAndBadInputAsTheUserDoesThem) {
    click("ToggleSwitch1");
    EXPECT_EQ(services(), QStringList{"1 Сметная стоимость объекта Ванная=15000,00"});
    EXPECT_FALSE(get<QCheckBox>("CheckBoxWork")->isEnabled());
    click("ToggleSwitch1");
    click("ToggleSwitch1");
    EXPECT_EQ(services().size(), 1) << "on, off, on: no duplicates";
    EXPECT_EQ(AccountTable::value(module->database(Db::Smeta), "ToggleSwitch1"), QString("1"));

    click("spdAddUslug");
    QTableView *grid = get<QTableView>("StringGridUslug");
    QAbstractItemModel *m = grid->model();
    ASSERT_TRUE(m->setData(m->index(1, 1), "Вывоз мусора"));
    ASSERT_TRUE(m->setData(m->index(1, 2), "5000"));
    EXPECT_EQ(get<QLineEdit>("EditItogo")->text(), "20000,00");
    EXPECT_EQ(AccountTable::services(module->database(Db::Smeta)).size(), 2) << "rows kept in the document";

    // VAT: ticked, 20 %, added on top of the services.
    click("CheckBoxNDS");
    click("rbtSumma");
    get<QSpinBox>("SpinEditNDS")->setValue(20);
    EXPECT_EQ(get<QLineEdit>("edSumma")->text(), "24000,00");
    EXPECT_EQ(get<QLabel>("LabelNDS")->text(), "НДС (20 %): 4 000,00");
    click("rbtNDS");
    EXPECT_EQ(get<QLineEdit>("edSumma")->text(), "20000,00");
    EXPECT_EQ(get<QLabel>("LabelNDS")->text(), "В том числе НДС (20 %): 3 333,33");
    get<QSpinBox>("SpinEditNDS")->setValue(150);
    EXPECT_EQ(get<QSpinBox>("SpinEditNDS")->value(), 100) << "the spin box refuses more";

    // Letters in a price: marked, left out, nothing else changes.
    ASSERT_TRUE(m->setData(m->index(1, 2), "5000р"));
    EXPECT_TRUE(m->index(1, 2).data(Qt::BackgroundRole).isValid());
    EXPECT_TRUE(m->index(1, 2).data(Qt::ToolTipRole).toString().contains("не является числом"));
    EXPECT_EQ(get<QLineEdit>("EditItogo")->text(), "15000,00");
    // Letters in the amount: marked, no words.
    QLineEdit *amount = get<QLineEdit>("edSumma");
    amount->selectAll();
    QTest::keyClicks(amount, "12x");
    EXPECT_FALSE(amount->styleSheet().isEmpty());
    EXPECT_TRUE(get<QLabel>("LabelSummaWord")->text().isEmpty());
    // "Записать сумму из сметы".
    click("spdSumma");
    EXPECT_EQ(amount->text(), "15000,00");
    EXPECT_TRUE(amount->styleSheet().isEmpty());

    // Removing the selected service; clearing after a question.
    grid->setCurrentIndex(m->index(1, 1));
    click("spdDelUslug");
    EXPECT_EQ(m->rowCount(), 1);
    dialogs->queueAnswer(Dialogs::Answer::No);
    click("spdClear");
    EXPECT_EQ(m->rowCount(), 1);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    click("spdClear");
    EXPECT_EQ(m->rowCount(), 0);
    EXPECT_EQ(amount->text(), "0,00");
}

TEST_F(InvoiceWindow, BindingStoresTheInvoiceAndMarksTheDocumentChanged) {
    EstimateDocument &doc = window->document();
    ASSERT_TRUE(doc.saveAs(folder.file("Sm/Ванная.sim")));
    EXPECT_FALSE(doc.isChanged());
    click("spdBind");
    EXPECT_TRUE(doc.isChanged());
    const QStringList rows = queryRows(module->database(Db::Smeta), "SELECT name, value FROM Account "
                                                                    "WHERE note IS NULL ORDER BY id");
    EXPECT_EQ(rows.size(), 28);
    EXPECT_TRUE(rows.contains("edNumber|Б-9"));
    EXPECT_TRUE(rows.contains("summaword|Пятнадцать тысяч рублей 00 копеек"));
    EXPECT_TRUE(rows.contains("ComboBoxPodryad|Соболев"));
}

TEST_F(InvoiceWindow, MissingTemplateStopsTheExport) {
    const QString path = OfficeTemplates::path(window->dataFolder(), InvoiceSheet::kTemplate);
    QFile::remove(path);
    if (!OfficeEngine::available())
        GTEST_SKIP();
    click("spdExcel");
    EXPECT_EQ(dialogs->lastText(), "Отсутствует файл " + path);
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
}

TEST_F(InvoiceWindow, ExportsThroughTheEngineAndRegistersTheFile) {
    if (!OfficeEngine::available())
        GTEST_SKIP();
    EstimateDocument &doc = window->document();
    ASSERT_TRUE(doc.saveAs(folder.file("Sm/Ванная.sim")));
    const QString target = folder.file("Sm/Счет.pdf");
    dialogs->queueFile(target);
    QSignalSpy done(&account->output(), &InvoiceExport::finished);
    click("spdPDF");
    ASSERT_TRUE(done.wait(180000));
    ASSERT_TRUE(done.first().at(0).toBool()) << dialogs->lastText().toStdString();
    EXPECT_TRUE(QFile::exists(target));
    EXPECT_EQ(queryRows(module->database(Db::MyDoc), "SELECT number, ext, filename FROM account"),
              QStringList{"Б-9|pdf|" + target});
    EXPECT_EQ(AccountTable::value(module->database(Db::Smeta), "edNumber"), QString("Б-9"))
        << "the stored invoice is rebuilt before the export";
    EXPECT_FALSE(doc.isChanged()) << "only binding changes the estimate";

    // The spreadsheet is shown in the preview once written.
    const QString xls = folder.file("Sm/Счет.xls");
    dialogs->queueFile(xls);
    click("spdExcel");
    ASSERT_TRUE(done.wait(180000));
    ASSERT_TRUE(done.last().at(0).toBool()) << dialogs->lastText().toStdString();
    EXPECT_TRUE(QFile::exists(xls));
    ASSERT_NE(account->preview(), nullptr);
    EXPECT_TRUE(account->preview()->isVisible());
    EXPECT_EQ(account->preview()->pageCount(), 1);
    QTest::qWait(1500); // the page is drawn in the background
    account->preview()->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/invoice_preview.png"));
}

} // namespace
