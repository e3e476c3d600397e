// The rules of the server files that need no server: the grid's statement for every address and kind,
// the picture folder of an address, the size rule at its exact limit, the kinds of extensions, the
// time text of a row.

#include "server/ServerFileKinds.h"
#include "server/ServerPicture.h"
#include "server/StoredFile.h"

#include <QDateTime>
#include <gtest/gtest.h>

TEST(ServerFileRules, GridStatementForEachAddressAndKind) {
    struct Case {
        const char *what;
        FileFilter filter;
        QString sql;
        QVariantList values;
    };
    const QString select = QStringLiteral("SELECT data,name,type,address FROM key_1");
    const QStringList sheets = ServerFileKinds::all().at(ServerFileKinds::Sheets).extensions;
    const QStringList pictures = ServerFileKinds::all().at(ServerFileKinds::Pictures).extensions;
    const QString addr = QStringLiteral("г. Тверь, ул. Мира 5/2 `угол`");
    const QList<Case> cases = {
        {"everything", {}, select + " WHERE 1", {}},
        {"an address", {true, addr, {}}, select + " WHERE address=?", {addr}},
        {"an empty address", {true, QString(), {}}, select + " WHERE address=?", {QString()}},
        {"a kind of one extension", {false, {}, {".sim"}}, select + " WHERE type=?", {".sim"}},
        {"a kind of two", {false, {}, sheets}, select + " WHERE (type=? or type=?)", {".xls", ".xlsx"}},
        {"a kind of five",
         {false, {}, pictures},
         select + " WHERE (type=? or type=? or type=? or type=? or type=?)",
         {".jpg", ".jpeg", ".bmp", ".gif", ".png"}},
        {"one extension and an address",
         {true, addr, {".pdf"}},
         select + " WHERE type=? and address=?",
         {".pdf", addr}},
        {"several and an address",
         {true, addr, sheets},
         select + " WHERE (type=? or type=?) and address=?",
         {".xls", ".xlsx", addr}},
    };
    for (const Case &c : cases) {
        const BoundStatement s = fileListStatement(QStringLiteral("key_1"), c.filter);
        EXPECT_EQ(s.sql, c.sql) << c.what;
        EXPECT_EQ(s.values, c.values) << c.what;
        EXPECT_EQ(s.sql.count(QLatin1Char('?')), s.values.size()) << c.what;
    }
}

TEST(ServerFileRules, PictureFolderHasBackticksForWhatAFolderCannotHold) {
    struct Case {
        QString address;
        QString folder;
    };
    const QList<Case> cases = {
        {"", ""},
        {"ул. Ленина, 5", "ул. Ленина, 5"},
        {"ул. Мира 5/2", "ул. Мира 5`2"},
        {"Объект: склад", "Объект` склад"},
        {"a\\b\"c|d*e?f:g<h>i", "a`b`c`d`e`f`g`h`i"},
        {"дом `Южный`", "дом `Южный`"},
        {"перевод\nстроки", "перевод`строки"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(ServerPicture::folderOf(c.address), c.folder) << c.address.toStdString();
    EXPECT_EQ(ServerPicture::relativePath("фото.jpg", ""), "Picture/фото.jpg");
    EXPECT_EQ(ServerPicture::relativePath("фото.jpg", "ул. Мира 5/2"), "Picture/ул. Мира 5`2/фото.jpg");
    EXPECT_EQ(ServerPicture::urlPath("key_1", "a.png", "x:y"), "/files/base_virn_s/key_1/Picture/x`y/a.png");
}

TEST(ServerFileRules, SizeRuleAtItsExactLimit) {
    using StoredFiles::SizeProblem;
    const QList<QPair<qint64, SizeProblem>> cases = {
        {0, SizeProblem::Empty},           {1, SizeProblem::None},
        {15728599, SizeProblem::None},     {15728600, SizeProblem::None},
        {15728601, SizeProblem::TooLarge}, {15 * 1024 * 1024, SizeProblem::TooLarge},
    };
    for (const auto &c : cases)
        EXPECT_EQ(StoredFiles::sizeProblem(c.first), c.second) << c.first;
    EXPECT_EQ(StoredFiles::sizeMessage(SizeProblem::Empty), "Не могу сохранить, файл повреждён");
    EXPECT_EQ(StoredFiles::sizeMessage(SizeProblem::TooLarge), "Размер файла больше 15 Мб");
}

TEST(ServerFileRules, KindsOfExtensions) {
    using namespace ServerFileKinds;
    const QList<QPair<QString, int>> cases = {
        {"Смета.sim", Estimates}, {"отчёт.XLSX", Sheets},     {"a.rtf", Texts},       {"a.pdf", Pdf},
        {"a.rar", Archives},      {"cashbase.db", Databases}, {"IMG.JPEG", Pictures}, {"setup.exe", Programs},
        {"архив.tar.gz", -1},     {"без расширения", -1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(kindOf(typeOf(c.first)), c.second) << c.first.toStdString();
    EXPECT_EQ(typeOf("IMG.JPEG"), ".jpeg");
    EXPECT_EQ(typeOf("без расширения"), "");
    EXPECT_TRUE(isPicture(".PNG"));
    EXPECT_FALSE(isPicture(".sim"));
}

TEST(ServerFileRules, RowValues) {
    const QDateTime t(QDate(2025, 3, 9), QTime(7, 5, 4));
    EXPECT_EQ(StoredFiles::timeText(t), "09.03.2025 07:05:04");
    EXPECT_EQ(StoredFiles::parseTime("09.03.2025 07:05:04"), t);
    EXPECT_EQ(StoredFiles::parseTime("9.3.2025 7:05"), QDateTime());
    EXPECT_TRUE(StoredFiles::isPeopleBase("PeopleBase.db"));
    EXPECT_TRUE(StoredFiles::isCashBase("cashbase.db"));
    EXPECT_FALSE(StoredFiles::isCashBase("cashbase.db.bak"));
}
