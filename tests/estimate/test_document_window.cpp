// The main window's file commands: save, save as, open, drafts, recent list, autosave, refusals.

#include "MainWindowFixture.h"
#include "SqlRows.h"
#include "estimate/Autosave.h"

#include "Widgets.h"
#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

class DocumentWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        child<QAction>(window.get(), QStringLiteral("CheckBossDir"))->setChecked(false);
    }
    void edit(const QString &text = "Окраска стен") { MainWindowFixture::edit(text); }
    QString firstName() const {
        return (&window->document().grid())->cell(EstimateGrid::kFixedRows, EstimateCol::Name);
    }
    QString tab() const {
        return child<QTabWidget>(window.get(), QStringLiteral("PageControlDoc"))->tabText(0);
    }
};

TEST_F(DocumentWindowTest, CancelInTheSaveDialogLeavesTheDocumentUnsaved) {
    edit();
    dialogs->queueFile(QString());
    EXPECT_FALSE(window->spdSaveClick());
    EXPECT_TRUE(child<QAction>(window.get(), QStringLiteral("spdSave"))->isEnabled());
    EXPECT_TRUE(window->isChanged());
    EXPECT_EQ(window->document().fileName(), QString());
    EXPECT_EQ(tab(), "Новый документ");
    EXPECT_EQ(dialogs->shown().last().kind, "saveFile");
    EXPECT_EQ(dialogs->shown().last().text, "Файлы Вирн-Смета 7-8 (*.sim)");
}

TEST_F(DocumentWindowTest, SaveAsRegistersAndListsTheFileAndOpenBringsItBack) {
    edit();
    const QString path = folder.file("Sm/Кухня");
    dialogs->queueFile(path); // typed without the extension
    ASSERT_TRUE(window->spdSaveClick());
    const QString saved = path + ".sim";
    EXPECT_EQ(window->document().fileName(), saved);
    EXPECT_TRUE(QFile::exists(saved));
    EXPECT_FALSE(child<QAction>(window.get(), QStringLiteral("spdSave"))->isEnabled());
    EXPECT_FALSE(child<QAction>(window.get(), QStringLiteral("МSaveFile"))->isEnabled());
    EXPECT_EQ(tab(), "Кухня.sim");
    EXPECT_EQ(window->document().xlsFileName(), folder.file("Sm/Кухня.xls"));
    ASSERT_FALSE(child<QMenu>(window.get(), QStringLiteral("MLastDoc"))->actions().isEmpty());
    EXPECT_EQ(child<QMenu>(window.get(), QStringLiteral("MLastDoc"))->actions().first()->data().toString(),
              saved);
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM documents"), 1);

    // A second save asks nothing and updates the same register row.
    edit("Окраска потолка");
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM documents"), 1);
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM LastDoc"), 1);

    window->CreateNewDoc();
    EXPECT_EQ(firstName(), QString());
    ASSERT_TRUE(window->OpenMyFile(saved));
    EXPECT_EQ(firstName(), "Окраска потолка");
    EXPECT_FALSE(window->isChanged());
    EXPECT_FALSE(window->document().isDraft());
    EXPECT_EQ(tab(), "Кухня.sim");
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM LastDoc"), 1);
}

TEST_F(DocumentWindowTest, AFileThatIsNotADocumentLeavesTheEditsAndTheChangedFlag) {
    edit("Несохранённая правка");
    const QString junk = folder.file("Sm/письмо.sim");
    QFile f(junk);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("Здравствуйте! Высылаю смету во вложении. Это письмо, а не смета.");
    f.close();
    // Through the tool button: the file is chosen, the unsaved edit is not saved ("No"), the open fails.
    dialogs->queueFile(junk);
    dialogs->queueAnswer(Dialogs::Answer::No);
    child<QAction>(window.get(), QStringLiteral("spdOpen"))->trigger();
    ASSERT_GE(dialogs->shown().size(), 3);
    EXPECT_EQ(dialogs->shown().at(0).kind, "openFile");
    EXPECT_TRUE(dialogs->shown().at(0).text.startsWith("Файлы Вирн-Смета 6-8 (*.sim,*.sme)"));
    EXPECT_EQ(dialogs->shown().at(1).text, "Сохранить файл?");
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
    EXPECT_TRUE(dialogs->lastText().contains(QDir::toNativeSeparators(junk)))
        << dialogs->lastText().toStdString();
    EXPECT_EQ(firstName(), "Несохранённая правка");
    EXPECT_TRUE(window->isChanged());
    EXPECT_EQ(window->document().fileName(), QString());
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM LastDoc"), 0);

    EXPECT_FALSE(window->OpenMyFile(folder.file("Sm/нет такого.sim")));
    EXPECT_TRUE(dialogs->lastText().contains("не найден"));
    EXPECT_TRUE(window->isChanged());
}

