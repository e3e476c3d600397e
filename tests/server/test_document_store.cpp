// The document store against the real MariaDB and the real file server that `make test` starts: the
// size limit, two uploads of one file, pictures on the file server under their address folder,
// downloads byte for byte, refused settings and passwords, a server that stalls mid-transfer, a
// cancelled upload, and the upload after save.

#include "StallingProxy.h"
#include "StoreFixture.h"
#include "server/SavedDocumentUpload.h"
#include "server/StoreThread.h"
#include "server/TransferControl.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QtTest/QTest>

namespace {

QByteArray readAll(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray png(int w, int h) {
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(QColor(40, 120, 200));
    for (int y = 0; y < h; y += 8)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb(250, 200, 40));
    QByteArray bytes;
    QBuffer b(&bytes);
    b.open(QIODevice::WriteOnly);
    image.save(&b, "PNG");
    return bytes;
}

} // namespace

using DocumentStoreTest = StoreFixture;

TEST_F(DocumentStoreTest, FileOfExactlyTheLimitIsKeptAndComesBackWholeOneByteMoreIsRefused) {
    const QByteArray bytes = pattern(StoredFiles::kSizeLimit);
    const QString path = makeFile(QStringLiteral("Предельный.xlsx"), bytes);
    QVariantList end = finish([&] { files->upload(path, QStringLiteral("ул. Речная, 1")); });
    ASSERT_EQ(end.size(), 3);
    ASSERT_TRUE(end[0].toBool()) << end[2].toString().toStdString();
    const QList<StoredFile> stored = rows();
    ASSERT_EQ(stored.size(), 1);
    EXPECT_EQ(stored[0].name, "Предельный.xlsx");
    EXPECT_EQ(stored[0].type, ".xlsx");
    EXPECT_EQ(stored[0].address, "ул. Речная, 1");
    EXPECT_EQ(storeRows(access, "SELECT LENGTH(file) FROM " + access.table).value(0).toLongLong(),
              StoredFiles::kSizeLimit);

    const QString back = folder.file("back.xlsx");
    end = finish([&] { files->download(stored[0], back); });
    ASSERT_TRUE(end.value(0).toBool()) << end.value(2).toString().toStdString();
    EXPECT_TRUE(readAll(back) == bytes);

    const QString larger = makeFile(QStringLiteral("Больше.xlsx"), pattern(StoredFiles::kSizeLimit + 1));
    end = finish([&] { files->upload(larger, QString()); });
    EXPECT_FALSE(end.value(0).toBool());
    EXPECT_EQ(end.value(2).toString(), "Размер файла больше 15 Мб");
    const QString empty = makeFile(QStringLiteral("Пустой.txt"), QByteArray());
    end = finish([&] { files->upload(empty, QString()); });
    EXPECT_EQ(end.value(2).toString(), "Не могу сохранить, файл повреждён");
    EXPECT_EQ(rows().size(), 1);
}

TEST_F(DocumentStoreTest, TwoUploadsOfOneFileAreTwoRowsAndDeletingOneLeavesTheOther) {
    const QString path = makeFile(QStringLiteral("Смета \"Кухня\".sim"), pattern(5000));
    for (int i = 0; i < 2; ++i) {
        const QVariantList end = finish([&] { files->upload(path, QStringLiteral("Дом \"Сосны\"")); });
        ASSERT_TRUE(end.value(0).toBool()) << end.value(2).toString().toStdString();
    }
    QList<StoredFile> stored = rows();
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored[0].name, "Смета `Кухня`.sim");
    EXPECT_EQ(stored[0].address, "Дом `Сосны`");
    EXPECT_EQ(stored[1].name, stored[0].name);
    EXPECT_NE(stored[0].data, stored[1].data);
    EXPECT_TRUE(StoredFiles::parseTime(stored[0].data).isValid());

    const QVariantList end = finish([&] { files->remove(stored[0]); });
    ASSERT_TRUE(end.value(0).toBool()) << end.value(2).toString().toStdString();
    const QList<StoredFile> left = rows();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left[0].data, stored[1].data);
    // What is left is still the file.
    const QString back = folder.file("back.sim");
    ASSERT_TRUE(finish([&] { files->download(left[0], back); }).value(0).toBool());
    EXPECT_EQ(readAll(back), pattern(5000));
}

