#pragma once
// The section structure of the estimate: the texts of section and subsection rows, finding the
// section around a row, and whether a sequence of row kinds is well formed.

#include "EstimateGrid.h"

#include <QString>
#include <vector>

namespace EstimateStructure {

// The caption of a closing row of the whole estimate: a work row whose name begins "Итого".
inline const QString grandTotalName = QStringLiteral("Итого по смете");
bool isGrandTotalName(const QString &name);
// The grid row of the estimate's closing "Итого" row (its last data row, a work row whose name begins
// "Итого"), or -1 when the estimate does not end with one. Nothing is ever placed below it.
int closingRow(const EstimateGrid &grid);

// The user's part of a section (subsection) row's text: "РАЗДЕЛ 2. Кухня" -> "Кухня",
// "       § 2.1. Плитка" -> "Плитка". Text without the prefix or number is taken whole.
QString sectionTitle(const QString &name);
QString subsectionTitle(const QString &name);

// "РАЗДЕЛ n. title", "Итого по разделу n", "       § n.m. title", "              Итого по § n.m".
QString sectionName(int n, const QString &title);
QString sectionTotalName(int n);
QString subsectionName(int n, int m, const QString &title);
QString subsectionTotalName(int n, int m);

// Kinds of the data rows of a grid, index 0 = grid row 2.
std::vector<RowKind> kinds(const EstimateGrid &grid);

// Well formed: sections "br" … "ir" do not nest, subsections "bp" … "ip" stand inside a section and
// do not nest, every opened block is closed.
bool isWellFormed(const std::vector<RowKind> &kinds);

// First and last index of the section (subsection) holding index i, {-1, -1} when there is none or it
// is not closed.
struct Block {
    int first = -1;
    int last = -1;
    bool valid() const { return first >= 0; }
};
Block sectionAround(const std::vector<RowKind> &kinds, int i);
Block subsectionAround(const std::vector<RowKind> &kinds, int i);

} // namespace EstimateStructure
