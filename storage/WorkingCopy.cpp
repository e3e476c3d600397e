#include "WorkingCopy.h"

#include "ModuleSQL.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sqlite3.h>

namespace {

struct Note {
    bool present = false;
    QString document;
    bool changed = false;
};

Note readNote(const QString &path) {
    Note n;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return n;
    n.present = true;
    // A note is a few hundred bytes; anything longer is not one of ours.
    const QJsonObject o = QJsonDocument::fromJson(f.read(64 * 1024)).object();
    n.document = o.value(QStringLiteral("document")).toString();
    // A note that cannot be read keeps the copy: better offered once too often than lost.
    n.changed = o.isEmpty() || o.value(QStringLiteral("changed")).toBool();
    return n;
}

const char *const kCompanions[] = {"", "-journal", "-wal", "-shm"};

void removeDatabase(const QString &path) {
    for (const char *suffix : kCompanions)
        QFile::remove(path + QLatin1String(suffix));
}

// Moves a database with its journal, and plays the journal back: a crash in the middle of a write
// leaves the database as the last complete write had it.
bool moveDatabase(const QString &from, const QString &to) {
    removeDatabase(to);
    if (!QFile::rename(from, to))
        return false;
    for (const char *suffix : {"-journal", "-wal"})
        if (QFile::exists(from + QLatin1String(suffix)))
            QFile::rename(from + QLatin1String(suffix), to + QLatin1String(suffix));
    QFile::remove(from + QStringLiteral("-shm"));
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(to).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK)
        sqlite3_exec(db, "PRAGMA schema_version", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return true;
}

bool running(qint64 pid) {
    return pid > 0 && (::kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH);
}

} // namespace

WorkingCopy::WorkingCopy(const QString &dataFolder) : m_folder(QDir::cleanPath(dataFolder)) {}

WorkingCopy::~WorkingCopy() {
    release();
}

QString WorkingCopy::relativePath(Db db, int slot) {
    const QString base = db == Db::ReturnAction ? QStringLiteral("actions") : QStringLiteral("smeta");
    return slot <= 1 ? QStringLiteral("Sp/%1.db").arg(base)
                     : QStringLiteral("Sp/%1-%2.db").arg(base).arg(slot);
}

QString WorkingCopy::path(Db db) const {
    if (db == Db::Smeta || db == Db::ReturnAction)
        return QDir(m_folder).filePath(relativePath(db, std::max(m_slot, 1)));
    return QDir(m_folder).filePath(::relativePath(db));
}

QString WorkingCopy::lockPath(int slot) const {
    return QDir(m_folder).filePath(relativePath(Db::Smeta, slot) + QStringLiteral(".lock"));
}

QString WorkingCopy::notePath(int slot) const {
    return QDir(m_folder).filePath(relativePath(Db::Smeta, slot) + QStringLiteral(".note"));
}

void WorkingCopy::applyTo(TModuleSQL &module) const {
    module.setFilePath(Db::Smeta, path(Db::Smeta));
    module.setFilePath(Db::ReturnAction, path(Db::ReturnAction));
}

bool WorkingCopy::claim(QString *error) {
    if (m_slot > 0)
        return true;
    QDir().mkpath(QDir(m_folder).filePath(QStringLiteral("Sp")));
    QString why;
    for (int n = 1; n <= kMaxSlots; ++n) {
        auto lock = std::make_unique<QLockFile>(lockPath(n));
        // Only a holder that no longer runs makes a lock stale, however long it has been held.
        lock->setStaleLockTime(0);
        if (!lock->tryLock(0)) {
            if (lock->error() == QLockFile::LockFailedError)
                continue; // another running program's copy
            why = QStringLiteral("Нет права записи в папку «%1»: рабочая копия сметы не может быть создана.")
                      .arg(QDir::toNativeSeparators(QDir(m_folder).filePath(QStringLiteral("Sp"))));
            break;
        }
        // Nobody holds this copy: what is noted beside it was left by a program that crashed.
        collect(n);
        if (!m_lock) {
            m_lock = std::move(lock);
            m_slot = n;
        }
    }
    collectStale();
    std::sort(m_leftovers.begin(), m_leftovers.end(),
              [](const Leftover &a, const Leftover &b) { return a.written > b.written; });
    if (m_slot == 0) {
        if (error)
            *error = why.isEmpty()
                         ? QStringLiteral("В папке данных уже работают %1 копий программы.").arg(kMaxSlots)
                         : why;
        return false;
    }
    return true;
}

