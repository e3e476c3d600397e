// Templates that would take the engine's memory or time are refused before it sees them: zip packages
// that unpack too far or declare XML entities, old Office files whose structure does not hold
// together, RTF nested without end; the program's own templates pass.

#include "office/TemplatePackage.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"

#include "TestFolder.h"

#include <QFile>
#include <QtEndian>
#include <functional>
#include <gtest/gtest.h>
#include <zip.h>

namespace {

struct Entry {
    QString name;
    QByteArray data;
    int copies = 1; // the same data under names name1, name2, ...
};

// A zip package written with libzip, deflated.
void writeZip(const QString &path, const QVector<Entry> &entries) {
    int code = 0;
    zip_t *z = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    ASSERT_NE(z, nullptr);
    for (const Entry &e : entries) {
        for (int i = 0; i < e.copies; ++i) {
            zip_source_t *src =
                zip_source_buffer(z, e.data.constData(), static_cast<zip_uint64_t>(e.data.size()), 0);
            const QByteArray name = (e.copies > 1 ? e.name + QString::number(i) : e.name).toUtf8();
            const zip_int64_t index = zip_file_add(z, name.constData(), src, ZIP_FL_ENC_UTF_8);
            ASSERT_GE(index, 0);
            zip_set_file_compression(z, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 1);
        }
    }
    ASSERT_EQ(zip_close(z), 0); // the buffers are read here
}

QByteArray read(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

const QByteArray kTypes =
    "<?xml version=\"1.0\"?><Types xmlns=\"http://schemas.openxmlformats.org/package/2006/"
    "content-types\"/>";

TEST(TemplatePackage, WhatWouldTakeTheEnginesMemoryOrTimeIsRefusedAndTheProgramsOwnTemplatesPass) {
    ensureApplication();
    TestFolder folder;
    QString error;
    OfficeTemplates::ensureDefaults(folder.path(), &error);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    for (const QString &name : OfficeTemplates::fileNames()) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(TemplateFile::check(OfficeTemplates::path(folder.path(), name)), QString());
    }
    const QString sheet = OfficeTemplates::path(folder.path(), QStringLiteral("Шаблон Смета.xls"));
    const QByteArray xls = read(sheet);
    ASSERT_GT(xls.size(), 4096);
    auto patched = [&xls](int at, quint32 value) {
        QByteArray b = xls;
        qToLittleEndian(value, b.data() + at);
        return b;
    };

    const QByteArray zeros(50 * 1024 * 1024, '\0');
    const QByteArray billionLaughs =
        "<?xml version=\"1.0\"?><!DOCTYPE w [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b "
        "\"&a;&a;&a;&a;&a;&a;&a;&a;\">"
        "]><w:document "
        "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"><w:body><w:p><w:r>"
        "<w:t>&b;</w:t></w:r></w:p></w:body></w:document>";
    struct Case {
        const char *name;
        std::function<void(const QString &)> make;
        const char *told; // empty: the template passes
    };
    const std::vector<Case> cases = {
        {"bomb.docx",
         [&](const QString &p) {
             // 250 MB of zeros in a package of a few hundred kilobytes.
             writeZip(p, {{QStringLiteral("[Content_Types].xml"), kTypes},
                          {QStringLiteral("word/media/zero"), zeros, 5}});
         },
         "«бомба»"},
        {"entities.docx",
         [&](const QString &p) {
             writeZip(p, {{QStringLiteral("[Content_Types].xml"), kTypes},
                          {QStringLiteral("word/document.xml"), billionLaughs}});
         },
         "сущности XML"},
        {"parts.xlsx",
         [&](const QString &p) {
             writeZip(p, {{QStringLiteral("[Content_Types].xml"), kTypes},
                          {QStringLiteral("xl/part"), "x", 2001}});
         },
         "2002 частей"},
        {"small.docx",
         [&](const QString &p) {
             writeZip(p, {{QStringLiteral("[Content_Types].xml"), kTypes},
                          {QStringLiteral("word/document.xml"), "<w:document>[заказчик]</w:document>"}});
         },
         ""},
        {"garbage.xls",
         [&](const QString &p) {
             // The old-Excel header with random bytes behind it.
             QByteArray b = xls.left(512);
             for (int i = 0; i < 20000; ++i)
                 b += static_cast<char>((i * 7919) % 251);
             write(p, b);
         },
         "повреждён или опасен"},
        {"fat.xls", [&](const QString &p) { write(p, patched(44, 0x7fffffff)); }, "таблица размещения"},
        {"directory.xls", [&](const QString &p) { write(p, patched(48, 0x00ffffff)); }, "каталог файла"},
        {"sector.xls", [&](const QString &p) { write(p, patched(76, 0x00ffffff)); }, "за конец файла"},
        {"nested.rtf",
         [&](const QString &p) {
             write(p, "{\\rtf1 " + QByteArray(1000, '{') + "x" + QByteArray(1000, '}') + "}");
         },
         "вложены глубже"},
        {"letter.rtf", [&](const QString &p) { write(p, "{\\rtf1\\ansi {\\b [заказчик]} \\{text\\}}"); }, ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = folder.file(QString::fromLatin1(c.name));
        c.make(path);
        const QString message = TemplateFile::check(path);
        if (!*c.told) {
            EXPECT_EQ(message, QString());
            continue;
        }
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.told))) << message.toStdString();
        EXPECT_TRUE(message.contains(path)) << message.toStdString();
    }
}

} // namespace
