#include "customers/CustomerFolder.h"
#include "storage/ModuleSQL.h"

#include "TestFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace CustomerFolder;

namespace {

Options detail(bool region, bool area, bool city, bool street, bool house, bool apartment) {
    Options o;
    o.detailAddress = true;
    o.region = region;
    o.area = area;
    o.city = city;
    o.street = street;
    o.house = house;
    o.apartment = apartment;
    return o;
}

const AddressParts kTver{"Тверская", "Калининский", "Тверь", "Ленина", "5", "12"};

struct FolderCase {
    const char *what;
    QString customer;
    QString object;
    AddressParts address;
    Options options;
    QString expected; // below "/docs"
};

} // namespace

TEST(CustomerFolder, FolderFollowsOptionsAndNames) {
    Options off;
    off.bossDir = false;
    Options plain;
    const std::vector<FolderCase> cases = {
        {"no folder per customer", "Иванов", "Дача", kTver, off, ""},
        {"no customer chosen", "", "Дача", kTver, plain, ""},
        {"customer and object", "Иванов", "Дача", kTver, plain, "/Иванов/Дача"},
        {"customer without object", "Иванов", "", kTver, plain, "/Иванов"},
        {"default address parts", "Иванов", "Дача", kTver, detail(false, false, true, true, true, true),
         "/Иванов/г.Тверь, ул. Ленина, д.5, кв.12"},
        {"region and district are folder levels", "Иванов", "Дача", kTver,
         detail(true, true, true, false, false, false), "/Иванов/Тверская обл./Калининский р-он./г.Тверь"},
        {"only the region", "Иванов", "Дача", kTver, detail(true, false, false, false, false, false),
         "/Иванов/Тверская обл."},
        {"no address part filled: the object", "Иванов", "Дача", AddressParts{},
         detail(true, true, true, true, true, true), "/Иванов/Дача"},
        {"blank parts are skipped", "Иванов", "Дача", AddressParts{"  ", "", "Тверь", "", " 7 ", ""},
         detail(true, true, true, true, true, true), "/Иванов/г.Тверь, д.7"},
        {"backslash in house and apartment becomes a dash, elsewhere a backtick", "Иванов", "Дача",
         AddressParts{"", "", "Тверь", "8 Марта\\Южная", "5\\2", "1\\3"},
         detail(false, false, true, true, true, true), "/Иванов/г.Тверь, ул. 8 Марта`Южная, д.5-2, кв.1-3"},
        {"quotes and forbidden characters", "ООО \"Ромашка\"", "a/b:c*?<>|%d", kTver, plain,
         "/ООО `Ромашка`/a`b`c`````d"},
        {"stored name with backticks gives the same folder", "ООО `Ромашка`", "Дача", kTver, plain,
         "/ООО `Ромашка`/Дача"},
        {"dots cannot climb out", "..", "..", kTver, plain, "/``/``"},
        {"control characters become blanks", "Иванов\nИван", "Дом\t1", kTver, plain, "/Иванов Иван/Дом 1"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(SetDirectoryCustomerAndObject("/docs", c.customer, c.object, c.address, c.options),
                  "/docs" + c.expected)
            << c.what;
    }
}

TEST(CustomerFolder, LongNamesAreCutWithoutBreakingCharacters) {
    const QString tenKb = QString(10240, QChar(0x0416));        // "Ж", two bytes each
    const QString emoji = QString::fromUtf8("😀").repeated(100); // four bytes each
    for (const QString &name : {tenKb, emoji}) {
        const QString part = cleanPart(name);
        EXPECT_LE(part.toUtf8().size(), 200);
        EXPECT_GT(part.size(), 40);
        EXPECT_EQ(QString::fromUtf8(part.toUtf8()), part) << "a character was split";
        EXPECT_TRUE(name.startsWith(part));
    }
}

TEST(CustomerFolder, OptionsReadByTheirSettingsKeys) {
    const QStringList on = {"CheckBossDir", "CheckBoxDetailAddress", "CheckBoxArea", "CheckBoxApartment"};
    const Options o = Options::fromFlags([&](const QString &k) { return on.contains(k); });
    EXPECT_TRUE(o.bossDir);
    EXPECT_TRUE(o.detailAddress);
    EXPECT_FALSE(o.region);
    EXPECT_TRUE(o.area);
    EXPECT_FALSE(o.city);
    EXPECT_FALSE(o.street);
    EXPECT_FALSE(o.house);
    EXPECT_TRUE(o.apartment);
}

TEST(CustomerFolder, FolderFromTheRegisterIsCreated) {
    TestFolder data;
    TModuleSQL module(data.path());
    QSqlQuery q(module.database(Db::Cash));
    ASSERT_TRUE(q.exec("INSERT INTO customer (fio, Region, City, Street, House, numroom) VALUES "
                       "('ИП `Луч`', 'Тверская', 'Тверь', 'Ленина', '5', '3')"));
    const QString docs = data.file("Sm");
    const QString folder = makeFolderForDocument(module, docs, "ИП \"Луч\"", "Кухня",
                                                 detail(true, false, true, true, true, true));
    EXPECT_EQ(folder, docs + "/ИП `Луч`/Тверская обл./г.Тверь, ул. Ленина, д.5, кв.3");
    EXPECT_TRUE(QFileInfo(folder).isDir());

    // A customer missing from the register falls back to the object.
    const QString other =
        makeFolderForDocument(module, docs, "Петров", "Кухня", detail(true, false, true, true, true, true));
    EXPECT_EQ(other, docs + "/Петров/Кухня");
    EXPECT_TRUE(QFileInfo(other).isDir());
}
