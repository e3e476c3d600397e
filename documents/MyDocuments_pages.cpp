// The register's pages read and filtered: the rows of a page, its years and totals, the files of the
// chosen estimate, entering the window, switching pages, and the filters.

#include "MyDocuments_frame.h"
#include "RegisterModel.h"
#include "RegisterRows.h"
#include "customers/CustomerRegister.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <QAction>
#include <QCalendarWidget>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QRadioButton>
#include <QStringListModel>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>

// ----- Reading

QSqlDatabase TMyDocuments::registerDb() {
    QSqlDatabase db = m_module.database(Db::MyDoc);
    if (db.isOpen()) {
        LabelProblem->hide();
    } else {
        LabelProblem->setText(m_module.failure(Db::MyDoc));
        LabelProblem->show();
    }
    return db;
}

TMyDocuments::Page &TMyDocuments::current() {
    return PageControl->currentWidget() == m_draft.tab ? m_draft : m_doc;
}

bool TMyDocuments::draftsShown() const {
    return PageControl->currentWidget() == m_draft.tab;
}

RegisterFilter::Filter TMyDocuments::filterOf(const Page &page) const {
    RegisterFilter::Filter f;
    f.customer = m_customer;
    f.status = isDrafts(page) ? RegisterFilter::Status::All : m_status;
    f.month = page.month->currentIndex();
    f.year = page.year->currentIndex() > 0 ? page.year->currentText() : QString();
    return f;
}

void TMyDocuments::readPage(Page &page, qlonglong keepId) {
    page.comboFilter->stop();
    RegisterPage rows;
    QSqlDatabase db = registerDb();
    if (db.isOpen()) {
        QString error;
        QString statement;
        try {
            statement = page.day.isValid() ? RegisterFilter::dayStatement(page.list, page.day)
                                           : RegisterFilter::statement(page.list, filterOf(page));
        } catch (const TextValues::SqlTextError &) {
            error = QStringLiteral("имя заказчика содержит недопустимый символ");
        }
        // The same rows of an unchanged register are on screen already (a page switched back to).
        const RegisterRows::Version now = RegisterRows::version(db);
        if (error.isEmpty() && statement == page.readStatement && now == page.readVersion) {
            finishRead(page, keepId);
            return;
        }
        if (now != page.readVersion)
            page.yearsKnown = false; // rows may have come or gone
        page.readStatement.clear();
        if (error.isEmpty() && RegisterRows::read(db, statement, &rows, &error)) {
            page.readStatement = statement;
            page.readVersion = now;
        }
        if (!error.isEmpty()) {
            LabelProblem->setText(QStringLiteral("Не удалось прочитать список «%1»: %2")
                                      .arg(PageControl->tabText(PageControl->indexOf(page.tab)), error));
            LabelProblem->show();
        }
    } else {
        page.readStatement.clear();
    }
    page.model->setPage(std::move(rows));
    finishRead(page, keepId);
}

void TMyDocuments::finishRead(Page &page, qlonglong keepId) {
    page.model->setCustomer(m_customer);
    const int keep = keepId > 0 ? page.model->page().indexOf(keepId) : -1;
    if (keep >= 0) {
        page.grid->selectRow(keep);
        page.grid->scrollTo(page.model->index(keep, 0));
    }
    // The years change only with the rows themselves, not with a filter.
    if (!page.yearsKnown)
        readYears(page);
    if (&page == &current())
        showTotals();
    selectionChanged();
}

void TMyDocuments::readYears(Page &page) {
    QSqlDatabase db = m_module.database(Db::MyDoc);
    page.yearsKnown = db.isOpen();
    QStringList items{kAnyYear};
    if (db.isOpen())
        items << RegisterRows::years(db, page.list);
    const QString chosen = page.year->currentIndex() > 0 ? page.year->currentText() : QString();
    if (!chosen.isEmpty() && !items.contains(chosen))
        items << chosen; // a year chosen with "Текущий месяц" stays until it is changed
    QStringList have;
    for (int i = 0; i < page.year->count(); ++i)
        have << page.year->itemText(i);
    if (have == items)
        return;
    page.year->clear();
    page.year->addItems(items);
    page.year->setCurrentIndex(chosen.isEmpty() ? 0 : static_cast<int>(items.indexOf(chosen)));
}

void TMyDocuments::readCustomers() {
    const QString chosen = m_customer;
    m_customers->setStringList(CustomerRegister(m_module).customers());
    const int row = static_cast<int>(m_customers->stringList().indexOf(chosen));
    if (row >= 0)
        ListBoxZakaz->setCurrentIndex(m_customers->index(row));
    else
        ListBoxZakaz->setCurrentIndex(QModelIndex());
}

void TMyDocuments::showTotals() {
    const RegisterTotals &t = current().model->page().totals();
    const QString tip = t.unreadable > 0
                            ? QStringLiteral("Строк с нечитаемой суммой (не учтены): %1").arg(t.unreadable)
                            : QString();
    for (auto [field, sum] :
         {std::pair{EditSumMat, t.materials}, std::pair{EditSumRab, t.works}, std::pair{EditSumAll, t.all}}) {
        field->setText(sum ? sum.text() : QStringLiteral("переполнение"));
        field->setToolTip(tip);
    }
}

