#pragma once
// The update dialog "FFormUpdate" ("Обновление") with its frame TFormUpdate: a picture, the text
// "Доступно обновление программы", the versions, and the buttons "Загрузить" and "Отмена". The
// dialog only reports the choice; the server part starts the updater.

#include <QDialog>
#include <QWidget>

class QPushButton;

class TFormUpdate : public QWidget {
    Q_OBJECT
public:
    TFormUpdate(const QString &newVersion, const QString &ownVersion, QWidget *parent = nullptr);
    QPushButton *loadButton() const { return m_load; }
    QPushButton *cancelButton() const { return m_cancel; }

private:
    QPushButton *m_load;
    QPushButton *m_cancel;
};

class FFormUpdate : public QDialog {
    Q_OBJECT
public:
    FFormUpdate(const QString &newVersion, const QString &ownVersion, QWidget *parent = nullptr);
    TFormUpdate *frame() const { return m_frame; }

signals:
    // "Загрузить" was pressed (the dialog closes).
    void loadRequested();

private:
    TFormUpdate *m_frame;
};
