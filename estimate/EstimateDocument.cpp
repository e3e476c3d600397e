#include "EstimateDocument.h"

#include "Autosave.h"
#include "CrewGrid.h"
#include "CrewSheet.h"
#include "DocumentFile.h"
#include "DocumentLock.h"
#include "EstimateEditor.h"
#include "EstimateGrid.h"
#include "EstimateMaterials.h"
#include "EstimatePrint.h"
#include "EstimateStore.h"
#include "KoefModel.h"
#include "RecentDocuments.h"
#include "Registration.h"
#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "storage/WorkingCopy.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTimer>

namespace {

QString shown(const QString &path) {
    return QDir::toNativeSeparators(path);
}

const QString kCustomerLegal = QStringLiteral("ZCheckBoxUridDan");
const QString kContractorLegal = QStringLiteral("PodryadCheckBoxUridDan");

QString withLegalData(const QString &name, bool on, const QString &legal) {
    if (!on || name.isEmpty() || legal.trimmed().isEmpty())
        return name;
    return name + QStringLiteral(", ") + legal.trimmed();
}

void addWarning(EstimateDocument::Result *r, const QString &text) {
    if (!text.isEmpty())
        r->warning = r->warning.isEmpty() ? text : r->warning + u'\n' + text;
}

} // namespace

EstimateDocument::EstimateDocument(QObject *parent)
    : QObject(parent), m_grid(std::make_unique<EstimateGrid>()), m_crew(std::make_unique<CrewGrid>()) {
    m_editor = std::make_unique<EstimateEditor>(m_grid.get(), m_crew.get(), [this](Db db) {
        return m_module ? m_module->database(db) : QSqlDatabase();
    });
    m_autosave = new Autosave(this);
    m_header.date = QDate::currentDate();

    connect(m_grid.get(), &EstimateGrid::contentChanged, this, &EstimateDocument::edit);
    connect(m_crew.get(), &CrewGrid::cellEdited, this, &EstimateDocument::edit);
    EstimateMaterials *materials = m_editor->materials();
    connect(materials, &QAbstractItemModel::dataChanged, this, &EstimateDocument::edit);
    connect(materials, &QAbstractItemModel::rowsInserted, this, &EstimateDocument::edit);
    connect(materials, &QAbstractItemModel::rowsRemoved, this, &EstimateDocument::edit);
    connect(m_editor.get(), &EstimateEditor::materialsEdited, this, &EstimateDocument::edit);
    connect(m_editor->koef(), &KoefModel::linesChanged, this, &EstimateDocument::edit);
    connect(m_editor->crew(), &CrewSheet::settingsChanged, this, [this] {
        // The crew coefficient the user set becomes the default of the next document.
        if (!m_settings)
            return;
        m_settings->set(QStringLiteral("EditKoefBrig"), m_editor->crew()->globalKoef());
        m_settings->setFlag(QStringLiteral("RadioButtonKoefBrig"), m_editor->crew()->perRow());
    });

    connect(m_autosave, &Autosave::tick, this, &EstimateDocument::autosaveTick);
    connect(m_autosave, &Autosave::copied, this, [this] { m_autosaveReported.clear(); });
    connect(m_autosave, &Autosave::copyFailed, this, [this](const QString &message) {
        // A folder that cannot be written would otherwise say so every few minutes.
        if (message == m_autosaveReported)
            return;
        m_autosaveReported = message;
        emit autosaveFailed(message);
    });
    connect(m_autosave, &Autosave::cleanupDue, this, [this] {
        if (m_settings)
            m_autosave->setRetention(
                m_settings->integer(QStringLiteral("AutosaveKeepDays"), Autosave::kDefaultKeepDays),
                m_settings->integer(QStringLiteral("AutosaveMaxCopies"), Autosave::kDefaultMaxCopies));
        m_autosave->TimerDelAutosaveTimer->setInterval(Autosave::kCleanupInterval);
    });
}

EstimateDocument::~EstimateDocument() {
    // The editor listens to the grids: it goes first.
    m_editor.reset();
    // A normal end: the working copy is given up, its note with it.
    m_workingCopy.reset();
}

