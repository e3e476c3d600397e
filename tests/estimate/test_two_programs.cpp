// Two programs on one data folder (a document opened from the file manager while the program runs):
// each edits and saves its own estimate and nothing of either is lost; each works on a working copy of
// its own; a copy left by a program that crashed is found at the next start, and only then.

#include "SqlRows.h"
#include "TestFolder.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"
#include "storage/WorkingCopy.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace {

// A helper process, started and waited for up to the word it prints when it is ready.
std::unique_ptr<QProcess> startHelper(const QStringList &args, const QByteArray &ready) {
    auto p = std::make_unique<QProcess>();
    p->start(QStringLiteral(DOCFILE_HELPER), args);
    EXPECT_TRUE(p->waitForStarted(10000));
    QByteArray out;
    while (!out.contains(ready)) {
        if (!p->waitForReadyRead(60000)) {
            ADD_FAILURE() << "helper " << args.join(u' ').toStdString() << " printed " << out.toStdString()
                          << ": " << p->readAllStandardError().toStdString();
            return p;
        }
        out += p->readAllStandardOutput();
    }
    return p;
}

void finish(QProcess &p) {
    ASSERT_TRUE(p.waitForFinished(60000));
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
}

TEST(TwoPrograms, BothEditAndSaveAndNothingOfEitherIsLost) {
    ensureApplication();
    TestFolder folder;
    ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
    const QString first = folder.file(QStringLiteral("Sm/Первая.sim"));
    const QString second = folder.file(QStringLiteral("Sm/Вторая.sim"));

    // The first program has its estimate open with materials and coefficients, not yet saved...
    auto a =
        startHelper({QStringLiteral("instance"), folder.path(), first, QStringLiteral("Первый")}, "edited\n");
    // ...when a second one starts on the same folder, makes its own estimate and saves it.
    auto b = startHelper({QStringLiteral("instance"), folder.path(), second, QStringLiteral("Второй")},
                         "edited\n");
    b->write("save\n");
    finish(*b);
    a->write("save\n");
    finish(*a);

    struct Expected {
        QString file, tag, overheads;
    };
    for (const Expected &e : {Expected{first, QStringLiteral("Первый"), QStringLiteral("15")},
                              Expected{second, QStringLiteral("Второй"), QStringLiteral("7")}}) {
        SCOPED_TRACE(e.tag.toStdString());
        DatabaseFile doc(e.file);
        EXPECT_EQ(doc.rows(QStringLiteral("SELECT count(*) FROM smeta WHERE nameras LIKE '%1:%'").arg(e.tag)),
                  QStringList{"12"});
        EXPECT_EQ(doc.rows(QStringLiteral("SELECT count(*) FROM smeta")), QStringList{"12"});
        EXPECT_EQ(
            doc.rows(QStringLiteral("SELECT count(*) FROM materials WHERE namemat LIKE '%1:%'").arg(e.tag)),
            QStringList{"23"});
        EXPECT_EQ(doc.rows(QStringLiteral("SELECT count(*) FROM materials")), QStringList{"23"});
        EXPECT_EQ(
            doc.rows(QStringLiteral("SELECT checked, value FROM koef WHERE title='Накладные расходы, %'")),
            QStringList{QStringLiteral("-1|") + e.overheads});
    }
    // Both are in the register of documents and in the recent list.
    TModuleSQL module(folder.path());
    EXPECT_EQ(queryRows(module.database(Db::MyDoc), QStringLiteral("SELECT count(*) FROM documents")),
              QStringList{"2"});
    EXPECT_EQ(queryRows(module.database(Db::People), QStringLiteral("SELECT count(*) FROM LastDoc")),
              QStringList{"2"});
    // Each program gave up its working copy as it ended: no note is left to be taken for a crash.
    EXPECT_TRUE(
        QDir(folder.file("Sp")).entryList({QStringLiteral("*.note"), QStringLiteral("*.lock")}).isEmpty());
}

