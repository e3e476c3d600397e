#include "SheetPages.h"

#include "office/OfficeEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

namespace SheetPages {

namespace {

// Rows past this are not counted: a sheet that long is not laid out by hand.
constexpr qint64 kMaxRows = 2'000'000;

// A length of OpenDocument ("1.5cm", "0.3937in", "10pt") in points; 0 when it is not one.
double points(QStringView text) {
    static const QRegularExpression re(
        QStringLiteral("^\\s*([-+]?[0-9]*\\.?[0-9]+)\\s*(cm|mm|in|pt|pc|px)?\\s*$"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch())
        return 0;
    const double v = m.captured(1).toDouble();
    const QString unit = m.captured(2);
    if (unit == QLatin1String("cm"))
        return v * 72.0 / 2.54;
    if (unit == QLatin1String("mm"))
        return v * 72.0 / 25.4;
    if (unit == QLatin1String("in"))
        return v * 72.0;
    if (unit == QLatin1String("pc"))
        return v * 12.0;
    if (unit == QLatin1String("px"))
        return v * 0.75;
    return v;
}

struct PageStyle {
    double height = 0, width = 0, top = 0, bottom = 0, left = 0, right = 0;
    double header = 0, headerSpace = 0, footer = 0, footerSpace = 0;
    double scale = 1;      // a fixed scale
    bool fitWidth = false; // "fit to one page wide"
    bool fitPages = false; // scaled to a number of pages tall or in all
};

struct Master {
    QString layout;
    bool header = false, footer = false;
};

struct RowRun {
    double height = 0;
    qint64 count = 1;
    bool manualBreak = false;
    bool repeated = false;
    bool hidden = false;
    bool content = false;
};

int intAttr(const QXmlStreamAttributes &a, const char *name, int fallback) {
    bool ok = false;
    const int v = a.value(QLatin1String(name)).toInt(&ok);
    return ok ? v : fallback;
}

} // namespace

double Layout::repeatHeight() const {
    double h = 0;
    for (int r = std::max(0, repeatFirst); r >= 0 && r <= repeatLast && r < rows.size(); ++r)
        h += rows[r];
    return h;
}

bool read(const QByteArray &fods, Layout *layout, QString *error) {
    QXmlStreamReader xml(fods);
    QHash<QString, PageStyle> pageStyles;
    QHash<QString, Master> masters;
    QHash<QString, double> rowHeights, columnWidths;
    QHash<QString, bool> rowBreaks;
    QHash<QString, QString> tableMasters;
    QString style, family, pageStyle, master, tableStyle;
    enum class In { None, HeaderStyle, FooterStyle } in = In::None;
    bool inTable = false, tableDone = false, inHeaderRows = false;
    QVector<RowRun> runs;
    QVector<double> columns;
    int lastColumn = -1, column = 0;

    while (!xml.atEnd() && !xml.hasError()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        const QStringView name = xml.qualifiedName();
        if (token == QXmlStreamReader::EndElement) {
            if (name == QLatin1String("table:table") && inTable) {
                inTable = false;
                tableDone = true;
            } else if (name == QLatin1String("table:table-header-rows")) {
                inHeaderRows = false;
            } else if (name == QLatin1String("style:header-style") ||
                       name == QLatin1String("style:footer-style")) {
                in = In::None;
            }
            continue;
        }
        if (token != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes a = xml.attributes();
        if (!inTable) {
            if (name == QLatin1String("style:style")) {
                style = a.value(QLatin1String("style:name")).toString();
                family = a.value(QLatin1String("style:family")).toString();
                if (family == QLatin1String("table"))
                    tableMasters.insert(style, a.value(QLatin1String("style:master-page-name")).toString());
            } else if (name == QLatin1String("style:table-row-properties")) {
                rowHeights.insert(style, points(a.value(QLatin1String("style:row-height"))));
                rowBreaks.insert(style, a.value(QLatin1String("fo:break-before")) == QLatin1String("page"));
            } else if (name == QLatin1String("style:table-column-properties")) {
                columnWidths.insert(style, points(a.value(QLatin1String("style:column-width"))));
            } else if (name == QLatin1String("style:page-layout")) {
                pageStyle = a.value(QLatin1String("style:name")).toString();
                pageStyles.insert(pageStyle, PageStyle());
            } else if (name == QLatin1String("style:page-layout-properties")) {
                PageStyle &p = pageStyles[pageStyle];
                p.height = points(a.value(QLatin1String("fo:page-height")));
                p.width = points(a.value(QLatin1String("fo:page-width")));
                p.top = points(a.value(QLatin1String("fo:margin-top")));
                p.bottom = points(a.value(QLatin1String("fo:margin-bottom")));
                p.left = points(a.value(QLatin1String("fo:margin-left")));
                p.right = points(a.value(QLatin1String("fo:margin-right")));
                for (const auto &attr : a) {
                    const QStringView n = attr.name();
                    if (n == QLatin1String("scale-to")) {
                        p.scale = attr.value().toString().remove(u'%').toDouble() / 100.0;
                    } else if (n == QLatin1String("scale-to-X")) {
                        p.fitWidth = attr.value().toInt() > 0;
                    } else if (n == QLatin1String("scale-to-Y") || n == QLatin1String("scale-to-pages")) {
                        p.fitPages = p.fitPages || attr.value().toInt() > 0;
                    }
                }
                if (p.scale <= 0)
                    p.scale = 1;
            } else if (name == QLatin1String("style:header-style")) {
                in = In::HeaderStyle;
            } else if (name == QLatin1String("style:footer-style")) {
                in = In::FooterStyle;
            } else if (name == QLatin1String("style:header-footer-properties") && in != In::None) {
                PageStyle &p = pageStyles[pageStyle];
                const double height = std::max(points(a.value(QLatin1String("fo:min-height"))),
                                               points(a.value(QLatin1String("svg:height"))));
                if (in == In::HeaderStyle) {
                    p.header = height;
                    p.headerSpace = points(a.value(QLatin1String("fo:margin-bottom")));
                } else {
                    p.footer = height;
                    p.footerSpace = points(a.value(QLatin1String("fo:margin-top")));
                }
            } else if (name == QLatin1String("style:master-page")) {
                master = a.value(QLatin1String("style:name")).toString();
                masters.insert(master,
                               {a.value(QLatin1String("style:page-layout-name")).toString(), false, false});
            } else if (name == QLatin1String("style:header") || name == QLatin1String("style:footer")) {
                const bool shown = a.value(QLatin1String("style:display")) != QLatin1String("false");
                (name == QLatin1String("style:header") ? masters[master].header : masters[master].footer) =
                    shown;
            } else if (name == QLatin1String("table:table") && !tableDone) {
                inTable = true;
                tableStyle = a.value(QLatin1String("table:style-name")).toString();
            }
            continue;
        }
        // The first sheet.
        if (name == QLatin1String("table:table-column")) {
            const int repeat = std::clamp(intAttr(a, "table:number-columns-repeated", 1), 1, 1024);
            const double width = columnWidths.value(a.value(QLatin1String("table:style-name")).toString());
            for (int i = 0; i < repeat && columns.size() < 1024; ++i)
                columns << width;
        } else if (name == QLatin1String("table:table-header-rows")) {
            inHeaderRows = true;
        } else if (name == QLatin1String("table:table-row")) {
            RowRun run;
            const QString rowStyle = a.value(QLatin1String("table:style-name")).toString();
            run.height = rowHeights.value(rowStyle);
            run.manualBreak = rowBreaks.value(rowStyle);
            run.count = std::max(1, intAttr(a, "table:number-rows-repeated", 1));
            run.hidden = a.value(QLatin1String("table:visibility")) == QLatin1String("collapse") ||
                         a.value(QLatin1String("table:visibility")) == QLatin1String("filter");
            run.repeated = inHeaderRows;
            runs << run;
            column = 0;
        } else if ((name == QLatin1String("table:table-cell") ||
                    name == QLatin1String("table:covered-table-cell")) &&
                   !runs.isEmpty()) {
            const int repeat = std::max(1, intAttr(a, "table:number-columns-repeated", 1));
            const int span = std::max(1, intAttr(a, "table:number-columns-spanned", 1));
            if (a.hasAttribute(QLatin1String("office:value-type"))) {
                runs.last().content = true;
                lastColumn = std::max(lastColumn, column + std::max(repeat, span) - 1);
            }
            column += repeat;
        } else if ((name == QLatin1String("text:p") || name == QLatin1String("draw:frame")) &&
                   !runs.isEmpty()) {
            runs.last().content = true;
            lastColumn = std::max(lastColumn, column - 1);
        }
    }
    if (xml.hasError() || runs.isEmpty()) {
        if (error)
            *error = QStringLiteral("Разметка листа не прочитана: %1").arg(xml.errorString());
        return false;
    }

    // The printed area: from the first row to the last with something in it.
    qint64 last = -1, at = 0;
    for (const RowRun &run : runs) {
        at += run.count;
        if (run.content)
            last = at - 1;
        if (at > kMaxRows)
            break;
    }
    if (last < 0 || last >= kMaxRows) {
        if (error)
            *error = QStringLiteral("Лист пуст или слишком длинный для разметки страниц.");
        return false;
    }
    const Master m = masters.value(
        tableMasters.value(tableStyle),
        masters.value(QStringLiteral("Default"), masters.isEmpty() ? Master() : masters.cbegin().value()));
    PageStyle page = pageStyles.value(m.layout);
    // A sheet that names no paper (the templates made from ".xls" files) is printed on the paper of the
    // system's locale: A4 in Russia and in the C locale.
    if (page.height <= 0 || page.width <= 0) {
        page.height = 29.7 * 72.0 / 2.54;
        page.width = 21.0 * 72.0 / 2.54;
    }
    double zoom = page.scale;
    if (page.fitWidth) {
        double used = 0;
        for (int c = 0; c <= lastColumn && c < columns.size(); ++c)
            used += columns[c];
        const double printable = page.width - page.left - page.right;
        // The engine scales by whole percents, never up.
        zoom = used > printable && used > 0 ? std::floor(100.0 * printable / used) / 100.0 : 1.0;
    }
    Layout out;
    out.scaledToPages = page.fitPages;
    out.pageHeight = page.height - page.top - page.bottom - (m.header ? page.header + page.headerSpace : 0) -
                     (m.footer ? page.footer + page.footerSpace : 0);
    at = 0;
    for (const RowRun &run : runs) {
        for (qint64 i = 0; i < run.count && at <= last; ++i, ++at) {
            out.rows << (run.hidden ? 0.0 : run.height * zoom);
            out.manualBreak << (run.manualBreak && i == 0);
            if (run.repeated) {
                if (out.repeatFirst < 0)
                    out.repeatFirst = static_cast<int>(at);
                out.repeatLast = static_cast<int>(at);
            }
        }
    }
    if (out.pageHeight <= 0) {
        if (error)
            *error = QStringLiteral("Размер страницы листа не прочитан.");
        return false;
    }
    *layout = out;
    return true;
}

QVector<int> pageStarts(const Layout &layout) {
    QVector<int> starts;
    const int n = layout.rows.size();
    if (n == 0)
        return starts;
    starts << 0;
    // Comparisons allow for the engine's rounding to its own units.
    constexpr double kSlack = 0.05;
    double used = 0;
    for (int r = 0; r < n; ++r) {
        const double h = layout.rows[r];
        if (r != starts.last() && (layout.manualBreak[r] || used + h > layout.pageHeight + kSlack)) {
            starts << r;
            used = layout.repeatFirst >= 0 && r > layout.repeatLast ? layout.repeatHeight() : 0;
        }
        used += h;
    }
    return starts;
}

QVector<int> breaksToAdd(Layout &layout, const Together &together) {
    QVector<int> added;
    const int n = layout.rows.size();
    if (layout.scaledToPages || n == 0)
        return added;
    // Headings: the rows said so, and the table's heading repeated on every page.
    auto keep = [&](int r) {
        return (r >= 0 && r < together.keepWithNext.size() && together.keepWithNext[r]) ||
               (r >= layout.repeatFirst && r <= layout.repeatLast && layout.repeatFirst >= 0);
    };
    auto pageOf = [](const QVector<int> &starts, int row) {
        return static_cast<int>(std::upper_bound(starts.begin(), starts.end(), row) - starts.begin()) - 1;
    };
    for (int guard = 0; guard < n; ++guard) {
        const QVector<int> starts = pageStarts(layout);
        int breakAt = -1;
        // A heading (or a run of them) at the foot of a page goes over to the next page.
        for (int p = 1; p < starts.size() && breakAt < 0; ++p) {
            int k = starts[p] - 1;
            if (!keep(k))
                continue;
            while (k - 1 > starts[p - 1] && keep(k - 1))
                --k;
            // A page of nothing but headings stays as it is: moving them leaves the same on the next.
            const bool wholePage = k - 1 == starts[p - 1] && keep(k - 1);
            if (k > starts[p - 1] && !wholePage && !layout.manualBreak[k])
                breakAt = k;
        }
        // The closing block on one page, with rows of the table above it.
        const int c = together.closingFirst;
        if (breakAt < 0 && c > 0 && c < n) {
            const int page = pageOf(starts, c);
            const bool split = pageOf(starts, n - 1) != page;
            const bool alone = page > 0 && c - starts[page] < together.rowsWithClosing;
            if (split || alone) {
                int b = std::max(1, c - together.rowsWithClosing);
                while (b - 1 > 0 && keep(b - 1))
                    --b;
                double need = layout.repeatFirst >= 0 && b > layout.repeatLast ? layout.repeatHeight() : 0;
                for (int r = b; r < n; ++r)
                    need += layout.rows[r];
                if (need <= layout.pageHeight && !layout.manualBreak[b] && b > starts[pageOf(starts, b)])
                    breakAt = b;
            }
        }
        if (breakAt < 0)
            break;
        layout.manualBreak[breakAt] = true;
        added << breakAt;
    }
    std::sort(added.begin(), added.end());
    return added;
}

bool keepTogether(OfficeEngine &engine, const Together &together, QVector<int> *added, QString *error) {
    static int counter = 0;
    const QString path =
        QDir(engine.tempDir())
            .filePath(
                QStringLiteral("pages-%1-%2.fods").arg(QCoreApplication::applicationPid()).arg(++counter));
    if (!engine.saveAs(path, QStringLiteral("fods"))) {
        if (error)
            *error = engine.error();
        return false;
    }
    QFile file(path);
    const QByteArray fods = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    file.close();
    QFile::remove(path);
    Layout layout;
    // A sheet whose layout cannot be read is printed as the engine lays it out.
    if (!read(fods, &layout, nullptr))
        return true;
    const QVector<int> breaks = breaksToAdd(layout, together);
    if (added)
        *added = breaks;
    if (breaks.isEmpty())
        return true;
    QVector<int> rows;
    for (int r : breaks)
        rows << r + 1;
    if (!engine.insertRowBreaks(rows)) {
        if (error)
            *error = engine.error();
        return false;
    }
    return true;
}

} // namespace SheetPages
