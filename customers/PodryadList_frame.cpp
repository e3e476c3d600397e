#include "PodryadList_frame.h"

#include "app/Dialogs.h"
#include "app/SettingsStore.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {
const QString kTicksSection = QStringLiteral("Podryad");
const QString kUridDanOption = QStringLiteral("PodryadCheckBoxUridDan");
const QString kSaved = QStringLiteral("Сохранено");

template <typename W> W *named(W *w, const QString &name) {
    w->setObjectName(name);
    return w;
}
} // namespace

TPodryadList::TPodryadList(TModuleSQL &module, OptionFlags options, SettingsStore *store, QWidget *parent)
    : QWidget(parent), m_register(module), m_options(std::move(options)), m_store(store) {
    setObjectName(QStringLiteral("PodryadList"));
    setWindowTitle(QStringLiteral("Данные подрядчика"));
    build();
    reload(QString());
}

void TPodryadList::build() {
    auto *root = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    ComboBoxPodryad = named(new QComboBox(this), QStringLiteral("ComboBoxPodryad"));
    ComboBoxPodryad->setMinimumWidth(260);
    btnAdd = named(new QPushButton(style()->standardIcon(QStyle::SP_FileIcon), QString(), this), "btnAdd");
    btnAdd->setToolTip(QStringLiteral("Добавить подрядчика"));
    btnDelRow =
        named(new QPushButton(style()->standardIcon(QStyle::SP_TrashIcon), QString(), this), "btnDelRow");
    btnDelRow->setToolTip(QStringLiteral("Удалить подрядчика"));
    btnClear = named(new QPushButton(style()->standardIcon(QStyle::SP_DialogDiscardButton), QString(), this),
                     "btnClear");
    btnClear->setToolTip(QStringLiteral("Удалить все данные в базе"));
    btnOk = named(new QPushButton(style()->standardIcon(QStyle::SP_DialogSaveButton), kSaved, this), "btnOk");
    btnOk->setToolTip(QStringLiteral("Сохранить"));
    top->addWidget(new QLabel(QStringLiteral("Подрядчик"), this));
    top->addWidget(ComboBoxPodryad, 1);
    for (QPushButton *b : {btnAdd, btnDelRow, btnClear, btnOk})
        top->addWidget(b);
    root->addLayout(top);

    auto *grid = new QGridLayout;
    int r = 0;
    auto edit = [this](const QString &name) { return named(new QLineEdit(this), name); };
    auto plain = [&](const QString &label, QWidget *field) {
        grid->addWidget(new QLabel(label, this), r, 0);
        grid->addWidget(field, r++, 1);
    };
    // A detail with a tick takes part in the legal-data line.
    auto ticked = [&](const QString &column, const QString &label, QWidget *field) {
        auto *box = named(new QCheckBox(label, this), QStringLiteral("Check_") + column);
        box->setChecked(!m_store || m_store->flag(kTicksSection, QStringLiteral("Check_") + column, true));
        connect(box, &QCheckBox::toggled, this, [this, column](bool on) {
            if (m_store)
                m_store->setFlag(kTicksSection, QStringLiteral("Check_") + column, on);
        });
        m_legalTicks.insert(column, box);
        grid->addWidget(box, r, 0);
        grid->addWidget(field, r++, 1);
    };
    EditShotName = edit("EditShotName");
    EditLongName = edit("EditLongName");
    EditPhone = edit("EditPhone");
    EditEmail = edit("EditEmail");
    EditAdress = edit("EditAdress");
    EditFax = edit("EditFax");
    EditINN = edit("EditINN");
    EditOGRN = edit("EditOGRN");
    EditKPP = edit("EditKPP");
    EditBoss = edit("EditBoss");
    EditGlavbuh = edit("EditGlavbuh");
    EditAccount = edit("EditAccount");
    EditBank = edit("EditBank");
    EditBIK = edit("EditBIK");
    EditKorAccount = edit("EditKorAccount");
    EditCertificate = edit("EditCertificate");
    MemoPasport = named(new QPlainTextEdit(this), QStringLiteral("MemoPasport"));
    MemoPasport->setMaximumHeight(60);
    MemoUridDan = named(new QPlainTextEdit(this), QStringLiteral("MemoUridDan"));
    MemoUridDan->setMaximumHeight(80);
    plain(QStringLiteral("*Имя для сметы"), EditShotName);
    plain(QStringLiteral("Имя для договора/счёта"), EditLongName);
    plain(QStringLiteral("Номер телефона"), EditPhone);
    plain(QStringLiteral("E-mail"), EditEmail);
    plain(QStringLiteral("Адрес"), EditAdress);
    plain(QStringLiteral("Факс"), EditFax);
    ticked("inn", "ИНН", EditINN);
    ticked("okpo", "ОГРН", EditOGRN);
    ticked("bank", "Банк", EditBank);
    ticked("account", "Расчетный счет", EditAccount);
    ticked("koraccount", "Корр. счет", EditKorAccount);
    ticked("bik", "БИК", EditBIK);
    ticked("kpp", "КПП", EditKPP);
    ticked("certificate", "Номер свидетельства", EditCertificate);
    ticked("pasport", "Паспортные данные", MemoPasport);
    plain(QStringLiteral("Руководитель"), EditBoss);
    plain(QStringLiteral("Главный бухгалтер"), EditGlavbuh);
    spdUridDan =
        named(new QPushButton(QStringLiteral("Записать отмеченные юридические данные"), this), "spdUridDan");
    grid->addWidget(spdUridDan, r++, 0, 1, 2, Qt::AlignLeft);
    plain(QStringLiteral("Юридические данные"), MemoUridDan);
    CheckBoxUridDan =
        named(new QCheckBox(QStringLiteral("Добавлять к имени подрядчика в смете"), this), "CheckBoxUridDan");
    CheckBoxUridDan->setChecked(m_options.get(kUridDanOption));
    grid->addWidget(CheckBoxUridDan, r++, 0, 1, 2);
    root->addLayout(grid);
    root->addStretch(1);

    connect(btnAdd, &QPushButton::clicked, this, &TPodryadList::btnAddClick);
    connect(btnDelRow, &QPushButton::clicked, this, &TPodryadList::btnDelRowClick);
    connect(btnClear, &QPushButton::clicked, this, &TPodryadList::btnClearClick);
    connect(btnOk, &QPushButton::clicked, this, &TPodryadList::btnOkClick);
    connect(spdUridDan, &QPushButton::clicked, this, &TPodryadList::spdUridDanClick);
    connect(ComboBoxPodryad, &QComboBox::activated, this, &TPodryadList::ComboBoxPodryadChange);
    connect(CheckBoxUridDan, &QCheckBox::toggled, this,
            [this](bool on) { m_options.set(kUridDanOption, on); });
    // Editing the names or the address is a reminder that there is something to save.
    for (QLineEdit *e : {EditShotName, EditLongName, EditAdress})
        connect(e, &QLineEdit::textEdited, this, &TPodryadList::markUnsaved);
}

