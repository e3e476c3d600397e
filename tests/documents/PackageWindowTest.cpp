// The package window in the main window: opened from the register for the chosen estimate, made with the
// real engine (all PDF), its files in the folder and in the register's side grids; the numbers from the
// date in both orders; an estimate never saved; the register's invoice and contract buttons.

#include "MainWindowFixture.h"
#include "SqlRows.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "documents/ContractPart.h"
#include "documents/Contract_frame.h"
#include "documents/FAccount_frame.h"
#include "documents/InvoicePart.h"
#include "documents/MyDocuments_frame.h"
#include "documents/PackagePart.h"
#include "documents/Package_frame.h"
#include "documents/RegisterModel.h"
#include "documents/RegisterPart.h"
#include "storage/SettingsStore.h"

#include <QAction>
#include <QCheckBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#ifndef VIRN_SCREENSHOT_DIR
#error "VIRN_SCREENSHOT_DIR names where the pictures go"
#endif

namespace {

class PackageWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        child<QAction>(window.get(), "CheckBossDir")->setChecked(false);
        CustomerRegister customers(*module);
        ASSERT_EQ(customers.addCustomer("Кудрявцев О. Н."), RegisterStatus::Ok);
        ASSERT_EQ(customers.addObject("Кудрявцев О. Н.", "Ванная"), RegisterStatus::Ok);
        ContractorRegister contractors(*module);
        QString id;
        ASSERT_EQ(contractors.add("Соболев", &id), RegisterStatus::Ok);
    }
    // A saved estimate with one work, entered in the register.
    QString saveEstimate(const QString &file = "Sm/Ванная.sim", int number = 9) {
        EstimateDocument &doc = window->document();
        EstimateHeader::Values h = doc.header();
        h.customer = "Кудрявцев О. Н.";
        h.object = "Ванная";
        h.contractor = "Соболев";
        h.number = number;
        h.date = QDate(2026, 3, 2);
        doc.setHeader(h);
        EstimateGrid &g = doc.grid();
        const int row = EstimateGrid::toModelRow(2);
        g.setData(g.index(row, EstimateCol::Name), "Укладка плитки", Qt::EditRole);
        g.setData(g.index(row, EstimateCol::Qty), "10", Qt::EditRole);
        g.setData(g.index(row, EstimateCol::Price), "1500", Qt::EditRole);
        const QString path = folder.file(file);
        QDir().mkpath(QFileInfo(path).absolutePath());
        dialogs->queueFile(path);
        EXPECT_TRUE(window->spdSaveClick());
        return path;
    }
    // The register open, its first estimate chosen.
    TMyDocuments *registerWithRow() {
        child<QAction>(window.get(), "spdMyDoc")->trigger();
        TMyDocuments *frame = window->part<RegisterPart>()->frame();
        EXPECT_NE(frame, nullptr);
        if (frame)
            frame->GridDoc->selectRow(0);
        return frame;
    }
    // Chooses the register's row of the estimate file.
    void chooseRow(TMyDocuments *frame, const QString &path) {
        QAbstractItemModel *m = frame->GridDoc->model();
        for (int row = 0; row < m->rowCount(); ++row)
            if (QFileInfo(m->index(row, RegisterCol::FileName).data().toString()) == QFileInfo(path)) {
                frame->GridDoc->selectRow(row);
                return;
            }
        ADD_FAILURE() << "no register row for " << path.toStdString();
    }
    TPackage *package() { return window->part<PackagePart>()->packageWindow(); }
    QStringList rowsOf(const char *sql) { return queryRows(module->database(Db::MyDoc), sql); }
};

