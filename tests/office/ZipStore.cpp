#include "ZipStore.h"

#include <QFile>

namespace {

quint32 crc32Of(const QByteArray &data) {
    static quint32 table[256];
    static bool ready = false;
    if (!ready) {
        for (quint32 i = 0; i < 256; ++i) {
            quint32 c = i;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            table[i] = c;
        }
        ready = true;
    }
    quint32 crc = 0xFFFFFFFFu;
    for (char ch : data)
        crc = table[(crc ^ static_cast<quint8>(ch)) & 0xFF] ^ (crc >> 8);
    return crc ^ 0xFFFFFFFFu;
}

void put16(QByteArray &out, quint16 v) {
    out.append(char(v & 0xFF));
    out.append(char(v >> 8));
}

void put32(QByteArray &out, quint32 v) {
    put16(out, quint16(v & 0xFFFF));
    put16(out, quint16(v >> 16));
}

} // namespace

bool writeStoredZip(const QString &path, const QVector<ZipEntry> &entries) {
    QByteArray body;
    QByteArray directory;
    for (const ZipEntry &e : entries) {
        const QByteArray name = e.name.toUtf8();
        const quint32 crc = crc32Of(e.data);
        const quint32 offset = quint32(body.size());
        put32(body, 0x04034b50);
        put16(body, 20);     // version needed
        put16(body, 0x0800); // names in UTF-8
        put16(body, 0);      // stored
        put16(body, 0);      // time
        put16(body, 0x21);   // date 1980-01-01
        put32(body, crc);
        put32(body, quint32(e.data.size()));
        put32(body, quint32(e.data.size()));
        put16(body, quint16(name.size()));
        put16(body, 0);
        body += name;
        body += e.data;

        put32(directory, 0x02014b50);
        put16(directory, 20);
        put16(directory, 20);
        put16(directory, 0x0800);
        put16(directory, 0);
        put16(directory, 0);
        put16(directory, 0x21);
        put32(directory, crc);
        put32(directory, quint32(e.data.size()));
        put32(directory, quint32(e.data.size()));
        put16(directory, quint16(name.size()));
        put16(directory, 0);
        put16(directory, 0);
        put16(directory, 0);
        put16(directory, 0);
        put32(directory, 0);
        put32(directory, offset);
        directory += name;
    }
    QByteArray end;
    put32(end, 0x06054b50);
    put16(end, 0);
    put16(end, 0);
    put16(end, quint16(entries.size()));
    put16(end, quint16(entries.size()));
    put32(end, quint32(directory.size()));
    put32(end, quint32(body.size()));
    put16(end, 0);
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    return f.write(body + directory + end) == body.size() + directory.size() + end.size();
}
