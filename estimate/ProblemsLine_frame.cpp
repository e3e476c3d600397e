#include "ProblemsLine_frame.h"

#include "EstimateEditor.h"

#include <QLineEdit>

TProblemsLine::TProblemsLine(EstimateEditor *editor, QWidget *parent) : QLabel(parent), m_editor(editor) {
    setObjectName(QStringLiteral("LabelProblems"));
    setWordWrap(true);
    setStyleSheet(QStringLiteral("color: #B00000;"));
    connect(editor, &EstimateEditor::problemsChanged, this, &TProblemsLine::showProblems);
    showProblems();
}

void TProblemsLine::showProblems() {
    const QString text = m_editor->problemCells().text();
    setText(text);
    setVisible(!text.isEmpty());
}

namespace AmountField {

void show(QLineEdit *field, const MoneyResult &amount) {
    field->setText(amount.text());
    field->setStyleSheet(amount ? QString() : QStringLiteral("background: #FFC8C8"));
    field->setToolTip(amount ? QString()
                             : QStringLiteral("Итог %1: он не считается. Исправьте отмеченные ячейки сметы.")
                                   .arg(numberProblemText(amount.problem())));
}

} // namespace AmountField
