#pragma once
// MemoPrice, the drop-down list of the live search over the estimate grid, and the watcher of the
// estimate grid's cell editor that feeds it while the user types.

#include <QLineEdit>
#include <QListView>
#include <QModelIndex>
#include <QObject>
#include <QPointer>

class QAbstractItemView;

class LiveSearchList : public QListView {
    Q_OBJECT
public:
    explicit LiveSearchList(QWidget *parent = nullptr);

    // Shows the list under `cell` (a rectangle in the parent's coordinates) with its first entry
    // selected; hides it when the model is empty.
    void popUpUnder(const QRect &cell);
    // Up/Down typed in the cell editor move the selection; true once the user moved into the list.
    void step(int delta);
    bool userMoved() const { return m_moved; }
    int chosenRow() const;

signals:
    // Enter or a double-click on an entry.
    void chosen(int row);
    // Any other key: the typing goes back to the estimate grid.
    void typingReturned(int key, Qt::KeyboardModifiers modifiers, const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    bool m_moved = false;
};

// Follows the in-place editor of an item view: its text changes and the keys that steer the list.
class CellEditorWatcher : public QObject {
    Q_OBJECT
public:
    CellEditorWatcher(QAbstractItemView *view, LiveSearchList *list);
    ~CellEditorWatcher() override;
    QLineEdit *editor() const { return m_editor; }
    QModelIndex editedIndex() const { return m_index; }
    // Closes the editor without writing its text into the cell.
    void discardEditor();

signals:
    void textEdited(const QModelIndex &index, const QString &text);
    // Enter in the editor after the user moved into the list.
    void chooseRequested(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void editorShown(QLineEdit *edit);

    // The view dies before this watcher (its child): while its widgets go, events still reach the
    // filter, which must then touch neither the view nor the list.
    QPointer<QAbstractItemView> m_view;
    QPointer<QWidget> m_viewport;
    QPointer<LiveSearchList> m_list;
    QPointer<QLineEdit> m_editor;
    QModelIndex m_index;
};

// Keys typed into the list that are not its own (typingReturned) go back to the cell editor, or to the
// view when no editor is open.
void returnTypingToEditor(LiveSearchList *list, CellEditorWatcher *watcher, QAbstractItemView *view);
