#pragma once
// Printing a PDF the engine wrote on a printer that cannot take PDF (or into a file): every page is
// rendered at the printer's own resolution, in bands so that a 600 dpi page does not need a page-sized
// picture in memory, and fitted into the printable area with its proportions kept; each page is printed in
// its own orientation. Copies are made here, collated or not as the printer settings ask, so that they come
// out the same on every printer.

#include "office/PrintJob.h"

#include <QString>
#include <functional>

class QPdfDocument;
class QPrinter;

namespace PdfPrinting {

using Job = PrintJob;

// Called after each printed page with (done, total); returning false stops the job.
using Progress = std::function<bool(int done, int total)>;

// False with a Russian message when the printer cannot be started or the job was stopped.
bool print(QPdfDocument &document, QPrinter &printer, const Job &job, QString *error,
           const Progress &progress = {});

} // namespace PdfPrinting
