#pragma once
// The invoice without a window, as the document package makes it: the invoice drawn up for the
// estimate (InvoiceOpening) with the package's number and date, written into the package folder as
// "Счет на оплату № <number> от <date>.xls" or ".pdf" and entered in the register (table account of
// mydoc.db) under the estimate's row. Producing it again in the same format overwrites the file and
// updates the row.

#include "InvoiceData.h"
#include "InvoiceOpening.h"
#include "office/SheetTemplate.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

class EstimateDocument;
class OfficeEngine;

namespace InvoiceProducer {

enum class Format { Xls, Pdf };
QString extension(Format format); // "xls", "pdf"

struct Request {
    QString number;
    QDate date;
    QString folder;
    Format format = Format::Xls;
    QString iddoc; // the estimate's row in documents; empty: the file is written but not registered
};

struct Outcome {
    QString path;  // the file written (also when only its registration failed)
    QString error; // Russian; empty on success
    bool ok() const { return error.isEmpty(); }
};

// Enters a written invoice file in the register under the estimate's row iddoc (its kind from the
// file's extension). Empty, or the Russian reason it could not be entered.
QString registerFile(QSqlDatabase mydoc, const QString &iddoc, const Invoice &invoice, const QString &path);

// Any thread: the invoice (made on the document's thread) with the request's number and date, the
// engine and the register connection of the calling thread.
Outcome produce(const Invoice &invoice, const Request &request, OfficeEngine &engine,
                const QString &dataFolder, QSqlDatabase mydoc, const SheetTemplate::Progress &progress = {});

// On the document's thread: draws the invoice up for the document and produces it. An empty
// request.iddoc is taken from the document's link to the register.
Outcome produce(const EstimateDocument &document, const InvoiceOpening::Options &options, Request request,
                OfficeEngine &engine, const SheetTemplate::Progress &progress = {});

} // namespace InvoiceProducer
