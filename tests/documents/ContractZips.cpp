#include "ContractZips.h"

#include <QFile>
#include <QStringList>
#include <zip.h>

bool writePackage(const QString &path, const QVector<PackageEntry> &entries) {
    QFile::remove(path);
    int code = 0;
    zip_t *z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!z)
        return false;
    for (const PackageEntry &e : entries) {
        // libzip reads the buffer when the archive is closed: it must live until then.
        zip_source_t *s =
            zip_source_buffer(z, e.data.constData(), static_cast<zip_uint64_t>(e.data.size()), 0);
        const zip_int64_t at = s ? zip_file_add(z, e.name.toUtf8().constData(), s, ZIP_FL_ENC_UTF_8) : -1;
        if (at < 0) {
            zip_source_free(s);
            zip_discard(z);
            return false;
        }
        zip_set_file_compression(z, static_cast<zip_uint64_t>(at), ZIP_CM_DEFLATE, 1);
    }
    return zip_close(z) == 0;
}

bool stateUnpackedSize(const QString &path, quint32 size) {
    QFile f(path);
    if (!f.open(QIODevice::ReadWrite))
        return false;
    QByteArray bytes = f.readAll();
    const auto put = [&bytes, size](qsizetype at) {
        for (int i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<char>((size >> (8 * i)) & 0xff);
    };
    int patched = 0;
    for (qsizetype at = 0; (at = bytes.indexOf("PK\x03\x04", at)) >= 0; at += 4, ++patched)
        put(at + 22);
    for (qsizetype at = 0; (at = bytes.indexOf("PK\x01\x02", at)) >= 0; at += 4, ++patched)
        put(at + 24);
    f.seek(0);
    return patched > 0 && f.write(bytes) == bytes.size();
}

QVector<PackageEntry> docxEntries(const QStringList &paragraphs, const QVector<PackageEntry> &extra) {
    QByteArray body;
    for (const QString &p : paragraphs)
        body += "<w:p><w:r><w:t xml:space=\"preserve\">" + p.toHtmlEscaped().toUtf8() + "</w:t></w:r></w:p>";
    QVector<PackageEntry> list{
        {QStringLiteral("[Content_Types].xml"),
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Types "
         "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default Extension=\"rels\" "
         "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/><Default "
         "Extension=\"xml\" "
         "ContentType=\"application/xml\"/><Override PartName=\"/word/document.xml\" "
         "ContentType=\"application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml\"/"
         "></Types>"},
        {QStringLiteral("_rels/.rels"),
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Relationships "
         "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"><Relationship Id=\"rId1\" "
         "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument\" "
         "Target=\"word/document.xml\"/></Relationships>"},
        {QStringLiteral("word/document.xml"),
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?><w:document "
         "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"><w:body>" +
             body + "</w:body></w:document>"},
    };
    list << extra;
    return list;
}
