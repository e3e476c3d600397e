#include "Coefficients.h"

#include "storage/TextValues.h"

#include <optional>

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>

bool KoefLine::isVat() const {
    return editComment.trimmed() == QLatin1String("RadioButton") ||
           title.toLower().contains(QStringLiteral("ндс"));
}

bool KoefLine::isOverheads() const {
    return title.toLower().contains(QStringLiteral("накладные расходы"));
}

bool KoefLine::appliesToWorks() const {
    const QString t = type.trimmed();
    return t == QLatin1String("work") || t == QLatin1String("all");
}

bool KoefLine::appliesToMaterials() const {
    const QString t = type.trimmed();
    return t == QLatin1String("mat") || t == QLatin1String("all");
}

namespace Coefficients {

namespace {

std::vector<KoefLine> readLines(QSqlQuery &q) {
    std::vector<KoefLine> out;
    const QSqlRecord rec = q.record();
    auto f = [&](const char *name) {
        const int i = rec.indexOf(QLatin1String(name));
        return i < 0 ? QString() : q.value(i).toString();
    };
    while (q.next())
        out.push_back({f("id"), f("rows"), f("checked"), f("title"), f("value"), f("type"), f("actionn"),
                       f("NumOrProc"), f("EditComment")});
    return out;
}

void sortByPanelOrder(std::vector<KoefLine> &lines) {
    std::stable_sort(lines.begin(), lines.end(), [](const KoefLine &a, const KoefLine &b) {
        const int ra = a.rows.toInt(), rb = b.rows.toInt();
        return ra != rb ? ra < rb : a.id.toLongLong() < b.id.toLongLong();
    });
}

bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text();
    return false;
}

// One line applied to one base: the new base, rounded to kopecks.
MoneyResult applied(const KoefLine &line, const Decimal &value, Money base) {
    if (line.percent()) {
        const MoneyResult d = base.percent(value);
        return line.raises() ? base + d : base - d;
    }
    return line.raises() ? base.times(value) : base.dividedBy(value);
}

std::optional<Decimal> usableValue(const KoefLine &line, NumberProblem *problem) {
    const TextValues::NumberReading v = TextValues::readNumber(line.value, true);
    *problem = v.problem;
    // A factor of 0 cannot lower anything by division.
    if (v.value && v.value->isZero() && !line.percent() && !line.raises()) {
        *problem = NumberProblem::DivisionByZero;
        return std::nullopt;
    }
    return v.value;
}

QString problemText(const KoefLine &line, NumberProblem problem) {
    return QStringLiteral("Значение «%1» %2: коэффициент не применяется.")
        .arg(line.value.trimmed(), numberProblemText(problem));
}

} // namespace

std::vector<KoefLine> readAll(QSqlDatabase db) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT * FROM koef WHERE 1")))
        return {};
    auto lines = readLines(q);
    sortByPanelOrder(lines);
    return lines;
}

std::vector<KoefLine> readApplied(QSqlDatabase db) {
    std::vector<KoefLine> out;
    for (const char *type : {"work", "mat", "all"}) {
        for (const char *action : {"inc", "dec"}) {
            QSqlQuery q(db);
            q.prepare(QStringLiteral("SELECT * FROM koef WHERE checked=? and type=? and actionn=?"));
            q.addBindValue(QStringLiteral("-1"));
            q.addBindValue(QString::fromLatin1(type));
            q.addBindValue(QString::fromLatin1(action));
            if (!q.exec())
                continue;
            auto lines = readLines(q);
            out.insert(out.end(), lines.begin(), lines.end());
        }
    }
    sortByPanelOrder(out);
    return out;
}

QString valueProblem(const KoefLine &line) {
    NumberProblem problem;
    return usableValue(line, &problem) ? QString() : problemText(line, problem);
}

