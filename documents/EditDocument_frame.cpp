#include "EditDocument_frame.h"

#include "ui/Dialogs.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

QDateEdit *dateEdit(const char *name, QWidget *parent) {
    auto *e = new QDateEdit(parent);
    e->setObjectName(QLatin1String(name));
    e->setCalendarPopup(true);
    e->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    e->setDate(QDate::currentDate());
    return e;
}

} // namespace

TEditDocument::TEditDocument(bool withStatus, QWidget *parent) : QDialog(parent), m_withStatus(withStatus) {
    setObjectName(QStringLiteral("EditDocument"));
    setWindowTitle(QStringLiteral("Редактирование"));
    setModal(true);

    auto *form = new QFormLayout;
    DateEdit = dateEdit("DateEdit", this);
    form->addRow(QStringLiteral("Дата"), DateEdit);
    EditName = new QLineEdit(this);
    EditName->setObjectName(QStringLiteral("EditName"));
    EditName->setMinimumWidth(360);
    form->addRow(QStringLiteral("Имя"), EditName);

    GroupStatus = new QGroupBox(QStringLiteral("Статус"), this);
    GroupStatus->setObjectName(QStringLiteral("GroupStatus"));
    RadioInWork = new QRadioButton(QStringLiteral("В работе"), GroupStatus);
    RadioInWork->setObjectName(QStringLiteral("RadioInWork"));
    RadioFinished = new QRadioButton(QStringLiteral("Завершено"), GroupStatus);
    RadioFinished->setObjectName(QStringLiteral("RadioFinished"));
    DateFinish = dateEdit("DateFinish", GroupStatus);
    auto *status = new QHBoxLayout(GroupStatus);
    status->addWidget(RadioInWork);
    status->addWidget(RadioFinished);
    status->addWidget(DateFinish);
    RadioInWork->setChecked(true);
    // An estimate in work has no finish date.
    DateFinish->setEnabled(false);
    connect(RadioFinished, &QRadioButton::toggled, DateFinish, &QWidget::setEnabled);
    GroupStatus->setVisible(withStatus);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("ОК"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Отмена"));
    connect(buttons, &QDialogButtonBox::accepted, this, &TEditDocument::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TEditDocument::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(GroupStatus);
    layout->addWidget(buttons);
}

void TEditDocument::setValues(const Registration::Edit &values) {
    DateEdit->setDate(values.date.isValid() ? values.date : QDate::currentDate());
    EditName->setText(values.name);
    EditName->setCursorPosition(0);
    (values.finished ? RadioFinished : RadioInWork)->setChecked(true);
    DateFinish->setDate(values.finishDate.isValid() ? values.finishDate : QDate::currentDate());
}

Registration::Edit TEditDocument::values() const {
    Registration::Edit v;
    v.date = DateEdit->date();
    v.name = EditName->text().trimmed();
    v.finished = m_withStatus && RadioFinished->isChecked();
    if (v.finished)
        v.finishDate = DateFinish->date();
    return v;
}

void TEditDocument::accept() {
    if (EditName->text().trimmed().isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Имя не может быть пустым."),
                       Dialogs::Icon::Warning);
        EditName->setFocus();
        return;
    }
    QDialog::accept();
}
