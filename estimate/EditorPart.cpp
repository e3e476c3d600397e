#include "EditorPart.h"

#include "BrigPanel_frame.h"
#include "CrewGrid.h"
#include "DocGridTools.h"
#include "EstimateDocument.h"
#include "EstimateEditor.h"
#include "EstimateGrid.h"
#include "KoefPanel_frame.h"
#include "ProblemsLine_frame.h"
#include "SmetaMaterials_frame.h"
#include "TwoRowHeader.h"
#include "storage/MainSettings.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QSignalBlocker>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

void EditorPart::attach(MainShell &shell) {
    m_shell = &shell;
    m_doc = &shell.document();
    buildPages();
    buildCommands();
    connect(&m_doc->editor(), &EstimateEditor::totalsChanged, this, &EditorPart::showTotals);
    connect(m_doc, &EstimateDocument::headerChanged, this, [this] {
        const QSignalBlocker quiet(m_currency);
        m_currency->setCurrentIndex(m_doc->header().currency);
    });
    showTotals();
}

void EditorPart::buildPages() {
    QTabWidget *pages = m_shell->pages();
    m_estimatePage = new QWidget;
    m_estimatePage->setObjectName(QStringLiteral("TabSheet1"));
    auto *docLayout = new QVBoxLayout(m_estimatePage);
    docLayout->setContentsMargins(2, 2, 2, 2);
    m_view = new QTableView(m_estimatePage);
    m_view->setObjectName(QStringLiteral("StringGridDoc"));
    docLayout->addWidget(m_view, 1);
    // How many cells need fixing, right under the grid.
    docLayout->addWidget(new TProblemsLine(&m_doc->editor(), m_estimatePage));
    auto *koefPanel = new QWidget(m_estimatePage);
    koefPanel->setObjectName(QStringLiteral("PanelKoef"));
    auto *koefLayout = new QVBoxLayout(koefPanel);
    koefLayout->setContentsMargins(0, 0, 0, 0);
    koefLayout->addWidget(new TKoefPanel(m_doc->editor().koef(), koefPanel));
    docLayout->addWidget(koefPanel);

    auto *totalsPanel = new QWidget(m_estimatePage);
    totalsPanel->setObjectName(QStringLiteral("PanelTotals"));
    auto *totals = new QHBoxLayout(totalsPanel);
    totals->setContentsMargins(0, 0, 0, 0);
    auto addTotal = [&](const QString &name, const QString &label) {
        totals->addWidget(new QLabel(label, totalsPanel));
        auto *e = new QLineEdit(QStringLiteral("0,00"), totalsPanel);
        e->setObjectName(name);
        e->setReadOnly(true);
        e->setAlignment(Qt::AlignRight);
        e->setMaximumWidth(160);
        totals->addWidget(e);
        return e;
    };
    m_works = addTotal(QStringLiteral("Edit6"), QStringLiteral("Работы:"));
    m_materials = addTotal(QStringLiteral("Edit4"), QStringLiteral("Материалы:"));
    m_grand = addTotal(QStringLiteral("Edit5"), QStringLiteral("Всего по смете:"));
    totals->addStretch(1);
    totals->addWidget(new QLabel(QStringLiteral("Валюта:"), totalsPanel));
    m_currency = new QComboBox(totalsPanel);
    m_currency->setObjectName(QStringLiteral("EditValuta"));
    m_currency->addItems({QStringLiteral("Рубль РФ"), QStringLiteral("Доллар США"), QStringLiteral("Гривна"),
                          QStringLiteral("Белорусский рубль"), QStringLiteral("Тенге")});
    connect(m_currency, &QComboBox::currentIndexChanged, m_doc, &EstimateDocument::setCurrency);
    totals->addWidget(m_currency);
    docLayout->addWidget(totalsPanel);
    pages->addTab(m_estimatePage, m_doc->caption());
    connect(m_doc, &EstimateDocument::fileNameChanged, this, [this] {
        m_shell->pages()->setTabText(m_shell->pages()->indexOf(m_estimatePage), m_doc->caption());
    });

    // The estimate grid: two fixed header rows, the unit cost columns under one caption.
    auto *header = new TwoRowHeader(m_view);
    header->setSpanned(EstimateCol::Machine, EstimateCol::Total);
    m_view->setHorizontalHeader(header);
    m_view->setModel(&m_doc->grid());
    m_view->setFont(QFont(QStringLiteral("Courier New")));
    m_view->verticalHeader()->setDefaultSectionSize(21);
    m_view->verticalHeader()->setVisible(false);
    m_view->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_view->setWordWrap(false);
    m_view->setColumnWidth(EstimateCol::Num, 40);
    m_view->setColumnWidth(EstimateCol::Ras, 65);
    m_view->setColumnWidth(EstimateCol::Name, 380);
    m_view->setColumnWidth(EstimateCol::Unit, 70);
    for (int c : {EstimateCol::Qty, EstimateCol::Price, EstimateCol::Material, EstimateCol::Labour,
                  EstimateCol::Total})
        m_view->setColumnWidth(c, 80);
    m_view->setColumnWidth(EstimateCol::Sum, 100);
    m_view->setColumnWidth(EstimateCol::Itogo, 100);
    for (int c = EstimateCol::IdRas; c <= EstimateCol::Machine; ++c)
        m_view->setColumnHidden(c, true);
    // The grid asks before every edit; rows move by dragging their number.
    m_view->setItemDelegate(new CanEditDelegate(
        [this](int gridRow, int col) { return StringGridDocCanEditCell(gridRow, col); }, m_view));
    m_view->setSelectionMode(QAbstractItemView::ContiguousSelection);
    new RowDragMover(m_view, EstimateCol::Num, [this](int first, int last, int target) {
        EstimateEditor &editor = m_doc->editor();
        if (editor.moveRows(first, last, target))
            moveCurrentTo(target);
        else if (!editor.lastError().isEmpty())
            dialogs().tell(Captions::warning, editor.lastError(), Dialogs::Icon::Warning);
    });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (current.isValid())
                    setCurrentRow(EstimateGrid::toGridRow(current.row()));
            });

    // The crew sheet with its bar: coefficient, mode, totals.
    m_crewPage = new QWidget;
    m_crewPage->setObjectName(QStringLiteral("TabSheetBrig"));
    auto *brigLayout = new QVBoxLayout(m_crewPage);
    brigLayout->setContentsMargins(2, 2, 2, 2);
    m_crewView = new QTableView(m_crewPage);
    m_crewView->setObjectName(QStringLiteral("StringGridBrig"));
    brigLayout->addWidget(m_crewView, 1);
    auto *brig = new TBrigPanel(m_doc->editor().crew(), m_crewPage);
    brigLayout->addWidget(brig);
    connect(brig, &TBrigPanel::changedByUser, m_doc, [this] { m_doc->setChanged(true); });
    pages->addTab(m_crewPage, QStringLiteral("Для бригады"));
    m_crewView->setModel(&m_doc->crew());
    m_crewView->setItemDelegate(new ShortTextDelegate(m_crewView));
    m_crewView->verticalHeader()->setVisible(false);
    m_crewView->verticalHeader()->setDefaultSectionSize(21);
    m_crewView->setColumnHidden(CrewCol::IdRas, true);
    m_crewView->setColumnWidth(CrewCol::Num, 40);
    m_crewView->setColumnWidth(CrewCol::Ras, 65);
    m_crewView->setColumnWidth(CrewCol::Name, 380);
    for (int c : {int(CrewCol::Unit), int(CrewCol::Qty), int(CrewCol::Koef)})
        m_crewView->setColumnWidth(c, 60);
    for (int c :
         {int(CrewCol::Price), int(CrewCol::Sum), int(CrewCol::CustomerPrice), int(CrewCol::CustomerSum)})
        m_crewView->setColumnWidth(c, 95);

    // The estimate's materials on a page of their own.
    m_materialsPage = new TSmetaMaterials(m_doc->editor().materials());
    m_materialsPage->setObjectName(QStringLiteral("TabSheetMat"));
    pages->addTab(m_materialsPage, QStringLiteral("Материалы"));
}

