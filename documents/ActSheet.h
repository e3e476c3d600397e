#pragma once
// What an act holds. Without acts by volumes it is the whole estimate. By volumes, a new act takes the
// quantities typed for it (the remainder where none was typed) and an act made before is made again
// from what it closed then; its print lists only the rows with a quantity in it, under their sections,
// with totals from the estimate's coefficient lines. The statement of cost (КС-3) sums the acts made
// up to it: since the start of the work, since the start of the year, and the act's own period.

#include "ActVolumes.h"
#include "estimate/Coefficients.h"
#include "estimate/EstimateOutput.h"
#include "estimate/EstimatePrint.h"

#include <QDate>
#include <QMap>
#include <QString>
#include <QVector>
#include <vector>

namespace ActSheet {

struct Plan {
    bool byVolumes = false;
    bool remake = false;             // the act was made before under this number
    ActVolumes::Act act;             // by volumes: the act with its rows and period
    QVector<ActVolumes::Act> before; // by volumes: the acts made before it, in their order
};

// Decides what the act numbered `number` holds. periodFrom/periodTo: the reporting period of the act
// data (short dates). False with a Russian message: a quantity that cannot be taken (naming the rows),
// or nothing left to close.
bool plan(const EstimatePrint &estimate, const QVector<ActVolumes::Act> &history,
          const QMap<QString, QString> &typed, const QString &number, const QDate &date,
          const QString &periodFrom, const QString &periodTo, Plan *plan, QString *error);

// The estimate as the act prints it: its header, the act's rows under their sections and subsections
// with their totals, its materials, and the totals of those rows through the coefficient lines.
EstimatePrint actPrint(const EstimatePrint &estimate, const ActVolumes::Act &act,
                       const std::vector<KoefLine> &applied);

// The statement of cost of `current` (the act's print) made after the acts `before`: each line summed
// over the acts up to it, over those of its year, and its own.
EstimateOutput::Statement statement(const EstimatePrint &current, int year,
                                    const QVector<ActVolumes::Act> &before);

// The year of a reporting period's end (short date), else of the act's date.
int yearOf(const QString &periodTo, const QDate &date);

} // namespace ActSheet
