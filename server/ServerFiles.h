#pragma once
// The server files as the window TServerSmeta works with them, without widgets: the listing of the
// document store, the upload and download of a file (a picture goes to and comes from the file
// server, its row holds only its description), the deletions, and the preview of a picture. The
// store's statements run on a StoreThread and the pictures through the program's HTTP client, so the
// window never waits; a transfer reports its progress and can be cancelled.

#include "DocumentStore.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <memory>

class RemoteCall;
class RemoteClient;
class StoreThread;
class TransferControl;

class ServerFiles : public QObject {
    Q_OBJECT
public:
    // http: the client of the program's file server (pictures).
    explicit ServerFiles(RemoteClient *http, QObject *parent = nullptr);
    ~ServerFiles() override;

    void setAccess(const StoreAccess &access);
    const StoreAccess &access() const { return m_access; }
    // Why the store cannot be used (not set up, a key that cannot name a table); empty when it can.
    QString problem() const { return m_access.problem(); }
    // The connection test before every remote action.
    bool connectionPresent() const;

    // Connects when needed (the account's table is made), then reads the addresses and the rows of
    // the filter: listed, or listFailed.
    void read(const FileFilter &filter);
    // Closes the connection (the window was left); the next reading opens it again.
    void disconnectStore();

    // One transfer or deletion at a time; each ends with finished.
    bool busy() const { return m_busy; }
    // Uploads the file with the given object address. The size rule is checked by the caller
    // (StoredFiles::sizeProblem) and again here.
    void upload(const QString &path, const QString &address);
    // Writes the row's file to target (through a temporary file: target is replaced only by a whole
    // file).
    void download(const StoredFile &row, const QString &target);
    // Deletes the row; the picture file goes from the file server once no other row describes it.
    void remove(const StoredFile &row);
    void removeAll();
    void cancel();
    // Bytes moved by the running transfer, and its total (0 while unknown).
    qint64 done() const;
    qint64 total() const;

    // Fetches a row's picture for the preview: previewReady with the picture scaled to the width, or a
    // null image when it cannot be shown.
    void preview(const StoredFile &row, int width);

    StoreThread *thread() const { return m_thread; }

signals:
    void listed(const QStringList &addresses, const QList<StoredFile> &files);
    void listFailed(const QString &message);
    // message: what was done, or why not (in Russian); ok false and cancelled true when the user
    // cancelled.
    void finished(bool ok, bool cancelled, const QString &message);
    void previewReady(const StoredFile &row, const QImage &image, const QString &problem);

private:
    void start();
    void end(bool ok, bool cancelled, const QString &message);
    void track(RemoteCall *call);
    // Writes the row; the bytes of a file other than a picture are read from path on the store's thread.
    void insertRow(const StoredFile &row, const QString &path);
    void deletePicture(const StoredFile &row);
    QString pictureProblem() const;

    RemoteClient *m_http;
    StoreThread *m_thread;
    StoreAccess m_access;
    bool m_busy = false;
    std::shared_ptr<TransferControl> m_control;
    QPointer<RemoteCall> m_call;
    qint64 m_httpDone = 0;
    qint64 m_httpTotal = 0;
    QPointer<RemoteCall> m_previewCall;
};

namespace StoredFiles {
// On the store's thread: the row with the bytes of the file at path (read by readForUpload; none for
// an empty path, a picture's row), written to the store of access.
DocumentStore::Result upload(DocumentStore &store, const StoreAccess &access, StoredFile *row,
                             const QString &path, TransferControl *control);
// The bytes of a local file to upload, checked by the size rule. A SQLite database in write-ahead-log
// mode or in the middle of a write (the program's own databases are open and written by it) is read
// from a consistent snapshot; every other file, a document file among them, byte for byte.
bool readForUpload(const QString &path, QByteArray *bytes, QString *error);
} // namespace StoredFiles
