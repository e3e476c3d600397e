// The estimate of a document file rendered without a window, against the real engine, on the sample
// estimate the repository ships (three sections, subsections, materials, a discount line).

#include "EngineFixture.h"
#include "OfficeFiles.h"

#include "estimate/EstimateExport.h"
#include "office/OfficeTemplates.h"
#include "storage/DataFolder.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif

namespace {

class Export : public Engine {
protected:
    void SetUp() override {
        Engine::SetUp();
        m_data = m_folder.file(QStringLiteral("data"));
        ASSERT_TRUE(DataFolder::ensureTree(m_data).isEmpty());
        {
            // A document file is a copy of the working database with the sample loaded into it.
            TModuleSQL module(m_data);
            ASSERT_TRUE(module.database(Db::Smeta).isOpen());
            module.closeAll();
        }
        m_document = QDir(m_data).filePath(QStringLiteral("Sm/Образец сметы.sim"));
        ASSERT_TRUE(QFile::copy(QDir(m_data).filePath(QStringLiteral("Sp/smeta.db")), m_document));
        sql(QStringLiteral(".read '%1/resources/sample/estimate.sql'").arg(QStringLiteral(VIRN_SOURCE_DIR)));
    }
    void sql(const QString &statement) {
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {QStringLiteral("-bail"), m_document, statement});
        ASSERT_TRUE(p.waitForFinished(30000));
        ASSERT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    }
    void setTitle(const QString &title) {
        sql(QStringLiteral("UPDATE parametrs SET value='%1' WHERE name='Shablon';").arg(title));
    }
    QString exportTo(const QString &name) {
        const QString out = m_folder.file(name);
        QString error;
        EXPECT_TRUE(EstimateExport::exportFile(m_document, out, m_data, &error, &engine()))
            << error.toStdString();
        return out;
    }
    QString m_data;
    QString m_document;
};

TEST_F(Export, SampleEstimateToPdfAndXls) {
    const QString pdf = exportTo(QStringLiteral("Образец сметы.pdf"));
    const QString text = pdfText(pdf);
    const QString flat = text.simplified();
    EXPECT_TRUE(flat.contains(QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ № 12")))
        << text.toStdString();
    EXPECT_TRUE(flat.contains(QStringLiteral("Кудрявцев Олег Николаевич")));
    EXPECT_TRUE(flat.contains(QStringLiteral("РАЗДЕЛ 3. Санузел")));
    EXPECT_TRUE(flat.contains(QStringLiteral("§ 2.1. Стены")));
    EXPECT_TRUE(flat.contains(QStringLiteral("Скидка на работы 5 %")));
    EXPECT_TRUE(flat.contains(QStringLiteral("274 317,84")));
    EXPECT_TRUE(
        flat.contains(QStringLiteral("Двести семьдесят четыре тысячи триста семнадцать рублей 84 копейки")));
    EXPECT_FALSE(text.contains(u'[')) << "every placeholder filled";
    EXPECT_GE(pdfPages(pdf), 2);

    const FlatSheet s =
        readFlatSheet(convert(exportTo(QStringLiteral("Образец сметы.xls")), QStringLiteral("fods")));
    bool found = false;
    for (const QVector<FlatCell> &r : s) {
        if (r.size() < 7 ||
            r[2].text != QStringLiteral("Штукатурка стен по маякам гипсовыми смесями (до 30 мм)"))
            continue;
        found = true;
        EXPECT_EQ(r[1].type, QStringLiteral("string"));
        EXPECT_EQ(r[1].text, QStringLiteral("4-2-3"));
        EXPECT_EQ(r[4].type, QStringLiteral("float"));
        EXPECT_DOUBLE_EQ(r[4].value, 42);
        EXPECT_DOUBLE_EQ(r[5].value, 650);
        EXPECT_DOUBLE_EQ(r[6].value, 27300);
    }
    EXPECT_TRUE(found);
}

TEST_F(Export, EveryTitleFillsItsForm) {
    struct Case {
        const char *title;
        QStringList expected;
    } cases[] = {
        {"СМЕТА", {"СМЕТА", "На строительно-монтажные работы", "ВСЕГО по смете 274 317,84"}},
        {"Коммерческое предложение",
         {"КОММЕРЧЕСКОЕ ПРЕДЛОЖЕНИЕ", "Итого стоимость предложения: 274 317,84 руб."}},
        {"Стройкооператив", {"УТВЕРЖДАЮ", "Председатель правления", "ВСЕГО по смете 274 317,84"}},
        {"АКТ", {"АКТ", "Выполненных монтажно-строительных работ", "Всего по акту 274 317,84"}},
        {"АКТ КС-2",
         {"Унифицированная форма № КС-2", "О ПРИЕМКЕ ВЫПОЛНЕННЫХ РАБОТ", "Смета № 12", "Демонтаж линолеума",
          "Всего по акту 274 317,84"}},
        {"АКТ КС-3",
         {"Унифицированная форма № КС-3", "О СТОИМОСТИ ВЫПОЛНЕННЫХ РАБОТ И ЗАТРАТ",
          "РАЗДЕЛ 2. Жилые комнаты и коридор", "Всего с учетом НДС 274 317,84"}},
    };
    int i = 0;
    for (const Case &c : cases) {
        setTitle(QString::fromUtf8(c.title));
        const QString text = pdfText(exportTo(QStringLiteral("out-%1.pdf").arg(i++))).simplified();
        for (const QString &e : c.expected)
            EXPECT_TRUE(text.contains(e)) << c.title << ": " << e.toStdString() << "\n" << text.toStdString();
        EXPECT_FALSE(text.contains(QStringLiteral("[строки."))) << c.title;
    }
}

TEST_F(Export, ACustomerWhoseNameLooksLikeAFieldIsPrintedAsItIs) {
    sql(QStringLiteral("UPDATE parametrs SET value='ООО [заказчик]' WHERE name='Customer';"));
    const QString text = pdfText(exportTo(QStringLiteral("Заказчик в скобках.pdf"))).simplified();
    EXPECT_TRUE(text.contains(QStringLiteral("ООО [заказчик]"))) << text.toStdString();
}

TEST_F(Export, MissingTemplateOrDocumentWritesNothing) {
    // A folder in the template's place: it is told as a folder, and no template is put back.
    const QString templ = OfficeTemplates::path(m_data, QStringLiteral("Шаблон Локальная.xls"));
    QFile::remove(templ);
    ASSERT_TRUE(QDir().mkpath(templ));
    const QString out = m_folder.file(QStringLiteral("out.pdf"));
    QString error;
    EXPECT_FALSE(EstimateExport::exportFile(m_document, out, m_data, &error, &engine()));
    EXPECT_EQ(error, QStringLiteral("Шаблон %1 не открывается: это папка, а не файл.")
                         .arg(QDir::toNativeSeparators(templ)));
    EXPECT_FALSE(QFile::exists(out));

    const QString notADocument = m_folder.file(QStringLiteral("текст.sim"));
    QFile f(notADocument);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("not a database");
    f.close();
    EXPECT_FALSE(EstimateExport::exportFile(notADocument, out, m_data, &error, &engine()));
    EXPECT_TRUE(error.contains(QStringLiteral("текст.sim"))) << error.toStdString();
    EXPECT_FALSE(QFile::exists(out));
}

} // namespace
