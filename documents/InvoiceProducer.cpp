#include "InvoiceProducer.h"

#include "AccountRegister.h"
#include "InvoiceSheet.h"
#include "estimate/EstimateDocument.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFileInfo>

namespace InvoiceProducer {

QString extension(Format format) {
    return format == Format::Pdf ? QStringLiteral("pdf") : QStringLiteral("xls");
}

Outcome produce(const Invoice &source, const Request &request, OfficeEngine &engine,
                const QString &dataFolder, QSqlDatabase mydoc, const SheetTemplate::Progress &progress) {
    Outcome out;
    if (request.folder.isEmpty() || !QDir().mkpath(request.folder)) {
        out.error =
            QStringLiteral("Не удаётся создать папку %1.").arg(QDir::toNativeSeparators(request.folder));
        return out;
    }
    Invoice invoice = source;
    invoice.number = request.number;
    invoice.date = request.date.isValid() ? request.date : source.date;
    const QString ext = extension(request.format);
    const QString path =
        QDir(request.folder).filePath(InvoiceSheet::packageFileName(invoice.number, invoice.date, ext));
    QString error;
    if (!InvoiceSheet::produce(engine, dataFolder, invoice, {{path, ext}}, &error, progress)) {
        out.error = error;
        return out;
    }
    out.path = path;
    if (request.iddoc.isEmpty())
        return out;
    out.error = registerFile(mydoc, request.iddoc, invoice, path);
    return out;
}

QString registerFile(QSqlDatabase mydoc, const QString &iddoc, const Invoice &invoice, const QString &path) {
    const AccountRegister::Entry entry{iddoc,
                                       invoice.date,
                                       invoice.number,
                                       path,
                                       QFileInfo(path).suffix(),
                                       invoice.form.amount().valueOr(Money()).text()};
    QString error;
    if (AccountRegister::record(mydoc, entry, &error))
        return {};
    return QStringLiteral("Счёт сохранён в файл %1, но не внесён в реестр документов: %2")
        .arg(QDir::toNativeSeparators(path), error);
}

Outcome produce(const EstimateDocument &document, const InvoiceOpening::Options &options, Request request,
                OfficeEngine &engine, const SheetTemplate::Progress &progress) {
    TModuleSQL *module = document.module();
    if (!module) {
        Outcome out;
        out.error = QStringLiteral("Базы данных программы не открыты.");
        return out;
    }
    if (request.iddoc.isEmpty())
        request.iddoc = AccountRegister::estimateId(module->database(Db::Smeta));
    return produce(InvoiceOpening::open(document, options), request, engine, module->dataFolder(),
                   module->database(Db::MyDoc), progress);
}

} // namespace InvoiceProducer
