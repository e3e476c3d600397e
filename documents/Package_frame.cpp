#include "Package_frame.h"

#include "PackageRun.h"
#include "office/OfficeEngine.h"
#include "ui/Dialogs.h"
#include "ui/FormFields.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

const QString kCaption = QStringLiteral("Пакет документов");

// A row of a group's form: its labels are as wide in every group, so that the fields line up.
void addRow(QFormLayout *form, const QString &label, QWidget *field) {
    auto *l = new QLabel(label, field->parentWidget());
    l->setMinimumWidth(250);
    form->addRow(l, field);
}
void addRow(QFormLayout *form, const QString &label, QLayout *fields, QWidget *parent) {
    auto *l = new QLabel(label, parent);
    l->setMinimumWidth(250);
    form->addRow(l, fields);
}

// A pair of format buttons in a row of their own (a group of their own, so that the groups do not
// share one choice).
QHBoxLayout *formats(QRadioButton *first, QRadioButton *second, bool secondOn) {
    auto *row = new QHBoxLayout;
    row->addWidget(first);
    row->addWidget(second);
    row->addStretch(1);
    (secondOn ? second : first)->setChecked(true);
    return row;
}

} // namespace

TPackage::TPackage(const Context &context, const PackageRequest &initial, QWidget *parent)
    : QDialog(parent), m_context(context) {
    setObjectName(QStringLiteral("PackageForm"));
    setWindowTitle(kCaption);
    setWindowModality(Qt::WindowModal);
    auto *root = new QVBoxLayout(this);

    auto *top = new QFormLayout;
    DateEdit = shortDateEdit(initial.date, "DateEdit", this);
    DateEdit->setMaximumWidth(160);
    addRow(top, QStringLiteral("Дата пакета"), DateEdit);
    EditDir = named(new QLineEdit(initial.folder, this), "EditDir");
    EditDir->setMinimumWidth(420);
    spdDir = named(new QPushButton(QStringLiteral("Выбрать папку"), this), "spdDir");
    spdDir->setAutoDefault(false);
    auto *dir = new QHBoxLayout;
    dir->addWidget(EditDir, 1);
    dir->addWidget(spdDir);
    addRow(top, QStringLiteral("Папка"), dir, this);
    root->addLayout(top);

    root->addWidget(buildContract());
    root->addWidget(buildAccount());
    root->addWidget(buildActs());

    CheckBoxContract->setChecked(initial.contract);
    EditNumContract->setText(initial.contractNumber);
    DateContractEnd->setDate(initial.contractEnd.isValid() ? initial.contractEnd : initial.date);
    (initial.contractPdf ? RadioContractPdf : RadioContractDoc)->setChecked(true);
    CheckBoxAccount->setChecked(initial.invoice);
    EditNumAccount->setText(initial.invoiceNumber);
    (initial.invoicePdf ? RadioAccountPdf : RadioAccountXls)->setChecked(true);
    CheckBoxKS2->setChecked(initial.ks2);
    CheckBoxKS3->setChecked(initial.ks3);
    CheckBoxAct->setChecked(initial.act);
    DateKS2End->setDate(initial.actsEnd.isValid() ? initial.actsEnd : initial.date);
    EditNumAkt->setText(initial.actNumber);
    EditNumAktWord->setText(initial.actNumberWord);
    (initial.actsPdf ? RadioActPdf : RadioActXls)->setChecked(true);

    auto *bottom = new QHBoxLayout;
    btnAllPdf = named(new QPushButton(QStringLiteral("Все PDF"), this), "btnAllPdf");
    bottom->addWidget(btnAllPdf);
    auto *buttons = new QDialogButtonBox(this);
    bottom->addWidget(buttons, 1);
    btnCreate =
        named(buttons->addButton(QStringLiteral("Создать"), QDialogButtonBox::AcceptRole), "btnCreate");
    btnCancel =
        named(buttons->addButton(QStringLiteral("Отмена"), QDialogButtonBox::RejectRole), "btnCancel");
    btnAllPdf->setAutoDefault(false);
    btnCreate->setDefault(true);
    root->addLayout(bottom);

    connect(DateEdit, &QDateEdit::dateChanged, this, &TPackage::DateEditChange);
    connect(spdDir, &QPushButton::clicked, this, &TPackage::spdDirClick);
    connect(btnAllPdf, &QPushButton::clicked, this, &TPackage::btnAllPdfClick);
    connect(btnCreate, &QPushButton::clicked, this, &TPackage::btnCreateClick);
    connect(btnCancel, &QPushButton::clicked, this, &TPackage::reject);
    for (QCheckBox *box : {CheckBoxContract, CheckBoxAccount, CheckBoxKS2, CheckBoxKS3, CheckBoxAct})
        connect(box, &QCheckBox::toggled, this, &TPackage::enableGroups);
    enableGroups();
}

