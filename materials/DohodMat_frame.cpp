#include "DohodMat_frame.h"

#include "SoldReport.h"
#include "ui/Dialogs.h"
#include "ui/ShortTextDelegate.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

TDohodMat::TDohodMat(SoldReport &report, QWidget *parent) : QDialog(parent), m_report(report) {
    setObjectName(QStringLiteral("DohodMat"));
    setWindowTitle(QStringLiteral("Доход с продаж материалов"));
    resize(900, 560);
    auto *layout = new QVBoxLayout(this);

    auto *filter = new QGridLayout;
    auto label = [this](const QString &text, QWidget *buddy) {
        auto *l = new QLabel(text, this);
        l->setBuddy(buddy);
        return l;
    };
    ComboBoxZakaz = new QComboBox(this);
    ComboBoxZakaz->setObjectName(QStringLiteral("ComboBoxZakaz"));
    ComboBoxZakaz->setPlaceholderText(QStringLiteral("Все заказчики"));
    ComboBoxZakaz->setMinimumContentsLength(24);
    ComboBoxZakaz->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(ComboBoxZakaz, &QComboBox::activated, this, &TDohodMat::ComboBoxZakazSelect);
    ComboBoxObject = new QComboBox(this);
    ComboBoxObject->setObjectName(QStringLiteral("ComboBoxObject"));
    ComboBoxObject->setPlaceholderText(QStringLiteral("Все объекты"));
    ComboBoxObject->setMinimumContentsLength(24);
    ComboBoxObject->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(ComboBoxObject, &QComboBox::activated, this, &TDohodMat::ComboBoxObjectSelect);
    DateBegin = new QDateEdit(this);
    DateBegin->setObjectName(QStringLiteral("DateBegin"));
    DateEnd = new QDateEdit(this);
    DateEnd->setObjectName(QStringLiteral("DateEnd"));
    for (QDateEdit *d : {DateBegin, DateEnd}) {
        d->setCalendarPopup(true);
        d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    }
    ButtonFilter =
        new QPushButton(style()->standardIcon(QStyle::SP_DialogApplyButton), QStringLiteral("Фильтр"), this);
    ButtonFilter->setObjectName(QStringLiteral("ButtonFilter"));
    ButtonFilter->setToolTip(QStringLiteral("Материалы, проданные заказчику за период"));
    connect(ButtonFilter, &QPushButton::clicked, this, &TDohodMat::ButtonFilterClick);
    ButtonAll = new QPushButton(QStringLiteral("Все записи"), this);
    ButtonAll->setObjectName(QStringLiteral("ButtonAll"));
    connect(ButtonAll, &QPushButton::clicked, this, &TDohodMat::ButtonAllClick);
    filter->addWidget(label(QStringLiteral("Заказчик"), ComboBoxZakaz), 0, 0);
    filter->addWidget(ComboBoxZakaz, 0, 1);
    filter->addWidget(label(QStringLiteral("Объект"), ComboBoxObject), 1, 0);
    filter->addWidget(ComboBoxObject, 1, 1);
    auto *period = new QHBoxLayout;
    period->addWidget(label(QStringLiteral("Период с"), DateBegin));
    period->addWidget(DateBegin);
    period->addWidget(label(QStringLiteral("по"), DateEnd));
    period->addWidget(DateEnd);
    period->addWidget(ButtonFilter);
    period->addStretch(1);
    period->addWidget(ButtonAll);
    filter->addLayout(period, 2, 0, 1, 2);
    filter->setColumnStretch(1, 1);
    layout->addLayout(filter);

    GridDohod = new QTableView(this);
    GridDohod->setObjectName(QStringLiteral("GridDohod"));
    GridDohod->setModel(&m_report.model());
    GridDohod->setItemDelegate(new ShortTextDelegate(GridDohod));
    GridDohod->verticalHeader()->setVisible(false);
    GridDohod->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    GridDohod->verticalHeader()->setDefaultSectionSize(21);
    GridDohod->setWordWrap(false);
    GridDohod->setSelectionBehavior(QAbstractItemView::SelectRows);
    GridDohod->setSelectionMode(QAbstractItemView::SingleSelection);
    GridDohod->setEditTriggers(QAbstractItemView::NoEditTriggers);
    GridDohod->horizontalHeader()->setSectionResizeMode(WriteOffCol::Name, QHeaderView::Stretch);
    const int widths[] = {0, 58, 64, 80, 90, 80, 200, 48};
    for (int c = WriteOffCol::Unit; c < WriteOffCol::Count; ++c)
        GridDohod->setColumnWidth(c, widths[c]);
    layout->addWidget(GridDohod, 1);

    auto *bottom = new QHBoxLayout;
    ButtonDelete =
        new QPushButton(style()->standardIcon(QStyle::SP_TrashIcon), QStringLiteral("Удалить запись"), this);
    ButtonDelete->setObjectName(QStringLiteral("ButtonDelete"));
    ButtonDelete->setAutoDefault(false);
    connect(ButtonDelete, &QPushButton::clicked, this, &TDohodMat::ButtonDeleteClick);
    auto *del = new QAction(this);
    del->setShortcut(QKeySequence::Delete);
    del->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(del, &QAction::triggered, this, &TDohodMat::ButtonDeleteClick);
    GridDohod->addAction(del);
    LabelItogo = new QLabel(this);
    LabelItogo->setObjectName(QStringLiteral("LabelItogo"));
    bottom->addWidget(ButtonDelete);
    bottom->addStretch(1);
    bottom->addWidget(LabelItogo);
    layout->addLayout(bottom);
    for (QPushButton *b : {ButtonFilter, ButtonAll})
        b->setAutoDefault(false);
}

