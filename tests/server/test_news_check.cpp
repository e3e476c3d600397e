// The news check against the real file server: a stamp other than the last one seen brings the news
// text, saved as info.txt; a missing "LastInfo" means "14.09.2018"; garbage is not shown.

#include "CheckFixture.h"
#include "server/NewsCheck.h"
#include "server/ReplyText.h"

namespace {
struct NewsRun {
    int shown = 0;
    QString stamp;
    QString text;
};
} // namespace

class NewsCheckTest : public CheckFixture {
protected:
    NewsRun check(const QString &lastSeen) {
        NewsCheck news(&client, data(), lastSeen);
        NewsRun result;
        QObject::connect(&news, &NewsCheck::newsArrived, [&](const QString &stamp, const QString &text) {
            ++result.shown;
            result.stamp = stamp;
            result.text = text;
        });
        run(news);
        return result;
    }
};

TEST_F(NewsCheckTest, ANewStampBringsTheNews) {
    server.put("virn_8/info_stamp.txt", "20.05.2025\n");
    server.put("virn_8/info.txt", "Новая версия прайса.\nВторая строка.");
    const NewsRun r = check("01.03.2025");
    EXPECT_EQ(r.shown, 1);
    EXPECT_EQ(r.stamp, "20.05.2025");
    EXPECT_EQ(r.text, "Новая версия прайса.\nВторая строка.");
    EXPECT_EQ(read(folder.file("data/info.txt")), server.read("virn_8/info.txt"));
}

TEST_F(NewsCheckTest, TheSeenStampAndTheDefaultFetchNoText) {
    server.put("virn_8/info_stamp.txt", "14.09.2018");
    for (const QString &lastSeen : {QString(), QString(""), QString("14.09.2018")}) {
        SCOPED_TRACE(lastSeen.toStdString());
        EXPECT_EQ(check(lastSeen).shown, 0);
    }
    EXPECT_EQ(NewsCheck::defaultStamp(), "14.09.2018");
    EXPECT_FALSE(server.log().contains("info.txt"));
    EXPECT_FALSE(QFile::exists(folder.file("data/info.txt")));
    // Any other stamp is news.
    EXPECT_EQ(check("13.09.2018").shown, 1);
}

TEST_F(NewsCheckTest, GarbageIsNotShownAsNews) {
    struct Case {
        const char *what;
        QByteArray stamp, text;
    };
    const Case cases[] = {
        {"an HTML stamp", "<html>502 Bad Gateway</html>", "text"},
        {"a binary text", "02.02.2025", QByteArray("\x00\x01\x02 binary", 10)},
        {"broken UTF-8", "02.02.2025", QByteArray("\xd0\x9d\xd0", 3)},
        {"an HTML page", "02.02.2025", "<!DOCTYPE html><html><body>Not here</body></html>"},
        {"an empty text", "02.02.2025", "  \n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        server.put("virn_8/info_stamp.txt", c.stamp);
        server.put("virn_8/info.txt", c.text);
        EXPECT_EQ(check("01.01.2000").shown, 0);
        EXPECT_FALSE(QFile::exists(folder.file("data/info.txt")));
    }
}

TEST(ReplyText, VersionsStampsAndTexts) {
    EXPECT_EQ(ReplyText::version(" 8.1.0\r\n"), "8.1.0");
    EXPECT_EQ(ReplyText::version("8.1.0-beta+2"), "8.1.0-beta+2");
    EXPECT_EQ(ReplyText::version("<b>8</b>"), "");
    EXPECT_EQ(ReplyText::version(""), "");
    EXPECT_EQ(ReplyText::stamp("14.09.2018\n"), "14.09.2018");
    EXPECT_EQ(ReplyText::stamp(QByteArray(65, '1')), "");
    EXPECT_EQ(ReplyText::stamp("a\x01b"), "");
    EXPECT_EQ(ReplyText::text("\xef\xbb\xbfПривет"), "Привет");
    EXPECT_EQ(ReplyText::text("табуляция\tи\r\nстроки"), "табуляция\tи\r\nстроки");
    EXPECT_EQ(ReplyText::text("<html><body>x</body></html>"), "");
}
