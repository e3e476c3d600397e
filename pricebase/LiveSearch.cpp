#include "LiveSearch.h"

#include <algorithm>

void LiveSearch::load(const std::vector<RateRow> &rows) {
    std::vector<QString> names;
    names.reserve(rows.size());
    for (const RateRow &r : rows)
        names.push_back(r.name());
    loadNames(names);
}

void LiveSearch::loadNames(const std::vector<QString> &names) {
    m_names = names;
    qsizetype total = 0;
    for (const QString &n : m_names)
        total += n.size() + 1;
    m_lowered.clear();
    m_lowered.reserve(total);
    m_starts.clear();
    m_starts.reserve(m_names.size());
    for (const QString &n : m_names) {
        m_starts.push_back(static_cast<int>(m_lowered.size()));
        // Lower-casing may change the length of a few letters, so each name is lowered on its own.
        m_lowered += n.toLower();
        m_lowered += QChar(0);
    }
    m_lowered.squeeze();
    m_frequency.assign(0x10000, 0);
    for (QChar c : std::as_const(m_lowered))
        ++m_frequency[c.unicode()];
}

void LiveSearch::clear() {
    m_names.clear();
    m_lowered.clear();
    m_starts.clear();
    m_frequency.clear();
}

void LiveSearch::find(const QString &typed, std::vector<int> &out) const {
    out.clear();
    if (typed.isEmpty() || m_names.empty())
        return;
    const QString needle = typed.toLower();
    // A NUL in the typed text could match across two names.
    if (needle.contains(QChar(0)))
        return;
    // Scan (vectorised) for the needle's rarest letter in the lowered names, then compare the rest
    // in place: few false starts, and no table to build per keystroke.
    qsizetype anchor = 0;
    for (qsizetype i = 1; i < needle.size(); ++i)
        if (m_frequency[needle.at(i).unicode()] < m_frequency[needle.at(anchor).unicode()])
            anchor = i;
    const QChar anchorChar = needle.at(anchor);
    const QStringView hay(m_lowered);
    const QStringView whole(needle);
    const qsizetype size = hay.size();
    const size_t count = m_starts.size();
    size_t k = 0; // the name that holds the last match; matches only move forward
    qsizetype from = anchor;
    while (from < size) {
        const qsizetype pos = hay.indexOf(anchorChar, from);
        if (pos < 0)
            break;
        const qsizetype begin = pos - anchor;
        if (begin + whole.size() > size || hay.mid(begin, whole.size()) != whole) {
            from = pos + 1;
            continue;
        }
        while (k + 1 < count && m_starts[k + 1] <= begin)
            ++k;
        out.push_back(static_cast<int>(k));
        // One entry per name: go on with the next one.
        if (k + 1 >= count)
            break;
        from = m_starts[k + 1] + anchor;
    }
}

std::vector<int> LiveSearch::find(const QString &typed) const {
    std::vector<int> out;
    find(typed, out);
    return out;
}

LiveSearchModel::LiveSearchModel(const LiveSearch &search, QObject *parent)
    : QAbstractListModel(parent), m_search(search) {}

int LiveSearchModel::search(const QString &typed) {
    beginResetModel();
    m_search.find(typed, m_found);
    endResetModel();
    return static_cast<int>(m_found.size());
}

void LiveSearchModel::clear() {
    beginResetModel();
    m_found.clear();
    endResetModel();
}

QString LiveSearchModel::nameAt(int row) const {
    if (row < 0 || row >= static_cast<int>(m_found.size()))
        return {};
    const int i = m_found[static_cast<size_t>(row)];
    return i < m_search.size() ? m_search.name(i) : QString();
}

int LiveSearchModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_found.size());
}

QVariant LiveSearchModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return nameAt(index.row());
}
