#include "ServerPart.h"

#include "FileServerSettings.h"
#include "FileServerSettings_frame.h"
#include "FormUpdate_frame.h"
#include "NewsCheck.h"
#include "News_frame.h"
#include "ProgramVersion.h"
#include "RemoteClient.h"
#include "TextFiles.h"
#include "UpdateCheck.h"
#include "Updater.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QTimer>

namespace {
const QString kNotConfigured =
    QStringLiteral("Файловый сервер не настроен: укажите его адрес в меню «Настройки» → "
                   "«Файловый сервер…».");
const QString kNoConnection = QStringLiteral("Отсутствует подключение к интернету");
} // namespace

ServerPart::ServerPart(QObject *parent) : ShellPart(parent), m_client(new RemoteClient(this)) {}

void ServerPart::attach(MainShell &shell) {
    m_shell = &shell;
    QMenu *options = shell.menu(ShellMenu::Options);
    QAction *settings = options->addAction(QStringLiteral("Файловый сервер…"));
    settings->setObjectName(QStringLiteral("MServerSettings"));
    connect(settings, &QAction::triggered, this, &ServerPart::MServerSettingsClick);

    QMenu *help = shell.menu(ShellMenu::Help);
    m_history = new QAction(QStringLiteral("История версий"), this);
    m_history->setObjectName(QStringLiteral("MVersionHistory"));
    connect(m_history, &QAction::triggered, this, &ServerPart::MVersionHistoryClick);
    m_checkUpdate = new QAction(QStringLiteral("Проверить обновления"), this);
    m_checkUpdate->setObjectName(QStringLiteral("MCheckUpdate"));
    connect(m_checkUpdate, &QAction::triggered, this, &ServerPart::MCheckUpdateClick);
    QAction *first = help->actions().value(0);
    help->insertAction(first, m_history);
    help->insertAction(first, m_checkUpdate);
    help->insertSeparator(first);
    // The history is offered once its file is there.
    connect(help, &QMenu::aboutToShow, this, [this] {
        m_history->setEnabled(
            QFileInfo::exists(QDir(m_shell->dataFolder()).filePath(QStringLiteral("version8.txt"))));
    });
}

void ServerPart::start() {
    if (m_executable.isEmpty())
        m_executable = QCoreApplication::applicationFilePath();
    readServerSettings();
    // After the first window is drawn.
    QTimer::singleShot(0, this, &ServerPart::startupChecks);
}

void ServerPart::readServerSettings() {
    const FileServerSettings s =
        m_shell->settingsStore() ? FileServerSettings::read(*m_shell->settingsStore()) : FileServerSettings();
    m_client->setServer(s.baseUrl(), s.key);
}

bool ServerPart::newsEnabled() const {
    return m_shell->settings().flag(QStringLiteral("ViewInfo"));
}

void ServerPart::setNewsEnabled(bool on) {
    m_shell->settings().setFlag(QStringLiteral("ViewInfo"), on);
    if (SettingsStore *store = m_shell->settingsStore())
        store->setFlag(QStringLiteral("View"), QStringLiteral("ViewInfo"), on);
}

void ServerPart::startupChecks() {
    if (!m_client->isConfigured() || !m_client->connectionPresent()) {
        emit checksFinished();
        return;
    }
    m_pendingChecks = newsEnabled() ? 2 : 1;
    auto *update = new UpdateCheck(m_client, {programVersion(), m_executable, m_shell->dataFolder()}, this);
    connect(update, &UpdateCheck::updateAvailable, this, &ServerPart::offerUpdate);
    connect(update, &UpdateCheck::finished, this, [this, update] {
        update->deleteLater();
        checkDone();
    });
    update->start();
    if (m_pendingChecks == 2) {
        auto *news = new NewsCheck(m_client, m_shell->dataFolder(),
                                   m_shell->settings().text(QStringLiteral("LastInfo")), this);
        connect(news, &NewsCheck::newsArrived, this, &ServerPart::showNews);
        connect(news, &NewsCheck::finished, this, [this, news] {
            news->deleteLater();
            checkDone();
        });
        news->start();
    }
}

void ServerPart::checkDone() {
    if (--m_pendingChecks == 0)
        emit checksFinished();
}

void ServerPart::offerUpdate(const QString &version) {
    auto *dialog = new FFormUpdate(version, programVersion(), m_shell->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &FFormUpdate::loadRequested, this, &ServerPart::startUpdater);
    dialog->open();
}

void ServerPart::startUpdater() {
    QString error;
    const QString folder = QFileInfo(m_executable).absolutePath();
    if (!Updater::start(folder, m_client->baseUrl(), m_shell->dataFolder(),
                        QCoreApplication::applicationPid(), &error)) {
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        return;
    }
    m_shell->window()->close();
}

void ServerPart::showNews(const QString &stamp, const QString &text) {
    auto *dialog = new FNews(QStringLiteral("Новости"), text, newsEnabled(), m_shell->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &FNews::receiveInfoChanged, this, &ServerPart::setNewsEnabled);
    dialog->open();
    // Shown: this news is seen.
    m_shell->settings().set(QStringLiteral("LastInfo"), stamp);
    if (SettingsStore *store = m_shell->settingsStore())
        store->setText(QStringLiteral("View"), QStringLiteral("LastInfo"), stamp);
}

void ServerPart::MVersionHistoryClick() {
    const QString text =
        TextFiles::readSmall(QDir(m_shell->dataFolder()).filePath(QStringLiteral("version8.txt")));
    if (text.isNull()) {
        dialogs().tell(Captions::info, QStringLiteral("История версий ещё не получена с сервера."));
        return;
    }
    auto *dialog = new FNews(QStringLiteral("История версий"), text, newsEnabled(), m_shell->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &FNews::receiveInfoChanged, this, &ServerPart::setNewsEnabled);
    dialog->open();
}

void ServerPart::MCheckUpdateClick() {
    if (!m_client->isConfigured()) {
        dialogs().tell(Captions::warning, kNotConfigured, Dialogs::Icon::Warning);
        return;
    }
    if (!m_client->connectionPresent()) {
        dialogs().tell(Captions::warning, kNoConnection, Dialogs::Icon::Warning);
        return;
    }
    m_checkUpdate->setEnabled(false);
    m_shell->showStatus(QStringLiteral("Проверка обновлений…"), 0);
    auto *update = new UpdateCheck(m_client, {programVersion(), m_executable, m_shell->dataFolder()}, this);
    connect(update, &UpdateCheck::updateAvailable, this, &ServerPart::offerUpdate);
    connect(update, &UpdateCheck::finished, this, [this, update] {
        update->deleteLater();
        m_checkUpdate->setEnabled(true);
        m_shell->showStatus(QString(), 1);
        if (update->upToDate())
            dialogs().tell(
                Captions::info,
                QStringLiteral("Установлена последняя версия программы (%1).").arg(programVersion()));
        else if (!update->problem().isEmpty())
            dialogs().tell(Captions::error, update->problem(), Dialogs::Icon::Error);
    });
    update->start();
}

void ServerPart::MServerSettingsClick() {
    SettingsStore *store = m_shell->settingsStore();
    if (!store)
        return;
    TFileServerSettings dialog(FileServerSettings::read(*store), m_shell->window());
    if (dialog.exec() != QDialog::Accepted)
        return;
    dialog.settings().write(*store);
    readServerSettings();
    emit serverChanged();
}
