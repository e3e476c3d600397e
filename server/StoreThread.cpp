#include "StoreThread.h"

#include <QThread>

StoreThread::StoreThread(QObject *parent) : QObject(parent) {
    DocumentStore::prepareDriver();
    m_thread = QThread::create([this] { loop(); });
    m_thread->setObjectName(QStringLiteral("DocumentStore"));
    m_thread->start();
}

StoreThread::~StoreThread() {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_jobs.clear();
        m_stop = true;
    }
    m_wake.notify_all();
    m_thread->wait();
    delete m_thread;
}

void StoreThread::post(std::function<void(DocumentStore &)> job) {
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_jobs.push_back(std::move(job));
        ++m_unfinished;
    }
    m_wake.notify_one();
}

int StoreThread::pending() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_unfinished;
}

void StoreThread::loop() {
    DocumentStore store; // opened, used and closed on this thread only
    for (;;) {
        std::function<void(DocumentStore &)> job;
        {
            std::unique_lock<std::mutex> guard(m_lock);
            m_wake.wait(guard, [this] { return m_stop || !m_jobs.empty(); });
            if (m_stop)
                return;
            job = std::move(m_jobs.front());
            m_jobs.pop_front();
        }
        job(store);
        bool nowIdle = false;
        {
            std::lock_guard<std::mutex> guard(m_lock);
            nowIdle = --m_unfinished == 0;
        }
        if (nowIdle)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (pending() == 0)
                        emit idle();
                },
                Qt::QueuedConnection);
    }
}
