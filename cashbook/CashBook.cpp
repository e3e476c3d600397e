#include "CashBook.h"

#include "CashStore.h"
#include "customers/CustomerRegister.h"

#include "materials/WriteOffs.h"
#include "storage/ModuleSQL.h"
#include "storage/SqliteSnapshot.h"
#include "storage/TextValues.h"
#include <QDir>
#include <QFileInfo>

namespace {

const QString kChooseCustomer = QStringLiteral("Выберите заказчика и объект");
const QString kChooseRecord = QStringLiteral("Выберите запись");

// A number typed into a cell: blanks trimmed, "." read as ",".
QString typedNumber(const QString &text) {
    QString v = text.trimmed();
    v.replace(QLatin1Char('.'), QLatin1Char(','));
    return v;
}

} // namespace

CashBook::Outcome CashBook::Outcome::warning(const QString &text) {
    return {false, QStringLiteral("Предупреждение"), text, false};
}

CashBook::Outcome CashBook::Outcome::failure(const QString &text) {
    return {false, QStringLiteral("Ошибка"), text, true};
}

CashBook::CashBook(TModuleSQL &module, QObject *parent)
    : QObject(parent), m_module(module), m_records(new CashGridModel(this)), m_checks(new ChecksModel(this)) {
    m_records->setEditHandler(
        [this](int row, int column, const QString &text) { return editCell(row, column, text); });
    m_checks->setEditHandler(
        [this](int row, int column, const QString &text) { return editLine(row, column, text); });
    m_records->setLoader([this](const std::vector<qint64> &ids, std::vector<CashEntry> *entries) {
        return CashStore::entries(book(), ids, entries, &m_error);
    });
}

QSqlDatabase CashBook::book() const {
    return m_module.database(Db::Cash);
}

namespace {

// The income from sold materials: the warehouse's write-offs with the customer, object and date clauses
// of the record list (the category does not apply to them).
std::optional<MoneyResult> soldTotal(QSqlDatabase warehouse, const CashFilter &f) {
    if (!warehouse.isOpen())
        return std::nullopt;
    WriteOffFilter w;
    w.customer = f.customer;
    w.object = f.object;
    if (f.month > 0)
        w.month = QString::number(f.month);
    w.year = f.year;
    if (f.period) {
        w.from = f.begin;
        w.to = f.end;
    }
    QString error;
    const MoneyResult sum = WriteOffs::soldTotal(warehouse, w, &error);
    if (!error.isEmpty())
        return std::nullopt;
    return sum;
}

} // namespace

QSqlDatabase CashBook::warehouse() const {
    return m_module.database(Db::Mat);
}

QStringList CashBook::customers() const {
    return CustomerRegister(m_module).customers();
}

QStringList CashBook::objects(const QString &customer) const {
    return customer.isEmpty() ? QStringList() : CustomerRegister(m_module).objects(customer);
}

QStringList CashBook::years() const {
    return CashStore::years(book());
}

void CashBook::setCustomer(const QString &customer) {
    m_filter.customer = customer;
    m_filter.object.clear();
    m_balanceFresh = false;
    reload();
}

void CashBook::setObject(const QString &object) {
    m_filter.object = object;
    m_balanceFresh = false;
    reload();
}

void CashBook::setCategory(int category) {
    m_filter.category = category >= 0 && category <= CashCategory::kCount ? category : 0;
    reload();
}

void CashBook::setMonthClause(int month, const QString &year) {
    m_filter.month = month >= 1 && month <= 12 ? month : 0;
    m_filter.year = year;
    reload();
}

CashBook::Outcome CashBook::setPeriodClause(const QDate &begin, const QDate &end) {
    if (!begin.isValid() || !end.isValid() || end < begin)
        return Outcome::warning(QStringLiteral("Начало периода не должно превышать окончание"));
    m_filter.period = true;
    m_filter.begin = begin;
    m_filter.end = end;
    reload();
    return Outcome::done();
}

void CashBook::clearFilters() {
    m_filter = CashFilter();
    m_balanceFresh = false;
    reload();
}

