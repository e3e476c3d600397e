#pragma once
// Making a contract without a window, for the document package and the contract window alike: the
// template named in the settings is filled from the estimate, written into a folder as a
// word-processor file or a PDF, and entered in the register of documents.

#include "ContractFill.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

class EstimateDocument;
class OfficeEngine;
class SettingsStore;

namespace ContractProducer {

enum class Format { Docx, Rtf, Pdf };

// The settings of the contract: the template (section Contract, key Path; the default template of Sh
// when none is set) and the advance percentage (section Param, key SpinEditAvans, default 35).
inline const QString kDefaultTemplate = QStringLiteral("ДОГОВОР НА РЕМОНТ.docx");
QString templatePath(const SettingsStore *store, const QString &dataFolder);
void setTemplatePath(SettingsStore *store, const QString &path);
int advancePercent(const SettingsStore *store);
void setAdvancePercent(SettingsStore *store, int percent);

// What the open estimate gives a contract: date, currency, total, object, works, the contractor and the
// customer with their requisites, the advance and remainder at percent. Reads the registers: call it
// on the thread of the document's databases.
ContractFill::Data dataFrom(const EstimateDocument &document, int percent);

struct Request {
    ContractFill::Data data;
    QString templatePath;
    QString number; // the contract's number
    QDate date;     // the contract's date (names the file, goes into the register)
    QString folder; // where the file goes
    Format format = Format::Docx;
    QString iddoc; // the estimate's register row; empty: the file is not entered in the register
};

struct Result {
    bool ok = false;
    QString path;    // the file written
    QString error;   // why nothing was written
    QString warning; // written, but not entered in the register: why
};

// "Договор № 12 от 05.03.2025.docx" ("Договор от 05.03.2025.pdf" without a number); characters that a
// file name cannot hold are replaced.
QString fileName(const QString &number, const QDate &date, Format format);
// "doc" or "pdf": the kind the register keeps.
QString registerKind(Format format);

// Fills the template and writes the file into the folder (on the engine's thread).
Result write(OfficeEngine &engine, const Request &request);
// Enters a written file in the register; mydoc: a connection of the calling thread.
bool enter(QSqlDatabase mydoc, const Request &request, const QString &path, QString *error);
// write, then enter when the request names the estimate's row.
Result produce(OfficeEngine &engine, QSqlDatabase mydoc, const Request &request);

} // namespace ContractProducer
