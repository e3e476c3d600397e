#include "ContentChecksum.h"

#include "Sha256.h"
#include "TextValues.h"

#include <QtEndian>
#include <cstring>
#include <sqlite3.h>
#include <vector>

namespace ContentChecksum {

namespace {

// The bytes of a table go to the hash in blocks: a cell is a few bytes, and the hash costs per call.
// The sum is that of the same bytes given one by one.
class Feed {
public:
    explicit Feed(Sha256 &h) : m_hash(h) {}
    ~Feed() { flush(); }
    void flush() {
        if (m_used > 0)
            m_hash.addData(QByteArrayView(m_buffer.data(), m_used));
        m_used = 0;
    }
    void add(const char *data, qsizetype size) {
        if (m_used + size > kBlock) {
            flush();
            if (size > kBlock) {
                m_hash.addData(QByteArrayView(data, size));
                return;
            }
        }
        std::memcpy(m_buffer.data() + m_used, data, static_cast<size_t>(size));
        m_used += size;
    }
    void addNumber(quint64 v) {
        const quint64 big = qToBigEndian(v);
        add(reinterpret_cast<const char *>(&big), sizeof big);
    }
    void addBytes(const void *data, int size) {
        addNumber(static_cast<quint64>(size));
        if (size > 0)
            add(static_cast<const char *>(data), size);
    }

private:
    static constexpr qsizetype kBlock = 64 * 1024;
    Sha256 &m_hash;
    std::vector<char> m_buffer = std::vector<char>(kBlock);
    qsizetype m_used = 0;
};

} // namespace

QByteArray ofTable(sqlite3 *db, const QString &schema, const QString &table, QString *error) {
    const QByteArray sql = QStringLiteral("SELECT * FROM %1.%2 ORDER BY rowid")
                               .arg(TextValues::sqlIdentifier(schema), TextValues::sqlIdentifier(table))
                               .toUtf8();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(db, sql.constData(), -1, &st, nullptr) != SQLITE_OK) {
        *error = QString::fromUtf8(sqlite3_errmsg(db));
        return {};
    }
    Sha256 h;
    Feed feed(h);
    const int columns = sqlite3_column_count(st);
    for (int i = 0; i < columns; ++i) {
        const char *name = sqlite3_column_name(st, i);
        feed.addBytes(name, name ? static_cast<int>(std::strlen(name)) : 0);
    }
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        for (int i = 0; i < columns; ++i) {
            const int type = sqlite3_column_type(st, i);
            const char tag = static_cast<char>(type);
            feed.add(&tag, 1);
            switch (type) {
            case SQLITE_INTEGER:
                feed.addNumber(static_cast<quint64>(sqlite3_column_int64(st, i)));
                break;
            case SQLITE_FLOAT: {
                const double d = sqlite3_column_double(st, i);
                quint64 bits;
                std::memcpy(&bits, &d, sizeof bits);
                feed.addNumber(bits);
                break;
            }
            case SQLITE_TEXT: {
                const unsigned char *text = sqlite3_column_text(st, i);
                feed.addBytes(text, sqlite3_column_bytes(st, i));
                break;
            }
            case SQLITE_BLOB: {
                const void *blob = sqlite3_column_blob(st, i);
                feed.addBytes(blob, sqlite3_column_bytes(st, i));
                break;
            }
            default:
                break;
            }
        }
    }
    if (rc != SQLITE_DONE) {
        *error = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_finalize(st);
        return {};
    }
    sqlite3_finalize(st);
    feed.flush();
    return h.result().toHex();
}

} // namespace ContentChecksum
