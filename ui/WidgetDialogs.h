#pragma once
// Dialogs shown with Qt's message boxes, input boxes and file dialogs.

#include "Dialogs.h"

#include <QPointer>
#include <QWidget>

class WidgetDialogs : public Dialogs {
public:
    Answer ask(const QString &caption, const QString &text, Buttons buttons, Icon icon) override;
    void tell(const QString &caption, const QString &text, Icon icon) override;
    bool input(const QString &caption, const QString &prompt, QString *value) override;
    QString openFile(const QString &caption, const QString &folder, const QString &filter) override;
    QString saveFile(const QString &caption, const QString &folder, const QString &fileName,
                     const QString &filter, const QString &defaultSuffix) override;
    QString chooseFolder(const QString &caption, const QString &folder) override;
    void setParentWidget(QWidget *parent) override { m_parent = parent; }

    // The window a box belongs to: the window the user works in (a secondary window, a modal dialog),
    // else the main window. A box parented to it stays above it, and when it closes the user is back
    // in that window instead of the main window rising over it.
    QWidget *owner() const;

private:
    QPointer<QWidget> m_parent;
};
