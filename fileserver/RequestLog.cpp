#include "RequestLog.h"

#include <ctime>

namespace {
std::string now() {
    const std::time_t t = std::time(nullptr);
    std::tm local{};
    localtime_r(&t, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

// Control characters of a path would forge lines of the log.
std::string printable(const std::string &s) {
    std::string out;
    out.reserve(s.size());
    for (unsigned char c : s) {
        if (c < 0x20 || c == 0x7f) {
            static const char hex[] = "0123456789ABCDEF";
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}
} // namespace

RequestLog::RequestLog(const std::string &path) {
    if (path.empty()) {
        m_out = stderr;
        return;
    }
    m_out = std::fopen(path.c_str(), "a");
    m_own = m_out != nullptr;
}

RequestLog::~RequestLog() {
    if (m_own)
        std::fclose(m_out);
}

void RequestLog::request(const std::string &address, const std::string &key, const std::string &method,
                         const std::string &path, int status, size_t bytes) {
    line(now() + ' ' + (address.empty() ? "-" : address) + " key=" + (key.empty() ? "-" : printable(key)) +
         ' ' + printable(method) + ' ' + printable(path) + ' ' + std::to_string(status) + ' ' +
         std::to_string(bytes));
}

void RequestLog::note(const std::string &text) {
    line(now() + ' ' + text);
}

void RequestLog::line(const std::string &text) {
    if (!m_out)
        return;
    std::lock_guard<std::mutex> lock(m_mutex);
    std::fputs(text.c_str(), m_out);
    std::fputc('\n', m_out);
    std::fflush(m_out);
}
