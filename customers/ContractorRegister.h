#pragma once
// The contractors: the user's own side of every estimate. Table Contractor (peoplebase.db) holds the
// short name for estimates, the long name for contracts and invoices and the phone; table Requisite
// (cashbase.db) one row of legal details per contractor, keyed by the contractor's id. The e-mail lives
// in the settings store (section "Param", key "Email").

#include "Records.h"

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

class TModuleSQL;
class SettingsStore;

class ContractorRegister {
public:
    explicit ContractorRegister(TModuleSQL &module);

    // Every contractor in table order (id, shotname as shown, longname, phone).
    QList<Fields> contractors();
    QStringList shortNames();

    ContractorData byId(const QString &id);
    ContractorData byShortName(const QString &shortName);
    ContractorData byLongName(const QString &longName);
    // The contractor named in the estimate: its short name, possibly followed by ", " and its legal data.
    ContractorData forEstimateText(const QString &text);

    // Adds a contractor by its short name with an empty legal-details row; *newId holds its id.
    RegisterStatus add(const QString &shortName, QString *newId = nullptr);
    // btnOk: writes the names, the phone and every legal detail (a missing Requisite row is created).
    RegisterStatus save(const Fields &contractor, const Fields &requisites);
    RegisterStatus remove(const QString &id);
    // Creates an empty legal-details row for the contractor when it has none (documents that read the
    // details of a contractor expect its row).
    bool ensureRequisiteRow(const QString &id);
    // Empties Requisite (cashbase.db, then compacted) and Contractor (peoplebase.db).
    RegisterStatus drop();

    QString lastError() const { return m_error; }

    // The contractor's e-mail in the settings store.
    static QString email(const SettingsStore *store);
    static void setEmail(SettingsStore *store, const QString &email);

private:
    ContractorData load(const QString &column, const QString &value);

    TModuleSQL &m_module;
    QString m_error;
};
