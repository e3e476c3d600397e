#include "SkladMat_frame.h"

#include "CalcMatKolvo_frame.h"
#include "GridFind.h"
#include "OfficeJobs.h"
#include "StockSpreadsheet.h"
#include "Warehouse.h"
#include "estimate/EstimateMaterials.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QActionGroup>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>
#include <memory>

namespace {

QTableView *grid(QWidget *parent, const char *name) {
    auto *g = new QTableView(parent);
    g->setObjectName(QLatin1String(name));
    g->verticalHeader()->setVisible(false);
    g->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    g->verticalHeader()->setDefaultSectionSize(21);
    g->setWordWrap(false);
    g->setItemDelegate(new ShortTextDelegate(g)); // a name of thousands of characters paints short
    g->setSelectionBehavior(QAbstractItemView::SelectRows);
    g->setSelectionMode(QAbstractItemView::SingleSelection);
    g->setContextMenuPolicy(Qt::CustomContextMenu);
    return g;
}

// "1 материал", "3 материала", "5 материалов".
QString materialsCount(int n) {
    const int tens = n % 100, ones = n % 10;
    const char *word = (tens >= 11 && tens <= 14) ? "материалов"
                       : ones == 1                ? "материал"
                       : (ones >= 2 && ones <= 4) ? "материала"
                                                  : "материалов";
    return QStringLiteral("%1 %2").arg(n).arg(QString::fromUtf8(word));
}

} // namespace

TSkladMat::TSkladMat(Warehouse &warehouse, QAbstractItemModel *materials, QWidget *parent)
    : QWidget(parent), m_warehouse(warehouse) {
    setObjectName(QStringLiteral("SkladMat"));
    setWindowTitle(QStringLiteral("Склад материалов"));
    m_jobs = new OfficeJobs(this);
    buildActions();
    buildWidgets();
    GridSmeta->setModel(materials);
    GridSmeta->setEditTriggers(QAbstractItemView::NoEditTriggers);
    GridSmeta->setColumnHidden(MatCol::Num, true);
    GridSmeta->setColumnHidden(MatCol::Note, true);
    GridSmeta->horizontalHeader()->setSectionResizeMode(MatCol::Name, QHeaderView::Stretch);
    for (int c : {MatCol::Unit, MatCol::Qty, MatCol::Price, MatCol::Sum})
        GridSmeta->setColumnWidth(c, c == MatCol::Unit ? 52 : c == MatCol::Sum ? 76 : 62);
    connect(GridSmeta, &QTableView::doubleClicked, this, &TSkladMat::GridSmetaDblClick);

    StockModel &stock = m_warehouse.model();
    GridSklad->setModel(&stock);
    fitColumns();
    connect(&stock, &QAbstractItemModel::modelReset, this, &TSkladMat::fitColumns);
    connect(&stock, &StockModel::totalChanged, this, [this] {
        showTotals();
        showMinimum();
    });
    // The refusal is told once the editor has closed.
    connect(
        &stock, &StockModel::editRefused, this,
        [this](const QString &reason) { dialogs().tell(Captions::warning, reason, Dialogs::Icon::Warning); },
        Qt::QueuedConnection);
    showMode();
    showTotals();
    showMinimum();
}

