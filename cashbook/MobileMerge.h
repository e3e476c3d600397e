#pragma once
// The mobile companion's copy of the book (cashbasemobail.db) carried into the book. A mobile record
// that the book holds already (the same date, amounts, note, customer and object) is left; one whose
// key is a record of the book of the same customer, object and date updates that record (its amounts
// or note changed); any other is appended under a new key of the book, so that a record the phone and
// the computer numbered alike is never written over. Receipt lines follow their records the same way.
// All in one transaction of the book: a damaged or foreign mobile file changes nothing.

#include <QSqlDatabase>
#include <QString>

namespace MobileMerge {

struct Result {
    bool ok = false;
    QString error; // Russian
    int appended = 0, updated = 0, lines = 0;
};

Result merge(QSqlDatabase book, const QString &mobilePath);

} // namespace MobileMerge
