#include "HeaderPanel.h"

#include "customers/ContractorRegister.h"
#include "customers/CustomerRegister.h"

#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QToolButton>

namespace {
template <typename W> W *named(W *w, const QString &name) {
    w->setObjectName(name);
    return w;
}
} // namespace

EstimateHeaderPanel::EstimateHeaderPanel(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("EstimateHeader"));
    build();
}

void EstimateHeaderPanel::build() {
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(2, 2, 2, 2);
    ComboBoxZakaz = named(new QComboBox(this), QStringLiteral("ComboBoxZakaz"));
    ComboBoxObject = named(new QComboBox(this), QStringLiteral("ComboBoxObject"));
    ComboBoxPodryad = named(new QComboBox(this), QStringLiteral("ComboBoxPodryad"));
    for (QComboBox *b : {ComboBoxZakaz, ComboBoxObject, ComboBoxPodryad}) {
        b->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        b->setMinimumContentsLength(18);
    }
    ComboBoxShablon = named(new QComboBox(this), QStringLiteral("ComboBoxShablon"));
    ComboBoxShablon->setEditable(true);
    ComboBoxShablon->addItems(EstimateHeader::titles());
    ComboBoxShablon->setMinimumContentsLength(36);
    ComboBoxShablon->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    DateSmeta = named(new QDateEdit(QDate::currentDate(), this), QStringLiteral("DateSmeta"));
    DateSmeta->setCalendarPopup(true);
    DateSmeta->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    NumericSmetaWord = named(new QLineEdit(this), QStringLiteral("NumericSmetaWord"));
    NumericSmetaWord->setMaximumWidth(110);
    NumericSmetaWord->setToolTip(QStringLiteral("Текстовая часть номера сметы"));
    spdDateNumericSmetaWord = named(new QToolButton(this), QStringLiteral("spdDateNumericSmetaWord"));
    spdDateNumericSmetaWord->setCheckable(true);
    spdDateNumericSmetaWord->setText(QStringLiteral("Д"));
    spdDateNumericSmetaWord->setToolTip(
        QStringLiteral("Нумерация по дате: текстовая часть номера — дата сметы"));
    NumericSmeta = named(new QSpinBox(this), QStringLiteral("NumericSmeta"));
    NumericSmeta->setRange(0, 999999);
    NumericSmeta->setValue(1);
    EditNameWork = named(new QLineEdit(this), QStringLiteral("EditNameWork"));
    EditNameWork->setPlaceholderText(QStringLiteral("Наименование работ"));

    // The number and the date travel together.
    m_numberAndDate = new QWidget(this);
    auto *number = new QHBoxLayout(m_numberAndDate);
    number->setContentsMargins(0, 0, 0, 0);
    number->addWidget(new QLabel(QStringLiteral("№"), m_numberAndDate));
    number->addWidget(NumericSmetaWord);
    number->addWidget(spdDateNumericSmetaWord);
    number->addWidget(NumericSmeta);
    number->addSpacing(8);
    number->addWidget(new QLabel(QStringLiteral("от"), m_numberAndDate));
    number->addWidget(DateSmeta);
    m_customerLabel = new QLabel(QStringLiteral("Заказчик:"), this);
    m_objectLabel = new QLabel(QStringLiteral("Объект:"), this);
    m_contractorLabel = new QLabel(QStringLiteral("Подрядчик:"), this);
    m_worksLabel = new QLabel(QStringLiteral("Работы:"), this);
    // The widths of both arrangements, measured once.
    arrange(false);
    m_wideWidth = grid->minimumSize().width();
    arrange(true);
    m_narrowWidth = grid->minimumSize().width();
    arrange(false);

    auto edited = [this] {
        if (!m_quiet)
            emit this->edited();
    };
    connect(ComboBoxZakaz, &QComboBox::currentIndexChanged, this, [this] {
        if (!m_quiet)
            fillObjects(QString());
    });
    connect(ComboBoxZakaz, &QComboBox::activated, this, [this, edited] {
        emit customerOrObjectChosen();
        edited();
    });
    connect(ComboBoxObject, &QComboBox::activated, this, [this, edited] {
        emit customerOrObjectChosen();
        edited();
    });
    connect(ComboBoxPodryad, &QComboBox::activated, this, edited);
    connect(ComboBoxShablon, &QComboBox::currentTextChanged, this, [this, edited](const QString &t) {
        if (!m_quiet)
            emit titleChanged(t);
        edited();
    });
    connect(DateSmeta, &QDateEdit::dateChanged, this, [this, edited] {
        applyDateNumber();
        edited();
    });
    connect(NumericSmeta, &QSpinBox::valueChanged, this, edited);
    connect(NumericSmetaWord, &QLineEdit::textChanged, this, edited);
    connect(EditNameWork, &QLineEdit::textChanged, this, edited);
    connect(spdDateNumericSmetaWord, &QToolButton::toggled, this, [this](bool on) {
        applyDateNumber();
        if (!m_quiet)
            emit dateNumberingToggled(on);
    });
}

