#pragma once
// Materials lists for the tests: rows written straight into a sheet of listmat.db.

#include "materials/MatList.h"
#include "tests/pricebase/PriceTestData.h" // PrintTo for QString, PriceFixture

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>
#include <ostream>
#include <vector>

inline MatRow matRow(const QString &name, const QString &unit = QString(), const QString &price = QString(),
                     const QString &nummat = QString()) {
    MatRow r;
    r.name = name;
    r.unit = unit;
    r.price = price;
    r.nummat = nummat;
    return r;
}

// "name|unit|price" of each row.
inline QStringList names(const std::vector<MatRow> &rows) {
    QStringList out;
    for (const MatRow &r : rows)
        out << QStringList{r.name, r.unit, r.price}.join(u'|');
    return out;
}

// Inserts the rows with numpos NULL, as lists of older programs hold them.
inline void addUnplaced(QSqlDatabase db, const QString &table, const std::vector<MatRow> &rows) {
    QSqlQuery q(db);
    for (const MatRow &r : rows) {
        q.prepare(QStringLiteral("INSERT INTO %1 (namemat, edizm, price) VALUES (?,?,?)").arg(table));
        q.addBindValue(r.name);
        q.addBindValue(r.unit);
        q.addBindValue(r.price);
        ASSERT_TRUE(q.exec()) << q.lastError().text().toStdString();
    }
}
