#include "TwoRowHeader.h"

#include "estimate/EstimateGrid.h"

#include <QPainter>
#include <QStyleOptionHeader>

TwoRowHeader::TwoRowHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(false);
    setDefaultAlignment(Qt::AlignCenter);
}

QSize TwoRowHeader::sizeHint() const {
    QSize s = QHeaderView::sizeHint();
    s.setHeight(2 * fontMetrics().height() + 10);
    return s;
}

void TwoRowHeader::paintCell(QPainter *painter, const QRect &rect, const QString &text,
                             const QColor &colour) const {
    QStyleOptionHeader opt;
    initStyleOption(&opt);
    opt.rect = rect;
    opt.text = QString();
    opt.position = QStyleOptionHeader::Middle;
    style()->drawControl(QStyle::CE_HeaderSection, &opt, painter, this);
    painter->save();
    if (colour.isValid())
        painter->setPen(colour);
    painter->drawText(rect.adjusted(2, 0, -2, 0), Qt::AlignCenter | Qt::TextWordWrap, text);
    painter->restore();
}

void TwoRowHeader::paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const {
    if (!rect.isValid())
        return;
    if (logicalIndex >= m_first && logicalIndex <= m_last) {
        // Lower half: the column's own caption, drawn in grey.
        QRect lower = rect;
        lower.setTop(rect.top() + rect.height() / 2);
        paintCell(painter, lower, EstimateGrid::headerText(1, logicalIndex), QColor(0x80, 0x80, 0x80));
        return;
    }
    paintCell(painter, rect,
              model() ? model()->headerData(logicalIndex, orientation()).toString() : QString(), {});
}

void TwoRowHeader::paintEvent(QPaintEvent *event) {
    QHeaderView::paintEvent(event);
    if (m_first < 0 || !model())
        return;
    int left = -1, right = -1;
    for (int c = m_first; c <= m_last; ++c) {
        if (isSectionHidden(c) || sectionSize(c) == 0)
            continue;
        const int x = sectionViewportPosition(c);
        if (left < 0)
            left = x;
        right = x + sectionSize(c);
    }
    if (left < 0)
        return;
    QPainter p(viewport());
    const QRect upper(left, 0, right - left, viewport()->height() / 2);
    paintCell(&p, upper, model()->headerData(m_first, orientation()).toString(), {});
}
