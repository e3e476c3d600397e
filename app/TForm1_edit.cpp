// The estimate grid's editing commands, totals, coefficients, the crew sheet and the estimate's
// materials: the window side. The arithmetic and the commands live in estimate/EstimateEditor.

#include "TForm1.h"

#include "ui/Dialogs.h"
#include "estimate/BrigPanel_frame.h"
#include "estimate/CrewGrid.h"
#include "estimate/CrewSheet.h"
#include "estimate/DocGridTools.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "estimate/EstimateMaterials.h"
#include "estimate/KoefModel.h"
#include "estimate/KoefPanel_frame.h"
#include "estimate/ProblemsLine_frame.h"
#include "estimate/SmetaMaterials_frame.h"
#include "storage/ModuleSQL.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QToolBar>

void TForm1::setupEditor() {
    m_editor = new EstimateEditor(
        m_gridDoc, m_gridBrig, [this](Db db) { return m_module ? m_module->database(db) : QSqlDatabase(); },
        this);

    // The grid asks before every edit; rows move by dragging their number.
    StringGridDoc->setItemDelegate(new CanEditDelegate(
        [this](int gridRow, int col) { return StringGridDocCanEditCell(gridRow, col); }, StringGridDoc));
    StringGridDoc->setSelectionMode(QAbstractItemView::ContiguousSelection);
    new RowDragMover(StringGridDoc, EstimateCol::Num, [this](int first, int last, int target) {
        if (m_editor->moveRows(first, last, target))
            moveCurrentTo(target);
        else if (!m_editor->lastError().isEmpty())
            dialogs().tell(Captions::warning, m_editor->lastError(), Dialogs::Icon::Warning);
    });

    // Commands: pop-up menu, tool bar, shortcuts (active while the grid has the focus).
    auto make = [this](QAction *&action, const char *name, const QString &text, const QKeySequence &key,
                       QStyle::StandardPixmap icon, void (TForm1::*handler)()) {
        action = new QAction(text, this);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        action->setToolTip(key.isEmpty()
                               ? text
                               : QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
        if (icon != QStyle::SP_CustomBase)
            action->setIcon(style()->standardIcon(icon));
        StringGridDoc->addAction(action);
        connect(action, &QAction::triggered, this, handler);
    };
    make(NAddRow, "NAddRow", QStringLiteral("Добавить строку"), QKeySequence(Qt::CTRL | Qt::Key_Return),
         QStyle::SP_FileDialogNewFolder, &TForm1::NAddRowClick);
    make(NInsertRow, "NInsertRow", QStringLiteral("Вставить строку выше"), QKeySequence(Qt::Key_Insert),
         QStyle::SP_ArrowRight, &TForm1::NInsertRowClick);
    make(NDeleteRow, "NDeleteRow", QStringLiteral("Удалить строки"), QKeySequence(Qt::CTRL | Qt::Key_Delete),
         QStyle::SP_TrashIcon, &TForm1::NDeleteRowClick);
    make(NUpRow, "NUpRow", QStringLiteral("Переместить вверх"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Up), QStyle::SP_ArrowUp, &TForm1::NUpRowClick);
    make(NDownRow, "NDownRow", QStringLiteral("Переместить вниз"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Down), QStyle::SP_ArrowDown, &TForm1::NDownRowClick);
    make(NCreateRazdel, "NCreateRazdel", QStringLiteral("Создать раздел"), QKeySequence(Qt::CTRL | Qt::Key_R),
         QStyle::SP_DirIcon, &TForm1::NCreateRazdelClick);
    make(NCreatePodrazdel, "NCreatePodrazdel", QStringLiteral("Создать подраздел"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R), QStyle::SP_FileDialogDetailedView,
         &TForm1::NCreatePodrazdelClick);
    make(NDeleteRazdel, "NDeleteRazdel", QStringLiteral("Удалить раздел"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete), QStyle::SP_DialogDiscardButton,
         &TForm1::NDeleteRazdelClick);
    make(NDeletePodrazdel, "NDeletePodrazdel", QStringLiteral("Удалить подраздел"), QKeySequence(),
         QStyle::SP_CustomBase, &TForm1::NDeletePodrazdelClick);
    make(NCopyRas, "NCopyRas", QStringLiteral("Копировать расценку"), QKeySequence(Qt::CTRL | Qt::Key_C),
         QStyle::SP_CustomBase, &TForm1::NCopyRasClick);
    make(NInsertRas, "NInsertRas", QStringLiteral("Вставить расценку"), QKeySequence(Qt::CTRL | Qt::Key_V),
         QStyle::SP_CustomBase, &TForm1::NInsertRasClick);
    make(NUndo, "NUndo", QStringLiteral("Отменить"), QKeySequence(Qt::CTRL | Qt::Key_Z), QStyle::SP_ArrowBack,
         &TForm1::NUndoClick);
    make(NRedo, "NRedo", QStringLiteral("Повторить"), QKeySequence(Qt::CTRL | Qt::Key_Y),
         QStyle::SP_ArrowForward, &TForm1::NRedoClick);
    NRedo->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});

    if (!PopupMenuDoc) {
        PopupMenuDoc = new QMenu(this);
        PopupMenuDoc->setObjectName(QStringLiteral("PopupMenuDoc"));
        StringGridDoc->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(StringGridDoc, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
            PopupMenuDoc->popup(StringGridDoc->viewport()->mapToGlobal(pos));
        });
    }
    new KeepShortcuts(StringGridDoc, {NCopyRas->shortcut(), NInsertRas->shortcut(), NUndo->shortcut()});
    PopupMenuDoc->addActions({NAddRow, NInsertRow, NDeleteRow, NUpRow, NDownRow});
    PopupMenuDoc->addSeparator();
    PopupMenuDoc->addActions({NCreateRazdel, NCreatePodrazdel, NDeleteRazdel, NDeletePodrazdel});
    PopupMenuDoc->addSeparator();
    PopupMenuDoc->addActions({NCopyRas, NInsertRas});
    PopupMenuDoc->addSeparator();
    PopupMenuDoc->addActions({NUndo, NRedo});
    ToolBarDoc->addActions({NUndo, NRedo});
    ToolBarDoc->addSeparator();
    ToolBarDoc->addActions({NAddRow, NInsertRow, NDeleteRow, NUpRow, NDownRow});
    ToolBarDoc->addSeparator();
    ToolBarDoc->addActions({NCreateRazdel, NCreatePodrazdel, NDeleteRazdel});
    // The menu's undo works from anywhere in the window.
    MenuEdit->addActions({NUndo, NRedo});
    MenuEdit->addSeparator();
    MenuEdit->addActions({NCopyRas, NInsertRas});
    MenuEdit->addSeparator();
    MenuEdit->addActions({NAddRow, NInsertRow, NDeleteRow, NUpRow, NDownRow});
    MenuEdit->addSeparator();
    MenuEdit->addActions({NCreateRazdel, NCreatePodrazdel, NDeleteRazdel, NDeletePodrazdel});
    auto showUndo = [this] {
        NUndo->setEnabled(m_editor->canUndo());
        NRedo->setEnabled(m_editor->canRedo());
        const QString u = m_editor->undoTitle(), r = m_editor->redoTitle();
        NUndo->setToolTip(u.isEmpty() ? QStringLiteral("Отменить (Ctrl+Z)")
                                      : QStringLiteral("Отменить: %1 (Ctrl+Z)").arg(u));
        NRedo->setToolTip(r.isEmpty() ? QStringLiteral("Повторить (Ctrl+Y)")
                                      : QStringLiteral("Повторить: %1 (Ctrl+Y)").arg(r));
    };
    connect(m_editor, &EstimateEditor::undoStateChanged, this, showUndo);
    showUndo();

    // How many cells need fixing, right under the grid.
    if (auto *docLayout = qobject_cast<QBoxLayout *>(TabSheet1->layout()))
        docLayout->insertWidget(docLayout->indexOf(StringGridDoc) + 1,
                                new TProblemsLine(m_editor, TabSheet1));

    // The coefficient panel under the grid.
    auto *koef = new TKoefPanel(m_editor->koef(), PanelKoef);
    PanelKoef->layout()->addWidget(koef);

    // The crew sheet's bar: coefficient, mode, totals.
    auto *brig = new TBrigPanel(m_editor->crew(), TabSheetBrig);
    TabSheetBrig->layout()->addWidget(brig);
    EditKoefBrig = brig->EditKoefBrig;
    RadioButtonKoefBrig = brig->RadioButtonKoefBrig;
    LabelBrigTotals = brig->LabelBrigTotals;
    connect(m_editor->crew(), &CrewSheet::settingsChanged, this, [this] {
        m_settings.set(QStringLiteral("EditKoefBrig"), m_editor->crew()->globalKoef());
        m_settings.setFlag(QStringLiteral("RadioButtonKoefBrig"), m_editor->crew()->perRow());
    });
    connect(brig, &TBrigPanel::changedByUser, this, &TForm1::EnableSave);
    StringGridBrig->setColumnWidth(CrewCol::Num, 40);
    StringGridBrig->setColumnWidth(CrewCol::Ras, 65);
    for (int c : {int(CrewCol::Unit), int(CrewCol::Qty), int(CrewCol::Koef)})
        StringGridBrig->setColumnWidth(c, 60);
    for (int c :
         {int(CrewCol::Price), int(CrewCol::Sum), int(CrewCol::CustomerPrice), int(CrewCol::CustomerSum)})
        StringGridBrig->setColumnWidth(c, 95);

    // The estimate's materials on a tab of their own.
    auto *materials = new TSmetaMaterials(m_editor->materials());
    TabSheetMat = materials;
    TabSheetMat->setObjectName(QStringLiteral("TabSheetMat"));
    StringGridMat = materials->StringGridMat;
    PageControlDoc->insertTab(PageControlDoc->indexOf(TabSheetBrig) + 1, TabSheetMat,
                              QStringLiteral("Материалы"));
    connect(m_editor->materials(), &QAbstractItemModel::dataChanged, this, &TForm1::EnableSave);
    connect(m_editor->materials(), &QAbstractItemModel::rowsInserted, this, &TForm1::EnableSave);
    connect(m_editor->materials(), &QAbstractItemModel::rowsRemoved, this, &TForm1::EnableSave);
    connect(m_editor->koef(), &KoefModel::linesChanged, this, &TForm1::EnableSave);

    connect(m_editor, &EstimateEditor::totalsChanged, this, &TForm1::showEditorTotals);
    connect(this, &TForm1::documentLoaded, this, &TForm1::resetEditor);
    connect(StringGridDoc->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (current.isValid())
                    setCurrentRow(EstimateGrid::toGridRow(current.row()));
            });
    showEditorTotals();
}

