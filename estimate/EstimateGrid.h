#pragma once
// The estimate grid StringGridDoc: rows of text cells. Row and column numbers follow the grid the
// user sees: rows 0 and 1 are the two fixed header rows, data rows start at 2. The Qt model shows
// only the data rows (Qt row r is grid row r + 2); the two header rows are drawn by the header view.

#include "GridRows.h"

#include <QColor>
#include <QHash>
#include <QStringList>
#include <vector>

namespace EstimateCol {
enum : int {
    Num = 0,       // "№" running number of work rows
    Ras = 1,       // "№ рас." rate number
    Name = 2,      // "Наименование работ"
    Unit = 3,      // "Ед. изм."
    Qty = 4,       // "Кол-во"
    Price = 5,     // "Цена"
    Sum = 6,       // "Сумма"
    IdRas = 7,     // rate id (hidden)
    IdDoc = 8,     // work id in the document (hidden)
    NamePrice = 9, // resources table of the rate (hidden)
    Select = 10,   // selection mark (hidden, not stored)
    Kind = 11,     // row-kind marker "br"/"bp"/"ir"/"ip" (hidden)
    Machine = 12,  // unit cost: machines
    Material = 13, // unit cost: materials
    Labour = 14,   // unit cost: labour
    Total = 15,    // unit cost: total
    Itogo = 16,    // amount as shown in the totals column
    Count = 17
};
}

enum class RowKind { Work, SectionStart, SubsectionStart, SectionTotal, SubsectionTotal };

// Literal texts of section rows.
namespace RowText {
inline const QString sectionPrefix = QStringLiteral("РАЗДЕЛ ");
inline const QString subsectionPrefix = QStringLiteral("       § ");
inline const QString sectionTotalPrefix = QStringLiteral("Итого по разделу ");
inline const QString subsectionTotalPrefix = QStringLiteral("              Итого по § ");
} // namespace RowText

RowKind rowKindFromMarker(const QString &marker);
QString markerOf(RowKind kind);

// One data row of the estimate grid.
struct EstimateRow {
    QStringList cells;
    QHash<int, QString> problems; // column -> why its text is not usable
};
using EstimateGridRows = GridRows<EstimateRow, 2>;

class EstimateGrid : public EstimateGridRows {
    Q_OBJECT
public:
    explicit EstimateGrid(QObject *parent = nullptr);

    // Grid-indexed access (rows from 0, data from kFixedRows). The structure (setGridRowCount,
    // insertGridRows, removeGridRows, moveGridRow) is GridRows'; a grid never has fewer than one data
    // row.
    QString cell(int gridRow, int col) const;
    void setCell(int gridRow, int col, const QString &text);
    QStringList rowCells(int gridRow) const;
    void setRowCells(int gridRow, const QStringList &cells);
    RowKind kind(int gridRow) const;

    void clear(); // one empty data row
    // Replaces all data rows at once (one model reset), used by loading.
    void setAllRows(std::vector<QStringList> rows);

    // StringGridDocCanEditCell: section rows edit only their name, totals rows nothing,
    // columns 15 and 16 never.
    static bool canEdit(RowKind kind, int col);
    bool canEditCell(int gridRow, int col) const;

    // Header texts: row 0 and row 1 of the fixed header.
    static QString headerText(int headerRow, int col);

    // Drawing rules.
    void setDarkStyle(bool dark);
    QColor foregroundFor(int gridRow, int col) const;

    // Qt model (data rows only).
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

    // Validation marks: a cell whose text is not a number is flagged with the reason (tooltip).
    void setCellProblem(int gridRow, int col, const QString &reason);
    QString cellProblem(int gridRow, int col) const;
    // How many cells are marked.
    int problemCellCount() const;

signals:
    // A user edit through the view (setData): the editor records it and recomputes.
    void cellEdited(int gridRow, int col, const QString &oldText, const QString &newText);
    // Any change of content or structure (the document is then changed).
    void contentChanged();

private:
    using Row = EstimateRow;
    Row emptyRow() const override;
    // Content and structure are the document: every change of the rows is announced.
    void rowsChanged() override {
        m_problemCount = -1;
        emit contentChanged();
    }

    bool m_dark = false;
    mutable int m_problemCount = -1; // -1: count again
};
