// The server files in the main window, against the real MariaDB and file server: TServerSmeta uploads
// the sample estimate and a picture, finds them under their address and kind, previews the picture,
// downloads the estimate back byte for byte, restores the people database with the question, deletes;
// the upload after save and its failure told once in the status bar. Screenshots go to the build's
// screenshots folder.

#include "FileServerProcess.h"
#include "MainWindowFixture.h"
#include "StallingProxy.h"
#include "StoreFixture.h"
#include "pricebase/ServerRasSettings_frame.h"
#include "server/ServerFileModel.h"
#include "server/ServerFilesPart.h"
#include "server/ServerPart.h"
#include "server/ServerSmeta_frame.h"
#include "storage/SettingsStore.h"

#include <QAction>
#include <QBuffer>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QTreeView>
#include <QtTest/QTest>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif

namespace {

void screenshot(QWidget *w, const QString &name) {
    QDir().mkpath(VIRN_SCREENSHOTS);
    w->grab().save(QDir(VIRN_SCREENSHOTS).filePath(name));
}

QByteArray readAll(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class ServerFilesWindow : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        if (qEnvironmentVariableIsEmpty("VIRN_TEST_MYSQL_HOST"))
            GTEST_SKIP()
                << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
        access = testStoreAccess();
        access.table = uniqueKey("window");
        ASSERT_TRUE(fileServer.start()) << fileServer.error().toStdString();
        ASSERT_TRUE(addAccount(fileServer, access.table));
        configure(access);
        part = window->part<ServerFilesPart>();
        ASSERT_NE(part, nullptr);
    }
    void TearDown() override {
        if (!access.table.isEmpty())
            storeRows(access, QStringLiteral("DROP TABLE IF EXISTS ") + access.table);
        MainWindowFixture::TearDown();
    }
    // The settings as the two settings windows keep them.
    void configure(const StoreAccess &a) {
        SettingsStore *s = window->settingsStore();
        s->setText("Server", "Url", fileServer.url().toString());
        s->setText("Server", "Key", a.table);
        s->setText("Server", "Host", a.host);
        s->setInteger("Server", "Port", a.port);
        s->setText("Server", "User", a.user);
        s->setText("Server", "Password", a.password);
        s->setText("Server", "Database", a.database);
        window->part<ServerPart>()->readServerSettings();
    }
    void openSample() {
        document = folder.file(QStringLiteral("Sm/Образец сметы.sim"));
        ASSERT_TRUE(QFile::copy(folder.file(QStringLiteral("Sp/smeta.db")), document));
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {QStringLiteral("-bail"), document,
                                            QStringLiteral(".read '%1/resources/sample/estimate.sql'")
                                                .arg(QStringLiteral(VIRN_SOURCE_DIR))});
        ASSERT_TRUE(p.waitForFinished(30000));
        ASSERT_EQ(p.exitCode(), 0);
        ASSERT_TRUE(window->OpenMyFile(document));
    }
    // Opens the window and waits for Timer1's first reading.
    TServerSmeta *openWindow() {
        TServerSmeta *w = part->MServerFilesClick();
        QSignalSpy read(w, &TServerSmeta::listsRead);
        EXPECT_TRUE(read.wait(30000));
        return w;
    }
    // Runs a command of the window and waits for its end and the lists read after it.
    bool operate(TServerSmeta *w, QAction *action, bool rereads = true) {
        QSignalSpy done(w, &TServerSmeta::operationFinished);
        QSignalSpy read(w, &TServerSmeta::listsRead);
        action->trigger();
        if (done.isEmpty() && !done.wait(60000))
            return false;
        if (rereads && read.isEmpty() && !read.wait(30000))
            return false;
        return done.first().at(0).toBool();
    }
    bool waitRead(TServerSmeta *w) {
        QSignalSpy read(w, &TServerSmeta::listsRead);
        return read.wait(30000);
    }
    int rowOf(TServerSmeta *w, const QString &type) {
        for (int i = 0; i < w->model()->rowCount(); ++i)
            if (w->model()->file(i).type == type)
                return i;
        return -1;
    }
    void choose(TServerSmeta *w, int row) {
        w->AdvStringGrid1->setCurrentIndex(w->model()->index(row, 1));
        w->AdvStringGrid1->selectRow(row);
    }
    QString picture() {
        QImage image(800, 600, QImage::Format_RGB32);
        image.fill(QColor(230, 236, 242));
        for (int y = 0; y < 600; ++y)
            for (int x = 0; x < 800; ++x)
                if ((x / 80 + y / 80) % 2 == 0)
                    image.setPixel(x, y, qRgb(180 - y / 6, 90 + x / 10, 60));
        const QString path = folder.file(QStringLiteral("Кухня до ремонта.png"));
        image.save(path, "PNG");
        return path;
    }

    StoreAccess access;
    FileServerProcess fileServer;
    ServerFilesPart *part = nullptr;
    QString document;
};

} // namespace

