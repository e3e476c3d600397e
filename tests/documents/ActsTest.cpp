// The acts without the office engine: the act data in the document, the register rows, the act number,
// the acts by completed volumes and what each act's sheet receives.

#include "ActFixture.h"

#include "documents/ActData.h"
#include "documents/ActKind.h"
#include "documents/ActRegister.h"
#include "documents/ActSheet.h"
#include "documents/ActVolumes.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateHeader.h"
#include "estimate/Registration.h"
#include "office/TemplateNames.h"
#include "storage/TextValues.h"

namespace {

using namespace TemplateNames;

// prepare and record, the file itself left out (the engine's tests write it).
class Acts : public ActFixture {
protected:
    ActResult make(const ActRequest &r, ActJob *out = nullptr) {
        ActJob job;
        ActResult result;
        if (!ActProducer::prepare(*doc, ViewTitles(), r, &job, &result.error))
            return result;
        if (out)
            *out = job;
        return ActProducer::record(*module, job);
    }
    ActJob prepared(const ActRequest &r) {
        ActJob job;
        QString why;
        EXPECT_TRUE(ActProducer::prepare(*doc, ViewTitles(), r, &job, &why)) << why.toStdString();
        return job;
    }
    QString refusal(const ActRequest &r) {
        ActJob job;
        QString why;
        EXPECT_FALSE(ActProducer::prepare(*doc, ViewTitles(), r, &job, &why));
        return why;
    }
    // The rows of the act's list: "kind:name|quantity|sum".
    static QStringList listed(const ActJob &job) {
        QStringList out;
        for (const SheetRow &r : job.data.lists.value(0).rows)
            out << r.kind + u':' + r.cells.value(colName).text + u'|' + r.cells.value(colQuantity).text +
                       u'|' + r.cells.value(colSum).text;
        return out;
    }
    static QString item(const ActJob &job, const QString &name) { return job.data.values.value(name).text; }
};

TEST_F(Acts, EveryActFieldIsWrittenAndReadBackWithQuotesAndNbsp) {
    // A value per field, dates and the tick among them; names with quotes; a non-breaking space.
    QMap<QString, QString> values;
    int n = 0;
    for (const QString &name : ActFields::names())
        values.insert(name, QStringLiteral("«%1» \"кв.\"\u00A0%2").arg(name).arg(++n));
    values.insert(QStringLiteral("DateEditPeriodS"), QStringLiteral("01.03.2025"));
    values.insert(QStringLiteral("RadioButton1"), QStringLiteral("1"));
    setActData(values);
    EXPECT_EQ(ActFields::read(working()), values);
    // Names are kept as every stored name is: with a backtick for a double quote.
    EXPECT_EQ(rows(Db::Smeta, "SELECT value FROM ks2 WHERE name='ComboBoxZakaz'").value(0),
              QStringLiteral("«ComboBoxZakaz» `кв.`\u00A01"));
    EXPECT_EQ(rows(Db::Smeta, "SELECT count(*) FROM ks2").value(0),
              QString::number(ActFields::names().size()));

    // Saved and opened again.
    ASSERT_TRUE(doc->save());
    ASSERT_TRUE(doc->newDocument());
    EXPECT_NE(ActFields::read(working()), values);
    ASSERT_TRUE(doc->open(path));
    EXPECT_EQ(ActFields::read(working()), values);
}

TEST_F(Acts, DocumentsWithoutActDataGetTheMissingFields) {
    struct Case {
        const char *what;
        const char *sql;
        int kept; // rows whose value was kept
    } cases[] = {
        {"no rows at all", "DELETE FROM ks2", 0},
        {"an older document with a few fields",
         "DELETE FROM ks2 WHERE name NOT IN ('EditNumDoc', 'EditSdal')", 2},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        setActData({{QStringLiteral("EditNumDoc"), QStringLiteral("Д-7")},
                    {QStringLiteral("EditSdal"), QStringLiteral("Соболев")}});
        QSqlQuery(working()).exec(QString::fromUtf8(c.sql));
        ASSERT_TRUE(ActFields::ensureRows(working()));
        ASSERT_TRUE(ActFields::ensureRows(working())) << "a second time adds nothing";
        const QMap<QString, QString> v = ActFields::read(working());
        EXPECT_EQ(v.keys().size(), ActFields::names().size());
        EXPECT_EQ(rows(Db::Smeta, "SELECT count(*) FROM ks2").value(0),
                  QString::number(ActFields::names().size()));
        EXPECT_EQ(v.value(QStringLiteral("EditDolSdal")), QStringLiteral("Прораб"));
        EXPECT_EQ(v.value(QStringLiteral("EditNumDoc")), c.kept ? QStringLiteral("Д-7") : QString());
    }
}

TEST_F(Acts, EachKindAndFormatIsOneRegisterRowUpdatedWhenMadeAgain) {
    const QString iddoc = rows(Db::MyDoc, "SELECT id FROM documents").value(0);
    ASSERT_FALSE(iddoc.isEmpty());
    struct Step {
        ActKind kind;
        const char *number;
        const char *format;
        int rowsAfter;
    } steps[] = {
        {ActKind::Ks2, "5", "xls", 1}, {ActKind::Ks3, "5", "xls", 2},   {ActKind::Ks2, "6", "xls", 2},
        {ActKind::Ks2, "6", "pdf", 3}, {ActKind::Plain, "6", "pdf", 4}, {ActKind::Plain, "6", "pdf", 4},
    };
    for (const Step &s : steps) {
        const ActResult r = make(request(s.kind, QString::fromUtf8(s.number), QString::fromUtf8(s.format)));
        ASSERT_TRUE(r) << r.error.toStdString();
        EXPECT_TRUE(r.warning.isEmpty()) << r.warning.toStdString();
        EXPECT_EQ(rows(Db::MyDoc, "SELECT count(*) FROM act").value(0), QString::number(s.rowsAfter));
    }
    const QString dir = folder.file(QStringLiteral("Акты"));
    EXPECT_EQ(rows(Db::MyDoc,
                   "SELECT iddoc, ext, status, number, name, filename, data, date_compare, dataend, "
                   "allsum, month, year FROM act ORDER BY id"),
              (QStringList{
                  iddoc + "|xls|2|6|КС-2 № 6|" + dir +
                      "/Акт КС-2 № 6 от 31.03.2025.xls|31.03.2025|20250331000000|"
                      "30.06.2025|103000,00|3|2025",
                  iddoc + "|xls|3|5|КС-3 № 5|" + dir +
                      "/Акт КС-3 № 5 от 31.03.2025.xls|31.03.2025|20250331000000|"
                      "30.06.2025|103000,00|3|2025",
                  iddoc + "|pdf|2|6|КС-2 № 6|" + dir +
                      "/Акт КС-2 № 6 от 31.03.2025.pdf|31.03.2025|20250331000000|"
                      "30.06.2025|103000,00|3|2025",
                  iddoc + "|pdf|1|6|№ 6|" + dir +
                      "/Акт № 6 от 31.03.2025.pdf|31.03.2025|20250331000000||"
                      "103000,00|3|2025",
              }));
}

TEST_F(Acts, AnActOfAnUnsavedEstimateIsMadeButNotRegistered) {
    ASSERT_TRUE(doc->newDocument());
    const ActResult r = make(request(ActKind::Ks2, QStringLiteral("1")));
    ASSERT_TRUE(r) << r.error.toStdString();
    EXPECT_EQ(r.warning, QStringLiteral("Акт не внесён в реестр документов: смета ещё не сохранена."));
    EXPECT_EQ(rows(Db::MyDoc, "SELECT count(*) FROM act").value(0), QStringLiteral("0"));
}

TEST_F(Acts, TheActNumberComesFromTheCounterOrTheDate) {
    QSqlDatabase people = module->database(Db::People);
    const QDate date(2025, 3, 7);
    auto number = [&](bool byDate, bool yearFirst) {
        return ActKinds::defaultNumber(people, customer, object, date, byDate, yearFirst);
    };
    EXPECT_EQ(number(false, false), QStringLiteral("1")) << "a pair without a counter";
    EXPECT_EQ(number(true, false), QStringLiteral("07032025-1"));
    EXPECT_EQ(number(true, true), QStringLiteral("20250307-1"));

    // Acts made advance the pair's counter; an older number does not take it back; one record per pair.
    struct Step {
        const char *number;
        const char *next;
    } steps[] = {{"1", "2"}, {"4", "5"}, {"2", "5"}, {"07032025-1", "5"}};
    for (const Step &s : steps) {
        ASSERT_TRUE(make(request(ActKind::Ks2, QString::fromUtf8(s.number))));
        EXPECT_EQ(number(false, false), QString::fromUtf8(s.next)) << s.number;
    }
    // The estimate's counter shares the record.
    ASSERT_TRUE(Registration::countEstimate(people, customer, object, QStringLiteral("12")));
    EXPECT_EQ(rows(Db::People, "SELECT Client, Object, Smeta, Act FROM NumDoc"),
              QStringList{"ООО `Ромашка`|Квартира 12|12|5"});
    // Another object of the customer counts on its own.
    EXPECT_EQ(ActKinds::defaultNumber(people, customer, QStringLiteral("Дача"), date, false, false),
              QStringLiteral("1"));
}

TEST_F(Acts, FileNamesAndLabelsOfTheThreeKinds) {
    const QDate d(2025, 2, 1);
    struct Case {
        ActKind kind;
        const char *number, *file, *label;
        int status;
    } cases[] = {
        {ActKind::Ks2, "5", "Акт КС-2 № 5 от 01.02.2025", "КС-2 № 5", 2},
        {ActKind::Ks3, "5", "Акт КС-3 № 5 от 01.02.2025", "КС-3 № 5", 3},
        {ActKind::Plain, "5/2", "Акт № 5_2 от 01.02.2025", "№ 5/2", 1},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(ActKinds::fileBaseName(c.kind, QString::fromUtf8(c.number), d), QString::fromUtf8(c.file));
        EXPECT_EQ(ActKinds::label(c.kind, QString::fromUtf8(c.number)), QString::fromUtf8(c.label));
        EXPECT_EQ(ActKinds::status(c.kind), c.status);
    }
}

TEST_F(Acts, WithoutVolumesAnActCoversTheWholeEstimate) {
    setActData({{QStringLiteral("EditNumDoc"), QStringLiteral("Д-7")},
                {QStringLiteral("DateEditPeriodS"), QStringLiteral("01.03.2025")},
                {QStringLiteral("DateEditPeriodPo"), QStringLiteral("31.03.2025")}});
    const ActJob ks2 = prepared(request(ActKind::Ks2, QStringLiteral("5")));
    EXPECT_EQ(
        listed(ks2),
        (QStringList{"раздел:РАЗДЕЛ 1. Стены||", "строки:Штукатурка стен|100|50 000,00",
                     "строки:Шпатлёвка стен|100|20 000,00", "итог:Итого по разделу 1||70 000,00",
                     "раздел:РАЗДЕЛ 2. Полы||", "строки:Стяжка пола|40|18 000,00",
                     "итог:Итого по разделу 2||18 000,00", "раздел:МАТЕРИАЛЫ||",
                     "строки:Штукатурка гипсовая|1000|15 000,00", "итог:Итого по материалам||15 000,00"}));
    EXPECT_EQ(item(ks2, number), QStringLiteral("5")) << "the act's own number, not the estimate's";
    EXPECT_EQ(item(ks2, date), QStringLiteral("31.03.2025"));
    EXPECT_EQ(item(ks2, basis), QStringLiteral("Смета № 3-12, договор № Д-7"));
    EXPECT_EQ(item(ks2, QStringLiteral("DateEditPeriodS")), QStringLiteral("01.03.2025"));
    EXPECT_FALSE(ks2.byVolumes);
    EXPECT_EQ(ks2.allsum, QStringLiteral("103000,00"));
    EXPECT_TRUE(ks2.templatePath.endsWith(QStringLiteral("/Sh/Шаблон КС-2.xls")));
    ASSERT_TRUE(ActProducer::record(*module, ks2));
    EXPECT_EQ(rows(Db::Smeta, "SELECT count(*) FROM actlist").value(0), QStringLiteral("0"))
        << "nothing kept";

    // КС-3: one line per section, each amount in the three columns.
    const ActJob ks3 = prepared(request(ActKind::Ks3, QStringLiteral("5")));
    QStringList lines;
    for (const SheetRow &r : ks3.data.lists.value(0).rows)
        lines << r.cells.value(colName).text + u'|' + r.cells.value(colSinceStart).text + u'|' +
                     r.cells.value(colSinceYear).text + u'|' + r.cells.value(colSum).text;
    EXPECT_EQ(lines, (QStringList{"РАЗДЕЛ 1. Стены|70 000,00|70 000,00|70 000,00",
                                  "РАЗДЕЛ 2. Полы|18 000,00|18 000,00|18 000,00",
                                  "Материалы|15 000,00|15 000,00|15 000,00"}));
    EXPECT_TRUE(ks3.templatePath.endsWith(QStringLiteral("/Sh/Шаблон КС-3.xls")));
    // The plain act is the estimate sheet headed as an act.
    const ActJob plain = prepared(request(ActKind::Plain, QStringLiteral("5")));
    EXPECT_EQ(item(plain, title), QStringLiteral("АКТ"));
    EXPECT_TRUE(plain.templatePath.endsWith(QStringLiteral("/Sh/Шаблон Смета.xls")));
}

TEST_F(Acts, BadInputIsRefusedWithItsReason) {
    setActData({{QStringLiteral("DateEditPeriodS"), QStringLiteral("15.03.2025")},
                {QStringLiteral("DateEditPeriodPo"), QStringLiteral("01.03.2025")}});
    EXPECT_EQ(refusal(request(ActKind::Ks2, QStringLiteral("1"))),
              QStringLiteral("Начало периода не должно превышать окончание"));
    setActData({{QStringLiteral("DateEditPeriodPo"), QStringLiteral("31.03.2025")}});
    EXPECT_EQ(refusal(request(ActKind::Ks2, QStringLiteral("  "))), QStringLiteral("Укажите номер акта."));
    type({{QStringLiteral("1"), QStringLiteral("2О")}, {QStringLiteral("2"), QStringLiteral("-5")}});
    const QString why = refusal(request(ActKind::Ks2, QStringLiteral("1")));
    EXPECT_TRUE(why.contains(QStringLiteral("№ 1 «Штукатурка стен»: Количество «2О» не является числом")))
        << why.toStdString();
    EXPECT_TRUE(
        why.contains(QStringLiteral("№ 2 «Шпатлёвка стен»: Количество в акте должно быть того же знака")))
        << why.toStdString();
    EXPECT_EQ(ActData::periodProblem(QDate(2025, 3, 2), QDate(2025, 3, 1)),
              QStringLiteral("Начало периода не должно превышать окончание"));
    EXPECT_EQ(ActData::periodProblem(QDate(2025, 3, 1), QDate(2025, 3, 1)), QString());
}

TEST_F(Acts, ARowTypedSinceTheLastWriteIsNumberedBeforeAnActByVolumes) {
    type({{"1", "10"}});
    EstimateGrid &g = doc->grid();
    g.setGridRowCount(g.gridRowCount() + 1);
    ASSERT_TRUE(g.setData(g.index(g.rowCount() - 1, EstimateCol::Name), QStringLiteral("Грунтовка стен"),
                          Qt::EditRole));
    const QString why1 = refusal(request(ActKind::Ks2, QStringLiteral("1")));
    EXPECT_TRUE(why1.contains(QStringLiteral("Запишите смету"))) << why1.toStdString();
    QString why;
    ASSERT_TRUE(doc->writeWorkingDatabase(&why)) << why.toStdString();
    prepared(request(ActKind::Ks2, QStringLiteral("1")));
}

TEST_F(Acts, PartialActsCloseTheirVolumesAndNeverMoreThanTheEstimate) {
    // Act 1: 30 of 100 m2 of plaster, nothing else.
    type({{"1", "30"}, {"2", "0"}, {"3", "0"}, {"м", "0"}});
    setActData({{QStringLiteral("DateEditPeriodS"), QStringLiteral("01.03.2025")},
                {QStringLiteral("DateEditPeriodPo"), QStringLiteral("31.03.2025")}});
    ActJob job;
    ActResult r = make(request(ActKind::Ks2, QStringLiteral("1")), &job);
    ASSERT_TRUE(r) << r.error.toStdString();
    EXPECT_TRUE(r.documentChanged);
    EXPECT_EQ(listed(job), (QStringList{"раздел:РАЗДЕЛ 1. Стены||", "строки:Штукатурка стен|30|15 000,00",
                                        "итог:Итого по разделу 1||15 000,00"}));
    EXPECT_EQ(job.allsum, QStringLiteral("15000,00"));
    EXPECT_TRUE(ActVolumes::typed(working()).isEmpty()) << "the typed quantities were the act's";

    // Act 2, April: the remainder of the plaster (by default), half the filler, the material.
    type({{"2", "50"}, {"3", "0"}});
    setActData({{QStringLiteral("DateEditPeriodS"), QStringLiteral("01.04.2025")},
                {QStringLiteral("DateEditPeriodPo"), QStringLiteral("30.04.2025")}});
    r = make(request(ActKind::Ks2, QStringLiteral("2")), &job);
    ASSERT_TRUE(r) << r.error.toStdString();
    EXPECT_EQ(listed(job),
              (QStringList{"раздел:РАЗДЕЛ 1. Стены||", "строки:Штукатурка стен|70|35 000,00",
                           "строки:Шпатлёвка стен|50|10 000,00", "итог:Итого по разделу 1||45 000,00",
                           "раздел:МАТЕРИАЛЫ||", "строки:Штукатурка гипсовая|1000|15 000,00",
                           "итог:Итого по материалам||15 000,00"}));

    // The page now: closed, this act (the remainder), what is left.
    QStringList page;
    for (const ActVolumes::Volume &v :
         ActVolumes::volumes(ActVolumes::estimateRows(doc->print()), ActVolumes::history(working()),
                             ActVolumes::typed(working())))
        page << v.row.name + u'|' + ActVolumes::quantityText(v.row.quantity) + u'|' +
                    ActVolumes::quantityText(v.closed) + u'|' + v.thisAct + u'|' +
                    ActVolumes::quantityText(*v.remainder());
    EXPECT_EQ(page, (QStringList{"Штукатурка стен|100|100|0|0", "Шпатлёвка стен|100|50|50|0",
                                 "Стяжка пола|40|0|40|0", "Штукатурка гипсовая|1000|1000|0|0"}));

    // A third act that would close more of the filler than is left is refused.
    type({{"2", "60"}});
    const QString why = refusal(request(ActKind::Ks2, QStringLiteral("3")));
    EXPECT_TRUE(
        why.contains(QStringLiteral("№ 2 «Шпатлёвка стен»: В этом акте 60, а по смете осталось 50 (по смете "
                                    "100, закрыто ранее 50).")))
        << why.toStdString();
    EXPECT_EQ(rows(Db::Smeta, "SELECT number, periods, periodpo, grand FROM actlist ORDER BY id"),
              (QStringList{"1|01.03.2025|31.03.2025|15000,00", "2|01.04.2025|30.04.2025|60000,00"}));

    // Act 2 made again (its КС-3, or another format) prints what it closed, whatever is typed now.
    r = make(request(ActKind::Ks2, QStringLiteral("2"), QStringLiteral("pdf")), &job);
    ASSERT_TRUE(r) << r.error.toStdString();
    EXPECT_EQ(job.allsum, QStringLiteral("60000,00"));
    EXPECT_EQ(item(job, QStringLiteral("DateEditPeriodS")), QStringLiteral("01.04.2025"));
    EXPECT_EQ(rows(Db::Smeta, "SELECT count(*) FROM actlist").value(0), QStringLiteral("2"));

    // Deleting the last act opens its volumes again.
    ASSERT_TRUE(ActVolumes::deleteLast(working()));
    type({{"2", "60"}});
    ASSERT_TRUE(make(request(ActKind::Ks2, QStringLiteral("2")), &job));
    EXPECT_EQ(listed(job).value(2), QStringLiteral("строки:Шпатлёвка стен|60|12 000,00"));
}

TEST_F(Acts, AnActNumbersItsOwnLinesBesideTheirPositionsInTheEstimate) {
    type({{"1", "0"}, {"2", "10"}, {"3", "5"}, {"м", "0"}});
    const ActJob job = prepared(request(ActKind::Ks2, QStringLiteral("1")));
    QStringList numbers;
    for (const SheetRow &r : job.data.lists.value(0).rows)
        if (r.kind == rowWork)
            numbers << r.cells.value(colNumber).text + u'|' + r.cells.value(colPosition).text;
    EXPECT_EQ(numbers, (QStringList{"1|2", "2|3"}));
}

TEST_F(Acts, StatementColumnsAddUpOverTheActs) {
    // Act 1 in December 2024, acts 2 and 3 in 2025.
    struct Act {
        QMap<QString, QString> typed;
        const char *from, *to, *number;
    } acts[] = {
        {{{"1", "20"}, {"2", "0"}, {"3", "0"}, {"м", "200"}}, "01.12.2024", "31.12.2024", "1"},
        {{{"1", "30"}, {"2", "10"}, {"3", "0"}, {"м", "300"}}, "01.01.2025", "31.01.2025", "2"},
        {{{"1", "0"}, {"2", "40"}, {"3", "40"}, {"м", "0"}}, "01.02.2025", "28.02.2025", "3"},
    };
    ActJob job;
    for (const Act &a : acts) {
        type(a.typed);
        setActData({{QStringLiteral("DateEditPeriodS"), QString::fromUtf8(a.from)},
                    {QStringLiteral("DateEditPeriodPo"), QString::fromUtf8(a.to)}});
        const ActResult r = make(request(ActKind::Ks3, QString::fromUtf8(a.number)), &job);
        ASSERT_TRUE(r) << r.error.toStdString();
    }
    // Act 3: since the start = acts 1–3, since the start of 2025 = acts 2–3, the period = act 3.
    QStringList lines;
    for (const SheetRow &r : job.data.lists.value(0).rows)
        lines << r.cells.value(colName).text + u'|' + r.cells.value(colSinceStart).text + u'|' +
                     r.cells.value(colSinceYear).text + u'|' + r.cells.value(colSum).text;
    EXPECT_EQ(lines, (QStringList{"РАЗДЕЛ 1. Стены|35 000,00|25 000,00|8 000,00",
                                  "РАЗДЕЛ 2. Полы|18 000,00|18 000,00|18 000,00",
                                  "Материалы|7 500,00|4 500,00|0,00"}));
    QStringList closing;
    for (const SheetRow &r : job.data.lists.value(1).rows)
        closing << r.cells.value(colName).text + u'|' + r.cells.value(colSinceStart).text + u'|' +
                       r.cells.value(colSinceYear).text + u'|' + r.cells.value(colSum).text;
    EXPECT_EQ(closing.value(0), QStringLiteral("Итого|60 500,00|47 500,00|26 000,00"));
    EXPECT_EQ(item(job, subtotalSinceStart), QStringLiteral("60 500,00"));
    EXPECT_EQ(item(job, subtotalSinceYear), QStringLiteral("47 500,00"));
    EXPECT_EQ(item(job, subtotal), QStringLiteral("26 000,00"));

    // Act 2 made again: the acts after it do not count.
    ASSERT_TRUE(make(request(ActKind::Ks3, QStringLiteral("2")), &job));
    EXPECT_EQ(item(job, subtotalSinceStart), QStringLiteral("34 500,00"));
    EXPECT_EQ(item(job, subtotalSinceYear), QStringLiteral("21 500,00"));
    EXPECT_EQ(item(job, subtotal), QStringLiteral("21 500,00"));
}

TEST_F(Acts, CoefficientLinesApplyToTheActsRows) {
    // A 10 % discount on works and VAT 20 % on top.
    QSqlQuery q(working());
    ASSERT_TRUE(q.exec("UPDATE koef SET checked='-1', value='10' WHERE title='Скидка на работы, %'"));
    ASSERT_TRUE(q.exec("UPDATE koef SET checked='-1' WHERE title='НДС, %'"));
    ASSERT_TRUE(doc->save());
    ASSERT_TRUE(doc->open(path)) << "the estimate totals itself with them";
    type({{"1", "10"}, {"2", "0"}, {"3", "0"}, {"м", "0"}});
    ActJob job;
    ASSERT_TRUE(make(request(ActKind::Ks2, QStringLiteral("1")), &job));
    // 10 m2 × 500 = 5 000, less 10 % = 4 500, VAT 900: 5 400.
    EXPECT_EQ(job.allsum, QStringLiteral("5400,00"));
    QStringList closing;
    for (const SheetRow &r : job.data.lists.value(1).rows)
        closing << r.cells.value(colName).text + u'|' + r.cells.value(colSum).text;
    EXPECT_EQ(closing, (QStringList{"Итого по работам|5 000,00", "Скидка на работы 10 %|-500,00",
                                    "НДС 20 %|900,00", "Всего по акту|5 400,00"}));
    // 88 000 less 10 % = 79 200, materials 15 000, VAT 18 840.
    EXPECT_EQ(item(job, QStringLiteral("EditSumSmet")), QStringLiteral("113 040,00"))
        << "the contract value stays the estimate's";
}

} // namespace
