#include "SavedDocumentUpload.h"

#include "ServerFiles.h"
#include "StoreThread.h"
#include "TransferControl.h"

namespace {
struct Uploaded {
    DocumentStore::Result result;
    StoredFile row;
};
} // namespace

SavedDocumentUpload::SavedDocumentUpload(QObject *parent)
    : QObject(parent), m_thread(new StoreThread(this)) {}

SavedDocumentUpload::~SavedDocumentUpload() {
    cancel();
}

void SavedDocumentUpload::cancel() {
    m_waitingPath.clear();
    if (m_control)
        m_control->cancel();
}

void SavedDocumentUpload::upload(const QString &path, const QString &address) {
    m_waitingPath = path;
    m_waitingAddress = address;
    if (!m_running)
        next();
}

void SavedDocumentUpload::next() {
    if (m_waitingPath.isEmpty()) {
        m_running = false;
        m_control.reset();
        emit idle();
        return;
    }
    m_running = true;
    const QString path = m_waitingPath;
    const QString address = m_waitingAddress;
    m_waitingPath.clear();
    m_control = std::make_shared<TransferControl>();
    const std::shared_ptr<TransferControl> control = m_control;
    const StoreAccess access = m_access;
    m_thread->run<Uploaded>(
        this,
        [path, address, access, control](DocumentStore &store) {
            Uploaded u;
            u.row = StoredFiles::describe(path, address);
            u.result = StoredFiles::upload(store, access, &u.row, path, control.get());
            return u;
        },
        [this, path](const Uploaded &u) {
            if (u.result)
                emit uploaded(path, u.row.name, u.row.data);
            else
                emit failed(path, u.result.error);
            next();
        });
}
