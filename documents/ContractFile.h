#pragma once
// The contract's files through the office engine. A contract is made by filling the template into a
// word-processor file (the engine's own result, kept as it is); the window shows that file's body as
// rich text. What the user changed in the window goes back into the same file: the engine loads it and
// replaces only the body by the edited text, so the template's page setup, headers and footers stay;
// a contract the user did not change is written exactly as the engine filled it.
//
// Every function runs on the engine's thread (it is given the engine).

#include "office/OfficeEngine.h"
#include "office/TemplateFile.h"
#include "office/WordTemplate.h"

#include <QString>
#include <QVector>

namespace ContractFile {

using Outputs = QVector<TemplateFile::Output>;

// Fills the template (".docx", ".rtf", ".txt", ".odt") and saves the outputs (".docx", ".rtf",
// ".pdf", ".odt"). False with a Russian message; nothing is written then. *notLoaded (when given)
// tells that the template itself could not be loaded (missing, damaged, refused, not a text).
bool fill(OfficeEngine &engine, const QString &templatePath, const WordTemplate::Replacements &replacements,
          const Outputs &outputs, QString *error, bool *notLoaded = nullptr);

// The body of a document as HTML for the editor (headers, footers and page setup are not part of it).
// A file that cannot be loaded gives false with a Russian message and *notLoaded set.
bool readBody(OfficeEngine &engine, const QString &path, QString *html, QString *error,
              bool *notLoaded = nullptr);

// What the user changed in the window.
struct Edits {
    bool body = false; // the text was edited: html replaces the body
    QString html;
    bool page = false; // the page options were changed
    OfficeEngine::Page pageSetup;
    bool any() const { return body || page; }
};

// The document at base with the edits, saved into the outputs. Without edits an output of base's own
// format is a copy of base, byte for byte.
bool write(OfficeEngine &engine, const QString &base, const Edits &edits, const Outputs &outputs,
           QString *error);

// The page setup a ".docx" file states for its body (hundredths of a millimetre; margins as the page
// style holds them: the top one is the header's distance when the page has a header). A file that is
// not a ".docx" or states none gives A4 portrait with zero margins and ok false.
struct PageInfo {
    bool ok = false;
    OfficeEngine::Page page{21000, 29700, false, 0, 0, 0, 0};
};
PageInfo pageOf(const QString &docxPath);

} // namespace ContractFile
