#include "PackageJob.h"

#include "estimate/ActFields.h"
#include "estimate/EstimateDocument.h"
#include "estimate/Registration.h"
#include "office/OfficeEngine.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QTemporaryFile>

namespace {

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

ActKind actKind(PackageDoc doc) {
    return doc == PackageDoc::Ks2 ? ActKind::Ks2 : doc == PackageDoc::Ks3 ? ActKind::Ks3 : ActKind::Plain;
}

// Why a file of an estimate that is not entered as a document cannot be registered.
QString notEntered(const QString &caption, TModuleSQL &module) {
    const Registration::Link link = Registration::link(module.database(Db::Smeta));
    return QStringLiteral("%1 не внесён в реестр документов: %2")
        .arg(caption, link.note == Registration::kDraft ? QStringLiteral("смета сохранена как черновик.")
                                                        : QStringLiteral("смета ещё не сохранена."));
}

// The act data fields that name the contract the acts belong to.
QMap<QString, QString> contractActValues(const QString &number, const QDate &date) {
    return {{QStringLiteral("EditNumDoc"), number},
            {QStringLiteral("DateEditContract"), TextValues::shortDate(date)}};
}

} // namespace

PackageSettings PackageSettings::read(const MainSettings *settings, const SettingsStore *store,
                                      const QString &dataFolder) {
    PackageSettings s;
    if (store)
        s.titles = ViewTitles::read(*store);
    s.invoice = InvoiceOpening::readOptions(settings, store);
    s.contractTemplate = ContractProducer::templatePath(store, dataFolder);
    s.advancePercent = ContractProducer::advancePercent(store);
    return s;
}

namespace PackageJob {

QString requestProblem(const PackageRequest &request) {
    if (request.ticked().isEmpty())
        return QStringLiteral("Отметьте документы, которые войдут в пакет.");
    if (!request.date.isValid())
        return QStringLiteral("Укажите дату пакета.");
    if (request.contract && request.contractNumber.trimmed().isEmpty())
        return QStringLiteral("Укажите номер договора.");
    if (request.invoice && request.invoiceNumber.trimmed().isEmpty())
        return QStringLiteral("Укажите номер счёта.");
    if ((request.ks2 || request.ks3 || request.act) && request.actFullNumber().isEmpty())
        return QStringLiteral("Укажите номер акта.");
    return {};
}

QString checkFolder(const QString &folder) {
    if (folder.trimmed().isEmpty())
        return QStringLiteral("Укажите папку для пакета документов.");
    if (!QDir().mkpath(folder))
        return QStringLiteral("Не удаётся создать папку «%1» для пакета документов.").arg(shown(folder));
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".virn-package-XXXXXX")));
    if (!probe.open() || probe.write("0", 1) != 1 || !probe.flush())
        return QStringLiteral("В папку «%1» нельзя записать файлы (%2). Выберите другую папку для пакета.")
            .arg(shown(folder), probe.errorString());
    return {};
}

bool prepare(const EstimateDocument &document, const PackageRequest &request, const PackageSettings &settings,
             PackageItem *item) {
    TModuleSQL *module = document.module();
    if (!module) {
        item->error = QStringLiteral("Базы данных программы не открыты.");
        return false;
    }
    const Registration::Link link = Registration::link(module->database(Db::Smeta));
    item->iddoc = link.id > 0 && link.note == Registration::kDoc ? QString::number(link.id) : QString();
    switch (item->doc) {
    case PackageDoc::Contract: {
        ContractProducer::Request &c = item->contract;
        c.data = ContractProducer::dataFrom(document, settings.advancePercent);
        c.data.endDate = request.contractEnd;
        c.templatePath = settings.contractTemplate;
        c.number = request.contractNumber.trimmed();
        c.date = request.date;
        c.folder = request.folder;
        c.format = request.contractPdf ? ContractProducer::Format::Pdf : ContractProducer::Format::Docx;
        c.iddoc = item->iddoc;
        return true;
    }
    case PackageDoc::Invoice: {
        item->invoice = InvoiceOpening::open(document, settings.invoice);
        item->invoice.number = request.invoiceNumber.trimmed();
        item->invoice.date = request.date;
        InvoiceProducer::Request &r = item->invoiceRequest;
        r.number = item->invoice.number;
        r.date = request.date;
        r.folder = request.folder;
        r.format = request.invoicePdf ? InvoiceProducer::Format::Pdf : InvoiceProducer::Format::Xls;
        // Registered by record, on the register's own thread.
        r.iddoc.clear();
        return true;
    }
    case PackageDoc::Ks2:
    case PackageDoc::Ks3:
    case PackageDoc::Act:
        break;
    }
    ActRequest a;
    a.kind = actKind(item->doc);
    a.number = request.actFullNumber();
    a.date = request.date;
    if (ActKinds::hasEndDate(a.kind))
        a.endDate = request.actsEnd;
    a.folder = request.folder;
    a.format = request.actsPdf ? QStringLiteral("pdf") : QStringLiteral("xls");
    // The acts name the package's contract as the package gives it, so they need not wait for its file.
    if (request.contract && !request.contractNumber.trimmed().isEmpty())
        a.actValues = contractActValues(request.contractNumber.trimmed(), request.date);
    return ActProducer::prepare(document, settings.titles, a, &item->act, &item->error);
}

