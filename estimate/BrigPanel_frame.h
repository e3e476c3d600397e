#pragma once
// The bar under the crew sheet StringGridBrig: the global crew coefficient EditKoefBrig, the switch
// between one coefficient for all rows and a coefficient per row (RadioButtonKoefBrig), and the
// totals: what the crew gets, what the customer pays for the works, and the difference.

#include <QWidget>

class CrewSheet;
class QLabel;
class QLineEdit;
class QRadioButton;

class TBrigPanel : public QWidget {
    Q_OBJECT
public:
    explicit TBrigPanel(CrewSheet *sheet, QWidget *parent = nullptr);

    QLineEdit *EditKoefBrig = nullptr;
    QRadioButton *RadioButtonKoefBrigAll = nullptr;
    QRadioButton *RadioButtonKoefBrig = nullptr; // checked: every row has its own coefficient
    QLabel *LabelBrigTotals = nullptr;

    // Shows the sheet's current settings (after a document was loaded).
    void showSettings();

signals:
    // The user changed the coefficient or the mode (the document changed).
    void changedByUser();

private:
    void EditKoefBrigChange();
    void showTotals();
    CrewSheet *m_sheet;
};
