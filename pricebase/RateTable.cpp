#include "RateTable.h"

#include <QHashFunctions>
#include <algorithm>
#include <cstring>

RateTable::RateTable(const std::vector<RateRow> &rows) {
    m_rows.reserve(rows.size());
    for (const RateRow &r : rows)
        append(r);
}

void RateTable::clear() {
    m_text.clear();
    m_edits.clear();
    m_rows.clear();
    m_checked.clear();
}

void RateTable::reserveText(size_t rows) {
    constexpr qsizetype kRowBytes = 256; // a rate's cells take about half of that
    m_text.reserve(static_cast<qsizetype>(std::min<size_t>(rows, kMaxText / kRowBytes)) * kRowBytes);
}

void RateTable::squeeze() {
    m_text.squeeze();
    m_edits.squeeze();
    m_rows.shrink_to_fit();
}

bool RateTable::pack(QByteArray &text, const std::array<QByteArrayView, PriceCol::TextCount> &cells, Row &row,
                     quint32 flag) {
    qsizetype bytes = 0;
    for (const QByteArrayView &cell : cells)
        bytes += cell.size();
    const qsizetype start = text.size();
    if (start + bytes > kMaxText)
        return false;
    // One growth of the text per row (within the room reserved for a list read), then the cells copied.
    text.resize(start + bytes);
    char *out = text.data() + start;
    row.begin = static_cast<quint32>(start) | flag;
    quint32 end = static_cast<quint32>(start);
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        const QByteArrayView cell = cells[static_cast<size_t>(c)];
        if (!cell.isEmpty())
            std::memcpy(out, cell.data(), static_cast<size_t>(cell.size()));
        out += cell.size();
        end += static_cast<quint32>(cell.size());
        row.ends[static_cast<size_t>(c)] = end;
    }
    return true;
}

std::array<QByteArrayView, PriceCol::TextCount> RateTable::viewsOf(const RateRow &row) {
    std::array<QByteArrayView, PriceCol::TextCount> cells;
    for (int c = 0; c < PriceCol::TextCount; ++c)
        cells[static_cast<size_t>(c)] = row.utf8(c);
    return cells;
}

bool RateTable::append(const std::array<QByteArrayView, PriceCol::TextCount> &cells) {
    Row row;
    if (!pack(m_text, cells, row, 0))
        return false;
    m_rows.push_back(row);
    m_checked.push_back(false);
    return true;
}

bool RateTable::append(const RateRow &row) {
    Row r;
    // Rows added one by one after the read go with the edits, so that the text read stays shared.
    if (!pack(m_edits, viewsOf(row), r, kEdited))
        return false;
    m_rows.push_back(r);
    m_checked.push_back(row.checked);
    return true;
}

void RateTable::insert(size_t pos, const RateRow &row) {
    Row r;
    if (!pack(m_edits, viewsOf(row), r, kEdited))
        return;
    pos = std::min(pos, m_rows.size());
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(pos), r);
    m_checked.insert(m_checked.begin() + static_cast<std::ptrdiff_t>(pos), row.checked);
}

void RateTable::remove(const std::vector<char> &drop) {
    size_t out = 0;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (i < drop.size() && drop[i])
            continue;
        m_rows[out] = m_rows[i];
        m_checked[out] = m_checked[i];
        ++out;
    }
    m_rows.resize(out);
    m_checked.resize(out);
}

void RateTable::move(size_t from, size_t to) {
    if (from >= m_rows.size() || to >= m_rows.size() || from == to)
        return;
    const Row row = m_rows[from];
    const bool checked = m_checked[from];
    m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(from));
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(to), row);
    m_checked.erase(m_checked.begin() + static_cast<std::ptrdiff_t>(from));
    m_checked.insert(m_checked.begin() + static_cast<std::ptrdiff_t>(to), checked);
}

std::pair<quint32, quint32> RateTable::bounds(const Row &row, int col) const {
    const quint32 first = row.begin & ~kEdited;
    const quint32 from = col == 0 ? first : row.ends[static_cast<size_t>(col - 1)];
    const quint32 to = row.ends[static_cast<size_t>(col)];
    return {from, to};
}

RateTable::Span RateTable::span(size_t i, int col) const {
    const Row &row = m_rows[i];
    const auto [from, to] = bounds(row, col);
    return {(row.begin & kEdited) != 0, from, to};
}

