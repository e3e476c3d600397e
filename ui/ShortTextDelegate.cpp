#include "ShortTextDelegate.h"

QString ShortTextDelegate::shown(const QString &text) {
    if (text.size() <= kShownChars)
        return text;
    return text.left(kShownChars) + QChar(0x2026);
}

void ShortTextDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->text.size() > kShownChars)
        option->text = shown(option->text);
}
