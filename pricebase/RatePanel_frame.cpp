#include "RatePanel_frame.h"

#include "PriceBase.h"
#include "ServerRasSettings_frame.h"
#include "storage/MainSettings.h"
#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace {
// Data of the navigation tree's items.
enum NodeRole { NumberRole = Qt::UserRole + 1, KindRole, SectionRole, TitleRole };
enum NodeKind { AllNode = 0, SectionNode = 1, SubsectionNode = 2 };

const QString kTab2 = QStringLiteral("Расценки 2");
const QString kTab2Crew = QStringLiteral("Для бригады");
const QString kHintCrew = QStringLiteral("Расценки 1 использовать для бригады");
const QString kHintBack = QStringLiteral("Вернуться к расценкам 2");
const QString kHintConnect = QStringLiteral("Подключиться к серверу Вирн");
const QString kHintDisconnect = QStringLiteral("Отключиться от сервера");
} // namespace

TRatePanel::TRatePanel(PriceBase &base, QWidget *parent) : QWidget(parent), m_base(base) {
    setObjectName(QStringLiteral("RatePanel"));
    setMinimumWidth(320); // the tool bar folds its last buttons into its extension menu
    buildActions();
    buildWidgets();
    connect(&m_base, &PriceBase::listRead, this, [this](bool rebuilt) {
        if (rebuilt)
            rebuildNavigation();
        cursorToStart();
    });
    connect(&m_base, &PriceBase::readFailed, this, [this](const QString &error) {
        tell(QStringLiteral("Не удалось прочитать расценки: %1").arg(error));
    });
    connect(&m_base.model(), &RateGridModel::listEdited, this, [this] { m_edited = true; });
    // A typed name, unit or price can change what a row is: the numbers follow.
    connect(&m_base.model(), &RateGridModel::cellEdited, this, [this](int, int col) {
        if (col == PriceCol::Name || col == PriceCol::Unit || col == PriceCol::Price)
            PereschetNomeraRascenok();
    });
    // A row dragged to another place: numbers follow once the move is complete.
    connect(&m_base.model(), &QAbstractItemModel::rowsMoved, this, [this] {
        if (m_base.model().editMode())
            QTimer::singleShot(0, this, &TRatePanel::PereschetNomeraRascenok);
    });
    updateColumns();
    updateEditActions();
    rebuildNavigation();
}

void TRatePanel::buildActions() {
    auto make = [this](const QString &name, const QString &hint, QStyle::StandardPixmap icon,
                       bool checkable) {
        auto *a = new QAction(style()->standardIcon(icon), hint, this);
        a->setObjectName(name);
        a->setToolTip(hint);
        a->setCheckable(checkable);
        return a;
    };
    ToolEditRasRight =
        make("ToolEditRasRight", "Редактировать расценки", QStyle::SP_FileDialogDetailedView, true);
    ToolInsertRas = make("ToolInsertRas", "Вставить строку", QStyle::SP_FileDialogNewFolder, false);
    ToolAddRas = make("ToolAddRas", "Добавить строку в конце списка", QStyle::SP_FileDialogEnd, false);
    ToolDeleteRas = make("ToolDeleteRas", "Удалить выделенные строки", QStyle::SP_TrashIcon, false);
    ToolUpRas = make("ToolUpRas", "Переместить строку вверх", QStyle::SP_ArrowUp, false);
    ToolDownRas = make("ToolDownRas", "Переместить строку вниз", QStyle::SP_ArrowDown, false);
    ToolSaveRas = make("ToolSaveRas", "Сохранить расценки", QStyle::SP_DialogSaveButton, false);
    spdRasBrig = make("spdRasBrig", kHintCrew, QStyle::SP_DialogYesButton, true);
    ToolServerRas = make("ToolServerRas", kHintConnect, QStyle::SP_DriveNetIcon, true);
    ToolServerSettings =
        make("ToolServerSettings", "Настройки сервера расценок", QStyle::SP_ComputerIcon, false);
    connect(ToolEditRasRight, &QAction::toggled, this, &TRatePanel::ToolEditRasRightClick);
    connect(ToolInsertRas, &QAction::triggered, this, [this] { insertRow(false); });
    connect(ToolAddRas, &QAction::triggered, this, [this] { insertRow(true); });
    connect(ToolDeleteRas, &QAction::triggered, this, &TRatePanel::deleteRows);
    connect(ToolUpRas, &QAction::triggered, this, [this] { moveRow(-1); });
    connect(ToolDownRas, &QAction::triggered, this, [this] { moveRow(1); });
    connect(ToolSaveRas, &QAction::triggered, this, &TRatePanel::WriteSqlPrice);
    connect(spdRasBrig, &QAction::toggled, this, &TRatePanel::spdRasBrigClick);
    connect(ToolServerRas, &QAction::toggled, this, &TRatePanel::ToolServerRasClick);
    connect(ToolServerSettings, &QAction::triggered, this, &TRatePanel::ToolServerSettingsClick);
}

