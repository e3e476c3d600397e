#pragma once
// The coefficient panel PanelKoef: the document's coefficient lines, each with its switch, title,
// value, unit, action, what it applies to and its effect in money; lines are added and removed here.

#include <QWidget>

class KoefModel;
class QPushButton;
class QTableView;

class TKoefPanel : public QWidget {
    Q_OBJECT
public:
    explicit TKoefPanel(KoefModel *model, QWidget *parent = nullptr);

    QTableView *GridKoef = nullptr;
    QPushButton *ButtonAddKoef = nullptr;
    QPushButton *ButtonDeleteKoef = nullptr;

    void ButtonAddKoefClick();
    void ButtonDeleteKoefClick();

private:
    KoefModel *m_model;
};
