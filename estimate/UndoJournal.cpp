#include "UndoJournal.h"

#include "EstimateGrid.h"
#include "storage/Schema.h"
#include "storage/Transaction.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

namespace {

const char *actionName(RowDiff::Op::Kind k) {
    switch (k) {
    case RowDiff::Op::Edit:
        return "edit";
    case RowDiff::Op::Insert:
        return "insert";
    case RowDiff::Op::Delete:
        return "delete";
    }
    return "";
}

QJsonArray toJson(const QStringList &cells) {
    return QJsonArray::fromStringList(cells);
}

// {"old": [...], "new": [...]}: the values before and after, each only when there is that side.
QString cellsJson(const QStringList *before, const QStringList *after) {
    QJsonObject cells;
    if (before)
        cells.insert(QStringLiteral("old"), toJson(*before));
    if (after)
        cells.insert(QStringLiteral("new"), toJson(*after));
    return QString::fromUtf8(QJsonDocument(cells).toJson(QJsonDocument::Compact));
}

QStringList fromJson(const QJsonValue &v) {
    QStringList out;
    for (const QJsonValue &c : v.toArray())
        out << c.toString();
    while (out.size() < RowDiff::kRowWidth)
        out << QString();
    return out;
}

} // namespace

UndoJournal::UndoJournal(QSqlDatabase database) {
    if (database.isValid() && database.isOpen()) {
        m_connection = database.connectionName();
    } else {
        m_own = true;
        m_connection = QStringLiteral("virn-undo-") + QUuid::createUuid().toString(QUuid::WithoutBraces);
        QSqlDatabase mem = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
        mem.setDatabaseName(QStringLiteral(":memory:"));
        mem.open();
        // The same layout as the file's, made by the same steps.
        m_error = Schema::upgrade(mem, Db::ReturnAction);
    }
    // The journal only has to outlive a session, not a power cut: no waiting for the disk per step.
    QSqlQuery(db()).exec(QStringLiteral("PRAGMA synchronous=OFF"));
}

UndoJournal::~UndoJournal() {
    if (m_own)
        QSqlDatabase::removeDatabase(m_connection);
}

bool UndoJournal::clear() {
    m_count = m_position = 0;
    QSqlQuery q(db());
    if (!q.exec(QStringLiteral("DELETE FROM ReturnAction"))) {
        m_error = q.lastError().text();
        return false;
    }
    return true;
}

