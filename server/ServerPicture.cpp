#include "ServerPicture.h"

#include "fileserver/Protocol.h"

namespace ServerPicture {

QString folderOf(const QString &address) {
    static const QString forbidden = QStringLiteral("/\\\"|*?:<>");
    QString folder = address;
    for (QChar &c : folder)
        if (forbidden.contains(c) || c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = QLatin1Char('`');
    return folder;
}

QString relativePath(const QString &name, const QString &address) {
    const QString folder = folderOf(address);
    QString path = QString::fromLatin1(Protocol::kPictureFolder) + QLatin1Char('/');
    if (!folder.isEmpty())
        path += folder + QLatin1Char('/');
    return path + name;
}

QString urlPath(const QString &key, const QString &name, const QString &address) {
    return QString::fromLatin1(Protocol::kAccountsRoot) + key + QLatin1Char('/') +
           relativePath(name, address);
}

} // namespace ServerPicture
