#include "RowDiff.h"

#include "EstimateGrid.h"
#include "EstimateStructure.h"
#include "storage/TextValues.h"

namespace RowDiff {

QStringList Row::wide() const {
    QStringList out = cells;
    while (out.size() < EstimateCol::Count)
        out << QString();
    out << koef;
    return out;
}

QList<QPair<QString, QString>> ratesOf(const QList<Change> &changes) {
    QList<QPair<QString, QString>> rates;
    auto add = [&rates](const QStringList &cells) {
        const QPair<QString, QString> rate{cells.value(EstimateCol::IdRas),
                                           cells.value(EstimateCol::NamePrice)};
        if (!rate.first.trimmed().isEmpty() && !rates.contains(rate))
            rates << rate;
    };
    for (const Change &c : changes) {
        add(c.before);
        add(c.after);
    }
    return rates;
}

bool equivalent(const Row &a, const Row &b) {
    if (a.koef != b.koef)
        return false;
    if (a.cells.constData() == b.cells.constData() && a.cells.size() == b.cells.size())
        return true; // shared with the grid, unchanged
    return equivalent(a.cells, b.cells);
}

bool equivalent(const QStringList &a, const QStringList &b) {
    using namespace EstimateCol;
    static const QString none;
    auto at = [](const QStringList &l, int c) -> const QString & { return c < l.size() ? l.at(c) : none; };
    const RowKind ka = rowKindFromMarker(at(a, Kind)), kb = rowKindFromMarker(at(b, Kind));
    if (ka != kb)
        return false;
    const bool totalsRow = ka == RowKind::SectionTotal || ka == RowKind::SubsectionTotal;
    for (int c = 0; c < kRowWidth; ++c) {
        if (c == Num || c == Itogo)
            continue;
        const QString &x = at(a, c), &y = at(b, c);
        if (x == y)
            continue;
        // Computed text: the amount where a quantity or price stands, totals rows' texts and sums,
        // the numbers inside section texts.
        if (c == Sum) {
            const bool grand = ka == RowKind::Work && EstimateStructure::isGrandTotalName(at(a, Name));
            auto typed = [&](const QStringList &l) {
                return TextValues::isBlank(at(l, Qty)) && TextValues::isBlank(at(l, Price));
            };
            if (totalsRow || grand || !typed(a) || !typed(b))
                continue;
        }
        if (c == Name && totalsRow)
            continue;
        if (c == Name && ka == RowKind::SectionStart &&
            EstimateStructure::sectionTitle(x) == EstimateStructure::sectionTitle(y))
            continue;
        if (c == Name && ka == RowKind::SubsectionStart &&
            EstimateStructure::subsectionTitle(x) == EstimateStructure::subsectionTitle(y))
            continue;
        return false;
    }
    return true;
}

namespace {

enum class Move { Equal, Insert, Delete };

// Myers' shortest edit script between a[a0, a0 + n) and b[b0, b0 + m); false when it needs more than
// maxD insertions and deletions.
bool shortestScript(const std::vector<Row> &a, int a0, int n, const std::vector<Row> &b, int b0, int m,
                    int maxD, std::vector<Move> &script) {
    // rounds[d][k + d]: furthest x on diagonal k after d edits; -1 for diagonals outside the grid.
    std::vector<std::vector<int>> rounds;
    auto goesDown = [&](int d, int k) {
        const std::vector<int> &p = rounds[static_cast<size_t>(d - 1)];
        auto at = [&](int kk) { return p[static_cast<size_t>(kk + d - 1)]; };
        return k == -d || (k != d && at(k - 1) < at(k + 1));
    };
    auto prevX = [&](int d, int k) {
        return rounds[static_cast<size_t>(d - 1)][static_cast<size_t>(k + d - 1)];
    };
    for (int d = 0; d <= maxD; ++d) {
        std::vector<int> cur(static_cast<size_t>(2 * d + 1), -1);
        for (int k = -d; k <= d; k += 2) {
            if (k < -m || k > n)
                continue;
            int x = 0;
            if (d > 0)
                x = goesDown(d, k) ? prevX(d, k + 1) : prevX(d, k - 1) + 1;
            int y = x - k;
            while (x < n && y < m &&
                   equivalent(a[static_cast<size_t>(a0 + x)], b[static_cast<size_t>(b0 + y)])) {
                ++x;
                ++y;
            }
            cur[static_cast<size_t>(k + d)] = x;
            if (x < n || y < m)
                continue;
            rounds.push_back(std::move(cur));
            // Walk back from the end to the start.
            std::vector<Move> rev;
            int cx = n, cy = m;
            for (int dd = d; dd > 0; --dd) {
                const int kk = cx - cy;
                const bool down = goesDown(dd, kk);
                const int pk = down ? kk + 1 : kk - 1;
                const int px = prevX(dd, pk), py = px - pk;
                const int mid = down ? px : px + 1;
                for (; cx > mid; --cx, --cy)
                    rev.push_back(Move::Equal);
                rev.push_back(down ? Move::Insert : Move::Delete);
                cx = px;
                cy = py;
            }
            for (; cx > 0; --cx, --cy)
                rev.push_back(Move::Equal);
            script.assign(rev.rbegin(), rev.rend());
            return true;
        }
        rounds.push_back(std::move(cur));
    }
    return false;
}

} // namespace

std::vector<Op> diff(const std::vector<Row> &before, const std::vector<Row> &after, int firstGridRow) {
    const int na = static_cast<int>(before.size()), nb = static_cast<int>(after.size());
    int prefix = 0;
    while (prefix < na && prefix < nb &&
           equivalent(before[static_cast<size_t>(prefix)], after[static_cast<size_t>(prefix)]))
        ++prefix;
    int suffix = 0;
    while (
        suffix < na - prefix && suffix < nb - prefix &&
        equivalent(before[static_cast<size_t>(na - 1 - suffix)], after[static_cast<size_t>(nb - 1 - suffix)]))
        ++suffix;
    const int n = na - prefix - suffix, m = nb - prefix - suffix;
    std::vector<Op> ops;
    if (n == 0 && m == 0)
        return ops;

    std::vector<Move> script;
    if (!shortestScript(before, prefix, n, after, prefix, m, 1500, script)) {
        // Too different to be worth the search: replace the middle whole.
        script.assign(static_cast<size_t>(n), Move::Delete);
        script.insert(script.end(), static_cast<size_t>(m), Move::Insert);
    }

    // Hunks of deletions and insertions between equal rows; a deleted and an inserted row at the same
    // place become one edit.
    int x = prefix, y = prefix;
    size_t i = 0;
    while (i < script.size()) {
        if (script[i] == Move::Equal) {
            ++x;
            ++y;
            ++i;
            continue;
        }
        int dels = 0, ins = 0;
        while (i < script.size() && script[i] != Move::Equal) {
            (script[i] == Move::Delete ? dels : ins) += 1;
            ++i;
        }
        const int pos = firstGridRow + y;
        const int pairs = std::min(dels, ins);
        for (int j = 0; j < pairs; ++j)
            ops.push_back({Op::Edit, pos + j, before[static_cast<size_t>(x + j)].wide(),
                           after[static_cast<size_t>(y + j)].wide()});
        for (int j = pairs; j < dels; ++j)
            ops.push_back({Op::Delete, pos + pairs, before[static_cast<size_t>(x + j)].wide(), {}});
        for (int j = pairs; j < ins; ++j)
            ops.push_back({Op::Insert, pos + j, {}, after[static_cast<size_t>(y + j)].wide()});
        x += dels;
        y += ins;
    }
    return ops;
}

} // namespace RowDiff
