// The contract page in the main window, against the real engine: made from the sample estimate, a word
// made bold, saved as DOCX and PDF and entered in the register; the fields' advance rule; the list of
// placeholders; the preview; a template that cannot be loaded; the question at close.

#include "OfficeFiles.h"

#include "MainWindowFixture.h"
#include "documents/ContractEditor.h"
#include "documents/ContractPart.h"
#include "documents/ContractPlaceholderModel.h"
#include "documents/Contract_Preview_frame.h"
#include "documents/Contract_frame.h"
#include "office/TemplatePackage.h"
#include "storage/SettingsStore.h"

#include "../storage/QStringPrinter.h"
#include "SqlRows.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextCursor>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif

namespace {

class ContractWindow : public MainWindowFixture {
protected:
    // The sample's registers and estimate, the estimate saved once so that the register knows it.
    void openSample() {
        const QString sample = QStringLiteral(VIRN_SOURCE_DIR "/resources/sample/");
        runSql(folder.file(QStringLiteral("Sp/peoplebase.db")), sample + QStringLiteral("people.sql"));
        runSql(folder.file(QStringLiteral("Sp/cashbase.db")), sample + QStringLiteral("cash.sql"));
        const QString document = folder.file(QStringLiteral("Sm/Образец сметы.sim"));
        ASSERT_TRUE(QFile::copy(folder.file(QStringLiteral("Sp/smeta.db")), document));
        runSql(document, sample + QStringLiteral("estimate.sql"));
        ASSERT_TRUE(window->OpenMyFile(document));
        ASSERT_TRUE(window->document().save().ok);
    }
    void runSql(const QString &db, const QString &script) {
        QProcess p;
        p.start(QStringLiteral("sqlite3"),
                {QStringLiteral("-bail"), db, QStringLiteral(".read '%1'").arg(script)});
        ASSERT_TRUE(p.waitForFinished(30000));
        ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    }
    // Runs a command of the page and waits for the document it makes.
    bool waitFor(const std::function<void()> &command, QString *path = nullptr) {
        QSignalSpy done(contract(), &TContract::jobFinished);
        command();
        if (done.isEmpty() && !done.wait(180000))
            return false;
        if (path)
            *path = done.first().at(1).toString();
        return done.first().at(0).toBool();
    }
    TContract *contract() { return window->part<ContractPart>()->contract(); }
    bool showContract() {
        ContractPart *part = window->part<ContractPart>();
        if (!part->contract()) {
            // The first time the page is made by the command itself.
            part->showContract();
            QSignalSpy done(contract(), &TContract::jobFinished);
            return done.wait(180000) && done.first().at(0).toBool();
        }
        return waitFor([part] { part->showContract(); });
    }
    template <typename T> T *field(const QString &name) { return child<T>(contract(), name); }
    QString editorText() { return contract()->editor()->edit()->toPlainText(); }
};

// The runs of word/document.xml of a ".docx" that hold the text, with their properties.
QStringList runsWith(const QString &docx, const QString &text) {
    QByteArray xml;
    EXPECT_TRUE(TemplatePackage::readEntry(docx, QStringLiteral("word/document.xml"), &xml));
    QStringList runs;
    static const QRegularExpression run(QStringLiteral("<w:r>.*?</w:r>|<w:r .*?</w:r>"));
    auto it = run.globalMatch(QString::fromUtf8(xml));
    while (it.hasNext()) {
        const QString r = it.next().captured();
        if (r.contains(text))
            runs << r;
    }
    return runs;
}

TEST_F(ContractWindow, MadeFromTheSampleEditedSavedAsDocxAndPdf) {
    openSample();
    ASSERT_TRUE(showContract()) << dialogs->lastText().toStdString();
    EXPECT_EQ(window->pages()->currentWidget(), contract());
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("Edit6"))->text(), QStringLiteral("274317,84"));
    EXPECT_EQ(field<QSpinBox>(QStringLiteral("SpinEditAvans"))->value(), 35);
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditAvans"))->text(), QStringLiteral("1096"));
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditOstatok"))->text(), QStringLiteral("273221,84"));
    EXPECT_EQ(field<QComboBox>(QStringLiteral("ComboBoxZakaz"))->currentText(),
              QStringLiteral("Кудрявцев Олег Николаевич"));
    EXPECT_TRUE(field<QComboBox>(QStringLiteral("cmbFileContract"))
                    ->currentText()
                    .contains(QStringLiteral("ДОГОВОР НА РЕМОНТ")));
    const QString text = editorText();
    EXPECT_TRUE(text.contains(QStringLiteral("Индивидуальный предприниматель Соболев Денис Андреевич")));
    EXPECT_TRUE(text.contains(QStringLiteral("Кудрявцев Олег Николаевич")));
    EXPECT_TRUE(text.contains(QStringLiteral("«16» Марта 2026г.")));
    EXPECT_TRUE(text.contains(QStringLiteral("274317,84 руб.")));
    EXPECT_FALSE(contract()->hasUnsavedEdits());

    // A word made bold, as the user does it: select, then the tool.
    TRichViewEdit *edit = contract()->editor()->edit();
    QTextCursor c = edit->document()->find(QStringLiteral("неотъемлемой"));
    ASSERT_FALSE(c.isNull());
    edit->setTextCursor(c);
    child<QAction>(contract(), QStringLiteral("spdBold"))->trigger();
    EXPECT_GE(edit->document()->find(QStringLiteral("неотъемлемой")).charFormat().fontWeight(), QFont::Bold);
    EXPECT_TRUE(contract()->hasUnsavedEdits());

    const QString docx = folder.file(QStringLiteral("Вывод/Договор.docx"));
    dialogs->queueFile(docx);
    QString path;
    ASSERT_TRUE(
        waitFor([this] { child<QPushButton>(contract(), QStringLiteral("btnSave"))->click(); }, &path))
        << dialogs->lastText().toStdString();
    EXPECT_EQ(path, docx);
    EXPECT_EQ(dialogs->shown().last().caption, QStringLiteral("Сохранить договор"));
    EXPECT_FALSE(contract()->hasUnsavedEdits());
    const QStringList bold = runsWith(docx, QStringLiteral("неотъемлемой"));
    ASSERT_FALSE(bold.isEmpty());
    EXPECT_TRUE(bold.first().contains(QStringLiteral("<w:b/>"))) << bold.first().toStdString();
    EXPECT_FALSE(runsWith(docx, QStringLiteral("Состав, объём")).first().contains(QStringLiteral("<w:b/>")));
    QByteArray header;
    EXPECT_TRUE(TemplatePackage::readEntry(docx, QStringLiteral("word/header1.xml"), &header) ||
                TemplatePackage::readEntry(docx, QStringLiteral("word/header2.xml"), &header));
    EXPECT_TRUE(QString::fromUtf8(header).contains(QStringLiteral("16.03.2026")))
        << "the template's header, filled";

    const QString pdf = folder.file(QStringLiteral("Вывод/Договор.pdf"));
    dialogs->queueFile(pdf);
    ASSERT_TRUE(
        waitFor([this] { child<QPushButton>(contract(), QStringLiteral("btnPDF"))->click(); }, &path));
    const QString printed = pdfText(pdf).simplified();
    EXPECT_TRUE(
        printed.contains(QStringLiteral("Договор подряда на выполнение ремонтных работ от 16.03.2026")));
    EXPECT_TRUE(printed.contains(QStringLiteral("Кудрявцев Олег Николаевич")));
    EXPECT_GE(pdfPages(pdf), 2);

    // Both are listed under the estimate in the register.
    EXPECT_EQ(queryRows(module->database(Db::MyDoc),
                        QStringLiteral(
                            "SELECT c.ext, c.filename, c.name, c.allsum FROM contract c JOIN documents d "
                            "ON d.id = c.iddoc ORDER BY c.id")),
              QStringList({QStringLiteral("doc|%1|№ 12|274317,84").arg(docx),
                           QStringLiteral("pdf|%1|№ 12|274317,84").arg(pdf)}));

