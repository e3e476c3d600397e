// The server's paths and replies, refusals of keys and paths, HTTPS, the log and the command line.

#include "FileServerTest.h"
#include "fileserver/SafePath.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>

namespace {
std::string text(const QByteArray &b) {
    return b.toStdString();
}
} // namespace

TEST_F(FileServerTest, ProgramPathsAnswerFromTheDataFolder) {
    auto version = post(Protocol::kVersionInfo, {{"info", "32"}});
    ASSERT_TRUE(version);
    EXPECT_EQ(version->status, 200);
    EXPECT_EQ(version->reason, "OK");
    EXPECT_EQ(version->body, VIRN_PROJECT_VERSION);

    auto stamp = post(Protocol::kReadInfo, {{"info", "ok"}});
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->body, text(server.read("virn_8/info_stamp.txt").trimmed()));

    for (const char *path : {Protocol::kVersionNotes, Protocol::kInfoText, Protocol::kPlugin}) {
        SCOPED_TRACE(path);
        auto got = client->Get(path);
        ASSERT_TRUE(got);
        EXPECT_EQ(got->status, 200);
        const QString name = QString::fromLatin1(path).section(QLatin1Char('/'), -1);
        EXPECT_EQ(got->body, text(server.read(QStringLiteral("virn_8/") + name)));
        EXPECT_FALSE(got->body.empty());
    }
    auto missing = client->Get("/files/virn_8/nothing.txt");
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->status, 404);
    auto unknownPath = client->Get("/somewhere/else");
    ASSERT_TRUE(unknownPath);
    EXPECT_EQ(unknownPath->status, 404);
}

TEST_F(FileServerTest, NewsStampFallsBackToTheDayOfTheText) {
    QFile::remove(server.file("virn_8/info_stamp.txt"));
    auto stamp = post(Protocol::kReadInfo, {{"info", "ok"}});
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->status, 200);
    EXPECT_EQ(stamp->body,
              QFileInfo(server.file("virn_8/info.txt")).lastModified().toString("dd.MM.yyyy").toStdString());
    QFile::remove(server.file("virn_8/info.txt"));
    EXPECT_EQ(post(Protocol::kReadInfo, {{"info", "ok"}})->status, 404);
    QFile::remove(server.file("virn_8/version.txt"));
    EXPECT_EQ(post(Protocol::kVersionInfo, {{"info", "32"}})->status, 404);
}

TEST_F(FileServerTest, CashBookRoundTrip) {
    auto before = post(Protocol::kExistsCashbase, {{"key", key()}});
    ASSERT_TRUE(before);
    EXPECT_EQ(before->body, "no");

    const std::string book = std::string("SQLite format 3\0", 16) + std::string(5000, '\x7f');
    auto stored = upload(key(), "cashbase.db", book);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->status, 200);
    EXPECT_EQ(stored->body, Protocol::kReplyUploaded);

    EXPECT_EQ(post(Protocol::kExistsCashbase, {{"key", key()}})->body, "ok");
    auto back = client->Get(("/files/base_virn_s/" + key() + "/cashbase.db").c_str());
    ASSERT_TRUE(back);
    EXPECT_EQ(back->status, 200);
    EXPECT_EQ(back->body, book);
    // Nothing is left behind in the folder of uploads in progress.
    EXPECT_TRUE(QDir(server.file(".incoming")).isEmpty());
}