TEST_F(ServerFilesWindow, UploadsFindsPreviewsAndDownloadsTheSampleEstimateAndAPicture) {
    openSample();
    const QString object = window->document().header().object;
    ASSERT_FALSE(object.isEmpty());
    TServerSmeta *w = openWindow();
    ASSERT_NE(w, nullptr);
    EXPECT_EQ(w->windowTitle(), "Файлы на сервере");
    EXPECT_EQ(w->model()->rowCount(), 0);
    EXPECT_EQ(w->EditAddress->currentText(), object);
    for (const char *name :
         {"spdDropTable", "spdFirst", "spdLast", "spdDeleteFile", "spdLoadServer", "spdSaveFileServer"})
        EXPECT_NE(w->findChild<QAction *>(name), nullptr) << name;
    EXPECT_EQ(child<QPushButton>(w, "ButtonClose")->text(), "Закрыть");
    EXPECT_EQ(child<QPushButton>(w, "ButtonAllFiles")->text(), "Все файлы");

    // The estimate and a picture under the estimate's object.
    dialogs->queueFile(document);
    ASSERT_TRUE(operate(w, w->spdSaveFileServer)) << dialogs->lastText().toStdString();
    dialogs->queueFile(picture());
    ASSERT_TRUE(operate(w, w->spdSaveFileServer)) << dialogs->lastText().toStdString();
    ASSERT_EQ(w->model()->rowCount(), 2);
    // And a text under another address.
    const QString note = folder.file("Заметка.txt");
    {
        QFile f(note);
        f.open(QIODevice::WriteOnly);
        f.write("размеры комнат");
    }
    w->EditAddress->setEditText("Дача: баня");
    dialogs->queueFile(note);
    ASSERT_TRUE(operate(w, w->spdSaveFileServer));
    ASSERT_EQ(w->model()->rowCount(), 3);

    // The address tree: everything, then each address once.
    auto *addresses = qobject_cast<QStandardItemModel *>(w->TreeView1->model());
    ASSERT_EQ(addresses->rowCount(), 3);
    EXPECT_EQ(addresses->item(0)->text(), "Все адреса");
    int objectRow = -1;
    for (int i = 1; i < addresses->rowCount(); ++i)
        if (addresses->item(i)->text() == object)
            objectRow = i;
    ASSERT_GT(objectRow, 0);
    w->TreeView1->setCurrentIndex(addresses->index(objectRow, 0));
    ASSERT_TRUE(waitRead(w));
    EXPECT_EQ(w->model()->rowCount(), 2);
    EXPECT_EQ(w->LabelAddress->text(), "Адрес: " + object);
    // The kind "Картинки" within the address.
    w->TreeView2->setCurrentIndex(w->TreeView2->model()->index(ServerFileKinds::Pictures, 0));
    ASSERT_TRUE(waitRead(w));
    ASSERT_EQ(w->model()->rowCount(), 1);
    EXPECT_EQ(w->model()->file(0).name, "Кухня до ремонта.png");
    EXPECT_EQ(w->LabelKind->text(), "Файлы: Картинки");

    // The picture's preview, 250 pixels wide.
    QSignalSpy previewed(w, &TServerSmeta::previewShown);
    choose(w, 0);
    ASSERT_TRUE(previewed.wait(20000));
    EXPECT_TRUE(previewed.last().at(0).toBool());
    EXPECT_EQ(w->WebBrowser1->pixmap().width(), 250);
    EXPECT_EQ(w->WebBrowser1->pixmap().height(), 187);
    QTest::qWait(50);
    screenshot(w, "server_files_picture.png");

    // "Все файлы": the estimate again, with no preview; downloaded back as it was.
    QTest::mouseClick(w->ButtonAllFiles, Qt::LeftButton);
    ASSERT_TRUE(waitRead(w));
    EXPECT_EQ(w->model()->rowCount(), 2);
    EXPECT_EQ(w->LabelKind->text(), "Файлы: все");
    const int estimate = rowOf(w, ".sim");
    ASSERT_GE(estimate, 0);
    previewed.clear();
    choose(w, estimate);
    EXPECT_FALSE(previewed.isEmpty() || previewed.last().at(0).toBool());
    EXPECT_TRUE(w->WebBrowser1->pixmap().isNull());
    const QString back = folder.file("С сервера.sim");
    dialogs->clear();
    dialogs->queueFile(back);
    ASSERT_TRUE(operate(w, w->spdLoadServer, false));
    EXPECT_EQ(dialogs->lastText(), "Сделано");
    EXPECT_EQ(dialogs->lastCaption(), "Сообщаю:");
    EXPECT_TRUE(readAll(back) == readAll(document));

    // Deleting asks first; "no" keeps the file.
    choose(w, estimate);
    dialogs->queueAnswer(Dialogs::Answer::No);
    w->spdDeleteFile->trigger();
    EXPECT_EQ(dialogs->lastText(), "Удалить файл Образец сметы.sim?");
    EXPECT_EQ(dialogs->lastCaption(), "Удаление");
    EXPECT_FALSE(w->busy());
    choose(w, estimate);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    ASSERT_TRUE(operate(w, w->spdDeleteFile));
    EXPECT_EQ(w->model()->rowCount(), 1);

    // Everything goes at once.
    w->TreeView1->setCurrentIndex(addresses->index(0, 0));
    ASSERT_TRUE(waitRead(w));
    EXPECT_EQ(w->model()->rowCount(), 2);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    ASSERT_TRUE(operate(w, w->spdDropTable));
    EXPECT_EQ(dialogs->shown().at(dialogs->shown().size() - 1).text, "Удалить все файлы на сервере?");
    EXPECT_EQ(w->model()->rowCount(), 0);
    w->close();
    EXPECT_FALSE(w->isVisible());
}

