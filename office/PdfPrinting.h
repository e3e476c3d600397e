#pragma once
// Printing a PDF the engine wrote: every page is rendered at the printer's own resolution, in bands so
// that a 600 dpi page does not need a page-sized picture in memory, and fitted into the printable
// area with its proportions kept; each page is printed in its own orientation. Copies are made here,
// collated or not as the printer settings ask, so that they come out the same on every printer.

#include <QString>
#include <functional>

class QPdfDocument;
class QPrinter;

namespace PdfPrinting {

struct Job {
    int copies = 1;
    bool collate = true; // 1 2 3, 1 2 3 … rather than 1 1, 2 2, 3 3
    int fromPage = 1;    // pages from 1; 0 in both = all pages
    int toPage = 0;
};

// Called after each printed page with (done, total); returning false stops the job.
using Progress = std::function<bool(int done, int total)>;

// False with a Russian message when the printer cannot be started or the job was stopped.
bool print(QPdfDocument &document, QPrinter &printer, const Job &job, QString *error,
           const Progress &progress = {});

} // namespace PdfPrinting