void TRatePanel::buildWidgets() {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    PageControlRas = new QTabWidget(this);
    PageControlRas->setObjectName(QStringLiteral("PageControlRas"));
    PageControlRas->setDocumentMode(true);
    auto page = [this](const QString &name, const QString &caption) {
        auto *w = new QWidget;
        w->setObjectName(name);
        w->setFixedHeight(0); // the tabs choose the list; the grid below shows it
        PageControlRas->addTab(w, caption);
        return w;
    };
    tabMyPrice = page(QStringLiteral("tabMyPrice"), QStringLiteral("Мои расценки"));
    tabPrice2 = page(QStringLiteral("tabPrice2"), kTab2);
    tabMaterial = page(QStringLiteral("tabMaterial"), QStringLiteral("Материалы"));
    tabPriceServer = page(QStringLiteral("tabPriceServer"), QStringLiteral("Расценки на сервере Вирн"));
    PageControlRas->setTabToolTip(1, kTab2);
    // Until a materials part fills it, the materials tab is shown but cannot be chosen.
    PageControlRas->setTabEnabled(2, false);
    PageControlRas->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(PageControlRas, &QTabWidget::currentChanged, this, &TRatePanel::PageControlRasChange);
    layout->addWidget(PageControlRas);

    // The rate grid with its tools, or the materials lists in its place.
    m_stack = new QStackedWidget(this);
    m_stack->setObjectName(QStringLiteral("StackRas"));
    layout->addWidget(m_stack, 1);
    auto *ratesPage = new QWidget(m_stack);
    ratesPage->setObjectName(QStringLiteral("PageRates"));
    m_stack->addWidget(ratesPage);
    m_materialsPage = new QWidget(m_stack);
    m_materialsPage->setObjectName(QStringLiteral("PageMaterials"));
    auto *materialsLayout = new QVBoxLayout(m_materialsPage);
    materialsLayout->setContentsMargins(0, 0, 0, 0);
    m_stack->addWidget(m_materialsPage);
    layout = new QVBoxLayout(ratesPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    ToolBarRas = new QToolBar(this);
    ToolBarRas->setObjectName(QStringLiteral("ToolBarRas"));
    ToolBarRas->setIconSize(QSize(18, 18));
    ToolBarRas->addAction(ToolEditRasRight);
    ToolBarRas->addAction(ToolInsertRas);
    ToolBarRas->addAction(ToolAddRas);
    ToolBarRas->addAction(ToolDeleteRas);
    ToolBarRas->addAction(ToolUpRas);
    ToolBarRas->addAction(ToolDownRas);
    ToolBarRas->addAction(ToolSaveRas);
    ToolBarRas->addSeparator();
    ToolBarRas->addAction(spdRasBrig);
    ToolBarRas->addSeparator();
    ToolBarRas->addAction(ToolServerRas);
    ToolBarRas->addAction(ToolServerSettings);
    layout->addWidget(ToolBarRas);

    ComboBox2 = new QComboBox(this);
    ComboBox2->setObjectName(QStringLiteral("ComboBox2"));
    ComboBox2->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    ComboBox2->setMinimumContentsLength(20);
    connect(ComboBox2, &QComboBox::activated, this, &TRatePanel::ComboBox2Select);
    layout->addWidget(ComboBox2);

    auto *split = new QSplitter(Qt::Vertical, this);
    split->setObjectName(QStringLiteral("SplitterRas"));
    m_tree = new QStandardItemModel(this);
    ListBox1 = new QTreeView(split);
    ListBox1->setObjectName(QStringLiteral("ListBox1"));
    ListBox1->setModel(m_tree);
    ListBox1->setHeaderHidden(true);
    ListBox1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ListBox1->setUniformRowHeights(true);
    connect(ListBox1, &QTreeView::clicked, this, &TRatePanel::ListBox1Click);

    StringGridRas = new QTableView(split);
    StringGridRas->setObjectName(QStringLiteral("StringGridRas"));
    StringGridRas->setModel(&m_base.model());
    StringGridRas->setItemDelegate(new ShortTextDelegate(StringGridRas));
    StringGridRas->verticalHeader()->setVisible(false);
    StringGridRas->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    StringGridRas->verticalHeader()->setDefaultSectionSize(21);
    StringGridRas->setWordWrap(false);
    StringGridRas->setSelectionBehavior(QAbstractItemView::SelectRows);
    StringGridRas->setSelectionMode(QAbstractItemView::ExtendedSelection);
    StringGridRas->setEditTriggers(QAbstractItemView::NoEditTriggers);
    StringGridRas->setDragDropMode(QAbstractItemView::InternalMove);
    StringGridRas->setDragEnabled(false);
    StringGridRas->setColumnWidth(0, 62);
    // The name takes what the panel leaves; numbers and prices keep their widths.
    StringGridRas->horizontalHeader()->setSectionResizeMode(PriceCol::Name, QHeaderView::Stretch);
    StringGridRas->horizontalHeader()->setMinimumSectionSize(24);
    StringGridRas->setColumnWidth(2, 58);
    StringGridRas->setColumnWidth(3, 80);
    StringGridRas->setColumnWidth(5, 50);
    StringGridRas->setColumnWidth(7, 80);
    StringGridRas->setColumnWidth(9, 28);
    StringGridRas->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(StringGridRas, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.column() != PriceCol::Check)
            emit rateDoubleClicked(RateGridModel::toGridRow(index.row()));
    });
    PopupMenuRas = new QMenu(this);
    PopupMenuRas->setObjectName(QStringLiteral("PopupMenuRas"));
    connect(StringGridRas, &QTableView::customContextMenuRequested, this,
            [this](const QPoint &pos) { PopupMenuRas->popup(StringGridRas->viewport()->mapToGlobal(pos)); });
    split->addWidget(ListBox1);
    split->addWidget(StringGridRas);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 4);
    layout->addWidget(split, 1);
}

