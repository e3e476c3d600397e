// The version check against the real file server: a plain inequality of texts decides; the program's
// copy ".old" and the release notes come before the offer; garbage and failures offer nothing.

#include "CheckFixture.h"
#include "server/ProgramVersion.h"
#include "server/UpdateCheck.h"

TEST_F(CheckFixture, EqualVersionOffersNothing) {
    // The seed holds the project's version, which is the program's own.
    EXPECT_EQ(programVersion(), VIRN_PROJECT_VERSION);
    UpdateCheck check(&client, {programVersion(), program(), data()});
    QSignalSpy offers(&check, &UpdateCheck::updateAvailable);
    run(check);
    EXPECT_EQ(offers.count(), 0);
    EXPECT_TRUE(check.upToDate());
    EXPECT_TRUE(check.problem().isEmpty());
    EXPECT_FALSE(QFile::exists(folder.file("program/virn-smeta.old")));
    EXPECT_FALSE(QFile::exists(folder.file("data/version8.txt")));
    EXPECT_TRUE(server.logged("POST /files/virn_8/version_info.php 200"));
}

TEST_F(CheckFixture, AnyOtherVersionIsOffered) {
    for (const char *latest : {"8.0.1", "7.9", "8.0.0 beta", "8.0.0-2"}) {
        SCOPED_TRACE(latest);
        server.put("virn_8/version.txt", QByteArray(latest) + "\n");
        QFile::remove(folder.file("program/virn-smeta.old"));
        QFile::remove(folder.file("data/version8.txt"));
        UpdateCheck check(&client, {"8.0.0", program(), data()});
        QSignalSpy offers(&check, &UpdateCheck::updateAvailable);
        run(check);
        ASSERT_EQ(offers.count(), 1);
        EXPECT_EQ(offers.at(0).at(0).toString(), QString::fromUtf8(latest));
        EXPECT_EQ(read(folder.file("program/virn-smeta.old")), "the program as installed");
        EXPECT_EQ(read(folder.file("data/version8.txt")), server.read("virn_8/version8.txt"));
    }
}

TEST_F(CheckFixture, GarbageOrFailureOffersNothing) {
    struct Case {
        const char *what;
        QByteArray version; // empty: no version file
        bool notes;
    };
    const Case cases[] = {
        {"an HTML page", "<html><body>Service unavailable</body></html>", true},
        {"binary bytes", QByteArray("\x01\x02\xff\xfe", 4), true},
        {"too long", QByteArray(40, '9'), true},
        {"a blank reply", "   \n", true},
        {"no version at all", QByteArray(), true},
        {"no release notes", "9.0", false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        QFile::remove(server.file("virn_8/version.txt"));
        if (!c.version.isEmpty())
            server.put("virn_8/version.txt", c.version);
        if (!c.notes)
            QFile::remove(server.file("virn_8/version8.txt"));
        UpdateCheck check(&client, {"8.0.0", program(), data()});
        QSignalSpy offers(&check, &UpdateCheck::updateAvailable);
        run(check);
        EXPECT_EQ(offers.count(), 0);
        EXPECT_FALSE(check.upToDate());
        EXPECT_FALSE(check.problem().isEmpty());
        EXPECT_FALSE(QFile::exists(folder.file("data/version8.txt")));
    }
}

TEST_F(CheckFixture, NoServerRequestsNothing) {
    RemoteClient none;
    UpdateCheck check(&none, {"8.0.0", program(), data()});
    QSignalSpy offers(&check, &UpdateCheck::updateAvailable);
    run(check);
    EXPECT_EQ(offers.count(), 0);
    EXPECT_FALSE(server.log().contains("version_info.php"));
}

TEST(UpdateCheckOldCopy, NameAndOverwrite) {
    EXPECT_EQ(UpdateCheck::oldCopyPath("/opt/virn/virn-smeta"), "/opt/virn/virn-smeta.old");
    EXPECT_EQ(UpdateCheck::oldCopyPath("C:/Virn/virn_8.exe"), "C:/Virn/virn_8.old");
    TestFolder folder;
    const QString exe = folder.file("virn-smeta");
    for (const QByteArray &content : {QByteArray("first"), QByteArray("second, longer")}) {
        QFile f(exe);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(content);
        f.close();
        ASSERT_TRUE(UpdateCheck::copyToOld(exe, nullptr));
        QFile old(folder.file("virn-smeta.old"));
        ASSERT_TRUE(old.open(QIODevice::ReadOnly));
        EXPECT_EQ(old.readAll(), content);
    }
    QString error;
    EXPECT_FALSE(UpdateCheck::copyToOld(folder.file("missing"), &error));
    EXPECT_FALSE(error.isEmpty());
}