void TSkladMat::buildActions() {
    auto make = [this](const char *name, const QString &hint, QStyle::StandardPixmap icon,
                       void (TSkladMat::*handler)()) {
        auto *a = new QAction(style()->standardIcon(icon), hint, this);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(hint);
        connect(a, &QAction::triggered, this, handler);
        return a;
    };
    ToolClear = make("ToolClear", QStringLiteral("Очистить склад"), QStyle::SP_DialogDiscardButton,
                     &TSkladMat::ToolClearClick);
    ToolLoadExcel = make("ToolLoadExcel", QStringLiteral("Загрузить склад из файла Excel"),
                         QStyle::SP_DialogOpenButton, &TSkladMat::ToolLoadExcelClick);
    ToolSaveExcel = make("ToolSaveExcel", QStringLiteral("Отправить склад в Excel"),
                         QStyle::SP_DialogSaveButton, &TSkladMat::ToolSaveExcelClick);
    ToolDeleteRow = make("ToolDeleteRow", QStringLiteral("Удалить строку"), QStyle::SP_TrashIcon,
                         &TSkladMat::ToolDeleteRowClick);
    ToolDeleteRow->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Delete));
    ToolFirst = make("ToolFirst", QStringLiteral("Первая запись"), QStyle::SP_MediaSkipBackward,
                     &TSkladMat::ToolFirstClick);
    ToolLast = make("ToolLast", QStringLiteral("Последняя запись"), QStyle::SP_MediaSkipForward,
                    &TSkladMat::ToolLastClick);
    ToolFind = make("ToolFind", QStringLiteral("Поиск"), QStyle::SP_FileDialogContentsView,
                    &TSkladMat::ToolFindClick);
    ToolFind->setShortcut(QKeySequence::Find);
    for (QAction *a : {ToolDeleteRow, ToolFind}) {
        a->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(a);
    }

    PopupMenuSklad = new QMenu(this);
    PopupMenuSklad->setObjectName(QStringLiteral("PopupMenuSklad"));
    auto *modes = new QActionGroup(this);
    MSklad = PopupMenuSklad->addAction(QStringLiteral("Склад"), this, &TSkladMat::MSkladClick);
    MSklad->setObjectName(QStringLiteral("MSklad"));
    MMagazin = PopupMenuSklad->addAction(QStringLiteral("Магазин"), this, &TSkladMat::MMagazinClick);
    MMagazin->setObjectName(QStringLiteral("MMagazin"));
    for (QAction *a : {MSklad, MMagazin}) {
        a->setCheckable(true);
        modes->addAction(a);
    }
    PopupMenuSklad->addSeparator();
    PopupMenuSklad->addAction(ToolDeleteRow);
    PopupMenuSklad->addAction(ToolFind);
}

void TSkladMat::buildWidgets() {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    auto *split = new QSplitter(Qt::Horizontal, this);
    split->setObjectName(QStringLiteral("SplitterSklad"));
    layout->addWidget(split, 1);

    auto *left = new QGroupBox(QStringLiteral("Материалы в смете"), split);
    left->setObjectName(QStringLiteral("GroupSmeta"));
    auto *leftLayout = new QVBoxLayout(left);
    auto *hint = new QLabel(QStringLiteral("Двойной щелчок по материалу сметы кладёт его на склад"), left);
    hint->setObjectName(QStringLiteral("LabelSmetaHint"));
    leftLayout->addWidget(hint);
    GridSmeta = grid(left, "GridSmeta");
    leftLayout->addWidget(GridSmeta, 1);

    auto *right = new QGroupBox(QStringLiteral("Материалы на складе"), split);
    right->setObjectName(QStringLiteral("GroupSklad"));
    auto *rightLayout = new QVBoxLayout(right);
    ToolBarSklad = new QToolBar(right);
    ToolBarSklad->setObjectName(QStringLiteral("ToolBarSklad"));
    ToolBarSklad->setIconSize(QSize(18, 18));
    ToolBarSklad->addActions({ToolClear, ToolLoadExcel, ToolSaveExcel});
    ToolBarSklad->addSeparator();
    ToolBarSklad->addActions({ToolDeleteRow, ToolFirst, ToolLast, ToolFind});
    rightLayout->addWidget(ToolBarSklad);
    LabelMinLimit = new QLabel(right);
    LabelMinLimit->setObjectName(QStringLiteral("LabelMinLimit"));
    LabelMinLimit->setStyleSheet(QStringLiteral("color: #b00000;"));
    rightLayout->addWidget(LabelMinLimit);
    GridSklad = grid(right, "GridSklad");
    GridSklad->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                               QAbstractItemView::AnyKeyPressed);
    rightLayout->addWidget(GridSklad, 1);
    for (QTableView *g : {GridSklad, GridSmeta})
        connect(g, &QWidget::customContextMenuRequested, this,
                [this, g](const QPoint &at) { PopupMenuSklad->popup(g->viewport()->mapToGlobal(at)); });

    auto *bottom = new QHBoxLayout;
    ButtonAddRow = new QPushButton(style()->standardIcon(QStyle::SP_FileDialogNewFolder),
                                   QStringLiteral("Добавить строку"), right);
    ButtonAddRow->setObjectName(QStringLiteral("ButtonAddRow"));
    ButtonAddRow->setToolTip(QStringLiteral("Добавить на склад пустую строку с сегодняшней датой"));
    connect(ButtonAddRow, &QPushButton::clicked, this, &TSkladMat::ButtonAddRowClick);
    EditSumma = new QLineEdit(right);
    EditSumma->setObjectName(QStringLiteral("EditSumma"));
    EditSumma->setReadOnly(true);
    ButtonDohodMat = new QPushButton(QStringLiteral("Проданный материал"), right);
    ButtonDohodMat->setObjectName(QStringLiteral("ButtonDohodMat"));
    ButtonDohodMat->setToolTip(QStringLiteral("Доход с продаж материалов"));
    connect(ButtonDohodMat, &QPushButton::clicked, this, &TSkladMat::soldMaterialsRequested);
    bottom->addWidget(ButtonAddRow);
    bottom->addWidget(EditSumma, 1);
    bottom->addWidget(ButtonDohodMat);
    rightLayout->addLayout(bottom);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    split->setSizes({440, 640});
    // Escape closes the window, as in the program's other windows.
    auto *close = new QAction(this);
    close->setShortcut(QKeySequence::Cancel);
    close->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
}