void TRatePanel::tell(const QString &text) {
    dialogs().tell(Captions::error, text, Dialogs::Icon::Error);
}

void TRatePanel::start() {
    if (m_started)
        return;
    m_started = true;
    if (m_base.crewMode())
        UpdateSqlPriceBrig();
    // The window is usable before a long list is read; the grid fills when it is there.
    m_base.readInBackground();
}

void TRatePanel::readCurrent() {
    if (!m_started)
        return;
    QString error;
    if (!m_base.read(&error))
        tell(QStringLiteral("Не удалось прочитать расценки: %1").arg(error));
    m_edited = false;
}

void TRatePanel::ReadSqlRAS() {
    if (settleEdits())
        readCurrent();
}

bool TRatePanel::WriteSqlPrice() {
    QString error;
    if (!m_base.write(&error)) {
        tell(QStringLiteral("Не удалось записать расценки: %1").arg(error));
        return false;
    }
    m_edited = false;
    return true;
}

void TRatePanel::UpdateSqlPriceBrig() {
    const QString koef = m_koef ? m_koef() : MainSettings::defaultOf(QStringLiteral("EditKoefBrig"));
    QString error;
    if (!m_base.updateCrewPrices(koef, &error))
        dialogs().tell(Captions::warning, error, Dialogs::Icon::Warning);
}

