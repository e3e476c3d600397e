#pragma once
// The rate panel beside the estimate: the tabs of the price lists, the crew switch, the server
// connection, the section combo ComboBox2 and tree ListBox1, and the rate grid StringGridRas with its
// edit mode. It forwards to PriceBase; the insertion into the estimate is the main window's.

#include <QWidget>
#include <functional>
#include <optional>

class RateRow;

class PriceBase;
class QAction;
class QComboBox;
class QMenu;
class QStackedWidget;
class QStandardItemModel;
class QTabWidget;
class QTableView;
class QToolBar;
class QTreeView;
class SettingsStore;

class TRatePanel : public QWidget {
    Q_OBJECT
public:
    explicit TRatePanel(PriceBase &base, QWidget *parent = nullptr);

    // The settings store (server settings) and the crew coefficient text (EditKoefBrig) come from the
    // main window.
    void setSettingsProvider(std::function<SettingsStore *()> provider) { m_settings = std::move(provider); }
    void setKoefProvider(std::function<QString()> provider) { m_koef = std::move(provider); }

    // The first read, once the data module is there; before it the switches only record their state.
    void start();
    bool started() const { return m_started; }

    // Handlers.
    void ReadSqlRAS();    // the current list again (local or remote), tree and combo rebuilt
    bool WriteSqlPrice(); // the grid back to its table; false when it failed (the user was told)
    void UpdateSqlPriceBrig();
    void PereschetNomeraRascenok();
    void ComboBox2Select(int index);
    void ListBox1Click(const QModelIndex &index);
    void ToolEditRasRightClick(bool on);
    void ToolServerRasClick(bool on);
    void spdRasBrigClick(bool on);
    void ToolServerSettingsClick();
    void PageControlRasChange(int index);
    void setCurrency(int index);
    void setCheckColumnVisible(bool on);
    // Rows of the grid selected by the user (grid rows), for deleting in edit mode.
    std::vector<int> selectedGridRows() const;

    // Components.
    QTabWidget *PageControlRas = nullptr;
    QWidget *tabMyPrice = nullptr;
    QWidget *tabPrice2 = nullptr;
    QWidget *tabMaterial = nullptr;
    QWidget *tabPriceServer = nullptr;
    QToolBar *ToolBarRas = nullptr;
    QAction *ToolEditRasRight = nullptr;
    QAction *ToolInsertRas = nullptr;
    QAction *ToolAddRas = nullptr;
    QAction *ToolDeleteRas = nullptr;
    QAction *ToolUpRas = nullptr;
    QAction *ToolDownRas = nullptr;
    QAction *ToolSaveRas = nullptr;
    QAction *spdRasBrig = nullptr;
    QAction *ToolServerRas = nullptr;
    QAction *ToolServerSettings = nullptr;
    QComboBox *ComboBox2 = nullptr;
    QTreeView *ListBox1 = nullptr;
    QTableView *StringGridRas = nullptr;
    QMenu *PopupMenuRas = nullptr;

    // In edit mode with unsaved edits: asks whether to save; false when the user cancelled.
    bool settleEdits();

    // The tab "Материалы" shows the materials lists in place of the rate grid: the materials part
    // puts its frame into this page and enables the tab.
    QWidget *materialsPage() const { return m_materialsPage; }
    void setMaterialsAvailable(bool on);
    // The current rate grid row as a rate (null for the empty placeholder row or no row).
    std::optional<RateRow> currentRate() const;

signals:
    // StringGridRasDblClickCell: a double-click on grid row r (1 = first data row).
    void rateDoubleClicked(int gridRow);
    // The tab "Материалы" was chosen (its page is shown).
    void materialsShown();
    // Connected to the server and its list was read.
    void serverConnected();

private:
    void buildWidgets();
    void buildActions();
    void rebuildNavigation();
    void cursorToStart();
    void updateColumns();
    void updateEditActions();
    void readCurrent();
    void insertRow(bool atEnd);
    void deleteRows();
    void moveRow(int delta);
    void tell(const QString &text);

    PriceBase &m_base;
    QStackedWidget *m_stack = nullptr;
    QWidget *m_materialsPage = nullptr;
    QStandardItemModel *m_tree = nullptr;
    std::function<SettingsStore *()> m_settings;
    std::function<QString()> m_koef;
    bool m_started = false;
    bool m_edited = false;
    int m_tabIndex = 0;
    bool m_switching = false;
};
