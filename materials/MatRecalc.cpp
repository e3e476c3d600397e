#include "MatRecalc.h"

#include "estimate/EstimateMaterials.h"
#include "storage/TextValues.h"

#include <QHash>

namespace MatRecalc {

namespace {

// Writes the price of one material row; counts what happened.
void setPrice(EstimateMaterials &materials, int row, const QString &price, Outcome &out) {
    const QModelIndex cell = materials.index(row, MatCol::Price);
    if (cell.data(Qt::EditRole).toString() == price)
        return;
    if (materials.setData(cell, price, Qt::EditRole)) {
        ++out.changed;
        return;
    }
    out.skipped << materials.index(row, MatCol::Name).data().toString();
    if (out.error.isEmpty())
        out.error = materials.lastError();
}

} // namespace

Outcome fromList(EstimateMaterials &materials, const std::vector<MatRow> &list) {
    Outcome out;
    QHash<QString, QString> prices;
    for (const MatRow &r : list)
        if (matRowKind(r) == MatRowKind::Material && !prices.contains(r.name))
            prices.insert(r.name, r.price);
    for (int row = 0; row < materials.rowCount(); ++row) {
        const QString name = materials.index(row, MatCol::Name).data().toString();
        const auto it = prices.constFind(name);
        if (it == prices.constEnd()) {
            ++out.unmatched;
            continue;
        }
        setPrice(materials, row, *it, out);
    }
    return out;
}

Outcome byPercent(EstimateMaterials &materials, const Decimal &percent) {
    Outcome out;
    // factor = 1 + percent / 100
    const auto hundredth = Decimal::of(1, 2);
    const auto share = percent.times(*hundredth);
    const auto factor = share ? Decimal::whole(1)->plus(*share) : std::nullopt;
    if (!factor) {
        out.error = QStringLiteral("Процент %1").arg(numberProblemText(NumberProblem::TooManyDigits));
        return out;
    }
    for (int row = 0; row < materials.rowCount(); ++row) {
        const QString text = materials.index(row, MatCol::Price).data(Qt::EditRole).toString();
        if (TextValues::isBlank(text))
            continue;
        const auto price = TextValues::parsePrice(text);
        // Kopecks, or the decimals the price had when it had more.
        const auto raised = price ? price->times(*factor, std::max(2, price->scale())) : std::nullopt;
        if (!raised) {
            out.skipped << materials.index(row, MatCol::Name).data().toString();
            continue;
        }
        setPrice(materials, row, TextValues::formatPrice(*raised), out);
    }
    return out;
}

} // namespace MatRecalc
