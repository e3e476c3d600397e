#include "Sha256.h"

#include <QIODevice>
#include <openssl/evp.h>

#include <new>

struct Sha256::Context {
    EVP_MD_CTX *ctx = EVP_MD_CTX_new();
    ~Context() { EVP_MD_CTX_free(ctx); }
    void start() {
        if (!ctx || EVP_DigestInit_ex(ctx, EVP_sha256(), nullptr) != 1)
            throw std::bad_alloc();
    }
};

Sha256::Sha256() : m_context(std::make_unique<Context>()) {
    m_context->start();
}

Sha256::~Sha256() = default;

void Sha256::addData(QByteArrayView data) {
    if (!data.isEmpty())
        EVP_DigestUpdate(m_context->ctx, data.data(), static_cast<size_t>(data.size()));
}

bool Sha256::addData(QIODevice *device) {
    if (!device || !device->isReadable())
        return false;
    QByteArray block(64 * 1024, Qt::Uninitialized);
    for (;;) {
        const qint64 n = device->read(block.data(), block.size());
        if (n < 0)
            return false;
        if (n == 0)
            return device->atEnd();
        addData(QByteArrayView(block.constData(), n));
    }
}

QByteArray Sha256::result() {
    QByteArray out(EVP_MAX_MD_SIZE, Qt::Uninitialized);
    unsigned int size = 0;
    EVP_DigestFinal_ex(m_context->ctx, reinterpret_cast<unsigned char *>(out.data()), &size);
    out.truncate(static_cast<qsizetype>(size));
    m_context->start();
    return out;
}

QByteArray Sha256::hash(QByteArrayView data) {
    Sha256 h;
    h.addData(data);
    return h.result();
}
