#include "OfficeTemplates.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace OfficeTemplates {

namespace {
const QString kResourceFolder = QStringLiteral(":/templates/");
} // namespace

QStringList fileNames() {
    return QDir(kResourceFolder).entryList(QDir::Files, QDir::Name);
}

QString path(const QString &dataFolder, const QString &fileName) {
    return QDir(dataFolder).filePath(QStringLiteral("Sh/") + fileName);
}

QStringList ensureDefaults(const QString &dataFolder, QString *error) {
    QStringList written;
    QStringList failed;
    const QString folder = QDir(dataFolder).filePath(QStringLiteral("Sh"));
    QDir().mkpath(folder);
    for (const QString &name : fileNames()) {
        const QString target = path(dataFolder, name);
        if (QFileInfo::exists(target))
            continue;
        // Written under a temporary name first, so that a half-written template never takes the name.
        const QString temp = target + QStringLiteral(".part");
        QFile::remove(temp);
        if (!QFile::copy(kResourceFolder + name, temp)) {
            failed << QDir::toNativeSeparators(target);
            continue;
        }
        // Resource files come read-only; the user edits his templates.
        QFile::setPermissions(temp,
                              QFile::permissions(temp) | QFileDevice::WriteOwner | QFileDevice::WriteUser);
        if (!QFile::rename(temp, target)) {
            QFile::remove(temp);
            failed << QDir::toNativeSeparators(target);
            continue;
        }
        written << name;
    }
    if (error) {
        error->clear();
        if (!failed.isEmpty())
            *error = QStringLiteral("Не удалось записать шаблоны документов:\n%1").arg(failed.join(u'\n'));
    }
    return written;
}

} // namespace OfficeTemplates