#ifdef VIRN_SCREENSHOT_DIR
    // What the page and the pages of the contract look like, for a person to look at.
    window->resize(1400, 950);
    window->show();
    QTest::qWait(50);
    contract()->grab().save(QStringLiteral(VIRN_SCREENSHOT_DIR "/contract-window.png"));
    QProcess::execute(QStringLiteral("pdftoppm"),
                      {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("60"), pdf,
                       QStringLiteral(VIRN_SCREENSHOT_DIR "/contract-page")});
#endif
}

TEST_F(ContractWindow, FieldsListAndPreview) {
    openSample();
    ASSERT_TRUE(showContract());
    // The advance follows the total and the percentage; the remainder follows the advance.
    field<QLineEdit>(QStringLiteral("Edit6"))->setText(QStringLiteral("35271,43"));
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditAvans"))->text(), QStringLiteral("12500"));
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditOstatok"))->text(), QStringLiteral("22771,43"));
    field<QSpinBox>(QStringLiteral("SpinEditAvans"))->setValue(50);
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditAvans"))->text(), QStringLiteral("1017"));
    EXPECT_EQ(window->settingsStore()->text(QStringLiteral("Param"), QStringLiteral("SpinEditAvans")),
              QStringLiteral("50"));
    field<QLineEdit>(QStringLiteral("EditAvans"))->setText(QStringLiteral("10000"));
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditOstatok"))->text(), QStringLiteral("25271,43"));
    field<QLineEdit>(QStringLiteral("Edit6"))->setText(QStringLiteral("сумма"));
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditAvans"))->text(), QString());
    EXPECT_EQ(field<QLineEdit>(QStringLiteral("EditOstatok"))->text(), QString());
    // Filled again with amounts that are not numbers: the amount placeholders stay.
    ASSERT_TRUE(waitFor([this] { contract()->CreateContract(); }));
    EXPECT_TRUE(editorText().contains(QStringLiteral("[сумма цифрами]")));
    EXPECT_TRUE(editorText().contains(QStringLiteral("[аванс прописью]")));

    // The placeholders: three groups, a double click puts one into the text.
    auto *list = field<QTableView>(QStringLiteral("ListFields"));
    const int all = list->model()->rowCount();
    child<QPushButton>(contract(), QStringLiteral("btnPodryadFields"))->click();
    EXPECT_EQ(list->model()->rowCount(), 14);
    child<QPushButton>(contract(), QStringLiteral("btnZakazFields"))->click();
    EXPECT_EQ(list->model()->rowCount(), 14);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), QStringLiteral("[заказчик]"));
    child<QPushButton>(contract(), QStringLiteral("btnAllFields"))->click();
    EXPECT_EQ(list->model()->rowCount(), all);
    contract()->editor()->edit()->moveCursor(QTextCursor::Start);
    const QModelIndex customer = list->model()->index(25, 0);
    ASSERT_EQ(customer.data().toString(), QStringLiteral("[заказчик]"));
    emit list->doubleClicked(customer);
    EXPECT_TRUE(editorText().startsWith(QStringLiteral("[заказчик]")));

    // The preview shows the contract as printed, edits included.
    ASSERT_TRUE(waitFor([this] { child<QPushButton>(contract(), QStringLiteral("btnPreview"))->click(); }));
    auto *preview = child<TContract_Preview>(window.get(), QStringLiteral("Сontract_Preview"));
    ASSERT_NE(preview, nullptr);
    EXPECT_TRUE(preview->isVisible());
    EXPECT_GE(preview->pageCount(), 2);
    EXPECT_TRUE(pdfText(preview->pdfPath())
                    .simplified()
                    .startsWith(QStringLiteral(
                        "Договор подряда на выполнение ремонтных работ от 16.03.2026 [заказчик]")));
    preview->close();

    // Unsaved edits are asked about at close; "No" lets the window go.
    dialogs->queueAnswer(Dialogs::Answer::Cancel);
    EXPECT_FALSE(window->part<ContractPart>()->settleBeforeClose());
    dialogs->queueAnswer(Dialogs::Answer::No);
    EXPECT_TRUE(window->part<ContractPart>()->settleBeforeClose());
    EXPECT_EQ(dialogs->lastText(), QStringLiteral("Договор изменён и не сохранён. Сохранить его?"));
}