TEST_F(DocumentWindowTest, AFailedSaveKeepsTheChangesAndTheFormerName) {
    edit();
    dialogs->queueFile(folder.file("Удалённая папка/Смета.sim"));
    EXPECT_FALSE(window->spdSaveClick());
    EXPECT_TRUE(dialogs->lastText().contains("Смета.sim")) << dialogs->lastText().toStdString();
    EXPECT_TRUE(window->isChanged());
    EXPECT_EQ(window->document().fileName(), QString());
    EXPECT_EQ(firstName(), "Окраска стен");
    // Nothing was registered for the file that was not written.
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM documents"), 0);
    EXPECT_EQ(count(Db::Smeta, "SELECT COUNT(*) FROM mydoc"), 0);
}

TEST_F(DocumentWindowTest, ANewDraftIsSavedToDraftsAndStaysADraft) {
    window->part<DocumentFilePart>()->spdNewDdaftClick();
    EXPECT_EQ(tab(), "Новый черновик");
    EXPECT_TRUE(window->document().isDraft());
    edit();
    const QString path = folder.file("Sm/Drafts/Черновик 1.sim");
    dialogs->queueFile(path);
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM drafts"), 1);
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM documents"), 0);

    window->CreateNewDoc();
    EXPECT_FALSE(window->document().isDraft());
    ASSERT_TRUE(window->OpenMyFile(path));
    EXPECT_TRUE(window->document().isDraft());
    edit("Другая работа");
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_EQ(count(Db::MyDoc, "SELECT COUNT(*) FROM drafts"), 1);
}