void EstimateHeaderPanel::arrange(bool narrow) {
    auto *grid = static_cast<QGridLayout *>(layout());
    m_narrow = narrow;
    while (QLayoutItem *item = grid->takeAt(0))
        delete item; // the widgets stay
    for (int c = 0; c < grid->columnCount(); ++c)
        grid->setColumnStretch(c, 0);
    if (!narrow) {
        // Заказчик [  ] Объект [  ] Подрядчик [      ]
        // [Заголовок     ] № [ ][Д][ ] от [ ]  Работы: [ ]
        grid->addWidget(m_customerLabel, 0, 0);
        grid->addWidget(ComboBoxZakaz, 0, 1);
        grid->addWidget(m_objectLabel, 0, 2);
        grid->addWidget(ComboBoxObject, 0, 3);
        grid->addWidget(m_contractorLabel, 0, 4);
        grid->addWidget(ComboBoxPodryad, 0, 5);
        grid->addWidget(ComboBoxShablon, 1, 0, 1, 2);
        grid->addWidget(m_numberAndDate, 1, 2, 1, 2);
        grid->addWidget(m_worksLabel, 1, 4);
        grid->addWidget(EditNameWork, 1, 5);
        grid->setColumnStretch(1, 2);
        grid->setColumnStretch(3, 2);
        grid->setColumnStretch(5, 3);
    } else {
        // Заказчик [  ] Объект [  ]
        // Подрядчик [  ] Работы: [  ]
        // [Заголовок   ] № [ ][Д][ ] от [ ]
        grid->addWidget(m_customerLabel, 0, 0);
        grid->addWidget(ComboBoxZakaz, 0, 1);
        grid->addWidget(m_objectLabel, 0, 2);
        grid->addWidget(ComboBoxObject, 0, 3);
        grid->addWidget(m_contractorLabel, 1, 0);
        grid->addWidget(ComboBoxPodryad, 1, 1);
        grid->addWidget(m_worksLabel, 1, 2);
        grid->addWidget(EditNameWork, 1, 3);
        grid->addWidget(ComboBoxShablon, 2, 0, 1, 2);
        grid->addWidget(m_numberAndDate, 2, 2, 1, 2);
        grid->setColumnStretch(1, 1);
        grid->setColumnStretch(3, 1);
    }
    updateGeometry();
}

QSize EstimateHeaderPanel::minimumSizeHint() const {
    // As narrow as the three-line arrangement allows: the panel wraps instead of widening the window.
    return {m_narrowWidth, layout()->minimumSize().height()};
}

void EstimateHeaderPanel::resizeEvent(QResizeEvent *event) {
    const bool narrow = event->size().width() < m_wideWidth;
    if (narrow != m_narrow)
        arrange(narrow);
    QWidget::resizeEvent(event);
}

void EstimateHeaderPanel::attach(TModuleSQL *module) {
    m_module = module;
    reloadCustomers();
    reloadContractors();
}

void EstimateHeaderPanel::choose(QComboBox *box, const QString &text) {
    if (text.isEmpty()) {
        box->setCurrentIndex(-1);
        return;
    }
    int i = box->findText(text, Qt::MatchExactly);
    if (i < 0) {
        // Named by the document, unknown to the register: shown all the same.
        box->addItem(text);
        i = box->count() - 1;
    }
    box->setCurrentIndex(i);
}

