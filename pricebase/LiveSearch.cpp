#include "LiveSearch.h"

#include <algorithm>

void LiveSearch::load(const RateTable &rows) {
    m_text = rows.text(false);
    m_edits = rows.text(true);
    m_names.clear();
    m_names.shrink_to_fit();
    m_names.reserve(rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        const RateTable::Span s = rows.span(i, PriceCol::Name);
        m_names.push_back({s.from, s.to | (s.edited ? kEdited : 0)});
    }
    m_prepared = false;
}

QByteArrayView LiveSearch::utf8(const Name &n) const {
    const QByteArray &text = (n.to & kEdited) ? m_edits : m_text;
    const quint32 to = n.to & ~kEdited;
    return QByteArrayView(text.constData() + n.from, to - n.from);
}

QString LiveSearch::name(int i) const {
    return QString::fromUtf8(utf8(m_names[static_cast<size_t>(i)]));
}

namespace {

// The byte that stands for a lower-cased UTF-16 unit: ASCII as itself, the Cyrillic letters
// (а…я 0x80…0x9F, ѐ…џ 0xA0…0xAF), anything else kOther. NUL is kept for the ends of names.
constexpr uchar kOther = 0xFF;

uchar foldedByte(char32_t c) {
    if (c < 0x80)
        return c >= 'A' && c <= 'Z' ? uchar(c + ('a' - 'A')) : (c == 0 ? kOther : uchar(c));
    if (c >= 0x400 && c <= 0x45F) {
        if (c >= 0x410 && c <= 0x42F) // А…Я
            c += 0x20;
        else if (c < 0x410) // Ѐ…Џ
            c += 0x50;
        return c < 0x450 ? uchar(0x80 + (c - 0x430)) : uchar(0xA0 + (c - 0x450));
    }
    const char32_t lower = QChar::toLower(c);
    return lower != c ? foldedByte(lower) : kOther;
}

// Calls f with the byte of each letter of a UTF-8 text; a byte that starts no letter counts as one.
template <typename F> void foldUtf8(QByteArrayView text, F &&f) {
    const auto *p = reinterpret_cast<const uchar *>(text.data());
    const uchar *end = p + text.size();
    while (p < end) {
        const uchar b = *p;
        if (b < 0x80) {
            f(foldedByte(b));
            ++p;
            continue;
        }
        const int length = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 1;
        char32_t c = length == 4 ? b & 0x07 : length == 3 ? b & 0x0F : b & 0x1F;
        bool whole = length > 1 && end - p >= length;
        for (int i = 1; whole && i < length; ++i) {
            whole = (p[i] & 0xC0) == 0x80;
            c = (c << 6) | (p[i] & 0x3F);
        }
        f(whole ? foldedByte(c) : kOther);
        p += whole ? length : 1;
    }
}

} // namespace

void LiveSearch::loadNames(const std::vector<QString> &names) {
    m_names.clear();
    m_edits.clear();
    m_text.clear();
    for (const QString &n : names) {
        const quint32 from = static_cast<quint32>(m_text.size());
        m_text += n.toUtf8();
        m_names.push_back({from, static_cast<quint32>(m_text.size())});
    }
    m_prepared = false;
}

void LiveSearch::prepare() const {
    if (m_prepared)
        return;
    m_prepared = true;
    // A letter takes at least one byte of UTF-8: the folded names fit in as many bytes.
    qsizetype total = 0;
    for (const Name &n : m_names)
        total += utf8(n).size() + 1;
    QByteArray folded(total, Qt::Uninitialized);
    m_starts.clear();
    m_starts.reserve(m_names.size());
    m_frequency.assign(256, 0);
    char *out = folded.data();
    for (const Name &n : m_names) {
        m_starts.push_back(static_cast<int>(out - folded.constData()));
        foldUtf8(utf8(n), [&](uchar b) {
            ++m_frequency[b];
            *out++ = char(b);
        });
        *out++ = 0;
    }
    folded.truncate(out - folded.constData());
    folded.squeeze();
    m_folded = std::move(folded);
}

void LiveSearch::clear() {
    m_prepared = false;
    m_names.clear();
    m_text.clear();
    m_edits.clear();
    m_folded.clear();
    m_starts.clear();
    m_frequency.clear();
}

bool LiveSearch::matches(int i, const QString &needle) const {
    return name(i).toLower().contains(needle);
}

void LiveSearch::find(const QString &typed, std::vector<int> &out) const {
    out.clear();
    if (typed.isEmpty() || m_names.empty())
        return;
    const QString needle = typed.toLower();
    // A NUL in the typed text could match across two names.
    if (needle.contains(QChar(0)))
        return;
    prepare();
    QByteArray folded;
    bool other = false; // a letter without a byte of its own: each match is checked on the name
    foldUtf8(needle.toUtf8(), [&](uchar b) {
        folded += char(b);
        other = other || b == kOther;
    });
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
