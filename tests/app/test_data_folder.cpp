// Where the data lives: the data-folder rule and the folder tree.

#include "TestFolder.h"
#include "storage/DataFolder.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

TEST(DataFolder, DecisionRule) {
    ensureApplication();
    TestFolder cwd, stored;
    const QString doc = cwd.file("смета.sim");
    QFile f(doc);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    struct Case {
        QStringList args;
        QString storedFolder;
        QString folder;
        QString document;
    };
    const Case cases[] = {
        {{}, stored.path(), cwd.path(), ""},
        {{doc}, stored.path(), stored.path(), doc},
        // A missing stored folder falls back to the current directory.
        {{doc}, "", cwd.path(), doc},
        // An argument that is not an existing file opens nothing.
        {{cwd.file("нет.sim")}, stored.path(), cwd.path(), ""},
        {{cwd.path()}, stored.path(), cwd.path(), ""},
        {{"-platform", "offscreen"}, stored.path(), cwd.path(), ""},
    };
    for (const Case &c : cases) {
        const auto d = DataFolder::decide(c.args, c.storedFolder, cwd.path());
        EXPECT_EQ(d.folder, QDir::cleanPath(c.folder)) << c.args.join(' ').toStdString();
        EXPECT_EQ(d.documentFile, c.document) << c.args.join(' ').toStdString();
    }
}

TEST(DataFolder, TreeIsCreatedAndUnwritableFolderIsNamed) {
    ensureApplication();
    TestFolder folder;
    const QString root = folder.file("данные");
    EXPECT_EQ(DataFolder::ensureTree(root), QString());
    for (const char *sub : {"Sh", "Sp", "Sm", "Sm/Autosave", "Temp"})
        EXPECT_TRUE(QDir(root).exists(QString::fromUtf8(sub))) << sub;
    // Running again changes nothing and succeeds.
    EXPECT_EQ(DataFolder::ensureTree(root), QString());

    // A plain file where the folder should be cannot become a data folder.
    const QString blocked = folder.file("файл");
    QFile f(blocked);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    const QString message = DataFolder::ensureTree(blocked + "/sub");
    EXPECT_FALSE(message.isEmpty());
    EXPECT_TRUE(message.contains(QDir::toNativeSeparators(blocked))) << message.toStdString();
}

} // namespace
