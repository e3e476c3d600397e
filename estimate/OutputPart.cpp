#include "OutputPart.h"

#include "DocumentFile.h"
#include "EditFromAktSmeta_frame.h"
#include "EstimateDocument.h"
#include "EstimateOutput.h"
#include "EstimatePrint.h"
#include "ViewTitles.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "office/OfficeTemplates.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QMainWindow>
#include <QMenu>
#include <QProgressDialog>
#include <QToolBar>

void OutputPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    auto make = [this, &shell](const char *name, const QString &text, void (OutputPart::*slot)()) {
        auto *a = new QAction(text, shell.window());
        a->setObjectName(QLatin1String(name));
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    QAction *preview =
        make("MPreview", QStringLiteral("Предварительный просмотр"), &OutputPart::MPreviewClick);
    QAction *print = make("MPrint", QStringLiteral("Печать"), &OutputPart::MPrintClick);
    print->setShortcut(QKeySequence::Print);
    QAction *pdf = make("MExportPDF", QStringLiteral("Экспорт в формат PDF"), &OutputPart::MExportPDFClick);
    QAction *excel =
        make("MExportExcel", QStringLiteral("Экспорт в формат Excel"), &OutputPart::MExportExcelClick);
    QAction *titles = make("MEditFromAktSmeta", QStringLiteral("Заголовки листов сметы и акта…"),
                           &OutputPart::MEditFromAktSmetaClick);
    // Before the shell's "Выход", the last item of the file menu.
    QMenu *file = shell.menu(ShellMenu::File);
    QAction *exit = file->actions().isEmpty() ? nullptr : file->actions().constLast();
    file->insertActions(exit, {preview, print, pdf, excel});
    file->insertSeparator(exit);
    shell.menu(ShellMenu::Options)->addAction(titles);
    QToolBar *bar = shell.toolBar(ShellBar::Main);
    bar->addSeparator();
    bar->addActions({preview, print});
    m_preview = new TFCustomPreview(shell.window());
}

void OutputPart::start() {
    QString error;
    OfficeTemplates::ensureDefaults(m_shell->dataFolder(), &error);
    if (!error.isEmpty())
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
}

OfficeService &OutputPart::office() {
    if (!m_office)
        m_office = new OfficeService(m_shell->dataFolder(), this);
    return *m_office;
}

ViewTitles OutputPart::viewTitles() const {
    // A key the main window's settings carry is taken from there: that is what they write back.
    const MainSettings &settings = m_shell->settings();
    const SettingsStore *store = m_shell->settingsStore();
    return ViewTitles::read([&settings, store](const QString &key, const QString &def) {
        if (!MainSettings::sectionOf(key).isEmpty())
            return settings.text(key);
        return store ? store->text(ViewTitles::section, key, def) : def;
    });
}

void OutputPart::MEditFromAktSmetaClick() {
    TEditFromAktSmeta dialog(m_shell->window());
    dialog.setTitles(viewTitles());
    if (dialog.exec() != QDialog::Accepted)
        return;
    const ViewTitles titles = dialog.titles();
    if (SettingsStore *store = m_shell->settingsStore())
        titles.write(*store);
    for (const QString &key : ViewTitles::keys())
        if (!MainSettings::sectionOf(key).isEmpty())
            m_shell->settings().set(key, titles.value(key));
}

void OutputPart::MPreviewClick() {
    run(Kind::Preview);
}
void OutputPart::MPrintClick() {
    run(Kind::Print);
}
void OutputPart::MExportPDFClick() {
    run(Kind::Pdf);
}
void OutputPart::MExportExcelClick() {
    run(Kind::Excel);
}

