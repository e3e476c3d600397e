#include "MyDocuments_frame.h"

#include "RegisterModel.h"
#include "RegisterRows.h"
#include "customers/CustomerRegister.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QButtonGroup>
#include <QCalendarWidget>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QStringListModel>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

const QStringList kMonths = {QStringLiteral("Месяц"),    QStringLiteral("Январь"),  QStringLiteral("Февраль"),
                             QStringLiteral("Март"),     QStringLiteral("Апрель"),  QStringLiteral("Май"),
                             QStringLiteral("Июнь"),     QStringLiteral("Июль"),    QStringLiteral("Август"),
                             QStringLiteral("Сентябрь"), QStringLiteral("Октябрь"), QStringLiteral("Ноябрь"),
                             QStringLiteral("Декабрь")};

QPushButton *button(const QString &name, const QString &text, QWidget *parent) {
    auto *b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

QLineEdit *totalField(const char *name, QWidget *parent) {
    auto *e = new QLineEdit(QStringLiteral("0,00"), parent);
    e->setObjectName(QLatin1String(name));
    e->setReadOnly(true);
    e->setAlignment(Qt::AlignRight);
    e->setMaximumWidth(160);
    return e;
}

} // namespace

TMyDocuments::TMyDocuments(TModuleSQL &module, RegisterCommands &commands, OptionFlags options,
                           QWidget *parent)
    : QWidget(parent), m_module(module), m_commands(commands), m_options(std::move(options)) {
    setObjectName(QStringLiteral("MyDocuments"));
    m_doc.list = Registration::List::Documents;
    m_draft.list = Registration::List::Drafts;

    auto *splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("SplitterMyDocuments"));
    auto *left = new QWidget(splitter);
    buildLeft(left);

    auto *centre = new QWidget(splitter);
    auto *centreLayout = new QVBoxLayout(centre);
    centreLayout->setContentsMargins(0, 0, 0, 0);
    LabelProblem = new QLabel(centre);
    LabelProblem->setObjectName(QStringLiteral("LabelProblem"));
    LabelProblem->setWordWrap(true);
    LabelProblem->setStyleSheet(QStringLiteral("color: #b00020;"));
    LabelProblem->hide();
    centreLayout->addWidget(LabelProblem);
    PageControl = new QTabWidget(centre);
    PageControl->setObjectName(QStringLiteral("PageControlMyDoc"));
    centreLayout->addWidget(PageControl, 1);
    buildPage(m_draft, QStringLiteral("Черновики"), "Draft");
    buildPage(m_doc, QStringLiteral("Документы"), "Doc");
    GridDraft = m_draft.grid;
    GridDoc = m_doc.grid;
    PageControl->setCurrentWidget(m_doc.tab);

    // The totals of the shown rows.
    auto *totals = new QHBoxLayout;
    auto addTotal = [&](const QString &label, QLineEdit *field) {
        totals->addWidget(new QLabel(label, centre));
        totals->addWidget(field);
    };
    EditSumMat = totalField("EditSumMat", centre);
    EditSumRab = totalField("EditSumRab", centre);
    EditSumAll = totalField("EditSumAll", centre);
    addTotal(QStringLiteral("Материалы:"), EditSumMat);
    addTotal(QStringLiteral("Работы:"), EditSumRab);
    addTotal(QStringLiteral("Смета:"), EditSumAll);
    totals->addStretch(1);
    centreLayout->addLayout(totals);

    splitter->addWidget(left);
    splitter->addWidget(centre);
    splitter->addWidget(buildSideGrids());
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 3);
    splitter->setStretchFactor(2, 1);
    splitter->setSizes({220, 820, 340});
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(splitter);

    connect(PageControl, &QTabWidget::currentChanged, this, &TMyDocuments::pageChanged);
    connect(GridDoc->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &TMyDocuments::selectionChanged);
    connect(GridDraft->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &TMyDocuments::selectionChanged);
    selectionChanged();
}