QGroupBox *TPackage::buildContract() {
    // The group's check box names it.
    GroupContract = named(new QGroupBox(this), "GroupContract");
    auto *form = new QFormLayout(GroupContract);
    CheckBoxContract = named(new QCheckBox(QStringLiteral("Договор"), GroupContract), "CheckBoxContract");
    form->addRow(CheckBoxContract);
    EditNumContract = named(new QLineEdit(GroupContract), "EditNumContract");
    addRow(form, QStringLiteral("Номер"), EditNumContract);
    DateContractEnd = shortDateEdit(QDate(), "DateContractEnd", GroupContract);
    DateContractEnd->setMaximumWidth(160);
    addRow(form, QStringLiteral("Предположительная дата окончания"), DateContractEnd);
    RadioContractDoc = named(new QRadioButton(QStringLiteral("DOC"), GroupContract), "RadioContractDoc");
    RadioContractPdf = named(new QRadioButton(QStringLiteral("PDF"), GroupContract), "RadioContractPdf");
    addRow(form, QStringLiteral("Формат"), formats(RadioContractDoc, RadioContractPdf, false), GroupContract);
    return GroupContract;
}

QGroupBox *TPackage::buildAccount() {
    GroupAccount = named(new QGroupBox(this), "GroupAccount");
    auto *form = new QFormLayout(GroupAccount);
    CheckBoxAccount = named(new QCheckBox(QStringLiteral("Счёт"), GroupAccount), "CheckBoxAccount");
    form->addRow(CheckBoxAccount);
    EditNumAccount = named(new QLineEdit(GroupAccount), "EditNumAccount");
    addRow(form, QStringLiteral("Номер"), EditNumAccount);
    RadioAccountXls = named(new QRadioButton(QStringLiteral("XLS"), GroupAccount), "RadioAccountXls");
    RadioAccountPdf = named(new QRadioButton(QStringLiteral("PDF"), GroupAccount), "RadioAccountPdf");
    addRow(form, QStringLiteral("Формат"), formats(RadioAccountXls, RadioAccountPdf, false), GroupAccount);
    return GroupAccount;
}

QGroupBox *TPackage::buildActs() {
    GroupAct = named(new QGroupBox(QStringLiteral("Акты"), this), "GroupAct");
    auto *form = new QFormLayout(GroupAct);
    CheckBoxKS2 = named(new QCheckBox(QStringLiteral("Акт КС-2"), GroupAct), "CheckBoxKS2");
    CheckBoxKS3 = named(new QCheckBox(QStringLiteral("Акт КС-3"), GroupAct), "CheckBoxKS3");
    CheckBoxAct = named(new QCheckBox(QStringLiteral("Акт"), GroupAct), "CheckBoxAct");
    auto *kinds = new QHBoxLayout;
    kinds->addWidget(CheckBoxKS2);
    kinds->addWidget(CheckBoxKS3);
    kinds->addWidget(CheckBoxAct);
    kinds->addStretch(1);
    form->addRow(kinds);
    DateKS2End = shortDateEdit(QDate(), "DateKS2End", GroupAct);
    DateKS2End->setMaximumWidth(160);
    addRow(form, QStringLiteral("Предположительная дата окончания"), DateKS2End);
    // The act's number: its text number, "-" and the number (the customer/object counter).
    EditNumAktWord = named(new QLineEdit(GroupAct), "EditNumAktWord");
    EditNumAktWord->setToolTip(QStringLiteral("Текстовая часть номера акта (при нумерации по дате: дата)"));
    EditNumAkt = named(new QLineEdit(GroupAct), "EditNumAkt");
    EditNumAkt->setToolTip(QStringLiteral("Номер акта: по умолчанию счётчик актов заказчика и объекта"));
    EditNumAkt->setMaximumWidth(90);
    auto *number = new QHBoxLayout;
    number->addWidget(EditNumAktWord, 1);
    number->addWidget(new QLabel(QStringLiteral("-"), GroupAct));
    number->addWidget(EditNumAkt);
    addRow(form, QStringLiteral("Номер"), number, GroupAct);
    RadioActXls = named(new QRadioButton(QStringLiteral("XLS"), GroupAct), "RadioActXls");
    RadioActPdf = named(new QRadioButton(QStringLiteral("PDF"), GroupAct), "RadioActPdf");
    addRow(form, QStringLiteral("Формат"), formats(RadioActXls, RadioActPdf, false), GroupAct);
    return GroupAct;
}

