#include "CrewSheet.h"

#include "CrewGrid.h"
#include "EstimateGrid.h"
#include "EstimateStructure.h"
#include "RowAmount.h"
#include "storage/Money.h"
#include "storage/TextValues.h"

#include <QScopeGuard>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

namespace {

// Decimals a crew price keeps (price × coefficient).
constexpr int kCrewPriceDecimals = 6;

// Estimate column -> crew column for the mirrored cells.
int crewColumnOf(int estimateCol) {
    switch (estimateCol) {
    case EstimateCol::Num:
        return CrewCol::Num;
    case EstimateCol::Ras:
        return CrewCol::Ras;
    case EstimateCol::Name:
        return CrewCol::Name;
    case EstimateCol::Unit:
        return CrewCol::Unit;
    case EstimateCol::Qty:
        return CrewCol::Qty;
    case EstimateCol::IdRas:
        return CrewCol::IdRas;
    case EstimateCol::Price:
        return CrewCol::CustomerPrice;
    case EstimateCol::Sum:
        return CrewCol::CustomerSum;
    default:
        return -1;
    }
}

} // namespace

QString CrewSheet::listOneRec(const Rate &rate) {
    return rate.second.trimmed() == QLatin1String("resurs1") ? rate.first.trimmed() : QString();
}

CrewSheet::PriceLookup CrewSheet::priceListLookup(std::function<QSqlDatabase()> priceDb) {
    return [priceDb](const QList<Rate> &rates) {
        std::vector<std::optional<Decimal>> answers(static_cast<size_t>(rates.size()));
        // Only price list 1 carries crew prices.
        QHash<QString, QList<int>> wanted; // rec -> the rates asking for it
        for (int i = 0; i < rates.size(); ++i)
            if (const QString rec = listOneRec(rates.at(i)); !rec.isEmpty())
                wanted[rec] << i;
        QSqlDatabase db = wanted.isEmpty() ? QSqlDatabase() : priceDb();
        if (!db.isOpen())
            return answers;
        const QStringList recs = wanted.keys();
        constexpr int kChunk = 500;
        QSet<QString> answered; // the first row of a rec answers, as one look-up per rec would
        for (int from = 0; from < recs.size(); from += kChunk) {
            const QStringList part = recs.mid(from, kChunk);
            QSqlQuery q(db);
            q.setForwardOnly(true);
            q.prepare(QStringLiteral("SELECT rec, link FROM price1 WHERE rec IN (") +
                      QStringList(part.size(), QStringLiteral("?")).join(QLatin1Char(',')) +
                      QStringLiteral(") ORDER BY id"));
            for (const QString &rec : part)
                q.addBindValue(rec);
            if (!q.exec())
                return answers;
            while (q.next()) {
                const QString rec = q.value(0).toString();
                if (answered.contains(rec))
                    continue;
                answered.insert(rec);
                const std::optional<Decimal> price = TextValues::parsePositivePrice(q.value(1).toString());
                for (int i : wanted.value(rec))
                    answers[static_cast<size_t>(i)] = price;
            }
        }
        return answers;
    };
}

CrewSheet::CrewSheet(EstimateGrid *grid, CrewGrid *crew, QObject *parent)
    : QObject(parent), m_grid(grid), m_crew(crew) {
    connect(grid, &QAbstractItemModel::dataChanged, this, &CrewSheet::onDataChanged);
    connect(grid, &QAbstractItemModel::rowsAboutToBeInserted, this, &CrewSheet::onRowsAboutToBeInserted);
    connect(grid, &QAbstractItemModel::rowsInserted, this, &CrewSheet::onRowsInserted);
    connect(grid, &QAbstractItemModel::rowsAboutToBeRemoved, this, &CrewSheet::onRowsAboutToBeRemoved);
    connect(grid, &QAbstractItemModel::rowsRemoved, this, &CrewSheet::onRowsRemoved);
    connect(grid, &QAbstractItemModel::rowsAboutToBeMoved, this, &CrewSheet::onRowsAboutToBeMoved);
    connect(grid, &QAbstractItemModel::rowsMoved, this, [this] {
        m_dirty = true;
        changed();
    });
    connect(grid, &QAbstractItemModel::modelReset, this, &CrewSheet::onGridReset);
    connect(crew, &QAbstractItemModel::modelReset, this, &CrewSheet::onCrewReset);
    connect(crew, &CrewGrid::cellEdited, this, &CrewSheet::onCrewEdited);
    onCrewReset();
}

