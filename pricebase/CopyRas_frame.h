#pragma once
// TCopyRas, host caption "Копирование расценок": the current price list is copied into one of the two
// other lists, chosen by its caption. The window only takes the choice; PriceCopy does the copying.

#include "PriceCopy.h"

#include <QDialog>
#include <vector>

class QRadioButton;

class TCopyRas : public QDialog {
    Q_OBJECT
public:
    // The current list and whether the server's list can be reached (connected).
    TCopyRas(PriceCopy::List current, bool serverConnected, QWidget *parent = nullptr);

    PriceCopy::List target() const;

    QRadioButton *RadioButton1 = nullptr;
    QRadioButton *RadioButton2 = nullptr;

private:
    std::vector<PriceCopy::List> m_targets;
};
