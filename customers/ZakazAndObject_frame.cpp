#include "ZakazAndObject_frame.h"

#include "RegisterReport.h"
#include "RequisitesForm.h"

#include "storage/SettingsStore.h"
#include "ui/Dialogs.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStyle>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString kTicksSection = QStringLiteral("Customer");
constexpr int kCustomerRole = Qt::UserRole + 1;

template <typename W> W *named(W *w, const QString &name) {
    w->setObjectName(name);
    return w;
}

QToolButton *toolButton(QWidget *parent, const QString &name, const QString &text, const QString &hint,
                        QStyle::StandardPixmap icon) {
    auto *b = named(new QToolButton(parent), name);
    b->setText(text);
    b->setToolTip(hint);
    b->setIcon(parent->style()->standardIcon(icon));
    b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    b->setAutoRaise(true);
    return b;
}

} // namespace

TZakazAndObject::TZakazAndObject(TModuleSQL &module, OptionFlags options, SettingsStore *store,
                                 QWidget *parent)
    : QWidget(parent), m_register(module), m_options(std::move(options)), m_store(store) {
    setObjectName(QStringLiteral("ZakazAndObject"));
    setWindowTitle(QStringLiteral("Заказчики и объекты"));
    m_customers = new QStandardItemModel(this);
    m_objects = new QStandardItemModel(this);
    build();
    reloadCustomers(QString());
}

void TZakazAndObject::build() {
    auto *root = new QVBoxLayout(this);
    auto *tools = new QHBoxLayout;
    spdAddCustomer =
        toolButton(this, "spdAddCustomer", "Добавить заказчика", "Добавить заказчика", QStyle::SP_FileIcon);
    spdDelZakaz =
        toolButton(this, "spdDelZakaz", "Удалить заказчика", "Удалить заказчика", QStyle::SP_TrashIcon);
    spdClear = toolButton(this, "spdClear", "Очистить базу", "Удалить все данные в базе",
                          QStyle::SP_DialogDiscardButton);
    spdAddObject = toolButton(this, "spdAddObject", "Добавить объект", "Добавить объект",
                              QStyle::SP_FileDialogNewFolder);
    spdEditObject = toolButton(this, "spdEditObject", "Переименовать объект",
                               "Редактировать наименование объекта", QStyle::SP_FileDialogDetailedView);
    spdDelObject = toolButton(this, "spdDelObject", "Удалить объект", "Удалить объект", QStyle::SP_TrashIcon);
    btnAllObject = named(new QPushButton(QStringLiteral("Объекты"), this), QStringLiteral("btnAllObject"));
    btnAllObject->setToolTip(QStringLiteral("Отобразить все объекты"));
    btnOK = named(new QPushButton(QStringLiteral("Сохранить"), this), QStringLiteral("btnOK"));
    btnOK->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    for (QWidget *w : std::initializer_list<QWidget *>{spdAddCustomer, spdDelZakaz, spdClear})
        tools->addWidget(w);
    tools->addSpacing(16);
    for (QWidget *w :
         std::initializer_list<QWidget *>{spdAddObject, spdEditObject, spdDelObject, btnAllObject})
        tools->addWidget(w);
    tools->addStretch(1);
    tools->addWidget(btnOK);
    root->addLayout(tools);

    auto *split = new QSplitter(Qt::Horizontal, this);
    auto *lists = new QWidget(split);
    auto *listsLayout = new QVBoxLayout(lists);
    listsLayout->setContentsMargins(0, 0, 0, 0);
    listsLayout->addWidget(new QLabel(QStringLiteral("Заказчики"), lists));
    ListBoxZakaz = named(new QListView(lists), QStringLiteral("ListBoxZakaz"));
    ListBoxZakaz->setModel(m_customers);
    ListBoxZakaz->setEditTriggers(QAbstractItemView::NoEditTriggers);
    listsLayout->addWidget(ListBoxZakaz, 2);
    LabelObjects = new QLabel(QStringLiteral("Объекты"), lists);
    listsLayout->addWidget(LabelObjects);
    ListBoxObject = named(new QListView(lists), QStringLiteral("ListBoxObject"));
    ListBoxObject->setModel(m_objects);
    ListBoxObject->setEditTriggers(QAbstractItemView::NoEditTriggers);
    listsLayout->addWidget(ListBoxObject, 1);
    listsLayout->addWidget(new QLabel(QStringLiteral("Заметка для объекта"), lists));
    EditNoteObect = named(new QLineEdit(lists), QStringLiteral("EditNoteObect"));
    listsLayout->addWidget(EditNoteObect);

    auto *pages = new QTabWidget(split);
    pages->addTab(buildCustomerPage(), QStringLiteral("Заказчик"));
    pages->addTab(buildAddressPage(), QStringLiteral("Адрес"));
    requisites =
        new RequisitesForm(m_store, kTicksSection, QStringLiteral("Zak_"), QStringLiteral("EditOKPO"));
    requisites->spdUridDan->setToolTip(
        QStringLiteral("В заметку заказчика: она добавляется к его имени в документах"));
    pages->addTab(requisites, QStringLiteral("Реквизиты"));
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 2);
    root->addWidget(split, 1);

    connect(spdAddCustomer, &QToolButton::clicked, this, &TZakazAndObject::spdAddCustomerClick);
    connect(spdDelZakaz, &QToolButton::clicked, this, &TZakazAndObject::spdDelZakazClick);
    connect(spdClear, &QToolButton::clicked, this, &TZakazAndObject::spdClearClick);
    connect(spdAddObject, &QToolButton::clicked, this, &TZakazAndObject::spdAddObjectClick);
    connect(spdEditObject, &QToolButton::clicked, this, &TZakazAndObject::spdEditObjectClick);
    connect(spdDelObject, &QToolButton::clicked, this, &TZakazAndObject::spdDelObjectClick);
    connect(btnAllObject, &QPushButton::clicked, this, &TZakazAndObject::btnAllObjectClick);
    connect(btnOK, &QPushButton::clicked, this, &TZakazAndObject::btnOKClick);
    connect(requisites->spdUridDan, &QPushButton::clicked, this, &TZakazAndObject::spdUridDanClick);
    connect(ListBoxZakaz, &QListView::clicked, this,
            [this](const QModelIndex &i) { ListBoxZakazClick(i.data().toString()); });
    connect(ListBoxObject, &QListView::clicked, this,
            [this](const QModelIndex &i) { ListBoxObjectClick(i.data().toString()); });
}

