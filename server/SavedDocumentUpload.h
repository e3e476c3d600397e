#pragma once
// The upload after save: when the option "Автосохранение на сервер" is on, each saved document file
// goes to the document store with the object address of the estimate, on a thread of its own. The
// save never waits for it. A save made while an upload runs is uploaded after it (only the newest of
// such saves). Each upload ends with uploaded or failed.

#include "DocumentStore.h"

#include <QObject>
#include <memory>

class StoreThread;
class TransferControl;

class SavedDocumentUpload : public QObject {
    Q_OBJECT
public:
    explicit SavedDocumentUpload(QObject *parent = nullptr);
    ~SavedDocumentUpload() override;

    void setAccess(const StoreAccess &access) { m_access = access; }
    const StoreAccess &access() const { return m_access; }

    void upload(const QString &path, const QString &address);
    // An upload runs or waits.
    bool busy() const { return m_running; }
    // Ends the running upload (nothing is kept of it) and drops the waiting one.
    void cancel();

signals:
    // name: the file's name as stored; data: the upload's time, which tells its row apart.
    void uploaded(const QString &path, const QString &name, const QString &data);
    void failed(const QString &path, const QString &message);
    // No upload runs or waits any more.
    void idle();

private:
    void next();

    StoreThread *m_thread;
    StoreAccess m_access;
    std::shared_ptr<TransferControl> m_control;
    bool m_running = false;
    QString m_waitingPath;
    QString m_waitingAddress;
};
