// The estimate grid's editing commands: the window side. The commands themselves, with their
// refusals and the undo journal, are the document's EstimateEditor.

#include "EditorPart.h"

#include "EstimateDocument.h"
#include "EstimateEditor.h"
#include "EstimateGrid.h"
#include "ui/Dialogs.h"

#include <QItemSelectionModel>
#include <QTableView>

bool EditorPart::StringGridDocCanEditCell(int gridRow, int col) const {
    return m_doc->editor().canEditCell(gridRow, col);
}

QPair<int, int> EditorPart::selectedDocRows() const {
    int first = -1, last = -1;
    for (const QModelIndex &i : m_view->selectionModel()->selectedIndexes()) {
        const int r = EstimateGrid::toGridRow(i.row());
        first = first < 0 ? r : std::min(first, r);
        last = std::max(last, r);
    }
    if (first < 0) {
        const QModelIndex cur = m_view->currentIndex();
        first = last = cur.isValid() ? EstimateGrid::toGridRow(cur.row()) : m_currentRow;
    }
    return {first, last};
}

void EditorPart::moveCurrentTo(int gridRow, int col) {
    if (!m_doc->grid().isDataRow(gridRow))
        return;
    const QModelIndex cur = m_view->currentIndex();
    const int c = col >= 0 ? col : (cur.isValid() ? cur.column() : EstimateCol::Name);
    m_view->setCurrentIndex(m_doc->grid().index(EstimateGrid::toModelRow(gridRow), c));
    setCurrentRow(gridRow);
}

namespace {

// A row as the user sees it: its number in the "№" column, else (section, total or empty row) its
// name, else its place among the rows.
QString shownRow(const EstimateGrid &grid, int gridRow) {
    const QString number = grid.cell(gridRow, EstimateCol::Num).trimmed();
    if (!number.isEmpty())
        return QStringLiteral("№ ") + number;
    const QString name = grid.cell(gridRow, EstimateCol::Name).trimmed();
    if (!name.isEmpty())
        return QStringLiteral("«%1»").arg(name);
    return QStringLiteral("%1 (пустую)").arg(gridRow - EstimateGrid::kFixedRows + 1);
}

void refused(const EstimateEditor &editor) {
    if (!editor.lastError().isEmpty())
        dialogs().tell(Captions::warning, editor.lastError(), Dialogs::Icon::Warning);
}

} // namespace

void EditorPart::NAddRowClick() {
    moveCurrentTo(m_doc->editor().appendRow(), EstimateCol::Name);
}

void EditorPart::NInsertRowClick() {
    moveCurrentTo(m_doc->editor().insertRowAbove(selectedDocRows().first), EstimateCol::Name);
}

void EditorPart::NDeleteRowClick() {
    const auto [first, last] = selectedDocRows();
    const QString text = first == last
                             ? QStringLiteral("Удалить строку %1?").arg(shownRow(m_doc->grid(), first))
                             : QStringLiteral("Удалить выделенные строки (%1)?").arg(last - first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_doc->editor().deleteRows(first, last))
        return refused(m_doc->editor());
    moveCurrentTo(std::min(first, m_doc->grid().gridRowCount() - 1));
}

