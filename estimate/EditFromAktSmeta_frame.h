#pragma once
// TEditFromAktSmeta: the small dialog of the printed sheets' titles (section View of the settings).

#include "estimate/ViewTitles.h"

#include <QDialog>

class QLineEdit;
class QPushButton;

class TEditFromAktSmeta : public QDialog {
    Q_OBJECT
public:
    explicit TEditFromAktSmeta(QWidget *parent = nullptr);

    void setTitles(const ViewTitles &titles);
    // The fields; an emptied field gives its default back.
    ViewTitles titles() const;

    QLineEdit *EditSmetaName;
    QLineEdit *EditSmeta;
    QLineEdit *EditLocal;
    QLineEdit *EditAfterLocal;
    QLineEdit *EditAktName;
    QLineEdit *EditAkt;
    QLineEdit *EditPodryad;
    QPushButton *ButtonOK;

private:
    QLineEdit *field(const QString &key);
};