QAction *EditorPart::command(const char *name, const QString &text, const QKeySequence &key, int icon,
                             void (EditorPart::*handler)()) {
    auto *action = new QAction(text, m_shell->window());
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    // Active while the grid has the focus.
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setToolTip(
        key.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
    if (icon >= 0)
        action->setIcon(m_view->style()->standardIcon(QStyle::StandardPixmap(icon)));
    m_view->addAction(action);
    connect(action, &QAction::triggered, this, handler);
    return action;
}

void EditorPart::buildCommands() {
    QAction *add =
        command("NAddRow", QStringLiteral("Добавить строку"), QKeySequence(Qt::CTRL | Qt::Key_Return),
                QStyle::SP_FileDialogNewFolder, &EditorPart::NAddRowClick);
    QAction *insert =
        command("NInsertRow", QStringLiteral("Вставить строку выше"), QKeySequence(Qt::Key_Insert),
                QStyle::SP_ArrowRight, &EditorPart::NInsertRowClick);
    QAction *remove =
        command("NDeleteRow", QStringLiteral("Удалить строки"), QKeySequence(Qt::CTRL | Qt::Key_Delete),
                QStyle::SP_TrashIcon, &EditorPart::NDeleteRowClick);
    QAction *up = command("NUpRow", QStringLiteral("Переместить вверх"),
                          QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Up), QStyle::SP_ArrowUp,
                          &EditorPart::NUpRowClick);
    QAction *down = command("NDownRow", QStringLiteral("Переместить вниз"),
                            QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Down), QStyle::SP_ArrowDown,
                            &EditorPart::NDownRowClick);
    QAction *section =
        command("NCreateRazdel", QStringLiteral("Создать раздел"), QKeySequence(Qt::CTRL | Qt::Key_R),
                QStyle::SP_DirIcon, &EditorPart::NCreateRazdelClick);
    QAction *subsection = command("NCreatePodrazdel", QStringLiteral("Создать подраздел"),
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
                                  QStyle::SP_FileDialogDetailedView, &EditorPart::NCreatePodrazdelClick);
    QAction *dropSection = command("NDeleteRazdel", QStringLiteral("Удалить раздел"),
                                   QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
                                   QStyle::SP_DialogDiscardButton, &EditorPart::NDeleteRazdelClick);
    QAction *dropSubsection = command("NDeletePodrazdel", QStringLiteral("Удалить подраздел"), QKeySequence(),
                                      -1, &EditorPart::NDeletePodrazdelClick);
    QAction *copy = command("NCopyRas", QStringLiteral("Копировать расценку"),
                            QKeySequence(Qt::CTRL | Qt::Key_C), -1, &EditorPart::NCopyRasClick);
    QAction *paste = command("NInsertRas", QStringLiteral("Вставить расценку"),
                             QKeySequence(Qt::CTRL | Qt::Key_V), -1, &EditorPart::NInsertRasClick);
    QAction *undo = command("NUndo", QStringLiteral("Отменить"), QKeySequence(Qt::CTRL | Qt::Key_Z),
                            QStyle::SP_ArrowBack, &EditorPart::NUndoClick);
    QAction *redo = command("NRedo", QStringLiteral("Повторить"), QKeySequence(Qt::CTRL | Qt::Key_Y),
                            QStyle::SP_ArrowForward, &EditorPart::NRedoClick);
    redo->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});

    m_popup = new QMenu(m_shell->window());
    m_popup->setObjectName(QStringLiteral("PopupMenuDoc"));
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this,
            [this](const QPoint &pos) { m_popup->popup(m_view->viewport()->mapToGlobal(pos)); });
    new KeepShortcuts(m_view, {copy->shortcut(), paste->shortcut(), undo->shortcut()});
    m_popup->addActions({add, insert, remove, up, down});
    m_popup->addSeparator();
    m_popup->addActions({section, subsection, dropSection, dropSubsection});
    m_popup->addSeparator();
    m_popup->addActions({copy, paste});
    m_popup->addSeparator();
    m_popup->addActions({undo, redo});

    QToolBar *bar = m_shell->toolBar(ShellBar::Document);
    bar->addActions({undo, redo});
    bar->addSeparator();
    bar->addActions({add, insert, remove, up, down});
    bar->addSeparator();
    bar->addActions({section, subsection, dropSection});
    // The menu's undo works from anywhere in the window.
    QMenu *edit = m_shell->menu(ShellMenu::Edit);
    edit->addActions({undo, redo});
    edit->addSeparator();
    edit->addActions({copy, paste});
    edit->addSeparator();
    edit->addActions({add, insert, remove, up, down});
    edit->addSeparator();
    edit->addActions({section, subsection, dropSection, dropSubsection});

    EstimateEditor *editor = &m_doc->editor();
    auto showUndo = [editor, undo, redo] {
        undo->setEnabled(editor->canUndo());
        redo->setEnabled(editor->canRedo());
        const QString u = editor->undoTitle(), r = editor->redoTitle();
        undo->setToolTip(u.isEmpty() ? QStringLiteral("Отменить (Ctrl+Z)")
                                     : QStringLiteral("Отменить: %1 (Ctrl+Z)").arg(u));
        redo->setToolTip(r.isEmpty() ? QStringLiteral("Повторить (Ctrl+Y)")
                                     : QStringLiteral("Повторить: %1 (Ctrl+Y)").arg(r));
    };
    connect(editor, &EstimateEditor::undoStateChanged, this, showUndo);
    showUndo();
}

void EditorPart::start() {
    QFont f = m_view->font();
    f.setPointSize(std::clamp(m_shell->settings().integer(QStringLiteral("FontSizeTable"), 10), 6, 28));
    m_view->setFont(f);
    m_crewView->setFont(f);
}

void EditorPart::collectSettings() {
    m_shell->settings().setInteger(QStringLiteral("FontSizeTable"), m_view->font().pointSize());
}

void EditorPart::documentLoaded() {
    m_currentRow = EstimateGrid::kFixedRows;
}

void EditorPart::showEstimatePage() {
    m_shell->pages()->setCurrentWidget(m_estimatePage);
}

void EditorPart::showMaterialsPage() {
    m_shell->pages()->setCurrentWidget(m_materialsPage);
}

void EditorPart::showTotals() {
    const EstimateEditor &editor = m_doc->editor();
    AmountField::show(m_works, editor.worksTotal());
    AmountField::show(m_materials, editor.materialsTotal());
    AmountField::show(m_grand, editor.grandTotal());
}
