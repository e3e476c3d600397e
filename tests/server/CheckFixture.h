#pragma once
// A private file server, a client for it, and a fake program in a scratch folder for the version
// and news checks.

#include "FileServerProcess.h"
#include "TestFolder.h"
#include "server/RemoteClient.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QtTest/QTest>
#include <gtest/gtest.h>

class CheckFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(server.start()) << server.error().toStdString();
        client.setServer(server.url(), server.key());
        QDir(folder.path()).mkpath("program");
        QDir(folder.path()).mkpath("data");
        QFile exe(program());
        ASSERT_TRUE(exe.open(QIODevice::WriteOnly));
        exe.write("the program as installed");
    }
    QString program() const { return folder.file("program/virn-smeta"); }
    QString data() const { return folder.file("data"); }
    static QByteArray read(const QString &path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // Waits for a check's finished signal.
    template <typename Check> void run(Check &check) {
        QSignalSpy finished(&check, &Check::finished);
        check.start();
        ASSERT_TRUE(finished.wait(20000));
        QTest::qWait(10);
        EXPECT_EQ(finished.count(), 1);
    }

    FileServerProcess server;
    RemoteClient client;
    TestFolder folder;
};
