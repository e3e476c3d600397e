#pragma once
// The open estimate as one object with no widgets: its two grids and their editor, the header values
// (customer, object, contractor, number, date, title, works, currency), the document file with its
// draft flag, lock and autosave, and the changed state. The main window shows it; the contract,
// invoice, acts, package, register and the headless commands work on it, never on a window.
//
// The working database Sp/smeta.db holds the document between saves; open replaces it by a checked
// copy of the file, save writes the grids into it and copies it crash-safely over the file, entering
// the file in the register of documents.

#include "EstimateHeader.h"
#include "customers/Records.h"

#include <QObject>
#include <QString>
#include <functional>
#include <memory>

class Autosave;
class CrewGrid;
class DocumentLock;
class EstimateEditor;
class EstimateGrid;
class MainSettings;
class SettingsStore;
class TModuleSQL;
class WorkingCopy;
struct EstimatePrint;

class EstimateDocument : public QObject {
    Q_OBJECT
public:
    // What an operation on the file came to. A failed one leaves the document, its grids and its
    // changed state as they were; `error` says why in Russian, naming the file.
    struct Result {
        bool ok = false;
        bool cancelled = false; // the user declined (a document another program holds)
        bool readOnly = false;  // not saved: the file is read-only and replacing it was not allowed
        QString error;
        QString warning; // done, but something beside it failed (e.g. the register)
        explicit operator bool() const { return ok; }
    };
    // Asked when another running program holds the file's lock: the warning text is shown to the user,
    // true goes on regardless. Without one, such a file is not taken.
    using LockQuestion = std::function<bool(const QString &warning)>;

    explicit EstimateDocument(QObject *parent = nullptr);
    ~EstimateDocument() override;

    // The data module, the program's settings and the data folder; until then the document only holds
    // its grids. The settings give the autosave interval, the crew defaults, the legal-data options.
    // The document takes a working copy of its own in the data folder (storage/WorkingCopy.h) and
    // points the module's working connections at it: a second program on the same folder works on
    // another copy. The copy is told which document it holds and whether that has changes, so that a
    // crash leaves them for recovery.
    void attach(TModuleSQL *module, MainSettings *settings, SettingsStore *store);
    TModuleSQL *module() const { return m_module; }
    QString dataFolder() const;
    // The working copy held (null when none could be: workingCopyError() says why, and the module
    // works on the folder's first copy).
    WorkingCopy *workingCopy() const { return m_workingCopy.get(); }
    QString workingCopyError() const { return m_workingCopyError; }

    EstimateGrid &grid() { return *m_grid; }
    const EstimateGrid &grid() const { return *m_grid; }
    CrewGrid &crew() { return *m_crew; }
    const CrewGrid &crew() const { return *m_crew; }
    EstimateEditor &editor() { return *m_editor; }
    const EstimateEditor &editor() const { return *m_editor; }

    // ----- The file.
    QString fileName() const { return m_fileName; }
    // The companion spreadsheet name: the file's name with ".xls" (empty for a new document).
    QString xlsFileName() const;
    bool isDraft() const { return m_draft; }
    // The page caption: the file's name, or "Новый документ" / "Новый черновик".
    QString caption() const;
    // The folder where dialogs for this document start: its own folder, else Sm.
    QString folder() const;

    // ----- Changed state: every edit sets it, a save or a load clears it.
    bool isChanged() const { return m_changed; }
    void setChanged(bool changed);

    // ----- Header.
    const EstimateHeader::Values &header() const { return m_header; }
    // An edit of the header (the document changes when a value differs).
    void setHeader(const EstimateHeader::Values &values);
    // Shows values that are no edit (the choices of the last session at start).
    void presetHeader(const EstimateHeader::Values &values);
    void setCurrency(int index);
    // The estimate's number as printed: text number + "-" + number, or the number alone.
    QString numberText() const;
    static QString numberText(const EstimateHeader::Values &values);

    // ----- The parties: from the registers, or from the document's own copies when the register does
    // not know the name. The names as the estimate prints them carry ", " and the legal-data line when
    // the options ZCheckBoxUridDan / PodryadCheckBoxUridDan are on.
    CustomerData customerData() const;
    ContractorData contractorData() const;
    QString customerForEstimate() const;
    QString contractorForEstimate() const;

    // ----- The estimate as it prints now (header, rows, materials, coefficient lines, totals, act).
    EstimatePrint print() const;

    // ----- Commands.
    // CreateNewDoc: an empty estimate; the parties stay, the date is today, the number 1.
    Result newDocument(bool draft = false);
    // OpenMyFile: a ".sim" or ".sme" file replaces the document.
    Result open(const QString &path, const LockQuestion &lockQuestion = {});
    // The working copy a crashed program left (`copy`) replaces the document, as the unsaved changes
    // of `document` (empty: a document never saved).
    Result recover(const QString &copy, const QString &document, const LockQuestion &lockQuestion = {});
    // Saves to fileName() (a new document has none: use saveAs). A file the user may not write is
    // replaced only with overReadOnly; otherwise the result is readOnly and nothing is written.
    Result save(bool overReadOnly = false);
    Result saveAs(const QString &path, const LockQuestion &lockQuestion = {}, bool overReadOnly = false);
    // The grids and the parameters into the working database (false with *error), then the copies of
    // the parties (their failure is only a *warning).
    bool writeWorkingDatabase(QString *error, QString *warning = nullptr);

    // ----- Autosave: runs while the option CheckBoxAutosave is on and the document is changed.
    Autosave &autosave() { return *m_autosave; }
    // TimerAutosaveTimer: the grids go into the working database, the copy is made off this thread.
    void autosaveTick();
    // The option was switched: the timer starts or stops.
    void autosaveOptionChanged();

    // The crew sheet's coefficient and mode for a document that keeps none of its own.
    void applyCrewDefaults();

signals:
    // Every edit (the autosave timer starts on it).
    void edited();
    void changedStateChanged(bool changed);
    // A document was opened or made new: views of its parts reload.
    void loaded();
    void saved(const QString &path);
    void fileNameChanged(const QString &path);
    void headerChanged();
    // The list of recent documents changed (a document was opened or saved under a new name).
    void recentChanged();
    // An autosave copy failed (each cause once, until a copy succeeds again).
    void autosaveFailed(const QString &message);

private:
    void edit();
    void afterLoad(const QString &path);
    Result load(const QString &source, const QString &file, const LockQuestion &lockQuestion);
    void noteWorkingCopy();
    bool takeLock(const QString &path, const LockQuestion &question, std::shared_ptr<DocumentLock> *lock,
                  Result *result);
    void setFile(const QString &path);
    bool option(const QString &key) const;
    QString touchRecent(); // the failure, or empty

    TModuleSQL *m_module = nullptr;
    MainSettings *m_settings = nullptr;
    SettingsStore *m_store = nullptr;
    std::unique_ptr<EstimateGrid> m_grid;
    std::unique_ptr<CrewGrid> m_crew;
    std::unique_ptr<EstimateEditor> m_editor;
    Autosave *m_autosave = nullptr;
    std::unique_ptr<WorkingCopy> m_workingCopy;
    QString m_workingCopyError;
    std::shared_ptr<DocumentLock> m_lock;
    EstimateHeader::Values m_header;
    QString m_fileName;
    QString m_autosaveReported;
    bool m_draft = false;
    bool m_changed = false;
    int m_loading = 0;
};
