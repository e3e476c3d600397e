#include "ServerFilesPart.h"

#include "FileServerSettings.h"
#include "RemoteClient.h"
#include "SavedDocumentUpload.h"
#include "ServerFiles.h"
#include "ServerPart.h"
#include "ServerSmeta_frame.h"
#include "estimate/DocumentFile.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EstimateDocument.h"
#include "pricebase/RemotePriceList.h"
#include "pricebase/ServerRasSettings_frame.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QEventLoop>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QTimer>
#include <QToolBar>

namespace {
const QString kOption = QStringLiteral("CheckBoxAutosaveServer");
// How long closing the program waits for an upload after save that still runs.
constexpr int kSettleMs = 20000;
} // namespace

ServerFilesPart::ServerFilesPart(QObject *parent)
    : ShellPart(parent), m_uploader(new SavedDocumentUpload(this)) {}

ServerFilesPart::~ServerFilesPart() {
    delete m_window;
}

TServerSmeta *ServerFilesPart::window() const {
    return m_window;
}

void ServerFilesPart::attach(MainShell &shell) {
    m_shell = &shell;
    QMainWindow *window = shell.window();

    QAction *files = new QAction(QStringLiteral("Файлы на сервере…"), window);
    files->setObjectName(QStringLiteral("MServerFiles"));
    connect(files, &QAction::triggered, this, [this] { MServerFilesClick(); });
    QMenu *file = shell.menu(ShellMenu::File);
    // Before the shell's "Выход", after the document commands.
    const QList<QAction *> items = file->actions();
    QAction *exit = items.isEmpty() ? nullptr : items.last();
    file->insertAction(exit, files);
    file->insertSeparator(exit);

    m_serverSave = new QAction(window->style()->standardIcon(QStyle::SP_ArrowUp),
                               QStringLiteral("Сохранить на сервере"), window);
    m_serverSave->setObjectName(QStringLiteral("spdServerSave"));
    m_serverSave->setToolTip(QStringLiteral("Сохранить документ и загрузить его на сервер"));
    connect(m_serverSave, &QAction::triggered, this, &ServerFilesPart::spdServerSaveClick);
    shell.toolBar(ShellBar::Main)->addAction(m_serverSave);

    QMenu *options = shell.menu(ShellMenu::Options);
    m_option = shell.addOption(options, kOption, QStringLiteral("Автосохранение на сервер"));
    QAction *mysql = options->addAction(QStringLiteral("Сервер MySQL…"));
    mysql->setObjectName(QStringLiteral("MMySqlSettings"));
    connect(mysql, &QAction::triggered, this, &ServerFilesPart::MMySqlSettingsClick);

    EstimateDocument *doc = &shell.document();
    connect(doc, &EstimateDocument::saved, this, &ServerFilesPart::documentSaved);
    connect(doc, &EstimateDocument::changedStateChanged, this, &ServerFilesPart::updateServerSave);
    connect(doc, &EstimateDocument::fileNameChanged, this, &ServerFilesPart::updateServerSave);
    updateServerSave();

    connect(m_uploader, &SavedDocumentUpload::uploaded, this,
            [this](const QString &path, const QString &name, const QString &) {
                m_reported.clear();
                const bool manual = m_manual;
                m_manual = false;
                const QString text =
                    QStringLiteral("Документ «%1» сохранён на сервере.")
                        .arg(TextValues::nameFromStored(name.isEmpty() ? QFileInfo(path).fileName() : name));
                m_shell->showStatus(text, manual ? 10000 : 5000);
                emit documentUploaded(true, text);
            });
    connect(m_uploader, &SavedDocumentUpload::failed, this, [this](const QString &, const QString &message) {
        const bool manual = m_manual;
        m_manual = false;
        const QString text = QStringLiteral("Документ не загружен на сервер: %1").arg(message);
        if (manual) {
            dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
        } else if (message != m_reported) {
            // Told once, not in a box: the user is working on the estimate. The next save tries again.
            m_reported = message;
            m_shell->showStatus(text, 30000);
        }
        emit documentUploaded(false, text);
    });
}

