#include "customers/CustomerRegister.h"
#include "storage/ModuleSQL.h"

#include "SqlRows.h"
#include "TestFolder.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class CustomerRegisterTest : public ::testing::Test {
protected:
    TestFolder data;
    TModuleSQL module{data.path()};
    CustomerRegister reg{module};

    void addCash(const QString &customer, const QString &object, const QString &amount) {
        QSqlQuery q(module.database(Db::Cash));
        q.prepare("INSERT INTO cash (date, incoming, customer, object) VALUES ('01.02.2025', ?, ?, ?)");
        q.addBindValue(amount);
        q.addBindValue(customer);
        q.addBindValue(object);
        ASSERT_TRUE(q.exec());
    }
    // "customer|object|amount" of every cash row, in table order.
    QStringList cashRows() {
        return queryRows(module.database(Db::Cash),
                         "SELECT customer, object, incoming FROM cash ORDER BY _id");
    }
    QStringList column(Db db, const QString &sql) { return queryRows(module.database(db), sql); }
    void addWithObjects(const QString &customer, const QStringList &objects) {
        ASSERT_EQ(reg.addCustomer(customer), RegisterStatus::Ok);
        for (const QString &o : objects)
            ASSERT_EQ(reg.addObject(customer, o), RegisterStatus::Ok);
    }
};

} // namespace

TEST_F(CustomerRegisterTest, AddingRefusesBlankAndTakenNamesAndMirrorsObjects) {
    EXPECT_EQ(reg.addCustomer("   "), RegisterStatus::BlankName);
    EXPECT_EQ(reg.addCustomer(""), RegisterStatus::BlankName);
    addWithObjects("Иванов", {"Дача"});
    EXPECT_EQ(reg.addCustomer("Иванов"), RegisterStatus::Duplicate);
    EXPECT_EQ(reg.addObject("Иванов", " "), RegisterStatus::BlankName);
    EXPECT_EQ(reg.addObject("Иванов", "Дача"), RegisterStatus::Duplicate);
    EXPECT_EQ(reg.addObject("Петров", "Дача"), RegisterStatus::NotFound);
    EXPECT_EQ(reg.customers(), QStringList{"Иванов"});
    EXPECT_EQ(reg.objects("Иванов"), QStringList{"Дача"});
    EXPECT_EQ(column(Db::People, "SELECT object FROM Object WHERE fio='Иванов'"), QStringList{"Дача"});
}

TEST_F(CustomerRegisterTest, RenamingACustomerMovesItsObjectsAndCashEntries) {
    addWithObjects("Иванов", {"Дача", "Квартира"});
    addWithObjects("Петров", {"Дача"});
    addCash("Иванов", "Дача", "100");
    addCash("Петров", "Дача", "200");
    addCash("Иванов", "Квартира", "300");

    CustomerData d = reg.customer("Иванов");
    ASSERT_TRUE(d.found);
    d.customer["fio"] = "Иванов И.И.";
    d.customer["phone"] = "123";
    ASSERT_EQ(reg.save(d.customer, d.requisites, "Дача", "ключи у соседа"), RegisterStatus::Ok)
        << reg.lastError().toStdString();

    EXPECT_EQ(reg.customers(), (QStringList{"Иванов И.И.", "Петров"}));
    EXPECT_EQ(reg.objects("Иванов И.И."), (QStringList{"Дача", "Квартира"}));
    EXPECT_TRUE(reg.objects("Иванов").isEmpty());
    EXPECT_EQ(cashRows(),
              (QStringList{"Иванов И.И.|Дача|100", "Петров|Дача|200", "Иванов И.И.|Квартира|300"}));
    EXPECT_EQ(reg.object("Иванов И.И.", "Дача").value("note"), "ключи у соседа");
    EXPECT_EQ(reg.object("Петров", "Дача").value("note"), "");
    // The people database follows.
    EXPECT_EQ(column(Db::People, "SELECT fio FROM Customer ORDER BY fio"), (QStringList{"Иванов И.И."}));
    EXPECT_EQ(column(Db::People, "SELECT object FROM Object WHERE fio='Иванов И.И.' ORDER BY _id"),
              (QStringList{"Дача", "Квартира"}));
    EXPECT_EQ(column(Db::People, "SELECT phone FROM Customer"), QStringList{"123"});

    // Renaming onto another customer's name is refused and changes nothing.
    d = reg.customer("Петров");
    d.customer["fio"] = "Иванов И.И.";
    EXPECT_EQ(reg.save(d.customer, d.requisites, "", ""), RegisterStatus::Duplicate);
    EXPECT_EQ(reg.objects("Петров"), QStringList{"Дача"});
}

