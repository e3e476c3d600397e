#include "OfficeJobs.h"

#include "office/OfficeEngine.h"
#include "ui/Dialogs.h"

#include <QFutureWatcher>
#include <QProgressDialog>
#include <QWidget>

OfficeJobs::OfficeJobs(QWidget *owner) : QObject(owner), m_owner(owner) {}

OfficeService *OfficeJobs::ready() {
    if (m_busy)
        return nullptr;
    OfficeService *office = m_provider ? m_provider() : nullptr;
    QString why;
    if (!office || !OfficeEngine::available(&why)) {
        dialogs().tell(Captions::error, why.isEmpty() ? OfficeEngine::missingEngineMessage() : why,
                       Dialogs::Icon::Error);
        return nullptr;
    }
    return office;
}

void OfficeJobs::run(OfficeService *office, const QString &title, const QString &text, OfficeService::Job job,
                     std::function<void(const OfficeService::Result &)> done) {
    m_busy = true;
    auto *progress = new QProgressDialog(text, QString(), 0, 100, m_owner->window());
    progress->setObjectName(QStringLiteral("ProgressMat"));
    progress->setWindowTitle(title);
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
            &QProgressDialog::setValue);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, progress, done = std::move(done)] {
                const OfficeService::Result r = watcher->result();
                watcher->deleteLater();
                progress->close();
                progress->deleteLater();
                m_busy = false;
                done(r);
            });
    watcher->setFuture(office->run(std::move(job)));
}
