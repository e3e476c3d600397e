#pragma once
// An estimate for the acts' tests, open without a window: two sections of works, a material, a saved
// file entered in the register, a customer with its object and a contractor in the registers.

#include "SqlRows.h"
#include "TestFolder.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "documents/ActProducer.h"
#include "estimate/ActFields.h"
#include "estimate/EstimateDocument.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"

#include <QSqlQuery>
#include <gtest/gtest.h>
#include <memory>

class ActFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
        module = std::make_unique<TModuleSQL>(folder.path());
        store = std::make_unique<SettingsStore>(folder.file(QStringLiteral("IniFile.db")));
        doc = std::make_unique<EstimateDocument>();
        doc->attach(module.get(), &settings, store.get());
        ASSERT_TRUE(doc->newDocument());
        registerParties();
        EstimateHeader::Values h = doc->header();
        h.customer = customer;
        h.object = object;
        h.contractor = contractor;
        h.number = 12;
        h.numberWord = QStringLiteral("3");
        h.date = QDate(2025, 3, 3);
        h.nameWork = QStringLiteral("Ремонт квартиры");
        doc->setHeader(h);
        path = folder.file(QStringLiteral("Sm/Ремонт квартиры.sim"));
        ASSERT_TRUE(doc->saveAs(path));
        writeEstimate();
        const EstimateDocument::Result opened = doc->open(path);
        ASSERT_TRUE(opened) << opened.error.toStdString();
    }
    void TearDown() override {
        doc.reset();
        store.reset();
        module.reset();
    }

    // The customer (with a quote in the name), its object and the contractor in the registers.
    void registerParties() {
        CustomerRegister customers(*module);
        ASSERT_EQ(customers.addCustomer(customer), RegisterStatus::Ok);
        ASSERT_EQ(customers.addObject(customer, object), RegisterStatus::Ok);
        CustomerData c = customers.customer(customer);
        c.customer.insert(QStringLiteral("address"), QStringLiteral("г. Ярославль, ул. Садовая, 14"));
        c.customer.insert(QStringLiteral("phone"), QStringLiteral("+7 999 214-57-38"));
        c.customer.insert(QStringLiteral("fax"), QStringLiteral("+7 4852 11-22-33"));
        ASSERT_EQ(customers.save(c.customer, c.requisites, object, QString()), RegisterStatus::Ok);
        ContractorRegister contractors(*module);
        QString id;
        ASSERT_EQ(contractors.add(contractor, &id), RegisterStatus::Ok);
        ContractorData d = contractors.byId(id);
        d.contractor.insert(QStringLiteral("phone"), QStringLiteral("+7 915 000-11-22"));
        d.requisites.insert(QStringLiteral("adres"), QStringLiteral("г. Ярославль, пр. Ленина, 5"));
        ASSERT_EQ(contractors.save(d.contractor, d.requisites), RegisterStatus::Ok);
        ContractorRegister::setEmail(store.get(), QStringLiteral("soboleff@example.ru"));
    }

    // Two sections of works and a material, written into the saved file.
    void writeEstimate() {
        DatabaseFile file(path);
        QSqlQuery q(file.db());
        ASSERT_TRUE(q.exec(QStringLiteral("DELETE FROM smeta")));
        const char *rows[][8] = {
            {"", "", "РАЗДЕЛ 1. Стены", "", "", "", "", "br"},
            {"1", "15-01", "Штукатурка стен", "м2", "100", "500", "50000,00", ""},
            {"2", "15-02", "Шпатлёвка стен", "м2", "100", "200", "20000,00", ""},
            {"", "", "Итого по разделу 1", "", "", "", "70000,00", "ir"},
            {"", "", "РАЗДЕЛ 2. Полы", "", "", "", "", "br"},
            {"3", "11-01", "Стяжка пола", "м2", "40", "450", "18000,00", ""},
            {"", "", "Итого по разделу 2", "", "", "", "18000,00", "ir"},
        };
        q.prepare(QStringLiteral("INSERT INTO smeta (numpos, edras, nameras, edizm, kolvo, price, summa, "
                                 "section, idwork) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        int id = 0;
        for (const auto &r : rows) {
            for (const char *cell : r)
                q.addBindValue(QString::fromUtf8(cell));
            q.addBindValue(QString::number(++id));
            ASSERT_TRUE(q.exec());
        }
        ASSERT_TRUE(q.exec(QStringLiteral(
            "INSERT INTO materials (edras, namemat, edizm, kolvo, price, summa, numpos) VALUES "
            "('15-01', 'Штукатурка гипсовая', 'кг', '1000', '15', '15000,00', 1)")));
    }

    QSqlDatabase working() { return module->database(Db::Smeta); }
    QStringList rows(Db db, const QString &sql) { return queryRows(module->database(db), sql); }

    // The quantities typed for the next act: work number (1..3) or "м" for the material -> text.
    void type(const QMap<QString, QString> &byNumber) {
        QMap<QString, QString> typed;
        for (auto it = byNumber.cbegin(); it != byNumber.cend(); ++it)
            typed.insert(keyOf(it.key()), it.value());
        QString why;
        ASSERT_TRUE(ActVolumes::saveTyped(working(), typed, &why)) << why.toStdString();
    }
    QString keyOf(const QString &number) {
        for (const ActVolumes::Row &r : ActVolumes::estimateRows(doc->print()))
            if ((number == QStringLiteral("м") && r.material) || (!r.material && r.number == number))
                return r.key;
        ADD_FAILURE() << "no row " << number.toStdString();
        return {};
    }
    ActRequest request(ActKind kind, const QString &number, const QString &format = QStringLiteral("xls")) {
        ActRequest r;
        r.kind = kind;
        r.number = number;
        r.date = QDate(2025, 3, 31);
        r.endDate = QDate(2025, 6, 30);
        r.folder = folder.file(QStringLiteral("Акты"));
        r.format = format;
        return r;
    }
    void setActData(const QMap<QString, QString> &values) {
        QString why;
        ASSERT_TRUE(ActFields::write(working(), values, &why)) << why.toStdString();
    }

    const QString customer = QStringLiteral("ООО \"Ромашка\"");
    const QString object = QStringLiteral("Квартира 12");
    const QString contractor = QStringLiteral("ИП Соболев");
    TestFolder folder;
    MainSettings settings;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<EstimateDocument> doc;
    QString path;
};