KoefResult apply(const std::vector<KoefLine> &lines, const MoneyResult &worksRaw,
                 const MoneyResult &materialsRaw) {
    KoefResult r;
    r.worksRaw = worksRaw;
    r.materialsRaw = materialsRaw;
    MoneyResult works = worksRaw, materials = materialsRaw;

    auto valueOf = [&](const KoefLine &l) -> std::optional<Decimal> {
        NumberProblem problem;
        const auto v = usableValue(l, &problem);
        if (!v)
            r.problems.insert(l.id, problemText(l, problem));
        return v;
    };
    // The line changes each base it applies to, or, when a change would pass the maximum, none.
    auto applyToBases = [&](const KoefLine &l) {
        const auto v = valueOf(l);
        if (!v)
            return;
        MoneyResult newWorks = works, newMaterials = materials, total = Money();
        NumberProblem why = NumberProblem::None;
        // A base that is already refused stays so; the line is not to blame for it.
        auto change = [&](const MoneyResult &base, MoneyResult &changed) {
            changed = applied(l, *v, *base);
            if (!changed)
                why = changed.problem();
            else
                total += changed - base;
        };
        if (l.appliesToWorks() && works)
            change(works, newWorks);
        if (l.appliesToMaterials() && materials)
            change(materials, newMaterials);
        if (why == NumberProblem::None && !total)
            why = total.problem();
        if (why != NumberProblem::None) {
            r.problems.insert(l.id, QStringLiteral("Коэффициент «%1» со значением «%2»: сумма %3; он не "
                                                   "применяется.")
                                        .arg(l.title.trimmed(), l.value.trimmed(), numberProblemText(why)));
            return;
        }
        works = newWorks;
        materials = newMaterials;
        r.effect[l.id] = *total;
    };

    std::vector<const KoefLine *> ordinaryUp, ordinaryDown, overheads, vat;
    for (const KoefLine &l : lines) {
        if (!l.on())
            continue;
        r.effect.insert(l.id, Money());
        if (l.isVat())
            vat.push_back(&l);
        else if (l.isOverheads())
            overheads.push_back(&l);
        else
            (l.raises() ? ordinaryUp : ordinaryDown).push_back(&l);
    }
    for (const KoefLine *l : ordinaryUp)
        applyToBases(*l);
    for (const KoefLine *l : ordinaryDown)
        applyToBases(*l);
    for (const KoefLine *l : overheads)
        applyToBases(*l);

    for (const KoefLine *l : vat) {
        const auto v = valueOf(*l);
        if (!v)
            continue;
        const MoneyResult base =
            (l->appliesToWorks() ? works : Money()) + (l->appliesToMaterials() ? materials : Money());
        if (!base) {
            r.vat = base;
            if (l->raises())
                r.vatAdded = base;
            continue;
        }
        // Added: value % of the base (or base × (value − 1)); included: the part of the base that is
        // VAT, value ÷ (100 + value) of it (or (value − 1) ÷ value). Each rounded once.
        const Decimal one = *Decimal::whole(1), hundred = *Decimal::whole(100);
        const auto less = l->percent() ? std::optional<Decimal>(*v) : v->plus(one.negated());
        const auto more = l->percent() ? hundred.plus(*v) : std::optional<Decimal>(*v);
        MoneyResult amount = MoneyResult::refused(NumberProblem::TooManyDigits);
        if (less && more) {
            if (l->raises())
                amount = l->percent() ? base->percent(*v) : base->times(*less);
            else
                amount = base->scaled(*less, *more);
        }
        if (!amount) {
            r.problems.insert(
                l->id, QStringLiteral("НДС «%1» со значением «%2»: сумма %3; он не применяется.")
                           .arg(l->title.trimmed(), l->value.trimmed(), numberProblemText(amount.problem())));
            continue;
        }
        r.effect[l->id] = *amount;
        r.vat += amount;
        if (l->raises())
            r.vatAdded += amount;
    }
    r.works = works;
    r.materials = materials;
    r.grand = works + materials + r.vatAdded;
    return r;
}

bool update(QSqlDatabase db, const KoefLine &l, QString *error) {
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("UPDATE koef SET rows=?, checked=?, title=?, value=?, type=?, actionn=?, NumOrProc=?, "
                       "EditComment=? WHERE id=?"));
    for (const QString &v :
         {l.rows, l.checked, l.title, l.value, l.type, l.actionn, l.numOrProc, l.editComment, l.id})
        q.addBindValue(v);
    return q.exec() || fail(q, error);
}

bool insert(QSqlDatabase db, const KoefLine &l, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral(
        "INSERT INTO koef (rows, checked, title, value, type, actionn, NumOrProc, EditComment) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QString &v :
         {l.rows, l.checked, l.title, l.value, l.type, l.actionn, l.numOrProc, l.editComment})
        q.addBindValue(v);
    return q.exec() || fail(q, error);
}

bool remove(QSqlDatabase db, const QString &id, QString *error) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("DELETE FROM koef WHERE id=?"));
    q.addBindValue(id);
    return q.exec() || fail(q, error);
}

} // namespace Coefficients