TEST_F(FileServerTest, PicturesGoIntoTheAddressFolderAndAreDeleted) {
    const std::string picture = "\x89PNG\r\n\x1a\n picture bytes";
    const std::string folder = "г. Москва, ул. Ленина, д. 5 кв. 7";
    auto stored = upload(key(), "Фото кухни.png", picture, folder);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->body, Protocol::kReplyUploaded);
    EXPECT_EQ(
        server.read("base_virn_s/test_key/Picture/" + QString::fromStdString(folder) + "/Фото кухни.png"),
        QByteArray::fromStdString(picture));
    // Without a folder the picture lies in Picture itself.
    ASSERT_TRUE(upload(key(), "plan.JPG", picture));
    EXPECT_TRUE(QFileInfo::exists(server.file("base_virn_s/test_key/Picture/plan.JPG")));

    const std::string path =
        "/files/base_virn_s/" + key() + "/Picture/" +
        QUrl::toPercentEncoding(QString::fromStdString(folder + "/Фото кухни.png"), "/").toStdString();
    auto got = client->Get(path.c_str());
    ASSERT_TRUE(got);
    EXPECT_EQ(got->status, 200);
    EXPECT_EQ(got->body, picture);
    EXPECT_EQ(got->get_header_value("Content-Type"), "image/png");

    auto deleted =
        post(Protocol::kDeleteFile, {{"key", key()}, {"path", "Picture/" + folder + "/Фото кухни.png"}});
    ASSERT_TRUE(deleted);
    EXPECT_EQ(deleted->status, 200);
    EXPECT_EQ(deleted->body, Protocol::kReplyDeleted);
    EXPECT_EQ(client->Get(path.c_str())->status, 404);
    // The emptied address folder went with it.
    EXPECT_FALSE(
        QFileInfo::exists(server.file("base_virn_s/test_key/Picture/" + QString::fromStdString(folder))));
    EXPECT_EQ(post(Protocol::kDeleteFile, {{"key", key()}, {"path", "Picture/nothing.png"}})->status, 404);
}

TEST_F(FileServerTest, UploadsOtherThanTheCashBookOrPicturesAreRefused) {
    for (const char *name : {"estimate.sim", "cashbase.db.bak", "script.php", ""}) {
        SCOPED_TRACE(name);
        auto r = upload(key(), name, "bytes");
        ASSERT_TRUE(r);
        EXPECT_EQ(r->status, 400);
    }
    auto empty = upload(key(), "cashbase.db", "");
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->status, 400);
    EXPECT_FALSE(QFileInfo::exists(server.file("base_virn_s/test_key/cashbase.db")));
}

TEST_F(FileServerTest, UnknownKeysGet403Everywhere) {
    server.put("base_virn_s/someone/cashbase.db", "another account's book");
    for (const std::string &k : {std::string("someone"), std::string("TEST_KEY"), std::string(""),
                                 std::string("test_key "), std::string("test_key/..")}) {
        SCOPED_TRACE(k);
        EXPECT_EQ(post(Protocol::kExistsCashbase, {{"key", k}})->status, 403);
        EXPECT_EQ(upload(k, "cashbase.db", "x")->status, 403);
        EXPECT_EQ(post(Protocol::kDeleteFile, {{"key", k}, {"path", "Picture/a.png"}})->status, 403);
    }
    auto get = client->Get("/files/base_virn_s/someone/cashbase.db");
    ASSERT_TRUE(get);
    EXPECT_EQ(get->status, 403);
    EXPECT_EQ(get->body.find("another"), std::string::npos);
}

TEST_F(FileServerTest, PathsThatLeaveTheirFolderAreRefused) {
    server.put("virn_8/../secret.txt", "secret");
    server.put("base_virn_s/test_key/Picture/ok.png", "picture");
    // Paths sent exactly as written (cpp-httplib does not tidy them).
    const char *paths[] = {
        "/files/base_virn_s/test_key/../../accounts.txt",
        "/files/base_virn_s/test_key/Picture/../../../secret.txt",
        "/files/base_virn_s/test_key/Picture/%2e%2e/%2e%2e/%2e%2e/secret.txt",
        "/files/base_virn_s/test_key/Picture/..%2f..%2f..%2fsecret.txt",
        "/files/base_virn_s/../accounts.txt",
        "/files/base_virn_s//etc/passwd",
        "/files/base_virn_s/test_key//etc/passwd",
        "/files/base_virn_s/test_key/Picture/%2fetc%2fpasswd",
        "/files/virn_8/../secret.txt",
        "/files/virn_8/%2e%2e/secret.txt",
        "/files/virn_8//etc/passwd",
        "/files/virn_8/%2fetc%2fpasswd",
        "/files/virn_8/..\\secret.txt",
    };
    for (const char *path : paths) {
        SCOPED_TRACE(path);
        auto r = client->Get(path);
        ASSERT_TRUE(r);
        EXPECT_GE(r->status, 400);
        EXPECT_LT(r->status, 500);
        EXPECT_EQ(r->body.find("secret"), std::string::npos);
        EXPECT_EQ(r->body.find("test_key"), std::string::npos);
        EXPECT_EQ(r->body.find("root:"), std::string::npos);
    }
    for (const std::string &path :
         {std::string("../../accounts.txt"), std::string("/etc/passwd"),
          std::string("Picture/../../../secret.txt"), std::string("Picture/../cashbase.db"),
          std::string("Picture//ok.png"), std::string("cashbase.db")}) {
        SCOPED_TRACE(path);
        EXPECT_GE(post(Protocol::kDeleteFile, {{"key", key()}, {"path", path}})->status, 400);
    }
    for (const auto &[name, folder] :
         std::vector<std::pair<std::string, std::string>>{{"../x.png", ""},
                                                          {"/tmp/x.png", ""},
                                                          {"x.png", ".."},
                                                          {"x.png", "../.."},
                                                          {"x.png", "a/b"},
                                                          {"x.png", "/tmp"},
                                                          {"cashbase.db", "sub"}}) {
        SCOPED_TRACE(name + " in " + folder);
        EXPECT_EQ(upload(key(), name, "x", folder)->status, 400);
    }
    EXPECT_EQ(server.read("virn_8/../secret.txt"), "secret");
    EXPECT_EQ(server.read("base_virn_s/test_key/Picture/ok.png"), "picture");
    EXPECT_FALSE(QFileInfo::exists(QDir(server.dataFolder()).filePath("../x.png")));
}

