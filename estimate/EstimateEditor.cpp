#include "EstimateEditor.h"

#include "Coefficients.h"
#include "CrewGrid.h"
#include "CrewSheet.h"
#include "EstimateGrid.h"
#include "EstimateMaterials.h"
#include "EstimateStore.h"
#include "EstimateStructure.h"
#include "EstimateTotals.h"
#include "KoefModel.h"
#include "KoefUndo.h"
#include "MaterialsUndo.h"
#include "RowClipboard.h"
#include "RowDiff.h"
#include "UndoJournal.h"

#include <QSet>
#include <QTimer>

using namespace EstimateStructure;

struct EstimateEditor::Snapshot {
    std::vector<RowDiff::Row> rows;
    // The estimate's materials as a scope found them: a step of a scope takes their changes too.
    std::vector<MaterialsStore::Material> materials;
    // The coefficient lines as the scope found them.
    std::vector<QStringList> koef;
    bool materialsTaken = false;
};

namespace {
const QString kPendingTitle = QStringLiteral("Изменение сметы");

// Whether a row change can move the materials from norms: a row of a rate came, went, or changed its
// quantity, rate or resources table.
bool movesMaterials(const QStringList &before, const QStringList &after) {
    using namespace EstimateCol;
    auto hasRate = [](const QStringList &cells) { return !cells.value(IdRas).trimmed().isEmpty(); };
    if (!hasRate(before) && !hasRate(after))
        return false;
    return before.value(Qty) != after.value(Qty) || before.value(IdRas) != after.value(IdRas) ||
           before.value(NamePrice) != after.value(NamePrice);
}
} // namespace

// ----- Scope

EstimateEditor::Scope::Scope(EstimateEditor *editor, const QString &title) : m_editor(editor) {
    if (m_editor)
        m_editor->beginStep(title);
}

EstimateEditor::Scope::~Scope() {
    if (m_editor)
        m_editor->endStep();
}

// ----- Loading

EstimateEditor::Loading::Loading(EstimateEditor &editor) : m_editor(editor) {
    m_editor.m_totals->hold();
    m_editor.m_crew->hold();
}

EstimateEditor::Loading::~Loading() {
    m_editor.m_totals->release();
    m_editor.m_crew->release();
}

// ----- construction

EstimateEditor::EstimateEditor(EstimateGrid *grid, CrewGrid *crew, DatabaseProvider databases,
                               QObject *parent)
    : QObject(parent), m_grid(grid), m_crewGrid(crew), m_databases(std::move(databases)) {
    auto smeta = [this] { return m_databases ? m_databases(Db::Smeta) : QSqlDatabase(); };
    // The crew sheet and the totals listen to the grid before the journal does.
    m_totals = std::make_unique<EstimateTotals>(grid);
    m_crew = std::make_unique<CrewSheet>(grid, crew);
    m_crew->setPriceLookup(
        CrewSheet::priceListLookup([this] { return m_databases ? m_databases(Db::Price) : QSqlDatabase(); }));
    m_koef = std::make_unique<KoefModel>(smeta);
    m_materials = std::make_unique<EstimateMaterials>(smeta);
    m_snapshot = std::make_unique<Snapshot>();
    m_result = std::make_unique<KoefResult>();

    auto onChange = [this] { scheduleCommit(); };
    connect(grid, &QAbstractItemModel::dataChanged, this, onChange);
    connect(grid, &QAbstractItemModel::rowsInserted, this, onChange);
    connect(grid, &QAbstractItemModel::rowsRemoved, this, onChange);
    connect(grid, &QAbstractItemModel::rowsMoved, this, onChange);
    connect(grid, &QAbstractItemModel::modelReset, this, onChange);
    connect(grid, &EstimateGrid::cellEdited, this,
            [this] { commitPending(QStringLiteral("Правка ячейки")); });
    connect(m_crew.get(), &CrewSheet::rowKoefEdited, this,
            [this] { commitPending(QStringLiteral("Коэффициент бригады")); });
    connect(m_totals.get(), &EstimateTotals::worksChanged, this, &EstimateEditor::recomputeCoefficients);
    connect(m_materials.get(), &EstimateMaterials::totalChanged, this,
            &EstimateEditor::recomputeCoefficients);
    connect(m_koef.get(), &KoefModel::linesChanged, this, &EstimateEditor::recomputeCoefficients);
    // Every edit of the coefficient panel is a step of its own.
    m_koef->setEditWrapper([this](const QString &title, const std::function<void()> &change) {
        Scope step(this, title);
        change();
    });
    connect(m_crew.get(), &CrewSheet::totalsChanged, this, &EstimateEditor::totalsChanged);
    connect(m_crew.get(), &CrewSheet::settingsChanged, this, &EstimateEditor::storeCrewSettings);
    // Marks come and go with the cells' values; the count follows them.
    auto check = [this] { checkProblems(); };
    for (QAbstractItemModel *model :
         {static_cast<QAbstractItemModel *>(grid), static_cast<QAbstractItemModel *>(m_koef.get()),
          static_cast<QAbstractItemModel *>(m_materials.get())}) {
        connect(model, &QAbstractItemModel::dataChanged, this, check);
        connect(model, &QAbstractItemModel::rowsRemoved, this, check);
        connect(model, &QAbstractItemModel::modelReset, this, check);
    }
    takeSnapshot();
    recomputeCoefficients();
}