QByteArrayView RateTable::utf8(size_t i, int col) const {
    if (i >= m_rows.size() || col < 0 || col >= PriceCol::TextCount)
        return {};
    const Row &row = m_rows[i];
    const auto [from, to] = bounds(row, col);
    return QByteArrayView(base(row) + from, to - from);
}

QString RateTable::cell(size_t i, int col) const {
    const QByteArrayView v = utf8(i, col);
    return v.isEmpty() ? QString() : QString::fromUtf8(v);
}

RateRow RateTable::operator[](size_t i) const {
    std::array<QByteArrayView, PriceCol::TextCount> cells;
    for (int c = 0; c < PriceCol::TextCount; ++c)
        cells[static_cast<size_t>(c)] = utf8(i, c);
    RateRow row = RateRow::fromUtf8(cells);
    row.checked = m_checked[i];
    return row;
}

void RateTable::set(size_t i, int col, const QString &text) {
    if (i >= m_rows.size() || col < 0 || col >= PriceCol::TextCount)
        return;
    const QByteArray value = text.toUtf8();
    std::array<QByteArrayView, PriceCol::TextCount> cells;
    for (int c = 0; c < PriceCol::TextCount; ++c)
        cells[static_cast<size_t>(c)] = c == col ? QByteArrayView(value) : utf8(i, c);
    // The views may point into m_edits, which the packing below grows: the row is copied out first.
    const RateRow copy = RateRow::fromUtf8(cells);
    Row r;
    if (pack(m_edits, viewsOf(copy), r, kEdited))
        m_rows[i] = r;
}

bool RateTable::isBlank(size_t i) const {
    for (int c = 0; c < PriceCol::TextCount; ++c) {
        const QByteArrayView cell = utf8(i, c);
        for (const char ch : cell) {
            if (static_cast<uchar>(ch) >= 0x80) {
                // Spaces beyond ASCII are told by the text itself.
                if (!QString::fromUtf8(cell).trimmed().isEmpty())
                    return false;
                break;
            }
            if (!QChar::isSpace(static_cast<uchar>(ch)))
                return false;
        }
    }
    return true;
}

RecIndex::RecIndex(const RateTable &rows) {
    if (rows.empty() || rows.size() >= kFree)
        return;
    // At most two thirds full: a miss ends after a few slots.
    size_t size = 16;
    while (size < rows.size() + rows.size() / 2)
        size *= 2;
    m_slots.assign(size, kFree);
    const size_t mask = size - 1;
    for (size_t i = 0; i < rows.size(); ++i) {
        const QByteArrayView rec = rows.utf8(i, PriceCol::Rec);
        for (size_t s = qHash(rec) & mask;; s = (s + 1) & mask) {
            if (m_slots[s] == kFree) {
                m_slots[s] = static_cast<quint32>(i);
                break;
            }
            if (rows.utf8(m_slots[s], PriceCol::Rec) == rec)
                break; // an earlier row of that number answers for it
        }
    }
}

int RecIndex::find(const RateTable &rows, QByteArrayView rec) const {
    if (m_slots.empty())
        return -1;
    const size_t mask = m_slots.size() - 1;
    for (size_t s = qHash(rec) & mask; m_slots[s] != kFree; s = (s + 1) & mask) {
        const quint32 row = m_slots[s];
        if (row < rows.size() && rows.utf8(row, PriceCol::Rec) == rec)
            return static_cast<int>(row);
    }
    return -1;
}

void renumberRates(RateTable &rows) {
    int s = 0, p = 0, n = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        if (rows.cell(i, PriceCol::Name).trimmed().isEmpty())
            continue;
        const QString unit = rows.cell(i, PriceCol::Unit).trimmed();
        const QString price = rows.cell(i, PriceCol::Price).trimmed();
        QString number;
        if (unit.isEmpty() && price.isEmpty()) {
            ++s;
            p = 0;
            n = 0;
            number = QString::number(s);
        } else if (isSubsectionUnit(unit) && price.isEmpty()) {
            ++p;
            n = 0;
            number = QStringLiteral("%1-%2").arg(s).arg(p);
        } else {
            ++n;
            number = p != 0 ? QStringLiteral("%1-%2-%3").arg(s).arg(p).arg(n)
                            : QStringLiteral("%1-%2").arg(s).arg(n);
        }
        // A number that stays is not written again.
        if (rows.utf8(i, PriceCol::Ras) != QByteArrayView(number.toUtf8()))
            rows.set(i, PriceCol::Ras, number);
    }
}