void TForm1::resetEditor() {
    // Reloading the document's parts is no edit of it.
    const bool changed = isChanged();
    m_editor->setCrewDefaults(m_settings.text(QStringLiteral("EditKoefBrig")),
                              m_settings.flag(QStringLiteral("RadioButtonKoefBrig")));
    m_editor->reset();
    if (!changed)
        DisableSave();
}

void TForm1::showEditorTotals() {
    AmountField::show(Edit6, m_editor->worksTotal());
    AmountField::show(Edit4, m_editor->materialsTotal());
    AmountField::show(Edit5, m_editor->grandTotal());
}

bool TForm1::StringGridDocCanEditCell(int gridRow, int col) const {
    return m_editor->canEditCell(gridRow, col);
}

QPair<int, int> TForm1::selectedDocRows() const {
    int first = -1, last = -1;
    for (const QModelIndex &i : StringGridDoc->selectionModel()->selectedIndexes()) {
        const int r = EstimateGrid::toGridRow(i.row());
        first = first < 0 ? r : std::min(first, r);
        last = std::max(last, r);
    }
    if (first < 0) {
        const QModelIndex cur = StringGridDoc->currentIndex();
        first = last = cur.isValid() ? EstimateGrid::toGridRow(cur.row()) : m_currentRow;
    }
    return {first, last};
}

