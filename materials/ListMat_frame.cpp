#include "ListMat_frame.h"

#include "FilterWords.h"
#include "GridFind.h"
#include "MatSpreadsheet.h"
#include "MaterialLists.h"
#include "OfficeJobs.h"
#include "SkladMat_frame.h"
#include "Warehouse.h"
#include "office/OfficeService.h"
#include "ui/DialogButtons.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QTabBar>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>

namespace {
const QString kAll = QStringLiteral("   Все");
constexpr int kStoreTab = 3;
} // namespace

TListMat::TListMat(MaterialLists &lists, QWidget *parent) : QWidget(parent), m_lists(lists) {
    setObjectName(QStringLiteral("ListMat"));
    setWindowTitle(QStringLiteral("Материалы"));
    m_jobs = new OfficeJobs(this);
    buildActions();
    buildWidgets();
    connect(&m_lists, &MaterialLists::sheetRead, this, [this] {
        rebuildGroups();
        showCount();
        StringGridListMat->scrollToTop();
        if (m_lists.model().rowCount() > 0)
            StringGridListMat->setCurrentIndex(m_lists.model().index(0, 0));
    });
    auto count = [this] { showCount(); };
    connect(&m_lists.model(), &QAbstractItemModel::rowsInserted, this, count);
    connect(&m_lists.model(), &QAbstractItemModel::modelReset, this, count);
    updateEditActions();
    ToolCheckRowClick(false);
}

void TListMat::buildActions() {
    auto make = [this](const char *name, const QString &hint, QStyle::StandardPixmap icon, bool checkable,
                       void (TListMat::*handler)()) {
        auto *a = new QAction(style()->standardIcon(icon), hint, this);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(hint);
        a->setCheckable(checkable);
        if (handler)
            connect(a, &QAction::triggered, this, handler);
        return a;
    };
    ToolCheckRow = make("ToolCheckRow", QStringLiteral("Включить добавление нескольких строк"),
                        QStyle::SP_DialogApplyButton, true, nullptr);
    connect(ToolCheckRow, &QAction::toggled, this, &TListMat::ToolCheckRowClick);
    ToolEdit = make("ToolEdit", QStringLiteral("Редактировать список"), QStyle::SP_FileDialogDetailedView,
                    true, nullptr);
    connect(ToolEdit, &QAction::toggled, this, &TListMat::ToolEditClick);
    ToolDeleteList = make("ToolDeleteList", QStringLiteral("Удалить список материалов"),
                          QStyle::SP_DialogDiscardButton, false, &TListMat::ToolDeleteListClick);
    ToolDeleteRows = make("ToolDeleteRows", QStringLiteral("Удалить выделенные строки"), QStyle::SP_TrashIcon,
                          false, &TListMat::ToolDeleteRowsClick);
    ToolInsertRow = make("ToolInsertRow", QStringLiteral("Вставить строку"), QStyle::SP_FileDialogNewFolder,
                         false, &TListMat::ToolInsertRowClick);
    ToolAddRow = make("ToolAddRow", QStringLiteral("Добавить строку в конце списка"),
                      QStyle::SP_FileDialogEnd, false, &TListMat::ToolAddRowClick);
    ToolImport = make("ToolImport", QStringLiteral("Импорт из файлов Excel"), QStyle::SP_DialogOpenButton,
                      false, &TListMat::ToolImportClick);
    ToolSave = make("ToolSave", QStringLiteral("Отправить список в Excel"), QStyle::SP_DialogSaveButton,
                    false, &TListMat::ToolSaveClick);
    toolCalc = make("toolCalc", QStringLiteral("Пересчитать стоимость материалов"), QStyle::SP_BrowserReload,
                    false, nullptr);
    connect(toolCalc, &QAction::triggered, this, &TListMat::recalcRequested);
    ToolFirst = make("ToolFirst", QStringLiteral("Первая запись"), QStyle::SP_MediaSkipBackward, false,
                     &TListMat::ToolFirstClick);
    ToolLast = make("ToolLast", QStringLiteral("Последняя запись"), QStyle::SP_MediaSkipForward, false,
                    &TListMat::ToolLastClick);
    ToolFind = make("ToolFind", QStringLiteral("Поиск"), QStyle::SP_FileDialogContentsView, false,
                    &TListMat::ToolFindClick);
    ToolFind->setShortcut(QKeySequence::Find);
    ToolFind->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(ToolFind);
    ToolAddResurs = make("ToolAddResurs", QStringLiteral("Добавить материал в ресурсы выбранной расценки"),
                         QStyle::SP_ArrowLeft, false, nullptr);
    connect(ToolAddResurs, &QAction::triggered, this, [this] {
        if (const MatRow *row = currentRow())
            emit attachRequested(*row);
        else
            dialogs().tell(Captions::warning, QStringLiteral("Выберите материал в списке"),
                           Dialogs::Icon::Warning);
    });
}

