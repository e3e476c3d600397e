#pragma once
// TFCustomPreview: the page preview of a produced document (the PDF the engine wrote), with page
// navigation, zoom, printing with copies and "save as" (the PDF itself or a companion file of the same
// output, such as the filled ".xls").

#include "office/PdfPrinting.h"

#include <QStringList>
#include <QWidget>

class QAction;
class QComboBox;
class QLabel;
class QPdfDocument;
class QPdfView;
class QPrinter;
class QSpinBox;

class TFCustomPreview : public QWidget {
    Q_OBJECT
public:
    explicit TFCustomPreview(QWidget *parent = nullptr);
    ~TFCustomPreview() override;

    // Opens the PDF; companions are offered by "save as" beside it. False with a Russian message when
    // the file is not a readable PDF.
    bool showDocument(const QString &pdfPath, const QString &title, const QStringList &companions = {},
                      QString *error = nullptr);
    // Where "save as" starts.
    void setSaveFolder(const QString &folder) { m_saveFolder = folder; }
    // The number of copies the print dialog offers first.
    void setCopies(int copies) { m_copies = qMax(1, copies); }

    QPdfDocument *document() const { return m_document; }
    QString pdfPath() const { return m_pdfPath; }
    int pageCount() const;
    int currentPage() const; // from 1
    void goToPage(int page);
    qreal zoomFactor() const;

    void spdFirstClick();
    void spdPriorClick();
    void spdNextClick();
    void spdLastClick();
    void spdZoomInClick();
    void spdZoomOutClick();
    // The print dialog (printer, copies, pages), then the job with a progress window.
    void spdPrintClick();
    void spdSaveClick();

    // Prints the open document on a printer already set up (used by spdPrintClick and by the tests): a
    // print queue that takes PDF gets the file as it is, anything else (a file, another queue) the
    // pages rendered. *jobId (when given) receives the queue's job number, 0 for rendered pages.
    bool printOn(QPrinter &printer, const PdfPrinting::Job &job, QString *error,
                 const PdfPrinting::Progress &progress = {}, int *jobId = nullptr);

signals:
    void pageChanged(int page);

private:
    void ComboBoxZoomChange(int index);
    void updateState();

    QPdfDocument *m_document;
    QPdfView *m_view;
    QSpinBox *m_page;
    QLabel *m_pages;
    QComboBox *m_zoom;
    QAction *m_first, *m_prior, *m_next, *m_last;
    QString m_pdfPath;
    QString m_title;
    QStringList m_companions;
    QString m_saveFolder;
    int m_copies = 1;
};
