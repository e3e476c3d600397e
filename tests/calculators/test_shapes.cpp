// The figure-area plug-in's formulas and what it refuses.

#include "Shapes.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace Shapes;

TEST(Shapes, Areas) {
    struct Case {
        const char *what;
        Area area;
        double expected;
    };
    const Case cases[] = {
        {"rectangle", rectangle(4, 2.5), 10},
        {"right triangle 3-4-5", triangle(3, 4, 5), 6},
        {"equilateral", triangle(2, 2, 2), std::sqrt(3.0)},
        {"thin triangle", triangle(1000, 999.9999, 0.0002), 0.0866025360},
        {"circle", circle(2), 4 * M_PI},
        {"ring", ring(3, 1), 8 * M_PI},
        {"trapezoid", trapezoid(6, 4, 3), 15},
        {"square by vertices", polygon({{0, 0}, {4, 0}, {4, 3}, {0, 3}}), 12},
        {"clockwise L-shape", polygon({{0, 0}, {0, 4}, {2, 4}, {2, 2}, {5, 2}, {5, 0}}), 14},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_TRUE(c.area.value.has_value()) << c.area.problem.toStdString();
        EXPECT_NEAR(*c.area.value, c.expected, 1e-6 * std::max(1.0, c.expected));
    }
}

TEST(Shapes, Refusals) {
    struct Case {
        const char *what;
        Area area;
        const char *says;
    };
    const Case cases[] = {
        {"zero side", rectangle(0, 3), "положительными"},
        {"negative radius", circle(-1), "положительными"},
        {"not a triangle", triangle(1, 2, 3), "треугольник не сложить"},
        {"inner ring too big", ring(2, 2), "меньше внешнего"},
        {"two vertices", polygon({{0, 0}, {1, 1}}), "не меньше трёх"},
        {"crossed outline", polygon({{0, 0}, {2, 2}, {2, 0}, {0, 2}}), "пересекаются"},
        {"on one line", polygon({{0, 0}, {1, 0}, {2, 0}}), "одной прямой"},
        {"not a number", rectangle(NAN, 1), "положительными"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_FALSE(c.area.value.has_value());
        EXPECT_TRUE(c.area.problem.contains(QString::fromUtf8(c.says))) << c.area.problem.toStdString();
    }
}

TEST(Shapes, ParsingAndFormatting) {
    EXPECT_EQ(parseNumber("2,5"), 2.5);
    EXPECT_EQ(parseNumber(" 1 000.5 "), 1000.5);
    EXPECT_FALSE(parseNumber("").has_value());
    EXPECT_FALSE(parseNumber("два").has_value());
    QString problem;
    const auto points = parseVertices("0; 0\n\n4;0\n4 3\n0,5; 3,25\n", &problem);
    ASSERT_TRUE(points.has_value());
    ASSERT_EQ(points->size(), 4);
    EXPECT_EQ(points->at(3), QPointF(0.5, 3.25));
    EXPECT_FALSE(parseVertices("0; 0\n1\n", &problem).has_value());
    EXPECT_TRUE(problem.startsWith("Строка 2")) << problem.toStdString();
    EXPECT_EQ(formatArea(12.345), "12,35");
    EXPECT_TRUE(formatArea(1234.5).startsWith("1") && formatArea(1234.5).endsWith("234,50"));
}