void TMyDocuments::showOutputs() {
    std::vector<OutputFileRow> contracts, accounts, acts;
    const int row = draftsShown() ? -1 : GridDoc->currentIndex().row();
    QSqlDatabase db = m_doc.model->hasRow(row) ? m_module.database(Db::MyDoc) : QSqlDatabase();
    if (db.isOpen()) {
        const qlonglong id = m_doc.model->page().id(row);
        RegisterRows::readOutputs(db, QStringLiteral("contract"), id, &contracts, nullptr);
        RegisterRows::readOutputs(db, QStringLiteral("account"), id, &accounts, nullptr);
        RegisterRows::readOutputs(db, QStringLiteral("act"), id, &acts, nullptr);
    }
    m_contracts->setRows(std::move(contracts));
    m_accounts->setRows(std::move(accounts));
    m_acts->setRows(std::move(acts));
}

void TMyDocuments::selectionChanged() {
    const int doc = GridDoc->currentIndex().row();
    const bool hasDoc = m_doc.model->hasRow(doc);
    NFinish->setEnabled(hasDoc && !m_doc.model->page().finished(doc));
    for (QAction *a : {NEdit, NDelete, ToolSetDrafts, ToolOpen})
        a->setEnabled(hasDoc);
    const bool draft = m_draft.model->hasRow(GridDraft->currentIndex().row());
    for (QAction *a : {MMoveToDoc, MEditDraft, MDelDraft, ToolOpenDraft})
        a->setEnabled(draft);
    showOutputs();
}

// ----- Entering, pages, filters

void TMyDocuments::FrameEnter() {
    showDraftsPage(m_options.get(QStringLiteral("CheckBoxDraft")));
    readCustomers();
    m_draft.yearsKnown = m_doc.yearsKnown = false;
    readPage(m_draft);
    readPage(m_doc);
}

void TMyDocuments::refresh() {
    Page &page = current();
    const int row = page.grid->currentIndex().row();
    page.yearsKnown = false;
    readPage(page, page.model->hasRow(row) ? page.model->page().id(row) : 0);
}

void TMyDocuments::showDraftsPage(bool on) {
    m_showDrafts = on;
    PageControl->setTabVisible(PageControl->indexOf(m_draft.tab), on);
    if (!on && draftsShown())
        PageControl->setCurrentWidget(m_doc.tab);
}

void TMyDocuments::resetFilters(Page &page) {
    m_customer.clear();
    ListBoxZakaz->setCurrentIndex(QModelIndex());
    m_status = RegisterFilter::Status::All;
    RadioAll->setChecked(true);
    page.month->setCurrentIndex(0);
    page.year->setCurrentIndex(0);
    page.day = QDate();
    m_doc.model->setCustomer(QString());
    m_draft.model->setCustomer(QString());
}

void TMyDocuments::pageChanged() {
    // Each page shows its whole list when it comes up.
    Page &page = current();
    resetFilters(page);
    readPage(page);
}

void TMyDocuments::filterSoon(Page &page) {
    page.comboFilter->start();
}

void TMyDocuments::ListBoxZakazClick(const QString &customer) {
    // A press and its click both come here: the second finds the rows shown already.
    if (customer == m_customer && !current().day.isValid())
        return;
    m_customer = customer;
    const int row = static_cast<int>(m_customers->stringList().indexOf(customer));
    if (row >= 0 && ListBoxZakaz->currentIndex().row() != row)
        ListBoxZakaz->setCurrentIndex(m_customers->index(row));
    m_doc.model->setCustomer(customer);
    m_draft.model->setCustomer(customer);
    current().day = QDate();
    readPage(current());
}

void TMyDocuments::RzCalendar1Click(const QDate &day) {
    if (!day.isValid())
        return;
    current().day = day;
    readPage(current());
}

void TMyDocuments::BtnTodayClick() {
    RzCalendar1->setSelectedDate(QDate::currentDate());
    RzCalendar1Click(QDate::currentDate());
}

void TMyDocuments::RadioStatusClick(RegisterFilter::Status status) {
    m_status = status;
    m_doc.day = QDate();
    readPage(m_doc);
}

void TMyDocuments::BtnFilterPeriodClick() {
    current().day = QDate();
    readPage(current());
}

void TMyDocuments::BtnPrevMonthClick() {
    QComboBox *month = current().month;
    month->setCurrentIndex(RegisterFilter::previousMonth(month->currentIndex()));
}

void TMyDocuments::BtnNextMonthClick() {
    QComboBox *month = current().month;
    month->setCurrentIndex(RegisterFilter::nextMonth(month->currentIndex()));
}

void TMyDocuments::BtnCurrentMonthClick() {
    Page &page = current();
    const QDate today = QDate::currentDate();
    page.month->setCurrentIndex(today.month());
    const QString year = TextValues::yearText(today);
    int index = page.year->findText(year);
    if (index < 0) {
        page.year->addItem(year);
        index = page.year->count() - 1;
    }
    page.year->setCurrentIndex(index);
    page.day = QDate();
    readPage(page);
}

void TMyDocuments::BtnClearFiltersClick() {
    resetFilters(m_doc);
    resetFilters(m_draft);
    readPage(current());
}

void TMyDocuments::BtnFirstRowClick() {
    Page &page = current();
    if (page.model->rowCount() > 0) {
        page.grid->selectRow(0);
        page.grid->scrollToTop();
    }
}

void TMyDocuments::BtnLastRowClick() {
    Page &page = current();
    if (page.model->rowCount() > 0) {
        page.grid->selectRow(page.model->rowCount() - 1);
        page.grid->scrollToBottom();
    }
}
