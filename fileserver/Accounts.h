#pragma once
// The accounts the server knows: a text file with one account key per line ("#" starts a comment,
// blank lines are skipped). A key is 1 to 64 letters, digits and underscores. The file is read again
// when it changes (looked at no more than once a second), so an account is added without a restart.

#include <chrono>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

class Accounts {
public:
    explicit Accounts(std::filesystem::path file);

    // Reads the file; false with *error when it cannot be read or holds a malformed key (the keys
    // known before stay in force).
    bool load(std::string *error);
    // True for a key listed in the file.
    bool knows(const std::string &key);
    size_t count();

    static bool isWellFormed(std::string_view key);

private:
    bool loadLocked(std::string *error);

    std::filesystem::path m_file;
    std::mutex m_mutex;
    std::set<std::string> m_keys;
    std::filesystem::file_time_type m_stamp{};
    std::chrono::steady_clock::time_point m_lastLook{};
};
