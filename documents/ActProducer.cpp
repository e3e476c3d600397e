#include "ActProducer.h"

#include "ActData.h"
#include "ActRegister.h"
#include "ActSheet.h"
#include "estimate/ActFields.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateOutput.h"
#include "estimate/Registration.h"
#include "office/OfficeTemplates.h"
#include "office/TemplateNames.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace ActProducer {

namespace {

bool failWith(const QString &why, QString *error) {
    if (error)
        *error = why;
    return false;
}

const QString kPeriodFrom = QStringLiteral("DateEditPeriodS");
const QString kPeriodTo = QStringLiteral("DateEditPeriodPo");

} // namespace

bool prepare(const EstimateDocument &document, const ViewTitles &titles, const ActRequest &request,
             ActJob *job, QString *error) {
    *job = ActJob();
    job->request = request;
    job->request.number = request.number.trimmed();
    job->request.format = request.format.trimmed().toLower();
    ActRequest &r = job->request;
    if (r.number.isEmpty())
        return failWith(QStringLiteral("Укажите номер акта."), error);
    if (!r.date.isValid())
        return failWith(QStringLiteral("Укажите дату акта."), error);
    if (r.format != QLatin1String("xls") && r.format != QLatin1String("pdf"))
        return failWith(QStringLiteral("Акт выводится в формат XLS или PDF."), error);
    if (r.folder.trimmed().isEmpty())
        return failWith(QStringLiteral("Укажите папку для акта."), error);
    TModuleSQL *module = document.module();
    QSqlDatabase db = module ? module->database(Db::Smeta) : QSqlDatabase();
    if (!db.isOpen())
        return failWith(module ? module->failure(Db::Smeta) : QStringLiteral("Нет рабочей базы сметы."),
                        error);

    // The act data as the act data window leaves it: every field present.
    QString why;
    if (!ActFields::ensureRows(db, &why))
        return failWith(QStringLiteral("Не удалось записать данные акта в смету: %1").arg(why), error);
    EstimatePrint estimate = document.print();
    for (auto it = r.actValues.cbegin(); it != r.actValues.cend(); ++it)
        estimate.act.insert(it.key(), it.value());
    estimate.title = ActKinds::view(r.kind);
    if (!estimate.refusal.isEmpty())
        return failWith(estimate.refusal, error);
    const QString periodFrom = estimate.act.value(kPeriodFrom);
    const QString periodTo = estimate.act.value(kPeriodTo);
    const QDate from = TextValues::parseShortDate(periodFrom);
    const QDate to = TextValues::parseShortDate(periodTo);
    if (!ActData::periodProblem(from, to).isEmpty())
        return failWith(ActData::periodProblem(from, to), error);

    // What the act holds.
    const QVector<ActVolumes::Act> history = ActVolumes::history(db, &why);
    if (!why.isEmpty())
        return failWith(QStringLiteral("Не удалось прочитать акты по объёмам: %1").arg(why), error);
    ActSheet::Plan plan;
    if (!ActSheet::plan(estimate, history, ActVolumes::typed(db), r.number, r.date, periodFrom, periodTo,
                        &plan, error))
        return false;
    // Acts by volumes know the estimate's rows by their work ids, which the document gives a new row when it
    // writes the working database.
    const bool unnumbered =
        std::any_of(estimate.rows.cbegin(), estimate.rows.cend(), [](const EstimatePrint::Row &row) {
            return row.kind == EstimatePrint::Kind::Work && row.id.isEmpty() && !row.name.isEmpty();
        });
    if (plan.byVolumes && !plan.remake && unnumbered)
        return failWith(
            QStringLiteral("Акт по объёмам не составлен: новые строки сметы ещё не записаны в рабочую "
                           "базу. Запишите смету и повторите."),
            error);
    const EstimatePrint print =
        plan.byVolumes ? ActSheet::actPrint(estimate, plan.act, Coefficients::readApplied(db)) : estimate;
    if (!print.refusal.isEmpty())
        return failWith(print.refusal, error);

    // The sheet: the estimate's output for the act's view, with the act's own number, date and period.
    using namespace TemplateNames;
    const EstimateOutput::Sheet sheet = EstimateOutput::sheetFor(print.title, titles);
    job->templatePath = OfficeTemplates::path(document.dataFolder(), sheet.templateFile);
    job->data = EstimateOutput::sheetData(print, sheet, titles);
    job->data.values.insert(number, SheetValue::ofText(r.number));
    job->data.values.insert(date, SheetValue::ofText(TextValues::shortDate(r.date)));
    if (estimate.act.value(QStringLiteral("EditSumSmet")).trimmed().isEmpty())
        job->data.values.insert(QStringLiteral("EditSumSmet"), SheetValue::ofMoney(estimate.grand));
    if (plan.byVolumes) {
        job->data.values.insert(kPeriodFrom, SheetValue::ofText(plan.act.periodFrom));
        job->data.values.insert(kPeriodTo, SheetValue::ofText(plan.act.periodTo));
        if (sheet.form == EstimateOutput::Form::Ks3)
            EstimateOutput::putStatement(job->data, ActSheet::statement(print, plan.act.year, plan.before));
        plan.act.worksRaw = print.worksRaw;
        plan.act.materialsRaw = print.materialsRaw;
        plan.act.works = print.worksTotal;
        plan.act.materials = print.materialsTotal;
        plan.act.vat = print.vat;
        plan.act.grand = print.grand;
    }
    job->path = QDir(r.folder).filePath(ActKinds::fileBaseName(r.kind, r.number, r.date) + u'.' + r.format);
    job->allsum = print.grand.text();
    job->customer = document.header().customer;
    job->object = document.header().object;
    job->byVolumes = plan.byVolumes;
    job->act = plan.act;
    return true;
}

