#pragma once
// Fixtures of the price base tests: a data folder with its data module and small price lists.

#include "TestFolder.h"
#include "pricebase/PriceRows.h"
#include "pricebase/RemotePriceList.h"
#include "storage/ModuleSQL.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

// The estimate's materials of a working database, one "namemat|kolvo|price|summa" each, in table order.
QStringList estimateMaterials(QSqlDatabase smeta);

// A data folder whose data module has opened price.db and smeta.db.
struct PriceFixture {
    TestFolder folder;
    std::unique_ptr<TModuleSQL> module;
    PriceFixture();
    QSqlDatabase price() { return module->database(Db::Price); }
    QSqlDatabase smeta() { return module->database(Db::Smeta); }
    // Inserts rows (edras, nameras, edizm, price in `column`, rec) into a rates table.
    void addRates(const QString &table, const std::vector<QStringList> &rows, const QString &column = "rub");
    // Inserts a resource (name, edizm, cena, ras, norma) into a resources table.
    void addResource(const QString &table, const QString &name, const QString &unit, const QString &cena,
                     const QString &ras, const QString &norma);
    QStringList materials() { return estimateMaterials(smeta()); }
    QString scalar(QSqlDatabase db, const QString &sql);
};

RateRow rate(const QString &ras, const QString &name, const QString &unit, const QString &price,
             const QString &rec = {});

// The test MariaDB that scripts/services/mariadb.sh starts, from VIRN_TEST_MYSQL_* (the table is the
// test's to choose); nothing when VIRN_TEST_MYSQL_HOST is not set.
std::optional<ServerSettings> testServer();
// Drops a table of that server: each test removes the table it made.
void dropServerTable(const ServerSettings &s);
