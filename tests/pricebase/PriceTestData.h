#pragma once
// Fixtures of the price base tests: a data folder with its data module and small price lists.

#include "TestFolder.h"
#include "pricebase/PriceRows.h"
#include "storage/ModuleSQL.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <memory>
#include <ostream>
#include <vector>

inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

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
    // namemat -> "kolvo|price|summa" of the estimate's materials.
    QStringList materials();
    QString scalar(QSqlDatabase db, const QString &sql);
};

RateRow rate(const QString &ras, const QString &name, const QString &unit, const QString &price,
             const QString &rec = {});
