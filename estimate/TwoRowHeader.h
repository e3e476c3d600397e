#pragma once
// The estimate grid's two fixed header rows: one caption per column over both rows, except the unit
// cost columns, whose common caption spans them in the upper row above their own captions.

#include <QHeaderView>

class TwoRowHeader : public QHeaderView {
    Q_OBJECT
public:
    explicit TwoRowHeader(QWidget *parent = nullptr);

    // Columns [first, last] share the upper caption.
    void setSpanned(int first, int last) {
        m_first = first;
        m_last = last;
    }

    QSize sizeHint() const override;

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintCell(QPainter *painter, const QRect &rect, const QString &text, const QColor &colour) const;
    int m_first = -1;
    int m_last = -1;
};
