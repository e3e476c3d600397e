#include "KoefUndo.h"

#include "storage/Transaction.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace KoefUndo {

const QStringList &columns() {
    static const QStringList c = {
        QStringLiteral("id"),           QStringLiteral("rows"),     QStringLiteral("checked"),
        QStringLiteral("title"),        QStringLiteral("value"),    QStringLiteral("type"),
        QStringLiteral("actionn"),      QStringLiteral("radio"),    QStringLiteral("CheckBox"),
        QStringLiteral("SpinBox"),      QStringLiteral("ComboBox"), QStringLiteral("EditComment"),
        QStringLiteral("CornerButton"), QStringLiteral("comment"),  QStringLiteral("NumOrProc")};
    return c;
}

std::vector<QStringList> readAll(QSqlDatabase db) {
    std::vector<QStringList> rows;
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT %1 FROM koef ORDER BY id").arg(columns().join(QStringLiteral(", ")))))
        return rows;
    while (q.next()) {
        QStringList row;
        for (int i = 0; i < columns().size(); ++i)
            row << q.value(i).toString();
        rows.push_back(row);
    }
    return rows;
}

std::vector<Op> diff(const std::vector<QStringList> &before, const std::vector<QStringList> &after) {
    return MaterialsUndo::diffRows(before, after);
}

bool apply(QSqlDatabase db, const std::vector<Op> &ops, bool undoing, QString *error) {
    Transaction t(db);
    auto failed = [error](const QString &text) {
        if (error)
            *error = text;
        return false;
    };
    if (!t.active())
        return failed(t.error());
    QSqlQuery q(db);
    for (const Op &op : ops) {
        // Undoing an insertion deletes the line, undoing a deletion puts it back with its id, an
        // edit takes the other side; redoing does the opposite.
        const QStringList &target = undoing ? op.before : op.after;
        if (target.isEmpty()) {
            q.prepare(QStringLiteral("DELETE FROM koef WHERE id=?"));
            q.addBindValue((undoing ? op.after : op.before).value(0));
        } else {
            q.prepare(QStringLiteral("INSERT OR REPLACE INTO koef (%1) VALUES (?%2)")
                          .arg(columns().join(QStringLiteral(", ")),
                               QStringLiteral(", ?").repeated(columns().size() - 1)));
            for (int i = 0; i < columns().size(); ++i)
                q.addBindValue(target.value(i));
        }
        if (!q.exec())
            return failed(q.lastError().text());
    }
    return t.commit() || failed(t.error());
}

} // namespace KoefUndo
