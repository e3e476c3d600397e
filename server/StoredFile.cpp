#include "StoredFile.h"

#include "ServerFileKinds.h"
#include "storage/TextValues.h"

#include <QDir>
#include <QFileInfo>
#include <QSysInfo>

namespace StoredFiles {

namespace {
const QString kTimeForm = QStringLiteral("dd.MM.yyyy HH:mm:ss");
}

SizeProblem sizeProblem(qint64 size) {
    if (size <= 0)
        return SizeProblem::Empty;
    if (size > kSizeLimit)
        return SizeProblem::TooLarge;
    return SizeProblem::None;
}

QString sizeMessage(SizeProblem problem) {
    switch (problem) {
    case SizeProblem::Empty:
        return QStringLiteral("Не могу сохранить, файл повреждён");
    case SizeProblem::TooLarge:
        return QStringLiteral("Размер файла больше 15 Мб");
    case SizeProblem::None:
        break;
    }
    return {};
}

QString timeText(const QDateTime &time) {
    return time.toString(kTimeForm);
}

QDateTime parseTime(const QString &text) {
    QDateTime t = QDateTime::fromString(text.trimmed(), kTimeForm);
    if (!t.isValid()) // a row written without seconds
        t = QDateTime::fromString(text.trimmed(), QStringLiteral("dd.MM.yyyy H:mm"));
    return t;
}

QString currentUser() {
    QString login = qEnvironmentVariable("USER");
    if (login.isEmpty())
        login = QDir::home().dirName();
    return login + QLatin1Char('@') + QSysInfo::machineHostName();
}

StoredFile describe(const QString &path, const QString &address) {
    const QFileInfo fi(path);
    StoredFile f;
    f.data = timeText(QDateTime::currentDateTime());
    f.name = TextValues::nameToStored(fi.fileName());
    f.type = ServerFileKinds::typeOf(fi.fileName());
    QDateTime changed = fi.lastModified();
    // A database's latest changes may still be in its write-ahead log.
    const QFileInfo wal(path + QStringLiteral("-wal"));
    if (wal.exists() && wal.size() > 0 && wal.lastModified() > changed)
        changed = wal.lastModified();
    f.datefile = timeText(changed);
    f.address = TextValues::nameToStored(address.trimmed());
    f.user = currentUser();
    return f;
}

bool isPeopleBase(const QString &name) {
    return name.compare(QStringLiteral("peoplebase.db"), Qt::CaseInsensitive) == 0;
}

bool isCashBase(const QString &name) {
    return name.compare(QStringLiteral("cashbase.db"), Qt::CaseInsensitive) == 0;
}

} // namespace StoredFiles
