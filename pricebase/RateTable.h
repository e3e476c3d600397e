#pragma once
// The rows of a whole price list (100,000 of them) kept compact: the cells of every row as UTF-8, as
// SQLite gives them, one after another in one text (one allocation for the list, shared with live
// search), and where each cell ends. A cell becomes a QString only when it is asked for (the rows on
// screen, a row taken into the estimate); a row is handed out as a RateRow, a copy.
//
// The text read is never written to (live search holds it): an edited row is written again into a
// second text of edits, and its old bytes are left unused until the list is read again.

#include "PriceRows.h"

#include <QByteArray>
#include <QByteArrayView>
#include <array>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

class RateTable {
public:
    RateTable() = default;
    // A copy of separate rows (a list made by a program, or read from the server).
    RateTable(const std::vector<RateRow> &rows); // NOLINT: implicit on purpose, a list of rows is one
    RateTable(std::initializer_list<RateRow> rows) : RateTable(std::vector<RateRow>(rows)) {}

    size_t size() const { return m_rows.size(); }
    bool empty() const { return m_rows.empty(); }
    void reserve(size_t rows) { m_rows.reserve(rows); }
    // Room for the text of that many rows read: the pages of a generous guess are not taken until
    // written, and squeeze() gives back the rest, where growing by steps would copy the text.
    void reserveText(size_t rows);
    void clear();
    // Gives back the room kept for growth (a list just read).
    void squeeze();

    // Appends a row; false (and nothing appended) when the list's text would pass what its offsets
    // can hold (2 GB), which no real list comes near.
    bool append(const std::array<QByteArrayView, PriceCol::TextCount> &cells);
    bool append(const RateRow &row);
    void push_back(const RateRow &row) { append(row); }
    void insert(size_t pos, const RateRow &row);
    // Removes the rows whose flag in `drop` (one per row) is set.
    void remove(const std::vector<char> &drop);
    // Moves row `from` so that it ends up at `to`.
    void move(size_t from, size_t to);

    RateRow operator[](size_t i) const;
    RateRow back() const { return (*this)[size() - 1]; }
    QByteArrayView utf8(size_t i, int col) const;
    QString cell(size_t i, int col) const;
    void set(size_t i, int col, const QString &text);
    bool isBlank(size_t i) const;
    bool checked(size_t i) const { return m_checked[i]; }
    void setChecked(size_t i, bool on) { m_checked[i] = on; }

    // Where a cell lies: in the text read (edited false) or the text of edits, from..to.
    struct Span {
        bool edited;
        quint32 from, to;
    };
    Span span(size_t i, int col) const;
    const QByteArray &text(bool edited) const { return edited ? m_edits : m_text; }

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = RateRow;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = RateRow;
        const_iterator(const RateTable *t, size_t i) : m_t(t), m_i(i) {}
        RateRow operator*() const { return (*m_t)[m_i]; }
        const_iterator &operator++() {
            ++m_i;
            return *this;
        }
        bool operator==(const const_iterator &o) const { return m_i == o.m_i; }
        bool operator!=(const const_iterator &o) const { return m_i != o.m_i; }

    private:
        const RateTable *m_t;
        size_t m_i;
    };
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, size()}; }

private:
    static constexpr quint32 kEdited = 0x80000000u; // on Row::begin: the row lies in m_edits
    static constexpr qsizetype kMaxText = 0x7FFFFFFF;
    struct Row {
        quint32 begin = 0;
        std::array<quint32, PriceCol::TextCount> ends{}; // in the same text as begin, without the flag
    };
    static bool pack(QByteArray &text, const std::array<QByteArrayView, PriceCol::TextCount> &cells, Row &row,
                     quint32 flag);
    static std::array<QByteArrayView, PriceCol::TextCount> viewsOf(const RateRow &row);
    std::pair<quint32, quint32> bounds(const Row &row, int col) const;
    const char *base(const Row &row) const {
        return (row.begin & kEdited) ? m_edits.constData() : m_text.constData();
    }

    QByteArray m_text;  // the rows as read
    QByteArray m_edits; // rows written again by edits
    std::vector<Row> m_rows;
    std::vector<bool> m_checked;
};

// The first row of each record number (`rec`, as bytes) of a list, so that a rate is found by its number
// without asking the file: built once by the read of a list. An open-addressed table of row indices
// (4 bytes a slot; the numbers themselves stay in the rows).
class RecIndex {
public:
    RecIndex() = default;
    explicit RecIndex(const RateTable &rows);
    bool isEmpty() const { return m_slots.empty(); }
    // The first row (in list order) whose rec is exactly `rec`, or -1.
    int find(const RateTable &rows, QByteArrayView rec) const;

private:
    static constexpr quint32 kFree = 0xFFFFFFFFu;
    std::vector<quint32> m_slots; // a power of two of them, kFree or an index into the rows
};

// PereschetNomeraRascenok: numbers sections S, subsections S-P and rates S-N or S-P-N in row order;
// rows with an empty name keep their number.
void renumberRates(RateTable &rows);