EstimateEditor::~EstimateEditor() = default;

void EstimateEditor::reset() {
    m_depth = 0;
    m_applying = false;
    m_journal = std::make_unique<UndoJournal>(m_databases ? m_databases(Db::ReturnAction) : QSqlDatabase());
    m_journal->clear();
    m_crew->forgetPrices();
    {
        // The crew settings stored with the document, else the program's.
        m_loading = true;
        const QSqlDatabase db = m_databases ? m_databases(Db::Smeta) : QSqlDatabase();
        const QMap<QString, QString> params =
            db.isOpen() ? EstimateStore::readParameters(db) : QMap<QString, QString>();
        m_crew->setGlobalKoef(params.value(DocParam::koefBrig, m_crewKoef));
        const QString perRow = params.value(DocParam::koefBrigPerRow);
        m_crew->setPerRow(perRow.isEmpty() ? m_crewPerRow : perRow == QLatin1String("1"));
        m_loading = false;
    }
    m_koef->reload();
    m_materials->reload();
    m_totals->flush();
    takeSnapshot();
    recomputeCoefficients();
    emit totalsChanged();
    emit undoStateChanged();
}

void EstimateEditor::setCrewDefaults(const QString &koef, bool perRow) {
    m_crewKoef = koef;
    m_crewPerRow = perRow;
}

void EstimateEditor::storeCrewSettings() {
    if (m_loading || !m_databases)
        return;
    QSqlDatabase db = m_databases(Db::Smeta);
    if (db.isOpen())
        EstimateStore::writeParameters(
            db, {{DocParam::koefBrig, m_crew->globalKoef()},
                 {DocParam::koefBrigPerRow, m_crew->perRow() ? QStringLiteral("1") : QStringLiteral("0")}});
}

void EstimateEditor::materialsChanged() {
    m_materials->reload();
    emit materialsEdited();
}

void EstimateEditor::koefChanged() {
    m_koef->reload();
    recomputeCoefficients();
}

// ----- steps

void EstimateEditor::takeSnapshot() {
    auto &rows = m_snapshot->rows;
    rows.clear();
    rows.reserve(static_cast<size_t>(m_grid->rowCount()));
    for (int r = EstimateGrid::kFixedRows; r < m_grid->gridRowCount(); ++r)
        rows.push_back({m_grid->rowCells(r), m_crew->rowKoef(r)});
}

void EstimateEditor::beginStep(const QString &title) {
    if (m_depth++ > 0)
        return;
    // Whatever changed before belongs to a step of its own.
    commitPending(kPendingTitle);
    m_stepTitle = title;
    const QSqlDatabase smeta = m_databases ? m_databases(Db::Smeta) : QSqlDatabase();
    m_snapshot->materialsTaken = smeta.isOpen();
    m_snapshot->materials =
        m_snapshot->materialsTaken ? MaterialsStore::readAll(smeta) : std::vector<MaterialsStore::Material>();
    m_snapshot->koef = m_snapshot->materialsTaken ? KoefUndo::readAll(smeta) : std::vector<QStringList>();
    m_totals->hold();
    m_crew->hold();
}

