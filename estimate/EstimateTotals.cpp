#include "EstimateTotals.h"

#include "EstimateStructure.h"
#include "RowAmount.h"

using namespace EstimateCol;

EstimateTotals::EstimateTotals(EstimateGrid *grid, QObject *parent) : QObject(parent), m_grid(grid) {
    connect(grid, &QAbstractItemModel::dataChanged, this, &EstimateTotals::onDataChanged);
    connect(grid, &QAbstractItemModel::rowsInserted, this, &EstimateTotals::onRowsInserted);
    connect(grid, &QAbstractItemModel::rowsRemoved, this, &EstimateTotals::onRowsRemoved);
    connect(grid, &QAbstractItemModel::rowsMoved, this, &EstimateTotals::onRowsMoved);
    connect(grid, &QAbstractItemModel::modelReset, this, &EstimateTotals::onReset);
    rebuild();
}

void EstimateTotals::release() {
    if (m_hold > 0 && --m_hold == 0)
        flush();
}

void EstimateTotals::rebuild() {
    m_rows.assign(static_cast<size_t>(m_grid->rowCount()), RowState{});
    m_dirtyCount = static_cast<int>(m_rows.size());
    m_needPass = true;
    changed();
}

MoneyResult EstimateTotals::works() {
    flush();
    return m_works;
}

bool EstimateTotals::isGrandTotalRow(int gridRow) const {
    return m_grid->isDataRow(gridRow) && m_grid->kind(gridRow) == RowKind::Work &&
           EstimateStructure::isGrandTotalName(m_grid->cell(gridRow, Name));
}

void EstimateTotals::changed() {
    if (m_hold == 0)
        flush();
}

void EstimateTotals::onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                   const QList<int> &roles) {
    if (m_writing || !topLeft.isValid())
        return;
    // Colours and problem marks change no value.
    if (!roles.isEmpty() && !roles.contains(Qt::DisplayRole) && !roles.contains(Qt::EditRole))
        return;
    const int c0 = topLeft.column(), c1 = bottomRight.column();
    auto covers = [&](int col) { return col >= c0 && col <= c1; };
    if (!covers(Num) && !covers(Name) && !covers(Qty) && !covers(Price) && !covers(Sum) && !covers(Kind) &&
        !covers(Itogo))
        return;
    const int last = std::min(bottomRight.row(), static_cast<int>(m_rows.size()) - 1);
    for (int m = topLeft.row(); m <= last; ++m) {
        RowState &st = m_rows[static_cast<size_t>(m)];
        if (!st.dirty) {
            st.dirty = true;
            ++m_dirtyCount;
        }
        // Someone else wrote a computed cell: write it again.
        if (covers(Num))
            st.shownNumber = -1;
        if (covers(Sum) || covers(Itogo))
            st.shownTotal = kUnknownTotal;
        if (covers(Name) || covers(Kind))
            st.nameDirty = true;
    }
    m_needPass = true;
    changed();
}

void EstimateTotals::onRowsInserted(const QModelIndex &, int first, int last) {
    m_rows.insert(m_rows.begin() + first, static_cast<size_t>(last - first + 1), RowState{});
    m_dirtyCount += last - first + 1;
    m_needPass = true;
    changed();
}

void EstimateTotals::onRowsRemoved(const QModelIndex &, int first, int last) {
    for (int m = first; m <= last; ++m)
        if (m_rows[static_cast<size_t>(m)].dirty)
            --m_dirtyCount;
    m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
    m_needPass = true;
    changed();
}

void EstimateTotals::onRowsMoved(const QModelIndex &, int start, int end, const QModelIndex &, int row) {
    // Qt's destination row is the row before which the block lands, counted before the move.
    auto b = m_rows.begin();
    if (row > end)
        std::rotate(b + start, b + end + 1, b + row);
    else
        std::rotate(b + row, b + start, b + end + 1);
    m_needPass = true;
    changed();
}

void EstimateTotals::onReset() {
    rebuild();
}

void EstimateTotals::flush() {
    if (m_dirtyCount > 0) {
        for (int m = 0; m < static_cast<int>(m_rows.size()) && m_dirtyCount > 0; ++m)
            if (m_rows[static_cast<size_t>(m)].dirty) {
                --m_dirtyCount;
                evaluate(m);
            }
        m_dirtyCount = 0;
    }
    if (m_needPass) {
        m_needPass = false;
        pass();
    }
}

void EstimateTotals::write(int gridRow, int col, const QString &text) {
    if (m_grid->cell(gridRow, col) == text)
        return;
    m_writing = true;
    m_grid->setCell(gridRow, col, text);
    m_writing = false;
}

void EstimateTotals::mark(int gridRow, int col, const QString &problem) {
    m_writing = true;
    m_grid->setCellProblem(gridRow, col, problem);
    m_writing = false;
}

