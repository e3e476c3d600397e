#pragma once
// One incoming file, written as it arrives into a temporary file of the data folder's ".incoming"
// folder and moved over its target only when it is whole: a broken or refused upload never replaces
// a good file. Bytes past the limit are counted but not written.

#include <cstdint>
#include <filesystem>
#include <string>

class Upload {
public:
    Upload(const std::filesystem::path &incoming, std::uintmax_t limit);
    ~Upload(); // removes the temporary file unless it was committed
    Upload(const Upload &) = delete;
    Upload &operator=(const Upload &) = delete;

    // False when the temporary file could not be made (error() says why).
    bool isOpen() const { return m_fd >= 0; }
    const std::string &error() const { return m_error; }

    // Appends bytes; false when writing failed. Past the limit nothing more is written.
    bool write(const char *data, size_t length);
    std::uintmax_t size() const { return m_size; }
    bool tooLarge() const { return m_size > m_limit; }

    // Flushes the file to disk and renames it over target (its folder is made); false with error().
    bool commit(const std::filesystem::path &target);

private:
    std::filesystem::path m_temp;
    int m_fd = -1;
    std::uintmax_t m_limit;
    std::uintmax_t m_size = 0;
    bool m_committed = false;
    std::string m_error;
};
