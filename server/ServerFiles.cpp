#include "ServerFiles.h"

#include "RemoteClient.h"
#include "ServerPicture.h"
#include "StoreThread.h"
#include "TransferControl.h"
#include "fileserver/Protocol.h"
#include "storage/SqliteSnapshot.h"
#include "storage/TextValues.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QImageReader>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QtConcurrent/QtConcurrentRun>

namespace {

struct Listing {
    DocumentStore::Result result;
    QStringList addresses;
    QList<StoredFile> files;
};

struct Outcome {
    DocumentStore::Result result;
    StoredFile row;
    int sharing = 0; // rows left that describe the same picture file
};

// Pictures are small next to the store's limit, but a reply may not be larger than a stored file.
const RemoteLimits kPictureLimits{30000, 15 * 60 * 1000, StoredFiles::kSizeLimit};
const RemoteLimits kPreviewLimits{15000, 60000, StoredFiles::kSizeLimit};
const RemoteLimits kDeleteLimits{15000, 30000, 64 * 1024};

QString shown(const QString &stored) {
    return TextValues::nameFromStored(stored);
}

// Writes bytes to target through a temporary file beside it; empty on success.
QString writeWhole(const QString &target, const QByteArray &bytes) {
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return QStringLiteral("Не удалось записать файл «%1»: %2")
            .arg(QDir::toNativeSeparators(target), out.errorString());
    return {};
}

// A database whose latest content may not be in the file itself: one in write-ahead-log mode (the
// program's shared databases), or one with a journal beside it (a write under way). Another file,
// a document file among them, goes as its bytes are.
bool needsSnapshot(const QString &path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = f.read(20);
    if (!header.startsWith(QByteArray("SQLite format 3\0", 16)) || header.size() < 20)
        return false;
    const bool wal = header.at(18) == 2 || header.at(19) == 2;
    return wal || QFileInfo::exists(path + QStringLiteral("-wal")) ||
           QFileInfo::exists(path + QStringLiteral("-journal"));
}

struct PreviewImage {
    QImage image;
    QString problem;
};

// The picture at the width it is shown, never larger than its own.
PreviewImage decodePreview(const QByteArray &bytes, int width) {
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && size.width() > width)
        reader.setScaledSize(QSize(width, qMax(1, size.height() * width / size.width())));
    PreviewImage p;
    p.image = reader.read();
    if (!p.image.isNull() && p.image.width() > width)
        p.image = p.image.scaledToWidth(width, Qt::SmoothTransformation);
    if (p.image.isNull())
        p.problem = QStringLiteral("Картинка не читается: %1").arg(reader.errorString());
    return p;
}

} // namespace

namespace StoredFiles {

DocumentStore::Result upload(DocumentStore &store, const StoreAccess &access, StoredFile *row,
                             const QString &path, TransferControl *control) {
    DocumentStore::Result r;
    QByteArray bytes;
    // Read here, off the window's thread.
    if (!path.isEmpty() && !readForUpload(path, &bytes, &r.error))
        return r;
    r = store.use(access);
    return r ? store.insert(row, bytes, control) : r;
}

bool readForUpload(const QString &path, QByteArray *bytes, QString *error) {
    bytes->clear();
    const QFileInfo fi(path);
    if (const SizeProblem p = sizeProblem(fi.exists() ? fi.size() : 0); p != SizeProblem::None) {
        *error = sizeMessage(p);
        return false;
    }
    QString source = path;
    QTemporaryDir snapshot;
    if (needsSnapshot(path)) {
        if (!snapshot.isValid()) {
            *error = QStringLiteral("Не удалось сделать временную копию базы «%1»: %2")
                         .arg(QDir::toNativeSeparators(path), snapshot.errorString());
            return false;
        }
        source = snapshot.filePath(fi.fileName());
        if (const QString why = SqliteSnapshot::copyFile(path, source); !why.isEmpty()) {
            *error = why;
            return false;
        }
    }
    QFile f(source);
    if (!f.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("Не удалось прочитать файл «%1»: %2")
                     .arg(QDir::toNativeSeparators(path), f.errorString());
        return false;
    }
    // The file may have grown since it was chosen.
    *bytes = f.read(kSizeLimit + 1);
    if (const SizeProblem p = sizeProblem(bytes->size()); p != SizeProblem::None) {
        bytes->clear();
        *error = sizeMessage(p);
        return false;
    }
    return true;
}

} // namespace StoredFiles

ServerFiles::ServerFiles(RemoteClient *http, QObject *parent)
    : QObject(parent), m_http(http), m_thread(new StoreThread(this)) {
    qRegisterMetaType<StoredFile>();
}

ServerFiles::~ServerFiles() {
    cancel();
}

void ServerFiles::setAccess(const StoreAccess &access) {
    m_access = access;
}

bool ServerFiles::connectionPresent() const {
    return RemoteClient::connectionPresentFor(m_access.host.trimmed());
}

