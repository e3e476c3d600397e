#pragma once
// The three acts of completed work: КС-2 (the act itself), КС-3 (the statement of cost) and the plain
// act; their view of the estimate, register status, label and file name, and the act's number.

#include <QDate>
#include <QSqlDatabase>
#include <QString>

enum class ActKind { Ks2, Ks3, Plain };

namespace ActKinds {

// The status of the act's register row: 2 КС-2, 3 КС-3, 1 the plain act.
int status(ActKind kind);
// The document title that shows the estimate as this act: "АКТ КС-2", "АКТ КС-3", "АКТ".
QString view(ActKind kind);
// "Акт КС-2", "Акт КС-3", "Акт" (menus, progress).
QString caption(ActKind kind);
// The register's label: "КС-2 № 5", "КС-3 № 5", "№ 5".
QString label(ActKind kind, const QString &number);
// "Акт КС-2 № 5 от 01.02.2025", "Акт КС-3 № …", "Акт № …" (characters a file name cannot hold become
// "_"), without the extension.
QString fileBaseName(ActKind kind, const QString &number, const QDate &date);
// КС-2 and КС-3 carry the expected end of the work; the plain act does not.
bool hasEndDate(ActKind kind);

// The number a new act takes: with numbering by date the date ("DDMMYYYY", or "YYYYMMDD" with
// yearFirst) followed by "-1"; otherwise the act counter of the customer and object (NumDoc.Act of the
// people database), "1" when the pair has none.
QString defaultNumber(QSqlDatabase people, const QString &customer, const QString &object, const QDate &date,
                      bool dateNumbering, bool yearFirst);

} // namespace ActKinds
