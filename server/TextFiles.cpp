#include "TextFiles.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace TextFiles {

bool writeWhole(const QString &path, const QByteArray &bytes, QString *error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Не удаётся записать файл «%1»: %2")
                         .arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}

QString readSmall(const QString &path, qint64 maxBytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maxBytes)
        return {};
    const QByteArray bytes = file.read(maxBytes);
    return bytes.isEmpty() ? QStringLiteral("") : QString::fromUtf8(bytes);
}

} // namespace TextFiles
