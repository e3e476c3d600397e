#pragma once
// Live search over the whole current price list (what FDQueryFindPrice holds): a plain,
// case-insensitive substring match on the rate names, in list order. The names are lower-cased once
// when the list is read and kept joined in one byte string, one byte per letter (Latin and Cyrillic
// letters, digits and signs have a byte of their own; any other letter shares one byte and a match
// through it is checked against the name itself), so a keystroke is one scan of half the memory the
// names take.

#include "PriceRows.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QString>
#include <vector>

class LiveSearch {
public:
    // Takes the names of every row of the list (section and subsection titles included).
    void load(const std::vector<RateRow> &rows);
    void loadNames(const std::vector<QString> &names);
    void clear();

    int size() const { return static_cast<int>(m_names.size()); }
    const QString &name(int i) const { return m_names[static_cast<size_t>(i)]; }

    // Indices of the names that hold `typed` (lower-cased, not trimmed), in list order.
    void find(const QString &typed, std::vector<int> &out) const;
    std::vector<int> find(const QString &typed) const;

private:
    bool matches(int i, const QString &needle) const;

    std::vector<QString> m_names;     // shares the text of the grid rows
    QByteArray m_folded;              // the names lower-cased, a byte per UTF-16 unit, each ended by NUL
    std::vector<int> m_starts;        // start of each name in m_folded
    std::vector<quint32> m_frequency; // how often each byte occurs in m_folded
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