TEST_F(ContractWindow, ATemplateThatCannotBeLoadedLeavesTheEditorEmpty) {
    openSample();
    ASSERT_TRUE(showContract());
    const QString bad = folder.file(QStringLiteral("Sh/испорчен.docx"));
    QFile f(bad);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray("PK\x03\x04") + QByteArray(2000, 'z'));
    f.close();
    dialogs->queueFile(bad);
    EXPECT_FALSE(
        waitFor([this] { child<QPushButton>(contract(), QStringLiteral("btnLoadShablon"))->click(); }));
    EXPECT_EQ(dialogs->lastCaption(), QStringLiteral("Ошибка - шаблон не загружен."));
    EXPECT_EQ(dialogs->lastText(),
              QStringLiteral("Откройте договор во внешнем редакторе, пересохраните его \n"
                             "с расширением .rtf и привяжите файл с новым расширением."));
    EXPECT_TRUE(editorText().isEmpty());
    EXPECT_NE(contract()->templatePath(), bad) << "the template in force stays";

    // An RTF template is taken: shown as it is, then filled; its path is kept in the settings.
    const QString rtf = folder.file(QStringLiteral("Sh/Короткий договор.rtf"));
    QFile r(rtf);
    ASSERT_TRUE(r.open(QIODevice::WriteOnly));
    r.write("{\\rtf1\\ansi\\ansicpg1251 \\b [\\'e7\\'e0\\'ea\\'e0\\'e7\\'f7\\'e8\\'ea]\\b0 \\par "
            "[\\'f1\\'f3\\'ec\\'ec\\'e0 \\'ef\\'f0\\'ee\\'ef\\'e8\\'f1\\'fc\\'fe]\\par}");
    r.close();
    dialogs->queueFile(rtf);
    ASSERT_TRUE(
        waitFor([this] { child<QPushButton>(contract(), QStringLiteral("btnLoadShablon"))->click(); }));
    EXPECT_EQ(editorText().trimmed(), QStringLiteral("[заказчик]\n[сумма прописью]"));
    EXPECT_EQ(window->settingsStore()->text(QStringLiteral("Contract"), QStringLiteral("Path")), rtf);
    EXPECT_EQ(field<QComboBox>(QStringLiteral("cmbFileContract"))->currentText(),
              QStringLiteral("Короткий договор.rtf"));
    ASSERT_TRUE(waitFor([this] { contract()->CreateContract(); }));
    EXPECT_TRUE(
        editorText().startsWith(QStringLiteral("Кудрявцев Олег Николаевич\nДвести семьдесят четыре тысячи")))
        << editorText().toStdString();
}

} // namespace