void EstimateDocument::attach(TModuleSQL *module, MainSettings *settings, SettingsStore *store) {
    m_module = module;
    m_settings = settings;
    m_store = store;
    m_workingCopy.reset();
    m_workingCopyError.clear();
    if (m_module) {
        auto copy = std::make_unique<WorkingCopy>(m_module->dataFolder());
        if (copy->claim(&m_workingCopyError)) {
            copy->applyTo(*m_module);
            m_workingCopy = std::move(copy);
            noteWorkingCopy();
        }
        m_autosave->setFolder(DocumentFile::autosaveFolder(m_module->dataFolder()));
        // Old copies go soon after the start, then every half hour.
        m_autosave->TimerDelAutosaveTimer->start(60 * 1000);
    }
}

void EstimateDocument::noteWorkingCopy() {
    if (m_workingCopy)
        m_workingCopy->note(m_fileName, m_changed);
}

QString EstimateDocument::dataFolder() const {
    return m_module ? m_module->dataFolder() : QString();
}

bool EstimateDocument::option(const QString &key) const {
    return m_settings && m_settings->flag(key);
}

QString EstimateDocument::xlsFileName() const {
    if (m_fileName.isEmpty())
        return {};
    const QFileInfo fi(m_fileName);
    return fi.absolutePath() + QLatin1Char('/') + fi.completeBaseName() + QStringLiteral(".xls");
}

QString EstimateDocument::caption() const {
    if (m_fileName.isEmpty())
        return m_draft ? QStringLiteral("Новый черновик") : QStringLiteral("Новый документ");
    return QFileInfo(m_fileName).fileName();
}

QString EstimateDocument::folder() const {
    if (!m_fileName.isEmpty())
        return QFileInfo(m_fileName).absolutePath();
    return DocumentFile::documentsFolder(dataFolder());
}

void EstimateDocument::setChanged(bool changed) {
    if (!changed)
        m_autosave->disarm();
    if (m_changed == changed)
        return;
    m_changed = changed;
    noteWorkingCopy();
    emit changedStateChanged(changed);
}

void EstimateDocument::edit() {
    if (m_loading)
        return;
    setChanged(true);
    // The first edit after a save or a copy starts the autosave timer.
    if (option(QStringLiteral("CheckBoxAutosave"))) {
        m_autosave->setInterval(
            m_settings->integer(QStringLiteral("AutosaveTime"), Autosave::kDefaultInterval));
        m_autosave->arm();
    }
    emit edited();
}

void EstimateDocument::autosaveOptionChanged() {
    if (!option(QStringLiteral("CheckBoxAutosave")))
        m_autosave->disarm();
    else if (m_changed)
        m_autosave->arm();
}

// ----- Header

void EstimateDocument::setHeader(const EstimateHeader::Values &values) {
    if (values == m_header)
        return;
    m_header = values;
    emit headerChanged();
    edit();
}

void EstimateDocument::presetHeader(const EstimateHeader::Values &values) {
    if (values == m_header)
        return;
    m_header = values;
    emit headerChanged();
}

void EstimateDocument::setCurrency(int index) {
    if (index == m_header.currency)
        return;
    EstimateHeader::Values v = m_header;
    v.currency = index;
    setHeader(v);
}

QString EstimateDocument::numberText() const {
    return numberText(m_header);
}

QString EstimateDocument::numberText(const EstimateHeader::Values &values) {
    const QString word = values.numberWord.trimmed();
    const QString number = QString::number(values.number);
    return word.isEmpty() ? number : word + u'-' + number;
}

// ----- Parties

CustomerData EstimateDocument::customerData() const {
    const QString name = m_header.customer;
    if (!m_module || name.isEmpty())
        return {};
    CustomerData d = CustomerRegister(*m_module).customer(name);
    if (d.found)
        return d;
    const CustomerData copy = EstimateHeader::customerCopy(m_module->database(Db::Smeta));
    return copy.customer.value(QStringLiteral("fio")) == name ? copy : CustomerData{};
}

