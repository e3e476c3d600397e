#pragma once
// What a printed estimate shows, taken from the estimate model at the moment of output: the header,
// every row with its sections and totals, the materials, the coefficient lines and the totals, and the
// act's own data. Output works on this copy, so the user may go on editing while a document is made.

#include "storage/Money.h"

#include <QDate>
#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QVector>
#include <vector>

class EstimateEditor;
struct KoefLine;
struct KoefResult;

struct EstimatePrint {
    enum class Kind { Work, Section, Subsection, SectionTotal, SubsectionTotal };
    struct Row {
        Kind kind = Kind::Work;
        QString number, code, name, unit, quantity, price, sum; // as the grid shows them
        QString id; // the work's id in the document (idwork), or the material's _id
    };
    struct Line {
        QString name;
        Money amount;
    };

    // Header (set by whoever makes the output: the main window or the command line).
    QString title; // the document title chosen in ComboBoxShablon
    QString contractor, contractorPhone, contractorEmail, contractorAddress;
    QString customer, object, nameOfWorks;
    QString number; // "12-5" or "5"
    QDate date;
    int currency = 0; // EditValuta index

    // Body.
    QVector<Row> rows;
    QVector<Row> materialRows;
    QVector<Line> koefLines;  // coefficient lines switched on (VAT apart), with the money each changed
    QString vatName;          // "НДС 20 %" when a VAT line is on
    bool vatIncluded = false; // the VAT is part of the sums rather than added on top

    Money worksRaw, materialsRaw;     // before the coefficient lines
    Money worksTotal, materialsTotal; // after them (Edit6, Edit4)
    Money vat, vatAdded, grand;

    // Rows whose amounts the editor refused (not a number, past the maximum), with the reason: they are
    // printed without an amount and counted in no total. "№ 3 «Штукатурка»: Количество «abc» …".
    QStringList leftOut;
    // Why the document cannot be printed at all (a total past the maximum); empty when it can.
    QString refusal;

    // The act data (table ks2 of the document): field name -> value.
    QMap<QString, QString> act;
};

namespace EstimatePrintBuilder {

// The body from the editor: rows of the grid (empty rows and a closing "Итого" row left out), the
// materials, the coefficient lines of the document db and the totals.
void fillBody(EstimatePrint &print, const EstimateEditor &editor, QSqlDatabase db);
// The totals and the coefficient lines from a totalling of the rows (works and materials before the
// coefficient lines) and the lines switched on (Coefficients::readApplied); a total past the maximum
// sets the refusal.
void fillTotals(EstimatePrint &print, const KoefResult &result, const std::vector<KoefLine> &applied);

// The act data of the document (table ks2).
QMap<QString, QString> readAct(QSqlDatabase db);

// "Смета № 5, договор № 12" (the contract part when the act data has a contract number).
QString basis(const EstimatePrint &print);

} // namespace EstimatePrintBuilder
