#pragma once
// A lock file beside an open document, so that a second copy of the program that opens the same
// document is warned. The lock names the process that holds it; a lock left by a process that no
// longer runs is taken over.

#include <QString>
#include <memory>

class QLockFile;

class DocumentLock {
public:
    enum class State {
        Locked,      // this object holds the lock now
        HeldByOther, // another running program holds it (see holder())
        Unavailable, // no lock could be made (a read-only folder): the document opens unlocked
    };
    struct Holder {
        qint64 pid = 0;
        QString host;
        QString application;
    };

    DocumentLock();
    ~DocumentLock();
    DocumentLock(const DocumentLock &) = delete;
    DocumentLock &operator=(const DocumentLock &) = delete;

    // The lock file of a document: hidden, beside it.
    static QString lockPathFor(const QString &document);

    // Releases any lock held and tries to lock `document`.
    State acquire(const QString &document);
    // Who holds the lock after acquire gave HeldByOther.
    Holder holder() const { return m_holder; }
    void release();
    QString document() const { return m_document; }
    bool isLocked() const;

    // The warning shown to the user when another copy holds the document.
    static QString warningText(const QString &document, const Holder &holder);

private:
    std::unique_ptr<QLockFile> m_lock;
    QString m_document;
    Holder m_holder;
};
