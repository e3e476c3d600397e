#include "CalcMat_frame.h"

#include "storage/TextValues.h"
#include "ui/DialogButtons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

TCalcMat::TCalcMat(const QString &sheetCaption, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("CalcMat"));
    setWindowTitle(QStringLiteral("Персчёт стоимости материалов"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Новые цены материалов сметы:"), this));
    RadioFromList = new QRadioButton(
        QStringLiteral("Взять цены из списка «%1» (по наименованию материала)").arg(sheetCaption), this);
    RadioFromList->setObjectName(QStringLiteral("RadioFromList"));
    RadioFromList->setChecked(true);
    layout->addWidget(RadioFromList);
    auto *row = new QHBoxLayout;
    RadioPercent = new QRadioButton(QStringLiteral("Изменить все цены на, %:"), this);
    RadioPercent->setObjectName(QStringLiteral("RadioPercent"));
    EditPercent = new QLineEdit(this);
    EditPercent->setObjectName(QStringLiteral("EditPercent"));
    EditPercent->setPlaceholderText(QStringLiteral("например 10 или -5,5"));
    EditPercent->setEnabled(false);
    row->addWidget(RadioPercent);
    row->addWidget(EditPercent, 1);
    layout->addLayout(row);
    connect(RadioPercent, &QRadioButton::toggled, EditPercent, &QWidget::setEnabled);
    LabelProblem = new QLabel(this);
    LabelProblem->setObjectName(QStringLiteral("LabelProblem"));
    LabelProblem->setStyleSheet(QStringLiteral("color: #b00000"));
    LabelProblem->hide();
    layout->addWidget(LabelProblem);
    layout->addWidget(acceptCancelButtons(this, QStringLiteral("Пересчитать")));
}

bool TCalcMat::fromList() const {
    return RadioFromList->isChecked();
}

std::optional<Decimal> TCalcMat::percent() const {
    return TextValues::parseAmount(EditPercent->text());
}

void TCalcMat::accept() {
    if (!fromList()) {
        const auto p = percent();
        // Down by 100 % or more would make prices nothing or less.
        if (!p || p->compare(*Decimal::whole(-100)) <= 0 || p->compare(*Decimal::whole(1000)) > 0) {
            LabelProblem->setText(QStringLiteral("Процент должен быть числом больше -100 и не больше 1000."));
            LabelProblem->show();
            return;
        }
    }
    QDialog::accept();
}
