#pragma once
// What lies at a path that should be a file the program reads: a folder, a named pipe, a device or a
// link to nowhere is told as what it is (and never opened: reading a pipe would wait for ever).

#include <QString>

namespace FileKind {

enum class Kind { Missing, File, Folder, Pipe, Socket, Device, BrokenLink, LinkLoop, Other };

// The kind of what `path` names, links followed.
Kind of(const QString &path);

// Empty for an existing regular file; otherwise, in Russian, what is there instead: "это папка, а не
// файл", "файл не найден", ...
QString problem(const QString &path);

} // namespace FileKind