ContractorData EstimateDocument::contractorData() const {
    const QString name = m_header.contractor;
    if (!m_module || name.isEmpty())
        return {};
    ContractorData d = ContractorRegister(*m_module).forEstimateText(name);
    if (!d.found) {
        // Known only from the document: its legal details as they were saved with it.
        d.contractor.insert(QStringLiteral("shotname"), name);
        d.requisites = EstimateHeader::contractorRequisitesCopy(m_module->database(Db::Smeta));
    }
    d.email = ContractorRegister::email(m_store);
    return d;
}

QString EstimateDocument::customerForEstimate() const {
    const bool on = option(kCustomerLegal);
    return withLegalData(m_header.customer, on,
                         on ? customerData().customer.value(QStringLiteral("note")) : QString());
}

QString EstimateDocument::contractorForEstimate() const {
    const bool on = option(kContractorLegal);
    return withLegalData(m_header.contractor, on,
                         on ? contractorData().requisites.value(QStringLiteral("note")) : QString());
}

EstimatePrint EstimateDocument::print() const {
    EstimatePrint p;
    p.title = m_header.title;
    p.contractor = contractorForEstimate();
    const ContractorData contractor = contractorData();
    p.contractorPhone = contractor.contractor.value(QStringLiteral("phone"));
    p.contractorEmail = contractor.email;
    p.contractorAddress = contractor.requisites.value(QStringLiteral("adres"));
    p.customer = customerForEstimate();
    p.object = m_header.object;
    p.nameOfWorks = m_header.nameWork;
    p.number = numberText();
    p.date = m_header.date;
    p.currency = m_header.currency;
    if (m_module) {
        QSqlDatabase db = m_module->database(Db::Smeta);
        EstimatePrintBuilder::fillBody(p, *m_editor, db);
        p.act = EstimatePrintBuilder::readAct(db);
    }
    return p;
}

// ----- Commands

void EstimateDocument::applyCrewDefaults() {
    if (m_settings)
        m_editor->setCrewDefaults(m_settings->text(QStringLiteral("EditKoefBrig")),
                                  m_settings->flag(QStringLiteral("RadioButtonKoefBrig")));
}

void EstimateDocument::setFile(const QString &path) {
    m_fileName = path;
    noteWorkingCopy();
    emit fileNameChanged(path);
}

void EstimateDocument::afterLoad(const QString &path) {
    applyCrewDefaults();
    m_editor->reset();
    setFile(path);
    setChanged(false);
    emit headerChanged();
    emit loaded();
}

EstimateDocument::Result EstimateDocument::newDocument(bool draft) {
    Result r;
    if (!m_module) {
        r.error = QStringLiteral("Нет папки данных для нового документа.");
        return r;
    }
    {
        QScopedValueRollback<int> loading(m_loading, m_loading + 1);
        m_draft = draft;
        m_lock.reset();
        QString error;
        if (!EstimateStore::createNewDoc(*m_module, *m_grid, *m_crew, &error))
            r.error = QStringLiteral("Не удалось создать новый документ: %1").arg(error);
        // A new document keeps the parties and starts with today's date and a fresh number.
        m_header.date = QDate::currentDate();
        m_header.number = 1;
        m_header.numberWord.clear();
        m_header.nameWork.clear();
        if (m_settings)
            m_header.title = m_settings->text(QStringLiteral("ComboBoxShablon"));
        if (m_header.title.isEmpty())
            m_header.title = EstimateHeader::defaultTitle;
        afterLoad(QString());
    }
    r.ok = r.error.isEmpty();
    return r;
}

bool EstimateDocument::takeLock(const QString &path, const LockQuestion &question,
                                std::shared_ptr<DocumentLock> *lock, Result *result) {
    *lock = m_lock;
    if (m_lock && m_lock->document() == path)
        return true;
    *lock = std::make_shared<DocumentLock>();
    if ((*lock)->acquire(path) != DocumentLock::State::HeldByOther)
        return true;
    // Another copy of the program has this file open and would overwrite it with its own version.
    if (question && question(DocumentLock::warningText(path, (*lock)->holder())))
        return true;
    result->cancelled = true;
    return false;
}

