// The upload limit exactly at 15728600 bytes, and uploads that break off: the good file stays.

#include "FileServerTest.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QThread>

namespace {
const std::string kOld = "the good book that must survive";

std::string book(std::uintmax_t size) {
    std::string b(size, 'b');
    b.replace(0, 16, std::string("SQLite format 3\0", 16));
    return b;
}
} // namespace

TEST_F(FileServerTest, UploadLimitIsExactly15728600Bytes) {
    ASSERT_EQ(upload(key(), "cashbase.db", kOld)->status, 200);

    auto over = upload(key(), "cashbase.db", book(Protocol::kUploadLimit + 1));
    ASSERT_TRUE(over);
    EXPECT_EQ(over->status, 413);
    EXPECT_EQ(server.read("base_virn_s/test_key/cashbase.db").toStdString(), kOld);

    const std::string exact = book(Protocol::kUploadLimit);
    auto fits = upload(key(), "cashbase.db", exact);
    ASSERT_TRUE(fits);
    EXPECT_EQ(fits->status, 200);
    EXPECT_EQ(fits->body, Protocol::kReplyUploaded);
    EXPECT_EQ(server.read("base_virn_s/test_key/cashbase.db").size(), qint64(Protocol::kUploadLimit));
    EXPECT_TRUE(QDir(server.file(".incoming")).isEmpty());
}

TEST_F(FileServerTest, InterruptedUploadLeavesTheOldFile) {
    ASSERT_EQ(upload(key(), "cashbase.db", kOld)->status, 200);

    // A client that announces a whole book, sends half of it and goes away.
    const QByteArray boundary = "----virnboundary";
    QByteArray head = "--" + boundary +
                      "\r\nContent-Disposition: form-data; name=\"key\"\r\n\r\ntest_key\r\n--" + boundary +
                      "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"cashbase.db\"\r\n"
                      "Content-Type: application/octet-stream\r\n\r\n";
    const QByteArray tail = "\r\n--" + boundary + "--\r\n";
    const qint64 fileSize = 200000;
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", server.url().port());
    ASSERT_TRUE(socket.waitForConnected(5000));
    socket.write("POST /files/base_virn_s/post_cashbase.php HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                 "Content-Type: multipart/form-data; boundary=" +
                 boundary + "\r\nContent-Length: " +
                 QByteArray::number(head.size() + fileSize + tail.size()) + "\r\n\r\n");
    socket.write(head);
    socket.write(QByteArray(fileSize / 2, 'x'));
    ASSERT_TRUE(socket.waitForBytesWritten(5000));
    QThread::msleep(200);
    socket.abort();

    // The server notices, drops its temporary file and keeps the book it had.
    QElapsedTimer timer;
    timer.start();
    while (!QDir(server.file(".incoming")).isEmpty() && timer.elapsed() < 10000)
        QThread::msleep(50);
    EXPECT_TRUE(QDir(server.file(".incoming")).isEmpty());
    EXPECT_EQ(server.read("base_virn_s/test_key/cashbase.db").toStdString(), kOld);
    // And goes on serving.
    EXPECT_EQ(post(Protocol::kExistsCashbase, {{"key", key()}})->body, "ok");
}

TEST_F(FileServerTest, UploadThatStallsIsDroppedAtTheServersTimeLimit) {
    restart({"--timeout", "1"});
    ASSERT_EQ(upload(key(), "cashbase.db", kOld)->status, 200);
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", server.url().port());
    ASSERT_TRUE(socket.waitForConnected(5000));
    socket.write("POST /files/base_virn_s/post_cashbase.php HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                 "Content-Type: multipart/form-data; boundary=b\r\nContent-Length: 100000\r\n\r\n--b\r\n"
                 "Content-Disposition: form-data; name=\"file\"; filename=\"cashbase.db\"\r\n\r\nabc");
    ASSERT_TRUE(socket.waitForBytesWritten(5000));
    // The server gives up on the silent client and closes the connection.
    EXPECT_TRUE(socket.waitForDisconnected(8000));
    EXPECT_EQ(server.read("base_virn_s/test_key/cashbase.db").toStdString(), kOld);
    EXPECT_TRUE(QDir(server.file(".incoming")).isEmpty());
}
