#include "ActVolumes.h"

#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace ActVolumes {

namespace {

bool fail(const QString &why, QString *error) {
    if (error)
        *error = why.trimmed();
    return false;
}

// The difference a − b; nullopt past what a decimal holds.
std::optional<Decimal> minus(const Decimal &a, const Decimal &b) {
    return a.plus(b.negated());
}

Decimal magnitude(const Decimal &d) {
    return d.isNegative() ? d.negated() : d;
}

int sign(const Decimal &d) {
    return d.isZero() ? 0 : (d.isNegative() ? -1 : 1);
}

const QStringList kRowColumns = {"idact",      "rowkey",          "kind",   "section", "sectiontotal",
                                 "subsection", "subsectiontotal", "numpos", "edras",   "nameras",
                                 "edizm",      "kolvo",           "price",  "summa"};
const QString kMaterialKind = QStringLiteral("m");
const QString kWorkKind = QStringLiteral("w");

Row rowFrom(const QSqlQuery &q) {
    auto text = [&q](const char *column) { return q.value(QString::fromLatin1(column)).toString(); };
    Row r;
    r.key = text("rowkey");
    r.material = text("kind") == kMaterialKind;
    r.section = text("section");
    r.sectionTotal = text("sectiontotal");
    r.subsection = text("subsection");
    r.subsectionTotal = text("subsectiontotal");
    r.number = text("numpos");
    r.code = text("edras");
    r.name = text("nameras");
    r.unit = text("edizm");
    r.quantity = TextValues::parseAmount(text("kolvo")).value_or(Decimal());
    r.price = text("price");
    r.sum = Money::parse(text("summa")).valueOr(Money());
    return r;
}

} // namespace

QString quantityText(const Decimal &value) {
    return TextValues::formatQuantity(value);
}

QVector<Row> estimateRows(const EstimatePrint &p) {
    QVector<Row> rows;
    // Headings open a section or subsection; their total lines follow the rows they close.
    QString section, subsection;
    int sectionStart = 0, subsectionStart = 0;
    auto closeWith = [&rows](int from, QString Row::*field, const QString &total) {
        for (int i = from; i < rows.size(); ++i)
            rows[i].*field = total;
    };
    for (const EstimatePrint::Row &r : p.rows) {
        switch (r.kind) {
        case EstimatePrint::Kind::Section:
            section = r.name;
            subsection.clear();
            sectionStart = subsectionStart = rows.size();
            continue;
        case EstimatePrint::Kind::Subsection:
            subsection = r.name;
            subsectionStart = rows.size();
            continue;
        case EstimatePrint::Kind::SectionTotal:
            closeWith(sectionStart, &Row::sectionTotal, r.name);
            section.clear();
            subsection.clear();
            sectionStart = subsectionStart = rows.size();
            continue;
        case EstimatePrint::Kind::SubsectionTotal:
            closeWith(subsectionStart, &Row::subsectionTotal, r.name);
            subsection.clear();
            subsectionStart = rows.size();
            continue;
        case EstimatePrint::Kind::Work:
            break;
        }
        if (r.id.isEmpty())
            continue;
        Row row;
        row.key = kWorkKind + r.id;
        row.number = r.number;
        row.code = r.code;
        row.name = r.name;
        row.unit = r.unit;
        row.section = section;
        row.subsection = subsection;
        const auto quantity = TextValues::parseAmount(r.quantity);
        const auto price = TextValues::parseAmount(r.price);
        if (quantity && price) {
            row.quantity = *quantity;
            row.price = r.price;
        } else if (TextValues::isBlank(r.quantity) && TextValues::isBlank(r.price) &&
                   TextValues::parseAmount(r.sum)) {
            row.quantity = *Decimal::whole(1); // a lump sum
            row.price = r.sum;
        } else {
            continue; // the editor refused it: no act can close it until it is fixed
        }
        const MoneyResult sum = Money::product(*TextValues::parseAmount(row.price), row.quantity);
        if (!sum)
            continue;
        row.sum = *sum;
        rows << row;
    }
    for (const EstimatePrint::Row &m : p.materialRows) {
        const auto quantity = TextValues::parseAmount(m.quantity);
        const auto price = TextValues::parseAmount(m.price);
        if (m.id.isEmpty() || !quantity || !price)
            continue;
        const MoneyResult sum = Money::product(*price, *quantity);
        if (!sum)
            continue;
        Row row;
        row.key = kMaterialKind + m.id;
        row.material = true;
        row.number = m.number;
        row.name = m.name;
        row.unit = m.unit;
        row.quantity = *quantity;
        row.price = m.price;
        row.sum = *sum;
        rows << row;
    }
    return rows;
}

