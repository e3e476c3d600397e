// The bag rule (with its extra bag) and the mix grid: values at opening, the tile side, the edge
// cases, bad input keeping the old count.

#include "calculators/MixTable.h"
#include "storage/TextValues.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {
Decimal dec(const char *text) {
    return *TextValues::readNumber(QString::fromUtf8(text), false).value;
}
} // namespace

TEST(MixRule, BagsForQuotients) {
    struct Case {
        const char *mass;
        qint64 bag;
        qint64 bags;
    };
    // Q = mass / bag: the extra bag whenever Q has a fractional part; halves to even first.
    const Case cases[] = {
        {"0", 25, 0},    {"23", 10, 3},    {"27", 10, 4},          {"25", 10, 3},  {"35", 10, 5},
        {"45", 10, 5},   {"50", 25, 2},    {"50,5", 25, 3},        {"9", 25, 1},   {"35", 25, 2},
        {"180", 40, 5},  {"0,001", 40, 1}, {"120", 40, 3},         {"100", 40, 3}, {"99,999", 40, 3},
        {"62,5", 25, 3}, {"87,5", 25, 5},  {"1000000", 15, 66668},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.mass) + " / " + std::to_string(c.bag));
        const auto bags = MixRule::bagsFor(dec(c.mass), c.bag);
        ASSERT_TRUE(bags.has_value());
        EXPECT_EQ(*bags, c.bags);
    }
    EXPECT_FALSE(MixRule::bagsFor(dec("10"), 0).has_value());
}