TEST_F(ServerFilesWindow, PeopleDatabaseIsRestoredAfterTheQuestion) {
    TServerSmeta *w = openWindow();
    ASSERT_TRUE(module->database(Db::People).isOpen());
    QSqlQuery(module->database(Db::People)).exec("INSERT INTO Customer (fio) VALUES ('Был на сервере')");
    dialogs->queueFile(module->filePath(Db::People));
    ASSERT_TRUE(operate(w, w->spdSaveFileServer)) << dialogs->lastText().toStdString();
    ASSERT_EQ(w->model()->rowCount(), 1);
    EXPECT_EQ(w->model()->file(0).name, "peoplebase.db");
    // A later change on this computer: the copy on the server is older.
    QTest::qWait(1100);
    QSqlQuery(module->database(Db::People)).exec("INSERT INTO Customer (fio) VALUES ('Добавлен потом')");

    choose(w, 0);
    dialogs->clear();
    dialogs->queueAnswer(Dialogs::Answer::No);
    w->spdLoadServer->trigger();
    EXPECT_EQ(dialogs->lastText(),
              "Файл peoplebase.db имеет более позднюю версию. Заменить его на старый файл?");
    EXPECT_FALSE(w->busy());
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM Customer WHERE fio='Добавлен потом'"), 1);

    QSignalSpy restored(part, &ServerFilesPart::databaseRestored);
    choose(w, 0);
    dialogs->queueAnswer(Dialogs::Answer::Yes);
    ASSERT_TRUE(operate(w, w->spdLoadServer, false)) << dialogs->lastText().toStdString();
    EXPECT_EQ(dialogs->lastText(), "Сделано");
    EXPECT_EQ(restored.size(), 1);
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM Customer WHERE fio='Добавлен потом'"), 0);
    EXPECT_EQ(count(Db::People, "SELECT COUNT(*) FROM Customer WHERE fio='Был на сервере'"), 1);
    EXPECT_TRUE(QDir(folder.file("Temp")).entryList({"restore-*"}, QDir::Files).isEmpty());
}

