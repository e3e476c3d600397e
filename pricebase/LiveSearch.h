#pragma once
// Live search over the whole current price list (what FDQueryFindPrice holds): a plain,
// case-insensitive substring match on the rate names, in list order. The names are lower-cased once
// (before the first search, or on the thread that read the list) and kept joined in one byte string, one byte
// per letter (Latin and Cyrillic letters, digits and signs have a byte of their own; any other letter shares
// one byte and a match through it is checked against the name itself), so a keystroke is one scan of half the
// memory the names take.

#include "RateTable.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QString>
#include <vector>

class LiveSearch {
public:
    // Takes the names of every row of the list (section and subsection titles included). They are
    // lower-cased for searching by prepare(), or by the first search.
    void load(const RateTable &rows);
    void loadNames(const std::vector<QString> &names);
    void prepare() const;
    void clear();

    int size() const { return static_cast<int>(m_names.size()); }
    QString name(int i) const;

    // Indices of the names that hold `typed` (lower-cased, not trimmed), in list order.
    void find(const QString &typed, std::vector<int> &out) const;
    std::vector<int> find(const QString &typed) const;

private:
    bool matches(int i, const QString &needle) const;

    // A name as the list had it when it was read: where it lies in the list's texts (shared with the
    // list, not copied; a row taken from another list is kept in a text of its own).
    struct Name {
        quint32 from = 0;
        quint32 to = 0; // the top bit: the name lies in the list's text of edits
    };
    QByteArrayView utf8(const Name &n) const;
    static constexpr quint32 kEdited = 0x80000000u;
    QByteArray m_text, m_edits;
    std::vector<Name> m_names;
    // Made by prepare():
    mutable bool m_prepared = false;
    mutable QByteArray m_folded;              // the names lower-cased, a byte per letter, NUL after each
    mutable std::vector<int> m_starts;        // start of each name in m_folded
    mutable std::vector<quint32> m_frequency; // how often each byte occurs in m_folded
};

// MemoPrice's list: the names found by the last keystroke.
class LiveSearchModel : public QAbstractListModel {
    Q_OBJECT
public:
    explicit LiveSearchModel(const LiveSearch &search, QObject *parent = nullptr);

    // Runs the search and shows its result; returns the number of names found.
    int search(const QString &typed);
    void clear();
    QString nameAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    const LiveSearch &m_search;
    std::vector<int> m_found;
};
