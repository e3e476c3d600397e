#pragma once
// The estimate of a document file rendered without a window (virn-smeta --export FILE.sim OUT.pdf).

#include "estimate/EstimatePrint.h"

#include <QString>

class OfficeEngine;

namespace EstimateExport {

// Reads the document the way the program opens one (checked, brought to today's layout) into a
// private working folder, and takes its estimate as the main window would show it. The document file
// and the data folder are not touched. False with a Russian message; *warning (may be null) gets what
// opening the document reported (content not as saved, cells cut, a journal beside it).
bool load(const QString &documentPath, EstimatePrint *print, QString *error, QString *warning = nullptr);

// Renders the document's estimate into outPath (".pdf" or ".xls", by its extension) with the template
// of its title from <dataFolder>/Sh (default templates are put there first when missing). engine: the
// engine to use; null starts one for this call. warning: the rows whose amounts were left out (cells to
// be fixed), empty when none.
bool exportFile(const QString &documentPath, const QString &outPath, const QString &dataFolder,
                QString *error, OfficeEngine *engine = nullptr, QString *warning = nullptr);

} // namespace EstimateExport