bool CashBook::reload(bool fresh) {
    std::vector<qint64> ids;
    std::vector<CashAmounts> amounts;
    m_error.clear();
    const bool ok = CashStore::load(book(), m_filter, &ids, &amounts, &m_error);
    m_records->setRows(std::move(ids), std::move(amounts), m_filter.category);
    m_checks->setLines({});
    m_receiptsRow = -1;
    recount();
    // Without a category or date clause the grid holds exactly the records of the balance.
    const bool gridIsBalance = m_filter.category == 0 && !m_filter.hasMonthClause() && !m_filter.period;
    if (ok && gridIsBalance) {
        m_balance = m_totals.remainder;
        m_balanceFresh = true;
    } else if (fresh || !m_balanceFresh) {
        QString why;
        m_balance = CashStore::balance(book(), m_filter.customer, m_filter.object, &why);
        m_balanceFresh = why.isEmpty();
    }
    m_sold = soldTotal(warehouse(), m_filter);
    emit totalsChanged();
    emit reloaded();
    return ok;
}

void CashBook::recount() {
    const int rows = m_records->rowCount();
    m_totals = CashTotalsRule::count(m_records->amounts(), m_records->entry(0).date,
                                     m_records->entry(rows - 1).date);
    emit totalsChanged();
}

MoneyResult CashBook::purchaseAmount(int percent) const {
    return CashTotalsRule::purchase(m_totals, percent);
}

QDate CashBook::firstRowDate(const QDate &fallback) const {
    if (m_records->rowCount() == 0)
        return fallback;
    const QDate d = CashRecordIo::readDate(m_records->entry(0).date);
    return d.isValid() ? d : fallback;
}

bool CashBook::listed(int row) const {
    return row >= 0 && row < m_records->rowCount();
}

bool CashBook::needsCustomerAndObject(Outcome *outcome) const {
    if (!m_filter.customer.isEmpty() && !m_filter.object.isEmpty())
        return true;
    if (outcome)
        *outcome = Outcome::warning(kChooseCustomer);
    return false;
}

int CashBook::addRecord(const QDate &date, Outcome *outcome) {
    if (!needsCustomerAndObject(outcome))
        return -1;
    CashEntry e;
    e.date = TextValues::shortDate(date);
    e.customer = m_filter.customer;
    e.object = m_filter.object;
    m_records->appendEntry(e);
    if (outcome)
        *outcome = Outcome::done();
    return m_records->rowCount() - 1;
}

bool CashBook::editCell(int row, int column, const QString &typed) {
    const QString field = CashCol::field(column);
    if (row < 0 || row >= m_records->rowCount() || field.isEmpty())
        return false;
    const CashEntry before = m_records->entry(row);
    const MoneyResult was = before.id.isEmpty() ? MoneyResult(Money()) : m_records->amountsOf(row).balance();
    CashEntry e = before;
    QString value = typed;
    if (CashCol::isAmount(column)) {
        value = typedNumber(typed);
        if (!value.isEmpty()) {
            const MoneyResult m = Money::parse(value);
            if (!m.ok()) {
                emit problem(Outcome::warning(
                    QStringLiteral("Сумма «%1» %2.").arg(typed.trimmed(), numberProblemText(m.problem()))));
                return false;
            }
        }
        e.amounts[CashCol::category(column)] = value;
    } else if (column == CashCol::Date) {
        const QDate d = CashRecordIo::readDate(typed);
        if (!d.isValid()) {
            emit problem(Outcome::warning(
                QStringLiteral("«%1» не является датой: введите дату как 01.03.2024.").arg(typed.trimmed())));
            return false;
        }
        value = TextValues::shortDate(d);
        e.date = value;
    } else {
        e.note = value;
    }
    if (!e.id.isEmpty() && e.values() == before.values())
        return true;
    const bool dated = e.completeDateForms();
    QString error;
    const bool written = e.id.isEmpty() ? CashStore::insert(book(), &e, &error)
                                        : CashStore::update(book(), e, field, value, dated, &error);
    if (!written) {
        emit problem(Outcome::failure(QStringLiteral("Запись не сохранена: %1").arg(error)));
        return false;
    }
    m_records->setEntry(row, e);
    if (column == CashCol::Date || before.id.isEmpty())
        emit yearsChanged();
    // The record counts in the balance of the chosen customer and object: only what changed moves it.
    m_balance += m_records->amountsOf(row).balance() - was;
    recount();
    return true;
}

bool CashBook::setRowDate(int row, const QDate &date) {
    return editCell(row, CashCol::Date, TextValues::shortDate(date));
}