void TSkladMat::setOfficeProvider(std::function<OfficeService *()> provider) {
    m_jobs->setProvider(std::move(provider));
}

void fitStockColumns(QTableView *grid, const StockModel &stock) {
    grid->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int c = 1; c < stock.columnCount(); ++c)
        grid->setColumnWidth(c, stock.field(c) == StockField::Unit  ? 58
                                : stock.field(c) == StockField::Qty ? 64
                                                                    : 96);
}

void TSkladMat::fitColumns() {
    fitStockColumns(GridSklad, m_warehouse.model());
}

void TSkladMat::tell(const QString &text) {
    dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

void TSkladMat::refresh() {
    QString error;
    if (!m_warehouse.read(&error))
        tell(QStringLiteral("Не удалось прочитать склад: %1").arg(error));
    showTotals();
    showMinimum();
}

void TSkladMat::showMode() {
    const bool shop = m_warehouse.mode() == StockMode::Shop;
    MSklad->setChecked(!shop);
    MMagazin->setChecked(shop);
    showTotals();
}

void TSkladMat::showTotals() {
    EditSumma->setText(m_warehouse.model().totalText());
}

void TSkladMat::showMinimum() {
    const int below = m_warehouse.model().belowMinimumCount();
    LabelMinLimit->setVisible(below > 0);
    LabelMinLimit->setText(
        below > 0
            ? QStringLiteral("Ниже минимального остатка: %1 (выделены красным)").arg(materialsCount(below))
            : QString());
}

void TSkladMat::setMode(bool shop) {
    const StockMode mode = shop ? StockMode::Shop : StockMode::Warehouse;
    if (mode != m_warehouse.mode()) {
        m_warehouse.setMode(mode);
        emit modeChosen(stockModeCaption(mode));
    }
    showMode();
}

void TSkladMat::MSkladClick() {
    setMode(false);
}

void TSkladMat::MMagazinClick() {
    setMode(true);
}

void TSkladMat::GridSmetaDblClick(const QModelIndex &index) {
    if (!index.isValid())
        return;
    const QAbstractItemModel *m = GridSmeta->model();
    auto cell = [m, &index](int col) { return m->index(index.row(), col).data(Qt::EditRole).toString(); };
    MaterialsStore::Material material;
    material.name = cell(MatCol::Name);
    material.unit = cell(MatCol::Unit);
    material.quantity = cell(MatCol::Qty);
    material.price = cell(MatCol::Price);
    material.sum = cell(MatCol::Sum);
    const QString document = m_documentName ? m_documentName() : QString();
    const Warehouse::PutOutcome out = m_warehouse.putIn(material, document, today());
    switch (out.kind) {
    case Warehouse::PutOutcome::Skipped:
        return;
    case Warehouse::PutOutcome::Failed:
        tell(QStringLiteral("Материал не положен на склад: %1").arg(out.error));
        return;
    case Warehouse::PutOutcome::Added:
        goToGridRow(GridSklad, out.row);
        return;
    case Warehouse::PutOutcome::Found:
        break;
    }
    goToGridRow(GridSklad, out.row);
    const StockItem *found = m_warehouse.model().rowAt(out.row);
    TCalcMatKolvo dialog(QString::number(out.row + 1), found->name, found->quantity, window());
    dialog.LabelPrompt->setText(QStringLiteral("Этот материал уже есть на складе. Измените его количество:"));
    if (dialog.exec() != QDialog::Accepted || dialog.quantity() == found->quantity)
        return;
    QString error;
    if (!m_warehouse.setQuantity(out.row, dialog.quantity(), &error))
        tell(QStringLiteral("Количество не записано: %1").arg(error));
}

void TSkladMat::ToolClearClick() {
    if (dialogs().ask(
            Captions::deletion,
            QStringLiteral("Очистить склад? Будут удалены все материалы склада и записи о проданных "
                           "материалах.")) != Dialogs::Answer::Yes)
        return;
    QString error;
    if (!m_warehouse.clear(&error))
        tell(QStringLiteral("Склад не очищен: %1").arg(error));
}

void TSkladMat::ToolDeleteRowClick() {
    const int row = GridSklad->currentIndex().row();
    const StockItem *item = m_warehouse.model().rowAt(row);
    if (!item) {
        dialogs().tell(Captions::warning, QStringLiteral("Выберите строку склада"), Dialogs::Icon::Warning);
        return;
    }
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить %1?").arg(item->name)) !=
        Dialogs::Answer::Yes)
        return;
    QString error;
    if (!m_warehouse.removeRow(row, &error))
        tell(QStringLiteral("Строка не удалена: %1").arg(error));
    goToGridRow(GridSklad, std::min(row, m_warehouse.model().rowCount() - 1));
}

