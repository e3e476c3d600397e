#pragma once
// The document store of the tests: the MariaDB that `make test` starts (VIRN_TEST_MYSQL_*), a table of
// its own for each test (the account key), and a private file server that knows the key, for the
// pictures. The table is dropped afterwards.

#include "FileServerProcess.h"
#include "TestFolder.h"
#include "TestStoreAccess.h"
#include "fileserver/Protocol.h"
#include "server/DocumentStore.h"
#include "server/RemoteClient.h"
#include "server/ServerFiles.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>
#include <QtTest/QTest>
#include <gtest/gtest.h>
#include <memory>

// A table name no other test uses at the same time.
inline QString uniqueKey(const char *prefix) {
    static int counter = 0;
    return QStringLiteral("%1_%2_%3")
        .arg(QLatin1String(prefix))
        .arg(QCoreApplication::applicationPid())
        .arg(++counter);
}

// Runs a statement on the test database on a connection of its own.
inline QVariantList storeRows(const StoreAccess &a, const QString &sql) {
    QVariantList out;
    const QString name = QStringLiteral("store-check");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QMYSQL"), name);
        db.setHostName(a.host);
        db.setPort(a.port);
        db.setUserName(a.user);
        db.setPassword(a.password);
        db.setDatabaseName(a.database);
        if (db.open()) {
            QSqlQuery q(db);
            if (q.exec(sql))
                while (q.next())
                    out << q.value(0);
        }
    }
    QSqlDatabase::removeDatabase(name);
    return out;
}

// Adds a key to the file server's accounts and waits until the server has read them again (it looks at
// the file at most once a second).
inline bool addAccount(FileServerProcess &server, const QString &key) {
    server.put(QStringLiteral("accounts.txt"), (server.key() + "\n" + key + "\n").toUtf8());
    RemoteClient client;
    client.setServer(server.url(), key);
    for (int i = 0; i < 50; ++i) {
        const RemoteResult r =
            RemoteClient::wait(client.postForm(Protocol::kExistsCashbase, {{Protocol::kFieldKey, key}}));
        if (r.received && r.status != 403)
            return true;
        QTest::qWait(100);
    }
    return false;
}

class StoreFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        if (qEnvironmentVariableIsEmpty("VIRN_TEST_MYSQL_HOST"))
            GTEST_SKIP()
                << "VIRN_TEST_MYSQL_HOST is not set: start scripts/services/mariadb.sh (make test does)";
        access = testStoreAccess();
        access.table = uniqueKey("files");
        ASSERT_TRUE(fileServer.start()) << fileServer.error().toStdString();
        // The file server knows the test's key too.
        ASSERT_TRUE(addAccount(fileServer, access.table));
        http = std::make_unique<RemoteClient>();
        http->setServer(fileServer.url(), access.table);
        files = std::make_unique<ServerFiles>(http.get());
        files->setAccess(access);
    }
    void TearDown() override {
        files.reset();
        if (!access.table.isEmpty() && !qEnvironmentVariableIsEmpty("VIRN_TEST_MYSQL_HOST"))
            storeRows(access, QStringLiteral("DROP TABLE IF EXISTS ") + access.table);
    }

    // Runs one operation of ServerFiles and gives its end: ok, cancelled, message.
    template <typename Start> QVariantList finish(Start start, int ms = 120000) {
        QSignalSpy done(files.get(), &ServerFiles::finished);
        start();
        if (done.isEmpty() && !done.wait(ms))
            return {};
        return done.takeFirst();
    }
    // Reads the addresses and rows of a filter.
    bool read(const FileFilter &filter, QStringList *addresses, QList<StoredFile> *rows) {
        QSignalSpy listed(files.get(), &ServerFiles::listed);
        QSignalSpy failed(files.get(), &ServerFiles::listFailed);
        files->read(filter);
        for (int i = 0; i < 600 && listed.isEmpty() && failed.isEmpty(); ++i)
            listed.wait(100);
        if (listed.isEmpty())
            return false;
        *addresses = listed.first().at(0).toStringList();
        *rows = listed.first().at(1).value<QList<StoredFile>>();
        return true;
    }
    QList<StoredFile> rows(const FileFilter &filter = {}) {
        QStringList addresses;
        QList<StoredFile> out;
        EXPECT_TRUE(read(filter, &addresses, &out));
        return out;
    }
    // A file of the test folder with the given bytes.
    QString makeFile(const QString &name, const QByteArray &bytes) {
        const QString path = folder.file(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return path;
    }
    static QByteArray pattern(qint64 size) {
        QByteArray b(size, Qt::Uninitialized);
        for (qint64 i = 0; i < size; ++i)
            b[i] = static_cast<char>((i * 131 + i / 977) & 0xff);
        return b;
    }

    StoreAccess access;
    FileServerProcess fileServer;
    std::unique_ptr<RemoteClient> http;
    std::unique_ptr<ServerFiles> files;
    TestFolder folder;
};
