#include "PackageRequest.h"

#include "ActKind.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateHeader.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"

namespace PackageDocs {

QString caption(PackageDoc doc) {
    switch (doc) {
    case PackageDoc::Contract:
        return QStringLiteral("Договор");
    case PackageDoc::Invoice:
        return QStringLiteral("Счёт");
    case PackageDoc::Ks2:
        return ActKinds::caption(ActKind::Ks2);
    case PackageDoc::Ks3:
        return ActKinds::caption(ActKind::Ks3);
    case PackageDoc::Act:
        break;
    }
    return ActKinds::caption(ActKind::Plain);
}

QString progressText(PackageDoc doc) {
    return QStringLiteral("Создаётся... ") + caption(doc);
}

} // namespace PackageDocs

QVector<PackageDoc> PackageRequest::ticked() const {
    QVector<PackageDoc> docs;
    const std::pair<bool, PackageDoc> all[] = {{contract, PackageDoc::Contract},
                                               {invoice, PackageDoc::Invoice},
                                               {ks2, PackageDoc::Ks2},
                                               {ks3, PackageDoc::Ks3},
                                               {act, PackageDoc::Act}};
    for (const auto &[on, doc] : all)
        if (on)
            docs << doc;
    return docs;
}

QString PackageRequest::actFullNumber() const {
    const QString word = actNumberWord.trimmed();
    const QString number = actNumber.trimmed();
    if (word.isEmpty() || number.isEmpty())
        return word + number;
    return word + u'-' + number;
}

void PackageRequest::allPdf() {
    contractPdf = invoicePdf = actsPdf = true;
}

PackageNumbering PackageNumbering::read(const MainSettings *settings, const SettingsStore *store) {
    PackageNumbering n;
    n.byDate = settings && settings->flag(QStringLiteral("spdDateNumericSmetaWord"));
    n.yearFirst = store && !store->flag(QStringLiteral("Param"), QStringLiteral("RadioButtonFormat1"), true);
    return n;
}

PackageDateNumbers numbersFromDate(const QDate &date, bool yearFirst) {
    PackageDateNumbers n;
    n.actWord = EstimateHeader::dateNumber(date, yearFirst);
    n.contract = n.invoice = n.actWord + QStringLiteral("-1");
    return n;
}

namespace PackageDefaults {

PackageRequest make(const EstimateDocument &document, QSqlDatabase people, const PackageNumbering &numbering,
                    const QDate &date) {
    PackageRequest r;
    r.folder = document.folder();
    r.contractNumber = r.invoiceNumber = document.numberText();
    const EstimateHeader::Values &h = document.header();
    // The counter's number: numbering by date puts the date before it as the text number.
    r.actNumber = ActKinds::defaultNumber(people, h.customer, h.object, date, false, numbering.yearFirst);
    applyDate(&r, numbering, date);
    r.contractEnd = r.actsEnd = date;
    return r;
}

void applyDate(PackageRequest *request, const PackageNumbering &numbering, const QDate &date) {
    request->date = date;
    if (!numbering.byDate || !date.isValid())
        return;
    const PackageDateNumbers n = numbersFromDate(date, numbering.yearFirst);
    request->contractNumber = n.contract;
    request->invoiceNumber = n.invoice;
    request->actNumberWord = n.actWord;
}

} // namespace PackageDefaults
