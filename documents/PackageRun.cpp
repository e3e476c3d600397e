#include "PackageRun.h"

#include "estimate/EstimateDocument.h"
#include "office/OfficeService.h"
#include "storage/ModuleSQL.h"

#include <QDir>
#include <QFutureWatcher>
#include <memory>

PackageRun::PackageRun(const EstimateDocument &document, const PackageRequest &request,
                       const PackageSettings &settings, OfficeService &office, QObject *parent)
    : QObject(parent), m_document(document), m_request(request), m_settings(settings), m_office(office) {
    for (PackageDoc doc : request.ticked()) {
        PackageItem item;
        item.doc = doc;
        m_items << item;
    }
}

void PackageRun::start() {
    if (m_running)
        return;
    m_running = true;
    m_current = -1;
    next();
}

void PackageRun::cancel() {
    m_cancelled = true;
}

void PackageRun::next() {
    ++m_current;
    const int count = int(m_items.size());
    if (m_current >= count)
        return finish();
    PackageItem &item = m_items[m_current];
    if (m_cancelled) {
        for (int i = m_current; i < count; ++i)
            m_items[i].skipped = true;
        return finish();
    }
    emit stageStarted(m_current, count, PackageDocs::progressText(item.doc));
    emit progressChanged(m_current * 100 / count);
    // Each act is read after the one before it was registered: acts by volumes see the act it kept.
    if (!PackageJob::prepare(m_document, m_request, m_settings, &item)) {
        emit itemFinished(item);
        return next();
    }
    // The engine's thread works on its own copy; the result comes back here.
    auto job = std::make_shared<PackageItem>(item);
    const QString dataFolder = m_document.dataFolder();
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    const int index = m_current;
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, this,
            [this, index, count](int percent) { emit progressChanged((index * 100 + percent) / count); });
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this, [this, watcher, job, index] {
        watcher->deleteLater();
        rendered(index, *job);
    });
    watcher->setFuture(m_office.run(
        [job, dataFolder](OfficeEngine &engine, QString *error, const std::function<void(int)> &progress) {
            const bool ok = PackageJob::render(engine, dataFolder, job.get(), progress);
            if (!ok)
                *error = job->error;
            return ok;
        }));
}

void PackageRun::rendered(int index, const PackageItem &item) {
    m_items[index] = item;
    PackageItem &done = m_items[index];
    TModuleSQL *module = m_document.module();
    if (done.made && module) {
        PackageJob::record(*module, &done);
        if (m_request.ks2 || m_request.ks3 || m_request.act)
            PackageJob::referActsToContract(*module, &done);
    }
    emit itemFinished(done);
    next();
}

void PackageRun::finish() {
    m_running = false;
    emit progressChanged(100);
    emit finished();
}

bool PackageRun::complete(const QVector<PackageItem> &items) {
    for (const PackageItem &item : items)
        if (!item.made || !item.warning.isEmpty())
            return false;
    return true;
}

QString PackageRun::report(const QVector<PackageItem> &items, const QString &folder) {
    QStringList made, failed, skipped, warnings;
    for (const PackageItem &item : items) {
        const QString caption = PackageDocs::caption(item.doc);
        if (item.made)
            made << caption;
        else if (item.skipped)
            skipped << caption;
        else
            failed << QStringLiteral("%1: %2").arg(caption, item.error);
        if (!item.warning.isEmpty())
            warnings << item.warning;
    }
    QStringList text;
    if (!made.isEmpty())
        text << QStringLiteral("Созданы в папке %1: %2.")
                    .arg(QDir::toNativeSeparators(folder), made.join(QStringLiteral(", ")));
    if (!failed.isEmpty())
        text << QStringLiteral("Не созданы:\n") + failed.join(u'\n');
    if (!skipped.isEmpty())
        text << QStringLiteral("Отменены: %1.").arg(skipped.join(QStringLiteral(", ")));
    text << warnings;
    return text.join(QStringLiteral("\n\n"));
}
