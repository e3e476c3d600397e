#pragma once
// Making one document of the package, through the producer of its kind, in three steps for callers
// that work on two threads: prepare reads the estimate (the document's thread), render fills the
// template and writes the file (the thread that owns the office engine), record enters the written file
// in the register of documents (the document's thread again). A document that could not be written is
// never registered; one that was written but could not be registered keeps its file and says why.

#include "ActProducer.h"
#include "ContractProducer.h"
#include "InvoiceOpening.h"
#include "InvoiceProducer.h"
#include "PackageRequest.h"
#include "estimate/ViewTitles.h"

#include <QString>
#include <functional>

class EstimateDocument;
class MainSettings;
class OfficeEngine;
class SettingsStore;
class TModuleSQL;

// The settings the documents of a package are made with.
struct PackageSettings {
    ViewTitles titles;               // the sheet titles of the acts
    InvoiceOpening::Options invoice; // the invoice's options
    QString contractTemplate;        // Contract/Path, else the default template of Sh
    int advancePercent = 35;         // Param/SpinEditAvans
    static PackageSettings read(const MainSettings *settings, const SettingsStore *store,
                                const QString &dataFolder);
};

// One document of the package and what became of it.
struct PackageItem {
    PackageDoc doc = PackageDoc::Contract;
    bool made = false;            // the file was written
    bool skipped = false;         // the package was cancelled before this document
    QString path;                 // the file written
    QString error;                // why no file was written
    QString warning;              // the file was written, but not (fully) entered in the register: why
    bool documentChanged = false; // an act by volumes was kept in the working database

    // What prepare read for the producer of its kind.
    ContractProducer::Request contract;
    Invoice invoice;
    InvoiceProducer::Request invoiceRequest;
    QString iddoc; // the estimate's row in documents; empty when it is not entered there
    ActJob act;
};

namespace PackageJob {

// What keeps the package from starting: nothing ticked, no date, a number missing. Empty when none.
QString requestProblem(const PackageRequest &request);
// Makes the folder when missing and checks that files can be written into it. Empty, or a Russian
// message naming the folder.
QString checkFolder(const QString &folder);

// Document's thread. False with item->error (the document cannot be made, e.g. an act whose reporting
// period is wrong).
bool prepare(const EstimateDocument &document, const PackageRequest &request, const PackageSettings &settings,
             PackageItem *item);
// Engine's thread. False with item->error.
bool render(OfficeEngine &engine, const QString &dataFolder, PackageItem *item,
            const std::function<void(int)> &progress = {});
// Document's thread, after a successful render: the file's register row; a failure becomes item->warning.
void record(TModuleSQL &module, PackageItem *item);
// After the contract was made, before the acts: the act data of the document takes the contract's number
// and date, so that the package's acts name it ("Смета № 12, договор № 5"). The document changes when
// they differ; a failure becomes contract->warning.
void referActsToContract(TModuleSQL &module, PackageItem *contract);

} // namespace PackageJob
