#pragma once
// Checks of a template before the engine opens it, and the writing of the finished files: every
// output is saved beside its target under a temporary name (ending ".tmp") and only then renamed over the
// target, so a failure never leaves a half-written file or replaces the user's old one.

#include <QString>
#include <QStringList>
#include <QVector>

class OfficeEngine;

namespace TemplateFile {

// Templates larger than this are refused.
constexpr qint64 kMaxBytes = 50ll * 1024 * 1024;

// Empty when the file can be opened as a template; else the Russian message naming it: the file is
// missing ("Отсутствует файл " + path) or is not a file (a folder, a pipe), larger than 50 MB, not a
// word-processor, spreadsheet or text file (judged by its extension and its first bytes), or unsafe for
// the engine (a zip package past its limits, TemplatePackage; an old Office file whose structure does
// not hold together or RTF nested without end, TemplateStructure).
QString check(const QString &path);

// Checks the template and loads it into the engine, which must see it as `type` ("spreadsheet" or
// "text"). False with a Russian message naming the file (also when the engine did not load it within
// its time and was stopped); the engine then holds no document.
bool open(OfficeEngine &engine, const QString &path, const QString &type, QString *error);

// Engine format for an output file name by its extension ("xls", "pdf", "docx", …); empty when the
// extension is not one the engine writes.
QString formatFor(const QString &path);

struct Output {
    QString path;
    QString format; // empty: taken from the extension
};

// Saves the document open in the engine into every output. False with a Russian message on the first
// failure (outputs written before it stay). madePdf: a PDF the engine already made of the document as
// it is; the PDF outputs are copies of it.
bool save(OfficeEngine &engine, const QVector<Output> &outputs, QString *error, const QString &madePdf = {});

// Ends a filling: refuses when placeholders with data are still `left`, else saves every output.
// The engine's document is closed either way. False with a Russian message naming the template.
bool finish(OfficeEngine &engine, const QString &templatePath, const QStringList &left,
            const QVector<Output> &outputs, QString *error, const QString &madePdf = {});

} // namespace TemplateFile
