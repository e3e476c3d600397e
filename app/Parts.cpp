// The subsystems that plug into the main window, in the order they attach: a part may use the parts
// attached before it (the price base adds its options to the editor's pop-up menu). A new subsystem
// adds its line here.

#include "TForm1.h"

#include "customers/CustomersPart.h"
#include "documents/RegisterPart.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EditorPart.h"
#include "estimate/HeaderPart.h"
#include "estimate/OutputPart.h"
#include "pricebase/PricePart.h"

std::vector<ShellPart *> makeShellParts(QObject *owner) {
    return {
        new DocumentFilePart(owner), // file menu, drafts, recent documents, autosave
        new EditorPart(owner),       // the estimate's pages and editing commands
        new PricePart(owner),        // the rate panel, live search, insertion
        new CustomersPart(owner),    // customers, objects, contractor
        new HeaderPart(owner),       // the estimate's header
        new OutputPart(owner),       // preview, print, PDF and spreadsheet of the estimate
        new RegisterPart(owner),     // the register of documents "Мои документы"
    };
}