TEST_F(ServerFilesWindow, UploadAfterSaveAndItsFailureToldOnceInTheStatusBar) {
    openSample();
    QAction *option = window->findChild<QAction *>("CheckBoxAutosaveServer");
    ASSERT_NE(option, nullptr);
    EXPECT_EQ(option->text(), "Автосохранение на сервер");
    EXPECT_FALSE(option->isChecked()); // off unless chosen
    QAction *serverSave = window->findChild<QAction *>("spdServerSave");
    ASSERT_NE(serverSave, nullptr);
    EXPECT_TRUE(serverSave->isEnabled());

    // Off: a save uploads nothing.
    QSignalSpy uploads(part, &ServerFilesPart::documentUploaded);
    edit();
    ASSERT_TRUE(window->spdSaveClick());
    QTest::qWait(300);
    EXPECT_TRUE(uploads.isEmpty());

    option->setChecked(true);
    edit(QStringLiteral("Шпаклёвка"));
    ASSERT_TRUE(window->spdSaveClick());
    EXPECT_FALSE(window->isChanged()); // saved before the upload ends
    ASSERT_TRUE(uploads.wait(30000));
    EXPECT_TRUE(uploads.last().at(0).toBool()) << uploads.last().at(1).toString().toStdString();
    const QVariantList stored =
        storeRows(access, "SELECT LENGTH(file) FROM " + access.table + " WHERE type='.sim'");
    ASSERT_EQ(stored.size(), 1);
    EXPECT_EQ(stored[0].toLongLong(), QFileInfo(document).size());
    EXPECT_EQ(storeRows(access, "SELECT address FROM " + access.table).value(0).toString(),
              window->document().header().object);

    // The server refuses: told in the status bar, not in a box, and only once.
    StoreAccess wrong = access;
    wrong.password = "не тот";
    configure(wrong);
    dialogs->clear();
    for (int i = 0; i < 2; ++i) {
        window->statusBar()->clearMessage();
        edit(QStringLiteral("Грунтовка %1").arg(i));
        ASSERT_TRUE(window->spdSaveClick());
        ASSERT_TRUE(uploads.wait(30000));
        EXPECT_FALSE(uploads.last().at(0).toBool());
        const QString status = window->statusBar()->currentMessage();
        if (i == 0)
            EXPECT_TRUE(status.startsWith("Документ не загружен на сервер") &&
                        status.contains("Access denied"))
                << status.toStdString();
        else // the save itself is still reported; the failed upload is not told again
            EXPECT_FALSE(status.contains("не загружен")) << status.toStdString();
    }
    EXPECT_TRUE(dialogs->shown().isEmpty());

    // The next save after the server is right again uploads.
    configure(access);
    edit(QStringLiteral("Окраска потолка"));
    ASSERT_TRUE(window->spdSaveClick());
    ASSERT_TRUE(uploads.wait(30000));
    EXPECT_TRUE(uploads.last().at(0).toBool());
    EXPECT_EQ(storeRows(access, "SELECT COUNT(*) FROM " + access.table).value(0).toInt(), 2);

    // "Сохранить на сервере" with the option off: saves the change, then uploads at once.
    option->setChecked(false);
    edit(QStringLiteral("Покраска стен"));
    serverSave->trigger();
    EXPECT_FALSE(window->isChanged());
    ASSERT_TRUE(uploads.wait(30000));
    EXPECT_TRUE(uploads.last().at(0).toBool());
    EXPECT_EQ(storeRows(access, "SELECT COUNT(*) FROM " + access.table).value(0).toInt(), 3);
}

