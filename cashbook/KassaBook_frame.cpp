#include "KassaBook_frame.h"

#include "CashColumns.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

template <typename W> W *named(W *w, const QString &name) {
    w->setObjectName(name);
    return w;
}

QPushButton *button(QWidget *parent, const QString &name, const QString &text, const QString &hint = {}) {
    auto *b = named(new QPushButton(text, parent), name);
    if (!hint.isEmpty())
        b->setToolTip(hint);
    return b;
}

QDateEdit *datePicker(QWidget *parent, const QString &name) {
    auto *d = named(new QDateEdit(QDate::currentDate(), parent), name);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    return d;
}

QTableView *grid(QWidget *parent, const QString &name, QAbstractItemModel *model) {
    auto *g = named(new QTableView(parent), name);
    g->setModel(model);
    g->setSelectionBehavior(QAbstractItemView::SelectItems);
    g->setSelectionMode(QAbstractItemView::SingleSelection);
    g->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                       QAbstractItemView::AnyKeyPressed);
    g->setAlternatingRowColors(true);
    g->verticalHeader()->setDefaultSectionSize(g->fontMetrics().height() + 8);
    g->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    return g;
}

// A date cell edited with a calendar; the text written back is the short date.
class DateCellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override {
        auto *editor = new QDateEdit(parent);
        editor->setCalendarPopup(true);
        editor->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
        return editor;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override {
        const QDate d = CashRecordIo::readDate(index.data(Qt::EditRole).toString());
        static_cast<QDateEdit *>(editor)->setDate(d.isValid() ? d : QDate::currentDate());
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override {
        model->setData(index, TextValues::shortDate(static_cast<QDateEdit *>(editor)->date()), Qt::EditRole);
    }
};

// A key of the page: active while the focus is anywhere in it, never elsewhere in the main window.
void pageKey(QWidget *page, const QKeySequence &key, const std::function<void()> &handler) {
    auto *shortcut = new QShortcut(key, page);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(shortcut, &QShortcut::activated, page, handler);
}

} // namespace

TKassaBook::TKassaBook(const Context &context, QWidget *parent)
    : QWidget(parent), m_ctx(context), m_book(*context.book) {
    setObjectName(QStringLiteral("KassaBook"));
    setWindowTitle(QStringLiteral("Кассовая книга"));
    m_customers = new QStringListModel(this);
    m_objects = new QStringListModel(this);
    m_totals = new QStandardItemModel(1, TotalsCol::Count, this);
    m_totals->setHorizontalHeaderLabels(TotalsCol::titles());
    build();
    connectAll();
    ToolDohodMat->setVisible(static_cast<bool>(m_ctx.soldMaterials));
}

