#include "InvoiceOpening.h"

#include "customers/ContractorRegister.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateEditor.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace InvoiceOpening {

namespace {

const QString kOn = QStringLiteral("1");

bool storedFlag(QSqlDatabase doc, const QString &name, bool def) {
    const std::optional<QString> v = AccountTable::value(doc, name);
    return v ? v->trimmed() == kOn : def;
}

} // namespace

Options readOptions(const MainSettings *settings, const SettingsStore *store) {
    Options o;
    if (settings) {
        o.sellerLegal = settings->flag(QStringLiteral("PodryadCheckBoxUridDan"));
        o.buyerLegal = settings->flag(QStringLiteral("ZCheckBoxUridDan"));
    }
    if (store) {
        o.oneLine = store->flag(kSection, kOneLineKey, false);
        o.qr = store->flag(kSection, kQrKey, true);
        o.longName = store->flag(kSection, kLongNameKey, false);
    }
    return o;
}

std::optional<int> vatRateOfEstimate(QSqlDatabase document) {
    QSqlQuery q(document);
    q.prepare(QStringLiteral("SELECT title, value FROM koef WHERE EditComment=? and checked=? ORDER BY id"));
    q.addBindValue(QStringLiteral("RadioButton"));
    q.addBindValue(QStringLiteral("-1"));
    if (!q.exec())
        return std::nullopt;
    while (q.next()) {
        if (!q.value(0).toString().toLower().contains(QStringLiteral("ндс")))
            continue;
        const std::optional<Decimal> rate = TextValues::parseAmount(q.value(1).toString());
        if (!rate)
            continue;
        // The rate is a whole percent: rounded half away from zero, within 0..100.
        bool ok = false;
        const qlonglong whole = rate->text(0, 0).toLongLong(&ok);
        if (ok)
            return static_cast<int>(std::clamp<qlonglong>(whole, 0, 100));
    }
    return std::nullopt;
}

ContractorData findSeller(ContractorRegister &contractors, const QString &name) {
    if (TextValues::isBlank(name))
        return {};
    ContractorData d = contractors.byShortName(name);
    if (!d.found)
        d = contractors.byLongName(name);
    if (!d.found)
        return d;
    const QString id = d.contractor.value(QStringLiteral("id"));
    if (d.requisites.isEmpty() && contractors.ensureRequisiteRow(id))
        d = contractors.byId(id);
    return d;
}

Invoice open(const EstimateDocument &document, const Options &options) {
    Invoice inv;
    const EstimateHeader::Values &h = document.header();
    inv.number = document.numberText();
    inv.date = h.date.isValid() ? h.date : QDate::currentDate();
    inv.currency = h.currency;
    inv.qr = options.qr;

    inv.buyer.name = h.customer;
    inv.buyer.withLegal = options.buyerLegal;
    inv.buyer.legalLine = document.customerData().customer.value(QStringLiteral("note"));

    inv.seller.name = h.contractor;
    inv.seller.withLegal = options.sellerLegal;
    ContractorData seller;
    if (TModuleSQL *module = document.module()) {
        ContractorRegister contractors(*module);
        seller = findSeller(contractors, h.contractor);
    }
    if (!seller.found)
        seller = document.contractorData(); // known from the document's own copy, or not at all
    inv.seller.legalLine = seller.requisites.value(QStringLiteral("note"));
    const QString longName = seller.contractor.value(QStringLiteral("longname")).trimmed();
    if (options.longName && seller.found && !longName.isEmpty())
        inv.seller.name = longName;
    for (const Invoice::Detail &d : Invoice::details())
        inv.sellerDetails.insert(d.key, seller.requisites.value(d.key));

    const EstimateEditor &editor = document.editor();
    inv.form.setTotals({editor.worksTotal().valueOr(Money()), editor.materialsTotal().valueOr(Money()),
                        editor.grandTotal().valueOr(Money()), h.object});

    TModuleSQL *module = document.module();
    if (!module) {
        inv.form.setSwitches(options.oneLine, true, true);
        return inv;
    }
    QSqlDatabase doc = module->database(Db::Smeta);
    const bool oneLine = storedFlag(doc, QStringLiteral("ToggleSwitch1"), options.oneLine);
    const bool works = storedFlag(doc, QStringLiteral("CheckBoxWork"), true);
    const bool materials = storedFlag(doc, QStringLiteral("CheckBoxMat"), true);

    bool vatOn = storedFlag(doc, QStringLiteral("CheckBoxNDS"), false);
    int rate = AccountTable::value(doc, QStringLiteral("SpinEditNDS")).value_or(QStringLiteral("20")).toInt();
    const InvoiceForm::VatChoice choice = storedFlag(doc, QStringLiteral("rbtSumma"), false)
                                              ? InvoiceForm::VatChoice::Added
                                              : InvoiceForm::VatChoice::Included;
    if (const std::optional<int> estimateRate = vatRateOfEstimate(doc)) {
        rate = *estimateRate;
        vatOn = true;
    }
    inv.form.presetVat(vatOn, rate, choice);

    const QVector<InvoiceService> stored = AccountTable::services(doc);
    if (stored.isEmpty()) {
        inv.form.setSwitches(oneLine, works, materials);
    } else {
        // The invoice as it was kept: its rows stay as they are, the switch only shows its state, and
        // an amount typed over the computed one comes back.
        inv.form.presetSwitches(oneLine, works, materials);
        inv.form.setServices(stored);
        const std::optional<QString> amount = AccountTable::value(doc, QStringLiteral("edSumma"));
        if (amount && Money::parse(*amount).ok() && *amount != inv.form.amountText())
            inv.form.setAmountText(*amount);
    }
    return inv;
}

} // namespace InvoiceOpening