void TRatePanel::PereschetNomeraRascenok() {
    m_base.model().renumber();
}

void TRatePanel::rebuildNavigation() {
    m_tree->clear();
    auto *all = new QStandardItem(kAllSections);
    all->setData(AllNode, KindRole);
    m_tree->appendRow(all);
    ComboBox2->clear();
    ComboBox2->addItem(kAllSections);
    int s = 0;
    for (const SectionEntry &section : m_base.sections()) {
        ++s;
        auto *node = new QStandardItem(section.text);
        node->setData(SectionNode, KindRole);
        node->setData(section.number, NumberRole);
        node->setData(s, SectionRole);
        node->setData(section.text.mid(section.number.size()).trimmed(), TitleRole);
        for (const SubsectionEntry &sub : section.subsections) {
            auto *child = new QStandardItem(sub.text);
            child->setData(SubsectionNode, KindRole);
            child->setData(sub.number, NumberRole);
            child->setData(s, SectionRole);
            child->setData(sub.text.mid(sub.number.size()).trimmed(), TitleRole);
            node->appendRow(child);
        }
        m_tree->appendRow(node);
        ComboBox2->addItem(section.text);
    }
    ListBox1->collapseAll();
    ComboBox2->setCurrentIndex(0);
}

void TRatePanel::cursorToStart() {
    StringGridRas->setCurrentIndex(m_base.model().index(0, PriceCol::Name));
    StringGridRas->scrollToTop();
}

void TRatePanel::ComboBox2Select(int index) {
    QString error;
    if (!m_base.showSection(index, &error))
        tell(QStringLiteral("Не удалось прочитать раздел: %1").arg(error));
    cursorToStart();
}

void TRatePanel::ListBox1Click(const QModelIndex &index) {
    if (!index.isValid())
        return;
    const int kind = index.data(KindRole).toInt();
    const int section = index.data(SectionRole).toInt();
    if (kind == AllNode) {
        ComboBox2->setCurrentIndex(0);
        ComboBox2Select(0);
        return;
    }
    if (m_base.model().editMode()) {
        // Editing: no filter; the grid goes to the node's title.
        const int row = m_base.model().findName(index.data(TitleRole).toString());
        if (row < 0)
            return;
        const QModelIndex cell = m_base.model().index(RateGridModel::toModelRow(row), PriceCol::Name);
        StringGridRas->scrollTo(cell, QAbstractItemView::PositionAtTop);
        StringGridRas->setCurrentIndex(cell);
        StringGridRas->selectRow(cell.row());
        return;
    }
    ComboBox2->setCurrentIndex(section);
    if (kind == SectionNode) {
        ComboBox2Select(section);
        return;
    }
    QString error;
    if (!m_base.showSubsection(index.data(NumberRole).toString(), &error))
        tell(QStringLiteral("Не удалось прочитать подраздел: %1").arg(error));
    cursorToStart();
}