TEST_F(CustomerRegisterTest, DeletingAnObjectDeletesOnlyThatObjectsCashOfThatCustomer) {
    addWithObjects("Иванов", {"Дача", "Квартира"});
    addWithObjects("Петров", {"Дача"});
    addCash("Иванов", "Дача", "1");
    addCash("Иванов", "Квартира", "2");
    addCash("Петров", "Дача", "3");
    addCash("Иванов", "Дача", "4");

    EXPECT_EQ(reg.deleteObject("Иванов", "Баня"), RegisterStatus::NotFound);
    ASSERT_EQ(reg.deleteObject("Иванов", "Дача"), RegisterStatus::Ok);
    EXPECT_EQ(reg.objects("Иванов"), QStringList{"Квартира"});
    EXPECT_EQ(reg.objects("Петров"), QStringList{"Дача"});
    EXPECT_EQ(cashRows(), (QStringList{"Иванов|Квартира|2", "Петров|Дача|3"}));
    EXPECT_EQ(column(Db::People, "SELECT fio || '/' || object FROM Object ORDER BY _id"),
              (QStringList{"Иванов/Квартира", "Петров/Дача"}));
}

TEST_F(CustomerRegisterTest, RenamingAnObjectMovesItsCashEntries) {
    addWithObjects("Иванов", {"Дача", "Квартира"});
    addWithObjects("Петров", {"Дача"});
    addCash("Иванов", "Дача", "1");
    addCash("Петров", "Дача", "2");
    EXPECT_EQ(reg.renameObject("Иванов", "Дача", ""), RegisterStatus::BlankName);
    EXPECT_EQ(reg.renameObject("Иванов", "Дача", "Квартира"), RegisterStatus::Duplicate);
    ASSERT_EQ(reg.renameObject("Иванов", "Дача", "Дом"), RegisterStatus::Ok);
    EXPECT_EQ(reg.objects("Иванов"), (QStringList{"Дом", "Квартира"}));
    EXPECT_EQ(cashRows(), (QStringList{"Иванов|Дом|1", "Петров|Дача|2"}));
    EXPECT_EQ(column(Db::People, "SELECT object FROM Object WHERE fio='Иванов' ORDER BY _id"),
              (QStringList{"Дом", "Квартира"}));
}

TEST_F(CustomerRegisterTest, DeletingACustomerTakesObjectsCashAndRequisites) {
    addWithObjects("Иванов", {"Дача"});
    addWithObjects("Петров", {"Дача"});
    for (const QString &name : QStringList{"Иванов", "Петров"}) {
        CustomerData d = reg.customer(name);
        Fields req;
        req["inn"] = name + "-ИНН";
        ASSERT_EQ(reg.save(d.customer, req, "", ""), RegisterStatus::Ok);
    }
    addCash("Иванов", "Дача", "1");
    addCash("Петров", "Дача", "2");
    ASSERT_EQ(reg.deleteCustomer("Иванов"), RegisterStatus::Ok);
    EXPECT_EQ(reg.customers(), QStringList{"Петров"});
    EXPECT_EQ(cashRows(), QStringList{"Петров|Дача|2"});
    EXPECT_EQ(column(Db::Cash, "SELECT inn FROM RequisiteZak"), QStringList{"Петров-ИНН"});
    EXPECT_EQ(column(Db::Cash, "SELECT fio FROM Object"), QStringList{"Петров"});
    EXPECT_EQ(column(Db::People, "SELECT fio FROM Customer"), QStringList{"Петров"});
    EXPECT_EQ(column(Db::People, "SELECT fio FROM Object"), QStringList{"Петров"});
    EXPECT_EQ(reg.deleteCustomer("Иванов"), RegisterStatus::NotFound);
}