EstimateDocument::Result EstimateDocument::open(const QString &fileName, const LockQuestion &lockQuestion) {
    const QString path = QFileInfo(fileName).absoluteFilePath();
    Result r = load(path, path, lockQuestion);
    if (r)
        addWarning(&r, touchRecent());
    return r;
}

EstimateDocument::Result EstimateDocument::recover(const QString &copy, const QString &document,
                                                   const LockQuestion &lockQuestion) {
    Result r =
        load(copy, document.isEmpty() ? QString() : QFileInfo(document).absoluteFilePath(), lockQuestion);
    if (r) {
        setChanged(true);
        if (option(QStringLiteral("CheckBoxAutosave")))
            m_autosave->arm();
    }
    return r;
}

// Reads the document file `source` into the working database and the grids, as the document `file`
// (its lock, draft state, name; empty for a document never saved).
EstimateDocument::Result EstimateDocument::load(const QString &source, const QString &file,
                                                const LockQuestion &lockQuestion) {
    Result r;
    if (!m_module) {
        r.error = QStringLiteral("Нет папки данных для открытия документа.");
        return r;
    }
    if (r.error = DocumentFile::notAFile(source); !r.error.isEmpty())
        return r;
    std::shared_ptr<DocumentLock> lock;
    if (!file.isEmpty() && !takeLock(file, lockQuestion, &lock, &r))
        return r;

    // A copy in progress reads the working database that is about to be replaced.
    m_autosave->disarm();
    m_autosave->waitForCopy();
    QString opened;
    r.error = DocumentFile::open(*m_module, source, &opened);
    if (!r.error.isEmpty()) {
        if (m_changed && option(QStringLiteral("CheckBoxAutosave")))
            m_autosave->arm();
        return r;
    }
    addWarning(&r, opened);

    QScopedValueRollback<int> loading(m_loading, m_loading + 1);
    QSqlDatabase db = m_module->database(Db::Smeta);
    m_draft = Registration::draftAfterOpen(
        Registration::note(db),
        !file.isEmpty() && DocumentFile::isInside(file, DocumentFile::draftsFolder(dataFolder())));
    QString readError;
    if (!EstimateStore::readSmeta(db, *m_grid, *m_crew, &readError))
        addWarning(&r,
                   QStringLiteral("Не удалось прочитать документ «%1»: %2").arg(shown(source), readError));

    EstimateHeader::Values defaults = m_header;
    defaults.date = QDate::currentDate();
    if (m_settings)
        defaults.title = m_settings->text(QStringLiteral("ComboBoxShablon"));
    const QMap<QString, QString> params = EstimateStore::readParameters(db);
    // An older document names its parties only in its copies.
    if (!params.contains(DocParam::customer)) {
        defaults.customer = EstimateHeader::customerCopy(db).customer.value(QStringLiteral("fio"));
        defaults.object = EstimateHeader::objectCopy(db).value(QStringLiteral("object"));
    }
    m_header = EstimateHeader::fromParameters(params, defaults);
    m_lock = lock;
    afterLoad(file);
    r.ok = true;
    return r;
}

bool EstimateDocument::writeWorkingDatabase(QString *error, QString *warning) {
    QSqlDatabase db = m_module ? m_module->database(Db::Smeta) : QSqlDatabase();
    if (!db.isOpen()) {
        *error = m_module ? m_module->failure(Db::Smeta) : QStringLiteral("Нет рабочей базы сметы.");
        return false;
    }
    QScopedValueRollback<int> loading(m_loading, m_loading + 1); // new work ids are no edit
    if (!EstimateStore::writeSmeta(db, *m_grid, *m_crew, EstimateHeader::toParameters(m_header), error)) {
        *error = QStringLiteral("Не удалось записать смету в рабочую базу «%1»: %2")
                     .arg(shown(m_module->filePath(Db::Smeta)), error->trimmed());
        return false;
    }
    CustomerRegister customers(*m_module);
    ContractorRegister contractors(*m_module);
    QString copies;
    if (!EstimateHeader::writeCopies(db, customers, contractors, m_header, &copies) && warning)
        *warning = QStringLiteral("Данные заказчика и подрядчика не записаны в документ: %1").arg(copies);
    return true;
}