// ----- Tables

QVector<Act> history(QSqlDatabase db, QString *error) {
    QVector<Act> acts;
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT * FROM actlist WHERE 1 ORDER BY id"))) {
        fail(q.lastError().text(), error);
        return {};
    }
    QHash<qlonglong, int> at;
    while (q.next()) {
        auto text = [&q](const char *column) { return q.value(QString::fromLatin1(column)).toString(); };
        auto money = [&text](const char *column) { return Money::parse(text(column)).valueOr(Money()); };
        Act a;
        a.id = q.value(QStringLiteral("id")).toLongLong();
        a.number = text("number");
        a.date = TextValues::parseShortDate(text("data"));
        a.periodFrom = text("periods");
        a.periodTo = text("periodpo");
        a.year = text("year").toInt();
        a.worksRaw = money("worksraw");
        a.materialsRaw = money("materialsraw");
        a.works = money("works");
        a.materials = money("materials");
        a.vat = money("vat");
        a.grand = money("grand");
        at.insert(a.id, acts.size());
        acts << a;
    }
    q.finish();
    if (!q.exec(QStringLiteral("SELECT * FROM actvolume WHERE idact > 0 ORDER BY id"))) {
        fail(q.lastError().text(), error);
        return {};
    }
    while (q.next()) {
        const auto it = at.constFind(q.value(QStringLiteral("idact")).toLongLong());
        if (it != at.cend())
            acts[it.value()].rows << rowFrom(q);
    }
    return acts;
}

QMap<QString, QString> typed(QSqlDatabase db) {
    QMap<QString, QString> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT rowkey, kolvo FROM actvolume WHERE idact=0")))
        while (q.next())
            out.insert(q.value(0).toString(), q.value(1).toString());
    return out;
}

bool saveTyped(QSqlDatabase db, const QMap<QString, QString> &values, QString *error) {
    Transaction t(db);
    if (!t.active())
        return fail(t.error(), error);
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("DELETE FROM actvolume WHERE idact=0")))
        return fail(q.lastError().text(), error);
    q.prepare(QStringLiteral("INSERT INTO actvolume (idact, rowkey, kolvo) VALUES (0, ?, ?)"));
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        q.addBindValue(it.key());
        q.addBindValue(it.value());
        if (!q.exec())
            return fail(q.lastError().text(), error);
    }
    return t.commit() || fail(t.error(), error);
}

bool record(QSqlDatabase db, Act *act, QString *error) {
    Transaction t(db);
    if (!t.active())
        return fail(t.error(), error);
    QSqlQuery q(db);
    const QVariantList totals{act->worksRaw.text(),  act->materialsRaw.text(), act->works.text(),
                              act->materials.text(), act->vat.text(),          act->grand.text()};
    const QString date = TextValues::shortDate(act->date);
    const QString compare = TextValues::dateCompareDay(act->date);
    if (act->id > 0) {
        q.prepare(QStringLiteral("UPDATE actlist SET data=?, date_compare=?, worksraw=?, materialsraw=?, "
                                 "works=?, materials=?, vat=?, grand=? WHERE id=?"));
        q.addBindValue(date);
        q.addBindValue(compare);
        for (const QVariant &v : totals)
            q.addBindValue(v);
        q.addBindValue(act->id);
        if (!q.exec())
            return fail(q.lastError().text(), error);
        return t.commit() || fail(t.error(), error);
    }
    q.prepare(QStringLiteral("INSERT INTO actlist (number, data, date_compare, periods, periodpo, year, "
                             "worksraw, materialsraw, works, materials, vat, grand) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const QVariant &v : QVariantList{act->number, date, compare, act->periodFrom, act->periodTo,
                                          QString::number(act->year)} +
                                 totals)
        q.addBindValue(v);
    if (!q.exec())
        return fail(q.lastError().text(), error);
    const qlonglong id = q.lastInsertId().toLongLong();
    q.prepare(QStringLiteral("INSERT INTO actvolume (%1) VALUES (%2)")
                  .arg(kRowColumns.join(QStringLiteral(", ")),
                       QStringList(kRowColumns.size(), QStringLiteral("?")).join(QStringLiteral(", "))));
    for (const Row &r : act->rows) {
        for (const QVariant &v :
             QVariantList{id, r.key, r.material ? kMaterialKind : kWorkKind, r.section, r.sectionTotal,
                          r.subsection, r.subsectionTotal, r.number, r.code, r.name, r.unit,
                          quantityText(r.quantity), r.price, r.sum.text()})
            q.addBindValue(v);
        if (!q.exec())
            return fail(q.lastError().text(), error);
    }
    if (!q.exec(QStringLiteral("DELETE FROM actvolume WHERE idact=0")))
        return fail(q.lastError().text(), error);
    if (!t.commit())
        return fail(t.error(), error);
    act->id = id;
    return true;
}

