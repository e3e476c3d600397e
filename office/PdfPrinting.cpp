#include "PdfPrinting.h"

#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfDocumentRenderOptions>
#include <QPrinter>
#include <QVector>

namespace PdfPrinting {

namespace {

constexpr int kBandPixels = 1024; // height of one rendered band

QPageLayout::Orientation orientationOf(const QSizeF &points) {
    return points.width() > points.height() ? QPageLayout::Landscape : QPageLayout::Portrait;
}

// Draws one page into the printable area of the printer, centred and scaled to fit.
void drawPage(QPdfDocument &document, int page, QPrinter &printer, QPainter &painter) {
    const QSizeF points = document.pagePointSize(page);
    const QRect area = printer.pageLayout().paintRectPixels(printer.resolution());
    const QRect target(0, 0, area.width(), area.height());
    // Pixels of the page at the printer's resolution, shrunk if the paper is smaller than the page.
    const double dpi = printer.resolution();
    QSizeF pixels(points.width() * dpi / 72.0, points.height() * dpi / 72.0);
    if (pixels.width() > target.width() || pixels.height() > target.height())
        pixels.scale(target.size(), Qt::KeepAspectRatio);
    const QSize size = pixels.toSize();
    const QPoint origin((target.width() - size.width()) / 2, (target.height() - size.height()) / 2);
    for (int top = 0; top < size.height(); top += kBandPixels) {
        const int height = qMin(kBandPixels, size.height() - top);
        QPdfDocumentRenderOptions options;
        options.setScaledSize(size);
        options.setScaledClipRect(QRect(0, top, size.width(), height));
        QImage band = document.render(page, QSize(size.width(), height), options);
        if (band.isNull())
            continue;
        // The page is white paper: the rendered transparency must not print as black.
        if (band.hasAlphaChannel()) {
            QImage opaque(band.size(), QImage::Format_RGB32);
            opaque.fill(Qt::white);
            QPainter p(&opaque);
            p.drawImage(0, 0, band);
            p.end();
            band = opaque;
        }
        painter.drawImage(origin + QPoint(0, top), band);
    }
}

} // namespace

bool print(QPdfDocument &document, QPrinter &printer, const Job &job, QString *error,
           const Progress &progress) {
    const int count = document.pageCount();
    if (count <= 0) {
        *error = QStringLiteral("Нет страниц для печати.");
        return false;
    }
    int from = job.fromPage > 0 ? job.fromPage : 1;
    int to = job.toPage > 0 ? qMin(job.toPage, count) : count;
    if (from > to) {
        *error = QStringLiteral("Страницы для печати выбраны неверно.");
        return false;
    }
    QVector<int> order; // pages from 0, in printing order
    const int copies = qMax(1, job.copies);
    if (job.collate) {
        for (int c = 0; c < copies; ++c)
            for (int p = from; p <= to; ++p)
                order << p - 1;
    } else {
        for (int p = from; p <= to; ++p)
            for (int c = 0; c < copies; ++c)
                order << p - 1;
    }
    printer.setCopyCount(1); // the copies are in the order above
    printer.setPageOrientation(orientationOf(document.pagePointSize(order.first())));
    QPainter painter;
    if (!painter.begin(&printer)) {
        *error = QStringLiteral("Не удалось начать печать на принтере «%1».").arg(printer.printerName());
        return false;
    }
    for (int i = 0; i < order.size(); ++i) {
        if (i > 0) {
            printer.setPageOrientation(orientationOf(document.pagePointSize(order.at(i))));
            printer.newPage();
        }
        drawPage(document, order.at(i), printer, painter);
        if (progress && !progress(i + 1, order.size())) {
            printer.abort();
            painter.end();
            *error = QStringLiteral("Печать остановлена.");
            return false;
        }
    }
    painter.end();
    return true;
}

} // namespace PdfPrinting
