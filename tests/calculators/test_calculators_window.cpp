// The menu "Калькуляторы" in the main window: the mix dialog with "В смету", and the figure-area
// plug-in fetched from the real file server, checked against the build's hash and loaded.

#include "FileServerProcess.h"
#include "MainWindowFixture.h"
#include "calculators/CalculatorsPart.h"
#include "calculators/ExpenseMix_frame.h"
#include "calculators/FigurePlugin.h"
#include "calculators/MixTable.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/MaterialsStore.h"
#include "server/FileServerSettings.h"
#include "server/ServerPart.h"
#include "storage/SettingsStore.h"

#include <QCryptographicHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QtTest/QTest>

namespace {
void screenshot(QWidget *w, const QString &name) {
    QDir().mkpath(VIRN_SCREENSHOTS);
    w->grab().save(QDir(VIRN_SCREENSHOTS).filePath(name));
}
QByteArray sha256(const QByteArray &bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}
} // namespace

class CalculatorsWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        part = window->part<CalculatorsPart>();
        ASSERT_NE(part, nullptr);
    }
    void useServer() {
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        FileServerSettings{server.url().toString(), server.key()}.write(*window->settingsStore());
        window->part<ServerPart>()->readServerSettings();
    }
    // MSfigure with the answer to "Загрузить библиотеку?"; waits for the download when there is one.
    bool figures(Dialogs::Answer answer, bool download) {
        dialogs->queueAnswer(answer);
        QSignalSpy finished(part, &CalculatorsPart::pluginDownloadFinished);
        part->MSfigureClick();
        if (!download)
            return false;
        EXPECT_TRUE(finished.wait(30000));
        return !finished.isEmpty() && finished.at(0).at(0).toBool();
    }
    QList<QWidget *> pluginWindows() {
        QList<QWidget *> out;
        for (QWidget *w : window->findChildren<QWidget *>("FSquareShapes"))
            if (w->isVisible())
                out << w;
        return out;
    }
    QString pluginFile() const { return part->pluginFolder() + "/" + FigurePlugin::fileName(); }

    CalculatorsPart *part = nullptr;
    FileServerProcess server;
};

TEST_F(CalculatorsWindowTest, TheMenuStandsBeforeHelp) {
    QMenu *calc = window->findChild<QMenu *>("MenuCalc");
    ASSERT_NE(calc, nullptr);
    const QList<QAction *> bar = window->menuBar()->actions();
    const int at = bar.indexOf(calc->menuAction());
    ASSERT_GE(at, 0);
    EXPECT_EQ(bar.value(at + 1), window->findChild<QMenu *>("MenuHelp")->menuAction());
    EXPECT_EQ(calc->actions().value(0)->objectName(), "MExpenseMix");
    EXPECT_EQ(calc->actions().value(0)->text(), "Расчет строительных смесей");
    EXPECT_EQ(calc->actions().value(1)->objectName(), "MSfigure");
    EXPECT_EQ(calc->actions().value(1)->text(), "Площади фигур");
}

TEST_F(CalculatorsWindowTest, MixDialogCountsTypedAreasAndPutsBagsIntoTheEstimate) {
    bool checked = false;
    QTimer::singleShot(0, window.get(), [&] {
        auto *dialog = window->findChild<FExpenseMix *>("FExpenseMix");
        ASSERT_NE(dialog, nullptr);
        checked = true;
        EXPECT_TRUE(dialog->isModal());
        EXPECT_EQ(dialog->windowTitle(), "Расчёт строительных смесей");
        auto *pages = child<QTabWidget>(dialog, "PageControl1");
        EXPECT_EQ(pages->tabText(0), "Базовый");
        EXPECT_EQ(pages->tabText(1), "Пользователь");
        auto *grid = child<QTableView>(dialog, "AdvStringGrid1");
        EXPECT_EQ(grid->columnWidth(0), 200);
        for (int c = 1; c < 6; ++c)
            EXPECT_EQ(grid->columnWidth(c), 64);
        EXPECT_EQ(grid->horizontalHeader()->height(), 40);
        EXPECT_EQ(grid->rowHeight(3), 26);

        // The user types "10.5" into the area of the first mix: the point becomes a comma as typed.
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        const QModelIndex area = grid->model()->index(0, MixCol::Area);
        grid->setCurrentIndex(area); // opens the cell's editor
        QLineEdit *editor = nullptr;
        for (QLineEdit *e : grid->viewport()->findChildren<QLineEdit *>())
            if (e->isVisible())
                editor = e;
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        QTest::keyClicks(editor, "10.5");
        EXPECT_EQ(editor->text(), "10,5");
        QTest::keyClick(editor, Qt::Key_Return); // the view commits the edit from the event loop
        QTest::qWait(10);
        EXPECT_EQ(grid->model()->index(0, MixCol::Area).data().toString(), "10,5");
        EXPECT_EQ(grid->model()->index(0, MixCol::Bags).data().toString(),
                  "6"); // 189 kg in 40-kg bags: 4,725
        screenshot(dialog, "mix-calculator.png");

        grid->setCurrentIndex(grid->model()->index(0, MixCol::Name));
        QTest::mouseClick(child<QPushButton>(dialog, "ButtonToEstimate"), Qt::LeftButton);
        // A row without a count is refused.
        grid->setCurrentIndex(grid->model()->index(2, MixCol::Name));
        QTest::mouseClick(child<QPushButton>(dialog, "ButtonToEstimate"), Qt::LeftButton);
        dialog->accept();
    });
    window->document().setChanged(false);
    part->MExpenseMixClick();
    ASSERT_TRUE(checked);
    EXPECT_TRUE(dialogs->wasShown("не рассчитано ни одного мешка"));
    const auto found =
        MaterialsStore::findByName(module->database(Db::Smeta), "Универсальная сухая смесь М150");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->unit, "меш.");
    EXPECT_EQ(found->quantity, "6");
    EXPECT_TRUE(window->isChanged());
    // The materials page shows it.
    EstimateMaterials *materials = window->document().editor().materials();
    bool listed = false;
    for (int r = 0; r < materials->rowCount(); ++r)
        listed =
            listed || materials->index(r, MatCol::Name).data().toString() == "Универсальная сухая смесь М150";
    EXPECT_TRUE(listed);
}

