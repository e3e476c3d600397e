#pragma once
// The areas of the plane figures of the plug-in, with the reason when the sizes make no figure.
// Sizes are in metres; areas in square metres.

#include <QPointF>
#include <QString>
#include <QVector>
#include <optional>

namespace Shapes {

enum class Figure { Rectangle, Triangle, Circle, Ring, Trapezoid, Polygon };

struct Area {
    std::optional<double> value;
    QString problem; // why there is none, in Russian
};

Area rectangle(double a, double b);
// By its three sides (Heron's formula); the sides must make a triangle.
Area triangle(double a, double b, double c);
Area circle(double radius);
// Between an outer and an inner circle.
Area ring(double outerRadius, double innerRadius);
// Bases a and b, height h.
Area trapezoid(double a, double b, double h);
// By its vertices in order (the shoelace formula); sides must not cross.
Area polygon(const QVector<QPointF> &vertices);

// A size as typed: blanks removed, "." or "," as the decimal separator; nullopt when it is not a
// number.
std::optional<double> parseNumber(const QString &text);
// Vertices, one per line as "x; y" (or "x y"); nullopt with *problem naming the line that is wrong.
std::optional<QVector<QPointF>> parseVertices(const QString &text, QString *problem);
// An area for showing: two decimals, decimal comma, thousands separated by a blank.
QString formatArea(double value);

} // namespace Shapes
