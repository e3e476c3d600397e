#include "ShapePicture.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>

ShapePicture::ShapePicture(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ImageFigure"));
    setMinimumSize(220, 160);
}

void ShapePicture::setFigure(Shapes::Figure figure) {
    m_figure = figure;
    update();
}

void ShapePicture::setVertices(const QVector<QPointF> &vertices) {
    m_vertices = vertices;
    update();
}

void ShapePicture::paintEvent(QPaintEvent *) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.fillRect(rect(), Qt::white);
    const QRectF box = QRectF(rect()).adjusted(30, 22, -30, -22);
    const QColor fill(170, 200, 235);
    p.setPen(QPen(QColor(30, 70, 130), 2));
    p.setBrush(fill);
    auto label = [&p](const QPointF &at, const QString &text) {
        QFont f = p.font();
        f.setBold(true);
        p.setFont(f);
        p.setPen(Qt::black);
        p.drawText(QRectF(at.x() - 20, at.y() - 10, 40, 20), Qt::AlignCenter, text);
        p.setPen(QPen(QColor(30, 70, 130), 2));
    };
    const QPointF c = box.center();
    switch (m_figure) {
    case Shapes::Figure::Rectangle: {
        const QRectF r(c.x() - box.width() * 0.4, c.y() - box.height() * 0.35, box.width() * 0.8,
                       box.height() * 0.7);
        p.drawRect(r);
        label(QPointF(r.center().x(), r.bottom() + 12), QStringLiteral("a"));
        label(QPointF(r.right() + 12, r.center().y()), QStringLiteral("b"));
        break;
    }
    case Shapes::Figure::Triangle: {
        const QPointF a(box.left() + 10, box.bottom()), b(box.right() - 10, box.bottom()),
            t(box.left() + box.width() * 0.35, box.top());
        p.drawPolygon(QPolygonF({a, b, t}));
        label(QPointF((a.x() + b.x()) / 2, a.y() + 12), QStringLiteral("a"));
        label(QPointF((b.x() + t.x()) / 2 + 14, (b.y() + t.y()) / 2), QStringLiteral("b"));
        label(QPointF((a.x() + t.x()) / 2 - 14, (a.y() + t.y()) / 2), QStringLiteral("c"));
        break;
    }
    case Shapes::Figure::Circle:
    case Shapes::Figure::Ring: {
        const double outer = std::min(box.width(), box.height()) / 2;
        const bool ring = m_figure == Shapes::Figure::Ring;
        QPainterPath path;
        path.addEllipse(c, outer, outer);
        if (ring)
            path.addEllipse(c, outer * 0.5, outer * 0.5);
        p.drawPath(path);
        p.setPen(QPen(Qt::black, 1, Qt::DashLine));
        p.drawLine(c, QPointF(c.x() + outer, c.y()));
        label(QPointF(c.x() + outer * 0.75, c.y() - 10), ring ? QStringLiteral("R") : QStringLiteral("r"));
        if (ring) {
            p.setPen(QPen(Qt::black, 1, Qt::DashLine));
            p.drawLine(c, QPointF(c.x(), c.y() - outer * 0.5));
            label(QPointF(c.x() - 10, c.y() - outer * 0.3), QStringLiteral("r"));
        }
        break;
    }
    case Shapes::Figure::Trapezoid: {
        const QPointF a(box.left(), box.bottom()), b(box.right(), box.bottom()),
            d(box.left() + box.width() * 0.25, box.top()), e(box.right() - box.width() * 0.2, box.top());
        p.drawPolygon(QPolygonF({a, b, e, d}));
        p.setPen(QPen(Qt::black, 1, Qt::DashLine));
        p.drawLine(d, QPointF(d.x(), box.bottom()));
        label(QPointF(c.x(), box.bottom() + 12), QStringLiteral("a"));
        label(QPointF((d.x() + e.x()) / 2, box.top() - 12), QStringLiteral("b"));
        label(QPointF(d.x() + 12, c.y()), QStringLiteral("h"));
        break;
    }
    case Shapes::Figure::Polygon: {
        if (m_vertices.size() < 2) {
            p.setPen(Qt::gray);
            p.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, QStringLiteral("Введите вершины"));
            break;
        }
        QRectF bounds = QPolygonF(m_vertices).boundingRect();
        const double scale = std::min(box.width() / std::max(bounds.width(), 1e-9),
                                      box.height() / std::max(bounds.height(), 1e-9));
        QPolygonF shape;
        for (const QPointF &v : m_vertices) // y grows upwards on paper
            shape << QPointF(c.x() + (v.x() - bounds.center().x()) * scale,
                             c.y() - (v.y() - bounds.center().y()) * scale);
        p.drawPolygon(shape);
        for (int i = 0; i < shape.size(); ++i)
            label(shape[i] + QPointF(0, -12), QString::number(i + 1));
        break;
    }
    }
}
