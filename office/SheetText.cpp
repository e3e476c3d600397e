#include "SheetText.h"

namespace SheetText {

Grid parseCsv(const QString &text) {
    Grid grid;
    QStringList row;
    QString field;
    bool quoted = false;
    bool fieldStarted = false;
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == u'"') {
                if (i + 1 < n && text.at(i + 1) == u'"') {
                    field += u'"';
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                field += c;
            }
            continue;
        }
        if (c == u'"' && !fieldStarted) {
            quoted = true;
            fieldStarted = true;
        } else if (c == u',') {
            row << field;
            field.clear();
            fieldStarted = false;
        } else if (c == u'\n' || c == u'\r') {
            if (c == u'\r' && i + 1 < n && text.at(i + 1) == u'\n')
                ++i;
            row << field;
            grid << row;
            row.clear();
            field.clear();
            fieldStarted = false;
        } else {
            field += c;
            fieldStarted = true;
        }
    }
    if (fieldStarted || !row.isEmpty()) {
        row << field;
        grid << row;
    }
    return grid;
}

QString columnName(int column) {
    QString name;
    for (int c = column + 1; c > 0; c = (c - 1) / 26)
        name.prepend(QChar(u'A' + (c - 1) % 26));
    return name;
}

QString cellName(int row, int column) {
    return columnName(column) + QString::number(row + 1);
}

QString rangeName(int firstRow, int firstColumn, int lastRow, int lastColumn) {
    return cellName(firstRow, firstColumn) + u':' + cellName(lastRow, lastColumn);
}

bool parseCellName(const QString &name, int *row, int *column) {
    int i = 0;
    int col = 0;
    while (i < name.size() && name.at(i).isUpper() && name.at(i).unicode() < 128) {
        col = col * 26 + (name.at(i).unicode() - 'A' + 1);
        ++i;
    }
    if (i == 0 || i == name.size())
        return false;
    bool ok = false;
    const int r = name.mid(i).toInt(&ok);
    if (!ok || r < 1 || !name.at(i).isDigit())
        return false;
    *row = r - 1;
    *column = col - 1;
    return true;
}

QVector<Block> blocksOf(const std::set<std::pair<int, int>> &cells) {
    QVector<Block> blocks;
    QVector<int> open; // blocks that end on the row above and may go on
    int openRow = -2;
    auto it = cells.begin();
    while (it != cells.end()) {
        const int row = it->first;
        QVector<int> next;
        while (it != cells.end() && it->first == row) {
            Block run{row, it->second, row, it->second};
            for (++it; it != cells.end() && it->first == row && it->second == run.lastColumn + 1; ++it)
                run.lastColumn = it->second;
            int joined = -1;
            if (openRow == row - 1) {
                for (int i : open) {
                    const Block &b = blocks.at(i);
                    if (b.firstColumn == run.firstColumn && b.lastColumn == run.lastColumn)
                        joined = i;
                }
            }
            if (joined >= 0) {
                blocks[joined].lastRow = row;
            } else {
                joined = static_cast<int>(blocks.size());
                blocks.append(run);
            }
            next.append(joined);
        }
        open = next;
        openRow = row;
    }
    return blocks;
}

bool findCell(const Grid &grid, const QString &text, bool exact, int *row, int *column) {
    for (int r = 0; r < grid.size(); ++r) {
        const QStringList &cells = grid.at(r);
        for (int c = 0; c < cells.size(); ++c) {
            if (exact ? cells.at(c) == text : cells.at(c).contains(text)) {
                *row = r;
                *column = c;
                return true;
            }
        }
    }
    return false;
}

} // namespace SheetText