void TMyDocuments::buildLeft(QWidget *left) {
    auto *layout = new QVBoxLayout(left);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *label = new QLabel(QStringLiteral("Заказчики"), left);
    label->setObjectName(QStringLiteral("LabelZakaz"));
    layout->addWidget(label);
    ListBoxZakaz = new QListView(left);
    ListBoxZakaz->setObjectName(QStringLiteral("ListBoxZakaz"));
    ListBoxZakaz->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ListBoxZakaz->setUniformItemSizes(true);
    m_customers = new QStringListModel(this);
    ListBoxZakaz->setModel(m_customers);
    layout->addWidget(ListBoxZakaz, 1);
    connect(ListBoxZakaz, &QListView::clicked, this,
            [this](const QModelIndex &index) { ListBoxZakazClick(index.data().toString()); });
    // The keyboard moves through the customers as the mouse does.
    connect(ListBoxZakaz->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &index) {
                if (index.isValid() && ListBoxZakaz->hasFocus())
                    ListBoxZakazClick(index.data().toString());
            });

    RzCalendar1 = new QCalendarWidget(left);
    RzCalendar1->setObjectName(QStringLiteral("RzCalendar1"));
    RzCalendar1->setGridVisible(true);
    RzCalendar1->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    layout->addWidget(RzCalendar1);
    connect(RzCalendar1, &QCalendarWidget::clicked, this, &TMyDocuments::RzCalendar1Click);
    connect(RzCalendar1, &QCalendarWidget::activated, this, &TMyDocuments::RzCalendar1Click);
    BtnToday = button(QStringLiteral("BtnToday"), QStringLiteral("Сегодня"), left);
    layout->addWidget(BtnToday);
    connect(BtnToday, &QPushButton::clicked, this, &TMyDocuments::BtnTodayClick);
    left->setMinimumWidth(200);
}

QTableView *TMyDocuments::makeGrid(const QString &name, QWidget *parent) {
    auto *grid = new QTableView(parent);
    grid->setObjectName(name);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setAlternatingRowColors(true);
    grid->setWordWrap(false);
    grid->setItemDelegate(new ShortTextDelegate(grid)); // a name of thousands of characters paints short
    grid->verticalHeader()->hide();
    // Every row is one line high: the view never measures rows, however many there are.
    grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 8);
    grid->horizontalHeader()->setHighlightSections(false);
    grid->setContextMenuPolicy(Qt::CustomContextMenu);
    return grid;
}