bool render(OfficeEngine &engine, const ActJob &job, QString *error,
            const SheetTemplate::Progress &progress) {
    const QString folder = QFileInfo(job.path).absolutePath();
    if (!QDir().mkpath(folder))
        return failWith(
            QStringLiteral("Не удалось создать папку «%1».").arg(QDir::toNativeSeparators(folder)), error);
    return SheetTemplate::fill(engine, job.templatePath, job.data, {{job.path, job.request.format}}, error,
                               progress);
}

ActResult record(TModuleSQL &module, const ActJob &job) {
    ActResult result;
    result.ok = true;
    result.path = job.path;
    QStringList warnings;
    QString why;
    QSqlDatabase smeta = module.database(Db::Smeta);
    if (job.byVolumes) {
        ActVolumes::Act act = job.act;
        if (ActVolumes::record(smeta, &act, &why))
            result.documentChanged = true;
        else
            warnings << QStringLiteral("Объёмы акта не записаны в смету: %1").arg(why);
    }

    const Registration::Link link = Registration::link(smeta);
    if (link.id <= 0 || link.note != Registration::kDoc) {
        warnings << (link.note == Registration::kDraft
                         ? QStringLiteral("Акт не внесён в реестр документов: смета сохранена как черновик.")
                         : QStringLiteral("Акт не внесён в реестр документов: смета ещё не сохранена."));
    } else {
        ActRegister::Entry entry;
        entry.iddoc = link.id;
        entry.kind = job.request.kind;
        entry.date = job.request.date;
        entry.endDate = job.request.endDate;
        entry.number = job.request.number;
        entry.fileName = job.path;
        entry.ext = job.request.format;
        entry.allsum = job.allsum;
        QSqlDatabase mydoc = module.database(Db::MyDoc);
        if (!mydoc.isOpen() || !ActRegister::enter(mydoc, entry, &why))
            warnings << QStringLiteral("Акт не внесён в реестр документов: %1")
                            .arg(mydoc.isOpen() ? why : module.failure(Db::MyDoc));
    }

    QSqlDatabase people = module.database(Db::People);
    if (!people.isOpen() ||
        !Registration::countAct(people, job.customer, job.object, job.request.number, &why))
        warnings << QStringLiteral("Счётчик актов заказчика не изменён: %1")
                        .arg(people.isOpen() ? why : module.failure(Db::People));
    result.warning = warnings.join(u'\n');
    return result;
}

ActResult produce(const EstimateDocument &document, const ViewTitles &titles, const ActRequest &request,
                  OfficeEngine &engine, const SheetTemplate::Progress &progress) {
    ActResult result;
    ActJob job;
    if (!prepare(document, titles, request, &job, &result.error) ||
        !render(engine, job, &result.error, progress))
        return result;
    TModuleSQL *module = document.module();
    return record(*module, job);
}

} // namespace ActProducer
