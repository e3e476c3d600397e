// The program's HTTP client against the real file server and against servers that misbehave: every
// request ends within its limits with a Russian message, a reply over its cap is dropped.

#include "FileServerProcess.h"
#include "SilentServer.h"
#include "TestFolder.h"
#include "fileserver/Protocol.h"
#include "server/FileServerSettings.h"
#include "server/RemoteClient.h"
#include "storage/SettingsStore.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <gtest/gtest.h>

class RemoteClientTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        client.setServer(server.url(), server.key());
    }
    FileServerProcess server;
    RemoteClient client;
    TestFolder folder;
};

TEST_F(RemoteClientTest, FormsFilesAndDownloads) {
    const RemoteResult version =
        RemoteClient::wait(client.postForm(Protocol::kVersionInfo, {{"info", "32"}}));
    EXPECT_TRUE(version.statusOk()) << version.error.toStdString();
    EXPECT_EQ(version.status, 200);
    EXPECT_EQ(version.text(), QString::fromUtf8(server.read("virn_8/version.txt")).trimmed());

    const QString book = folder.file("cashbase.db");
    QFile f(book);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(300000, 'k'));
    f.close();
    const RemoteResult posted =
        RemoteClient::wait(client.postFile(Protocol::kPostCashbase, {{"key", client.accountKey()}}, "file",
                                           book, "cashbase.db", {15000, 60000, 4096}));
    EXPECT_TRUE(posted.statusOk()) << posted.error.toStdString();
    EXPECT_TRUE(posted.text().contains(QString::fromUtf8(Protocol::kReplyUploaded)));
    EXPECT_EQ(server.read("base_virn_s/test_key/cashbase.db"), QByteArray(300000, 'k'));

    const RemoteResult exists =
        RemoteClient::wait(client.postForm(Protocol::kExistsCashbase, {{"key", "test_key"}}));
    EXPECT_EQ(exists.text(), "ok");
    const RemoteResult back =
        RemoteClient::wait(client.get("/files/base_virn_s/test_key/cashbase.db", {15000, 60000, 300000}));
    EXPECT_TRUE(back.statusOk()) << back.error.toStdString();
    EXPECT_EQ(back.body, QByteArray(300000, 'k'));
}

TEST_F(RemoteClientTest, PathsWithCyrillicSpacesAndMarksArrive) {
    const QString picture = folder.file("p.png");
    QFile f(picture);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("png bytes");
    f.close();
    const QString address = "ул. Мира 5, кв. #3 `A` 100%";
    const RemoteResult posted = RemoteClient::wait(client.postFile(Protocol::kPostCashbase,
                                                                   {{"key", "test_key"}, {"folder", address}},
                                                                   "file", picture, "Фото \"1\".png"));
    EXPECT_TRUE(posted.statusOk()) << posted.error.toStdString();
    // The quotes of a name become backticks, as everywhere in the program.
    const RemoteResult back =
        RemoteClient::wait(client.get("/files/base_virn_s/test_key/Picture/" + address + "/Фото `1`.png"));
    EXPECT_TRUE(back.statusOk()) << back.error.toStdString();
    EXPECT_EQ(back.body, "png bytes");
}

TEST_F(RemoteClientTest, RefusalsArriveAsRepliesWithARussianError) {
    const RemoteResult missing = RemoteClient::wait(client.get("/files/virn_8/nothing.txt"));
    EXPECT_TRUE(missing.received);
    EXPECT_EQ(missing.status, 404);
    EXPECT_FALSE(missing.statusOk());
    EXPECT_TRUE(missing.error.contains("404")) << missing.error.toStdString();
    EXPECT_TRUE(missing.error.contains("Файл не найден")) << missing.error.toStdString();

    const RemoteResult stranger =
        RemoteClient::wait(client.postForm(Protocol::kExistsCashbase, {{"key", "stranger"}}));
    EXPECT_EQ(stranger.status, 403);
    EXPECT_TRUE(stranger.error.contains("Неизвестный ключ")) << stranger.error.toStdString();
}

TEST_F(RemoteClientTest, AReplyOverItsCapIsDropped) {
    // The plug-in is some hundred kilobytes: with a cap of 1000 bytes it is refused by its length.
    const RemoteResult r = RemoteClient::wait(client.get(Protocol::kPlugin, {5000, 10000, 1000}));
    EXPECT_FALSE(r.received);
    EXPECT_TRUE(r.body.isEmpty());
    EXPECT_TRUE(r.error.contains("больше 1000 байт")) << r.error.toStdString();
}

TEST(RemoteClientLimits, MisbehavingServersEndAtTheirLimits) {
    ensureApplication();
    struct Case {
        MisbehavingServer::Kind kind;
        RemoteLimits limits;
        const char *says;
    };
    const Case cases[] = {
        {MisbehavingServer::Kind::Silent, {400, 5000, 1000}, "не отвечает дольше 0,4 с"},
        {MisbehavingServer::Kind::Trickle, {400, 900, 1 << 20}, "длится дольше 0,9 с"},
        {MisbehavingServer::Kind::Flood, {2000, 5000, 1000}, "больше 1000 байт"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.says);
        MisbehavingServer bad(c.kind);
        RemoteClient client;
        client.setServer(bad.url(), {});
        QElapsedTimer timer;
        timer.start();
        const RemoteResult r = RemoteClient::wait(client.get(Protocol::kInfoText, c.limits));
        EXPECT_LT(timer.elapsed(), c.limits.totalMs + 2000);
        EXPECT_FALSE(r.received);
        EXPECT_TRUE(r.body.isEmpty());
        EXPECT_TRUE(r.error.contains(QString::fromUtf8(c.says))) << r.error.toStdString();
    }
}

