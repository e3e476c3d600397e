#include "InvoiceSheet.h"

#include "customers/CustomerFolder.h"
#include "estimate/EstimateOutput.h"
#include "office/OfficeTemplates.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QTemporaryDir>

namespace InvoiceSheet {

namespace {

// Items printed as amounts (number cells of the sheet).
bool isMoneyItem(const QString &name) {
    static const QStringList names{QStringLiteral("edSumma"), QStringLiteral("edSumma1"),
                                   QStringLiteral("edSumma2"), QStringLiteral("edSumma3"),
                                   QStringLiteral("nds")};
    return names.contains(name);
}

QString fileDate(const QDate &date) {
    return TextValues::shortDate(date);
}

} // namespace

QString windowFileName(const QString &number, const QDate &date) {
    return CustomerFolder::cleanPart(
               QStringLiteral("Счет на оплату №%1 от %2").arg(number.trimmed(), fileDate(date))) +
           QStringLiteral(".xls");
}

QString packageFileName(const QString &number, const QDate &date, const QString &ext) {
    return CustomerFolder::cleanPart(
               QStringLiteral("Счет на оплату № %1 от %2").arg(number.trimmed(), fileDate(date))) +
           u'.' + ext;
}

QString vatLabel(const Invoice &invoice) {
    const InvoiceForm &f = invoice.form;
    if (!f.vatOn())
        return QStringLiteral("Без налога (НДС):");
    return (f.vatChoice() == InvoiceForm::VatChoice::Added ? QStringLiteral("НДС (%1 %):")
                                                           : QStringLiteral("В том числе НДС (%1 %):"))
        .arg(f.vatRate());
}

QString supplierLine(const Invoice &invoice) {
    QString line = invoice.seller.shown();
    for (const auto &[key, label] : {std::pair{"inn", "ИНН"}, std::pair{"kpp", "КПП"}}) {
        const QString value = invoice.sellerDetails.value(QLatin1String(key)).trimmed();
        const QString piece = QString::fromUtf8(label) + u' ' + value;
        if (!value.isEmpty() && !line.contains(piece))
            line += QStringLiteral(", ") + piece;
    }
    return line;
}

InvoicePayment::Payee payee(const Invoice &invoice) {
    const Fields &d = invoice.sellerDetails;
    return {invoice.seller.name,
            d.value(QStringLiteral("account")),
            d.value(QStringLiteral("bank")),
            d.value(QStringLiteral("bik")),
            d.value(QStringLiteral("koraccount")),
            d.value(QStringLiteral("inn")),
            d.value(QStringLiteral("kpp"))};
}

InvoicePayment::Invoice payment(const Invoice &invoice) {
    const InvoiceForm &f = invoice.form;
    return {invoice.number,
            TextValues::shortDate(invoice.date),
            f.amount().valueOr(Money()),
            invoice.currency,
            f.vatOn(),
            f.vatRate(),
            f.vat()};
}

SheetData sheetData(const Invoice &invoice, const QString &qrImage) {
    SheetData d;
    for (const AccountTable::Item &item : invoice.items()) {
        const MoneyResult m = Money::parse(item.value);
        d.values.insert(item.name, isMoneyItem(item.name) && m.ok() ? SheetValue::ofMoney(*m)
                                                                    : SheetValue::ofText(item.value));
    }
    const InvoiceForm &f = invoice.form;
    d.values.insert(kSubtotal, SheetValue::ofMoney(f.net()));
    d.values.insert(kVatLabel, SheetValue::ofText(vatLabel(invoice)));
    d.values.insert(kSupplier, SheetValue::ofText(supplierLine(invoice)));
    d.values.insert(kVatAmount,
                    f.vatOn() ? SheetValue::ofMoney(f.vat()) : SheetValue::ofText(QStringLiteral("—")));
    const QVector<InvoiceService> &services = f.services();
    d.values.insert(kCount, SheetValue::ofText(QStringLiteral("Всего наименований %1, на сумму %2 %3")
                                                   .arg(services.size())
                                                   .arg(f.amount().grouped(),
                                                        EstimateOutput::currencySign(invoice.currency))));
    // The first three services are named items; the rest go into the row list.
    SheetList rest;
    rest.kinds = {kServices};
    for (int i = 3; i < services.size(); ++i) {
        SheetRow row;
        row.kind = kServices;
        row.cells.insert(QStringLiteral("№"), SheetValue::ofNumber(i + 1, QString::number(i + 1)));
        row.cells.insert(QStringLiteral("наименование"), SheetValue::ofText(services.at(i).name));
        const MoneyResult price = InvoiceForm::priceOf(services.at(i).price);
        row.cells.insert(QStringLiteral("цена"),
                         price.ok() ? SheetValue::ofMoney(*price) : SheetValue::ofText(QString()));
        rest.rows.append(row);
    }
    d.lists.append(rest);
    d.dropRowsWithout = {QStringLiteral("ComboBoxNameWork"), QStringLiteral("EditNameWork2"),
                         QStringLiteral("EditNameWork3")};
    d.images.insert(kQr, qrImage);
    return d;
}

bool produce(OfficeEngine &engine, const QString &dataFolder, const Invoice &invoice,
             const QVector<TemplateFile::Output> &outputs, QString *error,
             const SheetTemplate::Progress &progress) {
    const QString templatePath = OfficeTemplates::path(dataFolder, kTemplate);
    *error = TemplateFile::check(templatePath);
    if (!error->isEmpty())
        return false;
    QString qrFile;
    QTemporaryDir scratch(QDir(dataFolder).filePath(QStringLiteral("Temp/invoice-XXXXXX")));
    if (invoice.qr) {
        const QString text = InvoicePayment::paymentString(payee(invoice), payment(invoice));
        const QImage image = text.isEmpty() ? QImage() : InvoicePayment::qrImage(text);
        if (!image.isNull() && scratch.isValid()) {
            qrFile = scratch.filePath(QStringLiteral("qr.png"));
            if (!image.save(qrFile, "PNG"))
                qrFile.clear();
        }
    }
    return SheetTemplate::fill(engine, templatePath, sheetData(invoice, qrFile), outputs, error, progress);
}

} // namespace InvoiceSheet
