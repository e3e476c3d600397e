#include "CopyRas_frame.h"

#include "ui/DialogButtons.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

TCopyRas::TCopyRas(PriceCopy::List current, bool serverConnected, QWidget *parent) : QDialog(parent) {
    using PriceCopy::List;
    setObjectName(QStringLiteral("CopyRas"));
    setWindowTitle(QStringLiteral("Копирование расценок"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(
        QStringLiteral("Скопировать «%1» (с ресурсами расценок) в:").arg(PriceCopy::caption(current)), this));
    auto *group = new QGroupBox(this);
    auto *radios = new QVBoxLayout(group);
    for (List l : {List::MyPrice, List::Price2, List::Server})
        if (l != current)
            m_targets.push_back(l);
    RadioButton1 = new QRadioButton(PriceCopy::caption(m_targets[0]), group);
    RadioButton1->setObjectName(QStringLiteral("RadioButton1"));
    RadioButton2 = new QRadioButton(PriceCopy::caption(m_targets[1]), group);
    RadioButton2->setObjectName(QStringLiteral("RadioButton2"));
    for (size_t i = 0; i < m_targets.size(); ++i) {
        QRadioButton *b = i == 0 ? RadioButton1 : RadioButton2;
        if (m_targets[i] == List::Server && !serverConnected) {
            b->setEnabled(false);
            b->setToolTip(QStringLiteral("Сначала подключитесь к серверу Вирн"));
        }
        radios->addWidget(b);
    }
    (RadioButton1->isEnabled() ? RadioButton1 : RadioButton2)->setChecked(true);
    layout->addWidget(group);
    layout->addWidget(new QLabel(QStringLiteral("Список, в который копируются расценки, будет заменён; цены "
                                                "копируются в текущей валюте."),
                                 this));
    layout->addWidget(acceptCancelButtons(this, QStringLiteral("Копировать")));
}

PriceCopy::List TCopyRas::target() const {
    return RadioButton1->isChecked() ? m_targets[0] : m_targets[1];
}
