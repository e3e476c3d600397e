#pragma once
// Register rows and document files for the register's tests: rows are entered as a save enters them
// (Registration), document files are small SQLite files with their mydoc link and one row of content.

#include "documents/RegisterFilter.h"
#include "estimate/Registration.h"
#include "tests/storage/QStringPrinter.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

namespace RegisterTestData {

// A row written straight into documents or drafts (the shapes a save never makes, e.g. status 1).
qlonglong addRow(QSqlDatabase mydoc, Registration::List list, const QString &client, const QDate &date,
                 const QString &allsum = QStringLiteral("100,00"), bool finished = false,
                 const QString &name = QStringLiteral("Смета"), const QString &fileName = QString());

// A document file at `path` registered as a save registers it: its row in the list, its mydoc link.
// The file holds one row of content in table smeta, nameras = content.
qlonglong saveDocument(QSqlDatabase mydoc, const QString &path, bool draft, const QString &name,
                       const QString &client = QStringLiteral("Иванов"),
                       const QString &content = QStringLiteral("Окраска"));

// What a document file holds: "iddoc|note" of its mydoc rows and its content, or "<no file>".
QString linkOf(const QString &path);
QString contentOf(const QString &path);

// A filter: customer, status, month, year.
inline RegisterFilter::Filter filter(const QString &customer = {},
                                     RegisterFilter::Status status = RegisterFilter::Status::All,
                                     int month = 0, const QString &year = {}) {
    return {customer, status, month, year};
}

// The ids a statement selects, in order.
QList<qlonglong> ids(QSqlDatabase db, const QString &statement);

} // namespace RegisterTestData