TEST_F(PackageWindow, FromTheRegisterWithTheRealEngine) {
    const QString estimate = saveEstimate();
    TMyDocuments *frame = registerWithRow();
    ASSERT_NE(frame, nullptr);
    child<QAction>(frame, "ToolPackage")->trigger();
    TPackage *w = package();
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(w->isVisible());
    EXPECT_EQ(w->objectName(), "PackageForm");
    EXPECT_EQ(w->windowTitle(), "Пакет документов");
    EXPECT_EQ(w->DateEdit->date(), QDate::currentDate());
    EXPECT_EQ(w->EditDir->text(), QFileInfo(estimate).absolutePath());
    for (QCheckBox *box :
         {w->CheckBoxContract, w->CheckBoxAccount, w->CheckBoxKS2, w->CheckBoxKS3, w->CheckBoxAct})
        EXPECT_TRUE(box->isChecked()) << box->objectName().toStdString();
    EXPECT_TRUE(w->RadioContractDoc->isChecked());
    EXPECT_TRUE(w->RadioAccountXls->isChecked());
    EXPECT_TRUE(w->RadioActXls->isChecked());
    EXPECT_EQ(w->EditNumContract->text(), "9");
    EXPECT_EQ(w->EditNumAccount->text(), "9");
    EXPECT_EQ(w->EditNumAkt->text(), "1");
    EXPECT_EQ(w->EditNumAktWord->text(), "");
    // Unticking a document disables its fields.
    QTest::mouseClick(w->CheckBoxContract, Qt::LeftButton, {}, QPoint(8, w->CheckBoxContract->height() / 2));
    EXPECT_FALSE(w->EditNumContract->isEnabled());
    QTest::mouseClick(w->CheckBoxContract, Qt::LeftButton, {}, QPoint(8, w->CheckBoxContract->height() / 2));
    EXPECT_TRUE(w->EditNumContract->isEnabled());

    const QString out = folder.file("Пакет март");
    dialogs->queueFile(out);
    QTest::mouseClick(w->spdDir, Qt::LeftButton);
    EXPECT_EQ(w->EditDir->text(), out);
    EXPECT_EQ(dialogs->shown().last().caption, "Выбор папки для пакета");
    QTest::mouseClick(w->btnAllPdf, Qt::LeftButton);
    EXPECT_TRUE(w->RadioContractPdf->isChecked() && w->RadioAccountPdf->isChecked() &&
                w->RadioActPdf->isChecked());
    w->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/package_window.png"));

    QSignalSpy made(w, &TPackage::packageMade);
    QTest::mouseClick(w->btnCreate, Qt::LeftButton);
    ASSERT_TRUE(w->running()) << dialogs->lastText().toStdString();
    ASSERT_NE(w->progress(), nullptr);
    EXPECT_EQ(w->progress()->windowTitle(), "Пакет документов");
    EXPECT_TRUE(w->progress()->labelText().startsWith("Создаётся... "))
        << w->progress()->labelText().toStdString();
    EXPECT_TRUE(window->isEnabled()) << "the window is responsive while the package is made";
    ASSERT_TRUE(made.wait(300000));
    EXPECT_EQ(dialogs->lastCaption(), "Сообщаю:") << dialogs->lastText().toStdString();

    const QStringList files = QDir(out).entryList(QDir::Files, QDir::Name);
    const QString day = QDate::currentDate().toString("dd.MM.yyyy");
    EXPECT_EQ(files, (QStringList{"Акт КС-2 № 1 от " + day + ".pdf", "Акт КС-3 № 1 от " + day + ".pdf",
                                  "Акт № 1 от " + day + ".pdf", "Договор № 9 от " + day + ".pdf",
                                  "Счет на оплату № 9 от " + day + ".pdf"}));
    for (const QString &f : files)
        QProcess::execute("pdftoppm",
                          {"-png", "-r", "50", "-singlefile", QDir(out).filePath(f),
                           QDir(VIRN_SCREENSHOT_DIR).filePath("window-" + QFileInfo(f).completeBaseName())});
    EXPECT_EQ(rowsOf("SELECT ext FROM contract"), QStringList{"pdf"});
    EXPECT_EQ(rowsOf("SELECT ext FROM account"), QStringList{"pdf"});
    EXPECT_EQ(rowsOf("SELECT status FROM act ORDER BY status"), (QStringList{"1", "2", "3"}));
    // The register shows the files at once.
    EXPECT_EQ(frame->GridContract->model()->rowCount(), 1);
    EXPECT_EQ(frame->GridAccount->model()->rowCount(), 1);
    EXPECT_EQ(frame->GridAct->model()->rowCount(), 3);
    // The contract's number went into the act data: the estimate has a change to save.
    EXPECT_TRUE(window->document().isChanged());
    window->part<RegisterPart>()->window()->grab().save(
        QStringLiteral(VIRN_SCREENSHOT_DIR "/package_register.png"));
}

