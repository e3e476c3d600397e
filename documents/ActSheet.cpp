#include "ActSheet.h"

#include "storage/TextValues.h"

#include <algorithm>

namespace ActSheet {

namespace {

using ActVolumes::Row;

// The rows of an act as a print body: sections and subsections around their rows, with totals.
void putRows(EstimatePrint &p, const QVector<Row> &rows) {
    p.rows.clear();
    p.materialRows.clear();
    QString section, sectionTotal, subsection, subsectionTotal;
    Money sectionSum, subsectionSum;
    auto line = [&p](EstimatePrint::Kind kind, const QString &name, const QString &sum = QString()) {
        EstimatePrint::Row r;
        r.kind = kind;
        r.name = name;
        r.sum = sum;
        p.rows << r;
    };
    auto closeSubsection = [&]() {
        if (!subsection.isEmpty())
            line(EstimatePrint::Kind::SubsectionTotal, subsectionTotal, subsectionSum.text());
        subsection.clear();
        subsectionSum = Money();
    };
    auto closeSection = [&]() {
        closeSubsection();
        if (!section.isEmpty())
            line(EstimatePrint::Kind::SectionTotal, sectionTotal, sectionSum.text());
        section.clear();
        sectionSum = Money();
    };
    for (const Row &r : rows) {
        EstimatePrint::Row out;
        out.number = r.number;
        out.code = r.code;
        out.name = r.name;
        out.unit = r.unit;
        out.quantity = ActVolumes::quantityText(r.quantity);
        out.price = r.price;
        out.sum = r.sum.text();
        out.id = r.key;
        if (r.material) {
            out.number = QString::number(p.materialRows.size() + 1);
            p.materialRows << out;
            continue;
        }
        if (r.section != section) {
            closeSection();
            section = r.section;
            sectionTotal = r.sectionTotal;
            if (!section.isEmpty())
                line(EstimatePrint::Kind::Section, section);
        }
        if (r.subsection != subsection) {
            closeSubsection();
            subsection = r.subsection;
            subsectionTotal = r.subsectionTotal;
            if (!subsection.isEmpty())
                line(EstimatePrint::Kind::Subsection, subsection);
        }
        p.rows << out;
        // An act's sums stay within the estimate's, which are within the range.
        sectionSum = (sectionSum + r.sum).value();
        subsectionSum = (subsectionSum + r.sum).value();
    }
    closeSection();
}

MoneyResult sumOf(const QVector<Row> &rows, bool materials) {
    MoneyResult total = Money();
    for (const Row &r : rows)
        if (r.material == materials)
            total += r.sum;
    return total;
}

// A recorded act as it printed: its rows and its totals as they were kept (the works of an estimate
// without sections are named as the current act names them).
EstimatePrint recordedPrint(const ActVolumes::Act &act, const QString &nameOfWorks) {
    EstimatePrint p;
    p.nameOfWorks = nameOfWorks;
    putRows(p, act.rows);
    p.worksRaw = act.worksRaw;
    p.materialsRaw = act.materialsRaw;
    p.worksTotal = act.works;
    p.materialsTotal = act.materials;
    p.vat = act.vat;
    p.grand = act.grand;
    return p;
}

// One act's statement lines and closing lines, each amount once.
struct Amounts {
    QVector<EstimatePrint::Line> lines;
    QVector<EstimatePrint::Line> closing;
};
Amounts amountsOf(const EstimatePrint &p) {
    const EstimateOutput::Statement s = EstimateOutput::statement(p);
    Amounts a;
    for (const EstimateOutput::StatementLine &l : s.lines)
        a.lines.push_back({l.name, l.period});
    for (const EstimateOutput::StatementLine &l : s.closing)
        a.closing.push_back({l.name, l.period});
    return a;
}

// Adds one act's lines into the statement: its amount goes into the columns the act counts for. Lines
// of earlier acts that the current one lacks are added after its own.
void add(QVector<EstimateOutput::StatementLine> &into, const QVector<EstimatePrint::Line> &lines,
         bool sameYear, bool current) {
    for (const EstimatePrint::Line &l : lines) {
        auto it = std::find_if(into.begin(), into.end(),
                               [&l](const EstimateOutput::StatementLine &s) { return s.name == l.name; });
        if (it == into.end()) {
            into.push_back({l.name, Money(), Money(), Money()});
            it = into.end() - 1;
        }
        it->sinceStart = (it->sinceStart + l.amount).valueOr(it->sinceStart);
        if (sameYear)
            it->sinceYear = (it->sinceYear + l.amount).valueOr(it->sinceYear);
        if (current)
            it->period = (it->period + l.amount).valueOr(it->period);
    }
}

} // namespace

int yearOf(const QString &periodTo, const QDate &date) {
    const QDate end = TextValues::parseShortDate(periodTo);
    return end.isValid() ? end.year() : date.year();
}

bool plan(const EstimatePrint &estimate, const QVector<ActVolumes::Act> &history,
          const QMap<QString, QString> &typed, const QString &number, const QDate &date,
          const QString &periodFrom, const QString &periodTo, Plan *out, QString *error) {
    *out = Plan();
    if (!ActVolumes::byVolumes(history, typed))
        return true; // the whole estimate
    out->byVolumes = true;
    const QString wanted = number.trimmed();
    for (int i = 0; i < history.size(); ++i) {
        if (history[i].number.trimmed() != wanted)
            continue;
        out->remake = true;
        out->act = history[i];
        out->act.date = date;
        out->before = history.mid(0, i);
        return true;
    }
    out->before = history;
    ActVolumes::Act &act = out->act;
    act.number = wanted;
    act.date = date;
    act.periodFrom = periodFrom;
    act.periodTo = periodTo;
    act.year = yearOf(periodTo, date);
    QStringList refused;
    for (const ActVolumes::Volume &v :
         ActVolumes::volumes(ActVolumes::estimateRows(estimate), history, typed)) {
        if (!v.problem.isEmpty()) {
            refused << ActVolumes::refusal(v);
            continue;
        }
        if (v.value->isZero())
            continue;
        Row r = v.row;
        r.quantity = *v.value;
        r.sum = Money::product(*TextValues::parseAmount(r.price), r.quantity).value();
        act.rows << r;
    }
    if (!refused.isEmpty()) {
        *error = QStringLiteral("Акт не составлен: объёмы акта не приняты.\n") + refused.join(u'\n');
        return false;
    }
    if (act.rows.isEmpty()) {
        *error = QStringLiteral("Акт не составлен: в столбце «В этом акте» нет ни одного объёма (всё, что "
                                "есть в смете, уже закрыто актами).");
        return false;
    }
    return true;
}

EstimatePrint actPrint(const EstimatePrint &estimate, const ActVolumes::Act &act,
                       const std::vector<KoefLine> &applied) {
    EstimatePrint p = estimate;
    putRows(p, act.rows);
    EstimatePrintBuilder::fillTotals(
        p, Coefficients::apply(applied, sumOf(act.rows, false), sumOf(act.rows, true)), applied);
    return p;
}

EstimateOutput::Statement statement(const EstimatePrint &current, int year,
                                    const QVector<ActVolumes::Act> &before) {
    EstimateOutput::Statement s;
    const Amounts own = amountsOf(current);
    // The current act's lines first, in its order.
    add(s.lines, own.lines, true, true);
    add(s.closing, own.closing, true, true);
    for (const ActVolumes::Act &a : before) {
        const Amounts earlier = amountsOf(recordedPrint(a, current.nameOfWorks));
        const bool sameYear = a.year == year;
        add(s.lines, earlier.lines, sameYear, false);
        add(s.closing, earlier.closing, sameYear, false);
    }
    return s;
}

} // namespace ActSheet