TEST_F(CustomerRegisterTest, NamesWithQuotesAndOddCharactersRoundTrip) {
    const QStringList names = {
        "ООО \"Ромашка\"",
        "O'Brien & \"Sons\"",
        "C:\\path\\name",
        "😀 Заказчик 🏠",
        QString(10240, QChar('x')) + "\"",
        "'; DROP TABLE customer; --",
    };
    for (const QString &name : names) {
        SCOPED_TRACE(name.left(40).toStdString());
        const QString object = "Объект " + name;
        addWithObjects(name, {object});
        EXPECT_TRUE(reg.customers().contains(name));
        // Stored with backticks in place of double quotes.
        QSqlQuery q(module.database(Db::Cash));
        q.prepare("SELECT count(*) FROM customer WHERE fio=?");
        q.addBindValue(QString(name).replace('"', '`'));
        ASSERT_TRUE(q.exec() && q.next());
        EXPECT_EQ(q.value(0).toInt(), 1);

        addCash(QString(name).replace('"', '`'), QString(object).replace('"', '`'), "5");
        ASSERT_EQ(reg.renameObject(name, object, object + " \"2\""), RegisterStatus::Ok);
        EXPECT_EQ(reg.objects(name), QStringList{object + " \"2\""});
        CustomerData d = reg.customer(name);
        ASSERT_TRUE(d.found);
        EXPECT_EQ(d.customer.value("fio"), name);
        d.customer["fio"] = name + " \"new\"";
        ASSERT_EQ(reg.save(d.customer, d.requisites, object + " \"2\"", "n"), RegisterStatus::Ok);
        EXPECT_EQ(reg.objects(name + " \"new\""), QStringList{object + " \"2\""});
        ASSERT_EQ(reg.deleteObject(name + " \"new\"", object + " \"2\""), RegisterStatus::Ok);
        ASSERT_EQ(reg.deleteCustomer(name + " \"new\""), RegisterStatus::Ok);
        EXPECT_TRUE(reg.customers().isEmpty());
        EXPECT_TRUE(cashRows().isEmpty());
    }
}

TEST_F(CustomerRegisterTest, SavingANewCustomerAndItsLegalDetails) {
    Fields c;
    c["fio"] = "ИП Сидоров";
    c["address"] = "г.Тверь";
    c["okpo"] = "3187";
    c["numroom"] = "12";
    Fields req;
    req["inn"] = "7701";
    req["bik"] = "0445";
    QString id;
    ASSERT_EQ(reg.save(c, req, "", "", &id), RegisterStatus::Ok) << reg.lastError().toStdString();
    EXPECT_FALSE(id.isEmpty());
    CustomerData d = reg.customer("ИП Сидоров");
    ASSERT_TRUE(d.found);
    EXPECT_EQ(d.customer.value("_id"), id);
    EXPECT_EQ(d.customer.value("numroom"), "12");
    EXPECT_EQ(d.requisites.value("inn"), "7701");
    EXPECT_EQ(d.requisites.value("adres"), "г.Тверь");
    EXPECT_EQ(d.requisites.value("okpo"), "3187");
    EXPECT_EQ(column(Db::People, "SELECT numroom FROM Customer"), QStringList{"12"});

    // A second save updates the same row of legal details.
    d.requisites["inn"] = "7702";
    ASSERT_EQ(reg.save(d.customer, d.requisites, "", ""), RegisterStatus::Ok);
    EXPECT_EQ(column(Db::Cash, "SELECT inn FROM RequisiteZak"), QStringList{"7702"});
    c["fio"] = " ";
    EXPECT_EQ(reg.save(c, req, "", ""), RegisterStatus::BlankName);
    c["fio"] = "ИП Сидоров";
    EXPECT_EQ(reg.save(c, req, "", ""), RegisterStatus::Duplicate);
}

