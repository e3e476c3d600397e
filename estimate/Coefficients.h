#pragma once
// The coefficient lines of the estimate (table `koef` of the working database) and their arithmetic.
//
// A line: `checked` "-1" on / "0" off; `title`; `value`; `NumOrProc` "proc" = the value is a percentage,
// anything else = a plain number, used as a factor; `actionn` "inc" raises, "dec" lowers; `type` what it
// applies to: "work" the works, "mat" the materials, "all" both (each of them on its own).
// A percentage line changes its base by base × value ÷ 100; a number line multiplies its base by the
// value ("inc") or divides it by the value ("dec"), so the coefficient 1 changes nothing.
//
// Order of application, each step on the result of the one before, every change rounded to kopecks:
//   1. the ordinary lines per base (works, materials): first the raises, then the lowerings, each group
//      in the lines' order;
//   2. the overheads (title contains "накладные расходы") per base, on the result of 1;
//   3. VAT (the line with `EditComment` "RadioButton", or a title containing "ндс") on the sum of the
//      results of 2 for the bases it applies to: "inc" adds it on top, "dec" means it is included
//      (the amount is shown, the total stays).
// Works total = works after 2, materials total = materials after 2, grand total = both + VAT added.
// A line whose value is not a number, or whose change would pass the maximum amount, is left out and
// named in `problems`; a total that would pass the maximum is refused.

#include "storage/Money.h"

#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <vector>

struct KoefLine {
    QString id;
    QString rows;
    QString checked;
    QString title;
    QString value;
    QString type;
    QString actionn;
    QString numOrProc;
    QString editComment;

    bool on() const { return checked.trimmed() == QLatin1String("-1"); }
    bool isVat() const;
    bool isOverheads() const;
    bool appliesToWorks() const;
    bool appliesToMaterials() const;
    bool raises() const { return actionn.trimmed() != QLatin1String("dec"); }
    bool percent() const { return numOrProc.trimmed() == QLatin1String("proc"); }
};

struct KoefResult {
    MoneyResult worksRaw = Money();
    MoneyResult materialsRaw = Money();
    MoneyResult works = Money();      // Edit6
    MoneyResult materials = Money();  // Edit4
    MoneyResult vat = Money();        // VAT amount, added or included
    MoneyResult vatAdded = Money();   // the part of it added on top
    MoneyResult grand = Money();      // Edit5
    QHash<QString, Money> effect;     // line id -> money the line changed (VAT: its amount)
    QHash<QString, QString> problems; // line id -> why the line is left out
    bool operator==(const KoefResult &o) const {
        return worksRaw == o.worksRaw && materialsRaw == o.materialsRaw && works == o.works &&
               materials == o.materials && vat == o.vat && vatAdded == o.vatAdded && grand == o.grand &&
               effect == o.effect && problems == o.problems;
    }
};

namespace Coefficients {

// Every line, in the panel's order ("SELECT * FROM koef WHERE 1", by `rows`, then `id`).
std::vector<KoefLine> readAll(QSqlDatabase db);
// The lines switched on, read as the estimate applies them: per `type` and `actionn`
// ("SELECT * FROM koef WHERE checked='-1' and type=… and actionn=…"), in the panel's order.
std::vector<KoefLine> readApplied(QSqlDatabase db);

// Applies the lines that are on to the raw sums.
KoefResult apply(const std::vector<KoefLine> &lines, const MoneyResult &worksRaw,
                 const MoneyResult &materialsRaw);
// Why a line's value cannot be used (not a number, or a factor of 0 that divides); empty when it can.
// Lines that are off are checked too, so that letters typed into them show at once.
QString valueProblem(const KoefLine &line);

// Writing the table.
bool update(QSqlDatabase db, const KoefLine &line, QString *error = nullptr);
bool insert(QSqlDatabase db, const KoefLine &line, QString *error = nullptr);
bool remove(QSqlDatabase db, const QString &id, QString *error = nullptr);

} // namespace Coefficients