TEST_F(PackageWindow, NumbersFollowTheDateInBothOrders) {
    saveEstimate();
    struct Case {
        bool dayFirst;
        const char *numbered;
        const char *word;
    };
    for (const Case &c : {Case{true, "05032026-1", "05032026"}, Case{false, "20260305-1", "20260305"}}) {
        window->settings().setFlag("spdDateNumericSmetaWord", true);
        window->settingsStore()->setText("Param", "RadioButtonFormat1", c.dayFirst ? "1" : "0");
        child<QAction>(window.get(), "MPackage")->trigger();
        TPackage *w = package();
        ASSERT_NE(w, nullptr);
        w->DateEdit->setDate(QDate(2026, 3, 5));
        EXPECT_EQ(w->EditNumContract->text(), c.numbered);
        EXPECT_EQ(w->EditNumAccount->text(), c.numbered);
        EXPECT_EQ(w->EditNumAktWord->text(), c.word);
        EXPECT_EQ(w->EditNumAkt->text(), "1");
        EXPECT_EQ(w->request().actFullNumber(), QString(c.word) + "-1");
        QTest::mouseClick(w->btnCancel, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(package(), nullptr);
    }
    // Without numbering by date the numbers stay as they are.
    window->settings().setFlag("spdDateNumericSmetaWord", false);
    child<QAction>(window.get(), "MPackage")->trigger();
    package()->DateEdit->setDate(QDate(2026, 3, 5));
    EXPECT_EQ(package()->EditNumContract->text(), "9");
}

TEST_F(PackageWindow, AnEstimateNeverSavedIsSavedFirstOrRefused) {
    child<QAction>(window.get(), "MPackage")->trigger();
    TPackage *w = package();
    ASSERT_NE(w, nullptr);
    w->EditDir->setText(folder.file("Пакет"));
    dialogs->queueAnswer(Dialogs::Answer::No);
    QTest::mouseClick(w->btnCreate, Qt::LeftButton);
    EXPECT_FALSE(w->running());
    ASSERT_GE(dialogs->shown().size(), 2);
    EXPECT_EQ(dialogs->shown().at(dialogs->shown().size() - 2).text, "Сохранить файл?");
    EXPECT_TRUE(dialogs->lastText().startsWith("Пакет документов не создан: смета не сохранена."))
        << dialogs->lastText().toStdString();
    EXPECT_TRUE(QDir(folder.file("Пакет")).entryList(QDir::Files).isEmpty());
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM documents"), QStringList{"0"});

    // Agreeing, but cancelling the save dialog, refuses as well.
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    dialogs->queueFile(QString());
    QTest::mouseClick(w->btnCreate, Qt::LeftButton);
    EXPECT_FALSE(w->running());
    EXPECT_TRUE(dialogs->lastText().startsWith("Пакет документов не создан"))
        << dialogs->lastText().toStdString();

    // A folder that cannot be written is named before anything is asked or made.
    dialogs->clear();
    w->EditDir->setText(folder.file("Sm") + "/../IniFile.db/Пакет");
    QTest::mouseClick(w->btnCreate, Qt::LeftButton);
    ASSERT_EQ(dialogs->shown().size(), 1);
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
    EXPECT_TRUE(dialogs->lastText().contains("IniFile.db")) << dialogs->lastText().toStdString();
}

TEST_F(PackageWindow, TheRegisterWritesInvoiceAndContract) {
    saveEstimate();
    TMyDocuments *frame = registerWithRow();
    ASSERT_NE(frame, nullptr);
    child<QAction>(frame, "ToolAccount")->trigger();
    TFAccount *invoice = window->part<InvoicePart>()->invoiceWindow();
    ASSERT_NE(invoice, nullptr);
    EXPECT_TRUE(invoice->isVisible());
    invoice->close();

    child<QAction>(frame, "ToolContract")->trigger();
    TContract *contract = window->part<ContractPart>()->contract();
    ASSERT_NE(contract, nullptr);
    EXPECT_EQ(window->pages()->currentWidget(), contract);
}

} // namespace

// The register's invoice, contract and package act on the row chosen there: its estimate is opened in
// the main window first (another estimate open there is asked about when it has changes).
TEST_F(PackageWindow, TheRegisterActsOnTheChosenRow) {
    const QString bath = saveEstimate("Sm/Ванная.sim", 9);
    window->part<DocumentFilePart>()->CreateNewDoc();
    const QString kitchen = saveEstimate("Sm/Кухня/Кухня.sim", 12);
    TMyDocuments *frame = registerWithRow();
    ASSERT_NE(frame, nullptr);
    ASSERT_EQ(frame->GridDoc->model()->rowCount(), 2);

    struct Case {
        const char *action;
        QString estimate;
    };
    for (const Case &c : {Case{"ToolPackage", bath}, Case{"ToolAccount", kitchen}, Case{"ToolContract", bath},
                          Case{"ToolPackage", kitchen}}) {
        SCOPED_TRACE(c.action);
        chooseRow(frame, c.estimate);
        child<QAction>(frame, c.action)->trigger();
        EXPECT_EQ(QFileInfo(window->document().fileName()), QFileInfo(c.estimate));
        if (QLatin1String(c.action) == QLatin1String("ToolPackage")) {
            TPackage *w = package();
            ASSERT_NE(w, nullptr);
            EXPECT_EQ(w->EditDir->text(), QFileInfo(c.estimate).absolutePath());
            EXPECT_EQ(w->EditNumContract->text(), c.estimate == bath ? "9" : "12");
            QTest::mouseClick(w->btnCancel, Qt::LeftButton);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        } else if (QLatin1String(c.action) == QLatin1String("ToolAccount")) {
            TFAccount *invoice = window->part<InvoicePart>()->invoiceWindow();
            ASSERT_NE(invoice, nullptr);
            EXPECT_TRUE(invoice->isVisible());
            invoice->close();
        } else {
            EXPECT_EQ(window->pages()->currentWidget(), window->part<ContractPart>()->contract());
        }
    }

    // A changed estimate is asked about before the chosen one replaces it; "Отмена" keeps it open.
    edit("Затирка швов");
    chooseRow(frame, bath);
    dialogs->queueAnswer(Dialogs::Answer::Cancel);
    child<QAction>(frame, "ToolAccount")->trigger();
    EXPECT_EQ(dialogs->lastText(), "Сохранить файл?");
    EXPECT_EQ(QFileInfo(window->document().fileName()), QFileInfo(kitchen));
}
