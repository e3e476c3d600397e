#pragma once
// TCalcMat, host caption "Персчёт стоимости материалов": new prices for the estimate's materials,
// taken from the materials list shown (by name) or changed by a percentage. The window only gathers
// the choice; MatRecalc does the work.

#include "storage/Decimal.h"

#include <QDialog>
#include <optional>

class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QRadioButton;

class TCalcMat : public QDialog {
    Q_OBJECT
public:
    // sheetCaption: the list the prices come from ("Лист 1").
    explicit TCalcMat(const QString &sheetCaption, QWidget *parent = nullptr);

    bool fromList() const;
    // The percentage typed (when not from the list); nullopt while it is not a number.
    std::optional<Decimal> percent() const;

    QRadioButton *RadioFromList = nullptr;
    QRadioButton *RadioPercent = nullptr;
    QLineEdit *EditPercent = nullptr;
    QLabel *LabelProblem = nullptr;

    void accept() override;
};
