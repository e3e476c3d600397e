#pragma once
// TKassaBook: the cash book, a page of the main window. Tool bar (clear, open, save, print, PDF,
// Excel, sold materials, the mobile companion), the customers ListBox1 over their objects ListBox2,
// the period and month/year filters, the category filter, the record buttons with DateEdit, the
// receipts and purchase buttons, and two pages: "Движение средств" (GridRashod, the balance, the sold
// materials, the totals StrGridItigo) and "Материалы по чекам" (GridCheki with its cost). The window
// holds widgets; CashBook does the work.

#include "CashBook.h"
#include "MobileExchange.h"

#include <QWidget>
#include <functional>

class OfficeService;
class QAction;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSpinBox;
class QStandardItemModel;
class QStringListModel;
class QTabWidget;
class QTableView;
class QToolButton;
class TFCustomPreview;

class TKassaBook : public QWidget {
    Q_OBJECT
public:
    struct Context {
        CashBook *book = nullptr;
        MobileExchange *exchange = nullptr;
        QString dataFolder;
        // The engine session and the page preview the program's documents share.
        std::function<OfficeService &()> office;
        TFCustomPreview *preview = nullptr;
        // Where the upgrade of a book of an earlier version puts what left the book.
        std::function<BookUpgrade::Targets()> targets;
        // Another book became the book (its path is kept in the settings, the registers follow it).
        std::function<void(const QString &path)> bookChanged;
        std::function<void(const QString &text)> status;
        // ToolDohodMat: the warehouse's report of sold materials for a customer and object (either may
        // be empty); the button is hidden when the program has no warehouse.
        std::function<void(const QString &customer, const QString &object)> soldMaterials;
    };

    explicit TKassaBook(const Context &context, QWidget *parent = nullptr);

    // Entering the page: the lists and the records read again.
    void enter();
    // The caption "Касса " + the book's path.
    QString caption() const;
    bool outputBusy() const { return m_outputBusy; }

    // Tool bar.
    void ToolTreshClick();
    void ToolOpenClick();
    void ToolSaveClick();
    void ToolPrintClick();
    void ToolPDFClick();
    void ToolExcelClick();
    void ToolDohodMatClick();
    void NGetMobailClick();
    void NPostAndroidClick();
    // Lists.
    void ListBox1Click(const QString &customer);
    void ListBox2Click(const QString &object);
    // Filters.
    void btnPeriodFilterClick();
    void btnFirstDayClick();
    void btnPeriodNextClick();
    void btnPeriodPriorClick();
    void btnClearFiltersClick();
    void btnMonthFilterClick();
    void btnMonthNextClick();
    void btnMonthPriorClick();
    void btnMonthCurrentClick();
    void FiltrCategoryChange(int index);
    // Records.
    void btnAddRecordClick();
    void btnDeleteRecordClick();
    void btnFirstRecordClick();
    void btnLastRecordClick();
    void btnDateToRowClick();
    void btnAddZakupkaClick();
    // Receipts.
    void btnAddChekiClick();
    void btnDeleteChekiClick();
    void btnAddCheckClick();
    void btnDeleteCheckClick();

    QAction *ToolTresh, *ToolOpen, *ToolSave, *ToolPrint, *ToolPDF, *ToolExcel, *ToolDohodMat;
    QToolButton *ToolAndroid;
    QAction *NGetMobail, *NPostAndroid;
    QLabel *LabelBook;
    QListView *ListBox1, *ListBox2;
    QLabel *LabelCustomer, *LabelObject;
    QDateEdit *DateBegin, *DateEnd;
    QPushButton *btnPeriodFilter, *btnFirstDay, *btnPeriodNext, *btnPeriodPrior, *btnClearFilters;
    QComboBox *ComboBoxMonth, *ComboBoxYear;
    QPushButton *btnMonthFilter, *btnMonthNext, *btnMonthPrior, *btnMonthCurrent;
    QComboBox *FiltrCategory;
    QPushButton *btnAddRecord, *btnDeleteRecord, *btnFirstRecord, *btnLastRecord;
    QDateEdit *DateEdit;
    QPushButton *btnDateToRow;
    QPushButton *btnAddCheki, *btnDeleteCheki;
    QCheckBox *CheckBoxCheki;
    QLineEdit *EditZakupka;
    QSpinBox *SpinEditZakupka;
    QPushButton *btnAddZakupka;
    QTabWidget *PageControl;
    QWidget *TabRashod, *TabCheki;
    QTableView *GridRashod;
    QLabel *LabelBalance;
    QLineEdit *EditLastBalance;
    QLabel *lbDohodMat;
    QTableView *StrGridItigo;
    QTableView *GridCheki;
    QLineEdit *EditCheki;
    QComboBox *EditValuta;
    QPushButton *btnAddCheck, *btnDeleteCheck;

signals:
    // A mobile exchange ended (whatever its outcome), after the user was told.
    void exchangeFinished();
    // A printed or exported book was made (ok) or failed (the user was told why).
    void outputFinished(bool ok, const QString &path);

private:
    enum class Output { Print, Pdf, Excel };

    void build();
    QWidget *buildToolBar();
    QWidget *buildFilters();
    QWidget *buildRecordButtons();
    QWidget *buildRashodPage();
    QWidget *buildChekiPage();
    void connectAll();

    void tell(const CashBook::Outcome &outcome);
    int currentRow() const;
    void selectRow(int row, int column = 1);
    void reloadCustomers();
    void reloadYears();
    void showTotals();
    void showCheckCost();
    void showSelection();
    void DateBeginChange();
    void DateEndChange();
    void applyPeriod();
    void moveMonth(int delta);
    // Tells the outcomes both directions share (no connection, no server); false for the others.
    bool exchangeRefused(MobileExchange::Outcome outcome, const QString &detail);
    void fetched(MobileExchange::Outcome outcome, const QString &detail);
    void uploaded(MobileExchange::Outcome outcome, const QString &detail);
    void output(Output kind);

    Context m_ctx;
    CashBook &m_book;
    QStringListModel *m_customers;
    QStringListModel *m_objects;
    QStandardItemModel *m_totals;
    bool m_outputBusy = false;
    bool m_settingDates = false;
};
