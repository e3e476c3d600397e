#pragma once
// The office engine of the running program: one engine, kept between documents, on a thread of its own
// so that filling a template never freezes a window. Jobs run one after another on that thread; each
// reports its progress and ends with a result the window picks up.

#include <QFuture>
#include <QObject>
#include <QString>
#include <functional>

class OfficeEngine;
class QThread;

class OfficeService : public QObject {
    Q_OBJECT
public:
    struct Result {
        bool ok = false;
        QString error;
    };
    // A job: works with the engine, reports progress 0..100, returns false with *error on failure.
    using Job =
        std::function<bool(OfficeEngine &engine, QString *error, const std::function<void(int)> &progress)>;

    explicit OfficeService(const QString &dataFolder, QObject *parent = nullptr);
    ~OfficeService() override;

    // The future carries the job's progress (0..100) and its result.
    QFuture<Result> run(Job job);

private:
    QThread *m_thread;
    QObject *m_worker; // lives on m_thread, owns the engine
};