QWidget *TZakazAndObject::buildCustomerPage() {
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    auto edit = [page](const QString &name) { return named(new QLineEdit(page), name); };
    EditID = edit(QStringLiteral("EditID"));
    EditID->setVisible(false);
    EditFIO = edit(QStringLiteral("EditFIO"));
    EditPhone = edit(QStringLiteral("EditPhone"));
    EditFax = edit(QStringLiteral("EditFax"));
    EditEmail = edit(QStringLiteral("EditEmail"));
    EditAgent = edit(QStringLiteral("EditAgent"));
    EditAdress = edit(QStringLiteral("EditAdress"));
    Memo1 = named(new QPlainTextEdit(page), QStringLiteral("Memo1"));
    form->addRow(QStringLiteral("Наименование (Ф.И.О.)"), EditFIO);
    form->addRow(QStringLiteral("Телефон(ы)"), EditPhone);
    form->addRow(QStringLiteral("Факс"), EditFax);
    form->addRow(QStringLiteral("E-mail"), EditEmail);
    form->addRow(QStringLiteral("Представитель"), EditAgent);
    form->addRow(QStringLiteral("Адрес +"), EditAdress);
    form->addRow(QStringLiteral("Заметка (юридические данные)"), Memo1);
    return page;
}

void TZakazAndObject::bindOption(QCheckBox *box, const QString &key) {
    box->setChecked(m_options.get(key));
    connect(box, &QCheckBox::toggled, this, [this, key](bool on) { m_options.set(key, on); });
}

QWidget *TZakazAndObject::buildAddressPage() {
    auto *page = new QWidget;
    auto *grid = new QGridLayout(page);
    auto row = [&](int r, QCheckBox *&box, const QString &boxName, const QString &label, QLineEdit *&edit,
                   const QString &editName) {
        box = named(new QCheckBox(label, page), boxName);
        edit = named(new QLineEdit(page), editName);
        bindOption(box, boxName);
        grid->addWidget(box, r, 0);
        grid->addWidget(edit, r, 1);
    };
    row(0, CheckBoxRegion, "CheckBoxRegion", "Область", EditRegion, "EditRegion");
    row(1, CheckBoxArea, "CheckBoxArea", "Район", EditArea, "EditArea");
    row(2, CheckBoxCity, "CheckBoxCity", "Город", EditCity, "EditCity");
    row(3, CheckBoxStreet, "CheckBoxStreet", "Улица", EditStreet, "EditStreet");
    row(4, CheckBoxHouse, "CheckBoxHouse", "Номер дома", EditHouse, "EditHouse");
    row(5, CheckBoxApartment, "CheckBoxApartment", "Номер квартиры", EditApartment, "EditApartment");
    grid->addWidget(new QLabel(QStringLiteral("* В полях НЕ нужно дописывать обл., г., р-он, д., кв."), page),
                    6, 0, 1, 2);
    spdAddress = toolButton(page, "spdAddress", "В поле \"Адрес\"", "Записать детализацию в поле \"Адрес\"",
                            QStyle::SP_ArrowUp);
    grid->addWidget(spdAddress, 7, 0, 1, 2, Qt::AlignLeft);
    CheckBoxDetailAddress =
        named(new QCheckBox(QStringLiteral("Детализиция адреса для создания папок"), page),
              "CheckBoxDetailAddress");
    bindOption(CheckBoxDetailAddress, QStringLiteral("CheckBoxDetailAddress"));
    grid->addWidget(CheckBoxDetailAddress, 8, 0, 1, 2);
    grid->setRowStretch(9, 1);
    connect(spdAddress, &QToolButton::clicked, this, &TZakazAndObject::spdAddressClick);
    return page;
}

