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
    m_states = QVector<State>(m_items.size(), State::Waiting);
    m_percent = QVector<int>(m_items.size(), 0);
    m_busy = QVector<bool>(m_office.lanes(), false);
    m_next = 0;
    m_settled = 0;
    pump();
}

void PackageRun::cancel() {
    m_cancelled = true;
}

bool PackageRun::allBeforeDone(int index) const {
    for (int i = 0; i < index; ++i)
        if (m_states.at(i) != State::Done)
            return false;
    return true;
}

void PackageRun::pump() {
    // Registering a document may let the next ones begin (an act by volumes waits for those before it), and a
    // document that cannot be prepared is done at once: round until nothing moves.
    while (settle() || beginNext()) {
    }
    reportProgress();
    if (m_running && m_settled == int(m_items.size()))
        finish();
}

bool PackageRun::settle() {
    // In the package's order, whichever lane finished first: the register's rows come in the order a
    // run of one document at a time gives them.
    bool moved = false;
    while (m_settled < m_items.size() && m_states.at(m_settled) != State::Waiting &&
           m_states.at(m_settled) != State::Working) {
        PackageItem &item = m_items[m_settled];
        if (m_states.at(m_settled) == State::Rendered) {
            TModuleSQL *module = m_document.module();
            if (item.made && module) {
                PackageJob::record(*module, &item);
                if (m_request.ks2 || m_request.ks3 || m_request.act)
                    PackageJob::referActsToContract(*module, &item);
            }
            m_states[m_settled] = State::Done;
        }
        emit itemFinished(m_items.at(m_settled++));
        moved = true;
    }
    return moved;
}

bool PackageRun::beginNext() {
    const int count = int(m_items.size());
    if (!m_running || m_next >= count)
        return false;
    if (m_cancelled) {
        for (int i = m_next; i < count; ++i) {
            m_items[i].skipped = true;
            m_states[i] = State::Done;
        }
        m_next = count;
        return true;
    }
    const int lane = int(m_busy.indexOf(false));
    if (lane < 0)
        return false;
    const int index = m_next;
    PackageItem item;
    item.doc = m_items.at(index).doc;
    const bool prepared = PackageJob::prepare(m_document, m_request, m_settings, &item);
    // An act by volumes reads the acts kept before it: it waits until the documents before it are
    // registered, and is read again then.
    if (prepared && item.act.byVolumes && !allBeforeDone(index))
        return false;
    ++m_next;
    m_items[index] = item;
    emit stageStarted(index, count, PackageDocs::progressText(item.doc));
    if (prepared) {
        begin(index, lane);
    } else {
        m_states[index] = State::Rendered; // nothing to write or register: told in its turn
        m_percent[index] = 100;
    }
    return true;
}

void PackageRun::begin(int index, int lane) {
    m_states[index] = State::Working;
    m_busy[lane] = true;
    // The engine's thread works on its own copy; the result comes back here.
    auto job = std::make_shared<PackageItem>(m_items.at(index));
    const QString dataFolder = m_document.dataFolder();
    auto *watcher = new QFutureWatcher<OfficeService::Result>(this);
    connect(watcher, &QFutureWatcher<OfficeService::Result>::progressValueChanged, this,
            [this, index](int percent) {
                m_percent[index] = percent;
                reportProgress();
            });
    connect(watcher, &QFutureWatcher<OfficeService::Result>::finished, this,
            [this, watcher, job, index, lane] {
                watcher->deleteLater();
                rendered(index, lane, *job);
            });
    watcher->setFuture(m_office.run(
        [job, dataFolder](OfficeEngine &engine, QString *error, const std::function<void(int)> &progress) {
            const bool ok = PackageJob::render(engine, dataFolder, job.get(), progress);
            if (!ok)
                *error = job->error;
            return ok;
        },
        lane));
}

void PackageRun::rendered(int index, int lane, const PackageItem &item) {
    m_busy[lane] = false;
    m_items[index] = item;
    m_states[index] = State::Rendered;
    m_percent[index] = 100;
    pump();
}

void PackageRun::reportProgress() {
    if (m_items.isEmpty())
        return;
    int sum = 0;
    for (int p : m_percent)
        sum += p;
    emit progressChanged(sum / int(m_items.size()));
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
