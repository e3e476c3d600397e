#include "LiveSearch.h"

#include <algorithm>

void LiveSearch::load(const std::vector<RateRow> &rows) {
    std::vector<QString> names;
    names.reserve(rows.size());
    for (const RateRow &r : rows)
        names.push_back(r[PriceCol::Name]);
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
}

void LiveSearch::clear() {
    m_names.clear();
    m_lowered.clear();
    m_starts.clear();
}

void LiveSearch::find(const QString &typed, std::vector<int> &out) const {
    out.clear();
    if (typed.isEmpty() || m_names.empty())
        return;
    const QString needle = typed.toLower();
    // A NUL in the typed text could match across two names.
    if (needle.contains(QChar(0)))
        return;
    const QStringView hay(m_lowered);
    qsizetype from = 0;
    while (from < hay.size()) {
        const qsizetype pos = hay.indexOf(needle, from);
        if (pos < 0)
            break;
        const auto it = std::upper_bound(m_starts.begin(), m_starts.end(), static_cast<int>(pos));
        const int k = static_cast<int>(it - m_starts.begin()) - 1;
        out.push_back(k);
        // Continue with the next name: one entry per name.
        if (static_cast<size_t>(k + 1) >= m_starts.size())
            break;
        from = m_starts[static_cast<size_t>(k + 1)];
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