void EstimateHeaderPanel::reloadCustomers() {
    if (!m_module)
        return;
    QScopedValueRollback<bool> quiet(m_quiet, true);
    const QString customer = ComboBoxZakaz->currentText();
    const QString object = ComboBoxObject->currentText();
    ComboBoxZakaz->clear();
    ComboBoxZakaz->addItems(CustomerRegister(*m_module).customers());
    const int i = ComboBoxZakaz->findText(customer, Qt::MatchExactly);
    // A customer that left the register leaves nothing chosen rather than silently another one.
    ComboBoxZakaz->setCurrentIndex(i);
    fillObjects(i >= 0 ? object : QString());
}

void EstimateHeaderPanel::fillObjects(const QString &select) {
    QScopedValueRollback<bool> quiet(m_quiet, true);
    ComboBoxObject->clear();
    const QString customer = ComboBoxZakaz->currentText();
    if (m_module && !customer.isEmpty())
        ComboBoxObject->addItems(CustomerRegister(*m_module).objects(customer));
    const int i = ComboBoxObject->findText(select, Qt::MatchExactly);
    // A newly chosen customer comes with its first object.
    ComboBoxObject->setCurrentIndex(i >= 0 ? i : (ComboBoxObject->count() > 0 ? 0 : -1));
}

void EstimateHeaderPanel::reloadContractors() {
    if (!m_module)
        return;
    QScopedValueRollback<bool> quiet(m_quiet, true);
    const QString current = ComboBoxPodryad->currentText();
    ComboBoxPodryad->clear();
    ComboBoxPodryad->addItems(ContractorRegister(*m_module).shortNames());
    const int i = ComboBoxPodryad->findText(current, Qt::MatchExactly);
    ComboBoxPodryad->setCurrentIndex(i >= 0 ? i : (ComboBoxPodryad->count() > 0 ? 0 : -1));
}

EstimateHeader::Values EstimateHeaderPanel::values(const EstimateHeader::Values &defaults) const {
    EstimateHeader::Values v = defaults;
    v.customer = ComboBoxZakaz->currentText();
    v.object = ComboBoxObject->currentText();
    v.contractor = ComboBoxPodryad->currentText();
    v.date = DateSmeta->date();
    v.number = NumericSmeta->value();
    v.numberWord = NumericSmetaWord->text();
    v.nameWork = EditNameWork->text();
    v.title = ComboBoxShablon->currentText();
    return v;
}

void EstimateHeaderPanel::setValues(const EstimateHeader::Values &v) {
    QScopedValueRollback<bool> quiet(m_quiet, true);
    choose(ComboBoxZakaz, v.customer);
    fillObjects(QString());
    choose(ComboBoxObject, v.object);
    choose(ComboBoxPodryad, v.contractor);
    if (v.date.isValid())
        DateSmeta->setDate(v.date);
    NumericSmeta->setValue(v.number);
    NumericSmetaWord->setText(v.numberWord);
    if (v.numberWord.isEmpty())
        applyDateNumber();
    EditNameWork->setText(v.nameWork);
    EditNameWork->setCursorPosition(0); // show the beginning of a long name
    ComboBoxShablon->setCurrentText(v.title.isEmpty() ? EstimateHeader::defaultTitle : v.title);
}

void EstimateHeaderPanel::setDateNumbering(bool on, bool yearFirst) {
    QScopedValueRollback<bool> quiet(m_quiet, true);
    m_yearFirst = yearFirst;
    spdDateNumericSmetaWord->setChecked(on);
    applyDateNumber();
}

bool EstimateHeaderPanel::dateNumbering() const {
    return spdDateNumericSmetaWord->isChecked();
}

void EstimateHeaderPanel::applyDateNumber() {
    if (spdDateNumericSmetaWord->isChecked())
        NumericSmetaWord->setText(EstimateHeader::dateNumber(DateSmeta->date(), m_yearFirst));
}
