#pragma once
// The estimate editor: the editing commands of StringGridDoc, the undo journal, the totals, the
// coefficient lines and the crew sheet. Totals, numbering and the crew sheet follow every change of
// the grid, whoever makes it (a command here, a typed cell, a rate inserted by the price base), by
// listening to the model's signals. Every change becomes an undoable step: commands and typed cells
// on their own; code elsewhere wraps a change of several calls in a Scope so that it is one step:
//
//     EstimateEditor::Scope step(form->editor(), QStringLiteral("Вставка расценки"));
//     grid->insertGridRows(row, 1);
//     grid->setCell(row, EstimateCol::Name, name); ...
//
// A change made outside any scope is recorded as a step of its own when control returns to the event
// loop. A scope's step also holds what it changed in the estimate's materials.

#include "RowDiff.h"
#include "storage/Catalogue.h"
#include "storage/Money.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

class CrewGrid;
class CrewSheet;
class EstimateGrid;
class EstimateMaterials;
class EstimateTotals;
class KoefModel;
class UndoJournal;
struct KoefResult;

class EstimateEditor : public QObject {
    Q_OBJECT
public:
    // Gives the open connection of a catalogue database (the data module's), or an invalid handle.
    using DatabaseProvider = std::function<QSqlDatabase(Db)>;

    EstimateEditor(EstimateGrid *grid, CrewGrid *crew, DatabaseProvider databases, QObject *parent = nullptr);
    ~EstimateEditor() override;

    // Every change of the grid while a scope lives becomes one undoable step named title. Scopes
    // nest (the outermost names the step); a null editor makes the scope do nothing.
    class Scope {
    public:
        Scope(EstimateEditor *editor, const QString &title);
        Scope(EstimateEditor &editor, const QString &title) : Scope(&editor, title) {}
        ~Scope();
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        QPointer<EstimateEditor> m_editor;
    };

    // While a document is read into the grids (and reset() follows) the totals and the crew sheet
    // only take note; they are brought current once, when the last guard goes.
    class Loading {
    public:
        explicit Loading(EstimateEditor &editor);
        ~Loading();
        Loading(const Loading &) = delete;
        Loading &operator=(const Loading &) = delete;

    private:
        EstimateEditor &m_editor;
    };

    EstimateGrid *grid() const { return m_grid; }
    CrewGrid *crewGrid() const { return m_crewGrid; }
    EstimateTotals *totals() const { return m_totals.get(); }
    CrewSheet *crew() const { return m_crew.get(); }
    KoefModel *koef() const { return m_koef.get(); }
    EstimateMaterials *materials() const { return m_materials.get(); }

    // A new or loaded document: empties the undo journal, reloads the coefficient lines, the
    // materials and the crew settings of the document, recomputes everything.
    void reset();
    // The crew sheet's coefficient and mode for a document that stores none of its own (the program's
    // settings "EditKoefBrig" and "RadioButtonKoefBrig"). A document keeps its own in `parametrs`.
    void setCrewDefaults(const QString &koef, bool perRow);

    // ----- Commands. Rows are grid rows (data from 2). A refused command changes nothing and leaves
    // its reason in lastError().
    // A row at the end (above a closing "Итого" row); returns its grid row.
    int appendRow();
    // A row above gridRow; returns its grid row.
    int insertRowAbove(int gridRow);
    // Deletes rows first..last. Section rows may be deleted only with their whole section.
    bool deleteRows(int first, int last);
    // Moves rows first..last so that the block starts at grid row target (as seen before the move).
    bool moveRows(int first, int last, int target);
    bool moveRowsUp(int first, int last) { return moveRows(first, last, first - 1); }
    bool moveRowsDown(int first, int last) { return moveRows(first, last, first + 1); }
    // A section ("br" … "ir") around rows first..last; outside any other section.
    bool createSection(int first, int last, const QString &name);
    // A subsection ("bp" … "ip") around rows first..last; inside one section.
    bool createSubsection(int first, int last, const QString &name);
    // The section (subsection) that holds gridRow, with all its rows.
    bool deleteSection(int gridRow);
    bool deleteSubsection(int gridRow);
    // First and last grid row of the section (subsection) around gridRow; {-1, -1} when none.
    QPair<int, int> sectionAround(int gridRow) const;
    QPair<int, int> subsectionAround(int gridRow) const;
    QString lastError() const { return m_error; }