void TListMat::buildWidgets() {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    PageControlMat = new QTabBar(this);
    PageControlMat->setObjectName(QStringLiteral("PageControlMat"));
    PageControlMat->setDocumentMode(true);
    PageControlMat->setExpanding(false);
    for (int s = 0; s < MatListStore::kSheets; ++s)
        PageControlMat->addTab(MatListStore::sheetCaption(s));
    PageControlMat->addTab(QStringLiteral("Склад"));
    // The warehouse's tab is chosen once the warehouse is there (setWarehouse).
    PageControlMat->setTabEnabled(kStoreTab, false);
    PageControlMat->setTabToolTip(
        kStoreTab, QStringLiteral("Материалы на складе: двойной щелчок берёт материал в смету"));
    connect(PageControlMat, &QTabBar::currentChanged, this, &TListMat::PageControlMatChange);
    layout->addWidget(PageControlMat);

    ToolBarMat = new QToolBar(this);
    ToolBarMat->setObjectName(QStringLiteral("ToolBarMat"));
    ToolBarMat->setIconSize(QSize(18, 18));
    ToolBarMat->addActions({ToolCheckRow, ToolEdit});
    ToolBarMat->addSeparator();
    ToolBarMat->addActions({ToolInsertRow, ToolAddRow, ToolDeleteRows, ToolDeleteList});
    ToolBarMat->addSeparator();
    ToolBarMat->addActions({ToolImport, ToolSave, toolCalc});
    ToolBarMat->addSeparator();
    ToolBarMat->addActions({ToolFirst, ToolLast, ToolFind});
    ToolBarMat->addSeparator();
    ToolBarMat->addAction(ToolAddResurs);
    layout->addWidget(ToolBarMat);

    m_groupsRow = new QWidget(this);
    auto *groups = new QHBoxLayout(m_groupsRow);
    groups->setContentsMargins(0, 0, 0, 0);
    ComboBox = new QComboBox(this);
    ComboBox->setObjectName(QStringLiteral("ComboBox"));
    ComboBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    ComboBox->setMinimumContentsLength(16);
    connect(ComboBox, &QComboBox::activated, this, &TListMat::ComboBoxSelect);
    ButtonGroups = new QToolButton(this);
    ButtonGroups->setObjectName(QStringLiteral("ButtonGroups"));
    ButtonGroups->setText(QStringLiteral("Группы"));
    ButtonGroups->setToolTip(QStringLiteral("Группы и подгруппы материалов"));
    ButtonGroups->setPopupMode(QToolButton::InstantPopup);
    MenuGroups = new QMenu(ButtonGroups);
    MenuGroups->setObjectName(QStringLiteral("MenuGroups"));
    ButtonGroups->setMenu(MenuGroups);
    // The menu is laid out when it opens: it always shows the list as it is now.
    connect(MenuGroups, &QMenu::aboutToShow, this, [this] {
        MenuGroups->clear();
        const std::vector<MatGroup> all = matGroups(m_lists.model().rows());
        if (all.empty()) {
            MenuGroups->addAction(QStringLiteral("В списке нет групп"))->setEnabled(false);
            return;
        }
        for (const MatGroup &g : all) {
            QMenu *into = MenuGroups;
            if (g.row >= 0 && !g.subgroups.empty()) {
                into = MenuGroups->addMenu(g.title);
                into->addAction(QStringLiteral("Вся группа"), this,
                                [this, row = g.row] { showGroupRange(row); });
                into->addSeparator();
            } else if (g.row >= 0) {
                MenuGroups->addAction(g.title, this, [this, row = g.row] { showGroupRange(row); });
            }
            for (const MatSubgroup &sub : g.subgroups)
                into->addAction(sub.title, this, [this, row = sub.row] { showGroupRange(row); });
        }
        MenuGroups->addSeparator();
        MenuGroups->addAction(QStringLiteral("Весь список"), this, [this] { ComboBoxSelect(0); });
    });
    groups->addWidget(ComboBox, 1);
    groups->addWidget(ButtonGroups);
    layout->addWidget(m_groupsRow);

    m_filterRow = new QWidget(this);
    auto *filter = new QHBoxLayout(m_filterRow);
    filter->setContentsMargins(0, 0, 0, 0);
    cmbFilterRas = new QComboBox(this);
    cmbFilterRas->setObjectName(QStringLiteral("cmbFilterRas"));
    cmbFilterRas->setEditable(true);
    cmbFilterRas->setInsertPolicy(QComboBox::NoInsert);
    cmbFilterRas->lineEdit()->setPlaceholderText(QStringLiteral("Фильтрация материалов по слову"));
    cmbFilterRas->setToolTip(QStringLiteral("Учитывается верхний регистр"));
    connect(cmbFilterRas->lineEdit(), &QLineEdit::returnPressed, this, &TListMat::ButtonApplyFilterClick);
    auto button = [this](const char *name, const QString &hint, QStyle::StandardPixmap icon,
                         void (TListMat::*handler)()) {
        auto *b = new QPushButton(style()->standardIcon(icon), QString(), this);
        b->setObjectName(QLatin1String(name));
        b->setToolTip(hint);
        connect(b, &QPushButton::clicked, this, handler);
        return b;
    };
    ButtonApplyFilter = button("ButtonApplyFilter", QStringLiteral("Применить фильтр"),
                               QStyle::SP_DialogApplyButton, &TListMat::ButtonApplyFilterClick);
    ButtonClearFilter = button("ButtonClearFilter", QStringLiteral("Очистить фильтр"),
                               QStyle::SP_DialogResetButton, &TListMat::ButtonClearFilterClick);
    ButtonEditFilter = button("ButtonEditFilter", QStringLiteral("Редактировать фильтр"),
                              QStyle::SP_FileDialogDetailedView, &TListMat::ButtonEditFilterClick);
    filter->addWidget(cmbFilterRas, 1);
    filter->addWidget(ButtonApplyFilter);
    filter->addWidget(ButtonClearFilter);
    filter->addWidget(ButtonEditFilter);
    layout->addWidget(m_filterRow);

    StringGridListMat = new QTableView(this);
    StringGridListMat->setObjectName(QStringLiteral("StringGridListMat"));
    StringGridListMat->setModel(&m_lists.model());
    StringGridListMat->verticalHeader()->setVisible(false);
    StringGridListMat->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    StringGridListMat->verticalHeader()->setDefaultSectionSize(21);
    StringGridListMat->setWordWrap(false);
    StringGridListMat->setItemDelegate(new ShortTextDelegate(StringGridListMat));
    StringGridListMat->setSelectionBehavior(QAbstractItemView::SelectRows);
    StringGridListMat->setSelectionMode(QAbstractItemView::ExtendedSelection);
    StringGridListMat->horizontalHeader()->setSectionResizeMode(MatListCol::Name, QHeaderView::Stretch);
    StringGridListMat->horizontalHeader()->setMinimumSectionSize(24);
    StringGridListMat->setColumnWidth(MatListCol::Unit, 58);
    StringGridListMat->setColumnWidth(MatListCol::Price, 80);
    StringGridListMat->setColumnWidth(MatListCol::Qty, 60);
    StringGridListMat->setColumnWidth(MatListCol::Reserve, 70);
    StringGridListMat->setColumnWidth(MatListCol::Check, 48);
    StringGridListMat->setColumnHidden(MatListCol::Id, true);
    connect(StringGridListMat, &QTableView::doubleClicked, this, &TListMat::StringGridListMatDblClick);
    m_grids = new QStackedWidget(this);
    m_grids->addWidget(StringGridListMat);
    layout->addWidget(m_grids, 1);

    LabelCount = new QLabel(this);
    LabelCount->setObjectName(QStringLiteral("LabelCount"));
    layout->addWidget(LabelCount);
}