EstimateDocument::Result EstimateDocument::save(bool overReadOnly) {
    Result r;
    if (m_fileName.isEmpty()) {
        r.error = QStringLiteral("У документа ещё нет имени файла: выберите «Сохранить как».");
        return r;
    }
    if (!overReadOnly && DocumentFile::isReadOnly(m_fileName)) {
        // Saving replaces the file as a whole, which its folder allows: the file's own protection is
        // asked about first, as other editors do.
        r.readOnly = true;
        r.error = QStringLiteral("Файл «%1» доступен только для чтения.").arg(shown(m_fileName));
        return r;
    }
    m_autosave->disarm();
    auto keepChanged = [this, &r](const QString &message) {
        r.error = message;
        if (m_changed && option(QStringLiteral("CheckBoxAutosave")))
            m_autosave->arm();
        return r;
    };
    QString error;
    if (!writeWorkingDatabase(&error, &r.warning))
        return keepChanged(error + QStringLiteral("\nФайл «%1» не изменён.").arg(shown(m_fileName)));

    Registration::Entry entry;
    entry.date = m_header.date.isValid() ? m_header.date : QDate::currentDate();
    entry.name = QFileInfo(m_fileName).completeBaseName();
    entry.fileName = m_fileName;
    entry.client = m_header.customer;
    entry.object = m_header.object;
    entry.summat = m_editor->materialsTotal().text();
    entry.sumrab = m_editor->worksTotal().text();
    entry.allsum = m_editor->grandTotal().text();
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
    setChanged(false);

    if (reg.ok)
        reg = Registration::complete(mydoc, reg, entry);
    QSqlDatabase people = m_module->database(Db::People);
    QString countError;
    if (people.isOpen())
        Registration::countEstimate(people, m_header.customer, m_header.object,
                                    QString::number(m_header.number), &countError);
    if (!reg.ok)
        addWarning(&r, QStringLiteral("Документ «%1» сохранён, но не внесён в список «Мои документы»: %2")
                           .arg(shown(m_fileName), reg.error));
    r.ok = true;
    emit saved(m_fileName);
    return r;
}

EstimateDocument::Result EstimateDocument::saveAs(const QString &fileName, const LockQuestion &lockQuestion,
                                                  bool overReadOnly) {
    Result r;
    QString path = fileName;
    if (QFileInfo(path).suffix().isEmpty())
        path += QLatin1Char('.') + DocumentFile::kExtension;
    path = QFileInfo(path).absoluteFilePath();
    std::shared_ptr<DocumentLock> lock;
    if (!takeLock(path, lockQuestion, &lock, &r))
        return r;
    const QString previous = m_fileName;
    m_fileName = path;
    r = save(overReadOnly);
    if (!r.ok) {
        m_fileName = previous;
        return r;
    }
    m_lock = lock;
    setFile(path);
    addWarning(&r, touchRecent());
    return r;
}

QString EstimateDocument::touchRecent() {
    QSqlDatabase people = m_module->database(Db::People);
    if (!people.isOpen() || m_fileName.isEmpty())
        return {}; // the data module has reported the failure
    QString error;
    const bool ok = RecentDocuments::touch(people, m_fileName, &error);
    emit recentChanged();
    return ok ? QString() : QStringLiteral("Не удалось обновить список последних документов: %1").arg(error);
}

void EstimateDocument::autosaveTick() {
    if (!m_changed || !option(QStringLiteral("CheckBoxAutosave")))
        return;
    if (m_autosave->isCopying()) {
        m_autosave->arm(); // the previous copy is still being written: try at the next tick
        return;
    }
    QString error;
    if (!writeWorkingDatabase(&error) && !error.isEmpty()) {
        emit m_autosave->copyFailed(QStringLiteral("Автосохранение не удалось. %1").arg(error));
        return;
    }
    const QString fallback = m_fileName.isEmpty() ? caption() : QFileInfo(m_fileName).completeBaseName();
    const QString id = AutosaveName::identification(m_header.customer, m_header.object,
                                                    QString::number(m_header.number), fallback);
    m_autosave->startCopy(m_module->filePath(Db::Smeta),
                          AutosaveName::fileName(QDateTime::currentDateTime(), id));
}
