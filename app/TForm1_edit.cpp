// The estimate grid's editing commands, totals, coefficients, the crew sheet and the estimate's
// materials: the window side. The arithmetic and the commands live in estimate/EstimateEditor.

#include "TForm1.h"

#include "Dialogs.h"
#include "estimate/CrewGrid.h"
#include "estimate/CrewSheet.h"
#include "estimate/EstimateEditor.h"
#include "estimate/EstimateGrid.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QTableView>

void TForm1::setupEditor() {
    m_editor = new EstimateEditor(
        m_gridDoc, m_gridBrig, [this](Db db) { return m_module ? m_module->database(db) : QSqlDatabase(); },
        this);
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
    m_editor->reset();
    if (!changed)
        DisableSave();
}

void TForm1::showEditorTotals() {
    Edit6->setText(TextValues::formatMoney(m_editor->worksTotal()));
    Edit4->setText(TextValues::formatMoney(m_editor->materialsTotal()));
    Edit5->setText(TextValues::formatMoney(m_editor->grandTotal()));
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
