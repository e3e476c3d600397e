#pragma once
// Names and paths that come from a request (an account key, a picture's folder and name, a path to
// delete) are checked here before they touch the data folder: nothing may leave the folder it is
// meant for, by "..", an absolute path, a backslash, a NUL or a symbolic link.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SafePath {

// One name of a path: not empty, not "." or "..", no "/", "\", NUL or other control character,
// at most 255 bytes.
bool isSafeName(std::string_view name);

// "a/b/c" split into its names; nullopt when the text is absolute, empty, or any name is unsafe.
std::optional<std::vector<std::string>> split(std::string_view relative);

// base / parts when the result, with every symbolic link resolved, still lies inside base.
std::optional<std::filesystem::path> resolve(const std::filesystem::path &base,
                                             const std::vector<std::string> &parts);

} // namespace SafePath
