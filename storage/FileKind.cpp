#include "FileKind.h"

#include <QFile>
#include <cerrno>
#include <sys/stat.h>

namespace FileKind {

Kind of(const QString &path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat st {};
    if (::stat(name.constData(), &st) != 0) {
        const int error = errno;
        if (error == ELOOP)
            return Kind::LinkLoop;
        struct stat link {};
        if (::lstat(name.constData(), &link) == 0 && S_ISLNK(link.st_mode))
            return Kind::BrokenLink;
        return Kind::Missing;
    }
    if (S_ISREG(st.st_mode))
        return Kind::File;
    if (S_ISDIR(st.st_mode))
        return Kind::Folder;
    if (S_ISFIFO(st.st_mode))
        return Kind::Pipe;
    if (S_ISSOCK(st.st_mode))
        return Kind::Socket;
    if (S_ISCHR(st.st_mode) || S_ISBLK(st.st_mode))
        return Kind::Device;
    return Kind::Other;
}

QString problem(const QString &path) {
    switch (of(path)) {
    case Kind::File:
        return {};
    case Kind::Missing:
        return QStringLiteral("файл не найден");
    case Kind::Folder:
        return QStringLiteral("это папка, а не файл");
    case Kind::Pipe:
        return QStringLiteral("это именованный канал (FIFO), а не файл");
    case Kind::Socket:
        return QStringLiteral("это сокет, а не файл");
    case Kind::Device:
        return QStringLiteral("это устройство, а не файл");
    case Kind::BrokenLink:
        return QStringLiteral("это ссылка на файл, которого нет");
    case Kind::LinkLoop:
        return QStringLiteral("это ссылка, которая указывает сама на себя");
    case Kind::Other:
        break;
    }
    return QStringLiteral("это не обычный файл");
}

} // namespace FileKind
