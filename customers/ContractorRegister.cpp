#include "ContractorRegister.h"

#include "storage/ModuleSQL.h"
#include "storage/Schema.h"
#include "storage/SettingsStore.h"
#include "storage/TextValues.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using TextValues::nameFromStored;
using TextValues::nameToStored;

namespace {
// Every legal detail btnOk writes, each by its own statement.
const QStringList kDetailColumns = {"certificate", "pasport", "adres", "inn",        "kpp", "boss", "glavbuh",
                                    "account",     "bank",    "bik",   "koraccount", "fax", "okpo", "note"};
} // namespace

ContractorRegister::ContractorRegister(TModuleSQL &module) : m_module(module) {}

QList<Fields> ContractorRegister::contractors() {
    QList<Fields> list;
    QSqlQuery q(m_module.database(Db::People));
    if (q.exec(QStringLiteral("SELECT * FROM contractor WHERE 1 ORDER BY id")))
        while (q.next())
            list << RecordIo::fromRecord(q.record(), QStringLiteral("shotname"));
    return list;
}

QStringList ContractorRegister::shortNames() {
    QStringList names;
    for (const Fields &f : contractors())
        names << f.value(QStringLiteral("shotname"));
    return names;
}

ContractorData ContractorRegister::load(const QString &column, const QString &value) {
    ContractorData d;
    QSqlQuery q(m_module.database(Db::People));
    q.prepare(QStringLiteral("SELECT * FROM contractor WHERE %1=? ORDER BY id").arg(column));
    q.addBindValue(value);
    if (!q.exec() || !q.next())
        return d;
    d.found = true;
    d.contractor = RecordIo::fromRecord(q.record(), QStringLiteral("shotname"));
    QSqlQuery r(m_module.database(Db::Cash));
    r.prepare(QStringLiteral("SELECT * FROM requisite WHERE id=?"));
    r.addBindValue(d.contractor.value(QStringLiteral("id")));
    if (r.exec() && r.next())
        d.requisites = RecordIo::fromRecord(r.record());
    return d;
}

ContractorData ContractorRegister::byId(const QString &id) {
    if (id.isEmpty())
        return {};
    return load(QStringLiteral("id"), id);
}

ContractorData ContractorRegister::byShortName(const QString &shortName) {
    return load(QStringLiteral("shotname"), nameToStored(shortName));
}

ContractorData ContractorRegister::byLongName(const QString &longName) {
    return load(QStringLiteral("longname"), longName);
}

ContractorData ContractorRegister::forEstimateText(const QString &text) {
    ContractorData d = byShortName(text);
    if (d.found)
        return d;
    // The estimate may carry the legal data after the name: the name ends at the first ",".
    const int comma = text.indexOf(QLatin1Char(','));
    return comma > 0 ? byShortName(text.left(comma)) : d;
}

bool ContractorRegister::ensureRequisiteRow(const QString &id) {
    QSqlDatabase cash = m_module.database(Db::Cash);
    QSqlQuery q(cash);
    q.prepare(QStringLiteral("SELECT ik FROM requisite WHERE id=?"));
    q.addBindValue(id);
    if (!q.exec()) {
        m_error = q.lastError().text();
        return false;
    }
    if (q.next())
        return true;
    return RecordIo::run(cash, QStringLiteral("INSERT INTO requisite (id) VALUES (?)"), {id}, &m_error);
}

RegisterStatus ContractorRegister::add(const QString &shortName, QString *newId) {
    if (TextValues::isBlank(shortName))
        return RegisterStatus::BlankName;
    if (byShortName(shortName).found)
        return RegisterStatus::Duplicate;
    QSqlDatabase people = m_module.database(Db::People);
    QSqlQuery q(people);
    q.prepare(QStringLiteral("INSERT INTO Contractor (shotname) VALUES (?)"));
    q.addBindValue(nameToStored(shortName));
    if (!q.exec()) {
        m_error = q.lastError().text();
        return RegisterStatus::Failed;
    }
    const QString id = q.lastInsertId().toString();
    if (!ensureRequisiteRow(id))
        return RegisterStatus::Failed;
    if (newId)
        *newId = id;
    return RegisterStatus::Ok;
}

RegisterStatus ContractorRegister::save(const Fields &contractor, const Fields &requisites) {
    const QString id = contractor.value(QStringLiteral("id"));
    const QString name = contractor.value(QStringLiteral("shotname"));
    if (TextValues::isBlank(name))
        return RegisterStatus::BlankName;
    const ContractorData current = byId(id);
    if (!current.found)
        return RegisterStatus::NotFound;
    const ContractorData sameName = byShortName(name);
    if (sameName.found && sameName.contractor.value(QStringLiteral("id")) != id)
        return RegisterStatus::Duplicate;
    if (!RecordIo::run(m_module.database(Db::People),
                       QStringLiteral("UPDATE contractor SET shotname=?,longname=?,phone=? WHERE id=?"),
                       {nameToStored(name), contractor.value(QStringLiteral("longname")),
                        contractor.value(QStringLiteral("phone")), id},
                       &m_error))
        return RegisterStatus::Failed;
    if (!ensureRequisiteRow(id))
        return RegisterStatus::Failed;
    QSqlDatabase cash = m_module.database(Db::Cash);
    const bool ok = RecordIo::inTransaction(
        cash,
        [&] {
            for (const QString &col : kDetailColumns)
                if (!RecordIo::run(cash, QStringLiteral("UPDATE requisite SET %1=? WHERE id=?").arg(col),
                                   {requisites.value(col), id}, &m_error))
                    return false;
            // The long name (or the short one) is the name the legal details belong to.
            const QString longName = contractor.value(QStringLiteral("longname"));
            return RecordIo::run(cash, QStringLiteral("UPDATE requisite SET name=? WHERE id=?"),
                                 {longName.isEmpty() ? name : longName, id}, &m_error);
        },
        &m_error);
    return ok ? RegisterStatus::Ok : RegisterStatus::Failed;
}

RegisterStatus ContractorRegister::remove(const QString &id) {
    if (!byId(id).found)
        return RegisterStatus::NotFound;
    if (!RecordIo::run(m_module.database(Db::Cash), QStringLiteral("DELETE FROM Requisite WHERE id=?"), {id},
                       &m_error) ||
        !RecordIo::run(m_module.database(Db::People), QStringLiteral("DELETE FROM Contractor WHERE id=?"),
                       {id}, &m_error))
        return RegisterStatus::Failed;
    return RegisterStatus::Ok;
}

RegisterStatus ContractorRegister::drop() {
    // The tables stay, empty: only their upgrade steps make them.
    if (!Schema::clearTables(m_module.database(Db::Cash), {QStringLiteral("Requisite")}, &m_error) ||
        !RecordIo::run(m_module.database(Db::Cash), QStringLiteral("VACUUM;"), {}, &m_error) ||
        !Schema::clearTables(m_module.database(Db::People), {QStringLiteral("Contractor")}, &m_error))
        return RegisterStatus::Failed;
    return RegisterStatus::Ok;
}

QString ContractorRegister::email(const SettingsStore *store) {
    return store ? store->text(QStringLiteral("Param"), QStringLiteral("Email")) : QString();
}

void ContractorRegister::setEmail(SettingsStore *store, const QString &email) {
    if (store)
        store->setText(QStringLiteral("Param"), QStringLiteral("Email"), email);
}
