// The subsystems that plug into the main window, in the order they attach: a part may use the parts
// attached before it (the price base adds its options to the editor's pop-up menu). A new subsystem
// adds its line here.

#include "TForm1.h"

#include "calculators/CalculatorsPart.h"
#include "cashbook/CashbookPart.h"
#include "customers/CustomersPart.h"
#include "documents/ActsPart.h"
#include "documents/ContractPart.h"
#include "documents/InvoicePart.h"
#include "documents/PackagePart.h"
#include "documents/RegisterPart.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EditorPart.h"
#include "estimate/HeaderPart.h"
#include "estimate/OutputPart.h"
#include "materials/MaterialsPart.h"
#include "materials/WarehousePart.h"
#include "pricebase/PricePart.h"
#include "pricebase/ResourcesPart.h"
#include "server/ServerFilesPart.h"
#include "server/ServerPart.h"

std::vector<ShellPart *> makeShellParts(QObject *owner) {
    return {
        new DocumentFilePart(owner), // file menu, drafts, recent documents, autosave
        new EditorPart(owner),       // the estimate's pages and editing commands
        new PricePart(owner),        // the rate panel, live search, insertion
        new ResourcesPart(owner),    // rate resources, copying lists, the note to the lists
        new CustomersPart(owner),    // customers, objects, contractor
        new CashbookPart(owner),     // the cash book (its book opened before the header reads customers)
        new HeaderPart(owner),       // the estimate's header
        new OutputPart(owner),       // preview, print, PDF and spreadsheet of the estimate
        new ServerPart(owner),       // the file server: settings, updates, news
        new CalculatorsPart(owner),  // mix calculator, figure-area plug-in
        new ActsPart(owner),         // the act data, acts КС-2, КС-3 and the plain act
        new InvoicePart(owner),      // the payment invoice
        new MaterialsPart(owner),    // materials lists: picking, attaching to rates, spreadsheets
        new WarehousePart(owner),    // the warehouse, taking from it, the report of sold materials
        new ContractPart(owner),     // the contract made from the estimate
        new ServerFilesPart(owner),  // the user's files on the server, the upload after save
        new PackagePart(owner),      // contract, invoice and acts in one go
        new RegisterPart(owner),     // the register of documents "Мои документы"
    };
}
