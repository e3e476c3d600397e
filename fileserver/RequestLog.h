#pragma once
// The server's log: one line per request with the time, the client's address, the account key (or
// "-"), the method, the path, the status and the size of the reply body.
//   2025-03-01 12:00:00 127.0.0.1 key=demo POST /files/base_virn_s/post_cashbase.php 200 39

#include <cstdio>
#include <mutex>
#include <string>

class RequestLog {
public:
    // Lines go to stderr when path is empty.
    explicit RequestLog(const std::string &path = {});
    ~RequestLog();
    RequestLog(const RequestLog &) = delete;
    RequestLog &operator=(const RequestLog &) = delete;

    bool isOpen() const { return m_out != nullptr; }

    void request(const std::string &address, const std::string &key, const std::string &method,
                 const std::string &path, int status, size_t bytes);
    // A line of the server's own (start, stop, problems).
    void note(const std::string &text);

private:
    void line(const std::string &text);

    std::FILE *m_out = nullptr;
    bool m_own = false;
    std::mutex m_mutex;
};
