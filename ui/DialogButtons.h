#pragma once
// The buttons under a dialog: the accepting one named for what it does ("Копировать", "Пересчитать"),
// and "Отмена"; wired to the dialog's accept() and reject().

#include <QDialogButtonBox>
#include <QString>

class QDialog;

QDialogButtonBox *acceptCancelButtons(QDialog *dialog, const QString &acceptText);
