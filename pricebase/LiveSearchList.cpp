#include "LiveSearchList.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QApplication>
#include <QChildEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>

LiveSearchList::LiveSearchList(QWidget *parent) : QListView(parent) {
    setObjectName(QStringLiteral("MemoPrice"));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformItemSizes(true); // thousands of names stay instant
    setFocusPolicy(Qt::ClickFocus);
    setFrameShape(QFrame::Box);
    hide();
    connect(this, &QListView::doubleClicked, this,
            [this](const QModelIndex &index) { emit chosen(index.row()); });
}

void LiveSearchList::popUpUnder(const QRect &cell) {
    if (!model() || model()->rowCount() == 0) {
        hide();
        return;
    }
    m_moved = false;
    setCurrentIndex(model()->index(0, 0));
    const int rows = std::min(model()->rowCount(), 12);
    const int rowHeight = std::max(sizeHintForRow(0), fontMetrics().height() + 2);
    const int width = std::max(cell.width(), 420);
    QRect r(cell.left(), cell.bottom() + 1, width, rows * rowHeight + 2 * frameWidth() + 2);
    if (QWidget *p = parentWidget()) {
        // Above the cell when there is no room below it.
        if (r.bottom() > p->height() && cell.top() - r.height() >= 0)
            r.moveBottom(cell.top() - 1);
        r.setWidth(std::min(r.width(), std::max(p->width() - r.left(), cell.width())));
    }
    setGeometry(r);
    show();
    raise();
}

void LiveSearchList::step(int delta) {
    if (!model() || model()->rowCount() == 0)
        return;
    const int row = std::clamp(currentIndex().row() + delta, 0, model()->rowCount() - 1);
    setCurrentIndex(model()->index(row, 0));
    m_moved = true;
}

int LiveSearchList::chosenRow() const {
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void LiveSearchList::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (chosenRow() >= 0)
            emit chosen(chosenRow());
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        m_moved = true;
        QListView::keyPressEvent(event);
        return;
    case Qt::Key_Escape:
        hide();
        emit typingReturned(0, Qt::NoModifier, QString());
        return;
    default:
        emit typingReturned(event->key(), event->modifiers(), event->text());
    }
}

void LiveSearchList::hideEvent(QHideEvent *event) {
    m_moved = false;
    QListView::hideEvent(event);
}

CellEditorWatcher::CellEditorWatcher(QAbstractItemView *view, LiveSearchList *list)
    : QObject(view), m_view(view), m_viewport(view->viewport()), m_list(list) {
    // The in-place editor is a child of the viewport; it is polished when shown, before the key that
    // opened it arrives.
    m_viewport->installEventFilter(this);
}

CellEditorWatcher::~CellEditorWatcher() {
    if (m_viewport)
        m_viewport->removeEventFilter(this);
    if (m_editor)
        m_editor->removeEventFilter(this);
}

void CellEditorWatcher::editorShown(QLineEdit *edit) {
    if (!edit || edit == m_editor)
        return;
    // A new in-place editor of the view's current cell.
    m_editor = edit;
    m_index = m_view->currentIndex();
    edit->installEventFilter(this);
    connect(edit, &QLineEdit::textEdited, this, [this, edit](const QString &text) {
        if (edit == m_editor)
            emit textEdited(m_index, text);
    });
    // The editor may go while the window does: the list is then reached as the widget it still is.
    QPointer<QWidget> list(m_list.data());
    connect(edit, &QObject::destroyed, this, [list] {
        // The editor closed: the list goes with it unless the user went into it.
        if (list && !list->hasFocus())
            list->hide();
    });
}

void CellEditorWatcher::discardEditor() {
    if (!m_editor || !m_view)
        return;
    QLineEdit *edit = m_editor;
    m_editor = nullptr;
    emit m_view->itemDelegate()->closeEditor(edit, QAbstractItemDelegate::NoHint);
}

bool CellEditorWatcher::eventFilter(QObject *watched, QEvent *event) {
    // The event's kind first: while the window goes, its widgets send others, and the view and the list
    // are then half gone and must not be touched.
    const QEvent::Type type = event->type();
    if (type != QEvent::ChildPolished && type != QEvent::KeyPress)
        return false;
    if (type == QEvent::ChildPolished && watched == m_viewport && m_view) {
        editorShown(qobject_cast<QLineEdit *>(static_cast<QChildEvent *>(event)->child()));
        return false;
    }
    if (type == QEvent::KeyPress && watched == m_editor && m_list && m_list->isVisible()) {
        auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Down:
            m_list->step(1);
            return true;
        case Qt::Key_Up:
            m_list->step(-1);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (m_list->userMoved() && m_list->chosenRow() >= 0) {
                emit chooseRequested(m_list->chosenRow());
                return true;
            }
            break;
        case Qt::Key_Escape:
            m_list->hide();
            return true;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

void returnTypingToEditor(LiveSearchList *list, CellEditorWatcher *watcher, QAbstractItemView *view) {
    QObject::connect(list, &LiveSearchList::typingReturned, watcher,
                     [watcher, view](int key, Qt::KeyboardModifiers mods, const QString &text) {
                         QWidget *target = watcher->editor() ? static_cast<QWidget *>(watcher->editor())
                                                             : static_cast<QWidget *>(view);
                         target->setFocus();
                         if (key == 0)
                             return;
                         QKeyEvent press(QEvent::KeyPress, key, mods, text);
                         QApplication::sendEvent(target, &press);
                     });
}
