#include "SafePath.h"

#include <system_error>

namespace fs = std::filesystem;

namespace SafePath {

bool isSafeName(std::string_view name) {
    if (name.empty() || name.size() > 255 || name == "." || name == "..")
        return false;
    for (unsigned char c : name)
        if (c < 0x20 || c == 0x7f || c == '/' || c == '\\')
            return false;
    return true;
}

std::optional<std::vector<std::string>> split(std::string_view relative) {
    if (relative.empty() || relative.front() == '/')
        return std::nullopt;
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= relative.size()) {
        const size_t slash = relative.find('/', start);
        const size_t end = slash == std::string_view::npos ? relative.size() : slash;
        const std::string_view name = relative.substr(start, end - start);
        if (!isSafeName(name))
            return std::nullopt;
        parts.emplace_back(name);
        if (slash == std::string_view::npos)
            break;
        start = slash + 1;
    }
    return parts;
}

std::optional<fs::path> resolve(const fs::path &base, const std::vector<std::string> &parts) {
    fs::path target = base;
    for (const std::string &p : parts) {
        if (!isSafeName(p))
            return std::nullopt;
        target /= p;
    }
    // A symbolic link inside the folder must not lead out of it.
    std::error_code ec;
    const fs::path realBase = fs::weakly_canonical(base, ec);
    if (ec)
        return std::nullopt;
    const fs::path realTarget = fs::weakly_canonical(target, ec);
    if (ec)
        return std::nullopt;
    auto b = realBase.begin();
    auto t = realTarget.begin();
    for (; b != realBase.end(); ++b, ++t) {
        if (b->empty() && std::next(b) == realBase.end())
            break; // a trailing separator of the base
        if (t == realTarget.end() || *b != *t)
            return std::nullopt;
    }
    return target;
}

} // namespace SafePath
