#include "CalcMatKolvo_frame.h"

#include <QLabel>

TCalcMatKolvo::TCalcMatKolvo(const QString &number, const QString &name, const QString &quantity,
                             QWidget *parent)
    : TCalcDocKolvo(number, name, quantity, parent) {
    setObjectName(QStringLiteral("CalcMatKolvo"));
    LabelPrompt->setText(QStringLiteral("Этот материал уже есть в смете. Измените его количество:"));
}
