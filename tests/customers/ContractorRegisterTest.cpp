#include "customers/ContractorRegister.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"

#include "TestFolder.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class ContractorRegisterTest : public ::testing::Test {
protected:
    TestFolder data;
    TModuleSQL module{data.path()};
    ContractorRegister reg{module};

    int count(Db db, const QString &sql) {
        QSqlQuery q(module.database(db));
        EXPECT_TRUE(q.exec(sql) && q.next()) << sql.toStdString();
        return q.value(0).toInt();
    }
};

} // namespace

TEST_F(ContractorRegisterTest, AddingRefusesBlankAndDuplicateNames) {
    QString id;
    EXPECT_EQ(reg.add("  "), RegisterStatus::BlankName);
    ASSERT_EQ(reg.add("ИП \"Соболев\"", &id), RegisterStatus::Ok);
    EXPECT_EQ(reg.add("ИП \"Соболев\""), RegisterStatus::Duplicate);
    EXPECT_EQ(reg.add("ИП `Соболев`"), RegisterStatus::Duplicate) << "the same name in its stored form";
    ASSERT_EQ(reg.add("ООО Мастер"), RegisterStatus::Ok);
    EXPECT_EQ(reg.shortNames(), (QStringList{"ИП \"Соболев\"", "ООО Мастер"}));
    // Every contractor starts with an empty legal-details row.
    EXPECT_EQ(count(Db::Cash, "SELECT count(*) FROM Requisite"), 2);
    EXPECT_EQ(count(Db::Cash, "SELECT count(*) FROM Requisite WHERE id='" + id + "'"), 1);
    EXPECT_EQ(count(Db::People, "SELECT count(*) FROM Contractor WHERE shotname='ИП `Соболев`'"), 1);
}

TEST_F(ContractorRegisterTest, SavingWritesNamesAndEveryDetailThenDeleteAndDrop) {
    QString id;
    ASSERT_EQ(reg.add("Соболев", &id), RegisterStatus::Ok);
    ASSERT_EQ(reg.add("Мастер"), RegisterStatus::Ok);
    // A contractor whose legal-details row was lost gets a new one on save.
    QSqlQuery(module.database(Db::Cash)).exec("DELETE FROM Requisite WHERE id='" + id + "'");
    Fields c{{"id", id},
             {"shotname", "ИП Соболев"},
             {"longname", "Индивидуальный предприниматель"},
             {"phone", "+7"}};
    Fields r{
        {"inn", "7604"}, {"okpo", "3187"}, {"bik", "0478"}, {"pasport", "78 19 №1"}, {"note", "ИНН 7604"}};
    ASSERT_EQ(reg.save(c, r), RegisterStatus::Ok) << reg.lastError().toStdString();
    ContractorData d = reg.byShortName("ИП Соболев");
    ASSERT_TRUE(d.found);
    EXPECT_EQ(d.contractor.value("longname"), "Индивидуальный предприниматель");
    EXPECT_EQ(d.contractor.value("phone"), "+7");
    for (const char *col : {"inn", "okpo", "bik", "pasport", "note"})
        EXPECT_EQ(d.requisites.value(col), r.value(col)) << col;
    EXPECT_TRUE(reg.byLongName("Индивидуальный предприниматель").found);
    EXPECT_TRUE(reg.forEstimateText("ИП Соболев, ИНН 7604").found);

    c["shotname"] = "Мастер";
    EXPECT_EQ(reg.save(c, r), RegisterStatus::Duplicate);

    ASSERT_EQ(reg.remove(id), RegisterStatus::Ok);
    EXPECT_EQ(reg.shortNames(), QStringList{"Мастер"});
    EXPECT_EQ(count(Db::Cash, "SELECT count(*) FROM Requisite WHERE id='" + id + "'"), 0);
    ASSERT_EQ(reg.drop(), RegisterStatus::Ok);
    EXPECT_TRUE(reg.shortNames().isEmpty());
    EXPECT_EQ(count(Db::Cash, "SELECT count(*) FROM Requisite"), 0);
    EXPECT_EQ(reg.add("Новый"), RegisterStatus::Ok);
}

TEST_F(ContractorRegisterTest, EmailLivesInTheSettings) {
    SettingsStore store(data.file("IniFile.db"));
    ContractorRegister::setEmail(&store, "master@example.com");
    EXPECT_EQ(store.text("Param", "Email"), "master@example.com");
    EXPECT_EQ(ContractorRegister::email(&store), "master@example.com");
    EXPECT_EQ(ContractorRegister::email(nullptr), "");
}

TEST(LegalDataLine, TickedDetailsInTheirOrder) {
    const Fields req{{"inn", "7604"},     {"okpo", "3187"},        {"bank", "Банк Посад"},
                     {"account", "4080"}, {"koraccount", "3010"},  {"bik", "0478"},
                     {"kpp", "7601"},     {"certificate", "77-1"}, {"pasport", "78 19"},
                     {"boss", "Соболев"}};
    struct Case {
        QSet<QString> ticked;
        QString expected;
    };
    const std::vector<Case> cases = {
        {{"bik", "inn"}, "ИНН 7604, БИК 0478"},
        {{"inn", "okpo", "bank", "account", "koraccount", "bik", "kpp", "certificate", "pasport"},
         "ИНН 7604, ОГРН 3187, Банк Банк Посад, Расчетный счет 4080, Корр. счет 3010, БИК 0478, КПП 7601, "
         "Номер свидетельства 77-1, Паспорт 78 19"},
        {{"pasport"}, "Паспорт 78 19"},
        {{"boss"}, ""}, // not a piece of the line
        {{}, ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(LegalData::line(req, c.ticked), c.expected);
    // A ticked detail whose field is empty leaves no piece.
    EXPECT_EQ(LegalData::line(Fields{{"inn", " "}, {"bik", "1"}}, {"inn", "bik"}), "БИК 1");
}
