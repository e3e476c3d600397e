// The main window's life: start in an empty folder, the changed flag, the close question.

#include "MainWindowFixture.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QTabWidget>

namespace {

using MainWindowTest = MainWindowFixture;

TEST_F(MainWindowTest, StartInAnEmptyFolderCreatesTheTreeAndTheWorkingDatabase) {
    EXPECT_EQ(window->dataFolder(), QDir::cleanPath(folder.path()));
    for (const char *sub : {"Sh", "Sp", "Sm", "Sm/Autosave", "Temp"})
        EXPECT_TRUE(QDir(folder.path()).exists(QString::fromUtf8(sub))) << sub;
    EXPECT_TRUE(QFile::exists(folder.file("IniFile.db")));
    QSqlQuery q(module->database(Db::Smeta));
    q.exec("SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name NOT LIKE 'sqlite_%'");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), tableNames(Db::Smeta).size()) << "every table of the catalogue";
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Вирн-Смета"));
    EXPECT_EQ(child<QTabWidget>(window.get(), QStringLiteral("PageControlDoc"))->tabText(0),
              QStringLiteral("Новый документ"));
    EXPECT_EQ(child<QTabWidget>(window.get(), QStringLiteral("PageControlDoc"))->tabText(1),
              QStringLiteral("Для бригады"));
    EXPECT_EQ((&window->document().grid())->gridRowCount(), 3);
    EXPECT_FALSE(window->isChanged());
}

TEST_F(MainWindowTest, AnEditEnablesSave) {
    EXPECT_FALSE(child<QAction>(window.get(), QStringLiteral("spdSave"))->isEnabled());
    edit();
    EXPECT_TRUE(child<QAction>(window.get(), QStringLiteral("spdSave"))->isEnabled());
    EXPECT_TRUE(child<QAction>(window.get(), QStringLiteral("МSaveFile"))->isEnabled());
    EXPECT_EQ(child<QAction>(window.get(), QStringLiteral("МSaveFile"))->objectName(),
              QStringLiteral("МSaveFile"));
}

TEST_F(MainWindowTest, ClosingWithoutChangesAsksNothing) {
    EXPECT_TRUE(window->FormCloseQuery());
    EXPECT_TRUE(dialogs->shown().isEmpty());
}

TEST_F(MainWindowTest, CancelKeepsTheWindowAndTheEdit) {
    edit();
    dialogs->queueAnswer(Dialogs::Answer::Cancel);
    EXPECT_FALSE(window->FormCloseQuery());
    ASSERT_EQ(dialogs->shown().size(), 1);
    EXPECT_EQ(dialogs->shown().first().caption, QStringLiteral("Данные изменялись"));
    EXPECT_EQ(dialogs->shown().first().text, QStringLiteral("Сохранить файл?"));
    EXPECT_TRUE(window->isChanged());
    EXPECT_EQ((&window->document().grid())->cell(2, EstimateCol::Name), QStringLiteral("Окраска"));
}

TEST_F(MainWindowTest, NoClosesWithoutSavingAndWritesSettings) {
    edit();
    window->settings().set("LastInfo", "проверка");
    dialogs->queueAnswer(Dialogs::Answer::No);
    EXPECT_TRUE(window->FormCloseQuery());
    EXPECT_TRUE(QDir(folder.file("Sm")).entryList({"*.sim"}).isEmpty());
    QSqlDatabase ini = QSqlDatabase::addDatabase("QSQLITE", "ini-check");
    ini.setDatabaseName(folder.file("IniFile.db"));
    ASSERT_TRUE(ini.open());
    QSqlQuery q(ini);
    q.exec("SELECT value FROM settings WHERE section='View' AND key='LastInfo'");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), QStringLiteral("проверка"));
    ini.close();
}

TEST_F(MainWindowTest, YesSavesBeforeClosingAndCancelInTheSaveDialogKeepsTheWindow) {
    edit();
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    dialogs->queueFile(QString()); // the user cancels the save dialog
    EXPECT_FALSE(window->FormCloseQuery());
    EXPECT_TRUE(window->isChanged());

    const QString target = folder.file("Sm/Ремонт.sim");
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    dialogs->queueFile(target);
    EXPECT_TRUE(window->FormCloseQuery());
    ASSERT_TRUE(QFile::exists(target));
    QSqlDatabase doc = QSqlDatabase::addDatabase("QSQLITE", "doc-check");
    doc.setDatabaseName(target);
    ASSERT_TRUE(doc.open());
    QSqlQuery q(doc);
    q.exec("SELECT nameras FROM smeta");
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toString(), QStringLiteral("Окраска"));
    doc.close();
}

} // namespace