void EstimateEditor::endStep() {
    if (m_depth == 0 || --m_depth > 0)
        return;
    m_totals->release();
    m_crew->release();
    commitPending(m_stepTitle);
}

void EstimateEditor::scheduleCommit() {
    if (m_applying || m_depth > 0 || m_commitScheduled)
        return;
    m_commitScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_commitScheduled = false;
        if (m_depth == 0 && !m_applying)
            commitPending(kPendingTitle);
    });
}

void EstimateEditor::commitPending(const QString &title) {
    if (m_applying || m_depth > 0)
        return;
    m_totals->flush();
    m_crew->flush();
    Snapshot now;
    now.rows.reserve(static_cast<size_t>(m_grid->rowCount()));
    for (int r = EstimateGrid::kFixedRows; r < m_grid->gridRowCount(); ++r)
        now.rows.push_back({m_grid->rowCells(r), m_crew->rowKoef(r)});
    const std::vector<RowDiff::Op> ops = RowDiff::diff(m_snapshot->rows, now.rows, EstimateGrid::kFixedRows);
    m_snapshot->rows = std::move(now.rows);
    std::vector<MaterialsUndo::Op> materialOps, koefOps;
    if (m_snapshot->materialsTaken) {
        m_snapshot->materialsTaken = false;
        const QSqlDatabase smeta = m_databases ? m_databases(Db::Smeta) : QSqlDatabase();
        materialOps = MaterialsUndo::diff(m_snapshot->materials, MaterialsStore::readAll(smeta));
        koefOps = KoefUndo::diff(m_snapshot->koef, KoefUndo::readAll(smeta));
        m_snapshot->materials.clear();
        m_snapshot->koef.clear();
    }
    if (ops.empty() && materialOps.empty() && koefOps.empty())
        return;
    if (!m_journal)
        m_journal =
            std::make_unique<UndoJournal>(m_databases ? m_databases(Db::ReturnAction) : QSqlDatabase());
    m_journal->record(title, ops, materialOps, koefOps);
    emit undoStateChanged();

    // Rows of rates that came, went or changed quantity or rate.
    QList<RowDiff::Change> changes;
    for (const RowDiff::Op &op : ops)
        if (movesMaterials(op.before, op.after))
            changes.append({op.before, op.after});
    if (!changes.isEmpty())
        emit rateRowsChanged(changes);
}

// ----- undo and redo

bool EstimateEditor::canUndo() const {
    return m_journal && m_journal->canUndo();
}
bool EstimateEditor::canRedo() const {
    return m_journal && m_journal->canRedo();
}
QString EstimateEditor::undoTitle() const {
    return m_journal ? m_journal->undoTitle() : QString();
}
QString EstimateEditor::redoTitle() const {
    return m_journal ? m_journal->redoTitle() : QString();
}

bool EstimateEditor::undo() {
    return applyStep(true);
}
bool EstimateEditor::redo() {
    return applyStep(false);
}

