#include "PageKeeping.h"

#include "HelperText.h"
#include "LokSession.h"
#include "PdfPages.h"
#include "office/PageFlow.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>

#include <algorithm>
#include <functional>
#include <unistd.h>

namespace PageKeeping {

namespace {

constexpr int kFirstPages = 12;      // the pages exported first
constexpr int kPageRowsAtMost = 400; // rows looked for on a page exported alone
constexpr qint64 kRecheckMs = 4000;  // whole exports past which a sheet is left as it is
constexpr int kStep = 20000;         // time limit of one engine command, ms

// The first pages are exported first: a sheet of fewer pages is then whole, and while its pages break
// a rule a break goes in and it is exported again. A longer sheet gets its breaks planned from the
// pages shown (a page the plan cannot decide is exported alone), then it is exported whole and checked
// the same way. A sheet that keeps the rules gets no break. A row is moved once at most, and exports
// stop after the request's most or once another whole export would pass kRecheckMs of them.
class Keeping {
public:
    Keeping(LokSession &s, const QString &temp, std::string *error) : m_s(s), m_temp(temp), m_error(error) {}

    bool run(const QJsonObject &req, QJsonObject *answer) {
        const QString path = req.value(QStringLiteral("path")).toString();
        const int maxExports = qMax(1, req.value(QStringLiteral("exports")).toInt(1));
        for (const QJsonValue &v : req.value(QStringLiteral("headings")).toArray())
            m_rules.headings.insert(v.toInt() - 1);
        m_rules.closingFirst = req.value(QStringLiteral("closing")).toInt() - 1;
        for (const QJsonValue &row : req.value(QStringLiteral("rows")).toArray()) {
            QStringList cells;
            for (const QJsonValue &c : row.toArray())
                cells << c.toString();
            m_grid.append(cells);
        }
        QElapsedTimer clock;
        clock.start();
        if (!exportPdf(path, QStringLiteral("1-%1").arg(kFirstPages)))
            return false;
        if (m_pages.size() < kFirstPages) {
            m_lastMs = m_wholeMs = clock.elapsed(); // the sheet is whole
        } else {
            bool complete = false;
            QVector<int> firsts;
            if (!plan(&complete, &firsts))
                return false;
            (*answer)[QStringLiteral("planned")] = complete;
            if (complete) {
                // The plan is checked where it matters: the pages around each break and the last two,
                // and the count of pages; a whole sheet is read (seconds for thousands of rows) only
                // when the engine laid it out otherwise.
                QSet<int> check{int(firsts.size()) - 1, int(firsts.size()) - 2};
                for (int row : m_breaks) {
                    const int page =
                        int(std::find(firsts.begin(), firsts.end(), firstPrinted(row)) - firsts.begin());
                    check << page << page - 1;
                }
                if (!exportWhole(path, &check))
                    return false;
                const bool kept =
                    m_pages.size() == firsts.size() &&
                    std::all_of(check.cbegin(), check.cend(), [&](int page) {
                        return page < 1 || page >= firsts.size() ||
                               firstRowOn(m_pages.at(page), firsts.at(page - 1)) == firsts.at(page);
                    });
                (*answer)[QStringLiteral("checkedPages")] = int(check.size());
                if (kept)
                    return finish(answer);
                if (!PdfPages::read(path, &m_pages, m_error)) // laid out otherwise: read whole, fixed below
                    return false;
            } else if (!exportWhole(path)) {
                return false;
            }
        }
        // Every whole export is checked against the rules.
        for (;;) {
            const int row =
                PageFlow::nextBreak(m_grid, PageFlow::rowPages(m_grid, m_pages), m_rules, m_moved);
            if (row < 0 || m_exports >= maxExports || m_wholeMs + m_lastMs > kRecheckMs)
                break;
            if (!insertBreak(row))
                return false;
            m_moved.insert(row);
            m_breaks << row;
            if (!exportWhole(path))
                return false;
        }
        return finish(answer);
    }

private:
    bool finish(QJsonObject *answer) {
        QJsonArray added;
        for (int r : m_breaks)
            added.append(r + 1);
        (*answer)[QStringLiteral("pages")] = static_cast<int>(m_pages.size());
        (*answer)[QStringLiteral("breaks")] = added;
        (*answer)[QStringLiteral("exports")] = m_exports;
        (*answer)[QStringLiteral("pageExports")] = m_pageExports;
        (*answer)[QStringLiteral("wholeMs")] = m_wholeMs;
        (*answer)[QStringLiteral("readMs")] = m_readMs;
        return true;
    }

    int firstPrinted(int row) const {
        while (row < m_grid.size() && m_grid.at(row).join(QString()).trimmed().isEmpty())
            ++row;
        return row;
    }

