#include "CalcDocKolvo_frame.h"

#include "RateInsertion.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

TCalcDocKolvo::TCalcDocKolvo(const QString &number, const QString &name, const QString &quantity,
                             QWidget *parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("CalcDocKolvo"));
    setWindowTitle(QStringLiteral("Найдено совпадение"));
    auto *layout = new QVBoxLayout(this);
    LabelPrompt = new QLabel(QStringLiteral("Эта работа уже есть в разделе. Измените её количество:"), this);
    LabelPrompt->setObjectName(QStringLiteral("LabelPrompt"));
    layout->addWidget(LabelPrompt);
    auto *form = new QFormLayout;
    auto field = [this](const QString &objectName, const QString &text, bool readOnly) {
        auto *e = new QLineEdit(text, this);
        e->setObjectName(objectName);
        e->setReadOnly(readOnly);
        return e;
    };
    EditNumber = field(QStringLiteral("EditNumber"), number, true);
    EditName = field(QStringLiteral("EditName"), name, true);
    EditName->setMinimumWidth(360);
    EditName->setCursorPosition(0);
    EditKolvo = field(QStringLiteral("EditKolvo"), quantity, false);
    EditKolvoAdd = field(QStringLiteral("EditKolvoAdd"), QString(), false);
    EditKolvoAdd->setPlaceholderText(QStringLiteral("0"));
    form->addRow(QStringLiteral("№ п/п:"), EditNumber);
    form->addRow(QStringLiteral("Наименование:"), EditName);
    form->addRow(QStringLiteral("Кол-во:"), EditKolvo);
    form->addRow(QStringLiteral("Прибавить:"), EditKolvoAdd);
    layout->addLayout(form);
    LabelProblem = new QLabel(this);
    LabelProblem->setObjectName(QStringLiteral("LabelProblem"));
    LabelProblem->setStyleSheet(QStringLiteral("color: #b00000"));
    LabelProblem->hide();
    layout->addWidget(LabelProblem);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
    connect(buttons, &QDialogButtonBox::accepted, this, &TCalcDocKolvo::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TCalcDocKolvo::reject);
    layout->addWidget(buttons);
    EditKolvo->setFocus();
    EditKolvo->selectAll();
}

void TCalcDocKolvo::accept() {
    bool ok = false;
    const QString q = addQuantities(EditKolvo->text(), EditKolvoAdd->text(), &ok);
    if (!ok) {
        LabelProblem->setText(QStringLiteral("Количество должно быть числом, например 12,5."));
        LabelProblem->show();
        return;
    }
    m_result = q;
    QDialog::accept();
}
