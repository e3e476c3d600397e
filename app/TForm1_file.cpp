// The document file: new, open, save, save as, drafts, recent documents, autosave. A document file
// is a copy of the working database; the logic lives in estimate/ (DocumentFile, Registration,
// RecentDocuments, Autosave, DocumentLock), the window asks and tells.

#include "TForm1.h"

#include "ui/Dialogs.h"
#include "customers/CustomerFolder.h"
#include "estimate/Autosave.h"
#include "estimate/CrewGrid.h"
#include "estimate/DocumentFile.h"
#include "estimate/DocumentLock.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateStore.h"
#include "estimate/RecentDocuments.h"
#include "estimate/Registration.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QTabWidget>
#include <QTimer>

namespace {

const QString kSaveFilter = QStringLiteral("Файлы Вирн-Смета 7-8 (*.sim)");
// The dialog shows the two patterns joined by a comma; Qt reads the patterns split on blanks, so
// both are listed again in a last group, which the dialog reads and does not show.
const QString kOpenFilter = QStringLiteral("Файлы Вирн-Смета 6-8 (*.sim,*.sme) (*.sim *.sme)");

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

QString headerValue(const QList<QPair<QString, QString>> &params, const QString &name) {
    for (const auto &p : params)
        if (p.first == name)
            return p.second;
    return {};
}

// Customer and object names are kept in the parameters as stored (backticks); shown with quotes.
QString headerName(const QList<QPair<QString, QString>> &params, const QString &name) {
    return TextValues::nameFromStored(headerValue(params, name));
}

} // namespace

