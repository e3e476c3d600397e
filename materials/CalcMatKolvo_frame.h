#pragma once
// TCalcMatKolvo, host caption "Найдено совпадение": a material that the estimate has already. Shows
// its position number, name and quantity; the user changes the quantity, or adds to it, instead of
// adding the material a second time. The same form as the rates' TCalcDocKolvo.

#include "pricebase/CalcDocKolvo_frame.h"

class TCalcMatKolvo : public TCalcDocKolvo {
    Q_OBJECT
public:
    TCalcMatKolvo(const QString &number, const QString &name, const QString &quantity,
                  QWidget *parent = nullptr);
};
