// What the office helper leaves in the engine's profile before a start, and the template sheets kept
// by their content.

#include "office/EngineProfile.h"
#include "office/TemplateGrids.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

int occurrences(const QByteArray &text, const QByteArray &what) {
    return int(text.count(what));
}

const QByteArray kEngineWritten =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<oor:items "
    "xmlns:oor=\"http://openoffice.org/2001/registry\">\n"
    "<item oor:path=\"/org.openoffice.Office.Calc/Input\"><prop oor:name=\"ReplaceCellsWarning\" "
    "oor:op=\"fuse\"><value>false</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Office.Views/Windows/org.openoffice.Office.Views:WindowType['scalc/"
    "10336']/UserData\"><prop oor:name=\"Data\" oor:op=\"fuse\" "
    "oor:type=\"xs:string\"><value>V2,V,0,AL:(16,5,"
    "0/0/404/450,404;450)</value></prop></item>\n"
    "<item oor:path=\"/org.openoffice.Setup/Product\"><prop oor:name=\"ooSetupLastVersion\" "
    "oor:op=\"fuse\"><value>7.4</value></prop></item>\n"
    "</oor:items>\n";

TEST(EngineProfile, SettingsAreAddedOnceAndTheEnginesOwnAreKept) {
    struct Case {
        const char *name;
        QByteArray before;
        int questionsAdded; // ReplaceCellsWarning items appended
        int sidebarsAdded;  // hidden sidebar items appended
    };
    const QByteArray settledNew = EngineProfile::settled({});
    const Case cases[] = {
        {"new profile", {}, 1, 2},
        {"a file the engine could not read", "<?xml", 1, 2},
        {"written by the engine, calc's sidebar shown", kEngineWritten, 0, 2},
        {"the question turned back on",
         QByteArray(kEngineWritten)
             .replace("</oor:items>", "<item oor:path=\"/org.openoffice.Office.Calc/Input\"><prop "
                                      "oor:name=\"ReplaceCellsWarning\" oor:op=\"fuse\"><value>true"
                                      "</value></prop></item>\n</oor:items>"),
         1, 2},
        {"already settled", settledNew, 0, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray after = EngineProfile::settled(c.before);
        const int questions = occurrences(after, "ReplaceCellsWarning\" oor:op=\"fuse\"><value>false") -
                              occurrences(c.before, "ReplaceCellsWarning\" oor:op=\"fuse\"><value>false");
        EXPECT_EQ(questions, c.questionsAdded);
        EXPECT_EQ(occurrences(after, "<value>V2,H,0</value>") -
                      occurrences(c.before, "<value>V2,H,0</value>"),
                  c.sidebarsAdded);
        EXPECT_TRUE(after.trimmed().endsWith("</oor:items>"));
        EXPECT_EQ(EngineProfile::settled(after), after) << "nothing is added twice";
        if (c.before.contains("ooSetupLastVersion"))
            EXPECT_TRUE(after.startsWith(c.before.left(c.before.lastIndexOf("</oor:items>"))))
                << "what the engine wrote stays";
    }
    EXPECT_TRUE(settledNew.contains("scalc/10336") && settledNew.contains("swriter/10336"));
}

TEST(TemplateGrids, KeptByContentSoAnEditedTemplateIsReadAgain) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Шаблон.xls"));
    auto write = [&path](const QByteArray &bytes) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    };
    write("первый");
    const QByteArray first = TemplateGrids::contentKey(path);
    ASSERT_FALSE(first.isEmpty());
    SheetText::Grid grid;
    EXPECT_FALSE(TemplateGrids::find(first, &grid));
    TemplateGrids::keep(first, {{QStringLiteral("[номер]"), QStringLiteral("от [дата]")}});
    ASSERT_TRUE(TemplateGrids::find(first, &grid));
    EXPECT_EQ(grid.value(0).value(1), QStringLiteral("от [дата]"));

    write("второй");
    const QByteArray second = TemplateGrids::contentKey(path);
    EXPECT_NE(second, first);
    EXPECT_FALSE(TemplateGrids::find(second, &grid)) << "the edited template is not known";
    EXPECT_TRUE(TemplateGrids::contentKey(dir.filePath(QStringLiteral("нет.xls"))).isEmpty());
    EXPECT_FALSE(TemplateGrids::find({}, &grid));

    // A sheet too large to keep is not kept; the others stay.
    SheetText::Grid large(30000, QStringList{QStringLiteral("x")});
    TemplateGrids::keep(second, large);
    EXPECT_FALSE(TemplateGrids::find(second, &grid));
    EXPECT_TRUE(TemplateGrids::find(first, &grid));
}

} // namespace
