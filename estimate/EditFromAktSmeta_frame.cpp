#include "EditFromAktSmeta_frame.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

TEditFromAktSmeta::TEditFromAktSmeta(QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("EditFromAktSmeta"));
    setWindowTitle(QStringLiteral("Заголовки листов сметы и акта"));
    auto make = [this](const char *name) {
        auto *e = new QLineEdit(this);
        e->setObjectName(QLatin1String(name));
        e->setMinimumWidth(380);
        return e;
    };
    EditSmetaName = make("EditSmetaName");
    EditSmeta = make("EditSmeta");
    EditLocal = make("EditLocal");
    EditAfterLocal = make("EditAfterLocal");
    EditAktName = make("EditAktName");
    EditAkt = make("EditAkt");
    EditPodryad = make("EditPodryad");

    auto *smeta = new QGroupBox(QStringLiteral("Смета"), this);
    auto *smetaForm = new QFormLayout(smeta);
    smetaForm->addRow(QStringLiteral("Заголовок:"), EditSmetaName);
    smetaForm->addRow(QStringLiteral("Подзаголовок:"), EditSmeta);
    smetaForm->addRow(QStringLiteral("Локальный расчёт:"), EditLocal);
    smetaForm->addRow(QStringLiteral("Строка под ним:"), EditAfterLocal);
    auto *akt = new QGroupBox(QStringLiteral("Акт"), this);
    auto *aktForm = new QFormLayout(akt);
    aktForm->addRow(QStringLiteral("Заголовок:"), EditAktName);
    aktForm->addRow(QStringLiteral("Подзаголовок:"), EditAkt);
    auto *podryad = new QGroupBox(QStringLiteral("Подрядчик"), this);
    auto *podryadForm = new QFormLayout(podryad);
    podryadForm->addRow(QStringLiteral("Надпись:"), EditPodryad);

    auto *buttons = new QDialogButtonBox(this);
    ButtonOK = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ButtonOK->setObjectName(QStringLiteral("ButtonOK"));
    ButtonOK->setDefault(true);
    QPushButton *cancel = buttons->addButton(QStringLiteral("Отмена"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("ButtonCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(smeta);
    layout->addWidget(akt);
    layout->addWidget(podryad);
    layout->addWidget(buttons);
    setTitles(ViewTitles());
}

QLineEdit *TEditFromAktSmeta::field(const QString &key) {
    return findChild<QLineEdit *>(key);
}

void TEditFromAktSmeta::setTitles(const ViewTitles &titles) {
    for (const QString &key : ViewTitles::keys())
        field(key)->setText(titles.value(key));
}

ViewTitles TEditFromAktSmeta::titles() const {
    return ViewTitles::read([this](const QString &key, const QString &) {
        return const_cast<TEditFromAktSmeta *>(this)->field(key)->text();
    });
}
