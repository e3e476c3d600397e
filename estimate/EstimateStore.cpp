#include "EstimateStore.h"

#include "ActFields.h"
#include "CrewGrid.h"
#include "EstimateGrid.h"
#include "MaterialsStore.h"
#include "storage/ModuleSQL.h"
#include "storage/Money.h"
#include "storage/Schema.h"
#include "storage/SqliteRows.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace EstimateStore {

namespace {

bool fail(const QSqlQuery &q, QString *error) {
    if (error)
        *error = q.lastError().text();
    return false;
}

} // namespace

bool readSmeta(QSqlDatabase db, EstimateGrid &grid, CrewGrid &crew, QString *error) {
    // Thousands of rows: read through the C interface, each text decoded once.
    std::vector<QStringList> rows;
    std::vector<QStringList> crewRows;
    // As many rows as there are, not twice that: an estimate may have a hundred thousand.
    {
        SqliteRows count(db, QStringLiteral("SELECT count(*) FROM smeta"));
        if (count.ok() && count.next()) {
            rows.reserve(count.text(0).toULongLong());
            crewRows.reserve(rows.capacity());
        }
    }
    SqliteRows q(db, QStringLiteral("SELECT * FROM smeta WHERE 1"));
    if (!q.ok()) {
        if (error)
            *error = q.error();
        return false;
    }
    // Documents of other versions may lack columns or hold them in another order.
    const int iNum = q.column("numpos"), iRas = q.column("edras"), iName = q.column("nameras"),
              iUnit = q.column("edizm"), iQty = q.column("kolvo"), iPrice = q.column("price"),
              iSum = q.column("summa"), iIdRas = q.column("idRas"), iIdWork = q.column("idwork"),
              iId = q.column("_id"), iNamePrice = q.column("NamePrice"), iKind = q.column("section"),
              iMachine = q.column("machine"), iMat = q.column("mat"), iTotal = q.column("total"),
              iKoef = q.column("KoefBrig");
    const QStringList emptyCrew(CrewCol::Count);
    while (q.next()) {
        QStringList cells(EstimateCol::Count);
        cells[EstimateCol::Num] = q.text(iNum);
        cells[EstimateCol::Ras] = q.text(iRas);
        cells[EstimateCol::Name] = q.text(iName);
        cells[EstimateCol::Unit] = q.text(iUnit);
        cells[EstimateCol::Qty] = q.text(iQty);
        cells[EstimateCol::Price] = q.text(iPrice);
        cells[EstimateCol::Sum] = q.text(iSum);
        cells[EstimateCol::IdRas] = q.text(iIdRas);
        const QString idwork = q.text(iIdWork);
        // Older documents have no work ids: the record key stands in.
        cells[EstimateCol::IdDoc] = idwork.isEmpty() ? q.text(iId) : idwork;
        cells[EstimateCol::NamePrice] = q.text(iNamePrice);
        cells[EstimateCol::Kind] = q.text(iKind);
        const QString machine = q.text(iMachine);
        const QString mat = q.text(iMat);
        const QString total = q.text(iTotal);
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

        const QString koef = q.text(iKoef);
        if (koef.isEmpty()) {
            crewRows.push_back(emptyCrew); // shared until someone writes into it
        } else {
            QStringList crewCells = emptyCrew;
            crewCells[CrewCol::Koef] = koef;
            crewRows.push_back(std::move(crewCells));
        }
    }
    if (!q.error().isEmpty()) {
        if (error)
            *error = q.error();
        return false;
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
    // What was deleted is overwritten already (secure_delete of the working database): a document
    // file holds no remains of the last one. The file is compacted only when much of it is free.
    Schema::compactIfWorthIt(smeta);

    QSqlDatabase actions = module.database(Db::ReturnAction);
    if (actions.isOpen()) {
        if (!Schema::clearTables(actions, {QStringLiteral("ReturnAction"), QStringLiteral("PopupMenuEdit")},
                                 error))
            return false;
        Schema::compactIfWorthIt(actions);
    }
    return true;
}

} // namespace EstimateStore
