// The plug-in's one export: ShowForm(parent window id) shows the window "Площади фигур" over the
// program's window.

#include "SquareShapes_frame.h"

#include <QApplication>
#include <QWidget>

extern "C" Q_DECL_EXPORT void ShowForm(quintptr parentWindow) {
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return; // only a program with windows can show one
    QWidget *parent = QWidget::find(static_cast<WId>(parentWindow));
    auto *window = new TSquareShapes(parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
    window->raise();
    window->activateWindow();
}
