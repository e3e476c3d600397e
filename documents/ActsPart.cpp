#include "ActsPart.h"

#include "ActOutput_frame.h"
#include "ActProducer.h"
#include "FormKS2_frame.h"
#include "customers/CustomersPart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/OutputPart.h"
#include "office/OfficeEngine.h"
#include "office/OfficeService.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QDir>
#include <QFutureWatcher>
#include <QMainWindow>
#include <QMenu>
#include <QProgressDialog>
#include <memory>

void ActsPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    QMenu *menu = shell.menu(ShellMenu::Document);
    menu->addSeparator();
    QAction *data = menu->addAction(QStringLiteral("Данные акта…"));
    data->setObjectName(QStringLiteral("MFormKS2"));
    connect(data, &QAction::triggered, this, &ActsPart::MFormKS2Click);
    const QPair<const char *, ActKind> acts[] = {
        {"MActKS2", ActKind::Ks2}, {"MActKS3", ActKind::Ks3}, {"MAct", ActKind::Plain}};
    for (const auto &a : acts) {
        QAction *act = menu->addAction(ActKinds::caption(a.second) + QStringLiteral("…"));
        act->setObjectName(QString::fromLatin1(a.first));
        const ActKind kind = a.second;
        connect(act, &QAction::triggered, this, [this, kind] { makeAct(kind); });
    }
}

void ActsPart::documentLoaded() {
    // Another document: the window shows its act data (what was typed went into the one before).
    if (m_form && m_form->isVisible())
        m_form->enter();
}

bool ActsPart::settleBeforeClose() {
    if (m_form && m_form->isVisible())
        m_form->leave();
    return true;
}

void ActsPart::MFormKS2Click() {
    if (!m_shell->module())
        return;
    if (!m_form) {
        m_form = new TFormKS2(*m_doc, m_shell->settingsStore(), m_shell->window());
        m_form->setWindowFlag(Qt::Window);
        m_form->setAttribute(Qt::WA_DeleteOnClose);
        m_form->resize(1000, 680);
        if (auto *customers = m_shell->part<CustomersPart>()) {
            connect(m_form, &TFormKS2::customersRequested, customers, &CustomersPart::showCustomers);
            connect(m_form, &TFormKS2::contractorsRequested, customers, &CustomersPart::showContractors);
            connect(customers, &CustomersPart::customersChanged, m_form, &TFormKS2::reloadLists);
            connect(customers, &CustomersPart::contractorsChanged, m_form, &TFormKS2::reloadLists);
        }
    }
    if (!m_form->isVisible())
        m_form->enter();
    m_form->show();
    m_form->raise();
    m_form->activateWindow();
}

TFormKS2 *ActsPart::actData() const {
    return m_form;
}

bool ActsPart::settleActData() {
    return !(m_form && m_form->isVisible()) || m_form->leave();
}

bool ActsPart::dateNumbering() const {
    return m_shell->settings().flag(QStringLiteral("spdDateNumericSmetaWord"));
}

bool ActsPart::yearFirst() const {
    // RadioButtonFormat1 (on by default) numbers by "DDMMYYYY".
    const SettingsStore *store = m_shell->settingsStore();
    return store && !store->flag(QStringLiteral("Param"), QStringLiteral("RadioButtonFormat1"), true);
}

ActRequest ActsPart::defaults(ActKind kind) const {
    ActRequest r;
    r.kind = kind;
    r.date = QDate::currentDate();
    r.endDate = r.date;
    r.folder = m_doc->folder();
    TModuleSQL *module = m_shell->module();
    r.number = ActKinds::defaultNumber(module ? module->database(Db::People) : QSqlDatabase(),
                                       m_doc->header().customer, m_doc->header().object, r.date,
                                       dateNumbering(), yearFirst());
    return r;
}

void ActsPart::makeAct(ActKind kind) {
    if (m_busy || !m_shell->module())
        return;
    TActOutput dialog(defaults(kind), dateNumbering(), yearFirst(), m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    produce(dialog.request());
}

OfficeService &ActsPart::office() {
    if (auto *output = m_shell->part<OutputPart>())
        return output->office();
    if (!m_office)
        m_office = new OfficeService(m_shell->dataFolder(), this);
    return *m_office;
}

void ActsPart::produce(const ActRequest &request) {
    if (m_busy)
        return;
    auto fail = [this](const QString &why) {
        dialogs().tell(Captions::error, why, Dialogs::Icon::Error);
        emit actFinished(false, QString());
    };
    QString why;
    if (!OfficeEngine::available(&why))
        return fail(why);
    if (!settleActData()) {
        emit actFinished(false, QString());
        return;
    }
    // Rows typed since the last write get their work ids: an act by volumes keeps its rows by them.
    if (!m_doc->writeWorkingDatabase(&why))
        return fail(why);
    auto job = std::make_shared<ActJob>();
    OutputPart *output = m_shell->part<OutputPart>();
    const ViewTitles titles = output ? output->viewTitles() : ViewTitles();
    if (!ActProducer::prepare(*m_doc, titles, request, job.get(), &why))
        return fail(why);

    m_busy = true;
    auto *progress =
        new QProgressDialog(QStringLiteral("Создаётся... %1").arg(ActKinds::caption(request.kind)), QString(),
                            0, 100, m_shell->window());
    progress->setWindowTitle(ActKinds::caption(request.kind));
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
            &QProgressDialog::setValue);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, progress, job]() {
                const OfficeService::Result r = watcher->result();
                watcher->deleteLater();
                progress->close();
                progress->deleteLater();
                m_busy = false;
                if (!r.ok) {
                    dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
                    emit actFinished(false, QString());
                    return;
                }
                const ActResult result = ActProducer::record(*m_shell->module(), *job);
                if (result.documentChanged)
                    m_doc->setChanged(true);
                if (m_form && m_form->isVisible())
                    m_form->refreshVolumes();
                m_shell->showStatus(
                    QStringLiteral("Акт сохранён: %1").arg(QDir::toNativeSeparators(result.path)));
                if (!result.warning.isEmpty())
                    dialogs().tell(Captions::warning, result.warning, Dialogs::Icon::Warning);
                emit actFinished(true, result.path);
            });
    watcher->setFuture(
        office().run([job](OfficeEngine &engine, QString *error, const std::function<void(int)> &report) {
            return ActProducer::render(engine, *job, error, report);
        }));
}
