#include "ActOutput_frame.h"

#include "estimate/EstimateHeader.h"
#include "ui/Dialogs.h"

#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
template <typename W> W *named(W *w, const char *name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}
QDateEdit *dateEdit(const QDate &date, const char *name, QWidget *parent) {
    auto *d = named(new QDateEdit(date.isValid() ? date : QDate::currentDate(), parent), name);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    return d;
}
} // namespace

TActOutput::TActOutput(const ActRequest &defaults, bool dateNumbering, bool yearFirst, QWidget *parent)
    : QDialog(parent), m_kind(defaults.kind), m_dateNumbering(dateNumbering), m_yearFirst(yearFirst) {
    setObjectName(QStringLiteral("ActOutput"));
    setWindowTitle(ActKinds::caption(m_kind));
    setModal(true);
    auto *root = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    EditNumAkt = named(new QLineEdit(defaults.number, this), "EditNumAkt");
    DateEdit = dateEdit(defaults.date, "DateEdit", this);
    DateKS2End = dateEdit(defaults.endDate, "DateKS2End", this);
    form->addRow(QStringLiteral("Номер"), EditNumAkt);
    form->addRow(QStringLiteral("Дата"), DateEdit);
    if (ActKinds::hasEndDate(m_kind))
        form->addRow(QStringLiteral("Предположительная дата окончания"), DateKS2End);
    else
        DateKS2End->hide();
    RadioXls = named(new QRadioButton(QStringLiteral("XLS"), this), "RadioXls");
    RadioPdf = named(new QRadioButton(QStringLiteral("PDF"), this), "RadioPdf");
    (defaults.format == QLatin1String("pdf") ? RadioPdf : RadioXls)->setChecked(true);
    auto *formats = new QHBoxLayout;
    formats->addWidget(RadioXls);
    formats->addWidget(RadioPdf);
    formats->addStretch(1);
    form->addRow(QStringLiteral("Формат"), formats);
    EditDir = named(new QLineEdit(defaults.folder, this), "EditDir");
    EditDir->setMinimumWidth(320);
    spdDir = named(new QPushButton(QStringLiteral("Выбрать папку"), this), "spdDir");
    auto *dir = new QHBoxLayout;
    dir->addWidget(EditDir, 1);
    dir->addWidget(spdDir);
    form->addRow(QStringLiteral("Папка"), dir);
    root->addLayout(form);
    auto *buttons = new QDialogButtonBox(this);
    btnOk = named(buttons->addButton(QStringLiteral("Создать"), QDialogButtonBox::AcceptRole), "btnOk");
    btnCancel =
        named(buttons->addButton(QStringLiteral("Отмена"), QDialogButtonBox::RejectRole), "btnCancel");
    btnOk->setDefault(true);
    root->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &TActOutput::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TActOutput::reject);
    connect(DateEdit, &QDateEdit::dateChanged, this, &TActOutput::DateEditChange);
    connect(spdDir, &QPushButton::clicked, this, &TActOutput::spdDirClick);
}

ActRequest TActOutput::request() const {
    ActRequest r;
    r.kind = m_kind;
    r.number = EditNumAkt->text().trimmed();
    r.date = DateEdit->date();
    if (ActKinds::hasEndDate(m_kind))
        r.endDate = DateKS2End->date();
    r.format = RadioPdf->isChecked() ? QStringLiteral("pdf") : QStringLiteral("xls");
    r.folder = EditDir->text().trimmed();
    return r;
}

void TActOutput::DateEditChange() {
    if (m_dateNumbering)
        EditNumAkt->setText(EstimateHeader::dateNumber(DateEdit->date(), m_yearFirst) + QStringLiteral("-1"));
}

void TActOutput::spdDirClick() {
    const QString dir = dialogs().chooseFolder(QStringLiteral("Выбор папки для акта"), EditDir->text());
    if (!dir.isEmpty())
        EditDir->setText(dir);
}

void TActOutput::accept() {
    if (EditNumAkt->text().trimmed().isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Укажите номер акта."), Dialogs::Icon::Warning);
        EditNumAkt->setFocus();
        return;
    }
    if (EditDir->text().trimmed().isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Укажите папку для акта."), Dialogs::Icon::Warning);
        EditDir->setFocus();
        return;
    }
    QDialog::accept();
}
