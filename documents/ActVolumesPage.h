#pragma once
// The page "Объёмы акта" of the act data window: the estimate's rows with what the acts made closed
// of them and the quantities of the next act (ActVolumesModel), the buttons that fill that column, and
// the acts made by volumes with "Удалить последний акт".

#include "ActVolumesModel.h"

#include <QMap>
#include <QWidget>

class EstimateDocument;
class QLabel;
class QPushButton;
class QStandardItemModel;
class QTableView;

class ActVolumesPage : public QWidget {
    Q_OBJECT
public:
    explicit ActVolumesPage(EstimateDocument &document, QWidget *parent = nullptr);

    // The quantities typed for the next act as the document keeps them, over the estimate's rows.
    void enter();
    // The estimate's rows again (they may have changed), keeping what was typed here.
    void refresh();
    // Writes what was typed when it differs from what the document keeps; *changed tells whether it
    // did. False with the reason.
    bool leave(bool *changed, QString *error);

    ActVolumesModel &model() { return m_volumes; }

    void spdDeleteLastActClick();

    QTableView *GridVolumes = nullptr;
    QTableView *GridActs = nullptr;
    QLabel *LabelVolumes = nullptr;
    QPushButton *spdVolumesZero = nullptr;
    QPushButton *spdVolumesRemainder = nullptr;
    QPushButton *spdDeleteLastAct = nullptr;

private:
    void load(const QMap<QString, QString> &typed);
    void showState();

    EstimateDocument &m_doc;
    ActVolumesModel m_volumes;
    QStandardItemModel *m_acts = nullptr;
    QMap<QString, QString> m_stored; // the typed quantities as the document keeps them
};
