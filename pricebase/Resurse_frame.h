#pragma once
// TResurse, caption "Ресурсы": the resources of the rate chosen in the rate grid (the materials its
// work consumes, with their norms and prices). LabelRes names the rate; the grid StringGridListMat is
// edited in place; resources are added, deleted, or the whole resources table of the list cleared.

#include <QDialog>

class QLabel;
class QPushButton;
class QTableView;
class ResourceModel;

class TResurse : public QDialog {
    Q_OBJECT
public:
    // refusal: why no resource may be added to the chosen row (empty when it may); rateText names the
    // rate; listCaption names the list whose resources table `model` works on.
    TResurse(ResourceModel *model, const QString &rateText, const QString &refusal,
             const QString &listCaption, QWidget *parent = nullptr);

    void ButtonAddResClick();
    void ButtonDeleteResClick();
    void ButtonClearResClick();

    QLabel *LabelRes = nullptr;
    QTableView *StringGridListMat = nullptr;
    QPushButton *ButtonAddRes = nullptr;
    QPushButton *ButtonDeleteRes = nullptr;
    QPushButton *ButtonClearRes = nullptr;
    QPushButton *ButtonClose = nullptr;

private:
    ResourceModel *m_model;
    QString m_refusal;
    QString m_listCaption;
};
