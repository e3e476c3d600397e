#include "Coefficients.h"

#include "storage/TextValues.h"

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

// One line applied to one base; returns the change in money.
double change(const KoefLine &line, double value, double base) {
    if (line.percent()) {
        const double d = TextValues::roundMoney(base * value / 100.0);
        return line.raises() ? d : -d;
    }
    if (line.raises())
        return TextValues::roundMoney(base * value) - base;
    return TextValues::roundMoney(base / value) - base;
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

KoefResult apply(const std::vector<KoefLine> &lines, double worksRaw, double materialsRaw) {
    KoefResult r;
    r.worksRaw = worksRaw;
    r.materialsRaw = materialsRaw;
    double works = worksRaw, materials = materialsRaw;

    auto valueOf = [&](const KoefLine &l) -> std::optional<double> {
        auto v = TextValues::parseAmount(l.value);
        // A factor of 0 cannot lower anything by division.
        if (!v || (!l.percent() && !l.raises() && *v == 0.0)) {
            r.problems << l.id;
            return std::nullopt;
        }
        return v;
    };
    auto applyToBases = [&](const KoefLine &l) {
        const auto v = valueOf(l);
        if (!v)
            return;
        double total = 0;
        if (l.appliesToWorks()) {
            const double d = change(l, *v, works);
            works += d;
            total += d;
        }
        if (l.appliesToMaterials()) {
            const double d = change(l, *v, materials);
            materials += d;
            total += d;
        }
        r.effect[l.id] += TextValues::roundMoney(total);
    };

    std::vector<const KoefLine *> ordinaryUp, ordinaryDown, overheads, vat;
    for (const KoefLine &l : lines) {
        if (!l.on())
            continue;
        r.effect.insert(l.id, 0.0);
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
        const double base = (l->appliesToWorks() ? works : 0) + (l->appliesToMaterials() ? materials : 0);
        double amount;
        if (l->percent())
            amount = l->raises() ? base * *v / 100.0 : base * *v / (100.0 + *v);
        else
            amount = l->raises() ? base * (*v - 1.0) : base - base / *v;
        amount = TextValues::roundMoney(amount);
        r.effect[l->id] += amount;
        r.vat += amount;
        if (l->raises())
            r.vatAdded += amount;
    }
    r.works = TextValues::roundMoney(works);
    r.materials = TextValues::roundMoney(materials);
    r.grand = TextValues::roundMoney(r.works + r.materials + r.vatAdded);
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
