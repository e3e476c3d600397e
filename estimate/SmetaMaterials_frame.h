#pragma once
// The estimate's materials on their own tab: the grid StringGridMat over the table `materials` of the
// working database, with adding and removing rows and the total of the materials.

#include <QWidget>

class EstimateMaterials;
class QLabel;
class QMenu;
class QPushButton;
class QTableView;

class TSmetaMaterials : public QWidget {
    Q_OBJECT
public:
    explicit TSmetaMaterials(EstimateMaterials *model, QWidget *parent = nullptr);

    QTableView *StringGridMat = nullptr;
    QPushButton *ButtonAddMat = nullptr;
    QPushButton *ButtonDeleteMat = nullptr;
    QLabel *LabelMatTotal = nullptr;
    // The grid's pop-up menu (other parts add their options to it).
    QMenu *PopupMenuMat = nullptr;

    void ButtonAddMatClick();
    void ButtonDeleteMatClick();

private:
    void showTotal();
    EstimateMaterials *m_model;
};
