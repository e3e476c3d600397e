// Two running programs on one data folder write the shared databases at the same moment: neither
// fails with "database is locked", and nothing either of them wrote is lost or doubled.

#include "QStringPrinter.h"
#include "TestFolder.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QProcess>
#include <QSqlQuery>
#include <gtest/gtest.h>
#include <memory>

namespace {

constexpr int kEach = 60;

QString scalar(QSqlDatabase db, const QString &sql) {
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toString() : QStringLiteral("<%1>").arg(sql);
}

TEST(SharedDatabases, TwoProgramsWriteAtOnceWithoutLockErrorsOrLostUpdates) {
    ensureApplication();
    // An empty data folder: both programs also make and upgrade every file at the same moment.
    TestFolder folder;

    std::vector<std::unique_ptr<QProcess>> writers;
    for (const char *tag : {"Первый", "Второй"}) {
        auto p = std::make_unique<QProcess>();
        p->start(QStringLiteral(SHARED_WRITER_HELPER),
                 {QStringLiteral("write"), folder.path(), QString::fromUtf8(tag), QString::number(kEach)});
        ASSERT_TRUE(p->waitForStarted(10000));
        QByteArray out;
        while (!out.contains("ready\n")) {
            ASSERT_TRUE(p->waitForReadyRead(10000)) << p->readAllStandardError().toStdString();
            out += p->readAllStandardOutput();
        }
        writers.push_back(std::move(p));
    }
    // Both start writing together (the word is sent now, not when the test next waits for one).
    for (auto &p : writers) {
        p->write("go\n");
        ASSERT_TRUE(p->waitForBytesWritten(10000));
    }
    for (auto &p : writers) {
        ASSERT_TRUE(p->waitForFinished(120000));
        const QByteArray err = p->readAllStandardError();
        EXPECT_EQ(p->exitCode(), 0) << err.toStdString();
        EXPECT_FALSE(err.contains("locked")) << err.toStdString();
    }

    TModuleSQL module(folder.path());
    QSqlDatabase cash = module.database(Db::Cash), people = module.database(Db::People);
    // Every customer of both, once, in both databases.
    EXPECT_EQ(scalar(cash, "SELECT count(DISTINCT fio) FROM customer"), QString::number(2 * kEach));
    EXPECT_EQ(scalar(cash, "SELECT count(*) FROM customer"), QString::number(2 * kEach));
    EXPECT_EQ(scalar(people, "SELECT count(*) FROM Customer"), QString::number(2 * kEach));
    EXPECT_EQ(scalar(cash, "SELECT count(*) FROM RequisiteZak"), QString::number(2 * kEach));
    // One counter record per customer and object, however the two raced for it.
    EXPECT_EQ(scalar(people, "SELECT count(*) FROM NumDoc WHERE Client='Общий заказчик'"),
              QString::number(kEach));
    EXPECT_EQ(scalar(people, "SELECT count(DISTINCT Object) FROM NumDoc WHERE Client='Общий заказчик'"),
              QString::number(kEach));
    // Every read-then-write of the shared counter counted.
    EXPECT_EQ(scalar(people, "SELECT Smeta FROM NumDoc WHERE Client='счётчик'"), QString::number(2 * kEach));
    // The recent list stays at its ten newest entries.
    EXPECT_EQ(scalar(people, "SELECT count(*) FROM LastDoc"), "10");
}

} // namespace