void TKassaBook::build() {
    auto *root = new QVBoxLayout(this);
    root->setContentsMargins(4, 4, 4, 4);
    root->addWidget(buildToolBar());
    LabelBook = named(new QLabel(this), QStringLiteral("LabelBook"));
    LabelBook->setTextInteractionFlags(Qt::TextSelectableByMouse);
    root->addWidget(LabelBook);

    // Left: the customers over their objects, then the filters; right: the records.
    auto *split = named(new QSplitter(Qt::Horizontal, this), QStringLiteral("SplitterKassa"));
    auto *left = new QWidget(split);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(new QLabel(QStringLiteral("Заказчики"), left));
    ListBox1 = named(new QListView(left), QStringLiteral("ListBox1"));
    ListBox1->setModel(m_customers);
    ListBox1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    leftLayout->addWidget(ListBox1, 2);
    leftLayout->addWidget(new QLabel(QStringLiteral("Объекты"), left));
    ListBox2 = named(new QListView(left), QStringLiteral("ListBox2"));
    ListBox2->setModel(m_objects);
    ListBox2->setEditTriggers(QAbstractItemView::NoEditTriggers);
    leftLayout->addWidget(ListBox2, 1);
    leftLayout->addWidget(buildFilters());

    auto *right = new QWidget(split);
    auto *rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    auto *header = new QHBoxLayout;
    LabelCustomer = named(new QLabel(right), QStringLiteral("LabelCustomer"));
    LabelObject = named(new QLabel(right), QStringLiteral("LabelObject"));
    for (QLabel *l : {LabelCustomer, LabelObject}) {
        QFont f = l->font();
        f.setBold(true);
        l->setFont(f);
    }
    header->addWidget(new QLabel(QStringLiteral("Заказчик:"), right));
    header->addWidget(LabelCustomer, 1);
    header->addWidget(new QLabel(QStringLiteral("Объект:"), right));
    header->addWidget(LabelObject, 1);
    rightLayout->addLayout(header);
    rightLayout->addWidget(buildRecordButtons());
    PageControl = named(new QTabWidget(right), QStringLiteral("PageControl"));
    TabRashod = buildRashodPage();
    TabCheki = buildChekiPage();
    PageControl->addTab(TabRashod, QStringLiteral("Движение средств"));
    PageControl->addTab(TabCheki, QStringLiteral("Материалы по чекам"));
    rightLayout->addWidget(PageControl, 1);
    split->addWidget(left);
    split->addWidget(right);
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    root->addWidget(split, 1);
}

