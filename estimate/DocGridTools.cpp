#include "DocGridTools.h"

#include "EstimateGrid.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTableView>

QWidget *CanEditDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                       const QModelIndex &index) const {
    if (m_rule && !m_rule(EstimateGrid::toGridRow(index.row()), index.column()))
        return nullptr;
    return ShortTextDelegate::createEditor(parent, option, index);
}

KeepShortcuts::KeepShortcuts(QWidget *view, QList<QKeySequence> keys)
    : QObject(view), m_keys(std::move(keys)) {
    view->installEventFilter(this);
}

bool KeepShortcuts::eventFilter(QObject *, QEvent *event) {
    if (event->type() != QEvent::ShortcutOverride)
        return false;
    auto *e = static_cast<QKeyEvent *>(event);
    const QKeySequence pressed(e->keyCombination());
    for (const QKeySequence &k : m_keys) {
        if (k == pressed) {
            e->ignore(); // not the view's: the shortcut goes to the window's command
            return true;
        }
    }
    return false;
}

RowDragMover::RowDragMover(QTableView *view, int handleColumn, Move move)
    : QObject(view), m_view(view), m_column(handleColumn), m_move(std::move(move)) {
    view->viewport()->installEventFilter(this);
}

bool RowDragMover::eventFilter(QObject *, QEvent *event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *e = static_cast<QMouseEvent *>(event);
        const QModelIndex at = m_view->indexAt(e->position().toPoint());
        if (e->button() != Qt::LeftButton || !at.isValid() || at.column() != m_column)
            return false;
        // The selected block when the press is inside it, else the pressed row.
        m_first = m_last = at.row();
        const QModelIndexList sel = m_view->selectionModel()->selectedIndexes();
        int lo = -1, hi = -1;
        for (const QModelIndex &i : sel) {
            lo = lo < 0 ? i.row() : std::min(lo, i.row());
            hi = std::max(hi, i.row());
        }
        if (lo >= 0 && at.row() >= lo && at.row() <= hi) {
            m_first = lo;
            m_last = hi;
        }
        m_pressRow = at.row();
        m_dragging = false;
        return false;
    }
    case QEvent::MouseMove: {
        auto *e = static_cast<QMouseEvent *>(event);
        if (m_pressRow < 0 || !(e->buttons() & Qt::LeftButton))
            return false;
        const QModelIndex at = m_view->indexAt(e->position().toPoint());
        if (!m_dragging && at.isValid() && at.row() != m_pressRow) {
            m_dragging = true;
            m_view->viewport()->setCursor(Qt::ClosedHandCursor);
        }
        return m_dragging; // no rubber-band selection while dragging rows
    }
    case QEvent::MouseButtonRelease: {
        auto *e = static_cast<QMouseEvent *>(event);
        const bool dragging = m_dragging;
        const int pressRow = m_pressRow;
        m_pressRow = -1;
        m_dragging = false;
        m_view->viewport()->unsetCursor();
        if (!dragging || pressRow < 0)
            return false;
        const QModelIndex at = m_view->indexAt(e->position().toPoint());
        const int rows = m_view->model()->rowCount();
        const int n = m_last - m_first + 1;
        // The block moves by as many rows as the mouse did.
        int target = m_first + ((at.isValid() ? at.row() : rows - 1) - pressRow);
        target = std::clamp(target, 0, rows - n);
        if (target != m_first)
            m_move(EstimateGrid::toGridRow(m_first), EstimateGrid::toGridRow(m_last),
                   EstimateGrid::toGridRow(target));
        return true;
    }
    default:
        return false;
    }
}

FitColumn::FitColumn(QTableView *view, int column, int minimum)
    : QObject(view), m_view(view), m_viewport(view->viewport()), m_column(column), m_minimum(minimum) {
    m_viewport->installEventFilter(this);
}

void FitColumn::fit() {
    const QHeaderView *header = m_view->horizontalHeader();
    int others = 0;
    for (int c = 0; c < header->count(); ++c)
        if (c != m_column && !header->isSectionHidden(c))
            others += header->sectionSize(c);
    m_view->setColumnWidth(m_column, std::max(m_minimum, m_view->viewport()->width() - others));
}

bool FitColumn::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::Resize && watched == m_viewport)
        fit();
    return QObject::eventFilter(watched, event);
}
