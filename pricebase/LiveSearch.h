#pragma once
// Live search over the whole current price list (what FDQueryFindPrice holds): a plain,
// case-insensitive substring match on the rate names, in list order. The names are lower-cased once
// when the list is read and kept joined in one text, so a keystroke is one scan of memory.

#include "PriceRows.h"

#include <QAbstractListModel>
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
    std::vector<QString> m_names;     // shares the text of the grid rows
    QString m_lowered;                // lower-cased names, each followed by a NUL
    std::vector<int> m_starts;        // start of each name in m_lowered
    std::vector<quint32> m_frequency; // how often each UTF-16 unit occurs in m_lowered
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
