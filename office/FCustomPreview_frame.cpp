#include "FCustomPreview_frame.h"

#include "office/CupsPrinting.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

struct ZoomChoice {
    const char *text;
    QPdfView::ZoomMode mode;
    qreal factor;
};

const ZoomChoice kZoom[] = {
    {"По ширине", QPdfView::ZoomMode::FitToWidth, 0}, {"Страница целиком", QPdfView::ZoomMode::FitInView, 0},
    {"50 %", QPdfView::ZoomMode::Custom, 0.5},        {"75 %", QPdfView::ZoomMode::Custom, 0.75},
    {"100 %", QPdfView::ZoomMode::Custom, 1.0},       {"150 %", QPdfView::ZoomMode::Custom, 1.5},
    {"200 %", QPdfView::ZoomMode::Custom, 2.0},
};

constexpr qreal kZoomStep = 1.25;
constexpr qreal kZoomMin = 0.1;
constexpr qreal kZoomMax = 8.0;

QString filterFor(const QString &suffix) {
    const QString s = suffix.toLower();
    if (s == QLatin1String("pdf"))
        return QStringLiteral("Документ PDF (*.pdf)");
    if (s == QLatin1String("xls") || s == QLatin1String("xlsx"))
        return QStringLiteral("Таблица Excel (*.%1)").arg(s);
    if (s == QLatin1String("docx") || s == QLatin1String("rtf"))
        return QStringLiteral("Документ Word (*.%1)").arg(s);
    return QStringLiteral("Файл (*.%1)").arg(s);
}

} // namespace

TFCustomPreview::TFCustomPreview(QWidget *parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("FCustomPreview"));
    setWindowTitle(QStringLiteral("Предварительный просмотр"));
    resize(900, 1000);
    m_document = new QPdfDocument(this);
    m_view = new QPdfView(this);
    m_view->setObjectName(QStringLiteral("PdfView"));
    m_view->setDocument(m_document);
    m_view->setPageMode(QPdfView::PageMode::SinglePage);
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);

    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("ToolBarPreview"));
    auto add = [&](const char *name, const QString &text, QKeySequence key, void (TFCustomPreview::*slot)()) {
        QAction *a = bar->addAction(text);
        a->setObjectName(QLatin1String(name));
        if (!key.isEmpty())
            a->setShortcut(key);
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    add("spdPrint", QStringLiteral("Печать…"), QKeySequence::Print, &TFCustomPreview::spdPrintClick);
    add("spdSave", QStringLiteral("Сохранить как…"), QKeySequence::SaveAs, &TFCustomPreview::spdSaveClick);
    bar->addSeparator();
    m_first =
        add("spdFirst", QStringLiteral("|◀"), QKeySequence(Qt::Key_Home), &TFCustomPreview::spdFirstClick);
    m_prior =
        add("spdPrior", QStringLiteral("◀"), QKeySequence(Qt::Key_PageUp), &TFCustomPreview::spdPriorClick);
    m_page = new QSpinBox(this);
    m_page->setObjectName(QStringLiteral("SpinEditPage"));
    m_page->setMinimum(1);
    m_page->setKeyboardTracking(false);
    bar->addWidget(m_page);
    m_pages = new QLabel(this);
    m_pages->setObjectName(QStringLiteral("LabelPages"));
    bar->addWidget(m_pages);
    m_next =
        add("spdNext", QStringLiteral("▶"), QKeySequence(Qt::Key_PageDown), &TFCustomPreview::spdNextClick);
    m_last = add("spdLast", QStringLiteral("▶|"), QKeySequence(Qt::Key_End), &TFCustomPreview::spdLastClick);
    bar->addSeparator();
    add("spdZoomOut", QStringLiteral("−"), QKeySequence::ZoomOut, &TFCustomPreview::spdZoomOutClick);
    m_zoom = new QComboBox(this);
    m_zoom->setObjectName(QStringLiteral("ComboBoxZoom"));
    for (const ZoomChoice &z : kZoom)
        m_zoom->addItem(QString::fromUtf8(z.text));
    bar->addWidget(m_zoom);
    add("spdZoomIn", QStringLiteral("+"), QKeySequence::ZoomIn, &TFCustomPreview::spdZoomInClick);
    bar->addSeparator();
    QAction *closeAction = bar->addAction(QStringLiteral("Закрыть"));
    closeAction->setObjectName(QStringLiteral("spdClose"));
    connect(closeAction, &QAction::triggered, this, &QWidget::close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_view, 1);

    connect(m_page, &QSpinBox::valueChanged, this, [this](int page) {
        if (page != currentPage())
            goToPage(page);
    });
    connect(m_zoom, &QComboBox::currentIndexChanged, this, &TFCustomPreview::ComboBoxZoomChange);
    connect(m_view->pageNavigator(), &QPdfPageNavigator::currentPageChanged, this, [this](int) {
        updateState();
        emit pageChanged(currentPage());
    });
    updateState();
}

