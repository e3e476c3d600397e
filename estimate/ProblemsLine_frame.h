#pragma once
// The line under the estimate grid that says how many cells need fixing (estimate, coefficient panel,
// materials): their amounts are left out of every total until they are fixed. Hidden while none does.
// Beside it, how a total field shows an amount the editor refused.

#include <QLabel>

class EstimateEditor;
class MoneyResult;
class QLineEdit;

class TProblemsLine : public QLabel {
    Q_OBJECT
public:
    explicit TProblemsLine(EstimateEditor *editor, QWidget *parent = nullptr);

    void showProblems();

private:
    EstimateEditor *m_editor;
};

namespace AmountField {
// The amount as "0,00"; a refused one leaves the field empty, red, with the reason as its tooltip.
void show(QLineEdit *field, const MoneyResult &amount);
} // namespace AmountField