void TListMat::setOfficeProvider(std::function<OfficeService *()> provider) {
    m_jobs->setProvider(std::move(provider));
}

void TListMat::setWarehouse(Warehouse *warehouse) {
    if (m_warehouse || !warehouse)
        return;
    m_warehouse = warehouse;
    StringGridSklad = new QTableView(this);
    StringGridSklad->setObjectName(QStringLiteral("StringGridSklad"));
    StringGridSklad->setModel(&warehouse->model());
    StringGridSklad->verticalHeader()->setVisible(false);
    StringGridSklad->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    StringGridSklad->verticalHeader()->setDefaultSectionSize(21);
    StringGridSklad->setWordWrap(false);
    StringGridSklad->setItemDelegate(new ShortTextDelegate(StringGridSklad));
    StringGridSklad->setSelectionBehavior(QAbstractItemView::SelectRows);
    StringGridSklad->setSelectionMode(QAbstractItemView::SingleSelection);
    // The stock is edited in the warehouse's own window; here it is taken from.
    StringGridSklad->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto fitColumns = [this] { fitStockColumns(StringGridSklad, m_warehouse->model()); };
    fitColumns();
    connect(&warehouse->model(), &QAbstractItemModel::modelReset, this, fitColumns);
    connect(StringGridSklad, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.isValid())
            emit stockTakeRequested(index.row());
    });
    auto count = [this] { showCount(); };
    connect(&warehouse->model(), &StockModel::totalChanged, this, count);
    connect(&warehouse->model(), &QAbstractItemModel::rowsRemoved, this, count);
    connect(&warehouse->model(), &QAbstractItemModel::modelReset, this, count);
    m_grids->addWidget(StringGridSklad);
    PageControlMat->setTabEnabled(kStoreTab, true);
}