void CrewSheet::setPriceLookup(PriceLookup lookup) {
    m_lookup = std::move(lookup);
    forgetPrices();
}

void CrewSheet::forgetPrices() {
    m_prices.clear();
    markAll();
    changed();
}

namespace {
QString priceKey(const QString &idRas, const QString &namePrice) {
    return namePrice + QLatin1Char('/') + idRas;
}
} // namespace

void CrewSheet::fetchPrices() {
    if (!m_lookup)
        return;
    QList<Rate> missing;
    QSet<QString> asked;
    for (int m = 0; m < static_cast<int>(m_rows.size()); ++m) {
        if (!m_rows[static_cast<size_t>(m)].dirty)
            continue;
        const int r = EstimateGrid::toGridRow(m);
        const QString idRas = m_grid->cell(r, EstimateCol::IdRas);
        if (idRas.trimmed().isEmpty())
            continue;
        const QString namePrice = m_grid->cell(r, EstimateCol::NamePrice);
        const QString key = priceKey(idRas, namePrice);
        if (m_prices.contains(key) || asked.contains(key))
            continue;
        asked.insert(key);
        missing.append({idRas, namePrice});
    }
    if (missing.isEmpty())
        return;
    const std::vector<std::optional<Decimal>> answers = m_lookup(missing);
    for (int i = 0; i < missing.size(); ++i)
        m_prices.insert(priceKey(missing.at(i).first, missing.at(i).second),
                        static_cast<size_t>(i) < answers.size() ? answers[static_cast<size_t>(i)]
                                                                : std::nullopt);
}

std::optional<Decimal> CrewSheet::ratePrice(const QString &idRas, const QString &namePrice) {
    if (!m_lookup || idRas.trimmed().isEmpty())
        return std::nullopt;
    const QString key = priceKey(idRas, namePrice);
    auto it = m_prices.constFind(key);
    if (it != m_prices.constEnd())
        return *it;
    const auto answers = m_lookup({{idRas, namePrice}});
    const std::optional<Decimal> v = answers.empty() ? std::nullopt : answers.front();
    m_prices.insert(key, v);
    return v;
}

void CrewSheet::setGlobalKoef(const QString &text) {
    if (m_global == text)
        return;
    m_global = text;
    markAll();
    changed();
    emit settingsChanged();
}

void CrewSheet::setPerRow(bool perRow) {
    if (m_perRow == perRow)
        return;
    m_perRow = perRow;
    markAll();
    changed();
    emit perRowChanged(perRow);
    emit settingsChanged();
}

QString CrewSheet::rowKoef(int estimateGridRow) const {
    const int m = EstimateGrid::toModelRow(estimateGridRow);
    return m >= 0 && m < static_cast<int>(m_koef.size()) ? m_koef[static_cast<size_t>(m)] : QString();
}

void CrewSheet::setRowKoef(int estimateGridRow, const QString &text) {
    const int m = EstimateGrid::toModelRow(estimateGridRow);
    if (m < 0 || m >= static_cast<int>(m_koef.size()) || m_koef[static_cast<size_t>(m)] == text)
        return;
    m_koef[static_cast<size_t>(m)] = text;
    m_rows[static_cast<size_t>(m)].dirty = true;
    m_dirty = true;
    changed();
}

std::optional<Decimal> CrewSheet::effectiveKoef(int estimateGridRow) const {
    const QString own = rowKoef(estimateGridRow);
    return TextValues::parseAmount(m_perRow && !TextValues::isBlank(own) ? own : m_global);
}

void CrewSheet::release() {
    if (m_hold > 0 && --m_hold == 0)
        flush();
}

void CrewSheet::changed() {
    if (m_hold == 0)
        flush();
}

void CrewSheet::markAll() {
    for (RowState &st : m_rows)
        st.dirty = true;
    m_dirty = true;
}

