#pragma once
// The main window: the estimate editor with the rate grid beside it. The window is split over
// several files by subsystem (TForm1_<area>.cpp); each area keeps its members in its own block below.

#include "storage/MainSettings.h"

#include <QMainWindow>
#include <QMap>
#include <QPointer>
#include <QSqlDatabase>
#include <QStringList>
#include <memory>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QSplitter;
class QTabWidget;
class QTableView;
class QToolBar;
class CrewGrid;
class EstimateGrid;
class SettingsStore;
class TModuleSQL;
class Autosave;
class DocumentLock;

class TForm1 : public QMainWindow {
    Q_OBJECT
public:
    // FormCreate: decides the data folder and builds the window; touches no database.
    explicit TForm1(const QStringList &arguments, QWidget *parent = nullptr);
    ~TForm1() override;

    // The data module is created after the window and handed over here.
    void attachModule(TModuleSQL *module);
    // FormShow: applies the settings, opens the databases, opens the start document.
    void FormShow();
    // FormCloseQuery: the unsaved-changes question; writes the settings. False keeps the window open.
    bool FormCloseQuery();

    // Program state.
    QString dataFolder() const { return m_dataFolder; }
    QString startupError() const { return m_startupError; }
    QString currentFile() const { return m_fileName; }
    int currentRow() const { return m_currentRow; }
    void setCurrentRow(int gridRow) { m_currentRow = gridRow; }
    QString priceTableName() const { return m_priceTable; }
    void setPriceTableName(const QString &name) { m_priceTable = name; }
    TModuleSQL &module() const { return *m_module; }
    SettingsStore *settingsStore() const { return m_settingsStore.get(); }
    MainSettings &settings() { return m_settings; }
    EstimateGrid *gridDoc() const { return m_gridDoc; }
    CrewGrid *gridBrig() const { return m_gridBrig; }

    // The changed flag is the Save button's enabled state.
    bool isChanged() const;
    void EnableSave();
    void DisableSave();

    // Components (objectName = the member's name).
    QTableView *StringGridDoc = nullptr;
    QTableView *StringGridBrig = nullptr;
    QTabWidget *PageControlDoc = nullptr; // "Новый документ", "Для бригады", later windows
    QWidget *TabSheet1 = nullptr;
    QWidget *TabSheetBrig = nullptr;
    QSplitter *SplitterMain = nullptr;
    QWidget *PanelRas = nullptr;    // left: the rate grid and its navigation
    QWidget *PanelHeader = nullptr; // above the estimate: customer, object, contractor, number, date
    QWidget *PanelKoef = nullptr;   // coefficient lines of the estimate
    QWidget *PanelTotals = nullptr;
    QLineEdit *Edit6 = nullptr; // works total
    QLineEdit *Edit4 = nullptr; // materials total
    QLineEdit *Edit5 = nullptr; // grand total
    QComboBox *EditValuta = nullptr;
    QToolBar *ToolBarMain = nullptr;
    QToolBar *ToolBarDoc = nullptr;
    QMenu *MenuFile = nullptr;
    QMenu *MenuEdit = nullptr;
    QMenu *MenuDocument = nullptr;
    QMenu *MenuOptions = nullptr;
    QMenu *MenuHelp = nullptr;
    QMenu *MLastDoc = nullptr;
    QMenu *PopupMenuDoc = nullptr; // the estimate grid's pop-up menu
    QAction *spdNew = nullptr;
    QAction *spdOpen = nullptr;
    QAction *spdSave = nullptr;
    QAction *MSaveFile = nullptr; // objectName "МSaveFile"
    QAction *spdSaveKak = nullptr;
    QAction *spdServerSave = nullptr;
    QAction *MExit = nullptr;
    QAction *CheckBoxAutosave = nullptr;
    QAction *CheckBoxLoadLastDoc = nullptr;

    // ----- document file (TForm1_file.cpp)
    void CreateNewDoc(bool draft = false);
    // Save: false when the user cancelled the file dialog or the file could not be written (the
    // document then stays changed).
    bool spdSaveClick();
    bool spdSaveKakClick();
    // Opens a document file; false leaves the open document, its grid and its changed flag as they were.
    bool OpenMyFile(const QString &fileName);
    void setCurrentFile(const QString &fileName);
    bool isDraft() const { return m_draft; }
    void setDraft(bool draft) { m_draft = draft; }
    // The parameters stored in table parametrs with the document.
    QList<QPair<QString, QString>> documentParameters() const;
    // The default name of the spreadsheet export: the document's name with ".xls".
    QString xlsFileName() const { return m_xlsName; }
    QString openDialogFolder() const { return m_openDir; }
    QString saveDialogFolder() const { return m_saveDir; }
    void spdNewDdaftClick();
    void spdOpenDdaftClick();
    void MLastDocFileOpenClick(const QString &fileName);
    // LastDoc: puts the current file at the top of the recent list and rebuilds MLastDoc.
    void LastDoc();
    // Fills MLastDoc from the recent list, newest first (each item's data holds the path).
    void LastDocMenu();
    // Opens the newest recent document when it exists (CheckBoxLoadLastDoc at start).
    bool OpenLastDoc();
    // "Сохранить файл?" when the document changed. False when the user cancelled or the save failed.
    bool askSaveChanges();
    // TimerAutosave fired: the grid goes into the working database, the copy is made off this thread.
    void TimerAutosaveTimer();
    Autosave *autosave() const { return m_autosave; }
    QAction *spdNewDdaft = nullptr;
    QAction *spdOpenDdaft = nullptr;
    QAction *CheckBossDir = nullptr;
    QAction *CheckBoxDraft = nullptr;

private:
    bool writeWorkingDatabase(QString *error);
    Autosave *m_autosave = nullptr;
    std::shared_ptr<DocumentLock> m_lock;
    QString m_autosaveReported; // the last autosave failure shown (each cause is told once)

public:

