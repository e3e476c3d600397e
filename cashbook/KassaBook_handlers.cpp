// TKassaBook: what its buttons, lists and filters do (the layout is in KassaBook_frame.cpp, the
// printed forms and the mobile exchange in KassaBook_output.cpp).

#include "KassaBook_frame.h"

#include "estimate/EstimateOutput.h"
#include "storage/TextValues.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QTabWidget>
#include <QTableView>
#include <QToolButton>

void TKassaBook::tell(const CashBook::Outcome &o) {
    if (o.ok || o.text.isEmpty())
        return;
    dialogs().tell(o.caption, o.text, o.error ? Dialogs::Icon::Error : Dialogs::Icon::Warning);
}

QString TKassaBook::caption() const {
    return QStringLiteral("Касса ") + QDir::toNativeSeparators(m_book.bookPath());
}

void TKassaBook::enter() {
    LabelBook->setText(caption());
    reloadCustomers();
    m_book.reload(true);
    showSelection();
}

int TKassaBook::currentRow() const {
    const QModelIndex i = GridRashod->currentIndex();
    return i.isValid() ? i.row() : -1;
}

void TKassaBook::selectRow(int row, int column) {
    if (row < 0 || row >= m_book.records()->rowCount())
        return;
    const QModelIndex i = m_book.records()->index(row, column);
    GridRashod->setCurrentIndex(i);
    GridRashod->scrollTo(i);
}

void TKassaBook::reloadCustomers() {
    const QString customer = m_book.filter().customer;
    const QStringList names = m_book.customers();
    m_customers->setStringList(names);
    const int at = names.indexOf(customer);
    if (at >= 0) {
        ListBox1->setCurrentIndex(m_customers->index(at));
        m_objects->setStringList(m_book.objects(customer));
        const int object = m_objects->stringList().indexOf(m_book.filter().object);
        if (object >= 0)
            ListBox2->setCurrentIndex(m_objects->index(object));
    } else {
        ListBox1->clearSelection();
        m_objects->setStringList({});
    }
}

void TKassaBook::reloadYears() {
    const QString chosen = ComboBoxYear->currentIndex() > 0 ? ComboBoxYear->currentText() : QString();
    QStringList years = m_book.years();
    if (!chosen.isEmpty() && !years.contains(chosen))
        years << chosen;
    ComboBoxYear->clear();
    ComboBoxYear->addItem(QStringLiteral("Год"));
    ComboBoxYear->addItems(years);
    ComboBoxYear->setCurrentIndex(chosen.isEmpty() ? 0 : ComboBoxYear->findText(chosen));
}

void TKassaBook::showSelection() {
    LabelCustomer->setText(m_book.filter().customer);
    LabelObject->setText(m_book.filter().object);
}

void TKassaBook::showTotals() {
    const QStringList cells = m_book.totals().cells();
    for (int c = 0; c < cells.size(); ++c) {
        auto *item = new QStandardItem(cells[c]);
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_totals->setItem(0, c, item);
    }
    EditZakupka->setText(m_book.totals().empty ? QStringLiteral("0")
                                               : m_book.purchaseAmount(SpinEditZakupka->value()).text());
    const MoneyResult &balance = m_book.balance();
    const bool zero = balance.ok() && balance->isZero();
    EditLastBalance->setText(balance.grouped());
    EditLastBalance->setVisible(!zero);
    LabelBalance->setVisible(!zero);
    const auto &sold = m_book.soldMaterials();
    if (sold && sold->ok() && !(*sold)->isZero())
        lbDohodMat->setText(QStringLiteral("В том числе доход от продажи материалов:   ") + sold->grouped());
    else
        lbDohodMat->clear();
    {
        const QSignalBlocker block(DateEdit);
        DateEdit->setDate(m_book.firstRowDate(DateBegin->date()));
    }
    showCheckCost();
}

void TKassaBook::showCheckCost() {
    EditCheki->setText(m_book.receiptsCost().grouped() + QLatin1Char(' ') +
                       EstimateOutput::currencySign(EditValuta->currentIndex()));
}

// ----- Lists

void TKassaBook::ListBox1Click(const QString &customer) {
    m_book.setCustomer(customer);
    m_objects->setStringList(m_book.objects(customer));
    ListBox2->clearSelection();
    showSelection();
}

void TKassaBook::ListBox2Click(const QString &object) {
    m_book.setObject(object);
    showSelection();
}

// ----- Filters

