#include "Upload.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

Upload::Upload(const fs::path &incoming, std::uintmax_t limit) : m_limit(limit) {
    std::error_code ec;
    fs::create_directories(incoming, ec);
    std::string pattern = (incoming / "upload-XXXXXX").string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    m_fd = mkstemp(name.data());
    if (m_fd < 0) {
        m_error = std::string("не удаётся создать временный файл: ") + std::strerror(errno);
        return;
    }
    m_temp = name.data();
}

Upload::~Upload() {
    if (m_fd >= 0)
        ::close(m_fd);
    if (!m_committed && !m_temp.empty()) {
        std::error_code ec;
        fs::remove(m_temp, ec);
    }
}

bool Upload::write(const char *data, size_t length) {
    if (m_fd < 0)
        return false;
    const std::uintmax_t before = m_size;
    m_size += length;
    if (before >= m_limit)
        return true;
    size_t keep = length;
    if (m_size > m_limit)
        keep = static_cast<size_t>(m_limit - before);
    while (keep > 0) {
        const ssize_t n = ::write(m_fd, data, keep);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            m_error = std::string("запись временного файла: ") + std::strerror(errno);
            return false;
        }
        data += n;
        keep -= static_cast<size_t>(n);
    }
    return true;
}

bool Upload::commit(const fs::path &target) {
    if (m_fd < 0 || tooLarge())
        return false;
    if (::fsync(m_fd) != 0) {
        m_error = std::string("сброс на диск: ") + std::strerror(errno);
        return false;
    }
    ::close(m_fd);
    m_fd = -1;
    std::error_code ec;
    fs::create_directories(target.parent_path(), ec);
    fs::rename(m_temp, target, ec);
    if (ec) {
        m_error = "не удаётся записать " + target.filename().string() + ": " + ec.message();
        return false;
    }
    m_committed = true;
    // The rename itself reaches the disk with its folder.
    const int dir = ::open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}