TEST_F(CustomerRegisterTest, DroppingTheRegisterLeavesEmptyTablesBehind) {
    addWithObjects("Иванов", {"Дача"});
    addCash("Иванов", "Дача", "1");
    ASSERT_EQ(reg.dropRegister(), RegisterStatus::Ok);
    EXPECT_TRUE(reg.customers().isEmpty());
    EXPECT_TRUE(reg.allObjects().isEmpty());
    EXPECT_TRUE(cashRows().isEmpty());
    EXPECT_TRUE(column(Db::People, "SELECT fio FROM Customer").isEmpty());
    addWithObjects("Петров", {"Баня"});
    EXPECT_EQ(reg.allObjects(), (QList<QPair<QString, QString>>{{"Баня", "Петров"}}));
}

TEST(CustomerRegisterUpgrade, AnOlderCustomerTableGetsTheApartmentColumn) {
    TestFolder data;
    {
        QDir().mkpath(data.file("Sp"));
        QSqlDatabase old = QSqlDatabase::addDatabase("QSQLITE", "old-cash");
        old.setDatabaseName(data.file("Sp/cashbase.db"));
        ASSERT_TRUE(old.open());
        QSqlQuery q(old);
        ASSERT_TRUE(
            q.exec("CREATE TABLE customer (_id INTEGER PRIMARY KEY AUTOINCREMENT, fio TEXT, email TEXT, "
                   "phone TEXT, object TEXT, note TEXT, address TEXT, fax TEXT, okpo TEXT, function TEXT, "
                   "Region TEXT, City TEXT, Area TEXT, Street TEXT, House TEXT, Agent TEXT)"));
        ASSERT_TRUE(q.exec("INSERT INTO customer (fio, City) VALUES ('Старый', 'Тверь')"));
        old.close();
    }
    QSqlDatabase::removeDatabase("old-cash");
    TModuleSQL module(data.path());
    CustomerRegister reg(module);
    EXPECT_EQ(reg.customers(), QStringList{"Старый"});
    CustomerData d = reg.customer("Старый");
    ASSERT_TRUE(d.found);
    d.customer["numroom"] = "7";
    ASSERT_EQ(reg.save(d.customer, d.requisites, "", ""), RegisterStatus::Ok)
        << reg.lastError().toStdString();
    EXPECT_EQ(reg.customer("Старый").customer.value("numroom"), "7");
    EXPECT_EQ(reg.customer("Старый").customer.value("City"), "Тверь");
}

TEST(CustomerAddress, ComposedFromTheTickedParts) {
    using A = CustomerRegister::Address;
    struct Case {
        A address;
        QString expected;
    };
    const std::vector<Case> cases = {
        // Region Тверская, town Тверь, street Ленина, house 5, nothing else ticked.
        {A{{true, "Тверская"},
           {false, "Калининский"},
           {true, "Тверь"},
           {true, "Ленина"},
           {true, "5"},
           {false, "3"}},
         "Тверская обл., г.Тверь, ул. Ленина, д.5"},
        {A{{true, "Тверская"},
           {true, "Калининский"},
           {true, "Тверь"},
           {true, "Ленина"},
           {true, "5"},
           {true, "3"}},
         "Тверская обл., Калининский р-он, г.Тверь, ул. Ленина, д.5, кв.3"},
        {A{{true, ""}, {true, " "}, {true, "Тверь"}, {false, "Ленина"}, {true, ""}, {true, "3"}},
         "г.Тверь, кв.3"},
        {A{{true, "Тверская"}, {}, {}, {}, {}, {}}, "Тверская обл."},
        {A{}, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(CustomerRegister::composeAddress(c.address), c.expected);
}
