#include "EstimateStructure.h"

#include <QRegularExpression>

namespace EstimateStructure {

bool isGrandTotalName(const QString &name) {
    return name.startsWith(QStringLiteral("Итого"));
}

int closingRow(const EstimateGrid &grid) {
    const int last = grid.gridRowCount() - 1;
    return grid.isDataRow(last) && grid.kind(last) == RowKind::Work &&
                   isGrandTotalName(grid.cell(last, EstimateCol::Name))
               ? last
               : -1;
}

QString sectionTitle(const QString &name) {
    static const QRegularExpression prefix(QStringLiteral("^\\s*(раздел\\s+)?\\d+\\s*\\.?\\s*"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression word(QStringLiteral("^\\s*раздел\\s+"),
                                         QRegularExpression::CaseInsensitiveOption);
    QString s = name;
    const auto m = prefix.match(s);
    if (m.hasMatch() && m.capturedLength(1) > 0)
        s.remove(0, m.capturedLength());
    else
        s.remove(word); // "Раздел Кухня" without a number
    return s.trimmed();
}

QString subsectionTitle(const QString &name) {
    static const QRegularExpression prefix(QStringLiteral("^\\s*§\\s*(\\d+(\\.\\d+)*\\.?\\s*)?"));
    QString s = name;
    s.remove(prefix);
    return s.trimmed();
}

QString sectionName(int n, const QString &title) {
    return RowText::sectionPrefix + QString::number(n) + QStringLiteral(". ") + title;
}

QString sectionTotalName(int n) {
    return RowText::sectionTotalPrefix + QString::number(n);
}

QString subsectionName(int n, int m, const QString &title) {
    return RowText::subsectionPrefix + QStringLiteral("%1.%2. ").arg(n).arg(m) + title;
}

QString subsectionTotalName(int n, int m) {
    return RowText::subsectionTotalPrefix + QStringLiteral("%1.%2").arg(n).arg(m);
}

std::vector<RowKind> kinds(const EstimateGrid &grid) {
    std::vector<RowKind> out;
    out.reserve(static_cast<size_t>(grid.rowCount()));
    for (int r = EstimateGrid::kFixedRows; r < grid.gridRowCount(); ++r)
        out.push_back(grid.kind(r));
    return out;
}

bool isWellFormed(const std::vector<RowKind> &kinds) {
    enum { Outside, InSection, InSubsection } state = Outside;
    for (RowKind k : kinds) {
        switch (k) {
        case RowKind::Work:
            break;
        case RowKind::SectionStart:
            if (state != Outside)
                return false;
            state = InSection;
            break;
        case RowKind::SubsectionStart:
            if (state != InSection)
                return false;
            state = InSubsection;
            break;
        case RowKind::SubsectionTotal:
            if (state != InSubsection)
                return false;
            state = InSection;
            break;
        case RowKind::SectionTotal:
            if (state != InSection)
                return false;
            state = Outside;
            break;
        }
    }
    return state == Outside;
}

namespace {

// The block opened by `open` and closed by `close` around index i; `outerOpen`/`outerClose` end the
// search (a subsection never reaches past its section).
Block around(const std::vector<RowKind> &kinds, int i, RowKind open, RowKind close, RowKind outerOpen,
             RowKind outerClose) {
    const int n = static_cast<int>(kinds.size());
    if (i < 0 || i >= n)
        return {};
    int first = -1;
    if (kinds[i] == open) {
        first = i;
    } else {
        for (int j = i - 1; j >= 0; --j) {
            if (kinds[j] == open) {
                first = j;
                break;
            }
            if (kinds[j] == close || kinds[j] == outerOpen || kinds[j] == outerClose)
                break;
        }
    }
    if (first < 0 || (kinds[i] == outerOpen && outerOpen != open) ||
        (kinds[i] == outerClose && outerClose != close))
        return {};
    int last = -1;
    if (kinds[i] == close) {
        last = i;
    } else {
        for (int j = i + 1; j < n; ++j) {
            if (kinds[j] == close) {
                last = j;
                break;
            }
            if (kinds[j] == open || kinds[j] == outerOpen || kinds[j] == outerClose)
                break;
        }
    }
    if (last < 0)
        return {};
    return {first, last};
}

} // namespace

Block sectionAround(const std::vector<RowKind> &kinds, int i) {
    // Sections have no outer block: the outer markers are the section's own.
    return around(kinds, i, RowKind::SectionStart, RowKind::SectionTotal, RowKind::SectionStart,
                  RowKind::SectionTotal);
}

Block subsectionAround(const std::vector<RowKind> &kinds, int i) {
    return around(kinds, i, RowKind::SubsectionStart, RowKind::SubsectionTotal, RowKind::SectionStart,
                  RowKind::SectionTotal);
}

} // namespace EstimateStructure