bool TRatePanel::settleEdits() {
    if (!m_base.model().editMode() || !m_edited)
        return true;
    const auto a =
        dialogs().ask(QStringLiteral("Данные изменялись"), QStringLiteral("Сохранить изменения в расценках?"),
                      Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
    if (a == Dialogs::Answer::Cancel)
        return false;
    if (a == Dialogs::Answer::Yes)
        return WriteSqlPrice();
    m_edited = false;
    return true;
}

void TRatePanel::PageControlRasChange(int index) {
    if (m_switching)
        return;
    auto revert = [this] {
        m_switching = true;
        PageControlRas->setCurrentIndex(m_tabIndex);
        m_switching = false;
    };
    if (!settleEdits()) {
        revert();
        return;
    }
    if (index == static_cast<int>(PriceTab::Server) && !m_base.serverConnected()) {
        // Choosing the server's tab connects; ToolServerRasClick reads the list or comes back.
        ToolServerRas->setChecked(true);
        if (!m_base.serverConnected())
            revert();
        return;
    }
    m_tabIndex = index;
    m_base.setTab(static_cast<PriceTab>(index));
    const bool materials = index == static_cast<int>(PriceTab::Material);
    m_stack->setCurrentWidget(materials ? m_materialsPage : m_stack->widget(0));
    readCurrent();
    if (materials)
        emit materialsShown();
}

void TRatePanel::setMaterialsAvailable(bool on) {
    PageControlRas->setTabEnabled(static_cast<int>(PriceTab::Material), on);
}

std::optional<RateRow> TRatePanel::currentRate() const {
    const QModelIndex current = StringGridRas->currentIndex();
    if (!current.isValid())
        return std::nullopt;
    const int i = m_base.model().sourceIndex(RateGridModel::toGridRow(current.row()));
    if (i < 0)
        return std::nullopt;
    return m_base.model().allRows()[static_cast<size_t>(i)];
}

void TRatePanel::spdRasBrigClick(bool on) {
    if (!settleEdits()) {
        const QSignalBlocker block(spdRasBrig);
        spdRasBrig->setChecked(!on);
        return;
    }
    m_base.setCrewMode(on);
    PageControlRas->setTabText(1, on ? kTab2Crew : kTab2);
    PageControlRas->setTabToolTip(1, on ? kHintBack : kTab2);
    spdRasBrig->setToolTip(on ? kHintBack : kHintCrew);
    updateColumns();
    if (!m_started)
        return;
    if (on)
        UpdateSqlPriceBrig();
    readCurrent();
}

void TRatePanel::ToolServerRasClick(bool on) {
    auto uncheck = [this](bool state) {
        const QSignalBlocker block(ToolServerRas);
        ToolServerRas->setChecked(state);
    };
    if (!on) {
        if (m_base.isRemote() && !settleEdits()) {
            uncheck(true);
            return;
        }
        m_base.disconnectServer();
        ToolServerRas->setToolTip(kHintConnect);
        if (PageControlRas->currentIndex() == static_cast<int>(PriceTab::Server)) {
            m_switching = true;
            PageControlRas->setCurrentIndex(0);
            m_switching = false;
            m_tabIndex = 0;
            m_base.setTab(PriceTab::MyPrice);
            m_stack->setCurrentIndex(0);
            readCurrent();
        }
        return;
    }
    SettingsStore *store = m_settings ? m_settings() : nullptr;
    ServerSettings s = store ? ServerSettings::load(*store) : ServerSettings();
    if (!s.problem().isEmpty()) {
        TServerRasSettings dialog(s, this);
        if (dialog.exec() != QDialog::Accepted) {
            uncheck(false);
            return;
        }
        s = dialog.settings();
        if (store)
            s.save(*store);
    }
    if (!settleEdits()) {
        uncheck(false);
        return;
    }
    QString error;
    if (!m_base.connectServer(s, &error)) {
        uncheck(false);
        dialogs().tell(Captions::error,
                       QStringLiteral("Не удалось подключиться к серверу Вирн: %1").arg(error),
                       Dialogs::Icon::Error);
        return;
    }
    ToolServerRas->setToolTip(kHintDisconnect);
    m_switching = true;
    PageControlRas->setCurrentIndex(static_cast<int>(PriceTab::Server));
    m_switching = false;
    m_tabIndex = static_cast<int>(PriceTab::Server);
    m_base.setTab(PriceTab::Server);
    m_stack->setCurrentIndex(0);
    readCurrent();
    emit serverConnected();
}

void TRatePanel::ToolServerSettingsClick() {
    SettingsStore *store = m_settings ? m_settings() : nullptr;
    TServerRasSettings dialog(store ? ServerSettings::load(*store) : ServerSettings(), this);
    if (dialog.exec() != QDialog::Accepted || !store)
        return;
    dialog.settings().save(*store);
    if (m_base.serverConnected())
        dialogs().tell(Captions::info, QStringLiteral("Новые настройки сервера вступят в силу при следующем "
                                                      "подключении."));
}

void TRatePanel::ToolEditRasRightClick(bool on) {
    RateGridModel &model = m_base.model();
    if (!on && m_edited && !WriteSqlPrice()) {
        // Nothing is lost: the grid stays in edit mode with the edits.
        const QSignalBlocker block(ToolEditRasRight);
        ToolEditRasRight->setChecked(true);
        return;
    }
    if (on)
        m_edited = false;
    model.setEditMode(on);
    StringGridRas->setEditTriggers(on ? QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed |
                                            QAbstractItemView::SelectedClicked
                                      : QAbstractItemView::NoEditTriggers);
    StringGridRas->setDragEnabled(on);
    StringGridRas->setSelectionBehavior(on ? QAbstractItemView::SelectItems : QAbstractItemView::SelectRows);
    updateEditActions();
}

void TRatePanel::updateEditActions() {
    const bool on = m_base.model().editMode();
    for (QAction *a : {ToolInsertRas, ToolAddRas, ToolDeleteRas, ToolUpRas, ToolDownRas, ToolSaveRas})
        a->setEnabled(on);
}

void TRatePanel::updateColumns() {
    for (int c : {int(PriceCol::Rec), int(PriceCol::Id), int(PriceCol::Store)})
        StringGridRas->setColumnHidden(c, true);
    StringGridRas->setColumnHidden(PriceCol::Koef, !m_base.crewMode());
    StringGridRas->setColumnHidden(PriceCol::Link, !m_base.crewMode());
}

void TRatePanel::setCheckColumnVisible(bool on) {
    StringGridRas->setColumnHidden(PriceCol::Check, !on);
}

void TRatePanel::setCurrency(int index) {
    if (m_base.currency() == index)
        return;
    if (!settleEdits())
        return;
    m_base.setCurrency(index);
    readCurrent();
}

std::vector<int> TRatePanel::selectedGridRows() const {
    std::vector<int> rows;
    const QModelIndexList sel = StringGridRas->selectionModel()->selectedIndexes();
    for (const QModelIndex &i : sel)
        rows.push_back(RateGridModel::toGridRow(i.row()));
    if (rows.empty() && StringGridRas->currentIndex().isValid())
        rows.push_back(RateGridModel::toGridRow(StringGridRas->currentIndex().row()));
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void TRatePanel::insertRow(bool atEnd) {
    RateGridModel &model = m_base.model();
    const QModelIndex current = StringGridRas->currentIndex();
    const int at =
        atEnd || !current.isValid() ? model.gridRowCount() : RateGridModel::toGridRow(current.row());
    const int row = model.insertRowAt(at);
    PereschetNomeraRascenok();
    const QModelIndex cell = model.index(RateGridModel::toModelRow(row), PriceCol::Name);
    StringGridRas->setCurrentIndex(cell);
    StringGridRas->scrollTo(cell);
}

void TRatePanel::deleteRows() {
    const std::vector<int> rows = selectedGridRows();
    if (rows.empty())
        return;
    if (dialogs().ask(Captions::deletion,
                      QStringLiteral("Удалить выделенные строки (%1)?").arg(rows.size())) !=
        Dialogs::Answer::Yes)
        return;
    m_base.model().removeGridRows(rows);
    PereschetNomeraRascenok();
}

void TRatePanel::moveRow(int delta) {
    RateGridModel &model = m_base.model();
    const QModelIndex current = StringGridRas->currentIndex();
    if (!current.isValid())
        return;
    const int from = RateGridModel::toGridRow(current.row());
    const int to = from + delta;
    if (to < 1 || to > model.visibleCount() || model.sourceIndex(from) < 0)
        return;
    model.moveGridRow(from, to);
    PereschetNomeraRascenok();
    StringGridRas->setCurrentIndex(model.index(RateGridModel::toModelRow(to), current.column()));
}
