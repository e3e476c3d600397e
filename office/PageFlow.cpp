#include "PageFlow.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace PageFlow {

namespace {

// A character's share of a hash that does not depend on the order of the characters (a sum).
std::uint64_t mix(char16_t c) {
    std::uint64_t x = c + 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return x ^ (x >> 31);
}

QString withoutSpaces(const QStringList &cells) {
    QString s;
    for (const QString &cell : cells) {
        QString word;
        for (QChar c : cell) {
            if (!c.isSpace()) {
                word += c;
            } else if (!word.isEmpty()) {
                s += printedWord(word);
                word.clear();
            }
        }
        s += printedWord(word);
    }
    return s;
}

QString sorted(QString s) {
    std::sort(s.begin(), s.end());
    return s;
}

// A page's characters with the running sums of their hashes, so that any stretch is hashed at once.
struct Page {
    QString text;
    QVector<std::uint64_t> sums; // sums[i]: hash of the first i characters

    explicit Page(const QString &t) : text(t), sums(t.size() + 1, 0) {
        for (int i = 0; i < t.size(); ++i)
            sums[i + 1] = sums[i] + mix(t.at(i).unicode());
    }
    bool holds(int at, const QString &sortedKey, std::uint64_t hash) const {
        const int n = static_cast<int>(sortedKey.size());
        return at >= 0 && at + n <= text.size() && sums[at + n] - sums[at] == hash &&
               sorted(text.mid(at, n)) == sortedKey;
    }
    int find(int from, const QString &sortedKey, std::uint64_t hash) const {
        for (int at = from; at + sortedKey.size() <= text.size(); ++at)
            if (holds(at, sortedKey, hash))
                return at;
        return -1;
    }
};

} // namespace

QString printedWord(const QString &word) {
    if (!word.contains(u','))
        return word;
    QString out;
    for (int i = 0; i < word.size();) {
        const QChar c = word.at(i);
        if (c == u',' && i > 0 && word.at(i - 1).isDigit() && i + 1 < word.size() &&
            word.at(i + 1).isDigit()) {
            int end = i + 1;
            while (end < word.size() && word.at(end).isDigit())
                ++end;
            int kept = end;
            while (kept > i + 1 && word.at(kept - 1) == u'0')
                --kept;
            if (kept > i + 1)
                out += word.mid(i, kept - i);
            i = end;
            continue;
        }
        out += c;
        ++i;
    }
    return out;
}

QVector<int> rowPages(const SheetText::Grid &grid, const Pages &pages) {
    QVector<Page> indexed;
    indexed.reserve(pages.size());
    for (const QString &p : pages)
        indexed.append(Page(p));
    QVector<int> result(grid.size(), -1);
    int page = 0, at = 0; // where the next row is expected
    for (int r = 0; r < grid.size() && page < indexed.size(); ++r) {
        const QString key = sorted(withoutSpaces(grid.at(r)));
        if (key.isEmpty())
            continue;
        std::uint64_t hash = 0;
        for (QChar c : key)
            hash += mix(c.unicode());
        if (indexed.at(page).holds(at, key, hash)) {
            result[r] = page;
            at += key.size();
            continue;
        }
        // Not right where the last row ended: past what the page adds around its rows (the repeated
        // head of the table, a footer), on this page or at the top of the next one.
        for (int p = page; p <= page + 1 && p < indexed.size(); ++p) {
            const int found = indexed.at(p).find(p == page ? at + 1 : 0, key, hash);
            if (found >= 0) {
                result[r] = p;
                page = p;
                at = found + key.size();
                break;
            }
        }
    }
    return result;
}

namespace {

// The rows that print something, and the rules put on them.
class Rows {
public:
    Rows(const SheetText::Grid &grid, const Rules &rules, const QSet<int> &moved)
        : m_rules(rules), m_moved(moved), m_printed(grid.size(), false) {
        for (int r = 0; r < grid.size(); ++r) {
            m_printed[r] = !withoutSpaces(grid.at(r)).isEmpty();
            if (m_printed[r]) {
                m_last = r;
                if (m_closing < 0 && rules.closingFirst >= 0 && r >= rules.closingFirst)
                    m_closing = r;
            }
        }
    }
    bool printed(int r) const { return r >= 0 && r < m_printed.size() && m_printed[r]; }
    int last() const { return m_last; }
    int previous(int r) const {
        for (--r; r >= 0; --r)
            if (m_printed[r])
                return r;
        return -1;
    }
    bool anyIn(int from, int to) const {
        for (int r = qMax(0, from); r < to && r < m_printed.size(); ++r)
            if (m_printed[r])
                return true;
        return false;
    }

    // The row to move from the page holding rows [from, to) when the next page starts at `to`, or -1.
    int breakFor(int from, int to) const {
        if (to > m_last)
            return -1; // the last page
        const int end = previous(to);
        if (end < from)
            return -1;
        if (m_rules.headings.contains(end)) {
            int first = end;
            int before = previous(first);
            while (before >= from && m_rules.headings.contains(before)) {
                first = before;
                before = previous(first);
            }
            if (before >= from && !m_moved.contains(first))
                return first;
        }
        if (m_closing >= from && m_closing < to && anyIn(from, m_closing) && !m_moved.contains(m_closing))
            return m_closing;
        return -1;
    }

private:
    const Rules &m_rules;
    const QSet<int> &m_moved;
    QVector<bool> m_printed;
    int m_last = -1;
    int m_closing = -1;
};

} // namespace