    // The first row, from `from` on, that the page shows; -1 when none is found.
    int firstRowOn(const QString &page, int from) const {
        const QVector<int> found = PageFlow::rowPages(m_grid.mid(from, kPageRowsAtMost), {page});
        for (int i = 0; i < found.size(); ++i)
            if (found.at(i) == 0)
                return from + i;
        return -1;
    }

    // Saves the PDF (a range "1-12" of its pages, or all) and reads its pages.
    bool exportPdf(const QString &to, const QString &range, const QSet<int> *only = nullptr) {
        QFile::remove(to);
        const std::string options =
            range.isEmpty() ? std::string() : stringArg("PageRange", range).toStdString();
        if (!m_s.saveAs(toUrl(to), "pdf", options, m_error))
            return false;
        ++m_exports;
        QElapsedTimer read;
        read.start();
        const bool ok = PdfPages::read(to, &m_pages, m_error, only);
        m_readMs += read.elapsed();
        return ok;
    }

    bool exportWhole(const QString &to, const QSet<int> *only = nullptr) {
        QElapsedTimer clock;
        clock.start();
        if (!exportPdf(to, QString(), only))
            return false;
        m_lastMs = clock.elapsed();
        m_wholeMs += m_lastMs;
        return true;
    }

    bool insertBreak(int row) {
        return m_s.uno(".uno:GoToCell", stringArg("ToPoint", SheetText::cellName(row, 0)).toStdString(),
                       kStep, m_error) &&
               m_s.uno(".uno:InsertRowBreak", "", kStep, m_error);
    }

    bool plan(bool *complete, QVector<int> *firsts) {
        const QString one = QDir(m_temp).filePath(QStringLiteral("page-%1.pdf").arg(::getpid()));
        PageFlow::Pages shown = m_pages;
        PageFlow::Plan plan{m_grid,
                            m_rules,
                            rowHeights(static_cast<int>(m_grid.size())),
                            PageFlow::rowPages(m_grid, shown),
                            static_cast<int>(shown.size()),
                            [this](int row) { return insertBreak(row); },
                            [this, &one](int page, int from) {
                                if (!exportPdf(one, QString::number(page + 1)))
                                    return -2;
                                --m_exports; // one page, not a whole export
                                ++m_pageExports;
                                return firstRowOn(m_pages.value(0), from);
                            }};
        const bool ok = PageFlow::plan(plan, &m_breaks, &m_moved, complete, firsts);
        QFile::remove(one);
        return ok;
    }

    // The height of each row of the sheet in twips, as the engine keeps it; a hidden row counts 0.
    // The engine gives them as runs: "256:4 293:6" is 256 for rows 0..4, 293 for rows 5..6.
    QVector<int> rowHeights(int count) {
        QVector<int> heights;
        const QJsonObject rows =
            QJsonDocument::fromJson(
                QByteArray::fromStdString(m_s.commandValues(
                    ".uno:SheetGeometryData?columns=false&rows=true&sizes=true&hidden=true")))
                .object()
                .value(QStringLiteral("rows"))
                .toObject();
        auto runs = [&rows, count](const char *name,
                                   const std::function<void(int value, int from, int to)> &each) {
            int from = 0;
            for (const QString &run :
                 rows.value(QLatin1String(name)).toString().split(u' ', Qt::SkipEmptyParts)) {
                const int colon = run.indexOf(u':');
                const int to = qMin(run.mid(colon + 1).toInt(), count - 1);
                each(run.left(colon).toInt(), from, to);
                from = to + 1;
                if (from >= count)
                    break;
            }
        };
        runs("sizes", [&heights](int value, int from, int to) {
            if (to >= heights.size())
                heights.resize(to + 1);
            for (int r = from; r <= to; ++r)
                heights[r] = value;
        });
        runs("hidden", [&heights](int value, int from, int to) {
            for (int r = from; r <= to && r < heights.size(); ++r)
                if (value)
                    heights[r] = 0;
        });
        return heights;
    }

    LokSession &m_s;
    QString m_temp;
    std::string *m_error;
    SheetText::Grid m_grid;
    PageFlow::Rules m_rules;
    PageFlow::Pages m_pages;
    QSet<int> m_moved;
    QVector<int> m_breaks;
    int m_exports = 0, m_pageExports = 0;
    qint64 m_wholeMs = 0, m_lastMs = 0, m_readMs = 0; // whole exports, the last of them, PDF reading
};

} // namespace

bool run(LokSession &session, const QString &temp, const QJsonObject &req, QJsonObject *answer,
         std::string *error) {
    return Keeping(session, temp, error).run(req, answer);
}

} // namespace PageKeeping
