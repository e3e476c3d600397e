#include "StallingProxy.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

StallingProxy::StallingProxy(const QString &targetHost, int targetPort)
    : m_host(targetHost.toStdString()), m_targetPort(targetPort) {
    m_listen = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    a.sin_port = 0;
    ::bind(m_listen, reinterpret_cast<sockaddr *>(&a), sizeof a);
    ::listen(m_listen, 16);
    socklen_t len = sizeof a;
    ::getsockname(m_listen, reinterpret_cast<sockaddr *>(&a), &len);
    m_port = ntohs(a.sin_port);
    m_acceptor = std::thread([this] { acceptLoop(); });
}

StallingProxy::~StallingProxy() {
    m_stop.store(true);
    ::shutdown(m_listen, SHUT_RDWR);
    m_acceptor.join();
    {
        std::lock_guard<std::mutex> guard(m_lock);
        for (int s : m_sockets)
            ::shutdown(s, SHUT_RDWR);
    }
    for (std::thread &t : m_connections)
        t.join();
    for (int s : m_sockets)
        ::close(s);
    ::close(m_listen);
}

void StallingProxy::acceptLoop() {
    while (!m_stop.load()) {
        pollfd p{m_listen, POLLIN, 0};
        if (::poll(&p, 1, 100) <= 0)
            continue;
        const int client = ::accept4(m_listen, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            continue;
        std::lock_guard<std::mutex> guard(m_lock);
        m_sockets.push_back(client);
        m_connections.emplace_back([this, client] { serve(client); });
    }
}

void StallingProxy::serve(int client) {
    const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_sockets.push_back(server);
    }
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(static_cast<uint16_t>(m_targetPort));
    ::inet_pton(AF_INET, m_host.c_str(), &a.sin_addr);
    if (::connect(server, reinterpret_cast<sockaddr *>(&a), sizeof a) != 0) {
        ::shutdown(client, SHUT_RDWR);
        return;
    }
    std::int64_t toClient = 0;
    char buffer[16384];
    auto start = std::chrono::steady_clock::now();
    std::int64_t fromClient = 0;
    bool stalledHere = false;
    while (!m_stop.load()) {
        const std::int64_t limit = m_stallAfter.load();
        const bool stalling = limit >= 0 && toClient >= limit;
        if (stalling) {
            m_stalled.store(true);
            stalledHere = true;
        }
        pollfd p[2] = {{client, POLLIN, 0}, {server, static_cast<short>(stalling ? 0 : POLLIN), 0}};
        if (::poll(p, 2, 50) < 0)
            break;
        if (p[0].revents & (POLLIN | POLLHUP | POLLERR)) {
            std::int64_t want = sizeof buffer;
            if (const std::int64_t rate = m_uploadRate.load(); rate > 0) {
                // Keep to the rate: no more than the time so far allows.
                const double seconds =
                    std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
                const std::int64_t allowed = static_cast<std::int64_t>(seconds * rate) - fromClient;
                want = std::min<std::int64_t>(want, std::max<std::int64_t>(0, allowed));
                if (want == 0) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
                    continue;
                }
            }
            const ssize_t n = ::recv(client, buffer, static_cast<size_t>(want), 0);
            if (n <= 0)
                break;
            fromClient += n;
            if (::send(server, buffer, static_cast<size_t>(n), MSG_NOSIGNAL) != n)
                break;
        }
        if (!stalling && (p[1].revents & (POLLIN | POLLHUP | POLLERR))) {
            std::int64_t want = sizeof buffer;
            if (limit >= 0)
                want = std::min<std::int64_t>(want, limit - toClient);
            const ssize_t n = ::recv(server, buffer, static_cast<size_t>(want), 0);
            if (n <= 0)
                break;
            toClient += n;
            if (::send(client, buffer, static_cast<size_t>(n), MSG_NOSIGNAL) != n)
                break;
        }
    }
    // Stalled: hold the client's connection open until the proxy goes or the client gives up.
    while (!m_stop.load() && stalledHere) {
        pollfd p{client, POLLIN, 0};
        if (::poll(&p, 1, 100) > 0) {
            char c;
            if (::recv(client, &c, 1, MSG_PEEK) <= 0)
                break;
            ::recv(client, buffer, sizeof buffer, 0);
        }
    }
    ::shutdown(client, SHUT_RDWR);
    ::shutdown(server, SHUT_RDWR);
}