void TSkladMat::ToolFirstClick() {
    goToFirstRow(GridSklad);
}

void TSkladMat::ToolLastClick() {
    goToLastRow(GridSklad);
}

void TSkladMat::ToolFindClick() {
    findInGrid(GridSklad);
}

void TSkladMat::ButtonAddRowClick() {
    QString error;
    const int row = m_warehouse.addEmptyRow(today(), &error);
    if (row < 0) {
        tell(QStringLiteral("Строка не добавлена: %1").arg(error));
        return;
    }
    goToGridRow(GridSklad, row);
    GridSklad->setFocus();
    GridSklad->edit(GridSklad->currentIndex());
}

void TSkladMat::ToolLoadExcelClick() {
    OfficeService *office = m_jobs->ready();
    if (!office)
        return;
    const QString title = QStringLiteral("Загрузить склад из файла Excel");
    const QString path = dialogs().openFile(title, m_dataFolder,
                                            QStringLiteral("Таблицы (*.xls *.xlsx *.ods);;Все файлы (*)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!SheetFile::checkFile(path, &error)) {
        tell(error);
        return;
    }
    const QString file = QFileInfo(path).fileName();
    if (m_warehouse.model().rowCount() > 0 &&
        dialogs().ask(title, QStringLiteral("Заменить материалы склада материалами из файла %1? Записи о "
                                            "проданных материалах останутся.")
                                 .arg(file)) != Dialogs::Answer::Yes)
        return;
    auto items = std::make_shared<std::vector<StockItem>>();
    const QString scratch = QDir(m_dataFolder).filePath(QStringLiteral("Temp"));
    const StockMode mode = m_warehouse.mode();
    const QDate day = today();
    m_jobs->run(
        office, title, QStringLiteral("Чтение файла «%1»…").arg(file),
        [path, scratch, mode, day, items](OfficeEngine &engine, QString *error,
                                          const std::function<void(int)> &report) {
            return StockSpreadsheet::readFile(engine, path, scratch, mode, day, *items, error, report);
        },
        [this, items](const OfficeService::Result &r) {
            QString error = r.error;
            // The stock is replaced only now that the whole file has been read.
            if (!r.ok || !m_warehouse.replaceStock(*items, &error)) {
                tell(QStringLiteral("Склад не загружен: %1").arg(error));
                return;
            }
            dialogs().tell(Captions::info,
                           QStringLiteral("На склад загружено строк: %1.").arg(items->size()));
        });
}

void TSkladMat::ToolSaveExcelClick() {
    OfficeService *office = m_jobs->ready();
    if (!office)
        return;
    const StockMode mode = m_warehouse.mode();
    const QString path =
        QDir(m_dataFolder).filePath(QStringLiteral("Sp/") + StockSpreadsheet::exportFileName(mode));
    const QString scratch = QDir(m_dataFolder).filePath(QStringLiteral("Temp"));
    std::vector<StockItem> items = m_warehouse.model().rows();
    m_jobs->run(
        office, QStringLiteral("Отправить склад в Excel"),
        QStringLiteral("Запись файла «%1»…").arg(QFileInfo(path).fileName()),
        [items = std::move(items), mode, path, scratch](OfficeEngine &engine, QString *error,
                                                        const std::function<void(int)> &report) {
            return StockSpreadsheet::writeFile(engine, items, mode, path, scratch, error, report);
        },
        [this, path](const OfficeService::Result &r) {
            if (!r.ok) {
                tell(QStringLiteral("Склад не сохранён: %1").arg(r.error));
                return;
            }
            if (!m_open || !m_open(path))
                dialogs().tell(
                    Captions::info,
                    QStringLiteral("Склад сохранён в файл %1").arg(QDir::toNativeSeparators(path)));
        });
}
