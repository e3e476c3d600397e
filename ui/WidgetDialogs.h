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

private:
    QPointer<QWidget> m_parent;
};
