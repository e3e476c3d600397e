#include "EstimateStore.h"

#include "ActFields.h"
#include "CrewGrid.h"
#include "EstimateGrid.h"
#include "MaterialsStore.h"
#include "storage/ModuleSQL.h"
#include "storage/Money.h"
#include "storage/Schema.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace EstimateStore {

namespace {

bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text();
    return false;
}

QString field(const QSqlQuery &q, const QSqlRecord &rec, const char *name) {
    const int i = rec.indexOf(QLatin1String(name));
    return i < 0 ? QString() : q.value(i).toString();
}

} // namespace

bool readSmeta(QSqlDatabase db, EstimateGrid &grid, CrewGrid &crew, QString *error) {
    QSqlQuery q(db);
    q.setForwardOnly(true);
    std::vector<QStringList> rows;
    std::vector<QStringList> crewRows;
    // As many rows as there are, not twice that: an estimate may have a hundred thousand.
    if (q.exec(QStringLiteral("SELECT count(*) FROM smeta")) && q.next()) {
        rows.reserve(q.value(0).toULongLong());
        crewRows.reserve(rows.capacity());
    }
    if (!q.exec(QStringLiteral("SELECT * FROM smeta WHERE 1")))
        return fail(q, error);
    const QSqlRecord rec = q.record();
    while (q.next()) {
        QStringList cells(EstimateCol::Count);
        cells[EstimateCol::Num] = field(q, rec, "numpos");
        cells[EstimateCol::Ras] = field(q, rec, "edras");
        cells[EstimateCol::Name] = field(q, rec, "nameras");
        cells[EstimateCol::Unit] = field(q, rec, "edizm");
        cells[EstimateCol::Qty] = field(q, rec, "kolvo");
        cells[EstimateCol::Price] = field(q, rec, "price");
        cells[EstimateCol::Sum] = field(q, rec, "summa");
        cells[EstimateCol::IdRas] = field(q, rec, "idRas");
        const QString idwork = field(q, rec, "idwork");
        // Older documents have no work ids: the record key stands in.
        cells[EstimateCol::IdDoc] = idwork.isEmpty() ? field(q, rec, "_id") : idwork;
        cells[EstimateCol::NamePrice] = field(q, rec, "NamePrice");
        cells[EstimateCol::Kind] = field(q, rec, "section");
        const QString machine = field(q, rec, "machine");
        const QString mat = field(q, rec, "mat");
        const QString total = field(q, rec, "total");
        cells[EstimateCol::Machine] = machine;
        cells[EstimateCol::Material] = mat;
        cells[EstimateCol::Total] = total;
        // The labour part is the price unless a positive unit total says what is left of it.
        cells[EstimateCol::Labour] = cells[EstimateCol::Price];
        const MoneyResult totalValue = Money::parse(total);
        if (totalValue && *totalValue > Money())
            cells[EstimateCol::Labour] =
                (totalValue - Money::parse(mat).valueOr(Money()) - Money::parse(machine).valueOr(Money()))
                    .text();
        cells[EstimateCol::Itogo] = cells[EstimateCol::Sum];
        rows.push_back(std::move(cells));

        QStringList crewCells(CrewCol::Count);
        crewCells[CrewCol::Koef] = field(q, rec, "KoefBrig");
        crewRows.push_back(std::move(crewCells));
    }
    // The crew rows first: the estimate's reset rebuilds the crew sheet on them, instead of on the
    // previous document's rows that are then thrown away (a second copy of every row at the peak).
    crew.setAllRows(std::move(crewRows));
    grid.setAllRows(std::move(rows));

    // The act data: a document without it, or an older one with fewer fields, gets the defaults (the
    // estimate loads without them when they cannot be written; the act data window writes them again).
    ActFields::ensureRows(db);
    return true;
}

bool writeSmeta(QSqlDatabase db, EstimateGrid &grid, const CrewGrid &crew, const Parameters &params,
                QString *error) {
    // Work ids stay with their rows; new rows get the next free one.
    long long nextId = 0;
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        nextId = std::max(nextId, grid.cell(r, EstimateCol::IdDoc).toLongLong());
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        if (grid.cell(r, EstimateCol::IdDoc).trimmed().isEmpty())
            grid.setCell(r, EstimateCol::IdDoc, QString::number(++nextId));

    Transaction t(db);
    if (!t.active()) {
        if (error)
            *error = t.error();
        return false;
    }
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("DELETE FROM smeta")))
        return fail(q, error);
    q.prepare(QStringLiteral(
        "INSERT INTO smeta (numpos, edras, nameras, edizm, kolvo, price, summa, idRas, NamePrice, "
        "KoefBrig, section, machine, mat, total, laboriousness, idwork) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r) {
        using namespace EstimateCol;
        for (int c : {Num, Ras, Name, Unit, Qty, Price, Sum, IdRas, NamePrice})
            q.addBindValue(grid.cell(r, c));
        q.addBindValue(crew.cell(r - 1, CrewCol::Koef));
        for (int c : {Kind, Machine, Material, Total})
            q.addBindValue(grid.cell(r, c));
        q.addBindValue(QString()); // labour intensity is not kept in the grid
        q.addBindValue(grid.cell(r, IdDoc));
        if (!q.exec())
            return fail(q, error);
    }
    if (!params.isEmpty() && !writeParameters(db, params, error))
        return false;
    if (!t.commit()) {
        if (error)
            *error = t.error();
        return false;
    }
    return true;
}

