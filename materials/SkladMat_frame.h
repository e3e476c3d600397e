#pragma once
// TSkladMat, caption "Склад материалов": the estimate's materials ("Материалы в смете", GridSmeta)
// beside the stock ("Материалы на складе", GridSklad). A double-click on an estimate material puts it
// into stock (or offers "Найдено совпадение" for a name the stock has). The stock's tool bar: "Очистить
// склад", "Загрузить склад из файла Excel", "Отправить склад в Excel", "Удалить строку", "Первая
// запись", "Последняя запись", "Поиск"; under the grid the button adding an empty row dated today, the
// total ("Сумма материалов " or "Общая наценка ") and "Проданный материал". The pop-up menu chooses
// the mode "Склад" or "Магазин". A line above the stock says how many materials are below their
// minimum.

#include "office/OfficeService.h"

#include <QDate>
#include <QWidget>
#include <functional>

class OfficeJobs;
class QAbstractItemModel;
class QAction;
class QActionGroup;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTableView;
class QToolBar;
class StockModel;
class Warehouse;

// The stock grid's columns sized for the mode in force (the name takes the rest).
void fitStockColumns(QTableView *grid, const StockModel &stock);

class TSkladMat : public QWidget {
    Q_OBJECT
public:
    // `materials` is the estimate's materials model (shown, not edited, here).
    TSkladMat(Warehouse &warehouse, QAbstractItemModel *materials, QWidget *parent = nullptr);

    void setDataFolder(const QString &folder) { m_dataFolder = folder; }
    void setOfficeProvider(std::function<OfficeService *()> provider);
    // The document name written as `client` of a material put into stock.
    void setDocumentName(std::function<QString()> name) { m_documentName = std::move(name); }
    // Opens a written file with the desktop's program (tests replace it).
    void setFileOpener(std::function<bool(const QString &)> opener) { m_open = std::move(opener); }
    void setToday(std::function<QDate()> today) { m_today = std::move(today); }

    // Reads the stock again and says how many materials are below their minimum.
    void refresh();
    // The mode's menu items follow the warehouse.
    void showMode();

    // Handlers.
    void GridSmetaDblClick(const QModelIndex &index);
    void ToolClearClick();
    void ToolLoadExcelClick();
    void ToolSaveExcelClick();
    void ToolDeleteRowClick();
    void ToolFirstClick();
    void ToolLastClick();
    void ToolFindClick();
    void ButtonAddRowClick();
    void MSkladClick();
    void MMagazinClick();

    // Components.
    QTableView *GridSmeta = nullptr;
    QTableView *GridSklad = nullptr;
    QToolBar *ToolBarSklad = nullptr;
    QAction *ToolClear = nullptr;
    QAction *ToolLoadExcel = nullptr;
    QAction *ToolSaveExcel = nullptr;
    QAction *ToolDeleteRow = nullptr;
    QAction *ToolFirst = nullptr;
    QAction *ToolLast = nullptr;
    QAction *ToolFind = nullptr;
    QPushButton *ButtonAddRow = nullptr;
    QPushButton *ButtonDohodMat = nullptr;
    QLineEdit *EditSumma = nullptr;
    QLabel *LabelMinLimit = nullptr;
    QMenu *PopupMenuSklad = nullptr;
    QAction *MSklad = nullptr;
    QAction *MMagazin = nullptr;

signals:
    // "Проданный материал".
    void soldMaterialsRequested();
    // The mode was switched (to be kept in the settings).
    void modeChosen(const QString &caption);

private:
    void buildActions();
    void buildWidgets();
    void setMode(bool shop);
    void fitColumns();
    void showTotals();
    void showMinimum();
    void tell(const QString &text);
    QDate today() const { return m_today ? m_today() : QDate::currentDate(); }

    Warehouse &m_warehouse;
    OfficeJobs *m_jobs = nullptr;
    QString m_dataFolder;
    std::function<QString()> m_documentName;
    std::function<bool(const QString &)> m_open;
    std::function<QDate()> m_today;
};
