// The package without the engine: its numbers (from the estimate, the act counter and the date in both
// orders), what keeps it from starting, a folder that cannot be written, the report, and what is (not)
// registered for a document that was not written or whose estimate is not in the register.

#include "ActFixture.h"

#include "documents/PackageJob.h"
#include "documents/PackageRun.h"
#include "estimate/Registration.h"

#include <QDir>
#include <QFile>

namespace {

class Package : public ActFixture {
protected:
    PackageRequest defaults(const PackageNumbering &numbering, const QDate &date) {
        return PackageDefaults::make(*doc, module->database(Db::People), numbering, date);
    }
};

TEST_F(Package, NumbersFromTheEstimateTheCounterAndTheDate) {
    QString why;
    ASSERT_TRUE(Registration::countAct(module->database(Db::People), customer, object, "3", &why))
        << why.toStdString(); // acts up to 3 were made: the next is 4
    const QDate day(2026, 3, 5);

    const PackageRequest plain = defaults(PackageNumbering{false, false}, day);
    EXPECT_EQ(plain.date, day);
    EXPECT_EQ(plain.folder, QFileInfo(path).absolutePath());
    EXPECT_EQ(plain.contractNumber, "3-12") << "the estimate's number, as the contract window takes it";
    EXPECT_EQ(plain.invoiceNumber, "3-12");
    EXPECT_EQ(plain.actNumber, "4");
    EXPECT_EQ(plain.actNumberWord, "");
    EXPECT_EQ(plain.actFullNumber(), "4");
    EXPECT_EQ(plain.contractEnd, day);
    EXPECT_EQ(plain.actsEnd, day);
    EXPECT_EQ(plain.ticked(), (QVector<PackageDoc>{PackageDoc::Contract, PackageDoc::Invoice, PackageDoc::Ks2,
                                                   PackageDoc::Ks3, PackageDoc::Act}));
    EXPECT_FALSE(plain.contractPdf || plain.invoicePdf || plain.actsPdf);

    struct Case {
        bool yearFirst;
        const char *numbered; // contract and invoice
        const char *word;     // the act's text number
    };
    for (const Case &c : {Case{false, "05032026-1", "05032026"}, Case{true, "20260305-1", "20260305"}}) {
        SCOPED_TRACE(c.yearFirst ? "YYYYMMDD" : "DDMMYYYY");
        const PackageRequest r = defaults(PackageNumbering{true, c.yearFirst}, day);
        EXPECT_EQ(r.contractNumber, c.numbered);
        EXPECT_EQ(r.invoiceNumber, c.numbered);
        EXPECT_EQ(r.actNumberWord, c.word);
        EXPECT_EQ(r.actNumber, "4");
        EXPECT_EQ(r.actFullNumber(), QString(c.word) + "-4");
        // A new package date: the numbers follow it with numbering by date, and only then.
        PackageRequest moved = r;
        PackageDefaults::applyDate(&moved, PackageNumbering{true, c.yearFirst}, QDate(2026, 12, 31));
        EXPECT_EQ(moved.contractNumber, c.yearFirst ? "20261231-1" : "31122026-1");
        EXPECT_EQ(moved.actNumberWord, c.yearFirst ? "20261231" : "31122026");
        PackageRequest kept = plain;
        PackageDefaults::applyDate(&kept, PackageNumbering{false, c.yearFirst}, QDate(2026, 12, 31));
        EXPECT_EQ(kept.contractNumber, "3-12");
        EXPECT_EQ(kept.date, QDate(2026, 12, 31));
    }

    // The numbering comes from the main window's toggle and the settings' order of the digits.
    EXPECT_FALSE(PackageNumbering::read(&settings, store.get()).byDate);
    settings.setFlag("spdDateNumericSmetaWord", true);
    EXPECT_TRUE(PackageNumbering::read(&settings, store.get()).byDate);
    EXPECT_FALSE(PackageNumbering::read(&settings, store.get()).yearFirst)
        << "RadioButtonFormat1 on by default";
    store->setText("Param", "RadioButtonFormat1", "0");
    EXPECT_TRUE(PackageNumbering::read(&settings, store.get()).yearFirst);
}

TEST_F(Package, WhatKeepsItFromStarting) {
    PackageRequest good = PackageDefaults::make(*doc, QSqlDatabase(), PackageNumbering(), QDate(2026, 3, 5));
    EXPECT_EQ(good.actNumber, "1") << "a pair without a counter starts at 1";
    EXPECT_EQ(PackageJob::requestProblem(good), "");
    struct Case {
        const char *name;
        std::function<void(PackageRequest &)> change;
        const char *problem;
    };
    const Case cases[] = {
        {"nothing ticked", [](PackageRequest &r) { r.contract = r.invoice = r.ks2 = r.ks3 = r.act = false; },
         "Отметьте документы, которые войдут в пакет."},
        {"no date", [](PackageRequest &r) { r.date = QDate(); }, "Укажите дату пакета."},
        {"contract without a number", [](PackageRequest &r) { r.contractNumber = " "; },
         "Укажите номер договора."},
        {"invoice without a number", [](PackageRequest &r) { r.invoiceNumber.clear(); },
         "Укажите номер счёта."},
        {"act without a number", [](PackageRequest &r) { r.actNumber.clear(); }, "Укажите номер акта."},
        {"an unticked document needs no number",
         [](PackageRequest &r) {
             r.contract = false;
             r.contractNumber.clear();
         },
         ""},
        {"the text number alone is a number",
         [](PackageRequest &r) {
             r.actNumber.clear();
             r.actNumberWord = "А";
         },
         ""},
    };
    for (const Case &c : cases) {
        PackageRequest r = good;
        c.change(r);
        EXPECT_EQ(PackageJob::requestProblem(r), QString::fromUtf8(c.problem)) << c.name;
    }
    PackageRequest numbers;
    numbers.actNumberWord = "05032026";
    numbers.actNumber = "1";
    EXPECT_EQ(numbers.actFullNumber(), "05032026-1");
    numbers.allPdf();
    EXPECT_TRUE(numbers.contractPdf && numbers.invoicePdf && numbers.actsPdf);
}

TEST_F(Package, AFolderThatCannotBeWrittenIsNamed) {
    // Below a file no folder can be made (permissions do not stop the tests' user).
    const QString file = folder.file("файл.txt");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    const QString blocked = file + "/Пакет";
    const QString why = PackageJob::checkFolder(blocked);
    EXPECT_TRUE(why.contains(QDir::toNativeSeparators(blocked))) << why.toStdString();
    EXPECT_FALSE(PackageJob::checkFolder("").isEmpty());

    const QString fresh = folder.file("Пакеты/Март");
    EXPECT_EQ(PackageJob::checkFolder(fresh), "");
    EXPECT_TRUE(QDir(fresh).exists());
    EXPECT_TRUE(QDir(fresh).entryList(QDir::Files | QDir::Hidden).isEmpty()) << "the probe leaves nothing";
}

TEST_F(Package, ReportNamesWhatFailedAndWhatWasCancelled) {
    QVector<PackageItem> items(5);
    const PackageDoc docs[] = {PackageDoc::Contract, PackageDoc::Invoice, PackageDoc::Ks2, PackageDoc::Ks3,
                               PackageDoc::Act};
    for (int i = 0; i < 5; ++i)
        items[i].doc = docs[i];
    items[0].made = items[2].made = true;
    items[1].error = "Отсутствует файл /data/Sh/Шаблон Счет на оплату.xls";
    items[3].skipped = items[4].skipped = true;
    items[2].warning = "Акт не внесён в реестр документов: смета сохранена как черновик.";
    const QString report = PackageRun::report(items, "/data/Пакет");
    EXPECT_TRUE(report.contains("Созданы в папке /data/Пакет: Договор, Акт КС-2.")) << report.toStdString();
    EXPECT_TRUE(report.contains("Не созданы:\nСчёт: Отсутствует файл /data/Sh/Шаблон Счет на оплату.xls"))
        << report.toStdString();
    EXPECT_TRUE(report.contains("Отменены: Акт КС-3, Акт.")) << report.toStdString();
    EXPECT_TRUE(report.contains(items[2].warning));
    EXPECT_FALSE(PackageRun::complete(items));
    for (PackageItem &i : items) {
        const PackageDoc kind = i.doc;
        i = PackageItem();
        i.doc = kind;
        i.made = true;
    }
    EXPECT_TRUE(PackageRun::complete(items));
    items[4].warning = "не внесён";
    EXPECT_FALSE(PackageRun::complete(items)) << "a file not registered is not a complete package";
}

TEST_F(Package, OnlyWrittenFilesOfARegisteredEstimateAreEntered) {
    const PackageRequest request =
        PackageDefaults::make(*doc, QSqlDatabase(), PackageNumbering(), QDate(2026, 3, 5));
    const PackageSettings s = PackageSettings::read(&settings, store.get(), folder.path());
    const QString written = folder.file("Договор № 3-12 от 05.03.2026.docx");

    PackageItem failed;
    ASSERT_TRUE(PackageJob::prepare(*doc, request, s, &failed));
    EXPECT_FALSE(failed.iddoc.isEmpty()) << "the estimate is entered as a document";
    PackageJob::record(*module, &failed); // not made: nothing to enter
    EXPECT_EQ(rows(Db::MyDoc, "SELECT COUNT(*) FROM contract"), QStringList{"0"});

    PackageItem made = failed;
    made.made = true;
    made.path = written;
    PackageJob::record(*module, &made);
    EXPECT_EQ(made.warning, "");
    EXPECT_EQ(rows(Db::MyDoc, "SELECT iddoc, number, name, ext, filename FROM contract"),
              QStringList{failed.iddoc + "|3-12|№ 3-12|doc|" + written});

    // An estimate never saved has no row to enter its files under: the file stays, the reason is given.
    ASSERT_TRUE(doc->newDocument());
    PackageItem unsaved;
    unsaved.doc = PackageDoc::Invoice;
    ASSERT_TRUE(PackageJob::prepare(*doc, request, s, &unsaved));
    EXPECT_TRUE(unsaved.iddoc.isEmpty());
    unsaved.made = true;
    unsaved.path = folder.file("Счет.xls");
    PackageJob::record(*module, &unsaved);
    EXPECT_EQ(unsaved.warning, "Счёт не внесён в реестр документов: смета ещё не сохранена.");
    EXPECT_EQ(rows(Db::MyDoc, "SELECT COUNT(*) FROM account"), QStringList{"0"});
}

} // namespace