void ServerFilesPart::start() {
    DocumentStore::prepareDriver();
    // A new account key names another table.
    if (ServerPart *server = m_shell->part<ServerPart>())
        connect(server, &ServerPart::serverChanged, this, [this] {
            if (m_files)
                m_files->setAccess(access());
        });
}

void ServerFilesPart::documentLoaded() {
    updateServerSave();
    if (m_window)
        m_window->setDefaultAddress(m_shell->document().header().object);
}

void ServerFilesPart::updateServerSave() {
    const EstimateDocument &doc = m_shell->document();
    m_serverSave->setEnabled(doc.isChanged() || !doc.fileName().isEmpty());
}

StoreAccess ServerFilesPart::access() const {
    StoreAccess a;
    const SettingsStore *store = m_shell ? m_shell->settingsStore() : nullptr;
    if (!store)
        return a;
    const ServerSettings mysql = ServerSettings::load(*store);
    a.host = mysql.host.trimmed();
    a.port = mysql.port;
    a.database = mysql.filesDatabaseName().trimmed();
    a.user = mysql.user;
    a.password = mysql.password;
    a.table = FileServerSettings::read(*store).key;
    return a;
}

void ServerFilesPart::documentSaved(const QString &path) {
    if (!m_option->isChecked())
        return;
    // Without a server and a user's key there is nobody to upload for.
    const StoreAccess a = access();
    if (a.host.isEmpty() || a.table.isEmpty())
        return;
    startUpload(path, false);
}

void ServerFilesPart::startUpload(const QString &path, bool manual) {
    m_manual = m_manual || manual;
    m_uploader->setAccess(access());
    m_uploader->upload(path, m_shell->document().header().object);
    if (manual)
        m_shell->showStatus(QStringLiteral("Документ загружается на сервер…"), 0);
}

void ServerFilesPart::spdServerSaveClick() {
    const StoreAccess a = access();
    if (const QString p = a.problem(); !p.isEmpty()) {
        dialogs().tell(Captions::warning, p, Dialogs::Icon::Warning);
        return;
    }
    if (!RemoteClient::connectionPresentFor(a.host)) {
        dialogs().tell(Captions::warning, QStringLiteral("Отсутствует подключение к интернету"),
                       Dialogs::Icon::Warning);
        return;
    }
    EstimateDocument &doc = m_shell->document();
    if (doc.isChanged() || doc.fileName().isEmpty()) {
        DocumentFilePart *files = m_shell->part<DocumentFilePart>();
        if (!files)
            return;
        const bool autoUploads = m_option->isChecked();
        m_manual = autoUploads; // the save's own upload answers this click
        if (!files->spdSaveClick()) {
            m_manual = false;
            return;
        }
        if (autoUploads)
            return;
    }
    startUpload(doc.fileName(), true);
}

TServerSmeta *ServerFilesPart::MServerFilesClick() {
    if (!m_window) {
        if (!m_files) {
            ServerPart *server = m_shell->part<ServerPart>();
            m_files = new ServerFiles(server ? server->client() : nullptr, this);
        }
        m_window = new TServerSmeta(m_files, m_shell->module(), m_shell->window());
        m_window->setFolder(DocumentFile::documentsFolder(m_shell->dataFolder()));
        m_window->setRestoredHandler([this](Db db) { emit databaseRestored(db); });
    }
    m_files->setAccess(access());
    m_window->setDefaultAddress(m_shell->document().header().object);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    return m_window;
}

void ServerFilesPart::MMySqlSettingsClick() {
    SettingsStore *store = m_shell->settingsStore();
    if (!store)
        return;
    TServerRasSettings dialog(ServerSettings::load(*store), m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.settings().save(*store);
    if (m_files)
        m_files->setAccess(access());
}

bool ServerFilesPart::settleBeforeClose() {
    if (!m_uploader->busy())
        return true;
    m_shell->showStatus(QStringLiteral("Документ ещё загружается на сервер…"), 0);
    QEventLoop wait;
    QTimer::singleShot(kSettleMs, &wait, &QEventLoop::quit);
    connect(m_uploader, &SavedDocumentUpload::idle, &wait, &QEventLoop::quit);
    wait.exec();
    if (m_uploader->busy())
        m_uploader->cancel();
    return true;
}
