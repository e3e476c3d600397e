#pragma once
// The crew sheet StringGridBrig kept as a mirror of the estimate: crew row r follows estimate row r + 1
// (number, rate, name, unit, quantity; the customer's price and amount in columns 9 and 10) through
// every change of the estimate grid. Its own arithmetic:
// - k (column 8): in "one coefficient for all rows" mode the global coefficient; in "per row" mode the
//   row's own coefficient, or the global one where the row has none;
// - crew price (column 5) = the crew price the rate brought from price list 1 (`link`), else the
//   customer's price × k (exact to six decimals, not rounded to kopecks); crew amount (column 6) =
//   quantity × crew price (a lump sum row: its amount × k), rounded once to kopecks;
// - "ip"/"ir" rows carry the crew sums of their subsection/section, a closing "Итого" row the crew
//   total; the margin is what the customer pays for the works (sum of column 10) minus the crew total;
// - a coefficient that is not a number, or a price or amount that would pass the maximum, leaves the
//   cell empty and marked with the reason, and the row out of the crew's totals.

#include "storage/Money.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

class CrewGrid;
class EstimateGrid;
class QModelIndex;
class QSqlDatabase;

class CrewSheet : public QObject {
    Q_OBJECT
public:
    // A rate of an estimate row: idRas, NamePrice.
    using Rate = QPair<QString, QString>;
    // The crew prices the rates brought, asked for many rates at once (a document's worth when it is
    // read): one answer per rate, in order, nullopt for a rate that brought none.
    using PriceLookup = std::function<std::vector<std::optional<Decimal>>(const QList<Rate> &rates)>;
    // Reads `link` of price list 1 (rates whose NamePrice is "resurs1") through the given connection,
    // a few hundred rates per statement; the first row of a record number answers for it.
    static PriceLookup priceListLookup(std::function<QSqlDatabase()> priceDb);
    // The record number a rate is looked up by in price list 1, trimmed; empty for a rate of another
    // list (only price list 1 carries crew prices) or without one.
    static QString listOneRec(const Rate &rate);

    CrewSheet(EstimateGrid *grid, CrewGrid *crew, QObject *parent = nullptr);

    void setPriceLookup(PriceLookup lookup);
    // The rates' crew prices may have changed (price list edited, crew switch pressed): the answers
    // of the lookup, remembered per rate, are asked again.
    void forgetPrices();

    QString globalKoef() const { return m_global; }
    void setGlobalKoef(const QString &text);
    bool perRow() const { return m_perRow; }
    void setPerRow(bool perRow);
    // The coefficient typed for the row of the estimate grid (empty: none of its own).
    QString rowKoef(int estimateGridRow) const;
    void setRowKoef(int estimateGridRow, const QString &text);
    // The coefficient in force for the row, as a number; nullopt when it is not a number.
    std::optional<Decimal> effectiveKoef(int estimateGridRow) const;

    void hold() { ++m_hold; }
    void release();
    void flush();
    // Mirrors every row again (the crew grid was replaced).
    void rebuild();

    // The sums; refused past the maximum.
    MoneyResult crewTotal();
    MoneyResult customerTotal();
    MoneyResult margin();

signals:
    void totalsChanged();
    // The user typed a coefficient into a row (the mode may have switched to "per row").
    void rowKoefEdited(int estimateGridRow);
    void perRowChanged(bool perRow);
    // The global coefficient or the mode changed.
    void settingsChanged();

private:
    struct RowState {
        bool dirty = true;
        bool counted = false;
        bool work = false;
        int kind = 0; // RowKind
        Money crew;
        Money customer;
    };
    void onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles);
    // The crew rows follow the estimate's structure as it is announced, so that cells written by
    // other listeners right after a change land in the right crew rows.
    void onRowsAboutToBeInserted(const QModelIndex &parent, int first, int last);
    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsAboutToBeRemoved(const QModelIndex &parent, int first, int last);
    void onRowsRemoved();
    void onRowsAboutToBeMoved(const QModelIndex &parent, int start, int end, const QModelIndex &dest,
                              int row);
    void onGridReset();
    void onCrewReset();
    void onCrewEdited(int gridRow, int col, const QString &oldText, const QString &newText);
    void changed();
    void mirror(int modelRow, int firstCol, int lastCol);
    void evaluate(int modelRow);
    void pass();
    // A totals row's crew sum, marked when refused.
    void setCrewTotal(int modelRow, const MoneyResult &total);
    void markAll();
    void setCrewCell(int modelRow, int col, const QString &text);
    // The answers of the lookup for the rates of the rows to evaluate that are not known yet, in one
    // call.
    void fetchPrices();
    std::optional<Decimal> ratePrice(const QString &idRas, const QString &namePrice);

    EstimateGrid *m_grid;
    CrewGrid *m_crew;
    PriceLookup m_lookup;
    QHash<QString, std::optional<Decimal>> m_prices; // "NamePrice/idRas" -> the lookup's answer
    std::vector<RowState> m_rows;
    std::vector<QString> m_koef; // the rows' own coefficients, index = estimate model row
    QString m_global = QStringLiteral("1");
    bool m_perRow = false;
    int m_hold = 0;
    bool m_dirty = true;
    bool m_writing = false;
    MoneyResult m_crewTotal = Money();
    MoneyResult m_customerTotal = Money();
};