void WorkingCopy::collect(int slot) {
    const QString note = notePath(slot);
    const Note n = readNote(note);
    if (!n.present)
        return;
    const QString db = QDir(m_folder).filePath(relativePath(Db::Smeta, slot));
    const QFileInfo fi(db);
    if (n.changed && fi.isFile() && fi.size() > 0) {
        const QString temp = QDir(m_folder).filePath(QStringLiteral("Temp"));
        QDir().mkpath(temp);
        const QString target = QDir(temp).filePath(
            QStringLiteral("recovery-%1-%2.db").arg(QCoreApplication::applicationPid()).arg(slot));
        if (moveDatabase(db, target)) {
            QFile::remove(target + QStringLiteral(".note"));
            QFile::copy(note, target + QStringLiteral(".note"));
            m_leftovers.append({target, n.document, fi.lastModified()});
        }
    }
    if (slot > 1) {
        removeDatabase(db);
        removeDatabase(QDir(m_folder).filePath(relativePath(Db::ReturnAction, slot)));
    }
    QFile::remove(note);
}

void WorkingCopy::collectStale() {
    // Copies taken out by a program that then crashed before it had offered them.
    const QDir temp(QDir(m_folder).filePath(QStringLiteral("Temp")));
    static const QRegularExpression name(QStringLiteral("^recovery-(\\d+)-(\\d+)\\.db$"));
    const qint64 own = QCoreApplication::applicationPid();
    for (const QString &entry : temp.entryList({QStringLiteral("recovery-*.db")}, QDir::Files)) {
        const QRegularExpressionMatch m = name.match(entry);
        const qint64 pid = m.captured(1).toLongLong();
        if (!m.hasMatch() || pid == own || running(pid))
            continue;
        const QString from = temp.filePath(entry);
        const QString to = temp.filePath(QStringLiteral("recovery-%1-%2.db").arg(own).arg(m.captured(2)));
        if (QFileInfo::exists(to) || !moveDatabase(from, to))
            continue; // another program took it first
        const Note n = readNote(from + QStringLiteral(".note"));
        QFile::rename(from + QStringLiteral(".note"), to + QStringLiteral(".note"));
        m_leftovers.append({to, n.document, QFileInfo(to).lastModified()});
    }
}

void WorkingCopy::removeLeftover(const Leftover &leftover) {
    removeDatabase(leftover.file);
    QFile::remove(leftover.file + QStringLiteral(".note"));
    m_leftovers.erase(std::remove_if(m_leftovers.begin(), m_leftovers.end(),
                                     [&](const Leftover &l) { return l.file == leftover.file; }),
                      m_leftovers.end());
}

void WorkingCopy::note(const QString &document, bool changed) {
    if (m_slot == 0)
        return;
    QSaveFile f(notePath(m_slot));
    if (!f.open(QIODevice::WriteOnly))
        return;
    f.write(QJsonDocument(QJsonObject{{QStringLiteral("document"), document},
                                      {QStringLiteral("changed"), changed},
                                      {QStringLiteral("pid"), QCoreApplication::applicationPid()}})
                .toJson(QJsonDocument::Compact));
    f.commit();
}

void WorkingCopy::release() {
    if (!m_lock)
        return;
    QFile::remove(notePath(m_slot));
    if (m_slot > 1) {
        removeDatabase(path(Db::Smeta));
        removeDatabase(path(Db::ReturnAction));
    }
    m_lock->unlock();
    m_lock.reset();
    m_slot = 0;
}