void EditorPart::NUpRowClick() {
    const auto [first, last] = selectedDocRows();
    if (!m_doc->editor().moveRowsUp(first, last))
        return refused(m_doc->editor());
    moveCurrentTo(first - 1);
    m_view->selectionModel()->select(
        QItemSelection(m_doc->grid().index(EstimateGrid::toModelRow(first - 1), 0),
                       m_doc->grid().index(EstimateGrid::toModelRow(last - 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void EditorPart::NDownRowClick() {
    const auto [first, last] = selectedDocRows();
    if (!m_doc->editor().moveRowsDown(first, last))
        return refused(m_doc->editor());
    moveCurrentTo(first + 1);
    m_view->selectionModel()->select(
        QItemSelection(m_doc->grid().index(EstimateGrid::toModelRow(first + 1), 0),
                       m_doc->grid().index(EstimateGrid::toModelRow(last + 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void EditorPart::NCreateRazdelClick() {
    const auto [first, last] = selectedDocRows();
    QString name;
    if (!dialogs().input(QStringLiteral("Создать раздел"), QStringLiteral("Название раздела:"), &name))
        return;
    if (!m_doc->editor().createSection(first, last, name))
        return refused(m_doc->editor());
    // The cursor goes to the section's first row.
    const auto section = m_doc->editor().sectionAround(first);
    moveCurrentTo(section.first >= 0 ? section.first + 1 : first, EstimateCol::Name);
}

void EditorPart::NCreatePodrazdelClick() {
    const auto [first, last] = selectedDocRows();
    QString name;
    if (!dialogs().input(QStringLiteral("Создать подраздел"), QStringLiteral("Название подраздела:"), &name))
        return;
    if (!m_doc->editor().createSubsection(first, last, name))
        return refused(m_doc->editor());
    const auto sub = m_doc->editor().subsectionAround(first);
    moveCurrentTo(sub.first >= 0 ? sub.first + 1 : first, EstimateCol::Name);
}

void EditorPart::NDeleteRazdelClick() {
    const int row = selectedDocRows().first;
    const auto section = m_doc->editor().sectionAround(row);
    if (section.first < 0) {
        dialogs().tell(Captions::warning, QStringLiteral("Поставьте курсор в раздел, который нужно удалить."),
                       Dialogs::Icon::Warning);
        return;
    }
    const QString text = QStringLiteral("Удалить «%1» со всеми строками (%2)?")
                             .arg(m_doc->grid().cell(section.first, EstimateCol::Name).trimmed())
                             .arg(section.second - section.first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_doc->editor().deleteSection(row))
        return refused(m_doc->editor());
    moveCurrentTo(std::min(section.first, m_doc->grid().gridRowCount() - 1));
}

void EditorPart::NDeletePodrazdelClick() {
    const int row = selectedDocRows().first;
    const auto sub = m_doc->editor().subsectionAround(row);
    if (sub.first < 0) {
        dialogs().tell(Captions::warning,
                       QStringLiteral("Поставьте курсор в подраздел, который нужно удалить."),
                       Dialogs::Icon::Warning);
        return;
    }
    const QString text = QStringLiteral("Удалить «%1» со всеми строками (%2)?")
                             .arg(m_doc->grid().cell(sub.first, EstimateCol::Name).trimmed())
                             .arg(sub.second - sub.first + 1);
    if (dialogs().ask(Captions::deletion, text) != Dialogs::Answer::Yes)
        return;
    if (!m_doc->editor().deleteSubsection(row))
        return refused(m_doc->editor());
    moveCurrentTo(std::min(sub.first, m_doc->grid().gridRowCount() - 1));
}

void EditorPart::NCopyRasClick() {
    const auto [first, last] = selectedDocRows();
    if (m_doc->editor().copyRows(first, last) == 0)
        refused(m_doc->editor());
}

void EditorPart::NInsertRasClick() {
    const int below = selectedDocRows().second;
    const int n = m_doc->editor().pasteRows(below);
    if (n == 0)
        return refused(m_doc->editor());
    // The pasted rows stand right below, unless the row was the closing "Итого".
    const int first = m_doc->editor().isGrandTotalRow(below) ? below : below + 1;
    moveCurrentTo(first);
    m_view->selectionModel()->select(
        QItemSelection(m_doc->grid().index(EstimateGrid::toModelRow(first), 0),
                       m_doc->grid().index(EstimateGrid::toModelRow(first + n - 1), EstimateCol::Count - 1)),
        QItemSelectionModel::ClearAndSelect);
}

void EditorPart::NUndoClick() {
    if (!m_doc->editor().undo())
        refused(m_doc->editor());
}

void EditorPart::NRedoClick() {
    if (!m_doc->editor().redo())
        refused(m_doc->editor());
}
