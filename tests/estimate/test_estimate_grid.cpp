// Editing rights per row kind and the drawing rules of the estimate grid.

#include "estimate/EstimateGrid.h"

#include <gtest/gtest.h>

namespace {

TEST(EstimateGrid, EditingRightsFollowTheRowKind) {
    struct Case {
        QString marker;
        int col;
        bool editable;
    };
    const Case cases[] = {
        {"", EstimateCol::Name, true},     {"", EstimateCol::Qty, true},
        {"", EstimateCol::Price, true},    {"", EstimateCol::Total, false},
        {"", EstimateCol::Itogo, false},   {"br", EstimateCol::Name, true},
        {"br", EstimateCol::Qty, false},   {"br", EstimateCol::Ras, false},
        {"bp", EstimateCol::Name, true},   {"bp", EstimateCol::Price, false},
        {"ir", EstimateCol::Name, false},  {"ir", EstimateCol::Qty, false},
        {"ip", EstimateCol::Name, false},  {"ip", EstimateCol::Num, false},
        {"br", EstimateCol::Total, false},
    };
    EstimateGrid grid;
    for (const Case &c : cases) {
        grid.setCell(2, EstimateCol::Kind, c.marker);
        EXPECT_EQ(grid.canEditCell(2, c.col), c.editable) << c.marker.toStdString() << " col " << c.col;
        const QModelIndex idx = grid.index(0, c.col);
        EXPECT_EQ(bool(grid.flags(idx) & Qt::ItemIsEditable), c.editable);
        // An edit through the model is refused exactly where the rights say no.
        const QString before = grid.cell(2, c.col);
        grid.setData(idx, QStringLiteral("x"), Qt::EditRole);
        EXPECT_EQ(grid.cell(2, c.col) == QLatin1String("x"), c.editable || before == QLatin1String("x"));
        grid.setCell(2, c.col, before);
    }
}

TEST(EstimateGrid, SameNameDiffersOnlyByMarker) {
    EstimateGrid grid;
    grid.setGridRowCount(4);
    grid.setCell(2, EstimateCol::Name, QStringLiteral("Окраска стен"));
    grid.setCell(3, EstimateCol::Name, QStringLiteral("Окраска стен"));
    grid.setCell(3, EstimateCol::Kind, QStringLiteral("ir"));
    EXPECT_EQ(grid.kind(2), RowKind::Work);
    EXPECT_EQ(grid.kind(3), RowKind::SectionTotal);
    for (int c = 0; c < EstimateCol::Count; ++c)
        EXPECT_FALSE(grid.canEditCell(3, c)) << c;
}

TEST(EstimateGrid, ColoursOfSectionsSubsectionsAndZeroAmounts) {
    struct Case {
        QString name;
        QString sum;
        int col;
        QColor light;
        QColor dark;
    };
    const QColor section(0x08, 0x72, 0x72), sectionDark(0xF4, 0xF9, 0xC8);
    const QColor sub(0x05, 0xA3, 0xA3), subDark(0xD8, 0xDA, 0xC3);
    const Case cases[] = {
        {"РАЗДЕЛ 1. Демонтаж", "", EstimateCol::Name, section, sectionDark},
        {"Раздел 2", "", EstimateCol::Name, section, sectionDark},
        {"Итого по разделу 1", "", EstimateCol::Name, section, sectionDark},
        {"       § 1.1. Стены", "", EstimateCol::Name, sub, subDark},
        {"              Итого по § 1.1", "", EstimateCol::Name, sub, subDark},
        // The section rule wins over the subsection rule.
        {"РАЗДЕЛ 3 § 2", "", EstimateCol::Name, section, sectionDark},
        {"Окраска", "0", EstimateCol::Sum, Qt::red, Qt::red},
        {"Окраска", "0,00", EstimateCol::Sum, Qt::red, Qt::red},
        {"Окраска", "12,00", EstimateCol::Sum, QColor(), QColor()},
        {"Окраска", "", EstimateCol::Sum, QColor(), QColor()},
    };
    EstimateGrid grid;
    for (const Case &c : cases) {
        grid.setCell(2, EstimateCol::Name, c.name);
        grid.setCell(2, EstimateCol::Sum, c.sum);
        grid.setDarkStyle(false);
        EXPECT_EQ(grid.foregroundFor(2, c.col), c.light) << c.name.toStdString();
        grid.setDarkStyle(true);
        EXPECT_EQ(grid.foregroundFor(2, c.col), c.dark) << c.name.toStdString();
    }
}

TEST(EstimateGrid, StructureKeepsAtLeastOneDataRow) {
    EstimateGrid grid;
    EXPECT_EQ(grid.gridRowCount(), 3);
    grid.setGridRowCount(6);
    for (int r = 2; r < 6; ++r)
        grid.setCell(r, EstimateCol::Name, QString::number(r));
    grid.moveGridRow(2, 5);
    EXPECT_EQ(grid.cell(5, EstimateCol::Name), QStringLiteral("2"));
    EXPECT_EQ(grid.cell(2, EstimateCol::Name), QStringLiteral("3"));
    grid.moveGridRow(5, 2);
    EXPECT_EQ(grid.cell(2, EstimateCol::Name), QStringLiteral("2"));
    grid.removeGridRows(2, 10);
    EXPECT_EQ(grid.gridRowCount(), 3);
    EXPECT_TRUE(grid.cell(2, EstimateCol::Name).isEmpty());
    grid.setGridRowCount(0);
    EXPECT_EQ(grid.gridRowCount(), 3);
}

} // namespace