QString TZakazAndObject::chosenCustomer() const {
    return m_customer;
}

QString TZakazAndObject::chosenObject() const {
    const QModelIndex i = ListBoxObject->currentIndex();
    if (!i.isValid() || !ListBoxObject->selectionModel()->isSelected(i))
        return {};
    return i.data().toString();
}

void TZakazAndObject::chooseCustomer(const QString &customer, const QString &object) {
    reloadCustomers(customer);
    if (!object.isEmpty() && !m_customer.isEmpty())
        showObjects(object);
}

void TZakazAndObject::reloadCustomers(const QString &select) {
    m_customers->clear();
    int row = -1;
    for (const QString &name : m_register.customers()) {
        if (name == select)
            row = m_customers->rowCount();
        m_customers->appendRow(new QStandardItem(name));
    }
    if (row >= 0) {
        ListBoxZakaz->setCurrentIndex(m_customers->index(row, 0));
        ListBoxZakazClick(select);
    } else {
        m_customer.clear();
        m_objects->clear();
        clearFields();
    }
}

void TZakazAndObject::showObjects(const QString &select) {
    m_allObjects = false;
    LabelObjects->setText(QStringLiteral("Объекты"));
    m_objects->clear();
    EditNoteObect->clear();
    for (const QString &name : m_register.objects(m_customer)) {
        auto *item = new QStandardItem(name);
        item->setData(m_customer, kCustomerRole);
        m_objects->appendRow(item);
        if (name == select) {
            ListBoxObject->setCurrentIndex(item->index());
            ListBoxObjectClick(name);
        }
    }
}

void TZakazAndObject::clearFields() {
    for (QLineEdit *e : findChildren<QLineEdit *>())
        e->clear();
    requisites->MemoPasport->clear();
    Memo1->clear();
}

void TZakazAndObject::ListBoxZakazClick(const QString &customer) {
    const CustomerData d = m_register.customer(customer);
    clearFields();
    if (!d.found) {
        m_customer.clear();
        m_objects->clear();
        return;
    }
    m_customer = customer;
    const Fields &c = d.customer;
    EditID->setText(c.value("_id"));
    EditFIO->setText(c.value("fio"));
    EditEmail->setText(c.value("email"));
    EditPhone->setText(c.value("phone"));
    EditFax->setText(c.value("fax"));
    EditAdress->setText(c.value("address"));
    EditAgent->setText(c.value("Agent"));
    EditRegion->setText(c.value("Region"));
    EditArea->setText(c.value("Area"));
    EditCity->setText(c.value("City"));
    EditStreet->setText(c.value("Street"));
    EditHouse->setText(c.value("House"));
    EditApartment->setText(c.value("numroom"));
    Memo1->setPlainText(c.value("note"));
    requisites->setFields(d.requisites);
    requisites->EditOGRN->setText(c.value("okpo"));
    showObjects(QString());
}

void TZakazAndObject::ListBoxObjectClick(const QString &object) {
    const QModelIndex i = ListBoxObject->currentIndex();
    const QString owner = i.isValid() ? i.data(kCustomerRole).toString() : m_customer;
    if (m_allObjects) {
        // An object of the whole list brings its customer along.
        reloadCustomers(owner);
        showObjects(object);
        return;
    }
    EditNoteObect->setText(m_register.object(owner, object).value("note"));
}

bool TZakazAndObject::report(RegisterStatus status, const QString &duplicateText) {
    const bool ok = reportRegisterStatus(status,
                                         {duplicateText, QStringLiteral("Запись не найдена: список обновлён"),
                                          QStringLiteral("Не удалось изменить базу заказчиков: %1")},
                                         m_register.lastError());
    if (status == RegisterStatus::NotFound)
        reloadCustomers(m_customer);
    return ok;
}

void TZakazAndObject::spdAddCustomerClick() {
    QString name;
    if (!dialogs().input(QStringLiteral("Новый заказчик"), QStringLiteral("Добавить заказчика"), &name))
        return;
    name = name.trimmed();
    if (!report(m_register.addCustomer(name), QStringLiteral("Заказчик с таким именем уже имеется")))
        return;
    reloadCustomers(name);
    emit registerChanged();
    addObjectTo(name);
}

