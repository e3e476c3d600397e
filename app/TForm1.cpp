#include "TForm1.h"

#include "storage/DataFolder.h"
#include "ui/Dialogs.h"
#include "storage/SettingsStore.h"
#include "estimate/TwoRowHeader.h"
#include "estimate/CrewGrid.h"
#include "estimate/EstimateGrid.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

TForm1::TForm1(const QStringList &arguments, QWidget *parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QStringLiteral("Вирн-Смета"));

    // 1. The data folder, and a second copy of it.
    const DataFolder::Decision d =
        DataFolder::decide(arguments, DataFolder::storedFolder(), QDir::currentPath());
    m_dataFolder = d.folder;
    m_dataFolderCopy = d.folder;
    m_startupDocument = d.documentFile;

    // 2. The whole screen; larger tool icons on wide screens.
    if (QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect g = screen->availableGeometry();
        resize(g.size());
        move(g.topLeft());
        if (g.width() > 1366)
            setIconSize(QSize(22, 22));
    }

    // 4. The folder tree.
    m_startupError = DataFolder::ensureTree(m_dataFolder);

    m_gridDoc = new EstimateGrid(this);
    m_gridBrig = new CrewGrid(this);
    buildActions();
    buildMenus();
    buildCentral();
    // 5. Grid set-up.
    setupGrids();

    // 8. File dialogs start in the documents folder.
    m_openDir = QDir(m_dataFolder).filePath(QStringLiteral("Sm"));
    m_saveDir = m_openDir;

    setupFile();
    setupEditor();
    setupPrice();
    setupHeader();
    setupOutput();
    DisableSave();
}

TForm1::~TForm1() = default;

void TForm1::buildActions() {
    auto make = [this](const QString &name, const QString &text, const QKeySequence &key = {}) {
        auto *a = new QAction(text, this);
        a->setObjectName(name);
        if (!key.isEmpty())
            a->setShortcut(key);
        return a;
    };
    spdNew = make(QStringLiteral("spdNew"), QStringLiteral("Новый документ"), QKeySequence::New);
    spdOpen = make(QStringLiteral("spdOpen"), QStringLiteral("Открыть..."), QKeySequence::Open);
    spdSave = make(QStringLiteral("spdSave"), QStringLiteral("Сохранить"), QKeySequence::Save);
    MSaveFile = make(QStringLiteral("МSaveFile"), QStringLiteral("Сохранить"));
    spdSaveKak = make(QStringLiteral("spdSaveKak"), QStringLiteral("Сохранить как..."), QKeySequence::SaveAs);
    MExit = make(QStringLiteral("MExit"), QStringLiteral("Выход"), QKeySequence(Qt::CTRL | Qt::Key_Q));
    spdNew->setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    spdOpen->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    spdSave->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    MSaveFile->setIcon(spdSave->icon());
    spdSave->setToolTip(QStringLiteral("Сохранить (Ctrl+S)"));
    connect(MExit, &QAction::triggered, this, &QWidget::close);
}

