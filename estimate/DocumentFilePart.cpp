#include "DocumentFilePart.h"

#include "Autosave.h"
#include "DocumentFile.h"
#include "EstimateDocument.h"
#include "RecentDocuments.h"
#include "customers/CustomerFolder.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/WorkingCopy.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QStyle>
#include <QToolBar>

namespace {

const QString kSaveFilter = QStringLiteral("Файлы Вирн-Смета 7-8 (*.sim)");
// The dialog shows the two patterns joined by a comma; Qt reads the patterns split on blanks, so
// both are listed again in a last group, which the dialog reads and does not show.
const QString kOpenFilter = QStringLiteral("Файлы Вирн-Смета 6-8 (*.sim,*.sme) (*.sim *.sme)");

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

bool askLock(const QString &warning) {
    return dialogs().ask(Captions::warning, warning, Dialogs::Buttons::YesNo, Dialogs::Icon::Warning) ==
           Dialogs::Answer::Yes;
}

QString readOnlyText(const QString &path) {
    return QStringLiteral("Файл «%1» доступен только для чтения.").arg(shown(path));
}

} // namespace

void DocumentFilePart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    QMainWindow *window = shell.window();
    auto make = [window](const QString &name, const QString &text, const QKeySequence &key = {}) {
        auto *a = new QAction(text, window);
        a->setObjectName(name);
        if (!key.isEmpty())
            a->setShortcut(key);
        return a;
    };
    QAction *create = make(QStringLiteral("spdNew"), QStringLiteral("Новый документ"), QKeySequence::New);
    QAction *open = make(QStringLiteral("spdOpen"), QStringLiteral("Открыть..."), QKeySequence::Open);
    m_save = make(QStringLiteral("spdSave"), QStringLiteral("Сохранить"), QKeySequence::Save);
    m_saveMenu = make(QStringLiteral("МSaveFile"), QStringLiteral("Сохранить"));
    QAction *saveAs =
        make(QStringLiteral("spdSaveKak"), QStringLiteral("Сохранить как..."), QKeySequence::SaveAs);
    QAction *newDraft = make(QStringLiteral("spdNewDdaft"), QStringLiteral("Новый черновик"));
    QAction *openDraft = make(QStringLiteral("spdOpenDdaft"), QStringLiteral("Открыть черновик..."));
    create->setIcon(window->style()->standardIcon(QStyle::SP_FileIcon));
    open->setIcon(window->style()->standardIcon(QStyle::SP_DialogOpenButton));
    m_save->setIcon(window->style()->standardIcon(QStyle::SP_DialogSaveButton));
    m_saveMenu->setIcon(m_save->icon());
    m_save->setToolTip(QStringLiteral("Сохранить (Ctrl+S)"));

    // The file menu: the document commands first, the shell's "Выход" stays last.
    QMenu *file = shell.menu(ShellMenu::File);
    QAction *first = file->actions().value(0);
    file->insertActions(first, {create, open, newDraft, openDraft});
    m_recent = new QMenu(QStringLiteral("Последние документы"), file);
    m_recent->setObjectName(QStringLiteral("MLastDoc"));
    m_recent->setEnabled(false);
    file->insertMenu(first, m_recent);
    file->insertSeparator(first);
    file->insertActions(first, {m_saveMenu, saveAs});
    file->insertSeparator(first);
    shell.toolBar(ShellBar::Main)->addActions({create, open, m_save});

    QMenu *options = shell.menu(ShellMenu::Options);
    QAction *autosave = shell.addOption(options, QStringLiteral("CheckBoxAutosave"),
                                        QStringLiteral("Автосохранение документа"));
    shell.addOption(options, QStringLiteral("CheckBoxLoadLastDoc"),
                    QStringLiteral("Загружать последний документ при запуске"));
    shell.addOption(options, QStringLiteral("CheckBossDir"),
                    QStringLiteral("Создавать папки для каждого заказчика"));
    QAction *drafts =
        shell.addOption(options, QStringLiteral("CheckBoxDraft"), QStringLiteral("Работа с черновиками"));
    auto showDrafts = [newDraft, openDraft](bool on) {
        newDraft->setVisible(on);
        openDraft->setVisible(on);
    };
    showDrafts(drafts->isChecked());
    connect(drafts, &QAction::toggled, this, showDrafts);
    connect(autosave, &QAction::toggled, m_doc, &EstimateDocument::autosaveOptionChanged);

    // The changed state is the Save button's enabled state.
    auto showChanged = [this](bool changed) {
        m_save->setEnabled(changed);
        m_saveMenu->setEnabled(changed);
    };
    showChanged(m_doc->isChanged());
    connect(m_doc, &EstimateDocument::changedStateChanged, this, showChanged);
    connect(m_doc, &EstimateDocument::recentChanged, this, &DocumentFilePart::LastDocMenu);
    connect(m_doc, &EstimateDocument::autosaveFailed, this, [this](const QString &message) {
        if (m_shell->window()->isVisible())
            dialogs().tell(Captions::warning, message, Dialogs::Icon::Warning);
    });

    connect(create, &QAction::triggered, this, [this] {
        if (askSaveChanges())
            CreateNewDoc(false);
    });
    connect(open, &QAction::triggered, this, [this] {
        const QString f = dialogs().openFile(QStringLiteral("Открыть"), dialogFolder(), kOpenFilter);
        if (!f.isEmpty() && askSaveChanges())
            OpenMyFile(f);
    });
    connect(newDraft, &QAction::triggered, this, &DocumentFilePart::spdNewDdaftClick);
    connect(openDraft, &QAction::triggered, this, &DocumentFilePart::spdOpenDdaftClick);
    connect(m_save, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(m_saveMenu, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(saveAs, &QAction::triggered, this, [this] { spdSaveKakClick(); });
}

void DocumentFilePart::start() {
    LastDocMenu();
}

QString DocumentFilePart::dialogFolder() const {
    return m_openDir.isEmpty() ? DocumentFile::documentsFolder(m_shell->dataFolder()) : m_openDir;
}

void DocumentFilePart::tellWarning(const QString &text) {
    if (!text.isEmpty())
        dialogs().tell(Captions::warning, text, Dialogs::Icon::Warning);
}

bool DocumentFilePart::askSaveChanges() {
    if (!m_doc->isChanged())
        return true;
    const Dialogs::Answer a =
        dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить файл?"),
                      Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
    if (a == Dialogs::Answer::Cancel)
        return false;
    return a == Dialogs::Answer::No || spdSaveClick();
}

void DocumentFilePart::CreateNewDoc(bool draft) {
    const EstimateDocument::Result r = m_doc->newDocument(draft);
    if (!r.error.isEmpty())
        dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
}

void DocumentFilePart::spdNewDdaftClick() {
    if (askSaveChanges())
        CreateNewDoc(true);
}

void DocumentFilePart::spdOpenDdaftClick() {
    const QString drafts = DocumentFile::draftsFolder(m_shell->dataFolder());
    QDir().mkpath(drafts);
    const QString f = dialogs().openFile(QStringLiteral("Открыть черновик"), drafts, kOpenFilter);
    if (!f.isEmpty() && askSaveChanges())
        OpenMyFile(f);
}

bool DocumentFilePart::spdSaveClick() {
    if (m_doc->fileName().isEmpty())
        return spdSaveKakClick();
    EstimateDocument::Result r = m_doc->save();
    if (r.readOnly) {
        const Dialogs::Answer a = dialogs().ask(
            Captions::warning,
            readOnlyText(m_doc->fileName()) +
                QStringLiteral(
                    "\n\nЗаменить его новой версией?\n«Да» — заменить файл, «Нет» — сохранить под другим "
                    "именем («Сохранить как»), «Отмена» — не сохранять."),
            Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Warning);
        if (a == Dialogs::Answer::Cancel)
            return false;
        if (a == Dialogs::Answer::No)
            return spdSaveKakClick();
        r = m_doc->save(true);
    }
    if (!r) {
        dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
        return false;
    }
    tellWarning(r.warning);
    return true;
}

bool DocumentFilePart::spdSaveKakClick() {
    QString folder = dialogFolder();
    const QString dataFolder = m_shell->dataFolder();
    const MainSettings &settings = m_shell->settings();
    if (m_doc->isDraft()) {
        folder = DocumentFile::draftsFolder(dataFolder);
        QDir().mkpath(folder);
    } else if (settings.flag(QStringLiteral("CheckBossDir")) && m_shell->module()) {
        folder = CustomerFolder::makeFolderForDocument(
            *m_shell->module(), DocumentFile::documentsFolder(dataFolder), m_doc->header().customer,
            m_doc->header().object, CustomerFolder::Options::fromFlags([&settings](const QString &key) {
                return settings.flag(key);
            }));
    }
    const QString f = dialogs().saveFile(QStringLiteral("Сохранить как"), folder, QString(), kSaveFilter,
                                         DocumentFile::kExtension);
    if (f.isEmpty())
        return false;
    EstimateDocument::Result r = m_doc->saveAs(f, askLock);
    if (r.readOnly && dialogs().ask(Captions::warning, readOnlyText(f) + QStringLiteral("\n\nЗаменить его?"),
                                    Dialogs::Buttons::YesNo, Dialogs::Icon::Warning) == Dialogs::Answer::Yes)
        r = m_doc->saveAs(f, askLock, true);
    if (r.readOnly)
        return false;
    if (!r) {
        if (!r.cancelled)
            dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
        return false;
    }
    m_openDir = QFileInfo(m_doc->fileName()).absolutePath();
    tellWarning(r.warning);
    return true;
}

bool DocumentFilePart::OpenMyFile(const QString &fileName) {
    const EstimateDocument::Result r = m_doc->open(fileName, askLock);
    if (!r) {
        if (!r.cancelled)
            dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
        return false;
    }
    m_openDir = QFileInfo(m_doc->fileName()).absolutePath();
    tellWarning(r.warning);
    return true;
}

void DocumentFilePart::MLastDocFileOpenClick(const QString &fileName) {
    if (!QFileInfo::exists(fileName)) {
        dialogs().tell(Captions::error, QStringLiteral("Файл «%1» не найден.").arg(shown(fileName)),
                       Dialogs::Icon::Error);
        return;
    }
    if (askSaveChanges())
        OpenMyFile(fileName);
}

void DocumentFilePart::LastDocMenu() {
    m_recent->clear();
    TModuleSQL *module = m_shell->module();
    QSqlDatabase people = module ? module->database(Db::People) : QSqlDatabase();
    const QStringList paths = people.isOpen() ? RecentDocuments::newestFirst(people) : QStringList();
    for (const QString &path : paths) {
        QString caption = shown(path);
        caption.replace(QLatin1Char('&'), QStringLiteral("&&")); // not a shortcut mark
        QAction *a = m_recent->addAction(caption);
        a->setData(path);
        connect(a, &QAction::triggered, this, [this, path] { MLastDocFileOpenClick(path); });
    }
    m_recent->setEnabled(!paths.isEmpty());
}

bool DocumentFilePart::OpenLastDoc() {
    const QList<QAction *> items = m_recent->actions();
    if (items.isEmpty())
        return false;
    const QString last = items.first()->data().toString();
    return QFileInfo::exists(last) && OpenMyFile(last);
}

bool DocumentFilePart::offerRecovery(WorkingCopy &copy) {
    bool recovered = false;
    for (const WorkingCopy::Leftover &l : copy.leftovers()) {
        if (!recovered) {
            const QString what = l.document.isEmpty()
                                     ? QStringLiteral("нового несохранённого документа")
                                     : QStringLiteral("документа «%1»").arg(shown(l.document));
            const QString text =
                QStringLiteral(
                    "Программа в прошлый раз завершилась, не сохранив изменения %1 (последняя запись %2).\n\n"
                    "Восстановить их? «Нет» — копия останется в папке автосохранения.")
                    .arg(what,
                         QLocale(QLocale::Russian).toString(l.written, QStringLiteral("dd.MM.yyyy HH:mm")));
            if (dialogs().ask(QStringLiteral("Восстановление"), text, Dialogs::Buttons::YesNo,
                              Dialogs::Icon::Question) == Dialogs::Answer::Yes) {
                const EstimateDocument::Result r = m_doc->recover(l.file, l.document, askLock);
                if (r) {
                    recovered = true;
                    copy.removeLeftover(l);
                    tellWarning(r.warning);
                    continue;
                }
                if (!r.cancelled)
                    dialogs().tell(Captions::error, r.error, Dialogs::Icon::Error);
            }
        }
        // Declined, or another copy was taken: this one is kept where old versions are looked for.
        const QString kept =
            Autosave::keep(l.file, l.document, DocumentFile::autosaveFolder(m_shell->dataFolder()));
        if (kept.isEmpty())
            copy.removeLeftover(l);
        else
            dialogs().tell(Captions::error, kept, Dialogs::Icon::Error);
    }
    return recovered;
}
