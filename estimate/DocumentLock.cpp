#include "DocumentLock.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>

DocumentLock::DocumentLock() = default;

DocumentLock::~DocumentLock() {
    release();
}

QString DocumentLock::lockPathFor(const QString &document) {
    const QFileInfo fi(document);
    return fi.absolutePath() + QStringLiteral("/.") + fi.fileName() + QStringLiteral(".lock");
}

DocumentLock::State DocumentLock::acquire(const QString &document) {
    release();
    m_holder = {};
    auto lock = std::make_unique<QLockFile>(lockPathFor(document));
    // Only a dead holder makes a lock stale, however long the document has been open.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) {
        m_lock = std::move(lock);
        m_document = document;
        return State::Locked;
    }
    if (lock->error() == QLockFile::LockFailedError) {
        lock->getLockInfo(&m_holder.pid, &m_holder.host, &m_holder.application);
        return State::HeldByOther;
    }
    return State::Unavailable;
}

void DocumentLock::release() {
    if (m_lock) {
        m_lock->unlock();
        m_lock.reset();
    }
    m_document.clear();
}

bool DocumentLock::isLocked() const {
    return m_lock && m_lock->isLocked();
}

QString DocumentLock::warningText(const QString &document, const Holder &holder) {
    QString who = QStringLiteral("в другой копии программы");
    if (holder.pid > 0)
        who += QStringLiteral(" (процесс %1%2)")
                   .arg(holder.pid)
                   .arg(holder.host.isEmpty() ? QString() : QStringLiteral(" на компьютере ") + holder.host);
    return QStringLiteral("Документ «%1» уже открыт %2. Если сохранять его в обеих копиях, одна перезапишет "
                          "изменения другой. Открыть документ всё равно?")
        .arg(QDir::toNativeSeparators(document), who);
}
