#pragma once
// The thread that talks to the document store for a window or for the upload after save: it owns one
// DocumentStore (a MySQL connection belongs to the thread that opened it) and runs the jobs given to
// it one after another, in order. A job's result comes back on the thread that owns the StoreThread,
// through a function called there unless its context object is gone by then.
//
//     thread->run<Listing>(this, [filter](DocumentStore &s) { … return listing; },
//                          [this](const Listing &l) { … show it … });
//
// The destructor drops the jobs not yet started and waits for the running one: cancel a long
// transfer first (TransferControl).

#include "DocumentStore.h"

#include <QObject>
#include <QPointer>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

class QThread;

class StoreThread : public QObject {
    Q_OBJECT
public:
    explicit StoreThread(QObject *parent = nullptr);
    ~StoreThread() override;

    template <typename R>
    void run(QObject *context, std::function<R(DocumentStore &)> work, std::function<void(const R &)> done) {
        QPointer<QObject> target(context);
        post([this, target, work = std::move(work), done = std::move(done)](DocumentStore &store) {
            R result = work(store);
            // Back on the owner's thread, where the context is checked safely.
            QMetaObject::invokeMethod(
                this,
                [target, done, result] {
                    if (target)
                        done(result);
                },
                Qt::QueuedConnection);
        });
    }

    // Jobs given and not yet finished.
    int pending() const;

signals:
    // Every job given so far has finished.
    void idle();

private:
    void post(std::function<void(DocumentStore &)> job);
    void loop();

    mutable std::mutex m_lock;
    std::condition_variable m_wake;
    std::deque<std::function<void(DocumentStore &)>> m_jobs;
    int m_unfinished = 0;
    bool m_stop = false;
    QThread *m_thread;
};