bool TListMat::onStockTab() const {
    return m_warehouse && PageControlMat->currentIndex() == kStoreTab;
}

void TListMat::showStockTab(bool on) {
    m_groupsRow->setVisible(!on);
    m_filterRow->setVisible(!on);
    for (QAction *a : {ToolCheckRow, ToolEdit, ToolImport, ToolSave, toolCalc, ToolAddResurs})
        a->setVisible(!on);
    if (on) {
        for (QAction *a : {ToolDeleteList, ToolDeleteRows, ToolInsertRow, ToolAddRow})
            a->setVisible(false);
        m_grids->setCurrentWidget(StringGridSklad);
        // Another program may have taken from the stock since.
        QString error;
        if (!m_warehouse->read(&error))
            tell(QStringLiteral("Не удалось прочитать склад: %1").arg(error));
    } else {
        updateEditActions();
        m_grids->setCurrentWidget(StringGridListMat);
    }
    showCount();
}

void TListMat::tell(const QString &text) {
    dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

QString TListMat::scratchFolder() const {
    return QDir(m_dataFolder).filePath(QStringLiteral("Temp"));
}

void TListMat::start() {
    if (m_started || !m_lists.hasModule())
        return;
    m_started = true;
    loadFilterWords();
    ReadSqlMat();
}

void TListMat::loadFilterWords() {
    QString error;
    if (!FilterWords::load(m_dataFolder, &m_words, &error))
        tell(error);
    const QString typed = cmbFilterRas->currentText();
    cmbFilterRas->clear();
    cmbFilterRas->addItems(m_words);
    cmbFilterRas->setCurrentText(typed);
}

void TListMat::ReadSqlMat() {
    QString error;
    if (!m_lists.read(&error))
        tell(QStringLiteral("Не удалось прочитать список материалов: %1").arg(error));
}

void TListMat::PageControlMatChange(int index) {
    showStockTab(index == kStoreTab && m_warehouse);
    if (index < 0 || index >= MatListStore::kSheets)
        return;
    QString error;
    if (!m_lists.readSheet(index, &error))
        tell(QStringLiteral("Не удалось прочитать список материалов: %1").arg(error));
}

void TListMat::showCount() {
    if (onStockTab()) {
        const StockModel &stock = m_warehouse->model();
        QString text = QStringLiteral("На складе: %1").arg(stock.rowCount());
        if (stock.belowMinimumCount() > 0)
            text += QStringLiteral(", ниже минимального остатка: %1").arg(stock.belowMinimumCount());
        LabelCount->setText(text);
        return;
    }
    const MatListModel &model = m_lists.model();
    QString text = QStringLiteral("Строк: %1").arg(model.rowCount());
    if (!m_lists.filterWord().isEmpty())
        text += QStringLiteral(" (фильтр «%1»)").arg(m_lists.filterWord());
    else if (model.isNarrowed())
        text += QStringLiteral(" из %1").arg(model.rows().size());
    LabelCount->setText(text);
}

const MatRow *TListMat::currentRow() const {
    const QModelIndex current = StringGridListMat->currentIndex();
    return current.isValid() ? m_lists.model().rowAt(current.row()) : nullptr;
}

void TListMat::StringGridListMatDblClick(const QModelIndex &index) {
    // In edit mode a double-click edits the cell.
    if (!index.isValid() || m_lists.model().editMode() || index.column() == MatListCol::Check ||
        index.column() == MatListCol::Qty)
        return;
    insertChosen();
}

void TListMat::insertChosen() {
    MatListModel &model = m_lists.model();
    std::vector<MatRow> rows;
    const std::vector<int> ticked = model.checkedRows();
    std::vector<int> chosen;
    if (ToolCheckRow->isChecked() && !ticked.empty())
        chosen = ticked;
    else if (StringGridListMat->currentIndex().isValid())
        chosen.push_back(model.sourceRow(StringGridListMat->currentIndex().row()));
    for (int i : chosen) {
        if (i < 0)
            continue;
        rows.push_back(model.rows()[static_cast<size_t>(i)]);
        // A tick and a typed quantity are used once.
        model.setChecked(i, false);
        model.clearQuantity(i);
    }
    if (!rows.empty())
        emit materialsChosen(rows);
}

void TListMat::ToolCheckRowClick(bool on) {
    StringGridListMat->setColumnHidden(MatListCol::Check, !on);
}

void TListMat::ToolEditClick(bool on) {
    m_lists.model().setEditMode(on);
    StringGridListMat->setEditTriggers(
        on ? QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                 QAbstractItemView::AnyKeyPressed
           : QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    StringGridListMat->setSelectionBehavior(on ? QAbstractItemView::SelectItems
                                               : QAbstractItemView::SelectRows);
    updateEditActions();
    if (!on)
        rebuildGroups();
}

void TListMat::updateEditActions() {
    const bool on = m_lists.model().editMode();
    for (QAction *a : {ToolDeleteList, ToolDeleteRows, ToolInsertRow, ToolAddRow}) {
        a->setEnabled(on);
        a->setVisible(on);
    }
}

void TListMat::ToolDeleteListClick() {
    const QString caption = MatListStore::sheetCaption(m_lists.sheet());
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить список материалов «%1»?").arg(caption)) !=
        Dialogs::Answer::Yes)
        return;
    QString error;
    if (!m_lists.clearSheet(&error))
        tell(QStringLiteral("Не удалось удалить список материалов: %1").arg(error));
}

void TListMat::ToolDeleteRowsClick() {
    std::vector<int> rows;
    for (const QModelIndex &i : StringGridListMat->selectionModel()->selectedIndexes())
        rows.push_back(i.row());
    if (rows.empty() && StringGridListMat->currentIndex().isValid())
        rows.push_back(StringGridListMat->currentIndex().row());
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    if (rows.empty())
        return;
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить выделенные строки (%1)?").arg(rows.size())) !=
        Dialogs::Answer::Yes)
        return;
    if (!m_lists.model().removeModelRows(rows))
        tell(QStringLiteral("Не удалось удалить строки: %1").arg(m_lists.model().lastError()));
}

