// The file server in the main window, against the real server: the settings window, the start-up
// checks with the update dialog and the news, the version history, the manual check. Screenshots of
// the update dialog and the news go to the build's screenshots folder.

#include "FileServerProcess.h"
#include "MainWindowFixture.h"
#include "SilentServer.h"
#include "server/FileServerSettings_frame.h"
#include "server/FormUpdate_frame.h"
#include "server/News_frame.h"
#include "server/RemoteClient.h"
#include "server/ServerPart.h"
#include "storage/SettingsStore.h"

#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest/QTest>

namespace {
void screenshot(QWidget *w, const QString &name) {
    QDir().mkpath(VIRN_SCREENSHOTS);
    w->grab().save(QDir(VIRN_SCREENSHOTS).filePath(name));
}
} // namespace

class ServerWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        part = window->part<ServerPart>();
        ASSERT_NE(part, nullptr);
        QFile exe(program.file("virn-smeta"));
        ASSERT_TRUE(exe.open(QIODevice::WriteOnly));
        exe.write("installed program");
        exe.close();
        part->setProgramFile(program.file("virn-smeta"));
    }
    // The settings window, filled in as the user would, closed with OK.
    void configure(const QUrl &url, const QString &key) {
        QTimer::singleShot(0, window.get(), [this, url, key] {
            auto *dialog = window->findChild<TFileServerSettings *>("FServerSettings");
            ASSERT_NE(dialog, nullptr);
            child<QLineEdit>(dialog, "EditServerUrl")->setText(url.toString());
            child<QLineEdit>(dialog, "EditAccountKey")->setText(key);
            QTest::mouseClick(child<QPushButton>(dialog, "ButtonOk"), Qt::LeftButton);
        });
        part->MServerSettingsClick();
    }
    void runChecks() {
        QSignalSpy finished(part, &ServerPart::checksFinished);
        part->startupChecks();
        ASSERT_TRUE(finished.wait(30000));
        QTest::qWait(20);
    }
    template <typename T> QList<T *> shown(const QString &name) {
        QList<T *> out;
        for (T *w : window->findChildren<T *>(name))
            if (w->isVisible())
                out << w;
        return out;
    }

    FileServerProcess server;
    TestFolder program;
    ServerPart *part = nullptr;
};

TEST_F(ServerWindowTest, SettingsAreKeptInTheSettingsFile) {
    configure(server.url(), server.key());
    EXPECT_EQ(window->settingsStore()->text("Server", "Url"), server.url().toString());
    EXPECT_EQ(window->settingsStore()->text("Server", "Key"), "test_key");
    EXPECT_EQ(part->client()->baseUrl(), server.url());
    EXPECT_EQ(part->client()->accountKey(), "test_key");
}

TEST_F(ServerWindowTest, SettingsWindowChecksTheConnectionAndRefusesBadValues) {
    TFileServerSettings dialog({server.url().toString(), "stranger"}, window.get());
    dialog.show();
    struct Case {
        QString key;
        bool ok;
        QString says;
    };
    const Case cases[] = {
        {"stranger", false, "Сервер не знает ключ «stranger»."},
        {"test_key", true, "Сервер отвечает, ключ принят."},
        {"", true, "Сервер отвечает. Ключ учётной записи не указан"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.key.toStdString());
        child<QLineEdit>(&dialog, "EditAccountKey")->setText(c.key);
        QSignalSpy done(&dialog, &TFileServerSettings::checkFinished);
        QTest::mouseClick(child<QPushButton>(&dialog, "ButtonCheck"), Qt::LeftButton);
        ASSERT_TRUE(done.wait(15000));
        EXPECT_EQ(done.at(0).at(0).toBool(), c.ok);
        EXPECT_TRUE(child<QLabel>(&dialog, "LabelCheck")->text().startsWith(c.says))
            << child<QLabel>(&dialog, "LabelCheck")->text().toStdString();
    }
    child<QLineEdit>(&dialog, "EditServerUrl")->setText("files.example.ru");
    QTest::mouseClick(child<QPushButton>(&dialog, "ButtonOk"), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible()); // refused
    EXPECT_TRUE(child<QLabel>(&dialog, "LabelCheck")->text().startsWith("Адрес сервера должен начинаться"));
}

