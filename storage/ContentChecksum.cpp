#include "ContentChecksum.h"

#include "TextValues.h"

#include <QCryptographicHash>
#include <QtEndian>
#include <cstring>
#include <sqlite3.h>

namespace ContentChecksum {

namespace {

void addNumber(QCryptographicHash &h, quint64 v) {
    const quint64 big = qToBigEndian(v);
    h.addData(QByteArrayView(reinterpret_cast<const char *>(&big), sizeof big));
}

void addBytes(QCryptographicHash &h, const void *data, int size) {
    addNumber(h, static_cast<quint64>(size));
    if (size > 0)
        h.addData(QByteArrayView(static_cast<const char *>(data), size));
}

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
    QCryptographicHash h(QCryptographicHash::Sha256);
    const int columns = sqlite3_column_count(st);
    for (int i = 0; i < columns; ++i) {
        const char *name = sqlite3_column_name(st, i);
        addBytes(h, name, name ? static_cast<int>(std::strlen(name)) : 0);
    }
    int rc;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW) {
        for (int i = 0; i < columns; ++i) {
            const int type = sqlite3_column_type(st, i);
            const char tag = static_cast<char>(type);
            h.addData(QByteArrayView(&tag, 1));
            switch (type) {
            case SQLITE_INTEGER:
                addNumber(h, static_cast<quint64>(sqlite3_column_int64(st, i)));
                break;
            case SQLITE_FLOAT: {
                const double d = sqlite3_column_double(st, i);
                quint64 bits;
                std::memcpy(&bits, &d, sizeof bits);
                addNumber(h, bits);
                break;
            }
            case SQLITE_TEXT: {
                const unsigned char *text = sqlite3_column_text(st, i);
                addBytes(h, text, sqlite3_column_bytes(st, i));
                break;
            }
            case SQLITE_BLOB: {
                const void *blob = sqlite3_column_blob(st, i);
                addBytes(h, blob, sqlite3_column_bytes(st, i));
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
    return h.result().toHex();
}

} // namespace ContentChecksum
