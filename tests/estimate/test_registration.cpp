// Registration of saved estimates, the customer/object counter, the recent list, autosave names and
// copies, and the lock that warns a second copy of the program.

#include "SqlRows.h"
#include "TestFolder.h"
#include "estimate/Autosave.h"
#include "estimate/DocumentLock.h"
#include "estimate/RecentDocuments.h"
#include "estimate/Registration.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QVariant>
#include <gtest/gtest.h>

#include <csignal>
#include <utime.h>

namespace {

class RegisterTest : public ::testing::Test {
protected:
    void SetUp() override { ensureApplication(); }
    QStringList rows(Db db, const QString &sql) { return queryRows(module.database(db), sql); }
    Registration::Entry entry(bool draft) {
        Registration::Entry e;
        e.date = QDate(2025, 3, 7);
        e.name = "Ремонт \"под ключ\"";
        e.fileName = "/data/Sm/Ремонт.sim";
        e.client = "ООО \"Ромашка\"";
        e.object = "Кухня";
        e.summat = "1 200,5";
        e.sumrab = "3000";
        e.allsum = "";
        e.draft = draft;
        return e;
    }
    TestFolder folder;
    TModuleSQL module{folder.path()};
};

TEST_F(RegisterTest, FirstSaveInsertsLaterSavesUpdateTheSameRow) {
    struct Case {
        bool draft;
        const char *table, *other, *note;
    };
    for (const Case &c :
         {Case{false, "documents", "drafts", "doc"}, Case{true, "drafts", "documents", "draft"}}) {
        SCOPED_TRACE(c.table);
        QSqlQuery(module.database(Db::Smeta)).exec("DELETE FROM mydoc");
        QSqlQuery(module.database(Db::MyDoc)).exec("DELETE FROM documents");
        QSqlQuery(module.database(Db::MyDoc)).exec("DELETE FROM drafts");
        auto first = Registration::registerOnSave(module.database(Db::Smeta), module.database(Db::MyDoc),
                                                  entry(c.draft));
        ASSERT_TRUE(first.ok) << first.error.toStdString();
        EXPECT_TRUE(first.inserted);
        EXPECT_EQ(rows(Db::Smeta, "SELECT iddoc, note FROM mydoc"),
                  QStringList{QString::number(first.id) + "|" + c.note});
        EXPECT_EQ(
            rows(Db::MyDoc,
                 QStringLiteral("SELECT data, date_compare, dataend, name, filename, client, object, "
                                "summat, sumrab, allsum, status, month, year FROM ") +
                     c.table),
            QStringList{"07.03.2025|20250307000000||Ремонт `под ключ`|/data/Sm/Ремонт.sim|ООО `Ромашка`|"
                        "Кухня|1200,50|3000,00|0,00||3|2025"});
        EXPECT_EQ(Registration::note(module.database(Db::Smeta)), c.note);

        Registration::Entry later = entry(!c.draft); // the flag no longer matters: the link decides
        later.date = QDate(2025, 12, 1);
        later.allsum = "4200,5";
        later.fileName = "/data/Sm/Ремонт-2.sim";
        auto second =
            Registration::registerOnSave(module.database(Db::Smeta), module.database(Db::MyDoc), later);
        ASSERT_TRUE(second.ok) << second.error.toStdString();
        EXPECT_FALSE(second.inserted);
        EXPECT_EQ(second.id, first.id);
        EXPECT_EQ(rows(Db::MyDoc,
                       QStringLiteral("SELECT id, data, date_compare, filename, allsum, month, year FROM ") +
                           c.table),
                  QStringList{QString::number(first.id) +
                              "|01.12.2025|20251201000000|/data/Sm/Ремонт-2.sim|4200,50|12|2025"});
        EXPECT_TRUE(rows(Db::MyDoc, QStringLiteral("SELECT * FROM ") + c.other).isEmpty());
        EXPECT_EQ(rows(Db::Smeta, "SELECT COUNT(*) FROM mydoc"), QStringList{"1"});
    }
}

TEST_F(RegisterTest, AFailedSaveTakesBackTheNewRegistrationOnly) {
    auto prepared =
        Registration::prepare(module.database(Db::Smeta), module.database(Db::MyDoc), entry(false));
    ASSERT_TRUE(prepared.inserted);
    Registration::undo(module.database(Db::Smeta), module.database(Db::MyDoc), prepared);
    EXPECT_TRUE(rows(Db::MyDoc, "SELECT * FROM documents").isEmpty());
    EXPECT_TRUE(rows(Db::Smeta, "SELECT * FROM mydoc").isEmpty());

    // A registered document's row is not touched by prepare, so a failed save changes nothing.
    auto done =
        Registration::registerOnSave(module.database(Db::Smeta), module.database(Db::MyDoc), entry(false));
    auto again = entry(false);
    again.fileName = "/elsewhere/x.sim";
    prepared = Registration::prepare(module.database(Db::Smeta), module.database(Db::MyDoc), again);
    EXPECT_FALSE(prepared.inserted);
    Registration::undo(module.database(Db::Smeta), module.database(Db::MyDoc), prepared);
    EXPECT_EQ(rows(Db::MyDoc, "SELECT filename FROM documents"), QStringList{"/data/Sm/Ремонт.sim"});
    EXPECT_EQ(rows(Db::Smeta, "SELECT iddoc FROM mydoc"), QStringList{QString::number(done.id)});
}

TEST(DraftFlag, NoteDecidesElseTheDraftsFolder) {
    struct Case {
        const char *note;
        bool inDrafts, expected;
    };
    const Case cases[] = {{"draft", false, true}, {"draft", true, true}, {"doc", true, false},
                          {"doc", false, false},  {"", true, true},      {"", false, false}};
    for (const Case &c : cases)
        EXPECT_EQ(Registration::draftAfterOpen(c.note, c.inDrafts), c.expected) << c.note << c.inDrafts;
}

TEST_F(RegisterTest, CustomerObjectCounterIsNotInsertedTwice) {
    QSqlDatabase people = module.database(Db::People);
    ASSERT_TRUE(Registration::countEstimate(people, "  ООО  \"Ромашка\" ", "Кухня  2", "3"));
    ASSERT_TRUE(Registration::countEstimate(people, "ООО \"Ромашка\"", "Кухня 2", "2"));
    ASSERT_TRUE(Registration::countEstimate(people, "ООО \"Ромашка\"", "Кухня 2", "")); // no number: 1
    EXPECT_EQ(rows(Db::People, "SELECT Client, Object, Smeta FROM NumDoc"),
              QStringList{"ООО `Ромашка`|Кухня 2|3"});
    ASSERT_TRUE(Registration::countEstimate(people, "ООО \"Ромашка\"", "Кухня 2", "5"));
    ASSERT_TRUE(Registration::countEstimate(people, "Петров", "", "1")); // no object: nothing
    ASSERT_TRUE(Registration::countEstimate(people, "Петров", "Дача", "1А"));
    EXPECT_EQ(rows(Db::People, "SELECT Client, Object, Smeta FROM NumDoc ORDER BY id"),
              (QStringList{"ООО `Ромашка`|Кухня 2|5", "Петров|Дача|1"}));
}

TEST_F(RegisterTest, RecentListKeepsEachFileOnceAndTheTenNewest) {
    QSqlDatabase people = module.database(Db::People);
    ASSERT_TRUE(RecentDocuments::touch(people, "/d/a.sim"));
    ASSERT_TRUE(RecentDocuments::touch(people, "/d/b.sim"));
    ASSERT_TRUE(RecentDocuments::touch(people, "/d/a.sim")); // same file again: one record, now newest
    EXPECT_EQ(RecentDocuments::newestFirst(people), (QStringList{"/d/a.sim", "/d/b.sim"}));
    EXPECT_EQ(rows(Db::People, "SELECT COUNT(*) FROM LastDoc"), QStringList{"2"});

    for (int i = 1; i <= 9; ++i)
        ASSERT_TRUE(RecentDocuments::touch(people, QString("/d/%1'.sim").arg(i)));
    // Eleven distinct files: b, the oldest, is gone; a is now the oldest kept.
    const QStringList list = RecentDocuments::newestFirst(people);
    ASSERT_EQ(list.size(), 10);
    EXPECT_EQ(list.first(), "/d/9'.sim");
    EXPECT_EQ(list.last(), "/d/a.sim");
    EXPECT_FALSE(list.contains("/d/b.sim"));
    EXPECT_EQ(rows(Db::People, "SELECT COUNT(*) FROM LastDoc"), QStringList{"10"});
}

TEST(AutosaveName, ForbiddenCharactersBecomeBackticks) {
    const QDateTime at(QDate(2025, 3, 7), QTime(9, 5, 59));
    struct Case {
        const char *customer, *object, *number, *fallback, *expected;
    };
    const Case cases[] = {
        {"ИП Сидоров: ремонт", "", "12", "a", "2025-03-07  09.05 ИП Сидоров` ремонт №12.sim"},
        {"ООО \"Дом/Сад\"", "Цех 1|2", "3/25", "", "2025-03-07  09.05 ООО `Дом`Сад`-Цех 1`2 №3`25.sim"},
        {"", "", "", "Новый документ", "2025-03-07  09.05 Новый документ.sim"},
        {"a\\b*c?d<e>f%g", "", "", "", "2025-03-07  09.05 a`b`c`d`e`f`g.sim"},
        {"  Иванов  И.И. ", "", "", "x", "2025-03-07  09.05 Иванов И.И..sim"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(AutosaveName::fileName(
                      at, AutosaveName::identification(c.customer, c.object, c.number, c.fallback)),
                  QString::fromUtf8(c.expected));
    // A very long customer name still gives a file name the file system accepts.
    EXPECT_LT(AutosaveName::fileName(at, QString(400, QChar(0x0416))).toUtf8().size(), 255);
}

TEST(AutosaveCopies, OldAndSurplusCopiesAreRemoved) {
    ensureApplication();
    TestFolder folder;
    const QDateTime now = QDateTime::currentDateTime();
    auto make = [&](const QString &name, int ageDays) {
        QFile f(folder.file(name));
        f.open(QIODevice::WriteOnly);
        f.write("x");
        f.close();
        utimbuf t{};
        t.actime = t.modtime = static_cast<time_t>(now.addDays(-ageDays).toSecsSinceEpoch());
        utime(QFile::encodeName(folder.file(name)).constData(), &t);
    };
    for (int i = 0; i < 6; ++i)
        make(QString("copy%1.sim").arg(i), i * 10); // 0, 10, ... 50 days old
    make("notes.txt", 100);
    const QStringList removed = Autosave::removeOldCopies(folder.path(), now, 30, 3);
    EXPECT_EQ(removed.size(), 3);
    EXPECT_EQ(QDir(folder.path()).entryList({"*.sim"}, QDir::Files, QDir::Name),
              (QStringList{"copy0.sim", "copy1.sim", "copy2.sim"}));
    Autosave::removeOldCopies(folder.path(), now, 30, 2); // the count limit alone
    EXPECT_EQ(QDir(folder.path()).entryList({"*.sim"}, QDir::Files, QDir::Name),
              (QStringList{"copy0.sim", "copy1.sim"}));
    EXPECT_TRUE(QFile::exists(folder.file("notes.txt")));
}

TEST_F(RegisterTest, AutosaveCopyIsWholeWhileTheWorkingDatabaseChanges) {
    QSqlDatabase db = module.database(Db::Smeta);
    QSqlQuery q(db);
    q.exec("BEGIN");
    for (int i = 0; i < 3000; ++i)
        q.exec(QString("INSERT INTO materials (namemat) VALUES ('old %1')").arg(i));
    q.exec("COMMIT");
    Autosave autosave;
    autosave.setFolder(folder.file("Sm/Autosave"));
    QSignalSpy copied(&autosave, &Autosave::copied);
    ASSERT_TRUE(autosave.startCopy(module.filePath(Db::Smeta), "copy.sim"));
    EXPECT_FALSE(autosave.startCopy(module.filePath(Db::Smeta), "second.sim")); // one at a time
    // Edits go on while the copy is made.
    EXPECT_TRUE(q.exec("UPDATE materials SET namemat='new'"));
    autosave.waitForCopy();
    ASSERT_EQ(copied.count(), 1);
    const QString copy = copied.at(0).at(0).toString();
    EXPECT_EQ(SqliteSnapshot::check(copy), QString());
    const QStringList counted = DatabaseFile(copy).rows("SELECT COUNT(*), SUM(namemat='new') FROM materials");
    EXPECT_TRUE(counted == QStringList{"3000|0"} || counted == QStringList{"3000|3000"})
        << counted.join(' ').toStdString();
}

TEST(DocumentLockTest, ASecondProgramIsWarnedUntilTheFirstIsGone) {
    ensureApplication();
    TestFolder folder;
    const QString doc = folder.file("Смета.sim");
    QProcess other;
    other.start(QStringLiteral(DOCFILE_HELPER), {"lock", doc});
    ASSERT_TRUE(other.waitForReadyRead(10000));
    ASSERT_EQ(other.readAllStandardOutput(), QByteArray("locked\n"));

    DocumentLock lock;
    ASSERT_EQ(lock.acquire(doc), DocumentLock::State::HeldByOther);
    EXPECT_EQ(lock.holder().pid, other.processId());
    const QString text = DocumentLock::warningText(doc, lock.holder());
    EXPECT_TRUE(text.contains(doc)) << text.toStdString();
    EXPECT_TRUE(text.contains(QString::number(other.processId()))) << text.toStdString();

    // The other copy dies without cleaning up: its lock is stale and taken over.
    ::kill(static_cast<pid_t>(other.processId()), SIGKILL);
    other.waitForFinished(10000);
    ASSERT_EQ(lock.acquire(doc), DocumentLock::State::Locked);
    EXPECT_TRUE(QFile::exists(DocumentLock::lockPathFor(doc)));
    lock.release();
    EXPECT_FALSE(QFile::exists(DocumentLock::lockPathFor(doc)));

    // A folder where no lock can be made does not stop the document from opening.
    DocumentLock nowhere;
    EXPECT_EQ(nowhere.acquire(folder.file("нет такой папки/Смета.sim")), DocumentLock::State::Unavailable);
}

} // namespace