TEST(WorkingCopies, EachProgramHoldsItsOwnAndACrashedOnesChangesAreFoundOnce) {
    ensureApplication();
    TestFolder folder;
    ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
    const QString document = folder.file(QStringLiteral("Sm/Ремонт.sim"));

    // A running program holds the first copy: this one gets the second, with files of its own.
    auto running = startHelper({QStringLiteral("hold-copy"), folder.path(), document}, "held 1\n");
    {
        WorkingCopy copy(folder.path());
        ASSERT_TRUE(copy.claim(nullptr));
        EXPECT_EQ(copy.slot(), 2);
        EXPECT_EQ(copy.path(Db::Smeta), folder.file(QStringLiteral("Sp/smeta-2.db")));
        EXPECT_EQ(copy.path(Db::ReturnAction), folder.file(QStringLiteral("Sp/actions-2.db")));
        EXPECT_EQ(copy.path(Db::Price), folder.file(QStringLiteral("Sp/price.db")));
        EXPECT_TRUE(copy.leftovers().isEmpty()); // the other program's changes are its own
        TModuleSQL module(folder.path());
        copy.applyTo(module);
        ASSERT_TRUE(module.database(Db::Smeta).isOpen());
        module.closeAll();
        copy.release();
        // A copy other than the first goes with its program.
        EXPECT_FALSE(QFile::exists(folder.file(QStringLiteral("Sp/smeta-2.db"))));
    }

    // The program holding the first copy crashes with changes in it.
    ::kill(static_cast<pid_t>(running->processId()), SIGKILL);
    running->waitForFinished(10000);
    {
        WorkingCopy copy(folder.path());
        ASSERT_TRUE(copy.claim(nullptr));
        EXPECT_EQ(copy.slot(), 1);
        ASSERT_EQ(copy.leftovers().size(), 1);
        const WorkingCopy::Leftover left = copy.leftovers().first();
        EXPECT_EQ(left.document, document);
        EXPECT_FALSE(left.file.startsWith(folder.file(QStringLiteral("Sp"))));
        {
            DatabaseFile kept(left.file);
            EXPECT_EQ(kept.rows(QStringLiteral("SELECT nameras FROM smeta")),
                      QStringList{"Несохранённая работа"});
        }
        // The first copy is this program's now, fresh: the crashed program's changes are only offered.
        TModuleSQL module(folder.path());
        copy.applyTo(module);
        EXPECT_EQ(queryRows(module.database(Db::Smeta), QStringLiteral("SELECT count(*) FROM smeta")),
                  QStringList{"0"});
        module.closeAll();
        copy.removeLeftover(left);
        EXPECT_FALSE(QFile::exists(left.file));
        EXPECT_TRUE(copy.leftovers().isEmpty());
    }
    // Offered once: the next start finds nothing.
    WorkingCopy again(folder.path());
    ASSERT_TRUE(again.claim(nullptr));
    EXPECT_TRUE(again.leftovers().isEmpty());
}

TEST(WorkingCopies, ACopyTakenOutByAProgramThatCrashedBeforeOfferingItIsOfferedAgain) {
    ensureApplication();
    TestFolder folder;
    ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
    // A copy moved out of the way by a program (process 1 is never one of ours) that then crashed.
    const QString stale = folder.file(QStringLiteral("Temp/recovery-999999999-1.db"));
    {
        DatabaseFile db(stale);
        QSqlQuery(db.db()).exec(QStringLiteral("CREATE TABLE smeta (nameras TEXT)"));
    }
    QFile note(stale + QStringLiteral(".note"));
    ASSERT_TRUE(note.open(QIODevice::WriteOnly));
    note.write(R"({"document":"/дом/смета.sim","changed":true})");
    note.close();

    WorkingCopy copy(folder.path());
    ASSERT_TRUE(copy.claim(nullptr));
    ASSERT_EQ(copy.leftovers().size(), 1);
    EXPECT_EQ(copy.leftovers().first().document, QStringLiteral("/дом/смета.sim"));
    EXPECT_FALSE(QFile::exists(stale));
}

} // namespace