void TForm1::moveCurrentTo(int gridRow, int col) {
    if (!m_gridDoc->isDataRow(gridRow))
        return;
    const QModelIndex cur = StringGridDoc->currentIndex();
    const int c = col >= 0 ? col : (cur.isValid() ? cur.column() : EstimateCol::Name);
    StringGridDoc->setCurrentIndex(m_gridDoc->index(EstimateGrid::toModelRow(gridRow), c));
    setCurrentRow(gridRow);
}

namespace {

void refused(EstimateEditor *editor) {
    if (!editor->lastError().isEmpty())
        dialogs().tell(Captions::warning, editor->lastError(), Dialogs::Icon::Warning);
}

} // namespace

void TForm1::NAddRowClick() {
    moveCurrentTo(m_editor->appendRow(), EstimateCol::Name);
}

void TForm1::NInsertRowClick() {
    moveCurrentTo(m_editor->insertRowAbove(selectedDocRows().first), EstimateCol::Name);
}

void TForm1::NDeleteRowClick() {
    const auto [first, last] = selectedDocRows();
    const QString text = first == last
                             ? QStringLiteral("Удалить строку %1?").arg(first - 1)
                             : QStringLiteral("Удалить выделенные строки (%1)?").arg(last - first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_editor->deleteRows(first, last))
        return refused(m_editor);
    moveCurrentTo(std::min(first, m_gridDoc->gridRowCount() - 1));
}