TEST_F(DocumentStoreTest, PicturesLiveOnTheFileServerUnderTheirAddressFolder) {
    const QByteArray picture = png(600, 300);
    const QString path = makeFile(QStringLiteral("Фасад.png"), picture);
    const QString address = QStringLiteral("пос. Лесной: ул. 1/3");
    for (int i = 0; i < 2; ++i) {
        const QVariantList end = finish([&] { files->upload(path, address); });
        ASSERT_TRUE(end.value(0).toBool()) << end.value(2).toString().toStdString();
    }
    const QString onServer =
        QStringLiteral("base_virn_s/%1/Picture/пос. Лесной` ул. 1`3/Фасад.png").arg(access.table);
    EXPECT_EQ(fileServer.read(onServer), picture);
    // The rows hold the description only.
    EXPECT_EQ(storeRows(access, "SELECT SUM(LENGTH(file)) FROM " + access.table).value(0).toLongLong(), 0);

    QStringList addresses;
    QList<StoredFile> stored;
    FileFilter pictures;
    pictures.types = ServerFileKinds::all().at(ServerFileKinds::Pictures).extensions;
    ASSERT_TRUE(read(pictures, &addresses, &stored));
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(addresses, QStringList{address});

    // The preview and the download come from the file server.
    QSignalSpy previewed(files.get(), &ServerFiles::previewReady);
    files->preview(stored[0], 250);
    ASSERT_TRUE(previewed.wait(20000));
    const QImage shown = previewed.first().at(1).value<QImage>();
    EXPECT_EQ(shown.width(), 250);
    EXPECT_EQ(shown.height(), 125);
    const QString back = folder.file("back.png");
    ASSERT_TRUE(finish([&] { files->download(stored[0], back); }).value(0).toBool());
    EXPECT_EQ(readAll(back), picture);

    // The file stays while another row describes it, and goes with the last.
    ASSERT_TRUE(finish([&] { files->remove(stored[0]); }).value(0).toBool());
    EXPECT_EQ(fileServer.read(onServer), picture);
    ASSERT_TRUE(finish([&] { files->remove(stored[1]); }).value(0).toBool());
    EXPECT_FALSE(QFile::exists(fileServer.file(onServer)));
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(DocumentStoreTest, DeleteAllEmptiesTheTable) {
    const QString path = makeFile(QStringLiteral("a.txt"), "текст");
    ASSERT_TRUE(finish([&] { files->upload(path, "1"); }).value(0).toBool());
    ASSERT_TRUE(finish([&] { files->upload(path, "2"); }).value(0).toBool());
    ASSERT_EQ(rows().size(), 2);
    ASSERT_TRUE(finish([&] { files->removeAll(); }).value(0).toBool());
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(DocumentStoreTest, RefusedSettingsAndAWrongPasswordAreToldWithTheReason) {
    struct Case {
        const char *what;
        std::function<void(StoreAccess &)> change;
        QString expected;
    };
    const QList<Case> cases = {
        {"a key that cannot name a table", [](StoreAccess &a) { a.table = "ключ; DROP"; },
         "не годится для имени таблицы"},
        {"no key", [](StoreAccess &a) { a.table.clear(); }, "Не указан ключ учётной записи"},
        {"no server", [](StoreAccess &a) { a.host.clear(); }, "Сервер файлов не настроен"},
        {"a wrong password", [](StoreAccess &a) { a.password = "не тот"; }, "Access denied"},
        {"a port where nobody listens", [](StoreAccess &a) { a.port = 1; },
         "Не удалось подключиться к серверу файлов"},
    };
    for (const Case &c : cases) {
        StoreAccess a = access;
        c.change(a);
        files->setAccess(a);
        QSignalSpy failed(files.get(), &ServerFiles::listFailed);
        files->read({});
        ASSERT_TRUE(failed.wait(30000)) << c.what;
        EXPECT_TRUE(failed.first().at(0).toString().contains(c.expected))
            << c.what << ": " << failed.first().at(0).toString().toStdString();
    }
    // The right settings again: the store works.
    files->setAccess(access);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(DocumentStoreTest, ServerThatStallsMidDownloadEndsWithTheReasonAndOverwritesNothing) {
    const QByteArray bytes = pattern(3 * 1024 * 1024);
    const QString path = makeFile(QStringLiteral("Большая.pdf"), bytes);
    const QVariantList up = finish([&] { files->upload(path, QString()); });
    ASSERT_TRUE(up.value(0).toBool())
        << up.size() << up.value(1).toBool() << up.value(2).toString().toStdString();
    const StoredFile row = rows().value(0);

    StallingProxy proxy(access.host, access.port);
    StoreAccess stalling = access;
    stalling.port = proxy.port();
    stalling.timeoutSeconds = 2;
    files->setAccess(stalling);
    ASSERT_TRUE(rows().size() == 1); // connected through the proxy
    proxy.stallAfter(256 * 1024);    // from here on: the handshake is done, the file is half-way
    const QString target = makeFile(QStringLiteral("Большая.pdf.local"), "прежний файл");
    QElapsedTimer clock;
    clock.start();
    const QVariantList end = finish([&] { files->download(row, target); });
    ASSERT_EQ(end.size(), 3);
    EXPECT_FALSE(end[0].toBool());
    EXPECT_FALSE(end[1].toBool());
    EXPECT_TRUE(end[2].toString().contains("прервалась")) << end[2].toString().toStdString();
    EXPECT_TRUE(proxy.stalled());
    EXPECT_LT(clock.elapsed(), 30000);
    EXPECT_EQ(readAll(target), QByteArray("прежний файл"));
    // No temporary file is left beside the target.
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).filter("Большая.pdf.local").size(),
              1);
}

TEST_F(DocumentStoreTest, CancelledUploadShowsProgressAndLeavesNoRow) {
    StallingProxy proxy(access.host, access.port);
    proxy.throttleUpload(1024 * 1024);
    StoreAccess slow = access;
    slow.port = proxy.port();
    files->setAccess(slow);
    ASSERT_TRUE(rows().isEmpty());
    const QString path = makeFile(QStringLiteral("Долгая.zip"), pattern(12 * 1024 * 1024));
    QSignalSpy done(files.get(), &ServerFiles::finished);
    files->upload(path, QString());
    EXPECT_TRUE(files->busy());
    // Progress moves, then the user cancels.
    QElapsedTimer clock;
    clock.start();
    while (files->done() < 2 * 1024 * 1024 && clock.elapsed() < 30000 && done.isEmpty())
        QTest::qWait(50);
    EXPECT_EQ(files->total(), 12 * 1024 * 1024);
    EXPECT_GE(files->done(), 2 * 1024 * 1024);
    EXPECT_LT(files->done(), files->total());
    files->cancel();
    clock.restart();
    ASSERT_TRUE(done.wait(10000));
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_FALSE(done.first().at(0).toBool());
    EXPECT_TRUE(done.first().at(1).toBool());
    EXPECT_FALSE(files->busy());
    files->setAccess(access);
    EXPECT_TRUE(rows().isEmpty());
}

TEST_F(DocumentStoreTest, UploadAfterSaveWritesTheDocumentWithItsAddressAndReportsFailures) {
    SavedDocumentUpload upload;
    upload.setAccess(access);
    const QString document = makeFile(QStringLiteral("Ремонт.sim"), pattern(40000));
    QSignalSpy uploaded(&upload, &SavedDocumentUpload::uploaded);
    QSignalSpy failed(&upload, &SavedDocumentUpload::failed);
    QSignalSpy idle(&upload, &SavedDocumentUpload::idle);
    upload.upload(document, QStringLiteral("Объект \"Дача\""));
    // Saved again while the first runs: the newest waits, only it follows.
    upload.upload(document, QStringLiteral("Объект \"Дача\""));
    upload.upload(document, QStringLiteral("Объект \"Дача\""));
    ASSERT_TRUE(idle.wait(60000));
    EXPECT_EQ(uploaded.size(), 2);
    EXPECT_TRUE(failed.isEmpty());
    const QList<StoredFile> stored = rows();
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored[0].address, "Объект `Дача`");
    EXPECT_EQ(stored[0].type, ".sim");
    EXPECT_EQ(storeRows(access, "SELECT user FROM " + access.table).value(0).toString(),
              StoredFiles::currentUser());

    StoreAccess wrong = access;
    wrong.password = "не тот";
    upload.setAccess(wrong);
    upload.upload(document, QString());
    ASSERT_TRUE(failed.wait(30000));
    EXPECT_TRUE(failed.first().at(1).toString().contains("Access denied"));
    upload.setAccess(access);
    upload.upload(folder.file("нет такого.sim"), QString());
    ASSERT_TRUE(failed.wait(30000));
    EXPECT_EQ(failed.size(), 2);
    EXPECT_EQ(rows().size(), 2);
}