void TListMat::ToolInsertRowClick() {
    const QModelIndex current = StringGridListMat->currentIndex();
    const int row = m_lists.model().insertRowBefore(current.isValid() ? current.row() : -1);
    if (row < 0) {
        tell(QStringLiteral("Не удалось вставить строку: %1").arg(m_lists.model().lastError()));
        return;
    }
    goToRow(row);
}

void TListMat::ToolAddRowClick() {
    const int row = m_lists.model().insertRowBefore(-1);
    if (row < 0) {
        tell(QStringLiteral("Не удалось добавить строку: %1").arg(m_lists.model().lastError()));
        return;
    }
    goToRow(row);
}

QTableView *TListMat::activeGrid() const {
    return onStockTab() ? StringGridSklad : StringGridListMat;
}

void TListMat::goToRow(int modelRow) {
    goToGridRow(activeGrid(), modelRow);
}

void TListMat::ToolFirstClick() {
    goToFirstRow(activeGrid());
}

void TListMat::ToolLastClick() {
    goToLastRow(activeGrid());
}

void TListMat::ToolFindClick() {
    findInGrid(activeGrid());
}

void TListMat::rebuildGroups() {
    ComboBox->clear();
    ComboBox->addItem(kAll, -1);
    const std::vector<MatGroup> groups = matGroups(m_lists.model().rows());
    // The highest level the list has: its groups, or its subgroups when it has no group titles.
    if (groups.size() == 1 && groups.front().row < 0) {
        for (const MatSubgroup &sub : groups.front().subgroups)
            ComboBox->addItem(sub.title, sub.row);
    } else {
        for (const MatGroup &g : groups)
            if (g.row >= 0)
                ComboBox->addItem(g.title, g.row);
    }
    ComboBox->setCurrentIndex(0);
}

