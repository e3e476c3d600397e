#pragma once
// Making an act of completed work without a window, for the main window's act commands and for the
// document package: the act of the chosen kind (КС-2, КС-3, the plain act) is made from the open
// estimate as its view shows it, with the act data of the document (ks2) and, when acts are made by
// volumes, only the volumes of this act; the file "Акт КС-2 № 5 от 01.02.2025.xls" (or ".pdf") is
// written into the folder, entered in the register (table act), the customer/object act counter
// NumDoc.Act advances, and an act by volumes is kept in the document.
//
// Three steps, for callers that work on several threads: prepare reads the document (its thread);
// render fills the template with an office engine (any thread that owns the engine); record writes
// the databases (the thread of the data module given). produce runs all three on the calling thread.
// Before prepare the caller writes the document's grids into the working database
// (EstimateDocument::writeWorkingDatabase), so that rows typed since have their work ids: an act by
// volumes refuses an estimate with rows it cannot tell apart.

#include "ActKind.h"
#include "ActVolumes.h"
#include "estimate/ViewTitles.h"
#include "office/SheetTemplate.h"

#include <QDate>
#include <QMap>
#include <QString>

class EstimateDocument;
class OfficeEngine;
class TModuleSQL;

struct ActRequest {
    ActKind kind = ActKind::Ks2;
    QString number; // as the user typed it
    QDate date;     // the act's date
    QDate endDate;  // КС-2, КС-3: the expected end of the work (the register's dataend)
    QString folder; // where the file goes (made when missing)
    QString format = QStringLiteral("xls"); // "xls" or "pdf"
    // Act data that stands in for what the document keeps: a package names its own contract before
    // that contract is made and written into the act data.
    QMap<QString, QString> actValues;
};

// Everything the act needs after prepare: the filled sheet's data and what record writes.
struct ActJob {
    ActRequest request;
    QString path;         // the file to write
    QString templatePath; // in the data folder's Sh
    SheetData data;
    QString allsum; // the act's total, "0,00"
    QString customer, object;
    bool byVolumes = false;
    ActVolumes::Act act; // by volumes: the act to keep in the document
};

struct ActResult {
    bool ok = false;
    QString path;    // the file written
    QString error;   // why no file was written
    QString warning; // the file is written, but something beside it failed (the register, the counter)
    // The act's volumes were kept in the working database: the document changed and should be saved.
    bool documentChanged = false;
    explicit operator bool() const { return ok; }
};

namespace ActProducer {

// Reads the document: the act data (a document without it gets the defaults), the estimate as the act's
// view shows it, the acts by volumes. False with a Russian message (no number, a reporting period that
// starts after it ends, volumes that cannot be taken, an estimate whose totals are refused).
bool prepare(const EstimateDocument &document, const ViewTitles &titles, const ActRequest &request,
             ActJob *job, QString *error);

// Fills the template and writes the file (a missing template: "Отсутствует файл " + path).
bool render(OfficeEngine &engine, const ActJob &job, QString *error,
            const SheetTemplate::Progress &progress = {});

// After the file was written: keeps an act by volumes in the working database, enters the file in the
// register under the estimate's row, and advances the act counter of the customer and object. The
// file stays whatever fails here; the result's warning says what.
ActResult record(TModuleSQL &module, const ActJob &job);

// The three steps on the calling thread.
ActResult produce(const EstimateDocument &document, const ViewTitles &titles, const ActRequest &request,
                  OfficeEngine &engine, const SheetTemplate::Progress &progress = {});

} // namespace ActProducer
