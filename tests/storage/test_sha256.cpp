// The sums kept in documents and caches must stay those of the standard SHA-256 whichever way the
// bytes are fed: a changed sum would make every saved document look damaged.

#include "storage/Sha256.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <gtest/gtest.h>

TEST(Sha256, KnownSumsAndAnyFeedingGiveTheStandardSum) {
    struct Case {
        const char *what;
        QByteArray data;
        const char *hex; // empty: compared with QCryptographicHash
    };
    QByteArray mixed(300000, Qt::Uninitialized);
    for (int i = 0; i < mixed.size(); ++i)
        mixed[i] = static_cast<char>(i * 131 + i / 7);
    const Case cases[] = {
        {"empty", {}, "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"a million a", QByteArray(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
        {"mixed bytes", mixed, ""},
    };
    const int pieces[] = {1, 55, 64, 65, 4096, 70000};
    for (const Case &c : cases) {
        const QByteArray expected =
            *c.hex ? QByteArray(c.hex) : QCryptographicHash::hash(c.data, QCryptographicHash::Sha256).toHex();
        EXPECT_EQ(Sha256::hash(c.data).toHex(), expected) << c.what;
        for (int piece : pieces) {
            Sha256 h;
            for (qsizetype at = 0; at < c.data.size(); at += piece)
                h.addData(QByteArrayView(c.data).sliced(at, qMin<qsizetype>(piece, c.data.size() - at)));
            EXPECT_EQ(h.result().toHex(), expected) << c.what << " in pieces of " << piece;
        }
        QBuffer device;
        device.setData(c.data);
        ASSERT_TRUE(device.open(QIODevice::ReadOnly));
        Sha256 h;
        EXPECT_TRUE(h.addData(&device)) << c.what;
        EXPECT_EQ(h.result().toHex(), expected) << c.what << " read from a device";
    }
}

TEST(Sha256, ASumStartsAfreshAndAnUnreadableDeviceIsRefused) {
    Sha256 h;
    h.addData("first");
    h.result();
    h.addData("abc");
    EXPECT_EQ(h.result().toHex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    QBuffer closed;
    EXPECT_FALSE(h.addData(&closed));
    EXPECT_FALSE(h.addData(static_cast<QIODevice *>(nullptr)));
}
