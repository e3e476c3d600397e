#include "Shapes.h"

#include <QLocale>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace Shapes {

namespace {

Area refused(const QString &problem) {
    return {std::nullopt, problem};
}

bool positive(double v) {
    return std::isfinite(v) && v > 0;
}

const QString kPositive = QStringLiteral("Размеры должны быть положительными числами.");

// Orientation of the turn a → b → c: >0 left, <0 right, 0 on one line.
double cross(const QPointF &a, const QPointF &b, const QPointF &c) {
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

bool onSegment(const QPointF &a, const QPointF &b, const QPointF &p) {
    return std::min(a.x(), b.x()) <= p.x() && p.x() <= std::max(a.x(), b.x()) &&
           std::min(a.y(), b.y()) <= p.y() && p.y() <= std::max(a.y(), b.y());
}

bool segmentsMeet(const QPointF &a, const QPointF &b, const QPointF &c, const QPointF &d) {
    const double d1 = cross(c, d, a), d2 = cross(c, d, b), d3 = cross(a, b, c), d4 = cross(a, b, d);
    if (((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0)))
        return true;
    return (d1 == 0 && onSegment(c, d, a)) || (d2 == 0 && onSegment(c, d, b)) ||
           (d3 == 0 && onSegment(a, b, c)) || (d4 == 0 && onSegment(a, b, d));
}

} // namespace

Area rectangle(double a, double b) {
    if (!positive(a) || !positive(b))
        return refused(kPositive);
    return {a * b, {}};
}

Area triangle(double a, double b, double c) {
    if (!positive(a) || !positive(b) || !positive(c))
        return refused(kPositive);
    // Sides sorted a ≥ b ≥ c: the form of Heron's formula that keeps its precision for thin triangles.
    double s[3] = {a, b, c};
    std::sort(s, s + 3, [](double x, double y) { return x > y; });
    if (s[0] >= s[1] + s[2])
        return refused(
            QStringLiteral("Из таких сторон треугольник не сложить: самая длинная сторона должна быть "
                           "меньше суммы двух других."));
    const double x =
        (s[0] + (s[1] + s[2])) * (s[2] - (s[0] - s[1])) * (s[2] + (s[0] - s[1])) * (s[0] + (s[1] - s[2]));
    return {std::sqrt(x) / 4, {}};
}

Area circle(double radius) {
    if (!positive(radius))
        return refused(kPositive);
    return {M_PI * radius * radius, {}};
}

Area ring(double outerRadius, double innerRadius) {
    if (!positive(outerRadius) || !positive(innerRadius))
        return refused(kPositive);
    if (innerRadius >= outerRadius)
        return refused(QStringLiteral("Внутренний радиус кольца должен быть меньше внешнего."));
    return {M_PI * (outerRadius * outerRadius - innerRadius * innerRadius), {}};
}

Area trapezoid(double a, double b, double h) {
    if (!positive(a) || !positive(b) || !positive(h))
        return refused(kPositive);
    return {(a + b) / 2 * h, {}};
}

Area polygon(const QVector<QPointF> &vertices) {
    const int n = vertices.size();
    if (n < 3)
        return refused(QStringLiteral("У многоугольника должно быть не меньше трёх вершин."));
    for (const QPointF &p : vertices)
        if (!std::isfinite(p.x()) || !std::isfinite(p.y()))
            return refused(QStringLiteral("Координаты вершин должны быть числами."));
    // Non-adjacent sides must not meet: a crossed outline has no single area.
    for (int i = 0; i < n; ++i)
        for (int j = i + 1; j < n; ++j) {
            if (j == i + 1 || (i == 0 && j == n - 1))
                continue;
            if (segmentsMeet(vertices[i], vertices[(i + 1) % n], vertices[j], vertices[(j + 1) % n]))
                return refused(QStringLiteral("Стороны многоугольника пересекаются (стороны %1 и %2).")
                                   .arg(i + 1)
                                   .arg(j + 1));
        }
    double twice = 0;
    for (int i = 0; i < n; ++i) {
        const QPointF &p = vertices[i];
        const QPointF &q = vertices[(i + 1) % n];
        twice += p.x() * q.y() - q.x() * p.y();
    }
    const double area = std::abs(twice) / 2;
    if (!(area > 0))
        return refused(QStringLiteral("Вершины лежат на одной прямой: площади нет."));
    return {area, {}};
}

std::optional<double> parseNumber(const QString &text) {
    QString t = text;
    t.remove(QLatin1Char(' '));
    t.remove(QChar(0x00A0));
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    if (t.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double v = QLocale::c().toDouble(t, &ok);
    if (!ok || !std::isfinite(v))
        return std::nullopt;
    return v;
}

std::optional<QVector<QPointF>> parseVertices(const QString &text, QString *problem) {
    QVector<QPointF> points;
    const QStringList lines = text.split(QLatin1Char('\n'));
    static const QRegularExpression separator(QStringLiteral("\\s*;\\s*|\\s+"));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty())
            continue;
        const QStringList parts = line.split(separator, Qt::SkipEmptyParts);
        const auto x = parts.size() == 2 ? parseNumber(parts[0]) : std::nullopt;
        const auto y = parts.size() == 2 ? parseNumber(parts[1]) : std::nullopt;
        if (!x || !y) {
            if (problem)
                *problem = QStringLiteral("Строка %1: нужны две координаты через «;», например «2,5; 4».")
                               .arg(i + 1);
            return std::nullopt;
        }
        points.append(QPointF(*x, *y));
    }
    return points;
}

QString formatArea(double value) {
    QLocale ru(QLocale::Russian, QLocale::Russia);
    return ru.toString(value, 'f', 2);
}

} // namespace Shapes
