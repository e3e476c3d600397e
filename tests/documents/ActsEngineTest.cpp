// The acts against the real office engine: КС-2 and КС-3 of the whole estimate and of two partial
// acts hold the parties, the period, the sheet line, the rows of the act and its totals; a missing
// template is named; the main window's command makes an act through its dialog. The pages are also
// written as pictures beside the test binary, for looking at them.

#include "ActFixture.h"
#include "MainWindowFixture.h"
#include "OfficeFiles.h"

#include "documents/ActOutput_frame.h"
#include "documents/ActsPart.h"
#include "office/OfficeEngine.h"
#include "office/OfficeTemplates.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTimer>
#include <unistd.h>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif
#ifndef VIRN_SCREENSHOT_DIR
#error "VIRN_SCREENSHOT_DIR names where the pictures go"
#endif

namespace {

std::unique_ptr<OfficeEngine> g_engine;

OfficeEngine &engine() {
    if (!g_engine)
        g_engine = std::make_unique<OfficeEngine>(
            QDir::temp().filePath(QStringLiteral("virn-office-tests-%1").arg(getuid())));
    return *g_engine;
}

class Environment : public ::testing::Environment {
public:
    void TearDown() override { g_engine.reset(); }
};
const auto *const kEnvironment = ::testing::AddGlobalTestEnvironment(new Environment);

// The first page of a PDF as a picture (for the eye; pdftoppm at 60 dpi).
void picture(const QString &pdf, const QString &name) {
    QProcess p;
    p.start(QStringLiteral("pdftoppm"),
            {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("60"),
             QStringLiteral("-singlefile"), pdf, QDir(QStringLiteral(VIRN_SCREENSHOT_DIR)).filePath(name)});
    p.waitForFinished(30000);
}

class ActFiles : public ActFixture {
protected:
    void SetUp() override {
        ActFixture::SetUp();
        if (HasFatalFailure())
            return;
        QString why;
        OfficeTemplates::ensureDefaults(folder.path(), &why);
        ASSERT_TRUE(why.isEmpty()) << why.toStdString();
        setActData({{QStringLiteral("ComboBoxZakaz"), customer},
                    {QStringLiteral("ZEditAddress"), QStringLiteral("г. Ярославль, ул. Садовая, 14")},
                    {QStringLiteral("ZEditPhone"), QStringLiteral("+7 999 214-57-38")},
                    {QStringLiteral("ComboBoxPodryad"), contractor},
                    {QStringLiteral("PEditAddress"), QStringLiteral("г. Ярославль, пр. Ленина, 5")},
                    {QStringLiteral("EditNameWork"), QStringLiteral("Жилой дом")},
                    {QStringLiteral("AddressWork"), QStringLiteral("ул. Садовая, 14")},
                    {QStringLiteral("ComboBoxObject"), object},
                    {QStringLiteral("EditNumDoc"), QStringLiteral("Д-7")},
                    {QStringLiteral("DateEditContract"), QStringLiteral("20.02.2025")},
                    {QStringLiteral("EditSdal"), QStringLiteral("Соболев А. В.")},
                    {QStringLiteral("EditPrinal"), QStringLiteral("Кудрявцев О. Н.")},
                    {QStringLiteral("DateEditPeriodS"), QStringLiteral("01.03.2025")},
                    {QStringLiteral("DateEditPeriodPo"), QStringLiteral("31.03.2025")}});
    }
    // Makes the act as a PDF and gives its text on one line.
    QString make(ActKind kind, const QString &number, const QString &picture = QString()) {
        const ActResult r =
            ActProducer::produce(*doc, ViewTitles(), request(kind, number, QStringLiteral("pdf")), engine());
        EXPECT_TRUE(r) << r.error.toStdString();
        EXPECT_TRUE(QFile::exists(r.path));
        if (!picture.isEmpty())
            ::picture(r.path, picture);
        return pdfText(r.path).simplified();
    }
};

TEST_F(ActFiles, ActsOfTheWholeEstimate) {
    const QString ks2 = make(ActKind::Ks2, QStringLiteral("5"), QStringLiteral("act-ks2-whole"));
    for (const char *part :
         {"АКТ", "О ПРИЕМКЕ ВЫПОЛНЕННЫХ РАБОТ", "ООО \"Ромашка\", г. Ярославль, ул. Садовая, 14",
          "ИП Соболев, г. Ярославль, пр. Ленина, 5", "Жилой дом, ул. Садовая, 14", "Д-7", "01.03.2025",
          "31.03.2025", "Смета № 3-12, договор № Д-7", "Штукатурка стен", "Стяжка пола",
          "Штукатурка гипсовая", "103 000,00", "Соболев А. В.", "Кудрявцев О. Н."})
        EXPECT_TRUE(ks2.contains(QString::fromUtf8(part))) << part << "\n" << ks2.toStdString();
    EXPECT_FALSE(ks2.contains(u'[')) << "every placeholder filled";

    const QString ks3 = make(ActKind::Ks3, QStringLiteral("5"), QStringLiteral("act-ks3-whole"));
    for (const char *part : {"СПРАВКА", "О СТОИМОСТИ ВЫПОЛНЕННЫХ РАБОТ И ЗАТРАТ",
                             "Смета № 3-12, договор № Д-7", "РАЗДЕЛ 1. Стены", "70 000,00", "РАЗДЕЛ 2. Полы",
                             "Материалы", "103 000,00", "с начала года", "ООО \"Ромашка\""})
        EXPECT_TRUE(ks3.contains(QString::fromUtf8(part))) << part << "\n" << ks3.toStdString();
    EXPECT_FALSE(ks3.contains(u'['));

    const QString plain = make(ActKind::Plain, QStringLiteral("5"));
    EXPECT_TRUE(plain.contains(QStringLiteral("№ 5 от 31.03.2025"))) << plain.toStdString();
    EXPECT_TRUE(plain.contains(QStringLiteral("Всего по акту")));
    EXPECT_EQ(rows(Db::MyDoc, "SELECT status, ext FROM act ORDER BY id"),
              (QStringList{"2|pdf", "3|pdf", "1|pdf"}));
}

TEST_F(ActFiles, TwoPartialActs) {
    type({{"1", "30"}, {"2", "0"}, {"3", "0"}, {"м", "0"}});
    QString ks2 = make(ActKind::Ks2, QStringLiteral("1"), QStringLiteral("act-ks2-first"));
    EXPECT_TRUE(ks2.contains(QStringLiteral("Штукатурка стен"))) << ks2.toStdString();
    EXPECT_TRUE(ks2.contains(QStringLiteral("15 000,00")));
    EXPECT_FALSE(ks2.contains(QStringLiteral("Стяжка пола"))) << "only the rows of this act";
    EXPECT_FALSE(ks2.contains(QStringLiteral("Штукатурка гипсовая")));
    make(ActKind::Ks3, QStringLiteral("1"), QStringLiteral("act-ks3-first"));

    // April: the rest of the plaster, the floor and the material.
    type({{"2", "0"}});
    setActData({{QStringLiteral("DateEditPeriodS"), QStringLiteral("01.04.2025")},
                {QStringLiteral("DateEditPeriodPo"), QStringLiteral("30.04.2025")}});
    ks2 = make(ActKind::Ks2, QStringLiteral("2"), QStringLiteral("act-ks2-second"));
    for (const char *part :
         {"01.04.2025", "30.04.2025", "35 000,00", "Стяжка пола", "18 000,00", "68 000,00"})
        EXPECT_TRUE(ks2.contains(QString::fromUtf8(part))) << part << "\n" << ks2.toStdString();
    EXPECT_FALSE(ks2.contains(QStringLiteral("Шпатлёвка стен")));
    const QString ks3 = make(ActKind::Ks3, QStringLiteral("2"), QStringLiteral("act-ks3-second"));
    // Since the start 83 000 (15 000 + 68 000); the year and the period as the acts say.
    for (const char *part : {"83 000,00", "68 000,00", "50 000,00", "35 000,00"})
        EXPECT_TRUE(ks3.contains(QString::fromUtf8(part))) << part << "\n" << ks3.toStdString();
}

TEST_F(ActFiles, AMissingTemplateIsNamed) {
    const QString templ = OfficeTemplates::path(folder.path(), QStringLiteral("Шаблон КС-2.xls"));
    ASSERT_TRUE(QFile::remove(templ));
    const ActResult r =
        ActProducer::produce(*doc, ViewTitles(), request(ActKind::Ks2, QStringLiteral("1")), engine());
    EXPECT_FALSE(r);
    EXPECT_EQ(r.error, QStringLiteral("Отсутствует файл ") + templ);
    EXPECT_EQ(rows(Db::MyDoc, "SELECT count(*) FROM act").value(0), QStringLiteral("0"));
}

// The main window: "Акт КС-2…" asks for the act and makes it on the engine's thread.
class ActsWindow : public MainWindowFixture {};

TEST_F(ActsWindow, MenuCommandMakesTheAct) {
    const QString document = folder.file(QStringLiteral("Sm/Образец сметы.sim"));
    ASSERT_TRUE(QFile::copy(folder.file(QStringLiteral("Sp/smeta.db")), document));
    QProcess p;
    p.start(
        QStringLiteral("sqlite3"),
        {QStringLiteral("-bail"), document,
         QStringLiteral(".read '%1/resources/sample/estimate.sql'").arg(QStringLiteral(VIRN_SOURCE_DIR))});
    ASSERT_TRUE(p.waitForFinished(30000));
    ASSERT_EQ(p.exitCode(), 0);
    ASSERT_TRUE(window->OpenMyFile(document));
    auto *acts = window->part<ActsPart>();
    ASSERT_NE(acts, nullptr);

    QAction *command = child<QAction>(window.get(), QStringLiteral("MActKS2"));
    ASSERT_NE(command, nullptr);
    QString shownNumber;
    QTimer::singleShot(0, [&shownNumber] {
        auto *dialog = qobject_cast<TActOutput *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        shownNumber = dialog->EditNumAkt->text();
        dialog->RadioPdf->setChecked(true);
        dialog->btnOk->click();
    });
    QSignalSpy done(acts, &ActsPart::actFinished);
    command->trigger();
    ASSERT_TRUE(!done.isEmpty() || done.wait(120000));
    EXPECT_EQ(shownNumber, QStringLiteral("1")) << "no act of the customer and object yet";
    ASSERT_TRUE(done.first().at(0).toBool()) << dialogs->lastText().toStdString();
    const QString path = done.first().at(1).toString();
    EXPECT_EQ(QFileInfo(path).fileName(),
              QStringLiteral("Акт КС-2 № 1 от %1.pdf")
                  .arg(QDate::currentDate().toString(QStringLiteral("dd.MM.yyyy"))));
    EXPECT_EQ(QFileInfo(path).absolutePath(), folder.file(QStringLiteral("Sm")));
    const QString text = pdfText(path).simplified();
    EXPECT_TRUE(text.contains(QStringLiteral("Кудрявцев Олег Николаевич"))) << text.toStdString();
    EXPECT_EQ(acts->defaults(ActKind::Ks2).number, QStringLiteral("2")) << "the counter advanced";
}

} // namespace