bool deleteLast(QSqlDatabase db, QString *error) {
    Transaction t(db);
    if (!t.active())
        return fail(t.error(), error);
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("SELECT max(id) FROM actlist")))
        return fail(q.lastError().text(), error);
    const qlonglong id = q.next() ? q.value(0).toLongLong() : 0;
    q.finish();
    if (id <= 0)
        return true;
    for (const char *sql : {"DELETE FROM actvolume WHERE idact=?", "DELETE FROM actlist WHERE id=?"}) {
        q.prepare(QString::fromLatin1(sql));
        q.addBindValue(id);
        if (!q.exec())
            return fail(q.lastError().text(), error);
    }
    return t.commit() || fail(t.error(), error);
}

bool byVolumes(const QVector<Act> &history, const QMap<QString, QString> &typed) {
    return !history.isEmpty() || !typed.isEmpty();
}

// ----- The page

std::optional<Decimal> Volume::remainder() const {
    if (!value)
        return std::nullopt;
    const auto left = minus(row.quantity, closed);
    return left ? minus(*left, *value) : std::nullopt;
}

QVector<Volume> volumes(const QVector<Row> &rows, const QVector<Act> &history,
                        const QMap<QString, QString> &typedValues) {
    QHash<QString, Decimal> closed;
    for (const Act &a : history)
        for (const Row &r : a.rows)
            closed[r.key] = closed.value(r.key).plus(r.quantity).value_or(closed.value(r.key));
    QVector<Volume> out;
    out.reserve(rows.size());
    for (const Row &r : rows) {
        Volume v;
        v.row = r;
        v.closed = closed.value(r.key);
        const auto it = typedValues.constFind(r.key);
        if (it != typedValues.cend()) {
            setThisAct(v, it.value(), true);
        } else {
            setThisAct(v, defaultThisAct(v), false);
        }
        out << v;
    }
    return out;
}

QString defaultThisAct(const Volume &v) {
    const Decimal left = minus(v.row.quantity, v.closed).value_or(Decimal());
    return quantityText(sign(left) == sign(v.row.quantity) ? left : Decimal());
}

void setThisAct(Volume &v, const QString &text, bool typedByUser) {
    v.thisAct = text;
    v.typed = typedByUser;
    v.problem.clear();
    v.value.reset();
    if (TextValues::isBlank(text)) {
        v.value = Decimal();
        return;
    }
    const TextValues::NumberReading reading = TextValues::readNumber(text, true);
    if (!reading.value) {
        v.problem =
            QStringLiteral("Количество «%1» %2.").arg(text.trimmed(), numberProblemText(reading.problem));
        return;
    }
    const Decimal value = *reading.value;
    if (!value.isZero() && sign(value) != sign(v.row.quantity)) {
        v.problem = v.row.quantity.isZero()
                        ? QStringLiteral("По смете количество этой строки равно нулю: закрывать нечего.")
                        : QStringLiteral("Количество в акте должно быть того же знака, что и по смете.");
        return;
    }
    const auto total = v.closed.plus(value);
    if (!total || magnitude(*total) > magnitude(v.row.quantity)) {
        v.problem = QStringLiteral("В этом акте %1, а по смете осталось %2 (по смете %3, закрыто ранее %4).")
                        .arg(quantityText(value), defaultThisAct(v), quantityText(v.row.quantity),
                             quantityText(v.closed));
        return;
    }
    v.value = value;
}

QString refusal(const Volume &v) {
    const QString number = v.row.material ? QStringLiteral("материал") : QStringLiteral("№ ") + v.row.number;
    return QStringLiteral("%1 «%2»: %3").arg(number, v.row.name, v.problem);
}

} // namespace ActVolumes