QWidget *TKassaBook::buildToolBar() {
    auto *bar = named(new QToolBar(this), QStringLiteral("ToolBarKassa"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto action = [this, bar](const char *name, const QString &text, const QString &hint,
                              QStyle::StandardPixmap icon) {
        auto *a = named(new QAction(style()->standardIcon(icon), text, this), QLatin1String(name));
        a->setToolTip(hint);
        bar->addAction(a);
        return a;
    };
    ToolTresh = action("ToolTresh", QStringLiteral("Очистить"), QStringLiteral("Удалить все записи в книге"),
                       QStyle::SP_TrashIcon);
    bar->addSeparator();
    ToolOpen = action("ToolOpen", QStringLiteral("Открыть"),
                      QStringLiteral("Открыть кассу и сделать её основной"), QStyle::SP_DialogOpenButton);
    ToolSave = action("ToolSave", QStringLiteral("Сохранить"), QStringLiteral("Сохранить кассовую книгу"),
                      QStyle::SP_DialogSaveButton);
    bar->addSeparator();
    ToolPrint =
        action("ToolPrint", QStringLiteral("Печать"), QStringLiteral("Печать..."), QStyle::SP_FileIcon);
    ToolPDF =
        action("ToolPDF", QStringLiteral("PDF"), QStringLiteral("Экспорт в PDF"), QStyle::SP_FileLinkIcon);
    ToolExcel = action("ToolExcel", QStringLiteral("Excel"), QStringLiteral("Экспорт в Excel"),
                       QStyle::SP_FileDialogDetailedView);
    bar->addSeparator();
    ToolDohodMat = action("ToolDohodMat", QStringLiteral("Проданный материал"),
                          QStringLiteral("Проданный материал"), QStyle::SP_FileDialogContentsView);
    ToolAndroid = named(new QToolButton(bar), QStringLiteral("ToolAndroid"));
    ToolAndroid->setText(QStringLiteral("Мобильная касса"));
    ToolAndroid->setToolTip(QStringLiteral("Мобильная касса"));
    ToolAndroid->setIcon(style()->standardIcon(QStyle::SP_DriveNetIcon));
    ToolAndroid->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    ToolAndroid->setPopupMode(QToolButton::InstantPopup);
    auto *menu = new QMenu(ToolAndroid);
    NGetMobail =
        named(menu->addAction(QStringLiteral("Загрузить мобильную кассу")), QStringLiteral("NGetMobail"));
    NPostAndroid =
        named(menu->addAction(QStringLiteral("Сохранить кассу для Android")), QStringLiteral("NPostAndroid"));
    ToolAndroid->setMenu(menu);
    bar->addWidget(ToolAndroid);
    return bar;
}

QWidget *TKassaBook::buildFilters() {
    auto *box = new QWidget(this);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);

    auto *period =
        named(new QGroupBox(QStringLiteral("Фильтрация по периоду"), box), QStringLiteral("GroupPeriod"));
    auto *p = new QGridLayout(period);
    DateBegin = datePicker(period, QStringLiteral("DateBegin"));
    DateEnd = datePicker(period, QStringLiteral("DateEnd"));
    auto *dates = new QHBoxLayout;
    dates->addWidget(new QLabel(QStringLiteral("с "), period));
    dates->addWidget(DateBegin, 1);
    dates->addWidget(new QLabel(QStringLiteral("по "), period));
    dates->addWidget(DateEnd, 1);
    btnPeriodFilter =
        button(period, QStringLiteral("btnPeriodFilter"), QStringLiteral("Фильтровать по периоду"));
    btnFirstDay =
        button(period, QStringLiteral("btnFirstDay"), QStringLiteral("Первое число текущего месяца"));
    btnPeriodNext = button(period, QStringLiteral("btnPeriodNext"), QStringLiteral("Следующий месяц"));
    btnPeriodPrior = button(period, QStringLiteral("btnPeriodPrior"), QStringLiteral("Предыдущий месяц"));
    p->addLayout(dates, 0, 0, 1, 2);
    p->addWidget(btnPeriodFilter, 1, 0, 1, 2);
    p->addWidget(btnFirstDay, 2, 0, 1, 2);
    p->addWidget(btnPeriodPrior, 3, 0);
    p->addWidget(btnPeriodNext, 3, 1);
    column->addWidget(period);

    auto *month = named(new QGroupBox(QStringLiteral("Месяц - Год"), box), QStringLiteral("GroupMonth"));
    auto *m = new QGridLayout(month);
    ComboBoxMonth = named(new QComboBox(month), QStringLiteral("ComboBoxMonth"));
    ComboBoxMonth->addItems(CashMonths::items());
    ComboBoxYear = named(new QComboBox(month), QStringLiteral("ComboBoxYear"));
    ComboBoxYear->addItem(QStringLiteral("Год"));
    btnMonthFilter =
        button(month, QStringLiteral("btnMonthFilter"), QStringLiteral("Фильтровать по периоду"));
    btnMonthNext = button(month, QStringLiteral("btnMonthNext"), QStringLiteral("Следующий месяц"));
    btnMonthPrior = button(month, QStringLiteral("btnMonthPrior"), QStringLiteral("Предыдущий месяц"));
    btnMonthCurrent = button(month, QStringLiteral("btnMonthCurrent"), QStringLiteral("Текущий месяц"));
    m->addWidget(ComboBoxMonth, 0, 0);
    m->addWidget(ComboBoxYear, 0, 1);
    m->addWidget(btnMonthFilter, 1, 0);
    m->addWidget(btnMonthCurrent, 1, 1);
    m->addWidget(btnMonthPrior, 2, 0);
    m->addWidget(btnMonthNext, 2, 1);
    column->addWidget(month);

    auto *category = new QHBoxLayout;
    category->addWidget(new QLabel(QStringLiteral("Категория"), box));
    FiltrCategory = named(new QComboBox(box), QStringLiteral("FiltrCategory"));
    FiltrCategory->addItems(CashCategory::filterItems());
    category->addWidget(FiltrCategory, 1);
    column->addLayout(category);
    btnClearFilters = button(box, QStringLiteral("btnClearFilters"), QStringLiteral("Очистить все фильтры"));
    column->addWidget(btnClearFilters);
    return box;
}

QWidget *TKassaBook::buildRecordButtons() {
    auto *box = new QWidget(this);
    auto *rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    btnAddRecord = button(box, QStringLiteral("btnAddRecord"), QStringLiteral("Добавить запись"),
                          QStringLiteral("Добавить запись (Insert)"));
    btnDeleteRecord = button(box, QStringLiteral("btnDeleteRecord"), QStringLiteral("Удалить запись"),
                             QStringLiteral("Удалить запись (Ctrl+Delete)"));
    btnFirstRecord = button(box, QStringLiteral("btnFirstRecord"), QStringLiteral("Первая запись"));
    btnLastRecord = button(box, QStringLiteral("btnLastRecord"), QStringLiteral("Последняя запись"));
    DateEdit = datePicker(box, QStringLiteral("DateEdit"));
    btnDateToRow =
        button(box, QStringLiteral("btnDateToRow"), QStringLiteral("Занести дату в выделенную строку"));
    btnAddCheki =
        button(box, QStringLiteral("btnAddCheki"), QStringLiteral("Добавить расшифровку чеков к записи"));
    btnDeleteCheki = button(box, QStringLiteral("btnDeleteCheki"), QStringLiteral("Удалить чеки из записи"));
    CheckBoxCheki = named(new QCheckBox(QStringLiteral("Включить в отчёт расшифровку чеков"), box),
                          QStringLiteral("CheckBoxCheki"));
    auto *first = new QHBoxLayout;
    for (QWidget *w :
         std::initializer_list<QWidget *>{btnAddRecord, btnDeleteRecord, btnFirstRecord, btnLastRecord})
        first->addWidget(w);
    first->addSpacing(12);
    first->addWidget(CheckBoxCheki);
    first->addStretch(1);
    auto *second = new QHBoxLayout;
    second->addWidget(DateEdit);
    second->addWidget(btnDateToRow);
    second->addSpacing(12);
    second->addWidget(btnAddCheki);
    second->addWidget(btnDeleteCheki);
    second->addStretch(1);
    rows->addLayout(first);
    rows->addLayout(second);
    return box;
}

QWidget *TKassaBook::buildRashodPage() {
    auto *page = named(new QWidget, QStringLiteral("TabRashod"));
    auto *layout = new QVBoxLayout(page);
    GridRashod = grid(page, QStringLiteral("GridRashod"), m_book.records());
    GridRashod->setColumnWidth(CashCol::Marker, 24);
    GridRashod->setColumnWidth(CashCol::Date, 90);
    GridRashod->setColumnWidth(CashCol::Note, 220);
    layout->addWidget(GridRashod, 1);
    auto *bottom = new QHBoxLayout;
    LabelBalance = named(new QLabel(QStringLiteral("Баланс  "), page), QStringLiteral("LabelBalance"));
    EditLastBalance = named(new QLineEdit(page), QStringLiteral("EditLastBalance"));
    EditLastBalance->setReadOnly(true);
    EditLastBalance->setAlignment(Qt::AlignRight);
    EditLastBalance->setMaximumWidth(160);
    lbDohodMat = named(new QLabel(page), QStringLiteral("lbDohodMat"));
    bottom->addWidget(LabelBalance);
    bottom->addWidget(EditLastBalance);
    bottom->addStretch(1);
    // The purchase of materials: a percentage of the "Материал" sum below.
    EditZakupka = named(new QLineEdit(page), QStringLiteral("EditZakupka"));
    EditZakupka->setToolTip(QStringLiteral("Закупка материалов"));
    EditZakupka->setAlignment(Qt::AlignRight);
    EditZakupka->setMaximumWidth(130);
    SpinEditZakupka = named(new QSpinBox(page), QStringLiteral("SpinEditZakupka"));
    SpinEditZakupka->setRange(0, 1000);
    SpinEditZakupka->setValue(100);
    SpinEditZakupka->setToolTip(QStringLiteral("Процент закупки материалов"));
    btnAddZakupka = button(page, QStringLiteral("btnAddZakupka"), QStringLiteral("Добавить закупку"),
                           QStringLiteral("Добавить в кассу закупку материалов"));
    bottom->addWidget(new QLabel(QStringLiteral("Закупка материалов"), page));
    bottom->addWidget(EditZakupka);
    bottom->addWidget(SpinEditZakupka);
    bottom->addWidget(new QLabel(QStringLiteral("%"), page));
    bottom->addWidget(btnAddZakupka);
    layout->addLayout(bottom);
    // The income from sold materials on a line of its own: it is long, and empty most of the time.
    layout->addWidget(lbDohodMat);
    StrGridItigo = named(new QTableView(page), QStringLiteral("StrGridItigo"));
    StrGridItigo->setModel(m_totals);
    StrGridItigo->setEditTriggers(QAbstractItemView::NoEditTriggers);
    StrGridItigo->verticalHeader()->hide();
    StrGridItigo->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    StrGridItigo->setFixedHeight(StrGridItigo->horizontalHeader()->sizeHint().height() +
                                 StrGridItigo->fontMetrics().height() + 14);
    layout->addWidget(StrGridItigo);
    return page;
}

QWidget *TKassaBook::buildChekiPage() {
    auto *page = named(new QWidget, QStringLiteral("TabCheki"));
    auto *layout = new QVBoxLayout(page);
    GridCheki = grid(page, QStringLiteral("GridCheki"), m_book.checks());
    GridCheki->setColumnWidth(ChecksCol::Marker, 24);
    GridCheki->setColumnWidth(ChecksCol::Name, 280);
    layout->addWidget(GridCheki, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Стоимость материалов   "), page));
    EditCheki = named(new QLineEdit(page), QStringLiteral("EditCheki"));
    EditCheki->setReadOnly(true);
    EditCheki->setAlignment(Qt::AlignRight);
    EditCheki->setMaximumWidth(200);
    bottom->addWidget(EditCheki);
    EditValuta = named(new QComboBox(page), QStringLiteral("EditValuta"));
    EditValuta->addItems({QStringLiteral("Рубль РФ"), QStringLiteral("Доллар США"), QStringLiteral("Гривна"),
                          QStringLiteral("Белорусский рубль"), QStringLiteral("Тенге")});
    bottom->addWidget(EditValuta);
    bottom->addStretch(1);
    btnAddCheck = button(page, QStringLiteral("btnAddCheck"), QStringLiteral("Добавить запись"));
    btnDeleteCheck = button(page, QStringLiteral("btnDeleteCheck"), QStringLiteral("Удаоить запись"));
    bottom->addWidget(btnAddCheck);
    bottom->addWidget(btnDeleteCheck);
    layout->addLayout(bottom);
    return page;
}

void TKassaBook::connectAll() {
    GridRashod->setItemDelegateForColumn(CashCol::Date, new DateCellDelegate(GridRashod));
    GridCheki->setItemDelegateForColumn(ChecksCol::Date, new DateCellDelegate(GridCheki));
    pageKey(this, QKeySequence(Qt::Key_Insert), [this] { btnAddRecordClick(); });
    pageKey(this, QKeySequence(Qt::CTRL | Qt::Key_Delete), [this] { btnDeleteRecordClick(); });
    connect(ToolTresh, &QAction::triggered, this, &TKassaBook::ToolTreshClick);
    connect(ToolOpen, &QAction::triggered, this, &TKassaBook::ToolOpenClick);
    connect(ToolSave, &QAction::triggered, this, &TKassaBook::ToolSaveClick);
    connect(ToolPrint, &QAction::triggered, this, &TKassaBook::ToolPrintClick);
    connect(ToolPDF, &QAction::triggered, this, &TKassaBook::ToolPDFClick);
    connect(ToolExcel, &QAction::triggered, this, &TKassaBook::ToolExcelClick);
    connect(ToolDohodMat, &QAction::triggered, this, &TKassaBook::ToolDohodMatClick);
    connect(NGetMobail, &QAction::triggered, this, &TKassaBook::NGetMobailClick);
    connect(NPostAndroid, &QAction::triggered, this, &TKassaBook::NPostAndroidClick);
    connect(ListBox1, &QListView::clicked, this,
            [this](const QModelIndex &i) { ListBox1Click(i.data().toString()); });
    connect(ListBox2, &QListView::clicked, this,
            [this](const QModelIndex &i) { ListBox2Click(i.data().toString()); });
    connect(DateBegin, &QDateEdit::dateChanged, this, &TKassaBook::DateBeginChange);
    connect(DateEnd, &QDateEdit::dateChanged, this, &TKassaBook::DateEndChange);
    connect(btnPeriodFilter, &QPushButton::clicked, this, &TKassaBook::btnPeriodFilterClick);
    connect(btnFirstDay, &QPushButton::clicked, this, &TKassaBook::btnFirstDayClick);
    connect(btnPeriodNext, &QPushButton::clicked, this, &TKassaBook::btnPeriodNextClick);
    connect(btnPeriodPrior, &QPushButton::clicked, this, &TKassaBook::btnPeriodPriorClick);
    connect(btnClearFilters, &QPushButton::clicked, this, &TKassaBook::btnClearFiltersClick);
    connect(btnMonthFilter, &QPushButton::clicked, this, &TKassaBook::btnMonthFilterClick);
    connect(btnMonthNext, &QPushButton::clicked, this, &TKassaBook::btnMonthNextClick);
    connect(btnMonthPrior, &QPushButton::clicked, this, &TKassaBook::btnMonthPriorClick);
    connect(btnMonthCurrent, &QPushButton::clicked, this, &TKassaBook::btnMonthCurrentClick);
    connect(FiltrCategory, &QComboBox::currentIndexChanged, this, &TKassaBook::FiltrCategoryChange);
    connect(btnAddRecord, &QPushButton::clicked, this, &TKassaBook::btnAddRecordClick);
    connect(btnDeleteRecord, &QPushButton::clicked, this, &TKassaBook::btnDeleteRecordClick);
    connect(btnFirstRecord, &QPushButton::clicked, this, &TKassaBook::btnFirstRecordClick);
    connect(btnLastRecord, &QPushButton::clicked, this, &TKassaBook::btnLastRecordClick);
    connect(btnDateToRow, &QPushButton::clicked, this, &TKassaBook::btnDateToRowClick);
    connect(btnAddZakupka, &QPushButton::clicked, this, &TKassaBook::btnAddZakupkaClick);
    connect(btnAddCheki, &QPushButton::clicked, this, &TKassaBook::btnAddChekiClick);
    connect(btnDeleteCheki, &QPushButton::clicked, this, &TKassaBook::btnDeleteChekiClick);
    connect(btnAddCheck, &QPushButton::clicked, this, &TKassaBook::btnAddCheckClick);
    connect(btnDeleteCheck, &QPushButton::clicked, this, &TKassaBook::btnDeleteCheckClick);
    connect(SpinEditZakupka, &QSpinBox::valueChanged, this, &TKassaBook::showTotals);
    connect(EditValuta, &QComboBox::currentIndexChanged, this, &TKassaBook::showCheckCost);
    connect(PageControl, &QTabWidget::currentChanged, this, [this] {
        if (PageControl->currentWidget() == TabCheki)
            m_book.showReceipts(currentRow());
    });
    connect(&m_book, &CashBook::totalsChanged, this, &TKassaBook::showTotals);
    connect(&m_book, &CashBook::reloaded, this, &TKassaBook::reloadYears);
    connect(&m_book, &CashBook::yearsChanged, this, &TKassaBook::reloadYears);
    connect(&m_book, &CashBook::problem, this, &TKassaBook::tell);
    if (m_ctx.exchange) {
        connect(m_ctx.exchange, &MobileExchange::fetched, this, &TKassaBook::fetched);
        connect(m_ctx.exchange, &MobileExchange::uploaded, this, &TKassaBook::uploaded);
    }
}
