#include "TransferControl.h"

#include <netinet/in.h>
// The kernel's own tcp_info: the C library's copy lacks the byte counters.
#include <linux/tcp.h>
#include <sys/socket.h>

void TransferControl::cancel() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_cancelled.store(true);
    // The blocked send or receive of the worker returns at once.
    if (m_fd >= 0)
        ::shutdown(m_fd, SHUT_RDWR);
}

qint64 TransferControl::counter() const {
    tcp_info info{};
    socklen_t length = sizeof info;
    if (m_fd < 0 || ::getsockopt(m_fd, IPPROTO_TCP, TCP_INFO, &info, &length) != 0 ||
        length < offsetof(tcp_info, tcpi_bytes_received) + sizeof info.tcpi_bytes_received)
        return -1;
    return static_cast<qint64>(m_direction == Direction::Send ? info.tcpi_bytes_acked
                                                              : info.tcpi_bytes_received);
}

bool TransferControl::watch(int fd, Direction direction) {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_cancelled.load())
        return false;
    m_fd = fd;
    m_direction = direction;
    m_base = counter();
    return true;
}

void TransferControl::unwatch() {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_fd >= 0 && m_base >= 0) {
        const qint64 now = counter();
        if (now >= 0)
            m_done.store(qMin(now - m_base, m_total.load()));
    }
    m_fd = -1;
}

qint64 TransferControl::done() const {
    std::lock_guard<std::mutex> guard(m_lock);
    if (m_fd >= 0 && m_base >= 0) {
        const qint64 now = counter();
        if (now >= 0) {
            const qint64 total = m_total.load();
            const qint64 moved = now - m_base;
            return total > 0 ? qMin(moved, total) : moved;
        }
    }
    return m_done.load();
}
