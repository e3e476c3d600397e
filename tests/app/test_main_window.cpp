// The main window's life: start in an empty folder, the changed flag, the close question.

#include "MainWindowFixture.h"
#include "app/About.h"
#include "app/Startup.h"
#include "customers/ZakazAndObject_frame.h"
#include "estimate/HeaderPanel.h"
#include "ui/WidgetDialogs.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>

namespace {

// These tests run on a screen of 1280 × 720, the smallest the program is made for (the offscreen
// platform reads its screens from a file named before the application starts).
const bool kSmallScreen = [] {
    const QString config =
        QDir::temp().filePath(QStringLiteral("virn-screen-%1.json").arg(QCoreApplication::applicationPid()));
    QFile f(config);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    f.write(R"({"screens": [{"name": "small", "x": 0, "y": 0, "width": 1280, "height": 720,
                "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    f.close();
    qputenv("QT_QPA_PLATFORM", QByteArrayLiteral("offscreen:configfile=") + config.toLocal8Bit());
    return true;
}();

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
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Новый документ[*] — Вирн-Смета"));
    EXPECT_FALSE(window->isWindowModified());
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

// Every child widget of `root` that is shown and lies partly outside `root` (cut off).
QStringList cutOff(QWidget *root) {
    QStringList out;
    for (QWidget *w : root->findChildren<QWidget *>()) {
        if (!w->isVisible() || w->isWindow() || w->width() <= 1)
            continue;
        // Widgets inside a scrolled area are meant to be partly out of sight.
        bool scrolled = false;
        for (QWidget *p = w->parentWidget(); p && p != root && !scrolled; p = p->parentWidget())
            scrolled = p->objectName() == QLatin1String("qt_scrollarea_viewport") || p->inherits("QTabBar") ||
                       p->inherits("QToolBar") || p->inherits("QMenuBar");
        if (scrolled || w->inherits("QScrollBar"))
            continue;
        const QRect r(w->mapTo(root, QPoint(0, 0)), w->size());
        if (!root->rect().contains(r))
            out << QStringLiteral("%1 %2").arg(QString::fromLatin1(w->metaObject()->className()),
                                               w->objectName());
    }
    return out;
}

TEST_F(MainWindowTest, TheWindowFitsTheScreenDownTo1280x720AndComesBackWhereItWasLeft) {
    ASSERT_TRUE(kSmallScreen);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    ASSERT_EQ(screen.size(), QSize(1280, 720));
    // The first start fills the screen.
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    EXPECT_TRUE(window->isMaximized());
    EXPECT_TRUE(screen.contains(window->frameGeometry())) << window->frameGeometry().width();
    // The layout asks no more than the screen has (less a task bar and a title bar).
    EXPECT_LE(window->minimumSizeHint().width(), 1280);
    EXPECT_LE(window->minimumSizeHint().height(), 720 - 80);
    // Smaller still: every field visible, the header in three lines.
    window->showNormal();
    window->setGeometry(0, 0, 1280, 720 - 80);
    QTest::qWait(50);
    EXPECT_EQ(window->size(), QSize(1280, 720 - 80));
    EXPECT_EQ(cutOff(window.get()), QStringList());
    auto *header = window->findChild<EstimateHeaderPanel *>();
    ASSERT_NE(header, nullptr);
    EXPECT_TRUE(header->isNarrow());
    EXPECT_TRUE(child<QLineEdit>(window.get(), "Edit5")->isVisible());
    // The estimate's work columns up to the amount are in sight without scrolling sideways; the name
    // gives way but stays readable.
    auto *grid = child<QTableView>(window.get(), "StringGridDoc");
    const QRect sum = grid->visualRect(grid->model()->index(0, EstimateCol::Sum));
    EXPECT_TRUE(grid->viewport()->rect().contains(sum)) << sum.right() << " > " << grid->viewport()->width();
    EXPECT_GE(grid->columnWidth(EstimateCol::Name), 220);
    // Wide again: two lines.
    window->setGeometry(0, 0, 1920, 1000);
    QTest::qWait(50);
    EXPECT_FALSE(header->isNarrow());
    EXPECT_FALSE(grid->horizontalScrollBar()->isVisible()) << "all the columns fit a wide window";
    EXPECT_EQ(cutOff(window.get()), QStringList());

    // Where the user leaves the window is where it opens next time.
    const QRect left(40, 30, 1100, 620);
    window->setGeometry(left);
    QTest::qWait(50);
    ASSERT_TRUE(window->FormCloseQuery());
    window.reset();
    window = std::make_unique<TForm1>(QStringList{});
    window->attachModule(module.get());
    window->FormShow();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    EXPECT_FALSE(window->isMaximized());
    EXPECT_EQ(window->geometry(), left);
}

TEST(Startup, QtsOwnDialogsSpeakRussian) {
    ensureApplication();
    // What the program does before its first window.
    ASSERT_TRUE(prepareApplication(*qobject_cast<QApplication *>(QCoreApplication::instance())));
    QDialogButtonBox box(QDialogButtonBox::Cancel | QDialogButtonBox::Save | QDialogButtonBox::Open |
                         QDialogButtonBox::Close);
    EXPECT_EQ(box.button(QDialogButtonBox::Cancel)->text(), "Отмена");
    EXPECT_EQ(box.button(QDialogButtonBox::Save)->text(), "Сохранить");
    EXPECT_EQ(box.button(QDialogButtonBox::Open)->text(), "Открыть");
    EXPECT_EQ(box.button(QDialogButtonBox::Close)->text(), "Закрыть");
    // The file dialog's overwrite question and the print dialog.
    EXPECT_TRUE(QCoreApplication::translate("QFileDialog", "%1 already exists.\nDo you want to replace it?")
                    .startsWith("%1 уже существует"));
    EXPECT_EQ(QCoreApplication::translate("QPrintDialog", "Print"), "Печать");
    EXPECT_EQ(QLocale().decimalPoint(), ",");
}

TEST_F(MainWindowTest, AboutShowsTheVersionAndTheBuildDay) {
    child<QAction>(window.get(), QStringLiteral("MAbout"))->trigger();
    ASSERT_EQ(dialogs->shown().size(), 1);
    EXPECT_EQ(dialogs->lastCaption(), "О программе");
    const QDate built = About::buildDate();
    ASSERT_TRUE(built.isValid());
    EXPECT_LE(built, QDate::currentDate());
    EXPECT_FALSE(About::version().isEmpty());
    EXPECT_TRUE(dialogs->lastText().contains(
        QStringLiteral("Версия %1, сборка от %2").arg(About::version(), built.toString("dd.MM.yyyy"))))
        << dialogs->lastText().toStdString();
}

// The real dialogs, answered by a timer: the box is looked at while it is shown, then closed.
class RealDialogsTest : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        previous = installDialogs(std::make_unique<WidgetDialogs>());
        ::dialogs().setParentWidget(window.get());
    }
    void TearDown() override {
        installDialogs(std::move(previous));
        MainWindowTest::TearDown();
    }
    // Runs look() on the modal box as soon as it is up, then closes it.
    void whenShown(std::function<void(QWidget *)> look) {
        QTimer::singleShot(50, [look] {
            QWidget *box = QApplication::activeModalWidget();
            look(box);
            if (auto *dialog = qobject_cast<QDialog *>(box))
                dialog->reject();
        });
    }
    std::unique_ptr<Dialogs> previous;
};