void TListMat::ComboBoxSelect(int index) {
    const int row = ComboBox->itemData(index).toInt();
    if (index <= 0 || row < 0) {
        ComboBox->setCurrentIndex(0);
        m_lists.model().showAll();
        showCount();
        goToRow(0);
        return;
    }
    showGroupRange(row);
}

void TListMat::showGroupRange(int titleRow) {
    int first = 0, last = 0;
    titleRange(m_lists.model().rows(), titleRow, &first, &last);
    // The combo follows: a subgroup shows its group's name.
    int group = 0;
    for (int i = 1; i < ComboBox->count(); ++i)
        if (ComboBox->itemData(i).toInt() <= titleRow)
            group = i;
    ComboBox->setCurrentIndex(group);
    m_lists.model().showRange(first, last);
    showCount();
    goToRow(0);
}

void TListMat::ButtonApplyFilterClick() {
    const QString word = cmbFilterRas->currentText().trimmed();
    QString error;
    if (!word.isEmpty()) {
        if (!FilterWords::add(m_dataFolder, word, &m_words, &error))
            tell(error);
        const QSignalBlocker quiet(cmbFilterRas);
        cmbFilterRas->clear();
        cmbFilterRas->addItems(m_words);
        cmbFilterRas->setCurrentText(word);
    }
    if (!m_lists.applyFilter(word, &error))
        tell(QStringLiteral("Не удалось отфильтровать список: %1").arg(error));
}

void TListMat::ButtonClearFilterClick() {
    cmbFilterRas->setCurrentText(QString());
    QString error;
    if (!m_lists.clearFilter(&error))
        tell(QStringLiteral("Не удалось прочитать список материалов: %1").arg(error));
}