    // ----- Copy and paste of estimate rows through the table PopupMenuEdit of actions.db.
    // Copies the work rows among first..last; returns how many.
    int copyRows(int first, int last);
    // Pastes the copied rows below gridRow as one step; returns how many.
    int pasteRows(int belowRow);

    // ----- Undo and redo (the journal lives in table ReturnAction of actions.db).
    bool canUndo() const;
    bool canRedo() const;
    bool undo();
    bool redo();
    QString undoTitle() const;
    QString redoTitle() const;

    // ----- Editing rights: the grid's own rules, and a closing "Итого" row is never typed into.
    bool canEditCell(int gridRow, int col) const;
    bool isGrandTotalRow(int gridRow) const;

    // ----- Totals. "Raw" sums are before the coefficient lines. A total that would pass the maximum
    // amount is refused (MoneyResult says why), never wrapped.
    MoneyResult worksRaw() const;
    MoneyResult materialsRaw() const;
    MoneyResult worksTotal() const;     // Edit6
    MoneyResult materialsTotal() const; // Edit4
    MoneyResult vatAmount() const;
    MoneyResult grandTotal() const; // Edit5
    const KoefResult &koefResult() const;

    // ----- Cells that need fixing: marked because their text is not a number or their amount would
    // pass the maximum; what they hold is left out of every total.
    struct ProblemCells {
        int estimate = 0;  // the estimate grid (quantities, prices, amounts, refused totals)
        int koef = 0;      // values of the coefficient panel
        int materials = 0; // the materials tab
        int total() const { return estimate + koef + materials; }
        bool operator==(const ProblemCells &o) const {
            return estimate == o.estimate && koef == o.koef && materials == o.materials;
        }
        bool operator!=(const ProblemCells &o) const { return !(*this == o); }
        // The line under the grid: "Ячеек с ошибками: 3 (смета: 2, материалы: 1) …"; empty when none.
        QString text() const;
    };
    ProblemCells problemCells() const;

public slots:
    // Someone wrote the materials table of the working database (an edit of the document): reload it
    // and total again.
    void materialsChanged();
    // Someone wrote the koef table of the working database: reload the lines and total again.
    void koefChanged();

signals:
    // Any total above changed.
    void totalsChanged();
    // canUndo/canRedo or their titles changed.
    void undoStateChanged();
    // problemCells() changed.
    void problemsChanged();
    // A committed, undone or redone step inserted, removed or re-quantified rows of rates (their
    // quantity, idRas or NamePrice differs): each such row before and after the step. The estimate's
    // materials from norms follow them.
    void rateRowsChanged(const QList<RowDiff::Change> &changes);
    // The materials table was written from outside the materials tab (an insertion, an undone step).
    void materialsEdited();

private:
    friend class Scope;
    struct Snapshot;
    void beginStep(const QString &title);
    void endStep();
    void commitPending(const QString &title);
    void scheduleCommit();
    void takeSnapshot();
    void recomputeCoefficients();
    bool applyStep(bool undoing);
    void storeCrewSettings();
    void checkProblems();
    // Removes grid rows rows.first..rows.second as one step titled title; refused with refusal when
    // there is no such block ({-1, -1}).
    bool removeBlock(QPair<int, int> rows, const QString &refusal, const QString &title);

    EstimateGrid *m_grid;
    CrewGrid *m_crewGrid;
    DatabaseProvider m_databases;
    std::unique_ptr<EstimateTotals> m_totals;
    std::unique_ptr<CrewSheet> m_crew;
    std::unique_ptr<KoefModel> m_koef;
    std::unique_ptr<EstimateMaterials> m_materials;
    std::unique_ptr<UndoJournal> m_journal;
    std::unique_ptr<Snapshot> m_snapshot;
    std::unique_ptr<KoefResult> m_result;
    int m_depth = 0;
    QString m_stepTitle;
    bool m_applying = false;
    bool m_commitScheduled = false;
    QString m_error;
    QString m_crewKoef = QStringLiteral("1");
    bool m_crewPerRow = false;
    bool m_loading = false;
    ProblemCells m_problems;
};
