#pragma once
// A TCP proxy on 127.0.0.1 in front of a real server, for transfers that go wrong half-way: it can
// stop passing the server's bytes to the client after a given count (the connection stays open, as
// with a server that stalls), and it can pass the client's bytes slowly (an upload long enough to be
// cancelled). Each connection is served by its own thread; the destructor closes everything.

#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class StallingProxy {
public:
    StallingProxy(const QString &targetHost, int targetPort);
    ~StallingProxy();

    // Bytes from the server passed on per connection before the proxy stops passing them; -1: all.
    void stallAfter(std::int64_t bytes) { m_stallAfter.store(bytes); }
    // Bytes per second passed from the client to the server; 0: as fast as they come.
    void throttleUpload(std::int64_t bytesPerSecond) { m_uploadRate.store(bytesPerSecond); }

    int port() const { return m_port; }
    // Whether some connection stalled.
    bool stalled() const { return m_stalled.load(); }

private:
    void acceptLoop();
    void serve(int client);

    std::string m_host;
    int m_targetPort;
    int m_listen = -1;
    int m_port = 0;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_stalled{false};
    std::atomic<std::int64_t> m_stallAfter{-1};
    std::atomic<std::int64_t> m_uploadRate{0};
    std::thread m_acceptor;
    std::mutex m_lock;
    std::vector<std::thread> m_connections;
    std::vector<int> m_sockets;
};