bool UndoJournal::record(const QString &title, const std::vector<RowDiff::Op> &ops,
                         const std::vector<MaterialsUndo::Op> &materials,
                         const std::vector<MaterialsUndo::Op> &koef) {
    if (ops.empty() && materials.empty() && koef.empty())
        return true;
    QSqlDatabase d = db();
    Transaction t(d);
    if (!t.active()) {
        m_error = t.error();
        return false;
    }
    QSqlQuery q(d);
    q.prepare(QStringLiteral("DELETE FROM ReturnAction WHERE step > ?"));
    q.addBindValue(m_position);
    bool ok = q.exec();
    const int step = m_position + 1;
    q.prepare(
        QStringLiteral("INSERT INTO ReturnAction (numpos, edras, nameras, edizm, kolvo, price, summa, idRas, "
                       "NamePrice, KoefBrig, _action, MouseDownRow, MouseUpRow, hint, step, cells) "
                       "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (const RowDiff::Op &op : ops) {
        if (!ok)
            break;
        using namespace EstimateCol;
        const QStringList &shown = op.kind == RowDiff::Op::Delete ? op.before : op.after;
        for (int c : std::initializer_list<int>{Num, Ras, Name, Unit, Qty, Price, Sum, IdRas, NamePrice,
                                                RowDiff::kCrewKoef})
            q.addBindValue(c < shown.size() ? shown.at(c) : QString());
        q.addBindValue(QString::fromLatin1(actionName(op.kind)));
        q.addBindValue(QString::number(op.row));
        q.addBindValue(QString::number(op.row));
        q.addBindValue(title);
        q.addBindValue(step);
        q.addBindValue(cellsJson(op.kind != RowDiff::Op::Insert ? &op.before : nullptr,
                                 op.kind != RowDiff::Op::Delete ? &op.after : nullptr));
        ok = q.exec();
    }
    // Records of the materials and the coefficient lines: `shownAt` picks the fields shown in the
    // named columns numpos, edras, nameras, edizm, kolvo, price, summa (-1 leaves one empty).
    auto recordFields = [&](const std::vector<MaterialsUndo::Op> &fieldOps, const QString &prefix,
                            std::initializer_list<int> shownAt) {
        for (const MaterialsUndo::Op &op : fieldOps) {
            if (!ok)
                break;
            const QStringList &shown = op.kind == MaterialsUndo::Op::Delete ? op.before : op.after;
            for (int i : shownAt)
                q.addBindValue(i < 0 ? QString() : shown.value(i));
            for (int i = 0; i < 3; ++i)
                q.addBindValue(QString());
            q.addBindValue(prefix + (op.kind == MaterialsUndo::Op::Insert   ? QStringLiteral("insert")
                                     : op.kind == MaterialsUndo::Op::Delete ? QStringLiteral("delete")
                                                                            : QStringLiteral("edit")));
            q.addBindValue(shown.value(0));
            q.addBindValue(shown.value(0));
            q.addBindValue(title);
            q.addBindValue(step);
            q.addBindValue(cellsJson(op.kind != MaterialsUndo::Op::Insert ? &op.before : nullptr,
                                     op.kind != MaterialsUndo::Op::Delete ? &op.after : nullptr));
            ok = q.exec();
        }
    };
    // A material: position, rate, name, unit, quantity, price, amount; a coefficient line: its order,
    // title and value.
    recordFields(materials, QStringLiteral("mat-"), {9, 1, 2, 3, 4, 5, 6});
    recordFields(koef, QStringLiteral("koef-"), {1, -1, 3, -1, 4, -1, -1});
    if (!ok) {
        m_error = q.lastError().text();
        return false;
    }
    if (!t.commit()) {
        m_error = t.error();
        return false;
    }
    m_count = m_position = step;
    return true;
}

bool UndoJournal::read(int step, std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials,
                       std::vector<MaterialsUndo::Op> *koef) {
    ops.clear();
    for (std::vector<MaterialsUndo::Op> *fieldOps : {materials, koef})
        if (fieldOps)
            fieldOps->clear();
    bool any = false;
    QSqlQuery q(db());
    q.setForwardOnly(true);
    q.prepare(
        QStringLiteral("SELECT _action, MouseDownRow, cells FROM ReturnAction WHERE step = ? ORDER BY _id"));
    q.addBindValue(step);
    if (!q.exec()) {
        m_error = q.lastError().text();
        return false;
    }
    while (q.next()) {
        any = true;
        QString action = q.value(0).toString();
        const bool isKoef = action.startsWith(QLatin1String("koef-"));
        if (isKoef || action.startsWith(QLatin1String("mat-"))) {
            std::vector<MaterialsUndo::Op> *target = isKoef ? koef : materials;
            if (!target)
                continue;
            action = action.mid(action.indexOf(u'-') + 1);
            MaterialsUndo::Op op;
            op.kind = action == QLatin1String("insert")   ? MaterialsUndo::Op::Insert
                      : action == QLatin1String("delete") ? MaterialsUndo::Op::Delete
                                                          : MaterialsUndo::Op::Edit;
            const QJsonObject cells = QJsonDocument::fromJson(q.value(2).toString().toUtf8()).object();
            for (const QJsonValue &v : cells.value(QStringLiteral("old")).toArray())
                op.before << v.toString();
            for (const QJsonValue &v : cells.value(QStringLiteral("new")).toArray())
                op.after << v.toString();
            target->push_back(std::move(op));
            continue;
        }
        RowDiff::Op op;
        if (action == QLatin1String("insert"))
            op.kind = RowDiff::Op::Insert;
        else if (action == QLatin1String("delete"))
            op.kind = RowDiff::Op::Delete;
        else
            op.kind = RowDiff::Op::Edit;
        op.row = q.value(1).toInt();
        const QJsonObject cells = QJsonDocument::fromJson(q.value(2).toString().toUtf8()).object();
        if (op.kind != RowDiff::Op::Insert)
            op.before = fromJson(cells.value(QStringLiteral("old")));
        if (op.kind != RowDiff::Op::Delete)
            op.after = fromJson(cells.value(QStringLiteral("new")));
        ops.push_back(std::move(op));
    }
    if (!any) {
        m_error = QStringLiteral("Шаг %1 журнала отмены не найден").arg(step);
        return false;
    }
    return true;
}

bool UndoJournal::takeUndo(std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials,
                           std::vector<MaterialsUndo::Op> *koef) {
    if (!canUndo() || !read(m_position, ops, materials, koef))
        return false;
    --m_position;
    return true;
}

bool UndoJournal::takeRedo(std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials,
                           std::vector<MaterialsUndo::Op> *koef) {
    if (!canRedo() || !read(m_position + 1, ops, materials, koef))
        return false;
    ++m_position;
    return true;
}

QString UndoJournal::title(int step) const {
    QSqlQuery q(db());
    q.prepare(QStringLiteral("SELECT hint FROM ReturnAction WHERE step = ? LIMIT 1"));
    q.addBindValue(step);
    return q.exec() && q.next() ? q.value(0).toString() : QString();
}