void TKassaBook::DateBeginChange() {
    // Moving the begin past the end takes the end along.
    if (DateBegin->date() > DateEnd->date()) {
        const QSignalBlocker block(DateEnd);
        DateEnd->setDate(DateBegin->date());
    }
}

void TKassaBook::DateEndChange() {
    if (m_settingDates || DateEnd->date() >= DateBegin->date())
        return;
    {
        const QSignalBlocker block(DateEnd);
        DateEnd->setDate(DateBegin->date());
    }
    dialogs().tell(QStringLiteral("Предупреждение"),
                   QStringLiteral("Начало периода не должно превышать окончание"), Dialogs::Icon::Warning);
}

void TKassaBook::applyPeriod() {
    tell(m_book.setPeriodClause(DateBegin->date(), DateEnd->date()));
}

void TKassaBook::btnPeriodFilterClick() {
    applyPeriod();
}

void TKassaBook::btnFirstDayClick() {
    DateBegin->setDate(CashMonths::firstDay(QDate::currentDate()));
    applyPeriod();
}

void TKassaBook::btnPeriodNextClick() {
    const QDate month = CashMonths::firstDay(DateBegin->date()).addMonths(1);
    m_settingDates = true;
    DateEnd->setDate(CashMonths::lastDay(month));
    DateBegin->setDate(month);
    m_settingDates = false;
    applyPeriod();
}

void TKassaBook::btnPeriodPriorClick() {
    const QDate month = CashMonths::firstDay(DateBegin->date()).addMonths(-1);
    m_settingDates = true;
    DateBegin->setDate(month);
    DateEnd->setDate(CashMonths::lastDay(month));
    m_settingDates = false;
    applyPeriod();
}

void TKassaBook::btnClearFiltersClick() {
    {
        const QSignalBlocker block(FiltrCategory);
        FiltrCategory->setCurrentIndex(0);
    }
    ComboBoxMonth->setCurrentIndex(0);
    ComboBoxYear->setCurrentIndex(0);
    ListBox1->clearSelection();
    ListBox1->setCurrentIndex({});
    m_objects->setStringList({});
    m_book.clearFilters();
    showSelection();
}

void TKassaBook::btnMonthFilterClick() {
    m_book.setMonthClause(ComboBoxMonth->currentIndex(),
                          ComboBoxYear->currentIndex() > 0 ? ComboBoxYear->currentText() : QString());
}

void TKassaBook::moveMonth(int delta) {
    int month = ComboBoxMonth->currentIndex();
    QString year = ComboBoxYear->currentIndex() > 0 ? ComboBoxYear->currentText() : QString();
    CashMonths::move(&month, &year, delta, QDate::currentDate());
    ComboBoxMonth->setCurrentIndex(month);
    if (ComboBoxYear->findText(year) < 0)
        ComboBoxYear->addItem(year);
    ComboBoxYear->setCurrentIndex(ComboBoxYear->findText(year));
    btnMonthFilterClick();
}

void TKassaBook::btnMonthNextClick() {
    moveMonth(1);
}

void TKassaBook::btnMonthPriorClick() {
    moveMonth(-1);
}

void TKassaBook::btnMonthCurrentClick() {
    ComboBoxMonth->setCurrentIndex(0);
    ComboBoxYear->setCurrentIndex(0);
    moveMonth(0);
}

void TKassaBook::FiltrCategoryChange(int index) {
    m_book.setCategory(index);
}

// ----- Records

void TKassaBook::btnAddRecordClick() {
    CashBook::Outcome o;
    const int row = m_book.addRecord(DateEdit->date(), &o);
    if (row < 0)
        return tell(o);
    PageControl->setCurrentWidget(TabRashod);
    selectRow(row, CashCol::Date);
    GridRashod->setFocus();
}

void TKassaBook::btnDeleteRecordClick() {
    const int row = currentRow();
    if (row < 0)
        return tell(CashBook::Outcome::warning(QStringLiteral("Выберите запись")));
    const QString date = m_book.records()->entry(row).date;
    if (dialogs().ask(QStringLiteral("Удаление"),
                      QStringLiteral("Удалить запись от ") + date + QLatin1Char('?')) != Dialogs::Answer::Yes)
        return;
    tell(m_book.deleteRecord(row));
    selectRow(qMin(row, m_book.records()->rowCount() - 1));
}

void TKassaBook::btnFirstRecordClick() {
    selectRow(0);
}

void TKassaBook::btnLastRecordClick() {
    selectRow(m_book.records()->rowCount() - 1);
}