void OutputPart::run(Kind kind) {
    if (m_busy)
        return;
    QString why;
    if (!OfficeEngine::available(&why)) {
        dialogs().tell(Captions::warning, why, Dialogs::Icon::Warning);
        emit outputFinished(false, QString());
        return;
    }
    const EstimatePrint print = m_doc->print();
    const QString leftOut = EstimateOutput::leftOutWarning(print);
    // Outputs are named after the document, as its companion ".xls" is.
    const QString base = EstimateOutput::outputBaseName(m_doc->fileName(), print.title);
    const QString folder = m_doc->folder();
    QVector<TemplateFile::Output> outputs;
    if (kind == Kind::Pdf || kind == Kind::Excel) {
        const bool pdf = kind == Kind::Pdf;
        const QString suffix = pdf ? QStringLiteral("pdf") : QStringLiteral("xls");
        const QString path = dialogs().saveFile(
            pdf ? QStringLiteral("Экспорт в формат PDF") : QStringLiteral("Экспорт в формат Excel"), folder,
            base + u'.' + suffix,
            pdf ? QStringLiteral("Документ PDF (*.pdf)") : QStringLiteral("Таблица Excel (*.xls)"), suffix);
        if (path.isEmpty())
            return;
        outputs << TemplateFile::Output{path, suffix};
    } else {
        // Preview and printing work on files of the engine's scratch folder, which goes when the
        // engine stops.
        const QString scratch = QDir(m_shell->dataFolder())
                                    .filePath(QStringLiteral("Temp/virn-office/work-%1/Просмотр")
                                                  .arg(QCoreApplication::applicationPid()));
        QDir().mkpath(scratch);
        outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".pdf")),
                                        QStringLiteral("pdf")};
        if (kind == Kind::Preview)
            outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".xls")),
                                            QStringLiteral("xls")};
    }

    m_busy = true;
    // A long estimate takes minutes in the engine: the user sees how far it is and may stop it.
    auto *progress = new QProgressDialog(QStringLiteral("Подготовка документа «%1»…").arg(base),
                                         QStringLiteral("Отменить"), 0, 100, m_shell->window());
    progress->setObjectName(QStringLiteral("OutputProgress"));
    progress->setWindowTitle(QStringLiteral("Вывод документа"));
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);

    const ViewTitles titles = viewTitles();
    const QString dataFolder = m_shell->dataFolder();
    QStringList paths;
    for (const auto &o : outputs)
        paths << o.path;
    auto cancel = std::make_shared<std::atomic<bool>>(false);
    connect(progress, &QProgressDialog::canceled, this, [cancel] { cancel->store(true); });
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
            &QProgressDialog::setValue);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, progress, kind, paths, base, folder, leftOut, cancel]() {
                const OfficeService::Result r = watcher->result();
                watcher->deleteLater();
                progress->close();
                progress->deleteLater();
                m_busy = false;
                if (!r.ok && cancel->load()) {
                    // The user stopped it: nothing to report but that.
                    m_shell->showStatus(QStringLiteral("Вывод документа «%1» отменён.").arg(base));
                    emit outputFinished(false, QString());
                    return;
                }
                finish(kind, r.ok, r.error, paths, base, folder);
                if (r.ok && !leftOut.isEmpty())
                    dialogs().tell(Captions::warning, leftOut, Dialogs::Icon::Warning);
            });
    watcher->setFuture(
        office().run([dataFolder, print, titles, outputs, cancel](OfficeEngine &engine, QString *error,
                                                                  const std::function<void(int)> &report) {
            return EstimateOutput::produce(engine, dataFolder, print, titles, outputs, error, report, cancel);
        }));
}

void OutputPart::finish(Kind kind, bool ok, const QString &error, const QStringList &outputs,
                        const QString &base, const QString &folder) {
    const QString shown = outputs.value(0);
    if (!ok) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        emit outputFinished(false, QString());
        return;
    }
    if (kind == Kind::Preview || kind == Kind::Print) {
        QString problem;
        if (!m_preview->showDocument(shown, base, outputs.mid(1), &problem)) {
            dialogs().tell(Captions::error, problem, Dialogs::Icon::Error);
            emit outputFinished(false, QString());
            return;
        }
        m_preview->setSaveFolder(folder);
        if (kind == Kind::Preview) {
            m_preview->show();
            m_preview->raise();
            m_preview->activateWindow();
        } else {
            m_preview->spdPrintClick();
        }
    } else {
        m_shell->showStatus(QStringLiteral("Документ сохранён: %1").arg(QDir::toNativeSeparators(shown)));
    }
    emit outputFinished(true, shown);
}
