// Moving estimates between the drafts and the documents with their files: the rows, the files on disk
// and the link inside each file; and every way a move can fail, which must leave everything as it was.

#include "documents/RegisterMoves.h"
#include "RegisterTestData.h"
#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/DocumentChecksum.h"
#include "estimate/DocumentFile.h"
#include "storage/ModuleSQL.h"
#include "storage/UntrustedSqlite.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <sys/resource.h>

namespace {

using Registration::List;
using namespace RegisterTestData;

class RegisterMovesTest : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    QSqlDatabase db() { return module.database(Db::MyDoc); }
    QStringList rows(const QString &sql) { return queryRows(db(), sql); }
    QStringList filesIn(const QString &relative) {
        return QDir(folder.file(relative)).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
    TestFolder folder;
    TModuleSQL module{folder.path()};
};

TEST_F(RegisterMovesTest, ADocumentGoesToTheDraftsAndComesBack) {
    const QString name = "Кухня \"под ключ\" / 'эконом'";
    const QString original = folder.file("Sm/Иванов/Кухня.sim");
    const qlonglong id = saveDocument(db(), original, false, name, "Иванов", "Плитка");
    ASSERT_EQ(linkOf(original), QString::number(id) + "|doc");

    // To the drafts: the file under the estimate's name, made fit for a file name.
    const QString drafts = DocumentFile::draftsFolder(folder.path());
    const QString draftPath = RegisterMoves::draftTarget(drafts, [&] {
        RegisterRow r;
        r.name = name;
        r.fileName = original;
        return r;
    }());
    EXPECT_EQ(draftPath, drafts + "/Кухня `под ключ` ` 'эконом'.sim");
    RegisterMoves::Outcome toDraft = RegisterMoves::move(module, List::Documents, id, draftPath);
    ASSERT_TRUE(toDraft.ok) << toDraft.error.toStdString();
    EXPECT_TRUE(toDraft.warning.isEmpty());
    EXPECT_EQ(toDraft.newPath, draftPath);
    EXPECT_TRUE(rows("SELECT * FROM documents").isEmpty());
    EXPECT_EQ(rows("SELECT id, name, filename, client, object, summat, sumrab, allsum, month, year, data "
                   "FROM drafts"),
              QStringList{QString::number(toDraft.newId) + "|Кухня `под ключ` / 'эконом'|" + draftPath +
                          "|Иванов|Кухня|1000,00|2000,50|3000,50|3|2025|07.03.2025"});
    EXPECT_EQ(linkOf(draftPath), QString::number(toDraft.newId) + "|draft");
    EXPECT_EQ(contentOf(draftPath), "Плитка");
    EXPECT_EQ(linkOf(original), "<no file>");
    EXPECT_EQ(filesIn("Sm/Drafts"), QStringList{QFileInfo(draftPath).fileName()});

    // Back to the documents, where the user chose.
    const QString back = folder.file("Sm/Иванов/Кухня/Кухня-2.sim");
    RegisterMoves::Outcome toDoc = RegisterMoves::move(module, List::Drafts, toDraft.newId, back);
    ASSERT_TRUE(toDoc.ok) << toDoc.error.toStdString();
    EXPECT_TRUE(rows("SELECT * FROM drafts").isEmpty());
    EXPECT_EQ(rows("SELECT id, filename, status FROM documents"),
              QStringList{QString::number(toDoc.newId) + "|" + back + "|"});
    EXPECT_EQ(linkOf(back), QString::number(toDoc.newId) + "|doc");
    EXPECT_EQ(contentOf(back), "Плитка");
    EXPECT_EQ(linkOf(draftPath), "<no file>");
    EXPECT_TRUE(filesIn("Sm/Drafts").isEmpty());
    EXPECT_EQ(filesIn("Sm/Иванов/Кухня"), QStringList{"Кухня-2.sim"});
}

TEST_F(RegisterMovesTest, DraftNamesNeverTakeAnotherFile) {
    const QString drafts = DocumentFile::draftsFolder(folder.path());
    QDir().mkpath(drafts);
    for (const char *taken : {"Смета.sim", "Смета (2).sim"}) {
        QFile f(drafts + "/" + QString::fromUtf8(taken));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    RegisterRow row;
    row.name = "Смета";
    row.fileName = folder.file("Sm/Смета.sim");
    EXPECT_EQ(RegisterMoves::draftTarget(drafts, row), drafts + "/Смета (3).sim");
    // A file that lies in the drafts folder already keeps its place.
    row.fileName = drafts + "/Смета.sim";
    EXPECT_EQ(RegisterMoves::draftTarget(drafts, row), drafts + "/Смета.sim");
    // A name that cannot make a file name falls back on the file's own name; a huge one is cut.
    row.name = "???";
    EXPECT_EQ(RegisterMoves::draftTarget(drafts, row), drafts + "/```.sim");
    row.name = QString(5000, QChar(u'щ'));
    EXPECT_LE(QFileInfo(RegisterMoves::draftTarget(drafts, row)).fileName().toUtf8().size(), 255);
}

TEST_F(RegisterMovesTest, AFileChosenInPlaceOnlyChangesItsLink) {
    const QString path = folder.file("Sm/Drafts/Черновик.sim");
    const qlonglong id = saveDocument(db(), path, true, "Черновик");
    RegisterMoves::Outcome moved = RegisterMoves::move(module, List::Drafts, id, path);
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(linkOf(path), QString::number(moved.newId) + "|doc");
    EXPECT_EQ(contentOf(path), "Окраска");
    EXPECT_EQ(rows("SELECT filename FROM documents"), QStringList{path});
}

TEST_F(RegisterMovesTest, AnOldFileWithoutItsLinkGetsOne) {
    const QString path = folder.file("Sm/Старая.sim");
    QDir().mkpath(folder.file("Sm"));
    {
        DatabaseFile file(path);
        QSqlQuery q(file.db());
        ASSERT_TRUE(q.exec("CREATE TABLE smeta (_id INTEGER PRIMARY KEY AUTOINCREMENT, nameras TEXT)"));
        ASSERT_TRUE(q.exec("INSERT INTO smeta (nameras) VALUES ('Побелка')"));
    }
    const qlonglong id =
        addRow(db(), List::Documents, "Иванов", QDate(2019, 5, 1), "1,00", false, "Старая", path);
    const QString target = folder.file("Sm/Drafts/Старая.sim");
    RegisterMoves::Outcome moved = RegisterMoves::move(module, List::Documents, id, target);
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(linkOf(target), QString::number(moved.newId) + "|draft");
    EXPECT_EQ(contentOf(target), "Побелка");
    EXPECT_FALSE(QFileInfo::exists(path));
}

// The file's side of a move: a sealed document stays sealed (the new link is no damage when it is
// opened), a document already damaged keeps its warning, and nothing the file brings runs.
TEST_F(RegisterMovesTest, TheLinkKeepsTheFilesSealAndRunsNothingOfIt) {
    auto damagedTables = [](const QString &path) {
        DatabaseFile file(path);
        QStringList damaged;
        QString error;
        EXPECT_TRUE(DocumentChecksum::verify(UntrustedSqlite::handle(file.db()), "main", &damaged, &error))
            << error.toStdString();
        return damaged;
    };
    auto seal = [](const QString &path) {
        DatabaseFile file(path);
        EXPECT_EQ(DocumentChecksum::write(UntrustedSqlite::handle(file.db())), QString());
    };
    // Sealed, then moved twice (one move writes the link in place, the other in the copy).
    const QString sealed = folder.file("Sm/Целая.sim");
    qlonglong id = saveDocument(db(), sealed, false, "Целая");
    seal(sealed);
    const QString draft = folder.file("Sm/Drafts/Целая.sim");
    RegisterMoves::Outcome moved = RegisterMoves::move(module, List::Documents, id, draft);
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(damagedTables(draft), QStringList());
    moved = RegisterMoves::move(module, List::Drafts, moved.newId, draft);
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(damagedTables(draft), QStringList());

    // Damaged after it was sealed: the move does not hide it.
    const QString damaged = folder.file("Sm/Правленая.sim");
    id = saveDocument(db(), damaged, false, "Правленая");
    seal(damaged);
    DatabaseFile(damaged).rows("UPDATE smeta SET nameras='Чужое'");
    moved = RegisterMoves::move(module, List::Documents, id, folder.file("Sm/Drafts/Правленая.sim"));
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(damagedTables(moved.newPath), QStringList{"smeta"});

    // A trigger of the file on its link does not fire.
    const QString hostile = folder.file("Sm/Чужая.sim");
    id = saveDocument(db(), hostile, false, "Чужая");
    DatabaseFile(hostile).rows("CREATE TRIGGER grow AFTER INSERT ON mydoc BEGIN "
                               "INSERT INTO smeta (nameras) VALUES (zeroblob(1000000)); END");
    moved = RegisterMoves::move(module, List::Documents, id, folder.file("Sm/Drafts/Чужая.sim"));
    ASSERT_TRUE(moved.ok) << moved.error.toStdString();
    EXPECT_EQ(contentOf(moved.newPath), "Окраска");
}

TEST_F(RegisterMovesTest, AFailedMoveLosesNothing) {
    struct Case {
        const char *what;
        // Prepares the failure; returns the target.
        std::function<QString(const TestFolder &folder, const QString &source, qlonglong &id)> prepare;
        const char *says;
        bool diskFull = false;
    };
    const Case cases[] = {
        {"the file has vanished",
         [](const TestFolder &, const QString &source, qlonglong &) {
             QFile::rename(source, source + ".away");
             return QString("Sm/Drafts/x.sim");
         },
         "не найден"},
        {"another file holds the target",
         [](const TestFolder &folder, const QString &, qlonglong &) {
             QDir().mkpath(folder.file("Sm/Drafts"));
             QFile f(folder.file("Sm/Drafts/x.sim"));
             f.open(QIODevice::WriteOnly);
             f.write("чужой файл");
             return QString("Sm/Drafts/x.sim");
         },
         "уже существует"},
        {"the target folder cannot be made",
         [](const TestFolder &folder, const QString &, qlonglong &) {
             QFile f(folder.file("Sm/файл"));
             f.open(QIODevice::WriteOnly);
             return QString("Sm/файл/папка/x.sim");
         },
         "не удалось создать папку"},
        {"the row was deleted in another copy of the program",
         [](const TestFolder &, const QString &, qlonglong &id) {
             id += 1000;
             return QString("Sm/Drafts/x.sim");
         },
         "не найдена"},
        {"the disk is full",
         [](const TestFolder &, const QString &, qlonglong &) { return QString("Sm/Drafts/x.sim"); },
         "Не удалось", true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        TestFolder here;
        TModuleSQL m(here.path());
        QSqlDatabase mydoc = m.database(Db::MyDoc);
        const QString source = here.file("Sm/Смета.sim");
        qlonglong id = saveDocument(mydoc, source, false, "Смета", "Иванов", "Штукатурка");
        if (c.diskFull) {
            // Grow the file past the limit below, as a real estimate would be.
            DatabaseFile file(source);
            QSqlQuery q(file.db());
            q.exec("BEGIN");
            for (int i = 0; i < 500; ++i)
                q.exec(QStringLiteral("INSERT INTO smeta (nameras) VALUES ('%1')")
                           .arg(QString(300, QChar('a' + i % 20))));
            q.exec("COMMIT");
        }
        const QString target = here.file(c.prepare(here, source, id));
        const QString link = linkOf(QFileInfo::exists(source) ? source : source + ".away");

        RegisterMoves::Outcome out;
        if (c.diskFull) {
            rlimit old{};
            getrlimit(RLIMIT_FSIZE, &old);
            auto previous = std::signal(SIGXFSZ, SIG_IGN);
            rlimit small = old;
            small.rlim_cur = 64 * 1024;
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
            out = RegisterMoves::move(m, List::Documents, id, target);
            setrlimit(RLIMIT_FSIZE, &old);
            std::signal(SIGXFSZ, previous);
        } else {
            out = RegisterMoves::move(m, List::Documents, id, target);
        }
        EXPECT_FALSE(out.ok);
        EXPECT_TRUE(out.error.contains(QString::fromUtf8(c.says))) << out.error.toStdString();
        EXPECT_TRUE(out.error.contains("остались на месте")) << out.error.toStdString();
        // The register and the old file are as they were; nothing is left beside the target.
        EXPECT_EQ(queryRows(mydoc, "SELECT COUNT(*) FROM documents"), QStringList{"1"});
        EXPECT_EQ(queryRows(mydoc, "SELECT COUNT(*) FROM drafts"), QStringList{"0"});
        EXPECT_EQ(queryRows(mydoc, "SELECT filename FROM documents"), QStringList{source});
        const QString kept = QFileInfo::exists(source) ? source : source + ".away";
        EXPECT_TRUE(contentOf(kept).startsWith("Штукатурка"));
        EXPECT_EQ(linkOf(kept), link);
        const QStringList beside =
            QDir(QFileInfo(target).absolutePath()).entryList(QDir::Files | QDir::Hidden);
        for (const QString &f : beside)
            EXPECT_FALSE(f.startsWith(".x.sim")) << f.toStdString();
        // Once the cause is gone, the same move succeeds.
        if (c.diskFull) {
            RegisterMoves::Outcome again = RegisterMoves::move(m, List::Documents, id, target);
            EXPECT_TRUE(again.ok) << again.error.toStdString();
            EXPECT_TRUE(contentOf(target).startsWith("Штукатурка"));
            EXPECT_FALSE(QFileInfo::exists(source));
        }
    }
}

} // namespace