void CrewSheet::setCrewCell(int m, int col, const QString &text) {
    const int crewRow = m + CrewGrid::kFixedRows;
    if (m_crew->cell(crewRow, col) == text)
        return;
    m_writing = true;
    m_crew->setCell(crewRow, col, text);
    m_writing = false;
}

void CrewSheet::mirror(int m, int firstCol, int lastCol) {
    const int r = EstimateGrid::toGridRow(m);
    for (int c = firstCol; c <= lastCol; ++c) {
        const int cc = crewColumnOf(c);
        if (cc >= 0)
            setCrewCell(m, cc, m_grid->cell(r, c));
    }
}

void CrewSheet::rebuild() {
    const int n = m_grid->rowCount();
    m_rows.assign(static_cast<size_t>(n), RowState{});
    m_koef.resize(static_cast<size_t>(n));
    // The mirrored cells of every row laid out at once (one reset of the crew grid, not a signal per
    // cell); the crew's own cells follow when the rows are evaluated.
    std::vector<QStringList> rows;
    rows.reserve(static_cast<size_t>(n));
    for (int m = 0; m < n; ++m) {
        const QStringList cells = m_grid->rowCells(EstimateGrid::toGridRow(m));
        QStringList crew;
        crew.reserve(CrewCol::Count);
        for (int c = 0; c < CrewCol::Count; ++c)
            crew << QString();
        for (int c = 0; c < EstimateCol::Count && c < cells.size(); ++c)
            if (const int cc = crewColumnOf(c); cc >= 0)
                crew[cc] = cells.at(c);
        crew[CrewCol::Koef] = m_koef[static_cast<size_t>(m)];
        rows.push_back(std::move(crew));
    }
    m_writing = true;
    m_crew->setAllRows(std::move(rows));
    m_writing = false;
    m_dirty = true;
    changed();
}

void CrewSheet::onGridReset() {
    m_koef.assign(static_cast<size_t>(m_grid->rowCount()), QString());
    rebuild();
}

void CrewSheet::onCrewReset() {
    if (m_writing)
        return;
    // The coefficients come with the crew rows (loading a document).
    const int n = m_grid->rowCount();
    m_koef.assign(static_cast<size_t>(n), QString());
    for (int m = 0; m < n && m < m_crew->rowCount(); ++m)
        m_koef[static_cast<size_t>(m)] = m_crew->cell(m + CrewGrid::kFixedRows, CrewCol::Koef);
    rebuild();
}

void CrewSheet::onCrewEdited(int gridRow, int col, const QString &, const QString &newText) {
    if (col != CrewCol::Koef)
        return;
    const int m = gridRow - CrewGrid::kFixedRows;
    if (m < 0 || m >= static_cast<int>(m_koef.size()))
        return;
    m_koef[static_cast<size_t>(m)] = newText;
    // Typing a row's own coefficient means the rows have coefficients of their own.
    if (!m_perRow)
        setPerRow(true);
    m_rows[static_cast<size_t>(m)].dirty = true;
    m_dirty = true;
    changed();
    emit rowKoefEdited(EstimateGrid::toGridRow(m));
}

void CrewSheet::onDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                              const QList<int> &roles) {
    if (!topLeft.isValid())
        return;
    if (!roles.isEmpty() && !roles.contains(Qt::DisplayRole) && !roles.contains(Qt::EditRole))
        return;
    using namespace EstimateCol;
    const int c0 = topLeft.column(), c1 = bottomRight.column();
    auto covers = [&](int col) { return col >= c0 && col <= c1; };
    // Numbers and units are only mirrored; these change the crew's arithmetic.
    const bool recompute = covers(Name) || covers(Qty) || covers(Price) || covers(Sum) || covers(IdRas) ||
                           covers(NamePrice) || covers(Kind);
    const int last = std::min(bottomRight.row(), static_cast<int>(m_rows.size()) - 1);
    for (int m = topLeft.row(); m <= last; ++m) {
        mirror(m, c0, c1);
        if (recompute)
            m_rows[static_cast<size_t>(m)].dirty = true;
    }
    if (recompute) {
        m_dirty = true;
        changed();
    }
}