CashBook::Outcome CashBook::addPurchase(const QDate &date, const QString &amount, int percent) {
    Outcome outcome;
    if (!needsCustomerAndObject(&outcome))
        return outcome;
    const MoneyResult m = Money::parse(amount);
    if (!m.ok() || m->isZero())
        return Outcome::warning(QStringLiteral("Укажите сумму закупки материалов"));
    CashEntry e;
    e.date = TextValues::shortDate(date);
    e.amounts[2] = m->text();
    e.note = QStringLiteral("Закупка материалов ") + QString::number(percent) + QLatin1Char('%');
    e.customer = m_filter.customer;
    e.object = m_filter.object;
    e.completeDateForms();
    QString error;
    if (!CashStore::insert(book(), &e, &error))
        return Outcome::failure(QStringLiteral("Закупка не записана: %1").arg(error));
    m_balanceFresh = false;
    reload();
    return Outcome::done();
}

CashBook::Outcome CashBook::deleteRecord(int row) {
    if (!listed(row))
        return Outcome::warning(kChooseRecord);
    const QString id = m_records->entry(row).id;
    if (id.isEmpty()) {
        m_records->removeAt(row);
        recount();
        return Outcome::done();
    }
    QString error;
    if (!CashStore::remove(book(), id, &error))
        return Outcome::failure(QStringLiteral("Запись не удалена: %1").arg(error));
    m_balanceFresh = false;
    reload();
    return Outcome::done();
}

CashBook::Outcome CashBook::deleteAll() {
    QString error;
    if (!CashStore::clear(book(), &error))
        return Outcome::failure(QStringLiteral("Записи не удалены: %1").arg(error));
    m_balanceFresh = false;
    reload();
    return Outcome::done();
}

CashBook::Outcome CashBook::markReceipts(int row) {
    if (!listed(row))
        return Outcome::warning(kChooseRecord);
    CashEntry e = m_records->entry(row);
    if (e.id.isEmpty())
        return Outcome::warning(QStringLiteral("Запись ещё не внесена в кассу: заполните её"));
    QString error;
    if (e.cheki != e.id) {
        if (!CashStore::markReceipts(book(), e.id, &error))
            return Outcome::failure(QStringLiteral("Чеки не добавлены: %1").arg(error));
        e.cheki = e.id;
        m_records->setEntry(row, e);
    }
    showReceipts(row);
    return Outcome::done();
}

void CashBook::showReceipts(int row) {
    m_receiptsRow = row >= 0 && row < m_records->rowCount() ? row : -1;
    std::vector<CheckLine> lines;
    if (m_receiptsRow >= 0) {
        const QString key = m_records->entry(row).cheki;
        if (!key.isEmpty() && !CashStore::lines(book(), key, &lines, &m_error))
            emit problem(Outcome::failure(QStringLiteral("Чеки не прочитаны: %1").arg(m_error)));
    }
    m_checks->setLines(std::move(lines));
    emit totalsChanged();
}

int CashBook::addLine(Outcome *outcome) {
    if (m_receiptsRow < 0) {
        *outcome = Outcome::warning(QStringLiteral("Выберите запись в движении средств"));
        return -1;
    }
    if (m_records->entry(m_receiptsRow).cheki.isEmpty()) {
        *outcome = markReceipts(m_receiptsRow);
        if (!outcome->ok)
            return -1;
    }
    const CashEntry &e = m_records->entry(m_receiptsRow);
    CheckLine line;
    line.date = e.date;
    line.val = e.cheki;
    m_checks->appendLine(line);
    *outcome = Outcome::done();
    return m_checks->rowCount() - 1;
}

bool CashBook::editLine(int row, int column, const QString &typed) {
    if (row < 0 || row >= m_checks->rowCount() || ChecksCol::field(column).isEmpty())
        return false;
    CheckLine l = m_checks->line(row);
    QString value = typed;
    if (ChecksCol::isNumber(column)) {
        value = typedNumber(typed);
        const TextValues::NumberReading n = TextValues::readNumber(value, true);
        if (!value.isEmpty() && !n.value) {
            emit problem(Outcome::warning(
                QStringLiteral("Число «%1» %2.").arg(typed.trimmed(), numberProblemText(n.problem))));
            return false;
        }
    } else if (column == ChecksCol::Date && !value.trimmed().isEmpty()) {
        const QDate d = CashRecordIo::readDate(value);
        if (!d.isValid()) {
            emit problem(Outcome::warning(
                QStringLiteral("«%1» не является датой: введите дату как 01.03.2024.").arg(typed.trimmed())));
            return false;
        }
        value = TextValues::shortDate(d);
    }
    setCheckCell(&l, column, value);
    // The sum of a line follows its quantity and price.
    if (column == ChecksCol::Quantity || column == ChecksCol::Price) {
        const auto quantity = TextValues::parseAmount(l.kolvo);
        const auto price = TextValues::parseAmount(l.price);
        if (quantity && price) {
            const MoneyResult sum = Money::product(*price, *quantity);
            if (sum.ok())
                l.sum = sum->text();
        }
    }
    QString error;
    const bool written =
        l.id.isEmpty() ? CashStore::insertLine(book(), &l, &error) : CashStore::updateLine(book(), l, &error);
    if (!written) {
        emit problem(Outcome::failure(QStringLiteral("Строка чека не сохранена: %1").arg(error)));
        return false;
    }
    m_checks->setLine(row, l);
    emit totalsChanged();
    return true;
}

