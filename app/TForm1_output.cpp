// Preview, printing and export of the estimate through the office engine.

#include "TForm1.h"

#include "ui/Dialogs.h"
#include "storage/SettingsStore.h"
#include "customers/Records.h"
#include "estimate/DocumentFile.h"
#include "estimate/EditFromAktSmeta_frame.h"
#include "estimate/EstimateOutput.h"
#include "estimate/EstimatePrint.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"
#include "estimate/ViewTitles.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QMenu>
#include <QProgressDialog>
#include <QStatusBar>
#include <QToolBar>

void TForm1::setupOutput() {
    auto make = [this](const char *name, const QString &text, void (TForm1::*slot)()) {
        auto *a = new QAction(text, this);
        a->setObjectName(QLatin1String(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    MPreview = make("MPreview", QStringLiteral("Предварительный просмотр"), &TForm1::MPreviewClick);
    MPrint = make("MPrint", QStringLiteral("Печать"), &TForm1::MPrintClick);
    MPrint->setShortcut(QKeySequence::Print);
    MExportPDF = make("MExportPDF", QStringLiteral("Экспорт в формат PDF"), &TForm1::MExportPDFClick);
    MExportExcel = make("MExportExcel", QStringLiteral("Экспорт в формат Excel"), &TForm1::MExportExcelClick);
    MEditFromAktSmeta = make("MEditFromAktSmeta", QStringLiteral("Заголовки листов сметы и акта…"),
                             &TForm1::MEditFromAktSmetaClick);
    MenuFile->insertActions(MExit, {MPreview, MPrint, MExportPDF, MExportExcel});
    MenuFile->insertSeparator(MExit);
    MenuOptions->addAction(MEditFromAktSmeta);
    ToolBarMain->addSeparator();
    ToolBarMain->addAction(MPreview);
    ToolBarMain->addAction(MPrint);
    FCustomPreview = new TFCustomPreview(this);
}

void TForm1::outputShow() {
    QString error;
    OfficeTemplates::ensureDefaults(m_dataFolder, &error);
    if (!error.isEmpty())
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
}

EstimatePrint TForm1::estimatePrint() const {
    EstimatePrint p;
    p.title = estimateTitle();
    p.contractor = contractorForEstimate();
    const ContractorData contractor = contractorData();
    p.contractorPhone = contractor.contractor.value(QStringLiteral("phone"));
    p.contractorEmail = contractor.email;
    p.contractorAddress = contractor.requisites.value(QStringLiteral("adres"));
    p.customer = customerForEstimate();
    p.object = currentObject();
    p.nameOfWorks = nameOfWorks();
    const QString word = estimateNumberWord().trimmed();
    p.number = word.isEmpty() ? estimateNumber() : word + u'-' + estimateNumber();
    p.date = estimateDate();
    p.currency = EditValuta ? EditValuta->currentIndex() : 0;
    if (m_module && m_editor) {
        QSqlDatabase db = m_module->database(Db::Smeta);
        EstimatePrintBuilder::fillBody(p, *m_editor, db);
        p.act = EstimatePrintBuilder::readAct(db);
    }
    return p;
}

ViewTitles TForm1::viewTitles() const {
    // A key the main window carries itself (EditLocal) is taken from there: that is what it writes back.
    return ViewTitles::read([this](const QString &key, const QString &def) {
        if (!MainSettings::sectionOf(key).isEmpty())
            return m_settings.text(key);
        return m_settingsStore ? m_settingsStore->text(ViewTitles::section, key, def) : def;
    });
}

void TForm1::MEditFromAktSmetaClick() {
    TEditFromAktSmeta dialog(this);
    dialog.setTitles(viewTitles());
    if (dialog.exec() != QDialog::Accepted)
        return;
    const ViewTitles titles = dialog.titles();
    if (m_settingsStore)
        titles.write(*m_settingsStore);
    for (const QString &key : ViewTitles::keys())
        if (!MainSettings::sectionOf(key).isEmpty())
            m_settings.set(key, titles.value(key));
}

void TForm1::MPreviewClick() {
    runOutput(OutputKind::Preview);
}
void TForm1::MPrintClick() {
    runOutput(OutputKind::Print);
}
void TForm1::MExportPDFClick() {
    runOutput(OutputKind::Pdf);
}
void TForm1::MExportExcelClick() {
    runOutput(OutputKind::Excel);
}

void TForm1::runOutput(OutputKind kind) {
    if (m_outputBusy)
        return;
    QString why;
    if (!OfficeEngine::available(&why)) {
        dialogs().tell(Captions::warning, why, Dialogs::Icon::Warning);
        emit outputFinished(false, QString());
        return;
    }
    const EstimatePrint print = estimatePrint();
    const QString leftOut = EstimateOutput::leftOutWarning(print);
    // Outputs are named after the document, as its companion ".xls" is.
    const QString base = EstimateOutput::outputBaseName(m_fileName, print.title);
    const QString folder =
        m_fileName.isEmpty() ? (m_saveDir.isEmpty() ? DocumentFile::documentsFolder(m_dataFolder) : m_saveDir)
                             : QFileInfo(m_fileName).absolutePath();
    QVector<TemplateFile::Output> outputs;
    QString shown; // the file the user gets
    if (kind == OutputKind::Pdf || kind == OutputKind::Excel) {
        const bool pdf = kind == OutputKind::Pdf;
        const QString suffix = pdf ? QStringLiteral("pdf") : QStringLiteral("xls");
        shown = dialogs().saveFile(
            pdf ? QStringLiteral("Экспорт в формат PDF") : QStringLiteral("Экспорт в формат Excel"), folder,
            base + u'.' + suffix,
            pdf ? QStringLiteral("Документ PDF (*.pdf)") : QStringLiteral("Таблица Excel (*.xls)"), suffix);
        if (shown.isEmpty())
            return;
        outputs << TemplateFile::Output{shown, suffix};
    } else {
        // Preview and printing work on files of the engine's scratch folder, which goes when the
        // engine stops.
        const QString scratch = QDir(m_dataFolder)
                                    .filePath(QStringLiteral("Temp/virn-office/work-%1/Просмотр")
                                                  .arg(QCoreApplication::applicationPid()));
        QDir().mkpath(scratch);
        shown = QDir(scratch).filePath(base + QStringLiteral(".pdf"));
        outputs << TemplateFile::Output{shown, QStringLiteral("pdf")};
        if (kind == OutputKind::Preview)
            outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".xls")),
                                            QStringLiteral("xls")};
    }

    if (!m_office)
        m_office = new OfficeService(m_dataFolder, this);
    m_outputBusy = true;
    auto *progress =
        new QProgressDialog(QStringLiteral("Подготовка документа «%1»…").arg(base), QString(), 0, 100, this);
    progress->setWindowTitle(QStringLiteral("Вывод документа"));
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);

    const ViewTitles titles = viewTitles();
    const QString dataFolder = m_dataFolder;
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
            &QProgressDialog::setValue);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, progress, kind, outputs, shown, base, folder, leftOut]() {
                const OfficeService::Result r = watcher->result();
                watcher->deleteLater();
                progress->close();
                progress->deleteLater();
                m_outputBusy = false;
                if (!r.ok) {
                    dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
                    emit outputFinished(false, QString());
                    return;
                }
                if (kind == OutputKind::Preview || kind == OutputKind::Print) {
                    QStringList companions;
                    for (int i = 1; i < outputs.size(); ++i)
                        companions << outputs.at(i).path;
                    QString error;
                    if (!FCustomPreview->showDocument(shown, base, companions, &error)) {
                        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
                        emit outputFinished(false, QString());
                        return;
                    }
                    FCustomPreview->setSaveFolder(folder);
                    if (kind == OutputKind::Preview) {
                        FCustomPreview->show();
                        FCustomPreview->raise();
                        FCustomPreview->activateWindow();
                    } else {
                        FCustomPreview->spdPrintClick();
                    }
                } else {
                    statusBar()->showMessage(
                        QStringLiteral("Документ сохранён: %1").arg(QDir::toNativeSeparators(shown)), 10000);
                }
                if (!leftOut.isEmpty())
                    dialogs().tell(Captions::warning, leftOut, Dialogs::Icon::Warning);
                emit outputFinished(true, shown);
            });
    watcher->setFuture(
        m_office->run([dataFolder, print, titles, outputs](OfficeEngine &engine, QString *error,
                                                           const std::function<void(int)> &report) {
            return EstimateOutput::produce(engine, dataFolder, print, titles, outputs, error, report);
        }));
}
