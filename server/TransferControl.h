#pragma once
// Progress and cancel of one transfer that runs on another thread. The window asks for progress
// (bytes moved out of the total) and may cancel at any moment; the worker tells it which network
// connection carries the transfer while a statement runs.
//
// A statement of the MySQL client blocks until the whole value has moved. Its progress is read from
// the connection's own counters (the bytes the server acknowledged while sending, the bytes received
// while fetching), and a cancel shuts the connection down, so the blocked statement ends at once
// with an error instead of after the whole file.

#include <QtGlobal>
#include <atomic>
#include <mutex>

class TransferControl {
public:
    enum class Direction { Send, Receive };

    // Any thread. Cancelled for good: the transfer's further steps are not taken.
    void cancel();
    bool isCancelled() const { return m_cancelled.load(); }

    // Bytes moved and the total (0 while unknown).
    qint64 done() const;
    qint64 total() const { return m_total.load(); }

    // ----- The worker's side.
    void setTotal(qint64 total) { m_total.store(total); }
    // Progress of work without a connection (reading a file).
    void setDone(qint64 done) { m_done.store(done); }
    // The socket `fd` carries the next statement; false when the transfer was cancelled already.
    bool watch(int fd, Direction direction);
    // The statement ended: the socket is no longer the transfer's (it may be closed afterwards).
    void unwatch();

private:
    // The connection's counter of the direction; -1 when it has none (not TCP).
    qint64 counter() const;

    mutable std::mutex m_lock;
    int m_fd = -1;
    Direction m_direction = Direction::Send;
    qint64 m_base = 0;
    std::atomic<bool> m_cancelled{false};
    std::atomic<qint64> m_total{0};
    std::atomic<qint64> m_done{0};
};
