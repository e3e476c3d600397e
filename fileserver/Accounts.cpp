#include "Accounts.h"

#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {
constexpr size_t kMaxKey = 64;
constexpr std::uintmax_t kMaxFile = 1 << 20;

std::string trimmed(const std::string &s) {
    const size_t b = s.find_first_not_of(" \t\r");
    if (b == std::string::npos)
        return {};
    const size_t e = s.find_last_not_of(" \t\r");
    return s.substr(b, e - b + 1);
}
} // namespace

Accounts::Accounts(fs::path file) : m_file(std::move(file)) {}

bool Accounts::isWellFormed(std::string_view key) {
    if (key.empty() || key.size() > kMaxKey)
        return false;
    for (char c : key)
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'))
            return false;
    return true;
}

bool Accounts::load(std::string *error) {
    std::lock_guard<std::mutex> lock(m_mutex);
    return loadLocked(error);
}

bool Accounts::loadLocked(std::string *error) {
    m_lastLook = std::chrono::steady_clock::now();
    std::error_code ec;
    const auto stamp = fs::last_write_time(m_file, ec);
    if (ec) {
        if (error)
            *error = "не удаётся прочитать файл учётных записей " + m_file.string() + ": " + ec.message();
        return false;
    }
    if (fs::file_size(m_file, ec) > kMaxFile || ec) {
        if (error)
            *error = "файл учётных записей " + m_file.string() + " больше 1 МБ";
        return false;
    }
    std::ifstream in(m_file);
    if (!in) {
        if (error)
            *error = "не удаётся открыть файл учётных записей " + m_file.string();
        return false;
    }
    std::set<std::string> keys;
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (const size_t hash = line.find('#'); hash != std::string::npos)
            line.erase(hash);
        const std::string key = trimmed(line);
        if (key.empty())
            continue;
        if (!isWellFormed(key)) {
            if (error)
                *error = m_file.string() + ", строка " + std::to_string(number) +
                         ": ключ может содержать только латинские буквы, цифры и «_» (до 64 знаков)";
            return false;
        }
        keys.insert(key);
    }
    m_keys = std::move(keys);
    m_stamp = stamp;
    return true;
}

bool Accounts::knows(const std::string &key) {
    if (!isWellFormed(key))
        return false;
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto now = std::chrono::steady_clock::now();
    if (now - m_lastLook >= std::chrono::seconds(1)) {
        m_lastLook = now;
        std::error_code ec;
        const auto stamp = fs::last_write_time(m_file, ec);
        if (!ec && stamp != m_stamp)
            loadLocked(nullptr);
    }
    return m_keys.count(key) != 0;
}

size_t Accounts::count() {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_keys.size();
}