void TForm1::buildMenus() {
    MenuFile = menuBar()->addMenu(QStringLiteral("&Файл"));
    MenuFile->setObjectName(QStringLiteral("MenuFile"));
    MenuFile->addAction(spdNew);
    MenuFile->addAction(spdOpen);
    MLastDoc = MenuFile->addMenu(QStringLiteral("Последние документы"));
    MLastDoc->setObjectName(QStringLiteral("MLastDoc"));
    MenuFile->addSeparator();
    MenuFile->addAction(MSaveFile);
    MenuFile->addAction(spdSaveKak);
    MenuFile->addSeparator();
    MenuFile->addAction(MExit);

    MenuEdit = menuBar()->addMenu(QStringLiteral("&Правка"));
    MenuEdit->setObjectName(QStringLiteral("MenuEdit"));
    MenuDocument = menuBar()->addMenu(QStringLiteral("&Документ"));
    MenuDocument->setObjectName(QStringLiteral("MenuDocument"));
    MenuOptions = menuBar()->addMenu(QStringLiteral("&Настройки"));
    MenuOptions->setObjectName(QStringLiteral("MenuOptions"));
    MenuHelp = menuBar()->addMenu(QStringLiteral("&Справка"));
    MenuHelp->setObjectName(QStringLiteral("MenuHelp"));
    QAction *about = MenuHelp->addAction(QStringLiteral("О программе"));
    connect(about, &QAction::triggered, this, [this] {
        dialogs().tell(QStringLiteral("О программе"),
                       QStringLiteral("Вирн-Смета\nСметы на строительные и ремонтные работы.\nПапка данных: %1")
                           .arg(QDir::toNativeSeparators(m_dataFolder)));
    });

    ToolBarMain = addToolBar(QStringLiteral("Файл"));
    ToolBarMain->setObjectName(QStringLiteral("ToolBarMain"));
    ToolBarMain->addAction(spdNew);
    ToolBarMain->addAction(spdOpen);
    ToolBarMain->addAction(spdSave);
    ToolBarDoc = addToolBar(QStringLiteral("Смета"));
    ToolBarDoc->setObjectName(QStringLiteral("ToolBarDoc"));
}

void TForm1::buildCentral() {
    SplitterMain = new QSplitter(Qt::Horizontal, this);
    SplitterMain->setObjectName(QStringLiteral("SplitterMain"));

    PanelRas = new QWidget(SplitterMain);
    PanelRas->setObjectName(QStringLiteral("PanelRas"));
    new QVBoxLayout(PanelRas);
    PanelRas->layout()->setContentsMargins(0, 0, 0, 0);

    auto *right = new QWidget(SplitterMain);
    auto *rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    PanelHeader = new QWidget(right);
    PanelHeader->setObjectName(QStringLiteral("PanelHeader"));
    new QVBoxLayout(PanelHeader);
    PanelHeader->layout()->setContentsMargins(0, 0, 0, 0);
    rightLayout->addWidget(PanelHeader);

    PageControlDoc = new QTabWidget(right);
    PageControlDoc->setObjectName(QStringLiteral("PageControlDoc"));
    rightLayout->addWidget(PageControlDoc, 1);

    TabSheet1 = new QWidget;
    TabSheet1->setObjectName(QStringLiteral("TabSheet1"));
    auto *docLayout = new QVBoxLayout(TabSheet1);
    docLayout->setContentsMargins(2, 2, 2, 2);
    StringGridDoc = new QTableView(TabSheet1);
    StringGridDoc->setObjectName(QStringLiteral("StringGridDoc"));
    docLayout->addWidget(StringGridDoc, 1);
    PanelKoef = new QWidget(TabSheet1);
    PanelKoef->setObjectName(QStringLiteral("PanelKoef"));
    new QVBoxLayout(PanelKoef);
    PanelKoef->layout()->setContentsMargins(0, 0, 0, 0);
    docLayout->addWidget(PanelKoef);

    PanelTotals = new QWidget(TabSheet1);
    PanelTotals->setObjectName(QStringLiteral("PanelTotals"));
    auto *totals = new QHBoxLayout(PanelTotals);
    totals->setContentsMargins(0, 0, 0, 0);
    auto addTotal = [&](const QString &name, const QString &label) {
        totals->addWidget(new QLabel(label, PanelTotals));
        auto *e = new QLineEdit(QStringLiteral("0,00"), PanelTotals);
        e->setObjectName(name);
        e->setReadOnly(true);
        e->setAlignment(Qt::AlignRight);
        e->setMaximumWidth(160);
        totals->addWidget(e);
        return e;
    };
    Edit6 = addTotal(QStringLiteral("Edit6"), QStringLiteral("Работы:"));
    Edit4 = addTotal(QStringLiteral("Edit4"), QStringLiteral("Материалы:"));
    Edit5 = addTotal(QStringLiteral("Edit5"), QStringLiteral("Всего по смете:"));
    totals->addStretch(1);
    totals->addWidget(new QLabel(QStringLiteral("Валюта:"), PanelTotals));
    EditValuta = new QComboBox(PanelTotals);
    EditValuta->setObjectName(QStringLiteral("EditValuta"));
    EditValuta->addItems({QStringLiteral("Рубль РФ"), QStringLiteral("Доллар США"), QStringLiteral("Гривна"),
                          QStringLiteral("Белорусский рубль"), QStringLiteral("Тенге")});
    totals->addWidget(EditValuta);
    docLayout->addWidget(PanelTotals);
    PageControlDoc->addTab(TabSheet1, QStringLiteral("Новый документ"));

    TabSheetBrig = new QWidget;
    TabSheetBrig->setObjectName(QStringLiteral("TabSheetBrig"));
    auto *brigLayout = new QVBoxLayout(TabSheetBrig);
    brigLayout->setContentsMargins(2, 2, 2, 2);
    StringGridBrig = new QTableView(TabSheetBrig);
    StringGridBrig->setObjectName(QStringLiteral("StringGridBrig"));
    brigLayout->addWidget(StringGridBrig, 1);
    PageControlDoc->addTab(TabSheetBrig, QStringLiteral("Для бригады"));

    SplitterMain->addWidget(PanelRas);
    SplitterMain->addWidget(right);
    SplitterMain->setStretchFactor(0, 2);
    SplitterMain->setStretchFactor(1, 3);
    setCentralWidget(SplitterMain);
}