int nextBreak(const SheetText::Grid &grid, const QVector<int> &rowPages, const Rules &rules,
              const QSet<int> &moved) {
    const Rows rows(grid, rules, moved);
    auto pageOf = [&](int r) { return r < rowPages.size() ? rowPages.at(r) : -1; };
    int first = -1; // the first printed row of the page being read, -1 when uncertain
    int before = -1;
    for (int r = 0; r < grid.size(); ++r) {
        if (!rows.printed(r))
            continue;
        const int page = pageOf(r);
        if (before >= 0 && page >= 0 && page == pageOf(before) + 1 && first >= 0) {
            const int row = rows.breakFor(first, r);
            if (row >= 0)
                return row;
        }
        if (page < 0)
            first = -1;
        else if (before < 0 || page != pageOf(before))
            first = before < 0 || pageOf(before) >= 0 ? r : -1;
        before = r;
    }
    return -1;
}

bool plan(const Plan &p, QVector<int> *breaks, QSet<int> *moved, bool *complete, QVector<int> *firsts) {
    *complete = false;
    const Rows rows(p.grid, p.rules, *moved);
    auto height = [&](int r) -> qint64 { return r < p.heights.size() ? p.heights.at(r) : 0; };
    auto heightOf = [&](int from, int to) {
        qint64 sum = 0;
        for (int r = from; r < to; ++r)
            sum += height(r);
        return sum;
    };
    // The first and last printed rows of each page shown, and where a page surely starts: right after
    // the last printed row of the page before when no empty row lies between.
    QVector<int> firstOf(p.shownPages, -1), lastOf(p.shownPages, -1);
    for (int r = 0; r < p.grid.size() && r < p.shown.size(); ++r) {
        const int page = p.shown.at(r);
        if (page < 0 || page >= p.shownPages)
            continue;
        if (firstOf[page] < 0)
            firstOf[page] = r;
        lastOf[page] = r;
    }
    auto startOf = [&](int page) {
        if (page == 0)
            return 0;
        return firstOf[page] >= 0 && lastOf[page - 1] >= 0 && lastOf[page - 1] + 1 == firstOf[page]
                   ? firstOf[page]
                   : -1;
    };
    // What a page after the first holds, twips of rows: at least `low`, less than `high`.
    qint64 low = 0, high = std::numeric_limits<qint64>::max();
    auto learn = [&](int from, int to) {
        const qint64 used = heightOf(from, to);
        low = qMax(low, used);
        high = qMin(high, used + height(to));
        return low < high;
    };
    for (int page = 1; page + 1 < p.shownPages; ++page) {
        const int from = startOf(page), to = startOf(page + 1);
        if (from >= 0 && to > from && !learn(from, to))
            return true; // the pages do not follow one measure: left to the export's check
    }
    auto put = [&](int row) {
        if (!p.addBreak(row))
            return false;
        breaks->append(row);
        moved->insert(row);
        return true;
    };
    // The pages shown as they are, up to the first that breaks a rule.
    int page = p.shownPages - 1, start = -1;
    for (int q = 0; q + 1 < p.shownPages; ++q) {
        if (firstOf[q] < 0 || firstOf[q + 1] < 0 || rows.previous(firstOf[q + 1]) != lastOf[q])
            return true;
        // A break shortens the page it was put on, which may then end with what must not end it.
        for (int row; (row = rows.breakFor(firstOf[q], start < 0 ? firstOf[q + 1] : start)) >= 0;) {
            if (!put(row))
                return false;
            page = q + 1;
            start = row;
        }
        if (start >= 0)
            break;
    }
    if (start < 0)
        start = startOf(page);
    if (start < 0)
        return true;
    QVector<int> planned = firstOf.mid(0, page); // the first printed row of each page
    auto firstPrinted = [&rows](int from) {
        while (from <= rows.last() && !rows.printed(from))
            ++from;
        return from;
    };
    // The pages after, from the heights of their rows.
    while (start <= rows.last()) {
        planned << firstPrinted(start);
        qint64 used = height(start);
        int next = -1;
        for (int r = start + 1; r <= rows.last() && next < 0; ++r) {
            if (moved->contains(r)) {
                next = r;
                break;
            }
            const qint64 with = used + height(r);
            if (with <= low) {
                used = with;
                continue;
            }
            if (with < high) {
                // Between what pages were seen to hold: the engine shows where this page ends.
                const int first = p.firstRowOf(page + 1, r);
                if (first == -2)
                    return false;
                if (first < r || (first > r && !rows.printed(first - 1)) || !learn(start, first))
                    return true;
                next = first;
                break;
            }
            next = r;
        }
        if (next < 0)
            break; // the last page
        for (int row; (row = rows.breakFor(start, next)) >= 0; next = row)
            if (!put(row))
                return false;
        ++page;
        start = next;
    }
    *complete = true;
    if (firsts)
        *firsts = planned;
    return true;
}

} // namespace PageFlow
