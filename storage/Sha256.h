#pragma once
// SHA-256 through the system's crypto library, which uses the processor's hash instructions where
// it has them (several times faster than QCryptographicHash): a document's content sums are taken
// on every open and save, over every cell.

#include <QByteArray>
#include <QByteArrayView>
#include <memory>

class QIODevice;

class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256 &) = delete;
    Sha256 &operator=(const Sha256 &) = delete;

    void addData(QByteArrayView data);
    // Reads the device to its end; false when it cannot be read.
    bool addData(QIODevice *device);
    // The 32-byte sum of everything added; the hash starts afresh after it.
    QByteArray result();

    static QByteArray hash(QByteArrayView data);

private:
    struct Context;
    std::unique_ptr<Context> m_context;
};
