#pragma once
// A cash book in a fresh data folder with the customers it is given, and records written the way the
// grid writes them (a new row, then its cells).

#include "TestFolder.h"
#include "cashbook/CashBook.h"
#include "customers/CustomerRegister.h"
#include "storage/ModuleSQL.h"
#include "storage/TextValues.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <ostream>

// Texts in failure messages as text.
inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}

struct CashTestBook {
    TestFolder folder;
    std::unique_ptr<TModuleSQL> module = std::make_unique<TModuleSQL>(folder.path());
    std::unique_ptr<CashBook> book = std::make_unique<CashBook>(*module);

    void addCustomer(const QString &customer, const QStringList &objects) {
        CustomerRegister reg(*module);
        ASSERT_EQ(reg.addCustomer(customer), RegisterStatus::Ok);
        for (const QString &o : objects)
            ASSERT_EQ(reg.addObject(customer, o), RegisterStatus::Ok);
    }
    void choose(const QString &customer, const QString &object) {
        book->setCustomer(customer);
        book->setObject(object);
    }
    // A record of the chosen customer and object: date "dd.MM.yyyy", cells by grid column.
    QString add(const QString &date, const std::map<int, QString> &cells) {
        CashBook::Outcome o;
        const int row = book->addRecord(TextValues::parseShortDate(date), &o);
        EXPECT_GE(row, 0) << o.text.toStdString();
        if (row < 0)
            return {};
        for (const auto &[column, text] : cells)
            EXPECT_TRUE(book->editCell(row, column, text)) << column;
        return book->records()->entry(row).id;
    }
    QStringList totals() const { return book->totals().cells(); }
    QString cell(int row, int column) const {
        return book->records()->data(book->records()->index(row, column), Qt::DisplayRole).toString();
    }
};