QString ServerFiles::pictureProblem() const {
    if (!m_http || !m_http->isConfigured())
        return QStringLiteral(
            "Картинки хранятся на файловом сервере, а он не настроен: укажите его адрес в меню "
            "«Настройки» → «Файловый сервер…».");
    return {};
}

void ServerFiles::read(const FileFilter &filter) {
    const StoreAccess access = m_access;
    m_thread->run<Listing>(
        this,
        [access, filter](DocumentStore &store) {
            Listing l;
            l.result = store.use(access);
            if (l.result)
                l.result = store.addresses(&l.addresses);
            if (l.result)
                l.result = store.list(filter, &l.files);
            return l;
        },
        [this](const Listing &l) {
            if (l.result)
                emit listed(l.addresses, l.files);
            else
                emit listFailed(l.result.error);
        });
}

void ServerFiles::disconnectStore() {
    m_thread->run<bool>(
        this,
        [](DocumentStore &store) {
            store.close();
            return true;
        },
        [](const bool &) {});
}

void ServerFiles::start() {
    m_busy = true;
    m_control = std::make_shared<TransferControl>();
    m_call.clear();
    m_httpDone = m_httpTotal = 0;
}

void ServerFiles::end(bool ok, bool cancelled, const QString &message) {
    m_busy = false;
    m_call.clear();
    emit finished(ok, cancelled, message);
}

void ServerFiles::track(RemoteCall *call) {
    m_call = call;
    connect(call, &RemoteCall::progress, this, [this](qint64 done, qint64 total) {
        m_httpDone = done;
        m_httpTotal = total;
    });
}

qint64 ServerFiles::done() const {
    if (m_call)
        return m_httpDone;
    return m_control ? m_control->done() : 0;
}

qint64 ServerFiles::total() const {
    if (m_call)
        return m_httpTotal;
    return m_control ? m_control->total() : 0;
}

void ServerFiles::cancel() {
    // Cancelled first: an aborted request reports its end at once.
    if (m_control)
        m_control->cancel();
    if (m_call)
        m_call->abort();
}

void ServerFiles::upload(const QString &path, const QString &address) {
    if (m_busy)
        return;
    start();
    const StoredFile row = StoredFiles::describe(path, address);
    const QString name = shown(row.name);
    if (const StoredFiles::SizeProblem p = StoredFiles::sizeProblem(QFileInfo(path).size());
        p != StoredFiles::SizeProblem::None)
        return end(false, false, StoredFiles::sizeMessage(p));
    if (!ServerFileKinds::isPicture(row.type))
        return insertRow(row, path);
    if (const QString p = pictureProblem(); !p.isEmpty())
        return end(false, false, p);
    // The picture goes to the file server first; its row follows once the server has it.
    QList<QPair<QString, QString>> fields = {{Protocol::kFieldKey, m_access.table}};
    const QString folder = ServerPicture::folderOf(row.address);
    if (!folder.isEmpty())
        fields.append({Protocol::kFieldFolder, folder});
    RemoteCall *call = m_http->postFile(Protocol::kPostCashbase, fields, Protocol::kFieldFile, path, row.name,
                                        kPictureLimits);
    track(call);
    m_httpTotal = QFileInfo(path).size();
    connect(call, &RemoteCall::finished, this, [this, row, name](const RemoteResult &r) {
        m_call.clear();
        if (m_control->isCancelled())
            return end(false, true, QStringLiteral("Передача отменена."));
        if (!r.received || !r.text().contains(QString::fromUtf8(Protocol::kReplyUploaded)))
            return end(false, false,
                       QStringLiteral("Картинка «%1» не загружена на файловый сервер: %2")
                           .arg(name, r.error.isEmpty() ? r.text().left(300) : r.error));
        insertRow(row, QString());
    });
}

void ServerFiles::insertRow(const StoredFile &row, const QString &path) {
    const std::shared_ptr<TransferControl> control = m_control;
    const StoreAccess access = m_access;
    m_thread->run<Outcome>(
        this,
        [row, path, access, control](DocumentStore &store) {
            Outcome o;
            o.row = row;
            o.result = StoredFiles::upload(store, access, &o.row, path, control.get());
            return o;
        },
        [this](const Outcome &o) {
            if (o.result)
                end(true, false, QStringLiteral("Файл «%1» сохранён на сервере.").arg(shown(o.row.name)));
            else
                end(false, o.result.cancelled, o.result.error);
        });
}

