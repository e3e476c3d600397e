#include "OfficeService.h"

#include "office/OfficeEngine.h"

#include <QPromise>
#include <QThread>
#include <memory>

namespace {

constexpr int kMostLanes = 2;

// Lives on its lane's thread: the engine's process belongs to the thread that starts it.
class Worker : public QObject {
public:
    Worker(QString dataFolder, int lane) : m_dataFolder(std::move(dataFolder)), m_lane(lane) {}
    OfficeEngine &engine() {
        if (!m_engine)
            m_engine = std::make_unique<OfficeEngine>(m_dataFolder, m_lane);
        return *m_engine;
    }

private:
    QString m_dataFolder;
    int m_lane;
    std::unique_ptr<OfficeEngine> m_engine;
};

} // namespace

OfficeService::OfficeService(const QString &dataFolder, QObject *parent)
    : QObject(parent), m_dataFolder(dataFolder) {
    lane(0); // the first lane's thread runs from the start, as before
}

OfficeService::~OfficeService() {
    for (Lane &l : m_lanes) {
        l.thread->quit();
        l.thread->wait();
        delete l.thread;
    }
}

int OfficeService::lanes() const {
    return qBound(1, QThread::idealThreadCount(), kMostLanes);
}

OfficeService::Lane &OfficeService::lane(int index) {
    index = qBound(0, index, kMostLanes - 1);
    while (m_lanes.size() <= index) {
        Lane l;
        l.thread = new QThread;
        l.thread->setObjectName(m_lanes.isEmpty() ? QStringLiteral("OfficeEngine")
                                                  : QStringLiteral("OfficeEngine%1").arg(m_lanes.size() + 1));
        l.worker = new Worker(m_dataFolder, int(m_lanes.size()));
        l.worker->moveToThread(l.thread);
        // The worker (and with it the engine) goes away on its own thread.
        connect(l.thread, &QThread::finished, l.worker, &QObject::deleteLater);
        l.thread->start();
        m_lanes << l;
    }
    return m_lanes[index];
}

QFuture<OfficeService::Result> OfficeService::run(Job job, int laneIndex) {
    auto promise = std::make_shared<QPromise<Result>>();
    QFuture<Result> future = promise->future();
    promise->setProgressRange(0, 100);
    Lane &l = lane(laneIndex);
    auto *worker = static_cast<Worker *>(l.worker);
    QMetaObject::invokeMethod(
        l.worker,
        [promise, worker, job = std::move(job)]() {
            promise->start();
            Result r;
            r.ok = job(worker->engine(), &r.error,
                       [&promise](int p) { promise->setProgressValue(qBound(0, p, 100)); });
            promise->addResult(r);
            promise->finish();
        },
        Qt::QueuedConnection);
    return future;
}