void TDohodMat::warn(const QString &text) {
    dialogs().tell(Captions::warning, text, Dialogs::Icon::Warning);
}

void TDohodMat::showTotal() {
    const WriteOffModel &m = m_report.model();
    const MoneyResult total = m.total();
    LabelItogo->setText(QStringLiteral("Итого: %1   (записей: %2)")
                            .arg(total ? total->grouped() : numberProblemText(total.problem()))
                            .arg(m.rowCount()));
}

void TDohodMat::fillObjects(const QStringList &objects) {
    const QSignalBlocker quiet(ComboBoxObject);
    ComboBoxObject->clear();
    ComboBoxObject->addItems(objects);
    ComboBoxObject->setCurrentIndex(-1);
}

void TDohodMat::open(const QString &customer, const QString &object, const QDate &today) {
    {
        const QSignalBlocker quiet(ComboBoxZakaz);
        ComboBoxZakaz->clear();
        ComboBoxZakaz->addItems(m_report.customers());
        ComboBoxZakaz->setCurrentIndex(-1);
    }
    DateBegin->setDate(QDate(today.year(), today.month(), 1));
    DateEnd->setDate(today);
    const int known = customer.isEmpty() ? -1 : ComboBoxZakaz->findText(customer);
    if (known < 0) {
        fillObjects(m_report.allObjects());
        QString message;
        if (!m_report.showAll(&message))
            warn(message);
        showTotal();
        return;
    }
    ComboBoxZakaz->setCurrentIndex(known);
    QStringList objects;
    QString notice, message;
    if (!m_report.chooseCustomer(customer, &objects, &notice, &message))
        warn(message);
    fillObjects(objects);
    ComboBoxObject->setCurrentIndex(ComboBoxObject->findText(object));
    showTotal();
}

void TDohodMat::ComboBoxZakazSelect(int index) {
    if (index < 0)
        return;
    QStringList objects;
    QString notice, message;
    const bool read = m_report.chooseCustomer(ComboBoxZakaz->itemText(index), &objects, &notice, &message);
    fillObjects(objects);
    showTotal();
    if (!read)
        warn(message);
    else if (!notice.isEmpty())
        warn(notice);
}

void TDohodMat::ComboBoxObjectSelect(int index) {
    if (index < 0)
        return;
    QString customer, notice, message;
    const bool read = m_report.chooseObject(ComboBoxObject->itemText(index), &customer, &notice, &message);
    if (!customer.isEmpty()) {
        const QSignalBlocker quiet(ComboBoxZakaz);
        ComboBoxZakaz->setCurrentIndex(ComboBoxZakaz->findText(customer));
    }
    showTotal();
    if (!read)
        warn(message);
    else if (!notice.isEmpty())
        warn(notice);
}

void TDohodMat::ButtonFilterClick() {
    QString message;
    if (!m_report.applyPeriod(ComboBoxZakaz->currentIndex() < 0 ? QString() : ComboBoxZakaz->currentText(),
                              DateBegin->date(), DateEnd->date(), &message)) {
        warn(message);
        return;
    }
    {
        // The filter is by customer: the object combo no longer narrows the list.
        const QSignalBlocker quiet(ComboBoxObject);
        ComboBoxObject->setCurrentIndex(-1);
    }
    showTotal();
}

void TDohodMat::ButtonAllClick() {
    {
        const QSignalBlocker quiet(ComboBoxZakaz);
        ComboBoxZakaz->setCurrentIndex(-1);
    }
    fillObjects(m_report.allObjects());
    QString message;
    if (!m_report.showAll(&message))
        warn(message);
    showTotal();
}

void TDohodMat::ButtonDeleteClick() {
    const int row = GridDohod->currentIndex().row();
    const WriteOff *w = m_report.model().rowAt(row);
    if (!w) {
        warn(QStringLiteral("Выберите запись"));
        return;
    }
    // The row is read again while the question is open: its name is kept here.
    const QString name = w->name;
    if (dialogs().ask(Captions::deletion, QStringLiteral("Удалить ") + name + QStringLiteral("?")) !=
        Dialogs::Answer::Yes)
        return;
    QString message;
    if (!m_report.remove(row, &message)) {
        dialogs().tell(Captions::error, message, Dialogs::Icon::Error);
        return;
    }
    showTotal();
}