void TMyDocuments::buildPage(Page &page, const QString &title, const char *suffix) {
    const QString s = QLatin1String(suffix);
    page.tab = new QWidget(PageControl);
    page.tab->setObjectName(QStringLiteral("Tab") + s);
    auto *layout = new QVBoxLayout(page.tab);
    layout->setContentsMargins(2, 2, 2, 2);

    const bool drafts = isDrafts(page);
    QToolBar *actions = drafts ? buildDraftActions() : buildDocumentActions();
    layout->addWidget(actions);

    auto *filters = new QHBoxLayout;
    if (!drafts) {
        auto *status = new QGroupBox(QStringLiteral("Статус"), page.tab);
        status->setObjectName(QStringLiteral("RadioGroupStatus"));
        auto *statusLayout = new QVBoxLayout(status);
        auto *group = new QButtonGroup(status);
        auto radio = [&](QRadioButton *&r, const char *name, const QString &text,
                         RegisterFilter::Status value) {
            r = new QRadioButton(text, status);
            r->setObjectName(QLatin1String(name));
            statusLayout->addWidget(r);
            group->addButton(r);
            connect(r, &QRadioButton::clicked, this, [this, value] { RadioStatusClick(value); });
        };
        radio(RadioAll, "RadioAll", QStringLiteral("Все"), RegisterFilter::Status::All);
        radio(RadioInWork, "RadioInWork", QStringLiteral("В работе"), RegisterFilter::Status::InWork);
        radio(RadioClosed, "RadioClosed", QStringLiteral("Закрытые"), RegisterFilter::Status::Closed);
        RadioAll->setChecked(true);
        filters->addWidget(status);
    }

    auto *period = new QGroupBox(QStringLiteral("Месяц - Год"), page.tab);
    period->setObjectName(QStringLiteral("GroupPeriod") + s);
    auto *grid = new QGridLayout(period);
    page.month = new QComboBox(period);
    page.month->setObjectName(QStringLiteral("ComboMonth") + s);
    page.month->addItems(kMonths);
    page.month->setMaxVisibleItems(13);
    page.year = new QComboBox(period);
    page.year->setObjectName(QStringLiteral("ComboYear") + s);
    page.year->addItem(kAnyYear);
    page.comboFilter = new QTimer(this);
    page.comboFilter->setSingleShot(true);
    page.comboFilter->setInterval(0);
    Page *p = &page;
    connect(page.comboFilter, &QTimer::timeout, this, [this, p] {
        p->day = QDate();
        readPage(*p);
    });
    connect(page.month, &QComboBox::activated, this, [this, p] { filterSoon(*p); });
    connect(page.year, &QComboBox::activated, this, [this, p] { filterSoon(*p); });

    QPushButton *filter =
        button(QStringLiteral("BtnFilterPeriod") + s, QStringLiteral("Фильтровать по периоду"), period);
    QPushButton *prev =
        button(QStringLiteral("BtnPrevMonth") + s, QStringLiteral("Предыдущий месяц"), period);
    QPushButton *next = button(QStringLiteral("BtnNextMonth") + s, QStringLiteral("Следующий месяц"), period);
    QPushButton *now = button(QStringLiteral("BtnCurrentMonth") + s, QStringLiteral("Текущий месяц"), period);
    QPushButton *clear =
        button(QStringLiteral("BtnClearFilters") + s, QStringLiteral("Очистить все фильтры"), period);
    QPushButton *first = button(QStringLiteral("BtnFirstRow") + s, QStringLiteral("К первой строке"), period);
    QPushButton *last =
        button(QStringLiteral("BtnLastRow") + s, QStringLiteral("К последней строке"), period);
    grid->addWidget(page.month, 0, 0);
    grid->addWidget(page.year, 0, 1);
    grid->addWidget(filter, 0, 2);
    grid->addWidget(prev, 1, 0);
    grid->addWidget(next, 1, 1);
    grid->addWidget(now, 1, 2);
    grid->addWidget(first, 2, 0);
    grid->addWidget(last, 2, 1);
    grid->addWidget(clear, 2, 2);
    connect(filter, &QPushButton::clicked, this, &TMyDocuments::BtnFilterPeriodClick);
    connect(prev, &QPushButton::clicked, this, &TMyDocuments::BtnPrevMonthClick);
    connect(next, &QPushButton::clicked, this, &TMyDocuments::BtnNextMonthClick);
    connect(now, &QPushButton::clicked, this, &TMyDocuments::BtnCurrentMonthClick);
    connect(clear, &QPushButton::clicked, this, &TMyDocuments::BtnClearFiltersClick);
    connect(first, &QPushButton::clicked, this, &TMyDocuments::BtnFirstRowClick);
    connect(last, &QPushButton::clicked, this, &TMyDocuments::BtnLastRowClick);
    filters->addWidget(period);
    if (!drafts)
        filters->addWidget(buildOutputActions());
    filters->addStretch(1);
    layout->addLayout(filters);

    page.grid = makeGrid(QStringLiteral("Grid") + s, page.tab);
    page.model = new RegisterModel(this);
    page.grid->setModel(page.model);
    const int widths[RegisterCol::Count] = {56, 84, 330, 100, 50, 86, 110, 320};
    for (int c = 0; c < RegisterCol::Count; ++c)
        page.grid->setColumnWidth(c, widths[c]);
    page.grid->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(page.grid, 1);
    // Enter, F2 and Delete act on the grid's row.
    page.grid->addActions(actions->actions());
    connect(page.grid, &QTableView::doubleClicked, this, [this, p] { openRow(*p); });
    connect(page.grid, &QTableView::customContextMenuRequested, this,
            [this, p](const QPoint &at) { popup(*p, at); });
    PageControl->addTab(page.tab, title);
}

