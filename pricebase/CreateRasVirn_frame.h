#pragma once
// TCreateRasVirn: offered when the server's list holds no rate after connecting; the user chooses
// which local list fills it ("Выбор расценок для копирования"), or "Отмена" to leave it empty.

#include "PriceCopy.h"

#include <QDialog>

class QRadioButton;

class TCreateRasVirn : public QDialog {
    Q_OBJECT
public:
    explicit TCreateRasVirn(QWidget *parent = nullptr);

    PriceCopy::List source() const;

    QRadioButton *RadioMyPrice = nullptr;
    QRadioButton *RadioPrice2 = nullptr;
};