    // ----- estimate editor (TForm1_edit.cpp)
    // The editor of StringGridDoc: commands, undo, totals, coefficients, crew sheet, materials. Code that
    // changes the grid in several calls makes it one undoable step:
    //     EstimateEditor::Scope step(form->editor(), QStringLiteral("Вставка расценки"));
    // and calls editor()->materialsChanged() after writing the estimate's table `materials`.
    class EstimateEditor *editor() const { return m_editor; }
    // StringGridDocCanEditCell: the rights of the row's kind; a closing "Итого" row is not typed into.
    bool StringGridDocCanEditCell(int gridRow, int col) const;
    // The rows the commands work on: the selected rows, else the current row (grid rows).
    QPair<int, int> selectedDocRows() const;
    // Commands of the pop-up menu PopupMenuDoc and the tool bar ToolBarDoc.
    void NAddRowClick();
    void NInsertRowClick();
    void NDeleteRowClick();
    void NUpRowClick();
    void NDownRowClick();
    void NCreateRazdelClick();
    void NCreatePodrazdelClick();
    void NDeleteRazdelClick();
    void NDeletePodrazdelClick();
    void NCopyRasClick();
    void NInsertRasClick();
    void NUndoClick();
    void NRedoClick();
    QAction *NAddRow = nullptr;
    QAction *NInsertRow = nullptr;
    QAction *NDeleteRow = nullptr;
    QAction *NUpRow = nullptr;
    QAction *NDownRow = nullptr;
    QAction *NCreateRazdel = nullptr;
    QAction *NCreatePodrazdel = nullptr;
    QAction *NDeleteRazdel = nullptr;
    QAction *NDeletePodrazdel = nullptr;
    QAction *NCopyRas = nullptr;
    QAction *NInsertRas = nullptr;
    QAction *NUndo = nullptr;
    QAction *NRedo = nullptr;
    // Crew sheet: the global coefficient and the switch "per row" (checked) / "one for all rows".
    QLineEdit *EditKoefBrig = nullptr;
    class QRadioButton *RadioButtonKoefBrig = nullptr;
    class QLabel *LabelBrigTotals = nullptr;
    QWidget *TabSheetMat = nullptr; // the estimate's materials
    class QTableView *StringGridMat = nullptr;

private:
    void resetEditor();
    void showEditorTotals();
    void moveCurrentTo(int gridRow, int col = -1);
    class EstimateEditor *m_editor = nullptr;

public:

    // ----- price base (TForm1_price.cpp)
    // The rate panel in PanelRas (price lists, section navigation, rate grid StringGridRas), the live
    // search list MemoPrice over the estimate grid, and the insertion of rates into the estimate.
    class PriceBase *priceBase() const { return m_priceBase; }
    class TRatePanel *RatePanel = nullptr;
    class LiveSearchList *MemoPrice = nullptr;
    QAction *CheckBoxLiveSearch = nullptr;
    QAction *CheckBoxSortWork = nullptr;
    QAction *CheckBoxControlPrice = nullptr;
    QAction *CheckRowMat = nullptr;
    // StringGridRasDblClickCell: rate grid row r (or every ticked row) into the estimate.
    void StringGridRasDblClickCell(int gridRow);
    // StringGridDocSetEditText: the live search while a work's name is typed into the estimate grid.
    void StringGridDocSetEditText(int gridRow, int col, const QString &text);
    // MemoPriceDblClick: live-search entry `row` into the current estimate row.
    void MemoPriceDblClick(int row);
    // The estimate's materials of one rate again from the quantities and the norms.
    void SearchAndWriteResurse(const QString &rec, const QString &table);

private:
    void startPriceBase();
    void showDuplicate(int gridRow);
    class PriceBase *m_priceBase = nullptr;
    class LiveSearchModel *m_liveModel = nullptr;
    class CellEditorWatcher *m_cellWatcher = nullptr;
    bool m_inserting = false; // an insertion's own step needs no recomputing of materials

public:

