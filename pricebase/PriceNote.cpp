#include "PriceNote.h"

#include "storage/TextFile.h"

#include <QDir>

namespace PriceNote {

QString path(const QString &dataFolder) {
    return QDir(dataFolder).filePath(QStringLiteral("Sh/prim.txt"));
}

bool read(const QString &dataFolder, QString *text, QString *error) {
    return TextFile::read(path(dataFolder), kMaxBytes, text, error);
}

bool write(const QString &dataFolder, const QString &text, QString *error) {
    return TextFile::write(path(dataFolder), text, error);
}

} // namespace PriceNote
