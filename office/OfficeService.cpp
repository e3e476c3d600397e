#include "OfficeService.h"

#include "office/OfficeEngine.h"

#include <QPromise>
#include <QThread>
#include <memory>

namespace {

// Lives on the service's thread: the engine's process belongs to the thread that starts it.
class Worker : public QObject {
public:
    explicit Worker(QString dataFolder) : m_dataFolder(std::move(dataFolder)) {}
    OfficeEngine &engine() {
        if (!m_engine)
            m_engine = std::make_unique<OfficeEngine>(m_dataFolder);
        return *m_engine;
    }

private:
    QString m_dataFolder;
    std::unique_ptr<OfficeEngine> m_engine;
};

} // namespace

OfficeService::OfficeService(const QString &dataFolder, QObject *parent)
    : QObject(parent), m_thread(new QThread), m_worker(new Worker(dataFolder)) {
    m_thread->setObjectName(QStringLiteral("OfficeEngine"));
    m_worker->moveToThread(m_thread);
    // The worker (and with it the engine) goes away on its own thread.
    connect(m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    m_thread->start();
}

OfficeService::~OfficeService() {
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
}

QFuture<OfficeService::Result> OfficeService::run(Job job) {
    auto promise = std::make_shared<QPromise<Result>>();
    QFuture<Result> future = promise->future();
    promise->setProgressRange(0, 100);
    auto *worker = static_cast<Worker *>(m_worker);
    QMetaObject::invokeMethod(
        m_worker,
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