void EstimateTotals::evaluate(int m) {
    RowState &st = m_rows[static_cast<size_t>(m)];
    st.dirty = false;
    const int r = EstimateGrid::toGridRow(m);
    st.kind = m_grid->kind(r);
    st.grand = st.kind == RowKind::Work && EstimateStructure::isGrandTotalName(m_grid->cell(r, Name));
    st.counted = false;
    st.amount = Money();
    // A totals row writes its sum (and its mark) again in the pass.
    st.shownTotal = kUnknownTotal;
    if (st.kind != RowKind::Work || st.grand) {
        mark(r, Qty, QString());
        mark(r, Price, QString());
        if (st.kind == RowKind::SectionStart || st.kind == RowKind::SubsectionStart)
            mark(r, Sum, QString());
        return;
    }
    const QString sumText = m_grid->cell(r, Sum);
    const RowAmount a = RowAmount::of(m_grid->cell(r, Qty), m_grid->cell(r, Price), sumText);
    mark(r, Qty, a.quantityProblem);
    mark(r, Price, a.priceProblem);
    mark(r, Sum, a.sumProblem);
    st.counted = a.amount.has_value();
    st.amount = a.amount.value_or(Money());
    if (!a.computed) {
        write(r, Itogo, sumText);
        return;
    }
    const QString amount = a.amountText();
    write(r, Sum, amount);
    write(r, Itogo, amount);
}

void EstimateTotals::writeNumber(int m, int number) {
    RowState &st = m_rows[static_cast<size_t>(m)];
    if (st.shownNumber == number)
        return;
    st.shownNumber = number;
    write(EstimateGrid::toGridRow(m), Num, number > 0 ? QString::number(number) : QString());
}

void EstimateTotals::writeTotal(int m, const MoneyResult &total) {
    RowState &st = m_rows[static_cast<size_t>(m)];
    const qint64 shown = total ? total->kopecks() : kRefusedTotal;
    if (st.shownTotal == shown)
        return;
    st.shownTotal = shown;
    const QString text = total.text();
    const int r = EstimateGrid::toGridRow(m);
    write(r, Sum, text);
    write(r, Itogo, text);
    mark(r, Sum, total ? QString() : RowAmountText::totalRefused(total.problem()));
}

void EstimateTotals::writeSectionText(int m, int section, int subsection) {
    using namespace EstimateStructure;
    RowState &st = m_rows[static_cast<size_t>(m)];
    const int r = EstimateGrid::toGridRow(m);
    if (!st.nameDirty && st.shownSection == section && st.shownSubsection == subsection)
        return;
    switch (st.kind) {
    case RowKind::SectionStart:
        if (st.nameDirty)
            st.title = sectionTitle(m_grid->cell(r, Name));
        write(r, Name, sectionName(section, st.title));
        break;
    case RowKind::SubsectionStart:
        if (st.nameDirty)
            st.title = subsectionTitle(m_grid->cell(r, Name));
        write(r, Name, subsectionName(section, subsection, st.title));
        break;
    case RowKind::SectionTotal:
        write(r, Name, sectionTotalName(section));
        break;
    case RowKind::SubsectionTotal:
        write(r, Name, subsectionTotalName(section, subsection));
        break;
    case RowKind::Work:
        break;
    }
    st.nameDirty = false;
    st.shownSection = section;
    st.shownSubsection = subsection;
}

void EstimateTotals::pass() {
    int number = 0, section = 0, subsection = 0;
    MoneyResult all = Money(), sectionSum = Money(), subsectionSum = Money();
    std::vector<int> grandRows;
    const int n = static_cast<int>(m_rows.size());
    for (int m = 0; m < n; ++m) {
        const RowState &st = m_rows[static_cast<size_t>(m)];
        switch (st.kind) {
        case RowKind::Work:
            if (st.grand) {
                grandRows.push_back(m);
                writeNumber(m, 0);
                break;
            }
            writeNumber(m, ++number);
            if (st.counted) {
                all += st.amount;
                sectionSum += st.amount;
                subsectionSum += st.amount;
            }
            break;
        case RowKind::SectionStart:
            ++section;
            subsection = 0;
            sectionSum = subsectionSum = Money();
            writeSectionText(m, section, 0);
            writeNumber(m, 0);
            break;
        case RowKind::SubsectionStart:
            ++subsection;
            subsectionSum = Money();
            writeSectionText(m, section, subsection);
            writeNumber(m, 0);
            break;
        case RowKind::SubsectionTotal:
            writeTotal(m, subsectionSum);
            writeSectionText(m, section, subsection);
            subsectionSum = Money();
            writeNumber(m, 0);
            break;
        case RowKind::SectionTotal:
            writeTotal(m, sectionSum);
            writeSectionText(m, section, 0);
            sectionSum = subsectionSum = Money();
            writeNumber(m, 0);
            break;
        }
    }
    for (int m : grandRows)
        writeTotal(m, all);
    if (all != m_works) {
        m_works = all;
        emit worksChanged();
    }
}