void TKassaBook::btnDateToRowClick() {
    const int row = currentRow();
    if (row < 0)
        return tell(CashBook::Outcome::warning(QStringLiteral("Выберите строку")));
    m_book.setRowDate(row, DateEdit->date());
}

void TKassaBook::btnAddZakupkaClick() {
    tell(m_book.addPurchase(DateEdit->date(), EditZakupka->text(), SpinEditZakupka->value()));
}

void TKassaBook::ToolTreshClick() {
    if (dialogs().ask(QStringLiteral("Удаление"), QStringLiteral("Удалить все записи в книге?")) !=
        Dialogs::Answer::Yes)
        return;
    tell(m_book.deleteAll());
    reloadYears();
}

// ----- Receipts

void TKassaBook::btnAddChekiClick() {
    const CashBook::Outcome o = m_book.markReceipts(currentRow());
    if (!o.ok)
        return tell(o);
    PageControl->setCurrentWidget(TabCheki);
}

void TKassaBook::btnDeleteChekiClick() {
    const int row = currentRow();
    if (row < 0)
        return tell(CashBook::Outcome::warning(QStringLiteral("Выберите запись")));
    const CashEntry &e = m_book.records()->entry(row);
    if (e.cheki.isEmpty())
        return tell(CashBook::Outcome::warning(QStringLiteral("В записи нет расшифровки чеков")));
    if (dialogs().ask(QStringLiteral("Удаление"), QStringLiteral("Удалить расшифровку по чекам от ") +
                                                      e.date + QLatin1Char('?')) != Dialogs::Answer::Yes)
        return;
    tell(m_book.deleteReceipts(row));
}

void TKassaBook::btnAddCheckClick() {
    if (m_book.receiptsRow() < 0)
        m_book.showReceipts(currentRow());
    CashBook::Outcome o;
    const int row = m_book.addLine(&o);
    if (row < 0)
        return tell(o);
    const QModelIndex i = m_book.checks()->index(row, ChecksCol::Name);
    GridCheki->setCurrentIndex(i);
    GridCheki->edit(i);
}

void TKassaBook::btnDeleteCheckClick() {
    const QModelIndex i = GridCheki->currentIndex();
    if (!i.isValid())
        return tell(CashBook::Outcome::warning(QStringLiteral("Выберите строку чека")));
    const QString name = m_book.checks()->line(i.row()).name;
    if (dialogs().ask(QStringLiteral("Удаление"), QStringLiteral("Удалить строку чека «%1»?").arg(name)) !=
        Dialogs::Answer::Yes)
        return;
    tell(m_book.deleteLine(i.row()));
}

// ----- Books

void TKassaBook::ToolOpenClick() {
    const QString path = dialogs().openFile(
        QStringLiteral("Открыть кассу и сделать её основной"), QFileInfo(m_book.bookPath()).absolutePath(),
        QStringLiteral("Кассовая книга Вирн (cashbase.db);;Все файлы (*)"));
    if (path.isEmpty())
        return;
    const CashBook::Outcome o =
        m_book.openBook(path, m_ctx.targets ? m_ctx.targets() : BookUpgrade::Targets());
    if (!o.ok)
        return tell(o);
    if (m_ctx.bookChanged)
        m_ctx.bookChanged(m_book.bookPath());
    {
        const QSignalBlocker block(FiltrCategory);
        FiltrCategory->setCurrentIndex(0);
    }
    ComboBoxMonth->setCurrentIndex(0);
    ComboBoxYear->setCurrentIndex(0);
    m_customers->setStringList({});
    m_objects->setStringList({});
    enter();
}

void TKassaBook::ToolSaveClick() {
    const QString folder = QFileInfo(m_book.bookPath()).absolutePath();
    const QString path = dialogs().saveFile(
        QStringLiteral("Сохранить кассовую книгу"), folder, CashBook::copyName(QDate::currentDate()),
        QStringLiteral("Кассовая книга Вирн (*.db)"), QStringLiteral("db"));
    if (path.isEmpty())
        return;
    const CashBook::Outcome o = m_book.saveCopy(path);
    if (!o.ok)
        return tell(o);
    if (m_ctx.status)
        m_ctx.status(QStringLiteral("Кассовая книга сохранена: %1").arg(QDir::toNativeSeparators(path)));
}

void TKassaBook::ToolDohodMatClick() {
    if (m_ctx.soldMaterials)
        m_ctx.soldMaterials(m_book.filter().customer, m_book.filter().object);
}
