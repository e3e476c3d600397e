#pragma once
// The picture of the chosen figure with the names of its sizes; the polygon is drawn from its
// vertices as typed.

#include "Shapes.h"

#include <QWidget>

class ShapePicture : public QWidget {
    Q_OBJECT
public:
    explicit ShapePicture(QWidget *parent = nullptr);
    void setFigure(Shapes::Figure figure);
    void setVertices(const QVector<QPointF> &vertices);
    QSize sizeHint() const override { return {240, 180}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Shapes::Figure m_figure = Shapes::Figure::Rectangle;
    QVector<QPointF> m_vertices;
};
