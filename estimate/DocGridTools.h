#pragma once
// Helpers of the estimate grid's view: the editing rights asked before every edit
// (StringGridDocCanEditCell), moving rows by dragging them by the "№" column, and the name column
// taking the width the others leave.

#include "ui/ShortTextDelegate.h"

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <functional>

class QTableView;

// Creates no editor where the rule says the cell is not to be edited (and shows long texts short).
class CanEditDelegate : public ShortTextDelegate {
    Q_OBJECT
public:
    using Rule = std::function<bool(int gridRow, int col)>;
    CanEditDelegate(Rule rule, QObject *parent = nullptr)
        : ShortTextDelegate(parent), m_rule(std::move(rule)) {}
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;

private:
    Rule m_rule;
};

// The view takes some keys for itself (Ctrl+C copies the cell's text): these keys are left to the
// window's commands instead, while the grid itself (not a cell's editor) has the focus.
class KeepShortcuts : public QObject {
    Q_OBJECT
public:
    KeepShortcuts(QWidget *view, QList<QKeySequence> keys);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QList<QKeySequence> m_keys;
};

// Press on the "№" cell of a row (or of a selected block) and release on another row: the block is
// moved there. The view shows a closed-hand cursor while dragging.
class RowDragMover : public QObject {
    Q_OBJECT
public:
    // move(first, last, target): grid rows; the block is to start at target.
    using Move = std::function<void(int first, int last, int target)>;
    RowDragMover(QTableView *view, int handleColumn, Move move);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableView *m_view;
    int m_column;
    Move m_move;
    int m_first = -1;
    int m_last = -1;
    int m_pressRow = -1;
    bool m_dragging = false;
};

// The column takes the width the view's other columns leave (never less than minimum), whenever the
// view is resized: the whole row fits a narrow window without scrolling sideways. The user may still
// widen or narrow the column by hand; the next resize of the view fits it again.
class FitColumn : public QObject {
    Q_OBJECT
public:
    FitColumn(QTableView *view, int column, int minimum);
    void fit();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableView *m_view;
    // Kept apart from the view: while the view is being destroyed its viewport still sends events, and
    // the view can no longer be asked for it.
    QWidget *m_viewport;
    int m_column;
    int m_minimum;
};
