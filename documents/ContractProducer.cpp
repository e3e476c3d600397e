#include "ContractProducer.h"

#include "ContractAmounts.h"
#include "ContractFile.h"
#include "ContractStore.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "office/OfficeTemplates.h"
#include "storage/Money.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QDir>

namespace ContractProducer {

namespace {
const QString kContractSection = QStringLiteral("Contract");
const QString kPathKey = QStringLiteral("Path");
const QString kParamSection = QStringLiteral("Param");
const QString kPercentKey = QStringLiteral("SpinEditAvans");
} // namespace

QString templatePath(const SettingsStore *store, const QString &dataFolder) {
    const QString path = store ? store->text(kContractSection, kPathKey).trimmed() : QString();
    return path.isEmpty() ? OfficeTemplates::path(dataFolder, kDefaultTemplate) : path;
}

void setTemplatePath(SettingsStore *store, const QString &path) {
    if (store)
        store->setText(kContractSection, kPathKey, path);
}

int advancePercent(const SettingsStore *store) {
    const int p = store ? store->integer(kParamSection, kPercentKey, ContractAmounts::kDefaultPercent)
                        : ContractAmounts::kDefaultPercent;
    return p >= 0 && p <= 100 ? p : ContractAmounts::kDefaultPercent;
}

void setAdvancePercent(SettingsStore *store, int percent) {
    if (store)
        store->setText(kParamSection, kPercentKey, QString::number(percent));
}

ContractFill::Data dataFrom(const EstimateDocument &document, int percent) {
    ContractFill::Data d;
    const EstimateHeader::Values &h = document.header();
    d.date = h.date;
    d.currency = h.currency;
    d.total = document.editor().grandTotal().text();
    d.object = h.object;
    d.works = h.nameWork;
    d.contractor = document.contractorData();
    d.customer = document.customerData();
    ContractFill::setAmounts(&d, percent);
    return d;
}

QString fileName(const QString &number, const QDate &date, Format format) {
    QString name = QStringLiteral("Договор");
    if (!number.trimmed().isEmpty())
        name += QStringLiteral(" № ") + number.trimmed();
    if (date.isValid())
        name += QStringLiteral(" от ") + TextValues::shortDate(date);
    static const QString forbidden = QStringLiteral("/\\:*?\"<>|");
    for (QChar &c : name)
        if (forbidden.contains(c) || c.unicode() < 32)
            c = u'-';
    const char *suffix = format == Format::Pdf ? ".pdf" : format == Format::Rtf ? ".rtf" : ".docx";
    return name + QLatin1String(suffix);
}

QString registerKind(Format format) {
    return format == Format::Pdf ? ContractStore::kPdf : ContractStore::kDoc;
}

Result write(OfficeEngine &engine, const Request &request) {
    Result r;
    r.path = QDir(request.folder).filePath(fileName(request.number, request.date, request.format));
    const QString format = request.format == Format::Pdf   ? QStringLiteral("pdf")
                           : request.format == Format::Rtf ? QStringLiteral("rtf")
                                                           : QStringLiteral("docx");
    r.ok = ContractFile::fill(engine, request.templatePath, ContractFill::replacements(request.data),
                              {{r.path, format}}, &r.error);
    if (!r.ok)
        r.path.clear();
    return r;
}

bool enter(QSqlDatabase mydoc, const Request &request, const QString &path, QString *error) {
    ContractStore::Entry e;
    e.iddoc = request.iddoc;
    e.date = request.date;
    e.endDate = request.data.endDate;
    e.number = request.number;
    e.fileName = path;
    e.ext = registerKind(request.format);
    e.avans = request.data.advance;
    const MoneyResult total = Money::parse(request.data.total);
    e.allsum = total ? total->text() : request.data.total;
    return ContractStore::registerFile(mydoc, e, error);
}

Result produce(OfficeEngine &engine, QSqlDatabase mydoc, const Request &request) {
    Result r = write(engine, request);
    if (r.ok && !request.iddoc.isEmpty())
        enter(mydoc, request, r.path, &r.warning);
    return r;
}

} // namespace ContractProducer