TEST_F(ServerWindowTest, WithoutAServerNothingIsRequestedOrShown) {
    runChecks();
    part->MVersionHistoryClick();
    EXPECT_TRUE(shown<QDialog>("FFormUpdate").isEmpty());
    EXPECT_TRUE(shown<QDialog>("News").isEmpty());
    EXPECT_FALSE(server.log().contains("/files/"));
    // Asked for by the user, the check says what is missing.
    dialogs->clear();
    part->MCheckUpdateClick();
    EXPECT_TRUE(dialogs->lastText().startsWith("Файловый сервер не настроен"))
        << dialogs->lastText().toStdString();
}

TEST_F(ServerWindowTest, EqualVersionNoUpdateAndTheNewsShownOnce) {
    configure(server.url(), server.key());
    EXPECT_EQ(window->settings().text("LastInfo"), "14.09.2018"); // nothing stored yet
    runChecks();
    EXPECT_TRUE(shown<QDialog>("FFormUpdate").isEmpty());
    EXPECT_FALSE(QFile::exists(program.file("virn-smeta.old")));
    const auto news = shown<FNews>("News");
    ASSERT_EQ(news.size(), 1);
    EXPECT_EQ(news[0]->windowTitle(), "Новости");
    EXPECT_EQ(child<QPlainTextEdit>(news[0], "Memo1")->toPlainText(),
              QString::fromUtf8(server.read("virn_8/info.txt")));
    EXPECT_TRUE(child<QCheckBox>(news[0], "CheckBoxInfo")->isChecked());
    EXPECT_EQ(child<QCheckBox>(news[0], "CheckBoxInfo")->text(), "Получать информацию");
    EXPECT_EQ(child<QPushButton>(news[0], "ButtonClose")->text(), "Закрыть");
    news[0]->resize(560, 400);
    screenshot(news[0], "news.png");
    // The stamp is seen: in the settings at once, and in the file.
    const QString stamp = QString::fromUtf8(server.read("virn_8/info_stamp.txt")).trimmed();
    EXPECT_EQ(window->settings().text("LastInfo"), stamp);
    EXPECT_EQ(window->settingsStore()->text("View", "LastInfo"), stamp);
    EXPECT_EQ(QFile(window->dataFolder() + "/info.txt").size(), server.read("virn_8/info.txt").size());
    QTest::mouseClick(child<QPushButton>(news[0], "ButtonClose"), Qt::LeftButton);
    QTest::qWait(20);

    runChecks();
    EXPECT_TRUE(shown<QDialog>("News").isEmpty());
    EXPECT_EQ(server.log().count("GET /files/virn_8/info.txt"), 1);
    // Asked for, the check says the program is up to date.
    part->MCheckUpdateClick();
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return dialogs->wasShown("Установлена последняя версия программы (" VIRN_PROJECT_VERSION ").");
        },
        15000));
}

