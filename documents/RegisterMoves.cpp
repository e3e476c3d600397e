#include "RegisterMoves.h"

#include "estimate/DocumentFile.h"
#include "estimate/DocumentLock.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"
#include "storage/Transaction.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

namespace RegisterMoves {

namespace {

using Registration::List;

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

List otherList(List list) {
    return list == List::Drafts ? List::Documents : List::Drafts;
}

void removeWithJournal(const QString &path) {
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-journal"));
}

bool sameFile(const QString &a, const QString &b) {
    const QFileInfo fa(a), fb(b);
    if (fa.exists() && fb.exists())
        return fa.canonicalFilePath() == fb.canonicalFilePath();
    return QDir::cleanPath(fa.absoluteFilePath()) == QDir::cleanPath(fb.absoluteFilePath());
}

// The lock of this very program (the estimate open in the main window) does not stand in the way.
bool heldByThisProgram(const DocumentLock::Holder &holder) {
    return holder.pid == QCoreApplication::applicationPid() &&
           (holder.host.isEmpty() || holder.host == QSysInfo::machineHostName());
}

Outcome refused(const QString &name, const QString &why) {
    Outcome out;
    out.error = QStringLiteral("Не удалось переместить «%1»: %2. Документ и его запись остались на месте.")
                    .arg(name, why);
    return out;
}

} // namespace

QString draftTarget(const QString &draftsFolder, const RegisterRow &row) {
    const QFileInfo source(row.fileName);
    QString base = CustomerFolder::cleanPart(row.name);
    if (base.isEmpty())
        base = CustomerFolder::cleanPart(source.completeBaseName());
    if (base.isEmpty())
        base = QStringLiteral("Черновик");
    const QString suffix = QLatin1Char('.') + DocumentFile::kExtension;
    const QDir folder(draftsFolder);
    QString path = folder.filePath(base + suffix);
    for (int n = 2; QFileInfo::exists(path) && !sameFile(path, row.fileName); ++n)
        path = folder.filePath(QStringLiteral("%1 (%2)").arg(base).arg(n) + suffix);
    return QDir::cleanPath(path);
}

QString documentFolder(TModuleSQL &module, const RegisterRow &row, const CustomerFolder::Options &options) {
    return CustomerFolder::makeFolderForDocument(module, DocumentFile::documentsFolder(module.dataFolder()),
                                                 row.client, row.object, options);
}

Outcome move(TModuleSQL &module, List from, qlonglong id, const QString &targetPath) {
    QSqlDatabase mydoc = module.database(Db::MyDoc);
    if (!mydoc.isOpen()) {
        Outcome out;
        out.error = module.failure(Db::MyDoc);
        return out;
    }
    RegisterRow row;
    QString why;
    if (!RegisterRows::readOne(mydoc, from, id, &row, &why))
        return refused(QString::number(id), why);
    const QString name = row.name.isEmpty() ? QFileInfo(row.fileName).completeBaseName() : row.name;
    const QString source = QFileInfo(row.fileName).absoluteFilePath();
    const QString target = QDir::cleanPath(QFileInfo(targetPath).absoluteFilePath());
    const List to = otherList(from);

    if (row.fileName.isEmpty() || !QFileInfo(source).isFile())
        return refused(name, QStringLiteral("файл «%1» не найден").arg(shown(row.fileName)));
    const bool inPlace = sameFile(source, target);
    if (!inPlace && QFileInfo::exists(target))
        return refused(name,
                       QStringLiteral("файл «%1» уже существует, выберите другое имя").arg(shown(target)));
    DocumentLock lock;
    if (lock.acquire(source) == DocumentLock::State::HeldByOther && !heldByThisProgram(lock.holder()))
        return refused(name, QStringLiteral("документ «%1» открыт в другой копии программы (процесс %2): "
                                            "закройте его там")
                                 .arg(shown(source))
                                 .arg(lock.holder().pid));

    // 1. The copy, beside its target under a hidden name that a later save there clears away.
    QString linked = source;
    if (!inPlace) {
        const QString folder = QFileInfo(target).absolutePath();
        if (!QDir().mkpath(folder))
            return refused(name, QStringLiteral("не удалось создать папку «%1»").arg(shown(folder)));
        linked = SqliteSnapshot::tempPrefix(target) + QStringLiteral("move");
        removeWithJournal(linked);
        why = SqliteSnapshot::copyFile(source, linked);
        if (!why.isEmpty()) {
            removeWithJournal(linked);
            return refused(name, why);
        }
    }
    auto takeBack = [&](const QString &reason) {
        if (!inPlace)
            removeWithJournal(linked);
        return refused(name, reason);
    };

    // 2. The row and the file's link, then the copy in its place, all before the register keeps it.
    Transaction t(mydoc);
    if (!t.active())
        return takeBack(t.error());
    const qlonglong newId = Registration::transfer(mydoc, from, id, target, &why);
    if (newId == 0)
        return takeBack(why);
    if (!Registration::relinkFile(linked, newId, Registration::noteOf(to), &why))
        return takeBack(why);
    if (!inPlace) {
        if (!SqliteSnapshot::syncPath(linked))
            return takeBack(QStringLiteral("копия «%1» не записана на диск").arg(shown(target)));
        why = SqliteSnapshot::replaceFile(linked, target);
        if (!why.isEmpty())
            return takeBack(QStringLiteral("%1 («%2»)").arg(why, shown(target)));
    }
    if (!t.commit()) {
        if (inPlace)
            Registration::relinkFile(source, id, Registration::noteOf(from));
        else
            removeWithJournal(target);
        return refused(name, t.error());
    }

    // 3. Only now the old file goes.
    Outcome out;
    out.ok = true;
    out.newPath = target;
    out.newId = newId;
    lock.release();
    if (!inPlace && !QFile::remove(source))
        out.warning = QStringLiteral("Документ перемещён в «%1», но прежний файл «%2» удалить не удалось: "
                                     "удалите его сами.")
                          .arg(shown(target), shown(source));
    return out;
}

} // namespace RegisterMoves