void TForm1::setupFile() {
    spdNewDdaft = new QAction(QStringLiteral("Новый черновик"), this);
    spdNewDdaft->setObjectName(QStringLiteral("spdNewDdaft"));
    spdOpenDdaft = new QAction(QStringLiteral("Открыть черновик..."), this);
    spdOpenDdaft->setObjectName(QStringLiteral("spdOpenDdaft"));
    MenuFile->insertAction(MLastDoc->menuAction(), spdNewDdaft);
    MenuFile->insertAction(MLastDoc->menuAction(), spdOpenDdaft);
    MLastDoc->setEnabled(false);

    CheckBoxAutosave = addOption(MenuOptions, QStringLiteral("CheckBoxAutosave"),
                                 QStringLiteral("Автосохранение документа"));
    CheckBoxLoadLastDoc = addOption(MenuOptions, QStringLiteral("CheckBoxLoadLastDoc"),
                                    QStringLiteral("Загружать последний документ при запуске"));
    CheckBossDir = addOption(MenuOptions, QStringLiteral("CheckBossDir"),
                             QStringLiteral("Создавать папки для каждого заказчика"));
    CheckBoxDraft =
        addOption(MenuOptions, QStringLiteral("CheckBoxDraft"), QStringLiteral("Работа с черновиками"));
    auto showDrafts = [this](bool on) {
        spdNewDdaft->setVisible(on);
        spdOpenDdaft->setVisible(on);
    };
    showDrafts(CheckBoxDraft->isChecked());
    connect(CheckBoxDraft, &QAction::toggled, this, showDrafts);

    m_autosave = new Autosave(this);
    m_autosave->setFolder(DocumentFile::autosaveFolder(m_dataFolder));
    connect(m_autosave, &Autosave::tick, this, &TForm1::TimerAutosaveTimer);
    connect(m_autosave, &Autosave::copied, this, [this] { m_autosaveReported.clear(); });
    connect(m_autosave, &Autosave::copyFailed, this, [this](const QString &message) {
        // A folder that cannot be written would otherwise say so every few minutes.
        if (message == m_autosaveReported || m_closing)
            return;
        m_autosaveReported = message;
        dialogs().tell(Captions::warning, message, Dialogs::Icon::Warning);
    });
    connect(CheckBoxAutosave, &QAction::toggled, this, [this](bool on) {
        if (!on)
            m_autosave->disarm();
        else if (isChanged())
            m_autosave->arm();
    });
    // EnableSave: the first edit after a save or a copy starts the autosave timer.
    connect(this, &TForm1::saveEnabled, this, [this] {
        if (!CheckBoxAutosave->isChecked())
            return;
        m_autosave->setInterval(
            m_settings.integer(QStringLiteral("AutosaveTime"), Autosave::kDefaultInterval));
        m_autosave->arm();
    });
    // Old copies go soon after the start, then every half hour.
    m_autosave->TimerDelAutosaveTimer->start(60 * 1000);
    connect(m_autosave, &Autosave::cleanupDue, this, [this] {
        m_autosave->setRetention(
            m_settings.integer(QStringLiteral("AutosaveKeepDays"), Autosave::kDefaultKeepDays),
            m_settings.integer(QStringLiteral("AutosaveMaxCopies"), Autosave::kDefaultMaxCopies));
        m_autosave->TimerDelAutosaveTimer->setInterval(Autosave::kCleanupInterval);
    });

    connect(spdNew, &QAction::triggered, this, [this] {
        if (askSaveChanges())
            CreateNewDoc(false);
    });
    connect(spdOpen, &QAction::triggered, this, [this] {
        const QString f = dialogs().openFile(QStringLiteral("Открыть"), m_openDir, kOpenFilter);
        if (!f.isEmpty() && askSaveChanges())
            OpenMyFile(f);
    });
    connect(spdNewDdaft, &QAction::triggered, this, &TForm1::spdNewDdaftClick);
    connect(spdOpenDdaft, &QAction::triggered, this, &TForm1::spdOpenDdaftClick);
    connect(spdSave, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(MSaveFile, &QAction::triggered, this, [this] { spdSaveClick(); });
    connect(spdSaveKak, &QAction::triggered, this, [this] { spdSaveKakClick(); });
}

bool TForm1::askSaveChanges() {
    if (!isChanged())
        return true;
    const Dialogs::Answer a =
        dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить файл?"),
                      Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
    if (a == Dialogs::Answer::Cancel)
        return false;
    return a == Dialogs::Answer::No || spdSaveClick();
}

void TForm1::setCurrentFile(const QString &fileName) {
    m_fileName = fileName;
    if (fileName.isEmpty()) {
        m_xlsName.clear();
        PageControlDoc->setTabText(PageControlDoc->indexOf(TabSheet1),
                                   m_draft ? QStringLiteral("Новый черновик")
                                           : QStringLiteral("Новый документ"));
        return;
    }
    const QFileInfo fi(fileName);
    m_xlsName = fi.absolutePath() + QLatin1Char('/') + fi.completeBaseName() + QStringLiteral(".xls");
    PageControlDoc->setTabText(PageControlDoc->indexOf(TabSheet1), fi.fileName());
}

QList<QPair<QString, QString>> TForm1::documentParameters() const {
    return headerParameters();
}

void TForm1::CreateNewDoc(bool draft) {
    m_draft = draft;
    m_lock.reset();
    QString error;
    if (!EstimateStore::createNewDoc(*m_module, *m_gridDoc, *m_gridBrig, &error))
        dialogs().tell(Captions::error, QStringLiteral("Не удалось создать новый документ: %1").arg(error),
                       Dialogs::Icon::Error);
    m_currentRow = EstimateGrid::kFixedRows;
    setCurrentFile(QString());
    DisableSave();
    m_autosave->disarm(); // clearing the grid counted as an edit
    emit documentLoaded();
}

void TForm1::spdNewDdaftClick() {
    if (askSaveChanges())
        CreateNewDoc(true);
}

void TForm1::spdOpenDdaftClick() {
    const QString drafts = DocumentFile::draftsFolder(m_dataFolder);
    QDir().mkpath(drafts);
    const QString f = dialogs().openFile(QStringLiteral("Открыть черновик"), drafts, kOpenFilter);
    if (!f.isEmpty() && askSaveChanges())
        OpenMyFile(f);
}

bool TForm1::writeWorkingDatabase(QString *error) {
    QSqlDatabase db = m_module->database(Db::Smeta);
    if (!db.isOpen()) {
        *error = m_module->failure(Db::Smeta);
        return false;
    }
    if (!EstimateStore::writeSmeta(db, *m_gridDoc, *m_gridBrig, documentParameters(), error)) {
        *error = QStringLiteral("Не удалось записать смету в рабочую базу «%1»: %2")
                     .arg(shown(m_module->filePath(Db::Smeta)), error->trimmed());
        return false;
    }
    writeHeaderCopies(db);
    return true;
}

bool TForm1::spdSaveClick() {
    if (m_fileName.isEmpty())
        return spdSaveKakClick();
    m_autosave->disarm();
    auto keepChanged = [this](const QString &message) {
        dialogs().tell(Captions::error, message, Dialogs::Icon::Error);
        if (CheckBoxAutosave->isChecked())
            m_autosave->arm();
        return false;
    };
    QString error;
    if (!writeWorkingDatabase(&error))
        return keepChanged(error + QStringLiteral("\nФайл «%1» не изменён.").arg(shown(m_fileName)));

    const auto params = documentParameters();
    const QString customer = headerName(params, DocParam::customer);
    const QString object = headerName(params, DocParam::object);
    Registration::Entry entry;
    entry.date = TextValues::parseShortDate(headerValue(params, DocParam::date));
    if (!entry.date.isValid())
        entry.date = QDate::currentDate();
    entry.name = QFileInfo(m_fileName).completeBaseName();
    entry.fileName = m_fileName;
    entry.client = customer;
    entry.object = object;
    entry.summat = Edit4->text();
    entry.sumrab = Edit6->text();
    entry.allsum = Edit5->text();
    entry.draft = m_draft;

    QSqlDatabase db = m_module->database(Db::Smeta);
    QSqlDatabase mydoc = m_module->database(Db::MyDoc);
    Registration::Result reg;
    if (mydoc.isOpen())
        reg = Registration::prepare(db, mydoc, entry);
    else
        reg.error = m_module->failure(Db::MyDoc);

    error = DocumentFile::save(*m_module, m_fileName);
    if (!error.isEmpty()) {
        Registration::undo(db, mydoc, reg);
        return keepChanged(error +
                           QStringLiteral("\nПрежняя версия файла на диске не тронута, правки остаются в "
                                          "программе: сохраните документ в другое место."));
    }
    DisableSave();
    // Writing the grid may have given new rows their ids, which counts as an edit: not after a save.
    m_autosave->disarm();

    if (reg.ok)
        reg = Registration::complete(mydoc, reg, entry);
    QSqlDatabase people = m_module->database(Db::People);
    QString countError;
    if (people.isOpen())
        Registration::countEstimate(people, customer, object, headerValue(params, DocParam::number),
                                    &countError);
    if (!reg.ok)
        dialogs().tell(Captions::warning,
                       QStringLiteral("Документ «%1» сохранён, но не внесён в список «Мои документы»: %2")
                           .arg(shown(m_fileName), reg.error),
                       Dialogs::Icon::Warning);
    return true;
}

bool TForm1::spdSaveKakClick() {
    QString folder = m_openDir;
    if (m_draft) {
        folder = DocumentFile::draftsFolder(m_dataFolder);
        QDir().mkpath(folder);
    } else if (CheckBossDir->isChecked()) {
        const auto params = documentParameters();
        folder = CustomerFolder::makeFolderForDocument(
            *m_module, DocumentFile::documentsFolder(m_dataFolder), headerName(params, DocParam::customer),
            headerName(params, DocParam::object),
            CustomerFolder::Options::fromFlags([this](const QString &key) { return m_settings.flag(key); }));
    }
    QString f = dialogs().saveFile(QStringLiteral("Сохранить как"), folder, QString(), kSaveFilter,
                                   DocumentFile::kExtension);
    if (f.isEmpty())
        return false;
    if (QFileInfo(f).suffix().isEmpty())
        f += QLatin1Char('.') + DocumentFile::kExtension;
    f = QFileInfo(f).absoluteFilePath();

    // Another copy of the program that has this file open would overwrite it with its own version.
    std::shared_ptr<DocumentLock> lock = m_lock;
    if (!m_lock || m_lock->document() != f) {
        lock = std::make_shared<DocumentLock>();
        if (lock->acquire(f) == DocumentLock::State::HeldByOther &&
            dialogs().ask(Captions::warning, DocumentLock::warningText(f, lock->holder()),
                          Dialogs::Buttons::YesNo, Dialogs::Icon::Warning) != Dialogs::Answer::Yes)
            return false;
    }

    const QString previous = m_fileName;
    setCurrentFile(f);
    if (!spdSaveClick()) {
        setCurrentFile(previous);
        return false;
    }
    m_lock = lock;
    m_openDir = m_saveDir = QFileInfo(f).absolutePath();
    LastDoc();
    return true;
}

bool TForm1::OpenMyFile(const QString &fileName) {
    const QString path = QFileInfo(fileName).absoluteFilePath();
    if (!QFileInfo::exists(path)) {
        dialogs().tell(Captions::error, QStringLiteral("Файл «%1» не найден.").arg(shown(path)),
                       Dialogs::Icon::Error);
        return false;
    }
    std::shared_ptr<DocumentLock> lock = m_lock;
    if (!m_lock || m_lock->document() != path) {
        lock = std::make_shared<DocumentLock>();
        if (lock->acquire(path) == DocumentLock::State::HeldByOther &&
            dialogs().ask(Captions::warning, DocumentLock::warningText(path, lock->holder()),
                          Dialogs::Buttons::YesNo, Dialogs::Icon::Warning) != Dialogs::Answer::Yes)
            return false;
    }

    // A copy in progress reads the working database that is about to be replaced.
    m_autosave->disarm();
    m_autosave->waitForCopy();
    PanelKoef->hide();
    const QString error = DocumentFile::open(*m_module, path);
    if (!error.isEmpty()) {
        PanelKoef->show();
        if (isChanged() && CheckBoxAutosave->isChecked())
            m_autosave->arm();
        dialogs().tell(Captions::error, error, Dialogs::Icon::Error);
        return false;
    }

    QSqlDatabase db = m_module->database(Db::Smeta);
    m_draft = Registration::draftAfterOpen(
        Registration::note(db), DocumentFile::isInside(path, DocumentFile::draftsFolder(m_dataFolder)));
    QString readError;
    if (!EstimateStore::readSmeta(db, *m_gridDoc, *m_gridBrig, &readError))
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось прочитать документ «%1»: %2").arg(shown(path), readError),
                       Dialogs::Icon::Error);
    applyHeaderParameters(EstimateStore::readParameters(db));
    m_currentRow = EstimateGrid::kFixedRows;
    m_openDir = m_saveDir = QFileInfo(path).absolutePath();
    m_lock = lock;
    setCurrentFile(path);
    LastDoc();
    PanelKoef->show();
    DisableSave();
    m_autosave->disarm(); // loading the grid counted as an edit
    emit documentLoaded();
    return true;
}

