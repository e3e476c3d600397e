#pragma once
// The warehouse in tests: stock rows and write-offs written straight into storage of listmat.db.

#include "SqlRows.h"
#include "materials/Stock.h"
#include "materials/WriteOffs.h"

#include <QSqlError>
#include <QSqlQuery>
#include <gtest/gtest.h>

inline StockItem stockItem(const QString &name, const QString &unit, const QString &quantity,
                           const QString &price, const QString &minlimit = {}, const QString &sale = {}) {
    StockItem s;
    s.date = QStringLiteral("01.03.2020");
    s.name = name;
    s.unit = unit;
    s.quantity = quantity;
    s.price = price;
    s.minlimit = minlimit;
    s.sale = sale;
    return s;
}

// A stock row with every column the warehouse keeps; its id.
inline QString addStock(QSqlDatabase mat, const StockItem &s) {
    QSqlQuery q(mat);
    q.prepare("INSERT INTO storage (data, namemat, edizm, kolvo, price, summa, minlimit, sale) "
              "VALUES (?,?,?,?,?,?,?,?)");
    for (const QString &v : {s.date, s.name, s.unit, s.quantity, s.price, s.sum, s.minlimit, s.sale})
        q.addBindValue(v.isNull() ? QString("") : v);
    EXPECT_TRUE(q.exec()) << q.lastError().text().toStdString();
    return q.lastInsertId().toString();
}

// A write-off of `day` for the customer and object (names as shown).
inline QString addWriteOff(QSqlDatabase mat, const QString &name, const QString &sum, const QString &customer,
                           const QString &object, const QDate &day) {
    WriteOff w;
    w.name = name;
    w.unit = "шт.";
    w.quantity = "1";
    w.price = sum;
    w.sum = sum;
    w.customer = customer;
    w.object = object;
    w.date = day.toString("dd.MM.yyyy");
    w.month = QString::number(day.month());
    w.year = QString::number(day.year());
    w.dateCompare = day.toString("yyyyMMdd");
    QString error;
    const QString id = WriteOffs::add(mat, w, &error);
    EXPECT_FALSE(id.isEmpty()) << error.toStdString();
    return id;
}

// "name|kolvo|summa" of every stock row, in entry order.
inline QStringList stockRows(QSqlDatabase mat) {
    return queryRows(mat, "SELECT namemat, kolvo, summa FROM storage WHERE dataoffs IS NULL OR dataoffs='' "
                          "ORDER BY id");
}
