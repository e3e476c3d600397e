#include "SheetTemplate.h"

#include "office/OfficeEngine.h"
#include "office/TemplateGrids.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSet>

#include <algorithm>

SheetValue SheetValue::ofNumber(double v, const QString &shown) {
    return {true, v, shown};
}

SheetValue SheetValue::ofMoney(const Money &amount) {
    // A spreadsheet keeps numbers as binary fractions; the amount is exact up to the kopeck there.
    return {true, static_cast<double>(amount.kopecks()) / 100.0, amount.grouped()};
}

namespace SheetTemplate {

namespace {

using SheetText::Grid;
using Input = OfficeEngine::Input;

const QRegularExpression &placeholderPattern() {
    static const QRegularExpression re(QStringLiteral("\\[([^\\[\\]\\r\\n]+)\\]"));
    return re;
}

// kind -> list index, for every kind a list may use.
QHash<QString, int> kindLists(const SheetData &data) {
    QHash<QString, int> map;
    for (int i = 0; i < data.lists.size(); ++i) {
        const SheetList &l = data.lists.at(i);
        for (const QString &k : l.kinds)
            map.insert(k, i);
        for (auto it = l.fallback.cbegin(); it != l.fallback.cend(); ++it) {
            map.insert(it.key(), i);
            map.insert(it.value(), i);
        }
    }
    return map;
}

QString kindOf(const QString &placeholder) {
    const int dot = placeholder.indexOf(u'.');
    return dot > 0 ? placeholder.left(dot) : QString();
}

QString columnOf(const QString &placeholder) {
    return placeholder.mid(placeholder.indexOf(u'.') + 1);
}

Input textInput(const QString &cell, const QString &text) {
    Input in;
    in.cell = cell;
    in.text = text;
    return in;
}

Input valueInput(const QString &cell, const SheetValue &v) {
    Input in = textInput(cell, v.text);
    if (v.isNumber) {
        in.type = Input::Type::Number;
        in.number = v.number;
    }
    return in;
}

// The input for one template cell. item: the row's values (null for named items outside blocks).
// Returns false when the cell stays as it is.
bool cellInput(const QString &cell, const QString &text, const SheetData &data,
               const QHash<QString, int> &kinds, const SheetRow *item, Input *out) {
    const QStringList names = placeholders(text);
    if (names.isEmpty())
        return false;
    auto lookup = [&](const QString &name, SheetValue *v) {
        if (item && kinds.contains(kindOf(name))) {
            // A row placeholder always goes: an item without the column leaves the cell empty.
            *v = item->cells.value(columnOf(name), SheetValue::ofText(QString()));
            return true;
        }
        auto it = data.values.constFind(name);
        if (it == data.values.cend())
            return false;
        *v = it.value();
        return true;
    };
    SheetValue v;
    if (names.size() == 1 && text == u'[' + names.first() + u']') {
        if (!lookup(names.first(), &v))
            return false;
        *out = valueInput(cell, v);
        return true;
    }
    QString result = text;
    bool any = false;
    for (const QString &name : names) {
        if (lookup(name, &v)) {
            result.replace(u'[' + name + u']', v.text);
            any = true;
        }
    }
    if (!any)
        return false;
    *out = textInput(cell, result);
    return true;
}

// How far a template row moved once the blocks above it were filled (rows gained or lost).
int shiftAbove(const Layout &layout, const SheetData &data, int row) {
    int shift = 0;
    for (const Block &b : layout.blocks)
        if (b.lastRow < row)
            shift += data.lists.at(b.list).rows.size() - (b.lastRow - b.firstRow + 1);
    return shift;
}

// The rows that received values get the height their contents need (the heights stored in a template
// fit its placeholders). Named rows and blocks are given as in the template; their rows moved by the
// rows each block above them gained or lost.
bool fitFilledRows(OfficeEngine &engine, const Layout &layout, const SheetData &data,
                   const QVector<int> &namedRows) {
    auto shiftAbove = [&](int row) { return SheetTemplate::shiftAbove(layout, data, row); };
    QVector<int> rows;
    for (int r : namedRows)
        rows << r + shiftAbove(r);
    for (const Block &b : layout.blocks) {
        const int first = b.firstRow + shiftAbove(b.firstRow);
        for (int i = 0; i < data.lists.at(b.list).rows.size(); ++i)
            rows << first + i;
    }
    std::sort(rows.begin(), rows.end());
    QVector<QPair<int, int>> ranges;
    for (int r : rows) {
        if (!ranges.isEmpty() && ranges.last().first + ranges.last().second - 1 == r) // rows from 1
            ++ranges.last().second;
        else if (ranges.isEmpty() || ranges.last().first + ranges.last().second - 1 < r + 1)
            ranges.append({r + 1, 1});
    }
    return ranges.isEmpty() || engine.fitRows(ranges);
}

// The texts entered that hold a bracket, as the cells show them: what a filled cell may hold without
// being a field left unfilled.
void rememberBracketed(const QVector<Input> &inputs, QSet<QString> *written) {
    for (const Input &in : inputs)
        if (in.type == Input::Type::Text && in.text.contains(u'['))
            written->insert(OfficeEngine::cutText(in.text));
}

bool enterAll(OfficeEngine &engine, const QVector<Input> &inputs, QString *error, const Progress &progress,
              int fromPercent, int toPercent) {
    constexpr int kPart = 1000; // cells a request: the engine writes them by blocks, and the bar moves
    for (int from = 0; from < inputs.size(); from += kPart) {
        if (!engine.enter(inputs.mid(from, kPart))) {
            *error = engine.error();
            return false;
        }
        if (progress)
            progress(fromPercent + (toPercent - fromPercent) * qMin<int>(from + kPart, inputs.size()) /
                                       qMax<int>(1, inputs.size()));
    }
    return true;
}

} // namespace

QStringList placeholders(const QString &text) {
    QStringList names;
    if (!text.contains(u'['))
        return names;
    auto it = placeholderPattern().globalMatch(text);
    while (it.hasNext())
        names << it.next().captured(1);
    return names;
}

QVector<int> rowsToDrop(const Grid &grid, const SheetData &data) {
    QVector<int> rows;
    if (data.dropRowsWithout.isEmpty())
        return rows;
    for (int r = 0; r < grid.size(); ++r) {
        bool drop = false;
        for (const QString &text : grid.at(r)) {
            for (const QString &name : placeholders(text)) {
                if (data.dropRowsWithout.contains(name) && data.values.value(name).text.isEmpty())
                    drop = true;
            }
        }
        if (drop)
            rows << r;
    }
    return rows;
}

Layout analyse(const Grid &grid, const SheetData &data) {
    Layout layout;
    const QHash<QString, int> kinds = kindLists(data);
    QSet<QString> named;
    Block current;
    auto closeBlock = [&]() {
        if (current.list >= 0)
            layout.blocks << current;
        current = Block();
    };
    for (int r = 0; r < grid.size(); ++r) {
        const QStringList &cells = grid.at(r);
        layout.width = qMax<int>(layout.width, cells.size());
        QString rowKind;
        for (const QString &text : cells) {
            for (const QString &name : placeholders(text)) {
                const QString k = kindOf(name);
                if (kinds.contains(k)) {
                    if (rowKind.isEmpty())
                        rowKind = k;
                } else if (!named.contains(name)) {
                    named.insert(name);
                    layout.named << name;
                }
            }
        }
        if (rowKind.isEmpty()) {
            closeBlock();
            continue;
        }
        const int list = kinds.value(rowKind);
        if (current.list != list || current.lastRow != r - 1) {
            closeBlock();
            current.list = list;
            current.firstRow = r;
        }
        current.lastRow = r;
        if (!current.rowOf.contains(rowKind))
            current.rowOf.insert(rowKind, r);
    }
    closeBlock();
    return layout;
}

QStringList unfilled(const Grid &filled, const SheetData &data, const QSet<QString> &written) {
    const QHash<QString, int> kinds = kindLists(data);
    QStringList left;
    for (const QStringList &cells : filled) {
        for (const QString &text : cells) {
            if (written.contains(text))
                continue; // a value that looks like a field
            for (const QString &name : placeholders(text)) {
                if ((kinds.contains(kindOf(name)) || data.values.contains(name)) &&
                    !left.contains(u'[' + name + u']'))
                    left << u'[' + name + u']';
            }
        }
    }
    return left;
}

KeptRows keptRows(const Grid &grid, const Layout &layout, const SheetData &data) {
    KeptRows kept;
    if (layout.blocks.isEmpty())
        return kept;
    const int top = layout.blocks.first().firstRow;
    for (int r = top - 1; r >= 0 && r >= top - 3; --r) {
        const QStringList &cells = grid.value(r);
        const bool empty =
            std::all_of(cells.cbegin(), cells.cend(), [](const QString &c) { return c.trimmed().isEmpty(); });
        const bool fields = std::any_of(cells.cbegin(), cells.cend(),
                                        [](const QString &c) { return !placeholders(c).isEmpty(); });
        if (empty || fields)
            break;
        kept.headings.prepend(r);
    }
    for (const Block &b : layout.blocks) {
        const SheetList &list = data.lists.at(b.list);
        const int first = b.firstRow + shiftAbove(layout, data, b.firstRow);
        for (int i = 0; i < list.rows.size(); ++i)
            if (list.headingKinds.contains(list.rows.at(i).kind))
                kept.headings << first + i;
        if (b.list == data.closingList && kept.closingFirst < 0)
            kept.closingFirst = first;
    }
    return kept;
}

// The whole exports one document may take while its pages are kept together: the first, and one after
// each break put in while the pages are checked export by export.
constexpr int kMaxExports = 6;

int timeBudgetMs(qint64 rows) {
    constexpr int kBaseMs = 120000;
    constexpr int kPerRowMs = 4;
    return static_cast<int>(qMin<qint64>(kBaseMs + kPerRowMs * rows, 60ll * 60 * 1000));
}

bool fill(OfficeEngine &engine, const QString &templatePath, const SheetData &data,
          const QVector<TemplateFile::Output> &outputs, QString *error, const Progress &progress) {
    auto report = [&](int p) {
        if (progress)
            progress(p);
    };
    // A document never keeps the engine without end: one whose caller set no budget gets its own.
    const bool ownBudget = !engine.hasBudget();
    if (ownBudget) {
        qint64 rows = 0;
        for (const SheetList &list : data.lists)
            rows += list.rows.size();
        engine.setBudget(timeBudgetMs(rows));
    }
    auto dropBudget = qScopeGuard([&engine, ownBudget] {
        if (ownBudget)
            engine.clearBudget();
    });
    const QByteArray key = TemplateGrids::contentKey(templatePath);
    if (!TemplateFile::open(engine, templatePath, QStringLiteral("spreadsheet"), error))
        return false;
    auto engineFailed = [&]() {
        *error = engine.error();
        engine.close();
        return false;
    };
    report(5);
    // The template's sheet as read the last time the same bytes were loaded; the key is taken again
    // after the load, so that a file replaced meanwhile is read from the engine.
    Grid grid;
    const bool unchanged = !key.isEmpty() && TemplateGrids::contentKey(templatePath) == key;
    if (!unchanged || !TemplateGrids::find(key, &grid)) {
        if (!engine.sheet(&grid))
            return engineFailed();
        if (unchanged)
            TemplateGrids::keep(key, grid);
    }
    const QVector<int> drop = rowsToDrop(grid, data);
    if (!drop.isEmpty()) {
        for (int i = drop.size() - 1; i >= 0; --i) {
            if (!engine.deleteRows(drop.at(i) + 1, 1))
                return engineFailed();
        }
        if (!engine.sheet(&grid))
            return engineFailed();
    }
    const Layout layout = analyse(grid, data);
    const QHash<QString, int> kinds = kindLists(data);

    // Named items first, while every cell is where the grid says.
    QSet<int> blockRows;
    for (const Block &b : layout.blocks)
        for (int r = b.firstRow; r <= b.lastRow; ++r)
            blockRows.insert(r);
    QVector<Input> inputs;
    QVector<int> namedRows; // rows of the template that receive a named item
    for (int r = 0; r < grid.size(); ++r) {
        if (blockRows.contains(r))
            continue;
        for (int c = 0; c < grid.at(r).size(); ++c) {
            Input in;
            if (cellInput(SheetText::cellName(r, c), grid.at(r).at(c), data, kinds, nullptr, &in)) {
                inputs << in;
                if (namedRows.isEmpty() || namedRows.last() != r)
                    namedRows << r;
            }
        }
    }
    QSet<QString> written;
    rememberBracketed(inputs, &written);
    if (!enterAll(engine, inputs, error, {}, 0, 0))
        return engineFailed();
    report(10);

    // Row blocks from the bottom up, so that the rows of the blocks above stay where they were.
    int totalItems = 0;
    for (const Block &b : layout.blocks)
        totalItems += data.lists.at(b.list).rows.size();
    int doneItems = 0;
    for (int bi = layout.blocks.size() - 1; bi >= 0; --bi) {
        const Block &block = layout.blocks.at(bi);
        const SheetList &list = data.lists.at(block.list);
        const int n = list.rows.size();
        const int lastCol = qMax(0, layout.width - 1);
        if (n > 0) {
            // New rows go right under the block and take copies of the template rows.
            const int first = block.lastRow + 1;
            if (!engine.insertRows(first + 1, n))
                return engineFailed();
            QVector<int> templateRow(n);
            for (int i = 0; i < n; ++i) {
                QString k = list.rows.at(i).kind;
                for (int guard = 0; !block.rowOf.contains(k) && list.fallback.contains(k) && guard < 16;
                     ++guard)
                    k = list.fallback.value(k);
                templateRow[i] = block.rowOf.value(k, block.firstRow);
            }
            // Each template row is copied once and pasted over every run of new rows of its kind (the
            // runs do not overlap, so the order they are pasted in does not matter).
            QMap<int, QVector<QPair<int, int>>> runsOf; // template row -> runs of new rows (first, last)
            for (int i = 0; i < n;) {
                int j = i;
                while (j + 1 < n && templateRow[j + 1] == templateRow[i])
                    ++j;
                runsOf[templateRow[i]].append({first + i, first + j});
                i = j + 1;
            }
            for (auto run = runsOf.cbegin(); run != runsOf.cend(); ++run) {
                if (!engine.copy(SheetText::rangeName(run.key(), 0, run.key(), lastCol)))
                    return engineFailed();
                for (const QPair<int, int> &rows : run.value())
                    if (!engine.paste(SheetText::rangeName(rows.first, 0, rows.second, lastCol)))
                        return engineFailed();
            }
            QVector<Input> rowInputs;
            for (int i = 0; i < n; ++i) {
                const QStringList &cells = grid.at(templateRow[i]);
                for (int c = 0; c < cells.size(); ++c) {
                    Input in;
                    if (cellInput(SheetText::cellName(first + i, c), cells.at(c), data, kinds,
                                  &list.rows.at(i), &in))
                        rowInputs << in;
                }
            }
            const int from = 10 + 80 * doneItems / qMax(1, totalItems);
            const int to = 10 + 80 * (doneItems + n) / qMax(1, totalItems);
            rememberBracketed(rowInputs, &written);
            if (!enterAll(engine, rowInputs, error, progress, from, to))
                return engineFailed();
            doneItems += n;
        }
        if (!engine.deleteRows(block.firstRow + 1, block.lastRow - block.firstRow + 1))
            return engineFailed();
    }
    report(90);
    if (!fitFilledRows(engine, layout, data, namedRows))
        return engineFailed();
    // Pictures last: the rows they lie on no longer move.
    for (auto it = data.images.cbegin(); it != data.images.cend(); ++it) {
        QString cell;
        if (!engine.findCell(u'[' + it.key() + u']', true, &cell))
            return engineFailed();
        if (cell.isEmpty())
            continue;
        if (!engine.enter({textInput(cell, QString())}) ||
            (!it.value().isEmpty() && !engine.insertImage(cell, it.value())))
            return engineFailed();
    }

    Grid filled;
    if (!engine.sheet(&filled))
        return engineFailed();
    const QStringList left = unfilled(filled, data, written);
    // The PDF is made once here, its pages kept together, and every PDF output is a copy of it.
    QString pdf;
    auto dropPdf = qScopeGuard([&pdf] {
        if (!pdf.isEmpty())
            QFile::remove(pdf);
    });
    const bool printed = std::any_of(outputs.cbegin(), outputs.cend(), [](const TemplateFile::Output &o) {
        return (o.format.isEmpty() ? TemplateFile::formatFor(o.path) : o.format) == QLatin1String("pdf");
    });
    if (data.keepTogether && printed && left.isEmpty()) {
        const KeptRows kept = keptRows(grid, layout, data);
        QVector<int> headings; // rows from 1
        for (int r : kept.headings)
            headings << r + 1;
        pdf =
            QDir(engine.engineTempDir())
                .filePath(QStringLiteral("pages-%1.pdf").arg(QRandomGenerator::global()->generate(), 0, 16));
        if (!engine.keepTogether(pdf, filled, headings, kept.closingFirst + 1, kMaxExports)) {
            *error = QStringLiteral("Не удалось разложить документ по страницам: %1").arg(engine.error());
            engine.close();
            return false;
        }
    }
    if (!TemplateFile::finish(engine, templatePath, left, outputs, error, pdf))
        return false;
    report(100);
    return true;
}

} // namespace SheetTemplate