void TForm1::MLastDocFileOpenClick(const QString &fileName) {
    if (!QFileInfo::exists(fileName)) {
        dialogs().tell(Captions::error, QStringLiteral("Файл «%1» не найден.").arg(shown(fileName)),
                       Dialogs::Icon::Error);
        return;
    }
    if (askSaveChanges())
        OpenMyFile(fileName);
}

void TForm1::LastDoc() {
    if (m_fileName.isEmpty())
        return;
    QSqlDatabase people = m_module->database(Db::People);
    if (!people.isOpen())
        return; // the data module has reported the failure
    QString error;
    if (!RecentDocuments::touch(people, m_fileName, &error))
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось обновить список последних документов: %1").arg(error),
                       Dialogs::Icon::Error);
    LastDocMenu();
}

void TForm1::LastDocMenu() {
    MLastDoc->clear();
    QSqlDatabase people = m_module->database(Db::People);
    const QStringList paths = people.isOpen() ? RecentDocuments::newestFirst(people) : QStringList();
    for (const QString &path : paths) {
        QString caption = shown(path);
        caption.replace(QLatin1Char('&'), QStringLiteral("&&")); // not a shortcut mark
        QAction *a = MLastDoc->addAction(caption);
        a->setData(path);
        connect(a, &QAction::triggered, this, [this, path] { MLastDocFileOpenClick(path); });
    }
    MLastDoc->setEnabled(!paths.isEmpty());
}