void TPodryadList::markUnsaved() {
    btnOk->setText(QStringLiteral("Сохранить"));
}
void TPodryadList::markSaved() {
    btnOk->setText(kSaved);
}

void TPodryadList::reload(const QString &selectId) {
    const QList<Fields> all = m_register.contractors();
    ComboBoxPodryad->clear();
    int index = all.isEmpty() ? -1 : 0;
    for (int i = 0; i < all.size(); ++i) {
        ComboBoxPodryad->addItem(all[i].value("shotname"), all[i].value("id"));
        if (all[i].value("id") == selectId)
            index = i;
    }
    ComboBoxPodryad->setCurrentIndex(index);
    ComboBoxPodryadChange(index);
}

void TPodryadList::chooseContractor(const QString &shortName) {
    const int i = ComboBoxPodryad->findText(shortName);
    if (i >= 0) {
        ComboBoxPodryad->setCurrentIndex(i);
        ComboBoxPodryadChange(i);
    }
}

void TPodryadList::ComboBoxPodryadChange(int index) {
    showContractor(index >= 0 ? m_register.byId(ComboBoxPodryad->itemData(index).toString())
                              : ContractorData{});
}

void TPodryadList::showContractor(const ContractorData &d) {
    m_id = d.found ? d.contractor.value("id") : QString();
    const Fields &c = d.contractor;
    const Fields &r = d.requisites;
    EditShotName->setText(c.value("shotname"));
    EditLongName->setText(c.value("longname"));
    EditPhone->setText(c.value("phone"));
    EditEmail->setText(ContractorRegister::email(m_store));
    EditAdress->setText(r.value("adres"));
    EditFax->setText(r.value("fax"));
    EditINN->setText(r.value("inn"));
    EditOGRN->setText(r.value("okpo"));
    EditKPP->setText(r.value("kpp"));
    EditBoss->setText(r.value("boss"));
    EditGlavbuh->setText(r.value("glavbuh"));
    EditAccount->setText(r.value("account"));
    EditBank->setText(r.value("bank"));
    EditBIK->setText(r.value("bik"));
    EditKorAccount->setText(r.value("koraccount"));
    EditCertificate->setText(r.value("certificate"));
    MemoPasport->setPlainText(r.value("pasport"));
    MemoUridDan->setPlainText(r.value("note"));
    markSaved();
}

