#include "OfficeJobWindow.h"

#include <QFutureWatcher>
#include <QProgressDialog>

namespace OfficeJobWindow {

void run(QWidget *parent, OfficeService &office, const QString &title, const QString &text,
         OfficeService::Job job, std::function<void(const OfficeService::Result &)> done) {
    auto *progress = new QProgressDialog(text, QString(), 0, 100, parent);
    progress->setWindowTitle(title);
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    progress->setAutoClose(false);
    progress->setValue(0);
    auto *watcher = new QFutureWatcher<OfficeService::Result>(progress);
    QObject::connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, progress,
                     &QProgressDialog::setValue);
    QObject::connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, progress,
                     [watcher, progress, done = std::move(done)] {
                         const OfficeService::Result r = watcher->result();
                         progress->close();
                         progress->deleteLater();
                         done(r);
                     });
    watcher->setFuture(office.run(std::move(job)));
}

} // namespace OfficeJobWindow