bool TForm1::OpenLastDoc() {
    const QList<QAction *> items = MLastDoc->actions();
    if (items.isEmpty())
        return false;
    const QString last = items.first()->data().toString();
    return QFileInfo::exists(last) && OpenMyFile(last);
}

void TForm1::TimerAutosaveTimer() {
    if (!isChanged() || !CheckBoxAutosave->isChecked())
        return;
    if (m_autosave->isCopying()) {
        m_autosave->arm(); // the previous copy is still being written: try at the next tick
        return;
    }
    QString error;
    if (!writeWorkingDatabase(&error)) {
        emit m_autosave->copyFailed(QStringLiteral("Автосохранение не удалось. %1").arg(error));
        return;
    }
    const auto params = documentParameters();
    const QString fallback =
        m_fileName.isEmpty() ? (m_draft ? QStringLiteral("Новый черновик") : QStringLiteral("Новый документ"))
                             : QFileInfo(m_fileName).completeBaseName();
    const QString id = AutosaveName::identification(headerName(params, DocParam::customer),
                                                    headerName(params, DocParam::object),
                                                    headerValue(params, DocParam::number), fallback);
    m_autosave->startCopy(m_module->filePath(Db::Smeta),
                          AutosaveName::fileName(QDateTime::currentDateTime(), id));
}
