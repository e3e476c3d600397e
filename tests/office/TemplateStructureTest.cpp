// Templates that would keep the engine busy are refused before it sees them: old Office files whose
// structure does not hold together, RTF nested without end; the program's own templates pass.

#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"

#include "TestFolder.h"

#include <QFile>
#include <QtEndian>
#include <functional>
#include <gtest/gtest.h>

namespace {

QByteArray read(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

TEST(TemplateStructure, BrokenOldOfficeFilesAndEndlessRtfAreRefusedAndTheProgramsOwnTemplatesPass) {
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

    struct Case {
        const char *name;
        std::function<void(const QString &)> make;
        const char *told; // empty: the template passes
    };
    const std::vector<Case> cases = {
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
