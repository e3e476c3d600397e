// Template analysis and file checks that need no engine.

#include "office/OfficeEngine.h"
#include "office/SheetTemplate.h"
#include "office/SheetText.h"
#include "office/TemplateFile.h"

#include "TestFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <unistd.h>

namespace {

TEST(SheetText, CsvFieldsQuotesAndLineBreaks) {
    const SheetText::Grid g =
        SheetText::parseCsv(QStringLiteral("a,\"b,c\",\"say \"\"hi\"\"\"\r\n,\"two\nlines\",\n"));
    ASSERT_EQ(g.size(), 2);
    EXPECT_EQ(g[0], (QStringList{"a", "b,c", "say \"hi\""}));
    EXPECT_EQ(g[1], (QStringList{"", "two\nlines", ""}));
}

TEST(SheetText, CellNamesBothWays) {
    struct Case {
        int row, column;
        const char *name;
    } cases[] = {{0, 0, "A1"},   {4, 1, "B5"},      {9, 25, "Z10"},
                 {0, 26, "AA1"}, {99, 51, "AZ100"}, {0, 702, "AAA1"}};
    for (const Case &c : cases) {
        EXPECT_EQ(SheetText::cellName(c.row, c.column), QString::fromLatin1(c.name));
        int r = -1, col = -1;
        ASSERT_TRUE(SheetText::parseCellName(QString::fromLatin1(c.name), &r, &col)) << c.name;
        EXPECT_EQ(r, c.row);
        EXPECT_EQ(col, c.column);
    }
    int r, c;
    for (const char *bad : {"", "5", "B", "b5", "B0", "B5x"})
        EXPECT_FALSE(SheetText::parseCellName(QString::fromLatin1(bad), &r, &c)) << bad;
    EXPECT_EQ(SheetText::rangeName(4, 0, 8, 7), QStringLiteral("A5:H9"));
}

TEST(SheetText, BlocksCoverExactlyTheCellsGiven) {
    using Cells = std::set<std::pair<int, int>>;
    using B = SheetText::Block;
    const struct {
        const char *what;
        Cells cells;
        QVector<B> blocks;
    } cases[] = {
        {"nothing", {}, {}},
        {"one cell", {{4, 1}}, {{4, 1, 4, 1}}},
        {"a row run", {{0, 0}, {0, 1}, {0, 2}}, {{0, 0, 0, 2}}},
        {"a gap splits a row", {{0, 0}, {0, 2}}, {{0, 0, 0, 0}, {0, 2, 0, 2}}},
        {"equal runs of rows in a row join",
         {{1, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 0}, {3, 1}},
         {{1, 0, 3, 1}}},
        {"a wider row starts a block", {{1, 0}, {2, 0}, {2, 1}}, {{1, 0, 1, 0}, {2, 0, 2, 1}}},
        {"a skipped row starts a block", {{1, 0}, {3, 0}}, {{1, 0, 1, 0}, {3, 0, 3, 0}}},
        {"two columns of blocks", {{0, 0}, {0, 2}, {1, 0}, {1, 2}, {2, 2}}, {{0, 0, 1, 0}, {0, 2, 2, 2}}},
    };
    for (const auto &c : cases) {
        const QVector<B> got = SheetText::blocksOf(c.cells);
        EXPECT_EQ(got, c.blocks) << c.what;
        Cells covered;
        for (const B &b : got)
            for (int r = b.firstRow; r <= b.lastRow; ++r)
                for (int col = b.firstColumn; col <= b.lastColumn; ++col)
                    EXPECT_TRUE(covered.insert({r, col}).second) << c.what << ": a cell in two blocks";
        EXPECT_EQ(covered, c.cells) << c.what;
    }
    EXPECT_EQ(SheetText::blocksOf({{4, 0}, {4, 1}}).value(0).name(), QStringLiteral("A5:B5"));
}

TEST(SheetTemplate, Placeholders) {
    EXPECT_EQ(SheetTemplate::placeholders(QStringLiteral("Счёт № [edNumber] от [DateEdit]")),
              (QStringList{"edNumber", "DateEdit"}));
    EXPECT_EQ(SheetTemplate::placeholders(QStringLiteral("[строки.сумма]")), (QStringList{"строки.сумма"}));
    EXPECT_TRUE(SheetTemplate::placeholders(QStringLiteral("обычный текст")).isEmpty());
}

SheetData estimateLikeData() {
    SheetData d;
    SheetList rows;
    rows.kinds = {QStringLiteral("строки"), QStringLiteral("раздел"), QStringLiteral("итог")};
    rows.fallback = {{QStringLiteral("подраздел"), QStringLiteral("раздел")}};
    SheetList totals;
    totals.kinds = {QStringLiteral("итоги")};
    d.lists = {rows, totals};
    d.values.insert(QStringLiteral("заголовок"), SheetValue::ofText(QStringLiteral("СМЕТА")));
    return d;
}

TEST(SheetTemplate, AnalyseFindsBlocksAndNamedItems) {
    const SheetText::Grid grid{
        {"[заголовок]", "", "[номер]"},
        {"№", "Наименование", "Сумма"},
        {"[раздел.наименование]", "", ""},
        {"[строки.№]", "[строки.наименование]", "[строки.сумма]"},
        {"", "[итог.наименование]", "[итог.сумма]"},
        {"Примечание", "", ""},
        {"", "[итоги.наименование]", "[итоги.сумма]"},
        {"Подрядчик", "[подрядчик]", "Заказчик: [заказчик]"},
    };
    const SheetTemplate::Layout layout = SheetTemplate::analyse(grid, estimateLikeData());
    ASSERT_EQ(layout.blocks.size(), 2);
    EXPECT_EQ(layout.blocks[0].list, 0);
    EXPECT_EQ(layout.blocks[0].firstRow, 2);
    EXPECT_EQ(layout.blocks[0].lastRow, 4);
    EXPECT_EQ(layout.blocks[0].rowOf.value(QStringLiteral("раздел")), 2);
    EXPECT_EQ(layout.blocks[0].rowOf.value(QStringLiteral("итог")), 4);
    EXPECT_EQ(layout.blocks[1].list, 1);
    EXPECT_EQ(layout.blocks[1].firstRow, 6);
    EXPECT_EQ(layout.blocks[1].lastRow, 6);
    EXPECT_EQ(layout.named, (QStringList{"заголовок", "номер", "подрядчик", "заказчик"}));
    EXPECT_EQ(layout.width, 3);
}

TEST(SheetTemplate, RowsKeptTogetherOnPrintedPages) {
    // The list: a work, a section's title, two works; three closing lines.
    SheetData data = estimateLikeData();
    data.lists[0].headingKinds = {QStringLiteral("раздел")};
    for (const char *kind : {"строки", "раздел", "строки", "строки"})
        data.lists[0].rows << SheetRow{QString::fromUtf8(kind), {}};
    data.lists[1].rows = {SheetRow{QStringLiteral("итоги"), {}}, SheetRow{QStringLiteral("итоги"), {}},
                          SheetRow{QStringLiteral("итоги"), {}}};
    data.closingList = 1;
    struct Case {
        const char *name;
        SheetText::Grid grid;
        QVector<int> headings;
        int closingFirst;
    };
    const QStringList work{"[строки.№]", "[строки.наименование]", "[строки.сумма]"};
    const QStringList total{"", "[итоги.наименование]", "[итоги.сумма]"};
    const Case cases[] = {
        {"a head of one row under an empty row",
         {{"[заголовок]", "", ""}, {}, {"№", "Наименование", "Сумма"}, work, total, {"Подпись", "", ""}},
         {2, 4},
         7},
        {"a head of three rows at most, a title row above it",
         {{"СМЕТА", "", ""},
          {"№", "Наименование", "Стоимость"},
          {"", "", "всего"},
          {"1", "2", "3"},
          work,
          total},
         {1, 2, 3, 5},
         8},
        {"a row with a field is no head", {{"Объект: [объект]", "", ""}, work, total}, {2}, 5},
    };
    for (const Case &c : cases) {
        const SheetTemplate::KeptRows kept =
            SheetTemplate::keptRows(c.grid, SheetTemplate::analyse(c.grid, data), data);
        EXPECT_EQ(kept.headings, c.headings) << c.name;
        EXPECT_EQ(kept.closingFirst, c.closingFirst) << c.name;
    }
}

TEST(SheetTemplate, UnfilledCountsOnlyPlaceholdersWithDataAndRowPlaceholders) {
    const SheetText::Grid filled{
        {"[заголовок]", "", "[номер]"},
        {"1", "[строки.сумма]", "Окно [ПВХ]"},
    };
    EXPECT_EQ(SheetTemplate::unfilled(filled, estimateLikeData()),
              (QStringList{"[заголовок]", "[строки.сумма]"}));
}

TEST(SheetTemplate, AValueThatLooksLikeAFieldIsNoFieldLeftUnfilled) {
    // The customer's name holds brackets; the title's own field was not filled.
    const SheetText::Grid filled{
        {"ООО [заголовок]", "Заказчик: ООО [заголовок]", "[заголовок]"},
    };
    const QSet<QString> written{"ООО [заголовок]", "Заказчик: ООО [заголовок]"};
    EXPECT_EQ(SheetTemplate::unfilled(filled, estimateLikeData(), written), QStringList{"[заголовок]"});
    EXPECT_EQ(SheetTemplate::unfilled({{"ООО [заголовок]"}}, estimateLikeData(), written), QStringList{});
}

TEST(TemplateFile, RefusesMissingLargeAndForeignFiles) {
    TestFolder folder;
    const QString missing = folder.file(QStringLiteral("Шаблон Смета.xls"));
    EXPECT_EQ(TemplateFile::check(missing), QStringLiteral("Отсутствует файл ") + missing);

    const QString large = folder.file(QStringLiteral("big.xls"));
    {
        QFile f(large);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
        ASSERT_TRUE(f.resize(TemplateFile::kMaxBytes + 1)); // sparse: takes no disk space
    }
    EXPECT_TRUE(TemplateFile::check(large).contains(QStringLiteral("больше 50 МБ")));

    struct Case {
        const char *name;
        QByteArray content;
        bool ok;
    } cases[] = {
        {"text.xls", "just text", false},
        // The first bytes of a format with nothing of it behind them.
        {"garbage.xls", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1rest", false},
        {"garbage.docx", "PK\x03\x04rest", false},
        {"fake.docx", "{\\rtf1}", false},
        {"doc.rtf", "{\\rtf1\\ansi}", true},
        {"note.txt", "Договор [заказчик]", true},
        {"binary.txt", QByteArray("a\0b", 3), false},
        {"picture.png", "\x89PNG", false},
    };
    for (const Case &c : cases) {
        const QString path = folder.file(QString::fromLatin1(c.name));
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(c.content);
        f.close();
        const QString message = TemplateFile::check(path);
        EXPECT_EQ(message.isEmpty(), c.ok) << c.name << " " << message.toStdString();
        if (!c.ok) {
            EXPECT_TRUE(message.contains(path)) << c.name;
        }
    }
}

TEST(OfficeEngine, MissingLibreOfficeSaysWhatToInstall) {
    TestFolder folder;
    qputenv("VIRN_LIBREOFFICE_DIR", folder.path().toUtf8());
    OfficeEngine engine(folder.path());
    QString why;
    EXPECT_FALSE(engine.available(&why));
    EXPECT_TRUE(why.contains(QStringLiteral("libreoffice-calc")));
    EXPECT_FALSE(engine.load(folder.file(QStringLiteral("any.xls"))));
    EXPECT_EQ(engine.error(), OfficeEngine::missingEngineMessage());
    EXPECT_FALSE(engine.running());
    qunsetenv("VIRN_LIBREOFFICE_DIR");
}

} // namespace

namespace {

TEST(OfficeEngine, TidiesScratchFoldersOfProgramsThatEnded) {
    TestFolder folder;
    const QString base = folder.file(QStringLiteral("Temp/virn-office"));
    const QString stale = base + QStringLiteral("/work-999999999");
    const QString living = base + QStringLiteral("/profile-%1").arg(getppid());
    ASSERT_TRUE(QDir().mkpath(stale + QStringLiteral("/Просмотр")));
    ASSERT_TRUE(QDir().mkpath(living));
    OfficeEngine engine(folder.path());
    EXPECT_FALSE(QFileInfo::exists(stale));
    EXPECT_TRUE(QFileInfo::exists(living)) << "a running program keeps its folders";
    EXPECT_EQ(engine.profileDir(), base + QStringLiteral("/profile"));
}

} // namespace

namespace {

// A helper whose reply never ends (a document far too large, or a helper gone wrong) is stopped once the
// reply passes the limit, with a Russian reason, instead of taking the machine's memory until the time
// limit; a long reply within the limit is read whole.
TEST(OfficeEngine, AReplyPastTheLimitStopsTheHelper) {
    struct Case {
        const char *what;
        const char *reply; // shell command printing the reply to the first request
        bool ok;
    };
    const Case cases[] = {
        {"a long reply within the limit",
         R"(printf '{"id":1,"ok":true,"html":"'; head -c 30000000 /dev/zero | tr '\0' x; printf '"}\n')", true},
        {"a reply that never ends", "head -c 400000000 /dev/zero | tr '\\0' x", false},
    };
    for (const Case &c : cases) {
        TestFolder folder;
        const QString install = folder.file(QStringLiteral("lo"));
        ASSERT_TRUE(QDir().mkpath(install));
        QFile lib(install + QStringLiteral("/libsofficeapp.so"));
        ASSERT_TRUE(lib.open(QIODevice::WriteOnly));
        lib.close();
        const QString helper = folder.file(QStringLiteral("helper.sh"));
        QFile script(helper);
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(QByteArray("#!/bin/sh\nprintf '{\"event\":\"ready\"}\\n'\nread request\n") + c.reply +
                     "\nsleep 60\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("VIRN_LIBREOFFICE_DIR", install.toUtf8());
        qputenv("VIRN_OFFICE_HELPER", helper.toUtf8());
        {
            OfficeEngine engine(folder.path());
            QString html;
            EXPECT_EQ(engine.bodyHtml(&html), c.ok) << c.what << ": " << engine.error().toStdString();
            if (c.ok) {
                EXPECT_EQ(html.size(), 30000000) << c.what;
            } else {
                EXPECT_TRUE(engine.error().contains(QStringLiteral("слишком велик"))) << c.what;
                EXPECT_FALSE(engine.running()) << c.what;
            }
        }
        qunsetenv("VIRN_OFFICE_HELPER");
        qunsetenv("VIRN_LIBREOFFICE_DIR");
    }
}

} // namespace