void CrewSheet::onRowsAboutToBeInserted(const QModelIndex &, int first, int last) {
    const int count = last - first + 1;
    m_rows.insert(m_rows.begin() + first, static_cast<size_t>(count), RowState{});
    m_koef.insert(m_koef.begin() + first, static_cast<size_t>(count), QString());
    m_writing = true;
    m_crew->insertGridRows(first + CrewGrid::kFixedRows, count);
    m_writing = false;
}

void CrewSheet::onRowsInserted(const QModelIndex &, int first, int last) {
    // The crew grid keeps one data row of its own when emptied: match the estimate's count.
    m_writing = true;
    m_crew->setGridRowCount(m_grid->rowCount() + CrewGrid::kFixedRows);
    m_writing = false;
    for (int m = first; m <= last; ++m)
        mirror(m, 0, EstimateCol::Count - 1);
    m_dirty = true;
    changed();
}

void CrewSheet::onRowsAboutToBeRemoved(const QModelIndex &, int first, int last) {
    m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
    m_koef.erase(m_koef.begin() + first, m_koef.begin() + last + 1);
    m_writing = true;
    m_crew->removeGridRows(first + CrewGrid::kFixedRows, last - first + 1);
    m_writing = false;
}

void CrewSheet::onRowsRemoved() {
    m_dirty = true;
    changed();
}

void CrewSheet::onRowsAboutToBeMoved(const QModelIndex &, int start, int end, const QModelIndex &, int row) {
    auto rotate = [&](auto &v) {
        auto b = v.begin();
        if (row > end)
            std::rotate(b + start, b + end + 1, b + row);
        else
            std::rotate(b + row, b + start, b + end + 1);
    };
    rotate(m_rows);
    rotate(m_koef);
    const int count = end - start + 1, k = CrewGrid::kFixedRows;
    m_writing = true;
    for (int i = 0; i < count; ++i) {
        if (row > end)
            m_crew->moveGridRow(start + k, row - 1 + k);
        else
            m_crew->moveGridRow(start + i + k, row + i + k);
    }
    m_writing = false;
}

void CrewSheet::flush() {
    if (!m_dirty)
        return;
    m_dirty = false;
    // A whole document's rows are evaluated at once: the crew grid tells its views once.
    m_crew->holdSignals();
    auto release = qScopeGuard([this] { m_crew->releaseSignals(); });
    fetchPrices();
    for (int m = 0; m < static_cast<int>(m_rows.size()); ++m)
        if (m_rows[static_cast<size_t>(m)].dirty)
            evaluate(m);
    pass();
}

