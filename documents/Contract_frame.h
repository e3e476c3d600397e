#pragma once
// TContract: the contract page of the main window. The template (cmbFileContract, loaded by
// btnLoadShablon, saved back by btnSaveShablon) is filled from the open estimate, the contractor and the
// customer chosen in ComboBoxZakaz; the total (Edit6), the advance percentage (SpinEditAvans), the
// advance (EditAvans) and the remainder (EditOstatok) follow the contract's rule and can be corrected
// before filling. The filled contract is edited in RichViewEdit1, previewed, printed (SpinEditCopy
// copies), saved as DOCX or RTF and exported to PDF; every document is made by the office engine on
// its own thread while the window stays responsive.

#include "ContractFile.h"
#include "ContractFill.h"
#include "office/OfficeService.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

class ContractEditor;
class ContractPlaceholderModel;
class EstimateDocument;
class QComboBox;
class QLineEdit;
class QSpinBox;
class QTableView;
class QTemporaryDir;
class QToolButton;
class SettingsStore;
class TContract_Preview;
class TModuleSQL;

class TContract : public QWidget {
    Q_OBJECT
public:
    // What the page works with: the open estimate and the program around it.
    struct Context {
        EstimateDocument *document = nullptr;
        TModuleSQL *module = nullptr;
        SettingsStore *store = nullptr;
        QString dataFolder;
        OfficeService *office = nullptr;
        std::function<void(const QString &)> status; // a note in the status bar
    };

    explicit TContract(const Context &context, QWidget *parent = nullptr);
    ~TContract() override;

    // The fields from the open estimate (total, customer, templates); the editor is left as it is.
    void readEstimate();

    // CreateContract: the template filled into the editor from the fields and the estimate.
    void CreateContract();
    // Chooses a template file and loads it into the editor (it becomes the contract's template).
    void btnLoadShablonClick();
    // Loads the template into the editor as it is, to be read or edited before filling.
    void loadTemplate(const QString &path);
    // Saves what the editor holds as a template and makes it the contract's template.
    void btnSaveShablonClick();
    void btnPreviewClick();
    void btnPrintClick();
    void btnSaveClick();
    void btnPDFClick();

    void Edit6Change();
    void EditAvansChange();
    void SpinEditAvansChange(int percent);

    ContractEditor *editor() const { return m_editor; }
    TContract_Preview *preview() const { return m_preview; }
    // A document is being made (commands wait until it is done).
    bool busy() const { return m_busy; }
    // The editor shows a filled contract (not the template itself).
    bool showsContract() const { return !m_base.isEmpty() && !m_baseIsTemplate; }
    // Edits (text or page) not yet written into a saved file.
    bool hasUnsavedEdits() const;
    QString templatePath() const { return m_templatePath; }

signals:
    // A command that made a document ended; path is the file written (empty for preview and failures).
    void jobFinished(bool ok, const QString &path);

private:
    using Job = std::function<bool(OfficeEngine &engine, QString *error)>;
    void build();
    void runJob(const QString &what, Job job, std::function<void(bool ok, const QString &error)> done);
    ContractFill::Data contractData() const;
    ContractFile::Edits edits() const;
    QString scratch(const QString &name);
    void fillTemplateList();
    void templateChosen(int index);
    void setTemplate(const QString &path);
    void templateNotLoaded(const QString &why);
    // The editor shows the body of the file (a template or a filled contract).
    void showBody(const QString &engineHtml, const QString &path, bool isTemplate);
    // Tells the user why a command failed and ends it.
    void failed(const QString &error);
    void showParty(int which);
    void insertPlaceholder(const QModelIndex &index);
    // Writes the contract as it stands into the file, registers it, reports.
    void saveAs(const QString &path, const QString &format, bool pdf);

    Context m_ctx;
    ContractEditor *m_editor = nullptr;
    ContractPlaceholderModel *m_fields = nullptr;
    QTableView *m_fieldsView = nullptr;
    QComboBox *cmbFileContract = nullptr;
    QComboBox *ComboBoxZakaz = nullptr;
    QLineEdit *Edit6 = nullptr;
    QSpinBox *SpinEditAvans = nullptr;
    QLineEdit *EditAvans = nullptr;
    QLineEdit *EditOstatok = nullptr;
    QSpinBox *SpinEditCopy = nullptr;
    TContract_Preview *m_preview = nullptr;
    std::unique_ptr<QTemporaryDir> m_scratch;
    QString m_templatePath;
    QString m_base; // the file the editor's text comes from
    bool m_baseIsTemplate = false;
    bool m_unsaved = false; // edits since the last save
    bool m_busy = false;
    int m_serial = 0; // names of scratch files
};