TEST(SafePath, NamesAndRelativePaths) {
    struct Case {
        std::string path;
        bool ok;
    };
    const Case cases[] = {
        {"Picture/a.png", true},
        {"Picture/ул. Ленина, 5/фото.jpg", true},
        {"a", true},
        {"..", false},
        {".", false},
        {"a/../b", false},
        {"/a", false},
        {"a//b", false},
        {"a/", false},
        {"", false},
        {"a\\b", false},
        {std::string("a\0b", 3), false},
        {"a\nb", false},
        {std::string(256, 'x'), false},
        {std::string(255, 'x'), true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(SafePath::split(c.path).has_value(), c.ok);
    }
}

TEST(SafePath, SymbolicLinksOutOfTheFolderAreRefused) {
    QTemporaryDir dir;
    QDir(dir.path()).mkpath("base/inside");
    QDir(dir.path()).mkpath("outside");
    ASSERT_TRUE(QFile::link(dir.filePath("outside"), dir.filePath("base/escape")));
    const std::filesystem::path base = dir.filePath("base").toStdString();
    EXPECT_TRUE(SafePath::resolve(base, {"inside", "file.png"}).has_value());
    EXPECT_FALSE(SafePath::resolve(base, {"escape", "file.png"}).has_value());
}

TEST_F(FileServerTest, EveryRequestIsLoggedWithTimeKeyPathAndStatus) {
    post(Protocol::kExistsCashbase, {{"key", key()}});
    post(Protocol::kExistsCashbase, {{"key", "stranger"}});
    upload(key(), "cashbase.db", "book");
    client->Get("/files/base_virn_s/test_key/cashbase.db");
    client->Get("/no/such/path");
    // A line is written once its reply is out: each may follow its reply by a moment, in any order.
    const QStringList expected = {
        " key=test_key POST /files/base_virn_s/exists_cashbase.php 200 ",
        " key=stranger POST /files/base_virn_s/exists_cashbase.php 403 ",
        " key=test_key POST /files/base_virn_s/post_cashbase.php 200 ",
        " key=test_key GET /files/base_virn_s/test_key/cashbase.db 200 ",
        " key=- GET /no/such/path 404 ",
    };
    for (const QString &line : expected)
        EXPECT_TRUE(server.logged(line)) << line.toStdString() << "\n" << server.log().toStdString();
    const QString log = server.log();
    // Each line starts with the date and time.
    EXPECT_TRUE(
        log.contains(QRegularExpression(R"(\n\d{4}-\d\d-\d\d \d\d:\d\d:\d\d 127\.0\.0\.1 key=test_key)")));
}

TEST_F(FileServerTest, AnAccountAddedToTheFileIsKnownWithoutARestart) {
    EXPECT_EQ(post(Protocol::kExistsCashbase, {{"key", "newcomer"}})->status, 403);
    QThread::msleep(1100); // the file is looked at no more than once a second
    server.put("accounts.txt", "test_key\nnewcomer # added later\n");
    QThread::msleep(1100);
    EXPECT_EQ(post(Protocol::kExistsCashbase, {{"key", "newcomer"}})->status, 200);
}

TEST(FileServerHttps, ServesWithATestCertificate) {
    ensureApplication();
    QTemporaryDir dir;
    QString error;
    ASSERT_TRUE(FileServerProcess::makeTestCertificate(dir.path(), &error)) << error.toStdString();

    FileServerProcess server;
    ASSERT_TRUE(server.start({"--cert", dir.filePath("cert.pem"), "--key", dir.filePath("key.pem")}))
        << server.error().toStdString();
    EXPECT_EQ(server.url().scheme(), "https");
    httplib::SSLClient tls("127.0.0.1", server.url().port());
    tls.set_ca_cert_path(dir.filePath("cert.pem").toStdString().c_str());
    tls.enable_server_certificate_verification(true);
    auto version = tls.Post(Protocol::kVersionInfo, httplib::Params{{"info", "32"}});
    ASSERT_TRUE(version) << httplib::to_string(version.error());
    EXPECT_EQ(version->status, 200);
    EXPECT_EQ(version->body, VIRN_PROJECT_VERSION);
    // Plain HTTP gets no reply from the HTTPS port.
    httplib::Client plain("127.0.0.1", server.url().port());
    plain.set_read_timeout(5, 0);
    auto refused = plain.Post(Protocol::kVersionInfo, httplib::Params{{"info", "32"}});
    EXPECT_TRUE(!refused || refused->status != 200);
}

TEST(FileServerCommandLine, HelpAndBadArguments) {
    ensureApplication();
    struct Case {
        QStringList args;
        int exitCode;
        QString says;
    };
    const Case cases[] = {
        {{"--help"}, 0, "Использование: virn-fileserver"},
        {{"--version"}, 0, "virn-fileserver " VIRN_PROJECT_VERSION},
        {{}, 2, "не указана папка данных"},
        {{"--port", "70000", "/tmp"}, 2, "порт должен быть числом"},
        {{"--cert", "c.pem", "/tmp"}, 2, "нужны оба файла"},
        {{"--bogus", "/tmp"}, 2, "неизвестный параметр --bogus"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(FileServerProcess::executable(), c.args);
        ASSERT_TRUE(p.waitForFinished(10000));
        EXPECT_EQ(p.exitCode(), c.exitCode);
        EXPECT_TRUE(QString::fromUtf8(p.readAll()).contains(c.says));
    }
}

// The server scripts/services/fileserver.sh starts for `make test` (and `make run`): seeded with the
// build's version and plug-in, knowing its one account.
TEST(FileServerService, TheSharedServerAnswers) {
    const QUrl url(qEnvironmentVariable("VIRN_TEST_FILESERVER_URL"));
    if (url.isEmpty())
        GTEST_SKIP() << "VIRN_TEST_FILESERVER_URL is not set: start scripts/services/fileserver.sh (make test does)";
    httplib::Client client(url.host().toStdString(), url.port());
    auto version = client.Post(Protocol::kVersionInfo, httplib::Params{{"info", "32"}});
    ASSERT_TRUE(version);
    EXPECT_EQ(version->body, VIRN_PROJECT_VERSION);
    const std::string key = qEnvironmentVariable("VIRN_TEST_FILESERVER_KEY").toStdString();
    EXPECT_EQ(client.Post(Protocol::kExistsCashbase, httplib::Params{{"key", key}})->status, 200);
    EXPECT_EQ(client.Post(Protocol::kExistsCashbase, httplib::Params{{"key", key + "x"}})->status, 403);
    auto plugin = client.Get(Protocol::kPlugin);
    ASSERT_TRUE(plugin);
    QFile built(FileServerProcess::seedFolder() + "/virn_8/square_shapes.so");
    ASSERT_TRUE(built.open(QIODevice::ReadOnly));
    EXPECT_EQ(plugin->body, built.readAll().toStdString());
}
