// The default templates: put into Sh when missing, never over the user's files.

#include "office/OfficeTemplates.h"
#include "office/SheetTemplate.h"

#include "TestFolder.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

QByteArray contents(const QString &path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

TEST(OfficeTemplates, BringsEveryTemplateTheProgramNeeds) {
    const QStringList expected{"ДОГОВОР НА РЕМОНТ.docx",
                               "Шаблон КП.xls",
                               "Шаблон КС-2.xls",
                               "Шаблон КС-3.xls",
                               "Шаблон Локальная.xls",
                               "Шаблон Смета.xls",
                               "Шаблон Стройкооператив.xls",
                               "Шаблон Счет на оплату.xls"};
    QStringList names = OfficeTemplates::fileNames();
    names.sort();
    QStringList sorted = expected;
    sorted.sort();
    EXPECT_EQ(names, sorted);
}

TEST(OfficeTemplates, WritesMissingTemplatesAndNeverOverwrites) {
    TestFolder folder;
    QString error;
    const QStringList first = OfficeTemplates::ensureDefaults(folder.path(), &error);
    EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    EXPECT_EQ(first.size(), OfficeTemplates::fileNames().size());
    for (const QString &name : OfficeTemplates::fileNames()) {
        const QString path = OfficeTemplates::path(folder.path(), name);
        EXPECT_EQ(contents(path), contents(QStringLiteral(":/templates/") + name)) << name.toStdString();
        EXPECT_TRUE(QFile::permissions(path) & QFileDevice::WriteOwner) << "the user edits his templates";
    }

    const QString changed = OfficeTemplates::path(folder.path(), QStringLiteral("Шаблон Смета.xls"));
    const QString removed = OfficeTemplates::path(folder.path(), QStringLiteral("Шаблон КС-2.xls"));
    {
        QFile f(changed);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("the user's own template");
    }
    ASSERT_TRUE(QFile::remove(removed));
    const QStringList second = OfficeTemplates::ensureDefaults(folder.path(), &error);
    EXPECT_EQ(second, QStringList{QStringLiteral("Шаблон КС-2.xls")});
    EXPECT_EQ(contents(changed), QByteArray("the user's own template"));
    EXPECT_TRUE(QFile::exists(removed));
    EXPECT_TRUE(OfficeTemplates::ensureDefaults(folder.path()).isEmpty());
}

TEST(SheetTemplate, OptionalRowsAreDroppedWhenTheirItemIsEmptyOrMissing) {
    const SheetText::Grid grid{
        {"1", "[ComboBoxNameWork]", "[edSumma1]"},
        {"2", "[EditNameWork2]", "[edSumma2]"},
        {"3", "[EditNameWork3]", "[edSumma3]"},
        {"Итого", "", "[итого]"},
    };
    SheetData d;
    d.dropRowsWithout = {QStringLiteral("EditNameWork2"), QStringLiteral("EditNameWork3")};
    d.values.insert(QStringLiteral("ComboBoxNameWork"), SheetValue::ofText(QStringLiteral("Ремонт")));
    d.values.insert(QStringLiteral("EditNameWork2"), SheetValue::ofText(QString()));
    EXPECT_EQ(SheetTemplate::rowsToDrop(grid, d), (QVector<int>{1, 2}));
    d.values.insert(QStringLiteral("EditNameWork2"), SheetValue::ofText(QStringLiteral("Вывоз мусора")));
    EXPECT_EQ(SheetTemplate::rowsToDrop(grid, d), (QVector<int>{2}));
    d.dropRowsWithout.clear();
    EXPECT_TRUE(SheetTemplate::rowsToDrop(grid, d).isEmpty());
}

} // namespace
