#include "RowAmount.h"

#include "storage/TextValues.h"

namespace RowAmountText {

QString refused(const QString &what, const QString &text, NumberProblem problem) {
    return QStringLiteral("%1 «%2» %3: сумма строки не считается и не входит в итог.")
        .arg(what, text.trimmed(), numberProblemText(problem));
}

QString totalRefused(NumberProblem problem) {
    return QStringLiteral("Итог %1: он не считается. Исправьте суммы строк выше.")
        .arg(numberProblemText(problem));
}

} // namespace RowAmountText

RowAmount RowAmount::of(const QString &quantity, const QString &price, const QString &sum) {
    RowAmount out;
    const bool noQuantity = TextValues::isBlank(quantity), noPrice = TextValues::isBlank(price);
    if (noQuantity && noPrice) {
        if (TextValues::isBlank(sum))
            return out;
        const MoneyResult lump = Money::parse(sum);
        if (lump)
            out.amount = *lump;
        else
            out.sumProblem = RowAmountText::refused(QStringLiteral("Сумма"), sum, lump.problem());
        return out;
    }
    out.computed = true;
    const auto q = noQuantity ? TextValues::NumberReading{} : TextValues::readNumber(quantity, true);
    const auto p = noPrice ? TextValues::NumberReading{} : TextValues::readNumber(price, false);
    if (!noQuantity && !q.value)
        out.quantityProblem = RowAmountText::refused(QStringLiteral("Количество"), quantity, q.problem);
    if (!noPrice && !p.value)
        out.priceProblem = RowAmountText::refused(QStringLiteral("Цена"), price, p.problem);
    if (!q.value || !p.value)
        return out;
    const MoneyResult product = Money::product(*p.value, *q.value);
    if (product)
        out.amount = *product;
    else // the quantity is what is usually typed; the reason names both
        out.quantityProblem =
            QStringLiteral("Сумма строки %1 × %2 %3: она не считается и не входит в итог. "
                           "Исправьте количество или цену.")
                .arg(quantity.trimmed(), price.trimmed(), numberProblemText(product.problem()));
    return out;
}
