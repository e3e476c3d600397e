#include "PodryadList_frame.h"

#include "RegisterReport.h"
#include "RequisitesForm.h"

#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QCheckBox>
#include <QComboBox>
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

    // The contractor's names and contacts stand above the legal details.
    auto edit = [this](const char *name) { return named(new QLineEdit(this), QString::fromLatin1(name)); };
    EditShotName = edit("EditShotName");
    EditLongName = edit("EditLongName");
    EditPhone = edit("EditPhone");
    EditEmail = edit("EditEmail");
    EditAdress = edit("EditAdress");
    EditFax = edit("EditFax");
    requisites =
        new RequisitesForm(m_store, kTicksSection, QStringLiteral("Check_"), QStringLiteral("EditOGRN"),
                           {{QStringLiteral("*Имя для сметы"), EditShotName},
                            {QStringLiteral("Имя для договора/счёта"), EditLongName},
                            {QStringLiteral("Номер телефона"), EditPhone},
                            {QStringLiteral("E-mail"), EditEmail},
                            {QStringLiteral("Адрес"), EditAdress},
                            {QStringLiteral("Факс"), EditFax}},
                           this);
    requisites->layout()->setContentsMargins(0, 0, 0, 0);
    MemoUridDan = named(new QPlainTextEdit(this), QStringLiteral("MemoUridDan"));
    MemoUridDan->setMaximumHeight(80);
    requisites->addRow(QStringLiteral("Юридические данные"), MemoUridDan);
    CheckBoxUridDan =
        named(new QCheckBox(QStringLiteral("Добавлять к имени подрядчика в смете"), this), "CheckBoxUridDan");
    CheckBoxUridDan->setChecked(m_options.get(kUridDanOption));
    requisites->addWideRow(CheckBoxUridDan);
    root->addWidget(requisites, 1);

    connect(btnAdd, &QPushButton::clicked, this, &TPodryadList::btnAddClick);
    connect(btnDelRow, &QPushButton::clicked, this, &TPodryadList::btnDelRowClick);
    connect(btnClear, &QPushButton::clicked, this, &TPodryadList::btnClearClick);
    connect(btnOk, &QPushButton::clicked, this, &TPodryadList::btnOkClick);
    connect(requisites->spdUridDan, &QPushButton::clicked, this, &TPodryadList::spdUridDanClick);
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
    requisites->setFields(r);
    MemoUridDan->setPlainText(r.value("note"));
    markSaved();
}

bool TPodryadList::report(RegisterStatus status) {
    return reportRegisterStatus(status,
                                {QStringLiteral("Подрядчик с таким именем уже имеется"),
                                 QStringLiteral("Подрядчик не выбран"),
                                 QStringLiteral("Не удалось изменить данные подрядчика: %1")},
                                m_register.lastError());
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
    Fields r = requisites->fields();
    r.insert(QStringLiteral("adres"), EditAdress->text());
    r.insert(QStringLiteral("fax"), EditFax->text());
    r.insert(QStringLiteral("note"), MemoUridDan->toPlainText());
    return r;
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
    MemoUridDan->setPlainText(requisites->legalLine());
    markUnsaved();
}