TEST_F(DocumentWindowTest, AnEditStartsAutosaveAndTheTickCopiesTheDocument) {
    child<QAction>(window.get(), QStringLiteral("CheckBoxAutosave"))->setChecked(true);
    EXPECT_FALSE((&window->document().autosave())->TimerAutosave->isActive());
    edit("Работа для автосохранения");
    EXPECT_TRUE((&window->document().autosave())->TimerAutosave->isActive());
    EXPECT_EQ((&window->document().autosave())->TimerAutosave->interval(), 180000);
    window->document().autosaveTick();
    (&window->document().autosave())->waitForCopy();
    const QStringList copies = QDir(folder.file("Sm/Autosave")).entryList({"*.sim"}, QDir::Files);
    ASSERT_EQ(copies.size(), 1);
    EXPECT_TRUE(QRegularExpression("^\\d{4}-\\d\\d-\\d\\d  \\d\\d\\.\\d\\d Новый документ( №\\S+)?\\.sim$")
                    .match(copies.first())
                    .hasMatch())
        << copies.first().toStdString();
    // The copy holds the grid as it was at the tick; the document itself is still unsaved.
    EXPECT_EQ(
        DatabaseFile(folder.file("Sm/Autosave/" + copies.first())).rows("SELECT nameras FROM smeta").value(0),
        "Работа для автосохранения");
    EXPECT_TRUE(window->isChanged());

    // The removal of old copies follows the settings.
    for (const char *extra : {"Sm/Autosave/2020-01-01  10.00 a.sim", "Sm/Autosave/2020-01-02  10.00 b.sim"}) {
        QFile f(folder.file(QString::fromUtf8(extra)));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    window->settings().set("AutosaveKeepDays", "3650");
    window->settings().set("AutosaveMaxCopies", "2");
    (&window->document().autosave())->TimerDelAutosaveTimer->start(1);
    QTest::qWait(100);
    EXPECT_EQ(QDir(folder.file("Sm/Autosave")).entryList({"*.sim"}, QDir::Files).size(), 2);

    // A save stops the timer; with the option off an edit does not start it.
    dialogs->queueFile(folder.file("Sm/a.sim"));
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_FALSE((&window->document().autosave())->TimerAutosave->isActive());
    child<QAction>(window.get(), QStringLiteral("CheckBoxAutosave"))->setChecked(false);
    edit("ещё");
    EXPECT_FALSE((&window->document().autosave())->TimerAutosave->isActive());
}

TEST_F(DocumentWindowTest, ADocumentOpenInAnotherCopyIsOpenedOnlyAfterTheWarning) {
    edit();
    const QString path = folder.file("Sm/Общая.sim");
    dialogs->queueFile(path);
    ASSERT_TRUE(window->spdSaveClick());
    window->CreateNewDoc();

    QProcess other;
    other.start(QStringLiteral(DOCFILE_HELPER), {"lock", path});
    ASSERT_TRUE(other.waitForReadyRead(10000));
    dialogs->queueAnswer(Dialogs::Answer::No);
    EXPECT_FALSE(window->OpenMyFile(path));
    EXPECT_EQ(dialogs->shown().last().kind, "ask");
    EXPECT_TRUE(dialogs->lastText().contains("уже открыт")) << dialogs->lastText().toStdString();
    EXPECT_EQ(window->document().fileName(), QString());
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    EXPECT_TRUE(window->OpenMyFile(path));
    EXPECT_EQ(firstName(), "Окраска стен");
    other.kill();
    other.waitForFinished();
}

TEST_F(DocumentWindowTest, RecentMenuOpensAndStartUpLoadsTheLastDocument) {
    QStringList paths;
    for (const char *name : {"Sm/Первая.sim", "Sm/Вторая & третья.sim"}) {
        window->CreateNewDoc();
        edit(QString::fromUtf8(name));
        paths << folder.file(QString::fromUtf8(name));
        dialogs->queueFile(paths.last());
        ASSERT_TRUE(window->spdSaveClick());
    }
    const auto items = child<QMenu>(window.get(), QStringLiteral("MLastDoc"))->actions();
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items.at(0)->data().toString(), paths.at(1)); // newest first
    EXPECT_TRUE(items.at(0)->text().contains("&&")) << items.at(0)->text().toStdString();
    items.at(1)->trigger();
    EXPECT_EQ(window->document().fileName(), paths.at(0));
    EXPECT_EQ(child<QMenu>(window.get(), QStringLiteral("MLastDoc"))->actions().first()->data().toString(),
              paths.at(0));

    // A new window with the start-up option opens the newest one.
    child<QAction>(window.get(), QStringLiteral("CheckBoxLoadLastDoc"))->setChecked(true);
    ASSERT_TRUE(window->FormCloseQuery());
    window.reset();
    module.reset();
    window = std::make_unique<TForm1>(QStringList{});
    module = std::make_unique<TModuleSQL>(window->dataFolder());
    window->attachModule(module.get());
    window->FormShow();
    EXPECT_EQ(window->document().fileName(), paths.at(0));
    EXPECT_EQ(firstName(), "Sm/Первая.sim");
}

TEST_F(DocumentWindowTest, TheCustomerNamesTheFolderTheRegisterRowAndTheCounter) {
    child<QAction>(window.get(), QStringLiteral("CheckBossDir"))->setChecked(true);
    window->document().setHeader(EstimateHeader::fromParameters({{"Customer", "ООО `Ромашка`"},
                                                                 {"Object", "Кухня"},
                                                                 {"NumericSmeta", "7"},
                                                                 {"DateSmeta", "05.02.2025"}},
                                                                window->document().header()));
    edit();
    const QString path = folder.file("Sm/Смета Ромашка.sim");
    dialogs->queueFile(path);
    ASSERT_TRUE(window->spdSaveClick());
    // The per-customer folder was made for the dialog to start in.
    EXPECT_TRUE(
        QDir(folder.file("Sm")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).join("|").contains("Ромашка"))
        << QDir(folder.file("Sm")).entryList(QDir::Dirs).join("|").toStdString();
    QSqlQuery q(module->database(Db::MyDoc));
    ASSERT_TRUE(q.exec("SELECT client, object, data, date_compare, month, year, name FROM documents") &&
                q.next());
    EXPECT_EQ(q.value(0).toString(), "ООО `Ромашка`");
    EXPECT_EQ(q.value(1).toString(), "Кухня");
    EXPECT_EQ(q.value(2).toString(), "05.02.2025");
    EXPECT_EQ(q.value(3).toLongLong(), 20250205000000LL);
    EXPECT_EQ(q.value(4).toString(), "2");
    EXPECT_EQ(q.value(5).toString(), "2025");
    EXPECT_EQ(q.value(6).toString(), "Смета Ромашка");
    edit("ещё");
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_EQ(
        count(Db::People, "SELECT COUNT(*) FROM NumDoc WHERE Client='ООО `Ромашка`' AND Object='Кухня'"), 1);
}

