// The package through the real engine, on its own thread as the window runs it: the five documents in
// their order with their register rows, made again in the same formats and in PDF; the acts naming the
// package's contract; a producer failing in the middle; a cancel between documents.

#include "PackageEngine.h"
#include "ActFixture.h"
#include "OfficeFiles.h"

#include "documents/PackageRun.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#ifndef VIRN_SCREENSHOT_DIR
#error "VIRN_SCREENSHOT_DIR names where the pictures go"
#endif

namespace {

class PackageFiles : public ActFixture {
protected:
    void SetUp() override {
        ActFixture::SetUp();
        if (HasFatalFailure())
            return;
        QString why;
        OfficeTemplates::ensureDefaults(folder.path(), &why);
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        setActData({{QStringLiteral("DateEditPeriodS"), QStringLiteral("01.03.2025")},
                    {QStringLiteral("DateEditPeriodPo"), QStringLiteral("31.03.2025")}});
    }
    PackageRequest request(bool pdf) {
        PackageRequest r =
            PackageDefaults::make(*doc, module->database(Db::People), PackageNumbering(), QDate(2025, 3, 31));
        r.folder = folder.file(QStringLiteral("Пакет"));
        r.contractNumber = QStringLiteral("Д-7");
        if (pdf)
            r.allPdf();
        return r;
    }
    // Runs the package to its end; the stage texts in their order go into *stages.
    QVector<PackageItem> run(const PackageRequest &r, QStringList *stages = nullptr,
                             const std::function<void(PackageRun &)> &onStage = {}) {
        PackageRun package(*doc, r, PackageSettings::read(&settings, store.get(), folder.path()),
                           packageEngine());
        QEventLoop loop;
        QObject::connect(&package, &PackageRun::finished, &loop, &QEventLoop::quit);
        QObject::connect(&package, &PackageRun::stageStarted, &package, [&](int, int, const QString &text) {
            if (stages)
                *stages << text;
            if (onStage)
                onStage(package);
        });
        QTimer::singleShot(300000, &loop, &QEventLoop::quit);
        package.start();
        if (package.running())
            loop.exec();
        EXPECT_FALSE(package.running()) << "the package ended in time";
        return package.items();
    }
    QStringList count() {
        return {rows(Db::MyDoc, "SELECT COUNT(*) FROM contract").value(0),
                rows(Db::MyDoc, "SELECT COUNT(*) FROM account").value(0),
                rows(Db::MyDoc, "SELECT COUNT(*) FROM act").value(0)};
    }
};

TEST_F(PackageFiles, MadeTwiceThenAsPdf) {
    QStringList stages;
    QVector<PackageItem> items = run(request(false), &stages);
    EXPECT_EQ(stages, (QStringList{"Создаётся... Договор", "Создаётся... Счёт", "Создаётся... Акт КС-2",
                                   "Создаётся... Акт КС-3", "Создаётся... Акт"}));
    ASSERT_EQ(items.size(), 5);
    QStringList names;
    for (const PackageItem &i : items) {
        EXPECT_TRUE(i.made) << i.error.toStdString();
        EXPECT_EQ(i.warning, "");
        EXPECT_TRUE(QFileInfo(i.path).size() > 0) << i.path.toStdString();
        names << QFileInfo(i.path).fileName();
    }
    EXPECT_EQ(names, (QStringList{"Договор № Д-7 от 31.03.2025.docx",
                                  "Счет на оплату № 3-12 от 31.03.2025.xls", "Акт КС-2 № 1 от 31.03.2025.xls",
                                  "Акт КС-3 № 1 от 31.03.2025.xls", "Акт № 1 от 31.03.2025.xls"}));
    EXPECT_TRUE(items[0].documentChanged) << "the contract's number went into the act data";
    const QString id = rows(Db::MyDoc, "SELECT id FROM documents").value(0);
    EXPECT_EQ(rows(Db::MyDoc, "SELECT iddoc, name, ext, dataend FROM contract"),
              QStringList{id + "|№ Д-7|doc|31.03.2025"});
    EXPECT_EQ(rows(Db::MyDoc, "SELECT iddoc, name, ext, allsum FROM account"),
              QStringList{id + "|№ 3-12|xls|103000,00"});
    EXPECT_EQ(rows(Db::MyDoc, "SELECT iddoc, name, ext, status FROM act ORDER BY status"),
              (QStringList{id + "|№ 1|xls|1", id + "|КС-2 № 1|xls|2", id + "|КС-3 № 1|xls|3"}));

    // The same package again: the files are made again and the rows updated, one per kind and format.
    items = run(request(false));
    for (const PackageItem &i : items)
        EXPECT_TRUE(i.made) << i.error.toStdString();
    EXPECT_EQ(count(), (QStringList{"1", "1", "3"}));

    // As PDF: a second row of each kind.
    items = run(request(true));
    for (const PackageItem &i : items) {
        EXPECT_TRUE(i.made) << i.error.toStdString();
        EXPECT_EQ(QFileInfo(i.path).suffix(), "pdf");
    }
    EXPECT_EQ(count(), (QStringList{"2", "2", "6"}));
    // The acts name the package's contract: its number went into the act data.
    EXPECT_EQ(ActFields::read(working()).value("EditNumDoc"), "Д-7");
    EXPECT_EQ(ActFields::read(working()).value("DateEditContract"), "31.03.2025");
    EXPECT_FALSE(items[0].documentChanged) << "the act data held the number already";
    const QString ks2 = pdfText(items[2].path).simplified();
    EXPECT_TRUE(ks2.contains("Смета № 3-12, договор № Д-7")) << ks2.toStdString();
    EXPECT_TRUE(pdfText(items[0].path).simplified().contains("ИП Соболев"));
    EXPECT_TRUE(pdfText(items[1].path).simplified().contains("Счет на оплату № 3-12 от 31.03.2025"));
    // Pictures of the first pages, for the eye.
    const char *pictures[] = {"package-contract", "package-invoice", "package-ks2", "package-ks3",
                              "package-act"};
    for (int i = 0; i < items.size(); ++i)
        QProcess::execute("pdftoppm", {"-png", "-r", "50", "-singlefile", items[i].path,
                                       QDir(VIRN_SCREENSHOT_DIR).filePath(pictures[i])});
}

TEST_F(PackageFiles, TheActsNameTheContractMadeInTheSamePackage) {
    // Documents are made two at a time; the acts still begin only once the contract's number is in the
    // act data, and are told in the package's order.
    PackageRequest r = request(true);
    r.contractNumber = QStringLiteral("Д-9");
    QStringList finished;
    PackageRun package(*doc, r, PackageSettings::read(&settings, store.get(), folder.path()),
                       packageEngine());
    QEventLoop loop;
    QObject::connect(&package, &PackageRun::finished, &loop, &QEventLoop::quit);
    QObject::connect(&package, &PackageRun::itemFinished, &package,
                     [&](const PackageItem &item) { finished << PackageDocs::caption(item.doc); });
    QTimer::singleShot(300000, &loop, &QEventLoop::quit);
    package.start();
    if (package.running())
        loop.exec();
    ASSERT_FALSE(package.running());
    EXPECT_EQ(finished, (QStringList{"Договор", "Счёт", "Акт КС-2", "Акт КС-3", "Акт"}));
    const QVector<PackageItem> items = package.items();
    ASSERT_EQ(items.size(), 5);
    for (const PackageItem &i : items)
        EXPECT_TRUE(i.made) << i.error.toStdString();
    for (int i : {2, 3}) { // the forms that name a contract
        const QString text = pdfText(items[i].path).simplified();
        EXPECT_TRUE(text.contains("договор № Д-9")) << i << text.left(600).toStdString();
    }
}

TEST_F(PackageFiles, AFailingDocumentLeavesTheOthersMadeAndRegistered) {
    // The invoice's template is damaged: the engine cannot load it.
    QFile templ(OfficeTemplates::path(folder.path(), "Шаблон Счет на оплату.xls"));
    ASSERT_TRUE(templ.open(QIODevice::WriteOnly | QIODevice::Truncate));
    templ.write("это не таблица");
    templ.close();
    const QVector<PackageItem> items = run(request(false));
    ASSERT_EQ(items.size(), 5);
    EXPECT_FALSE(items[1].made);
    EXPECT_FALSE(items[1].error.isEmpty());
    for (int i : {0, 2, 3, 4})
        EXPECT_TRUE(items[i].made) << i << items[i].error.toStdString();
    EXPECT_EQ(count(), (QStringList{"1", "0", "3"})) << "nothing registered for the invoice";
    EXPECT_FALSE(PackageRun::complete(items));
    const QString report = PackageRun::report(items, folder.file("Пакет"));
    EXPECT_TRUE(report.contains("Не созданы:\nСчёт: ")) << report.toStdString();
    EXPECT_TRUE(report.contains("Договор, Акт КС-2, Акт КС-3, Акт")) << report.toStdString();
}

TEST_F(PackageFiles, ACancelStopsBetweenDocuments) {
    const QVector<PackageItem> items =
        run(request(false), nullptr, [](PackageRun &package) { package.cancel(); });
    ASSERT_EQ(items.size(), 5);
    EXPECT_TRUE(items[0].made) << "the document begun is finished";
    for (int i = 1; i < 5; ++i) {
        EXPECT_FALSE(items[i].made);
        EXPECT_TRUE(items[i].skipped);
    }
    EXPECT_EQ(count(), (QStringList{"1", "0", "0"}));
    EXPECT_EQ(QDir(folder.file("Пакет")).entryList(QDir::Files).size(), 1);
}

} // namespace