void TPackage::enableGroups() {
    const bool contract = CheckBoxContract->isChecked();
    for (QWidget *w : std::initializer_list<QWidget *>{EditNumContract, DateContractEnd, RadioContractDoc,
                                                       RadioContractPdf})
        w->setEnabled(contract);
    const bool invoice = CheckBoxAccount->isChecked();
    for (QWidget *w : std::initializer_list<QWidget *>{EditNumAccount, RadioAccountXls, RadioAccountPdf})
        w->setEnabled(invoice);
    const bool acts = CheckBoxKS2->isChecked() || CheckBoxKS3->isChecked() || CheckBoxAct->isChecked();
    for (QWidget *w : std::initializer_list<QWidget *>{EditNumAktWord, EditNumAkt, RadioActXls, RadioActPdf})
        w->setEnabled(acts);
    // Only КС-2 and КС-3 carry the expected end of the work.
    DateKS2End->setEnabled(CheckBoxKS2->isChecked() || CheckBoxKS3->isChecked());
}

PackageRequest TPackage::request() const {
    PackageRequest r;
    r.date = DateEdit->date();
    r.folder = EditDir->text().trimmed();
    r.contract = CheckBoxContract->isChecked();
    r.contractNumber = EditNumContract->text().trimmed();
    r.contractEnd = DateContractEnd->date();
    r.contractPdf = RadioContractPdf->isChecked();
    r.invoice = CheckBoxAccount->isChecked();
    r.invoiceNumber = EditNumAccount->text().trimmed();
    r.invoicePdf = RadioAccountPdf->isChecked();
    r.ks2 = CheckBoxKS2->isChecked();
    r.ks3 = CheckBoxKS3->isChecked();
    r.act = CheckBoxAct->isChecked();
    r.actNumber = EditNumAkt->text().trimmed();
    r.actNumberWord = EditNumAktWord->text().trimmed();
    r.actsEnd = DateKS2End->date();
    r.actsPdf = RadioActPdf->isChecked();
    return r;
}

bool TPackage::running() const {
    return m_run && m_run->running();
}

void TPackage::DateEditChange() {
    PackageRequest r = request();
    PackageDefaults::applyDate(&r, m_context.numbering, DateEdit->date());
    EditNumContract->setText(r.contractNumber);
    EditNumAccount->setText(r.invoiceNumber);
    EditNumAktWord->setText(r.actNumberWord);
}

void TPackage::spdDirClick() {
    const QString dir = dialogs().chooseFolder(QStringLiteral("Выбор папки для пакета"), EditDir->text());
    if (!dir.isEmpty())
        EditDir->setText(dir);
}

void TPackage::btnAllPdfClick() {
    RadioContractPdf->setChecked(true);
    RadioAccountPdf->setChecked(true);
    RadioActPdf->setChecked(true);
}

void TPackage::btnCreateClick() {
    if (running() || !m_context.document || !m_context.office)
        return;
    const PackageRequest r = request();
    QString why = PackageJob::requestProblem(r);
    if (!why.isEmpty()) {
        dialogs().tell(Captions::warning, why, Dialogs::Icon::Warning);
        return;
    }
    why = PackageJob::checkFolder(r.folder);
    if (!why.isEmpty()) {
        dialogs().tell(Captions::error, why, Dialogs::Icon::Error);
        EditDir->setFocus();
        return;
    }
    if (!OfficeEngine::available(&why)) {
        dialogs().tell(Captions::error, why, Dialogs::Icon::Error);
        return;
    }
    if (m_context.settle && !m_context.settle())
        return;

    m_run = new PackageRun(*m_context.document, r, m_context.settings, *m_context.office, this);
    // The progress window holds the whole program while the documents are made: the estimate they are
    // read from cannot change under them.
    m_progress = new QProgressDialog(QString(), QStringLiteral("Отмена"), 0, 100, this);
    m_progress->setObjectName(QStringLiteral("PackageProgress"));
    m_progress->setWindowTitle(kCaption);
    m_progress->setWindowModality(Qt::ApplicationModal);
    m_progress->setMinimumDuration(0);
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    m_progress->setValue(0);
    connect(m_progress, &QProgressDialog::canceled, m_run, &PackageRun::cancel);
    connect(m_run, &PackageRun::stageStarted, m_progress,
            [this](int, int, const QString &text) { m_progress->setLabelText(text); });
    connect(m_run, &PackageRun::progressChanged, m_progress, &QProgressDialog::setValue);
    connect(m_run, &PackageRun::finished, this, &TPackage::finished);
    m_progress->show();
    m_run->start();
}

void TPackage::finished() {
    const QVector<PackageItem> items = m_run->items();
    m_run->deleteLater();
    if (m_progress) {
        m_progress->close();
        m_progress->deleteLater();
    }
    emit packageMade(items);
    const bool complete = PackageRun::complete(items);
    dialogs().tell(complete ? Captions::info : Captions::warning, PackageRun::report(items, EditDir->text()),
                   complete ? Dialogs::Icon::Information : Dialogs::Icon::Warning);
    if (complete)
        accept();
}

void TPackage::reject() {
    if (running())
        return; // the progress window cancels a package being made
    QDialog::reject();
}
