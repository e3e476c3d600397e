#include "RequisitesForm.h"

#include "storage/SettingsStore.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
template <typename W> W *named(W *w, const QString &name) {
    w->setObjectName(name);
    return w;
}
} // namespace

RequisitesForm::RequisitesForm(SettingsStore *store, const QString &ticksSection, const QString &tickPrefix,
                               const QString &ogrnName, const QList<Row> &leadingRows, QWidget *parent)
    : QWidget(parent), m_store(store), m_ticksSection(ticksSection), m_tickPrefix(tickPrefix) {
    setObjectName(QStringLiteral("RequisitesForm"));
    auto *root = new QVBoxLayout(this);
    m_grid = new QGridLayout;
    root->addLayout(m_grid);
    root->addStretch(1);

    auto edit = [this](const QString &name) { return named(new QLineEdit(this), name); };
    EditINN = edit(QStringLiteral("EditINN"));
    EditOGRN = edit(ogrnName);
    EditBank = edit(QStringLiteral("EditBank"));
    EditAccount = edit(QStringLiteral("EditAccount"));
    EditKorAccount = edit(QStringLiteral("EditKorAccount"));
    EditBIK = edit(QStringLiteral("EditBIK"));
    EditKPP = edit(QStringLiteral("EditKPP"));
    EditCertificate = edit(QStringLiteral("EditCertificate"));
    MemoPasport = named(new QPlainTextEdit(this), QStringLiteral("MemoPasport"));
    MemoPasport->setMaximumHeight(70);
    EditBoss = edit(QStringLiteral("EditBoss"));
    EditGlavbuh = edit(QStringLiteral("EditGlavbuh"));

    for (const Row &row : leadingRows)
        addRow(row.label, row.field);
    addTicked(QStringLiteral("inn"), QStringLiteral("ИНН"), EditINN);
    addTicked(QStringLiteral("okpo"), QStringLiteral("ОГРН"), EditOGRN);
    addTicked(QStringLiteral("bank"), QStringLiteral("Банк"), EditBank);
    addTicked(QStringLiteral("account"), QStringLiteral("Расчетный счет"), EditAccount);
    addTicked(QStringLiteral("koraccount"), QStringLiteral("Корр. счет"), EditKorAccount);
    addTicked(QStringLiteral("bik"), QStringLiteral("БИК"), EditBIK);
    addTicked(QStringLiteral("kpp"), QStringLiteral("КПП"), EditKPP);
    addTicked(QStringLiteral("certificate"), QStringLiteral("Номер свидетельства"), EditCertificate);
    addTicked(QStringLiteral("pasport"), QStringLiteral("Паспортные данные"), MemoPasport);
    addRow(QStringLiteral("Руководитель"), EditBoss);
    addRow(QStringLiteral("Главный бухгалтер"), EditGlavbuh);
    spdUridDan = named(new QPushButton(QStringLiteral("Записать отмеченные юридические данные"), this),
                       QStringLiteral("spdUridDan"));
    addWideRow(spdUridDan, Qt::AlignLeft);
}

// A detail with a tick takes part in the legal-data line.
void RequisitesForm::addTicked(const QString &column, const QString &label, QWidget *field) {
    auto *box = named(new QCheckBox(label, this), QStringLiteral("Check_") + column);
    const QString key = m_tickPrefix + column;
    box->setChecked(!m_store || m_store->flag(m_ticksSection, key, true));
    connect(box, &QCheckBox::toggled, this, [this, key](bool on) {
        if (m_store)
            m_store->setFlag(m_ticksSection, key, on);
    });
    m_ticks.insert(column, box);
    m_grid->addWidget(box, m_row, 0);
    m_grid->addWidget(field, m_row++, 1);
}

void RequisitesForm::addRow(const QString &label, QWidget *field) {
    m_grid->addWidget(new QLabel(label, this), m_row, 0);
    m_grid->addWidget(field, m_row++, 1);
}

void RequisitesForm::addWideRow(QWidget *widget, Qt::Alignment alignment) {
    m_grid->addWidget(widget, m_row++, 0, 1, 2, alignment);
}

Fields RequisitesForm::fields() const {
    return {{"certificate", EditCertificate->text()},
            {"pasport", MemoPasport->toPlainText()},
            {"inn", EditINN->text()},
            {"kpp", EditKPP->text()},
            {"boss", EditBoss->text()},
            {"glavbuh", EditGlavbuh->text()},
            {"account", EditAccount->text()},
            {"bank", EditBank->text()},
            {"bik", EditBIK->text()},
            {"koraccount", EditKorAccount->text()},
            {"okpo", EditOGRN->text()}};
}

void RequisitesForm::setFields(const Fields &r) {
    EditCertificate->setText(r.value("certificate"));
    MemoPasport->setPlainText(r.value("pasport"));
    EditINN->setText(r.value("inn"));
    EditKPP->setText(r.value("kpp"));
    EditBoss->setText(r.value("boss"));
    EditGlavbuh->setText(r.value("glavbuh"));
    EditAccount->setText(r.value("account"));
    EditBank->setText(r.value("bank"));
    EditBIK->setText(r.value("bik"));
    EditKorAccount->setText(r.value("koraccount"));
    EditOGRN->setText(r.value("okpo"));
}

QString RequisitesForm::legalLine() const {
    QSet<QString> ticked;
    for (auto it = m_ticks.cbegin(); it != m_ticks.cend(); ++it)
        if (it.value()->isChecked())
            ticked.insert(it.key());
    return LegalData::line(fields(), ticked);
}