CashBook::Outcome CashBook::deleteLine(int row) {
    if (row < 0 || row >= m_checks->rowCount())
        return Outcome::warning(QStringLiteral("Выберите строку чека"));
    const QString id = m_checks->line(row).id;
    QString error;
    if (!id.isEmpty() && !CashStore::removeLine(book(), id, &error))
        return Outcome::failure(QStringLiteral("Строка чека не удалена: %1").arg(error));
    m_checks->removeAt(row);
    emit totalsChanged();
    return Outcome::done();
}

CashBook::Outcome CashBook::deleteReceipts(int row) {
    if (!listed(row))
        return Outcome::warning(kChooseRecord);
    CashEntry e = m_records->entry(row);
    if (e.id.isEmpty())
        return Outcome::done();
    QString error;
    if (!CashStore::removeReceipts(book(), e.id, &error))
        return Outcome::failure(QStringLiteral("Чеки не удалены: %1").arg(error));
    e.cheki.clear();
    m_records->setEntry(row, e);
    if (row == m_receiptsRow)
        m_checks->setLines({});
    emit totalsChanged();
    return Outcome::done();
}

MoneyResult CashBook::receiptsCost() const {
    MoneyResult sum = Money();
    for (const CheckLine &l : m_checks->lines()) {
        if (l.sum.trimmed().isEmpty())
            continue;
        const MoneyResult m = Money::parse(l.sum);
        if (m.ok())
            sum += m;
    }
    return sum;
}

QString CashBook::bookPath() const {
    return m_module.filePath(Db::Cash);
}

QString CashBook::mobilePath() const {
    return QFileInfo(bookPath()).absoluteDir().filePath(QStringLiteral("cashbasemobail.db"));
}

CashBook::Outcome CashBook::openBook(const QString &path, const BookUpgrade::Targets &targets) {
    const QString chosen = QFileInfo(path).absoluteFilePath();
    const QString previous = bookPath();
    if (QFileInfo::exists(chosen)) {
        const QString unreadable = BookUpgrade::checkReadable(chosen);
        if (!unreadable.isEmpty())
            return Outcome::failure(unreadable);
        // The upgrade works on the file alone.
        m_module.close(Db::Cash);
        const BookUpgrade::Result upgraded = BookUpgrade::run(chosen, targets);
        if (!upgraded.ok)
            return Outcome::failure(upgraded.error);
    }
    m_module.setFilePath(Db::Cash, chosen);
    if (!m_module.database(Db::Cash).isOpen()) {
        // The data module has told the user why; the book in use stays.
        const QString why = m_module.failure(Db::Cash);
        m_module.setFilePath(Db::Cash, previous);
        Outcome o = Outcome::failure(why);
        o.text.clear();
        return o;
    }
    m_filter = CashFilter();
    m_balanceFresh = false;
    return Outcome::done();
}

CashBook::Outcome CashBook::saveCopy(const QString &path) {
    if (QFileInfo(path).absoluteFilePath() == QFileInfo(bookPath()).absoluteFilePath())
        return Outcome::warning(
            QStringLiteral("Копию нельзя записать на место самой книги: выберите другое имя"));
    const QString why = SqliteSnapshot::saveTo(book(), path);
    return why.isEmpty() ? Outcome::done() : Outcome::failure(why);
}

QString CashBook::copyName(const QDate &date) {
    return QStringLiteral("cashbase_") + TextValues::shortDate(date) + QStringLiteral(".db");
}

MobileMerge::Result CashBook::mergeMobile(const QString &mobilePath) {
    const MobileMerge::Result r = MobileMerge::merge(book(), mobilePath);
    if (r.ok) {
        m_balanceFresh = false;
        reload(true);
    }
    return r;
}