TEST_F(RealDialogsTest, AMessageBoxBelongsToTheWindowTheUserWorksIn) {
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    window->part<CustomersPart>()->MZakazAndObjectClick();
    auto *customers = window->findChild<TZakazAndObject *>();
    ASSERT_NE(customers, nullptr);
    // A secondary window is a window of its own, owned by the main window: it stays above it.
    EXPECT_TRUE(customers->isWindow());
    EXPECT_EQ(customers->parentWidget(), window.get());
    customers->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([customers] { return QApplication::activeWindow() == customers; }));
    QWidget *owner = nullptr;
    whenShown([&owner](QWidget *box) { owner = box ? box->parentWidget() : nullptr; });
    ::dialogs().tell(Captions::info, "Проверка");
    EXPECT_EQ(owner, customers)
        << "the box belongs to the customers' window, not the main window; it went to "
        << (owner ? owner->metaObject()->className() : "nobody") << " "
        << (owner ? owner->objectName().toStdString() : "");

    // With the main window active the box is the main window's.
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return QApplication::activeWindow() == window.get(); }));
    whenShown([&owner](QWidget *box) { owner = box ? box->parentWidget() : nullptr; });
    ::dialogs().tell(Captions::info, "Проверка");
    EXPECT_EQ(owner, window.get());
    customers->close();
}

TEST_F(RealDialogsTest, TheInputBoxIsWideEnoughForItsTexts) {
    int width = 0, labelNeeds = 0, labelHas = 0;
    QString cancel;
    whenShown([&](QWidget *box) {
        auto *input = qobject_cast<QInputDialog *>(box);
        ASSERT_NE(input, nullptr);
        width = input->width();
        const auto *label = input->findChild<QLabel *>();
        ASSERT_NE(label, nullptr);
        labelNeeds = label->sizeHint().width();
        labelHas = label->width();
        for (auto *b : input->findChildren<QPushButton *>())
            if (b->text() == "Отмена")
                cancel = b->text();
    });
    QString name;
    EXPECT_FALSE(::dialogs().input("Создать раздел", "Название раздела:", &name));
    EXPECT_GE(width, 400);
    EXPECT_GE(labelHas, labelNeeds);
    EXPECT_EQ(cancel, "Отмена");
}

} // namespace
