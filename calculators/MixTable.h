#pragma once
// The mix calculator's table (grid AdvStringGrid1 of TExpenseMix): seven dry building mixes with their
// bag size, layer thickness, consumption per m² and the area the user types; the number of bags
// follows every finished edit of a row. Cells are text. A "." typed anywhere becomes ",".
//
// Bags: M = thickness × consumption × area (the putty of row 4 × 10, its thickness being in
// centimetres and its consumption per millimetre; the tile adhesive of row 5 = consumption × area, the
// tile side not entering); Q = M ÷ bag size; the count is Round(Q) with halves to even, plus one
// bag whenever Q has a fractional part (2,3 → 3, 2,7 → 4, 2,5 → 3, 3,5 → 5). A value that is not a
// number (or a bag size of 0) leaves the count as it was.

#include "storage/Decimal.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <optional>
#include <vector>

namespace MixCol {
enum : int { Name = 0, Bag, Thickness, Consumption, Area, Bags, Count };
}
// Rows of the mixes with a rule of their own (0-based).
namespace MixRow {
enum : int { Putty = 3, TileAdhesive = 4, Count = 7 };
}

namespace MixRule {
// The drop-down lists.
QStringList bagSizes();  // "15 кг", "25 кг", "30 кг", "40 кг"
QStringList tileSides(); // "200 мм", "600 мм"
// The consumption of the tile adhesive for a tile side: "3,2" for "200 мм", "3,5" otherwise.
QString tileConsumption(const QString &side);
// The number of bags for the mass M (kg) and the bag size (kg): nullopt for a bag size of 0.
std::optional<qint64> bagsFor(const Decimal &mass, qint64 bagKg);
} // namespace MixRule

class MixTable : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit MixTable(QObject *parent = nullptr);

    // The values the dialog opens with.
    void reset();
    QString cell(int row, int col) const;
    // Sets a cell as typed (with "." → ","), applies the tile rule and counts the row's bags; false
    // for a cell that cannot be edited.
    bool setCell(int row, int col, const QString &text);
    // The row's bags counted again from its cells; false (the count kept) when a value is not a number.
    bool countBags(int row);
    // Whether the cell is typed into, chosen from a list (listItems non-empty) or read-only.
    bool isEditable(int row, int col) const;
    QStringList listItems(int row, int col) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::optional<Decimal> mass(int row) const;
    std::vector<QStringList> m_rows;
};
