#include "DialogButtons.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

QDialogButtonBox *acceptCancelButtons(QDialog *dialog, const QString &acceptText) {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    buttons->button(QDialogButtonBox::Ok)->setText(acceptText);
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}
