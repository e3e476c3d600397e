#include "OfficeService.h"

#include "office/OfficeEngine.h"

#include <QPromise>
#include <QThread>
#include <QTimer>
#include <memory>

namespace {

// Documents made side by side: one more engine than there are cores keeps both cores busy while one
// engine waits on the program between requests or ends its last document alone.
constexpr int kMostLanes = 3;

// Lives on its lane's thread: the engine's process belongs to the thread that starts it. A spare lane's
// engine (of a package) is stopped once it has rested a while, so that its memory is not held for the
// program's life; a package made again soon still finds it warm.
class Worker : public QObject {
public:
    Worker(QString dataFolder, int lane, int restMs)
        : m_dataFolder(std::move(dataFolder)), m_lane(lane), m_rest(new QTimer(this)) {
        m_rest->setSingleShot(true);
        m_rest->setInterval(restMs);
        connect(m_rest, &QTimer::timeout, this, [this] {
            if (m_engine)
                m_engine->stop();
        });
    }
    OfficeEngine &engine() {
        m_rest->stop();
        if (!m_engine)
            m_engine = std::make_unique<OfficeEngine>(m_dataFolder, m_lane);
        return *m_engine;
    }
    void jobEnded() {
        if (m_lane > 0)
            m_rest->start();
    }

private:
    QString m_dataFolder;
    int m_lane;
    QTimer *m_rest;
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
    return qBound(1, QThread::idealThreadCount() + 1, kMostLanes);
}

OfficeService::Lane &OfficeService::lane(int index) {
    index = qBound(0, index, kMostLanes - 1);
    while (m_lanes.size() <= index) {
        Lane l;
        l.thread = new QThread;
        l.thread->setObjectName(m_lanes.isEmpty() ? QStringLiteral("OfficeEngine")
                                                  : QStringLiteral("OfficeEngine%1").arg(m_lanes.size() + 1));
        l.worker = new Worker(m_dataFolder, int(m_lanes.size()), m_spareRestMs);
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
            worker->jobEnded();
            promise->addResult(r);
            promise->finish();
        },
        Qt::QueuedConnection);
    return future;
}