bool TPodryadList::report(RegisterStatus status) {
    switch (status) {
    case RegisterStatus::Ok:
        return true;
    case RegisterStatus::BlankName:
        dialogs().tell(Captions::warning, QStringLiteral("Пустая затея"), Dialogs::Icon::Warning);
        break;
    case RegisterStatus::Duplicate:
        dialogs().tell(Captions::warning, QStringLiteral("Подрядчик с таким именем уже имеется"),
                       Dialogs::Icon::Warning);
        break;
    case RegisterStatus::NotFound:
        dialogs().tell(Captions::warning, QStringLiteral("Подрядчик не выбран"), Dialogs::Icon::Warning);
        break;
    case RegisterStatus::Failed:
        dialogs().tell(
            Captions::error,
            QStringLiteral("Не удалось изменить данные подрядчика: %1").arg(m_register.lastError()),
            Dialogs::Icon::Error);
        break;
    }
    return false;
}

void TPodryadList::btnAddClick() {
    QString name;
    if (!dialogs().input(QStringLiteral("Новый подрядчик"), QStringLiteral("Добавить подрядчика"), &name))
        return;
    QString id;
    if (!report(m_register.add(name.trimmed(), &id)))
        return;
    reload(id);
    emit contractorsChanged();
}

Fields TPodryadList::requisiteFields() const {
    return {{"certificate", EditCertificate->text()},
            {"pasport", MemoPasport->toPlainText()},
            {"adres", EditAdress->text()},
            {"inn", EditINN->text()},
            {"kpp", EditKPP->text()},
            {"boss", EditBoss->text()},
            {"glavbuh", EditGlavbuh->text()},
            {"account", EditAccount->text()},
            {"bank", EditBank->text()},
            {"bik", EditBIK->text()},
            {"koraccount", EditKorAccount->text()},
            {"fax", EditFax->text()},
            {"okpo", EditOGRN->text()},
            {"note", MemoUridDan->toPlainText()}};
}

void TPodryadList::btnOkClick() {
    QString id = m_id;
    // Data typed before any contractor was added become a new contractor.
    if (id.isEmpty() && !report(m_register.add(EditShotName->text().trimmed(), &id)))
        return;
    const Fields contractor{{"id", id},
                            {"shotname", EditShotName->text().trimmed()},
                            {"longname", EditLongName->text().trimmed()},
                            {"phone", EditPhone->text()}};
    if (!report(m_register.save(contractor, requisiteFields())))
        return;
    ContractorRegister::setEmail(m_store, EditEmail->text().trimmed());
    reload(id);
    emit contractorsChanged();
}

void TPodryadList::btnDelRowClick() {
    if (m_id.isEmpty()) {
        report(RegisterStatus::NotFound);
        return;
    }
    const QString name = ComboBoxPodryad->currentText().trimmed();
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить подрядчика %1?")
                                              .arg(name.isEmpty() ? QStringLiteral("Без имени") : name)) !=
        Dialogs::Answer::Yes)
        return;
    if (!report(m_register.remove(m_id)))
        return;
    reload(QString());
    emit contractorsChanged();
}

void TPodryadList::btnClearClick() {
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить все данные в базе?")) !=
        Dialogs::Answer::Yes)
        return;
    if (!report(m_register.drop()))
        return;
    reload(QString());
    emit contractorsChanged();
}

void TPodryadList::spdUridDanClick() {
    QSet<QString> ticked;
    for (auto it = m_legalTicks.cbegin(); it != m_legalTicks.cend(); ++it)
        if (it.value()->isChecked())
            ticked.insert(it.key());
    MemoUridDan->setPlainText(LegalData::line(requisiteFields(), ticked));
    markUnsaved();
}
