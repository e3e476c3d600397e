// Templates looked into before the engine opens them: hostile and damaged packages are refused with a
// message naming the file; a real template passes.

#include "ContractZips.h"

#include "office/OfficeTemplates.h"
#include "office/TemplateFile.h"
#include "office/TemplatePackage.h"

#include "../storage/QStringPrinter.h"
#include "TestFolder.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

TEST(ContractTemplateCheck, HostilePackagesAreRefused) {
    ensureApplication();
    TestFolder folder;
    const QByteArray zeros(20 * 1024 * 1024, '\0');
    QVector<PackageEntry> many = docxEntries({QStringLiteral("много частей")});
    for (int i = 0; i < TemplatePackage::kMaxEntries; ++i)
        many.append({QStringLiteral("word/media/p%1.xml").arg(i), QByteArray("<a/>")});
    const struct Case {
        const char *name;
        QVector<PackageEntry> entries;
        quint32 statedSize; // 0: the archive states the true sizes
        const char *why;    // a piece of the message
    } cases[] = {
        {"parent.docx", docxEntries({"Договор"}, {{"../../evil.xml", "<a/>"}}), 0,
         "недопустимым путём «../../evil.xml»"},
        {"absolute.docx", docxEntries({"Договор"}, {{"/etc/evil.xml", "<a/>"}}), 0, "недопустимым путём"},
        {"entity.docx",
         docxEntries({"Договор"}, {{"word/settings.xml",
                                    "<!DOCTYPE a [<!ENTITY x \"xxxxxxxxxx\"><!ENTITY y \"&x;&x;\">]><a/>"}}),
         0, "сущности XML"},
        {"bomb.docx", docxEntries({"Договор"}, {{"word/media/zeros.xml", zeros}}), 1000, "архивная бомба"},
        {"declared.docx", docxEntries({"Договор"}, {{"word/media/zeros.xml", QByteArray(1000, 'a')}}),
         300u * 1024 * 1024, "архивная бомба"},
        {"many.docx", many, 0, "частей, допустимо не более"},
    };
    for (const Case &c : cases) {
        const QString path = folder.file(QString::fromUtf8(c.name));
        ASSERT_TRUE(writePackage(path, c.entries)) << c.name;
        if (c.statedSize) {
            ASSERT_TRUE(stateUnpackedSize(path, c.statedSize)) << c.name;
        }
        const QString why = TemplateFile::check(path);
        EXPECT_TRUE(why.contains(QString::fromUtf8(c.why))) << c.name << ": " << why.toStdString();
        EXPECT_TRUE(why.contains(path)) << "the message names the file";
    }
}

TEST(ContractTemplateCheck, DamagedAndOversizedFilesAreRefused) {
    ensureApplication();
    TestFolder folder;
    const auto write = [&folder](const char *name, const QByteArray &bytes) {
        const QString path = folder.file(QString::fromUtf8(name));
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return path;
    };
    EXPECT_TRUE(TemplateFile::check(write("cut.docx", QByteArray("PK\x03\x04") + QByteArray(300, 'x')))
                    .contains(QStringLiteral("повреждён")));
    EXPECT_TRUE(
        TemplateFile::check(write("text.docx", "просто текст")).contains(QStringLiteral("не является")));
    EXPECT_TRUE(TemplateFile::check(folder.file("нет.docx")).startsWith(QStringLiteral("Отсутствует файл")));
    const QString big = write("big.rtf", "{\\rtf1 ");
    QFile f(big);
    ASSERT_TRUE(f.resize(TemplateFile::kMaxBytes + 1));
    EXPECT_TRUE(TemplateFile::check(big).contains(QStringLiteral("больше 50 МБ")));
    EXPECT_TRUE(TemplateFile::check(write("ok.rtf", "{\\rtf1 Договор [заказчик]}")).isEmpty());
    EXPECT_TRUE(TemplateFile::check(write("ok.txt", "Договор [заказчик]")).isEmpty());
}

TEST(ContractTemplateCheck, TheDefaultTemplatePassesAndItsPartsCanBeRead) {
    ensureApplication();
    TestFolder folder;
    OfficeTemplates::ensureDefaults(folder.path());
    const QString path = OfficeTemplates::path(folder.path(), QStringLiteral("ДОГОВОР НА РЕМОНТ.docx"));
    EXPECT_EQ(TemplateFile::check(path), QString());
    QByteArray xml;
    ASSERT_TRUE(TemplatePackage::readEntry(path, QStringLiteral("word/document.xml"), &xml));
    EXPECT_TRUE(xml.contains("w:body"));
    EXPECT_FALSE(TemplatePackage::readEntry(path, QStringLiteral("word/document.xml"), &xml, 100))
        << "over the cap";
    EXPECT_FALSE(TemplatePackage::readEntry(path, QStringLiteral("нет.xml"), &xml));
}

} // namespace