QAction *TMyDocuments::makeAction(QToolBar *bar, const char *name, const QString &text,
                                  const QKeySequence &key, void (TMyDocuments::*slot)()) {
    auto *a = new QAction(text, this);
    a->setObjectName(QLatin1String(name));
    if (!key.isEmpty()) {
        a->setShortcut(key);
        a->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    connect(a, &QAction::triggered, this, slot);
    bar->addAction(a);
    return a;
}

QToolBar *TMyDocuments::buildDocumentActions() {
    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("ToolBarDoc"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    ToolOpen = makeAction(bar, "ToolOpen", QStringLiteral("Открыть документ"), QKeySequence(Qt::Key_Return),
                          &TMyDocuments::ToolOpenClick);
    NFinish = makeAction(bar, "NFinish", QStringLiteral("Завершить смету"), {}, &TMyDocuments::NFinishClick);
    NEdit = makeAction(bar, "NEdit", QStringLiteral("Редактировать данные"), QKeySequence(Qt::Key_F2),
                       &TMyDocuments::NEditClick);
    NDelete = makeAction(bar, "NDelete", QStringLiteral("Удалить запись"), QKeySequence::Delete,
                         &TMyDocuments::NDeleteClick);
    ToolSetDrafts = makeAction(bar, "ToolSetDrafts", QStringLiteral("Переместить в черновик"), {},
                               &TMyDocuments::ToolSetDraftsClick);
    return bar;
}

QToolBar *TMyDocuments::buildOutputActions() {
    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("ToolBarOutput"));
    bar->setOrientation(Qt::Vertical);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto output = [this, bar](const char *name, const QString &text, RegisterCommands::Output kind) {
        auto *a = new QAction(text, this);
        a->setObjectName(QLatin1String(name));
        connect(a, &QAction::triggered, this, [this, kind] { outputClick(kind); });
        bar->addAction(a);
    };
    output("ToolPreview", QStringLiteral("Предварительный просмотр"), RegisterCommands::Output::Preview);
    output("ToolPrint", QStringLiteral("Печать"), RegisterCommands::Output::Print);
    output("ToolPDF", QStringLiteral("Экспорт в формат PDF"), RegisterCommands::Output::Pdf);
    output("ToolExcel", QStringLiteral("Экспорт в формат Excel"), RegisterCommands::Output::Excel);
    bar->addSeparator();
    output("ToolAccount", QStringLiteral("Выписать счёт"), RegisterCommands::Output::Invoice);
    output("ToolContract", QStringLiteral("Составить договор"), RegisterCommands::Output::Contract);
    output("ToolPackage", QStringLiteral("Создать пакет документов"), RegisterCommands::Output::Package);
    return bar;
}

QToolBar *TMyDocuments::buildDraftActions() {
    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("ToolBarDraft"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    ToolOpenDraft = makeAction(bar, "ToolOpenDraft", QStringLiteral("Открыть черновик"),
                               QKeySequence(Qt::Key_Return), &TMyDocuments::ToolOpenClick);
    MMoveToDoc = makeAction(bar, "MMoveToDoc", QStringLiteral("Переместить черновик в документы"), {},
                            &TMyDocuments::MMoveToDocClick);
    MEditDraft = makeAction(bar, "MEditDraft", QStringLiteral("Редактировать данные"),
                            QKeySequence(Qt::Key_F2), &TMyDocuments::MEditDraftClick);
    MDelDraft = makeAction(bar, "MDelDraft", QStringLiteral("Удалить запись"), QKeySequence::Delete,
                           &TMyDocuments::MDelDraftClick);
    return bar;
}

QWidget *TMyDocuments::buildSideGrids() {
    auto *right = new QWidget(this);
    auto *layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *hint =
        new QLabel(QStringLiteral("Двойной клик в выделенной строке открывает соответствующий файл"), right);
    hint->setObjectName(QStringLiteral("LabelHint"));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    auto side = [&](QTableView *&grid, OutputFilesModel *&model, const char *name, const QString &title) {
        grid = makeGrid(QLatin1String(name), right);
        model = new OutputFilesModel(title, this);
        grid->setModel(model);
        grid->setColumnWidth(OutputFilesModel::Date, 80);
        grid->setColumnWidth(OutputFilesModel::Name, 120);
        grid->setColumnWidth(OutputFilesModel::Kind, 40);
        // Path and key are there for the double click, not for reading.
        grid->setColumnWidth(OutputFilesModel::FileName, 30);
        grid->setColumnWidth(OutputFilesModel::Id, 24);
        grid->setContextMenuPolicy(Qt::NoContextMenu);
        layout->addWidget(grid, 1);
        OutputFilesModel *m = model;
        connect(grid, &QTableView::doubleClicked, this, [this, m](const QModelIndex &index) {
            if (const OutputFileRow *r = m->rowAt(index.row()))
                openOutputFile(r->fileName);
        });
    };
    side(GridContract, m_contracts, "GridContract", QStringLiteral("Договор"));
    side(GridAccount, m_accounts, "GridAccount", QStringLiteral("Счёт"));
    side(GridAct, m_acts, "GridAct", QStringLiteral("Акты"));
    return right;
}
