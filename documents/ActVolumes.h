#pragma once
// Acts by completed volumes. A contractor on a job longer than a month closes the estimate in several
// acts: each act made keeps, in the document file, its number, date, reporting period, totals and the
// rows it closed with what it printed of them (tables actlist and actvolume); the quantities typed for
// the next act wait there too until it is made. Without any act made this way and with nothing typed,
// an act covers the whole estimate and nothing is kept.
//
// An estimate row is known to the acts by a key that survives editing: "w" + the work's idwork, "m" +
// the material's _id.

#include "estimate/EstimatePrint.h"
#include "storage/Decimal.h"
#include "storage/Money.h"

#include <QDate>
#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QVector>
#include <optional>

namespace ActVolumes {

// A row of the estimate that acts close, or what one act closed of it.
struct Row {
    QString key;
    bool material = false;
    QString number, code, name, unit;
    QString section, sectionTotal;       // the heading and the total line of its section ("" outside any)
    QString subsection, subsectionTotal; // likewise for its subsection
    Decimal quantity;                    // the estimate's quantity, or the act's
    QString price;                       // the unit price as the estimate shows it
    Money sum;                           // quantity × price
};

// The rows of the estimate acts can close, in its order: the works, then the materials. A row needs its
// key, and a quantity and price that read as numbers; a lump sum (an amount with neither) counts as
// quantity 1 at that amount.
QVector<Row> estimateRows(const EstimatePrint &estimate);

struct Act {
    qlonglong id = 0; // 0: not recorded yet
    QString number;
    QDate date;
    QString periodFrom, periodTo; // the reporting period as the act data held it
    int year = 0;                 // of the period's end: what "с начала года" sums over
    Money worksRaw, materialsRaw, works, materials, vat, grand;
    QVector<Row> rows;
};

// ----- The tables.
// The acts made, in the order they were made, with their rows. Empty on failure (*error says why).
QVector<Act> history(QSqlDatabase db, QString *error = nullptr);
// Key -> the quantity typed for the next act.
QMap<QString, QString> typed(QSqlDatabase db);
// Replaces the typed quantities (one transaction).
bool saveTyped(QSqlDatabase db, const QMap<QString, QString> &typed, QString *error = nullptr);
// An act not recorded yet (id 0) is added with its rows and takes its id; the typed quantities were
// its own and go. A recorded act (made again) only has its date and totals brought up to date.
bool record(QSqlDatabase db, Act *act, QString *error = nullptr);
// Deletes the act made last: its volumes are open again. False with the reason (nothing to delete
// is no failure).
bool deleteLast(QSqlDatabase db, QString *error = nullptr);

// True when acts are made by volumes: an act was made so, or quantities were typed for the next one.
bool byVolumes(const QVector<Act> &history, const QMap<QString, QString> &typed);

// ----- The page "Объёмы акта".
struct Volume {
    Row row;         // the estimate's row; row.quantity is "По смете"
    Decimal closed;  // "Закрыто ранее"
    QString thisAct; // "В этом акте": as typed, or the remainder
    bool typed = false;
    std::optional<Decimal> value; // thisAct as a number (blank reads 0)
    QString problem;              // why thisAct cannot be taken; empty when it can
    // "Остаток": По смете − Закрыто ранее − В этом акте (nullopt while thisAct is refused).
    std::optional<Decimal> remainder() const;
};
// One line per estimate row; closed sums every act of the history.
QVector<Volume> volumes(const QVector<Row> &rows, const QVector<Act> &history,
                        const QMap<QString, QString> &typed);
// What "В этом акте" holds until something is typed: the remainder, when it lies on the estimate's
// side of zero, else 0.
QString defaultThisAct(const Volume &volume);
// Sets the text of "В этом акте" and reads it: a quantity that is not a number, has the sign opposite to
// the estimate's, or closes more than the estimate holds is refused with the reason.
void setThisAct(Volume &volume, const QString &text, bool typed);
// "№ 3 «Штукатурка стен»: …" for a refused line.
QString refusal(const Volume &volume);

// A quantity as the page shows it ("12,5").
QString quantityText(const Decimal &value);

} // namespace ActVolumes