void TForm1::setupGrids() {
    auto *header = new TwoRowHeader(StringGridDoc);
    header->setSpanned(EstimateCol::Machine, EstimateCol::Total);
    StringGridDoc->setHorizontalHeader(header);
    StringGridDoc->setModel(m_gridDoc);
    StringGridDoc->setFont(QFont(QStringLiteral("Courier New")));
    StringGridDoc->verticalHeader()->setDefaultSectionSize(21);
    StringGridDoc->verticalHeader()->setVisible(false);
    StringGridDoc->setSelectionBehavior(QAbstractItemView::SelectItems);
    StringGridDoc->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                   QAbstractItemView::AnyKeyPressed);
    StringGridDoc->setWordWrap(false);
    StringGridDoc->setColumnWidth(EstimateCol::Num, 40);
    StringGridDoc->setColumnWidth(EstimateCol::Ras, 65);
    StringGridDoc->setColumnWidth(EstimateCol::Name, 380);
    StringGridDoc->setColumnWidth(EstimateCol::Unit, 70);
    for (int c : {EstimateCol::Qty, EstimateCol::Price, EstimateCol::Material, EstimateCol::Labour, EstimateCol::Total})
        StringGridDoc->setColumnWidth(c, 80);
    StringGridDoc->setColumnWidth(EstimateCol::Sum, 100);
    StringGridDoc->setColumnWidth(EstimateCol::Itogo, 100);
    for (int c = EstimateCol::IdRas; c <= EstimateCol::Machine; ++c)
        StringGridDoc->setColumnHidden(c, true);

    StringGridBrig->setModel(m_gridBrig);
    StringGridBrig->verticalHeader()->setVisible(false);
    StringGridBrig->verticalHeader()->setDefaultSectionSize(21);
    StringGridBrig->setColumnWidth(CrewCol::Name, 380);
    StringGridBrig->setColumnHidden(CrewCol::IdRas, true);

    connect(m_gridDoc, &EstimateGrid::contentChanged, this, &TForm1::EnableSave);
    connect(m_gridBrig, &CrewGrid::cellEdited, this, &TForm1::EnableSave);
}

bool TForm1::isChanged() const { return spdSave->isEnabled(); }

void TForm1::EnableSave() {
    spdSave->setEnabled(true);
    MSaveFile->setEnabled(true);
    if (spdServerSave)
        spdServerSave->setEnabled(true);
    emit saveEnabled();
}

void TForm1::DisableSave() {
    spdSave->setEnabled(false);
    MSaveFile->setEnabled(false);
}

void TForm1::closeEvent(QCloseEvent *event) {
    if (FormCloseQuery())
        event->accept();
    else
        event->ignore();
}