void TForm1::NUpRowClick() {
    const auto [first, last] = selectedDocRows();
    if (!m_editor->moveRowsUp(first, last))
        return refused(m_editor);
    moveCurrentTo(first - 1);
    StringGridDoc->selectionModel()->select(
        QItemSelection(m_gridDoc->index(EstimateGrid::toModelRow(first - 1), 0),
                       m_gridDoc->index(EstimateGrid::toModelRow(last - 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void TForm1::NDownRowClick() {
    const auto [first, last] = selectedDocRows();
    if (!m_editor->moveRowsDown(first, last))
        return refused(m_editor);
    moveCurrentTo(first + 1);
    StringGridDoc->selectionModel()->select(
        QItemSelection(m_gridDoc->index(EstimateGrid::toModelRow(first + 1), 0),
                       m_gridDoc->index(EstimateGrid::toModelRow(last + 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void TForm1::NCreateRazdelClick() {
    const auto [first, last] = selectedDocRows();
    QString name;
    if (!dialogs().input(QStringLiteral("Создать раздел"), QStringLiteral("Название раздела:"), &name))
        return;
    if (!m_editor->createSection(first, last, name))
        return refused(m_editor);
    // The cursor goes to the section's first row.
    const auto section = m_editor->sectionAround(first);
    moveCurrentTo(section.first >= 0 ? section.first + 1 : first, EstimateCol::Name);
}

void TForm1::NCreatePodrazdelClick() {
    const auto [first, last] = selectedDocRows();
    QString name;
    if (!dialogs().input(QStringLiteral("Создать подраздел"), QStringLiteral("Название подраздела:"), &name))
        return;
    if (!m_editor->createSubsection(first, last, name))
        return refused(m_editor);
    const auto sub = m_editor->subsectionAround(first);
    moveCurrentTo(sub.first >= 0 ? sub.first + 1 : first, EstimateCol::Name);
}

void TForm1::NDeleteRazdelClick() {
    const int row = selectedDocRows().first;
    const auto section = m_editor->sectionAround(row);
    if (section.first < 0) {
        dialogs().tell(Captions::warning, QStringLiteral("Поставьте курсор в раздел, который нужно удалить."),
                       Dialogs::Icon::Warning);
        return;
    }
    const QString text = QStringLiteral("Удалить «%1» со всеми строками (%2)?")
                             .arg(m_gridDoc->cell(section.first, EstimateCol::Name).trimmed())
                             .arg(section.second - section.first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_editor->deleteSection(row))
        return refused(m_editor);
    moveCurrentTo(std::min(section.first, m_gridDoc->gridRowCount() - 1));
}

void TForm1::NDeletePodrazdelClick() {
    const int row = selectedDocRows().first;
    const auto sub = m_editor->subsectionAround(row);
    if (sub.first < 0) {
        dialogs().tell(Captions::warning,
                       QStringLiteral("Поставьте курсор в подраздел, который нужно удалить."),
                       Dialogs::Icon::Warning);
        return;
    }
    const QString text = QStringLiteral("Удалить «%1» со всеми строками (%2)?")
                             .arg(m_gridDoc->cell(sub.first, EstimateCol::Name).trimmed())
                             .arg(sub.second - sub.first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_editor->deleteSubsection(row))
        return refused(m_editor);
    moveCurrentTo(std::min(sub.first, m_gridDoc->gridRowCount() - 1));
}

void TForm1::NCopyRasClick() {
    const auto [first, last] = selectedDocRows();
    if (m_editor->copyRows(first, last) == 0)
        refused(m_editor);
}

void TForm1::NInsertRasClick() {
    const int below = selectedDocRows().second;
    const int n = m_editor->pasteRows(below);
    if (n == 0)
        return refused(m_editor);
    // The pasted rows stand right below, unless the row was the closing "Итого".
    const int first = m_editor->isGrandTotalRow(below) ? below : below + 1;
    moveCurrentTo(first);
    StringGridDoc->selectionModel()->select(
        QItemSelection(m_gridDoc->index(EstimateGrid::toModelRow(first), 0),
                       m_gridDoc->index(EstimateGrid::toModelRow(first + n - 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void TForm1::NUndoClick() {
    if (!m_editor->undo())
        refused(m_editor);
}

void TForm1::NRedoClick() {
    if (!m_editor->redo())
        refused(m_editor);
}