    // ----- estimate header: customer, object, contractor (TForm1_header.cpp)
    // (The types of this block are declared by their elaborated names; their headers are in customers/.)
    // The header's values as document parameters, and back when a document is loaded.
    QList<QPair<QString, QString>> headerParameters() const;
    void applyHeaderParameters(const QMap<QString, QString> &params);
    // Writes the copies of the customer, object and requisites into the working database.
    void writeHeaderCopies(QSqlDatabase db) const;
    // The header's choices; names as shown (double quotes, not backticks). Empty when none is chosen.
    QString currentCustomer() const;
    QString currentObject() const;
    QString currentContractor() const; // the short name
    // The names as the estimate prints them: followed by ", " and the legal-data line when the options
    // ZCheckBoxUridDan / PodryadCheckBoxUridDan are on.
    QString customerForEstimate() const;
    QString contractorForEstimate() const;
    class QDate estimateDate() const;
    QString estimateNumber() const;     // NumericSmeta
    QString estimateNumberWord() const; // NumericSmetaWord
    QString estimateTitle() const;      // ComboBoxShablon
    QString nameOfWorks() const;        // EditNameWork
    bool dateNumbering() const;         // spdDateNumericSmetaWord is down
    // Full records for the documents (contract placeholders, invoice, acts): from the registers, or from
    // the document's own copies when the register does not know the name.
    struct CustomerData customerData() const;
    struct ContractorData contractorData() const;
    // "Заказчики и объекты", "Данные подрядчика": open the register windows.
    void MZakazAndObjectClick();
    void MPodryadClick();
    // Refill the header's lists from the registers.
    void reloadHeaderLists();
    class QComboBox *ComboBoxZakaz = nullptr;
    class QComboBox *ComboBoxObject = nullptr;
    class QComboBox *ComboBoxPodryad = nullptr;
    class QComboBox *ComboBoxShablon = nullptr;
    class QDateEdit *DateSmeta = nullptr;
    class QSpinBox *NumericSmeta = nullptr;
    class QLineEdit *NumericSmetaWord = nullptr;
    class QLineEdit *EditNameWork = nullptr;
    QAction *MZakazAndObject = nullptr;
    QAction *MPodryad = nullptr;
    // The contractors changed (added, renamed, deleted).
    Q_SIGNAL void contractorsChanged();

private:
    void headerDocumentLoaded();
    bool attachHeader();
    struct OptionFlags optionFlags();
    class EstimateHeaderPanel *m_header = nullptr;
    QPointer<class TZakazAndObject> m_zakazWindow;
    QPointer<class TPodryadList> m_podryadWindow;

public:

    // ----- office output (TForm1_output.cpp)
    // The estimate's printed forms through the office engine, made on the engine's own thread behind a
    // progress window: the template is the one of the document title (ComboBoxShablon).
    void MPreviewClick();     // "Предварительный просмотр"
    void MPrintClick();       // "Печать"
    void MExportPDFClick();   // "Экспорт в формат PDF"
    void MExportExcelClick(); // "Экспорт в формат Excel"
    // TEditFromAktSmeta: the titles of the printed sheets (section View of the settings).
    void MEditFromAktSmetaClick();
    // The estimate as it prints now, and the sheet titles in force.
    struct EstimatePrint estimatePrint() const;
    struct ViewTitles viewTitles() const;
    // FormShow: the default templates are put into Sh where missing.
    void outputShow();
    // True while a document is being made (a second request waits for it to end).
    bool outputBusy() const { return m_outputBusy; }
    class TFCustomPreview *FCustomPreview = nullptr;
    QAction *MPreview = nullptr;
    QAction *MPrint = nullptr;
    QAction *MExportPDF = nullptr;
    QAction *MExportExcel = nullptr;
    QAction *MEditFromAktSmeta = nullptr;
    // Emitted when a requested document has been made (ok) or has failed (the user was told why).
    Q_SIGNAL void outputFinished(bool ok, const QString &path);

private:
    enum class OutputKind { Preview, Print, Pdf, Excel };
    void runOutput(OutputKind kind);
    class OfficeService *m_office = nullptr;
    bool m_outputBusy = false;

public:
    // A checkable option whose objectName is its settings key; its state follows the settings.
    QAction *addOption(QMenu *menu, const QString &key, const QString &caption);

signals:
    // Every edit: the changed flag was set (the autosave timer starts on it).
    void saveEnabled();
    // The customer/object register changed: header combos reload.
    void customersChanged();
    // A document was loaded or created: windows that show its parts reload.
    void documentLoaded();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildActions();
    void buildMenus();
    void buildCentral();
    void setupGrids();
    void applySettings();
    void collectSettings();
    void reportDatabaseFailure(const QString &text);
    void setupFile();
    void setupEditor();
    void setupPrice();
    void setupHeader();
    void setupOutput();

    QString m_dataFolder;
    QString m_dataFolderCopy;
    QString m_startupDocument;
    QString m_startupError;
    QString m_fileName;
    QString m_xlsName;
    QString m_openDir;
    QString m_saveDir;
    QString m_priceTable = QStringLiteral("price1");
    int m_currentRow = 2;
    bool m_draft = false;
    bool m_closing = false;
    TModuleSQL *m_module = nullptr;
    std::unique_ptr<SettingsStore> m_settingsStore;
    MainSettings m_settings;
    EstimateGrid *m_gridDoc = nullptr;
    CrewGrid *m_gridBrig = nullptr;
};
