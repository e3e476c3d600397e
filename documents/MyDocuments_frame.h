#pragma once
// TMyDocuments ("Мои документы"): the register of the user's estimates, as finished documents and as
// drafts, with the contract, invoice and act files made from each. The frame filters the lists, and
// edits, finishes, deletes, opens and moves rows; the reading is RegisterRows', the writing the
// estimate's Registration and RegisterMoves'.

#include "RegisterCommands.h"
#include "RegisterFilter.h"
#include "RegisterRows.h"
#include "customers/OptionFlags.h"

#include <QDate>
#include <QSqlDatabase>
#include <QWidget>
#include <functional>

class OutputFilesModel;
class QAction;
class QCalendarWidget;
class QComboBox;
class QGroupBox;
class QKeySequence;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QPushButton;
class QRadioButton;
class QStringListModel;
class QTabWidget;
class QTableView;
class QTimer;
class QToolBar;
class RegisterModel;
class TModuleSQL;

class TMyDocuments : public QWidget {
    Q_OBJECT
public:
    // options: the main window's options (CheckBoxDraft, the customer-folder options).
    TMyDocuments(TModuleSQL &module, RegisterCommands &commands, OptionFlags options,
                 QWidget *parent = nullptr);

    // FrameEnter: the drafts page as the option CheckBoxDraft says, the customers, both grids.
    void FrameEnter();
    // Reads the shown page again with its filters (a document was saved, another window changed rows).
    void refresh();
    void showDraftsPage(bool on);

    // ----- Filters.
    void ListBoxZakazClick(const QString &customer);
    void RzCalendar1Click(const QDate &day);
    void BtnTodayClick();
    void RadioStatusClick(RegisterFilter::Status status);
    void BtnFilterPeriodClick();
    void BtnPrevMonthClick();
    void BtnNextMonthClick();
    void BtnCurrentMonthClick();
    void BtnClearFiltersClick();
    void BtnFirstRowClick();
    void BtnLastRowClick();

    // ----- Documents page.
    void NFinishClick();
    void NEditClick();
    void NDeleteClick();
    void ToolSetDraftsClick();
    void ToolOpenClick();
    void outputClick(RegisterCommands::Output kind);
    // ----- Drafts page.
    void MMoveToDocClick();
    void MEditDraftClick();
    void MDelDraftClick();
    // A double click in a side grid: the file with the desktop's program for it.
    void openOutputFile(const QString &path);

    // The shown page's rows (the documents page when the drafts page is hidden).
    bool draftsShown() const;
    RegisterModel *documentsModel() const { return m_doc.model; }
    RegisterModel *draftsModel() const { return m_draft.model; }

    // Components.
    QListView *ListBoxZakaz = nullptr;
    QCalendarWidget *RzCalendar1 = nullptr;
    QPushButton *BtnToday = nullptr;
    QTabWidget *PageControl = nullptr;
    QTableView *GridDoc = nullptr;
    QTableView *GridDraft = nullptr;
    QRadioButton *RadioAll = nullptr;
    QRadioButton *RadioInWork = nullptr;
    QRadioButton *RadioClosed = nullptr;
    QLineEdit *EditSumMat = nullptr;
    QLineEdit *EditSumRab = nullptr;
    QLineEdit *EditSumAll = nullptr;
    QLabel *LabelProblem = nullptr;
    QTableView *GridContract = nullptr;
    QTableView *GridAccount = nullptr;
    QTableView *GridAct = nullptr;
    QAction *NFinish = nullptr;
    QAction *NEdit = nullptr;
    QAction *NDelete = nullptr;
    QAction *ToolSetDrafts = nullptr;
    QAction *ToolOpen = nullptr;
    QAction *MMoveToDoc = nullptr;
    QAction *MEditDraft = nullptr;
    QAction *MDelDraft = nullptr;
    QAction *ToolOpenDraft = nullptr;

signals:
    // Rows were changed, moved or deleted.
    void registerChanged();

private:
    static inline const QString kAnyYear = QStringLiteral("Год");

    // One page of the centre: its grid, its period box and what filters it.
    struct Page {
        Registration::List list = Registration::List::Documents;
        QWidget *tab = nullptr;
        QTableView *grid = nullptr;
        RegisterModel *model = nullptr;
        QComboBox *month = nullptr;
        QComboBox *year = nullptr;
        QTimer *comboFilter = nullptr; // a choice in a combo filters once the typing pauses
        QDate day;                     // the calendar's day while it filters; null otherwise
        bool yearsKnown = false;       // the year combo lists the years of the rows as they are
        QString readStatement;         // what the grid shows, and at which version of the register
        RegisterRows::Version readVersion;
    };

    // Building (MyDocuments_frame.cpp).
    void buildLeft(QWidget *left);
    void buildPage(Page &page, const QString &title, const char *suffix);
    QAction *makeAction(QToolBar *bar, const char *name, const QString &text, const QKeySequence &key,
                        void (TMyDocuments::*slot)());
    QToolBar *buildDocumentActions();
    QToolBar *buildOutputActions();
    QToolBar *buildDraftActions();
    QWidget *buildSideGrids();
    QTableView *makeGrid(const QString &name, QWidget *parent);

    // Reading (MyDocuments_pages.cpp).
    Page &current();
    bool isDrafts(const Page &page) const { return &page == &m_draft; }
    RegisterFilter::Filter filterOf(const Page &page) const;
    void readPage(Page &page, qlonglong keepId = 0);
    void readCustomers();
    // After a read: header, kept row, years, totals, actions.
    void finishRead(Page &page, qlonglong keepId);
    void readYears(Page &page);
    void showTotals();
    void showOutputs();
    void resetFilters(Page &page);
    void pageChanged();
    void selectionChanged();
    void filterSoon(Page &page);

    // Acting (MyDocuments_actions.cpp).
    // The register's database; closed (and the problem shown) when mydoc.db cannot be used.
    QSqlDatabase registerDb();
    bool selected(const Page &page, RegisterRow *row);
    void editRow(Page &page);
    void deleteRow(Page &page);
    bool moveRow(Page &page, const QString &target);
    bool openRow(const Page &page);
    void popup(Page &page, const QPoint &at);
    void changed(Page &page, qlonglong keepId = 0);
    // A change of one row: when it fails, the failure and its reason are told; the page is read again.
    void writeRow(Page &page, qlonglong keepId, const QString &failure,
                  const std::function<bool(QSqlDatabase, QString *)> &write);
    void tellFailure(const QString &text);

    TModuleSQL &m_module;
    RegisterCommands &m_commands;
    OptionFlags m_options;
    QStringListModel *m_customers = nullptr;
    QString m_customer; // the customer filter, as shown
    RegisterFilter::Status m_status = RegisterFilter::Status::All;
    Page m_doc;
    Page m_draft;
    OutputFilesModel *m_contracts = nullptr;
    OutputFilesModel *m_accounts = nullptr;
    OutputFilesModel *m_acts = nullptr;
    bool m_showDrafts = true;
};
