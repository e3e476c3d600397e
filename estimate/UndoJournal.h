#pragma once
// The undo journal of the estimate grid, kept in table ReturnAction of actions.db. One record per
// changed row: `_action` "edit", "insert" or "delete", `MouseDownRow`/`MouseUpRow` the grid row, the
// named columns the row's values (new ones for "edit" and "insert", old ones for "delete"), `hint`
// the step's caption. Two more columns (added by the journal's second upgrade step, with an index on
// `step`): `step` (the step number, all records of one step share it) and `cells` (JSON
// {"old": [...], "new": [...]} with every cell of the row and its crew coefficient), from which a
// step is undone and redone exactly.
// A step may change the estimate's materials too: their records have `_action` "mat-edit",
// "mat-insert" or "mat-delete", `MouseDownRow` the material's _id and `cells` its fields; and the
// coefficient lines: "koef-edit", "koef-insert", "koef-delete", `MouseDownRow` the line's id.
// Undone steps stay for redo until a new step is recorded.

#include "MaterialsUndo.h"
#include "RowDiff.h"

#include <QSqlDatabase>
#include <QString>
#include <vector>

class UndoJournal {
public:
    // An invalid database makes the journal keep its records in a private in-memory database.
    explicit UndoJournal(QSqlDatabase db);
    ~UndoJournal();
    UndoJournal(const UndoJournal &) = delete;
    UndoJournal &operator=(const UndoJournal &) = delete;

    // Empties the journal (a new or loaded document).
    bool clear();

    // Records one step after the current position, dropping the undone steps.
    bool record(const QString &title, const std::vector<RowDiff::Op> &ops,
                const std::vector<MaterialsUndo::Op> &materials = {},
                const std::vector<MaterialsUndo::Op> &koef = {});

    int count() const { return m_count; }
    int position() const { return m_position; }
    bool canUndo() const { return m_position > 0; }
    bool canRedo() const { return m_position < m_count; }
    QString undoTitle() const { return canUndo() ? title(m_position) : QString(); }
    QString redoTitle() const { return canRedo() ? title(m_position + 1) : QString(); }

    // The ops of the step to undo (moves the position back) or to redo (moves it on); false when
    // there is none or it cannot be read.
    // The step's materials and coefficient ops go to *materials and *koef when given.
    bool takeUndo(std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials = nullptr,
                  std::vector<MaterialsUndo::Op> *koef = nullptr);
    bool takeRedo(std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials = nullptr,
                  std::vector<MaterialsUndo::Op> *koef = nullptr);

    QString error() const { return m_error; }

private:
    bool read(int step, std::vector<RowDiff::Op> &ops, std::vector<MaterialsUndo::Op> *materials,
              std::vector<MaterialsUndo::Op> *koef);
    QString title(int step) const;

    // The connection is looked up by name for every use: the journal must not keep the data module's
    // connection alive.
    QSqlDatabase db() const { return QSqlDatabase::database(m_connection, false); }
    QString m_connection;
    bool m_own = false;
    int m_count = 0;
    int m_position = 0;
    QString m_error;
};
