#include "LiveSearch.h"

#include <algorithm>

void LiveSearch::load(const std::vector<RateRow> &rows) {
    std::vector<QString> names;
    names.reserve(rows.size());
    for (const RateRow &r : rows)
        names.push_back(r.name());
    loadNames(names);
}

namespace {

// The byte that stands for a lower-cased UTF-16 unit: ASCII as itself, the Cyrillic letters
// (а…я 0x80…0x9F, ѐ…џ 0xA0…0xAF), anything else kOther. NUL is kept for the ends of names.
constexpr uchar kOther = 0xFF;

uchar foldedByte(char16_t c) {
    if (c < 0x80)
        return c >= 'A' && c <= 'Z' ? uchar(c + ('a' - 'A')) : (c == 0 ? kOther : uchar(c));
    if (c >= 0x400 && c <= 0x45F) {
        if (c >= 0x410 && c <= 0x42F) // А…Я
            c += 0x20;
        else if (c < 0x410) // Ѐ…Џ
            c += 0x50;
        return c < 0x450 ? uchar(0x80 + (c - 0x430)) : uchar(0xA0 + (c - 0x450));
    }
    const char16_t lower = QChar::toLower(c);
    return lower != c ? foldedByte(lower) : kOther;
}

} // namespace

void LiveSearch::loadNames(const std::vector<QString> &names) {
    m_names = names;
    qsizetype total = 0;
    for (const QString &n : m_names)
        total += n.size() + 1;
    m_folded = QByteArray(total, Qt::Uninitialized);
    m_starts.clear();
    m_starts.reserve(m_names.size());
    m_frequency.assign(256, 0);
    char *out = m_folded.data();
    for (const QString &n : m_names) {
        m_starts.push_back(static_cast<int>(out - m_folded.constData()));
        for (QChar c : n) {
            const uchar b = foldedByte(c.unicode());
            ++m_frequency[b];
            *out++ = char(b);
        }
        *out++ = 0;
    }
}

void LiveSearch::clear() {
    m_names.clear();
    m_folded.clear();
    m_starts.clear();
    m_frequency.clear();
}

bool LiveSearch::matches(int i, const QString &needle) const {
    return m_names[static_cast<size_t>(i)].toLower().contains(needle);
}

void LiveSearch::find(const QString &typed, std::vector<int> &out) const {
    out.clear();
    if (typed.isEmpty() || m_names.empty())
        return;
    const QString needle = typed.toLower();
    // A NUL in the typed text could match across two names.
    if (needle.contains(QChar(0)))
        return;
    QByteArray folded(needle.size(), Qt::Uninitialized);
    bool other = false; // a letter without a byte of its own: each match is checked on the name
    for (qsizetype i = 0; i < needle.size(); ++i) {
        folded[i] = char(foldedByte(needle.at(i).unicode()));
        other = other || uchar(folded.at(i)) == kOther;
    }
    // Scan (vectorised) for the needle's rarest byte, then compare the rest in place: few false
    // starts, and no table to build per keystroke.
    qsizetype anchor = 0;
    for (qsizetype i = 1; i < folded.size(); ++i)
        if (m_frequency[uchar(folded.at(i))] < m_frequency[uchar(folded.at(anchor))])
            anchor = i;
    const char anchorByte = folded.at(anchor);
    const QByteArrayView hay(m_folded);
    const QByteArrayView whole(folded);
    const qsizetype size = hay.size();
    const size_t count = m_starts.size();
    size_t k = 0; // the name that holds the last match; matches only move forward
    qsizetype from = anchor;
    while (from < size) {
        const qsizetype pos = hay.indexOf(anchorByte, from);
        if (pos < 0)
            break;
        const qsizetype begin = pos - anchor;
        if (begin < 0 || begin + whole.size() > size || hay.sliced(begin, whole.size()) != whole) {
            from = pos + 1;
            continue;
        }
        while (k + 1 < count && m_starts[k + 1] <= begin)
            ++k;
        if (other && !matches(static_cast<int>(k), needle)) {
            if (k + 1 >= count)
                break;
            from = m_starts[k + 1] + anchor;
            continue;
        }
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