bool render(OfficeEngine &engine, const QString &dataFolder, PackageItem *item,
            const std::function<void(int)> &progress) {
    item->made = false;
    item->path.clear();
    switch (item->doc) {
    case PackageDoc::Contract: {
        if (progress)
            progress(10);
        const ContractProducer::Result r = ContractProducer::write(engine, item->contract);
        item->made = r.ok;
        item->path = r.path;
        item->error = r.error;
        break;
    }
    case PackageDoc::Invoice: {
        const InvoiceProducer::Outcome r = InvoiceProducer::produce(
            item->invoice, item->invoiceRequest, engine, dataFolder, QSqlDatabase(), progress);
        item->made = r.ok();
        item->path = r.path;
        item->error = r.error;
        break;
    }
    case PackageDoc::Ks2:
    case PackageDoc::Ks3:
    case PackageDoc::Act:
        item->made = ActProducer::render(engine, item->act, &item->error, progress);
        if (item->made)
            item->path = item->act.path;
        break;
    }
    if (item->made)
        item->error.clear();
    else if (item->error.isEmpty())
        item->error = engine.error();
    return item->made;
}

void record(TModuleSQL &module, PackageItem *item) {
    if (!item->made)
        return; // nothing is registered for a file that was not written
    const QString caption = PackageDocs::caption(item->doc);
    if (item->doc == PackageDoc::Ks2 || item->doc == PackageDoc::Ks3 || item->doc == PackageDoc::Act) {
        const ActResult r = ActProducer::record(module, item->act);
        item->warning = r.warning;
        item->documentChanged = r.documentChanged;
        return;
    }
    if (item->iddoc.isEmpty()) {
        item->warning = notEntered(caption, module);
        return;
    }
    QSqlDatabase mydoc = module.database(Db::MyDoc);
    if (!mydoc.isOpen()) {
        item->warning =
            QStringLiteral("%1 не внесён в реестр документов: %2").arg(caption, module.failure(Db::MyDoc));
        return;
    }
    if (item->doc == PackageDoc::Invoice) {
        item->warning = InvoiceProducer::registerFile(mydoc, item->iddoc, item->invoice, item->path);
        return;
    }
    QString why;
    if (!ContractProducer::enter(mydoc, item->contract, item->path, &why))
        item->warning = QStringLiteral("Договор сохранён в файл %1, но не внесён в реестр документов: %2")
                            .arg(shown(item->path), why);
}

void referActsToContract(TModuleSQL &module, PackageItem *contract) {
    if (contract->doc != PackageDoc::Contract || !contract->made)
        return;
    const QMap<QString, QString> values =
        contractActValues(contract->contract.number, contract->contract.date);
    QSqlDatabase smeta = module.database(Db::Smeta);
    const QMap<QString, QString> stored = ActFields::read(smeta);
    bool differs = false;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        differs = differs || stored.value(it.key()) != it.value();
    if (!differs)
        return;
    QString why;
    if (!ActFields::write(smeta, values, &why)) {
        const QString text = QStringLiteral("Номер договора не записан в данные акта: %1").arg(why);
        contract->warning = contract->warning.isEmpty() ? text : contract->warning + u'\n' + text;
        return;
    }
    contract->documentChanged = true;
}

} // namespace PackageJob