void ServerFiles::download(const StoredFile &row, const QString &target) {
    if (m_busy)
        return;
    start();
    const QString name = shown(row.name);
    if (!ServerFileKinds::isPicture(row.type)) {
        const std::shared_ptr<TransferControl> control = m_control;
        const StoreAccess access = m_access;
        m_thread->run<Outcome>(
            this,
            [row, target, access, control](DocumentStore &store) {
                Outcome o;
                QByteArray bytes;
                o.result = store.use(access);
                if (o.result)
                    o.result = store.fetch(row.name, row.data, &o.row, &bytes, control.get());
                if (o.result) {
                    if (const QString why = writeWhole(target, bytes); !why.isEmpty()) {
                        o.result.ok = false;
                        o.result.error = why;
                    }
                }
                return o;
            },
            [this](const Outcome &o) { end(o.result.ok, o.result.cancelled, o.result.error); });
        return;
    }
    if (const QString p = pictureProblem(); !p.isEmpty())
        return end(false, false, p);
    RemoteCall *call =
        m_http->get(ServerPicture::urlPath(m_access.table, row.name, row.address), kPictureLimits);
    track(call);
    connect(call, &RemoteCall::finished, this, [this, target, name](const RemoteResult &r) {
        m_call.clear();
        if (m_control->isCancelled())
            return end(false, true, QStringLiteral("Передача отменена."));
        if (!r.statusOk())
            return end(false, false,
                       QStringLiteral("Картинка «%1» не получена с файлового сервера: %2")
                           .arg(name, r.error.isEmpty() ? r.statusText : r.error));
        const QString why = writeWhole(target, r.body);
        end(why.isEmpty(), false, why);
    });
}

void ServerFiles::remove(const StoredFile &row) {
    if (m_busy)
        return;
    start();
    const StoreAccess access = m_access;
    const bool picture = ServerFileKinds::isPicture(row.type);
    m_thread->run<Outcome>(
        this,
        [row, access, picture](DocumentStore &store) {
            Outcome o;
            o.row = row;
            o.result = store.use(access);
            if (o.result)
                o.result = store.remove(row.name, row.data);
            if (o.result && picture)
                o.result = store.picturesSharing(row.name, row.address, &o.sharing);
            return o;
        },
        [this, picture](const Outcome &o) {
            if (!o.result)
                return end(false, false, o.result.error);
            // Another upload of the same picture still needs the file.
            if (picture && o.sharing == 0 && pictureProblem().isEmpty())
                return deletePicture(o.row);
            end(true, false, QStringLiteral("Файл «%1» удалён с сервера.").arg(shown(o.row.name)));
        });
}

void ServerFiles::deletePicture(const StoredFile &row) {
    RemoteCall *call =
        m_http->postForm(Protocol::kDeleteFile,
                         {{Protocol::kFieldKey, m_access.table},
                          {Protocol::kFieldPath, ServerPicture::relativePath(row.name, row.address)}},
                         kDeleteLimits);
    track(call);
    const QString name = shown(row.name);
    connect(call, &RemoteCall::finished, this, [this, name](const RemoteResult &r) {
        m_call.clear();
        // The row is gone; a picture the file server no longer had is no failure.
        if (r.statusOk() || r.status == 404)
            return end(true, false, QStringLiteral("Файл «%1» удалён с сервера.").arg(name));
        end(false, false,
            QStringLiteral(
                "Запись о картинке «%1» удалена, но сама картинка осталась на файловом сервере: %2")
                .arg(name, r.error));
    });
}

void ServerFiles::removeAll() {
    if (m_busy)
        return;
    start();
    const StoreAccess access = m_access;
    m_thread->run<DocumentStore::Result>(
        this,
        [access](DocumentStore &store) {
            DocumentStore::Result r = store.use(access);
            return r ? store.removeAll() : r;
        },
        [this](const DocumentStore::Result &r) {
            end(r.ok, false, r.ok ? QStringLiteral("Все файлы удалены с сервера.") : r.error);
        });
}

void ServerFiles::preview(const StoredFile &row, int width) {
    if (RemoteCall *old = m_previewCall) {
        m_previewCall.clear();
        old->abort();
    }
    if (!ServerFileKinds::isPicture(row.type) || !pictureProblem().isEmpty()) {
        emit previewReady(row, QImage(), pictureProblem());
        return;
    }
    RemoteCall *call =
        m_http->get(ServerPicture::urlPath(m_access.table, row.name, row.address), kPreviewLimits);
    m_previewCall = call;
    connect(call, &RemoteCall::finished, this, [this, row, width, call](const RemoteResult &r) {
        if (m_previewCall != call)
            return; // another row was chosen meanwhile
        m_previewCall.clear();
        if (!r.statusOk()) {
            emit previewReady(row, QImage(), r.error.isEmpty() ? r.statusText : r.error);
            return;
        }
        // Decoded off the window's thread: a large photograph takes a while.
        auto *decoding = new QFutureWatcher<PreviewImage>(this);
        connect(decoding, &QFutureWatcherBase::finished, this, [this, decoding, row] {
            const PreviewImage p = decoding->result();
            decoding->deleteLater();
            emit previewReady(row, p.image, p.problem);
        });
        decoding->setFuture(QtConcurrent::run(decodePreview, r.body, width));
    });
}