TEST_F(CalculatorsWindowTest, PluginIsDownloadedVerifiedAndLoaded) {
    useServer();
    ASSERT_FALSE(QFile::exists(pluginFile()));
    ASSERT_TRUE(figures(Dialogs::Answer::Yes, true)) << dialogs->lastText().toStdString();
    ASSERT_FALSE(dialogs->shown().isEmpty());
    EXPECT_EQ(dialogs->shown().first().caption, "Плагин не установлен");
    EXPECT_EQ(dialogs->shown().first().text, "Загрузить библиотеку?");
    // Saved beside IniFile.db, exactly the build's plug-in.
    QFile saved(pluginFile());
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(sha256(saved.readAll()), FigurePlugin::builtSha256());
    EXPECT_EQ(part->pluginFolder(), window->dataFolder());
    auto *bar = window->findChild<QProgressBar *>("ProgressBar1");
    ASSERT_NE(bar, nullptr);
    EXPECT_FALSE(bar->isVisible());

    ASSERT_TRUE(QTest::qWaitFor([&] { return pluginWindows().size() == 1; }, 5000));
    QWidget *figures = pluginWindows().first();
    EXPECT_EQ(figures->windowTitle(), "Площади фигур");
    child<QLineEdit>(figures, "RectA")->setText("4");
    child<QLineEdit>(figures, "RectB")->setText("2.5");
    EXPECT_EQ(child<QLabel>(figures, "LabelArea")->text(), "Площадь: 10,00 м²");
    screenshot(figures, "figure-areas.png");

    // Installed: the next use loads it without a question or a request.
    dialogs->clear();
    part->MSfigureClick();
    EXPECT_TRUE(dialogs->shown().isEmpty());
    EXPECT_EQ(pluginWindows().size(), 2);
    EXPECT_EQ(server.log().count("GET /files/virn_8/square_shapes.so"), 1);
}

TEST_F(CalculatorsWindowTest, TamperedPluginIsRefusedAndDeleted) {
    useServer();
    server.put("virn_8/square_shapes.so", server.read("virn_8/square_shapes.so") + "tampered");
    EXPECT_FALSE(figures(Dialogs::Answer::Yes, true));
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
    EXPECT_EQ(dialogs->lastText(), "Не удалось загрузить библиотеку");
    EXPECT_FALSE(QFile::exists(pluginFile()));
    EXPECT_TRUE(pluginWindows().isEmpty());
}

TEST_F(CalculatorsWindowTest, AForeignFileIsNeverLoaded) {
    useServer();
    {
        QFile f(pluginFile());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("not our plug-in");
    }
    // It goes, and the user is asked as if there were none; "No" fetches nothing.
    figures(Dialogs::Answer::No, false);
    EXPECT_FALSE(QFile::exists(pluginFile()));
    EXPECT_EQ(dialogs->lastText(), "Загрузить библиотеку?");
    EXPECT_FALSE(server.log().contains("square_shapes.so"));
    EXPECT_TRUE(pluginWindows().isEmpty());
}

TEST_F(CalculatorsWindowTest, FailuresOfTheDownload) {
    // No server: the user is told where to set it, nothing is requested.
    figures(Dialogs::Answer::Yes, false);
    EXPECT_TRUE(dialogs->lastText().startsWith("Файловый сервер не настроен"))
        << dialogs->lastText().toStdString();

    // The server has no plug-in.
    useServer();
    QFile::remove(server.file("virn_8/square_shapes.so"));
    EXPECT_FALSE(figures(Dialogs::Answer::Yes, true));
    EXPECT_EQ(dialogs->lastText(), "Не удалось загрузить библиотеку");
    EXPECT_FALSE(QFile::exists(pluginFile()));
    EXPECT_FALSE(window->findChild<QProgressBar *>("ProgressBar1")->isVisible());
}