void TListMat::ButtonEditFilterClick() {
    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("EditFilterMat"));
    dialog.setWindowTitle(QStringLiteral("Слова фильтра"));
    auto *layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(QStringLiteral("По одному слову в строке:"), &dialog));
    auto *memo = new QPlainTextEdit(m_words.join(u'\n'), &dialog);
    memo->setObjectName(QStringLiteral("MemoFilter"));
    layout->addWidget(memo);
    layout->addWidget(acceptCancelButtons(&dialog, QStringLiteral("Сохранить")));
    if (dialog.exec() != QDialog::Accepted)
        return;
    QString error;
    if (!FilterWords::save(m_dataFolder, memo->toPlainText().split(u'\n'), &error)) {
        tell(error);
        return;
    }
    loadFilterWords();
}

void TListMat::ToolImportClick() {
    OfficeService *office = m_jobs->ready();
    if (!office)
        return;
    const QString title = QStringLiteral("Импорт из файлов Excel");
    const QString path = dialogs().openFile(title, m_dataFolder,
                                            QStringLiteral("Таблицы (*.xls *.xlsx *.ods);;Все файлы (*)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!MatSpreadsheet::checkFile(path, &error)) {
        tell(error);
        return;
    }
    const QString caption = MatListStore::sheetCaption(m_lists.sheet());
    const QString file = QFileInfo(path).fileName();
    if (!m_lists.model().rows().empty() &&
        dialogs().ask(title, QStringLiteral("Заменить «%1» списком из файла %2?").arg(caption, file)) !=
            Dialogs::Answer::Yes)
        return;
    auto rows = std::make_shared<std::vector<MatRow>>();
    const QString scratch = scratchFolder();
    m_jobs->run(
        office, title, QStringLiteral("Чтение файла «%1»…").arg(file),
        [path, scratch, rows](OfficeEngine &engine, QString *error, const std::function<void(int)> &report) {
            return MatSpreadsheet::readFile(engine, path, scratch, *rows, error, report);
        },
        [this, rows, caption](const OfficeService::Result &r) {
            QString error = r.error;
            // The sheet is replaced only now that the whole file has been read.
            if (!r.ok || !m_lists.replaceSheet(*rows, &error)) {
                tell(QStringLiteral("Список не загружен: %1").arg(error));
                return;
            }
            dialogs().tell(Captions::info,
                           QStringLiteral("В «%1» загружено строк: %2.").arg(caption).arg(rows->size()));
        });
}

void TListMat::ToolSaveClick() {
    OfficeService *office = m_jobs->ready();
    if (!office)
        return;
    const QString caption = MatListStore::sheetCaption(m_lists.sheet());
    QString path = dialogs().saveFile(QStringLiteral("Отправить список в Excel"), m_dataFolder,
                                      caption + QStringLiteral(".xlsx"),
                                      QStringLiteral("Книга Excel (*.xlsx)"), QStringLiteral("xlsx"));
    if (path.isEmpty())
        return;
    if (!path.endsWith(QStringLiteral(".xlsx"), Qt::CaseInsensitive))
        path += QStringLiteral(".xlsx");
    // What the grid shows: the filter and the group in force.
    std::vector<MatRow> rows;
    const MatListModel &model = m_lists.model();
    rows.reserve(static_cast<size_t>(model.rowCount()));
    for (int r = 0; r < model.rowCount(); ++r)
        rows.push_back(*model.rowAt(r));
    const QString scratch = scratchFolder();
    m_jobs->run(
        office, QStringLiteral("Отправить список в Excel"),
        QStringLiteral("Запись файла «%1»…").arg(QFileInfo(path).fileName()),
        [rows = std::move(rows), caption, path, scratch](OfficeEngine &engine, QString *error,
                                                         const std::function<void(int)> &report) {
            return MatSpreadsheet::writeFile(engine, rows, caption, path, scratch, error, report);
        },
        [this, path](const OfficeService::Result &r) {
            if (!r.ok) {
                tell(QStringLiteral("Список не сохранён: %1").arg(r.error));
                return;
            }
            dialogs().tell(Captions::info,
                           QStringLiteral("Список сохранён в файл %1").arg(QDir::toNativeSeparators(path)));
        });
}