TEST_F(ServerWindowTest, OtherVersionOffersTheUpdate) {
    window->show();
    server.put("virn_8/version.txt", "8.2.0");
    configure(server.url(), server.key());
    window->settings().setFlag("ViewInfo", false);
    QMenu *help = window->findChild<QMenu *>("MenuHelp");
    auto *history = window->findChild<QAction *>("MVersionHistory");
    ASSERT_NE(history, nullptr);
    emit help->aboutToShow();
    EXPECT_FALSE(history->isEnabled()); // no release notes yet

    runChecks();
    const auto offers = shown<FFormUpdate>("FFormUpdate");
    ASSERT_EQ(offers.size(), 1);
    FFormUpdate *dialog = offers[0];
    EXPECT_EQ(dialog->windowTitle(), "Обновление");
    EXPECT_TRUE(dialog->isModal());
    EXPECT_EQ(child<QLabel>(dialog, "Label1")->text(), "Доступно обновление программы");
    EXPECT_TRUE(child<QLabel>(dialog, "LabelVersions")->text().contains("8.2.0"));
    EXPECT_EQ(child<QPushButton>(dialog, "ButtonLoad")->text(), "Загрузить");
    EXPECT_EQ(child<QPushButton>(dialog, "ButtonCancel")->text(), "Отмена");
    screenshot(dialog, "update.png");
    // Before the offer: the program's copy and the release notes.
    EXPECT_EQ(QFile(program.file("virn-smeta.old")).size(), QFile(program.file("virn-smeta")).size());
    EXPECT_EQ(QFile(window->dataFolder() + "/version8.txt").size(),
              server.read("virn_8/version8.txt").size());

    // The program's folder has no updater: the user is told its name.
    dialogs->clear();
    QTest::mouseClick(child<QPushButton>(dialog, "ButtonLoad"), Qt::LeftButton);
    EXPECT_EQ(dialogs->lastCaption(), "Ошибка");
    EXPECT_EQ(dialogs->lastText(), "Отсутствует загрузчик обновлений \"download_update_s8\"");
    EXPECT_TRUE(window->isVisible());
    QTest::qWait(20);
    EXPECT_TRUE(shown<QDialog>("FFormUpdate").isEmpty());

    // The history now opens the saved notes in the news dialog.
    emit help->aboutToShow();
    EXPECT_TRUE(history->isEnabled());
    history->trigger();
    const auto notes = shown<FNews>("News");
    ASSERT_EQ(notes.size(), 1);
    EXPECT_EQ(notes[0]->windowTitle(), "История версий");
    EXPECT_EQ(child<QPlainTextEdit>(notes[0], "Memo1")->toPlainText(),
              QString::fromUtf8(server.read("virn_8/version8.txt")));
    screenshot(notes[0], "version-history.png");
}

TEST_F(ServerWindowTest, NewsDisabledFetchesNothingAndTheCheckBoxKeepsTheChoice) {
    configure(server.url(), server.key());
    window->settings().setFlag("ViewInfo", false);
    runChecks();
    EXPECT_TRUE(server.logged("POST /files/virn_8/version_info.php"));
    EXPECT_FALSE(server.log().contains("read_info.php"));
    EXPECT_FALSE(server.log().contains("info.txt"));
    EXPECT_TRUE(shown<QDialog>("News").isEmpty());

    // "Получать информацию" in the news dialog switches it on again and is kept at once.
    server.put("virn_8/version.txt", "8.2.0");
    runChecks();
    for (QDialog *d : shown<QDialog>("FFormUpdate"))
        d->reject();
    part->MVersionHistoryClick();
    const auto notes = shown<FNews>("News");
    ASSERT_EQ(notes.size(), 1);
    QCheckBox *box = child<QCheckBox>(notes[0], "CheckBoxInfo");
    EXPECT_FALSE(box->isChecked());
    QTest::mouseClick(box, Qt::LeftButton);
    EXPECT_TRUE(window->settings().flag("ViewInfo"));
    EXPECT_EQ(window->settingsStore()->text("View", "ViewInfo"), "1");
}

TEST_F(ServerWindowTest, AStalledServerEndsTheChecksSilently) {
    MisbehavingServer silent(MisbehavingServer::Kind::Silent);
    configure(silent.url(), "test_key");
    dialogs->clear();
    runChecks();
    EXPECT_TRUE(dialogs->shown().isEmpty());
    EXPECT_TRUE(shown<QDialog>("FFormUpdate").isEmpty());
    EXPECT_TRUE(shown<QDialog>("News").isEmpty());
}
