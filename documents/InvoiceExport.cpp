#include "InvoiceExport.h"

#include "AccountRegister.h"
#include "InvoiceProducer.h"
#include "InvoiceSheet.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QProgressDialog>
#include <QWidget>

InvoiceExport::InvoiceExport(OfficeService &office, TModuleSQL &module, QWidget *window)
    : QObject(window), m_office(office), m_module(module), m_window(window) {}

TFCustomPreview *InvoiceExport::preview() const {
    return m_preview;
}

TFCustomPreview *InvoiceExport::ensurePreview() {
    if (!m_preview) {
        m_preview = new TFCustomPreview(m_window);
        m_preview->setWindowFlag(Qt::Window);
        m_preview->resize(900, 760);
    }
    return m_preview;
}

bool InvoiceExport::run(Kind kind, const Invoice &invoice, const QString &folder) {
    if (m_busy)
        return false;
    QString why;
    if (!OfficeEngine::available(&why)) {
        dialogs().tell(Captions::warning, why, Dialogs::Icon::Warning);
        return false;
    }
    const QString dataFolder = m_module.dataFolder();
    const QString xlsName = InvoiceSheet::windowFileName(invoice.number, invoice.date);
    const QString base = QFileInfo(xlsName).completeBaseName();
    // Files the program shows or prints live in the engine's scratch folder, which goes with the engine.
    const QString scratch =
        QDir(dataFolder)
            .filePath(
                QStringLiteral("Temp/virn-office/work-%1/Счёт").arg(QCoreApplication::applicationPid()));
    QVector<TemplateFile::Output> outputs;
    if (kind == Kind::Print) {
        QDir().mkpath(scratch);
        outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".pdf")),
                                        QStringLiteral("pdf")};
    } else {
        const bool pdf = kind == Kind::Pdf;
        const QString suffix = pdf ? QStringLiteral("pdf") : QStringLiteral("xls");
        const QString path = dialogs().saveFile(
            pdf ? QStringLiteral("Экспорт в PDF") : QStringLiteral("Экспорт в Excel"), folder,
            base + u'.' + suffix,
            pdf ? QStringLiteral("Документ PDF (*.pdf)") : QStringLiteral("Таблица Excel (*.xls)"), suffix);
        if (path.isEmpty())
            return false;
        outputs << TemplateFile::Output{path, suffix};
        if (!pdf) {
            // The written sheet is shown in the preview, from a PDF of the same filling.
            QDir().mkpath(scratch);
            outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".pdf")),
                                            QStringLiteral("pdf")};
        }
    }

    m_busy = true;
    auto *progress =
        new QProgressDialog(QStringLiteral("Подготовка счёта «%1»…").arg(base), QString(), 0, 100, m_window);
    progress->setWindowTitle(QStringLiteral("Счет на оплату"));
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);
    QStringList paths;
    for (const TemplateFile::Output &o : outputs)
        paths << o.path;
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
            &QProgressDialog::setValue);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, progress, kind, invoice, paths]() {
                const OfficeService::Result r = watcher->result();
                watcher->deleteLater();
                progress->close();
                progress->deleteLater();
                m_busy = false;
                done(kind, invoice, paths, r.ok, r.error);
            });
    watcher->setFuture(m_office.run([dataFolder, invoice, outputs](OfficeEngine &engine, QString *error,
                                                                   const std::function<void(int)> &report) {
        return InvoiceSheet::produce(engine, dataFolder, invoice, outputs, error, report);
    }));
    return true;
}

void InvoiceExport::done(Kind kind, const Invoice &invoice, const QStringList &paths, bool ok,
                         const QString &error) {
    if (!ok) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        emit finished(false, QString());
        return;
    }
    const QString written = paths.value(0);
    if (kind != Kind::Print) {
        const QString iddoc = AccountRegister::estimateId(m_module.database(Db::Smeta));
        const QString problem = iddoc.isEmpty() ? QString()
                                                : InvoiceProducer::registerFile(m_module.database(Db::MyDoc),
                                                                                iddoc, invoice, written);
        if (!problem.isEmpty())
            dialogs().tell(Captions::warning, problem, Dialogs::Icon::Warning);
        emit status(QStringLiteral("Счёт сохранён: %1").arg(QDir::toNativeSeparators(written)));
    }
    if (kind == Kind::Pdf) {
        emit finished(true, written);
        return;
    }
    const QString pdf = kind == Kind::Print ? written : paths.value(1);
    TFCustomPreview *preview = ensurePreview();
    QString problem;
    if (!preview->showDocument(pdf, QFileInfo(pdf).completeBaseName(),
                               kind == Kind::Excel ? QStringList{written} : QStringList(), &problem)) {
        dialogs().tell(Captions::error, problem, Dialogs::Icon::Error);
        emit finished(false, QString());
        return;
    }
    preview->setSaveFolder(QFileInfo(written).absolutePath());
    if (kind == Kind::Print) {
        preview->spdPrintClick();
    } else {
        preview->show();
        preview->raise();
        preview->activateWindow();
    }
    emit finished(true, written);
}