TEST_F(ServerFilesWindow, LargeUploadShowsItsProgressAndIsCancelled) {
    StallingProxy proxy(access.host, access.port);
    proxy.throttleUpload(1024 * 1024);
    StoreAccess slow = access;
    slow.port = proxy.port();
    configure(slow);
    TServerSmeta *w = openWindow();
    QByteArray bytes(10 * 1024 * 1024, 'v');
    const QString big = folder.file("Обмеры.zip");
    {
        QFile f(big);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    QSignalSpy done(w, &TServerSmeta::operationFinished);
    QSignalSpy read(w, &TServerSmeta::listsRead);
    dialogs->queueFile(big);
    w->spdSaveFileServer->trigger();
    EXPECT_TRUE(w->busy());
    EXPECT_TRUE(w->ButtonCancel->isVisible());
    EXPECT_FALSE(w->spdDeleteFile->isEnabled());
    EXPECT_FALSE(w->spdSaveFileServer->isEnabled());
    // The window goes on working while the bar moves.
    for (int i = 0; i < 300 && w->ProgressTransfer->value() < 200; ++i)
        QTest::qWait(50);
    EXPECT_EQ(w->ProgressTransfer->maximum(), 1000);
    EXPECT_GE(w->ProgressTransfer->value(), 200);
    EXPECT_LT(w->ProgressTransfer->value(), 1000);
    screenshot(w, "server_files_progress.png");

    QTest::mouseClick(w->ButtonCancel, Qt::LeftButton);
    ASSERT_TRUE(done.wait(10000));
    EXPECT_FALSE(done.first().at(0).toBool());
    EXPECT_EQ(w->LabelStatus->text(), "Передача отменена.");
    EXPECT_FALSE(w->ButtonCancel->isVisible());
    EXPECT_FALSE(w->busy());
    QTest::qWait(200);
    EXPECT_EQ(storeRows(access, "SELECT COUNT(*) FROM " + access.table).value(0).toInt(), 0);
}

TEST_F(ServerFilesWindow, StoreSettingsAreTheMySqlServersWindowWithTheFilesDatabase) {
    QTimer::singleShot(0, window.get(), [this] {
        auto *dialog = window->findChild<TServerRasSettings *>("ServerRasSettings");
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), "Сервер MySQL");
        EXPECT_EQ(dialog->EditHost->text(), access.host);
        dialog->EditFilesDatabase->setText("файлы");
        dialog->accept(); // refused: not a name a database can have
        EXPECT_TRUE(dialog->isVisible());
        dialog->EditFilesDatabase->setText("virn_files");
        dialog->accept();
    });
    window->findChild<QAction *>("MMySqlSettings")->trigger();
    EXPECT_EQ(window->settingsStore()->text("Server", "FilesDatabase"), "virn_files");
    EXPECT_EQ(part->access().database, "virn_files");
    EXPECT_EQ(part->access().table, access.table);
    window->settingsStore()->setText("Server", "FilesDatabase", "");
    EXPECT_EQ(part->access().database, access.database);
    // Without a key the window says where to give it.
    window->settingsStore()->setText("Server", "Key", "");
    dialogs->clear();
    TServerSmeta *w = part->MServerFilesClick();
    QTest::qWait(500);
    EXPECT_TRUE(dialogs->lastText().startsWith("Не указан ключ учётной записи"))
        << dialogs->lastText().toStdString();
    EXPECT_EQ(w->model()->rowCount(), 0);
}