QMap<QString, QString> readParameters(QSqlDatabase db) {
    QMap<QString, QString> out;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT name, value FROM parametrs WHERE 1")))
        while (q.next())
            out.insert(q.value(0).toString(), q.value(1).toString());
    return out;
}

bool writeParameters(QSqlDatabase db, const Parameters &params, QString *error) {
    QSqlQuery del(db), ins(db);
    del.prepare(QStringLiteral("DELETE FROM parametrs WHERE name=?"));
    ins.prepare(QStringLiteral("INSERT INTO parametrs (name, value) VALUES (?, ?)"));
    for (const auto &p : params) {
        del.addBindValue(p.first);
        if (!del.exec())
            return fail(del, error);
        ins.addBindValue(p.first);
        ins.addBindValue(p.second);
        if (!ins.exec())
            return fail(ins, error);
    }
    return true;
}

bool writeDefaultKoefLines(QSqlDatabase db) {
    // type: "work" applies to works, "mat" to materials, "all" to both; checked "-1" on, "0" off.
    struct Line {
        const char *title, *value, *type, *action, *numOrProc, *comment;
    };
    static const Line lines[] = {
        {"Коэффициент удорожания", "1", "all", "inc", "num", ""},
        {"Накладные расходы, %", "0", "all", "inc", "proc", ""},
        {"Скидка на работы, %", "0", "work", "dec", "proc", ""},
        {"Скидка на материалы, %", "0", "mat", "dec", "proc", ""},
        {"НДС, %", "20", "all", "inc", "proc", "RadioButton"},
    };
    QSqlQuery q(db);
    q.prepare(QStringLiteral(
        "INSERT INTO koef (rows, checked, title, value, type, actionn, NumOrProc, EditComment) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    int row = 0;
    for (const Line &l : lines) {
        q.addBindValue(QString::number(row++));
        q.addBindValue(QStringLiteral("0"));
        q.addBindValue(QString::fromUtf8(l.title));
        q.addBindValue(QString::fromUtf8(l.value));
        q.addBindValue(QString::fromUtf8(l.type));
        q.addBindValue(QString::fromUtf8(l.action));
        q.addBindValue(QString::fromUtf8(l.numOrProc));
        q.addBindValue(QString::fromUtf8(l.comment));
        if (!q.exec())
            return false;
    }
    return true;
}

bool createNewDoc(TModuleSQL &module, EstimateGrid &grid, CrewGrid &crew, QString *error) {
    grid.clear();
    crew.setAllRows({});

    QSqlDatabase smeta = module.database(Db::Smeta);
    if (!smeta.isOpen()) {
        if (error)
            *error = module.failure(Db::Smeta);
        return false;
    }
    // The document's tables are emptied, never dropped (only the upgrade steps make tables), and
    // refilled with the defaults, in one transaction.
    const auto reset = [&smeta]() -> QString {
        Transaction t(smeta);
        if (!t.active())
            return t.error();
        QString why;
        if (!MaterialsStore::clear(smeta, &why) ||
            !Schema::clearTables(smeta,
                                 {QStringLiteral("koef"), QStringLiteral("ks2"), QStringLiteral("mydoc"),
                                  QStringLiteral("Account"), QStringLiteral("actlist"),
                                  QStringLiteral("actvolume")},
                                 &why))
            return why;
        // No table of today's layout: a leftover of older documents goes.
        QSqlQuery q(smeta);
        if (!q.exec(QStringLiteral("DROP TABLE IF EXISTS cashstorage")))
            return q.lastError().text();
        if (!ActFields::ensureRows(smeta, &why))
            return why;
        if (!writeDefaultKoefLines(smeta))
            return QStringLiteral("не удалось записать строки коэффициентов");
        return t.commit() ? QString() : t.error();
    };
    if (const QString why = reset(); !why.isEmpty()) {
        if (error)
            *error = why;
        return false;
    }
    // The emptied pages are given back, so that a document file holds no remains of the last one.
    QSqlQuery(smeta).exec(QStringLiteral("VACUUM"));

    QSqlDatabase actions = module.database(Db::ReturnAction);
    if (actions.isOpen()) {
        if (!Schema::clearTables(actions, {QStringLiteral("ReturnAction"), QStringLiteral("PopupMenuEdit")},
                                 error))
            return false;
        QSqlQuery(actions).exec(QStringLiteral("VACUUM"));
    }
    return true;
}

} // namespace EstimateStore
