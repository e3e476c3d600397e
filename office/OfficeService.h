#pragma once
// The office engine of the running program: one engine, kept between documents, on a thread of its own
// so that filling a template never freezes a window. Jobs run one after another on that thread; each
// reports its progress and ends with a result the window picks up.
//
// Work made of independent documents (the document package) may use more lanes: more engines, each on
// a thread of its own, started at its first job and kept warm while the work goes on, so that several
// documents are made at once.

#include <QFuture>
#include <QObject>
#include <QString>
#include <QVector>
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

    // The lanes jobs may be spread over: one more than the machine's cores, 3 at most.
    int lanes() const;
    // How long the engine of a lane other than the first may rest before it is stopped (its next job
    // starts it again); for lanes not yet started.
    void setSpareRestMs(int ms) { m_spareRestMs = ms; }
    static constexpr int kSpareRestMs = 3 * 60 * 1000;
    // The future carries the job's progress (0..100) and its result. Jobs of one lane run in turn.
    QFuture<Result> run(Job job, int lane = 0);

private:
    struct Lane {
        QThread *thread = nullptr;
        QObject *worker = nullptr; // lives on the thread, owns the engine
    };
    Lane &lane(int index);

    QString m_dataFolder;
    QVector<Lane> m_lanes;
    int m_spareRestMs = kSpareRestMs;
};