void CrewSheet::evaluate(int m) {
    using namespace EstimateCol;
    RowState &st = m_rows[static_cast<size_t>(m)];
    st = RowState{};
    st.dirty = false;
    const int r = EstimateGrid::toGridRow(m);
    const int crewRow = m + CrewGrid::kFixedRows;
    const RowKind kind = m_grid->kind(r);
    st.kind = static_cast<int>(kind);
    m_crew->setCellProblem(crewRow, CrewCol::Koef, QString());
    m_crew->setCellProblem(crewRow, CrewCol::Price, QString());
    if (kind != RowKind::Work || EstimateStructure::isGrandTotalName(m_grid->cell(r, Name))) {
        setCrewCell(m, CrewCol::Price, QString());
        setCrewCell(m, CrewCol::Koef, QString());
        if (kind == RowKind::SectionStart || kind == RowKind::SubsectionStart) {
            setCrewCell(m, CrewCol::Sum, QString());
            m_crew->setCellProblem(crewRow, CrewCol::Sum, QString());
        }
        return;
    }
    st.work = true;
    const QString qtyText = m_grid->cell(r, Qty), priceText = m_grid->cell(r, Price);
    const QString own = m_koef[static_cast<size_t>(m)];
    const QString koefText = m_perRow && !TextValues::isBlank(own) ? own : m_global;
    const TextValues::NumberReading k = TextValues::readNumber(koefText, true);
    // The customer's amount as the estimate shows it (empty when the estimate refused the row).
    const MoneyResult customer = Money::parse(m_grid->cell(r, Sum));
    if (customer)
        st.customer = *customer;

    QString priceProblem, sumProblem;
    auto refused = [](const QString &what, NumberProblem problem) {
        return QStringLiteral("%1 %2: она не считается и не входит в итог бригады.")
            .arg(what, numberProblemText(problem));
    };
    std::optional<Decimal> crewPrice = ratePrice(m_grid->cell(r, IdRas), m_grid->cell(r, NamePrice));
    if (!crewPrice) {
        const auto p = TextValues::isBlank(priceText) ? std::nullopt : TextValues::parsePrice(priceText);
        if (p && k.value) {
            // Exact, as the customer's price is: the crew's amount is rounded once, so that a
            // coefficient of 1 gives the customer's amounts.
            crewPrice = p->times(*k.value, kCrewPriceDecimals);
            if (!crewPrice || !Money::of(*crewPrice))
                priceProblem = refused(QStringLiteral("Цена бригады"), NumberProblem::TooLarge);
            if (!priceProblem.isEmpty())
                crewPrice.reset();
        }
    }
    MoneyResult amount = MoneyResult::refused(NumberProblem::Blank);
    if (TextValues::isBlank(qtyText) && TextValues::isBlank(priceText)) {
        if (customer && k.value) // a lump sum
            amount = customer->times(*k.value);
    } else if (const auto q = TextValues::parseAmount(qtyText); q && crewPrice) {
        amount = Money::product(*crewPrice, *q);
    }
    if (!amount && amount.problem() != NumberProblem::Blank)
        sumProblem = refused(QStringLiteral("Сумма бригады"), amount.problem());
    st.counted = amount.ok();
    st.crew = amount.valueOr(Money());
    setCrewCell(m, CrewCol::Koef, koefText);
    setCrewCell(m, CrewCol::Price, crewPrice ? TextValues::formatPrice(*crewPrice) : QString());
    setCrewCell(m, CrewCol::Sum, amount.text());
    if (!k.value && (customer || !TextValues::isBlank(priceText)))
        m_crew->setCellProblem(crewRow, CrewCol::Koef,
                               QStringLiteral("Коэффициент «%1» %2: цена и сумма бригады не считаются.")
                                   .arg(koefText.trimmed(), numberProblemText(k.problem)));
    m_crew->setCellProblem(crewRow, CrewCol::Price, priceProblem);
    m_crew->setCellProblem(crewRow, CrewCol::Sum, sumProblem);
}

void CrewSheet::setCrewTotal(int m, const MoneyResult &total) {
    setCrewCell(m, CrewCol::Sum, total.text());
    m_crew->setCellProblem(m + CrewGrid::kFixedRows, CrewCol::Sum,
                           total ? QString() : RowAmountText::totalRefused(total.problem()));
}

void CrewSheet::pass() {
    MoneyResult all = Money(), customer = Money(), section = Money(), subsection = Money();
    std::vector<int> grandRows;
    for (int m = 0; m < static_cast<int>(m_rows.size()); ++m) {
        const RowState &st = m_rows[static_cast<size_t>(m)];
        switch (static_cast<RowKind>(st.kind)) {
        case RowKind::Work:
            if (!st.work) {
                grandRows.push_back(m);
                break;
            }
            customer += st.customer;
            if (st.counted) {
                all += st.crew;
                section += st.crew;
                subsection += st.crew;
            }
            break;
        case RowKind::SectionStart:
            section = subsection = Money();
            break;
        case RowKind::SubsectionStart:
            subsection = Money();
            break;
        case RowKind::SubsectionTotal:
            setCrewTotal(m, subsection);
            subsection = Money();
            break;
        case RowKind::SectionTotal:
            setCrewTotal(m, section);
            section = subsection = Money();
            break;
        }
    }
    for (int m : grandRows)
        setCrewTotal(m, all);
    if (all != m_crewTotal || customer != m_customerTotal) {
        m_crewTotal = all;
        m_customerTotal = customer;
        emit totalsChanged();
    }
}

MoneyResult CrewSheet::crewTotal() {
    flush();
    return m_crewTotal;
}

MoneyResult CrewSheet::customerTotal() {
    flush();
    return m_customerTotal;
}

MoneyResult CrewSheet::margin() {
    flush();
    return m_customerTotal - m_crewTotal;
}
