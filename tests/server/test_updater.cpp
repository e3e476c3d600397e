// The updater download_update_s8 against the real file server: it installs a checked package and
// starts the new program in the user's folder; a package that fails its check changes nothing and
// the old program is started again.

#include "FileServerProcess.h"
#include "TestFolder.h"
#include "server/Updater.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QtTest/QTest>
#include <gtest/gtest.h>

namespace {

void write(const QString &path, const QByteArray &bytes, bool executable = false) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
    f.close();
    if (executable)
        f.setPermissions(f.permissions() | QFileDevice::ExeOwner | QFileDevice::ExeUser);
}

QByteArray read(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A program that says which one it is by a file in the folder it was started in.
QByteArray fakeProgram(const char *which) {
    return QByteArray("#!/bin/sh\necho started > \"$PWD/started-") + which + "\"\n";
}

} // namespace

class UpdaterTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        write(program("virn-smeta"), fakeProgram("old"), true);
        write(program("virn-office"), "old office helper", true);
        ASSERT_TRUE(QFile::copy(VIRN_UPDATER, program(Updater::fileName())));
        QDir(folder.path()).mkpath("work");
    }
    QString program(const QString &name) const { return folder.file("program/" + name); }
    QString work(const QString &name) const { return folder.file("work/" + name); }

    // Packs the files of a staging folder as the server's new version with its checksum.
    void publish(const QMap<QString, QByteArray> &files, const QByteArray &checksum = {}) {
        TestFolder stage;
        for (auto it = files.begin(); it != files.end(); ++it)
            write(stage.file(it.key()), it.value(), true);
        QProcess tar;
        tar.setWorkingDirectory(stage.path());
        tar.start("tar", QStringList{"-czf", folder.file("package.tar.gz")} + files.keys());
        ASSERT_TRUE(tar.waitForFinished(30000));
        ASSERT_EQ(tar.exitCode(), 0) << tar.readAllStandardError().toStdString();
        const QByteArray package = read(folder.file("package.tar.gz"));
        server.put("virn_8/virn-smeta.tar.gz", package);
        const QByteArray sum = checksum.isEmpty()
                                   ? QCryptographicHash::hash(package, QCryptographicHash::Sha256).toHex()
                                   : checksum;
        server.put("virn_8/virn-smeta.tar.gz.sha256", sum + "  virn-smeta.tar.gz\n");
    }
    int runUpdater() {
        QProcess p;
        p.start(program(Updater::fileName()), {"--server", server.url().toString(), "--folder",
                                               folder.file("program"), "--cwd", folder.file("work")});
        EXPECT_TRUE(p.waitForFinished(60000));
        return p.exitCode();
    }
    QString log() const { return QString::fromUtf8(read(program("download_update_s8.log"))); }

    FileServerProcess server;
    TestFolder folder;
};

TEST_F(UpdaterTest, InstallsTheCheckedPackageAndStartsTheNewProgram) {
    publish({{"virn-smeta", fakeProgram("new")}, {"virn-office", "new office helper"}});
    EXPECT_EQ(runUpdater(), 0) << log().toStdString();
    EXPECT_EQ(read(program("virn-smeta")), fakeProgram("new"));
    EXPECT_EQ(read(program("virn-office")), "new office helper");
    EXPECT_TRUE(QFileInfo(program("virn-smeta")).isExecutable());
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(work("started-new")); }, 10000));
    EXPECT_FALSE(QFile::exists(work("started-old")));
    EXPECT_TRUE(log().contains("установлено файлов: 2")) << log().toStdString();
    // Nothing of the download is left behind.
    EXPECT_TRUE(
        QDir(folder.file("program")).entryList({".update.*"}, QDir::AllEntries | QDir::Hidden).isEmpty());
}

TEST_F(UpdaterTest, APackageThatFailsItsCheckChangesNothing) {
    struct Case {
        const char *what;
        QMap<QString, QByteArray> files;
        QByteArray checksum;
        const char *logged;
    };
    const Case cases[] = {
        {"wrong checksum", {{"virn-smeta", fakeProgram("new")}}, QByteArray(64, 'a'), "контрольная сумма"},
        {"damaged checksum", {{"virn-smeta", fakeProgram("new")}}, "not-a-sum", "повреждена"},
        {"no program inside", {{"readme.txt", "hello"}}, {}, "нет программы virn-smeta"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        QFile::remove(work("started-old"));
        publish(c.files, c.checksum);
        EXPECT_EQ(runUpdater(), 1);
        EXPECT_EQ(read(program("virn-smeta")), fakeProgram("old"));
        EXPECT_TRUE(log().contains(QString::fromUtf8(c.logged))) << log().toStdString();
        // The old program is started again.
        EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(work("started-old")); }, 10000));
    }
}

TEST_F(UpdaterTest, NoPackageOnTheServer) {
    EXPECT_EQ(runUpdater(), 1);
    EXPECT_EQ(read(program("virn-smeta")), fakeProgram("old"));
    EXPECT_TRUE(log().contains("не удалось загрузить новую версию")) << log().toStdString();
}

TEST(UpdaterStart, MissingUpdaterIsNamed) {
    TestFolder empty;
    QString error;
    EXPECT_FALSE(Updater::start(empty.path(), QUrl("http://127.0.0.1:1"), empty.path(), 1, &error));
    EXPECT_EQ(error, "Отсутствует загрузчик обновлений \"download_update_s8\"");
}