TFCustomPreview::~TFCustomPreview() = default;

bool TFCustomPreview::showDocument(const QString &pdfPath, const QString &title,
                                   const QStringList &companions, QString *error) {
    m_document->close();
    const QPdfDocument::Error status = m_document->load(pdfPath);
    if (status != QPdfDocument::Error::None || m_document->pageCount() <= 0) {
        if (error)
            *error = QStringLiteral("Не удаётся открыть для просмотра файл %1.")
                         .arg(QDir::toNativeSeparators(pdfPath));
        m_pdfPath.clear();
        updateState();
        return false;
    }
    m_pdfPath = pdfPath;
    m_title = title;
    m_companions = companions;
    setWindowTitle(QStringLiteral("Предварительный просмотр — %1").arg(title));
    m_view->pageNavigator()->jump(0, QPointF(), 0);
    updateState();
    return true;
}

int TFCustomPreview::pageCount() const {
    return m_pdfPath.isEmpty() ? 0 : m_document->pageCount();
}

int TFCustomPreview::currentPage() const {
    return pageCount() > 0 ? m_view->pageNavigator()->currentPage() + 1 : 0;
}

void TFCustomPreview::goToPage(int page) {
    if (pageCount() <= 0)
        return;
    page = qBound(1, page, pageCount());
    m_view->pageNavigator()->jump(page - 1, QPointF(), 0);
    m_view->verticalScrollBar()->setValue(0);
    updateState();
}

qreal TFCustomPreview::zoomFactor() const {
    if (m_view->zoomMode() == QPdfView::ZoomMode::Custom || pageCount() <= 0)
        return m_view->zoomFactor();
    // The view fits the page itself: the factor it uses follows from the page and viewport sizes.
    const QSizeF points = m_document->pagePointSize(qMax(0, currentPage() - 1));
    const qreal dpi = m_view->logicalDpiX() / 72.0;
    const QSize room = m_view->viewport()->size();
    const QMargins margins = m_view->documentMargins();
    const qreal byWidth = (room.width() - margins.left() - margins.right()) / (points.width() * dpi);
    if (m_view->zoomMode() == QPdfView::ZoomMode::FitToWidth)
        return byWidth;
    const qreal byHeight = (room.height() - margins.top() - margins.bottom()) / (points.height() * dpi);
    return qMin(byWidth, byHeight);
}

void TFCustomPreview::spdFirstClick() {
    goToPage(1);
}
void TFCustomPreview::spdPriorClick() {
    goToPage(currentPage() - 1);
}
void TFCustomPreview::spdNextClick() {
    goToPage(currentPage() + 1);
}
void TFCustomPreview::spdLastClick() {
    goToPage(pageCount());
}

void TFCustomPreview::spdZoomInClick() {
    const qreal factor = qMin(kZoomMax, zoomFactor() * kZoomStep);
    m_view->setZoomMode(QPdfView::ZoomMode::Custom);
    m_view->setZoomFactor(factor);
    updateState();
}

void TFCustomPreview::spdZoomOutClick() {
    const qreal factor = qMax(kZoomMin, zoomFactor() / kZoomStep);
    m_view->setZoomMode(QPdfView::ZoomMode::Custom);
    m_view->setZoomFactor(factor);
    updateState();
}

void TFCustomPreview::ComboBoxZoomChange(int index) {
    if (index < 0 || index >= int(std::size(kZoom)))
        return;
    m_view->setZoomMode(kZoom[index].mode);
    if (kZoom[index].mode == QPdfView::ZoomMode::Custom)
        m_view->setZoomFactor(kZoom[index].factor);
}

