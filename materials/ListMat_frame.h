#pragma once
// TListMat, caption "Материалы": the materials lists. Sheets "Лист 1" to "Лист 3" over list1 to list3
// of listmat.db and the tab "Склад" (the warehouse's stock, StringGridSklad, once the warehouse is
// given); the grid StringGridListMat; the tools by their hints; the groups (ComboBox and "Группы и
// подгруппы материалов"); the word filter cmbFilterRas. A double-click on a row, or ToolCheckRow's
// ticked rows, asks for the materials to be put into the estimate; a double-click on a stock row asks
// for it to be taken from the warehouse. The main window's parts do it.

#include "MatList.h"
#include "office/OfficeService.h"

#include <QWidget>
#include <functional>
#include <vector>

class MaterialLists;
class Warehouse;
class OfficeJobs;
class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QPushButton;
class QStackedWidget;
class QTabBar;
class QTableView;
class QToolBar;
class QToolButton;

class TListMat : public QWidget {
    Q_OBJECT
public:
    explicit TListMat(MaterialLists &lists, QWidget *parent = nullptr);

    // The data folder (filter words, scratch files) and the office engine the program shares.
    void setDataFolder(const QString &folder) { m_dataFolder = folder; }
    void setOfficeProvider(std::function<OfficeService *()> provider);

    // The first read, once the data module is there.
    void start();
    // The tab "Склад": the warehouse's stock grid.
    void setWarehouse(Warehouse *warehouse);
    bool onStockTab() const;

    // Handlers.
    void ReadSqlMat();
    void PageControlMatChange(int index);
    void StringGridListMatDblClick(const QModelIndex &index);
    void ToolCheckRowClick(bool on);
    void ToolEditClick(bool on);
    void ToolDeleteListClick();
    void ToolDeleteRowsClick();
    void ToolInsertRowClick();
    void ToolAddRowClick();
    void ToolImportClick();
    void ToolSaveClick();
    void ToolFirstClick();
    void ToolLastClick();
    void ToolFindClick();
    void ComboBoxSelect(int index);
    void ButtonApplyFilterClick();
    void ButtonClearFilterClick();
    void ButtonEditFilterClick();
    // Puts every ticked row (ToolCheckRow on) or the current row into the estimate.
    void insertChosen();

    // Components.
    QTabBar *PageControlMat = nullptr;
    QToolBar *ToolBarMat = nullptr;
    QAction *ToolCheckRow = nullptr;
    QAction *ToolEdit = nullptr;
    QAction *ToolDeleteList = nullptr;
    QAction *ToolDeleteRows = nullptr;
    QAction *ToolInsertRow = nullptr;
    QAction *ToolAddRow = nullptr;
    QAction *ToolImport = nullptr;
    QAction *ToolSave = nullptr;
    QAction *toolCalc = nullptr;
    QAction *ToolFirst = nullptr;
    QAction *ToolLast = nullptr;
    QAction *ToolFind = nullptr;
    QAction *ToolAddResurs = nullptr;
    QComboBox *ComboBox = nullptr;
    QToolButton *ButtonGroups = nullptr;
    QMenu *MenuGroups = nullptr;
    QComboBox *cmbFilterRas = nullptr;
    QPushButton *ButtonApplyFilter = nullptr;
    QPushButton *ButtonClearFilter = nullptr;
    QPushButton *ButtonEditFilter = nullptr;
    QTableView *StringGridListMat = nullptr;
    QTableView *StringGridSklad = nullptr;
    QLabel *LabelCount = nullptr;

    // The list row the attachment and the double-click take (current row of the grid), or null.
    const MatRow *currentRow() const;

signals:
    // Rows to put into the estimate, in list order.
    void materialsChosen(const std::vector<MatRow> &rows);
    // The current row to give to the rate chosen in the rate grid.
    void attachRequested(const MatRow &row);
    // toolCalc: "Пересчитать стоимость материалов".
    void recalcRequested();
    // A double-click on row `row` of the stock grid: take the material from the warehouse.
    void stockTakeRequested(int row);

private:
    void buildActions();
    void buildWidgets();
    void rebuildGroups();
    void updateEditActions();
    void showCount();
    void tell(const QString &text);
    void loadFilterWords();
    void showGroupRange(int titleRow);
    void goToRow(int modelRow);
    void showStockTab(bool on);
    QTableView *activeGrid() const;
    QString scratchFolder() const;
    MaterialLists &m_lists;
    QString m_dataFolder;
    OfficeJobs *m_jobs = nullptr;
    Warehouse *m_warehouse = nullptr;
    QStackedWidget *m_grids = nullptr;
    QWidget *m_groupsRow = nullptr;
    QWidget *m_filterRow = nullptr;
    QStringList m_words;
    bool m_started = false;
};