TEST(RemoteClientLimits, NoServerAndNoListener) {
    ensureApplication();
    RemoteClient none;
    EXPECT_FALSE(none.isConfigured());
    const RemoteResult r = RemoteClient::wait(none.get(Protocol::kInfoText));
    EXPECT_FALSE(r.received);
    EXPECT_EQ(r.error, "Файловый сервер не настроен.");

    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close(); // nobody listens there now
    RemoteClient closed;
    closed.setServer(QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port)), {});
    const RemoteResult refused = RemoteClient::wait(closed.get(Protocol::kInfoText));
    EXPECT_FALSE(refused.received);
    EXPECT_TRUE(refused.error.startsWith("Нет связи с сервером 127.0.0.1:")) << refused.error.toStdString();
}

TEST(RemoteClientHttps, TrustsTheServersCertificate) {
    ensureApplication();
    TestFolder dir;
    QString error;
    ASSERT_TRUE(FileServerProcess::makeTestCertificate(dir.path(), &error)) << error.toStdString();
    FileServerProcess server;
    ASSERT_TRUE(server.start({"--cert", dir.file("cert.pem"), "--key", dir.file("key.pem")}));
    RemoteClient client;
    client.setServer(server.url(), server.key());

    // A certificate nobody vouches for is refused…
    const RemoteResult untrusted =
        RemoteClient::wait(client.postForm(Protocol::kVersionInfo, {{"info", "32"}}));
    EXPECT_FALSE(untrusted.received);
    EXPECT_TRUE(untrusted.error.startsWith("Нет связи с сервером")) << untrusted.error.toStdString();

    // …and accepted once the system trusts it.
    QSslConfiguration config = QSslConfiguration::defaultConfiguration();
    config.addCaCertificates(QSslCertificate::fromPath(dir.file("cert.pem")));
    QSslConfiguration::setDefaultConfiguration(config);
    RemoteClient trusting;
    trusting.setServer(server.url(), server.key());
    const RemoteResult version =
        RemoteClient::wait(trusting.postForm(Protocol::kVersionInfo, {{"info", "32"}}));
    EXPECT_TRUE(version.statusOk()) << version.error.toStdString();
    EXPECT_EQ(version.text(), QString::fromUtf8(server.read("virn_8/version.txt")).trimmed());
}

TEST(FileServerSettings, AddressAndKeyRules) {
    struct Case {
        QString url, key;
        bool ok;
        bool hasServer;
    };
    const Case cases[] = {
        {"", "", true, false},
        {"http://127.0.0.1:8080", "", true, true},
        {"https://files.example.ru", "Brigada_7", true, true},
        {"https://files.example.ru/virn/", "k", true, true},
        {"ftp://files.example.ru", "", false, false},
        {"files.example.ru", "", false, false},
        {"http://", "", false, false},
        {"http://host/?x=1", "", false, false},
        {"http://user:pw@host", "", false, false},
        {"http://host", "ключ", false, false},
        {"http://host", "a b", false, false},
        {"http://host", "../etc", false, false},
        {"http://host", QString(65, 'k'), false, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE((c.url + " / " + c.key).toStdString());
        const FileServerSettings s{c.url, c.key};
        EXPECT_EQ(s.problem().isEmpty(), c.ok) << s.problem().toStdString();
        EXPECT_EQ(s.hasServer(), c.hasServer);
    }
}

TEST(FileServerSettings, KeptInTheSettingsStore) {
    TestFolder folder;
    {
        SettingsStore store(folder.file("IniFile.db"));
        FileServerSettings{" http://127.0.0.1:9 ", " key_1 "}.write(store);
    }
    SettingsStore store(folder.file("IniFile.db"));
    const FileServerSettings s = FileServerSettings::read(store);
    EXPECT_EQ(s.url, "http://127.0.0.1:9");
    EXPECT_EQ(s.key, "key_1");
    EXPECT_EQ(store.text("Server", "Url"), "http://127.0.0.1:9");
}

TEST(RemoteClientUrls, PathsJoinTheBaseAddress) {
    RemoteClient c;
    c.setServer(QUrl("https://host:8443/virn/"), "k");
    EXPECT_EQ(c.urlOf("/files/virn_8/info.txt").toString(), "https://host:8443/virn/files/virn_8/info.txt");
    EXPECT_EQ(c.urlOf("/files/base_virn_s/k/Picture/а б#?/x.png").toString(QUrl::FullyEncoded),
              "https://host:8443/virn/files/base_virn_s/k/Picture/%D0%B0%20%D0%B1%23%3F/x.png");
}
