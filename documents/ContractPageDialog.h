#pragma once
// "Параметры страницы" of the contract: paper size, orientation and margins, in millimetres.

#include "office/OfficeEngine.h"

#include <QDialog>

class QComboBox;
class QDoubleSpinBox;
class QRadioButton;

class ContractPageDialog : public QDialog {
    Q_OBJECT
public:
    explicit ContractPageDialog(const OfficeEngine::Page &page, QWidget *parent = nullptr);

    // Hundredths of a millimetre; width and height as the paper lies (a landscape page is wider).
    OfficeEngine::Page page() const;

private:
    void paperChosen(int index);
    void sizeEdited();

    QComboBox *m_paper;
    QDoubleSpinBox *m_width, *m_height;
    QRadioButton *m_portrait, *m_landscape;
    QDoubleSpinBox *m_left, *m_right, *m_top, *m_bottom;
};
