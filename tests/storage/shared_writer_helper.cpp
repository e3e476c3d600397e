// A second program for the shared-database test: writes the shared databases of one data folder
// while another copy of itself does the same.
//   write DATA TAG COUNT: prints "ready", waits for a line on stdin, then COUNT times: registers a
//   customer "TAG N" (cashbase.db and peoplebase.db), counts an estimate for the shared customer and
//   object N (NumDoc), puts a file into the recent list (LastDoc) and adds one to a shared counter
//   (read, a pause, then write, in one guarded transaction). Any failure is printed and ends the program
//   with a non-zero status.

#include "customers/CustomerRegister.h"
#include "estimate/RecentDocuments.h"
#include "estimate/Registration.h"
#include "storage/ModuleSQL.h"
#include "storage/Transaction.h"

#include <QCoreApplication>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <QVariant>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

int failWith(const char *what, const QString &why) {
    std::fprintf(stderr, "%s: %s\n", what, qPrintable(why));
    return 2;
}

// The shared counter: NumDoc's Smeta of one reserved pair, read and raised by one (the first one to
// come makes the record).
bool addOne(QSqlDatabase people, QString *error) {
    Transaction t(people);
    if (!t.active()) {
        *error = t.error();
        return false;
    }
    QSqlQuery q(people);
    if (!q.exec(QStringLiteral("SELECT Smeta FROM NumDoc WHERE Client='счётчик' AND Object='счётчик'"))) {
        *error = q.lastError().text();
        return false;
    }
    const bool found = q.next();
    const qlonglong value = found ? q.value(0).toLongLong() : 0;
    q.finish();
    // Some work between reading and writing, as a window's command has: the other program's write
    // falls into this gap unless the guard holds the write lock from the start.
    QThread::msleep(2);
    q.prepare(found ? QStringLiteral("UPDATE NumDoc SET Smeta=? WHERE Client='счётчик' AND Object='счётчик'")
                    : QStringLiteral(
                          "INSERT INTO NumDoc (Smeta, Client, Object) VALUES (?, 'счётчик', 'счётчик')"));
    q.addBindValue(value + 1);
    if (!q.exec()) {
        *error = q.lastError().text();
        return false;
    }
    if (!t.commit()) {
        *error = t.error();
        return false;
    }
    return true;
}

int write(const QString &data, const QString &tag, int count) {
    TModuleSQL module(data);
    module.setFailureHandler(
        [](Db, const QString &text) { std::fprintf(stderr, "open: %s\n", qPrintable(text)); });
    CustomerRegister customers(module);
    std::printf("ready\n");
    std::fflush(stdout);
    std::string go;
    std::getline(std::cin, go);
    for (int i = 1; i <= count; ++i) {
        Fields customer;
        customer.insert(QStringLiteral("fio"), QStringLiteral("%1 %2").arg(tag).arg(i));
        customer.insert(QStringLiteral("City"), QStringLiteral("Тверь"));
        if (customers.save(customer, {}, QString(), QString()) != RegisterStatus::Ok)
            return failWith("customer", customers.lastError());
        QString error;
        if (!Registration::countEstimate(module.database(Db::People), QStringLiteral("Общий заказчик"),
                                         QStringLiteral("Объект %1").arg(i), QString::number(i), &error))
            return failWith("NumDoc", error);
        if (!RecentDocuments::touch(module.database(Db::People),
                                    QStringLiteral("/docs/%1-%2.sim").arg(tag).arg(i), &error))
            return failWith("LastDoc", error);
        if (!addOne(module.database(Db::People), &error))
            return failWith("counter", error);
    }
    std::printf("done\n");
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 5 && args.at(1) == QLatin1String("write"))
        return write(args.at(2), args.at(3), args.at(4).toInt());
    std::fprintf(stderr, "usage: shared_writer_helper write DATA TAG COUNT\n");
    return 1;
}
