#include "CreateRasVirn_frame.h"

#include "ui/DialogButtons.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

TCreateRasVirn::TCreateRasVirn(QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("CreateRasVirn"));
    setWindowTitle(QStringLiteral("Расценки на сервере Вирн"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("На сервере нет расценок. Заполнить список сервера?"), this));
    auto *group = new QGroupBox(QStringLiteral("Выбор расценок для копирования"), this);
    group->setObjectName(QStringLiteral("GroupBox1"));
    auto *radios = new QVBoxLayout(group);
    RadioMyPrice = new QRadioButton(QStringLiteral("Копировать \"Мои расценки\" из базы программы"), group);
    RadioMyPrice->setObjectName(QStringLiteral("RadioMyPrice"));
    RadioMyPrice->setChecked(true);
    RadioPrice2 = new QRadioButton(QStringLiteral("Копировать \"Расценки 2\" из базы программы"), group);
    RadioPrice2->setObjectName(QStringLiteral("RadioPrice2"));
    radios->addWidget(RadioMyPrice);
    radios->addWidget(RadioPrice2);
    layout->addWidget(group);
    layout->addWidget(acceptCancelButtons(this, QStringLiteral("Копировать")));
}

PriceCopy::List TCreateRasVirn::source() const {
    return RadioPrice2->isChecked() ? PriceCopy::List::Price2 : PriceCopy::List::MyPrice;
}
