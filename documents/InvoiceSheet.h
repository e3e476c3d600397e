#pragma once
// The invoice as a sheet: "Шаблон Счет на оплату.xls" of the data folder's Sh filled from the invoice's
// named items (those kept in table Account), with the services beyond the third in the row list
// "услуги", the VAT line and the payment QR code beside the bank block.

#include "InvoiceData.h"
#include "InvoicePayment.h"
#include "office/SheetTemplate.h"
#include "office/TemplateFile.h"

#include <QDate>
#include <QString>

class OfficeEngine;

namespace InvoiceSheet {

inline const QString kTemplate = QStringLiteral("Шаблон Счет на оплату.xls");

// Names the template gives beside the stored items.
inline const QString kServices = QStringLiteral("услуги"); // rows of the 4th service on: [услуги.№], …
inline const QString kSubtotal = QStringLiteral("итого");       // the amount before an added VAT
inline const QString kVatLabel = QStringLiteral("ндс надпись"); // "В том числе НДС (20 %):", …
inline const QString kVatAmount = QStringLiteral("ндс сумма");  // the VAT, or "—" without VAT
inline const QString kCount = QStringLiteral("всего наименований"); // "Всего наименований 3, на сумму …"
inline const QString kQr = QStringLiteral("QR-код");
inline const QString kSupplier = QStringLiteral("поставщик"); // the seller, ", ИНН …", ", КПП …"

// The seller as the invoice's supplier line names it: its name (with the legal data when ticked) and
// its ИНН and КПП, each only when given and not in the name already.
QString supplierLine(const Invoice &invoice);

// "Счет на оплату №12-5 от 01.02.2025.xls": the invoice window's spreadsheet.
QString windowFileName(const QString &number, const QDate &date);
// "Счет на оплату № 12-5 от 01.02.2025" + "." + ext: the package's files.
QString packageFileName(const QString &number, const QDate &date, const QString &ext);

// The VAT line's caption: "В том числе НДС (20 %):", "НДС (20 %):" or "Без налога (НДС):".
QString vatLabel(const Invoice &invoice);

// Everything the template receives; qrImage is the picture file of the payment code (empty: none).
SheetData sheetData(const Invoice &invoice, const QString &qrImage);

// Fills the template of <dataFolder>/Sh and saves the outputs. The QR code goes in when the invoice asks
// for it and the seller's details allow one. A missing template gives "Отсутствует файл " + path.
bool produce(OfficeEngine &engine, const QString &dataFolder, const Invoice &invoice,
             const QVector<TemplateFile::Output> &outputs, QString *error,
             const SheetTemplate::Progress &progress = {});

// The payment details of the invoice for its QR code.
InvoicePayment::Payee payee(const Invoice &invoice);
InvoicePayment::Invoice payment(const Invoice &invoice);

} // namespace InvoiceSheet