void TZakazAndObject::addObjectTo(const QString &customer) {
    QString object;
    if (!dialogs().input(customer, QStringLiteral("Добавить объект"), &object))
        return;
    object = object.trimmed();
    if (!report(m_register.addObject(customer, object), QStringLiteral("Объект с таким именем уже имеется")))
        return;
    reloadCustomers(customer);
    showObjects(object);
    emit registerChanged();
}

void TZakazAndObject::spdAddObjectClick() {
    if (m_customer.isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Заказчик не выбран"), Dialogs::Icon::Warning);
        return;
    }
    addObjectTo(m_customer);
}

void TZakazAndObject::spdEditObjectClick() {
    const QString old = chosenObject();
    if (m_allObjects || old.isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Объект не выбран"), Dialogs::Icon::Warning);
        return;
    }
    QString name = old;
    if (!dialogs().input(QStringLiteral("Редактировать объект"), old, &name))
        return;
    name = name.trimmed();
    if (!report(m_register.renameObject(m_customer, old, name),
                QStringLiteral("Объект с таким именем уже имеется")))
        return;
    showObjects(name);
    emit registerChanged();
}

void TZakazAndObject::spdDelObjectClick() {
    const QString object = chosenObject();
    if (m_allObjects || object.isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Объект не выбран"), Dialogs::Icon::Warning);
        return;
    }
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить объект \"%1\"?").arg(object)) !=
        Dialogs::Answer::Yes)
        return;
    if (!report(m_register.deleteObject(m_customer, object), QString()))
        return;
    showObjects(QString());
    emit registerChanged();
}

void TZakazAndObject::spdDelZakazClick() {
    if (m_customer.isEmpty()) {
        dialogs().tell(Captions::warning, QStringLiteral("Заказчик не выбран"), Dialogs::Icon::Warning);
        return;
    }
    if (dialogs().ask(m_customer, QStringLiteral("Удалить заказчика и все связанные с ним объекты?")) !=
        Dialogs::Answer::Yes)
        return;
    if (!report(m_register.deleteCustomer(m_customer), QString()))
        return;
    reloadCustomers(QString());
    emit registerChanged();
}

void TZakazAndObject::spdClearClick() {
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить все данные в базе?")) !=
        Dialogs::Answer::Yes)
        return;
    if (!report(m_register.dropRegister(), QString()))
        return;
    reloadCustomers(QString());
    emit registerChanged();
}

void TZakazAndObject::btnAllObjectClick() {
    m_allObjects = true;
    LabelObjects->setText(QStringLiteral("Все объекты"));
    m_objects->clear();
    EditNoteObect->clear();
    for (const auto &[object, customer] : m_register.allObjects()) {
        auto *item = new QStandardItem(object);
        item->setData(customer, kCustomerRole);
        item->setToolTip(customer);
        m_objects->appendRow(item);
    }
}

CustomerRegister::Address TZakazAndObject::address() const {
    return {{CheckBoxRegion->isChecked(), EditRegion->text()},
            {CheckBoxArea->isChecked(), EditArea->text()},
            {CheckBoxCity->isChecked(), EditCity->text()},
            {CheckBoxStreet->isChecked(), EditStreet->text()},
            {CheckBoxHouse->isChecked(), EditHouse->text()},
            {CheckBoxApartment->isChecked(), EditApartment->text()}};
}

void TZakazAndObject::spdAddressClick() {
    EditAdress->setText(CustomerRegister::composeAddress(address()));
}

void TZakazAndObject::spdUridDanClick() {
    Memo1->setPlainText(requisites->legalLine());
}

Fields TZakazAndObject::customerFields() const {
    return {{"_id", EditID->text()},
            {"fio", EditFIO->text().trimmed()},
            {"email", EditEmail->text()},
            {"phone", EditPhone->text()},
            {"fax", EditFax->text()},
            {"okpo", requisites->EditOGRN->text()},
            {"address", EditAdress->text()},
            {"Region", EditRegion->text()},
            {"City", EditCity->text()},
            {"Area", EditArea->text()},
            {"Street", EditStreet->text()},
            {"House", EditHouse->text()},
            {"numroom", EditApartment->text()},
            {"note", Memo1->toPlainText()},
            {"Agent", EditAgent->text()}};
}

void TZakazAndObject::btnOKClick() {
    const Fields c = customerFields();
    const QString object = m_allObjects ? QString() : chosenObject();
    QString id;
    if (!report(m_register.save(c, requisites->fields(), object, EditNoteObect->text(), &id),
                QStringLiteral("Заказчик с таким именем уже имеется")))
        return;
    reloadCustomers(c.value("fio"));
    if (!object.isEmpty())
        showObjects(object);
    emit registerChanged();
}
