#include "TextFile.h"

#include "FileKind.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

namespace TextFile {

namespace {
bool fail(QString *error, const QString &text) {
    if (error)
        *error = text;
    return false;
}
} // namespace

bool read(const QString &path, qint64 maxBytes, QString *text, QString *error) {
    text->clear();
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    const QString shown = QDir::toNativeSeparators(path);
    // A folder or a pipe in the file's place is told as what it is (reading a pipe would wait for ever).
    if (FileKind::of(path) != FileKind::Kind::File)
        return fail(error, QStringLiteral("Файл %1 не прочитан: %2.").arg(shown, FileKind::problem(path)));
    if (info.size() > maxBytes)
        return fail(error,
                    QStringLiteral("Файл %1 больше %2 КБ и не прочитан.").arg(shown).arg(maxBytes / 1024));
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return fail(error, QStringLiteral("Не удалось прочитать файл %1: %2").arg(shown, f.errorString()));
    // The size may have grown since it was looked at: never more than the limit is read.
    const QByteArray bytes = f.read(maxBytes);
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString decoded = utf8.decode(bytes);
    if (utf8.hasError()) {
        QStringDecoder cp1251("windows-1251");
        if (cp1251.isValid())
            decoded = cp1251.decode(bytes);
    }
    if (decoded.startsWith(QChar(0xFEFF)))
        decoded.remove(0, 1);
    *text = decoded;
    return true;
}

bool write(const QString &path, const QString &text, QString *error) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(text.toUtf8()) < 0 || !f.commit())
        return fail(error, QStringLiteral("Не удалось записать файл %1: %2")
                               .arg(QDir::toNativeSeparators(path), f.errorString()));
    return true;
}

} // namespace TextFile