TEST_F(DocumentWindowTest, SavingOverAReadOnlyFileAsksFirst) {
    edit();
    const QString path = folder.file("Sm/Только чтение.sim");
    dialogs->queueFile(path);
    ASSERT_TRUE(window->spdSaveClick());
    const QByteArray saved = [&] {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther));

    // Cancel: nothing is written, the edit stays.
    edit("Окраска потолка");
    dialogs->queueAnswer(Dialogs::Answer::Cancel);
    EXPECT_FALSE(window->spdSaveClick());
    EXPECT_TRUE(dialogs->lastText().contains("доступен только для чтения")) << dialogs->lastText().toStdString();
    EXPECT_TRUE(window->isChanged());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), saved);
    f.close();

    // No: saved under another name, the read-only file as it was.
    const QString other = folder.file("Sm/Копия.sim");
    dialogs->queueAnswer(Dialogs::Answer::No);
    dialogs->queueFile(other);
    EXPECT_TRUE(window->spdSaveClick());
    EXPECT_EQ(window->document().fileName(), other);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), saved);
    f.close();

    // Yes: replaced, and still read-only.
    window->OpenMyFile(path);
    edit("Окраска дверей");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    EXPECT_TRUE(window->spdSaveClick());
    EXPECT_FALSE(window->isChanged());
    EXPECT_FALSE(QFileInfo(path).permissions() & QFileDevice::WriteOwner);
    window->CreateNewDoc();
    window->OpenMyFile(path);
    EXPECT_EQ(firstName(), "Окраска дверей");
}

// A program killed with changes in its working copy: the next start offers them, and they come
// back as the unsaved changes of their document; declined, they are kept among the autosave copies.
TEST_F(DocumentWindowTest, ACrashedProgramsChangesAreOfferedAtTheNextStart) {
    for (const Dialogs::Answer answer : {Dialogs::Answer::Yes, Dialogs::Answer::No}) {
        SCOPED_TRACE(answer == Dialogs::Answer::Yes ? "recovered" : "declined");
        window.reset();
        module.reset();
        const QString document = folder.file("Sm/Ремонт.sim");
        QProcess crashed;
        crashed.start(QStringLiteral(DOCFILE_HELPER), {"hold-copy", folder.path(), document});
        ASSERT_TRUE(crashed.waitForReadyRead(20000)) << crashed.readAllStandardError().toStdString();
        crashed.kill();
        crashed.waitForFinished();

        dialogs->clear();
        dialogs->queueAnswer(answer);
        window = std::make_unique<TForm1>(QStringList{});
        module = std::make_unique<TModuleSQL>(window->dataFolder());
        window->attachModule(module.get());
        window->FormShow();
        ASSERT_FALSE(dialogs->shown().isEmpty());
        EXPECT_EQ(dialogs->shown().first().caption, "Восстановление");
        EXPECT_TRUE(dialogs->shown().first().text.contains("Ремонт.sim")) << dialogs->shown().first().text.toStdString();
        const QStringList kept =
            QDir(folder.file("Sm/Autosave")).entryList({QStringLiteral("*Восстановление Ремонт.sim")}, QDir::Files);
        if (answer == Dialogs::Answer::Yes) {
            EXPECT_EQ(firstName(), "Несохранённая работа");
            EXPECT_EQ(window->document().fileName(), document);
            EXPECT_TRUE(window->isChanged());
            EXPECT_TRUE(kept.isEmpty());
        } else {
            EXPECT_EQ(firstName(), "");
            EXPECT_EQ(window->document().fileName(), QString());
            ASSERT_EQ(kept.size(), 1);
            DatabaseFile copy(folder.file("Sm/Autosave/" + kept.first()));
            EXPECT_EQ(copy.rows("SELECT nameras FROM smeta"), QStringList{"Несохранённая работа"});
        }
        // Offered once: nothing is left to offer again.
        EXPECT_TRUE(QDir(folder.file("Temp")).entryList({QStringLiteral("recovery-*")}, QDir::Files).isEmpty());
    }
}

} // namespace