TEST(MixTable, ValuesWhenTheDialogOpens) {
    MixTable t;
    EXPECT_EQ(t.rowCount(), 7);
    EXPECT_EQ(t.columnCount(), 6);
    const QStringList headers = {"Наименование смеси",  "Фасовка", "Толщина слоя (см)",
                                 "Расход на 1 м2 (кг)", "Площадь", "Кол-во (меш.)"};
    for (int c = 0; c < 6; ++c)
        EXPECT_EQ(t.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString(), headers[c]);
    const QStringList rows[] = {
        {"Универсальная сухая смесь М150", "40 кг", "1", "18"},
        {"Гипсовая штукатурка", "25 кг", "1", "8,7"},
        {"Декоративная штукатурка", "25 кг", "1", "8"},
        {"Шпатлевка", "25 кг", "0,1", "0,9"},
        {"Клей плиточный (сторона плитки)", "25 кг", "200 мм", "3,2"},
        {"Стяжка для пола", "25 кг", "1", "20"},
        {"Стяжка цементная легкая", "25 кг", "1 ", "10"},
    };
    for (int r = 0; r < 7; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(t.cell(r, c), rows[r][c]) << r << "," << c;
    EXPECT_EQ(t.cell(0, MixCol::Area), "");
    EXPECT_EQ(t.cell(0, MixCol::Bags), "");
}

TEST(MixTable, EditingRightsListsAndCentring) {
    MixTable t;
    for (int r = 0; r < 7; ++r) {
        EXPECT_FALSE(t.flags(t.index(r, MixCol::Name)) & Qt::ItemIsEditable);
        EXPECT_TRUE(t.flags(t.index(r, MixCol::Bag)) & Qt::ItemIsEditable);
        EXPECT_TRUE(t.flags(t.index(r, MixCol::Thickness)) & Qt::ItemIsEditable);
        EXPECT_FALSE(t.flags(t.index(r, MixCol::Consumption)) & Qt::ItemIsEditable);
        EXPECT_TRUE(t.flags(t.index(r, MixCol::Area)) & Qt::ItemIsEditable);
        EXPECT_FALSE(t.flags(t.index(r, MixCol::Bags)) & Qt::ItemIsEditable);
        EXPECT_EQ(t.listItems(r, MixCol::Bag), QStringList({"15 кг", "25 кг", "30 кг", "40 кг"}));
        EXPECT_EQ(t.listItems(r, MixCol::Thickness).isEmpty(), r != MixRow::TileAdhesive);
        EXPECT_EQ(t.data(t.index(r, MixCol::Name), Qt::TextAlignmentRole).toInt() & Qt::AlignHCenter, 0);
        for (int c = 1; c < 6; ++c)
            EXPECT_EQ(t.data(t.index(r, c), Qt::TextAlignmentRole).toInt(), int(Qt::AlignCenter));
    }
    EXPECT_EQ(t.listItems(MixRow::TileAdhesive, MixCol::Thickness), QStringList({"200 мм", "600 мм"}));
    EXPECT_FALSE(t.setData(t.index(0, MixCol::Bags), "99", Qt::EditRole));
    EXPECT_FALSE(t.setData(t.index(0, MixCol::Consumption), "99", Qt::EditRole));
    EXPECT_EQ(t.cell(0, MixCol::Consumption), "18");
}

TEST(MixTable, TheEdgeCasesOfTheRule) {
    struct Case {
        const char *what;
        int row;
        const char *bag;       // "" keeps the opening value
        const char *thickness; // "" keeps it
        const char *area;
        const char *bags;
    };
    const Case cases[] = {
        {"area 0", 1, "", "", "0", "0"},
        {"row 1, area 10, 40-kg bags: 4,5 → 5", 0, "", "", "10", "5"},
        {"putty, area 10: 9 kg → 1", 3, "", "", "10", "1"},
        {"tile 600 мм, area 10: 35 kg → 2", 4, "", "600 мм", "10", "2"},
        {"tile 200 мм, area 10: 32 kg → 2", 4, "", "200 мм", "10", "2"},
        {"the trailing blank of row 7", 6, "", "", "11", "5"},
        {"typed with a point", 1, "", "", "2.5", "2"},
        {"thickness in мм", 2, "", "2 мм", "25", "16"},
        {"15-kg bags", 5, "15 кг", "", "3,3", "5"},
        {"exactly whole: 0,1 × 0,9 × 100 × 10 = 90 kg of 30", 3, "30 кг", "", "100", "3"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        MixTable t;
        if (*c.bag)
            t.setCell(c.row, MixCol::Bag, QString::fromUtf8(c.bag));
        if (*c.thickness)
            t.setCell(c.row, MixCol::Thickness, QString::fromUtf8(c.thickness));
        ASSERT_TRUE(t.setData(t.index(c.row, MixCol::Area), QString::fromUtf8(c.area), Qt::EditRole));
        EXPECT_EQ(t.cell(c.row, MixCol::Bags), QString::fromUtf8(c.bags));
    }
}

TEST(MixTable, TileSideSetsTheConsumption) {
    MixTable t;
    QSignalSpy changed(&t, &QAbstractItemModel::dataChanged);
    t.setCell(MixRow::TileAdhesive, MixCol::Thickness, "600 мм");
    EXPECT_EQ(t.cell(MixRow::TileAdhesive, MixCol::Consumption), "3,5");
    EXPECT_GE(changed.count(), 2);
    t.setCell(MixRow::TileAdhesive, MixCol::Thickness, "200 мм");
    EXPECT_EQ(t.cell(MixRow::TileAdhesive, MixCol::Consumption), "3,2");
}

TEST(MixTable, BadInputKeepsTheOldCount) {
    MixTable t;
    t.setCell(0, MixCol::Area, "10");
    ASSERT_EQ(t.cell(0, MixCol::Bags), "5");
    struct Case {
        int col;
        const char *text;
    };
    const Case cases[] = {
        {MixCol::Area, ""},       {MixCol::Area, "десять"}, {MixCol::Area, "-5"},
        {MixCol::Area, "1,2,3"},  {MixCol::Bag, "0 кг"},    {MixCol::Bag, "кг"},
        {MixCol::Bag, "40,5 кг"}, {MixCol::Thickness, ""},  {MixCol::Thickness, "x"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        MixTable fresh;
        fresh.setCell(0, MixCol::Area, "10");
        fresh.setCell(0, c.col, QString::fromUtf8(c.text));
        EXPECT_EQ(fresh.cell(0, MixCol::Bags), "5");
    }
}

TEST(MixTable, APointBecomesAComma) {
    MixTable t;
    t.setCell(2, MixCol::Thickness, "1.5");
    t.setCell(2, MixCol::Area, "12.25");
    EXPECT_EQ(t.cell(2, MixCol::Thickness), "1,5");
    EXPECT_EQ(t.cell(2, MixCol::Area), "12,25");
    EXPECT_EQ(t.cell(2, MixCol::Bags), "7"); // 1,5 × 8 × 12,25 = 147 kg, 5,88 bags of 25 kg → 6 + 1
}
