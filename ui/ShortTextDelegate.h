#pragma once
// Grid cells show at most a thousand characters of their text: a cell of megabytes would otherwise be
// laid out whole at every paint and freeze the window. Editing and copying still get the whole text.

#include <QStyledItemDelegate>

class ShortTextDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int kShownChars = 1000;
    using QStyledItemDelegate::QStyledItemDelegate;

    // The text as a cell shows it: the beginning of a longer one, then "…".
    static QString shown(const QString &text);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
