#pragma once
// An estimate document in a fresh data folder for the invoice's tests, without a window: header,
// totals (a work row and a material), the estimate's VAT line and a contractor in the register.

#include "TestFolder.h"
#include "customers/ContractorRegister.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "storage/DataFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"

#include <QSqlQuery>
#include <gtest/gtest.h>
#include <memory>

class InvoiceTestDocument : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(DataFolder::ensureTree(folder.path()).isEmpty());
        module = std::make_unique<TModuleSQL>(folder.path());
        doc = std::make_unique<EstimateDocument>();
        doc->attach(module.get(), &settings, nullptr);
        ASSERT_TRUE(doc->newDocument());
    }
    void TearDown() override {
        doc.reset();
        module.reset();
    }
    QSqlDatabase working() { return module->database(Db::Smeta); }

    void setHeader(const QString &numberWord, int number,
                   const QString &contractor = QStringLiteral("Соболев")) {
        EstimateHeader::Values v;
        v.customer = QStringLiteral("Кудрявцев О. Н.");
        v.object = QStringLiteral("Кухня");
        v.contractor = contractor;
        v.date = QDate(2025, 2, 15);
        v.number = number;
        v.numberWord = numberWord;
        doc->setHeader(v);
    }
    // One work row priced at works, one material at materials.
    void setTotals(const QString &works, const QString &materials) {
        EstimateGrid &g = doc->grid();
        const int row = EstimateGrid::toModelRow(2);
        ASSERT_TRUE(
            g.setData(g.index(row, EstimateCol::Name), QStringLiteral("Облицовка плиткой"), Qt::EditRole));
        ASSERT_TRUE(g.setData(g.index(row, EstimateCol::Qty), QStringLiteral("1"), Qt::EditRole));
        ASSERT_TRUE(g.setData(g.index(row, EstimateCol::Price), works, Qt::EditRole));
        QSqlQuery q(working());
        ASSERT_TRUE(q.exec(QStringLiteral("DELETE FROM materials")));
        q.prepare(QStringLiteral("INSERT INTO materials (namemat, edizm, kolvo, price, summa) VALUES "
                                 "('Плитка', 'м2', '1', ?, ?)"));
        q.addBindValue(materials);
        q.addBindValue(materials);
        ASSERT_TRUE(q.exec());
        doc->editor().materialsChanged();
    }
    // The estimate's own VAT line "НДС, %" (20 %, added on top) on or off.
    void setEstimateVat(bool on) {
        QSqlQuery q(working());
        ASSERT_TRUE(q.exec(QStringLiteral("UPDATE koef SET checked='%1' WHERE title='НДС, %'")
                               .arg(on ? QStringLiteral("-1") : QStringLiteral("0"))));
        ASSERT_EQ(q.numRowsAffected(), 1);
        doc->editor().koefChanged();
    }
    // A contractor with a long name and legal details; its legal-data line holds every detail given.
    void addContractor(const QString &shortName, const QString &longName, const Fields &requisites) {
        ContractorRegister r(*module);
        QString id;
        ASSERT_EQ(r.add(shortName, &id), RegisterStatus::Ok);
        Fields req = requisites;
        QSet<QString> ticked;
        for (auto it = requisites.cbegin(); it != requisites.cend(); ++it)
            ticked.insert(it.key());
        req.insert(QStringLiteral("note"), LegalData::line(requisites, ticked));
        ASSERT_EQ(r.save({{QStringLiteral("id"), id},
                          {QStringLiteral("shotname"), shortName},
                          {QStringLiteral("longname"), longName}},
                         req),
                  RegisterStatus::Ok);
    }

    TestFolder folder;
    MainSettings settings;
    std::unique_ptr<TModuleSQL> module;
    std::unique_ptr<EstimateDocument> doc;
};
