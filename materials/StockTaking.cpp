#include "StockTaking.h"

#include "WriteOffs.h"
#include "estimate/RowAmount.h"
#include "storage/TextValues.h"
#include "storage/Transaction.h"

namespace StockTaking {

namespace {

Outcome outcome(Outcome::Kind kind, const QString &message) {
    Outcome o;
    o.kind = kind;
    o.message = message;
    return o;
}

QString amountOf(const QString &quantity, const QString &price) {
    return RowAmount::of(quantity, price, QString()).amountText();
}

// The estimate's side: more of the material it has, or a new row at the end. *before holds the row
// as it was (empty id for a new one), so that the change can be taken back.
bool intoEstimate(QSqlDatabase smeta, const StockItem &stock, const Decimal &quantity, const QString &price,
                  Outcome &out, MaterialsStore::Material *before, QString *error) {
    QString problem;
    if (auto existing = MaterialsStore::findByName(smeta, stock.name, &problem)) {
        *before = *existing;
        std::optional<Decimal> had = TextValues::isBlank(existing->quantity)
                                         ? Decimal::whole(0)
                                         : TextValues::parseAmount(existing->quantity);
        const std::optional<Decimal> now = had ? had->plus(quantity) : std::nullopt;
        if (!now) {
            *error = QStringLiteral("Количество «%1» материала «%2» в смете не является числом")
                         .arg(existing->quantity, existing->name);
            return false;
        }
        MaterialsStore::Material m = *existing;
        m.quantity = TextValues::formatQuantity(*now);
        m.sum = amountOf(m.quantity, m.price);
        if (!MaterialsStore::setCell(smeta, m.id, QStringLiteral("kolvo"), m.quantity, m.sum, error))
            return false;
        out.material = m;
        out.addedToExisting = true;
        return true;
    }
    if (!problem.isEmpty()) {
        *error = problem;
        return false;
    }
    const int place = MaterialsStore::nextPosition(smeta, error);
    if (place < 0)
        return false;
    MaterialsStore::Material m;
    m.numpos = QString::number(place);
    m.name = stock.name;
    m.unit = stock.unit;
    m.quantity = TextValues::formatQuantity(quantity);
    m.price = price;
    m.sum = amountOf(m.quantity, price);
    m.id = MaterialsStore::add(smeta, m, error);
    if (m.id.isEmpty() || !MaterialsStore::renumber(smeta, error))
        return false;
    out.material = m;
    return true;
}

// Takes the estimate's side back after the warehouse could not keep its side.
void undoEstimate(QSqlDatabase smeta, const Outcome &done, const MaterialsStore::Material &before) {
    if (done.addedToExisting)
        MaterialsStore::restore(smeta, before);
    else
        MaterialsStore::removeByIds(smeta, {done.material.id});
}

} // namespace

std::optional<Decimal> parseQuantity(const QString &text, QString *refusal) {
    const TextValues::NumberReading r = TextValues::readNumber(text, true);
    QString why;
    if (r.problem == NumberProblem::Blank)
        why = QStringLiteral("Введите количество");
    else if (!r.value)
        why = QStringLiteral("Количество «%1» %2").arg(text.trimmed(), numberProblemText(r.problem));
    else if (r.value->isZero() || r.value->isNegative())
        why = QStringLiteral("Количество должно быть больше нуля");
    if (!why.isEmpty()) {
        if (refusal)
            *refusal = why;
        return std::nullopt;
    }
    return r.value;
}

Outcome take(QSqlDatabase mat, QSqlDatabase smeta, const Request &request) {
    if (request.quantity.isZero() || request.quantity.isNegative())
        return outcome(Outcome::Refused, QStringLiteral("Количество должно быть больше нуля"));
    // The write lock of the warehouse first: the stock read below cannot change until the end.
    Transaction stockSide(mat);
    if (!stockSide.active())
        return outcome(Outcome::Failed, stockSide.error());
    QString error;
    const std::optional<StockItem> stock = StockStore::byId(mat, request.stockId, &error);
    if (!stock)
        return outcome(error.isEmpty() ? Outcome::Refused : Outcome::Failed,
                       error.isEmpty() ? QStringLiteral("Этого материала больше нет на складе") : error);
    const std::optional<Decimal> have = TextValues::parseAmount(stock->quantity);
    if (!have)
        return outcome(Outcome::Refused,
                       QStringLiteral("Количество «%1» материала «%2» на складе не является числом")
                           .arg(stock->quantity, stock->name));
    if (request.quantity > *have)
        return outcome(Outcome::Refused, kAboveStock);
    const bool whole = request.quantity == *have;
    const QString price = sellingPrice(*stock);
    const QString taken = TextValues::formatQuantity(request.quantity);
    const RowAmount amount = RowAmount::of(taken, price, QString());
    if (amount.refused())
        return outcome(Outcome::Refused,
                       amount.priceProblem.isEmpty() ? amount.quantityProblem : amount.priceProblem);

    Outcome done = outcome(whole ? Outcome::WholeTaken : Outcome::Taken, QString());
    MaterialsStore::Material before;
    {
        Transaction estimateSide(smeta);
        if (!estimateSide.active())
            return outcome(Outcome::Failed, estimateSide.error());
        if (!intoEstimate(smeta, *stock, request.quantity, price, done, &before, &error))
            return outcome(Outcome::Failed, QStringLiteral("Материал не добавлен в смету: %1").arg(error));

        bool stockWritten = false;
        if (whole) {
            stockWritten = StockStore::remove(mat, stock->id, &error);
        } else {
            const QString left = TextValues::formatQuantity(*have->plus(request.quantity.negated()));
            QList<QPair<QString, QString>> cells{{QStringLiteral("kolvo"), left}};
            const QString sum = amountOf(left, stock->price);
            if (!sum.isEmpty())
                cells.append({QStringLiteral("summa"), sum});
            stockWritten = StockStore::setCells(mat, stock->id, cells, &error);
        }
        if (!stockWritten)
            return outcome(Outcome::Failed, QStringLiteral("Склад не изменён: %1").arg(error));

        WriteOff w;
        w.name = stock->name;
        w.unit = stock->unit;
        w.quantity = taken;
        w.price = price;
        w.sum = amount.amountText();
        w.customer = request.customer;
        w.object = request.object;
        w.date = TextValues::shortDate(request.date);
        w.month = TextValues::monthText(request.date);
        w.year = TextValues::yearText(request.date);
        w.dateCompare = TextValues::dateCompareDay(request.date);
        done.writeOffId = WriteOffs::add(mat, w, &error);
        if (done.writeOffId.isEmpty())
            return outcome(Outcome::Failed, QStringLiteral("Списание не записано: %1").arg(error));
        if (!estimateSide.commit())
            return outcome(Outcome::Failed,
                           QStringLiteral("Материал не добавлен в смету: %1").arg(estimateSide.error()));
    }
    if (!stockSide.commit()) {
        undoEstimate(smeta, done, before);
        return outcome(Outcome::Failed, QStringLiteral("Склад не изменён: %1").arg(stockSide.error()));
    }
    return done;
}

} // namespace StockTaking