bool EstimateEditor::applyStep(bool undoing) {
    if (m_depth > 0)
        return false;
    commitPending(kPendingTitle);
    std::vector<RowDiff::Op> ops;
    std::vector<MaterialsUndo::Op> materialOps, koefOps;
    if (!m_journal || !(undoing ? m_journal->takeUndo(ops, &materialOps, &koefOps)
                                : m_journal->takeRedo(ops, &materialOps, &koefOps))) {
        if (m_journal)
            m_error = m_journal->error();
        return false;
    }
    m_applying = true;
    m_totals->hold();
    m_crew->hold();
    auto setRow = [this](int row, const QStringList &wide) {
        m_grid->setRowCells(row, wide.mid(0, EstimateCol::Count));
        m_crew->setRowKoef(row, wide.value(RowDiff::kCrewKoef));
    };
    auto insertRow = [&](int row, const QStringList &wide) {
        m_grid->insertGridRows(row, 1);
        setRow(row, wide);
    };
    if (undoing) {
        for (auto it = ops.rbegin(); it != ops.rend(); ++it) {
            switch (it->kind) {
            case RowDiff::Op::Edit:
                setRow(it->row, it->before);
                break;
            case RowDiff::Op::Insert:
                m_grid->removeGridRows(it->row, 1);
                break;
            case RowDiff::Op::Delete:
                insertRow(it->row, it->before);
                break;
            }
        }
    } else {
        for (const RowDiff::Op &op : ops) {
            switch (op.kind) {
            case RowDiff::Op::Edit:
                setRow(op.row, op.after);
                break;
            case RowDiff::Op::Insert:
                insertRow(op.row, op.after);
                break;
            case RowDiff::Op::Delete:
                m_grid->removeGridRows(op.row, 1);
                break;
            }
        }
    }
    QList<RowDiff::Change> changes;
    for (const RowDiff::Op &op : ops) {
        // An undone step turns each row back from its after into its before.
        RowDiff::Change c =
            undoing ? RowDiff::Change{op.after, op.before} : RowDiff::Change{op.before, op.after};
        if (movesMaterials(c.before, c.after))
            changes.append(std::move(c));
    }
    m_totals->release();
    m_crew->release();
    m_applying = false;
    takeSnapshot();
    if (!materialOps.empty()) {
        // The materials of the step back as they were (or as the step left them).
        const QSqlDatabase smeta = m_databases ? m_databases(Db::Smeta) : QSqlDatabase();
        if (!MaterialsUndo::apply(smeta, materialOps, undoing, &m_error)) {
            emit undoStateChanged();
            return false;
        }
        materialsChanged();
    }
    if (!koefOps.empty()) {
        const QSqlDatabase smeta = m_databases ? m_databases(Db::Smeta) : QSqlDatabase();
        if (!KoefUndo::apply(smeta, koefOps, undoing, &m_error)) {
            emit undoStateChanged();
            return false;
        }
        m_koef->reload();
        emit m_koef->linesChanged(); // the totals follow, the document is changed
    }
    emit undoStateChanged();
    if (!changes.isEmpty())
        emit rateRowsChanged(changes);
    return true;
}

// ----- totals

void EstimateEditor::recomputeCoefficients() {
    KoefResult r = Coefficients::apply(m_koef->applied(), m_totals->works(), m_materials->total());
    m_koef->setResult(r);
    if (r == *m_result)
        return;
    *m_result = std::move(r);
    emit totalsChanged();
}

EstimateEditor::ProblemCells EstimateEditor::problemCells() const {
    return {m_grid->problemCellCount(), m_koef->problemCellCount(), m_materials->problemCellCount()};
}

void EstimateEditor::checkProblems() {
    const ProblemCells now = problemCells();
    if (now == m_problems)
        return;
    m_problems = now;
    emit problemsChanged();
}

QString EstimateEditor::ProblemCells::text() const {
    if (total() == 0)
        return QString();
    QStringList parts;
    if (estimate > 0)
        parts << QStringLiteral("смета: %1").arg(estimate);
    if (koef > 0)
        parts << QStringLiteral("коэффициенты: %1").arg(koef);
    if (materials > 0)
        parts << QStringLiteral("материалы: %1").arg(materials);
    return QStringLiteral("Ячеек с ошибками: %1 (%2). Их суммы не входят в итоги; причина — в подсказке "
                          "красной ячейки.")
        .arg(total())
        .arg(parts.join(QStringLiteral(", ")));
}

MoneyResult EstimateEditor::worksRaw() const {
    return m_totals->works();
}
MoneyResult EstimateEditor::materialsRaw() const {
    return m_materials->total();
}
MoneyResult EstimateEditor::worksTotal() const {
    return m_result->works;
}
MoneyResult EstimateEditor::materialsTotal() const {
    return m_result->materials;
}
MoneyResult EstimateEditor::vatAmount() const {
    return m_result->vat;
}
MoneyResult EstimateEditor::grandTotal() const {
    return m_result->grand;
}
const KoefResult &EstimateEditor::koefResult() const {
    return *m_result;
}

bool EstimateEditor::isGrandTotalRow(int gridRow) const {
    return m_totals->isGrandTotalRow(gridRow);
}

bool EstimateEditor::canEditCell(int gridRow, int col) const {
    return m_grid->canEditCell(gridRow, col) && !isGrandTotalRow(gridRow);
}
