#pragma once
// Printing a produced PDF through the system's print queues as it is: the file goes to the queue
// unchanged, with the copies, their collation and the page range as job options, so that a three-page
// estimate is a job of its own size and the printer (or the queue's filters) does the rest. A queue that
// does not list PDF among the formats it takes is left to the raster path of PdfPrinting.

#include "office/PrintJob.h"

#include <QString>

namespace CupsPrinting {

// The queue (as the print dialog names it) takes "application/pdf". False when the queue is unknown
// or the print system cannot be reached.
bool takesPdf(const QString &queue);

// Sends the PDF file to the queue under the title. The job's number (> 0), or 0 with a Russian message
// that keeps the print system's own text after it.
int print(const QString &queue, const QString &pdfPath, const QString &title, const PrintJob &job,
          QString *error);

} // namespace CupsPrinting
