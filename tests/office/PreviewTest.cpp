// The preview window and printing, on PDFs drawn here (no engine needed).

#include "OfficeFiles.h"

#include "office/FCustomPreview_frame.h"
#include "office/PdfPrinting.h"

#include "ScriptedDialogs.h"
#include "TestFolder.h"

#include <QFile>
#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfWriter>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

// Page 1: A4 portrait with a black bar at the very top and one at the very bottom (so that a band
// rendered in the wrong place shows); page 2: A4 landscape.
void writeTwoPages(const QString &path) {
    QPdfWriter writer(path);
    writer.setResolution(72);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter p(&writer);
    const QRect r = writer.pageLayout().paintRectPixels(72);
    p.fillRect(QRect(0, 0, r.width(), 40), Qt::black);
    p.fillRect(QRect(0, r.height() - 40, r.width(), 40), Qt::black);
    p.fillRect(QRect(r.width() / 2, r.height() / 2, 60, 60), Qt::red);
    writer.setPageOrientation(QPageLayout::Landscape);
    writer.newPage();
    p.fillRect(QRect(0, 0, 100, 100), Qt::blue);
    p.end();
}

// Sizes of the pages of a PDF in points, "595x842" per page.
QStringList pageSizes(const QString &pdf) {
    QProcess p;
    p.start(QStringLiteral("pdfinfo"),
            {QStringLiteral("-f"), QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("100"), pdf});
    p.waitForFinished(30000);
    QStringList sizes;
    auto it = QRegularExpression(QStringLiteral("Page\\s+\\d+ size:\\s+([\\d.]+) x ([\\d.]+)"))
                  .globalMatch(QString::fromUtf8(p.readAllStandardOutput()));
    while (it.hasNext()) {
        const auto m = it.next();
        sizes << QStringLiteral("%1x%2")
                     .arg(qRound(m.captured(1).toDouble()))
                     .arg(qRound(m.captured(2).toDouble()));
    }
    return sizes;
}

// Mean difference of two same-sized pictures, 0..255.
double difference(const QImage &a, const QImage &b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32);
    const QImage y = b.convertToFormat(QImage::Format_RGB32).scaled(x.size());
    double sum = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            sum += (qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q))) / 3.0;
        }
    return sum / (x.width() * x.height());
}

class Preview : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        m_pdf = m_folder.file(QStringLiteral("Смета.pdf"));
        writeTwoPages(m_pdf);
    }
    void printTo(const QString &out, const PdfPrinting::Job &job, int dpi = 150) {
        QPdfDocument doc;
        ASSERT_EQ(doc.load(m_pdf), QPdfDocument::Error::None);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(out);
        printer.setResolution(dpi);
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setFullPage(true);
        printer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QString error;
        ASSERT_TRUE(PdfPrinting::print(doc, printer, job, &error)) << error.toStdString();
    }
    TestFolder m_folder;
    QString m_pdf;
};

TEST_F(Preview, PrintsCopiesInTheRightOrderAndOrientation) {
    struct Case {
        PdfPrinting::Job job;
        QStringList sizes;
    } cases[] = {
        {{2, true, 0, 0}, {"595x842", "842x595", "595x842", "842x595"}},
        {{2, false, 0, 0}, {"595x842", "595x842", "842x595", "842x595"}},
        {{3, true, 2, 2}, {"842x595", "842x595", "842x595"}},
        {{1, true, 0, 0}, {"595x842", "842x595"}},
    };
    int i = 0;
    for (const Case &c : cases) {
        const QString out = m_folder.file(QStringLiteral("printed-%1.pdf").arg(i++));
        printTo(out, c.job);
        EXPECT_EQ(pageSizes(out), c.sizes) << "case " << i;
    }
}

TEST_F(Preview, PrintedPageLooksLikeTheDocumentPage) {
    const QString out = m_folder.file(QStringLiteral("printed.pdf"));
    printTo(out, {1, true, 1, 1}, 300); // 3508 pixels high: several bands
    QPdfDocument original, printed;
    ASSERT_EQ(original.load(m_pdf), QPdfDocument::Error::None);
    ASSERT_EQ(printed.load(out), QPdfDocument::Error::None);
    const QSize size(298, 421);
    const QImage a = original.render(0, size);
    const QImage b = printed.render(0, size);
    QImage flatA(size, QImage::Format_RGB32), flatB(size, QImage::Format_RGB32);
    flatA.fill(Qt::white);
    flatB.fill(Qt::white);
    QPainter(&flatA).drawImage(0, 0, a);
    QPainter(&flatB).drawImage(0, 0, b);
    EXPECT_LT(difference(flatA, flatB), 4.0);
    // The bottom bar is there (the last band was drawn where it belongs).
    EXPECT_LT(qGray(flatB.pixel(size.width() / 2, size.height() - 5)), 60);
}

TEST_F(Preview, NavigatesZoomsAndSavesAs) {
    ScriptedDialogsGuard dialogs;
    TFCustomPreview preview;
    const QString xls = m_folder.file(QStringLiteral("Смета.xls"));
    {
        QFile f(xls);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("filled sheet");
    }
    QString error;
    ASSERT_TRUE(preview.showDocument(m_pdf, QStringLiteral("Смета"), {xls}, &error)) << error.toStdString();
    preview.resize(800, 900);
    preview.show();
    EXPECT_EQ(preview.pageCount(), 2);
    EXPECT_EQ(preview.currentPage(), 1);
    preview.spdNextClick();
    EXPECT_EQ(preview.currentPage(), 2);
    preview.spdNextClick();
    EXPECT_EQ(preview.currentPage(), 2) << "no page after the last";
    preview.spdFirstClick();
    EXPECT_EQ(preview.currentPage(), 1);
    preview.spdLastClick();
    EXPECT_EQ(preview.currentPage(), 2);
    preview.goToPage(7);
    EXPECT_EQ(preview.currentPage(), 2);

    const qreal before = preview.zoomFactor();
    preview.spdZoomInClick();
    EXPECT_NEAR(preview.zoomFactor(), before * 1.25, 1e-6);
    preview.spdZoomOutClick();
    preview.spdZoomOutClick();
    EXPECT_NEAR(preview.zoomFactor(), before / 1.25, 1e-6);

    struct Case {
        const char *name;
        QString source; // empty: nothing may be written
    } cases[] = {{"копия.pdf", m_pdf}, {"копия.xls", xls}, {"копия.doc", {}}};
    for (const Case &c : cases) {
        const QString target = m_folder.file(QString::fromUtf8(c.name));
        dialogs->queueFile(target);
        preview.spdSaveClick();
        if (c.source.isEmpty()) {
            EXPECT_FALSE(QFile::exists(target));
            EXPECT_TRUE(dialogs->lastText().contains(QStringLiteral("pdf, xls")));
            continue;
        }
        QFile a(c.source), b(target);
        ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly)) << c.name;
        EXPECT_EQ(a.readAll(), b.readAll()) << c.name;
    }
}

TEST_F(Preview, RefusesAFileThatIsNotAPdf) {
    TFCustomPreview preview;
    QString error;
    EXPECT_FALSE(
        preview.showDocument(m_folder.file(QStringLiteral("нет.pdf")), QStringLiteral("x"), {}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("нет.pdf")));
    EXPECT_EQ(preview.pageCount(), 0);
}

} // namespace