void TFCustomPreview::updateState() {
    const int count = pageCount();
    const int page = currentPage();
    m_page->blockSignals(true);
    m_page->setMaximum(qMax(1, count));
    m_page->setValue(qMax(1, page));
    m_page->blockSignals(false);
    m_page->setEnabled(count > 1);
    m_pages->setText(QStringLiteral(" из %1 ").arg(count));
    m_first->setEnabled(page > 1);
    m_prior->setEnabled(page > 1);
    m_next->setEnabled(page < count);
    m_last->setEnabled(page < count);
    if (m_view->zoomMode() == QPdfView::ZoomMode::Custom) {
        // The list shows a fixed step when the factor is one of them, else nothing.
        int match = -1;
        for (int i = 0; i < int(std::size(kZoom)); ++i)
            if (kZoom[i].mode == QPdfView::ZoomMode::Custom &&
                qAbs(kZoom[i].factor - m_view->zoomFactor()) < 0.001)
                match = i;
        m_zoom->blockSignals(true);
        m_zoom->setCurrentIndex(match);
        m_zoom->blockSignals(false);
    }
}

bool TFCustomPreview::printOn(QPrinter &printer, const PdfPrinting::Job &job, QString *error,
                              const PdfPrinting::Progress &progress, int *jobId) {
    if (jobId)
        *jobId = 0;
    if (pageCount() <= 0) {
        *error = QStringLiteral("Нет документа для печати.");
        return false;
    }
    if (printer.outputFormat() == QPrinter::NativeFormat && CupsPrinting::takesPdf(printer.printerName())) {
        const int id = CupsPrinting::print(printer.printerName(), m_pdfPath, m_title, job, error);
        if (jobId)
            *jobId = id;
        return id > 0;
    }
    return PdfPrinting::print(*m_document, printer, job, error, progress);
}

void TFCustomPreview::spdPrintClick() {
    if (pageCount() <= 0)
        return;
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(m_title);
    printer.setCopyCount(m_copies);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle(QStringLiteral("Печать"));
    dialog.setMinMax(1, pageCount());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange);
    if (dialog.exec() != QDialog::Accepted)
        return;
    PdfPrinting::Job job;
    job.copies = printer.copyCount();
    job.collate = printer.collateCopies();
    if (printer.printRange() == QPrinter::PageRange) {
        job.fromPage = printer.fromPage();
        job.toPage = printer.toPage();
    } else if (printer.printRange() == QPrinter::CurrentPage) {
        job.fromPage = job.toPage = currentPage();
    }
    QProgressDialog progress(QStringLiteral("Печать документа…"), QStringLiteral("Остановить"), 0, 100, this);
    progress.setWindowTitle(QStringLiteral("Печать"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    QString error;
    const bool ok = printOn(printer, job, &error, [&](int done, int total) {
        progress.setMaximum(total);
        progress.setValue(done);
        QApplication::processEvents();
        return !progress.wasCanceled();
    });
    progress.close();
    if (!ok)
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
}

void TFCustomPreview::spdSaveClick() {
    if (m_pdfPath.isEmpty())
        return;
    QStringList sources{m_pdfPath};
    sources << m_companions;
    QStringList filters;
    for (const QString &s : sources)
        filters << filterFor(QFileInfo(s).suffix());
    const QString folder = m_saveFolder.isEmpty() ? QDir::homePath() : m_saveFolder;
    const QString target =
        dialogs().saveFile(QStringLiteral("Сохранить как"), folder, m_title + QStringLiteral(".pdf"),
                           filters.join(QStringLiteral(";;")), QStringLiteral("pdf"));
    if (target.isEmpty())
        return;
    const QString suffix = QFileInfo(target).suffix().toLower();
    QString source;
    for (const QString &s : sources)
        if (QFileInfo(s).suffix().toLower() == suffix)
            source = s;
    if (source.isEmpty()) {
        QStringList kinds;
        for (const QString &s : sources)
            kinds << QFileInfo(s).suffix().toLower();
        dialogs().tell(Captions::warning,
                       QStringLiteral("Этот документ можно сохранить в форматах: %1.")
                           .arg(kinds.join(QStringLiteral(", "))),
                       Dialogs::Icon::Warning);
        return;
    }
    if (QFileInfo(target).absoluteFilePath() == QFileInfo(source).absoluteFilePath())
        return;
    QFile::remove(target);
    if (!QFile::copy(source, target)) {
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удаётся записать файл %1.").arg(QDir::toNativeSeparators(target)),
                       Dialogs::Icon::Error);
        return;
    }
    m_saveFolder = QFileInfo(target).absolutePath();
}
