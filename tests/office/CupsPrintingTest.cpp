// Printing a produced PDF through a print queue of a scheduler started for the test: the queue receives
// the file as it is, with copies, collation and page range as job options; the preview sends to such a
// queue without rendering pages, and renders only into a file.

#include "CupsServer.h"

#include "office/CupsPrinting.h"
#include "office/FCustomPreview_frame.h"

#include "TestFolder.h"

#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <gtest/gtest.h>

namespace {

QByteArray threePages(const QString &path) {
    QPdfWriter writer(path);
    writer.setPageSize(QPageSize(QPageSize::A4));
    QPainter p(&writer);
    for (int i = 1; i <= 3; ++i) {
        p.drawText(100, 100, QStringLiteral("Страница %1").arg(i));
        if (i < 3)
            writer.newPage();
    }
    p.end();
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class CupsPrintingTest : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        ASSERT_TRUE(m_cups.error().isEmpty()) << m_cups.error().toStdString();
        m_pdf = m_folder.file(QStringLiteral("Смета.pdf"));
        m_bytes = threePages(m_pdf);
        ASSERT_FALSE(m_bytes.isEmpty());
    }
    CupsServer m_cups;
    TestFolder m_folder;
    QString m_pdf;
    QByteArray m_bytes;
};

TEST_F(CupsPrintingTest, TheQueueGetsThePdfAsItIsWithCopiesAndPages) {
    const QString queue = QString::fromLatin1(CupsServer::kQueue);
    EXPECT_TRUE(CupsPrinting::takesPdf(queue));
    struct Case {
        PrintJob job;
        int copies;
        const char *pages;
    } cases[] = {
        {{1, true, 0, 0}, 1, ""},
        {{3, true, 2, 3}, 3, "2-3"},
        {{2, false, 2, 2}, 2, "2-2"},
        {{1, true, 2, 0}, 1, "2-2"},
    };
    for (const Case &c : cases) {
        QString error;
        const int id = CupsPrinting::print(queue, m_pdf, QStringLiteral("Смета № 7"), c.job, &error);
        ASSERT_GT(id, 0) << error.toStdString();
        const CupsServer::JobSeen seen = m_cups.job(id);
        EXPECT_EQ(seen.copies, c.copies) << c.pages;
        EXPECT_EQ(seen.pageRanges, QString::fromLatin1(c.pages));
        EXPECT_EQ(seen.format, QStringLiteral("application/pdf"));
        EXPECT_TRUE(seen.data == m_bytes) << "the file as it is, " << seen.data.size() << " bytes";
    }
}

TEST_F(CupsPrintingTest, AnUnknownQueueIsToldInRussianWithTheSystemsText) {
    const QString queue = QStringLiteral("НетТакого");
    EXPECT_FALSE(CupsPrinting::takesPdf(queue));
    QString error;
    EXPECT_EQ(CupsPrinting::print(queue, m_pdf, QStringLiteral("Смета"), {}, &error), 0);
    EXPECT_TRUE(error.startsWith(QStringLiteral("Документ не отправлен на «НетТакого»: ")))
        << error.toStdString();
    EXPECT_TRUE(error.contains(u'(')) << "the print system's own text follows: " << error.toStdString();

    EXPECT_EQ(CupsPrinting::print(QString::fromLatin1(CupsServer::kQueue),
                                  m_folder.file(QStringLiteral("нет.pdf")), QStringLiteral("Смета"), {},
                                  &error),
              0);
    EXPECT_TRUE(error.contains(QStringLiteral("не открыт"))) << error.toStdString();
}

TEST_F(CupsPrintingTest, ThePreviewSendsThePdfToAQueueAndRendersIntoAFile) {
    TFCustomPreview preview;
    QString error;
    ASSERT_TRUE(preview.showDocument(m_pdf, QStringLiteral("Смета"), {}, &error)) << error.toStdString();

    QPrinter printer;
    printer.setPrinterName(QString::fromLatin1(CupsServer::kQueue));
    ASSERT_EQ(printer.outputFormat(), QPrinter::NativeFormat);
    int id = 0;
    ASSERT_TRUE(preview.printOn(printer, {2, true, 1, 2}, &error, {}, &id)) << error.toStdString();
    ASSERT_GT(id, 0) << "sent to the queue, not rendered";
    const CupsServer::JobSeen seen = m_cups.job(id);
    EXPECT_TRUE(seen.data == m_bytes);
    EXPECT_EQ(seen.copies, 2);
    EXPECT_EQ(seen.pageRanges, QStringLiteral("1-2"));

    QPrinter file(QPrinter::HighResolution);
    file.setOutputFormat(QPrinter::PdfFormat);
    const QString out = m_folder.file(QStringLiteral("в файл.pdf"));
    file.setOutputFileName(out);
    ASSERT_TRUE(preview.printOn(file, {1, true, 0, 0}, &error, {}, &id)) << error.toStdString();
    EXPECT_EQ(id, 0);
    EXPECT_TRUE(QFile::exists(out));
}

} // namespace
