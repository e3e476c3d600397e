// The sum of a table is the SHA-256 of one stream of bytes (column names, then each value with its type
// tag and length), however the stream is fed to the hash: documents saved before keep verifying.

#include "storage/ContentChecksum.h"

#include <QCryptographicHash>
#include <QtEndian>
#include <cstring>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

void number(QByteArray &s, quint64 v) {
    const quint64 big = qToBigEndian(v);
    s.append(reinterpret_cast<const char *>(&big), sizeof big);
}

void bytes(QByteArray &s, const QByteArray &b) {
    number(s, static_cast<quint64>(b.size()));
    s.append(b);
}

TEST(ContentChecksum, IsTheHashOfTheWholeStreamWhateverTheSizeOfTheCells) {
    struct Case {
        const char *what;
        int rows;
        int textBytes; // each row's text
    };
    const Case cases[] = {
        {"no rows", 0, 0},
        {"small cells across many blocks", 20000, 7},
        {"a cell longer than a block", 3, 200000},
        {"cells that end a block exactly", 100, 65536 - 8 - 9 - 8 - 1},
    };
    for (const Case &c : cases) {
        sqlite3 *db = nullptr;
        ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
        sqlite3_exec(db, "CREATE TABLE t (n INTEGER, x TEXT, r REAL, b BLOB, z)", nullptr, nullptr, nullptr);
        QByteArray expected;
        for (const char *name : {"n", "x", "r", "b", "z"})
            bytes(expected, name);
        sqlite3_stmt *st = nullptr;
        sqlite3_prepare_v2(db, "INSERT INTO t VALUES (?, ?, ?, ?, NULL)", -1, &st, nullptr);
        for (int i = 0; i < c.rows; ++i) {
            const QByteArray text = QByteArray(c.textBytes, char('a' + i % 26));
            const QByteArray blob = QByteArray::number(i);
            const double real = i / 4.0;
            sqlite3_bind_int64(st, 1, -i);
            sqlite3_bind_text(st, 2, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
            sqlite3_bind_double(st, 3, real);
            sqlite3_bind_blob(st, 4, blob.constData(), static_cast<int>(blob.size()), SQLITE_TRANSIENT);
            ASSERT_EQ(sqlite3_step(st), SQLITE_DONE);
            sqlite3_reset(st);
            expected.append(char(SQLITE_INTEGER));
            number(expected, static_cast<quint64>(-static_cast<qint64>(i)));
            expected.append(char(SQLITE_TEXT));
            bytes(expected, text);
            expected.append(char(SQLITE_FLOAT));
            quint64 bits;
            std::memcpy(&bits, &real, sizeof bits);
            number(expected, bits);
            expected.append(char(SQLITE_BLOB));
            bytes(expected, blob);
            expected.append(char(SQLITE_NULL));
        }
        sqlite3_finalize(st);
        QString error;
        EXPECT_EQ(ContentChecksum::ofTable(db, "main", "t", &error),
                  QCryptographicHash::hash(expected, QCryptographicHash::Sha256).toHex())
            << c.what;
        EXPECT_TRUE(error.isEmpty()) << c.what;
        sqlite3_close(db);
    }
}

} // namespace
