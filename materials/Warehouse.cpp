#include "Warehouse.h"

#include "storage/TextValues.h"

Warehouse::Warehouse(std::function<QSqlDatabase()> database, QObject *parent)
    : QObject(parent), m_database(std::move(database)), m_model(m_database) {}

bool Warehouse::read(QString *error) {
    std::vector<StockItem> rows;
    if (!StockStore::read(m_database(), rows, error))
        return false;
    m_model.setRows(std::move(rows));
    return true;
}

int Warehouse::addEmptyRow(const QDate &today, QString *error) {
    const QString id = StockStore::addEmpty(m_database(), today, error);
    if (id.isEmpty())
        return -1;
    StockItem s;
    s.id = id;
    s.date = TextValues::shortDate(today);
    m_model.appendRow(s);
    return m_model.rowCount() - 1;
}

bool Warehouse::removeRow(int row, QString *error) {
    const StockItem *s = m_model.rowAt(row);
    if (!s || !StockStore::remove(m_database(), s->id, error))
        return false;
    m_model.removeRowAt(row);
    return true;
}

bool Warehouse::clear(QString *error) {
    if (!StockStore::clear(m_database(), error))
        return false;
    m_model.setRows({});
    return true;
}

bool Warehouse::replaceStock(const std::vector<StockItem> &items, QString *error) {
    return StockStore::replaceStock(m_database(), items, mode(), error) && read(error);
}

Warehouse::PutOutcome Warehouse::putIn(const MaterialsStore::Material &material, const QString &document,
                                       const QDate &today) {
    PutOutcome out;
    if (TextValues::isBlank(material.name))
        return out;
    QString error;
    if (auto found = StockStore::findByName(m_database(), material.name, &error)) {
        out.kind = PutOutcome::Found;
        // Another program may have added it: the model learns of it now.
        out.row = m_model.rowOfId(found->id);
        if (out.row < 0) {
            m_model.appendRow(*found);
            out.row = m_model.rowCount() - 1;
        }
        return out;
    }
    if (!error.isEmpty()) {
        out.kind = PutOutcome::Failed;
        out.error = error;
        return out;
    }
    StockItem s;
    s.date = TextValues::shortDate(today);
    s.name = material.name;
    s.unit = material.unit;
    s.quantity = material.quantity;
    s.price = material.price;
    s.sum = material.sum;
    s.client = document;
    s.id = StockStore::add(m_database(), s, &error);
    if (s.id.isEmpty()) {
        out.kind = PutOutcome::Failed;
        out.error = error;
        return out;
    }
    m_model.appendRow(s);
    out.kind = PutOutcome::Added;
    out.row = m_model.rowCount() - 1;
    return out;
}

bool Warehouse::setQuantity(int row, const QString &quantity, QString *error) {
    const int col = m_model.columnOf(StockField::Qty);
    if (m_model.setData(m_model.index(row, col), quantity, Qt::EditRole))
        return true;
    if (error)
        *error = m_model.lastError();
    return false;
}

StockTaking::Outcome Warehouse::take(QSqlDatabase smeta, int row, const Decimal &quantity,
                                     const QString &customer, const QString &object, const QDate &date) {
    const StockItem *s = m_model.rowAt(row);
    if (!s) {
        StockTaking::Outcome none;
        none.kind = StockTaking::Outcome::Refused;
        none.message = QStringLiteral("Этого материала больше нет на складе");
        return none;
    }
    const QString id = s->id;
    const StockTaking::Outcome out =
        StockTaking::take(m_database(), smeta, {id, quantity, customer, object, date});
    // The row as the table has it now: less of it, none of it, or (refused) what another program left.
    QString error;
    const std::optional<StockItem> now = StockStore::byId(m_database(), id, &error);
    if (now)
        m_model.updateRow(*now);
    else if (error.isEmpty())
        m_model.removeRowAt(m_model.rowOfId(id));
    return out;
}
